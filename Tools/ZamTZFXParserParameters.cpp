#include "ZamTZFXParserBlocks_p.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

namespace
{
const char* const kFilterNames[] = {"NEAREST", "LINEAR", "NONE"};
const char* const kWrapNames[] = {"CLAMP", "REPEAT"};
constexpr uint32_t kFilterNameCount = sizeof(kFilterNames) / sizeof(kFilterNames[0]);
constexpr uint32_t kWrapNameCount = sizeof(kWrapNames) / sizeof(kWrapNames[0]);
// Longer list values cannot be names; they are cut here.
constexpr size_t kMaxListValue = 128;

struct SSurfaceType
{
    const char* pName;
    uint32_t uiKind;
    uint32_t uiFormat;
};

const SSurfaceType kSurfaceTypes[] = {
    {"RGBA8888", eZamTZFXSurfaceColor, eZamTZFXSurfaceRGBA8888},
    {"RGBA4444", eZamTZFXSurfaceColor, eZamTZFXSurfaceRGBA4444},
    {"RGB888", eZamTZFXSurfaceColor, eZamTZFXSurfaceRGB888},
    {"RGB565", eZamTZFXSurfaceColor, eZamTZFXSurfaceRGB565},
    {"INTENSITY8", eZamTZFXSurfaceColor, eZamTZFXSurfaceIntensity8},
    {"DEPTH24", eZamTZFXSurfaceDepth, eZamTZFXSurfaceDepth24},
    {"DEPTH16", eZamTZFXSurfaceDepth, eZamTZFXSurfaceDepth16},
    {"DEPTH8", eZamTZFXSurfaceDepth, eZamTZFXSurfaceDepth8},
};

enum EParameter : uint32_t
{
    eMinification,
    eMagnification,
    eMipmap,
    eWrapS,
    eWrapT,
    eWrapR,
    eFilter,
    eWrap,
    eResolution,
    eSurfaceType,
    eParameterCount
};

const CZamTHash* ParameterHashes()
{
    static const CZamTHash s_aHashes[eParameterCount] = {
        CZamTHash("MINIFICATION"), CZamTHash("MAGNIFICATION"), CZamTHash("MIPMAP"), CZamTHash("WRAP_S"),
        CZamTHash("WRAP_T"),       CZamTHash("WRAP_R"),        CZamTHash("FILTER"), CZamTHash("WRAP"),
        CZamTHash("RESOLUTION"),   CZamTHash("SURFACETYPE"),
    };
    return s_aHashes;
}

int ReadNameList(const SZamTZFXToken& Text, const char* const* ppNames, uint32_t uiNames, uint32_t* puiFields,
                 uint32_t uiFields, int iLine, const char* pLine, CZamTString& Error)
{
    const std::string_view Argument(Text.pText, Text.uiLength);
    size_t uiFound = std::string_view::npos;
    for (uint32_t ui = 0; ui < uiNames; ++ui)
        uiFound = std::min(uiFound, Argument.find(ppNames[ui]));
    if (uiFound == std::string_view::npos)
        return 0;

    // The word holding the name, from the space before it to the space after it.
    const size_t uiSpaceBefore = Argument.rfind(' ', uiFound);
    const size_t uiWord = uiSpaceBefore == std::string_view::npos ? 0 : uiSpaceBefore + 1;
    if (uiFound != uiWord && Argument[uiFound - 1] != '-')
    {
        const size_t uiWordEnd = std::min(Argument.find(' ', uiFound), Argument.size());
        const CZamTString Word(Text.pText + uiWord, static_cast<uint32_t>(uiWordEnd - uiWord));
        Error.format("Unknown keyword '%s' in [TEXTURES] on line %d: %s\n", Word.GetString(), iLine, pLine);
        return 1;
    }

    size_t uiPosition = uiWord;
    for (uint32_t uiField = 0; uiField < uiFields; ++uiField)
    {
        const size_t uiStart = uiPosition;
        while (uiPosition < Argument.size() && Argument[uiPosition] != '-' && Argument[uiPosition] != ' ')
            ++uiPosition;
        const std::string_view Value = Argument.substr(uiStart, std::min(uiPosition - uiStart, kMaxListValue));
        for (uint32_t ui = 0; ui < uiNames; ++ui)
        {
            if (Value == ppNames[ui])
                puiFields[uiField] = ui;
        }
        if (uiPosition == Argument.size() || Argument[uiPosition] != '-')
            break;
        ++uiPosition;
    }
    return 0;
}

struct SParameterLine
{
    CZamTZFXTokenizer* pTokens;
    const char* pBlockName;
    int iLine;
    const char* pText;
};

// Fails on a token after the arguments.
int CheckNoMoreTokens(const SParameterLine& Line, CZamTString& Error)
{
    SZamTZFXToken Extra;
    if (!Line.pTokens->Next(Extra))
        return 0;
    Error.format("Unexpected keyword '%s' in [%s] on line %d: %s\n", Extra.ToString().GetString(), Line.pBlockName,
                 Line.iLine, Line.pText);
    return 1;
}

// A "-"-joined list: one value for the single keywords, up to three for FILTER and WRAP.
int ReadList(const SParameterLine& Line, const char* pMissing, bool bFilters, uint32_t* puiFields, uint32_t uiFields,
             CZamTString& Error)
{
    SZamTZFXToken Argument;
    if (!Line.pTokens->Next(Argument))
    {
        Error.format(pMissing, Line.pBlockName, Line.iLine, Line.pText);
        return 1;
    }
    if (CheckNoMoreTokens(Line, Error))
        return 1;
    return bFilters ? ZamTZFXReadFilterList(Argument, puiFields, uiFields, Line.iLine, Line.pText, Error)
                    : ZamTZFXReadWrapList(Argument, puiFields, uiFields, Line.iLine, Line.pText, Error);
}

int ReadResolution(const SParameterLine& Line, SZamTZFXTextureParameters& Parameters, CZamTString& Error)
{
    SZamTZFXToken Width;
    SZamTZFXToken Height;
    if (!Line.pTokens->Next(Width) || !Line.pTokens->Next(Height))
    {
        Error.format("Missing RESOLUTION argument(s) (requires width AND height) in [TARGET] on line %d\n", Line.iLine);
        return 1;
    }
    for (const SZamTZFXToken* pValue : {&Width, &Height})
    {
        uint32_t uiValue = 0;
        if (!ZamTZFXReadUnsigned(*pValue, uiValue))
        {
            Error.format("Invalid RESOLUTION argument \"%s\" in [TEXTURE] on line %d\n", pValue->ToString().GetString(),
                         Line.iLine);
            return 1;
        }
        (pValue == &Width ? Parameters.uiWidth : Parameters.uiHeight) = uiValue;
    }
    return CheckNoMoreTokens(Line, Error);
}

int ReadSurfaceType(const SParameterLine& Line, SZamTZFXTextureParameters& Parameters, CZamTString& Error)
{
    SZamTZFXToken Name;
    if (!Line.pTokens->Next(Name))
    {
        Error.format("Missing SURFACETYPE arguments in [TARGET] on line %d\n", Line.iLine);
        return 1;
    }
    if (CheckNoMoreTokens(Line, Error))
        return 1;
    // Like an unknown filter name, an unknown surface name changes nothing.
    for (const SSurfaceType& Type : kSurfaceTypes)
    {
        if (Name.Equals(Type.pName))
            Parameters.uiSurfaceFlags = Type.uiKind | Type.uiFormat;
    }
    return 0;
}

int ReadParameterLine(const SParameterLine& Line, uint32_t uiParameter, SZamTZFXTextureParameters& Parameters,
                      CZamTString& Error)
{
    static const char kMissing[] = "Missing arguments in [%s] on line %d: %s\n";
    switch (uiParameter)
    {
    case eMinification:
    case eMagnification:
    case eMipmap:
        return ReadList(Line, kMissing, true, &Parameters.auiFilters[uiParameter - eMinification], 1, Error);
    case eWrapS:
    case eWrapT:
    case eWrapR:
        return ReadList(Line, kMissing, false, &Parameters.auiWraps[uiParameter - eWrapS], 1, Error);
    case eFilter:
        return ReadList(Line, "Missing FILTER arguments in [%s] on line %d: %s\n", true, Parameters.auiFilters, 3,
                        Error);
    case eWrap:
        return ReadList(Line, "Missing WRAP arguments in [%s] on line %d: %s\n", false, Parameters.auiWraps, 3, Error);
    case eResolution:
        return ReadResolution(Line, Parameters, Error);
    default:
        return ReadSurfaceType(Line, Parameters, Error);
    }
}
} // namespace

