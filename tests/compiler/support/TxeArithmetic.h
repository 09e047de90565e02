#pragma once

// What one lane of a TXE instruction computes, as the instruction set defines it.
// A lane holds a number: a float, or a 32-bit integer. Instructions without a
// type suffix compute in float; `.i` and `.u` ones read every source (after
// negation and absolute value) as a 32-bit integer of their type and wrap their
// result to it. Booleans are 1 and 0 whatever the type.

#include "TxeIsa.h"

namespace ZamCompilerTest
{

// The number as a float lane holds it (rounded to 32 bits, infinite beyond).
double AsFloat(double dValue);
// The number read as a 32-bit integer of the type: truncated, wrapped around.
double Wrapped(double dValue, ZamCompiler::ETxeType eType);
// A lane used as an index or count.
long long Integer(double dValue);

// Ops on floats; dot products, derivatives and samples are the machine's.
bool IsFloatLaneOp(ZamCompiler::ETxeOp eOp, ZamCompiler::ETxeType eType);
double FloatLane(ZamCompiler::ETxeOp eOp, double a, double b, double c);
// Ops on 32-bit integers and the conversions and bit instructions.
double IntegerLane(ZamCompiler::ETxeOp eOp, ZamCompiler::ETxeType eType, double a, double b, double c, double d);

} // namespace ZamCompilerTest
