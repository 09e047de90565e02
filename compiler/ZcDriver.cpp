#include "ZcDriver.h"

#include "ZcCompilation.h"
#include "ZcFiles.h"
#include "ZcFrontEnd.h"
#include "ZcSourceLimits.h"
#include "ZcWriters.h"

#include <sys/stat.h>

#include <cctype>
#include <future>
#include <optional>
#include <system_error>
#include <thread>

namespace ZamCompiler
{

namespace
{

// The listing is the longest output to build. From the moment the registers are final a
// second thread formats its first three quarters, while the figures per line and path are
// worked out and the program file and the profile are built and written; the last quarter
// is formatted on the calling thread when the text is asked for. Every path out joins the
// thread.
class CListingJob
{
public:
    CListingJob(const SCompilation& compilation, const SCoreModel& core)
        : m_compilation(compilation), m_core(core), m_uiSplit(compilation.program.aInstructions.size() / 4 * 3),
          m_poolTextsReady(m_poolTextsDone.get_future())
    {
        try
        {
            m_thread = std::thread([this] { FormatFirstPart(); });
        }
        catch (const std::system_error&)
        {
            FormatFirstPart();
        }
    }
    CListingJob(const CListingJob&) = delete;
    CListingJob& operator=(const CListingJob&) = delete;
    ~CListingJob() { Wait(); }

    const std::string& Text()
    {
        if (!m_bComplete)
        {
            // The thread formats the immediates first, long before the caller gets here.
            m_poolTextsReady.wait();
            std::string rest;
            AppendDisassembly(m_compilation, m_uiSplit, m_compilation.program.aInstructions.size(), m_aPoolTexts, rest);
            Wait();
            m_text += rest;
            m_bComplete = true;
        }
        return m_text;
    }

private:
    void FormatFirstPart()
    {
        m_aPoolTexts = ImmediateTexts(m_compilation.program);
        m_poolTextsDone.set_value();
        m_text = DisassemblyHeader(m_compilation, m_core);
        // Room for the rest too, so that appending it copies nothing twice.
        m_text.reserve(m_text.size() + m_compilation.program.aInstructions.size() * 56);
        AppendDisassembly(m_compilation, 0, m_uiSplit, m_aPoolTexts, m_text);
    }
    void Wait()
    {
        if (m_thread.joinable())
            m_thread.join();
    }

