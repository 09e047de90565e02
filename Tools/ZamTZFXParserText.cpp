#include "ZamTZFXParserText_p.h"

#include <algorithm>
#include <cstring>

namespace
{
// Lines are read in slices of this many bytes; the byte after the kept part of a long
// line is dropped, as files written for the format expect.
constexpr uint32_t kLineSlice = CZamTZFXLineTable::MaxLineLength + 1;

// Cuts at "//", turns tabs and line feeds into spaces, drops leading and trailing spaces
// and collapses runs. pOut must hold uiLength bytes; returns the new length.
uint32_t Normalise(const char* pIn, uint32_t uiLength, char* pOut)
{
    uint32_t uiOut = 0;
    bool bPendingSpace = false;
    for (uint32_t ui = 0; ui < uiLength; ++ui)
    {
        char c = pIn[ui];
        if (c == '/' && ui + 1 < uiLength && pIn[ui + 1] == '/')
            break;
        if (c == '\t' || c == '\n')
            c = ' ';
        if (c == ' ')
        {
            bPendingSpace = uiOut > 0;
            continue;
        }
        if (bPendingSpace)
            pOut[uiOut++] = ' ';
        bPendingSpace = false;
        pOut[uiOut++] = c;
    }
    return uiOut;
}
} // namespace

bool SZamTZFXToken::Equals(const char* pString) const
{
    const size_t uiOther = std::strlen(pString);
    return uiOther == uiLength && std::memcmp(pText, pString, uiLength) == 0;
}

void CZamTZFXLineTable::Clear()
{
    m_Buffer.Clear();
    m_Lines.Clear();
}

bool CZamTZFXLineTable::Equals(uint32_t uiLine, const char* pString) const
{
    return GetToken(uiLine).Equals(pString);
}

int CZamTZFXLineTable::Build(const char* pText, CZamTString& Error)
{
    Clear();
    if (m_Lines.SetCapacity(MaxLines))
    {
        Error = "Out of memory\n";
        return 1;
    }
    uint32_t uiNumber = 0;
    const char* pCursor = pText;
    // The physical line being read: its line feed (or terminator) and where its trailing
    // carriage returns start. Kept while a long line is read in slices, so a huge line
    // is scanned once, not once per slice.
    const char* pEnd = nullptr;
    const char* pContentEnd = nullptr;
    bool bInsideLongLine = false;
    for (;;)
    {
        ++uiNumber;
        while (*pCursor == '\r')
            ++pCursor;
        if (!bInsideLongLine)
        {
            pEnd = pCursor + std::strcspn(pCursor, "\n");
            pContentEnd = pEnd;
            while (pContentEnd > pCursor && pContentEnd[-1] == '\r')
                --pContentEnd;
        }
        const char* pLineEnd = pContentEnd > pCursor ? pContentEnd : pCursor;
        const size_t uiLength = static_cast<size_t>(pLineEnd - pCursor);
        if (uiLength + 1 > kLineSlice)
        {
            if (AddLine(pCursor, MaxLineLength, uiNumber, Error))
                return 1;
            pCursor += kLineSlice + static_cast<size_t>(pEnd - pLineEnd);
            bInsideLongLine = true;
            continue;
        }
        if (AddLine(pCursor, static_cast<uint32_t>(uiLength), uiNumber, Error))
            return 1;
        if (*pEnd == 0)
            return 0;
        pCursor = pEnd + 1;
        bInsideLongLine = false;
    }
}

int CZamTZFXLineTable::AddLine(const char* pStart, uint32_t uiLength, uint32_t uiNumber, CZamTString& Error)
{
    if (m_Lines.GetSize() >= MaxLines)
    {
        Error.format("Too many lines of text in file (maximum is %d)\n", static_cast<int>(MaxLines));
        return 1;
    }
    char acLine[kLineSlice];
    const uint32_t uiNormalised = Normalise(pStart, uiLength, acLine);
    acLine[uiNormalised] = 0;
    SLine Line;
    Line.uiOffset = m_Buffer.GetLength();
    Line.uiLength = uiNormalised;
    Line.uiNumber = uiNumber;
    if (m_Buffer.Append(acLine, uiNormalised + 1) || m_Lines.Append(Line))
    {
        Error = "Out of memory\n";
        return 1;
    }
    return 0;
}

