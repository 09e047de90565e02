#pragma once

// What one implementation computed: a row per pixel (fragment shaders) or per
// vertex, a column per output component, and the comparison of two such tables.

#include "ShaderInterface.h"

#include <string>
#include <vector>

namespace ZamDifferential
{

struct SColumn
{
    std::string name; // "fragColour.z", "vTbn[1].x"
    bool bInteger = false;
};

struct SResults
{
    std::vector<SColumn> aColumns;
    std::vector<std::vector<float>> aaRows;
    std::vector<bool> abDiscarded;
    std::vector<bool> abUndecided; // the interpreter's rows GL leaves to the implementation
};

// The columns of a shader's outputs, in the order both runners fill them.
std::vector<SColumn> OutputColumns(const SShaderInterface& shaderInterface);

// Rows the interpreter marks undecided are left out and counted.
// Both sides compute in 32-bit float, but not the same way: Mesa's transcendentals
// are polynomial approximations, divisions and interpolation round differently, and
// a loop carries such differences along. 2^-10 (absolute below 1, relative above)
// absorbs that and stays under the 1/255 step of an 8-bit display, so any difference
// that shows on screen is caught. Integers compare exactly; NaN only matches NaN.
constexpr double k_dAbsoluteTolerance = 1.0 / 1024.0;
constexpr double k_dRelativeTolerance = 1.0 / 1024.0;

bool Agree(float fMesa, float fTxe, bool bInteger);

struct SComparison
{
    int iRows = 0;
    int iAgreeingRows = 0;
    int iUndecidedRows = 0; // left out: a cube map sampled on a face edge
    std::string report; // the first disagreements, with where and both values
};

SComparison Compare(const SResults& mesa, const SResults& txe, ZamCompiler::ETxeStage eStage);

} // namespace ZamDifferential
