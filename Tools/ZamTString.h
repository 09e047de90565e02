#ifndef ZAMTSTRING_H
#define ZAMTSTRING_H

#include <cstdint>

#if defined(__GNUC__) || defined(__clang__)
#define ZAMT_PRINTF_FORMAT(iFormatArg, iFirstArg) __attribute__((format(printf, iFormatArg, iFirstArg)))
#else
#define ZAMT_PRINTF_FORMAT(iFormatArg, iFirstArg)
#endif

// An 8-bit byte string; no encoding is assumed. The buffer is always NUL-terminated and
// GetString() never returns null. Operations that can fail (only by running out of memory or
// exceeding MaxLength) return 1 and leave the string as it was; nothing throws. Constructors
// and operators cannot report failure: they leave an empty string instead.
class CZamTString
{
public:
    // Keeps every index representable in Find's int32_t result.
    static constexpr uint32_t MaxLength = 0x7FFFFFFFu;

    CZamTString();
    CZamTString(const char* pString);
    // Copies uiLength bytes, NULs included.
    CZamTString(const char* pString, uint32_t uiLength);
    CZamTString(const CZamTString& Other);
    CZamTString(CZamTString&& Other) noexcept;
    virtual ~CZamTString();

    CZamTString& operator=(const CZamTString& Other);
    CZamTString& operator=(CZamTString&& Other) noexcept;
    CZamTString& operator=(const char* pString);

    // Both accept pointers into this string's own buffer.
    int Assign(const char* pString, uint32_t uiLength);
    int Append(const char* pString);
    int Append(const char* pString, uint32_t uiLength);
    CZamTString& operator+=(const char* pString);
    CZamTString& operator+=(const CZamTString& Other);

    // uiLength is clipped to the end; a start past the end gives an empty string.
    CZamTString SubString(uint32_t uiStart, uint32_t uiLength) const;
    // Replaces every non-overlapping occurrence, scanning left to right. An empty or null
    // pFrom changes nothing; a null pTo counts as "".
    int Replace(const char* pFrom, const char* pTo);
    // Index of the first occurrence at or after uiFrom, or -1.
    int32_t Find(const char* pString, uint32_t uiFrom = 0) const;

    // Measures with vsnprintf, allocates exactly the result plus the terminator, formats.
    int format(const char* pFormat, ...) ZAMT_PRINTF_FORMAT(2, 3);

    void Clear();
    uint32_t GetLength() const { return m_uiLength; }
    const char* GetString() const { return m_pString; }
    bool IsEmpty() const { return m_uiLength == 0; }

    // A null pointer compares like "".
    bool operator==(const char* pString) const;
    bool operator!=(const char* pString) const { return !(*this == pString); }
    bool operator==(const CZamTString& Other) const;
    bool operator!=(const CZamTString& Other) const { return !(*this == Other); }
    // Byte-wise (unsigned) order, a prefix before its extensions.
    bool operator<(const CZamTString& Other) const;

private:
    void Adopt(char* pBuffer, uint32_t uiLength, uint32_t uiCapacity);
    void Release();

    char* m_pString;
    uint32_t m_uiLength;
    uint32_t m_uiCapacity;
};

inline bool operator==(const char* pString, const CZamTString& String)
{
    return String == pString;
}
inline bool operator!=(const char* pString, const CZamTString& String)
{
    return String != pString;
}

#endif // ZAMTSTRING_H
