#pragma once

// Diagnostics are data: every pass appends to a list, the driver prints them.

#include <string>
#include <vector>

namespace ZamCompiler
{

enum ESeverity
{
    Severity_Error,
    Severity_Warning,
};

struct SDiagnostic
{
    ESeverity eSeverity = Severity_Error;
    int iLine = -1;   // source line, -1 when the message is not about a line
    int iColumn = 0;  // 0 when unknown
    std::string text;
    std::string file; // the included header the line is in; empty for the compiled file
};

using CDiagnosticList = std::vector<SDiagnostic>;

bool HasErrors(const CDiagnosticList& aDiagnostics);
void AddError(CDiagnosticList& aDiagnostics, int iLine, const std::string& text);

// "ERROR: 0:12: text", "WARNING: 0:3: text", "ERROR: <header path>:7: text" for a line of an
// included header, or "ERROR: text" without a line.
std::string FormatDiagnostic(const SDiagnostic& diagnostic);

} // namespace ZamCompiler
