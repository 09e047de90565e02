#include "TextCommands_p.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>

namespace
{
bool IsBlank(QChar Char)
{
    return Char == QLatin1Char('\t') || Char == QLatin1Char(' ');
}

// Calls Visit with a cursor at the start of each line from the line of iStart on, until
// there is no next line or the next line starts at or after the end. Visit returns how
// many characters it inserted (negative: removed), which moves the end along.
template <typename FVisit>
void ForEachSelectedLine(QTextCursor Cursor, int iStart, int iEnd, FVisit Visit)
{
    Cursor.setPosition(iStart);
    Cursor.movePosition(QTextCursor::StartOfBlock);
    for (;;)
    {
        iEnd += Visit(Cursor);
        if (!Cursor.movePosition(QTextCursor::NextBlock) || Cursor.position() >= iEnd)
            break;
    }
}

QString TextAt(const QTextDocument* pDocument, int iPosition, int iLength)
{
    QString Text;
    for (int i = 0; i < iLength; ++i)
        Text += pDocument->characterAt(iPosition + i);
    return Text;
}

int DeleteAt(QTextCursor& Cursor, int iPosition, int iLength)
{
    Cursor.setPosition(iPosition);
    Cursor.setPosition(iPosition + iLength, QTextCursor::KeepAnchor);
    Cursor.removeSelectedText();
    return -iLength;
}

void UncommentSpan(QTextCursor Cursor, int iStart, int iEnd)
{
    const QTextDocument* pDocument = Cursor.document();
    const QLatin1String Open("/*");
    const QLatin1String Close("*/");
    if (iEnd - iStart >= 4 && TextAt(pDocument, iStart, 2) == Open && TextAt(pDocument, iEnd - 2, 2) == Close)
    {
        DeleteAt(Cursor, iEnd - 2, 2);
        DeleteAt(Cursor, iStart, 2);
    }
    else if (iStart >= 2 && TextAt(pDocument, iStart - 2, 2) == Open && TextAt(pDocument, iEnd, 2) == Close)
    {
        DeleteAt(Cursor, iEnd, 2);
        DeleteAt(Cursor, iStart - 2, 2);
    }
}
} // namespace

namespace TextCommands
{
void CommentSelection(const QTextCursor& Selection)
{
    if (!Selection.hasSelection())
        return;
    const int iStart = Selection.selectionStart();
    const int iEnd = Selection.selectionEnd();
    QTextCursor Cursor(Selection);
    Cursor.beginEditBlock();
    if (Selection.document()->findBlock(iStart) == Selection.document()->findBlock(iEnd))
    {
        Cursor.setPosition(iStart);
        Cursor.insertText(QStringLiteral("/*"));
        Cursor.setPosition(iEnd + 2);
        Cursor.insertText(QStringLiteral("*/"));
    }
    else
    {
        ForEachSelectedLine(Cursor, iStart, iEnd, [](QTextCursor& Line) {
            Line.insertText(QStringLiteral("//"));
            return 2;
        });
    }
    Cursor.endEditBlock();
}

void UncommentSelection(const QTextCursor& Selection)
{
    if (!Selection.hasSelection())
        return;
    const int iStart = Selection.selectionStart();
    const int iEnd = Selection.selectionEnd();
    QTextCursor Cursor(Selection);
    Cursor.beginEditBlock();
    if (Selection.document()->findBlock(iStart) == Selection.document()->findBlock(iEnd))
    {
        UncommentSpan(Cursor, iStart, iEnd);
    }
    else
    {
        ForEachSelectedLine(Cursor, iStart, iEnd, [](QTextCursor& Line) {
            if (!Line.block().text().startsWith(QLatin1String("//")))
                return 0;
            const int iLineStart = Line.position();
            const int iMoved = DeleteAt(Line, iLineStart, 2);
            Line.setPosition(iLineStart);
            return iMoved;
        });
    }
    Cursor.endEditBlock();
}

void AddIndent(const QTextCursor& Selection, const QString& Indent)
{
    if (!Selection.hasSelection())
        return;
    QTextCursor Cursor(Selection);
    Cursor.beginEditBlock();
    ForEachSelectedLine(Cursor, Selection.selectionStart(), Selection.selectionEnd(), [&Indent](QTextCursor& Line) {
        const int iLineStart = Line.position();
        Line.insertText(Indent);
        Line.setPosition(iLineStart);
        return static_cast<int>(Indent.size());
    });
    Cursor.endEditBlock();
}

void RemoveIndent(const QTextCursor& Selection, bool bSpaces, const QString& Indent, int iTabSize)
{
    if (!Selection.hasSelection())
        return;
    QTextCursor Cursor(Selection);
    Cursor.beginEditBlock();
    ForEachSelectedLine(Cursor, Selection.selectionStart(), Selection.selectionEnd(), [&](QTextCursor& Line) {
        const QString Text = Line.block().text();
        const int iLineStart = Line.position();
        int iRemove = 0;
        if (Text.startsWith(QLatin1Char('\t')))
            iRemove = 1;
        else if (bSpaces && !Indent.isEmpty() && Text.startsWith(Indent))
            iRemove = std::min<int>(iTabSize, Text.size());
        if (iRemove <= 0)
            return 0;
        const int iMoved = DeleteAt(Line, iLineStart, iRemove);
        Line.setPosition(iLineStart);
        return iMoved;
    });
    Cursor.endEditBlock();
}

QString LeadingBlanks(const QTextBlock& Block)
{
    const QString Text = Block.text();
    int iCount = 0;
    while (iCount < Text.size() && IsBlank(Text.at(iCount)))
        ++iCount;
    return Text.left(iCount);
}

int SmartHomePosition(const QTextCursor& Cursor)
{
    const QTextBlock Block = Cursor.block();
    const int iBlockStart = Block.position();
    const int iFirstNonBlank = iBlockStart + static_cast<int>(LeadingBlanks(Block).size());
    if (Cursor.atBlockStart())
        return iFirstNonBlank;

    const QTextDocument* pDocument = Cursor.document();
    QTextCursor Probe(Cursor);
    Probe.clearSelection();
    for (;;)
    {
        const int iBefore = Probe.position();
        if (!Probe.movePosition(QTextCursor::WordLeft) || Probe.position() >= iBefore)
            return -1;
        if (Probe.position() < iBlockStart)
            return -1;
        if (!IsBlank(pDocument->characterAt(Probe.position())))
            return iFirstNonBlank;
        if (Probe.position() == iBlockStart)
            return -1;
    }
}
} // namespace TextCommands

const QString& CIndentString::Get(int iTabSize)
{
    if (iTabSize >= 1 && m_Text.size() != iTabSize)
        m_Text += QString(iTabSize, QLatin1Char(' '));
    return m_Text;
}
