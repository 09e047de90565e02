// Misbehaving stand-ins for an offline compiler: one program built as "fakecc_<mode>".
//   print     prints $ZAM_FAKE_OUTPUT (default "Success.\n"), after "WARNING: 0:1: <first input
//             line>" when $ZAM_FAKE_ECHO is set; writes $ZAM_FAKE_PROFILE / $ZAM_FAKE_DISASM to
//             <output base>.prof / .disasm when asked by -profile / -disasm
//   hang      prints a line, then never exits (also when asked for its banner)
//   forkhang  forks a child that never exits, then never exits itself
//   forkexit  forks a child that never exits and keeps the output open, then succeeds
//   crash     prints $ZAM_FAKE_OUTPUT (default "partial output\n"), then aborts
//   segv      the same, then dies of a segmentation fault
//   flood     prints 1 GiB
//   setsidhang  forks a child that starts a session of its own and never exits, then never
//             exits itself
//   setsidexit  the same child, then succeeds
//   stdin     reads its standard input to the end, says how much it read, then succeeds
//   fifoout   leaves FIFOs at <output base>.prof and .disasm, then succeeds
// Without arguments it prints $ZAM_FAKE_BANNER or a banner listing every option. With
// $ZAM_FAKE_RECORD_DIR set, each compile writes its arguments (one a line) and its input's
// text there as <n>.args and <n>.src. A forked child's pid goes to $ZAM_FAKE_PID_FILE, the
// compiler's own to $ZAM_FAKE_OWN_PID_FILE.

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace
{
std::string Env(const char* pName, const char* pDefault = "")
{
    const char* pValue = std::getenv(pName);
    return pValue ? pValue : pDefault;
}

void Print(const std::string& Text)
{
    for (size_t uiDone = 0; uiDone < Text.size();)
    {
        const ssize_t iWritten = ::write(1, Text.data() + uiDone, Text.size() - uiDone);
        if (iWritten <= 0)
            return;
        uiDone += static_cast<size_t>(iWritten);
    }
}

void WriteFile(const std::string& Path, const std::string& Text)
{
    std::ofstream(Path, std::ios::binary) << Text;
}

std::string ReadFile(const std::string& Path)
{
    std::ostringstream Text;
    Text << std::ifstream(Path, std::ios::binary).rdbuf();
    return Text.str();
}

[[noreturn]] void SleepForever()
{
    for (;;)
        ::pause();
}

void Record(const std::vector<std::string>& Args, const std::string& Input)
{
    const std::string Folder = Env("ZAM_FAKE_RECORD_DIR");
    for (int i = 0; !Folder.empty() && i < 10000; ++i)
    {
        const std::string Base = Folder + "/" + std::to_string(i);
        const int iFd = ::open((Base + ".args").c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600);
        if (iFd < 0)
            continue;
        ::close(iFd);
        std::string Text;
        for (const std::string& Arg : Args)
            Text += Arg + "\n";
        WriteFile(Base + ".args", Text);
        WriteFile(Base + ".src", ReadFile(Input));
        return;
    }
}

// The parent records the child's pid, so it is known before anyone can kill the child.
void ForkChild(bool bOwnSession)
{
    const pid_t iChild = ::fork();
    if (iChild == 0)
    {
        if (bOwnSession)
            ::setsid();
        SleepForever();
    }
    WriteFile(Env("ZAM_FAKE_PID_FILE", "/dev/null"), std::to_string(iChild));
}

[[noreturn]] void Crash(int iSignal)
{
    // No core file of a test's fake.
    const rlimit NoCore{0, 0};
    ::setrlimit(RLIMIT_CORE, &NoCore);
    Print(Env("ZAM_FAKE_OUTPUT", "partial output\n"));
    if (iSignal == SIGABRT)
        std::abort();
    std::signal(iSignal, SIG_DFL);
    std::raise(iSignal);
    std::abort();
}

void ReadInput()
{
    char aBuffer[4096];
    size_t uiTotal = 0;
    ssize_t iRead = 0;
    while ((iRead = ::read(0, aBuffer, sizeof aBuffer)) > 0)
        uiTotal += static_cast<size_t>(iRead);
    Print("read " + std::to_string(uiTotal) + " bytes\n");
}

int Compile(const std::string& Mode, const std::vector<std::string>& Args)
{
    std::vector<std::string> Positional;
    for (const std::string& Arg : Args)
    {
        if (Arg.size() < 2 || Arg[0] != '-')
            Positional.push_back(Arg);
    }
    const auto Asked = [&](const char* pSwitch) { return std::find(Args.begin(), Args.end(), pSwitch) != Args.end(); };
    Record(Args, Positional.empty() ? std::string() : Positional[0]);
    if (!Env("ZAM_FAKE_OWN_PID_FILE").empty())
        WriteFile(Env("ZAM_FAKE_OWN_PID_FILE"), std::to_string(::getpid()));

    if (Mode == "hang")
    {
        Print("compiling\n");
        SleepForever();
    }
    if (Mode == "forkhang" || Mode == "forkexit" || Mode == "setsidhang" || Mode == "setsidexit")
    {
        ForkChild(Mode.compare(0, 6, "setsid") == 0);
        if (Mode == "forkhang" || Mode == "setsidhang")
            SleepForever();
    }
    if (Mode == "crash" || Mode == "segv")
        Crash(Mode == "crash" ? SIGABRT : SIGSEGV);
    if (Mode == "stdin")
        ReadInput();
    if (Mode == "flood")
    {
        const std::string Block(64 * 1024 - 1, 'x');
        for (int i = 0; i < 16 * 1024; ++i)
            Print(Block + "\n");
    }
    if (!Env("ZAM_FAKE_ECHO").empty() && !Positional.empty())
    {
        const std::string Source = ReadFile(Positional[0]);
        Print("WARNING: 0:1: " + Source.substr(0, Source.find('\n')) + "\n");
    }
    Print(Env("ZAM_FAKE_OUTPUT", "Success.\n"));
    const std::string Base = Positional.size() >= 3 ? Positional[2] : std::string();
    if (Mode == "fifoout" && !Base.empty())
    {
        ::mkfifo((Base + ".prof").c_str(), 0600);
        ::mkfifo((Base + ".disasm").c_str(), 0600);
    }
    if (!Base.empty() && Asked("-profile") && std::getenv("ZAM_FAKE_PROFILE"))
        WriteFile(Base + ".prof", Env("ZAM_FAKE_PROFILE"));
    if (!Base.empty() && Asked("-disasm") && std::getenv("ZAM_FAKE_DISASM"))
        WriteFile(Base + ".disasm", Env("ZAM_FAKE_DISASM"));
    return 0;
}
} // namespace

int main(int argc, char** argv)
{
    const std::string Name = argc > 0 ? argv[0] : "";
    const size_t uiMark = Name.rfind("fakecc_");
    const std::string Mode = uiMark == std::string::npos ? "print" : Name.substr(uiMark + 7);
    const std::vector<std::string> Args(argv + 1, argv + argc);
    if (!Args.empty())
        return Compile(Mode, Args);
    if (Mode == "hang")
        SleepForever();
    Print(Env("ZAM_FAKE_BANNER", "Fake offline compiler for FAKE rev 1. zcddk 1.0.0@7\nOPTIONS are:\n"
                                 " -v        vertex\n -f        fragment\n -nowarn   no warnings\n"
                                 " -profile  profile\n -perfsim  estimate\n -disasm   disassembly\n"));
    return 0;
}
