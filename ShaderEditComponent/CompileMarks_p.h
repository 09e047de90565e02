#pragma once

#include "ShaderEditComponent/compile/model/CompileResult.h"

#include <QColor>
#include <QList>
#include <QMap>
#include <QTextCursor>
#include <QTextEdit>
#include <QVector>

class QTextDocument;

// The messages of a panel's last compile, anchored in its text: each underlines its line
// (wavy, in the log's error or warning colour), gives the line its tool tip and the line
// gutter a marker. Cursors in the document carry the marks along with edits until the next
// result replaces them; a mark whose text was deleted is gone.
class CCompileMarks
{
public:
    // Messages without a line, or naming a line past the document's end, get no mark.
    void Set(QTextDocument* pDocument, const QVector<SCompileMessage>& Messages);
    void Clear();
    bool IsEmpty() const { return m_Marks.isEmpty(); }
    void SetColours(const QColor& Error, const QColor& Warning);

    // The underlines of the marks that touch the positions iFrom to iTo.
    void AppendSelections(int iFrom, int iTo, QList<QTextEdit::ExtraSelection>& Selections) const;
    // Block number to the most severe mark on it, for the blocks between the two positions.
    QMap<int, SCompileMessage::ESeverity> MarkedBlocks(int iFrom, int iTo) const;
    // The messages on a block, one per line; empty without any.
    QString ToolTipFor(int iBlockNumber) const;
    QColor ColourOf(SCompileMessage::ESeverity eSeverity) const;

private:
    struct SMark
    {
        QTextCursor Cursor; // selects the line's text, blanks at either end left out
        SCompileMessage::ESeverity eSeverity = SCompileMessage::Severity_Error;
        QString Text;
        bool bHadText = false; // a blank line's mark has nothing to select and never goes
    };

    bool IsGone(const SMark& Mark) const { return Mark.bHadText && !Mark.Cursor.hasSelection(); }

    QVector<SMark> m_Marks; // warnings before errors, so an error's colour wins on a shared line
    QColor m_Error = QColor(255, 0, 0);
    QColor m_Warning = QColor(226, 90, 0);
};

// Per-line cycle counts kept on their lines while the text is edited, beside the counts they
// replaced, so the gutter can show which lines' cost the last change moved.
class CCycleCountLines
{
public:
    // New counts of the text at hand; the counts shown so far become the previous ones (the
    // first counts replace nothing, so they change nothing).
    void Set(const CZamTArray<int>& Counts);
    void Clear();
    // iDelta lines were inserted (above 0) or removed (below 0) at line index iAt.
    void Shift(int iAt, int iDelta);

    const CZamTArray<int>& GetCounts() const { return m_Counts; }
    int CountOf(int iLine) const { return ValueAt(m_Counts, iLine); }
    int PreviousOf(int iLine) const { return ValueAt(m_Previous, iLine); }
    bool HasChanged(int iLine) const { return m_bHasPrevious && CountOf(iLine) != PreviousOf(iLine); }

private:
    static int ValueAt(const CZamTArray<int>& Array, int iLine);
    static void ShiftArray(CZamTArray<int>& Array, int iAt, int iDelta);

    CZamTArray<int> m_Counts{16};
    CZamTArray<int> m_Previous;
    bool m_bHasPrevious = false;
};
