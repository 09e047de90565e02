#pragma once

#include <QByteArray>
#include <QFileSystemWatcher>
#include <QHash>
#include <QObject>
#include <QSet>
#include <QTimer>

// Notices when another program changes or deletes a file that is open in the editor. Only a
// real change counts: for every file it keeps a digest of the bytes last seen there (read or
// saved by the editor), so the editor's own saves, a touch or a rewrite with the same bytes
// report nothing. A file replaced by renaming another over it, as editors and version control
// do, stays watched; a deleted file is reported once and watched again when it comes back.
// Bursts of events settle for a moment first, so a save in several steps is one change.
class CDocumentWatcher : public QObject
{
    Q_OBJECT

public:
    explicit CDocumentWatcher(QObject* pParent = nullptr);

    // Starts or goes on watching Path, whose bytes on disk are now Bytes.
    void Watch(const QString& Path, const QByteArray& Bytes);
    void Unwatch(const QString& Path);
    bool IsWatching(const QString& Path) const { return m_Files.contains(Path); }

signals:
    // Path now holds Bytes, which differ from what was last seen there.
    void FileChanged(const QString& Path, const QByteArray& Bytes);
    // Path is gone; FileChanged follows if it comes back with other bytes.
    void FileDeleted(const QString& Path);

private slots:
    void OnFileChanged(const QString& Path);
    void OnDirectoryChanged(const QString& Folder);
    void OnSettled();

private:
    struct SFileState
    {
        QByteArray Digest;
        bool bMissing = false;
    };

    void Check(const QString& Path);
    void UpdateFolders();

    QFileSystemWatcher m_Watcher;
    QTimer m_SettleTimer;
    QHash<QString, SFileState> m_Files;
    QSet<QString> m_Pending;
    bool m_bReporting = false;
};

class QPlainTextEdit;

// Replaces the editor's whole text with Text as one step that Undo takes back, keeping the
// cursor's line and column and the scroll position as near as the new text allows.
void ReloadTextKeepingView(QPlainTextEdit* pEdit, const QString& Text);
