#include "ZcLowerer.h"

#include <algorithm>

namespace ZamCompiler
{

using namespace glslang;

namespace
{

bool IsConversion(TOperator eOp)
{
    return eOp >= EOpConvInt8ToBool && eOp <= EOpConvDoubleToFloat;
}

bool IsFloatType(TBasicType eType)
{
    return eType == EbtFloat || eType == EbtDouble || eType == EbtFloat16;
}

bool IsIntegerType(TBasicType eType)
{
    return eType == EbtInt || eType == EbtUint || eType == EbtInt8 || eType == EbtUint8 || eType == EbtInt16 ||
           eType == EbtUint16 || eType == EbtInt64 || eType == EbtUint64;
}

TOperator BaseOfCompound(TOperator eOp)
{
    switch (eOp)
    {
    case EOpAddAssign: return EOpAdd;
    case EOpSubAssign: return EOpSub;
    case EOpMulAssign: return EOpMul;
    case EOpVectorTimesMatrixAssign: return EOpVectorTimesMatrix;
    case EOpVectorTimesScalarAssign: return EOpVectorTimesScalar;
    case EOpMatrixTimesScalarAssign: return EOpMatrixTimesScalar;
    case EOpMatrixTimesMatrixAssign: return EOpMatrixTimesMatrix;
    case EOpDivAssign: return EOpDiv;
    case EOpModAssign: return EOpMod;
    case EOpAndAssign: return EOpAnd;
    case EOpInclusiveOrAssign: return EOpInclusiveOr;
    case EOpExclusiveOrAssign: return EOpExclusiveOr;
    case EOpLeftShiftAssign: return EOpLeftShift;
    case EOpRightShiftAssign: return EOpRightShift;
    default: return EOpNull;
    }
}

bool IsComparison(TOperator eOp)
{
    switch (eOp)
    {
    case EOpEqual:
    case EOpNotEqual:
    case EOpVectorEqual:
    case EOpVectorNotEqual:
    case EOpLessThan:
    case EOpGreaterThan:
    case EOpLessThanEqual:
    case EOpGreaterThanEqual:
        return true;
    default:
        return false;
    }
}

class CSideEffectFinder : public TIntermTraverser
{
public:
    bool bFound = false;

    bool visitBinary(TVisit, TIntermBinary* pNode) override
    {
        if (pNode->getOp() == EOpAssign || BaseOfCompound(pNode->getOp()) != EOpNull)
            bFound = true;
        return !bFound;
    }
    bool visitUnary(TVisit, TIntermUnary* pNode) override
    {
        switch (pNode->getOp())
        {
        case EOpPostIncrement:
        case EOpPostDecrement:
        case EOpPreIncrement:
        case EOpPreDecrement:
            bFound = true;
            break;
        default:
            break;
        }
        return !bFound;
    }
    bool visitAggregate(TVisit, TIntermAggregate* pNode) override
    {
        if (pNode->getOp() == EOpFunctionCall)
            bFound = true;
        return !bFound;
    }
    bool visitBranch(TVisit, TIntermBranch*) override
    {
        bFound = true;
        return false;
    }
    bool visitSelection(TVisit, TIntermSelection* pNode) override
    {
        // Statements inside an expression (never produced for GLSL ES) count as effects.
        if (pNode->getBasicType() == EbtVoid)
            bFound = true;
        return !bFound;
    }
    bool visitLoop(TVisit, TIntermLoop*) override
    {
        bFound = true;
        return false;
    }
};

} // namespace

STxeOperand CLowerer::Compute(ETxeOp eOp, std::initializer_list<STxeOperand> aSrc, int iLanes, int iLine)
{
    STxeOperand dst = NewTemp(iLanes);
    Emit(eOp, dst, aSrc, iLine);
    return dst;
}

bool CLowerer::HasSideEffects(TIntermNode* pNode) const
{
    if (!pNode)
        return false;
    CSideEffectFinder finder;
    pNode->traverse(&finder);
    return finder.bFound;
}

bool CLowerer::Expression(TIntermTyped* pNode, SValue& value)
{
    if (m_bFailed || !pNode)
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
        return ResolveAccess(pNode, access) && Load(access, Line(pNode), value);
    }
    if (TIntermBinary* pBinary = pNode->getAsBinaryNode())
        return Binary(pBinary, value);
    if (TIntermUnary* pUnary = pNode->getAsUnaryNode())
        return Unary(pUnary, value);
    if (TIntermAggregate* pAggregate = pNode->getAsAggregate())
        return Aggregate(pAggregate, value);
    if (TIntermSelection* pSelection = pNode->getAsSelectionNode())
        return Ternary(pSelection, value);
    Fail(Line(pNode), "unsupported expression");
    return false;
}

