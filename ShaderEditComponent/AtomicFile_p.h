#pragma once

#include <QByteArray>
#include <QString>

#include <sys/types.h>

struct SAtomicWriteResult
{
    bool bOk = false;
    bool bOpenFailed = false; // nothing could be created beside the file; else the write failed
    QString Reason;           // the system's error text when !bOk
};

// Replaces the file with Bytes so that a crash at any moment leaves either the old or the new
// contents, never a mixture. A symbolic link is written through to its target; an existing
// file keeps its permissions, a new one gets uiNewMode less the umask. The data goes to an
// unnamed file in the same folder (a named ".<name>.zs<pid>-<n>.tmp" where the file system has
// none), reaches the disk, and only then takes the file's name.
[[nodiscard]] SAtomicWriteResult WriteFileAtomically(const QString& Path, const QByteArray& Bytes,
                                                     mode_t uiNewMode = 0666);

// Removes the temporary files an interrupted write of ours left beside Path: those of this
// process and of processes that no longer run. Returns how many went.
int RemoveStrayTemporaries(const QString& Path);
