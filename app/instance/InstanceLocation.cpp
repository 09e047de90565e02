#include "InstanceLocation_p.h"

#include "InstanceLog_p.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QThread>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
QString ErrnoText()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}
} // namespace

uint CurrentUserId()
{
    return uint(geteuid());
}

QString UserScopedInstanceKey(const QString& UniqueKey)
{
    return UniqueKey + QLatin1Char('-') + QString::number(CurrentUserId());
}

bool IsPrivateFolder(const QString& Path, QString& Error)
{
    struct stat Info;
    if (::lstat(QFile::encodeName(Path).constData(), &Info) != 0)
    {
        Error = QStringLiteral("%1: %2").arg(Path, ErrnoText());
        return false;
    }
    if (!S_ISDIR(Info.st_mode))
    {
        Error = QStringLiteral("%1 is not a folder").arg(Path);
        return false;
    }
    if (uint(Info.st_uid) != CurrentUserId())
    {
        Error = QStringLiteral("%1 belongs to user %2, not to user %3")
                    .arg(Path)
                    .arg(uint(Info.st_uid))
                    .arg(CurrentUserId());
        return false;
    }
    if ((Info.st_mode & (S_IRWXG | S_IRWXO)) != 0)
    {
        Error = QStringLiteral("%1 has mode %2; other users must have no access (0700)")
                    .arg(Path)
                    .arg(uint(Info.st_mode & 07777), 4, 8, QLatin1Char('0'));
        return false;
    }
    return true;
}

SPrivateFolder PrivateInstanceFolder()
{
    SPrivateFolder Found;
    const QString Runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!Runtime.isEmpty())
    {
        if (IsPrivateFolder(Runtime, Found.Error))
            return {Runtime, QString()};
        qCWarning(lcZamInstance).noquote()
            << "XDG_RUNTIME_DIR is not private, using the temporary folder:" << Found.Error;
    }
    const QString Folder = QDir::tempPath() + QStringLiteral("/zamshadereditor-") + QString::number(CurrentUserId());
    if (::mkdir(QFile::encodeName(Folder).constData(), 0700) != 0 && errno != EEXIST)
        return {QString(), QStringLiteral("cannot create %1: %2").arg(Folder, ErrnoText())};
    if (!IsPrivateFolder(Folder, Found.Error))
        return {QString(), Found.Error};
    return {Folder, QString()};
}

SPeerUser GetPeerUser(qintptr iSocket)
{
    SPeerUser Peer;
#if defined(SO_PEERCRED)
    struct ucred Credentials;
    socklen_t iLength = sizeof(Credentials);
    if (::getsockopt(int(iSocket), SOL_SOCKET, SO_PEERCRED, &Credentials, &iLength) != 0)
    {
        Peer.Error = QStringLiteral("cannot read the peer's credentials: %1").arg(ErrnoText());
        return Peer;
    }
    Peer.uiUserId = uint(Credentials.uid);
#else
    uid_t UserId = 0;
    gid_t GroupId = 0;
    if (::getpeereid(int(iSocket), &UserId, &GroupId) != 0)
    {
        Peer.Error = QStringLiteral("cannot read the peer's credentials: %1").arg(ErrnoText());
        return Peer;
    }
    Peer.uiUserId = uint(UserId);
#endif
    Peer.bKnown = true;
    return Peer;
}

CInstanceLock::CInstanceLock(const QString& Path)
    : m_Path(Path)
{
}

CInstanceLock::~CInstanceLock()
{
    if (m_iFile >= 0)
        ::close(m_iFile);
}

bool CInstanceLock::TryLock(int iTimeoutMs, QString& Error)
{
    if (m_iFile < 0)
        m_iFile = ::open(QFile::encodeName(m_Path).constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (m_iFile < 0)
    {
        Error = QStringLiteral("cannot open %1: %2").arg(m_Path, ErrnoText());
        return false;
    }
    // flock has no time-out; a short poll keeps the wait bounded when a holder hangs.
    const QDeadlineTimer Deadline(iTimeoutMs);
    while (::flock(m_iFile, LOCK_EX | LOCK_NB) != 0)
    {
        if (errno != EWOULDBLOCK && errno != EINTR)
        {
            Error = QStringLiteral("cannot lock %1: %2").arg(m_Path, ErrnoText());
            return false;
        }
        if (Deadline.hasExpired())
        {
            Error = QStringLiteral("%1 stayed locked for %2 ms").arg(m_Path).arg(iTimeoutMs);
            return false;
        }
        QThread::msleep(2);
    }
    return true;
}
