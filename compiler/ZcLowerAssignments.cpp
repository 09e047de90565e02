// Assignments, compound assignments, ++ and --.

#include "ZcLowerExpressions.h"

#include "ZcLowerOperators.h"
#include "ZcLowerTree.h"

namespace ZamCompiler
{

using namespace glslang;

bool CExpressionLowerer::Assignment(TIntermBinary* pNode, SValue& value)
{
    const int iLine = LineOf(pNode);
    const TOperator eOp = pNode->getOp();
    TIntermTyped* pTarget = pNode->getLeft();
    TIntermSymbol* pRoot = RootOf(pTarget);
    if (!pRoot || !IsAccessNode(pTarget))
    {
        m_builder.Refuse(iLine, OperatorName(eOp), "this assignment target");
        return false;
    }

    SValue rhs;
    SAccess access;
    if (!Lower(pNode->getRight(), rhs) || !ResolveAccess(pTarget, access))
        return false;
    SValue stored = rhs;
    if (eOp != EOpAssign)
    {
        SValue current;
        if (!m_variables.Load(access, iLine, current) ||
            !LowerArithmetic(m_builder, BaseOfCompound(eOp), pTarget->getType(), current, rhs, iLine, stored))
            return false;
    }
    if (!m_variables.Store(access, stored, iLine))
        return false;

    m_known.NoteWrite(pRoot->getId());
    TIntermConstantUnion* pConstant = pNode->getRight()->getAsConstantUnion();
    if (eOp == EOpAssign && pTarget == pRoot && pConstant && pConstant->getType().isScalar())
        m_known.NoteConstant(pRoot->getId(), ConstantAsDouble(pConstant->getConstArray()[0]));

    if (access.pVariable->eStorage == Storage_Scratch)
    {
        value = stored;
        return true;
    }
    return m_variables.Load(access, iLine, value);
}

bool CExpressionLowerer::IncDec(TIntermUnary* pNode, bool bValueUsed, SValue& value)
{
    const int iLine = LineOf(pNode);
    TIntermTyped* pTarget = pNode->getOperand();
    TIntermSymbol* pRoot = RootOf(pTarget);
    SAccess access;
    if (!pRoot || !IsAccessNode(pTarget) || !ResolveAccess(pTarget, access))
    {
        if (!m_builder.Failed())
            m_builder.Refuse(iLine, OperatorName(pNode->getOp()), "this target");
        return false;
    }
    SValue current;
    if (!m_variables.Load(access, iLine, current))
        return false;
    const TOperator eOp = pNode->getOp();
    const bool bPost = eOp == EOpPostIncrement || eOp == EOpPostDecrement;
    const float fStep = eOp == EOpPostIncrement || eOp == EOpPreIncrement ? 1.0f : -1.0f;

    SValue old;
    if (bPost && bValueUsed)
        old = m_builder.Materialize(current, iLine);
    const CTypeScope scope(m_builder, TxeTypeOf(pTarget->getBasicType()));
    SValue updated;
    for (const STxeOperand& op : current.aSlots)
        updated.aSlots.push_back(m_builder.Compute(Op_Add, {op, m_builder.Immediate(fStep, op.uiCount)}, op.uiCount, iLine));
    if (!m_variables.Store(access, updated, iLine))
        return false;
    m_known.NoteWrite(pRoot->getId());
    if (bPost && bValueUsed)
    {
        value = old;
        return true;
    }
    return m_variables.Load(access, iLine, value);
}

bool CExpressionLowerer::WriteTo(TIntermTyped* pTarget, const SValue& value, int iLine)
{
    TIntermSymbol* pRoot = RootOf(pTarget);
    SAccess access;
    if (!pRoot || !IsAccessNode(pTarget) || !ResolveAccess(pTarget, access) ||
        !m_variables.Store(access, value, iLine))
        return false;
    m_known.NoteWrite(pRoot->getId());
    return true;
}

} // namespace ZamCompiler
