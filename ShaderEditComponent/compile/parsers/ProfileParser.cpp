#include "ProfileParser.h"

#include <QRegExp>

#include <limits>

namespace
{
// A decimal capture as an int; false when it does not fit.
bool ToInt(const QString& Digits, qint64& iValue)
{
    bool bOk = false;
    iValue = Digits.toLongLong(&bOk);
    return bOk && iValue <= std::numeric_limits<int>::max();
}

// False when the array cannot grow to hold line L.
bool StoreCount(CZamTArray<int>& CycleCounts, qint64 iLine, int iCount)
{
    if (iLine < 1 || iLine >= static_cast<qint64>(CycleCounts.GetSize()))
    {
        while (static_cast<qint64>(CycleCounts.GetSize()) < iLine - 1)
        {
            if (CycleCounts.Append(-1) != 0)
                return false;
        }
        return CycleCounts.Append(iCount) == 0;
    }
    CycleCounts[static_cast<uint32_t>(iLine - 1)] = iCount;
    return true;
}
} // namespace

SProfileParse ParseProfile(const QString& Text, int iLineOffset, CZamTArray<int>& CycleCounts)
{
    SProfileParse Parse;
    QRegExp TotalPattern(QStringLiteral("Total consumed cycles = (\\d+)"));
    QRegExp InstructionsPattern(QStringLiteral("TXC generated instructions = (\\d+)"));
    QRegExp LinePattern(QStringLiteral("line: (\\d+), count: (\\d+)"));

    qint64 iValue = 0;
    if (InstructionsPattern.indexIn(Text) >= 0)
    {
        if (ToInt(InstructionsPattern.cap(1), iValue))
            Parse.iGeneratedInstructions = static_cast<int>(iValue);
        else
            Parse.bMalformed = true;
    }
    if (TotalPattern.indexIn(Text) >= 0)
    {
        bool bOk = false;
        Parse.iReportedTotal = TotalPattern.cap(1).toLongLong(&bOk);
        if (!bOk)
            Parse.bMalformed = true;
    }

    qint64 iTotal = 0;
    int iPos = 0;
    while ((iPos = LinePattern.indexIn(Text, iPos)) >= 0)
    {
        qint64 iLine = 0;
        qint64 iCount = 0;
        if (!ToInt(LinePattern.cap(1), iLine) || !ToInt(LinePattern.cap(2), iCount))
        {
            Parse.bMalformed = true;
            break;
        }
        iLine += iLineOffset;
        const bool bInside = iLine >= 1 && iLine < static_cast<qint64>(CycleCounts.GetSize());
        if (iLine > MaxProfileLine || (bInside && CycleCounts[static_cast<uint32_t>(iLine - 1)] != -1)
            || iTotal + iCount > std::numeric_limits<int>::max())
        {
            Parse.bMalformed = true;
            break;
        }
        if (!StoreCount(CycleCounts, iLine, static_cast<int>(iCount)))
        {
            Parse.bMalformed = true;
            break;
        }
        iTotal += iCount;
        iPos += LinePattern.matchedLength();
    }
    Parse.iTotalConsumedCycles = static_cast<int>(iTotal);
    if (!Parse.bMalformed && Parse.iReportedTotal >= 0 && Parse.iReportedTotal != iTotal)
        Parse.bMalformed = true;
    return Parse;
}