int ZamTZFXReadFilterList(const SZamTZFXToken& Text, uint32_t* puiFields, uint32_t uiFields, int iLine,
                          const char* pLine, CZamTString& Error)
{
    return ReadNameList(Text, kFilterNames, kFilterNameCount, puiFields, uiFields, iLine, pLine, Error);
}

int ZamTZFXReadWrapList(const SZamTZFXToken& Text, uint32_t* puiFields, uint32_t uiFields, int iLine, const char* pLine,
                        CZamTString& Error)
{
    return ReadNameList(Text, kWrapNames, kWrapNameCount, puiFields, uiFields, iLine, pLine, Error);
}

bool ZamTZFXIsTextureParameter(const CZamTHash& Keyword)
{
    return ZamTZFXFindKeyword(Keyword, ParameterHashes(), eParameterCount) != eParameterCount;
}

int ZamTZFXReadTextureParameters(const SZamTZFXBlock& Block, const char* pBlockName,
                                 SZamTZFXTextureParameters& Parameters, CZamTString& Error)
{
    const CZamTZFXLineTable& Lines = *Block.pLines;
    for (uint32_t uiLine = Block.uiBegin; uiLine < Block.uiEnd; ++uiLine)
    {
        CZamTZFXTokenizer Tokens(Lines.GetToken(uiLine), CZamTZFXTokenizer::Whitespace);
        SZamTZFXToken Keyword;
        if (!Tokens.Next(Keyword))
            continue;
        const uint32_t uiParameter = ZamTZFXFindKeyword(Keyword.Hash(), ParameterHashes(), eParameterCount);
        if (uiParameter == eParameterCount)
            continue;
        const SParameterLine Line = {&Tokens, pBlockName, Lines.GetNumber(uiLine), Lines.GetText(uiLine)};
        if (ReadParameterLine(Line, uiParameter, Parameters, Error))
            return 1;
    }
    return 0;
}
