#pragma once

#include <QPlainTextDocumentLayout>

// The plain-text layout of an edit panel's document, repainting only the lines a change
// touched. The base layout takes the removed plus the added character count as the extent
// of a change; once the highlighter has re-coloured the edited line, both counts are that
// line's length, so the extent runs into the next line and every keystroke re-lays out two
// lines and repaints the whole view.
class CEditDocumentLayout : public QPlainTextDocumentLayout
{
    Q_OBJECT

public:
    explicit CEditDocumentLayout(QTextDocument* pDocument);

protected:
    void documentChanged(int iFrom, int iCharsRemoved, int iCharsAdded) override;
};
