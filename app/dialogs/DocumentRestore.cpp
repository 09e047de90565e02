#include "DocumentRestore.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>

namespace
{
const char* const s_pTitle = "ZamShaderEditor 2.0";

QString Tr(const char* pText)
{
    return QCoreApplication::translate("DocumentRestore", pText);
}

QString DocumentLine(const SLeftBackup& Left)
{
    const SDocumentBackup& Backup = Left.Backup;
    if (Backup.Path.isEmpty())
        return Tr("%1 (never saved)").arg(Backup.Title);
    QString Line = QStringLiteral("%1 \u2014 %2").arg(Backup.Title, QDir::toNativeSeparators(Backup.Path));
    if (!QFileInfo::exists(Backup.Path))
        Line += Tr(" (the file no longer exists)");
    else if (Left.bDiskChanged)
        Line += Tr(" (the file on disk has changed since)");
    return Line;
}

QString DamagedLines(const SBackupScan& Scan)
{
    QStringList Lines;
    for (const SDamagedBackup& Damaged : Scan.Damaged)
    {
        const QString Where = Damaged.KeptAs.isEmpty() ? Damaged.File : Damaged.KeptAs;
        Lines << QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(Where), Damaged.Error);
    }
    return Lines.join(QLatin1Char('\n'));
}

ERestoreAnswer Ask(QWidget* pParent, const SRestoreQuestion& Question)
{
    QMessageBox Box(QMessageBox::Question, QLatin1String(s_pTitle), Question.Text, QMessageBox::NoButton, pParent);
    Box.setObjectName(QStringLiteral("RestoreQuestion"));
    Box.setInformativeText(Question.Details);
    QPushButton* pRestore = Box.addButton(Tr("Restore"), QMessageBox::AcceptRole);
    QPushButton* pDiscard = Box.addButton(Tr("Discard"), QMessageBox::DestructiveRole);
    QPushButton* pLater = Box.addButton(Tr("Ask Again Next Time"), QMessageBox::RejectRole);
    Box.setDefaultButton(pRestore);
    Box.setEscapeButton(pLater);
    Box.exec();
    if (Box.clickedButton() == pRestore)
        return RestoreAnswer_Restore;
    return Box.clickedButton() == pDiscard ? RestoreAnswer_Discard : RestoreAnswer_Later;
}
} // namespace

SRestoreQuestion DescribeLeftBackups(const SBackupScan& Scan)
{
    SRestoreQuestion Question;
    QStringList Parts;
    if (!Scan.Backups.isEmpty())
    {
        Question.Text = Tr("ZamShaderEditor did not close properly last time. Changes to these documents were not "
                           "saved; they can be restored:");
        QStringList Lines;
        for (const SLeftBackup& Left : Scan.Backups)
            Lines << DocumentLine(Left);
        Parts << Lines.join(QLatin1Char('\n'));
    }
    if (!Scan.Damaged.isEmpty())
    {
        if (Question.Text.isEmpty())
            Question.Text = Tr("Some document backups could not be read.");
        Parts << Tr("These files are no readable backups and were kept aside:") + QLatin1Char('\n')
                     + DamagedLines(Scan);
    }
    Question.Details = Parts.join(QLatin1String("\n\n"));
    return Question;
}

void OfferDocumentRestore(QWidget* pParent, CDocumentBackups& Backups)
{
    const SBackupScan Scan = Backups.FindLeftBackups();
    const SRestoreQuestion Question = DescribeLeftBackups(Scan);
    if (Question.Text.isEmpty())
        return;
    if (Scan.Backups.isEmpty())
    {
        QMessageBox Box(QMessageBox::Warning, QLatin1String(s_pTitle), Question.Text, QMessageBox::Ok, pParent);
        Box.setInformativeText(Question.Details);
        Box.exec();
        return;
    }
    switch (Ask(pParent, Question))
    {
    case RestoreAnswer_Restore:
        Backups.Restore(Scan.Backups);
        break;
    case RestoreAnswer_Discard:
        Backups.Discard(Scan.Backups);
        break;
    case RestoreAnswer_Later:
        break;
    }
}
