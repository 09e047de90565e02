#pragma once

// The glslcompiler_* command line: arguments in, log text and exit status out.

#include <string>
#include <vector>

namespace ZamCompiler
{

struct SCommandLine
{
    std::string input;
    std::string unit;
    std::string outputBase;
    bool bVertex = false;
    bool bFragment = false;
    bool bNoWarn = false;
    bool bProfile = false;
    bool bPerfSim = false;
    bool bDisasm = false;
};

enum ECommandLine
{
    CommandLine_Compile,
    CommandLine_Banner,
    CommandLine_Invalid,
};

ECommandLine ParseCommandLine(const std::vector<std::string>& aArgs, SCommandLine& commandLine, std::string& error);

// Reported by a failed compile: one ERROR line, then the verdict. Returns the exit status 1.
int Fail(std::string& output, const std::string& message);

// Shared start of every compiler executable: parses the arguments and reads the input
// within the source limits. Returns Request_Compile when the compile should go on;
// otherwise the banner or the error is in output and the result is the exit status.
constexpr int Request_Compile = -1;
int ReadCompileRequest(const std::vector<std::string>& aArgs, const std::string& banner, SCommandLine& commandLine,
                       std::string& source, std::string& output);

// Exit status: 0 success, 1 compile failed, 2 unusable command line.
int RunGlslCompiler(const std::string& programPath, const std::vector<std::string>& aArgs, std::string& output);

} // namespace ZamCompiler
