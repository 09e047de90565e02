#include "CompileMarks_p.h"

#include <QTextBlock>
#include <QTextDocument>

#include <algorithm>

namespace
{
// The line's text without the blanks at either end; at the line's start when it is blank.
QTextCursor LineTextCursor(const QTextBlock& Block)
{
    const QString Text = Block.text();
    qsizetype iStart = 0;
    while (iStart < Text.size() && Text.at(iStart).isSpace())
        ++iStart;
    qsizetype iEnd = Text.size();
    while (iEnd > iStart && Text.at(iEnd - 1).isSpace())
        --iEnd;
    QTextCursor Cursor(Block);
    Cursor.setPosition(Block.position() + static_cast<int>(iStart));
    Cursor.setPosition(Block.position() + static_cast<int>(iEnd), QTextCursor::KeepAnchor);
    return Cursor;
}
} // namespace

void CCompileMarks::Set(QTextDocument* pDocument, const QVector<SCompileMessage>& Messages)
{
    m_Marks.clear();
    for (const SCompileMessage::ESeverity eSeverity :
         {SCompileMessage::Severity_Warning, SCompileMessage::Severity_Error})
    {
        for (const SCompileMessage& Message : Messages)
        {
            const QTextBlock Block = Message.iLine > 0 ? pDocument->findBlockByNumber(Message.iLine - 1) : QTextBlock();
            if (Message.eSeverity != eSeverity || !Block.isValid())
                continue;
            SMark Mark;
            Mark.Cursor = LineTextCursor(Block);
            Mark.eSeverity = eSeverity;
            Mark.Text = Message.Text.trimmed();
            Mark.bHadText = Mark.Cursor.hasSelection();
            m_Marks.append(Mark);
        }
    }
}

void CCompileMarks::Clear()
{
    m_Marks.clear();
}

void CCompileMarks::SetColours(const QColor& Error, const QColor& Warning)
{
    m_Error = Error;
    m_Warning = Warning;
}

QColor CCompileMarks::ColourOf(SCompileMessage::ESeverity eSeverity) const
{
    return eSeverity == SCompileMessage::Severity_Error ? m_Error : m_Warning;
}

void CCompileMarks::AppendSelections(int iFrom, int iTo, QList<QTextEdit::ExtraSelection>& Selections) const
{
    for (const SMark& Mark : m_Marks)
    {
        if (!Mark.Cursor.hasSelection() || Mark.Cursor.selectionEnd() < iFrom || Mark.Cursor.selectionStart() > iTo)
            continue;
        QTextEdit::ExtraSelection Selection;
        Selection.cursor = Mark.Cursor;
        Selection.format.setUnderlineStyle(QTextCharFormat::WaveUnderline);
        Selection.format.setUnderlineColor(ColourOf(Mark.eSeverity));
        Selections.append(Selection);
    }
}

QMap<int, SCompileMessage::ESeverity> CCompileMarks::MarkedBlocks(int iFrom, int iTo) const
{
    QMap<int, SCompileMessage::ESeverity> Blocks;
    for (const SMark& Mark : m_Marks)
    {
        const int iPosition = Mark.Cursor.selectionStart();
        if (IsGone(Mark) || iPosition < iFrom || iPosition > iTo)
            continue;
        const int iBlock = Mark.Cursor.document()->findBlock(iPosition).blockNumber();
        const auto Found = Blocks.constFind(iBlock);
        if (Found == Blocks.constEnd() || Mark.eSeverity == SCompileMessage::Severity_Error)
            Blocks.insert(iBlock, Mark.eSeverity);
    }
    return Blocks;
}

QString CCompileMarks::ToolTipFor(int iBlockNumber) const
{
    QStringList Texts;
    // Errors first: they are what stops the compile.
    for (auto Mark = m_Marks.crbegin(); Mark != m_Marks.crend(); ++Mark)
    {
        if (!IsGone(*Mark)
            && Mark->Cursor.document()->findBlock(Mark->Cursor.selectionStart()).blockNumber() == iBlockNumber)
            Texts.append(Mark->Text);
    }
    return Texts.join(QLatin1Char('\n'));
}

void CCycleCountLines::Set(const CZamTArray<int>& Counts)
{
    m_bHasPrevious = m_Counts.GetSize() > 0;
    m_Previous = m_Counts;
    m_Counts = Counts;
}

void CCycleCountLines::Clear()
{
    m_Counts.Clear();
    m_Previous.Clear();
    m_bHasPrevious = false;
}

int CCycleCountLines::ValueAt(const CZamTArray<int>& Array, int iLine)
{
    return iLine >= 0 && static_cast<uint32_t>(iLine) < Array.GetSize() ? Array[static_cast<uint32_t>(iLine)] : -1;
}

void CCycleCountLines::Shift(int iAt, int iDelta)
{
    ShiftArray(m_Counts, iAt, iDelta);
    ShiftArray(m_Previous, iAt, iDelta);
}

void CCycleCountLines::ShiftArray(CZamTArray<int>& Array, int iAt, int iDelta)
{
    const int iSize = static_cast<int>(Array.GetSize());
    if (iDelta == 0 || iAt < 0 || iAt >= iSize)
        return;
    const int iRemoved = std::min(std::max(0, -iDelta), iSize - iAt);
    const int iInserted = std::max(0, iDelta);
    CZamTArray<int> Shifted(static_cast<uint32_t>(iSize - iRemoved + iInserted));
    bool bFailed = false;
    for (int i = 0; i < iAt; ++i)
        bFailed |= Shifted.Append(Array[static_cast<uint32_t>(i)]) != 0;
    for (int i = 0; i < iInserted; ++i)
        bFailed |= Shifted.Append(-1) != 0;
    for (int i = iAt + iRemoved; i < iSize; ++i)
        bFailed |= Shifted.Append(Array[static_cast<uint32_t>(i)]) != 0;
    // Without the memory the counts stay where they were until the next result.
    if (!bFailed)
        Array = std::move(Shifted);
}
