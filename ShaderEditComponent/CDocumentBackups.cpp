#include "CDocumentBackups.h"

#include "AtomicFile_p.h"
#include "CShaderEditor.h"
#include "CShaderEditPanel.h"
#include "EditLog_p.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/compile/process/RegularFile.h"

#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTimer>

#include <sys/stat.h>
#include <unistd.h>

namespace
{
const char s_BackupSuffix[] = ".zsbackup";
const char s_LockSuffix[] = ".lock";
const char s_DamagedFolder[] = "damaged";

QString SessionOf(const QString& FileName)
{
    return FileName.left(FileName.lastIndexOf(QLatin1Char('-')));
}

// Only the user may look in: the folder holds what they typed.
QString MakeOwnerOnly(const QString& Folder)
{
    if (!QDir().mkpath(Folder))
        return QStringLiteral("cannot create %1").arg(Folder);
    const QByteArray Name = QFile::encodeName(Folder);
    struct stat Status
    {
    };
    if (::lstat(Name.constData(), &Status) != 0 || !S_ISDIR(Status.st_mode))
        return QStringLiteral("%1 is not a folder").arg(Folder);
    if (Status.st_uid != ::geteuid())
        return QStringLiteral("%1 belongs to another user").arg(Folder);
    if ((Status.st_mode & 0777) != 0700 && ::chmod(Name.constData(), 0700) != 0)
        return QStringLiteral("cannot make %1 private").arg(Folder);
    return QString();
}
} // namespace

CDocumentBackups::CDocumentBackups(CShaderEditor* pEditor, const QString& Folder, QObject* pParent)
    : QObject(pParent)
    , m_pEditor(pEditor)
    , m_Folder(Folder.isEmpty() ? DefaultFolder() : Folder)
    , m_pWorker(new QObject)
{
    m_Session =
        QStringLiteral("s%1%2").arg(::getpid()).arg(QRandomGenerator::global()->generate(), 8, 36, QLatin1Char('0'));
    m_pWorker->moveToThread(&m_Thread);
    m_Thread.setObjectName(QStringLiteral("DocumentBackups"));
    m_Thread.start(QThread::LowPriority);
    if (!PrepareFolder())
        qCWarning(lcZamEdit) << "no document backups:" << m_Error;
    connect(pEditor, &CShaderEditor::PanelAdded, this, &CDocumentBackups::OnPanelAdded);
    connect(pEditor, &CShaderEditor::PanelClosed, this, &CDocumentBackups::OnPanelClosed);
    for (int i = 0; i < pEditor->GetTabCount(); ++i)
        OnPanelAdded(pEditor->GetPanel(i));
}

CDocumentBackups::~CDocumentBackups()
{
    // Whatever was asked for is done before the thread ends; backups of documents still open
    // stay, since only a clean close or a save may remove them.
    QMetaObject::invokeMethod(
        m_pWorker, [this] { m_Thread.quit(); }, Qt::QueuedConnection);
    m_Thread.wait();
    delete m_pWorker;
}

QString CDocumentBackups::DefaultFolder()
{
    QString State = qEnvironmentVariable("XDG_STATE_HOME");
    if (State.isEmpty() || QDir::isRelativePath(State))
        State = QDir::homePath() + QLatin1String("/.local/state");
    return State + QLatin1String("/Brenmoor Systems/ZamShaderEditor");
}

bool CDocumentBackups::PrepareFolder()
{
    m_Error = MakeOwnerOnly(m_Folder);
    if (!m_Error.isEmpty())
        return false;
    m_pSessionLock = std::make_unique<QLockFile>(m_Folder + QLatin1Char('/') + m_Session + QLatin1String(s_LockSuffix));
    m_pSessionLock->setStaleLockTime(0);
    if (!m_pSessionLock->tryLock(0))
    {
        m_Error = QStringLiteral("cannot lock the session in %1").arg(m_Folder);
        m_pSessionLock.reset();
        return false;
    }
    RemoveStaleLocks();
    return true;
}

void CDocumentBackups::RemoveStaleLocks() const
{
    const QString Suffix = QLatin1String(s_LockSuffix);
    const QStringList Locks =
        QDir(m_Folder).entryList({QLatin1Char('*') + Suffix}, QDir::Files | QDir::Hidden | QDir::System);
    for (const QString& Name : Locks)
    {
        const QString Session = Name.chopped(Suffix.size());
        if (Session != m_Session)
            (void)IsSessionRunning(Session);
    }
}