bool CLowerer::Binary(TIntermBinary* pNode, SValue& value)
{
    const TOperator eOp = pNode->getOp();
    const int iLine = Line(pNode);
    if (eOp == EOpAssign || BaseOfCompound(eOp) != EOpNull)
        return Assignment(pNode, value);
    if (eOp == EOpLogicalAnd || eOp == EOpLogicalOr)
        return ShortCircuit(pNode, value);
    if (eOp == EOpComma)
    {
        SValue discarded;
        return Expression(pNode->getLeft(), discarded) && Expression(pNode->getRight(), value);
    }

    const TType& leftType = pNode->getLeft()->getType();
    if (eOp == EOpIndexIndirect && !leftType.isArray() && !leftType.isMatrix())
    {
        // v[i]: a one-hot mask of the lane, then a dot product picks it.
        SValue whole;
        SValue index;
        if (!Expression(pNode->getLeft(), whole) || !Expression(pNode->getRight(), index) || whole.aSlots.empty() ||
            index.aSlots.empty())
            return false;
        const STxeOperand vector = whole.aSlots[0];
        const int iLanes = vector.uiCount;
        const float afLanes[4] = {0.0f, 1.0f, 2.0f, 3.0f};
        STxeOperand mask = Compute(Op_Seq, {Broadcast(Lane(index.aSlots[0], 0), iLanes), Immediate(afLanes, iLanes)},
                                   iLanes, iLine);
        static const ETxeOp s_aeDot[5] = {Op_Mul, Op_Mul, Op_Dp2, Op_Dp3, Op_Dp4};
        value.aSlots.push_back(Compute(s_aeDot[std::clamp(iLanes, 1, 4)], {vector, mask}, 1, iLine));
        return !m_bFailed;
    }
    if (eOp == EOpIndexDirect || eOp == EOpIndexIndirect || eOp == EOpIndexDirectStruct || eOp == EOpVectorSwizzle)
    {
        if (IsAccessNode(pNode))
        {
            SAccess access;
            return ResolveAccess(pNode, access) && Load(access, iLine, value);
        }
        // Selecting from a computed value costs nothing: it only narrows operands.
        SValue whole;
        if (!Expression(pNode->getLeft(), whole))
            return false;
        TIntermConstantUnion* pIndex = pNode->getRight()->getAsConstantUnion();
        if (eOp == EOpVectorSwizzle)
        {
            TIntermAggregate* pSelectors = pNode->getRight()->getAsAggregate();
            std::vector<std::uint8_t> aLanes;
            for (TIntermNode* pSelector : pSelectors ? pSelectors->getSequence() : TIntermSequence())
            {
                TIntermConstantUnion* pLane = pSelector->getAsConstantUnion();
                aLanes.push_back(static_cast<std::uint8_t>(pLane ? pLane->getConstArray()[0].getIConst() & 3 : 0));
            }
            if (whole.aSlots.size() != 1 || aLanes.empty())
            {
                Fail(iLine, "unsupported swizzle");
                return false;
            }
            value.aSlots.push_back(Swizzled(whole.aSlots[0], aLanes));
            return true;
        }
        if (eOp == EOpIndexIndirect || !pIndex)
        {
            Fail(iLine, "a non-constant index into a computed value is not supported");
            return false;
        }
        const int iIndex = pIndex->getConstArray()[0].getIConst();
        int iFirst = 0;
        int iCount = 1;
        if (leftType.isArray())
        {
            iCount = static_cast<int>(SlotLanes(TType(leftType, 0)).size());
            iFirst = iIndex * iCount;
        }
        else if (leftType.isStruct())
        {
            const TTypeList& members = *leftType.getStruct();
            for (int i = 0; i < iIndex && i < static_cast<int>(members.size()); ++i)
                iFirst += static_cast<int>(SlotLanes(*members[i].type).size());
            iCount = iIndex < static_cast<int>(members.size()) ? static_cast<int>(SlotLanes(*members[iIndex].type).size()) : 0;
        }
        else if (leftType.isMatrix())
        {
            iFirst = iIndex;
        }
        else
        {
            if (whole.aSlots.empty() || iIndex < 0 || iIndex >= whole.aSlots[0].uiCount)
            {
                Fail(iLine, "index out of range");
                return false;
            }
            value.aSlots.push_back(Lane(whole.aSlots[0], iIndex));
            return true;
        }
        if (iFirst < 0 || iCount <= 0 || iFirst + iCount > static_cast<int>(whole.aSlots.size()))
        {
            Fail(iLine, "index out of range");
            return false;
        }
        value.aSlots.assign(whole.aSlots.begin() + iFirst, whole.aSlots.begin() + iFirst + iCount);
        return true;
    }

    return Operation(eOp, pNode->getType(), {pNode->getLeft(), pNode->getRight()}, iLine, value);
}

