#pragma once

#include <QRegularExpression>
#include <QString>
#include <QTextCursor>
#include <QTextDocument>
#include <QVector>

// The find bar's search flags, a bit set.
enum EFindFlag : unsigned int
{
    FindFlag_Forward = 1,  // search forward; wrap to the document start
    FindFlag_Backward = 2, // search backward; wrap to the document end
    FindFlag_MatchCase = 4,
    FindFlag_WholeWords = 8,
    FindFlag_Textual = 16, // the text is a plain string
    FindFlag_RegExp = 32,  // the text is a regular expression
    FindFlag_FindAll = 64, // count and highlight every match
};

// A match as a document position and length.
struct STextRange
{
    int iStart = 0;
    int iLength = 0;

    bool operator==(const STextRange& Other) const { return iStart == Other.iStart && iLength == Other.iLength; }
};

// One search, prepared once: the text with its flags, and in regular-expression mode the
// compiled expression, so that a search over thousands of matches never recompiles it.
// Matches never span lines, as with QTextDocument::find.
class CTextSearch
{
public:
    CTextSearch(const QString& Text, unsigned int uiFlags);

    // False for an empty text or an expression that does not compile.
    bool IsValid() const;
    // Why the expression does not compile; empty otherwise.
    QString GetErrorString() const;

    // The next match after From's selection (before it with FindFlag_Backward); a null
    // cursor when there is none.
    QTextCursor FindFrom(const QTextDocument* pDocument, const QTextCursor& From) const;
    // FindFrom, then once more from the document start (or end, backward) when nothing
    // was found.
    QTextCursor FindWithWrap(const QTextDocument* pDocument, const QTextCursor& From) const;

    // Every match from the document start, each search starting where the previous match
    // ended, as repeated FindFrom calls would find them. The list ends before a match
    // equal to the previous one, so an expression that matches empty text ends it at its
    // first empty match.
    QVector<STextRange> FindAll(const QTextDocument* pDocument) const;
    // The matches a replace-all replaces: non-overlapping, in document order; after an
    // empty match the search goes on one character later, so "^" finds every line start.
    QVector<STextRange> FindAllToReplace(const QTextDocument* pDocument) const;

private:
    enum EEmptyMatchRule
    {
        EmptyMatch_Stop,
        EmptyMatch_StepOver,
    };

    QVector<STextRange> CollectMatches(const QTextDocument* pDocument, EEmptyMatchRule eRule) const;
    // The first match in one line's text at or after iOffset, in line coordinates.
    bool MatchInLine(const QString& Line, int iOffset, STextRange* pMatch) const;
    bool IsWholeWord(const QString& Line, int iStart, int iEnd) const;
    QTextDocument::FindFlags DocumentFlags() const;

    QString m_Text;
    unsigned int m_uiFlags;
    QRegularExpression m_Expression;
};

// Replaces every match of the search in Origin's document by Replacement as one edit block
// (one undo step), which undo leaves with the cursor where Origin is; returns the number of
// replacements.
int ReplaceAllMatches(const CTextSearch& Search, const QString& Replacement, const QTextCursor& Origin);
