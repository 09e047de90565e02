#pragma once

// A lowered value and the helpers that reshape operands. Reshaping never emits an
// instruction: a swizzle, a broadcast or a sign is part of the operand.

#include "TxeIsa.h"

#include <cstdint>
#include <vector>

namespace ZamCompiler
{

// One operand per four-lane slot (a matrix has one per column, an array or structure
// one per element slot).
struct SValue
{
    std::vector<STxeOperand> aSlots;
};

STxeOperand TempOperand(int iRegister, int iLanes);
STxeOperand Swizzled(const STxeOperand& op, const std::vector<std::uint8_t>& aLanes);
STxeOperand Lane(const STxeOperand& op, int iLane);
// A one-lane operand repeated over iLanes lanes; wider operands are left as they are.
STxeOperand Broadcast(const STxeOperand& op, int iLanes);
// Broadcast, then cut down to at most iWidth lanes.
STxeOperand Fit(const STxeOperand& op, int iWidth);
STxeOperand Negated(const STxeOperand& op);
STxeOperand Absolute(const STxeOperand& op);
std::vector<std::uint8_t> IdentityLanes(int iLanes);
// dp2/dp3/dp4 for 2 to 4 lanes; a one-lane "dot product" is a multiply.
ETxeOp DotFor(int iLanes);
bool SameRegister(const STxeOperand& a, const STxeOperand& b);

} // namespace ZamCompiler
