#include "ZamTZFXParser.h"

#include <cstring>

#include "ZamTResourceFile.h"
#include "ZamTZFXParserBlocks_p.h"

namespace
{
struct SBlockKind
{
    const char* pOpen;
    const char* pClose;
    const char* pMissingClose; // format, the opening line number
    const char* pRedefined;    // format for blocks allowed once, else null
    int (*pRead)(const SZamTZFXBlock&, SZamTZFXDocument&, CZamTString&);
};

const SBlockKind kBlockKinds[] = {
    {"[HEADER]", "[/HEADER]", "Missing [/HEADER] tag after [HEADER] on line %d\n", "[HEADER] redefined on line %d\n",
     &ZamTZFXReadHeader},
    {"[TEXTURE]", "[/TEXTURE]", "Missing [/TEXTURE] tag after [TEXTURE] on line %d\n", nullptr, &ZamTZFXReadTexture},
    {"[TARGET]", "[/TARGET]", "Missing [/TARGET] tag after [TARGET] on line %d\n", nullptr, &ZamTZFXReadTarget},
    {"[TEXTURES]", "[/TEXTURES]", "Missing [/TEXTURES] tag after [TEXTURES] on line %d\n",
     "[TEXTURES] redefined on line %d\n", &ZamTZFXReadTextures},
    {"[VERTEXSHADER]", "[/VERTEXSHADER]", "Missing [/VERTEXSHADER] tag after [VERTEXSHADER] on line %d\n", nullptr,
     &ZamTZFXReadVertexShader},
    {"[FRAGMENTSHADER]", "[/FRAGMENTSHADER]", "Missing [/FRAGMENTSHADER] tag after [FRAGMENTSHADER] on line %d\n",
     nullptr, &ZamTZFXReadFragmentShader},
    {"[EFFECT]", "[/EFFECT]", "Missing [/EFFECT] tag after [EFFECT] on line %d\n", nullptr, &ZamTZFXReadEffect},
};
constexpr uint32_t kBlockKindCount = sizeof(kBlockKinds) / sizeof(kBlockKinds[0]);

// Index into kBlockKinds of the opening tag that the line is, or kBlockKindCount. Tags are
// matched by hash, like every keyword of the format.
uint32_t FindBlockKind(const SZamTZFXToken& Line)
{
    static const CZamTHash s_aTags[kBlockKindCount] = {
        CZamTHash(kBlockKinds[0].pOpen), CZamTHash(kBlockKinds[1].pOpen), CZamTHash(kBlockKinds[2].pOpen),
        CZamTHash(kBlockKinds[3].pOpen), CZamTHash(kBlockKinds[4].pOpen), CZamTHash(kBlockKinds[5].pOpen),
        CZamTHash(kBlockKinds[6].pOpen),
    };
    const CZamTHash Hash = Line.Hash();
    uint32_t uiKind = 0;
    while (uiKind < kBlockKindCount && s_aTags[uiKind] != Hash)
        ++uiKind;
    return uiKind;
}

int ReadBlocks(const CZamTZFXLineTable& Lines, const char* pFileFolder, SZamTZFXDocument& Document, CZamTString& Error)
{
    bool abSeen[kBlockKindCount] = {};
    uint32_t uiLine = 0;
    while (uiLine < Lines.GetCount())
    {
        if (Lines.IsEmpty(uiLine))
        {
            ++uiLine;
            continue;
        }
        const uint32_t uiKind = FindBlockKind(Lines.GetToken(uiLine));
        if (uiKind == kBlockKindCount)
        {
            Error.format("'%s' unexpected on line %d\n", Lines.GetText(uiLine), Lines.GetNumber(uiLine));
            return 1;
        }
        const SBlockKind& Kind = kBlockKinds[uiKind];
        if (Kind.pRedefined && abSeen[uiKind])
        {
            Error.format(Kind.pRedefined, Lines.GetNumber(uiLine));
            return 1;
        }
        abSeen[uiKind] = true;

        uint32_t uiClose = uiLine;
        while (uiClose < Lines.GetCount() && !Lines.Equals(uiClose, Kind.pClose))
            ++uiClose;
        if (uiClose == Lines.GetCount())
        {
            Error.format(Kind.pMissingClose, Lines.GetNumber(uiLine));
            return 1;
        }
        SZamTZFXBlock Block;
        Block.pLines = &Lines;
        Block.uiBegin = uiLine + 1;
        Block.uiEnd = uiClose;
        Block.iOpeningLine = Lines.GetNumber(uiLine);
        Block.pFileFolder = pFileFolder;
        if (Kind.pRead(Block, Document, Error))
            return 1;
        uiLine = uiClose + 1;
    }
    return 0;
}

int CheckRequiredBlocks(const SZamTZFXDocument& Document, CZamTString& Error)
{
    if (Document.Effects.GetSize() == 0)
        Error = "No [EFFECT] found. ZFX file must have at least one defined.\n";
    else if (Document.FragmentShaders.GetSize() == 0)
        Error = "No [FRAGMENTSHADER] found. ZFX file must have at least one defined.\n";
    else if (Document.VertexShaders.GetSize() == 0)
        Error = "No [VERTEXSHADER] found. ZFX file must have at least one defined.\n";
    else
        return 0;
    return 1;
}
} // namespace

