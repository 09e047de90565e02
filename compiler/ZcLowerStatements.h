#pragma once

// Lowers statements: sequences, if, loops, switch and the jumps. Control flow stays
// structured, so the analysis can walk paths without a graph.

#include "ZcLowerControl.h"
#include "ZcLowerExpressions.h"

namespace ZamCompiler
{

class CStatementLowerer
{
public:
    CStatementLowerer(CProgramBuilder& builder, CKnownValues& known, CControlStack& control,
                      CExpressionLowerer& expressions, CTreeFacts& facts)
        : m_builder(builder), m_known(known), m_control(control), m_expressions(expressions), m_facts(facts)
    {
    }

    bool Lower(TIntermNode* pNode);

private:
    bool Sequence(glslang::TIntermAggregate* pNode);
    bool If(glslang::TIntermSelection* pNode);
    bool Loop(glslang::TIntermLoop* pNode);
    bool LoopTest(glslang::TIntermLoop* pNode);
    bool Switch(glslang::TIntermSwitch* pNode);
    bool SwitchBody(glslang::TIntermSwitch* pNode, const STxeOperand& selector, const STxeOperand& anyCase);
    bool CaseHit(glslang::TIntermBranch* pLabel, const STxeOperand& selector, STxeOperand& hit);
    bool AnyCase(glslang::TIntermSwitch* pNode, const STxeOperand& selector, STxeOperand& anyCase);
    bool Branch(glslang::TIntermBranch* pNode);
    bool Continue(glslang::TIntermBranch* pNode);
    bool Return(glslang::TIntermBranch* pNode);
    void StoreReturnValue(int iFunction, const SValue& result, int iLine);
    // After a loop or switch: leave the levels around it too when a return set the flag.
    void LeaveOnReturnFlag(int iLine);

    CProgramBuilder& m_builder;
    CKnownValues& m_known;
    CControlStack& m_control;
    CExpressionLowerer& m_expressions;
    CTreeFacts& m_facts;
};

} // namespace ZamCompiler
