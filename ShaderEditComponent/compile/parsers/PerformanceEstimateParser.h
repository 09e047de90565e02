#pragma once

#include "ShaderEditComponent/compile/model/CompileResult.h"

#include <QString>

// The figures of a "Performance estimate" block. -1 where a figure is missing or does not fit.
struct SPerformanceEstimate
{
    bool bFound = false; // the output holds "Performance estimate"
    float fCycleCount = -1.0f;
    float fWorstCycleCount = -1.0f;
    int iTemporaryRegisters = -1;
    int iPrimaryAttributes = -1;
    int iNonDependentTextureReads = -1;
};

// Each figure is searched from the start of the output with its own expression, spacing
// included. "Cycle count:" and then "Average cycle count:" both write the cycle count, so
// the average wins when both are there.
[[nodiscard]] SPerformanceEstimate ParsePerformanceEstimate(const QString& Output);

// Copies the figures that were reported into the unit's profile record; the first cycle figure
// is left as it is.
void ApplyPerformanceEstimate(const SPerformanceEstimate& Estimate, SCompileResult::SProfile& Profile);
