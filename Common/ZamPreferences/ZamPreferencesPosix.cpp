#include "ZamPreferencesPosix.h"

#include "ZamPlistWriter.h"

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
    // A stale temporary from a crash is replaced; NewOnly refuses to follow a link planted there.
    const QString TemporaryPath = Path + QStringLiteral(".tmp");
    QFile::remove(TemporaryPath);
    m_File.setFileName(TemporaryPath);
    if (!m_File.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return false;
    m_TargetPath = Path;
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
