#include "ZamTString.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <new>
#include <string_view>

namespace
{
// Stands in for a buffer when even one byte could not be allocated (and after a move), so
// GetString() stays valid. It is never written to nor freed.
char g_EmptyBuffer[1] = {0};

char* AllocateBuffer(uint32_t uiCapacity)
{
    char* pBuffer = new (std::nothrow) char[static_cast<size_t>(uiCapacity) + 1];
    if (pBuffer)
        pBuffer[0] = 0;
    return pBuffer;
}

uint32_t CheckedLength(const char* pString)
{
    if (!pString)
        return 0;
    const size_t uiLength = std::strlen(pString);
    return uiLength > CZamTString::MaxLength ? CZamTString::MaxLength + 1 : static_cast<uint32_t>(uiLength);
}
} // namespace

CZamTString::CZamTString()
    : m_pString(g_EmptyBuffer)
    , m_uiLength(0)
    , m_uiCapacity(0)
{
    Assign("", 0);
}

CZamTString::CZamTString(const char* pString)
    : m_pString(g_EmptyBuffer)
    , m_uiLength(0)
    , m_uiCapacity(0)
{
    if (Assign(pString, CheckedLength(pString)))
        Assign("", 0);
}

CZamTString::CZamTString(const char* pString, uint32_t uiLength)
    : m_pString(g_EmptyBuffer)
    , m_uiLength(0)
    , m_uiCapacity(0)
{
    if (Assign(pString, uiLength))
        Assign("", 0);
}

CZamTString::CZamTString(const CZamTString& Other)
    : m_pString(g_EmptyBuffer)
    , m_uiLength(0)
    , m_uiCapacity(0)
{
    if (Assign(Other.m_pString, Other.m_uiLength))
        Assign("", 0);
}

CZamTString::CZamTString(CZamTString&& Other) noexcept
    : m_pString(Other.m_pString)
    , m_uiLength(Other.m_uiLength)
    , m_uiCapacity(Other.m_uiCapacity)
{
    Other.m_pString = g_EmptyBuffer;
    Other.m_uiLength = 0;
    Other.m_uiCapacity = 0;
}

CZamTString::~CZamTString()
{
    Release();
}

CZamTString& CZamTString::operator=(const CZamTString& Other)
{
    Assign(Other.m_pString, Other.m_uiLength);
    return *this;
}

CZamTString& CZamTString::operator=(CZamTString&& Other) noexcept
{
    if (this != &Other)
    {
        Release();
        m_pString = Other.m_pString;
        m_uiLength = Other.m_uiLength;
        m_uiCapacity = Other.m_uiCapacity;
        Other.m_pString = g_EmptyBuffer;
        Other.m_uiLength = 0;
        Other.m_uiCapacity = 0;
    }
    return *this;
}

CZamTString& CZamTString::operator=(const char* pString)
{
    Assign(pString, CheckedLength(pString));
    return *this;
}

int CZamTString::Assign(const char* pString, uint32_t uiLength)
{
    if (!pString)
        uiLength = 0;
    if (uiLength > MaxLength)
        return 1;
    if (uiLength <= m_uiCapacity && m_pString != g_EmptyBuffer)
    {
        // memmove: the source may lie inside this buffer.
        std::memmove(m_pString, pString, uiLength);
        m_pString[uiLength] = 0;
        m_uiLength = uiLength;
        return 0;
    }
    char* pBuffer = AllocateBuffer(uiLength);
    if (!pBuffer)
        return 1;
    std::memcpy(pBuffer, pString, uiLength);
    pBuffer[uiLength] = 0;
    Adopt(pBuffer, uiLength, uiLength);
    return 0;
}

int CZamTString::Append(const char* pString)
{
    return Append(pString, CheckedLength(pString));
}

int CZamTString::Append(const char* pString, uint32_t uiLength)
{
    if (!pString || uiLength == 0)
        return 0;
    if (uiLength > MaxLength - m_uiLength)
        return 1;
    const uint32_t uiNewLength = m_uiLength + uiLength;
    if (uiNewLength <= m_uiCapacity)
    {
        std::memmove(m_pString + m_uiLength, pString, uiLength);
        m_pString[uiNewLength] = 0;
        m_uiLength = uiNewLength;
        return 0;
    }
    // Doubling keeps repeated appends linear overall.
    uint32_t uiNewCapacity = m_uiCapacity > MaxLength / 2 ? MaxLength : m_uiCapacity * 2;
    if (uiNewCapacity < uiNewLength)
        uiNewCapacity = uiNewLength;
    char* pBuffer = AllocateBuffer(uiNewCapacity);
    if (!pBuffer)
        return 1;
    // The old buffer is still alive here, so appending a piece of this string is safe.
    std::memcpy(pBuffer, m_pString, m_uiLength);
    std::memcpy(pBuffer + m_uiLength, pString, uiLength);
    pBuffer[uiNewLength] = 0;
    Adopt(pBuffer, uiNewLength, uiNewCapacity);
    return 0;
}

CZamTString& CZamTString::operator+=(const char* pString)
{
    Append(pString);
    return *this;
}

