#pragma once

#include <QString>

class QTextBlock;
class QTextCursor;

// The line-oriented editing commands of an edit panel, working on a cursor's selection.
// Each runs as one undo step and does nothing without a selection.
namespace TextCommands
{
// Inside one line the selected span becomes a block comment; over several lines every line
// gets "//" in column 0. A selection that ends in column 0 leaves that last line alone.
void CommentSelection(const QTextCursor& Selection);
// Undoes what CommentSelection did. Lines with blanks before their "//" are left alone.
void UncommentSelection(const QTextCursor& Selection);
// Inserts Indent at the start of every selected line.
void AddIndent(const QTextCursor& Selection, const QString& Indent);
// From every non-empty selected line removes a leading tab or, with bSpaces, iTabSize
// characters when the line begins with Indent.
void RemoveIndent(const QTextCursor& Selection, bool bSpaces, const QString& Indent, int iTabSize);

// The blanks (tabs and spaces) that the line begins with.
[[nodiscard]] QString LeadingBlanks(const QTextBlock& Block);
// Where a smart Home key goes from Cursor: the line's first non-blank character, or -1 for
// the ordinary start of the line (when the cursor sits in the leading blanks).
[[nodiscard]] int SmartHomePosition(const QTextCursor& Cursor);
} // namespace TextCommands

// The indentation one command inserts. It only ever grows: each use with a tab size that
// differs from its length appends that many spaces. A tab size changed from 4 to 2 thus
// yields six spaces; existing users rely on that, so it is kept.
class CIndentString
{
public:
    const QString& Get(int iTabSize);

private:
    QString m_Text;
};
