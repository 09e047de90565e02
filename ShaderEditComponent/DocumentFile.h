#pragma once

#include <QByteArray>
#include <QString>

// How a document's bytes were laid out on disk, so that saving writes them back the same way.
struct SDocumentFormat
{
    bool bUtf8 = true;  // false: the bytes were not valid UTF-8 and were read as Latin-1
    bool bBom = false;  // the file began with a UTF-8 byte-order mark
    bool bCrlf = false; // most line breaks were "\r\n"
};

struct SDocumentText
{
    QString Text; // line breaks as "\n"
    SDocumentFormat Format;
};

// Valid UTF-8 is read as UTF-8; anything else byte for byte as Latin-1, so no byte is
// replaced and an unchanged document saves back to the same bytes.
SDocumentText DecodeDocument(const QByteArray& Bytes);
// Writes Latin-1 back as Latin-1 unless the text gained characters Latin-1 cannot hold;
// then, rather than losing them, the whole text is written as UTF-8.
QByteArray EncodeDocument(const QString& Text, const SDocumentFormat& Format);

struct SFileReadResult
{
    bool bOk = false;
    QByteArray Bytes;
    QString Error; // the complete message for the user when !bOk
};

// Files above this size are refused with "Not enough memory to load file.": the editor holds a
// document several times over (text, layout, highlighting), and shaders are far smaller.
constexpr qint64 iMaxDocumentBytes = 16 * 1024 * 1024;

// Reads a regular file whole. Directories, pipes and devices are refused before they are
// opened, so a path naming a FIFO can never block the program.
SFileReadResult ReadDocumentFile(const QString& Path);

struct SFileWriteResult
{
    bool bOk = false;
    QString Error;
};

// Writes through a temporary file in the same folder that replaces the file only once every
// byte is on disk; on any failure the old file is left exactly as it was.
SFileWriteResult WriteDocumentFile(const QString& Path, const QByteArray& Bytes);
