#pragma once

// Limits checked on the raw text before the front end sees it, so hostile input
// is refused cheaply and never reaches recursive code.

#include "ZcDiagnostics.h"

#include <cstddef>
#include <string>

namespace ZamCompiler
{

struct SSourceLimits
{
    std::size_t uiMaxBytes = 2 * 1024 * 1024;
    std::size_t uiMaxLineBytes = 64 * 1024;
    int iMaxNesting = 256;       // (), [] and {} outside comments
    int iMaxTreeDepth = 1000;    // depth of the parsed tree
    int iMaxInstructions = 200000;
};

const SSourceLimits& DefaultSourceLimits();

// Returns true when the text may be handed to the front end; otherwise one error is appended.
bool CheckSourceText(const std::string& source, const SSourceLimits& limits, CDiagnosticList& aDiagnostics);

// Number of lines as an editor counts them (a final line without a line break counts).
int CountLines(const std::string& source);

} // namespace ZamCompiler
