#include "ZcLowerStatements.h"

#include "ZcLowerTree.h"

namespace ZamCompiler
{

using namespace glslang;

bool CStatementLowerer::Lower(TIntermNode* pNode)
{
    if (m_builder.Failed())
        return false;
    if (!pNode)
        return true;
    if (TIntermAggregate* pAggregate = pNode->getAsAggregate())
    {
        const TOperator eOp = pAggregate->getOp();
        if (eOp == EOpSequence || eOp == EOpScope || eOp == EOpNull)
            return Sequence(pAggregate);
    }
    if (TIntermSelection* pSelection = pNode->getAsSelectionNode())
    {
        if (pSelection->getBasicType() == EbtVoid)
            return If(pSelection);
    }
    if (TIntermLoop* pLoop = pNode->getAsLoopNode())
        return Loop(pLoop);
    if (TIntermBranch* pBranch = pNode->getAsBranchNode())
        return Branch(pBranch);
    if (TIntermSwitch* pSwitch = pNode->getAsSwitchNode())
        return Switch(pSwitch);
    SValue discarded;
    if (TIntermUnary* pUnary = pNode->getAsUnaryNode())
    {
        if (IsIncDec(pUnary->getOp()))
            return m_expressions.IncDec(pUnary, false, discarded);
    }
    if (TIntermTyped* pTyped = pNode->getAsTyped())
        return m_expressions.Lower(pTyped, discarded) || !m_builder.Failed();
    m_builder.Refuse(LineOf(pNode), "statement", "this kind of statement");
    return false;
}

bool CStatementLowerer::Sequence(TIntermAggregate* pNode)
{
    for (TIntermNode* pChild : pNode->getSequence())
    {
        if (!Lower(pChild))
            return false;
    }
    return true;
}

bool CStatementLowerer::If(TIntermSelection* pNode)
{
    const int iLine = LineOf(pNode);
    SValue condition;
    if (!m_expressions.Lower(pNode->getCondition(), condition) || condition.aSlots.empty())
        return false;
    m_builder.Emit(Op_If, STxeOperand(), {Lane(condition.aSlots[0], 0)}, iLine);
    m_known.BeginRegion();
    const bool bThen = Lower(pNode->getTrueBlock());
    m_known.EndRegion();
    if (pNode->getFalseBlock())
    {
        const int iElseLine = LineOf(pNode->getFalseBlock());
        m_builder.Emit(Op_Else, STxeOperand(), {}, iElseLine ? iElseLine : iLine);
        m_known.BeginRegion();
        const bool bElse = bThen && Lower(pNode->getFalseBlock());
        m_known.EndRegion();
        if (!bElse)
            return false;
    }
    m_builder.Emit(Op_Endif, STxeOperand(), {}, iLine);
    return bThen && !m_builder.Failed();
}

bool CStatementLowerer::LoopTest(TIntermLoop* pNode)
{
    SValue condition;
    if (!m_expressions.Lower(pNode->getTest(), condition) || condition.aSlots.empty())
        return false;
    m_builder.Emit(Op_Brkz, STxeOperand(), {Lane(condition.aSlots[0], 0)}, LineOf(pNode->getTest()));
    return !m_builder.Failed();
}

// A for loop's increment is placed at the end of the body (and before every continue).
bool CStatementLowerer::Loop(TIntermLoop* pNode)
{
    const int iLine = LineOf(pNode);
    const STxeTrips trips = TripCount(pNode, m_known, m_facts);
    m_builder.SetTrips(m_builder.Emit(Op_Loop, STxeOperand(), {}, iLine), trips);
    if (m_builder.Failed())
        return false;

    m_control.EnterLoop(pNode->getTerminal());
    m_known.BeginRegion();
    bool bOk = true;
    if (pNode->getTest() && pNode->testFirst())
        bOk = LoopTest(pNode);
    bOk = bOk && Lower(pNode->getBody());
    if (bOk && pNode->getTerminal())
        bOk = Lower(pNode->getTerminal());
    if (bOk && pNode->getTest() && !pNode->testFirst())
        bOk = LoopTest(pNode);
    m_builder.Emit(Op_Endloop, STxeOperand(), {}, iLine);
    m_known.EndRegion();
    m_control.Leave();
    if (bOk)
        LeaveOnReturnFlag(iLine);
    return bOk && !m_builder.Failed();
}

void CStatementLowerer::LeaveOnReturnFlag(int iLine)
{
    const int iFunction = m_control.CurrentFunction();
    if (iFunction < 0 || m_control.ReturnFlag(iFunction) < 0)
        return;
    m_builder.Emit(Op_If, STxeOperand(), {TempOperand(m_control.ReturnFlag(iFunction), 1)}, iLine);
    m_builder.Emit(Op_Brk, STxeOperand(), {}, iLine);
    m_builder.Emit(Op_Endif, STxeOperand(), {}, iLine);
}

bool CStatementLowerer::CaseHit(TIntermBranch* pLabel, const STxeOperand& selector, STxeOperand& hit)
{
    SValue label;
    if (!m_expressions.Lower(pLabel->getExpression(), label) || label.aSlots.empty())
        return false;
    const CTypeScope scope(m_builder, TxeTypeOf(pLabel->getExpression()->getBasicType()));
    hit = m_builder.Compute(Op_Seq, {selector, Lane(label.aSlots[0], 0)}, 1, LineOf(pLabel));
    return true;
}

// Whether any case label matches decides whether default is taken.
bool CStatementLowerer::AnyCase(TIntermSwitch* pNode, const STxeOperand& selector, STxeOperand& anyCase)
{
    anyCase = m_builder.Immediate(0.0f);
    const TIntermSequence& body = pNode->getBody()->getSequence();
    bool bHasDefault = false;
    for (TIntermNode* pChild : body)
    {
        TIntermBranch* pLabel = pChild ? pChild->getAsBranchNode() : nullptr;
        bHasDefault = bHasDefault || (pLabel && pLabel->getFlowOp() == EOpDefault);
    }
    bool bHasCase = false;
    for (TIntermNode* pChild : bHasDefault ? body : TIntermSequence())
    {
        TIntermBranch* pLabel = pChild ? pChild->getAsBranchNode() : nullptr;
        if (!pLabel || pLabel->getFlowOp() != EOpCase || !pLabel->getExpression())
            continue;
        STxeOperand hit;
        if (!CaseHit(pLabel, selector, hit))
            return false;
        anyCase = bHasCase ? m_builder.Compute(Op_Or, {anyCase, hit}, 1, LineOf(pLabel)) : hit;
        bHasCase = true;
    }
    return true;
}

// A one-trip loop gives "break" its meaning; fall-through keeps "matched" set.
bool CStatementLowerer::Switch(TIntermSwitch* pNode)
{
    const int iLine = LineOf(pNode);
    SValue selector;
    STxeOperand anyCase;
    if (!m_expressions.Lower(pNode->getCondition()->getAsTyped(), selector) || selector.aSlots.empty())
        return false;
    const STxeOperand value = Lane(selector.aSlots[0], 0);
    if (!AnyCase(pNode, value, anyCase))
        return false;
    m_builder.EmitOneTripLoop(iLine);
    if (m_builder.Failed())
        return false;
    m_control.EnterSwitch();
    const bool bOk = SwitchBody(pNode, value, anyCase);
    m_control.Leave();
    if (!bOk)
        return false;
    m_builder.Emit(Op_Endloop, STxeOperand(), {}, iLine);
    LeaveOnReturnFlag(iLine);
    return !m_builder.Failed();
}

bool CStatementLowerer::SwitchBody(TIntermSwitch* pNode, const STxeOperand& selector, const STxeOperand& anyCase)
{
    const int iLine = LineOf(pNode);
    const STxeOperand matched = m_builder.NewTemp(1);
    m_builder.MarkVariable(matched.iIndex);
    m_builder.Emit(Op_Mov, matched, {m_builder.Immediate(0.0f)}, iLine);
    m_known.BeginRegion();
    bool bOpen = false;
    int iLabelLine = iLine;
    for (TIntermNode* pChild : pNode->getBody()->getSequence())
    {
        TIntermBranch* pLabel = pChild ? pChild->getAsBranchNode() : nullptr;
        if (pLabel && (pLabel->getFlowOp() == EOpCase || pLabel->getFlowOp() == EOpDefault))
        {
            iLabelLine = LineOf(pLabel) ? LineOf(pLabel) : iLine;
            if (bOpen)
            {
                m_builder.Emit(Op_Endif, STxeOperand(), {}, LineOf(pLabel));
                m_known.EndRegion();
                bOpen = false;
            }
            STxeOperand hit;
            if (pLabel->getFlowOp() == EOpDefault)
                hit = m_builder.Compute(Op_Seq, {anyCase, m_builder.Immediate(0.0f)}, 1, LineOf(pLabel));
            else if (!CaseHit(pLabel, selector, hit))
                return false;
            m_builder.Emit(Op_Or, matched, {matched, hit}, LineOf(pLabel));
            continue;
        }
        if (!bOpen)
        {
            m_builder.Emit(Op_If, STxeOperand(), {matched}, iLabelLine);
            m_known.BeginRegion();
            bOpen = true;
        }
        if (!Lower(pChild))
            return false;
    }
    if (bOpen)
    {
        m_builder.Emit(Op_Endif, STxeOperand(), {}, iLine);
        m_known.EndRegion();
    }
    m_known.EndRegion();
    return !m_builder.Failed();
}

bool CStatementLowerer::Branch(TIntermBranch* pNode)
{
    const int iLine = LineOf(pNode);
    switch (pNode->getFlowOp())
    {
    case EOpKill:
    case EOpTerminateInvocation: m_builder.Emit(Op_Kil, STxeOperand(), {}, iLine); break;
    case EOpBreak: m_builder.Emit(Op_Brk, STxeOperand(), {}, iLine); break;
    case EOpContinue: return Continue(pNode);
    case EOpReturn: return Return(pNode);
    case EOpDemote:
        // The fragment would go on as a helper invocation; kil ends it, which is not the same.
        m_builder.Refuse(iLine, "demote", "this statement");
        return false;
    default:
        m_builder.Refuse(iLine, "statement", "this jump");
        return false;
    }
    return !m_builder.Failed();
}

// cont jumps back to the loop's top, so the increment runs first.
bool CStatementLowerer::Continue(TIntermBranch* pNode)
{
    const int iLine = LineOf(pNode);
    if (!m_control.InLoop() || m_control.InnermostIsSwitch())
    {
        m_builder.Refuse(iLine, "continue", "a continue inside a switch");
        return false;
    }
    TIntermTyped* pIncrement = m_control.InnermostIncrement();
    if (pIncrement && !Lower(pIncrement))
        return false;
    m_builder.Emit(Op_Cont, STxeOperand(), {}, iLine);
    return !m_builder.Failed();
}

bool CStatementLowerer::Return(TIntermBranch* pNode)
{
    const int iLine = LineOf(pNode);
    // The returned expression may inline calls, which push and pop functions: this
    // function is named by its index, not held by reference.
    const int iFunction = m_control.CurrentFunction();
    if (iFunction < 0)
    {
        m_builder.Fail(iLine, "return", "outside a function");
        return false;
    }
    if (iFunction == 0)
    {
        m_builder.Emit(Op_Ret, STxeOperand(), {}, iLine);
        return !m_builder.Failed();
    }
    if (pNode->getExpression())
    {
        SValue result;
        if (!m_expressions.Lower(pNode->getExpression(), result))
            return false;
        StoreReturnValue(iFunction, result, iLine);
    }
    if (m_control.IsWrapped(iFunction))
    {
        const int iFlag = m_control.ReturnFlag(iFunction);
        if (iFlag >= 0 && m_control.OpenLevels(iFunction) > 0)
            m_builder.Emit(Op_Mov, TempOperand(iFlag, 1), {m_builder.Immediate(1.0f)}, iLine);
        m_builder.Emit(Op_Brk, STxeOperand(), {}, iLine);
    }
    return !m_builder.Failed();
}

void CStatementLowerer::StoreReturnValue(int iFunction, const SValue& result, int iLine)
{
    if (!m_control.IsWrapped(iFunction))
    {
        // The only return ends the body: its value is the result as it stands.
        m_control.SetResult(iFunction, result);
        return;
    }
    if (!m_control.HasResult(iFunction))
    {
        SValue slots;
        for (const STxeOperand& op : result.aSlots)
        {
            slots.aSlots.push_back(m_builder.NewTemp(op.uiCount));
            m_builder.MarkVariable(slots.aSlots.back().iIndex);
        }
        m_control.SetResult(iFunction, slots);
    }
    const SValue slots = m_control.Result(iFunction);
    for (std::size_t k = 0; k < result.aSlots.size() && k < slots.aSlots.size(); ++k)
        m_builder.MoveInto(slots.aSlots[k], Broadcast(result.aSlots[k], slots.aSlots[k].uiCount), iLine);
}

} // namespace ZamCompiler
