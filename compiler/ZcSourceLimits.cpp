#include "ZcSourceLimits.h"

#include <cstring>

namespace ZamCompiler
{

namespace
{

bool IsBlank(const std::string& source)
{
    for (char c : source)
    {
        if (c != ' ' && c != '\t' && c != '\n' && c != '\r' && c != '\v' && c != '\f')
            return false;
    }
    return true;
}

// What each byte means to the checks: most bytes mean nothing and cost one table look-up.
enum EByteClass : unsigned char
{
    Byte_Plain,
    Byte_Newline,
    Byte_Control, // below 0x20 and not a tab, line break, vertical tab, form feed or carriage return
    Byte_Slash,
    Byte_Star,
    Byte_Open,
    Byte_Close,
};

struct SByteClasses
{
    unsigned char aClass[256];

    SByteClasses()
    {
        for (int c = 0; c < 256; ++c)
            aClass[c] = c < 0x20 ? Byte_Control : Byte_Plain;
        for (unsigned char c : {'\t', '\r', '\v', '\f'})
            aClass[c] = Byte_Plain;
        aClass[static_cast<unsigned char>('\n')] = Byte_Newline;
        aClass[static_cast<unsigned char>('/')] = Byte_Slash;
        aClass[static_cast<unsigned char>('*')] = Byte_Star;
        for (unsigned char c : {'(', '[', '{'})
            aClass[c] = Byte_Open;
        for (unsigned char c : {')', ']', '}'})
            aClass[c] = Byte_Close;
    }
};

enum ECommentState
{
    State_Code,
    State_LineComment,
    State_BlockComment,
};

// One pass over the text: the first over-long line or control byte ends it; the line where
// brackets outside comments first nest too deeply is kept and reported only if neither comes.
struct STextScan
{
    const SSourceLimits& limits;
    CDiagnosticList& aDiagnostics;
    ECommentState eState = State_Code;
    int iLine = 1;
    int iDepth = 0;
    int iNestingLine = 0;
    std::size_t uiLineStart = 0;

    bool EndLine(std::size_t uiEnd)
    {
        if (uiEnd - uiLineStart > limits.uiMaxLineBytes)
        {
            AddError(aDiagnostics, iLine,
                     "line is too long: " + std::to_string(uiEnd - uiLineStart) + " bytes, the limit is " +
                         std::to_string(limits.uiMaxLineBytes) + " bytes");
            return false;
        }
        ++iLine;
        uiLineStart = uiEnd + 1;
        if (eState == State_LineComment)
            eState = State_Code;
        return true;
    }

    // The byte after a '/' or '*' that may open or close a comment: true when it was taken too.
    bool Pair(char c, char next)
    {
        if (eState == State_Code && c == '/' && (next == '/' || next == '*'))
        {
            eState = next == '/' ? State_LineComment : State_BlockComment;
            return true;
        }
        if (eState == State_BlockComment && c == '*' && next == '/')
        {
            eState = State_Code;
            return true;
        }
        return false;
    }

    void Open()
    {
        if (eState == State_Code && ++iDepth > limits.iMaxNesting && iNestingLine == 0)
            iNestingLine = iLine;
    }

    void Close()
    {
        if (eState == State_Code && iDepth > 0)
            --iDepth;
    }

    bool Run(const std::string& source)
    {
        static const SByteClasses s_classes;
        const char* pText = source.data();
        const unsigned char* const pBytes = reinterpret_cast<const unsigned char*>(pText);
        const unsigned char* const aClass = s_classes.aClass;
        const std::size_t uiSize = source.size();
        for (std::size_t i = 0; i < uiSize; ++i)
        {
            // Runs of plain bytes, nearly all of a shader, cost one look-up a byte: the text's
            // terminating zero is a control byte, which ends the run at the end.
            const unsigned char* pByte = pBytes + i;
            while (aClass[*pByte] == Byte_Plain)
                ++pByte;
            i = static_cast<std::size_t>(pByte - pBytes);
            if (i == uiSize)
                break;
            const char c = pText[i];
            switch (s_classes.aClass[static_cast<unsigned char>(c)])
            {
            case Byte_Plain: break;
            case Byte_Newline:
                if (!EndLine(i))
                    return false;
                break;
            case Byte_Control:
                AddError(aDiagnostics, iLine, "source contains binary data (control byte " +
                                                  std::to_string(static_cast<unsigned char>(c)) + ")");
                return false;
            case Byte_Slash:
            case Byte_Star:
                if (i + 1 < uiSize && Pair(c, pText[i + 1]))
                    ++i;
                break;
            case Byte_Open: Open(); break;
            case Byte_Close: Close(); break;
            }
        }
        return EndLine(uiSize);
    }
};

} // namespace

const SSourceLimits& DefaultSourceLimits()
{
    static const SSourceLimits s_limits;
    return s_limits;
}

int CountLines(const std::string& source)
{
    int iLines = 1;
    const char* pCursor = source.data();
    const char* const pEnd = pCursor + source.size();
    while (const void* pFound = std::memchr(pCursor, '\n', static_cast<std::size_t>(pEnd - pCursor)))
    {
        ++iLines;
        pCursor = static_cast<const char*>(pFound) + 1;
    }
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
    STextScan scan{limits, aDiagnostics};
    if (!scan.Run(source))
        return false;
    if (scan.iNestingLine > 0)
    {
        AddError(aDiagnostics, scan.iNestingLine,
                 "brackets nest too deeply: the limit is " + std::to_string(limits.iMaxNesting) + " levels");
        return false;
    }
    return true;
}

} // namespace ZamCompiler