bool CLowerer::Unary(TIntermUnary* pNode, SValue& value)
{
    const TOperator eOp = pNode->getOp();
    const int iLine = Line(pNode);
    switch (eOp)
    {
    case EOpPostIncrement:
    case EOpPostDecrement:
    case EOpPreIncrement:
    case EOpPreDecrement:
        return IncDec(pNode, true, value);
    case EOpNegative:
    {
        if (!Expression(pNode->getOperand(), value))
            return false;
        for (STxeOperand& op : value.aSlots)
            op = Negated(op);
        return true;
    }
    case EOpLogicalNot:
    case EOpVectorLogicalNot:
    {
        SValue operand;
        if (!Expression(pNode->getOperand(), operand))
            return false;
        const STxeOperand& op = operand.aSlots[0];
        value.aSlots.push_back(Compute(Op_Seq, {op, Immediate(0.0f, op.uiCount)}, op.uiCount, iLine));
        return true;
    }
    case EOpBitwiseNot:
    {
        SValue operand;
        if (!Expression(pNode->getOperand(), operand))
            return false;
        const STxeOperand& op = operand.aSlots[0];
        value.aSlots.push_back(Compute(Op_Not, {op}, op.uiCount, iLine));
        return true;
    }
    default:
        break;
    }

    if (IsConversion(eOp))
    {
        SValue operand;
        if (!Expression(pNode->getOperand(), operand))
            return false;
        const TBasicType eFrom = pNode->getOperand()->getBasicType();
        const TBasicType eTo = pNode->getBasicType();
        for (const STxeOperand& op : operand.aSlots)
        {
            if (eTo == EbtBool && eFrom != EbtBool)
                value.aSlots.push_back(Compute(Op_Sne, {op, Immediate(0.0f, op.uiCount)}, op.uiCount, iLine));
            else if (IsFloatType(eTo) && IsIntegerType(eFrom))
                value.aSlots.push_back(Compute(Op_I2f, {op}, op.uiCount, iLine));
            else if (IsIntegerType(eTo) && IsFloatType(eFrom))
                value.aSlots.push_back(Compute(Op_F2i, {op}, op.uiCount, iLine));
            else
                value.aSlots.push_back(op); // same representation: booleans are 0 and 1
        }
        return true;
    }
    return Operation(eOp, pNode->getType(), {pNode->getOperand()}, iLine, value);
}

