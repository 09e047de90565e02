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

// Exit status: 0 success, 1 compile failed, 2 unusable command line.
int RunGlslCompiler(const std::string& programPath, const std::vector<std::string>& aArgs, std::string& output);

} // namespace ZamCompiler
