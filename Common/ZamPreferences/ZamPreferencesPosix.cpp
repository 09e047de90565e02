#include "ZamPreferencesPosix_p.h"

#include "ZamPlistWriter_p.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
// An XDG base directory variable counts only when it holds an absolute path.
QString AbsoluteOrEmpty(const QString& Path)
{
    return QDir::isAbsolutePath(Path) ? Path : QString();
}

QString ConfigHome()
{
    const QString Folder = AbsoluteOrEmpty(qEnvironmentVariable("XDG_CONFIG_HOME"));
    return Folder.isEmpty() ? QDir::homePath() + QStringLiteral("/.config") : Folder;
}

// Makes a rename in Folder survive a power loss.
void SyncFolder(const QString& Folder)
{
    const int iFolder = ::open(QFile::encodeName(Folder).constData(), O_RDONLY | O_DIRECTORY);
    if (iFolder >= 0)
    {
        ::fsync(iFolder);
        ::close(iFolder);
    }
}

// Links are followed this many times at most, as the kernel does.
constexpr int iMaxLinkHops = 40;

bool StatPath(const QString& Path, struct stat* pStatus)
{
    return ::stat(QFile::encodeName(Path).constData(), pStatus) == 0;
}

// The file a write to Path lands in: Path itself, or the final target of the link chain
// at Path (which need not exist yet). False for a chain that loops.
bool FollowLinks(const QString& Path, QString* pTarget)
{
    QString Current = Path;
    for (int i = 0; i < iMaxLinkHops; ++i)
    {
        const QFileInfo Info(Current);
        if (!Info.isSymLink())
        {
            *pTarget = Current;
            return true;
        }
        Current = Info.symLinkTarget();
    }
    return false;
}

// The user said "read-only" by taking away the owner's write bit; others are refused by
// the system. Asked of the bits rather than of access(), which lets root write anything.
bool IsReadOnlyFile(const QString& Path)
{
    struct stat Status;
    if (!StatPath(Path, &Status))
        return false;
    if (Status.st_uid == ::geteuid())
        return (Status.st_mode & S_IWUSR) == 0;
    return ::access(QFile::encodeName(Path).constData(), W_OK) != 0;
}

// Renames Path to a free "<Path>.unreadable-<time stamp>[-n]" name.
bool MoveAside(const QString& Path, QString* pAside)
{
    const QString Base = Path + QStringLiteral(".unreadable-")
                         + QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    for (int i = 0; i < 100; ++i)
    {
        const QString Aside = i == 0 ? Base : Base + QStringLiteral("-%1").arg(i);
        if (QFileInfo(Aside).exists() || QFileInfo(Aside).isSymLink())
            continue;
        if (std::rename(QFile::encodeName(Path).constData(), QFile::encodeName(Aside).constData()) != 0)
            return false;
        *pAside = Aside;
        return true;
    }
    return false;
}

QString FirstConfigDir()
{
    const QStringList Folders = qEnvironmentVariable("XDG_CONFIG_DIRS").split(QLatin1Char(':'), Qt::SkipEmptyParts);
    for (const QString& Folder : Folders)
    {
        if (QDir::isAbsolutePath(Folder))
            return Folder;
    }
    return QStringLiteral("/etc/xdg");
}
} // namespace

CZamPreferencesPosix::CZamPreferencesPosix(const QString& Name, CZamPreferences::EScope eScope)
    : CZamPreferencesImpl(Name, eScope)
{
}

CZamPreferencesPosix::~CZamPreferencesPosix()
{
    CloseFile(false);
}

QString CZamPreferencesPosix::StoreFolder(CZamPreferences::EScope eScope)
{
    const QString Base = eScope == CZamPreferences::Scope_AllUsers ? FirstConfigDir() : ConfigHome();
    return Base + QStringLiteral("/Brenmoor Systems");
}

QString CZamPreferencesPosix::FilePath(const QString& Name, CZamPreferences::EScope eScope) const
{
    return StoreFolder(eScope) + QLatin1Char('/') + Name + QStringLiteral(".plist");
}

bool CZamPreferencesPosix::FileExists(const QString& Name, CZamPreferences::EScope eScope) const
{
    struct stat Status;
    return ::stat(QFile::encodeName(FilePath(Name, eScope)).constData(), &Status) == 0;
}

