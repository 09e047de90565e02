#pragma once

#include <QString>
#include <QStringView>

// A run of decimal digits in a text, as the pattern "<literal>(\d+)" captures it.
struct SNumberAt
{
    qsizetype iStart = -1; // of the digits; -1 when there is none
    qsizetype iEnd = -1;   // one past the last digit
};

// The digits right at iPos (any script's decimal digits, as \d takes them).
inline SNumberAt DigitsAt(QStringView Text, qsizetype iPos)
{
    SNumberAt Number;
    qsizetype iEnd = iPos;
    while (iEnd < Text.size() && Text.at(iEnd).isDigit())
        ++iEnd;
    if (iEnd > iPos)
    {
        Number.iStart = iPos;
        Number.iEnd = iEnd;
    }
    return Number;
}

// The first place from iFrom where Literal stands right before a number, as a regular
// expression "<literal>(\d+)" would find it, in one pass and without allocating.
inline SNumberAt FindNumberAfter(QStringView Text, QLatin1String Literal, qsizetype iFrom = 0)
{
    for (qsizetype iAt = Text.indexOf(Literal, iFrom); iAt >= 0; iAt = Text.indexOf(Literal, iAt + 1))
    {
        const SNumberAt Number = DigitsAt(Text, iAt + Literal.size());
        if (Number.iStart >= 0)
            return Number;
    }
    return SNumberAt();
}

inline QStringView DigitsOf(QStringView Text, const SNumberAt& Number)
{
    return Number.iStart < 0 ? QStringView() : Text.sliced(Number.iStart, Number.iEnd - Number.iStart);
}
