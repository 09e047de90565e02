#include "ZcLowerOperators.h"

#include "ZcLowerTree.h"

#include <algorithm>

namespace ZamCompiler
{

using namespace glslang;

namespace
{

// Each result column is a sum of the left matrix's columns scaled by the right's lanes.
void MatrixTimes(CProgramBuilder& builder, const SValue& matrix, const SValue& right, int iLine, SValue& value)
{
    for (const STxeOperand& vector : right.aSlots)
    {
        const int iRows = matrix.aSlots[0].uiCount;
        STxeOperand sum = builder.Compute(Op_Mul, {matrix.aSlots[0], Broadcast(Lane(vector, 0), iRows)}, iRows, iLine);
        for (std::size_t c = 1; c < matrix.aSlots.size() && static_cast<int>(c) < vector.uiCount; ++c)
            sum = builder.Compute(Op_Mad, {matrix.aSlots[c], Broadcast(Lane(vector, static_cast<int>(c)), iRows), sum},
                                  iRows, iLine);
        value.aSlots.push_back(sum);
    }
}

// Each result lane is the vector's dot product with one column.
void VectorTimesMatrix(CProgramBuilder& builder, const STxeOperand& vector, const SValue& matrix, int iLine,
                       SValue& value)
{
    const int iColumns = static_cast<int>(matrix.aSlots.size());
    const STxeOperand result = builder.NewTemp(iColumns);
    for (int c = 0; c < iColumns; ++c)
        builder.Emit(DotFor(vector.uiCount), Lane(result, c), {vector, matrix.aSlots[c]}, iLine);
    value.aSlots.push_back(result);
}

// One reciprocal serves every lane of a scalar divisor.
STxeOperand Reciprocal(CProgramBuilder& builder, const STxeOperand& b, int iLanes, int iLine)
{
    bool bSplat = true;
    for (int i = 1; i < b.uiCount; ++i)
        bSplat = bSplat && b.auiSwizzle[i] == b.auiSwizzle[0];
    if (bSplat)
        return Broadcast(builder.Compute(Op_Rcp, {Lane(b, 0)}, 1, iLine), iLanes);
    return builder.Compute(Op_Rcp, {b}, iLanes, iLine);
}

STxeOperand Divide(CProgramBuilder& builder, const STxeOperand& a, const STxeOperand& b, bool bInteger, int iLanes,
                   int iLine)
{
    if (bInteger)
        return builder.Compute(Op_Idiv, {a, b}, iLanes, iLine);
    if (b.eFile == File_Immediate && b.uiCount >= 1)
    {
        // Division by a literal becomes a multiply by its reciprocal.
        float afRecip[4] = {0, 0, 0, 0};
        for (int i = 0; i < b.uiCount; ++i)
            afRecip[i] = 1.0f / builder.ImmediateLane(b, i);
        return builder.Compute(Op_Mul, {a, builder.Immediate(afRecip, b.uiCount)}, iLanes, iLine);
    }
    const STxeOperand reciprocal = Reciprocal(builder, b, iLanes, iLine);
    if (builder.IsBroadcastImmediate(a, 1.0f))
        return reciprocal;
    return builder.Compute(Op_Mul, {a, reciprocal}, iLanes, iLine);
}

// a - b * q, with q the truncated (integer) or floored (float) quotient.
STxeOperand Modulo(CProgramBuilder& builder, const STxeOperand& a, const STxeOperand& b, bool bInteger, int iLanes,
                   int iLine)
{
    STxeOperand quotient;
    if (bInteger)
    {
        quotient = builder.Compute(Op_Idiv, {a, b}, iLanes, iLine);
    }
    else
    {
        const STxeOperand reciprocal = Reciprocal(builder, b, iLanes, iLine);
        const STxeOperand scaled = builder.Compute(Op_Mul, {a, reciprocal}, iLanes, iLine);
        quotient = builder.Compute(Op_Flr, {scaled}, iLanes, iLine);
    }
    return builder.Compute(Op_Mad, {Negated(quotient), b, a}, iLanes, iLine);
}

ETxeOp SimpleOp(TOperator eOp)
{
    switch (eOp)
    {
    case EOpAdd:
    case EOpSub: return Op_Add;
    case EOpMul:
    case EOpVectorTimesScalar:
    case EOpMatrixTimesScalar: return Op_Mul;
    case EOpAnd: return Op_And;
    case EOpInclusiveOr: return Op_Or;
    case EOpExclusiveOr: return Op_Xor;
    case EOpLeftShift: return Op_Shl;
    case EOpRightShift: return Op_Shr;
    case EOpLogicalXor: return Op_Sne;
    default: return Op_Count;
    }
}

// One slot of a lane-wise operator.
bool SlotOperation(CProgramBuilder& builder, TOperator eOp, bool bInteger, const STxeOperand& a, const STxeOperand& b,
                   int iLanes, int iLine, STxeOperand& result)
{
    if (eOp == EOpDiv)
        result = Divide(builder, a, b, bInteger, iLanes, iLine);
    else if (eOp == EOpMod)
        result = Modulo(builder, a, b, bInteger, iLanes, iLine);
    else if (SimpleOp(eOp) == Op_Count)
        return false;
    else
        result = builder.Compute(SimpleOp(eOp), {a, eOp == EOpSub ? Negated(b) : b}, iLanes, iLine);
    return true;
}

} // namespace

STxeOperand LaneMask(CProgramBuilder& builder, const STxeOperand& index, int iLanes, int iLine)
{
    const CTypeScope scope(builder, Type_Int);
    const double adLanes[4] = {0.0, 1.0, 2.0, 3.0};
    return builder.Compute(Op_Seq, {Broadcast(Lane(index, 0), iLanes), builder.Immediate(adLanes, iLanes)}, iLanes,
                           iLine);
}

STxeOperand PickLane(CProgramBuilder& builder, const STxeOperand& vector, const STxeOperand& index, ETxeType eLanes,
                     int iLine)
{
    const int iLanes = vector.uiCount;
    const STxeOperand mask = LaneMask(builder, index, iLanes, iLine);
    if (eLanes == Type_Float)
        return builder.Compute(DotFor(iLanes), {vector, mask}, 1, iLine);
    const CTypeScope scope(builder, eLanes);
    const STxeOperand picked = builder.Compute(Op_Mul, {vector, mask}, iLanes, iLine);
    STxeOperand sum = Lane(picked, 0);
    for (int i = 1; i < iLanes; ++i)
        sum = builder.Compute(Op_Add, {sum, Lane(picked, i)}, 1, iLine);
    return sum;
}

bool LowerArithmetic(CProgramBuilder& builder, TOperator eOp, const TType& type, const SValue& left,
                     const SValue& right, int iLine, SValue& value)
{
    value.aSlots.clear();
    if (left.aSlots.empty() || right.aSlots.empty())
    {
        builder.Refuse(iLine, OperatorName(eOp), "this operand");
        return false;
    }
    if (eOp == EOpMatrixTimesVector || eOp == EOpMatrixTimesMatrix)
    {
        MatrixTimes(builder, left, right, iLine, value);
        return !builder.Failed();
    }
    if (eOp == EOpVectorTimesMatrix)
    {
        VectorTimesMatrix(builder, left.aSlots[0], right, iLine, value);
        return !builder.Failed();
    }

    // Operators work on scalars, vectors and matrices: every slot has the same lanes.
    const int iResultLanes = LanesOf(type);
    const std::size_t uiResultSlots = static_cast<std::size_t>(SlotCount(type));
    const bool bInteger = IsIntegerType(type.getBasicType());
    const CTypeScope scope(builder, TxeTypeOf(type.getBasicType()));
    const std::size_t uiSlots = std::max(left.aSlots.size(), right.aSlots.size());
    for (std::size_t k = 0; k < uiSlots; ++k)
    {
        const int iLanes = k < uiResultSlots ? iResultLanes : 4;
        const STxeOperand a = Broadcast(left.aSlots[std::min(k, left.aSlots.size() - 1)], iLanes);
        const STxeOperand b = Broadcast(right.aSlots[std::min(k, right.aSlots.size() - 1)], iLanes);
        STxeOperand result;
        if (!SlotOperation(builder, eOp, bInteger, a, b, iLanes, iLine, result))
        {
            builder.Refuse(iLine, OperatorName(eOp), "this operator");
            return false;
        }
        value.aSlots.push_back(result);
    }
    return !builder.Failed();
}

bool LowerComparison(CProgramBuilder& builder, TOperator eOp, TBasicType eOperands, const SValue& left,
                     const SValue& right, int iLine, SValue& value)
{
    value.aSlots.clear();
    const CTypeScope scope(builder, TxeTypeOf(eOperands));
    if (left.aSlots.empty() || right.aSlots.empty())
    {
        builder.Refuse(iLine, OperatorName(eOp), "this operand");
        return false;
    }
    const int iLanes = std::max(left.aSlots[0].uiCount, right.aSlots[0].uiCount);
    const STxeOperand a = Broadcast(left.aSlots[0], iLanes);
    const STxeOperand b = Broadcast(right.aSlots[0], iLanes);
    switch (eOp)
    {
    case EOpLessThan: value.aSlots.push_back(builder.Compute(Op_Slt, {a, b}, iLanes, iLine)); break;
    case EOpGreaterThan: value.aSlots.push_back(builder.Compute(Op_Slt, {b, a}, iLanes, iLine)); break;
    case EOpLessThanEqual: value.aSlots.push_back(builder.Compute(Op_Sge, {b, a}, iLanes, iLine)); break;
    case EOpGreaterThanEqual: value.aSlots.push_back(builder.Compute(Op_Sge, {a, b}, iLanes, iLine)); break;
    case EOpVectorEqual: value.aSlots.push_back(builder.Compute(Op_Seq, {a, b}, iLanes, iLine)); break;
    case EOpVectorNotEqual: value.aSlots.push_back(builder.Compute(Op_Sne, {a, b}, iLanes, iLine)); break;
    default: return LowerWholeComparison(builder, eOp == EOpEqual, left, right, iLine, value);
    }
    return !builder.Failed();
}

// Whole-value == and != compare the lanes in the operands' type, then count the booleans.
bool LowerWholeComparison(CProgramBuilder& builder, bool bEqual, const SValue& left, const SValue& right, int iLine,
                          SValue& value)
{
    const ETxeType eOperands = builder.Type();
    const CTypeScope booleans(builder, Type_Float);
    STxeOperand sum;
    int iTotal = 0;
    for (std::size_t k = 0; k < left.aSlots.size() && k < right.aSlots.size(); ++k)
    {
        const int iSlotLanes = std::max(left.aSlots[k].uiCount, right.aSlots[k].uiCount);
        builder.SetType(eOperands);
        const STxeOperand lanes = builder.Compute(
            bEqual ? Op_Seq : Op_Sne, {Broadcast(left.aSlots[k], iSlotLanes), Broadcast(right.aSlots[k], iSlotLanes)},
            iSlotLanes, iLine);
        builder.SetType(Type_Float);
        STxeOperand partial = lanes;
        if (iSlotLanes > 1)
            partial = builder.Compute(DotFor(iSlotLanes), {lanes, builder.Immediate(1.0f, iSlotLanes)}, 1, iLine);
        sum = iTotal == 0 ? partial : builder.Compute(Op_Add, {sum, partial}, 1, iLine);
        iTotal += iSlotLanes;
    }
    if (iTotal <= 1)
        value.aSlots.push_back(sum);
    else if (bEqual)
        value.aSlots.push_back(builder.Compute(Op_Sge, {sum, builder.Immediate(static_cast<float>(iTotal))}, 1, iLine));
    else
        value.aSlots.push_back(builder.Compute(Op_Slt, {builder.Immediate(0.0f), sum}, 1, iLine));
    return !builder.Failed();
}

} // namespace ZamCompiler
