#include "ZcLowerer.h"

#include <algorithm>

namespace ZamCompiler
{

using namespace glslang;

namespace
{

constexpr int k_iMaxSimulatedTrips = 100000;

TIntermSymbol* RootOf(TIntermTyped* pNode)
{
    while (pNode)
    {
        if (TIntermSymbol* pSymbol = pNode->getAsSymbolNode())
            return pSymbol;
        TIntermBinary* pBinary = pNode->getAsBinaryNode();
        if (!pBinary)
            return nullptr;
        pNode = pBinary->getLeft();
    }
    return nullptr;
}

bool IsAssignment(TOperator eOp)
{
    switch (eOp)
    {
    case EOpAssign:
    case EOpAddAssign:
    case EOpSubAssign:
    case EOpMulAssign:
    case EOpVectorTimesMatrixAssign:
    case EOpVectorTimesScalarAssign:
    case EOpMatrixTimesScalarAssign:
    case EOpMatrixTimesMatrixAssign:
    case EOpDivAssign:
    case EOpModAssign:
    case EOpAndAssign:
    case EOpInclusiveOrAssign:
    case EOpExclusiveOrAssign:
    case EOpLeftShiftAssign:
    case EOpRightShiftAssign:
        return true;
    default:
        return false;
    }
}

bool IsIncDec(TOperator eOp)
{
    return eOp == EOpPostIncrement || eOp == EOpPostDecrement || eOp == EOpPreIncrement || eOp == EOpPreDecrement;
}

// Finds any write to one variable, including passing it as an out or inout argument.
class CWriteFinder : public TIntermTraverser
{
public:
    explicit CWriteFinder(long long llId) : m_llId(llId) {}
    bool bFound = false;

    bool visitBinary(TVisit, TIntermBinary* pNode) override
    {
        if (IsAssignment(pNode->getOp()) && Targets(pNode->getLeft()))
            bFound = true;
        return !bFound;
    }
    bool visitUnary(TVisit, TIntermUnary* pNode) override
    {
        if (IsIncDec(pNode->getOp()) && Targets(pNode->getOperand()))
            bFound = true;
        return !bFound;
    }
    bool visitAggregate(TVisit, TIntermAggregate* pNode) override
    {
        if (pNode->getOp() == EOpFunctionCall)
        {
            const TQualifierList& aQualifiers = pNode->getQualifierList();
            const TIntermSequence& aArgs = pNode->getSequence();
            for (std::size_t i = 0; i < aArgs.size(); ++i)
            {
                // Without qualifiers recorded, any argument might be written.
                const bool bWritable = i >= aQualifiers.size() || aQualifiers[i] == EvqOut || aQualifiers[i] == EvqInOut;
                if (bWritable && aArgs[i] && aArgs[i]->getAsTyped() && Targets(aArgs[i]->getAsTyped()))
                    bFound = true;
            }
        }
        return !bFound;
    }

private:
    bool Targets(TIntermTyped* pNode) const
    {
        TIntermSymbol* pRoot = RootOf(pNode);
        return pRoot && pRoot->getId() == m_llId;
    }
    long long m_llId;
};

// Counts returns, and whether one sits inside a loop or switch (both leave through a flag).
class CReturnFinder : public TIntermTraverser
{
public:
    CReturnFinder() : TIntermTraverser(true, false, true) {}
    int iReturns = 0;
    bool bInLoop = false;