    const SCompilation& m_compilation;
    const SCoreModel& m_core;
    const std::size_t m_uiSplit;
    std::vector<std::string> m_aPoolTexts; // written once, before m_poolTextsDone is set
    std::promise<void> m_poolTextsDone;
    std::future<void> m_poolTextsReady;
    std::string m_text;
    bool m_bComplete = false;
    std::thread m_thread;
};

struct SCompileJob
{
    const std::string* pSource;
    ETxeStage eStage;
    const SCoreModel* pCore;
    const SPreprocessorOptions* pOptions;
    SCompilation* pCompilation;
    const SCommandLine* pCommandLine;
    std::optional<CListingJob>* pListing;
};

void CompileJob(void* pContext)
{
    SCompileJob* pJob = static_cast<SCompileJob*>(pContext);
    if (!CompileProgram(*pJob->pSource, pJob->eStage, *pJob->pCore, DefaultSourceLimits(), *pJob->pCompilation,
                        *pJob->pOptions))
        return;
    // Only the outputs the command line asks for are worked out.
    if (pJob->pCommandLine->bDisasm)
        pJob->pListing->emplace(*pJob->pCompilation, *pJob->pCore);
    AnalyseProgram(*pJob->pSource, *pJob->pCompilation, pJob->pCommandLine->bProfile, pJob->pCommandLine->bPerfSim);
}

// The headers a compile read, one path a line, so a caller can tell which files it depends on.
// Written whatever the outcome: a header with an error is what the user is about to fix.
bool WriteIncludedFiles(const SCommandLine& commandLine, const SCompilation& compilation, std::string& output)
{
    if (compilation.aIncludedFiles.empty())
        return true;
    std::string text;
    for (const std::string& file : compilation.aIncludedFiles)
        text += file + "\n";
    std::string error;
    if (WriteFile(commandLine.outputBase + ".deps", text, error))
        return true;
    output += "ERROR: cannot write '" + commandLine.outputBase + ".deps': " + error + "\n";
    return false;
}

std::string FolderOf(const std::string& path)
{
    const std::size_t uiSlash = path.rfind('/');
    return uiSlash == std::string::npos ? std::string() : path.substr(0, uiSlash == 0 ? 1 : uiSlash);
}

bool EndsWith(const std::string& text, const std::string& suffix)
{
    return text.size() >= suffix.size() && text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

// Without -v or -f: the extension, then the text, decides.
ETxeStage GuessStage(const std::string& path, const std::string& source)
{
    if (EndsWith(path, ".vsh") || EndsWith(path, ".vert"))
        return Stage_Vertex;
    if (EndsWith(path, ".fsh") || EndsWith(path, ".frag"))
        return Stage_Fragment;
    return source.find("gl_Position") != std::string::npos ? Stage_Vertex : Stage_Fragment;
}

} // namespace

int Fail(std::string& output, const std::string& message)
{
    output += "ERROR: " + message + "\n";
    output += "Compile failed.\n";
    return 1;
}

namespace
{

bool IsIdentifier(const std::string& name)
{
    if (name.empty() || std::isdigit(static_cast<unsigned char>(name[0])))
        return false;
    for (char c : name)
    {
        if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_')
            return false;
    }
    return true;
}

// -D NAME[=VALUE] or -I DIR, the value already separated from the switch.
bool AddPreprocessorOption(char cOption, const std::string& value, SCommandLine& commandLine, std::string& error)
{
    if (cOption == 'I')
    {
        if (value.empty())
        {
            error = "-I needs a folder";
            return false;
        }
        commandLine.aIncludeFolders.push_back(value);
        return true;
    }
    if (!IsIdentifier(value.substr(0, value.find('='))))
    {
        error = "-D needs a macro name, optionally followed by =value, and got '" + value + "'";
        return false;
    }
    commandLine.aDefines.push_back(value);
    return true;
}

bool ApplySwitch(const std::string& arg, SCommandLine& commandLine, std::string& error)
{
    static const struct
    {
        const char* pName;
        bool SCommandLine::*pFlag;
    } s_aSwitches[] = {{"-v", &SCommandLine::bVertex},     {"-f", &SCommandLine::bFragment},
                       {"-nowarn", &SCommandLine::bNoWarn}, {"-profile", &SCommandLine::bProfile},
                       {"-perfsim", &SCommandLine::bPerfSim}, {"-disasm", &SCommandLine::bDisasm}};
    for (const auto& entry : s_aSwitches)
    {
        if (arg == entry.pName)
        {
            commandLine.*entry.pFlag = true;
            return true;
        }
    }
    error = "unknown option '" + arg + "' (run without arguments for the list of options)";
    return false;
}

ECommandLine CheckPositional(std::vector<std::string> aPositional, SCommandLine& commandLine, std::string& error)
{
    // An empty unit name disappears from a command line that leaves out empty arguments.
    if (aPositional.size() == 2)
        aPositional.insert(aPositional.begin() + 1, std::string());
    if (aPositional.size() != 3)
    {
        error = "expected three arguments, <input> <unit name> <output base>, and got " +
                std::to_string(aPositional.size());
        return CommandLine_Invalid;
    }
    if (commandLine.bVertex && commandLine.bFragment)
    {
        error = "-v and -f exclude each other";
        return CommandLine_Invalid;
    }
    if (aPositional[0].empty() || aPositional[2].empty())
    {
        error = "the input and the output base must not be empty";
        return CommandLine_Invalid;
    }
    commandLine.input = aPositional[0];
    commandLine.unit = aPositional[1];
    commandLine.outputBase = aPositional[2];
    return CommandLine_Compile;
}

} // namespace

ECommandLine ParseCommandLine(const std::vector<std::string>& aArgs, SCommandLine& commandLine, std::string& error,
                              bool bPreprocessorOptions)
{
    commandLine = SCommandLine();
    if (aArgs.empty())
        return CommandLine_Banner;
    std::vector<std::string> aPositional;
    bool bOptionsEnded = false;
    for (std::size_t i = 0; i < aArgs.size(); ++i)
    {
        const std::string& arg = aArgs[i];
        // After "--" every argument is a file or unit name, whatever it starts with.
        if (!bOptionsEnded && arg == "--")
        {
            bOptionsEnded = true;
            continue;
        }
        if (!bOptionsEnded && (arg == "-h" || arg == "--help" || arg == "-help"))
            return CommandLine_Banner;
        if (bOptionsEnded || arg.size() < 2 || arg[0] != '-')
        {
            aPositional.push_back(arg);
            continue;
        }
        if (bPreprocessorOptions && (arg[1] == 'D' || arg[1] == 'I'))
        {
            const bool bJoined = arg.size() > 2;
            if (!bJoined && i + 1 >= aArgs.size())
            {
                error = arg[1] == 'I' ? "-I needs a folder" : "-D needs a macro name";
                return CommandLine_Invalid;
            }
            if (!AddPreprocessorOption(arg[1], bJoined ? arg.substr(2) : aArgs[++i], commandLine, error))
                return CommandLine_Invalid;
            continue;
        }
        if (!ApplySwitch(arg, commandLine, error))
            return CommandLine_Invalid;
    }
    return CheckPositional(std::move(aPositional), commandLine, error);
}

int ReadCompileRequest(const std::vector<std::string>& aArgs, const std::string& banner, SCommandLine& commandLine,
                       std::string& source, std::string& output, bool bPreprocessorOptions)
{
    std::string error;
    switch (ParseCommandLine(aArgs, commandLine, error, bPreprocessorOptions))
    {
    case CommandLine_Banner:
        output += banner;
        return 0;
    case CommandLine_Invalid:
        output += "ERROR: " + error + "\n";
        return 2;
    case CommandLine_Compile:
        break;
    }
    for (const std::string& folder : commandLine.aIncludeFolders)
    {
        struct stat info;
        if (stat(folder.c_str(), &info) != 0 || !S_ISDIR(info.st_mode))
            return Fail(output, "the include folder '" + folder + "' is not a folder");
    }

    const SSourceLimits& limits = DefaultSourceLimits();
    switch (ReadFileBounded(commandLine.input, limits.uiMaxBytes, source, error))
    {
    case Read_Failed:
        return Fail(output, "cannot read input file '" + commandLine.input + "': " + error);
    case Read_TooLarge:
        return Fail(output, "0:1: source is too large: the limit is " + std::to_string(limits.uiMaxBytes) + " bytes");
    case Read_Ok:
        break;
    }
    return Request_Compile;
}

namespace
{

int WriteOutputs(const SCommandLine& commandLine, const SCompilation& compilation, const SCoreModel& core,
                 std::optional<CListingJob>& listing, std::string& output)
{
    std::string error;
    if (!WriteFile(commandLine.outputBase, EncodeProgram(compilation, core), error))
        return Fail(output, "cannot write '" + commandLine.outputBase + "': " + error);
    if (commandLine.bProfile && !WriteFile(commandLine.outputBase + ".prof", FormatProfile(compilation), error))
        return Fail(output, "cannot write '" + commandLine.outputBase + ".prof': " + error);
    if (listing && !WriteFile(commandLine.outputBase + ".disasm", listing->Text(), error))
        return Fail(output, "cannot write '" + commandLine.outputBase + ".disasm': " + error);
    return 0;
}

} // namespace

int RunGlslCompiler(const std::string& programPath, const std::vector<std::string>& aArgs, std::string& output)
{
    ECore eCore = Core_ZC1;
    CoreFromProgramName(programPath, eCore);
    const SCoreModel& core = CoreModel(eCore);

    SCommandLine commandLine;
    std::string source;
    const int iStatus = ReadCompileRequest(aArgs, GlslBanner(core), commandLine, source, output, true);
    if (iStatus != Request_Compile)
        return iStatus;

    const ETxeStage eStage = commandLine.bVertex     ? Stage_Vertex
                             : commandLine.bFragment ? Stage_Fragment
                                                     : GuessStage(commandLine.input, source);
    SPreprocessorOptions options;
    options.ownFolder = FolderOf(commandLine.input);
    options.aIncludeFolders = commandLine.aIncludeFolders;
    options.aDefines = commandLine.aDefines;
    SCompilation compilation;
    std::optional<CListingJob> listing;
    KeepFrontEndForProcess();
    SCompileJob job{&source, eStage, &core, &options, &compilation, &commandLine, &listing};
    if (!RunWithLargeStack(&CompileJob, &job))
        return Fail(output, "cannot start the compiler thread");

    for (const SDiagnostic& diagnostic : compilation.aDiagnostics)
    {
        if (commandLine.bNoWarn && diagnostic.eSeverity == Severity_Warning)
            continue;
        output += FormatDiagnostic(diagnostic) + "\n";
    }
    if (!WriteIncludedFiles(commandLine, compilation, output) || !compilation.bSucceeded)
    {
        output += "Compile failed.\n";
        return 1;
    }

    const int iWritten = WriteOutputs(commandLine, compilation, core, listing, output);
    if (iWritten != 0)
        return iWritten;
    if (commandLine.bPerfSim)
        output += FormatEstimate(compilation);
    output += "Success.\n";
    return 0;
}

} // namespace ZamCompiler
