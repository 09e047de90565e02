#pragma once

#include "CompileCommandLine.h"

#include <QString>

#include <csignal>
#include <sys/types.h>

// The signal that asks a guard to end its command (a cancel, not the editor's end).
constexpr int GuardCancelSignal = SIGUSR1;

// A command run under a guard: a small process forked from the editor that starts the command
// and stays its parent. The command's standard input is /dev/null; its standard output and
// error go into one pipe. The guard ends the command and every process it started (also those
// that left its process group or session) when the command ends, when it is asked to, and when
// the editor dies, however it dies; in that last case it also removes the folder it was given.
// The guard ends the way the command ended (the same exit code or signal).
//
// The guard is a child subreaper, so whatever the command leaves behind becomes the guard's
// child. It learns of the editor's death from a parent-death signal and from the end of a pipe
// that only the editor process holds open. Between fork and its end it only makes system calls.
class CGuardedProcess
{
public:
    CGuardedProcess() = default;
    // Ends the command and waits for the guard.
    ~CGuardedProcess();
    CGuardedProcess(const CGuardedProcess&) = delete;
    CGuardedProcess& operator=(const CGuardedProcess&) = delete;

    // Runs Command in WorkingDirectory (empty: the editor's). CleanupFolder (may be empty) is
    // removed by the guard if the editor dies first. False, with the system's reason, when the
    // command could not be started.
    [[nodiscard]] bool Start(const SCompileCommand& Command, const QString& WorkingDirectory,
                             const QString& CleanupFolder, QString& Reason);

    pid_t GetGuardPid() const { return m_iGuard; }

    // Waits at most iTimeoutMs for output or for the guard's end, then appends what the pipe
    // holds, at most iMaxBytes, to Output. Returns false once the output has ended.
    [[nodiscard]] bool ReadOutput(int iTimeoutMs, qint64 iMaxBytes, QByteArray& Output);
    // True once the guard has ended; the exit status is then known.
    bool HasEnded();
    // Asks the guard to end the command and everything it started.
    void Terminate();
    // Waits for the guard's end.
    void WaitForEnd();

    // After the end: the signal that ended the command, or 0 when it exited.
    int GetExitSignal() const { return m_iExitSignal; }
    int GetExitCode() const { return m_iExitCode; }

private:
    void Reaped(int iStatus);
    void CloseFds();

    pid_t m_iGuard = -1;
    int m_iOutput = -1;  // read end of the output pipe
    int m_iGuardFd = -1; // pidfd of the guard, -1 where the system has none
    bool m_bEnded = false;
    bool m_bOutputEnded = false;
    int m_iExitSignal = 0;
    int m_iExitCode = 0;
};
