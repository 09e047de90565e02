#pragma once

// Lowers expressions: operators, conversions, selections, assignments and access paths
// into variables. Calls go to the inliner, built-in functions to their table.

#include "ZcLowerStorage.h"
#include "ZcLowerTrips.h"

#include <glslang/MachineIndependent/localintermediate.h>

namespace ZamCompiler
{

class CCallInliner;
class CTreeFacts;

class CExpressionLowerer
{
public:
    CExpressionLowerer(CProgramBuilder& builder, CVariableStore& variables, CKnownValues& known, CCallInliner& calls,
                       CTreeFacts& facts)
        : m_builder(builder), m_variables(variables), m_known(known), m_calls(calls), m_facts(facts)
    {
    }

    bool Lower(glslang::TIntermTyped* pNode, SValue& value);
    // ++ and --; a statement does not need the value, so a post-increment keeps no copy.
    bool IncDec(glslang::TIntermUnary* pNode, bool bValueUsed, SValue& value);
    // Where an access path (a, a[i], a.b, a.xy and combinations) points.
    bool ResolveAccess(glslang::TIntermTyped* pNode, SAccess& access);
    // Lowers the node and writes the value to it, as an out argument is written.
    bool WriteTo(glslang::TIntermTyped* pTarget, const SValue& value, int iLine);

private:
    // ZcLowerExpressions.cpp
    SValue ConstantValue(const glslang::TIntermConstantUnion* pConstant);
    bool Binary(glslang::TIntermBinary* pNode, SValue& value);
    bool Arithmetic(glslang::TIntermBinary* pNode, SValue& value);
    bool Unary(glslang::TIntermUnary* pNode, SValue& value);
    bool Conversion(glslang::TIntermUnary* pNode, SValue& value);
    bool Aggregate(glslang::TIntermAggregate* pNode, SValue& value);
    bool Comma(glslang::TIntermAggregate* pNode, SValue& value);
    bool Operation(glslang::TOperator eOp, const glslang::TType& type, const std::vector<glslang::TIntermTyped*>& aNodes,
                   int iLine, SValue& value);
    bool LowerAll(glslang::TOperator eOp, const std::vector<glslang::TIntermTyped*>& aNodes, int iLine,
                  std::vector<SValue>& aValues);
    bool LowerOperand(glslang::TOperator eOp, glslang::TIntermTyped* pNode, int iLine, SValue& value);
    // ZcLowerSelections.cpp: parts of computed values, ?:, && and ||
    bool Select(glslang::TIntermBinary* pNode, SValue& value);
    bool SelectSlots(glslang::TIntermBinary* pNode, const SValue& whole, SValue& value);
    bool DynamicLane(glslang::TIntermBinary* pNode, SValue& value);
    bool Ternary(glslang::TIntermSelection* pNode, SValue& value);
    bool BranchingTernary(glslang::TIntermSelection* pNode, const STxeOperand& test, SValue& value);
    bool ShortCircuit(glslang::TIntermBinary* pNode, SValue& value);
    // ZcLowerAssignments.cpp
    bool Assignment(glslang::TIntermBinary* pNode, SValue& value);
    // ZcLowerAccess.cpp
    bool ResolveRoot(glslang::TIntermTyped* pNode, SAccess& access);
    bool IndexOutOfRange(glslang::TIntermBinary* pNode, int iIndex);
    bool ResolveIndex(glslang::TIntermBinary* pNode, SAccess& access);
    bool ResolveDynamicIndex(glslang::TIntermBinary* pNode, SAccess& access);
    bool SelectAtRunTime(glslang::TIntermBinary* pNode, SAccess& access);
    bool ResolveMember(glslang::TIntermBinary* pNode, SAccess& access);
    bool ResolveSwizzle(glslang::TIntermBinary* pNode, SAccess& access);

    CProgramBuilder& m_builder;
    CVariableStore& m_variables;
    CKnownValues& m_known;
    CCallInliner& m_calls;
    CTreeFacts& m_facts;
};

int LineOf(const TIntermNode* pNode);

} // namespace ZamCompiler
