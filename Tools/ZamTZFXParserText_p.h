#ifndef ZAMTZFXPARSERTEXT_H
#define ZAMTZFXPARSERTEXT_H

#include "ZamTArray.h"
#include "ZamTHash.h"
#include "ZamTString.h"

#include <cstdint>

// Text handling shared by the effect-file block readers: the table of preprocessed lines,
// tokens and the small value readers. Internal to the parser.

// A slice of a line's text; not NUL-terminated.
struct SZamTZFXToken
{
    const char* pText = nullptr;
    uint32_t uiLength = 0;

    bool IsEmpty() const { return uiLength == 0; }
    CZamTHash Hash() const { return CZamTHash(pText, 1, uiLength); }
    CZamTString ToString() const { return CZamTString(pText, uiLength); }
    bool Equals(const char* pString) const;
};

// The file split into lines, comments cut and whitespace collapsed. Bounded: at most
// MaxLines lines of at most MaxLineLength characters each, whatever the input.
class CZamTZFXLineTable
{
public:
    static constexpr uint32_t MaxLines = 5000;
    static constexpr uint32_t MaxLineLength = 511;

    // Replaces the table with the lines of the NUL-terminated pText. Fails (1) with the
    // too-many-lines message, or when memory runs out.
    int Build(const char* pText, CZamTString& Error);
    void Clear();

    uint32_t GetCount() const { return m_Lines.GetSize(); }
    // NUL-terminated; valid until the next Build or Clear.
    const char* GetText(uint32_t uiLine) const { return m_Buffer.GetString() + m_Lines[uiLine].uiOffset; }
    uint32_t GetLength(uint32_t uiLine) const { return m_Lines[uiLine].uiLength; }
    int GetNumber(uint32_t uiLine) const { return static_cast<int>(m_Lines[uiLine].uiNumber); }
    bool IsEmpty(uint32_t uiLine) const { return m_Lines[uiLine].uiLength == 0; }
    bool Equals(uint32_t uiLine, const char* pString) const;
    SZamTZFXToken GetToken(uint32_t uiLine) const { return {GetText(uiLine), GetLength(uiLine)}; }

private:
    struct SLine
    {
        uint32_t uiOffset = 0;
        uint32_t uiLength = 0;
        uint32_t uiNumber = 0;
    };

    int AddLine(const char* pStart, uint32_t uiLength, uint32_t uiNumber, CZamTString& Error);

    // Every line's text followed by a NUL, back to back.
    CZamTString m_Buffer;
    CZamTArray<SLine> m_Lines;
};

// Splits one line into tokens at any of the delimiter characters.
class CZamTZFXTokenizer
{
public:
    static constexpr const char* Spaces = " ";
    static constexpr const char* Whitespace = "\r\n \t";

    CZamTZFXTokenizer(const SZamTZFXToken& Line, const char* pDelimiters)
        : m_pCursor(Line.pText)
        , m_pEnd(Line.pText + Line.uiLength)
        , m_pDelimiters(pDelimiters)
    {
    }

    // False when no token is left.
    bool Next(SZamTZFXToken& Token);
    // An argument that may be double-quoted to hold delimiters: "a b" gives a b. Returns 1
    // for an opening quote without a closing one; an absent argument gives an empty token.
    int NextArgument(SZamTZFXToken& Argument);
    // Everything after the cursor, with the delimiter run in front of it skipped.
    SZamTZFXToken Rest();
    bool AtEnd() const { return m_pCursor == m_pEnd; }

private:
    bool IsDelimiter(char c) const;
    void SkipDelimiters();

    const char* m_pCursor;
    const char* m_pEnd;
    const char* m_pDelimiters;
};

// Items looked up by the hash of their name; several items may share a hash.
class CZamTZFXNameIndex
{
public:
    int Add(const CZamTHash& Hash, uint32_t uiItem);
    // Call once after the last Add and before any lookup.
    void Sort();
    // The items under Hash are those from First(Hash) while GetHash(position) == Hash.
    uint32_t First(const CZamTHash& Hash) const;
    uint32_t GetSize() const { return m_Entries.GetSize(); }
    uint32_t GetHash(uint32_t uiPosition) const { return m_Entries[uiPosition].uiHash; }
    uint32_t GetItem(uint32_t uiPosition) const { return m_Entries[uiPosition].uiItem; }
    bool Contains(const CZamTHash& Hash) const;

private:
    struct SEntry
    {
        uint32_t uiHash = 0;
        uint32_t uiItem = 0;
    };
    CZamTArray<SEntry> m_Entries;
};

// Position of Hash in the keyword hashes, or uiCount when it is none of them.
[[nodiscard]] uint32_t ZamTZFXFindKeyword(const CZamTHash& Hash, const CZamTHash* pKeywords, uint32_t uiCount);

// Reads an unsigned decimal number that fills the whole token and fits in 32 bits.
[[nodiscard]] bool ZamTZFXReadUnsigned(const SZamTZFXToken& Token, uint32_t& uiValue);
// The decimal digits at the start of the token, 0 when there are none; saturates at the
// largest unsigned 32-bit value.
[[nodiscard]] uint32_t ZamTZFXLeadingUnsigned(const char* pText, uint32_t uiLength);

#endif // ZAMTZFXPARSERTEXT_H
