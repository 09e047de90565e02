#include "GuardedProcess_p.h"

#include <QFile>
#include <QStandardPaths>

#include <cerrno>
#include <csignal>
#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/signalfd.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <vector>

#ifndef CLOSE_RANGE_CLOEXEC
#define CLOSE_RANGE_CLOEXEC (1U << 2)
#endif

namespace
{
// Everything the guard and the command need, made before fork: after it, in a copy of a
// process with many threads, nothing may allocate or lock.
struct SLaunch
{
    QByteArray Program;
    std::vector<QByteArray> Arguments;
    std::vector<char*> Argv;
    QByteArray WorkingDirectory;
    QByteArray CleanupFolder;
    pid_t iEditor = 0;
    int iLifeline = -1;  // read end of the editor's lifeline: at its end, the editor is gone
    int iInput = -1;     // /dev/null
    int iOutput = -1;    // write end of the output pipe
    int iExecError = -1; // write end of the pipe that carries exec's errno
};

// A pipe whose write end only the editor process holds, for as long as it lives: every guard
// holds the read end and sees it end when the editor is gone, whichever of its threads went
// first. (A parent-death signal alone tells only that the forking thread ended.)
int LifelineReadEnd()
{
    static int s_aiLifeline[2] = {-1, -1};
    static const bool s_bMade = ::pipe2(s_aiLifeline, O_CLOEXEC) == 0;
    return s_bMade ? s_aiLifeline[0] : -1;
}

// What the guard knows about the command's end.
struct SCommandEnd
{
    bool bKnown = false;
    bool bSignalled = false;
    int iValue = 0; // exit code or signal
};

// The descriptors the command gets must not collide with 0, 1 and 2, which it gets them as.
int AboveStdio(int iFd)
{
    if (iFd < 0 || iFd > 2)
        return iFd;
    const int iMoved = ::fcntl(iFd, F_DUPFD_CLOEXEC, 3);
    ::close(iFd);
    return iMoved;
}

void CloseIfOpen(int& iFd)
{
    if (iFd >= 0)
        ::close(iFd);
    iFd = -1;
}

// Every descriptor but iKept (which may be -1).
void CloseAllDescriptorsBut(int iKept)
{
    const unsigned int uiKept = iKept < 0 ? ~0U : static_cast<unsigned int>(iKept);
    const bool bClosed = (uiKept == 0 || ::close_range(0, uiKept - 1, 0) == 0)
                         && (uiKept == ~0U || ::close_range(uiKept + 1, ~0U, 0) == 0);
    if (bClosed)
        return;
    rlimit Limit{};
    const rlim_t uiMax = ::getrlimit(RLIMIT_NOFILE, &Limit) == 0 ? Limit.rlim_cur : 1024;
    for (rlim_t uiFd = 0; uiFd < uiMax && uiFd < 65536; ++uiFd)
    {
        if (static_cast<int>(uiFd) != iKept)
            ::close(static_cast<int>(uiFd));
    }
}

[[noreturn]] void RunCommandChild(const SLaunch& Launch, pid_t iGuard)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != iGuard)
        ::_exit(127);
    ::setpgid(0, 0);
    sigset_t None;
    sigemptyset(&None);
    ::sigprocmask(SIG_SETMASK, &None, nullptr);
    int iError = 0;
    if (::dup2(Launch.iInput, 0) < 0 || ::dup2(Launch.iOutput, 1) < 0 || ::dup2(Launch.iOutput, 2) < 0)
        iError = errno;
    else if (!Launch.WorkingDirectory.isEmpty() && ::chdir(Launch.WorkingDirectory.constData()) != 0)
        iError = errno;
    if (iError == 0)
    {
        // Nothing of the editor's reaches the compiler; the error pipe closes on exec too.
        ::close_range(3, ~0U, CLOSE_RANGE_CLOEXEC);
        ::execv(Launch.Program.constData(), Launch.Argv.data());
        iError = errno;
    }
    const ssize_t iWritten = ::write(Launch.iExecError, &iError, sizeof iError);
    ::_exit(iWritten == sizeof iError ? 127 : 126);
}

