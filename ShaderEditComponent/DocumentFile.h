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
[[nodiscard]] SDocumentText DecodeDocument(const QByteArray& Bytes);
// Writes Latin-1 back as Latin-1 unless the text gained characters Latin-1 cannot hold;
// then, rather than losing them, the whole text is written as UTF-8.
[[nodiscard]] QByteArray EncodeDocument(const QString& Text, const SDocumentFormat& Format);

struct SFileReadResult
{
    bool bOk = false;
    QByteArray Bytes;
    QString Error; // the complete message for the user when !bOk
};

// Reads a regular file of up to MaxDocumentBytes (256 MiB) whole. Directories, pipes and
// devices are refused without waiting, so a path naming a FIFO can never block the program; a
// larger file, or one there is no memory for, is refused with its size and the limit.
[[nodiscard]] SFileReadResult ReadDocumentFile(const QString& Path);

struct SFileWriteResult
{
    bool bOk = false;
    QString Error;
};

// Writes through a temporary file in the same folder that replaces the file only once every
// byte is on disk; on any failure the old file is left exactly as it was.
[[nodiscard]] SFileWriteResult WriteDocumentFile(const QString& Path, const QByteArray& Bytes);
