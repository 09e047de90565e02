#pragma once

#include <QApplication>
#include <QSharedMemory>
#include <QString>

#include <memory>

class QLocalServer;
class QLocalSocket;

// The application object of a program that runs once per user. The first start listens on a
// local server in a folder only its user can enter; a later start finds that server, hands its
// message over (HandOverMessage) and exits. A server or segment left behind by a crashed first
// instance is cleaned up, and the next start becomes the first instance.
class CSingleApplication : public QApplication
{
    Q_OBJECT

public:
    // Decides at once in the usual cases; waits up to a second for a running instance too busy
    // to accept, and up to three seconds while another first start finishes its decision.
    CSingleApplication(int& iArgc, char** ppArgv, const QString& UniqueKey);
    ~CSingleApplication() override;

    // True when another instance of this user answered at construction.
    bool IsRunning() const { return m_bRunning; }

    // Sends one message to the running instance; true when all of it was written. False at once
    // in the first instance. Waits at most 1000 ms to connect and 1000 ms to write.
    bool SendMessage(const QString& Message);

    // The full path of the local server (for tests and diagnostics).
    QString ServerPath() const { return m_ServerPath; }

signals:
    void MessageAvailable(QString message);
    void FileOpenEvent(QString file);

protected:
    bool event(QEvent* pEvent) override;

private slots:
    void ReceiveMessage();

private:
    enum EProbeResult
    {
        eProbe_Answered,
        eProbe_NoServer,
        eProbe_Busy,
    };

    void DecideRole();
    EProbeResult ProbeRunningInstance();
    void BecomeFirstInstance();
    void CreateSegment();
    void StartServer();
    bool ConnectToRunningInstance(QLocalSocket& Socket);

    bool m_bRunning = false;
    QString m_Key;
    QSharedMemory m_SharedMemory;
    QLocalServer* m_pLocalServer = nullptr;
    QString m_ServerPath;
    // The connection that proved another instance is running; the first message goes through it.
    std::unique_ptr<QLocalSocket> m_pProbeSocket;
};
