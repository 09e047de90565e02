#pragma once

#include "ShaderEditComponent/CDocumentBackups.h"

#include <QString>

class QWidget;

enum ERestoreAnswer : int
{
    RestoreAnswer_Restore = 0,
    RestoreAnswer_Discard,
    RestoreAnswer_Later, // keep the backups and ask again at the next start
};

// What the restore question says: the documents that can come back, each with its file and
// whether that file changed since, and the files that were kept aside because they are no
// backups of ours. Empty when there is nothing to tell.
struct SRestoreQuestion
{
    QString Text;
    QString Details;
};
[[nodiscard]] SRestoreQuestion DescribeLeftBackups(const SBackupScan& Scan);

// After a crash: asks whether to bring back the documents the last session had not saved,
// and does what the user chose. A scan that only found damaged files is reported. Nothing
// is asked when there is nothing to restore or report.
void OfferDocumentRestore(QWidget* pParent, CDocumentBackups& Backups);
