#include "CommandRunner.h"

#include "UIString.h"

#include <QElapsedTimer>
#include <QProcess>

#include <csignal>
#include <sys/types.h>
#include <unistd.h>

namespace
{
void KillGroup(qint64 iGroup)
{
    if (iGroup > 0)
        ::kill(-static_cast<pid_t>(iGroup), SIGKILL);
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
    KillGroup(m_iGroup);
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

bool CRunControl::AttachGroup(qint64 iGroup)
{
    QMutexLocker Lock(&m_Mutex);
    if (m_bCancelled)
        return false;
    m_iGroup = iGroup;
    return true;
}

void CRunControl::DetachGroup()
{
    QMutexLocker Lock(&m_Mutex);
    m_iGroup = 0;
}

SCommandRun RunCommand(const SCompileCommand& Command, CRunControl& Control, const SRunOptions& Options)
{
    if (Command.Program.isEmpty())
        return NotStarted();

    QProcess Process;
    Process.setProgram(Command.Program);
    Process.setArguments(Command.Arguments);
    if (!Options.WorkingDirectory.isEmpty())
        Process.setWorkingDirectory(Options.WorkingDirectory);
    Process.setProcessChannelMode(QProcess::MergedChannels);
    Process.setInputChannelMode(QProcess::ForwardedInputChannel);
    // Its own group, so one kill reaches whatever the compiler forks.
    Process.setChildProcessModifier([] { ::setpgid(0, 0); });
    Process.start(QIODevice::ReadOnly);
    if (!Process.waitForStarted(-1))
        return NotStarted();

    // The modifier ran before exec, which waitForStarted has seen succeed: the group exists.
    const qint64 iGroup = Process.processId();
    SCommandRun Run;
    Run.eStatus = CompileStatus_Completed;
    QElapsedTimer Clock;
    Clock.start();
    bool bRunning = Control.AttachGroup(iGroup);
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
        const bool bFinished = Process.state() == QProcess::NotRunning;
        if (!bFinished)
            Process.waitForReadyRead(RunnerPollMs);
        if (!TakeOutput(Run, Process.readAll(), Options.iOutputCap))
            break;
        bRunning = !bFinished;
    }
    Control.DetachGroup();
    // Also reaches children that outlived the compiler and still hold its output pipe.
    KillGroup(iGroup);
    const bool bEndedByUs = Run.eStatus != CompileStatus_Completed || Run.bOutputCut;
    // A compiler that left its group (setsid) is still reached itself.
    if (bEndedByUs && Process.state() != QProcess::NotRunning)
        Process.kill();
    Process.waitForFinished(-1);
    if (!bEndedByUs && Process.exitStatus() == QProcess::CrashExit)
    {
        Run.eStatus = CompileStatus_NotRun;
        Run.Output.append(UIString(UIS_FailedToExecuteCommandLine).toUtf8());
    }
    return Run;
}
