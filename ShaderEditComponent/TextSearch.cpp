#include "TextSearch_p.h"

#include <QTextBlock>

namespace
{
// A line as QTextDocument::find sees it: no-break spaces count as spaces.
QString LineText(const QTextBlock& Block)
{
    QString Text = Block.text();
    Text.replace(QChar::Nbsp, QLatin1Char(' '));
    return Text;
}
} // namespace

CTextSearch::CTextSearch(const QString& Text, unsigned int uiFlags)
    : m_Text(Text)
    , m_uiFlags(uiFlags)
{
    if (m_uiFlags & FindFlag_RegExp)
    {
        // The case option is set here as QTextDocument::find would set it, so that the
        // document's own search shares this compiled expression instead of recompiling.
        m_Expression.setPattern(Text);
        if (!(m_uiFlags & FindFlag_MatchCase))
            m_Expression.setPatternOptions(QRegularExpression::CaseInsensitiveOption);
        m_Expression.optimize();
    }
}

bool CTextSearch::IsValid() const
{
    if (m_Text.isEmpty())
        return false;
    return !(m_uiFlags & FindFlag_RegExp) || m_Expression.isValid();
}

QString CTextSearch::GetErrorString() const
{
    if ((m_uiFlags & FindFlag_RegExp) && !m_Text.isEmpty() && !m_Expression.isValid())
        return m_Expression.errorString();
    return QString();
}

QTextDocument::FindFlags CTextSearch::DocumentFlags() const
{
    QTextDocument::FindFlags Flags;
    if (m_uiFlags & FindFlag_Backward)
        Flags |= QTextDocument::FindBackward;
    if (m_uiFlags & FindFlag_MatchCase)
        Flags |= QTextDocument::FindCaseSensitively;
    if (m_uiFlags & FindFlag_WholeWords)
        Flags |= QTextDocument::FindWholeWords;
    return Flags;
}

QTextCursor CTextSearch::FindFrom(const QTextDocument* pDocument, const QTextCursor& From) const
{
    if (!pDocument || !IsValid())
        return QTextCursor();
    if (m_uiFlags & FindFlag_RegExp)
        return pDocument->find(m_Expression, From, DocumentFlags());
    return pDocument->find(m_Text, From, DocumentFlags());
}

QTextCursor CTextSearch::FindWithWrap(const QTextDocument* pDocument, const QTextCursor& From) const
{
    QTextCursor Found = FindFrom(pDocument, From);
    if (!Found.isNull() || !pDocument || !IsValid())
        return Found;
    const int iWrapPosition = (m_uiFlags & FindFlag_Backward) ? pDocument->characterCount() - 1 : 0;
    if (m_uiFlags & FindFlag_RegExp)
        return pDocument->find(m_Expression, iWrapPosition, DocumentFlags());
    return pDocument->find(m_Text, iWrapPosition, DocumentFlags());
}

QVector<STextRange> CTextSearch::FindAll(const QTextDocument* pDocument) const
{
    return CollectMatches(pDocument, EmptyMatch_Stop);
}

QVector<STextRange> CTextSearch::FindAllToReplace(const QTextDocument* pDocument) const
{
    return CollectMatches(pDocument, EmptyMatch_StepOver);
}

// One pass over the lines, each line's text taken once: repeated QTextDocument::find calls
// would copy a line again for every match in it, which is quadratic on long lines.
QVector<STextRange> CTextSearch::CollectMatches(const QTextDocument* pDocument, EEmptyMatchRule eRule) const
{
    QVector<STextRange> Matches;
    if (!pDocument || !IsValid())
        return Matches;

    for (QTextBlock Block = pDocument->begin(); Block.isValid(); Block = Block.next())
    {
        const QString Line = LineText(Block);
        int iOffset = 0;
        STextRange Match;
        while (MatchInLine(Line, iOffset, &Match))
        {
            const STextRange Found{Block.position() + Match.iStart, Match.iLength};
            if (eRule == EmptyMatch_Stop && !Matches.isEmpty() && Matches.constLast() == Found)
                return Matches;
            Matches.append(Found);
            iOffset = Match.iStart + Match.iLength;
            if (eRule == EmptyMatch_StepOver && Match.iLength == 0)
                ++iOffset;
        }
    }
    return Matches;
}

// Word boundaries as QTextDocument::FindWholeWords draws them, so that the count agrees
// with what find next and previous step through.
bool CTextSearch::IsWholeWord(const QString& Line, int iStart, int iEnd) const
{
    if (iStart > 0 && Line.at(iStart - 1).isLetterOrNumber())
        return false;
    return iEnd >= Line.size() || !Line.at(iEnd).isLetterOrNumber();
}

bool CTextSearch::MatchInLine(const QString& Line, int iOffset, STextRange* pMatch) const
{
    const bool bRegExp = (m_uiFlags & FindFlag_RegExp) != 0;
    const Qt::CaseSensitivity eCase = (m_uiFlags & FindFlag_MatchCase) ? Qt::CaseSensitive : Qt::CaseInsensitive;

    while (iOffset >= 0 && iOffset <= Line.size())
    {
        int iStart = 0;
        int iLength = 0;
        if (bRegExp)
        {
            QRegularExpressionMatch Found;
            iStart = static_cast<int>(Line.indexOf(m_Expression, iOffset, &Found));
            iLength = static_cast<int>(Found.capturedLength());
        }
        else
        {
            iStart = static_cast<int>(Line.indexOf(m_Text, iOffset, eCase));
            iLength = static_cast<int>(m_Text.size());
        }
        if (iStart < 0)
            return false;

        if ((m_uiFlags & FindFlag_WholeWords) && !IsWholeWord(Line, iStart, iStart + iLength))
        {
            // Where the document's own search resumes after a part-word hit, so the count
            // agrees with find next and previous.
            iOffset = iStart + iLength + 1;
            continue;
        }
        pMatch->iStart = iStart;
        pMatch->iLength = iLength;
        return true;
    }
    return false;
}

int ReplaceAllMatches(const CTextSearch& Search, const QString& Replacement, const QTextCursor& Origin)
{
    const QVector<STextRange> Matches = Search.FindAllToReplace(Origin.document());
    if (Matches.isEmpty())
        return 0;

    // The document's undo puts the cursor where the edit block began, so it begins at the
    // user's cursor. Back to front, so that the positions still to replace stay valid.
    QTextCursor Cursor(Origin);
    Cursor.clearSelection();
    Cursor.beginEditBlock();
    for (auto It = Matches.crbegin(); It != Matches.crend(); ++It)
    {
        Cursor.setPosition(It->iStart);
        Cursor.setPosition(It->iStart + It->iLength, QTextCursor::KeepAnchor);
        Cursor.insertText(Replacement);
    }
    Cursor.endEditBlock();
    return static_cast<int>(Matches.size());
}
