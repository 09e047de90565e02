#include "PerformanceEstimateParser.h"

#include "NumberScan_p.h"

#include <limits>

namespace
{
// The number after the first place where pLabel stands before one.
QStringView Capture(const QString& Output, const char* pLabel)
{
    return DigitsOf(Output, FindNumberAfter(Output, QLatin1String(pLabel)));
}

void ReadFloat(const QString& Output, const char* pLabel, float& fValue)
{
    bool bOk = false;
    const double dValue = Capture(Output, pLabel).toDouble(&bOk);
    if (bOk && dValue <= std::numeric_limits<float>::max())
        fValue = static_cast<float>(dValue);
}

void ReadInt(const QString& Output, const char* pLabel, int& iValue)
{
    bool bOk = false;
    const int iRead = Capture(Output, pLabel).toInt(&bOk);
    if (bOk)
        iValue = iRead;
}
} // namespace

SPerformanceEstimate ParsePerformanceEstimate(const QString& Output)
{
    SPerformanceEstimate Estimate;
    Estimate.bFound = Output.contains(QLatin1String("Performance estimate"));
    if (!Estimate.bFound)
        return Estimate;
    ReadFloat(Output, "Cycle count:                ", Estimate.fCycleCount);
    ReadFloat(Output, "Average cycle count:        ", Estimate.fCycleCount);
    ReadFloat(Output, "Worst   cycle count:        ", Estimate.fWorstCycleCount);
    ReadInt(Output, "Temporary registers used:   ", Estimate.iTemporaryRegisters);
    ReadInt(Output, "Primary attributes used:    ", Estimate.iPrimaryAttributes);
    ReadInt(Output, "Non-dependent texture reads:", Estimate.iNonDependentTextureReads);
    return Estimate;
}

void ApplyPerformanceEstimate(const SPerformanceEstimate& Estimate, SCompileResult::SProfile& Profile)
{
    Profile.bEstimateFound = Estimate.bFound;
    if (!Estimate.bFound)
        return;
    Profile.fCycleCount = Estimate.fCycleCount;
    Profile.fWorstCycleCount = Estimate.fWorstCycleCount;
    Profile.iTemporaryRegisters = Estimate.iTemporaryRegisters;
    Profile.iPrimaryAttributes = Estimate.iPrimaryAttributes;
    Profile.iNonDependentTextureReads = Estimate.iNonDependentTextureReads;
}
