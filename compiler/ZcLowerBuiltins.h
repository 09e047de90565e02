#pragma once

// Built-in functions and texture functions: a table from glslang's operator to a small
// function that lowers one call, and the GLSL name of every operator for messages.

#include "ZcLowerProgram.h"

#include <glslang/MachineIndependent/localintermediate.h>

namespace ZamCompiler
{

// One call of a built-in function, its arguments already lowered.
struct SBuiltinCall
{
    CProgramBuilder& builder;
    glslang::TOperator eOp;
    const glslang::TType& type; // of the result
    const std::vector<SValue>& aArgs;
    const std::vector<glslang::TIntermTyped*>& aNodes;
    int iLine;
    SValue& value; // receives the result
    // Writes a value to the call's i-th argument (an out parameter such as modf's). A plain
    // function and its context: a capturing std::function allocated on every call.
    bool (*pWriteArgument)(const void* pContext, std::size_t i, const SValue& value);
    const void* pWriteContext;

    int Lanes() const; // of the result
    // The first slot of argument i, broadcast to the wider of its own and the result's lanes.
    STxeOperand Arg(std::size_t i) const;
    // The first slot of argument i as it is.
    STxeOperand Raw(std::size_t i) const;
    STxeOperand Compute(ETxeOp eOp, std::initializer_list<STxeOperand> aSrc, int iLanes) const;
    bool WriteArgument(std::size_t i, const SValue& result) const { return pWriteArgument(pWriteContext, i, result); }
    // Appends a result slot.
    void Push(const STxeOperand& op) const { value.aSlots.push_back(op); }
};

using FBuiltin = bool (*)(const SBuiltinCall& call);

struct SBuiltinEntry
{
    glslang::TOperator eOp;
    const char* pName;
    FBuiltin pLower; // null: the function is refused
};

bool LowerBuiltin(const SBuiltinCall& call);
// The GLSL name of a built-in function's operator, empty when it has none.
std::string BuiltinName(glslang::TOperator eOp);

// The parts of the table, one per family of functions.
void AddMathBuiltins(std::vector<SBuiltinEntry>& aEntries);
void AddGeometryBuiltins(std::vector<SBuiltinEntry>& aEntries);
void AddIntegerBuiltins(std::vector<SBuiltinEntry>& aEntries);
void AddTextureBuiltins(std::vector<SBuiltinEntry>& aEntries);

} // namespace ZamCompiler
