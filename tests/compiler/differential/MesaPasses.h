#pragma once

// The two ways a linked program runs in Mesa once its inputs are set.

#include "MesaContext.h"
#include "Results.h"
#include "ShaderInterface.h"

#include <string>

namespace ZamDifferential
{

// Draws the quad over the grid; a render target per fragment output.
bool RenderFragments(GLuint uiProgram, const SShaderInterface& shaderInterface, CGlObjects& objects, SResults& results,
                     std::string& error);

// Runs the vertices as points with rasterisation off, capturing every output.
bool CaptureVertices(GLuint uiProgram, const SShaderInterface& shaderInterface, CGlObjects& objects, SResults& results,
                     std::string& error);

} // namespace ZamDifferential