// The guard's children, as the kernel lists them; -1 when the list cannot be read.
int ReadChildren(pid_t* piChildren, int iMax)
{
    const int iFd = ::open("/proc/thread-self/children", O_RDONLY | O_CLOEXEC);
    if (iFd < 0)
        return -1;
    char aText[4096];
    ssize_t iLength = 0;
    ssize_t iRead = 0;
    while (iLength < static_cast<ssize_t>(sizeof aText)
           && (iRead = ::read(iFd, aText + iLength, sizeof aText - iLength)) > 0)
        iLength += iRead;
    ::close(iFd);
    int iCount = 0;
    pid_t iPid = 0;
    bool bInNumber = false;
    for (ssize_t i = 0; i < iLength && iCount < iMax; ++i)
    {
        if (aText[i] >= '0' && aText[i] <= '9')
        {
            iPid = iPid * 10 + (aText[i] - '0');
            bInNumber = true;
        }
        else if (bInNumber)
        {
            piChildren[iCount++] = iPid;
            iPid = 0;
            bInNumber = false;
        }
    }
    // A number at the very end of a full buffer may be cut; the next round reads it whole.
    if (bInNumber && iLength < static_cast<ssize_t>(sizeof aText) && iCount < iMax)
        piChildren[iCount++] = iPid;
    return iCount;
}

void NoteEnd(pid_t iPid, int iStatus, pid_t iCommand, SCommandEnd& End)
{
    if (iPid != iCommand || End.bKnown)
        return;
    End.bKnown = true;
    End.bSignalled = WIFSIGNALED(iStatus);
    End.iValue = End.bSignalled ? WTERMSIG(iStatus) : WEXITSTATUS(iStatus);
}

// Kills and reaps every child until none is left. Orphans of the command's descendants are
// reparented to the guard (a subreaper) as their parents die, so each round reaches deeper.
void EndAllChildren(pid_t iCommand, SCommandEnd& End)
{
    // The command is not reaped yet, so its group id cannot belong to anyone else.
    if (iCommand > 0)
        ::kill(-iCommand, SIGKILL);
    for (int iRound = 0; iRound < 10000; ++iRound)
    {
        pid_t aiChildren[256];
        const int iCount = ReadChildren(aiChildren, 256);
        int iStatus = 0;
        pid_t iPid = 0;
        if (iCount <= 0)
        {
            bool bReaped = false;
            while ((iPid = ::waitpid(-1, &iStatus, WNOHANG)) > 0)
            {
                NoteEnd(iPid, iStatus, iCommand, End);
                bReaped = true;
            }
            // Without the list, the command itself is the one child known for sure.
            if (iCount < 0 && iCommand > 0 && !End.bKnown && ::waitpid(iCommand, &iStatus, 0) == iCommand)
                NoteEnd(iCommand, iStatus, iCommand, End);
            if (!bReaped || iCount < 0)
                return;
            continue;
        }
        for (int i = 0; i < iCount; ++i)
            ::kill(aiChildren[i], SIGKILL);
        for (int i = 0; i < iCount; ++i)
        {
            while ((iPid = ::waitpid(aiChildren[i], &iStatus, 0)) < 0 && errno == EINTR)
            {
            }
            NoteEnd(iPid, iStatus, iCommand, End);
        }
    }
}

struct SDirectoryEntry
{
    ino64_t uiInode;
    off64_t iOffset;
    unsigned short uiLength;
    unsigned char uiType;
    char aName[1];
};

