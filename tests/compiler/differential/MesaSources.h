#pragma once

// The GLSL Mesa is given: the shader under test at full precision, and the
// generated stage that completes its program.

#include "ShaderInterface.h"

#include <string>

namespace ZamDifferential
{

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

} // namespace ZamDifferential
