#include "DisassemblyParser.h"

#include <QStringView>

#include <climits>

namespace
{
// The column of "line" in a comment line naming columns, or -1.
int LineColumnOf(QStringView Line)
{
    const QStringView Trimmed = Line.trimmed();
    if (!Trimmed.startsWith(QLatin1Char(';')))
        return -1;
    const QList<QStringView> Words = Trimmed.mid(1).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    // One word alone ("; line") is a remark, not a header.
    if (Words.size() < 2)
        return -1;
    for (qsizetype i = 0; i < Words.size(); ++i)
    {
        if (Words.at(i) == QLatin1String("line"))
            return static_cast<int>(i);
    }
    return -1;
}

// The iColumn'th blank-separated word of an instruction line as a positive number, or 0.
int SourceLineOf(QStringView Line, int iColumn)
{
    qsizetype iPosition = 0;
    const qsizetype iSize = Line.size();
    for (int iWord = 0; iPosition < iSize; ++iWord)
    {
        while (iPosition < iSize && Line.at(iPosition).isSpace())
            ++iPosition;
        const qsizetype iStart = iPosition;
        while (iPosition < iSize && !Line.at(iPosition).isSpace())
            ++iPosition;
        if (iWord == iColumn)
        {
            bool bNumber = false;
            const int iLine = Line.mid(iStart, iPosition - iStart).toInt(&bNumber);
            return bNumber && iLine > 0 ? iLine : 0;
        }
    }
    return 0;
}
} // namespace

QVector<int> ParseDisassemblyLines(const QString& Text, int iLineOffset, int iHeaderSearchLines)
{
    const QStringView View(Text);
    QVector<int> Sources(View.count(QLatin1Char('\n')) + 1, 0);
    int iColumn = -1;
    qsizetype iStart = 0;
    for (qsizetype i = 0; i < Sources.size(); ++i)
    {
        qsizetype iEnd = View.indexOf(QLatin1Char('\n'), iStart);
        if (iEnd < 0)
            iEnd = View.size();
        const QStringView Line = View.sliced(iStart, iEnd - iStart);
        iStart = iEnd + 1;
        if (Line.trimmed().startsWith(QLatin1Char(';')))
        {
            if (iColumn < 0 && i < iHeaderSearchLines)
                iColumn = LineColumnOf(Line);
            continue;
        }
        if (iColumn < 0)
        {
            if (i >= iHeaderSearchLines)
                break;
            continue;
        }
        const int iSource = SourceLineOf(Line, iColumn);
        if (iSource > 0 && iSource <= INT_MAX - iLineOffset)
            Sources[i] = iSource + iLineOffset;
    }
    return Sources;
}
