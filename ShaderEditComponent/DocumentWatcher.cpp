#include "DocumentWatcher.h"

#include "DocumentFile.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextBlock>

#include <algorithm>
#include <utility>

namespace
{
// Long enough for a save written in several steps, short enough to feel immediate.
const int s_iSettleMs = 200;

QByteArray DigestOf(const QByteArray& Bytes)
{
    return QCryptographicHash::hash(Bytes, QCryptographicHash::Sha256);
}

QString FolderOf(const QString& Path)
{
    return QFileInfo(Path).absolutePath();
}
} // namespace

CDocumentWatcher::CDocumentWatcher(QObject* pParent)
    : QObject(pParent)
{
    m_SettleTimer.setSingleShot(true);
    m_SettleTimer.setInterval(s_iSettleMs);
    connect(&m_SettleTimer, &QTimer::timeout, this, &CDocumentWatcher::OnSettled);
    connect(&m_Watcher, &QFileSystemWatcher::fileChanged, this, &CDocumentWatcher::OnFileChanged);
    connect(&m_Watcher, &QFileSystemWatcher::directoryChanged, this, &CDocumentWatcher::OnDirectoryChanged);
}

void CDocumentWatcher::Watch(const QString& Path, const QByteArray& Bytes)
{
    if (Path.isEmpty())
        return;
    m_Files.insert(Path, SFileState{DigestOf(Bytes), false});
    m_Pending.remove(Path);
    // A save renames a new file over the old one, which ends the old watch.
    if (!m_Watcher.files().contains(Path))
        m_Watcher.addPath(Path);
    UpdateFolders();
}

void CDocumentWatcher::Unwatch(const QString& Path)
{
    if (!m_Files.remove(Path))
        return;
    m_Pending.remove(Path);
    m_Watcher.removePath(Path);
    UpdateFolders();
}

// The folders are watched for files that went away and came back: a lost file has no watch
// of its own.
void CDocumentWatcher::UpdateFolders()
{
    QSet<QString> Wanted;
    for (auto It = m_Files.cbegin(); It != m_Files.cend(); ++It)
        Wanted.insert(FolderOf(It.key()));
    for (const QString& Folder : m_Watcher.directories())
    {
        if (!Wanted.contains(Folder))
            m_Watcher.removePath(Folder);
    }
    const QStringList Watched = m_Watcher.directories();
    for (const QString& Folder : Wanted)
    {
        if (!Watched.contains(Folder) && QFileInfo(Folder).isDir())
            m_Watcher.addPath(Folder);
    }
}

void CDocumentWatcher::OnFileChanged(const QString& Path)
{
    if (!m_Files.contains(Path))
        return;
    m_Pending.insert(Path);
    m_SettleTimer.start();
}

void CDocumentWatcher::OnDirectoryChanged(const QString& Folder)
{
    // Only files without a watch of their own need the folder's news; the others report
    // themselves, and reading them again on every change in the folder would cost.
    const QStringList Watched = m_Watcher.files();
    for (auto It = m_Files.cbegin(); It != m_Files.cend(); ++It)
    {
        if (FolderOf(It.key()) == Folder && !Watched.contains(It.key()))
            m_Pending.insert(It.key());
    }
    if (!m_Pending.isEmpty())
        m_SettleTimer.start();
}

void CDocumentWatcher::OnSettled()
{
    // A slot that asks the user runs an event loop; news that arrives meanwhile waits its turn.
    if (m_bReporting)
    {
        m_SettleTimer.start();
        return;
    }
    m_bReporting = true;
    const QSet<QString> Pending = std::exchange(m_Pending, {});
    for (const QString& Path : Pending)
        Check(Path);
    m_bReporting = false;
}

void CDocumentWatcher::Check(const QString& Path)
{
    auto It = m_Files.find(Path);
    if (It == m_Files.end())
        return;
    if (!QFileInfo::exists(Path))
    {
        if (!It->bMissing)
        {
            It->bMissing = true;
            emit FileDeleted(Path);
        }
        return;
    }
    if (!m_Watcher.files().contains(Path))
        m_Watcher.addPath(Path);
    const SFileReadResult Read = ReadDocumentFile(Path);
    // A file being written may not be readable for a moment; its next event brings it.
    if (!Read.bOk)
        return;
    const QByteArray Digest = DigestOf(Read.Bytes);
    const bool bCameBack = It->bMissing;
    It->bMissing = false;
    if (Digest == It->Digest && !bCameBack)
        return;
    It->Digest = Digest;
    // Slots may watch or unwatch files; It is not used past this point.
    emit FileChanged(Path, Read.Bytes);
}

void ReloadTextKeepingView(QPlainTextEdit* pEdit, const QString& Text)
{
    const QTextCursor Old = pEdit->textCursor();
    const int iLine = Old.blockNumber();
    const int iColumn = Old.positionInBlock();
    const int iVertical = pEdit->verticalScrollBar()->value();
    const int iHorizontal = pEdit->horizontalScrollBar()->value();

    QTextCursor All(pEdit->document());
    All.beginEditBlock();
    All.select(QTextCursor::Document);
    All.insertText(Text);
    All.endEditBlock();

    const QTextBlock Block = pEdit->document()->findBlockByNumber(std::min(iLine, pEdit->blockCount() - 1));
    QTextCursor Cursor(Block);
    Cursor.setPosition(Block.position() + std::min(iColumn, Block.length() - 1));
    pEdit->setTextCursor(Cursor);
    pEdit->verticalScrollBar()->setValue(iVertical);
    pEdit->horizontalScrollBar()->setValue(iHorizontal);
}
