#include "ClProcess.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace ZamCompiler
{

namespace
{

bool IsExecutableFile(const std::string& path)
{
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) && access(path.c_str(), X_OK) == 0;
}

} // namespace

std::string FindExecutable(const std::vector<std::string>& aCandidates)
{
    const char* pPath = std::getenv("PATH");
    const std::string path = pPath ? pPath : "/usr/bin:/bin";
    for (const std::string& candidate : aCandidates)
    {
        if (candidate.find('/') != std::string::npos)
        {
            if (IsExecutableFile(candidate))
                return candidate;
            continue;
        }
        std::size_t uiStart = 0;
        while (uiStart <= path.size())
        {
            std::size_t uiEnd = path.find(':', uiStart);
            if (uiEnd == std::string::npos)
                uiEnd = path.size();
            const std::string folder = path.substr(uiStart, uiEnd - uiStart);
            const std::string full = (folder.empty() ? "." : folder) + "/" + candidate;
            if (IsExecutableFile(full))
                return full;
            uiStart = uiEnd + 1;
        }
    }
    return std::string();
}

bool RunProcess(const std::string& program, const std::vector<std::string>& aArgs, std::size_t uiMaxBytes,
                int iTimeoutSeconds, std::string& errorText, int& iExitCode)
{
    int aiPipe[2];
    if (pipe(aiPipe) != 0)
        return false;
    fcntl(aiPipe[0], F_SETFD, FD_CLOEXEC);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, aiPipe[1], 2);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addclose(&actions, aiPipe[1]);

    std::vector<char*> apArgv;
    apArgv.push_back(const_cast<char*>(program.c_str()));
    for (const std::string& arg : aArgs)
        apArgv.push_back(const_cast<char*>(arg.c_str()));
    apArgv.push_back(nullptr);

    pid_t pid = 0;
    const int iSpawn = posix_spawn(&pid, program.c_str(), &actions, nullptr, apArgv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(aiPipe[1]);
    if (iSpawn != 0)
    {
        close(aiPipe[0]);
        return false;
    }

    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(iTimeoutSeconds);
    bool bKilled = false;
    char acBuffer[4096];
    for (;;)
    {
        const auto now = std::chrono::steady_clock::now();
        if (now >= deadline)
        {
            kill(pid, SIGKILL);
            bKilled = true;
            break;
        }
        pollfd descriptor{aiPipe[0], POLLIN, 0};
        const int iWait = static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(deadline - now).count());
        const int iReady = poll(&descriptor, 1, iWait > 1000 ? 1000 : iWait);
        if (iReady < 0 && errno != EINTR)
            break;
        if (iReady <= 0)
            continue;
        const ssize_t iRead = read(aiPipe[0], acBuffer, sizeof(acBuffer));
        if (iRead <= 0)
            break;
        if (errorText.size() < uiMaxBytes)
            errorText.append(acBuffer, static_cast<std::size_t>(iRead));
    }
    close(aiPipe[0]);
    int iStatus = 0;
    while (waitpid(pid, &iStatus, 0) < 0 && errno == EINTR)
    {
    }
    iExitCode = WIFEXITED(iStatus) ? WEXITSTATUS(iStatus) : -1;
    return !bKilled;
}

} // namespace ZamCompiler