CZamTString& CZamTString::operator+=(const CZamTString& Other)
{
    Append(Other.m_pString, Other.m_uiLength);
    return *this;
}

CZamTString CZamTString::SubString(uint32_t uiStart, uint32_t uiLength) const
{
    if (uiStart >= m_uiLength)
        return CZamTString();
    const uint32_t uiAvailable = m_uiLength - uiStart;
    return CZamTString(m_pString + uiStart, uiLength < uiAvailable ? uiLength : uiAvailable);
}

int CZamTString::Replace(const char* pFrom, const char* pTo)
{
    if (!pFrom || !*pFrom)
        return 0;
    const std::string_view Text(m_pString, m_uiLength);
    const std::string_view From(pFrom);
    const std::string_view To(pTo ? pTo : "");

    uint64_t uiCount = 0;
    for (size_t uiPos = Text.find(From); uiPos != std::string_view::npos; uiPos = Text.find(From, uiPos + From.size()))
        ++uiCount;
    if (uiCount == 0)
        return 0;

    const uint64_t uiNewLength = m_uiLength - uiCount * From.size() + uiCount * To.size();
    if (To.size() > MaxLength || uiNewLength > MaxLength)
        return 1;
    char* pBuffer = AllocateBuffer(static_cast<uint32_t>(uiNewLength));
    if (!pBuffer)
        return 1;
    // Built into a fresh buffer, so pTo may point into this string.
    char* pOut = pBuffer;
    size_t uiDone = 0;
    for (size_t uiPos = Text.find(From); uiPos != std::string_view::npos; uiPos = Text.find(From, uiDone))
    {
        std::memcpy(pOut, Text.data() + uiDone, uiPos - uiDone);
        pOut += uiPos - uiDone;
        std::memcpy(pOut, To.data(), To.size());
        pOut += To.size();
        uiDone = uiPos + From.size();
    }
    std::memcpy(pOut, Text.data() + uiDone, Text.size() - uiDone);
    pBuffer[uiNewLength] = 0;
    Adopt(pBuffer, static_cast<uint32_t>(uiNewLength), static_cast<uint32_t>(uiNewLength));
    return 0;
}

int32_t CZamTString::Find(const char* pString, uint32_t uiFrom) const
{
    if (!pString || uiFrom > m_uiLength)
        return -1;
    const size_t uiPos = std::string_view(m_pString, m_uiLength).find(pString, uiFrom);
    return uiPos == std::string_view::npos ? -1 : static_cast<int32_t>(uiPos);
}

int CZamTString::format(const char* pFormat, ...)
{
    if (!pFormat)
        return 1;
    va_list Args;
    va_start(Args, pFormat);
    va_list Measure;
    va_copy(Measure, Args);
    const int iLength = std::vsnprintf(nullptr, 0, pFormat, Measure);
    va_end(Measure);
    if (iLength < 0 || static_cast<uint32_t>(iLength) > MaxLength)
    {
        va_end(Args);
        return 1;
    }
    const uint32_t uiLength = static_cast<uint32_t>(iLength);
    char* pBuffer = AllocateBuffer(uiLength);
    if (!pBuffer)
    {
        va_end(Args);
        return 1;
    }
    // Formatted into a fresh buffer, so the arguments may include this string itself.
    std::vsnprintf(pBuffer, static_cast<size_t>(uiLength) + 1, pFormat, Args);
    va_end(Args);
    Adopt(pBuffer, uiLength, uiLength);
    return 0;
}

void CZamTString::Clear()
{
    if (m_pString != g_EmptyBuffer)
        m_pString[0] = 0;
    m_uiLength = 0;
}

bool CZamTString::operator==(const char* pString) const
{
    if (!pString)
        return m_uiLength == 0;
    // Never reads past pString's terminator, and an embedded NUL here cannot match.
    for (uint32_t uiIndex = 0; uiIndex < m_uiLength; ++uiIndex)
    {
        if (pString[uiIndex] != m_pString[uiIndex] || pString[uiIndex] == 0)
            return false;
    }
    return pString[m_uiLength] == 0;
}

bool CZamTString::operator==(const CZamTString& Other) const
{
    return m_uiLength == Other.m_uiLength && std::memcmp(m_pString, Other.m_pString, m_uiLength) == 0;
}

bool CZamTString::operator<(const CZamTString& Other) const
{
    const uint32_t uiCommon = m_uiLength < Other.m_uiLength ? m_uiLength : Other.m_uiLength;
    const int iOrder = std::memcmp(m_pString, Other.m_pString, uiCommon);
    return iOrder < 0 || (iOrder == 0 && m_uiLength < Other.m_uiLength);
}

void CZamTString::Adopt(char* pBuffer, uint32_t uiLength, uint32_t uiCapacity)
{
    Release();
    m_pString = pBuffer;
    m_uiLength = uiLength;
    m_uiCapacity = uiCapacity;
}

void CZamTString::Release()
{
    if (m_pString != g_EmptyBuffer)
        delete[] m_pString;
    m_pString = g_EmptyBuffer;
    m_uiLength = 0;
    m_uiCapacity = 0;
}
