#include "CommandRunner.h"

#include "GuardedProcess_p.h"
#include "ShaderEditComponent/compile/model/UIString.h"

#include <QElapsedTimer>

#include <csignal>
#include <sys/types.h>

namespace
{
// Asks a command's guard to end it with everything it started.
void EndGuarded(qint64 iGuard)
{
    if (iGuard > 0)
        ::kill(static_cast<pid_t>(iGuard), GuardCancelSignal);
}

// Appends a chunk without carriage returns, up to the cap. Returns false once the cap is hit.
bool TakeOutput(SCommandRun& Run, QByteArray Chunk, qint64 iCap)
{
    Chunk.removeIf([](char c) { return c == '\r'; });
    const qint64 iRoom = iCap - Run.Output.size();
    if (Chunk.size() > iRoom)
    {
        Run.Output.append(Chunk.constData(), static_cast<qsizetype>(iRoom));
        Run.bOutputCut = true;
        return false;
    }
    Run.Output.append(Chunk);
    return true;
}

SCommandRun NotStarted()
{
    SCommandRun Run;
    Run.eStatus = CompileStatus_NotRun;
    Run.Output = UIString(UIS_FailedToExecuteCommandLine).toUtf8();
    return Run;
}
} // namespace

bool CRunControl::Cancel()
{
    QMutexLocker Lock(&m_Mutex);
    m_bCancelled = true;
    EndGuarded(m_iGuard);
    return m_bFinished;
}

bool CRunControl::IsCancelled() const
{
    QMutexLocker Lock(&m_Mutex);
    return m_bCancelled;
}

bool CRunControl::MarkFinished()
{
    QMutexLocker Lock(&m_Mutex);
    m_bFinished = true;
    return m_bCancelled;
}

bool CRunControl::AttachGuard(qint64 iGuard)
{
    QMutexLocker Lock(&m_Mutex);
    if (m_bCancelled)
        return false;
    m_iGuard = iGuard;
    return true;
}

void CRunControl::DetachGuard()
{
    QMutexLocker Lock(&m_Mutex);
    m_iGuard = 0;
}

SCommandRun RunCommand(const SCompileCommand& Command, CRunControl& Control, const SRunOptions& Options)
{
    CGuardedProcess Process;
    QString Reason;
    if (Command.Program.isEmpty() || !Process.Start(Command, Options.WorkingDirectory, Options.CleanupFolder, Reason))
        return NotStarted();

    SCommandRun Run;
    Run.eStatus = CompileStatus_Completed;
    QElapsedTimer Clock;
    Clock.start();
    // The guard is only reaped below, after it is detached: until then its id is its own.
    bool bRunning = Control.AttachGuard(Process.GetGuardPid());
    if (!bRunning)
        Run.eStatus = CompileStatus_Cancelled;
    while (bRunning)
    {
        if (Control.IsCancelled())
        {
            Run.eStatus = CompileStatus_Cancelled;
            break;
        }
        if (Options.iTimeoutMs >= 0 && Clock.elapsed() >= Options.iTimeoutMs)
        {
            Run.eStatus = CompileStatus_Cancelled;
            Run.bTimedOut = true;
            break;
        }
        QByteArray Chunk;
        const bool bMoreOutput = Process.ReadOutput(RunnerPollMs, Options.iOutputCap - Run.Output.size() + 1, Chunk);
        if (!TakeOutput(Run, Chunk, Options.iOutputCap))
            break;
        bRunning = bMoreOutput || !Process.HasEnded();
    }
    Control.DetachGuard();
    const bool bEndedByUs = Run.eStatus != CompileStatus_Completed || Run.bOutputCut;
    if (bEndedByUs)
        Process.Terminate();
    Process.WaitForEnd();
    if (!bEndedByUs)
        Run.iExitSignal = Process.GetExitSignal();
    return Run;
}
