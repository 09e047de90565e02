#include "ZamTZFXParserBlocks_p.h"

int ZamTZFXReadHeader(const SZamTZFXBlock& Block, SZamTZFXDocument& Document, CZamTString& Error)
{
    static const CZamTHash s_aKeywords[] = {CZamTHash("VERSION"), CZamTHash("DESCRIPTION"), CZamTHash("COPYRIGHT")};
    CZamTString* const apValues[] = {&Document.Version, &Document.Description, &Document.Copyright};
    constexpr uint32_t uiKeywords = sizeof(s_aKeywords) / sizeof(s_aKeywords[0]);

    const CZamTZFXLineTable& Lines = *Block.pLines;
    for (uint32_t uiLine = Block.uiBegin; uiLine < Block.uiEnd; ++uiLine)
    {
        if (Lines.IsEmpty(uiLine))
            continue;
        const SZamTZFXToken Line = Lines.GetToken(uiLine);
        CZamTZFXTokenizer Tokens(Line, CZamTZFXTokenizer::Spaces);
        SZamTZFXToken Keyword;
        if (!Tokens.Next(Keyword))
        {
            Error.format("Missing arguments in [HEADER] on line %d : %s\n", Lines.GetNumber(uiLine), Line.pText);
            return 1;
        }
        const uint32_t uiKeyword = ZamTZFXFindKeyword(Keyword.Hash(), s_aKeywords, uiKeywords);
        if (uiKeyword == uiKeywords)
        {
            Error.format("Unknown keyword '%s' in [HEADER] on line %d\n", Keyword.ToString().GetString(),
                         Lines.GetNumber(uiLine));
            return 1;
        }
        // The value is the rest of the line after one space, inner spaces kept.
        const char* pValue = Keyword.pText + Keyword.uiLength;
        const char* pEnd = Line.pText + Line.uiLength;
        if (pValue < pEnd)
            ++pValue;
        apValues[uiKeyword]->Assign(pValue, static_cast<uint32_t>(pEnd - pValue));
    }
    return 0;
}