bool CLowerer::Aggregate(TIntermAggregate* pNode, SValue& value)
{
    const TOperator eOp = pNode->getOp();
    const int iLine = Line(pNode);
    if (eOp == EOpFunctionCall)
        return Call(pNode, value);

    std::vector<TIntermTyped*> aNodes;
    for (TIntermNode* pChild : pNode->getSequence())
    {
        TIntermTyped* pTyped = pChild ? pChild->getAsTyped() : nullptr;
        if (!pTyped)
        {
            Fail(iLine, "unsupported expression");
            return false;
        }
        aNodes.push_back(pTyped);
    }

    if (pNode->isConstructor())
    {
        std::vector<SValue> aArgs(aNodes.size());
        for (std::size_t i = 0; i < aNodes.size(); ++i)
        {
            if (!Expression(aNodes[i], aArgs[i]))
                return false;
        }
        return Constructor(pNode->getType(), aArgs, iLine, value);
    }
    return Operation(eOp, pNode->getType(), aNodes, iLine, value);
}

bool CLowerer::Operation(TOperator eOp, const TType& type, const std::vector<TIntermTyped*>& aNodes, int iLine,
                         SValue& value)
{
    std::vector<SValue> aArgs(aNodes.size());
    for (std::size_t i = 0; i < aNodes.size(); ++i)
    {
        if (!Expression(aNodes[i], aArgs[i]))
            return false;
        if (aArgs[i].aSlots.empty() && aNodes[i]->getBasicType() != EbtVoid)
        {
            Fail(iLine, "unsupported operand");
            return false;
        }
    }

    if (IsComparison(eOp) && aArgs.size() == 2)
        return Comparison(eOp, aArgs[0], aArgs[1], iLine, value);

    switch (eOp)
    {
    case EOpAdd:
    case EOpSub:
    case EOpMul:
    case EOpDiv:
    case EOpMod:
    case EOpVectorTimesScalar:
    case EOpMatrixTimesScalar:
    case EOpVectorTimesMatrix:
    case EOpMatrixTimesVector:
    case EOpMatrixTimesMatrix:
    case EOpAnd:
    case EOpInclusiveOr:
    case EOpExclusiveOr:
    case EOpLeftShift:
    case EOpRightShift:
    case EOpLogicalXor:
        if (aArgs.size() == 2)
            return Arithmetic(eOp, type, aArgs[0], aArgs[1], iLine, value);
        break;
    default:
        break;
    }

    TIntermTyped* pFirst = aNodes.empty() ? nullptr : aNodes[0];
    if (pFirst && pFirst->getBasicType() == EbtSampler)
        return Texture(eOp, type, aArgs, iLine, value);
    return Builtin(eOp, type, aArgs, aNodes, iLine, value);
}

