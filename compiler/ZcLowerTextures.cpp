// Texture sampling and size queries.

#include "ZcLowerBuiltins.h"

#include "ZcLowerTree.h"

namespace ZamCompiler
{

using namespace glslang;

namespace
{

// The argument's first slot, or nothing when the call has no such argument.
STxeOperand Optional(const SBuiltinCall& call, std::size_t i)
{
    return call.aArgs.size() > i && !call.aArgs[i].aSlots.empty() ? call.aArgs[i].aSlots[0] : STxeOperand();
}

// Where a texture function's optional arguments sit; -1 when it has none.
struct STextureForm
{
    ETxeOp eOp;
    bool bProjective = false;
    int iOffset = -1; // the constant texel offset
    int iBias = -1;   // an optional trailing bias
};

// The sampler's coordinate lanes: its dimensions, and the reference value of a shadow sampler.
int CoordinateLanes(const SBuiltinCall& call)
{
    const TSampler& sampler = call.aNodes[0]->getType().getSampler();
    const int iDimensions = sampler.dim == Esd1D ? 1 : sampler.dim == Esd3D || sampler.dim == EsdCube ? 3 : 2;
    return iDimensions + (sampler.isArrayed() ? 1 : 0) + (sampler.isShadow() ? 1 : 0);
}

// P divided by its last lane, for the projective forms txp cannot take (bias, lod,
// gradients): the sample then reads a computed coordinate.
STxeOperand Projected(const SBuiltinCall& call)
{
    const CTypeScope scope(call.builder, Type_Float);
    const STxeOperand p = call.Raw(1);
    const int iLanes = std::min<int>(CoordinateLanes(call), p.uiCount - 1);
    const STxeOperand q = call.Compute(Op_Rcp, {Lane(p, p.uiCount - 1)}, 1);
    STxeOperand coordinate = p;
    coordinate.uiCount = static_cast<std::uint8_t>(iLanes);
    return call.Compute(Op_Mul, {coordinate, Broadcast(q, iLanes)}, iLanes);
}

// The constant texel offset of argument i, in the instruction's four-bit fields.
bool ReadOffset(const SBuiltinCall& call, int i, std::int8_t aiOffset[3])
{
    const TIntermConstantUnion* pConstant =
        i < static_cast<int>(call.aNodes.size()) ? call.aNodes[static_cast<std::size_t>(i)]->getAsConstantUnion() : nullptr;
    if (!pConstant)
    {
        call.builder.Refuse(call.iLine, BuiltinName(call.eOp), "a texel offset that is not a constant expression");
        return false;
    }
    const TConstUnionArray& aValues = pConstant->getConstArray();
    for (int c = 0; c < aValues.size() && c < 3; ++c)
    {
        const int iValue = aValues[c].getIConst();
        if (iValue < k_iMinTexelOffset || iValue > k_iMaxTexelOffset)
        {
            call.builder.Refuse(call.iLine, BuiltinName(call.eOp), "a texel offset outside -8..7");
            return false;
        }
        aiOffset[c] = static_cast<std::int8_t>(iValue);
    }
    return true;
}

// One sample instruction; a sample whose coordinate is an input as it arrived can be prefetched.
bool Sample(const SBuiltinCall& call, const STextureForm& form, std::initializer_list<STxeOperand> aExtra)
{
    if (call.aArgs.size() < 2 || call.aArgs[0].aSlots.empty() || call.aArgs[1].aSlots.empty() ||
        call.aArgs[0].aSlots[0].eFile != File_Sampler)
    {
        call.builder.Refuse(call.iLine, BuiltinName(call.eOp), "this use of the function");
        return false;
    }
    std::int8_t aiOffset[3] = {0, 0, 0};
    if (form.iOffset >= 0 && !ReadOffset(call, form.iOffset, aiOffset))
        return false;
    const bool bBias = form.iBias >= 0 && static_cast<int>(call.aArgs.size()) > form.iBias;
    ETxeOp eOp = bBias ? Op_Txb : form.eOp;
    STxeOperand coordinate = call.Raw(1);
    if (form.bProjective && eOp == Op_Tex)
        eOp = Op_Txp;
    else if (form.bProjective)
        coordinate = Projected(call);
    STxeOperand aSrc[4] = {coordinate, call.Raw(0)};
    std::size_t uiSources = 2;
    for (const STxeOperand& extra : aExtra)
    {
        if (uiSources < 4)
            aSrc[uiSources++] = extra;
    }
    if (bBias && uiSources < 4)
        aSrc[uiSources] = Optional(call, static_cast<std::size_t>(form.iBias));

    const bool bNonDependent =
        coordinate.eFile == File_Input && coordinate.iRelative < 0 && !coordinate.bNegate && !coordinate.bAbs;
    const STxeOperand dst = call.builder.NewTemp(LanesOf(call.type));
    const int iInstruction = call.builder.Emit(eOp, dst, {aSrc[0], aSrc[1], aSrc[2], aSrc[3]}, call.iLine);
    call.builder.SetTexelOffset(iInstruction, aiOffset);
    if (iInstruction >= 0 && bNonDependent)
    {
        call.builder.MarkNonDependent(iInstruction);
        call.builder.CountNonDependentRead();
    }
    call.Push(dst);
    return true;
}

// texture(s, P[, bias]), textureOffset(s, P, offset[, bias]) and their projective forms.
bool Texture(const SBuiltinCall& call)
{
    return Sample(call, {Op_Tex, false, -1, 2}, {});
}

bool TextureOffset(const SBuiltinCall& call)
{
    return Sample(call, {Op_Tex, false, 2, 3}, {});
}

bool TextureProj(const SBuiltinCall& call)
{
    return Sample(call, {Op_Tex, true, -1, 2}, {});
}

bool TextureProjOffset(const SBuiltinCall& call)
{
    return Sample(call, {Op_Tex, true, 2, 3}, {});
}

// textureLod(s, P, lod[, offset]), textureProjLod and texelFetch(s, P, lod[, offset]).
bool TextureLod(const SBuiltinCall& call)
{
    const bool bProjective = call.eOp == EOpTextureProjLod || call.eOp == EOpTextureProjLodOffset;
    const bool bOffset = call.eOp == EOpTextureLodOffset || call.eOp == EOpTextureProjLodOffset;
    return Sample(call, {Op_Txl, bProjective, bOffset ? 3 : -1}, {Optional(call, 2)});
}

bool TexelFetch(const SBuiltinCall& call)
{
    return Sample(call, {Op_Txf, false, call.eOp == EOpTextureFetchOffset ? 3 : -1}, {Optional(call, 2)});
}

// textureGrad(s, P, dPdx, dPdy[, offset]) and textureProjGrad.
bool TextureGrad(const SBuiltinCall& call)
{
    const bool bProjective = call.eOp == EOpTextureProjGrad || call.eOp == EOpTextureProjGradOffset;
    const bool bOffset = call.eOp == EOpTextureGradOffset || call.eOp == EOpTextureProjGradOffset;
    return Sample(call, {Op_Txg, bProjective, bOffset ? 4 : -1}, {Optional(call, 2), Optional(call, 3)});
}

bool TextureSize(const SBuiltinCall& call)
{
    if (call.aArgs.size() < 2 || call.aArgs[0].aSlots.empty() || call.aArgs[0].aSlots[0].eFile != File_Sampler)
    {
        call.builder.Refuse(call.iLine, BuiltinName(call.eOp), "this use of the function");
        return false;
    }
    call.Push(call.Compute(Op_Txs, {call.Raw(1), call.Raw(0)}, LanesOf(call.type)));
    return true;
}

} // namespace

void AddTextureBuiltins(std::vector<SBuiltinEntry>& aEntries)
{
    const SBuiltinEntry aTextures[] = {
        {EOpTexture, "texture", Texture},
        {EOpTextureOffset, "textureOffset", TextureOffset},
        {EOpTextureProj, "textureProj", TextureProj},
        {EOpTextureProjOffset, "textureProjOffset", TextureProjOffset},
        {EOpTextureLod, "textureLod", TextureLod},
        {EOpTextureLodOffset, "textureLodOffset", TextureLod},
        {EOpTextureProjLod, "textureProjLod", TextureLod},
        {EOpTextureProjLodOffset, "textureProjLodOffset", TextureLod},
        {EOpTextureGrad, "textureGrad", TextureGrad},
        {EOpTextureGradOffset, "textureGradOffset", TextureGrad},
        {EOpTextureProjGrad, "textureProjGrad", TextureGrad},
        {EOpTextureProjGradOffset, "textureProjGradOffset", TextureGrad},
        {EOpTextureFetch, "texelFetch", TexelFetch},
        {EOpTextureFetchOffset, "texelFetchOffset", TexelFetch},
        {EOpTextureQuerySize, "textureSize", TextureSize},
    };
    aEntries.insert(aEntries.end(), std::begin(aTextures), std::end(aTextures));
}

} // namespace ZamCompiler
