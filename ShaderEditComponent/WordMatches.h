#pragma once

#include "TextSearch.h"

#include <QString>
#include <QVector>

// Every case-sensitive, whole-word occurrence of Word (which holds no line break) in Text,
// a document's plain text: what QTextDocument::find with FindCaseSensitively and
// FindWholeWords finds when each search starts where the previous match ended. A word's
// neighbours must not be letters or digits; after an occurrence that is part of a longer
// word the search resumes one character past its end, as the document's search does.
QVector<STextRange> FindWholeWordMatches(const QString& Text, const QString& Word);
