// libFuzzer entry: any bytes through limits, front end, lowering, analysis and writers.

#include "ZcCompilation.h"
#include "ZcFrontEnd.h"
#include "ZcWriters.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t uiSize)
{
    using namespace ZamCompiler;
    // Kept for the whole run; volatile, so the pointer is not optimised away and the leak
    // checker of a sanitizer build still sees the object as reachable.
    static CFrontEndProcess* volatile s_pProcess = new CFrontEndProcess();
    (void)s_pProcess;

    const std::string source(reinterpret_cast<const char*>(pData), uiSize);
    const ETxeStage eStage = uiSize % 2 ? Stage_Vertex : Stage_Fragment;
    const SCoreModel& core = CoreModel(static_cast<ECore>(uiSize % Core_Count));
    SCompilation compilation;
    if (CompileSource(source, eStage, core, DefaultSourceLimits(), compilation))
    {
        FormatProfile(compilation);
        FormatEstimate(compilation);
        FormatDisassembly(compilation, core);
        EncodeProgram(compilation, core);
    }
    for (const SDiagnostic& diagnostic : compilation.aDiagnostics)
        FormatDiagnostic(diagnostic);
    return 0;
}
