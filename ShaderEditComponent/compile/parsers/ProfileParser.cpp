#include "ProfileParser.h"

#include "NumberScan_p.h"

#include <limits>
#include <tuple>
#include <utility>

namespace
{
// A decimal capture as an int; false when it does not fit.
bool ToInt(QStringView Digits, qint64& iValue)
{
    bool bOk = false;
    iValue = Digits.toLongLong(&bOk);
    return bOk && iValue <= std::numeric_limits<int>::max();
}

// False when the array cannot grow to hold line L. The lines a profile skips are padded in
// one step, not one growth per line, with room for the lines after it up to the unit's last.
bool StoreCount(CZamTArray<int>& CycleCounts, qint64 iLine, qint64 iLastLine, int iCount)
{
    const qint64 iSize = CycleCounts.GetSize();
    if (iLine < 1 || iLine >= iSize)
    {
        if (iLine - 1 > iSize
            && (CycleCounts.SetCapacity(static_cast<uint32_t>(qBound(iLine, iLastLine, 2 * iLine))) != 0
                || CycleCounts.AppendCopies(-1, static_cast<uint32_t>(iLine - 1 - iSize)) != 0))
            return false;
        return CycleCounts.Append(iCount) == 0;
    }
    CycleCounts[static_cast<uint32_t>(iLine - 1)] = iCount;
    return true;
}

// The next "line: L, count: C" from iFrom: the digits of L and of C, or none.
std::pair<SNumberAt, SNumberAt> FindLineCount(QStringView Text, qsizetype iFrom)
{
    static const QLatin1String s_Line("line: ");
    static const QLatin1String s_Count(", count: ");
    for (SNumberAt Line = FindNumberAfter(Text, s_Line, iFrom); Line.iStart >= 0;
         Line = FindNumberAfter(Text, s_Line, Line.iStart))
    {
        if (Text.sliced(Line.iEnd).startsWith(s_Count))
        {
            const SNumberAt Count = DigitsAt(Text, Line.iEnd + s_Count.size());
            if (Count.iStart >= 0)
                return {Line, Count};
        }
    }
    return {};
}
} // namespace

SProfileParse ParseProfile(const QString& Text, int iLineOffset, qint64 iLastLine, CZamTArray<int>& CycleCounts)
{
    SProfileParse Parse;
    qint64 iValue = 0;
    const SNumberAt Instructions = FindNumberAfter(Text, QLatin1String("TXC generated instructions = "));
    if (Instructions.iStart >= 0)
    {
        if (ToInt(DigitsOf(Text, Instructions), iValue))
            Parse.iGeneratedInstructions = static_cast<int>(iValue);
        else
            Parse.bMalformed = true;
    }
    const SNumberAt Total = FindNumberAfter(Text, QLatin1String("Total consumed cycles = "));
    if (Total.iStart >= 0)
    {
        bool bOk = false;
        Parse.iReportedTotal = DigitsOf(Text, Total).toLongLong(&bOk);
        if (!bOk)
            Parse.bMalformed = true;
    }

    qint64 iTotal = 0;
    qint64 iNamedTotal = 0; // with the counts of lines out of range, as the reported total has them
    for (auto [Line, Count] = FindLineCount(Text, 0); Line.iStart >= 0;
         std::tie(Line, Count) = FindLineCount(Text, Count.iEnd))
    {
        qint64 iLine = 0;
        qint64 iCount = 0;
        if (!ToInt(DigitsOf(Text, Line), iLine) || !ToInt(DigitsOf(Text, Count), iCount))
        {
            Parse.bMalformed = true;
            break;
        }
        iLine += iLineOffset;
        iNamedTotal += iCount;
        if (iLine > iLastLine)
        {
            if (Parse.iOutOfRangeEntries++ == 0)
                Parse.iFirstOutOfRange = iLine;
            continue;
        }
        const bool bInside = iLine >= 1 && iLine < static_cast<qint64>(CycleCounts.GetSize());
        if ((bInside && CycleCounts[static_cast<uint32_t>(iLine - 1)] != -1)
            || iTotal + iCount > std::numeric_limits<int>::max()
            || !StoreCount(CycleCounts, iLine, iLastLine, static_cast<int>(iCount)))
        {
            Parse.bMalformed = true;
            break;
        }
        iTotal += iCount;
    }
    Parse.iTotalConsumedCycles = static_cast<int>(iTotal);
    if (!Parse.bMalformed && Parse.iReportedTotal >= 0 && Parse.iReportedTotal != iNamedTotal)
        Parse.bMalformed = true;
    return Parse;
}

QString OutOfRangeNote(const SProfileParse& Parse, qint64 iLastLine)
{
    if (Parse.iOutOfRangeEntries == 0)
        return QString();
    if (Parse.iOutOfRangeEntries == 1)
        return QStringLiteral("WARNING: The profile names line %1, past line %2, the last line compiled; its cycle "
                              "count is not shown.")
            .arg(Parse.iFirstOutOfRange)
            .arg(iLastLine);
    return QStringLiteral("WARNING: The profile names %1 lines past line %2, the last line compiled (the first is "
                          "line %3); their cycle counts are not shown.")
        .arg(Parse.iOutOfRangeEntries)
        .arg(iLastLine)
        .arg(Parse.iFirstOutOfRange);
}
