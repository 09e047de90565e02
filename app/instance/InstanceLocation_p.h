#pragma once

#include <QString>

// Where the instances of one user meet: a key that differs per user, a folder no other user
// can enter, and the user checks that keep other users' processes out.

[[nodiscard]] uint CurrentUserId();

// "<UniqueKey>-<uid>": the name of both the shared-memory segment and the local server.
[[nodiscard]] QString UserScopedInstanceKey(const QString& UniqueKey);

struct SPrivateFolder
{
    QString Path;  // empty when no private folder can be had
    QString Error; // why not
};

// $XDG_RUNTIME_DIR when it is private, else "<temp>/zamshadereditor-<uid>", created with mode
// 0700 on first use.
[[nodiscard]] SPrivateFolder PrivateInstanceFolder();

// A real folder (not a link) owned by this user that nobody else may read, write or enter.
// False, with Error set, for anything else.
[[nodiscard]] bool IsPrivateFolder(const QString& Path, QString& Error);

struct SPeerUser
{
    bool bKnown = false; // the system told; uiUserId is only meaningful then
    uint uiUserId = 0;
    QString Error;
};

// The user at the other end of a connected local socket.
[[nodiscard]] SPeerUser GetPeerUser(qintptr iSocket);

// An exclusive lock on a file in the private folder. The kernel releases it when the process
// dies, so a crash never leaves a lock behind that would block the next start.
class CInstanceLock
{
public:
    explicit CInstanceLock(const QString& Path);
    ~CInstanceLock();
    CInstanceLock(const CInstanceLock&) = delete;
    CInstanceLock& operator=(const CInstanceLock&) = delete;

    // False, with Error set, when the lock was not had within the time.
    [[nodiscard]] bool TryLock(int iTimeoutMs, QString& Error);

private:
    QString m_Path;
    int m_iFile = -1;
};
