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
    std::vector<std::string> aDefines;        // -D NAME[=VALUE], as given
    std::vector<std::string> aIncludeFolders; // -I DIR
};

enum ECommandLine
{
    CommandLine_Compile,
    CommandLine_Banner,
    CommandLine_Invalid,
};

// bPreprocessorOptions: -D and -I are accepted (the OpenCL compiler hands them to clang), with
// the value joined (-DNAME=1) or as the next argument (-I folder).
ECommandLine ParseCommandLine(const std::vector<std::string>& aArgs, SCommandLine& commandLine, std::string& error,
                              bool bPreprocessorOptions = false);

// Reported by a failed compile: one ERROR line, then the verdict. Returns the exit status 1.
int Fail(std::string& output, const std::string& message);

// Shared start of every compiler executable: parses the arguments and reads the input
// within the source limits. Returns Request_Compile when the compile should go on;
// otherwise the banner or the error is in output and the result is the exit status.
constexpr int Request_Compile = -1;
int ReadCompileRequest(const std::vector<std::string>& aArgs, const std::string& banner, SCommandLine& commandLine,
                       std::string& source, std::string& output, bool bPreprocessorOptions = false);

// Exit status: 0 success, 1 compile failed, 2 unusable command line. Once per process: glslang's
// tables stay until the process exits.
int RunGlslCompiler(const std::string& programPath, const std::vector<std::string>& aArgs, std::string& output);

} // namespace ZamCompiler