bool CZamPreferencesPosix::CreateEmptyFile(const QString& Name, CZamPreferences::EScope eScope)
{
    const QByteArray Empty(acEmptyPlistDocument);
    if (!OpenFile(Name, Direction_Write, eScope, true))
        return false;
    if (!WriteFile(Empty))
    {
        CloseFile(false);
        return false;
    }
    return CloseFile(true);
}

bool CZamPreferencesPosix::OpenFile(const QString& Name, EDirection eDirection, CZamPreferences::EScope eScope,
                                    bool bThroughTemporary)
{
    CloseFile(false);
    const QString Path = FilePath(Name, eScope);
    if (eDirection == Direction_Read)
    {
        // Only a file that is not there is created: an unreadable one is still the user's.
        if (!FileExists(Name, eScope) && !CreateEmptyFile(Name, eScope))
            return false;
        // A FIFO or a device would block or never end.
        if (!QFileInfo(Path).isFile())
            return false;
        m_File.setFileName(Path);
        return m_File.open(QIODevice::ReadOnly);
    }
    if (!QDir().mkpath(StoreFolder(eScope)))
        return false;
    if (!bThroughTemporary)
    {
        m_File.setFileName(Path);
        return m_File.open(QIODevice::WriteOnly | QIODevice::Truncate);
    }
    QString Target;
    if (!FollowLinks(Path, &Target))
    {
        SetSaveProblem(QStringLiteral("The preference file %1 is a symbolic link that loops, so the settings were "
                                      "not saved.")
                           .arg(Path));
        return false;
    }
    return OpenTemporaryFor(Target);
}

bool CZamPreferencesPosix::OpenTemporaryFor(const QString& Target)
{
    const bool bTargetExists = QFileInfo::exists(Target);
    if (bTargetExists && IsUnreadableFilePending())
    {
        QString Aside;
        if (!MoveAside(Target, &Aside))
        {
            SetSaveProblem(QStringLiteral("The preference file %1 could not be read and could not be renamed to keep "
                                          "it, so the settings were not saved.")
                               .arg(Target));
            return false;
        }
        OnFileSetAside(Target, Aside);
    }
    else if (bTargetExists && IsReadOnlyFile(Target))
    {
        OnFileReadOnly(Target);
        return false;
    }
    struct stat Status;
    const bool bKeepMode = StatPath(Target, &Status);
    // A stale temporary from a crash is replaced; NewOnly refuses to follow a link planted there.
    const QString TemporaryPath = Target + QStringLiteral(".tmp");
    QFile::remove(TemporaryPath);
    m_File.setFileName(TemporaryPath);
    if (!m_File.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return false;
    // A private file stays private.
    if (bKeepMode)
        ::fchmod(m_File.handle(), Status.st_mode & 07777);
    m_TargetPath = Target;
    return true;
}

bool CZamPreferencesPosix::ReadFile(qint64 iMaxBytes, QByteArray* pBytes)
{
    if (!m_File.isOpen() || !m_File.isReadable())
        return false;
    *pBytes = m_File.read(iMaxBytes + 1);
    return m_File.error() == QFileDevice::NoError;
}

bool CZamPreferencesPosix::WriteFile(const QByteArray& Bytes)
{
    if (!m_File.isOpen() || !m_File.isWritable())
        return false;
    return m_File.write(Bytes) == Bytes.size() && m_File.flush();
}

bool CZamPreferencesPosix::CloseFile(bool bCommit)
{
    if (!m_File.isOpen())
        return false;
    const bool bWriting = m_File.isWritable();
    bool bOk = true;
    if (bWriting)
        bOk = m_File.flush() && ::fsync(m_File.handle()) == 0;
    m_File.close();
    const QString TemporaryPath = m_File.fileName();
    const QString TargetPath = m_TargetPath;
    m_TargetPath.clear();
    if (!bWriting || TargetPath.isEmpty())
        return bOk;
    if (bOk && bCommit
        && std::rename(QFile::encodeName(TemporaryPath).constData(), QFile::encodeName(TargetPath).constData()) == 0)
    {
        SyncFolder(QFileInfo(TargetPath).path());
        return true;
    }
    QFile::remove(TemporaryPath);
    return false;
}
