#pragma once

// Runs a shader in Mesa with the fixed inputs: a fragment shader draws the grid
// into float (or integer) render targets, one per output; a vertex shader runs the
// vertices with transform feedback capturing every output.

#include "MesaContext.h"
#include "ReferenceTextures.h"
#include "Results.h"
#include "ShaderInterface.h"

#include <string>

namespace ZamDifferential
{

// Needs a current CMesaContext. False with Mesa's log when it refuses the shader.
bool RunOnMesa(const std::string& source, const SShaderInterface& shaderInterface, const CReferenceTextures& textures,
               SResults& results, std::string& error);

// The runner's parts. The GLSL Mesa is given (MesaSources.cpp):

// TXE computes every lane in 32-bit float, and lowp/mediump only allow an
// implementation less: Mesa honours them (samples from default-precision samplers
// come back rounded to 16 bits), which would measure Mesa's rounding, not the
// compiler. So every precision becomes highp, samplers included; a #line keeps
// Mesa's line numbers those of the file.
std::string FullPrecision(const std::string& source);

// A vertex shader that draws the full-viewport quad from attribute 0 ("zamPosition")
// and gives every input of the fragment shader its linear function (InputValues.h).
std::string FeedingVertexShader(const SShaderInterface& fragment);

// A fragment shader of the same version that only links with a vertex shader.
std::string SinkFragmentShader(const SShaderInterface& vertex);

// The two ways a linked program runs once its inputs are set (MesaPasses.cpp): draw the quad
// over the grid, a render target per fragment output; or run the vertices as points with
// rasterisation off, capturing every output.
bool RenderFragments(GLuint uiProgram, const SShaderInterface& shaderInterface, CGlObjects& objects, SResults& results,
                     std::string& error);
bool CaptureVertices(GLuint uiProgram, const SShaderInterface& shaderInterface, CGlObjects& objects, SResults& results,
                     std::string& error);

} // namespace ZamDifferential
