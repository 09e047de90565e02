#pragma once

// The textures both sides sample: per sampler a small float texture (2D: 4x4 texels,
// bilinear, repeating; cube: one texel per face), with texels derived from the unit.
// Mesa gets them uploaded; the interpreter samples them here the way GL defines it,
// in float, so any coordinate compares, not only texel centres.

#include "ShaderInterface.h"
#include "TxeMachine.h"

#include <map>
#include <vector>

namespace ZamDifferential
{

constexpr int k_iTextureSize = 4;

class CReferenceTextures : public ZamCompilerTest::ITxeSampler
{
public:
    explicit CReferenceTextures(const std::vector<SSampler>& aSamplers);

    int Units() const { return static_cast<int>(m_aSamplers.size()); }
    ESamplerKind Kind(int iUnit) const { return m_aSamplers[static_cast<std::size_t>(iUnit)].eKind; }
    // RGBA floats of one face (cube) or the whole image (2D), rows bottom up.
    std::vector<float> Texels(int iUnit, int iFace) const;

    // Tells the interpreter's sampler registers apart by the program's bindings.
    void BindSlots(const ZamCompilerTest::CTxeMachine& machine);
    // Invocations (bit mask) that sampled a cube map on a face edge since the last call,
    // where which face wins is the implementation's choice.
    unsigned TakeUndecided();

    ZamCompilerTest::SLanes Sample(const ZamCompilerTest::STxeSample& sample) override;
    ZamCompilerTest::SLanes Size(int iSlot, int iLod) override;

private:
    ZamCompilerTest::SLanes Texel(int iUnit, int iFace, int x, int y) const;
    ZamCompilerTest::SLanes Bilinear(int iUnit, float s, float t, const int aiOffset[3]) const;
    int UnitOfSlot(int iSlot) const;

    std::vector<SSampler> m_aSamplers;
    std::map<int, int> m_mapSlotUnit;
    unsigned m_uiUndecided = 0;
};

} // namespace ZamDifferential
