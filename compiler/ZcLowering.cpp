#include "ZcLowering.h"

#include "ZcLowerCalls.h"
#include "ZcLowerStatements.h"
#include "ZcLowerTree.h"

namespace ZamCompiler
{

using namespace glslang;

namespace
{

// One lowering: the parts, wired to each other, for the life of one shader.
class CShaderLowerer
{
public:
    CShaderLowerer(ETxeStage eStage, const SSourceLimits& limits, STxeProgram& program, CDiagnosticList& aDiagnostics)
        : m_builder(eStage, limits, program, aDiagnostics), m_variables(m_builder),
          m_expressions(m_builder, m_variables, m_known, m_calls, m_facts),
          m_statements(m_builder, m_known, m_control, m_expressions, m_facts),
          m_calls(m_builder, m_variables, m_known, m_control, m_expressions, m_statements, m_facts)
    {
    }

    bool Run(TIntermediate& intermediate)
    {
        TIntermAggregate* pRoot = intermediate.getTreeRoot() ? intermediate.getTreeRoot()->getAsAggregate() : nullptr;
        if (!pRoot)
        {
            m_builder.Fail(1, "the shader has no code");
            return false;
        }
        m_calls.Collect(pRoot);
        m_known.BeginRegion();
        // Global initializers run before main.
        for (TIntermNode* pChild : pRoot->getSequence())
        {
            TIntermAggregate* pAggregate = pChild ? pChild->getAsAggregate() : nullptr;
            if (pAggregate && (pAggregate->getOp() == EOpFunction || pAggregate->getOp() == EOpLinkerObjects))
                continue;
            if (!m_statements.Lower(pChild))
                return false;
        }
        const bool bOk = m_calls.RunEntryPoint();
        m_known.EndRegion();
        if (!bOk || m_builder.Failed())
            return false;
        m_builder.Finish(m_variables.InputSlotsRead());
        return true;
    }

private:
    CProgramBuilder m_builder;
    CTreeFacts m_facts;
    CKnownValues m_known;
    CControlStack m_control;
    CVariableStore m_variables;
    CExpressionLowerer m_expressions;
    CStatementLowerer m_statements;
    CCallInliner m_calls;
};

} // namespace

bool LowerShader(TIntermediate& intermediate, ETxeStage eStage, const SSourceLimits& limits, STxeProgram& program,
                 CDiagnosticList& aDiagnostics)
{
    // A fresh program, but the room the caller reserved for the instructions stays.
    std::vector<STxeInstruction> aInstructions = std::move(program.aInstructions);
    aInstructions.clear();
    program = STxeProgram();
    program.aInstructions = std::move(aInstructions);
    CShaderLowerer lowerer(eStage, limits, program, aDiagnostics);
    if (!lowerer.Run(intermediate))
    {
        if (!HasErrors(aDiagnostics))
            AddError(aDiagnostics, 1, "the shader could not be translated to TXE code");
        return false;
    }
    return true;
}

} // namespace ZamCompiler
