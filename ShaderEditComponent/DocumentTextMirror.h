#pragma once

#include <QString>

class QTextDocument;

// A document's plain text (as QTextDocument::toPlainText gives it), kept up to date from
// the document's change reports. Rebuilding the text of a 20,000-line document costs
// milliseconds; a keystroke only changes a few characters of it.
class CDocumentTextMirror
{
public:
    // Starts over from the whole text of pDocument (not owned; may be null).
    void Reset(QTextDocument* pDocument);
    // Takes one change of the document, as QTextDocument::contentsChange reports it. A
    // report that does not fit the text rebuilds it whole: one that counts the document's
    // final paragraph separator, or one after a change the document never reported (an
    // edit made while it was reporting another, unless passed in here by hand).
    void Apply(int iPosition, int iCharsRemoved, int iCharsAdded);
    const QString& GetText() const { return m_Text; }

private:
    QString TextAt(int iPosition, int iLength) const;

    QTextDocument* m_pDocument = nullptr;
    QString m_Text;
};