bool CLowerer::Arithmetic(TOperator eOp, const TType& type, const SValue& left, const SValue& right, int iLine,
                          SValue& value)
{
    value.aSlots.clear();
    if (left.aSlots.empty() || right.aSlots.empty())
    {
        Fail(iLine, "unsupported operand");
        return false;
    }
    const std::vector<std::uint8_t> aResultLanes = SlotLanes(type);

    if (eOp == EOpMatrixTimesVector || eOp == EOpMatrixTimesMatrix)
    {
        // Each result column is a sum of the left matrix's columns scaled by the right's lanes.
        const SValue& matrix = left;
        const int iColumns = static_cast<int>(right.aSlots.size());
        for (int j = 0; j < iColumns; ++j)
        {
            const STxeOperand& vector = right.aSlots[j];
            const int iRows = matrix.aSlots[0].uiCount;
            STxeOperand sum = Compute(Op_Mul, {matrix.aSlots[0], Broadcast(Lane(vector, 0), iRows)}, iRows, iLine);
            for (std::size_t c = 1; c < matrix.aSlots.size() && static_cast<int>(c) < vector.uiCount; ++c)
            {
                STxeOperand next = NewTemp(iRows);
                Emit(Op_Mad, next, {matrix.aSlots[c], Broadcast(Lane(vector, static_cast<int>(c)), iRows), sum}, iLine);
                sum = next;
            }
            value.aSlots.push_back(sum);
        }
        return !m_bFailed;
    }
    if (eOp == EOpVectorTimesMatrix)
    {
        const STxeOperand& vector = left.aSlots[0];
        const int iColumns = static_cast<int>(right.aSlots.size());
        STxeOperand result = NewTemp(iColumns);
        static const ETxeOp s_aeDot[5] = {Op_Mul, Op_Mul, Op_Dp2, Op_Dp3, Op_Dp4};
        for (int c = 0; c < iColumns; ++c)
        {
            STxeOperand dst = Lane(result, c);
            Emit(s_aeDot[std::clamp<int>(vector.uiCount, 1, 4)], dst, {vector, right.aSlots[c]}, iLine);
        }
        value.aSlots.push_back(result);
        return !m_bFailed;
    }

    const bool bInteger = IsIntegerType(type.getBasicType());
    const std::size_t uiSlots = std::max(left.aSlots.size(), right.aSlots.size());
    for (std::size_t k = 0; k < uiSlots; ++k)
    {
        const int iLanes = k < aResultLanes.size() ? aResultLanes[k] : 4;
        const STxeOperand a = Broadcast(left.aSlots[std::min(k, left.aSlots.size() - 1)], iLanes);
        const STxeOperand b = Broadcast(right.aSlots[std::min(k, right.aSlots.size() - 1)], iLanes);
        STxeOperand result;
        switch (eOp)
        {
        case EOpAdd: result = Compute(Op_Add, {a, b}, iLanes, iLine); break;
        case EOpSub: result = Compute(Op_Add, {a, Negated(b)}, iLanes, iLine); break;
        case EOpMul:
        case EOpVectorTimesScalar:
        case EOpMatrixTimesScalar: result = Compute(Op_Mul, {a, b}, iLanes, iLine); break;
        case EOpDiv:
            if (bInteger)
            {
                result = Compute(Op_Idiv, {a, b}, iLanes, iLine);
            }
            else if (b.eFile == File_Immediate && b.uiCount >= 1)
            {
                // Division by a literal becomes a multiply by its reciprocal.
                float afRecip[4] = {0, 0, 0, 0};
                for (int i = 0; i < b.uiCount; ++i)
                {
                    const float fValue = m_program.aPool[static_cast<std::size_t>(b.iIndex) * 4 + b.auiSwizzle[i]];
                    afRecip[i] = (b.bNegate ? -1.0f : 1.0f) / fValue;
                }
                result = Compute(Op_Mul, {a, Immediate(afRecip, b.uiCount)}, iLanes, iLine);
            }
            else
            {
                // A scalar divisor needs one reciprocal, whatever the width.
                bool bSplat = true;
                for (int i = 1; i < b.uiCount; ++i)
                    bSplat = bSplat && b.auiSwizzle[i] == b.auiSwizzle[0];
                STxeOperand reciprocal = bSplat ? Broadcast(Compute(Op_Rcp, {Lane(b, 0)}, 1, iLine), iLanes)
                                                : Compute(Op_Rcp, {b}, iLanes, iLine);
                const bool bOne = a.eFile == File_Immediate && !a.bNegate && !a.bAbs &&
                                  m_program.aPool[static_cast<std::size_t>(a.iIndex) * 4 + a.auiSwizzle[0]] == 1.0f &&
                                  (a.uiCount == 1 || a.auiSwizzle[1] == a.auiSwizzle[0]);
                result = bOne ? reciprocal : Compute(Op_Mul, {a, reciprocal}, iLanes, iLine);
            }
            break;
        case EOpMod:
        {
            // a - b * q, with q the truncated (integer) or floored (float) quotient
            STxeOperand quotient;
            if (bInteger)
            {
                quotient = Compute(Op_Idiv, {a, b}, iLanes, iLine);
            }
            else
            {
                // A scalar divisor needs one reciprocal, whatever the width.
                bool bSplat = true;
                for (int i = 1; i < b.uiCount; ++i)
                    bSplat = bSplat && b.auiSwizzle[i] == b.auiSwizzle[0];
                STxeOperand reciprocal = bSplat ? Broadcast(Compute(Op_Rcp, {Lane(b, 0)}, 1, iLine), iLanes)
                                                : Compute(Op_Rcp, {b}, iLanes, iLine);
                STxeOperand scaled = Compute(Op_Mul, {a, reciprocal}, iLanes, iLine);
                quotient = Compute(Op_Flr, {scaled}, iLanes, iLine);
            }
            result = NewTemp(iLanes);
            Emit(Op_Mad, result, {Negated(quotient), b, a}, iLine);
            break;
        }
        case EOpAnd: result = Compute(Op_And, {a, b}, iLanes, iLine); break;
        case EOpInclusiveOr: result = Compute(Op_Or, {a, b}, iLanes, iLine); break;
        case EOpExclusiveOr: result = Compute(Op_Xor, {a, b}, iLanes, iLine); break;
        case EOpLeftShift: result = Compute(Op_Shl, {a, b}, iLanes, iLine); break;
        case EOpRightShift: result = Compute(Op_Shr, {a, b}, iLanes, iLine); break;
        case EOpLogicalXor: result = Compute(Op_Sne, {a, b}, iLanes, iLine); break;
        default:
            Fail(iLine, "unsupported operator");
            return false;
        }
        value.aSlots.push_back(result);
    }
    return !m_bFailed;
}