// The compile's private folder holds only the files of one compile: remove them and it.
void RemoveFolder(const char* pFolder)
{
    const int iFolder = ::open(pFolder, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (iFolder < 0)
        return;
    alignas(8) char aBuffer[4096];
    ssize_t iRead = 0;
    while ((iRead = ::getdents64(iFolder, aBuffer, sizeof aBuffer)) > 0)
    {
        for (ssize_t iPos = 0; iPos < iRead;)
        {
            const auto* pEntry = reinterpret_cast<const SDirectoryEntry*>(aBuffer + iPos);
            iPos += pEntry->uiLength;
            const char* pName = pEntry->aName;
            if (pName[0] == '.' && (pName[1] == 0 || (pName[1] == '.' && pName[2] == 0)))
                continue;
            if (::unlinkat(iFolder, pName, 0) != 0)
                ::unlinkat(iFolder, pName, AT_REMOVEDIR);
        }
    }
    ::close(iFolder);
    ::rmdir(pFolder);
}

[[noreturn]] void EndLikeTheCommand(const SCommandEnd& End)
{
    if (!End.bKnown)
        ::_exit(0);
    if (!End.bSignalled)
        ::_exit(End.iValue);
    // The guard is a copy of the editor: it must never leave a core file.
    const rlimit NoCore{0, 0};
    ::setrlimit(RLIMIT_CORE, &NoCore);
    sigset_t Signal;
    sigemptyset(&Signal);
    sigaddset(&Signal, End.iValue);
    ::sigprocmask(SIG_UNBLOCK, &Signal, nullptr);
    ::kill(::getpid(), End.iValue);
    ::_exit(128 + End.iValue);
}

// How the guard's wait ended.
struct SGuardWait
{
    SCommandEnd End;
    bool bCancelled = false;   // the runner asked (SIGUSR1)
    bool bEditorGoing = false; // a parent-death or termination signal
    bool bEditorGone = false;  // the lifeline ended
};

// The command ended: looked at, not reaped, since until its group is killed its id must stay
// its own.
bool CommandEnded(pid_t iCommand, SCommandEnd& End)
{
    siginfo_t Ended = {};
    if (::waitid(P_PID, static_cast<id_t>(iCommand), &Ended, WEXITED | WNOHANG | WNOWAIT) != 0
        || Ended.si_pid != iCommand)
        return false;
    End.bKnown = true;
    End.bSignalled = Ended.si_code != CLD_EXITED;
    End.iValue = Ended.si_status;
    return true;
}

// Waits for the command's end, a cancel, or the editor's end, whichever comes first.
void WaitForCommand(pid_t iCommand, int iLifeline, SGuardWait& Wait)
{
    sigset_t Awaited;
    sigemptyset(&Awaited);
    for (int iSignal : {SIGCHLD, SIGUSR1, SIGTERM, SIGINT, SIGHUP, SIGQUIT})
        sigaddset(&Awaited, iSignal);
    const int iSignals = ::signalfd(-1, &Awaited, SFD_CLOEXEC);
    pollfd aWaited[2] = {{iSignals, POLLIN, 0}, {iLifeline, POLLIN, 0}};
    while (!Wait.End.bKnown && !Wait.bCancelled && !Wait.bEditorGoing && !Wait.bEditorGone && iSignals >= 0)
    {
        if (::poll(aWaited, 2, -1) < 0)
            continue;
        Wait.bEditorGone = aWaited[1].revents != 0;
        signalfd_siginfo Info = {};
        if (!(aWaited[0].revents & POLLIN) || ::read(iSignals, &Info, sizeof Info) != sizeof Info)
            continue;
        if (Info.ssi_signo == SIGCHLD)
            CommandEnded(iCommand, Wait.End);
        else if (Info.ssi_signo == SIGUSR1)
            Wait.bCancelled = true;
        else
            Wait.bEditorGoing = true;
    }
    if (iSignals < 0)
        Wait.bEditorGoing = true;
    ::close(iSignals);
}

// Whether the editor is gone; when it is going, it gets a moment to finish going.
bool EditorGone(const SGuardWait& Wait, int iLifeline, pid_t iEditor)
{
    if (Wait.bEditorGone)
        return true;
    if (!Wait.bEditorGoing)
        return false;
    if (iLifeline < 0)
        return ::getppid() != iEditor;
    pollfd Lifeline{iLifeline, POLLIN, 0};
    return ::poll(&Lifeline, 1, 2000) > 0;
}

// Runs in the forked guard, with every signal blocked since before fork.
[[noreturn]] void RunGuard(const SLaunch& Launch)
{
    struct sigaction Default = {};
    Default.sa_handler = SIG_DFL;
    for (int iSignal = 1; iSignal < NSIG; ++iSignal)
        ::sigaction(iSignal, &Default, nullptr);
    ::setpgid(0, 0);
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);

    const pid_t iGuard = ::getpid();
    SGuardWait Wait;
    // The editor may have died before the parent-death signal was armed.
    Wait.bEditorGoing = ::getppid() != Launch.iEditor;
    const pid_t iCommand = Wait.bEditorGoing ? -1 : ::_Fork();
    if (iCommand == 0)
        RunCommandChild(Launch, iGuard);
    CloseAllDescriptorsBut(Launch.iLifeline);
    if (iCommand > 0)
        WaitForCommand(iCommand, Launch.iLifeline, Wait);
    EndAllChildren(iCommand, Wait.End);
    if (!Launch.CleanupFolder.isEmpty() && EditorGone(Wait, Launch.iLifeline, Launch.iEditor))
        RemoveFolder(Launch.CleanupFolder.constData());
    EndLikeTheCommand(Wait.End);
}

