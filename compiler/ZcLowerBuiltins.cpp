#include "ZcLowerBuiltins.h"

#include "ZcLowerTree.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>

namespace ZamCompiler
{

using namespace glslang;

namespace
{

// Names of the operators no family handles, so that a refusal names what the user wrote.
const SBuiltinEntry s_aRefused[] = {
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

// The subgroup operators follow glslang's order from EOpSubgroupBarrier; each is "subgroup" + suffix.
const char* const s_apSubgroupSuffixes[] = {
    "Barrier", "MemoryBarrier", "MemoryBarrierBuffer", "MemoryBarrierImage", "MemoryBarrierShared", "Elect", "All",
    "Any", "AllEqual", "Broadcast", "BroadcastFirst", "Ballot", "InverseBallot", "BallotBitExtract", "BallotBitCount",
    "BallotInclusiveBitCount", "BallotExclusiveBitCount", "BallotFindLSB", "BallotFindMSB", "Shuffle", "ShuffleXor",
    "ShuffleUp", "ShuffleDown", "Add", "Mul", "Min", "Max", "And", "Or", "Xor", "InclusiveAdd", "InclusiveMul",
    "InclusiveMin", "InclusiveMax", "InclusiveAnd", "InclusiveOr", "InclusiveXor", "ExclusiveAdd", "ExclusiveMul",
    "ExclusiveMin", "ExclusiveMax", "ExclusiveAnd", "ExclusiveOr", "ExclusiveXor", "ClusteredAdd", "ClusteredMul",
    "ClusteredMin", "ClusteredMax", "ClusteredAnd", "ClusteredOr", "ClusteredXor", "QuadBroadcast",
    "QuadSwapHorizontal", "QuadSwapVertical", "QuadSwapDiagonal", "PartitionNV", "PartitionedAddNV",
    "PartitionedMulNV", "PartitionedMinNV", "PartitionedMaxNV", "PartitionedAndNV", "PartitionedOrNV",
    "PartitionedXorNV", "PartitionedInclusiveAddNV", "PartitionedInclusiveMulNV", "PartitionedInclusiveMinNV",
    "PartitionedInclusiveMaxNV", "PartitionedInclusiveAndNV", "PartitionedInclusiveOrNV", "PartitionedInclusiveXorNV",
    "PartitionedExclusiveAddNV", "PartitionedExclusiveMulNV", "PartitionedExclusiveMinNV", "PartitionedExclusiveMaxNV",
    "PartitionedExclusiveAndNV", "PartitionedExclusiveOrNV", "PartitionedExclusiveXorNV",
};
static_assert(std::size(s_apSubgroupSuffixes) == EOpSubgroupGuardStop - EOpSubgroupBarrier,
              "one suffix per subgroup operator");

// The subgroup functions are all refused; their names are made from the table above.
void AddSubgroupNames(std::vector<SBuiltinEntry>& aEntries, std::vector<std::string>& aNames)
{
    aNames.reserve(std::size(s_apSubgroupSuffixes));
    for (std::size_t i = 0; i < std::size(s_apSubgroupSuffixes); ++i)
        aNames.push_back(std::string("subgroup") + s_apSubgroupSuffixes[i]);
    for (std::size_t i = 0; i < aNames.size(); ++i)
        aEntries.push_back({static_cast<TOperator>(EOpSubgroupBarrier + static_cast<int>(i)), aNames[i].c_str(), nullptr});
}

using CBuiltinTable = std::unordered_map<int, SBuiltinEntry>;

const CBuiltinTable& Table()
{
    // The subgroup names live as long as the table that points at them.
    static std::vector<std::string> s_aSubgroupNames;
    static const CBuiltinTable s_table = [] {
        std::vector<SBuiltinEntry> aEntries;
        AddSubgroupNames(aEntries, s_aSubgroupNames);
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
        const std::string name = it == table.end() ? std::string() : std::string(it->second.pName);
        if (call.eOp == EOpArrayLength)
            call.builder.Refuse(call.iLine, name, "the length of a runtime-sized array");
        else
            call.builder.Refuse(call.iLine, name.empty() ? "built-in function" : name, "this built-in function");
        return false;
    }
    // Integer arguments make integer instructions; a family that mixes types says so itself.
    const CTypeScope scope(call.builder, call.aNodes.empty() ? Type_Float : TxeTypeOf(call.aNodes[0]->getBasicType()));
    return it->second.pLower(call) && !call.builder.Failed();
}

} // namespace ZamCompiler