bool CZamTZFXTokenizer::IsDelimiter(char c) const
{
    for (const char* p = m_pDelimiters; *p; ++p)
    {
        if (*p == c)
            return true;
    }
    return false;
}

void CZamTZFXTokenizer::SkipDelimiters()
{
    while (m_pCursor < m_pEnd && IsDelimiter(*m_pCursor))
        ++m_pCursor;
}

bool CZamTZFXTokenizer::Next(SZamTZFXToken& Token)
{
    SkipDelimiters();
    if (m_pCursor == m_pEnd)
        return false;
    const char* pStart = m_pCursor;
    while (m_pCursor < m_pEnd && !IsDelimiter(*m_pCursor))
        ++m_pCursor;
    Token = {pStart, static_cast<uint32_t>(m_pCursor - pStart)};
    return true;
}

int CZamTZFXTokenizer::NextArgument(SZamTZFXToken& Argument)
{
    Argument = {};
    SkipDelimiters();
    if (m_pCursor == m_pEnd)
        return 0;
    if (*m_pCursor != '"')
    {
        Next(Argument);
        return 0;
    }
    const char* pStart = m_pCursor + 1;
    const void* pClose = std::memchr(pStart, '"', static_cast<size_t>(m_pEnd - pStart));
    if (!pClose)
        return 1;
    Argument = {pStart, static_cast<uint32_t>(static_cast<const char*>(pClose) - pStart)};
    m_pCursor = static_cast<const char*>(pClose) + 1;
    return 0;
}

SZamTZFXToken CZamTZFXTokenizer::Rest()
{
    SkipDelimiters();
    return {m_pCursor, static_cast<uint32_t>(m_pEnd - m_pCursor)};
}

uint32_t ZamTZFXFindKeyword(const CZamTHash& Hash, const CZamTHash* pKeywords, uint32_t uiCount)
{
    uint32_t ui = 0;
    while (ui < uiCount && pKeywords[ui] != Hash)
        ++ui;
    return ui;
}

bool ZamTZFXReadUnsigned(const SZamTZFXToken& Token, uint32_t& uiValue)
{
    if (Token.IsEmpty())
        return false;
    uint64_t uiResult = 0;
    for (uint32_t ui = 0; ui < Token.uiLength; ++ui)
    {
        const char c = Token.pText[ui];
        if (c < '0' || c > '9')
            return false;
        uiResult = uiResult * 10 + static_cast<uint64_t>(c - '0');
        if (uiResult > UINT32_MAX)
            return false;
    }
    uiValue = static_cast<uint32_t>(uiResult);
    return true;
}

uint32_t ZamTZFXLeadingUnsigned(const char* pText, uint32_t uiLength)
{
    uint64_t uiResult = 0;
    for (uint32_t ui = 0; ui < uiLength && pText[ui] >= '0' && pText[ui] <= '9'; ++ui)
    {
        uiResult = uiResult * 10 + static_cast<uint64_t>(pText[ui] - '0');
        if (uiResult > UINT32_MAX)
            return UINT32_MAX;
    }
    return static_cast<uint32_t>(uiResult);
}

int CZamTZFXNameIndex::Add(const CZamTHash& Hash, uint32_t uiItem)
{
    SEntry Entry;
    Entry.uiHash = Hash.GetValue();
    Entry.uiItem = uiItem;
    return m_Entries.Append(Entry);
}

void CZamTZFXNameIndex::Sort()
{
    // Stable, so items under one hash keep the order they were added in.
    std::stable_sort(m_Entries.GetData(), m_Entries.GetData() + m_Entries.GetSize(),
                     [](const SEntry& Left, const SEntry& Right) { return Left.uiHash < Right.uiHash; });
}

uint32_t CZamTZFXNameIndex::First(const CZamTHash& Hash) const
{
    const SEntry* pBegin = m_Entries.GetData();
    const SEntry* pFound = std::lower_bound(pBegin, pBegin + m_Entries.GetSize(), Hash.GetValue(),
                                            [](const SEntry& Entry, uint32_t uiHash) { return Entry.uiHash < uiHash; });
    return static_cast<uint32_t>(pFound - pBegin);
}

bool CZamTZFXNameIndex::Contains(const CZamTHash& Hash) const
{
    const uint32_t uiPosition = First(Hash);
    return uiPosition < GetSize() && GetHash(uiPosition) == Hash.GetValue();
}
