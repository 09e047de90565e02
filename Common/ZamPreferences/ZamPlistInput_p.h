#pragma once

#include <QByteArray>

// Checks that run on the raw bytes of a preference file before the XML parser sees them.

// Replaces every byte that does not belong to a well-formed UTF-8 sequence, and every NUL,
// by U+FFFD. Afterwards no sequence is cut short, so the parser never steps past the end.
// Returns true when something was replaced.
[[nodiscard]] bool ReplaceInvalidUtf8(QByteArray* pBytes);

struct SXmlShape
{
    int iDepth = 0;      // deepest element nesting
    qint64 iMarkup = 0;  // tags, comments, CDATA sections and other "<" constructs
    int iAttributes = 0; // most attributes in one start tag (the parser checks each new
                         // attribute against all earlier ones: quadratic in this number)
};

// Upper bounds of what the XML parser will build from Bytes. The scan follows the parser's
// lexical rules (comments, CDATA, quoted attribute values, declarations and other "<!"/"<?"
// constructs end where the parser ends them) and only ever over-counts the depth.
// Stops early, with a depth above iDepthLimit, once the nesting passes iDepthLimit.
[[nodiscard]] SXmlShape MeasureXmlShape(const QByteArray& Bytes, int iDepthLimit);
