#pragma once

#include <QString>

// Where the instances of one user meet: a key that differs per user, a folder no other user
// can enter, and the user checks that keep other users' processes out.

uint CurrentUserId();

// "<UniqueKey>-<uid>": the name of both the shared-memory segment and the local server.
QString UserScopedInstanceKey(const QString& UniqueKey);

// $XDG_RUNTIME_DIR when it is private, else "<temp>/zamshadereditor-<uid>", created with mode
// 0700 on first use. Empty, with Error set, when no private folder can be had.
QString PrivateInstanceFolder(QString& Error);

// A real folder (not a link) owned by this user that nobody else may read, write or enter.
bool IsPrivateFolder(const QString& Path, QString& Error);

// The user at the other end of a connected local socket.
bool GetPeerUserId(qintptr iSocket, uint& uiUserId, QString& Error);

// An exclusive lock on a file in the private folder. The kernel releases it when the process
// dies, so a crash never leaves a lock behind that would block the next start.
class CInstanceLock
{
public:
    explicit CInstanceLock(const QString& Path);
    ~CInstanceLock();
    CInstanceLock(const CInstanceLock&) = delete;
    CInstanceLock& operator=(const CInstanceLock&) = delete;

    bool TryLock(int iTimeoutMs, QString& Error);

private:
    QString m_Path;
    int m_iFile = -1;
};
