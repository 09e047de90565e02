#include "ZamTHash.h"

#include "ZamTString.h"

#include <cstring>

namespace
{
constexpr uint32_t kOffsetBasis = 2166136261u;
constexpr uint32_t kPrime = 16777619u;

uint32_t HashBytes(const unsigned char* pBytes, size_t uiElementSize, size_t uiCount)
{
    if (uiCount == 0)
        return 0;
    uint32_t uiHash = kOffsetBasis;
    // Walk element by element so size * count can never overflow.
    for (size_t uiElement = 0; uiElement < uiCount; ++uiElement)
    {
        for (size_t uiByte = 0; uiByte < uiElementSize; ++uiByte)
        {
            uiHash *= kPrime;
            uiHash ^= *pBytes++;
        }
    }
    return uiHash;
}
} // namespace

CZamTHash::CZamTHash(const void* pData, size_t uiElementSize, size_t uiCount)
    : m_uiValue(
        (pData || uiElementSize == 0) ? HashBytes(static_cast<const unsigned char*>(pData), uiElementSize, uiCount) : 0)
{
}

CZamTHash::CZamTHash(const char* pString)
    : CZamTHash(pString, 1, pString ? std::strlen(pString) : 0)
{
}

CZamTHash::CZamTHash(const CZamTString& String)
    : CZamTHash(String.GetString(), 1, String.GetLength())
{
}
