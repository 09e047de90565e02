#include "DocumentTextMirror.h"

#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>

namespace
{
// What toPlainText makes of the characters a document stores.
void ToPlainCharacters(QString& Text)
{
    for (QChar& Char : Text)
    {
        switch (Char.unicode())
        {
        case QChar::ParagraphSeparator:
        case QChar::LineSeparator:
        case 0xfdd0: // start of a frame
        case 0xfdd1: // end of a frame
            Char = QLatin1Char('\n');
            break;
        case QChar::Nbsp:
            Char = QLatin1Char(' ');
            break;
        default:
            break;
        }
    }
}
} // namespace

void CDocumentTextMirror::Reset(QTextDocument* pDocument)
{
    m_pDocument = pDocument;
    m_Text = pDocument ? pDocument->toPlainText() : QString();
}

void CDocumentTextMirror::Apply(int iPosition, int iCharsRemoved, int iCharsAdded)
{
    if (!m_pDocument)
        return;
    // The text holds every character but the document's final paragraph separator.
    const int iOldLength = static_cast<int>(m_Text.size());
    const int iNewLength = m_pDocument->characterCount() - 1;
    if (iPosition < 0 || iPosition > iOldLength || iPosition > iNewLength)
    {
        Reset(m_pDocument);
        return;
    }
    const int iRemoved = std::clamp(iCharsRemoved, 0, iOldLength - iPosition);
    const int iAdded = std::clamp(iCharsAdded, 0, iNewLength - iPosition);
    // Taking a third of the text or more through a cursor costs more than rebuilding it
    // whole, as after opening a file.
    if (iOldLength - iRemoved + iAdded != iNewLength || iAdded > iNewLength / 3)
    {
        Reset(m_pDocument);
        return;
    }
    m_Text.replace(iPosition, iRemoved, TextAt(iPosition, iAdded));
}

QString CDocumentTextMirror::TextAt(int iPosition, int iLength) const
{
    if (iLength == 0)
        return QString();
    QTextCursor Range(m_pDocument);
    Range.setPosition(iPosition);
    Range.setPosition(iPosition + iLength, QTextCursor::KeepAnchor);
    QString Text = Range.selectedText();
    ToPlainCharacters(Text);
    return Text;
}
