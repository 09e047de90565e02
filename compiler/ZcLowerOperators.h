#pragma once

// Operators on lowered values: arithmetic, comparisons and constructors. They only need
// the program builder: their operands are already lowered.

#include "ZcLowerProgram.h"

#include <glslang/MachineIndependent/localintermediate.h>

namespace ZamCompiler
{

// +, -, *, /, %, the matrix products, bitwise operators, shifts and ^^. value gets the result.
bool LowerArithmetic(CProgramBuilder& builder, glslang::TOperator eOp, const glslang::TType& type, const SValue& left,
                     const SValue& right, int iLine, SValue& value);
// <, >, <=, >=, lane-wise and whole-value == and !=.
bool LowerComparison(CProgramBuilder& builder, glslang::TOperator eOp, glslang::TBasicType eOperands,
                     const SValue& left, const SValue& right, int iLine, SValue& value);
// == and != of whole values (all lanes of all slots) to one boolean.
bool LowerWholeComparison(CProgramBuilder& builder, bool bEqual, const SValue& left, const SValue& right, int iLine,
                          SValue& value);
bool LowerConstructor(CProgramBuilder& builder, const glslang::TType& type, const std::vector<SValue>& aArgs,
                      int iLine, SValue& value);

} // namespace ZamCompiler
