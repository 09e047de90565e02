#include "InputValues.h"

#include "ReferenceTextures.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdint>

namespace ZamDifferential
{

namespace
{

using SMatrix4 = std::array<std::array<double, 4>, 4>; // [column][row]

// Multiples of 1/1024 are exact in float and short to print in a failure message.
float Quantised(double value)
{
    return static_cast<float>(std::round(value * 1024.0) / 1024.0);
}

std::string Lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

bool NameHas(const std::string& name, std::initializer_list<const char*> aWords)
{
    const std::string lower = Lower(name);
    return std::any_of(aWords.begin(), aWords.end(), [&lower](const char* pWord) { return lower.find(pWord) != std::string::npos; });
}

SMatrix4 Multiply(const SMatrix4& a, const SMatrix4& b)
{
    SMatrix4 result{};
    for (int c = 0; c < 4; ++c)
    {
        for (int r = 0; r < 4; ++r)
        {
            for (int k = 0; k < 4; ++k)
                result[c][r] += a[k][r] * b[c][k];
        }
    }
    return result;
}

// Rotation about a hashed axis, then a hashed scale per axis, then a translation.
SMatrix4 Affine(const std::string& name, int iSize)
{
    double axis[3] = {UnitHash(name + "#ax") - 0.5, UnitHash(name + "#ay") - 0.5, UnitHash(name + "#az") - 0.5};
    if (iSize == 2)
    {
        axis[0] = 0.0;
        axis[1] = 0.0;
        axis[2] = 1.0;
    }
    const double length = std::max(1e-3, std::sqrt(axis[0] * axis[0] + axis[1] * axis[1] + axis[2] * axis[2]));
    const double x = axis[0] / length, y = axis[1] / length, z = axis[2] / length;
    const double angle = 6.283185307179586 * UnitHash(name + "#angle");
    const double c = std::cos(angle), s = std::sin(angle), t = 1.0 - c;
    const double rotation[3][3] = {{t * x * x + c, t * x * y + s * z, t * x * z - s * y},
                                   {t * x * y - s * z, t * y * y + c, t * y * z + s * x},
                                   {t * x * z + s * y, t * y * z - s * x, t * z * z + c}};
    SMatrix4 matrix{};
    for (int column = 0; column < 3; ++column)
    {
        const double scale = 0.6 + 0.8 * UnitHash(name + "#s" + std::to_string(column));
        for (int row = 0; row < 3; ++row)
            matrix[column][row] = rotation[column][row] * scale;
        matrix[3][column] = 2.0 * UnitHash(name + "#t" + std::to_string(column)) - 1.0;
    }
    matrix[3][3] = 1.0;
    return matrix;
}

// A 60 degree perspective looking at the origin from four units away.
SMatrix4 Projection(const std::string& name)
{
    const double n = 0.5, f = 20.0, focal = 1.0 / std::tan(3.141592653589793 / 6.0);
    SMatrix4 perspective{};
    perspective[0][0] = focal;
    perspective[1][1] = focal;
    perspective[2][2] = (f + n) / (n - f);
    perspective[2][3] = -1.0;
    perspective[3][2] = 2.0 * f * n / (n - f);
    SMatrix4 view = Affine(name, 4);
    view[3][2] -= 4.0;
    return Multiply(perspective, view);
}

std::vector<float> MatrixValues(const SLeaf& leaf)
{
    std::vector<float> aValues;
    if (leaf.iColumns != leaf.iRows || leaf.eScalar != Scalar_Float)
    {
        for (int i = 0; i < leaf.Components(); ++i)
            aValues.push_back(Quantised(2.0 * UnitHash(leaf.glName + "#" + std::to_string(i)) - 1.0));
        return aValues;
    }
    const bool bProjection = leaf.iColumns == 4 && NameHas(leaf.glName, {"proj", "mvp"});
    const SMatrix4 matrix = bProjection ? Projection(leaf.glName) : Affine(leaf.glName, leaf.iColumns);
    for (int c = 0; c < leaf.iColumns; ++c)
    {
        for (int r = 0; r < leaf.iRows; ++r)
            aValues.push_back(static_cast<float>(matrix[c][r]));
    }
    return aValues;
}

bool LooksLikeIndex(const std::string& name)
{
    return NameHas(name, {"joint", "bone", "index", "indices"});
}

} // namespace

double UnitHash(const std::string& key)
{
    std::uint32_t uiHash = 2166136261u;
    for (unsigned char c : key)
    {
        uiHash ^= c;
        uiHash *= 16777619u;
    }
    // FNV's low bits mix poorly for short keys: fold the high half in.
    uiHash ^= uiHash >> 15;
    uiHash *= 0x2c1b3c6dU;
    uiHash ^= uiHash >> 12;
    return static_cast<double>(uiHash) / 4294967296.0;
}

std::vector<float> UniformValues(const SLeaf& leaf)
{
    if (leaf.iColumns > 1)
        return MatrixValues(leaf);
    std::vector<float> aValues;
    // What applications put in these: the viewport's size and the texture's texel.
    if (leaf.eScalar == Scalar_Float && NameHas(leaf.glName, {"resolution", "texelsize"}))
    {
        const bool bTexel = NameHas(leaf.glName, {"texelsize"});
        for (int i = 0; i < leaf.Components(); ++i)
            aValues.push_back(i >= 2 ? 1.0f : bTexel ? 1.0f / k_iTextureSize : static_cast<float>(k_iGridSize));
        return aValues;
    }
    for (int i = 0; i < leaf.Components(); ++i)
    {
        const double u = UnitHash(leaf.glName + "#" + std::to_string(i));
        switch (leaf.eScalar)
        {
        case Scalar_Float: aValues.push_back(Quantised(0.1 + 0.9 * u)); break;
        case Scalar_Int:
        case Scalar_Uint: aValues.push_back(static_cast<float>(1 + static_cast<int>(u * 4.0))); break;
        case Scalar_Bool: aValues.push_back(u < 0.5 ? 0.0f : 1.0f); break;
        }
    }
    return aValues;
}

std::vector<float> AttributeValues(const SLeaf& leaf, int iVertex)
{
    std::vector<float> aValues;
    const bool bIndex = LooksLikeIndex(leaf.glName);
    const bool bWeight = NameHas(leaf.glName, {"weight"});
    for (int i = 0; i < leaf.Components(); ++i)
    {
        const double u = UnitHash(leaf.glName + "@" + std::to_string(iVertex) + "#" + std::to_string(i));
        if (bIndex || leaf.eScalar != Scalar_Float)
            aValues.push_back(static_cast<float>(static_cast<int>(u * (bIndex ? 4.0 : 8.0))));
        else
            aValues.push_back(Quantised(bWeight ? u : 2.0 * u - 1.0));
    }
    return aValues;
}

std::vector<SLinear> VaryingValues(const SLeaf& leaf, bool bFlat)
{
    std::vector<SLinear> aValues;
    for (int i = 0; i < leaf.Components(); ++i)
    {
        const std::string key = leaf.glName + "#" + std::to_string(i);
        SLinear value;
        if (leaf.eScalar != Scalar_Float)
        {
            value.a = static_cast<float>(static_cast<int>(UnitHash(key) * 4.0));
        }
        else
        {
            value.a = Quantised(1.5 * UnitHash(key) - 0.5);
            if (!bFlat)
            {
                value.bx = Quantised(UnitHash(key + "x") - 0.5);
                value.by = Quantised(UnitHash(key + "y") - 0.5);
            }
        }
        aValues.push_back(value);
    }
    return aValues;
}

std::vector<ZamCompilerTest::SLanes> Slots(const SLeaf& leaf, const std::vector<float>& aValues)
{
    std::vector<ZamCompilerTest::SLanes> aSlots(static_cast<std::size_t>(leaf.iColumns), ZamCompilerTest::SLanes{0, 0, 0, 0});
    for (int c = 0; c < leaf.iColumns; ++c)
    {
        for (int r = 0; r < leaf.iRows && r < 4; ++r)
        {
            const std::size_t uiIndex = static_cast<std::size_t>(c * leaf.iRows + r);
            if (uiIndex < aValues.size())
                aSlots[static_cast<std::size_t>(c)][static_cast<std::size_t>(r)] = aValues[uiIndex];
        }
    }
    return aSlots;
}

} // namespace ZamDifferential
