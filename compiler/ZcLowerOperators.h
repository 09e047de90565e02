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
// 1 in each lane whose number (0, 1, 2, 3) equals the index's first lane, 0 elsewhere.
STxeOperand LaneMask(CProgramBuilder& builder, const STxeOperand& index, int iLanes, int iLine);
// The vector's lane chosen by the index: through the mask and a dot product for floats, a
// multiply and additions (exact) for integers.
STxeOperand PickLane(CProgramBuilder& builder, const STxeOperand& vector, const STxeOperand& index, ETxeType eLanes,
                     int iLine);
bool LowerConstructor(CProgramBuilder& builder, const glslang::TType& type, const std::vector<SValue>& aArgs,
                      int iLine, SValue& value);

} // namespace ZamCompiler