int ZamTZFXCheckEffectTextures(const SZamTZFXDocument& Document, CZamTString& Error)
{
    CZamTZFXNameIndex Declared;
    for (uint32_t ui = 0; ui < Document.Textures.GetSize(); ++ui)
    {
        if (Declared.Add(Document.Textures[ui]->Name.Hash, ui))
        {
            Error = "Out of memory\n";
            return 1;
        }
    }
    Declared.Sort();
    for (uint32_t uiEffect = 0; uiEffect < Document.Effects.GetSize(); ++uiEffect)
    {
        const CZamTArray<SZamTZFXParserEffectTexture>& Textures = Document.Effects[uiEffect].Textures;
        for (uint32_t ui = 0; ui < Textures.GetSize(); ++ui)
        {
            if (Declared.Contains(Textures[ui].Name.Hash))
                continue;
            // Joined rather than formatted: the name is the file's text.
            Error = "Error: TEXTURE '";
            Error += Textures[ui].Name.Text;
            Error += "' is not defined in [TEXTURES].\n";
            return 1;
        }
    }
    return 0;
}

int CZamTZFXParser::ParseFromMemory(const char* pText, CZamTString& Error)
{
    Error.Clear();
    m_Document.Clear();
    if (!pText)
        return 1;
    // The line table lives only for one parse.
    CZamTZFXLineTable Lines;
    const int iResult = Lines.Build(pText, Error) || ReadBlocks(Lines, m_FileFolder.GetString(), m_Document, Error)
                        || CheckRequiredBlocks(m_Document, Error) || ZamTZFXCheckEffectTextures(m_Document, Error)
                        || ZamTZFXOrderRenderPasses(m_Document, Error);
    return (iResult || !Error.IsEmpty()) ? 1 : 0;
}

void CZamTZFXParser::SetFileFolder(const char* pFolder)
{
    m_FileFolder = pFolder ? pFolder : "";
}

int CZamTZFXParser::ParseFromFile(const char* pFileName, CZamTString& Error)
{
    m_Document.Clear();
    // The folder part of the name, up to its last '/'; none: the names stay as written.
    const char* pSlash = pFileName ? std::strrchr(pFileName, '/') : nullptr;
    m_FileFolder.Assign(pFileName ? pFileName : "", pSlash ? static_cast<uint32_t>(pSlash - pFileName) : 0);
    if (pSlash == pFileName && pSlash)
        m_FileFolder = "/";
    const CZamTResourceFile File(pFileName);
    if (!File.IsOpen())
    {
        Error.format("Error loading file '%s'\n", pFileName ? pFileName : "");
        return 1;
    }
    // The data need not end in a NUL; the text stops at the first one anyway.
    const uint32_t uiLength =
        File.GetSize() > CZamTString::MaxLength ? CZamTString::MaxLength : static_cast<uint32_t>(File.GetSize());
    const CZamTString Text(static_cast<const char*>(File.GetData()), uiLength);
    if (Text.GetLength() != uiLength)
    {
        Error = "Out of memory\n";
        return 1;
    }
    return ParseFromMemory(Text.GetString(), Error);
}
