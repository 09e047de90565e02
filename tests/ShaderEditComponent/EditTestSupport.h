#pragma once

#include <QPlainTextEdit>
#include <QString>
#include <QTextCursor>

// Texts in the edit tests mark the cursor with '|' and, for a selection, its anchor with '<'.
namespace EditTestSupport
{
inline void SetMarkedText(QPlainTextEdit* pEdit, QString Text)
{
    const int iAnchorMarker = static_cast<int>(Text.indexOf(QLatin1Char('<')));
    int iCursor = static_cast<int>(Text.indexOf(QLatin1Char('|')));
    int iAnchor = iCursor;
    if (iAnchorMarker >= 0)
    {
        iAnchor = iAnchorMarker < iCursor ? iAnchorMarker : iAnchorMarker - 1;
        iCursor = iAnchorMarker < iCursor ? iCursor - 1 : iCursor;
    }
    Text.remove(QLatin1Char('<'));
    Text.remove(QLatin1Char('|'));
    pEdit->setPlainText(Text);
    QTextCursor Cursor = pEdit->textCursor();
    Cursor.setPosition(iAnchor < 0 ? 0 : iAnchor);
    Cursor.setPosition(iCursor < 0 ? 0 : iCursor, QTextCursor::KeepAnchor);
    pEdit->setTextCursor(Cursor);
}

inline QString MarkedText(const QPlainTextEdit* pEdit)
{
    QString Text = pEdit->toPlainText();
    const QTextCursor Cursor = pEdit->textCursor();
    const int iPosition = Cursor.position();
    const int iAnchor = Cursor.anchor();
    if (iAnchor == iPosition)
        return Text.insert(iPosition, QLatin1Char('|'));
    if (iAnchor > iPosition)
        return Text.insert(iAnchor, QLatin1Char('<')).insert(iPosition, QLatin1Char('|'));
    return Text.insert(iPosition, QLatin1Char('|')).insert(iAnchor, QLatin1Char('<'));
}
} // namespace EditTestSupport
