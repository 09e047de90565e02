#pragma once

#include "CompileCommandLine.h"
#include "ShaderEditComponent/compile/model/CompileResult.h"

#include <QByteArray>
#include <QMutex>

// At most this much of a command's output is kept: 8 MiB. A compiler that prints more is
// stopped there (with everything it started) and its output is marked as cut, so a runaway
// compiler costs the editor a bounded amount of memory.
constexpr qint64 DefaultOutputCap = 8 * 1024 * 1024;

// The longest a blocking wait for output lasts, so a cancel is seen within this time even
// when the command prints nothing.
constexpr int RunnerPollMs = 50;

// One compile's control block, shared by the thread that runs its commands and the thread
// that may cancel it; its mutex is the compiler's lock. Cancelling ends the running command
// and everything it started at once.
class CRunControl
{
public:
    // Marks the work cancelled and ends the command under way, if any. Returns true when the
    // work had already finished.
    bool Cancel();
    bool IsCancelled() const;

    // Called by the worker when it is done. Returns true when the work was cancelled.
    [[nodiscard]] bool MarkFinished();

    // The runner's side: a started command's guard process is registered so that Cancel can
    // reach it. Returns false, without registering, when the work is already cancelled.
    [[nodiscard]] bool AttachGuard(qint64 iGuard);
    void DetachGuard();

private:
    mutable QMutex m_Mutex;
    bool m_bCancelled = false;
    bool m_bFinished = false;
    qint64 m_iGuard = 0;
};

struct SRunOptions
{
    QString WorkingDirectory; // empty: the editor's own
    int iTimeoutMs = -1;      // -1: no time limit; only a cancel ends the command early
    qint64 iOutputCap = DefaultOutputCap;
    // Removed if the editor dies while the command runs: the compile's private folder.
    QString CleanupFolder;
};

struct SCommandRun
{
    // CompileStatus_Completed when the command ran to its end, however it ended (or its output
    // was cut), CompileStatus_Cancelled when cancelled or out of time, CompileStatus_NotRun
    // when it could not be started.
    ECompileStatus eStatus = CompileStatus_NotRun;
    // Standard output and error as one stream, without carriage returns, at most the cap.
    QByteArray Output;
    bool bOutputCut = false;
    bool bTimedOut = false;
    int iExitSignal = 0; // the signal that ended a completed command; 0 when it exited
};

// Runs the command without a shell under a guard process (see CGuardedProcess): standard
// input from /dev/null, standard output and error in one stream. Waits for output at most
// RunnerPollMs at a time and polls the cancel flag between waits. When the command ends, is
// cancelled, times out or floods, every process it started is ended, also those that left its
// process group or session, so nothing it started outlives it or the editor.
[[nodiscard]] SCommandRun RunCommand(const SCompileCommand& Command, CRunControl& Control,
                                     const SRunOptions& Options = {});
