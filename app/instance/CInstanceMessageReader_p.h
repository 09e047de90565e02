#pragma once

#include <QByteArray>
#include <QObject>
#include <QTimer>

class QLocalSocket;

// Reads one message from an accepted connection without blocking: bytes are gathered as they
// arrive until the sender disconnects, so a message split over several writes arrives whole
// and a slow or silent sender never holds up the event loop. Deletes itself (and the socket)
// when done.
class CInstanceMessageReader : public QObject
{
    Q_OBJECT

public:
    // A sender has this long from being accepted to its disconnect.
    static constexpr int TimeoutMs = 5000;

    // Takes ownership of the connected socket.
    CInstanceMessageReader(QLocalSocket* pSocket, QObject* pParent);

signals:
    void MessageRead(const QString& Message);

private slots:
    void OnReadyRead();
    void OnDisconnected();
    void OnTimeout();

private:
    bool TakeAvailableBytes();
    void Finish();

    QLocalSocket* m_pSocket;
    QByteArray m_Bytes;
    QTimer m_Timer;
    bool m_bFinished = false;
};