QByteArray ResolveProgram(const QString& Program)
{
    if (Program.contains(QLatin1Char('/')))
        return QFile::encodeName(Program);
    const QString Found = QStandardPaths::findExecutable(Program);
    return Found.isEmpty() ? QByteArray() : QFile::encodeName(Found);
}

int OpenGuardFd(pid_t iGuard)
{
#ifdef SYS_pidfd_open
    const long iFd = ::syscall(SYS_pidfd_open, iGuard, 0);
    if (iFd >= 0)
    {
        ::fcntl(static_cast<int>(iFd), F_SETFD, FD_CLOEXEC);
        return static_cast<int>(iFd);
    }
#else
    Q_UNUSED(iGuard);
#endif
    return -1;
}
} // namespace

CGuardedProcess::~CGuardedProcess()
{
    if (m_iGuard > 0 && !m_bEnded)
    {
        Terminate();
        WaitForEnd();
    }
    CloseFds();
}

void CGuardedProcess::CloseFds()
{
    CloseIfOpen(m_iOutput);
    CloseIfOpen(m_iGuardFd);
}

bool CGuardedProcess::Start(const SCompileCommand& Command, const QString& WorkingDirectory,
                            const QString& CleanupFolder, QString& Reason)
{
    SLaunch Launch;
    Launch.Program = ResolveProgram(Command.Program);
    if (Launch.Program.isEmpty())
    {
        Reason = QString::fromLocal8Bit(strerror(ENOENT));
        return false;
    }
    Launch.Arguments.push_back(QFile::encodeName(Command.Program));
    for (const QString& Argument : Command.Arguments)
        Launch.Arguments.push_back(QFile::encodeName(Argument));
    for (QByteArray& Argument : Launch.Arguments)
        Launch.Argv.push_back(Argument.data());
    Launch.Argv.push_back(nullptr);
    Launch.WorkingDirectory = QFile::encodeName(WorkingDirectory);
    Launch.CleanupFolder = QFile::encodeName(CleanupFolder);
    Launch.iEditor = ::getpid();
    Launch.iLifeline = LifelineReadEnd();

    int aiOutput[2] = {-1, -1};
    int aiExecError[2] = {-1, -1};
    const bool bPipes = ::pipe2(aiOutput, O_CLOEXEC) == 0 && ::pipe2(aiExecError, O_CLOEXEC) == 0;
    Launch.iInput = AboveStdio(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    Launch.iOutput = AboveStdio(aiOutput[1]);
    Launch.iExecError = AboveStdio(aiExecError[1]);
    m_iOutput = aiOutput[0];
    int iExecErrorRead = aiExecError[0];
    pid_t iGuard = -1;
    if (bPipes && Launch.iInput >= 0 && Launch.iOutput >= 0 && Launch.iExecError >= 0)
    {
        // Blocked from before fork, so that no handler of the editor's ever runs in the guard.
        sigset_t All;
        sigset_t Previous;
        sigfillset(&All);
        ::pthread_sigmask(SIG_SETMASK, &All, &Previous);
        iGuard = ::fork();
        if (iGuard == 0)
            RunGuard(Launch);
        ::pthread_sigmask(SIG_SETMASK, &Previous, nullptr);
    }
    const int iForkError = errno;
    CloseIfOpen(Launch.iInput);
    CloseIfOpen(Launch.iOutput);
    CloseIfOpen(Launch.iExecError);
    if (iGuard < 0)
    {
        Reason = QString::fromLocal8Bit(strerror(iForkError));
        CloseIfOpen(iExecErrorRead);
        CloseFds();
        return false;
    }
    m_iGuard = iGuard;
    m_iGuardFd = OpenGuardFd(iGuard);
    ::fcntl(m_iOutput, F_SETFL, ::fcntl(m_iOutput, F_GETFL) | O_NONBLOCK);

    // Closed by exec when the command starts; otherwise it carries exec's errno.
    int iExecErrno = 0;
    ssize_t iRead = 0;
    while ((iRead = ::read(iExecErrorRead, &iExecErrno, sizeof iExecErrno)) < 0 && errno == EINTR)
    {
    }
    CloseIfOpen(iExecErrorRead);
    if (iRead == sizeof iExecErrno)
    {
        Reason = QString::fromLocal8Bit(strerror(iExecErrno));
        WaitForEnd();
        return false;
    }
    return true;
}

bool CGuardedProcess::ReadOutput(int iTimeoutMs, qint64 iMaxBytes, QByteArray& Output)
{
    if (m_bOutputEnded)
    {
        // Only the guard's end is awaited now.
        if (!HasEnded())
        {
            pollfd Guard{m_iGuardFd, POLLIN, 0};
            ::poll(m_iGuardFd >= 0 ? &Guard : nullptr, m_iGuardFd >= 0 ? 1 : 0, m_iGuardFd >= 0 ? iTimeoutMs : 5);
        }
        return false;
    }
    pollfd aWaited[2] = {{m_iOutput, POLLIN, 0}, {m_iGuardFd, POLLIN, 0}};
    ::poll(aWaited, m_iGuardFd >= 0 ? 2 : 1, iTimeoutMs);
    char aChunk[65536];
    while (iMaxBytes > 0)
    {
        const ssize_t iRead = ::read(m_iOutput, aChunk, static_cast<size_t>(qMin<qint64>(sizeof aChunk, iMaxBytes)));
        if (iRead > 0)
        {
            Output.append(aChunk, static_cast<qsizetype>(iRead));
            iMaxBytes -= iRead;
            continue;
        }
        if (iRead < 0 && errno == EINTR)
            continue;
        if (iRead == 0 || errno != EAGAIN)
            m_bOutputEnded = true;
        break;
    }
    return !m_bOutputEnded;
}

bool CGuardedProcess::HasEnded()
{
    if (m_bEnded || m_iGuard <= 0)
        return true;
    int iStatus = 0;
    if (::waitpid(m_iGuard, &iStatus, WNOHANG) == m_iGuard)
        Reaped(iStatus);
    return m_bEnded;
}

void CGuardedProcess::Terminate()
{
    if (m_iGuard > 0 && !m_bEnded)
        ::kill(m_iGuard, GuardCancelSignal);
}

void CGuardedProcess::WaitForEnd()
{
    if (m_bEnded || m_iGuard <= 0)
        return;
    int iStatus = 0;
    pid_t iPid = 0;
    while ((iPid = ::waitpid(m_iGuard, &iStatus, 0)) < 0 && errno == EINTR)
    {
    }
    Reaped(iStatus);
}

void CGuardedProcess::Reaped(int iStatus)
{
    m_bEnded = true;
    if (WIFSIGNALED(iStatus))
        m_iExitSignal = WTERMSIG(iStatus);
    else
        m_iExitCode = WEXITSTATUS(iStatus);
}
