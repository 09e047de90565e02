#include "CompileChange.h"

#include "ShaderEditComponent/compile/model/ZamStringConversion.h"

#include <QCoreApplication>
#include <QStringList>

#include <cmath>

namespace
{
QString Tr(const char* pText)
{
    return QCoreApplication::translate("CompileChange", pText);
}

QString Number(double dValue)
{
    return QString::number(dValue, 'g', 6);
}

// "name 9 → 8" into Moved, or "name 9" into Kept; nothing when either side was not reported.
void Compare(const char* pName, double dBefore, double dAfter, bool bDelta, QStringList& Moved, QStringList& Kept)
{
    if (dBefore < 0.0 || dAfter < 0.0)
        return;
    const QString Name = Tr(pName);
    if (dBefore == dAfter)
    {
        Kept << Name + QLatin1Char(' ') + Number(dAfter);
        return;
    }
    QString Text = Name + QLatin1Char(' ') + Number(dBefore) + QStringLiteral(" \u2192 ") + Number(dAfter);
    if (bDelta)
    {
        const double dDelta = dAfter - dBefore;
        Text += QStringLiteral(" (") + (dDelta < 0.0 ? QStringLiteral("\u2212") : QStringLiteral("+"))
                + Number(std::fabs(dDelta)) + QLatin1Char(')');
    }
    Moved << Text;
}

QStringList MovedFigures(const SCompileResult::SProfile& Before, const SCompileResult::SProfile& After,
                         QStringList& Kept)
{
    QStringList Moved;
    Compare("cycles", Before.fCycleCount, After.fCycleCount, true, Moved, Kept);
    // The worst case only says something beside the cycles when it differs from them.
    if (Before.fWorstCycleCount > 0.0f && After.fWorstCycleCount > 0.0f)
        Compare("worst case", Before.fWorstCycleCount, After.fWorstCycleCount, true, Moved, Kept);
    Compare("registers", Before.iTemporaryRegisters, After.iTemporaryRegisters, false, Moved, Kept);
    Compare("texture loads", Before.iNonDependentTextureReads, After.iNonDependentTextureReads, false, Moved, Kept);
    Compare("instructions", Before.iGeneratedInstructions, After.iGeneratedInstructions, false, Moved, Kept);
    return Moved;
}
} // namespace

QString DescribeFigureChange(const SCompileResult::SProfile* pBefore, const SCompileResult::SProfile& After)
{
    if (!pBefore)
        return QString();
    QStringList Kept;
    const QStringList Moved = MovedFigures(*pBefore, After, Kept);
    if (!Moved.isEmpty())
        return Moved.join(QStringLiteral(", "));
    // The two most looked-at figures are enough to say nothing moved.
    return Kept.isEmpty() ? QString() : Tr("no change: %1").arg(Kept.mid(0, 2).join(QStringLiteral(", ")));
}

const SCompileResult::SProfile* FindProfileNamed(const CZamTArray<SCompileResult::SProfile>& Profiles,
                                                 const CZamTString& Name)
{
    for (uint32_t ui = 0; ui < Profiles.GetSize(); ++ui)
    {
        if (Profiles[ui].Name == Name)
            return &Profiles[ui];
    }
    return nullptr;
}

QString DescribeResultChange(const SCompileResult& Result)
{
    if (Result.PreviousProfiles.GetSize() == 0)
        return QString();
    if (Result.Profiles.GetSize() == 1)
        return DescribeFigureChange(FindProfileNamed(Result.PreviousProfiles, Result.Profiles[0].Name),
                                    Result.Profiles[0]);
    QStringList Units;
    for (uint32_t ui = 0; ui < Result.Profiles.GetSize(); ++ui)
    {
        const SCompileResult::SProfile& After = Result.Profiles[ui];
        const SCompileResult::SProfile* pBefore = FindProfileNamed(Result.PreviousProfiles, After.Name);
        QStringList Kept;
        const QStringList Moved = pBefore ? MovedFigures(*pBefore, After, Kept) : QStringList();
        if (!Moved.isEmpty())
            Units << ToQString(After.Name) + QStringLiteral(": ") + Moved.join(QStringLiteral(", "));
    }
    return Units.isEmpty() ? Tr("no change") : Units.join(QStringLiteral("; "));
}

QString DescribeStaleResult(int iEditsBehind)
{
    return iEditsBehind == 1 ? Tr("Last good result, 1 edit ago")
                             : Tr("Last good result, %1 edits ago").arg(iEditsBehind);
}
