#pragma once

#include <QByteArray>
#include <QString>

// The largest document the editor opens and the command-line compile reads: 256 MiB.
constexpr qint64 MaxDocumentBytes = 256LL * 1024 * 1024;

enum ERegularFileRead
{
    RegularFile_Read,
    RegularFile_OpenFailed,
    RegularFile_NotRegular, // a directory, FIFO, device or socket
    RegularFile_TooLarge,   // above the limit, or no memory for it
    RegularFile_ReadFailed, // fewer bytes than the file had
};

struct SRegularFile
{
    ERegularFileRead eResult = RegularFile_OpenFailed;
    QByteArray Bytes;
    qint64 iSize = 0;
    qint64 iLimit = 0;
    QString SystemReason; // the system's words, for open and read failures
};

// Reads a file whole when it is a regular file of at most iMaxBytes. Whatever else the path
// names is refused without waiting: a FIFO, a device or a directory is never read from.
[[nodiscard]] SRegularFile ReadRegularFile(const QString& Path, qint64 iMaxBytes);

// Why a read failed, as a clause for the user: "not a regular file (a FIFO)", "too large
// (300 MiB); the limit is 256 MiB", or the system's reason. Empty after a successful read.
[[nodiscard]] QString DescribeReadFailure(const SRegularFile& File);
