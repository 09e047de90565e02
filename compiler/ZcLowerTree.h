#pragma once

// Questions the lowering asks of glslang's typed tree: shapes of types, constants,
// what a node writes or returns, and the names the user wrote.

#include "TxeIsa.h"
#include "ZcLowerValue.h"

#include <glslang/MachineIndependent/localintermediate.h>

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace ZamCompiler
{

// --- types and constants ---
// A storage buffer's runtime-sized array is bound with this many elements.
constexpr int k_iRuntimeArrayElements = 16;
// Lanes of each four-lane slot the type occupies (a mat3 is {3, 3, 3}).
std::vector<std::uint8_t> SlotLanes(const glslang::TType& type);
// SlotLanes appended to a short list: a vector or a matrix without a heap allocation.
void AppendSlotLanes(const glslang::TType& type, CInlineList<std::uint8_t, 4>& aLanes);
// The number of slots SlotLanes would list, without listing them.
int SlotCount(const glslang::TType& type);
// Lanes of one slot: a vector's size, a matrix's rows.
int LanesOf(const glslang::TType& type);
bool IsFloatType(glslang::TBasicType eType);
bool IsIntegerType(glslang::TBasicType eType);
// The type of TXE instruction that computes on values of this basic type.
ETxeType TxeTypeOf(glslang::TBasicType eType);
double ConstantAsDouble(const glslang::TConstUnion& constant);
// Four floats per slot, unused lanes 0.
std::vector<float> ConstantSlots(const glslang::TType& type, const glslang::TConstUnionArray& aConstants);

// --- operators ---
bool IsAssignment(glslang::TOperator eOp);
// The operator of a compound assignment (+= gives +), EOpNull for anything else.
glslang::TOperator BaseOfCompound(glslang::TOperator eOp);
bool IsIncDec(glslang::TOperator eOp);
// Binary operators lowered lane by lane or as matrix products.
bool IsArithmetic(glslang::TOperator eOp);
bool IsComparison(glslang::TOperator eOp);
bool IsConversion(glslang::TOperator eOp);
// Whether argument i of a built-in function is an out parameter (modf's second, ...).
bool IsBuiltinOutput(glslang::TOperator eOp, std::size_t i);

// The type as GLSL writes it ("vec3", "mat4", "uint[4]", a structure's name), for messages.
std::string GlslTypeName(const glslang::TType& type);
// The operator as the user wrote it ("+", "*=", "[]"), for messages; empty for calls.
std::string OperatorName(glslang::TOperator eOp);

// --- nodes ---
// The variable at the root of an access path (a.b[2].xy gives a), or null.
glslang::TIntermSymbol* RootOf(glslang::TIntermTyped* pNode);
// The name the user wrote for an access path's innermost named part: a.b[2].xy gives "b".
std::string AccessName(glslang::TIntermTyped* pNode);
// A variable, or an index, member or swizzle of one (a literal array counts).
bool IsAccessNode(glslang::TIntermTyped* pNode);
// Any write to the variable, including passing it as an out or inout argument.
bool WritesVariable(TIntermNode* pNode, long long llId);
bool HasSideEffects(TIntermNode* pNode);

// The answers above that walk a subtree, kept: an inlined function's body is asked about
// again at every call.
struct SReturnCount
{
    int iReturns = 0;
    bool bInsideLevel = false; // a return sits inside a loop or switch
};

class CTreeFacts
{
public:
    bool Writes(TIntermNode* pNode, long long llId);
    SReturnCount Returns(TIntermNode* pBody);
    bool HasSideEffects(TIntermNode* pNode);

private:
    // Every variable a subtree writes and its returns, collected in one walk.
    struct SNodeFacts
    {
        std::vector<long long> aWritten; // ascending
        SReturnCount returns;
    };
    const SNodeFacts& Facts(TIntermNode* pNode);

    std::unordered_map<const TIntermNode*, SNodeFacts> m_mapFacts;
    std::unordered_map<const TIntermNode*, bool> m_mapSideEffects;
};

// --- functions ---
bool EndsWithReturn(TIntermNode* pBody);
glslang::TIntermAggregate* ParametersOf(glslang::TIntermAggregate* pDefinition);
TIntermNode* BodyOf(glslang::TIntermAggregate* pDefinition);
// "f(vf2;" gives "f".
std::string FunctionName(const glslang::TString& mangled);
// The name as the user wrote it: an anonymous block is known by its block name.
std::string UserName(const glslang::TIntermSymbol* pSymbol);

} // namespace ZamCompiler
