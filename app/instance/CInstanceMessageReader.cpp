#include "CInstanceMessageReader_p.h"

#include "InstanceLocation_p.h"
#include "InstanceLog_p.h"
#include "InstanceMessage.h"

#include <QLocalSocket>

CInstanceMessageReader::CInstanceMessageReader(QLocalSocket* pSocket, QObject* pParent)
    : QObject(pParent)
    , m_pSocket(pSocket)
{
    m_pSocket->setParent(this);
    // Qt stops reading from the kernel once this much is buffered, so an endless sender
    // costs no more memory than one refused message.
    m_pSocket->setReadBufferSize(MaxInstanceMessageBytes + 1);
    connect(m_pSocket, &QLocalSocket::readyRead, this, &CInstanceMessageReader::OnReadyRead);
    connect(m_pSocket, &QLocalSocket::disconnected, this, &CInstanceMessageReader::OnDisconnected);
    m_Timer.setSingleShot(true);
    connect(&m_Timer, &QTimer::timeout, this, &CInstanceMessageReader::OnTimeout);
    m_Timer.start(TimeoutMs);
    // The sender may have written and gone before the connection was accepted.
    if (m_pSocket->state() != QLocalSocket::ConnectedState)
        QTimer::singleShot(0, this, &CInstanceMessageReader::OnDisconnected);
}

bool CInstanceMessageReader::TakeAvailableBytes()
{
    m_Bytes += m_pSocket->read(MaxInstanceMessageBytes + 1 - m_Bytes.size());
    if (m_Bytes.size() <= MaxInstanceMessageBytes)
        return true;
    qCWarning(lcZamInstance).noquote() << "Single instance:" << DecodeInstanceMessage(m_Bytes).Error;
    Finish();
    return false;
}

void CInstanceMessageReader::OnReadyRead()
{
    if (!m_bFinished)
        TakeAvailableBytes();
}

void CInstanceMessageReader::OnDisconnected()
{
    if (m_bFinished || !TakeAvailableBytes())
        return;
    Finish();
    // A second start that had nothing to send closes the connection it checked with.
    if (m_Bytes.isEmpty())
        return;
    const SInstanceMessage Message = DecodeInstanceMessage(m_Bytes);
    if (Message.Error.isEmpty())
        emit MessageRead(Message.Text);
    else
        qCWarning(lcZamInstance).noquote() << "Single instance:" << Message.Error;
}

void CInstanceMessageReader::OnTimeout()
{
    if (m_bFinished)
        return;
    qCWarning(lcZamInstance).noquote()
        << QStringLiteral("Single instance: no complete message within %1 ms, the connection was dropped")
               .arg(TimeoutMs);
    Finish();
}

void CInstanceMessageReader::Finish()
{
    m_bFinished = true;
    m_Timer.stop();
    m_pSocket->disconnect(this);
    m_pSocket->abort();
    deleteLater();
}
