#pragma once

// One compile of one shader for one core, as data: diagnostics, the program,
// its costs and the figures the writers print. No files, no printing.

#include "TxeIsa.h"
#include "ZcAnalysis.h"
#include "ZcCores.h"
#include "ZcDiagnostics.h"
#include "ZcIncludes.h"
#include "ZcSourceLimits.h"

#include <map>
#include <string>
#include <vector>

namespace ZamCompiler
{

struct SCompilation
{
    CDiagnosticList aDiagnostics;
    STxeProgram program;
    std::vector<int> aCosts;
    std::map<int, long long> mapLineCycles;
    SPathCycles paths;
    int iTemporaries = 0;
    std::vector<std::string> aIncludedFiles; // every header read, also when the compile failed
    bool bSucceeded = false;
};

// Needs a live CFrontEndProcess. Runs on the calling thread; deep input needs a large stack
// (see RunWithLargeStack).
bool CompileSource(const std::string& source, ETxeStage eStage, const SCoreModel& core, const SSourceLimits& limits,
                   SCompilation& compilation, const SPreprocessorOptions& options = SPreprocessorOptions());

// CompileSource in two halves. The first leaves the program, its costs and its registers
// final, so the listing can be formatted on another thread while the second works out the
// figures per line and per path (it writes no other member).
bool CompileProgram(const std::string& source, ETxeStage eStage, const SCoreModel& core, const SSourceLimits& limits,
                    SCompilation& compilation, const SPreprocessorOptions& options = SPreprocessorOptions());
// A caller that prints neither figure can leave it out.
void AnalyseProgram(const std::string& source, SCompilation& compilation, bool bPerLine = true, bool bPaths = true);

// Runs the function on a thread with a generous stack; false if no thread could be made.
bool RunWithLargeStack(void (*pFunction)(void*), void* pContext);

} // namespace ZamCompiler
