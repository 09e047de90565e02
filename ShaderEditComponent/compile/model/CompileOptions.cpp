#include "CompileOptions.h"

#include "Tools/ZamTArray.h"
#include "Tools/ZamTString.h"

#include <QHash>
#include <QVector>

namespace
{
const SCompileOptionName s_Options[] = {
    {CompileOption_Verbose, "v"},       {CompileOption_F, "f"},
    {CompileOption_NoWarn, "nowarn"},   {CompileOption_Profile, "profile"},
    {CompileOption_PerfSim, "perfsim"}, {CompileOption_Disassembly, "disasm"},
};

const char* const s_TargetRows[][2] = {
    {"glslcompiler_zc1", "Zamrix ZC 1"},
    {"glslcompiler_zc2", "Zamrix ZC 2"},
    {"glslcompiler_zc3", "Zamrix ZC 3"},
    {"glslcompiler_zd1", "Zamrix ZD 1"},
};

constexpr int s_iOptionCount = static_cast<int>(sizeof(s_Options) / sizeof(s_Options[0]));
constexpr int s_iTargetCount = static_cast<int>(sizeof(s_TargetRows) / sizeof(s_TargetRows[0]));

// Built on first use and kept for the life of the process.
const QHash<QString, unsigned int>& OptionLookup()
{
    static const QHash<QString, unsigned int> s_Lookup = []
    {
        QHash<QString, unsigned int> Lookup;
        for (const SCompileOptionName& Option : s_Options)
            Lookup.insert(QString::fromLatin1(Option.pName), Option.eFlag);
        return Lookup;
    }();
    return s_Lookup;
}
} // namespace

int GetCompileOptionCount()
{
    return s_iOptionCount;
}

SCompileOptionName GetCompileOption(int iIndex)
{
    if (iIndex < 0 || iIndex >= s_iOptionCount)
        return {static_cast<ECompileOption>(0), ""};
    return s_Options[iIndex];
}

unsigned int GetCompileOptionFlag(const QString& Name)
{
    return OptionLookup().value(Name, 0u);
}

unsigned int OptionFlagsFromNames(const CZamTArray<QString>& Names)
{
    unsigned int uiFlags = 0;
    for (unsigned int i = 0; i < Names.GetSize(); ++i)
        uiFlags |= GetCompileOptionFlag(Names[i]);
    return uiFlags;
}

int GetCompilerTargetCount()
{
    return s_iTargetCount;
}

const SCompilerTarget& GetCompilerTarget(int iIndex)
{
    // Built on first use, so no library string depends on static initialisation order.
    static const QVector<SCompilerTarget> s_Targets = []
    {
        QVector<SCompilerTarget> Targets;
        for (const auto& Row : s_TargetRows)
            Targets.append({CZamTString(Row[0]), QString::fromLatin1(Row[1])});
        Targets.append({CZamTString(""), QString()});
        return Targets;
    }();
    if (iIndex < 0 || iIndex >= s_iTargetCount)
        return s_Targets[s_iTargetCount];
    return s_Targets[iIndex];
}
