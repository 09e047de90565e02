#include "PerformanceEstimateParser.h"

#include <QRegExp>

#include <limits>

namespace
{
QString Capture(const QString& Output, const char* pPattern)
{
    QRegExp Pattern(QString::fromLatin1(pPattern));
    return Pattern.indexIn(Output) >= 0 ? Pattern.cap(1) : QString();
}

void ReadFloat(const QString& Output, const char* pPattern, float& fValue)
{
    bool bOk = false;
    const double dValue = Capture(Output, pPattern).toDouble(&bOk);
    if (bOk && dValue <= std::numeric_limits<float>::max())
        fValue = static_cast<float>(dValue);
}

void ReadInt(const QString& Output, const char* pPattern, int& iValue)
{
    bool bOk = false;
    const int iRead = Capture(Output, pPattern).toInt(&bOk);
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
    ReadFloat(Output, "Cycle count:                (\\d+)", Estimate.fCycleCount);
    ReadFloat(Output, "Average cycle count:        (\\d+)", Estimate.fCycleCount);
    ReadFloat(Output, "Worst   cycle count:        (\\d+)", Estimate.fWorstCycleCount);
    ReadInt(Output, "Temporary registers used:   (\\d+)", Estimate.iTemporaryRegisters);
    ReadInt(Output, "Primary attributes used:    (\\d+)", Estimate.iPrimaryAttributes);
    ReadInt(Output, "Non-dependent texture reads:(\\d+)", Estimate.iNonDependentTextureReads);
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
