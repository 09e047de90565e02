#include "EditDocumentLayout_p.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include <algorithm>

CEditDocumentLayout::CEditDocumentLayout(QTextDocument* pDocument)
    : QPlainTextDocumentLayout(pDocument)
{
}

void CEditDocumentLayout::documentChanged(int iFrom, int iCharsRemoved, int iCharsAdded)
{
    // A line never laid out is laid out when it is first shown, with whatever formats it has
    // then; re-coloured before that (a tab coloured after its text was set), laying it out
    // now would shape every line of the document.
    if (iCharsRemoved == iCharsAdded)
    {
        const QTextBlock Block = document()->findBlock(iFrom);
        if (Block.isValid() && iFrom + iCharsAdded <= Block.position() + Block.length()
            && Block.layout()->lineCount() == 0)
            return;
    }
    // The text after iFrom + iCharsAdded is what followed the change before, so the added
    // count alone reaches every changed line; the larger count keeps a deletion's extent no
    // smaller than before. A change in the number of lines still takes the full path.
    QPlainTextDocumentLayout::documentChanged(iFrom, 0, std::max(iCharsRemoved, iCharsAdded));
}
