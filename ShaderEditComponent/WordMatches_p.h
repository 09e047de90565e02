#pragma once

#include "TextSearch_p.h"

#include <QString>
#include <QVector>

// Every case-sensitive whole-word occurrence of Word (an identifier, no line break) in Text,
// a document's plain text. Identifiers are words: a letter, a digit or an underscore next to
// an occurrence makes it part of a longer identifier, so on "o" the "o" of "o_color" is no
// match. After such a part-word hit the search resumes one character past its end.
[[nodiscard]] QVector<STextRange> FindWholeWordMatches(const QString& Text, const QString& Word);
