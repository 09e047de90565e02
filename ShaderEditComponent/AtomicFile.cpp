#include "AtomicFile_p.h"

#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
const char s_TempMarker[] = ".zs";
const char s_TempSuffix[] = ".tmp";

QString ErrnoText(int iError)
{
    return QString::fromLocal8Bit(std::strerror(iError));
}

QString TargetOf(const QString& Path)
{
    // Writing a link replaces the file it names, as an editor that opens and writes would.
    const QFileInfo Info(Path);
    return Info.isSymLink() ? Info.symLinkTarget() : Path;
}

mode_t ModeFor(const QString& Target, mode_t uiNewMode)
{
    struct stat Status
    {
    };
    if (::stat(QFile::encodeName(Target).constData(), &Status) == 0)
        return Status.st_mode & 07777;
    const mode_t uiMask = ::umask(0);
    ::umask(uiMask);
    return uiNewMode & ~uiMask;
}

QString TemporaryName(const QFileInfo& Target)
{
    return Target.absolutePath() + QLatin1String("/.") + Target.fileName() + QLatin1String(s_TempMarker)
           + QString::number(::getpid()) + QLatin1Char('-')
           + QString::number(QRandomGenerator::global()->generate(), 36) + QLatin1String(s_TempSuffix);
}

bool WriteAll(int iFd, const QByteArray& Bytes)
{
    const char* pData = Bytes.constData();
    qsizetype iLeft = Bytes.size();
    while (iLeft > 0)
    {
        const ssize_t iWritten = ::write(iFd, pData, static_cast<size_t>(iLeft));
        if (iWritten < 0 && errno == EINTR)
            continue;
        if (iWritten <= 0)
            return false;
        pData += iWritten;
        iLeft -= iWritten;
    }
    return true;
}

// A file in the folder with no name yet, so an interrupted write leaves nothing behind.
int OpenUnnamed(const QString& Folder)
{
#ifdef O_TMPFILE
    return ::open(QFile::encodeName(Folder).constData(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
#else
    Q_UNUSED(Folder);
    errno = EOPNOTSUPP;
    return -1;
#endif
}

bool NameUnnamed(int iFd, const QString& TempPath)
{
    const QByteArray Proc = "/proc/self/fd/" + QByteArray::number(iFd);
    return ::linkat(AT_FDCWD, Proc.constData(), AT_FDCWD, QFile::encodeName(TempPath).constData(), AT_SYMLINK_FOLLOW)
           == 0;
}

SAtomicWriteResult Failed(bool bOpen, int iError)
{
    SAtomicWriteResult Result;
    Result.bOpenFailed = bOpen;
    Result.Reason = ErrnoText(iError);
    return Result;
}
} // namespace

SAtomicWriteResult WriteFileAtomically(const QString& Path, const QByteArray& Bytes, mode_t uiNewMode)
{
    const QFileInfo Target(TargetOf(Path));
    RemoveStrayTemporaries(Target.absoluteFilePath());
    const QString TempPath = TemporaryName(Target);
    const QByteArray TempName = QFile::encodeName(TempPath);

    bool bNamed = false;
    int iFd = OpenUnnamed(Target.absolutePath());
    if (iFd < 0)
    {
        iFd = ::open(TempName.constData(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC | O_NOFOLLOW, 0600);
        if (iFd < 0)
            return Failed(true, errno);
        bNamed = true;
    }
    const auto Abandon = [&](int iError)
    {
        ::close(iFd);
        if (bNamed)
            ::unlink(TempName.constData());
        return Failed(false, iError);
    };
    if (!WriteAll(iFd, Bytes) || ::fchmod(iFd, ModeFor(Target.absoluteFilePath(), uiNewMode)) != 0 || ::fsync(iFd) != 0)
        return Abandon(errno);
    if (!bNamed)
    {
        if (!NameUnnamed(iFd, TempPath))
            return Abandon(errno);
        bNamed = true;
    }
    if (::rename(TempName.constData(), QFile::encodeName(Target.absoluteFilePath()).constData()) != 0)
        return Abandon(errno);
    ::close(iFd);
    // The new name itself must survive a power cut too.
    const int iFolder =
        ::open(QFile::encodeName(Target.absolutePath()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (iFolder >= 0)
    {
        ::fsync(iFolder);
        ::close(iFolder);
    }
    SAtomicWriteResult Result;
    Result.bOk = true;
    return Result;
}

int RemoveStrayTemporaries(const QString& Path)
{
    const QFileInfo Target(Path);
    const QString Prefix = QLatin1Char('.') + Target.fileName() + QLatin1String(s_TempMarker);
    QDir Folder(Target.absolutePath());
    int iRemoved = 0;
    const QStringList Names = Folder.entryList({QStringLiteral(".*") + QLatin1String(s_TempSuffix)},
                                               QDir::Files | QDir::Hidden | QDir::System);
    for (const QString& Name : Names)
    {
        if (!Name.startsWith(Prefix))
            continue;
        // ".<name>.zs<pid>-<n>.tmp": a live writer's file is its own business.
        const QString Rest = Name.mid(Prefix.size());
        bool bNumber = false;
        const qint64 iPid = Rest.left(Rest.indexOf(QLatin1Char('-'))).toLongLong(&bNumber);
        if (!bNumber || iPid <= 0)
            continue;
        const bool bGone = ::kill(static_cast<pid_t>(iPid), 0) != 0 && errno == ESRCH;
        if ((bGone || iPid == ::getpid()) && Folder.remove(Name))
            ++iRemoved;
    }
    return iRemoved;
}
