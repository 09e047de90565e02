#pragma once

#include "Tools/ZamTArray.h"
#include "Tools/ZamTString.h"

#include <QMetaType>
#include <QString>

// Option switches of the offline compilers, as flag bits. The names are the switches
// without their leading hyphen, as a compiler lists them in its banner.
enum ECompileOption : unsigned int
{
    CompileOption_Verbose = 1,       // "v"
    CompileOption_F = 2,             // "f"
    CompileOption_NoWarn = 4,        // "nowarn"
    CompileOption_Profile = 8,       // "profile"
    CompileOption_PerfSim = 16,      // "perfsim"
    CompileOption_Disassembly = 32,  // "disasm"
};

struct SCompileOptionName
{
    ECompileOption eFlag;
    const char* pName;
};

// The option rows in flag order (the order switches are written on a command line).
[[nodiscard]] int GetCompileOptionCount();
[[nodiscard]] SCompileOptionName GetCompileOption(int iIndex);

// Flag of one option name; 0 for names no row has.
unsigned int GetCompileOptionFlag(const QString& Name);
// Union of the flags of the names a compiler reported; unknown names are ignored.
unsigned int OptionFlagsFromNames(const CZamTArray<QString>& Names);

// Built-in compiler targets: the executable's base name (no platform suffix) and its title.
struct SCompilerTarget
{
    CZamTString ExecutableBaseName;
    QString DisplayName;
};

[[nodiscard]] int GetCompilerTargetCount();
// Out-of-range indices give a row with empty texts.
const SCompilerTarget& GetCompilerTarget(int iIndex);

// Why a compile was started. Handed from the requester through the controller to the worker.
enum ECompileInvocationType : int
{
    CompileInvocation_Manual = 0,     // the user asked for a compile of the current document
    CompileInvocation_Background = 1, // a panel recompiles while the user types
    CompileInvocation_ToFile = 2,     // the compile dialog writes output files
};

Q_DECLARE_METATYPE(ECompileInvocationType)
