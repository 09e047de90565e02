#include "CSingleApplication.h"

#include "CInstanceMessageReader_p.h"
#include "InstanceLocation_p.h"
#include "InstanceLog_p.h"

#include <QDeadlineTimer>
#include <QFileOpenEvent>
#include <QLocalServer>
#include <QLocalSocket>

namespace
{
constexpr int ConnectTimeoutMs = 1000;
constexpr int WriteTimeoutMs = 1000;
// Two first starts at once decide one after the other; a decision takes a few milliseconds.
constexpr int LockTimeoutMs = 3000;
// Room for many second starts queued by the kernel while the running instance is busy.
constexpr int PendingConnections = 128;
} // namespace

CSingleApplication::CSingleApplication(int& iArgc, char** ppArgv, const QString& UniqueKey)
    : QApplication(iArgc, ppArgv)
    , m_Key(UserScopedInstanceKey(UniqueKey))
{
    m_SharedMemory.setKey(m_Key);
    DecideRole();
}

CSingleApplication::~CSingleApplication() = default;

void CSingleApplication::DecideRole()
{
    const SPrivateFolder Folder = PrivateInstanceFolder();
    if (Folder.Path.isEmpty())
    {
        qCWarning(lcZamInstance).noquote()
            << "Single instance: no private folder for the local server, running alone:" << Folder.Error;
        CreateSegment();
        return;
    }
    m_ServerPath = Folder.Path + QLatin1Char('/') + m_Key;
    // A server that answers (or is too busy to) is a running instance; no lock is needed for that.
    if (ProbeRunningInstance() != eProbe_NoServer)
    {
        m_bRunning = true;
        return;
    }
    CInstanceLock Lock(m_ServerPath + QStringLiteral(".lock"));
    QString Error;
    if (!Lock.TryLock(LockTimeoutMs, Error))
        qCWarning(lcZamInstance).noquote() << "Single instance:" << Error;
    // Another first start may have finished between the probe and the lock.
    if (ProbeRunningInstance() != eProbe_NoServer)
    {
        m_bRunning = true;
        return;
    }
    BecomeFirstInstance();
}

CSingleApplication::EProbeResult CSingleApplication::ProbeRunningInstance()
{
    auto pSocket = std::make_unique<QLocalSocket>();
    pSocket->connectToServer(m_ServerPath, QIODevice::WriteOnly);
    if (pSocket->waitForConnected(ConnectTimeoutMs))
    {
        m_pProbeSocket = std::move(pSocket);
        return eProbe_Answered;
    }
    // Only these two prove that nobody listens; anything else (a full queue, a time-out)
    // means an instance is there, and its server must not be taken away from it.
    const QLocalSocket::LocalSocketError eError = pSocket->error();
    if (eError == QLocalSocket::ServerNotFoundError || eError == QLocalSocket::ConnectionRefusedError)
        return eProbe_NoServer;
    qCWarning(lcZamInstance).noquote() << "Single instance: the running instance did not accept:"
                                       << pSocket->errorString();
    return eProbe_Busy;
}

void CSingleApplication::BecomeFirstInstance()
{
    // A crashed first instance leaves its socket file behind; nobody answers on it.
    QLocalServer::removeServer(m_ServerPath);
    CreateSegment();
    StartServer();
}

void CSingleApplication::CreateSegment()
{
    // A segment survives a crash of its owner; detaching the last user removes it.
    if (m_SharedMemory.attach())
        m_SharedMemory.detach();
    if (!m_SharedMemory.create(1))
        qCWarning(lcZamInstance).noquote() << "Unable to create single instance." << m_SharedMemory.errorString();
}

void CSingleApplication::StartServer()
{
    m_pLocalServer = new QLocalServer(this);
    m_pLocalServer->setSocketOptions(QLocalServer::UserAccessOption);
    m_pLocalServer->setMaxPendingConnections(PendingConnections);
    m_pLocalServer->setListenBacklogSize(PendingConnections);
    connect(m_pLocalServer, &QLocalServer::newConnection, this, &CSingleApplication::ReceiveMessage);
    if (!m_pLocalServer->listen(m_ServerPath))
        qCWarning(lcZamInstance).noquote()
            << "Single instance: cannot listen on" << m_ServerPath << m_pLocalServer->errorString();
}

bool CSingleApplication::ConnectToRunningInstance(QLocalSocket& Socket)
{
    Socket.connectToServer(m_ServerPath, QIODevice::WriteOnly);
    if (Socket.waitForConnected(ConnectTimeoutMs))
        return true;
    qCWarning(lcZamInstance).noquote() << "Single instance:" << Socket.errorString();
    return false;
}

bool CSingleApplication::SendMessage(const QString& Message)
{
    if (!m_bRunning)
        return false;
    std::unique_ptr<QLocalSocket> pSocket = std::move(m_pProbeSocket);
    if (!pSocket || pSocket->state() != QLocalSocket::ConnectedState)
    {
        pSocket = std::make_unique<QLocalSocket>();
        if (!ConnectToRunningInstance(*pSocket))
            return false;
    }
    pSocket->write(Message.toUtf8());
    const QDeadlineTimer Deadline(WriteTimeoutMs);
    while (pSocket->bytesToWrite() > 0)
    {
        if (!pSocket->waitForBytesWritten(int(Deadline.remainingTime())))
        {
            qCWarning(lcZamInstance).noquote() << "Single instance:" << pSocket->errorString();
            return false;
        }
    }
    pSocket->disconnectFromServer();
    return true;
}

void CSingleApplication::ReceiveMessage()
{
    while (QLocalSocket* pSocket = m_pLocalServer->nextPendingConnection())
    {
        // The folder already keeps other users out; this holds even if its mode is loosened.
        const SPeerUser Peer = GetPeerUser(pSocket->socketDescriptor());
        if (!Peer.bKnown || Peer.uiUserId != CurrentUserId())
        {
            const QString Error =
                Peer.bKnown ? QStringLiteral("a connection from user %1 was refused").arg(Peer.uiUserId) : Peer.Error;
            qCWarning(lcZamInstance).noquote() << "Single instance:" << Error;
            pSocket->abort();
            pSocket->deleteLater();
            continue;
        }
        auto* pReader = new CInstanceMessageReader(pSocket, this);
        connect(pReader, &CInstanceMessageReader::MessageRead, this, &CSingleApplication::MessageAvailable);
    }
}

bool CSingleApplication::event(QEvent* pEvent)
{
    if (pEvent->type() == QEvent::FileOpen)
    {
        emit FileOpenEvent(static_cast<QFileOpenEvent*>(pEvent)->file());
        return true;
    }
    return QApplication::event(pEvent);
}
