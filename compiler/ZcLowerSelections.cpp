// Parts of computed values, and the expressions that choose between values: ?:, && and ||.

#include "ZcLowerExpressions.h"

#include "ZcLowerOperators.h"
#include "ZcLowerTree.h"

#include <algorithm>

namespace ZamCompiler
{

using namespace glslang;

namespace
{

CLanes SwizzleLanes(TIntermTyped* pSelectors)
{
    CLanes aLanes;
    TIntermAggregate* pAggregate = pSelectors ? pSelectors->getAsAggregate() : nullptr;
    for (TIntermNode* pSelector : pAggregate ? pAggregate->getSequence() : TIntermSequence())
    {
        TIntermConstantUnion* pLane = pSelector->getAsConstantUnion();
        aLanes.push_back(static_cast<std::uint8_t>(pLane ? pLane->getConstArray()[0].getIConst() & 3 : 0));
    }
    return aLanes;
}

} // namespace

// Selecting from a computed value costs nothing: it only narrows operands.
bool CExpressionLowerer::Select(TIntermBinary* pNode, SValue& value)
{
    const int iLine = LineOf(pNode);
    SValue whole;
    if (!Lower(pNode->getLeft(), whole))
        return false;
    if (pNode->getOp() == EOpVectorSwizzle)
    {
        const CLanes aLanes = SwizzleLanes(pNode->getRight());
        if (whole.aSlots.size() != 1 || aLanes.empty())
        {
            m_builder.Refuse(iLine, ".", "this swizzle");
            return false;
        }
        value.aSlots.push_back(Swizzled(whole.aSlots[0], aLanes));
        return true;
    }
    if (pNode->getOp() == EOpIndexIndirect || !pNode->getRight()->getAsConstantUnion())
    {
        m_builder.Refuse(iLine, "[]", "a non-constant index into a computed " + GlslTypeName(pNode->getLeft()->getType()));
        return false;
    }
    return SelectSlots(pNode, whole, value);
}

bool CExpressionLowerer::SelectSlots(TIntermBinary* pNode, const SValue& whole, SValue& value)
{
    const int iLine = LineOf(pNode);
    const TType& leftType = pNode->getLeft()->getType();
    const int iIndex = pNode->getRight()->getAsConstantUnion()->getConstArray()[0].getIConst();
    int iFirst = 0;
    int iCount = 1;
    if (leftType.isArray())
    {
        iCount = SlotCount(TType(leftType, 0));
        iFirst = iIndex * iCount;
    }
    else if (leftType.isStruct())
    {
        const TTypeList& members = *leftType.getStruct();
        for (int i = 0; i < iIndex && i < static_cast<int>(members.size()); ++i)
            iFirst += SlotCount(*members[i].type);
        iCount = iIndex < static_cast<int>(members.size()) ? SlotCount(*members[iIndex].type) : 0;
    }
    else if (leftType.isMatrix())
    {
        iFirst = iIndex;
    }
    else
    {
        if (whole.aSlots.empty() || iIndex < 0 || iIndex >= whole.aSlots[0].uiCount)
        {
            m_builder.Fail(iLine, "[]", "index " + std::to_string(iIndex) + " is out of range");
            return false;
        }
        value.aSlots.push_back(Lane(whole.aSlots[0], iIndex));
        return true;
    }
    if (iFirst < 0 || iCount <= 0 || iFirst + iCount > static_cast<int>(whole.aSlots.size()))
    {
        m_builder.Fail(iLine, "[]", "index " + std::to_string(iIndex) + " is out of range");
        return false;
    }
    value.aSlots.assign(whole.aSlots.begin() + iFirst, whole.aSlots.begin() + iFirst + iCount);
    return true;
}

// v[i]: a one-hot mask of the lane, then a dot product picks it (integer lanes are
// multiplied and added up, which is exact).
bool CExpressionLowerer::DynamicLane(TIntermBinary* pNode, SValue& value)
{
    const int iLine = LineOf(pNode);
    SValue whole;
    SValue index;
    if (!Lower(pNode->getLeft(), whole) || !Lower(pNode->getRight(), index) || whole.aSlots.empty() ||
        index.aSlots.empty())
        return false;
    value.aSlots.push_back(
        PickLane(m_builder, whole.aSlots[0], index.aSlots[0], TxeTypeOf(pNode->getBasicType()), iLine));
    return !m_builder.Failed();
}

bool CExpressionLowerer::Ternary(TIntermSelection* pNode, SValue& value)
{
    const int iLine = LineOf(pNode);
    TIntermTyped* pTrue = pNode->getTrueBlock() ? pNode->getTrueBlock()->getAsTyped() : nullptr;
    TIntermTyped* pFalse = pNode->getFalseBlock() ? pNode->getFalseBlock()->getAsTyped() : nullptr;
    if (!pTrue || !pFalse)
    {
        m_builder.Refuse(iLine, "?:", "this conditional expression");
        return false;
    }
    SValue condition;
    if (!Lower(pNode->getCondition(), condition) || condition.aSlots.empty())
        return false;
    const STxeOperand test = Lane(condition.aSlots[0], 0);
    if (m_facts.HasSideEffects(pTrue) || m_facts.HasSideEffects(pFalse))
        return BranchingTernary(pNode, test, value);

    // Both sides are free of effects: evaluate both and select instead of branching.
    SValue a;
    SValue b;
    if (!Lower(pTrue, a) || !Lower(pFalse, b) || a.aSlots.size() != b.aSlots.size())
        return false;
    for (std::size_t k = 0; k < a.aSlots.size(); ++k)
    {
        const int iLanes = std::max(a.aSlots[k].uiCount, b.aSlots[k].uiCount);
        value.aSlots.push_back(m_builder.Compute(
            Op_Sel, {Broadcast(test, iLanes), Broadcast(a.aSlots[k], iLanes), Broadcast(b.aSlots[k], iLanes)}, iLanes,
            iLine));
    }
    return !m_builder.Failed();
}

bool CExpressionLowerer::BranchingTernary(TIntermSelection* pNode, const STxeOperand& test, SValue& value)
{
    const int iLine = LineOf(pNode);
    for (std::uint8_t uiLanes : SlotLanes(pNode->getType()))
    {
        const STxeOperand result = m_builder.NewTemp(uiLanes);
        m_builder.MarkVariable(result.iIndex);
        value.aSlots.push_back(result);
    }
    auto assign = [&](TIntermNode* pSide) {
        SValue side;
        if (!Lower(pSide->getAsTyped(), side) || side.aSlots.size() != value.aSlots.size())
            return false;
        for (std::size_t k = 0; k < side.aSlots.size(); ++k)
            m_builder.Emit(Op_Mov, value.aSlots[k], {Broadcast(side.aSlots[k], value.aSlots[k].uiCount)}, iLine);
        return !m_builder.Failed();
    };
    m_builder.Emit(Op_If, STxeOperand(), {test}, iLine);
    m_known.BeginRegion();
    const bool bTrue = assign(pNode->getTrueBlock());
    m_known.EndRegion();
    m_builder.Emit(Op_Else, STxeOperand(), {}, iLine);
    m_known.BeginRegion();
    const bool bFalse = bTrue && assign(pNode->getFalseBlock());
    m_known.EndRegion();
    m_builder.Emit(Op_Endif, STxeOperand(), {}, iLine);
    return bFalse && !m_builder.Failed();
}

bool CExpressionLowerer::ShortCircuit(TIntermBinary* pNode, SValue& value)
{
    const int iLine = LineOf(pNode);
    const bool bAnd = pNode->getOp() == EOpLogicalAnd;
    SValue left;
    if (!Lower(pNode->getLeft(), left) || left.aSlots.empty())
        return false;
    if (!m_facts.HasSideEffects(pNode->getRight()))
    {
        SValue right;
        if (!Lower(pNode->getRight(), right) || right.aSlots.empty())
            return false;
        value.aSlots.push_back(
            m_builder.Compute(bAnd ? Op_And : Op_Or, {Lane(left.aSlots[0], 0), Lane(right.aSlots[0], 0)}, 1, iLine));
        return !m_builder.Failed();
    }

    // The right side has effects, so it only runs when the left side does not decide.
    const STxeOperand result = m_builder.NewTemp(1);
    m_builder.MarkVariable(result.iIndex);
    m_builder.Emit(Op_Mov, result, {Lane(left.aSlots[0], 0)}, iLine);
    const STxeOperand test = bAnd ? result : m_builder.Compute(Op_Seq, {result, m_builder.Immediate(0.0f)}, 1, iLine);
    m_builder.Emit(Op_If, STxeOperand(), {test}, iLine);
    m_known.BeginRegion();
    SValue right;
    const bool bRight = Lower(pNode->getRight(), right) && !right.aSlots.empty();
    if (bRight)
        m_builder.Emit(Op_Mov, result, {Lane(right.aSlots[0], 0)}, iLine);
    m_known.EndRegion();
    m_builder.Emit(Op_Endif, STxeOperand(), {}, iLine);
    value.aSlots.push_back(result);
    return bRight && !m_builder.Failed();
}

} // namespace ZamCompiler
