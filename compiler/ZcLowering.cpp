#include "ZcLowering.h"

#include "ZcLowerer.h"

namespace ZamCompiler
{

bool LowerShader(glslang::TIntermediate& intermediate, ETxeStage eStage, const SSourceLimits& limits,
                 STxeProgram& program, CDiagnosticList& aDiagnostics)
{
    program = STxeProgram();
    CLowerer lowerer(eStage, limits, program, aDiagnostics);
    if (!lowerer.Run(intermediate))
    {
        if (!HasErrors(aDiagnostics))
            AddError(aDiagnostics, 1, "the shader could not be translated to TXE code");
        return false;
    }
    return true;
}

} // namespace ZamCompiler
