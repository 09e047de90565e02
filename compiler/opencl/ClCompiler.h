#pragma once

// The OpenCL kernel compiler: clang checks the kernel and emits LLVM IR with
// debug locations; its diagnostics become ERROR/WARNING lines and the IR's
// locations give the per-line instruction counts.

#include "ZcDiagnostics.h"

#include <map>
#include <string>
#include <vector>

namespace ZamCompiler
{

// "file.cl:12:5: error: text" lines; notes and summaries are dropped. A line in a file other
// than input (an included header) keeps that file's name.
CDiagnosticList ParseClangDiagnostics(const std::string& text, const std::string& input = std::string());

struct SIrProfile
{
    std::map<int, long long> mapLineCounts; // instructions per source line
    long long llInstructions = 0;           // instructions in defined functions
};

// Counts IR instructions by the line of their !dbg location; an instruction of a header (a
// path of mapHeaderLines) counts on the document line the map gives it.
SIrProfile ProfileIr(const std::string& ir, int iLastLine,
                     const std::map<std::string, int>& mapHeaderLines = std::map<std::string, int>());

// The headers clang entered, from its -H lines (a dot per level, a blank, the path), each
// with the line of the source's #include that brought it in, directly or through other headers.
std::map<std::string, int> HeaderLines(const std::string& trace, const std::string& source);

std::string ClBanner(const std::string& coreName);

// Exit status: 0 success, 1 compile failed (also: clang missing), 2 unusable command line.
int RunClCompiler(const std::string& programPath, const std::vector<std::string>& aArgs, std::string& output);

} // namespace ZamCompiler
