#pragma once

#include <QByteArray>

#include <cstddef>
#include <string>
#include <vector>

// Read-only view of bytes owned by the caller; the caller keeps them alive.
class CImmutableByteWrapper
{
public:
    CImmutableByteWrapper(const void* pData, size_t uiSize);
    explicit CImmutableByteWrapper(const QByteArray& Bytes);
    explicit CImmutableByteWrapper(const std::string& Bytes);

    const unsigned char* Data() const { return m_pData; }
    size_t Size() const { return m_uiSize; }

private:
    const unsigned char* m_pData;
    size_t m_uiSize;
};

// Owned, growable bytes.
class CVectorByteWrapper
{
public:
    void Reserve(size_t uiSize) { m_Bytes.reserve(uiSize); }
    void Append(unsigned char uiByte) { m_Bytes.push_back(uiByte); }
    void Clear() { m_Bytes.clear(); }

    const unsigned char* Data() const { return m_Bytes.data(); }
    size_t Size() const { return m_Bytes.size(); }
    QByteArray ToByteArray() const;

private:
    std::vector<unsigned char> m_Bytes;
};

// Base64 with the standard alphabet and '=' padding.
[[nodiscard]] std::string EncodeBase64(const CImmutableByteWrapper& Bytes);
// Whitespace between characters is allowed; anything else outside the alphabet, a length
// that is not a multiple of four, or misplaced padding makes it fail. The output never
// exceeds three quarters of the input.
[[nodiscard]] bool DecodeBase64(const CImmutableByteWrapper& Text, CVectorByteWrapper* pBytes);