void CDocumentBackups::OnPanelAdded(CShaderEditPanel* pPanel)
{
    if (!m_pSessionLock || m_Watched.contains(pPanel))
        return;
    SWatched Watched;
    Watched.File =
        QStringLiteral("%1/%2-%3%4").arg(m_Folder, m_Session).arg(m_iNextFile++).arg(QLatin1String(s_BackupSuffix));
    Watched.pTimer = new QTimer(this);
    Watched.pTimer->setSingleShot(true);
    connect(Watched.pTimer, &QTimer::timeout, this, [this, pPanel] { TakeBackup(pPanel); });
    // Typing never stops the clock: the first change not yet backed up starts it.
    connect(pPanel, &QPlainTextEdit::textChanged, Watched.pTimer,
            [this, pTimer = Watched.pTimer]
            {
                if (!pTimer->isActive())
                    pTimer->start(m_iDelayMs);
            });
    connect(pPanel, &QPlainTextEdit::modificationChanged, this,
            [this, pPanel](bool bModified)
            {
                if (!bModified)
                    RemoveBackup(pPanel);
            });
    connect(pPanel, &QObject::destroyed, this, [this, pPanel] { Forget(pPanel); });
    m_Watched.insert(pPanel, Watched);
}

void CDocumentBackups::OnPanelClosed(CShaderEditPanel* pPanel)
{
    RemoveBackup(pPanel);
    Forget(pPanel);
}

void CDocumentBackups::Forget(const CShaderEditPanel* pPanel)
{
    const auto Found = m_Watched.constFind(pPanel);
    if (Found == m_Watched.constEnd())
        return;
    delete Found->pTimer;
    m_Watched.erase(Found);
}

void CDocumentBackups::TakeBackup(CShaderEditPanel* pPanel)
{
    const auto Found = m_Watched.constFind(pPanel);
    if (Found == m_Watched.constEnd() || !pPanel->IsModified())
        return;
    SDocumentBackup Backup;
    Backup.Path = ToQString(pPanel->GetFilename());
    Backup.Title = m_pEditor->DocumentTitle(m_pEditor->IndexOfPanel(pPanel));
    Backup.eType = pPanel->GetDocumentType();
    Backup.Format = pPanel->GetFileFormat();
    Backup.Text = pPanel->GetPlainText(); // shared, not copied: the writer thread encodes it
    WriteInBackground(Found->File, std::move(Backup));
}

void CDocumentBackups::RemoveBackup(CShaderEditPanel* pPanel)
{
    const auto Found = m_Watched.constFind(pPanel);
    if (Found == m_Watched.constEnd())
        return;
    Found->pTimer->stop();
    RemoveInBackground(Found->File);
}

void CDocumentBackups::WriteInBackground(const QString& File, SDocumentBackup Backup)
{
    QMetaObject::invokeMethod(
        m_pWorker,
        [File, Backup = std::move(Backup)]() mutable
        {
            Backup.DiskChecksum = DiskChecksumOf(Backup.Path);
            const SAtomicWriteResult Written = WriteFileAtomically(File, EncodeBackup(Backup), 0600);
            if (!Written.bOk)
                qCWarning(lcZamEdit) << "cannot write the backup" << File << Written.Reason;
        },
        Qt::QueuedConnection);
}

void CDocumentBackups::RemoveInBackground(const QString& File)
{
    QMetaObject::invokeMethod(
        m_pWorker,
        [File]
        {
            if (QFileInfo::exists(File) && !QFile::remove(File))
                qCWarning(lcZamEdit) << "cannot remove the backup" << File;
        },
        Qt::QueuedConnection);
}

void CDocumentBackups::MoveInBackground(const QString& From, const QString& To)
{
    QMetaObject::invokeMethod(
        m_pWorker,
        [From, To]
        {
            QFile::remove(To);
            if (!QFile::rename(From, To))
                qCWarning(lcZamEdit) << "cannot take over the backup" << From;
        },
        Qt::QueuedConnection);
}

void CDocumentBackups::Flush()
{
    QMetaObject::invokeMethod(
        m_pWorker, [] {}, Qt::BlockingQueuedConnection);
}

