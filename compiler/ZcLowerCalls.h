#pragma once

// Inlines user functions at every call (GLSL ES has no recursion): binds the parameters,
// lowers the body in its own frame and writes out arguments back.

#include "ZcLowerControl.h"
#include "ZcLowerExpressions.h"

#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace ZamCompiler
{

class CStatementLowerer;
class CTreeFacts;

class CCallInliner
{
public:
    CCallInliner(CProgramBuilder& builder, CVariableStore& variables, CKnownValues& known, CControlStack& control,
                 CExpressionLowerer& expressions, CStatementLowerer& statements, CTreeFacts& facts)
        : m_builder(builder), m_variables(variables), m_known(known), m_control(control), m_expressions(expressions),
          m_statements(statements), m_facts(facts)
    {
    }

    // Every function definition at the top level of the tree.
    void Collect(glslang::TIntermAggregate* pRoot);
    // Lowers main's body; false (and an error) when there is none or it fails.
    bool RunEntryPoint();
    bool Inline(glslang::TIntermAggregate* pCall, SValue& value);

private:
    // What binding the parameters of one call left to undo and write back.
    struct SBindings
    {
        std::vector<long long> aBound;
        std::vector<std::pair<SAccess, SAccess>> aCopyBack; // (argument, parameter)
        std::vector<long long> aCopyBackRoots;
        std::vector<long long> aWrittenRoots;
    };

    glslang::TIntermAggregate* Definition(glslang::TIntermAggregate* pCall);
    std::set<int> OutArgumentRegisters(glslang::TIntermAggregate* pParameters, const glslang::TIntermSequence& aArgs);
    bool BindIn(glslang::TIntermSymbol* pParam, glslang::TIntermTyped* pArg, TIntermNode* pBody,
                const std::set<int>& setOutTemps, int iLine);
    bool BindOut(glslang::TIntermSymbol* pParam, glslang::TIntermTyped* pArg, int iLine, SBindings& bindings);
    bool BindParameters(glslang::TIntermAggregate* pCall, glslang::TIntermAggregate* pDefinition, SBindings& bindings);
    bool RunBody(glslang::TIntermAggregate* pDefinition, int iLine, SValue& result);
    bool WriteBack(const SBindings& bindings, int iLine);

    CProgramBuilder& m_builder;
    CVariableStore& m_variables;
    CKnownValues& m_known;
    CControlStack& m_control;
    CExpressionLowerer& m_expressions;
    CStatementLowerer& m_statements;
    // What a body's returns need, found once per function.
    struct SReturnShape
    {
        bool bWrapped = false;    // a return before the end: the body runs in a one-trip loop
        bool bNeedsFlag = false;  // a return inside a loop or switch
    };
    SReturnShape ReturnShape(TIntermNode* pBody);

    // By mangled name, viewing the names in the tree, which outlives the lowering: a call
    // looks its function up without building a string.
    std::unordered_map<std::string_view, glslang::TIntermAggregate*> m_mapFunctions;
    std::vector<const glslang::TIntermAggregate*> m_aActiveFunctions; // being inlined, innermost last
    std::unordered_map<const TIntermNode*, SReturnShape> m_mapReturnShapes;
    CTreeFacts& m_facts;
};

} // namespace ZamCompiler
