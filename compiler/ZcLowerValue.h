#pragma once

// A lowered value: one operand per four-lane slot (a matrix has one per column, an
// array or structure one per element slot).

#include "TxeIsa.h"

#include <vector>

namespace ZamCompiler
{

struct SValue
{
    std::vector<STxeOperand> aSlots;
};

} // namespace ZamCompiler
