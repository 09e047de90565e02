#include "ZcCompilation.h"

#include "ZcFrontEnd.h"
#include "ZcLowering.h"
#include "ZcRegisterAllocation.h"

#include <algorithm>
#include <pthread.h>

namespace ZamCompiler
{

namespace
{

constexpr std::size_t k_uiLargeStackBytes = 256u * 1024u * 1024u;

struct SThreadCall
{
    void (*pFunction)(void*);
    void* pContext;
};

void* ThreadEntry(void* pArgument)
{
    SThreadCall* pCall = static_cast<SThreadCall*>(pArgument);
    pCall->pFunction(pCall->pContext);
    return nullptr;
}

} // namespace

bool CompileProgram(const std::string& source, ETxeStage eStage, const SCoreModel& core, const SSourceLimits& limits,
                    SCompilation& compilation, const SPreprocessorOptions& options)
{
    compilation = SCompilation();
    if (!CheckSourceText(source, limits, compilation.aDiagnostics))
        return false;

    SParsedShader parsed;
    const bool bParsed = ParseShader(source, eStage, limits, parsed, compilation.aDiagnostics, options);
    compilation.aIncludedFiles = parsed.aIncludedFiles;
    if (!bParsed)
        return false;
    // Growing the instruction list copies it into fresh pages every time; a few instructions per
    // source line is typical, and capacity that is never written costs no memory.
    const std::size_t uiLines = static_cast<std::size_t>(CountLines(source));
    compilation.program.aInstructions.reserve(
        std::min(static_cast<std::size_t>(std::max(0, limits.iMaxInstructions)), uiLines * 8 + 64));
    if (!LowerShader(*parsed.pIntermediate, eStage, limits, compilation.program, compilation.aDiagnostics))
        return false;

    // Pairing looks at true dependencies, so cost before registers are shared.
    compilation.aCosts = CostInstructions(compilation.program, core);
    compilation.iTemporaries = AllocateRegisters(compilation.program);
    return true;
}

void AnalyseProgram(const std::string& source, SCompilation& compilation, bool bPerLine, bool bPaths)
{
    if (bPerLine)
        compilation.mapLineCycles = LineCycles(compilation.program, compilation.aCosts, CountLines(source));
    if (bPaths)
        compilation.paths = PathCycles(compilation.program, compilation.aCosts);
    compilation.bSucceeded = true;
}

bool CompileSource(const std::string& source, ETxeStage eStage, const SCoreModel& core, const SSourceLimits& limits,
                   SCompilation& compilation, const SPreprocessorOptions& options)
{
    if (!CompileProgram(source, eStage, core, limits, compilation, options))
        return false;
    AnalyseProgram(source, compilation);
    return true;
}

bool RunWithLargeStack(void (*pFunction)(void*), void* pContext)
{
    SThreadCall call{pFunction, pContext};
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0)
        return false;
    pthread_attr_setstacksize(&attributes, k_uiLargeStackBytes);
    pthread_t thread;
    const int iResult = pthread_create(&thread, &attributes, &ThreadEntry, &call);
    pthread_attr_destroy(&attributes);
    if (iResult != 0)
        return false;
    pthread_join(thread, nullptr);
    return true;
}

} // namespace ZamCompiler
