#pragma once

#include "DocumentBackup.h"

#include <QHash>
#include <QList>
#include <QLockFile>
#include <QObject>
#include <QThread>

#include <memory>

class CShaderEditPanel;
class CShaderEditor;
class QTimer;

// A backup another session left behind, read and checked.
struct SLeftBackup
{
    QString File; // the backup file
    SDocumentBackup Backup;
    bool bDiskChanged = false; // the document's file differs from when the backup was taken
};

// A file in the backup folder that is not a backup of ours, moved aside.
struct SDamagedBackup
{
    QString File;   // where it was
    QString KeptAs; // where it is now
    QString Error;
};

struct SBackupScan
{
    QList<SLeftBackup> Backups;
    QList<SDamagedBackup> Damaged;
};

// Keeps a backup of every modified document of the editor in an owner-only folder, so that
// typed work survives a crash. A change is backed up about a second later (at most a second
// after the first change not yet backed up, however fast the user types); the text is
// encoded and written on a thread of its own. A save, a clean close or a discard removes
// the document's backup. Each session holds a lock file in the folder, so the backups of a
// session that is still running are never taken for left-overs; a start removes the locks of
// sessions that are no longer running.
class CDocumentBackups : public QObject
{
    Q_OBJECT

public:
    // An empty Folder means DefaultFolder().
    explicit CDocumentBackups(CShaderEditor* pEditor, const QString& Folder = QString(), QObject* pParent = nullptr);
    ~CDocumentBackups() override;

    // $XDG_STATE_HOME (or ~/.local/state) /Brenmoor Systems/ZamShaderEditor.
    [[nodiscard]] static QString DefaultFolder();
    const QString& GetFolder() const { return m_Folder; }
    // Why no backups are kept; empty while they are.
    const QString& GetError() const { return m_Error; }
    void SetDelay(int iMilliseconds) { m_iDelayMs = iMilliseconds; }

    // The backups of sessions that ended without closing their documents. Files that are no
    // backup of ours are moved to the "damaged" folder inside and listed.
    [[nodiscard]] SBackupScan FindLeftBackups();
    // Each backup comes back as a modified tab named as before (the tab of its file, when the
    // session opened that file again unchanged); the file on disk is left alone. The backup
    // file is kept for the tab until it is saved or closed.
    void Restore(const QList<SLeftBackup>& Backups);
    void Discard(const QList<SLeftBackup>& Backups);
    // Returns once every backup asked for so far is written or removed.
    void Flush();

private slots:
    void OnPanelAdded(CShaderEditPanel* pPanel);
    void OnPanelClosed(CShaderEditPanel* pPanel);

private:
    struct SWatched
    {
        QString File;
        QTimer* pTimer = nullptr;
    };

    bool PrepareFolder();
    void TakeBackup(CShaderEditPanel* pPanel);
    void RemoveBackup(CShaderEditPanel* pPanel);
    void Forget(const CShaderEditPanel* pPanel);
    void WriteInBackground(const QString& File, SDocumentBackup Backup);
    void RemoveInBackground(const QString& File);
    void MoveInBackground(const QString& From, const QString& To);
    bool IsSessionRunning(const QString& Session) const;
    // Removes the lock files of sessions whose process is gone (killed or crashed), which
    // would otherwise pile up in the folder.
    void RemoveStaleLocks() const;
    SDamagedBackup KeepAside(const QString& File, const QString& Error) const;
    CShaderEditPanel* UnmodifiedTabOf(const QString& Path) const;

    CShaderEditor* m_pEditor;
    QString m_Folder;
    QString m_Error;
    QString m_Session;
    std::unique_ptr<QLockFile> m_pSessionLock;
    int m_iDelayMs = 1000;
    int m_iNextFile = 0;
    QHash<const CShaderEditPanel*, SWatched> m_Watched;
    QThread m_Thread;
    QObject* m_pWorker; // lives on m_Thread; backups are written in its context
};
