#include "ZamTZFXParserBlocks_p.h"

#include <charconv>
#include <system_error>

namespace
{
enum ETokenKind
{
    eEnd,
    eOpen,
    eClose,
    eComma,
    eWord
};

// Splits "(1.0, -2, true)" into brackets, commas and words.
class CDefaultTokens
{
public:
    explicit CDefaultTokens(const SZamTZFXToken& Text)
        : m_pCursor(Text.pText)
        , m_pEnd(Text.pText + Text.uiLength)
    {
    }

    ETokenKind Next(CZamTString& Token)
    {
        while (m_pCursor < m_pEnd && *m_pCursor == ' ')
            ++m_pCursor;
        if (m_pCursor == m_pEnd)
        {
            Token = "end of line";
            return eEnd;
        }
        const char* pStart = m_pCursor;
        if (*m_pCursor == '(' || *m_pCursor == ')' || *m_pCursor == ',')
        {
            ++m_pCursor;
            Token.Assign(pStart, 1);
            return *pStart == '(' ? eOpen : (*pStart == ')' ? eClose : eComma);
        }
        while (m_pCursor < m_pEnd && *m_pCursor != ' ' && *m_pCursor != '(' && *m_pCursor != ')' && *m_pCursor != ',')
            ++m_pCursor;
        Token.Assign(pStart, static_cast<uint32_t>(m_pCursor - pStart));
        return eWord;
    }

private:
    const char* m_pCursor;
    const char* m_pEnd;
};

// "true", "false" or a decimal number, independent of the C locale.
bool ReadValue(const CZamTString& Word, float& fValue)
{
    if (Word == "true" || Word == "false")
    {
        fValue = Word == "true" ? 1.0f : 0.0f;
        return true;
    }
    const char* pBegin = Word.GetString();
    const char* pEnd = pBegin + Word.GetLength();
    if (pBegin < pEnd && *pBegin == '+')
        ++pBegin;
    const char* pFirst = (pBegin < pEnd && *pBegin == '-') ? pBegin + 1 : pBegin;
    // Keeps out "inf" and "nan", which from_chars would take.
    if (pFirst == pEnd || !((*pFirst >= '0' && *pFirst <= '9') || *pFirst == '.'))
        return false;
    const std::from_chars_result Result = std::from_chars(pBegin, pEnd, fValue);
    return Result.ec == std::errc() && Result.ptr == pEnd;
}
} // namespace

int ZamTZFXReadDefaultValues(const SZamTZFXToken& Text, int iLine, SZamTZFXParserSemantic& Uniform,
                             const CZamTString& FullSemantic, CZamTString& Error)
{
    const char* pVariable = Uniform.Variable.GetString();
    CDefaultTokens Tokens(Text);
    CZamTString Token;
    if (Tokens.Next(Token) != eOpen)
    {
        Error.format("Missing '(' after '%s' on line %d.\n", FullSemantic.GetString(), iLine);
        return 1;
    }
    ETokenKind eKind = Tokens.Next(Token);
    if (eKind == eClose)
    {
        Error.format("'%s' missing arguments on line %d.\n", pVariable, iLine);
        return 1;
    }
    for (;;)
    {
        if (eKind == eEnd)
        {
            Error.format("'%s' found when expecting ')' for '%s' on line %d.\n", Token.GetString(), pVariable, iLine);
            return 1;
        }
        if (eKind != eWord || Uniform.uiDefaultCount == SZamTZFXParserSemantic::MaxDefaultValues)
        {
            Error.format("'%s' unexpected for '%s' on line %d.\n", Token.GetString(), pVariable, iLine);
            return 1;
        }
        if (!ReadValue(Token, Uniform.afDefault[Uniform.uiDefaultCount]))
        {
            Error.format("'%s' unknown on line %d.\n", Token.GetString(), iLine);
            return 1;
        }
        ++Uniform.uiDefaultCount;
        eKind = Tokens.Next(Token);
        if (eKind == eClose)
            break;
        if (eKind != eComma)
        {
            Error.format("'%s' found when expecting ')' for '%s' on line %d.\n", Token.GetString(), pVariable, iLine);
            return 1;
        }
        eKind = Tokens.Next(Token);
    }
    if (Tokens.Next(Token) != eEnd)
    {
        Error.format("'%s' unexpected after ')' on line %d.\n", Token.GetString(), iLine);
        return 1;
    }
    return 0;
}
