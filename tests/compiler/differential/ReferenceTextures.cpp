#include "ReferenceTextures.h"

#include "InputValues.h"

#include <algorithm>
#include <cmath>

namespace ZamDifferential
{

using ZamCompilerTest::SLanes;

namespace
{

int Wrap(int i)
{
    return ((i % k_iTextureSize) + k_iTextureSize) % k_iTextureSize;
}

// The texel column or row a floored coordinate falls in, for any finite coordinate.
int WrapFloor(float f)
{
    return Wrap(static_cast<int>(std::fmod(static_cast<double>(std::floor(f)), static_cast<double>(k_iTextureSize))));
}

// Two axes this close in magnitude put the direction on a face edge: a last-bit
// difference in computing it picks the other face.
constexpr double k_dFaceEdge = 1e-4;

bool OnFaceEdge(const SLanes& direction)
{
    double adMagnitude[3] = {std::fabs(direction[0]), std::fabs(direction[1]), std::fabs(direction[2])};
    std::sort(adMagnitude, adMagnitude + 3);
    return adMagnitude[1] >= adMagnitude[2] * (1.0 - k_dFaceEdge);
}

// The face a direction selects, GL's order: +x, -x, +y, -y, +z, -z.
int CubeFace(const SLanes& direction)
{
    const double ax = std::fabs(direction[0]), ay = std::fabs(direction[1]), az = std::fabs(direction[2]);
    if (ax >= ay && ax >= az)
        return direction[0] >= 0.0f ? 0 : 1;
    if (ay >= az)
        return direction[1] >= 0.0f ? 2 : 3;
    return direction[2] >= 0.0f ? 4 : 5;
}

} // namespace

CReferenceTextures::CReferenceTextures(const std::vector<SSampler>& aSamplers) : m_aSamplers(aSamplers) {}

SLanes CReferenceTextures::Texel(int iUnit, int iFace, int x, int y) const
{
    SLanes texel;
    for (int c = 0; c < 4; ++c)
    {
        // Multiples of 1/256 in 0..1, like the colours of a real image.
        const double u = UnitHash("texture" + std::to_string(iUnit) + "/" + std::to_string(iFace) + "/" +
                                  std::to_string(x) + "," + std::to_string(y) + "#" + std::to_string(c));
        texel[static_cast<std::size_t>(c)] = static_cast<float>(std::floor(u * 256.0) / 256.0);
    }
    return texel;
}

std::vector<float> CReferenceTextures::Texels(int iUnit, int iFace) const
{
    const int iSize = Kind(iUnit) == Sampler_2D ? k_iTextureSize : 1;
    std::vector<float> aTexels;
    for (int y = 0; y < iSize; ++y)
    {
        for (int x = 0; x < iSize; ++x)
        {
            for (double dChannel : Texel(iUnit, iFace, x, y))
                aTexels.push_back(static_cast<float>(dChannel));
        }
    }
    return aTexels;
}

void CReferenceTextures::BindSlots(const ZamCompilerTest::CTxeMachine& machine)
{
    m_mapSlotUnit.clear();
    for (std::size_t i = 0; i < m_aSamplers.size(); ++i)
    {
        if (const ZamCompiler::STxeBinding* pBinding = machine.Binding(m_aSamplers[i].name))
            m_mapSlotUnit[pBinding->iBase] = static_cast<int>(i);
    }
}

unsigned CReferenceTextures::TakeUndecided()
{
    const unsigned uiUndecided = m_uiUndecided;
    m_uiUndecided = 0;
    return uiUndecided;
}

int CReferenceTextures::UnitOfSlot(int iSlot) const
{
    auto it = m_mapSlotUnit.find(iSlot);
    return it == m_mapSlotUnit.end() ? -1 : it->second;
}

// GL's linear filter on level 0 with REPEAT: the four texels around s * size + offset - 0.5.
SLanes CReferenceTextures::Bilinear(int iUnit, float s, float t, const int aiOffset[3]) const
{
    const float u = s * static_cast<float>(k_iTextureSize) + static_cast<float>(aiOffset[0]) - 0.5f;
    const float v = t * static_cast<float>(k_iTextureSize) + static_cast<float>(aiOffset[1]) - 0.5f;
    if (!std::isfinite(u) || !std::isfinite(v))
        return {0, 0, 0, 0};
    const float fx = u - std::floor(u), fy = v - std::floor(v);
    const int x0 = WrapFloor(u), y0 = WrapFloor(v);
    const int x1 = Wrap(x0 + 1), y1 = Wrap(y0 + 1);
    const SLanes a = Texel(iUnit, 0, x0, y0), b = Texel(iUnit, 0, x1, y0);
    const SLanes c = Texel(iUnit, 0, x0, y1), d = Texel(iUnit, 0, x1, y1);
    SLanes result;
    for (std::size_t i = 0; i < 4; ++i)
    {
        const float fa = static_cast<float>(a[i]), fb = static_cast<float>(b[i]);
        const float fc = static_cast<float>(c[i]), fd = static_cast<float>(d[i]);
        const float bottom = fa + (fb - fa) * fx;
        const float top = fc + (fd - fc) * fx;
        result[i] = bottom + (top - bottom) * fy;
    }
    return result;
}

SLanes CReferenceTextures::Sample(const ZamCompilerTest::STxeSample& sample)
{
    const int iUnit = UnitOfSlot(sample.iUnit);
    if (iUnit < 0)
        return {0, 0, 0, 0};
    if (Kind(iUnit) == Sampler_Cube)
    {
        if (OnFaceEdge(sample.coordinate))
            m_uiUndecided |= 1u << (sample.iInvocation & 31);
        return Texel(iUnit, CubeFace(sample.coordinate), 0, 0);
    }
    if (sample.eOp == ZamCompiler::Op_Txf)
    {
        const double x = sample.coordinate[0] + sample.aiTexelOffset[0];
        const double y = sample.coordinate[1] + sample.aiTexelOffset[1];
        if (x < 0.0 || y < 0.0 || x >= k_iTextureSize || y >= k_iTextureSize || sample.extra[0] != 0.0)
            return {0, 0, 0, 0};
        return Texel(iUnit, 0, static_cast<int>(x), static_cast<int>(y));
    }
    // One level with the same filter either way: bias, lod and gradients change nothing.
    return Bilinear(iUnit, static_cast<float>(sample.coordinate[0]), static_cast<float>(sample.coordinate[1]),
                    sample.aiTexelOffset);
}

SLanes CReferenceTextures::Size(int iSlot, int iLod)
{
    const int iUnit = UnitOfSlot(iSlot);
    if (iUnit < 0 || iLod != 0)
        return {0, 0, 0, 0};
    const float fSize = Kind(iUnit) == Sampler_2D ? static_cast<float>(k_iTextureSize) : 1.0f;
    return {fSize, fSize, 0, 0};
}

} // namespace ZamDifferential
