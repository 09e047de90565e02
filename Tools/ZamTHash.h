#ifndef ZAMTHASH_H
#define ZAMTHASH_H

#include <cstddef>
#include <cstdint>

class CZamTString;

// 32-bit FNV-1 hash (multiply, then exclusive-or). The order matters: hashes made here are
// compared with hashes made elsewhere, so this must never become the FNV-1a variant.
// Only the value is kept; colliding inputs compare equal.
class CZamTHash
{
public:
    CZamTHash() = default;
    // Hashes uiElementSize * uiCount bytes; a count of 0 gives 0, not the offset basis.
    CZamTHash(const void* pData, size_t uiElementSize, size_t uiCount);
    // The characters without the terminator; "" and nullptr give 0.
    CZamTHash(const char* pString);
    CZamTHash(const CZamTString& String);

    uint32_t GetValue() const { return m_uiValue; }

    bool operator==(const CZamTHash& Other) const { return m_uiValue == Other.m_uiValue; }
    bool operator!=(const CZamTHash& Other) const { return m_uiValue != Other.m_uiValue; }
    bool operator<(const CZamTHash& Other) const { return m_uiValue < Other.m_uiValue; }

private:
    uint32_t m_uiValue = 0;
};

#endif // ZAMTHASH_H
