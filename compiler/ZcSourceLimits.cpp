#include "ZcSourceLimits.h"

namespace ZamCompiler
{

namespace
{

bool IsForbiddenControl(unsigned char c)
{
    return c < 0x20 && c != '\t' && c != '\n' && c != '\r' && c != '\v' && c != '\f';
}

bool IsBlank(const std::string& source)
{
    for (char c : source)
    {
        if (c != ' ' && c != '\t' && c != '\n' && c != '\r' && c != '\v' && c != '\f')
            return false;
    }
    return true;
}

// Bracket depth outside comments; returns the line where the limit is passed, 0 if never.
int FindExcessiveNesting(const std::string& source, int iMaxNesting)
{
    enum EState { Code, LineComment, BlockComment } eState = Code;
    int iDepth = 0;
    int iLine = 1;
    for (std::size_t i = 0; i < source.size(); ++i)
    {
        const char c = source[i];
        const char next = i + 1 < source.size() ? source[i + 1] : '\0';
        if (c == '\n')
        {
            ++iLine;
            if (eState == LineComment)
                eState = Code;
            continue;
        }
        if (eState == LineComment)
            continue;
        if (eState == BlockComment)
        {
            if (c == '*' && next == '/')
            {
                eState = Code;
                ++i;
            }
            continue;
        }
        if (c == '/' && next == '/')
        {
            eState = LineComment;
            ++i;
        }
        else if (c == '/' && next == '*')
        {
            eState = BlockComment;
            ++i;
        }
        else if (c == '(' || c == '[' || c == '{')
        {
            if (++iDepth > iMaxNesting)
                return iLine;
        }
        else if ((c == ')' || c == ']' || c == '}') && iDepth > 0)
        {
            --iDepth;
        }
    }
    return 0;
}

} // namespace

const SSourceLimits& DefaultSourceLimits()
{
    static const SSourceLimits s_limits;
    return s_limits;
}

int CountLines(const std::string& source)
{
    int iLines = 1;
    for (char c : source)
        iLines += c == '\n';
    if (!source.empty() && source.back() == '\n')
        --iLines;
    return iLines;
}

bool CheckSourceText(const std::string& source, const SSourceLimits& limits, CDiagnosticList& aDiagnostics)
{
    if (source.size() > limits.uiMaxBytes)
    {
        AddError(aDiagnostics, 1,
                 "source is too large: " + std::to_string(source.size()) + " bytes, the limit is " +
                     std::to_string(limits.uiMaxBytes) + " bytes");
        return false;
    }
    if (IsBlank(source))
    {
        AddError(aDiagnostics, 1, "source is empty");
        return false;
    }

    int iLine = 1;
    std::size_t uiLineStart = 0;
    for (std::size_t i = 0; i <= source.size(); ++i)
    {
        const bool bEnd = i == source.size();
        if (bEnd || source[i] == '\n')
        {
            if (i - uiLineStart > limits.uiMaxLineBytes)
            {
                AddError(aDiagnostics, iLine,
                         "line is too long: " + std::to_string(i - uiLineStart) + " bytes, the limit is " +
                             std::to_string(limits.uiMaxLineBytes) + " bytes");
                return false;
            }
            ++iLine;
            uiLineStart = i + 1;
            continue;
        }
        if (IsForbiddenControl(static_cast<unsigned char>(source[i])))
        {
            AddError(aDiagnostics, iLine, "source contains binary data (control byte " +
                                              std::to_string(static_cast<unsigned char>(source[i])) + ")");
            return false;
        }
    }

    const int iNestingLine = FindExcessiveNesting(source, limits.iMaxNesting);
    if (iNestingLine > 0)
    {
        AddError(aDiagnostics, iNestingLine,
                 "brackets nest too deeply: the limit is " + std::to_string(limits.iMaxNesting) + " levels");
        return false;
    }
    return true;
}

} // namespace ZamCompiler
