#pragma once

class TiXmlDocument;

// Brings a parsed document into the shape the store reads: a declaration first, one root
// <plist> holding one <dict>, and dicts and arrays whose keys and values pair up. Every
// repair is reported; entries that cannot be paired are dropped and the rest is kept.
// Returns true when the document ends up with its root dict.
[[nodiscard]] bool RepairPlistDocument(TiXmlDocument* pDocument);