bool CLowerer::Comparison(TOperator eOp, const SValue& left, const SValue& right, int iLine, SValue& value)
{
    value.aSlots.clear();
    if (left.aSlots.empty() || right.aSlots.empty())
    {
        Fail(iLine, "unsupported operand");
        return false;
    }
    const int iLanes = std::max(left.aSlots[0].uiCount, right.aSlots[0].uiCount);
    const STxeOperand a = Broadcast(left.aSlots[0], iLanes);
    const STxeOperand b = Broadcast(right.aSlots[0], iLanes);
    switch (eOp)
    {
    case EOpLessThan: value.aSlots.push_back(Compute(Op_Slt, {a, b}, iLanes, iLine)); return !m_bFailed;
    case EOpGreaterThan: value.aSlots.push_back(Compute(Op_Slt, {b, a}, iLanes, iLine)); return !m_bFailed;
    case EOpLessThanEqual: value.aSlots.push_back(Compute(Op_Sge, {b, a}, iLanes, iLine)); return !m_bFailed;
    case EOpGreaterThanEqual: value.aSlots.push_back(Compute(Op_Sge, {a, b}, iLanes, iLine)); return !m_bFailed;
    case EOpVectorEqual: value.aSlots.push_back(Compute(Op_Seq, {a, b}, iLanes, iLine)); return !m_bFailed;
    case EOpVectorNotEqual: value.aSlots.push_back(Compute(Op_Sne, {a, b}, iLanes, iLine)); return !m_bFailed;
    default: break;
    }

    // Whole-value == and != reduce the lane results to one boolean.
    const bool bEqual = eOp == EOpEqual;
    STxeOperand sum;
    int iTotal = 0;
    for (std::size_t k = 0; k < left.aSlots.size() && k < right.aSlots.size(); ++k)
    {
        const int iSlotLanes = std::max(left.aSlots[k].uiCount, right.aSlots[k].uiCount);
        STxeOperand lanes = Compute(bEqual ? Op_Seq : Op_Sne,
                                    {Broadcast(left.aSlots[k], iSlotLanes), Broadcast(right.aSlots[k], iSlotLanes)},
                                    iSlotLanes, iLine);
        STxeOperand partial = lanes;
        if (iSlotLanes > 1)
        {
            static const ETxeOp s_aeDot[5] = {Op_Mul, Op_Mul, Op_Dp2, Op_Dp3, Op_Dp4};
            partial = Compute(s_aeDot[iSlotLanes], {lanes, Immediate(1.0f, iSlotLanes)}, 1, iLine);
        }
        sum = iTotal == 0 ? partial : Compute(Op_Add, {sum, partial}, 1, iLine);
        iTotal += iSlotLanes;
    }
    if (iTotal <= 1)
    {
        value.aSlots.push_back(sum);
        return !m_bFailed;
    }
    if (bEqual)
        value.aSlots.push_back(Compute(Op_Sge, {sum, Immediate(static_cast<float>(iTotal))}, 1, iLine));
    else
        value.aSlots.push_back(Compute(Op_Slt, {Immediate(0.0f), sum}, 1, iLine));
    return !m_bFailed;
}

