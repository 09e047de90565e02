// Misbehaving stand-ins for an offline compiler, one program built under several names
// ("fakecc_<mode>"): the mode is the part of the name after "fakecc_".
//   print     prints $ZAM_FAKE_OUTPUT (default "Success.\n"), after "WARNING: 0:1: <first input
//             line>" when $ZAM_FAKE_ECHO is set; writes $ZAM_FAKE_PROFILE and $ZAM_FAKE_DISASM
//             to <output base>.prof / .disasm when asked by -profile / -disasm
//   hang      prints a line, then never exits (also when asked for its banner)
//   forkhang  forks a child that never exits, then never exits itself
//   forkexit  forks a child that never exits and keeps the output open, then succeeds
//   crash     prints a line, then aborts
//   flood     prints 1 GiB
// Without arguments every mode but hang prints $ZAM_FAKE_BANNER or a banner listing every
// option. When $ZAM_FAKE_RECORD_DIR is set, each compile records its arguments (one per line)
// and its input file's text there as <n>.args and <n>.src. A forked child writes its pid to
// $ZAM_FAKE_PID_FILE.

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace
{
const char* const s_pDefaultBanner = "Fake offline compiler for FAKE rev 1. zcddk 1.0.0@7\n"
                                     "OPTIONS are:\n"
                                     " -v        vertex\n"
                                     " -f        fragment\n"
                                     " -nowarn   no warnings\n"
                                     " -profile  profile\n"
                                     " -perfsim  estimate\n"
                                     " -disasm   disassembly\n";

std::string Env(const char* pName, const char* pDefault = "")
{
    const char* pValue = std::getenv(pName);
    return pValue ? pValue : pDefault;
}

void WriteAll(int iFd, const std::string& Text)
{
    size_t uiDone = 0;
    while (uiDone < Text.size())
    {
        const ssize_t iWritten = ::write(iFd, Text.data() + uiDone, Text.size() - uiDone);
        if (iWritten <= 0)
        {
            if (iWritten < 0 && errno == EINTR)
                continue;
            return;
        }
        uiDone += static_cast<size_t>(iWritten);
    }
}

void WriteFile(const std::string& Path, const std::string& Text)
{
    const int iFd = ::open(Path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (iFd < 0)
        return;
    WriteAll(iFd, Text);
    ::close(iFd);
}

std::string ReadFile(const std::string& Path)
{
    std::string Text;
    FILE* pFile = std::fopen(Path.c_str(), "rb");
    if (!pFile)
        return Text;
    char acBuffer[4096];
    size_t uiRead = 0;
    while ((uiRead = std::fread(acBuffer, 1, sizeof(acBuffer), pFile)) > 0)
        Text.append(acBuffer, uiRead);
    std::fclose(pFile);
    return Text;
}

[[noreturn]] void SleepForever()
{
    for (;;)
        ::pause();
}

// Records one compile in the next free <n>.args / <n>.src pair of the record folder.
void Record(const std::vector<std::string>& Args, const std::vector<std::string>& Positional)
{
    const std::string Folder = Env("ZAM_FAKE_RECORD_DIR");
    if (Folder.empty())
        return;
    for (int i = 0; i < 100000; ++i)
    {
        const std::string Base = Folder + "/" + std::to_string(i);
        const int iFd = ::open((Base + ".args").c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600);
        if (iFd < 0)
            continue;
        std::string Text;
        for (const std::string& Arg : Args)
            Text += Arg + "\n";
        WriteAll(iFd, Text);
        ::close(iFd);
        WriteFile(Base + ".src", Positional.empty() ? std::string() : ReadFile(Positional[0]));
        return;
    }
}

void ForkChild()
{
    const pid_t iChild = ::fork();
    if (iChild == 0)
    {
        WriteFile(Env("ZAM_FAKE_PID_FILE", "/dev/null"), std::to_string(::getpid()));
        SleepForever();
    }
}

int Compile(const std::string& Mode, const std::vector<std::string>& Args)
{
    std::vector<std::string> Positional;
    bool bProfile = false;
    bool bDisasm = false;
    for (const std::string& Arg : Args)
    {
        if (Arg == "-profile")
            bProfile = true;
        else if (Arg == "-disasm")
            bDisasm = true;
        else if (Arg.size() < 2 || Arg[0] != '-')
            Positional.push_back(Arg);
    }
    Record(Args, Positional);

    if (Mode == "hang")
    {
        WriteAll(1, "compiling\n");
        SleepForever();
    }
    if (Mode == "forkhang" || Mode == "forkexit")
    {
        ForkChild();
        if (Mode == "forkhang")
            SleepForever();
        WriteAll(1, "Success.\n");
        return 0;
    }
    if (Mode == "crash")
    {
        WriteAll(1, "partial output\n");
        std::abort();
    }
    if (Mode == "flood")
    {
        const std::string Block(64 * 1024 - 1, 'x');
        for (int i = 0; i < 16 * 1024; ++i)
            WriteAll(1, Block + "\n");
        WriteAll(1, "Success.\n");
        return 0;
    }
    if (!Env("ZAM_FAKE_ECHO").empty() && !Positional.empty())
    {
        const std::string Source = ReadFile(Positional[0]);
        WriteAll(1, "WARNING: 0:1: " + Source.substr(0, Source.find('\n')) + "\n");
    }
    WriteAll(1, Env("ZAM_FAKE_OUTPUT", "Success.\n"));
    const std::string Base = Positional.size() >= 3 ? Positional[2] : std::string();
    if (!Base.empty() && bProfile && std::getenv("ZAM_FAKE_PROFILE"))
        WriteFile(Base + ".prof", Env("ZAM_FAKE_PROFILE"));
    if (!Base.empty() && bDisasm && std::getenv("ZAM_FAKE_DISASM"))
        WriteFile(Base + ".disasm", Env("ZAM_FAKE_DISASM"));
    return 0;
}
} // namespace

int main(int argc, char** argv)
{
    std::string Mode = argc > 0 ? argv[0] : "";
    const size_t uiMark = Mode.rfind("fakecc_");
    Mode = uiMark == std::string::npos ? "print" : Mode.substr(uiMark + 7);
    std::signal(SIGPIPE, SIG_DFL);

    const std::vector<std::string> Args(argv + 1, argv + argc);
    if (Args.empty())
    {
        if (Mode == "hang")
            SleepForever();
        WriteAll(1, Env("ZAM_FAKE_BANNER", s_pDefaultBanner));
        return 0;
    }
    return Compile(Mode, Args);
}
