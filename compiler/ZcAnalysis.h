#pragma once

// Cost analysis of a lowered program for one core: what each instruction costs,
// the cycles per source line, and the best/average/worst paths.

#include "TxeIsa.h"
#include "ZcCores.h"

#include <map>
#include <vector>

namespace ZamCompiler
{

struct SPathCycles
{
    double dBest = 0.0;
    double dAverage = 0.0;
    double dWorst = 0.0;
};

// Cycles of each instruction on its own, with the core's pairing applied.
std::vector<int> CostInstructions(const STxeProgram& program, const SCoreModel& core);

// Sum of costs per source line; lines outside 1..iLastLine (after #line) are left out.
std::map<int, long long> LineCycles(const STxeProgram& program, const std::vector<int>& aCosts, int iLastLine);

// Walks the structured flow; loops count their trip counts.
SPathCycles PathCycles(const STxeProgram& program, const std::vector<int>& aCosts);

// Figures are printed as integers; huge products saturate.
int ClampCycles(double dCycles);

} // namespace ZamCompiler
