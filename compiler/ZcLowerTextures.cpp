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

bool HasSamplerAndCoordinate(const SBuiltinCall& call)
{
    if (call.aArgs.size() < 2 || call.aArgs[0].aSlots.empty() || call.aArgs[1].aSlots.empty() ||
        call.aArgs[0].aSlots[0].eFile != File_Sampler)
    {
        call.builder.Refuse(call.iLine, BuiltinName(call.eOp), "this use of the function");
        return false;
    }
    return true;
}

// A sample whose coordinate is an input as it arrived can be prefetched.
bool Sample(const SBuiltinCall& call, ETxeOp eOp, std::initializer_list<STxeOperand> aSrc)
{
    const STxeOperand& coordinate = *aSrc.begin();
    const bool bNonDependent =
        coordinate.eFile == File_Input && coordinate.iRelative < 0 && !coordinate.bNegate && !coordinate.bAbs;
    const STxeOperand dst = call.builder.NewTemp(LanesOf(call.type));
    const int iInstruction = call.builder.Emit(eOp, dst, aSrc, call.iLine);
    if (iInstruction >= 0 && bNonDependent)
    {
        call.builder.MarkNonDependent(iInstruction);
        call.builder.CountNonDependentRead();
    }
    call.Push(dst);
    return true;
}

// texture(s, P[, bias]) and textureOffset(s, P, offset[, bias]); offsets ride in the instruction.
bool Texture(const SBuiltinCall& call)
{
    if (!HasSamplerAndCoordinate(call))
        return false;
    const std::size_t uiBias = call.eOp == EOpTexture ? 2 : 3;
    if (call.aArgs.size() > uiBias)
        return Sample(call, Op_Txb, {call.Raw(1), call.Raw(0), Optional(call, uiBias)});
    return Sample(call, Op_Tex, {call.Raw(1), call.Raw(0)});
}

bool TextureProj(const SBuiltinCall& call)
{
    return HasSamplerAndCoordinate(call) && Sample(call, Op_Txp, {call.Raw(1), call.Raw(0)});
}

bool TextureLod(const SBuiltinCall& call)
{
    return HasSamplerAndCoordinate(call) && Sample(call, Op_Txl, {call.Raw(1), call.Raw(0), Optional(call, 2)});
}

bool TextureGrad(const SBuiltinCall& call)
{
    return HasSamplerAndCoordinate(call) &&
           Sample(call, Op_Txg, {call.Raw(1), call.Raw(0), Optional(call, 2), Optional(call, 3)});
}

bool TexelFetch(const SBuiltinCall& call)
{
    return HasSamplerAndCoordinate(call) && Sample(call, Op_Txf, {call.Raw(1), call.Raw(0), Optional(call, 2)});
}

bool TextureSize(const SBuiltinCall& call)
{
    if (!HasSamplerAndCoordinate(call))
        return false;
    call.Push(call.Compute(Op_Txs, {call.Raw(1), call.Raw(0)}, LanesOf(call.type)));
    return true;
}

} // namespace

void AddTextureBuiltins(std::vector<SBuiltinEntry>& aEntries)
{
    const SBuiltinEntry aTextures[] = {
        {EOpTexture, "texture", Texture},
        {EOpTextureOffset, "textureOffset", Texture},
        {EOpTextureProj, "textureProj", TextureProj},
        {EOpTextureProjOffset, "textureProjOffset", TextureProj},
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
