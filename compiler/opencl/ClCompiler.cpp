#include "ClCompiler.h"

#include "ClProcess.h"
#include "ZcCores.h"
#include "ZcDriver.h"
#include "ZcFiles.h"
#include "ZcSourceLimits.h"
#include "ZcWriters.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace ZamCompiler
{

namespace
{

constexpr std::size_t k_uiMaxDiagnosticBytes = 1024 * 1024;
constexpr std::size_t k_uiMaxIrBytes = 64 * 1024 * 1024;
constexpr int k_iClangTimeoutSeconds = 120;

bool ParseNumber(const std::string& text, std::size_t& uiPos, long long& llValue)
{
    const std::size_t uiStart = uiPos;
    llValue = 0;
    while (uiPos < text.size() && text[uiPos] >= '0' && text[uiPos] <= '9' && uiPos - uiStart < 12)
        llValue = llValue * 10 + (text[uiPos++] - '0');
    return uiPos > uiStart;
}

std::vector<std::string> SplitLines(const std::string& text)
{
    std::vector<std::string> aLines;
    std::size_t uiStart = 0;
    while (uiStart < text.size())
    {
        std::size_t uiEnd = text.find('\n', uiStart);
        if (uiEnd == std::string::npos)
            uiEnd = text.size();
        aLines.push_back(text.substr(uiStart, uiEnd - uiStart));
        uiStart = uiEnd + 1;
    }
    return aLines;
}

std::string FindClang()
{
    if (const char* pOverride = std::getenv("ZAM_CLANG"))
        return FindExecutable({pOverride});
    return FindExecutable({"clang", "clang-19", "clang-18", "clang-17", "clang-16", "clang-15", "clang-14"});
}

std::vector<std::string> ClangArguments(const SCommandLine& commandLine, const std::string& irPath)
{
    std::vector<std::string> aArgs = {"-x", "cl", "-cl-std=CL1.2", "-Xclang", "-finclude-default-header",
                                      "-fno-color-diagnostics", "-fno-caret-diagnostics", "-Wall"};
    // Each value is an argument of its own, so a value that starts with "-" stays a value.
    for (const std::string& define : commandLine.aDefines)
        aArgs.insert(aArgs.end(), {"-D", define});
    for (const std::string& folder : commandLine.aIncludeFolders)
        aArgs.insert(aArgs.end(), {"-I", folder});
    aArgs.insert(aArgs.end(), {"-S", "-emit-llvm", "-g", "-O1", "-o", irPath, "--", commandLine.input});
    return aArgs;
}

bool WriteIrProfile(const std::string& path, const std::string& ir, const std::string& source, std::string& error)
{
    const SIrProfile profile = ProfileIr(ir, CountLines(source));
    return WriteFile(path, FormatProfile(profile.mapLineCounts, profile.llInstructions), error);
}

} // namespace

CDiagnosticList ParseClangDiagnostics(const std::string& text, const std::string& input)
{
    CDiagnosticList aDiagnostics;
    for (const std::string& line : SplitLines(text))
    {
        // <file>:<line>:<column>: <kind>: <message>; the file name may itself hold colons.
        static const struct
        {
            const char* pTag;
            ESeverity eSeverity;
        } s_aKinds[] = {{": fatal error: ", Severity_Error}, {": error: ", Severity_Error}, {": warning: ", Severity_Warning}};
        for (const auto& kind : s_aKinds)
        {
            const std::size_t uiTag = line.find(kind.pTag);
            if (uiTag == std::string::npos)
                continue;
            SDiagnostic diagnostic;
            diagnostic.eSeverity = kind.eSeverity;
            diagnostic.text = line.substr(uiTag + std::string(kind.pTag).size());
            // Walk back over ":<line>:<column>" before the tag.
            const std::size_t uiColumnColon = line.rfind(':', uiTag - 1);
            const std::size_t uiLineColon = uiColumnColon == std::string::npos || uiColumnColon == 0
                                                ? std::string::npos
                                                : line.rfind(':', uiColumnColon - 1);
            long long llLine = -1;
            long long llColumn = 0;
            std::size_t uiPos = uiLineColon + 1;
            std::size_t uiColumnPos = uiColumnColon + 1;
            if (uiLineColon != std::string::npos && ParseNumber(line, uiPos, llLine) && uiPos == uiColumnColon &&
                ParseNumber(line, uiColumnPos, llColumn))
            {
                diagnostic.iLine = static_cast<int>(llLine);
                diagnostic.iColumn = static_cast<int>(llColumn);
                const std::string file = line.substr(0, uiLineColon);
                if (!input.empty() && file != input)
                    diagnostic.file = file;
            }
            else
            {
                diagnostic.iLine = -1;
            }
            aDiagnostics.push_back(diagnostic);
            break;
        }
    }
    return aDiagnostics;
}

SIrProfile ProfileIr(const std::string& ir, int iLastLine)
{
    // First the locations: "!N = !DILocation(line: L, ..."
    std::map<long long, int> mapLocations;
    const std::vector<std::string> aLines = SplitLines(ir);
    for (const std::string& line : aLines)
    {
        if (line.size() < 2 || line[0] != '!')
            continue;
        std::size_t uiPos = 1;
        long long llId = 0;
        if (!ParseNumber(line, uiPos, llId))
            continue;
        const std::size_t uiTag = line.find("= !DILocation(line: ", uiPos);
        if (uiTag == std::string::npos)
            continue;
        uiPos = uiTag + 20;
        long long llLine = 0;
        if (ParseNumber(line, uiPos, llLine))
            mapLocations[llId] = static_cast<int>(llLine);
    }

    SIrProfile profile;
    bool bInFunction = false;
    for (const std::string& line : aLines)
    {
        if (line.rfind("define ", 0) == 0)
        {
            bInFunction = true;
            continue;
        }
        if (line == "}")
        {
            bInFunction = false;
            continue;
        }
        // Instructions are indented; labels and comments are not instructions.
        if (!bInFunction || line.rfind("  ", 0) != 0 || line.find("@llvm.dbg.") != std::string::npos)
            continue;
        ++profile.llInstructions;
        const std::size_t uiDbg = line.find("!dbg !");
        if (uiDbg == std::string::npos)
            continue;
        std::size_t uiPos = uiDbg + 6;
        long long llId = 0;
        if (!ParseNumber(line, uiPos, llId))
            continue;
        auto it = mapLocations.find(llId);
        if (it != mapLocations.end() && it->second >= 1 && it->second <= iLastLine)
            ++profile.mapLineCounts[it->second];
    }
    return profile;
}

std::string ClBanner(const std::string& coreName)
{
    std::string text;
    text += "Zam OpenCL 1.2 " + coreName + " compiler. Version zcddk " + k_pCompilerVersion + "@" +
            std::to_string(k_iCompilerBuild) + "\n";
    text += "Usage: clcompiler <input> <unit name> <output base> [options]\n";
    text += "Control options are:\n";
    text += "-nowarn : leave warnings out of the log\n";
    text += "-profile : write per-line instruction counts to <output base>.prof\n";
    text += "-disasm : write the LLVM IR to <output base>.disasm\n";
    text += "Preprocessor options are:\n";
    text += "-D NAME[=VALUE]   define a macro for the kernel\n";
    text += "-I DIR            search DIR for included headers\n";
    return text;
}

int RunClCompiler(const std::string& programPath, const std::vector<std::string>& aArgs, std::string& output)
{
    ECore eCore = Core_ZC1;
    CoreFromProgramName(programPath, eCore);

    SCommandLine commandLine;
    std::string source;
    const int iStatus =
        ReadCompileRequest(aArgs, ClBanner(CoreModel(eCore).pName), commandLine, source, output, true);
    if (iStatus != Request_Compile)
        return iStatus;
    std::string error;
    CDiagnosticList aLimits;
    if (!CheckSourceText(source, DefaultSourceLimits(), aLimits))
        return Fail(output, FormatDiagnostic(aLimits.front()).substr(7));

    const std::string clang = FindClang();
    if (clang.empty())
        return Fail(output, "clang was not found: install the clang package to compile OpenCL kernels");

    // The IR goes to the output base: it is this compiler's program file.
    const std::string irPath = commandLine.outputBase;
    std::remove(irPath.c_str());
    std::string diagnosticsText;
    int iExitCode = -1;
    if (!RunProcess(clang, ClangArguments(commandLine, irPath), k_uiMaxDiagnosticBytes, k_iClangTimeoutSeconds, diagnosticsText, iExitCode))
        return Fail(output, "clang could not be run or did not finish: " + clang);

    const CDiagnosticList aDiagnostics = ParseClangDiagnostics(diagnosticsText, commandLine.input);
    bool bErrors = iExitCode != 0;
    for (const SDiagnostic& diagnostic : aDiagnostics)
    {
        bErrors = bErrors || diagnostic.eSeverity == Severity_Error;
        if (!(commandLine.bNoWarn && diagnostic.eSeverity == Severity_Warning))
            output += FormatDiagnostic(diagnostic) + "\n";
    }
    if (bErrors)
    {
        if (!HasErrors(aDiagnostics))
            output += "ERROR: clang failed with exit status " + std::to_string(iExitCode) + "\n";
        output += "Compile failed.\n";
        return 1;
    }

    std::string ir;
    if (ReadFileBounded(irPath, k_uiMaxIrBytes, ir, error) != Read_Ok)
        return Fail(output, "cannot read the IR clang wrote to '" + irPath + "'");
    if (commandLine.bProfile && !WriteIrProfile(commandLine.outputBase + ".prof", ir, source, error))
        return Fail(output, "cannot write '" + commandLine.outputBase + ".prof': " + error);
    if (commandLine.bDisasm && !WriteFile(commandLine.outputBase + ".disasm", ir, error))
        return Fail(output, "cannot write '" + commandLine.outputBase + ".disasm': " + error);
    output += "Success.\n";
    return 0;
}

} // namespace ZamCompiler
