#include "ZcLowerBuiltins.h"

#include "ZcLowerTree.h"

#include <algorithm>
#include <unordered_map>

namespace ZamCompiler
{

using namespace glslang;

namespace
{

// Names of the operators no family handles, so that a refusal names what the user wrote.
const SBuiltinEntry s_aRefused[] = {
    {EOpPackHalf2x16, "packHalf2x16", nullptr},
    {EOpUnpackHalf2x16, "unpackHalf2x16", nullptr},
    {EOpInterpolateAtCentroid, "interpolateAtCentroid", nullptr},
    {EOpInterpolateAtSample, "interpolateAtSample", nullptr},
    {EOpInterpolateAtOffset, "interpolateAtOffset", nullptr},
    {EOpBarrier, "barrier", nullptr},
    {EOpMemoryBarrier, "memoryBarrier", nullptr},
    {EOpMemoryBarrierAtomicCounter, "memoryBarrierAtomicCounter", nullptr},
    {EOpMemoryBarrierBuffer, "memoryBarrierBuffer", nullptr},
    {EOpMemoryBarrierImage, "memoryBarrierImage", nullptr},
    {EOpMemoryBarrierShared, "memoryBarrierShared", nullptr},
    {EOpGroupMemoryBarrier, "groupMemoryBarrier", nullptr},
    {EOpAtomicAdd, "atomicAdd", nullptr},
    {EOpAtomicMin, "atomicMin", nullptr},
    {EOpAtomicMax, "atomicMax", nullptr},
    {EOpAtomicAnd, "atomicAnd", nullptr},
    {EOpAtomicOr, "atomicOr", nullptr},
    {EOpAtomicXor, "atomicXor", nullptr},
    {EOpAtomicExchange, "atomicExchange", nullptr},
    {EOpAtomicCompSwap, "atomicCompSwap", nullptr},
    {EOpAtomicCounterIncrement, "atomicCounterIncrement", nullptr},
    {EOpAtomicCounterDecrement, "atomicCounterDecrement", nullptr},
    {EOpAtomicCounter, "atomicCounter", nullptr},
    {EOpImageQuerySize, "imageSize", nullptr},
    {EOpImageQuerySamples, "imageSamples", nullptr},
    {EOpImageLoad, "imageLoad", nullptr},
    {EOpImageStore, "imageStore", nullptr},
    {EOpImageAtomicAdd, "imageAtomicAdd", nullptr},
    {EOpImageAtomicMin, "imageAtomicMin", nullptr},
    {EOpImageAtomicMax, "imageAtomicMax", nullptr},
    {EOpImageAtomicAnd, "imageAtomicAnd", nullptr},
    {EOpImageAtomicOr, "imageAtomicOr", nullptr},
    {EOpImageAtomicXor, "imageAtomicXor", nullptr},
    {EOpImageAtomicExchange, "imageAtomicExchange", nullptr},
    {EOpImageAtomicCompSwap, "imageAtomicCompSwap", nullptr},
    {EOpTextureQueryLod, "textureQueryLod", nullptr},
    {EOpTextureQueryLevels, "textureQueryLevels", nullptr},
    {EOpTextureQuerySamples, "textureSamples", nullptr},
    {EOpTextureGather, "textureGather", nullptr},
    {EOpTextureGatherOffset, "textureGatherOffset", nullptr},
    {EOpTextureGatherOffsets, "textureGatherOffsets", nullptr},
    {EOpSubpassLoad, "subpassLoad", nullptr},
    {EOpSubpassLoadMS, "subpassLoad", nullptr},
    {EOpFragmentMaskFetch, "fragmentMaskFetchAMD", nullptr},
    {EOpFragmentFetch, "fragmentFetchAMD", nullptr},
    {EOpIsHelperInvocation, "helperInvocationEXT", nullptr},
    {EOpBeginInvocationInterlock, "beginInvocationInterlockARB", nullptr},
    {EOpEndInvocationInterlock, "endInvocationInterlockARB", nullptr},
    {EOpArrayLength, "length", nullptr},
    {EOpDebugPrintf, "debugPrintfEXT", nullptr},
    {EOpReadClockSubgroupKHR, "clockARB", nullptr},
    {EOpReadClockDeviceKHR, "clockRealtimeEXT", nullptr},
};

using CBuiltinTable = std::unordered_map<int, SBuiltinEntry>;

const CBuiltinTable& Table()
{
    static const CBuiltinTable s_table = [] {
        std::vector<SBuiltinEntry> aEntries;
        AddMathBuiltins(aEntries);
        AddGeometryBuiltins(aEntries);
        AddIntegerBuiltins(aEntries);
        AddTextureBuiltins(aEntries);
        aEntries.insert(aEntries.end(), std::begin(s_aRefused), std::end(s_aRefused));
        CBuiltinTable table;
        for (const SBuiltinEntry& entry : aEntries)
            table.emplace(static_cast<int>(entry.eOp), entry);
        return table;
    }();
    return s_table;
}

bool IsTextureOperator(TOperator eOp)
{
    return eOp > EOpTextureGuardBegin && eOp < EOpTextureGuardEnd;
}

} // namespace

int SBuiltinCall::Lanes() const
{
    return LanesOf(type);
}

STxeOperand SBuiltinCall::Raw(std::size_t i) const
{
    return i < aArgs.size() && !aArgs[i].aSlots.empty() ? aArgs[i].aSlots[0] : builder.Immediate(0.0f);
}

STxeOperand SBuiltinCall::Arg(std::size_t i) const
{
    const int iWidth = i < aNodes.size() ? LanesOf(aNodes[i]->getType()) : 1;
    return Broadcast(Raw(i), std::max(iWidth, Lanes()));
}

STxeOperand SBuiltinCall::Compute(ETxeOp eOp, std::initializer_list<STxeOperand> aSrc, int iLanes) const
{
    return builder.Compute(eOp, aSrc, iLanes, iLine);
}

bool SBuiltinCall::Fail(const std::string& text) const
{
    builder.Fail(iLine, text);
    return false;
}

std::string BuiltinName(TOperator eOp)
{
    const CBuiltinTable& table = Table();
    const auto it = table.find(static_cast<int>(eOp));
    return it == table.end() ? std::string() : std::string(it->second.pName);
}

bool LowerBuiltin(const SBuiltinCall& call)
{
    call.value.aSlots.clear();
    const CBuiltinTable& table = Table();
    const auto it = table.find(static_cast<int>(call.eOp));
    if (it == table.end() || !it->second.pLower)
    {
        const bool bTexture = IsTextureOperator(call.eOp) ||
                              (!call.aNodes.empty() && call.aNodes[0]->getBasicType() == EbtSampler);
        return call.Fail(bTexture ? "this texture function is not supported by the TXE code generator"
                                  : "this built-in function is not supported by the TXE code generator");
    }
    // Integer arguments make integer instructions; a family that mixes types says so itself.
    const CTypeScope scope(call.builder, call.aNodes.empty() ? Type_Float : TxeTypeOf(call.aNodes[0]->getBasicType()));
    return it->second.pLower(call) && !call.builder.Failed();
}

} // namespace ZamCompiler
