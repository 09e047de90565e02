#pragma once

#include "TxeIsa.h"

namespace ZamCompiler
{

// Linear-scan allocation of the virtual temporaries to physical registers.
// Rewrites every temp operand and returns the peak number of live registers.
int AllocateRegisters(STxeProgram& program);

} // namespace ZamCompiler
