#include "ClCompiler.h"

#include "ClProcess.h"
#include "ZcCores.h"
#include "ZcDriver.h"
#include "ZcFiles.h"
#include "ZcIncludes.h"
#include "ZcSourceLimits.h"
#include "ZcWriters.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
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
                                      "-fno-color-diagnostics", "-fno-caret-diagnostics", "-Wall",
                                      // lists the headers it enters, one dot per level
                                      "-H"};
    // Each value is an argument of its own, so a value that starts with "-" stays a value.
    for (const std::string& define : commandLine.aDefines)
        aArgs.insert(aArgs.end(), {"-D", define});
    for (const std::string& folder : commandLine.aIncludeFolders)
        aArgs.insert(aArgs.end(), {"-I", folder});
    aArgs.insert(aArgs.end(), {"-S", "-emit-llvm", "-g", "-O1", "-o", irPath, "--", commandLine.input});
    return aArgs;
}

std::string NormalPath(const std::string& path)
{
    return std::filesystem::path(path).lexically_normal().string();
}

// Whether clang's path of a header is the name of an #include found in some folder.
bool IsFoundAs(const std::string& path, const std::string& name)
{
    const std::string written = NormalPath(name);
    return path == written
           || (path.size() > written.size()
               && path.compare(path.size() - written.size() - 1, std::string::npos, "/" + written) == 0);
}

bool WriteIrProfile(const std::string& path, const std::string& ir, const std::string& source, const std::string& trace,
                    std::string& error)
{
    const SIrProfile profile = ProfileIr(ir, CountLines(source), HeaderLines(trace, source));
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

std::map<std::string, int> HeaderLines(const std::string& trace, const std::string& source)
{
    const std::vector<SIncludeDirective> aDirectives = IncludeDirectives(source);
    std::map<std::string, int> mapLines;
    std::vector<int> aLevels; // the document line of the header entered last on each level
    std::size_t uiNext = 0;
    for (const std::string& line : SplitLines(trace))
    {
        const std::size_t uiDots = line.find_first_not_of('.');
        if (uiDots == 0 || uiDots == std::string::npos || line[uiDots] != ' ' || uiDots > aLevels.size() + 1)
            continue;
        const std::string path = NormalPath(line.substr(uiDots + 1));
        int iLine = uiDots > 1 ? aLevels[uiDots - 2] : 0;
        if (uiDots == 1)
            iLine =
                TakeDirective(aDirectives, uiNext, [&path](const std::string& name) { return IsFoundAs(path, name); });
        // A directive made by a macro has no line of its own to find.
        aLevels.resize(uiDots - 1);
        aLevels.push_back(iLine == 0 ? 1 : iLine);
        mapLines.emplace(path, aLevels.back());
    }
    return mapLines;
}

namespace
{

// N of "<tag>!N" in a metadata line; false without the tag.
bool MetadataId(const std::string& line, const char* pTag, long long& llId)
{
    const std::size_t uiTag = line.find(pTag);
    if (uiTag == std::string::npos)
        return false;
    std::size_t uiPos = uiTag + std::char_traits<char>::length(pTag);
    return ParseNumber(line, uiPos, llId);
}

// The text of "<tag>\"text\"" in a metadata line.
std::string MetadataText(const std::string& line, const char* pTag)
{
    const std::size_t uiTag = line.find(pTag);
    if (uiTag == std::string::npos)
        return std::string();
    const std::size_t uiStart = uiTag + std::char_traits<char>::length(pTag);
    const std::size_t uiEnd = line.find('"', uiStart);
    return uiEnd == std::string::npos ? std::string() : line.substr(uiStart, uiEnd - uiStart);
}

// "!N = !DILocation(line: L, ..., scope: !S": the document line of location N. A location in
// a header (its scope's file) counts on the line of the #include that brought the header in.
std::map<long long, int> DocumentLocations(const std::vector<std::string>& aLines,
                                           const std::map<std::string, int>& mapHeaderLines)
{
    std::map<long long, std::pair<int, long long>> mapLocations; // line, scope
    std::map<long long, long long> mapScopeFiles;
    std::map<long long, int> mapFileLines; // header files only
    for (const std::string& line : aLines)
    {
        std::size_t uiPos = 1;
        long long llId = 0;
        if (line.size() < 2 || line[0] != '!' || !ParseNumber(line, uiPos, llId))
            continue;
        long long llValue = 0;
        if (line.find("!DILocation(", uiPos) != std::string::npos)
        {
            long long llScope = -1;
            if (MetadataId(line, "(line: ", llValue))
                mapLocations[llId] = {static_cast<int>(llValue), MetadataId(line, "scope: !", llScope) ? llScope : -1};
        }
        else if (line.find("!DIFile(", uiPos) != std::string::npos)
        {
            const std::string name = MetadataText(line, "filename: \"");
            const std::string folder = MetadataText(line, "directory: \"");
            const auto header = mapHeaderLines.find(
                NormalPath(folder.empty() || (!name.empty() && name[0] == '/') ? name : folder + "/" + name));
            if (header != mapHeaderLines.end())
                mapFileLines[llId] = header->second;
        }
        else if (MetadataId(line, " file: !", llValue) || MetadataId(line, "(file: !", llValue))
        {
            mapScopeFiles[llId] = llValue;
        }
    }
    std::map<long long, int> mapLines;
    for (const auto& [llId, location] : mapLocations)
    {
        const auto scope = mapScopeFiles.find(location.second);
        const auto header = scope == mapScopeFiles.end() ? mapFileLines.end() : mapFileLines.find(scope->second);
        // Line 0 is code of no line, wherever it is.
        mapLines[llId] = header == mapFileLines.end() || location.first == 0 ? location.first : header->second;
    }
    return mapLines;
}

} // namespace

SIrProfile ProfileIr(const std::string& ir, int iLastLine, const std::map<std::string, int>& mapHeaderLines)
{
    const std::vector<std::string> aLines = SplitLines(ir);
    const std::map<long long, int> mapLocations = DocumentLocations(aLines, mapHeaderLines);

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
    if (commandLine.bProfile && !WriteIrProfile(commandLine.outputBase + ".prof", ir, source, diagnosticsText, error))
        return Fail(output, "cannot write '" + commandLine.outputBase + ".prof': " + error);
    if (commandLine.bDisasm && !WriteFile(commandLine.outputBase + ".disasm", ir, error))
        return Fail(output, "cannot write '" + commandLine.outputBase + ".disasm': " + error);
    output += "Success.\n";
    return 0;
}

} // namespace ZamCompiler
