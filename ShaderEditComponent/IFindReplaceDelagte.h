#pragma once

#include <QList>
#include <QString>
#include <QTextCharFormat>
#include <QTextEdit>

class QPlainTextEdit;

// What the find bar needs from the editor: the panel to search in and a place
// to show the matches. The editor owns the panels; the bar never keeps them.
class IFindReplaceDelagte
{
public:
    virtual ~IFindReplaceDelagte() = default;

    // Replaces the current panel's find-result highlights, if the editor
    // settings ask for find results to be highlighted.
    virtual void ShowFindResults(const QList<QTextEdit::ExtraSelection>& lSelections) = 0;
    // Removes the current panel's find-result highlights.
    virtual void ClearFindResults() = 0;
    // The current panel, or null without a tab.
    virtual QPlainTextEdit* GetTextEdit() = 0;
    // Character format for one find-result highlight.
    virtual QTextCharFormat GetFindResultFormat() const = 0;
    // Text of the current panel's selection; empty without a panel or a selection.
    virtual QString GetSelectedText() const = 0;
};
