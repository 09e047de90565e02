#include "EditDocumentLayout_p.h"

#include <algorithm>

CEditDocumentLayout::CEditDocumentLayout(QTextDocument* pDocument)
    : QPlainTextDocumentLayout(pDocument)
{
}

void CEditDocumentLayout::documentChanged(int iFrom, int iCharsRemoved, int iCharsAdded)
{
    // The text after iFrom + iCharsAdded is what followed the change before, so the added
    // count alone reaches every changed line; the larger count keeps a deletion's extent no
    // smaller than before. A change in the number of lines still takes the full path.
    QPlainTextDocumentLayout::documentChanged(iFrom, 0, std::max(iCharsRemoved, iCharsAdded));
}
