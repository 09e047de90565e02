#include "ZamPlistInput_p.h"

#include <cstring>

namespace
{
// Length of the well-formed UTF-8 sequence at p (bounded by pEnd), 0 when there is none.
int WellFormedLength(const unsigned char* p, const unsigned char* pEnd)
{
    const unsigned char c = p[0];
    if (c == 0)
        return 0;
    if (c < 0x80)
        return 1;
    int iLength = 0;
    unsigned char uiLow = 0x80;
    unsigned char uiHigh = 0xBF;
    if (c >= 0xC2 && c <= 0xDF)
        iLength = 2;
    else if (c >= 0xE0 && c <= 0xEF)
    {
        iLength = 3;
        if (c == 0xE0)
            uiLow = 0xA0; // overlong
        else if (c == 0xED)
            uiHigh = 0x9F; // surrogates
    }
    else if (c >= 0xF0 && c <= 0xF4)
    {
        iLength = 4;
        if (c == 0xF0)
            uiLow = 0x90; // overlong
        else if (c == 0xF4)
            uiHigh = 0x8F; // above U+10FFFF
    }
    else
        return 0;
    if (pEnd - p < iLength)
        return 0;
    if (p[1] < uiLow || p[1] > uiHigh)
        return 0;
    for (int i = 2; i < iLength; ++i)
    {
        if (p[i] < 0x80 || p[i] > 0xBF)
            return 0;
    }
    return iLength;
}

bool StartsWith(const char* p, const char* pEnd, const char* pPrefix)
{
    const size_t uiLength = std::strlen(pPrefix);
    return static_cast<size_t>(pEnd - p) >= uiLength && std::memcmp(p, pPrefix, uiLength) == 0;
}

// Position just after the first occurrence of pTerminator at or after p, or pEnd.
const char* SkipPast(const char* p, const char* pEnd, const char* pTerminator)
{
    const size_t uiLength = std::strlen(pTerminator);
    for (; p < pEnd; ++p)
    {
        if (static_cast<size_t>(pEnd - p) >= uiLength && std::memcmp(p, pTerminator, uiLength) == 0)
            return p + uiLength;
    }
    return pEnd;
}

bool IsSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// The parser takes any byte from 0x7F up as a letter in UTF-8 mode.
bool StartsElementName(char c)
{
    const unsigned char uc = static_cast<unsigned char>(c);
    return (uc >= 'a' && uc <= 'z') || (uc >= 'A' && uc <= 'Z') || uc == '_' || uc >= 0x7F;
}

// Scans a start tag from just after '<'. Sets *pbSelfClosing when it ends in "/>" and
// *piAttributes to the number of '=' outside quoted values (at least the attribute count).
const char* SkipStartTag(const char* p, const char* pEnd, bool* pbSelfClosing, int* piAttributes)
{
    *pbSelfClosing = false;
    *piAttributes = 0;
    char cPrevious = 0;
    while (p < pEnd)
    {
        const char c = *p++;
        if (c == '>')
        {
            *pbSelfClosing = cPrevious == '/';
            return p;
        }
        if (c == '=')
        {
            ++*piAttributes;
            while (p < pEnd && IsSpace(*p))
                ++p;
            if (p < pEnd && (*p == '"' || *p == '\''))
            {
                const char cQuote = *p++;
                while (p < pEnd && *p != cQuote)
                    ++p;
                if (p < pEnd)
                    ++p;
            }
        }
        cPrevious = c;
    }
    return pEnd;
}
} // namespace

bool ReplaceInvalidUtf8(QByteArray* pBytes)
{
    const unsigned char* p = reinterpret_cast<const unsigned char*>(pBytes->constData());
    const unsigned char* pEnd = p + pBytes->size();
    const unsigned char* pScan = p;
    while (pScan < pEnd)
    {
        const int iLength = WellFormedLength(pScan, pEnd);
        if (iLength == 0)
            break;
        pScan += iLength;
    }
    if (pScan == pEnd)
        return false;

    QByteArray Out;
    Out.reserve(pBytes->size() + 16);
    Out.append(reinterpret_cast<const char*>(p), pScan - p);
    while (pScan < pEnd)
    {
        const int iLength = WellFormedLength(pScan, pEnd);
        if (iLength == 0)
        {
            Out.append("\xEF\xBF\xBD");
            ++pScan;
        }
        else
        {
            Out.append(reinterpret_cast<const char*>(pScan), iLength);
            pScan += iLength;
        }
    }
    *pBytes = Out;
    return true;
}

SXmlShape MeasureXmlShape(const QByteArray& Bytes, int iDepthLimit)
{
    const char* p = Bytes.constData();
    const char* pEnd = p + Bytes.size();
    int iDepth = 0;
    SXmlShape Shape;
    while (p < pEnd)
    {
        if (*p == 0)
            break; // the parser stops at the first NUL
        if (*p != '<')
        {
            ++p;
            continue;
        }
        ++Shape.iMarkup;
        if (StartsWith(p, pEnd, "<!--"))
            p = SkipPast(p + 4, pEnd, "-->");
        else if (StartsWith(p, pEnd, "<![CDATA["))
            p = SkipPast(p + 9, pEnd, "]]>");
        else if (StartsWith(p, pEnd, "</"))
        {
            if (iDepth > 0)
                --iDepth;
            p = SkipPast(p + 2, pEnd, ">");
        }
        else if (p + 1 < pEnd && StartsElementName(p[1]))
        {
            bool bSelfClosing = false;
            int iAttributes = 0;
            p = SkipStartTag(p + 1, pEnd, &bSelfClosing, &iAttributes);
            if (iAttributes > Shape.iAttributes)
                Shape.iAttributes = iAttributes;
            if (!bSelfClosing && ++iDepth > Shape.iDepth)
            {
                Shape.iDepth = iDepth;
                if (Shape.iDepth > iDepthLimit)
                    return Shape;
            }
        }
        else
            p = SkipPast(p + 1, pEnd, ">"); // declarations, DOCTYPE, processing instructions
    }
    return Shape;
}