    bool visitBranch(TVisit eVisit, TIntermBranch* pNode) override
    {
        if (eVisit == EvPreVisit && pNode->getFlowOp() == EOpReturn)
        {
            ++iReturns;
            bInLoop = bInLoop || m_iLoops > 0;
        }
        return true;
    }
    bool visitLoop(TVisit eVisit, TIntermLoop*) override
    {
        m_iLoops += eVisit == EvPreVisit ? 1 : -1;
        return true;
    }
    bool visitSwitch(TVisit eVisit, TIntermSwitch*) override
    {
        m_iLoops += eVisit == EvPreVisit ? 1 : -1;
        return true;
    }

private:
    int m_iLoops = 0;
};

bool WritesVariable(TIntermNode* pNode, long long llId)
{
    if (!pNode)
        return false;
    CWriteFinder finder(llId);
    pNode->traverse(&finder);
    return finder.bFound;
}

bool Compare(TOperator eOp, double dLeft, double dRight)
{
    switch (eOp)
    {
    case EOpLessThan: return dLeft < dRight;
    case EOpGreaterThan: return dLeft > dRight;
    case EOpLessThanEqual: return dLeft <= dRight;
    case EOpGreaterThanEqual: return dLeft >= dRight;
    case EOpNotEqual: return dLeft != dRight;
    default: return false;
    }
}

TOperator Mirrored(TOperator eOp)
{
    switch (eOp)
    {
    case EOpLessThan: return EOpGreaterThan;
    case EOpGreaterThan: return EOpLessThan;
    case EOpLessThanEqual: return EOpGreaterThanEqual;
    case EOpGreaterThanEqual: return EOpLessThanEqual;
    default: return eOp;
    }
}

std::string FunctionName(const TString& mangled)
{
    std::string name = mangled.c_str();
    const std::size_t uiParen = name.find('(');
    return uiParen == std::string::npos ? name : name.substr(0, uiParen);
}

TIntermAggregate* ParametersOf(TIntermAggregate* pDefinition)
{
    TIntermSequence& sequence = pDefinition->getSequence();
    if (sequence.empty() || !sequence[0])
        return nullptr;
    TIntermAggregate* pParameters = sequence[0]->getAsAggregate();
    return pParameters && pParameters->getOp() == EOpParameters ? pParameters : nullptr;
}

TIntermNode* BodyOf(TIntermAggregate* pDefinition)
{
    TIntermSequence& sequence = pDefinition->getSequence();
    return sequence.size() > 1 ? sequence[1] : nullptr;
}

bool EndsWithReturn(TIntermNode* pBody)
{
    TIntermAggregate* pSequence = pBody ? pBody->getAsAggregate() : nullptr;
    if (!pSequence || pSequence->getSequence().empty())
        return false;
    TIntermBranch* pLast = pSequence->getSequence().back() ? pSequence->getSequence().back()->getAsBranchNode() : nullptr;
    return pLast && pLast->getFlowOp() == EOpReturn;
}

} // namespace

bool CLowerer::Run(TIntermediate& intermediate)
{
    TIntermAggregate* pRoot = intermediate.getTreeRoot() ? intermediate.getTreeRoot()->getAsAggregate() : nullptr;
    if (!pRoot)
    {
        Fail(1, "the shader has no code");
        return false;
    }
    for (TIntermNode* pChild : pRoot->getSequence())
    {
        TIntermAggregate* pAggregate = pChild ? pChild->getAsAggregate() : nullptr;
        if (pAggregate && pAggregate->getOp() == EOpFunction)
            m_mapFunctions[pAggregate->getName().c_str()] = pAggregate;
    }

    BeginRegion();
    // Global initializers run before main.
    for (TIntermNode* pChild : pRoot->getSequence())
    {
        TIntermAggregate* pAggregate = pChild ? pChild->getAsAggregate() : nullptr;
        if (pAggregate && (pAggregate->getOp() == EOpFunction || pAggregate->getOp() == EOpLinkerObjects))
            continue;
        if (!Statement(pChild))
            return false;
    }

    const auto itMain = m_mapFunctions.find("main(");
    if (itMain == m_mapFunctions.end())
    {
        Fail(1, "'main' : missing entry point");
        return false;
    }
    TIntermNode* pMainBody = BodyOf(itMain->second);
    m_control.EnterFunction(false, -1);
    m_setActiveFunctions.insert("main(");
    const bool bOk = Statement(pMainBody);
    m_control.LeaveFunction();
    EndRegion();
    if (!bOk || m_bFailed)
        return false;

    m_program.iTemps = m_iNextTemp;
    m_program.iInputSlotsRead = 0;
    for (const auto& [llId, pVariable] : m_mapVariables)
    {
        if (pVariable->eStorage == Storage_Input && pVariable->bRead)
            m_program.iInputSlotsRead += static_cast<int>(pVariable->aLanes.size());
    }
    return true;
}

void CLowerer::BeginRegion()
{
    m_aRegionWrites.emplace_back();
}

void CLowerer::EndRegion()
{
    if (m_aRegionWrites.empty())
        return;
    std::set<long long> written = std::move(m_aRegionWrites.back());
    m_aRegionWrites.pop_back();
    // A value set inside a branch or loop is not known after it.
    for (long long llId : written)
        m_mapKnownConstants.erase(llId);
    if (!m_aRegionWrites.empty())
        m_aRegionWrites.back().insert(written.begin(), written.end());
}

void CLowerer::NoteWrite(long long llId)
{
    m_mapKnownConstants.erase(llId);
    if (!m_aRegionWrites.empty())
        m_aRegionWrites.back().insert(llId);
}

void CLowerer::NoteConstant(long long llId, double dValue)
{
    m_mapKnownConstants[llId] = dValue;
}

bool CLowerer::Statement(TIntermNode* pNode)
{
    if (m_bFailed)
        return false;
    if (!pNode)
        return true;
    if (TIntermAggregate* pAggregate = pNode->getAsAggregate())
    {
        if (pAggregate->getOp() == EOpSequence || pAggregate->getOp() == EOpScope || pAggregate->getOp() == EOpNull)
            return Sequence(pAggregate);
    }
    if (TIntermSelection* pSelection = pNode->getAsSelectionNode())
    {
        if (pSelection->getBasicType() == EbtVoid)
            return IfStatement(pSelection);
    }
    if (TIntermLoop* pLoop = pNode->getAsLoopNode())
        return Loop(pLoop);
    if (TIntermBranch* pBranch = pNode->getAsBranchNode())
        return Branch(pBranch);
    if (TIntermSwitch* pSwitch = pNode->getAsSwitchNode())
        return Switch(pSwitch);
    if (TIntermUnary* pUnary = pNode->getAsUnaryNode())
    {
        if (IsIncDec(pUnary->getOp()))
        {
            SValue discarded;
            return IncDec(pUnary, false, discarded);
        }
    }
    if (TIntermTyped* pTyped = pNode->getAsTyped())
    {
        SValue discarded;
        return Expression(pTyped, discarded) || !m_bFailed;
    }
    Fail(Line(pNode), "unsupported statement");
    return false;
}

bool CLowerer::Sequence(TIntermAggregate* pNode)
{
    for (TIntermNode* pChild : pNode->getSequence())
    {
        if (!Statement(pChild))
            return false;
    }
    return true;
}

bool CLowerer::IfStatement(TIntermSelection* pNode)
{
    const int iLine = Line(pNode);
    SValue condition;
    if (!Expression(pNode->getCondition(), condition) || condition.aSlots.empty())
        return false;
    Emit(Op_If, STxeOperand(), {Lane(condition.aSlots[0], 0)}, iLine);
    BeginRegion();
    const bool bThen = Statement(pNode->getTrueBlock());
    EndRegion();
    if (pNode->getFalseBlock())
    {
        Emit(Op_Else, STxeOperand(), {}, Line(pNode->getFalseBlock()) ? Line(pNode->getFalseBlock()) : iLine);
        BeginRegion();
        const bool bElse = bThen && Statement(pNode->getFalseBlock());
        EndRegion();
        if (!bElse)
            return false;
    }
    Emit(Op_Endif, STxeOperand(), {}, iLine);
    return bThen && !m_bFailed;
}

STxeTrips CLowerer::TripCount(TIntermLoop* pNode)
{
    STxeTrips unknown;
    unknown.iBest = k_iUnknownTripsBest;
    unknown.iAverage = k_iUnknownTripsAverage;
    unknown.iWorst = k_iUnknownTripsWorst;

    TIntermBinary* pTest = pNode->getTest() ? pNode->getTest()->getAsBinaryNode() : nullptr;
    if (!pTest)
        return unknown;
    TOperator eCompare = pTest->getOp();
    TIntermSymbol* pCounter = pTest->getLeft()->getAsSymbolNode();
    TIntermConstantUnion* pLimit = pTest->getRight()->getAsConstantUnion();
    if (!pCounter || !pLimit)
    {
        pCounter = pTest->getRight()->getAsSymbolNode();
        pLimit = pTest->getLeft()->getAsConstantUnion();
        eCompare = Mirrored(eCompare);
    }
    if (!pCounter || !pLimit || pLimit->getConstArray().empty() || !pCounter->getType().isScalar())
        return unknown;

    const auto itStart = m_mapKnownConstants.find(pCounter->getId());
    if (itStart == m_mapKnownConstants.end())
        return unknown;
    const double dStart = itStart->second;

    double dStep = 0.0;
    TIntermTyped* pTerminal = pNode->getTerminal();
    if (TIntermUnary* pUnary = pTerminal ? pTerminal->getAsUnaryNode() : nullptr)
    {
        if (!IsIncDec(pUnary->getOp()) || RootOf(pUnary->getOperand()) != pUnary->getOperand() ||
            RootOf(pUnary->getOperand())->getId() != pCounter->getId())
            return unknown;
        dStep = pUnary->getOp() == EOpPostIncrement || pUnary->getOp() == EOpPreIncrement ? 1.0 : -1.0;
    }
    else if (TIntermBinary* pBinary = pTerminal ? pTerminal->getAsBinaryNode() : nullptr)
    {
        TIntermSymbol* pTarget = pBinary->getLeft()->getAsSymbolNode();
        TIntermConstantUnion* pAmount = pBinary->getRight()->getAsConstantUnion();
        if (!pTarget || pTarget->getId() != pCounter->getId() || !pAmount || pAmount->getConstArray().empty() ||
            (pBinary->getOp() != EOpAddAssign && pBinary->getOp() != EOpSubAssign))
            return unknown;
        dStep = ConstantAsDouble(pAmount->getConstArray()[0]);
        if (pBinary->getOp() == EOpSubAssign)
            dStep = -dStep;
    }
    else
    {
        return unknown;
    }
    if (dStep == 0.0 || WritesVariable(pNode->getBody(), pCounter->getId()))
        return unknown;

    const double dLimit = ConstantAsDouble(pLimit->getConstArray()[0]);
    double dValue = dStart;
    int iTrips = 0;
    while (Compare(eCompare, dValue, dLimit))
    {
        if (++iTrips > k_iMaxSimulatedTrips)
            return unknown;
        dValue += dStep;
    }
    if (!pNode->testFirst())
        iTrips = std::max(iTrips, 1);
    STxeTrips trips;
    trips.bKnown = true;
    trips.iBest = trips.iAverage = trips.iWorst = iTrips;
    return trips;
}

bool CLowerer::Loop(TIntermLoop* pNode)
{
    const int iLine = Line(pNode);
    const STxeTrips trips = TripCount(pNode);
    SetTrips(Emit(Op_Loop, STxeOperand(), {}, iLine), trips);
    if (m_bFailed)
        return false;

    m_control.EnterLoop(pNode->getTerminal());
    BeginRegion();

    bool bOk = true;
    auto test = [&]() {
        SValue condition;
        if (!Expression(pNode->getTest(), condition) || condition.aSlots.empty())
            return false;
        Emit(Op_Brkz, STxeOperand(), {Lane(condition.aSlots[0], 0)}, Line(pNode->getTest()));
        return !m_bFailed;
    };
    if (pNode->getTest() && pNode->testFirst())
        bOk = test();
    bOk = bOk && Statement(pNode->getBody());
    if (bOk && pNode->getTerminal())
        bOk = Statement(pNode->getTerminal());
    if (bOk && pNode->getTest() && !pNode->testFirst())
        bOk = test();
    Emit(Op_Endloop, STxeOperand(), {}, iLine);

    EndRegion();
    m_control.Leave();
    if (bOk)
        LeaveOnReturnFlag(iLine);
    return bOk && !m_bFailed;
}

void CLowerer::LeaveOnReturnFlag(int iLine)
{
    // A return inside a loop or switch also leaves the levels around it in the same function.
    const int iFunction = m_control.CurrentFunction();
    if (iFunction < 0 || m_control.ReturnFlag(iFunction) < 0)
        return;
    STxeOperand flag;
    flag.eFile = File_Temp;
    flag.iIndex = m_control.ReturnFlag(iFunction);
    flag.uiCount = 1;
    Emit(Op_If, STxeOperand(), {flag}, iLine);
    Emit(Op_Brk, STxeOperand(), {}, iLine);
    Emit(Op_Endif, STxeOperand(), {}, iLine);
}

bool CLowerer::Switch(TIntermSwitch* pNode)
{
    const int iLine = Line(pNode);
    SValue selector;
    if (!Expression(pNode->getCondition()->getAsTyped(), selector) || selector.aSlots.empty())
        return false;
    const STxeOperand value = Lane(selector.aSlots[0], 0);
    TIntermSequence& body = pNode->getBody()->getSequence();

    bool bHasDefault = false;
    for (TIntermNode* pChild : body)
    {
        TIntermBranch* pLabel = pChild ? pChild->getAsBranchNode() : nullptr;
        bHasDefault = bHasDefault || (pLabel && pLabel->getFlowOp() == EOpDefault);
    }
    // Whether any case label matches decides whether default is taken.
    STxeOperand anyCase = Immediate(0.0f);
    bool bHasCase = false;
    for (TIntermNode* pChild : bHasDefault ? body : TIntermSequence())
    {
        TIntermBranch* pLabel = pChild ? pChild->getAsBranchNode() : nullptr;
        if (pLabel && pLabel->getFlowOp() == EOpCase && pLabel->getExpression())
        {
            SValue label;
            if (!Expression(pLabel->getExpression(), label) || label.aSlots.empty())
                return false;
            STxeOperand hit = Compute(Op_Seq, {value, Lane(label.aSlots[0], 0)}, 1, Line(pLabel));
            anyCase = bHasCase ? Compute(Op_Or, {anyCase, hit}, 1, Line(pLabel)) : hit;
            bHasCase = true;
        }
    }

    // A one-trip loop gives "break" its meaning; fallthrough keeps "matched" set.
    STxeTrips once;
    once.bKnown = true;
    SetTrips(Emit(Op_Loop, STxeOperand(), {}, iLine), once);
    if (m_bFailed)
        return false;
    STxeOperand matched = NewTemp(1);
    m_setVariableTemps.insert(matched.iIndex);
    Emit(Op_Mov, matched, {Immediate(0.0f)}, iLine);
    BeginRegion();
    m_control.EnterSwitch();

    bool bOpen = false;
    int iLabelLine = iLine;
    for (TIntermNode* pChild : body)
    {
        TIntermBranch* pLabel = pChild ? pChild->getAsBranchNode() : nullptr;
        if (pLabel && (pLabel->getFlowOp() == EOpCase || pLabel->getFlowOp() == EOpDefault))
        {
            iLabelLine = Line(pLabel) ? Line(pLabel) : iLine;
            if (bOpen)
            {
                Emit(Op_Endif, STxeOperand(), {}, Line(pLabel));
                EndRegion();
                bOpen = false;
            }
            STxeOperand hit;
            if (pLabel->getFlowOp() == EOpDefault)
            {
                hit = Compute(Op_Seq, {anyCase, Immediate(0.0f)}, 1, Line(pLabel));
            }
            else
            {
                SValue label;
                if (!Expression(pLabel->getExpression(), label) || label.aSlots.empty())
                    return false;
                hit = Compute(Op_Seq, {value, Lane(label.aSlots[0], 0)}, 1, Line(pLabel));
            }
            Emit(Op_Or, matched, {matched, hit}, Line(pLabel));
            continue;
        }
        if (!bOpen)
        {
            Emit(Op_If, STxeOperand(), {matched}, iLabelLine);
            BeginRegion();
            bOpen = true;
        }
        if (!Statement(pChild))
        {
            m_control.Leave();
            return false;
        }
    }
    m_control.Leave();
    if (bOpen)
    {
        Emit(Op_Endif, STxeOperand(), {}, iLine);
        EndRegion();
    }
    EndRegion();
    Emit(Op_Endloop, STxeOperand(), {}, iLine);
    LeaveOnReturnFlag(iLine);
    return !m_bFailed;
}

bool CLowerer::Branch(TIntermBranch* pNode)
{
    const int iLine = Line(pNode);
    switch (pNode->getFlowOp())
    {
    case EOpKill:
        Emit(Op_Kil, STxeOperand(), {}, iLine);
        break;
    case EOpBreak:
        Emit(Op_Brk, STxeOperand(), {}, iLine);
        break;
    case EOpContinue:
    {
        if (!m_control.InLoop() || m_control.InnermostIsSwitch())
        {
            Fail(iLine, "'continue' inside 'switch' is not supported by the TXE code generator");
            return false;
        }
        // cont jumps back to the loop's top, so the increment runs first.
        TIntermTyped* pTerminal = m_control.InnermostIncrement();
        if (pTerminal && !Statement(pTerminal))
            return false;
        Emit(Op_Cont, STxeOperand(), {}, iLine);
        break;
    }
    case EOpReturn:
    {
        if (!Return(pNode))
            return false;
        break;
    }
    default:
        Fail(iLine, "unsupported branch");
        return false;
    }
    return !m_bFailed;
}

bool CLowerer::Return(TIntermBranch* pNode)
{
    const int iLine = Line(pNode);
    // The returned expression may inline calls, which push and pop functions: this
    // function is named by its index, not held by reference.
    const int iFunction = m_control.CurrentFunction();
    if (iFunction < 0)
    {
        Fail(iLine, "return outside a function");
        return false;
    }
    if (iFunction == 0)
    {
        Emit(Op_Ret, STxeOperand(), {}, iLine);
        return !m_bFailed;
    }
    if (pNode->getExpression())
    {
        SValue result;
        if (!Expression(pNode->getExpression(), result))
            return false;
        if (!m_control.IsWrapped(iFunction))
        {
            // The only return ends the body: its value is the result as it stands.
            m_control.SetResult(iFunction, result);
        }
        else
        {
            if (!m_control.HasResult(iFunction))
            {
                SValue slots;
                for (const STxeOperand& op : result.aSlots)
                {
                    STxeOperand slot = NewTemp(op.uiCount);
                    m_setVariableTemps.insert(slot.iIndex);
                    slots.aSlots.push_back(slot);
                }
                m_control.SetResult(iFunction, slots);
            }
            const SValue slots = m_control.Result(iFunction);
            for (std::size_t k = 0; k < result.aSlots.size() && k < slots.aSlots.size(); ++k)
                MoveInto(slots.aSlots[k], Broadcast(result.aSlots[k], slots.aSlots[k].uiCount), iLine);
        }
    }
    if (m_control.IsWrapped(iFunction))
    {
        if (m_control.ReturnFlag(iFunction) >= 0 && m_control.OpenLevels(iFunction) > 0)
        {
            STxeOperand flag;
            flag.eFile = File_Temp;
            flag.iIndex = m_control.ReturnFlag(iFunction);
            flag.uiCount = 1;
            Emit(Op_Mov, flag, {Immediate(1.0f)}, iLine);
        }
        Emit(Op_Brk, STxeOperand(), {}, iLine);
    }
    return !m_bFailed;
}

bool CLowerer::Call(TIntermAggregate* pNode, SValue& value)
{
    const int iLine = Line(pNode);
    const std::string mangled = pNode->getName().c_str();
    auto it = m_mapFunctions.find(mangled);
    if (it == m_mapFunctions.end())
    {
        Fail(iLine, "'" + FunctionName(pNode->getName()) + "' : function has no body");
        return false;
    }
    if (m_setActiveFunctions.count(mangled))
    {
        Fail(iLine, "'" + FunctionName(pNode->getName()) + "' : recursion is not allowed");
        return false;
    }
    TIntermAggregate* pDefinition = it->second;
    TIntermAggregate* pParameters = ParametersOf(pDefinition);
    TIntermNode* pBody = BodyOf(pDefinition);
    const TIntermSequence& aArgs = pNode->getSequence();
    const std::size_t uiParams = pParameters ? pParameters->getSequence().size() : 0;
    if (uiParams != aArgs.size())
    {
        Fail(iLine, "'" + FunctionName(pNode->getName()) + "' : wrong number of arguments");
        return false;
    }

    // Registers of variables passed as out arguments: no in-parameter may alias them.
    std::set<int> setOutTemps;
    for (std::size_t i = 0; i < uiParams; ++i)
    {
        TIntermSymbol* pParam = pParameters->getSequence()[i] ? pParameters->getSequence()[i]->getAsSymbolNode() : nullptr;
        TIntermTyped* pArg = aArgs[i] ? aArgs[i]->getAsTyped() : nullptr;
        TIntermSymbol* pRoot = pArg ? RootOf(pArg) : nullptr;
        if (!pParam || !pRoot || (pParam->getQualifier().storage != EvqOut && pParam->getQualifier().storage != EvqInOut))
            continue;
        auto itVariable = m_mapVariables.find(pRoot->getId());
        if (itVariable != m_mapVariables.end())
            setOutTemps.insert(itVariable->second->aTemps.begin(), itVariable->second->aTemps.end());
    }

    std::vector<long long> aBound;
    std::vector<std::pair<SAccess, SAccess>> aCopyBack; // (argument, parameter)
    std::vector<TIntermSymbol*> aCopyBackRoots;
    std::vector<TIntermSymbol*> aWrittenRoots;
    for (std::size_t i = 0; i < uiParams; ++i)
    {
        TIntermSymbol* pParam = pParameters->getSequence()[i] ? pParameters->getSequence()[i]->getAsSymbolNode() : nullptr;
        TIntermTyped* pArg = aArgs[i] ? aArgs[i]->getAsTyped() : nullptr;
        if (!pParam || !pArg)
        {
            Fail(iLine, "unsupported function parameter");
            return false;
        }
        const TStorageQualifier eQualifier = pParam->getQualifier().storage;
        const bool bOut = eQualifier == EvqOut || eQualifier == EvqInOut;
        m_mapVariables.erase(pParam->getId());
        aBound.push_back(pParam->getId());

        if (!bOut)
        {
            SValue argValue;
            if (!Expression(pArg, argValue))
                return false;
            // A global could change under the callee, an out argument would change it.
            bool bAliasable = !pParam->getType().isArray() && !WritesVariable(pBody, pParam->getId());
            for (const STxeOperand& op : argValue.aSlots)
            {
                bAliasable = bAliasable && op.eFile != File_Output && op.iRelative < 0 &&
                             !(op.eFile == File_Temp && (IsGlobalRegister(op.iIndex) || setOutTemps.count(op.iIndex)));
            }
            if (bAliasable)
            {
                // Read-only parameter: use the caller's operands, no copy.
                SVariable alias;
                alias.eStorage = Storage_Alias;
                alias.aLanes = SlotLanes(pParam->getType());
                alias.alias = argValue;
                for (const STxeOperand& op : argValue.aSlots)
                {
                    if (op.eFile == File_Temp)
                        m_setVariableTemps.insert(op.iIndex);
                }
                Bind(pParam->getId(), alias);
                continue;
            }
            SAccess target;
            if (!ResolveAccess(pParam, target) || !Store(target, argValue, iLine))
                return false;
            continue;
        }

        TIntermSymbol* pRoot = RootOf(pArg);
        SVariable* pArgVariable = pRoot && pArg == pRoot ? Variable(pRoot) : nullptr;
        if (pArgVariable && pArgVariable->eStorage == Storage_Temp && !pArgVariable->bGlobal &&
            pArgVariable->aLanes == SlotLanes(pParam->getType()))
        {
            // A whole local passed as out or inout: the callee writes it in place.
            Bind(pParam->getId(), *pArgVariable);
            aWrittenRoots.push_back(pRoot);
            continue;
        }
        SAccess source;
        SAccess target;
        if (!pRoot || !IsAccessNode(pArg) || !ResolveAccess(pArg, source) || !ResolveAccess(pParam, target))
        {
            if (!m_bFailed)
                Fail(iLine, "an out argument must be a variable");
            return false;
        }
        if (eQualifier == EvqInOut)
        {
            SValue current;
            if (!Load(source, iLine, current) || !Store(target, current, iLine))
                return false;
        }
        aCopyBack.emplace_back(source, target);
        aCopyBackRoots.push_back(pRoot);
    }

    CReturnFinder returns;
    if (pBody)
        pBody->traverse(&returns);
    const bool bWrapped = returns.iReturns > 1 || (returns.iReturns == 1 && !EndsWithReturn(pBody));
    int iReturnFlag = -1;
    if (bWrapped && returns.bInLoop)
    {
        iReturnFlag = NewRegister();
        m_setVariableTemps.insert(iReturnFlag);
        STxeOperand flag;
        flag.eFile = File_Temp;
        flag.iIndex = iReturnFlag;
        flag.uiCount = 1;
        Emit(Op_Mov, flag, {Immediate(0.0f)}, iLine);
    }
    if (bWrapped)
    {
        STxeTrips once;
        once.bKnown = true;
        SetTrips(Emit(Op_Loop, STxeOperand(), {}, iLine), once);
        if (m_bFailed)
            return false;
    }

    const std::size_t uiCreatedBefore = m_aCreated.size();
    m_control.EnterFunction(bWrapped, iReturnFlag);
    m_setActiveFunctions.insert(mangled);
    BeginRegion();
    const bool bOk = Statement(pBody);
    EndRegion();
    m_setActiveFunctions.erase(mangled);
    const SValue result = m_control.LeaveFunction();
    if (!bOk)
        return false;
    if (bWrapped)
        Emit(Op_Endloop, STxeOperand(), {}, iLine);

    for (TIntermSymbol* pRoot : aWrittenRoots)
        NoteWrite(pRoot->getId());
    for (std::size_t i = 0; i < aCopyBack.size(); ++i)
    {
        SValue result;
        if (!Load(aCopyBack[i].second, iLine, result) || !Store(aCopyBack[i].first, result, iLine))
            return false;
        NoteWrite(aCopyBackRoots[i]->getId());
    }

    // Locals of this call must not outlive it: the next call gets fresh registers.
    for (std::size_t i = uiCreatedBefore; i < m_aCreated.size(); ++i)
        m_mapVariables.erase(m_aCreated[i]);
    m_aCreated.resize(uiCreatedBefore);
    for (long long llId : aBound)
        m_mapVariables.erase(llId);

    value = result;
    if (value.aSlots.empty() && pNode->getBasicType() != EbtVoid)
    {
        for (std::uint8_t uiLanes : SlotLanes(pNode->getType()))
            value.aSlots.push_back(Immediate(0.0f, uiLanes));
    }
    return !m_bFailed;
}

} // namespace ZamCompiler
