#include "HighlightSelections_p.h"

#include <QTextCursor>
#include <QTextDocument>

QList<QTextEdit::ExtraSelection> MakeHighlights(QTextDocument* pDocument, const QVector<STextRange>& Ranges,
                                                const QTextCharFormat& Format)
{
    QList<QTextEdit::ExtraSelection> Highlights;
    Highlights.reserve(Ranges.size());
    // A cursor placed outside an edit block lays out its line to learn its x position,
    // which for thousands of matches costs far more than finding them. Inside an edit
    // block it does not; an edit block that changes nothing leaves no undo step behind.
    QTextCursor Batch(pDocument);
    Batch.beginEditBlock();
    QTextEdit::ExtraSelection Highlight;
    Highlight.format = Format;
    for (const STextRange& Range : Ranges)
    {
        Highlight.cursor = QTextCursor(pDocument);
        Highlight.cursor.setPosition(Range.iStart);
        Highlight.cursor.setPosition(Range.iStart + Range.iLength, QTextCursor::KeepAnchor);
        Highlights.append(Highlight);
    }
    Batch.endEditBlock();
    return Highlights;
}
