#pragma once

#include "DocumentFile.h"
#include "ShaderEditComponent/compile/model/ShaderDocType.h"

#include <QByteArray>
#include <QString>

// What a backup keeps of a modified document: enough to bring its tab back as it was.
struct SDocumentBackup
{
    QString Path;  // the document's file; empty for a document never saved
    QString Title; // the tab's title without the modified marker
    EShaderDocType eType = DocType_PlainText;
    SDocumentFormat Format;
    // SHA-256 (hex) of the file on disk when the backup was taken; empty when there was none.
    QByteArray DiskChecksum;
    QString Text;
};

// A small text header (magic line, then one "key value" line per field, names percent-encoded
// so no name can break a line) and the text as UTF-8, guarded by its length and SHA-256.
[[nodiscard]] QByteArray EncodeBackup(const SDocumentBackup& Backup);

struct SBackupDecodeResult
{
    bool bOk = false;
    SDocumentBackup Backup;
    QString Error; // why the bytes are not a backup of ours, when !bOk
};

// Never trusts the bytes: anything but a complete backup of this program comes back with the
// reason, however it was damaged.
[[nodiscard]] SBackupDecodeResult DecodeBackup(const QByteArray& Bytes);

// SHA-256 (hex) of a file's contents; empty when it cannot be read as a document.
[[nodiscard]] QByteArray DiskChecksumOf(const QString& Path);
