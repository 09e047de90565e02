#pragma once

// The compiler's side of the comparison: the shader compiled in process for ZC1
// and its program run in the interpreter, a quad (or four vertices) at a time, with
// the inputs Mesa gets.

#include "ReferenceTextures.h"
#include "Results.h"
#include "ShaderInterface.h"
#include "ZcCompilation.h"

#include <string>

namespace ZamDifferential
{

// Needs a live CFrontEndProcess. False with the compiler's messages when it refuses.
bool CompileForTxe(const std::string& source, ZamCompiler::ETxeStage eStage, ZamCompiler::SCompilation& compilation,
                   std::string& messages);

// False with the interpreter's reason when the program breaks (runs away, indexes
// out of range, has unbalanced blocks).
bool RunOnTxe(const ZamCompiler::STxeProgram& program, const SShaderInterface& shaderInterface,
              CReferenceTextures& textures, SResults& results, std::string& error);

} // namespace ZamDifferential
