#pragma once

// Lowering: glslang's typed tree to a TXE program over virtual registers.
// User functions are inlined (GLSL ES forbids recursion); control flow stays
// structured so the analysis can walk paths without a graph.

#include "TxeIsa.h"
#include "ZcDiagnostics.h"
#include "ZcSourceLimits.h"

namespace glslang
{
class TIntermediate;
}

namespace ZamCompiler
{

// Loops whose trip count cannot be derived are costed with these.
constexpr int k_iUnknownTripsBest = 1;
constexpr int k_iUnknownTripsAverage = 4;
constexpr int k_iUnknownTripsWorst = 16;

bool LowerShader(glslang::TIntermediate& intermediate, ETxeStage eStage, const SSourceLimits& limits,
                 STxeProgram& program, CDiagnosticList& aDiagnostics);

} // namespace ZamCompiler
