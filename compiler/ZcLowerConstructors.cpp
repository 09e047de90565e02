#include "ZcLowerOperators.h"

#include "ZcLowerTree.h"

#include <algorithm>

namespace ZamCompiler
{

using namespace glslang;

namespace
{

// Where one lane of the result comes from: a lane of an operand, or a literal.
struct SLaneSource
{
    STxeOperand op;
    int iLane = -1; // -1: the literal fLiteral
    float fLiteral = 0.0f;
};

using CColumnSources = std::vector<SLaneSource>;

// Shapes that need no instruction: a splat, or lanes taken from one operand.
bool WithoutInstruction(const std::vector<SValue>& aArgs, const std::vector<std::uint8_t>& aResultLanes, SValue& value)
{
    if (aArgs.size() != 1 || aArgs[0].aSlots.size() != 1 || aResultLanes.size() != 1)
        return false;
    const STxeOperand& source = aArgs[0].aSlots[0];
    if (source.uiCount == 1)
    {
        value.aSlots.push_back(Broadcast(source, aResultLanes[0]));
        return true;
    }
    if (source.uiCount < aResultLanes[0])
        return false;
    STxeOperand narrowed = source;
    narrowed.uiCount = aResultLanes[0];
    value.aSlots.push_back(narrowed);
    return true;
}

// mat(s) puts s on the diagonal; mat(m) copies the overlap and fills in the identity.
std::vector<CColumnSources> MatrixSources(const SValue& source, bool bFromScalar,
                                          const std::vector<std::uint8_t>& aResultLanes)
{
    std::vector<CColumnSources> aaSources(aResultLanes.size());
    for (std::size_t c = 0; c < aResultLanes.size(); ++c)
    {
        for (int r = 0; r < aResultLanes[c]; ++r)
        {
            SLaneSource lane;
            const bool bDiagonal = static_cast<int>(c) == r;
            if (bFromScalar && bDiagonal)
            {
                lane.op = source.aSlots[0];
                lane.iLane = 0;
            }
            else if (!bFromScalar && c < source.aSlots.size() && r < source.aSlots[c].uiCount)
            {
                lane.op = source.aSlots[c];
                lane.iLane = r;
            }
            else
            {
                lane.fLiteral = bDiagonal && !bFromScalar ? 1.0f : 0.0f;
            }
            aaSources[c].push_back(lane);
        }
    }
    return aaSources;
}

// The arguments' lanes in order fill the result; a single scalar fills every lane.
std::vector<CColumnSources> FlatSources(const std::vector<SValue>& aArgs, const std::vector<std::uint8_t>& aResultLanes)
{
    CColumnSources aFlat;
    for (const SValue& arg : aArgs)
    {
        for (const STxeOperand& op : arg.aSlots)
        {
            for (int i = 0; i < op.uiCount; ++i)
            {
                SLaneSource lane;
                lane.op = op;
                lane.iLane = i;
                aFlat.push_back(lane);
            }
        }
    }
    std::vector<CColumnSources> aaSources(aResultLanes.size());
    std::size_t uiNext = 0;
    for (std::size_t c = 0; c < aResultLanes.size() && !aFlat.empty(); ++c)
    {
        for (int r = 0; r < aResultLanes[c]; ++r)
        {
            aaSources[c].push_back(aFlat[std::min(uiNext, aFlat.size() - 1)]);
            if (aFlat.size() > 1)
                ++uiNext;
        }
    }
    return aaSources;
}

// Literal lanes (and lanes of immediates) merge into one move of a fresh immediate.
void MoveLiterals(CProgramBuilder& builder, const CColumnSources& aSources, const STxeOperand& result,
                  std::vector<bool>& abDone, int iLine)
{
    float afLiteral[4] = {0, 0, 0, 0};
    CLanes aLiteralLanes;
    for (std::size_t r = 0; r < aSources.size(); ++r)
    {
        const SLaneSource& lane = aSources[r];
        if (lane.iLane >= 0 && lane.op.eFile != File_Immediate)
            continue;
        afLiteral[aLiteralLanes.size()] = lane.iLane >= 0 ? builder.ImmediateLane(lane.op, lane.iLane) : lane.fLiteral;
        aLiteralLanes.push_back(static_cast<std::uint8_t>(r));
        abDone[r] = true;
    }
    if (!aLiteralLanes.empty())
        builder.Emit(Op_Mov, Swizzled(result, aLiteralLanes),
                     {builder.Immediate(afLiteral, static_cast<int>(aLiteralLanes.size()))}, iLine);
}

// Lanes from the same register (as each source swizzled it) move together.
void MoveRegisterLanes(CProgramBuilder& builder, const CColumnSources& aSources, const STxeOperand& result,
                       std::vector<bool>& abDone, int iLine)
{
    for (std::size_t r = 0; r < aSources.size(); ++r)
    {
        if (abDone[r])
            continue;
        CLanes aDstLanes;
        STxeOperand source = aSources[r].op;
        int iCount = 0;
        for (std::size_t s = r; s < aSources.size(); ++s)
        {
            if (abDone[s] || !SameRegister(aSources[s].op, aSources[r].op))
                continue;
            aDstLanes.push_back(static_cast<std::uint8_t>(s));
            if (iCount < 4)
                source.auiSwizzle[iCount++] = aSources[s].op.auiSwizzle[aSources[s].iLane & 3];
            abDone[s] = true;
        }
        source.uiCount = static_cast<std::uint8_t>(iCount);
        builder.Emit(Op_Mov, Swizzled(result, aDstLanes), {source}, iLine);
    }
}

} // namespace

bool LowerConstructor(CProgramBuilder& builder, const TType& type, const std::vector<SValue>& aArgs, int iLine,
                      SValue& value)
{
    value.aSlots.clear();
    const std::vector<std::uint8_t> aResultLanes = SlotLanes(type);
    if (type.isArray() || type.isStruct())
    {
        // Aggregates are lists of slots: construction only gathers operands.
        for (const SValue& arg : aArgs)
            value.aSlots.append(arg.aSlots.begin(), arg.aSlots.end());
        if (value.aSlots.size() == aResultLanes.size())
            return true;
        builder.Refuse(iLine, GlslTypeName(type), "this constructor");
        return false;
    }
    if (aArgs.empty() || aArgs[0].aSlots.empty())
    {
        builder.Refuse(iLine, GlslTypeName(type), "this constructor");
        return false;
    }
    if (WithoutInstruction(aArgs, aResultLanes, value))
        return true;
    // Merged literal lanes keep the constructed type's representation.
    const CTypeScope scope(builder, TxeTypeOf(type.getBasicType()));

    const bool bOneArgument = aArgs.size() == 1;
    const bool bFromScalar = type.isMatrix() && bOneArgument && aArgs[0].aSlots.size() == 1 && aArgs[0].aSlots[0].uiCount == 1;
    const bool bFromMatrix = type.isMatrix() && bOneArgument && aArgs[0].aSlots.size() > 1;
    const std::vector<CColumnSources> aaSources = bFromScalar || bFromMatrix
                                                      ? MatrixSources(aArgs[0], bFromScalar, aResultLanes)
                                                      : FlatSources(aArgs, aResultLanes);
    for (std::size_t c = 0; c < aResultLanes.size(); ++c)
    {
        const STxeOperand result = builder.NewTemp(aResultLanes[c]);
        std::vector<bool> abDone(aaSources[c].size(), false);
        MoveLiterals(builder, aaSources[c], result, abDone, iLine);
        MoveRegisterLanes(builder, aaSources[c], result, abDone, iLine);
        value.aSlots.push_back(result);
    }
    return !builder.Failed();
}

} // namespace ZamCompiler
