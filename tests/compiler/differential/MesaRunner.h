#pragma once

// Runs a shader in Mesa with the fixed inputs: a fragment shader draws the grid
// into float (or integer) render targets, one per output; a vertex shader runs the
// vertices with transform feedback capturing every output.

#include "ReferenceTextures.h"
#include "Results.h"
#include "ShaderInterface.h"

#include <string>

namespace ZamDifferential
{

// Needs a current CMesaContext. False with Mesa's log when it refuses the shader.
bool RunOnMesa(const std::string& source, const SShaderInterface& shaderInterface, const CReferenceTextures& textures,
               SResults& results, std::string& error);

} // namespace ZamDifferential
