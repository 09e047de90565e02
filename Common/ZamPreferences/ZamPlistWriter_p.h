#pragma once

#include <QByteArray>

class TiXmlDocument;

// The empty preference document, byte for byte as a new file gets it.
extern const char acEmptyPlistDocument[];

// Serialises the document as indented XML 1.0 that any property-list reader accepts.
// Element-free dicts and arrays are written as an open and a close line, so an empty
// document comes out exactly as acEmptyPlistDocument.
[[nodiscard]] QByteArray WritePlistDocument(const TiXmlDocument& Document);
