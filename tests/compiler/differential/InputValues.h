#pragma once

// The fixed inputs both sides of the comparison get. Every value is derived from
// the name GL knows it by, so a shader sees the same numbers on every run and in
// both implementations, and no table has to be kept in step with the corpus.

#include "ShaderInterface.h"
#include "TxeMachine.h"

#include <string>
#include <vector>

namespace ZamDifferential
{

// Fragment shaders are drawn into a square of this many pixels a side (even: whole quads).
constexpr int k_iGridSize = 16;
// Vertex shaders run this many vertices (a multiple of four: whole machine batches).
constexpr int k_iVertexCount = 16;

// A deterministic number in [0, 1) for a key.
double UnitHash(const std::string& key);

// A uniform's values, column by column (Components() of them). Square matrices are
// rotations with scales (plus a translation, and a perspective for projection-like
// names), so they are invertible and behave like the matrices of real applications.
// "...Resolution" is the grid's size and "...TexelSize" a texel of the test textures.
std::vector<float> UniformValues(const SLeaf& leaf);

// A vertex attribute's values for one vertex. Names that look like indices
// (joints, bones, indices) get small whole numbers, so they can index arrays.
std::vector<float> AttributeValues(const SLeaf& leaf, int iVertex);

// A fragment input component is a + bx * x + by * y over the quad (x, y in -1..1), which
// linear interpolation reproduces exactly; flat inputs are constants.
struct SLinear
{
    float a = 0.0f;
    float bx = 0.0f;
    float by = 0.0f;
    float At(double x, double y) const { return static_cast<float>(a + bx * x + by * y); }
};
std::vector<SLinear> VaryingValues(const SLeaf& leaf, bool bFlat);

// Values of a leaf laid out as the TXE program keeps them: a slot per column.
std::vector<ZamCompilerTest::SLanes> Slots(const SLeaf& leaf, const std::vector<float>& aValues);

} // namespace ZamDifferential