bool CDocumentBackups::IsSessionRunning(const QString& Session) const
{
    // A lock whose process is gone (the lock names its process id and program) is taken over
    // and removed; a live session's lock cannot be taken and stays as it is.
    QLockFile Lock(m_Folder + QLatin1Char('/') + Session + QLatin1String(s_LockSuffix));
    Lock.setStaleLockTime(0);
    if (!Lock.tryLock(0))
        return true;
    Lock.unlock();
    return false;
}

SDamagedBackup CDocumentBackups::KeepAside(const QString& File, const QString& Error) const
{
    SDamagedBackup Damaged;
    Damaged.File = File;
    Damaged.Error = Error;
    const QString Aside = m_Folder + QLatin1Char('/') + QLatin1String(s_DamagedFolder);
    if (!MakeOwnerOnly(Aside).isEmpty())
        return Damaged;
    QString Target = Aside + QLatin1Char('/') + QFileInfo(File).fileName();
    for (int i = 1; QFileInfo::exists(Target); ++i)
        Target = Aside + QLatin1Char('/') + QFileInfo(File).fileName() + QLatin1Char('.') + QString::number(i);
    if (QFile::rename(File, Target))
        Damaged.KeptAs = Target;
    return Damaged;
}

SBackupScan CDocumentBackups::FindLeftBackups()
{
    SBackupScan Scan;
    if (!m_pSessionLock)
        return Scan;
    const QDir Folder(m_Folder);
    QHash<QString, bool> Running;
    const QStringList Names = Folder.entryList({QLatin1Char('*') + QLatin1String(s_BackupSuffix)},
                                               QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    for (const QString& Name : Names)
    {
        const QString Session = SessionOf(Name);
        if (Session == m_Session)
            continue;
        if (!Running.contains(Session))
            Running.insert(Session, IsSessionRunning(Session));
        if (Running.value(Session))
            continue;
        const QString File = Folder.filePath(Name);
        const SRegularFile Read = ReadRegularFile(File, MaxDocumentBytes + 4096);
        SBackupDecodeResult Decoded;
        if (Read.eResult == RegularFile_Read)
            Decoded = DecodeBackup(Read.Bytes);
        else
            Decoded.Error = DescribeReadFailure(Read);
        if (!Decoded.bOk)
        {
            Scan.Damaged << KeepAside(File, Decoded.Error);
            continue;
        }
        SLeftBackup Left;
        Left.File = File;
        Left.Backup = Decoded.Backup;
        Left.bDiskChanged = !Left.Backup.Path.isEmpty() && DiskChecksumOf(Left.Backup.Path) != Left.Backup.DiskChecksum;
        Scan.Backups << Left;
    }
    return Scan;
}

void CDocumentBackups::Restore(const QList<SLeftBackup>& Backups)
{
    for (const SLeftBackup& Left : Backups)
    {
        const SDocumentBackup& Backup = Left.Backup;
        CShaderEditPanel* pPanel = UnmodifiedTabOf(Backup.Path);
        if (pPanel)
        {
            // The session already opened the file again: its tab takes the restored text.
            pPanel->SetContents(Backup.Text, false);
            pPanel->SetFileFormat(Backup.Format);
            pPanel->document()->setModified(true);
        }
        else
        {
            pPanel =
                m_pEditor->AddRestoredDocument(Backup.Title, Backup.Text, Backup.Path, Backup.eType, Backup.Format);
        }
        const auto Found = m_Watched.constFind(pPanel);
        // The old backup becomes the tab's own until the tab writes a newer one. Moved on the
        // worker, after a removal that taking the text may just have queued for the tab's file.
        if (Found != m_Watched.constEnd())
            MoveInBackground(Left.File, Found->File);
    }
}

CShaderEditPanel* CDocumentBackups::UnmodifiedTabOf(const QString& Path) const
{
    for (int i = 0; !Path.isEmpty() && i < m_pEditor->GetTabCount(); ++i)
    {
        CShaderEditPanel* pPanel = m_pEditor->GetPanel(i);
        if (ToQString(pPanel->GetFilename()) == Path && !pPanel->IsModified())
            return pPanel;
    }
    return nullptr;
}

void CDocumentBackups::Discard(const QList<SLeftBackup>& Backups)
{
    for (const SLeftBackup& Left : Backups)
    {
        if (!QFile::remove(Left.File))
            qCWarning(lcZamEdit) << "cannot remove the backup" << Left.File;
    }
}