bool CLowerer::Assignment(TIntermBinary* pNode, SValue& value)
{
    const int iLine = Line(pNode);
    const TOperator eOp = pNode->getOp();
    TIntermTyped* pTarget = pNode->getLeft();
    TIntermSymbol* pRoot = RootSymbol(pTarget);
    if (!pRoot || !IsAccessNode(pTarget))
    {
        Fail(iLine, "unsupported assignment target");
        return false;
    }

    SValue rhs;
    if (!Expression(pNode->getRight(), rhs))
        return false;
    SAccess access;
    if (!ResolveAccess(pTarget, access))
        return false;

    SValue stored = rhs;
    if (eOp != EOpAssign)
    {
        SValue current;
        if (!Load(access, iLine, current) ||
            !Arithmetic(BaseOfCompound(eOp), pTarget->getType(), current, rhs, iLine, stored))
            return false;
    }
    if (!Store(access, stored, iLine))
        return false;

    NoteWrite(pRoot->getId());
    TIntermConstantUnion* pConstant = pNode->getRight()->getAsConstantUnion();
    if (eOp == EOpAssign && pTarget == pRoot && pConstant && pConstant->getType().isScalar())
        NoteConstant(pRoot->getId(), ConstantAsDouble(pConstant->getConstArray()[0]));

    if (access.pVariable->eStorage == Storage_Scratch)
    {
        value = stored;
        return true;
    }
    return Load(access, iLine, value);
}

bool CLowerer::IncDec(TIntermUnary* pNode, bool bValueUsed, SValue& value)
{
    const int iLine = Line(pNode);
    TIntermTyped* pTarget = pNode->getOperand();
    TIntermSymbol* pRoot = RootSymbol(pTarget);
    SAccess access;
    if (!pRoot || !IsAccessNode(pTarget) || !ResolveAccess(pTarget, access))
    {
        if (!m_bFailed)
            Fail(iLine, "unsupported increment target");
        return false;
    }
    SValue current;
    if (!Load(access, iLine, current))
        return false;
    const TOperator eOp = pNode->getOp();
    const bool bPost = eOp == EOpPostIncrement || eOp == EOpPostDecrement;
    const float fStep = eOp == EOpPostIncrement || eOp == EOpPreIncrement ? 1.0f : -1.0f;

    SValue old;
    if (bPost && bValueUsed)
        old = Materialize(current, iLine);
    SValue updated;
    for (const STxeOperand& op : current.aSlots)
        updated.aSlots.push_back(Compute(Op_Add, {op, Immediate(fStep, op.uiCount)}, op.uiCount, iLine));
    if (!Store(access, updated, iLine))
        return false;
    NoteWrite(pRoot->getId());
    if (bPost && bValueUsed)
    {
        value = old;
        return true;
    }
    return Load(access, iLine, value);
}

