#include "InstanceHandOver.h"

#include "InstanceLocation_p.h"
#include "InstanceLog_p.h"
#include "InstanceMessage.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace
{
constexpr int s_iWriteTimeoutMs = 1000;

// A connected socket to Path, or -1.
int ConnectTo(const QByteArray& Path)
{
    sockaddr_un Address{};
    if (Path.size() >= qsizetype(sizeof(Address.sun_path)))
        return -1;
    Address.sun_family = AF_UNIX;
    std::memcpy(Address.sun_path, Path.constData(), size_t(Path.size()));
    const int iSocket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (iSocket < 0)
        return -1;
    // A busy instance still has its connection queued by the kernel, so connect does not
    // wait for it; only a missing or dead server fails here.
    if (::connect(iSocket, reinterpret_cast<const sockaddr*>(&Address), sizeof(Address)) != 0)
    {
        ::close(iSocket);
        return -1;
    }
    return iSocket;
}

bool WriteAll(int iSocket, const QByteArray& Bytes)
{
    qsizetype iDone = 0;
    while (iDone < Bytes.size())
    {
        pollfd Poll{iSocket, POLLOUT, 0};
        if (::poll(&Poll, 1, s_iWriteTimeoutMs) <= 0)
            return false;
        const ssize_t iWritten = ::send(iSocket, Bytes.constData() + iDone, size_t(Bytes.size() - iDone), MSG_NOSIGNAL);
        if (iWritten < 0 && errno != EINTR && errno != EAGAIN)
            return false;
        iDone += iWritten > 0 ? iWritten : 0;
    }
    return true;
}
} // namespace

bool HandOverToRunningInstance(const QString& UniqueKey, const QStringList& Arguments)
{
    const SPrivateFolder Folder = PrivateInstanceFolder();
    if (Folder.Path.isEmpty())
        return false;
    const int iSocket = ConnectTo(QFile::encodeName(Folder.Path + QLatin1Char('/') + UserScopedInstanceKey(UniqueKey)));
    if (iSocket < 0)
        return false;
    const QByteArray Message = HandOverMessage(Arguments).toUtf8();
    if (!WriteAll(iSocket, Message))
        qCWarning(lcZamInstance) << "Single instance: the running instance did not take the message";
    ::close(iSocket);
    return true;
}
