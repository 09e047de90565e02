#include "WordMatches_p.h"

namespace
{
bool IsIdentifierChar(QChar Char)
{
    return Char.isLetterOrNumber() || Char == QLatin1Char('_');
}
} // namespace

QVector<STextRange> FindWholeWordMatches(const QString& Text, const QString& Word)
{
    QVector<STextRange> Matches;
    if (Word.isEmpty())
        return Matches;
    const qsizetype iLength = Word.size();
    qsizetype iFrom = 0;
    while (iFrom <= Text.size())
    {
        const qsizetype iStart = Text.indexOf(Word, iFrom, Qt::CaseSensitive);
        if (iStart < 0)
            break;
        const qsizetype iEnd = iStart + iLength;
        const bool bWhole = (iStart == 0 || !IsIdentifierChar(Text.at(iStart - 1)))
                            && (iEnd == Text.size() || !IsIdentifierChar(Text.at(iEnd)));
        if (bWhole)
            Matches.append({static_cast<int>(iStart), static_cast<int>(iLength)});
        iFrom = bWhole ? iEnd : iEnd + 1;
    }
    return Matches;
}