bool CLowerer::Ternary(TIntermSelection* pNode, SValue& value)
{
    const int iLine = Line(pNode);
    TIntermTyped* pTrue = pNode->getTrueBlock() ? pNode->getTrueBlock()->getAsTyped() : nullptr;
    TIntermTyped* pFalse = pNode->getFalseBlock() ? pNode->getFalseBlock()->getAsTyped() : nullptr;
    if (!pTrue || !pFalse)
    {
        Fail(iLine, "unsupported conditional expression");
        return false;
    }
    SValue condition;
    if (!Expression(pNode->getCondition(), condition) || condition.aSlots.empty())
        return false;
    const STxeOperand test = Lane(condition.aSlots[0], 0);

    if (!HasSideEffects(pTrue) && !HasSideEffects(pFalse))
    {
        // Both sides are cheap to evaluate and free of effects: select instead of branching.
        SValue a;
        SValue b;
        if (!Expression(pTrue, a) || !Expression(pFalse, b) || a.aSlots.size() != b.aSlots.size())
            return false;
        for (std::size_t k = 0; k < a.aSlots.size(); ++k)
        {
            const int iLanes = std::max(a.aSlots[k].uiCount, b.aSlots[k].uiCount);
            value.aSlots.push_back(Compute(Op_Sel,
                                           {Broadcast(test, iLanes), Broadcast(a.aSlots[k], iLanes),
                                            Broadcast(b.aSlots[k], iLanes)},
                                           iLanes, iLine));
        }
        return !m_bFailed;
    }

    std::vector<std::uint8_t> aLanes = SlotLanes(pNode->getType());
    for (std::uint8_t uiLanes : aLanes)
    {
        STxeOperand result = NewTemp(uiLanes);
        m_setVariableTemps.insert(result.iIndex);
        value.aSlots.push_back(result);
    }
    auto assign = [&](TIntermTyped* pSide) {
        SValue side;
        if (!Expression(pSide, side) || side.aSlots.size() != value.aSlots.size())
            return false;
        for (std::size_t k = 0; k < side.aSlots.size(); ++k)
            Emit(Op_Mov, value.aSlots[k], {Broadcast(side.aSlots[k], value.aSlots[k].uiCount)}, iLine);
        return !m_bFailed;
    };
    Emit(Op_If, STxeOperand(), {test}, iLine);
    BeginRegion();
    const bool bTrue = assign(pTrue);
    EndRegion();
    Emit(Op_Else, STxeOperand(), {}, iLine);
    BeginRegion();
    const bool bFalse = bTrue && assign(pFalse);
    EndRegion();
    Emit(Op_Endif, STxeOperand(), {}, iLine);
    return bFalse && !m_bFailed;
}

bool CLowerer::ShortCircuit(TIntermBinary* pNode, SValue& value)
{
    const int iLine = Line(pNode);
    const bool bAnd = pNode->getOp() == EOpLogicalAnd;
    SValue left;
    if (!Expression(pNode->getLeft(), left) || left.aSlots.empty())
        return false;
    if (!HasSideEffects(pNode->getRight()))
    {
        SValue right;
        if (!Expression(pNode->getRight(), right) || right.aSlots.empty())
            return false;
        value.aSlots.push_back(Compute(bAnd ? Op_And : Op_Or, {Lane(left.aSlots[0], 0), Lane(right.aSlots[0], 0)}, 1, iLine));
        return !m_bFailed;
    }

    // The right side has effects, so it only runs when the left side does not decide.
    STxeOperand result = NewTemp(1);
    m_setVariableTemps.insert(result.iIndex);
    Emit(Op_Mov, result, {Lane(left.aSlots[0], 0)}, iLine);
    STxeOperand test = result;
    if (!bAnd)
        test = Compute(Op_Seq, {result, Immediate(0.0f)}, 1, iLine);
    Emit(Op_If, STxeOperand(), {test}, iLine);
    BeginRegion();
    SValue right;
    const bool bRight = Expression(pNode->getRight(), right) && !right.aSlots.empty();
    if (bRight)
        Emit(Op_Mov, result, {Lane(right.aSlots[0], 0)}, iLine);
    EndRegion();
    Emit(Op_Endif, STxeOperand(), {}, iLine);
    value.aSlots.push_back(result);
    return bRight && !m_bFailed;
}

} // namespace ZamCompiler
