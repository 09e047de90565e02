#include "ZcLowerCalls.h"

#include "ZcLowerStatements.h"
#include "ZcLowerTree.h"

#include <algorithm>
#include <utility>

namespace ZamCompiler
{

using namespace glslang;

namespace
{

bool IsOutQualifier(TStorageQualifier eQualifier)
{
    return eQualifier == EvqOut || eQualifier == EvqInOut;
}

TIntermSymbol* Parameter(TIntermAggregate* pParameters, std::size_t i)
{
    TIntermNode* pNode = pParameters->getSequence()[i];
    return pNode ? pNode->getAsSymbolNode() : nullptr;
}

std::string_view NameOf(const TIntermAggregate* pNode)
{
    return std::string_view(pNode->getName().data(), pNode->getName().size());
}

} // namespace

void CCallInliner::Collect(TIntermAggregate* pRoot)
{
    for (TIntermNode* pChild : pRoot->getSequence())
    {
        TIntermAggregate* pAggregate = pChild ? pChild->getAsAggregate() : nullptr;
        if (pAggregate && pAggregate->getOp() == EOpFunction)
            m_mapFunctions[NameOf(pAggregate)] = pAggregate;
    }
}

bool CCallInliner::RunEntryPoint()
{
    const auto itMain = m_mapFunctions.find("main(");
    if (itMain == m_mapFunctions.end())
    {
        m_builder.Fail(1, "main", "missing entry point");
        return false;
    }
    TIntermNode* pBody = BodyOf(itMain->second);
    m_control.EnterFunction(false, -1);
    m_aActiveFunctions.push_back(itMain->second);
    const bool bOk = m_statements.Lower(pBody);
    m_control.LeaveFunction();
    return bOk;
}

TIntermAggregate* CCallInliner::Definition(TIntermAggregate* pCall)
{
    const auto it = m_mapFunctions.find(NameOf(pCall));
    const char* pProblem = nullptr;
    if (it == m_mapFunctions.end())
        pProblem = "the function is declared but has no body";
    else if (std::find(m_aActiveFunctions.begin(), m_aActiveFunctions.end(), it->second) != m_aActiveFunctions.end())
        pProblem = "recursion is not allowed";
    else if (TIntermAggregate* pParameters = ParametersOf(it->second);
             (pParameters ? pParameters->getSequence().size() : 0) != pCall->getSequence().size())
        pProblem = "wrong number of arguments";
    if (!pProblem)
        return it->second;
    m_builder.Fail(LineOf(pCall), FunctionName(pCall->getName()), pProblem);
    return nullptr;
}

// Registers of variables passed as out arguments: no in-parameter may alias them.
std::set<int> CCallInliner::OutArgumentRegisters(TIntermAggregate* pParameters, const TIntermSequence& aArgs)
{
    std::set<int> setOutTemps;
    for (std::size_t i = 0; pParameters && i < aArgs.size(); ++i)
    {
        TIntermSymbol* pParam = Parameter(pParameters, i);
        TIntermTyped* pArg = aArgs[i] ? aArgs[i]->getAsTyped() : nullptr;
        TIntermSymbol* pRoot = pArg ? RootOf(pArg) : nullptr;
        if (!pParam || !pRoot || !IsOutQualifier(pParam->getQualifier().storage))
            continue;
        if (const SVariable* pVariable = m_variables.Find(pRoot->getId()))
            setOutTemps.insert(pVariable->aTemps.begin(), pVariable->aTemps.end());
    }
    return setOutTemps;
}

bool CCallInliner::BindIn(TIntermSymbol* pParam, TIntermTyped* pArg, TIntermNode* pBody,
                          const std::set<int>& setOutTemps, int iLine)
{
    SValue argValue;
    if (!m_expressions.Lower(pArg, argValue))
        return false;
    // A global could change under the callee, an out argument would change it.
    bool bAliasable = !pParam->getType().isArray() && !m_facts.Writes(pBody, pParam->getId());
    for (const STxeOperand& op : argValue.aSlots)
    {
        bAliasable = bAliasable && op.eFile != File_Output && op.iRelative < 0 &&
                     !(op.eFile == File_Temp && (m_builder.IsGlobal(op.iIndex) || setOutTemps.count(op.iIndex)));
    }
    if (!bAliasable)
    {
        SAccess target;
        return m_expressions.ResolveAccess(pParam, target) && m_variables.Store(target, argValue, iLine);
    }
    // Read-only parameter: use the caller's operands, no copy.
    SVariable alias;
    alias.eStorage = Storage_Alias;
    alias.pSymbol = pParam;
    AppendSlotLanes(pParam->getType(), alias.aLanes);
    alias.alias = argValue;
    for (const STxeOperand& op : argValue.aSlots)
    {
        if (op.eFile == File_Temp)
            m_builder.MarkVariable(op.iIndex);
    }
    m_variables.Bind(pParam->getId(), std::move(alias));
    return true;
}

bool CCallInliner::BindOut(TIntermSymbol* pParam, TIntermTyped* pArg, int iLine, SBindings& bindings)
{
    TIntermSymbol* pRoot = RootOf(pArg);
    SVariable* pArgVariable = pRoot && pArg == pRoot ? m_variables.Variable(pRoot) : nullptr;
    if (pArgVariable && pArgVariable->eStorage == Storage_Temp && !pArgVariable->bGlobal &&
        pArgVariable->aLanes.Equals(SlotLanes(pParam->getType())))
    {
        // A whole local passed as out or inout: the callee writes it in place.
        m_variables.Bind(pParam->getId(), *pArgVariable);
        bindings.aWrittenRoots.push_back(pRoot->getId());
        return true;
    }
    SAccess source;
    SAccess target;
    if (!pRoot || !IsAccessNode(pArg) || !m_expressions.ResolveAccess(pArg, source) ||
        !m_expressions.ResolveAccess(pParam, target))
    {
        if (!m_builder.Failed())
            m_builder.Fail(iLine, UserName(pParam), "an out argument must be a variable");
        return false;
    }
    if (pParam->getQualifier().storage == EvqInOut)
    {
        SValue current;
        if (!m_variables.Load(source, iLine, current) || !m_variables.Store(target, current, iLine))
            return false;
    }
    bindings.aCopyBack.emplace_back(source, target);
    bindings.aCopyBackRoots.push_back(pRoot->getId());
    return true;
}

bool CCallInliner::BindParameters(TIntermAggregate* pCall, TIntermAggregate* pDefinition, SBindings& bindings)
{
    const int iLine = LineOf(pCall);
    TIntermAggregate* pParameters = ParametersOf(pDefinition);
    TIntermNode* pBody = BodyOf(pDefinition);
    const TIntermSequence& aArgs = pCall->getSequence();
    const std::set<int> setOutTemps = OutArgumentRegisters(pParameters, aArgs);
    bindings.aBound.reserve(aArgs.size());
    for (std::size_t i = 0; i < aArgs.size(); ++i)
    {
        TIntermSymbol* pParam = Parameter(pParameters, i);
        TIntermTyped* pArg = aArgs[i] ? aArgs[i]->getAsTyped() : nullptr;
        if (!pParam || !pArg)
        {
            m_builder.Refuse(iLine, FunctionName(pCall->getName()), "this parameter");
            return false;
        }
        m_variables.Unbind(pParam->getId());
        bindings.aBound.push_back(pParam->getId());
        const bool bBound = IsOutQualifier(pParam->getQualifier().storage)
                                ? BindOut(pParam, pArg, iLine, bindings)
                                : BindIn(pParam, pArg, pBody, setOutTemps, iLine);
        if (!bBound)
            return false;
    }
    return true;
}

CCallInliner::SReturnShape CCallInliner::ReturnShape(TIntermNode* pBody)
{
    const auto it = m_mapReturnShapes.find(pBody);
    if (it != m_mapReturnShapes.end())
        return it->second;
    const SReturnCount returns = m_facts.Returns(pBody);
    SReturnShape shape;
    shape.bWrapped = returns.iReturns > 1 || (returns.iReturns == 1 && !EndsWithReturn(pBody));
    shape.bNeedsFlag = shape.bWrapped && returns.bInsideLevel;
    m_mapReturnShapes.emplace(pBody, shape);
    return shape;
}

// A body with a return before its end runs inside a one-trip loop, each return a break;
// a return nested in a loop or switch also sets a flag that breaks the levels around it.
bool CCallInliner::RunBody(TIntermAggregate* pDefinition, int iLine, SValue& result)
{
    TIntermNode* pBody = BodyOf(pDefinition);
    const SReturnShape shape = ReturnShape(pBody);
    const bool bWrapped = shape.bWrapped;
    int iReturnFlag = -1;
    if (shape.bNeedsFlag)
    {
        iReturnFlag = m_builder.NewRegister();
        m_builder.MarkVariable(iReturnFlag);
        m_builder.Emit(Op_Mov, TempOperand(iReturnFlag, 1), {m_builder.Immediate(0.0f)}, iLine);
    }
    if (bWrapped)
        m_builder.EmitOneTripLoop(iLine);
    if (m_builder.Failed())
        return false;

    m_control.EnterFunction(bWrapped, iReturnFlag);
    m_aActiveFunctions.push_back(pDefinition);
    m_known.BeginRegion();
    const bool bOk = m_statements.Lower(pBody);
    m_known.EndRegion();
    m_aActiveFunctions.pop_back();
    result = m_control.LeaveFunction();
    if (bOk && bWrapped)
        m_builder.Emit(Op_Endloop, STxeOperand(), {}, iLine);
    return bOk;
}

bool CCallInliner::WriteBack(const SBindings& bindings, int iLine)
{
    for (long long llRoot : bindings.aWrittenRoots)
        m_known.NoteWrite(llRoot);
    for (std::size_t i = 0; i < bindings.aCopyBack.size(); ++i)
    {
        SValue result;
        if (!m_variables.Load(bindings.aCopyBack[i].second, iLine, result) ||
            !m_variables.Store(bindings.aCopyBack[i].first, result, iLine))
            return false;
        m_known.NoteWrite(bindings.aCopyBackRoots[i]);
    }
    return true;
}

bool CCallInliner::Inline(TIntermAggregate* pCall, SValue& value)
{
    const int iLine = LineOf(pCall);
    TIntermAggregate* pDefinition = Definition(pCall);
    SBindings bindings;
    if (!pDefinition || !BindParameters(pCall, pDefinition, bindings))
        return false;

    const std::size_t uiLocals = m_variables.MarkLocals();
    SValue result;
    if (!RunBody(pDefinition, iLine, result) || !WriteBack(bindings, iLine))
        return false;

    // Locals of this call must not outlive it: the next call gets fresh registers.
    m_variables.DropLocals(uiLocals);
    for (long long llId : bindings.aBound)
        m_variables.Unbind(llId);

    value = result;
    if (value.aSlots.empty() && pCall->getBasicType() != EbtVoid)
    {
        for (std::uint8_t uiLanes : SlotLanes(pCall->getType()))
            value.aSlots.push_back(m_builder.Immediate(0.0f, uiLanes));
    }
    return !m_builder.Failed();
}

} // namespace ZamCompiler
