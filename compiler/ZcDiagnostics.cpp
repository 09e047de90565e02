#include "ZcDiagnostics.h"

namespace ZamCompiler
{

bool HasErrors(const CDiagnosticList& aDiagnostics)
{
    for (const SDiagnostic& diagnostic : aDiagnostics)
    {
        if (diagnostic.eSeverity == Severity_Error)
            return true;
    }
    return false;
}

void AddError(CDiagnosticList& aDiagnostics, int iLine, const std::string& text)
{
    SDiagnostic diagnostic;
    diagnostic.eSeverity = Severity_Error;
    diagnostic.iLine = iLine;
    diagnostic.text = text;
    aDiagnostics.push_back(diagnostic);
}

std::string FormatDiagnostic(const SDiagnostic& diagnostic)
{
    std::string text = diagnostic.eSeverity == Severity_Error ? "ERROR: " : "WARNING: ";
    if (diagnostic.iLine >= 0)
    {
        text += diagnostic.file.empty() ? std::string("0") : diagnostic.file;
        text += ":" + std::to_string(diagnostic.iLine) + ": ";
    }
    // A message must stay on one line: the editor reads the log line by line.
    for (char c : diagnostic.text)
        text += (c == '\n' || c == '\r') ? ' ' : c;
    return text;
}

} // namespace ZamCompiler
