#include "ZcLowerExpressions.h"

#include "ZcLowerBuiltins.h"
#include "ZcLowerCalls.h"
#include "ZcLowerOperators.h"
#include "ZcLowerTree.h"

#include <algorithm>

namespace ZamCompiler
{

using namespace glslang;

int LineOf(const TIntermNode* pNode)
{
    return pNode ? std::max(0, pNode->getLoc().line) : 0;
}

bool CExpressionLowerer::Lower(TIntermTyped* pNode, SValue& value)
{
    if (m_builder.Failed() || !pNode)
        return false;
    value.aSlots.clear();
    if (TIntermConstantUnion* pConstant = pNode->getAsConstantUnion())
    {
        value = ConstantValue(pConstant);
        return true;
    }
    if (pNode->getAsSymbolNode())
    {
        SAccess access;
        return ResolveAccess(pNode, access) && m_variables.Load(access, LineOf(pNode), value);
    }
    if (TIntermBinary* pBinary = pNode->getAsBinaryNode())
        return Binary(pBinary, value);
    if (TIntermUnary* pUnary = pNode->getAsUnaryNode())
        return Unary(pUnary, value);
    if (TIntermAggregate* pAggregate = pNode->getAsAggregate())
        return Aggregate(pAggregate, value);
    if (TIntermSelection* pSelection = pNode->getAsSelectionNode())
        return Ternary(pSelection, value);
    m_builder.Refuse(LineOf(pNode), GlslTypeName(pNode->getType()), "this kind of expression");
    return false;
}

SValue CExpressionLowerer::ConstantValue(const TIntermConstantUnion* pConstant)
{
    SValue value;
    const TConstUnionArray& aConstants = pConstant->getConstArray();
    const CTypeScope scope(m_builder, TxeTypeOf(pConstant->getBasicType()));
    const TType& type = pConstant->getType();
    const bool bUniform = !type.isArray() && !type.isStruct();
    const std::vector<std::uint8_t> aLanes =
        bUniform ? std::vector<std::uint8_t>() : SlotLanes(type);
    const std::size_t uiSlots = bUniform ? static_cast<std::size_t>(SlotCount(type)) : aLanes.size();
    int iNext = 0;
    for (std::size_t uiSlot = 0; uiSlot < uiSlots; ++uiSlot)
    {
        const int iLanes = bUniform ? LanesOf(type) : aLanes[uiSlot];
        double adValues[4] = {0.0, 0.0, 0.0, 0.0};
        for (int i = 0; i < iLanes && iNext < aConstants.size(); ++i, ++iNext)
            adValues[i] = ConstantAsDouble(aConstants[iNext]);
        value.aSlots.push_back(m_builder.Immediate(adValues, iLanes));
    }
    return value;
}

bool CExpressionLowerer::Binary(TIntermBinary* pNode, SValue& value)
{
    const TOperator eOp = pNode->getOp();
    if (IsAssignment(eOp))
        return Assignment(pNode, value);
    if (eOp == EOpLogicalAnd || eOp == EOpLogicalOr)
        return ShortCircuit(pNode, value);
    if (eOp == EOpIndexIndirect && !pNode->getLeft()->getType().isArray() && !pNode->getLeft()->getType().isMatrix())
        return DynamicLane(pNode, value);
    if (eOp == EOpIndexDirect || eOp == EOpIndexIndirect || eOp == EOpIndexDirectStruct || eOp == EOpVectorSwizzle)
    {
        if (!IsAccessNode(pNode))
            return Select(pNode, value);
        SAccess access;
        return ResolveAccess(pNode, access) && m_variables.Load(access, LineOf(pNode), value);
    }
    if (IsComparison(eOp) || IsArithmetic(eOp))
        return Arithmetic(pNode, value);
    return Operation(eOp, pNode->getType(), {pNode->getLeft(), pNode->getRight()}, LineOf(pNode), value);
}

// The most common node: two operands in locals, no argument vectors to allocate.
bool CExpressionLowerer::Arithmetic(TIntermBinary* pNode, SValue& value)
{
    const TOperator eOp = pNode->getOp();
    const int iLine = LineOf(pNode);
    SValue left;
    SValue right;
    if (!LowerOperand(eOp, pNode->getLeft(), iLine, left) || !LowerOperand(eOp, pNode->getRight(), iLine, right))
        return false;
    if (IsComparison(eOp))
        return LowerComparison(m_builder, eOp, pNode->getLeft()->getBasicType(), left, right, iLine, value);
    return LowerArithmetic(m_builder, eOp, pNode->getType(), left, right, iLine, value);
}

bool CExpressionLowerer::Unary(TIntermUnary* pNode, SValue& value)
{
    const TOperator eOp = pNode->getOp();
    const int iLine = LineOf(pNode);
    if (IsIncDec(eOp))
        return IncDec(pNode, true, value);
    if (IsConversion(eOp))
        return Conversion(pNode, value);
    if (eOp != EOpNegative && eOp != EOpLogicalNot && eOp != EOpVectorLogicalNot && eOp != EOpBitwiseNot)
        return Operation(eOp, pNode->getType(), {pNode->getOperand()}, iLine, value);

    SValue operand;
    if (!Lower(pNode->getOperand(), operand))
        return false;
    if (eOp == EOpNegative)
    {
        for (const STxeOperand& op : operand.aSlots)
            value.aSlots.push_back(Negated(op));
        return true;
    }
    const STxeOperand op = operand.aSlots[0];
    if (eOp == EOpBitwiseNot)
    {
        const CTypeScope scope(m_builder, TxeTypeOf(pNode->getBasicType()));
        value.aSlots.push_back(m_builder.Compute(Op_Not, {op}, op.uiCount, iLine));
    }
    else
        value.aSlots.push_back(m_builder.Compute(Op_Seq, {op, m_builder.Immediate(0.0f, op.uiCount)}, op.uiCount, iLine));
    return true;
}

bool CExpressionLowerer::Conversion(TIntermUnary* pNode, SValue& value)
{
    const int iLine = LineOf(pNode);
    SValue operand;
    if (!Lower(pNode->getOperand(), operand))
        return false;
    const TBasicType eFrom = pNode->getOperand()->getBasicType();
    const TBasicType eTo = pNode->getBasicType();
    // i2f reads its source's type, f2i makes its result's; int and uint share the lanes.
    const CTypeScope scope(m_builder, TxeTypeOf(IsIntegerType(eTo) ? eTo : eFrom));
    for (const STxeOperand& op : operand.aSlots)
    {
        if (eTo == EbtBool && eFrom != EbtBool)
            value.aSlots.push_back(m_builder.Compute(Op_Sne, {op, m_builder.Immediate(0.0, op.uiCount)}, op.uiCount, iLine));
        else if (IsFloatType(eTo) && IsIntegerType(eFrom))
            value.aSlots.push_back(m_builder.Compute(Op_I2f, {op}, op.uiCount, iLine));
        else if (IsIntegerType(eTo) && IsFloatType(eFrom))
            value.aSlots.push_back(m_builder.Compute(Op_F2i, {op}, op.uiCount, iLine));
        else
            value.aSlots.push_back(op); // booleans are 0 and 1 in every type
    }
    return true;
}

bool CExpressionLowerer::Aggregate(TIntermAggregate* pNode, SValue& value)
{
    const int iLine = LineOf(pNode);
    if (pNode->getOp() == EOpFunctionCall)
        return m_calls.Inline(pNode, value);
    if (pNode->getOp() == EOpComma)
        return Comma(pNode, value);

    std::vector<TIntermTyped*> aNodes;
    aNodes.reserve(pNode->getSequence().size());
    for (TIntermNode* pChild : pNode->getSequence())
    {
        TIntermTyped* pTyped = pChild ? pChild->getAsTyped() : nullptr;
        if (!pTyped)
        {
            m_builder.Refuse(iLine, GlslTypeName(pNode->getType()), "this kind of expression");
            return false;
        }
        aNodes.push_back(pTyped);
    }
    if (!pNode->isConstructor())
        return Operation(pNode->getOp(), pNode->getType(), aNodes, iLine, value);
    std::vector<SValue> aArgs(aNodes.size());
    for (std::size_t i = 0; i < aNodes.size(); ++i)
    {
        if (!Lower(aNodes[i], aArgs[i]))
            return false;
    }
    return LowerConstructor(m_builder, pNode->getType(), aArgs, iLine, value);
}

// "a, b, c": every part in order, the last one's value.
bool CExpressionLowerer::Comma(TIntermAggregate* pNode, SValue& value)
{
    for (TIntermNode* pChild : pNode->getSequence())
    {
        TIntermTyped* pPart = pChild ? pChild->getAsTyped() : nullptr;
        if (!pPart || !Lower(pPart, value))
        {
            if (!m_builder.Failed())
                m_builder.Refuse(LineOf(pNode), ",", "this part of a sequence");
            return false;
        }
    }
    return true;
}

bool CExpressionLowerer::LowerAll(TOperator eOp, const std::vector<TIntermTyped*>& aNodes, int iLine,
                                  std::vector<SValue>& aValues)
{
    aValues.clear();
    aValues.resize(aNodes.size());
    for (std::size_t i = 0; i < aNodes.size(); ++i)
    {
        // An out argument is written, not read.
        if (IsBuiltinOutput(eOp, i))
            continue;
        if (!LowerOperand(eOp, aNodes[i], iLine, aValues[i]))
            return false;
    }
    return true;
}

bool CExpressionLowerer::LowerOperand(TOperator eOp, TIntermTyped* pNode, int iLine, SValue& value)
{
    if (!Lower(pNode, value))
        return false;
    if (value.aSlots.empty() && pNode->getBasicType() != EbtVoid)
    {
        const std::string op = OperatorName(eOp);
        m_builder.Refuse(iLine, op.empty() ? BuiltinName(eOp) : op, "this operand");
        return false;
    }
    return true;
}

bool CExpressionLowerer::Operation(TOperator eOp, const TType& type, const std::vector<TIntermTyped*>& aNodes,
                                   int iLine, SValue& value)
{
    std::vector<SValue> aArgs;
    if (!LowerAll(eOp, aNodes, iLine, aArgs))
        return false;
    if (IsComparison(eOp) && aArgs.size() == 2)
        return LowerComparison(m_builder, eOp, aNodes[0]->getBasicType(), aArgs[0], aArgs[1], iLine, value);
    if (aArgs.size() == 2 && IsArithmetic(eOp))
        return LowerArithmetic(m_builder, eOp, type, aArgs[0], aArgs[1], iLine, value);

    struct SWriteContext
    {
        CExpressionLowerer* pLowerer;
        const std::vector<TIntermTyped*>& aNodes;
        int iLine;
    };
    const SWriteContext context{this, aNodes, iLine};
    const auto write = [](const void* pContext, std::size_t i, const SValue& result) {
        const SWriteContext& target = *static_cast<const SWriteContext*>(pContext);
        return i < target.aNodes.size() && target.pLowerer->WriteTo(target.aNodes[i], result, target.iLine);
    };
    const SBuiltinCall call{m_builder, eOp, type, aArgs, aNodes, iLine, value, write, &context};
    return LowerBuiltin(call);
}

} // namespace ZamCompiler
