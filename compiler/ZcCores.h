#pragma once

// The four target cores and their cost tables.

#include <string>

namespace ZamCompiler
{

enum ECore
{
    Core_ZC1 = 0,
    Core_ZC2,
    Core_ZC3,
    Core_ZD1,
    Core_Count
};

// Which neighbouring instructions share an issue slot. Only one-cycle
// instructions ever pair, which keeps "more code never costs less" true.
enum EIssueRule
{
    Issue_Single,       // one instruction per issue
    Issue_NarrowAluPair, // two ALU ops of at most two lanes each
    Issue_AluMove,      // a register move rides along with the ALU op before it
    Issue_AluPair,      // two ALU ops whose lanes add up to at most four
};

struct SCoreModel
{
    ECore eCore;
    const char* pName;        // "ZC1"
    const char* pExecutable;  // "glslcompiler_zc1"
    int iRevision;
    int iVectorWidth;         // lanes per ALU/move issue
    int iAluCycles;
    int iMoveCycles;
    int iTranscendentalCycles; // per lane
    int iTextureCycles;
    int iPrefetchedTextureCycles; // sample with coordinates straight from an input
    int iBranchCycles;
    int iMemoryCycles;        // extra for scratch and indexed loads/stores
    EIssueRule eIssue;
};

const SCoreModel& CoreModel(ECore eCore);

// "glslcompiler_zc2", "/opt/x/glslcompiler_zc2.exe" or "clcompiler_zd1" name a core; false otherwise.
bool CoreFromProgramName(const std::string& programPath, ECore& eCore);

} // namespace ZamCompiler
