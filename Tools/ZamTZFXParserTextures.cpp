#include "ZamTZFXParserBlocks_p.h"

#include <new>

namespace
{
enum ETextureKeyword : uint32_t
{
    eName,
    ePath,
    eView,
    eCamera,
    eTextureKeywordCount
};

const CZamTHash* TextureKeywordHashes()
{
    static const CZamTHash s_aHashes[eTextureKeywordCount] = {CZamTHash("NAME"), CZamTHash("PATH"), CZamTHash("VIEW"),
                                                              CZamTHash("CAMERA")};
    return s_aHashes;
}

struct STextureDeclaration
{
    SZamTZFXToken Name;
    SZamTZFXToken Path;
    SZamTZFXToken View;
    bool bName = false;
    bool bPath = false;
    bool bView = false;
};

// The rest of a PATH or VIEW line: one argument, nothing after it.
int ReadTextureArgument(CZamTZFXTokenizer& Tokens, const char* pMissing, int iLine, const char* pLine,
                        SZamTZFXToken& Argument, CZamTString& Error)
{
    if (Tokens.NextArgument(Argument))
    {
        Error.format("Incomplete argument in [%s] on line %d: %s\n", "TEXTURE", iLine, pLine);
        return 1;
    }
    if (Argument.IsEmpty())
    {
        Error.format(pMissing, iLine, pLine);
        return 1;
    }
    SZamTZFXToken Extra;
    if (Tokens.Next(Extra))
    {
        Error.format("Unexpected keyword '%s' in [TEXTURE] on line %d: %s\n", Extra.ToString().GetString(), iLine,
                     pLine);
        return 1;
    }
    return 0;
}

int ReadTextureLine(const CZamTZFXLineTable& Lines, uint32_t uiLine, STextureDeclaration& Texture, CZamTString& Error)
{
    const int iLine = Lines.GetNumber(uiLine);
    const char* pLine = Lines.GetText(uiLine);
    CZamTZFXTokenizer Tokens(Lines.GetToken(uiLine), CZamTZFXTokenizer::Whitespace);
    SZamTZFXToken Keyword;
    if (!Tokens.Next(Keyword))
    {
        Error.format("Missing arguments in [TEXTURE] on line %d: %s\n", iLine, pLine);
        return 1;
    }
    switch (ZamTZFXFindKeyword(Keyword.Hash(), TextureKeywordHashes(), eTextureKeywordCount))
    {
    case eName:
    {
        SZamTZFXToken Extra;
        if (!Tokens.Next(Texture.Name))
        {
            Error.format("Missing NAME arguments in [TEXTURE] on line %d: %s\n", iLine, pLine);
            return 1;
        }
        if (Tokens.Next(Extra))
        {
            Error.format("Unexpected keyword '%s' in [TEXTURE] on line %d: %s\n", Extra.ToString().GetString(), iLine,
                         pLine);
            return 1;
        }
        Texture.bName = true;
        return 0;
    }
    case ePath:
        Texture.bPath = true;
        return ReadTextureArgument(Tokens, "Missing PATH arguments in [TEXTURE] on line %d: %s\n", iLine, pLine,
                                   Texture.Path, Error);
    case eView:
        Texture.bView = true;
        return ReadTextureArgument(Tokens, "Missing VIEW argument in [TEXTURE] on line %d: %s\n", iLine, pLine,
                                   Texture.View, Error);
    case eCamera:
        // Reserved: the camera belongs to the view and is chosen by the renderer.
        return 0;
    default:
        if (ZamTZFXIsTextureParameter(Keyword.Hash()))
            return 0;
        Error.format("Unknown keyword '%s' in [TEXTURE] on line %d: %s\n", Keyword.ToString().GetString(), iLine,
                     pLine);
        return 1;
    }
}

int AppendTexture(SZamTZFXDocument& Document, SZamTZFXParserTexture*& pTexture)
{
    pTexture = new (std::nothrow) SZamTZFXParserTexture;
    if (pTexture && Document.Textures.Append(pTexture) == 0)
        return 0;
    delete pTexture;
    pTexture = nullptr;
    return 1;
}

void SetParameters(const SZamTZFXTextureParameters& Parameters, SZamTZFXParserTexture& Texture)
{
    Texture.uiMinificationFilter = Parameters.auiFilters[0];
    Texture.uiMagnificationFilter = Parameters.auiFilters[1];
    Texture.uiMipmapFilter = Parameters.auiFilters[2];
    Texture.uiWrapS = Parameters.auiWraps[0];
    Texture.uiWrapT = Parameters.auiWraps[1];
    Texture.uiWrapR = Parameters.auiWraps[2];
    Texture.uiWidth = Parameters.uiWidth;
    Texture.uiHeight = Parameters.uiHeight;
    Texture.uiSurfaceFlags = Parameters.uiSurfaceFlags;
}

int AppendViewPass(SZamTZFXDocument& Document, SZamTZFXParserTexture& Texture, const SZamTZFXToken& View)
{
    SZamTZFXRenderPass Pass;
    Pass.uiType = eZamTZFXRenderPassViewToTexture;
    Pass.uiSurfaceFlags = Texture.uiSurfaceFlags;
    Pass.pTexture = &Texture;
    Pass.TextureName = Texture.Name;
    if (View.Equals("ZFX_CURRENTVIEW"))
    {
        Pass.uiViewKind = eZamTZFXViewCurrent;
    }
    else
    {
        Pass.uiViewKind = eZamTZFXViewNamed;
        Pass.ViewName.Set(View.pText, View.uiLength);
    }
    return Document.RenderPasses.Append(Pass);
}

int ReadTargetLine(const CZamTZFXLineTable& Lines, uint32_t uiLine, SZamTZFXParserRenderTarget& Target,
                   CZamTString& Error)
{
    static const CZamTHash s_Name("NAME");
    const int iLine = Lines.GetNumber(uiLine);
    CZamTZFXTokenizer Tokens(Lines.GetToken(uiLine), CZamTZFXTokenizer::Whitespace);
    SZamTZFXToken Keyword;
    if (!Tokens.Next(Keyword))
    {
        Error.format("Missing arguments in [TARGET] on line %d\n", iLine);
        return 1;
    }
    if (Keyword.Hash() != s_Name)
    {
        if (ZamTZFXIsTextureParameter(Keyword.Hash()))
            return 0;
        Error.format("Unknown keyword '%s' in [TARGET] on line %d\n", Keyword.ToString().GetString(), iLine);
        return 1;
    }
    SZamTZFXToken Name;
    SZamTZFXToken Extra;
    if (!Tokens.Next(Name))
    {
        Error.format("Missing NAME arguments in [TARGET] on line %d\n", iLine);
        return 1;
    }
    if (Tokens.Next(Extra))
    {
        Error.format("Unexpected keyword '%s' in [TARGET] on line %d\n", Extra.ToString().GetString(), iLine);
        return 1;
    }
    Target.Name.Set(Name.pText, Name.uiLength);
    return 0;
}

int ReadTexturesLine(const CZamTZFXLineTable& Lines, uint32_t uiLine, SZamTZFXDocument& Document, CZamTString& Error)
{
    static const CZamTHash s_File("FILE");
    static const CZamTHash s_Render("RENDER");
    const int iLine = Lines.GetNumber(uiLine);
    const char* pLine = Lines.GetText(uiLine);
    CZamTZFXTokenizer Tokens(Lines.GetToken(uiLine), CZamTZFXTokenizer::Whitespace);
    SZamTZFXToken Keyword;
    if (!Tokens.Next(Keyword))
    {
        Error.format("Missing arguments in [TEXTURES] on line %d: %s\n", iLine, pLine);
        return 1;
    }
    if (Keyword.Hash() == s_Render)
    {
        Error = "RENDER tag no longer supported in [TEXTURES] block. Use new [TARGET] block instead\n";
        return 1;
    }
    if (Keyword.Hash() != s_File)
    {
        Error.format("Unknown keyword '%s' in [TEXTURES] on line %d\n", Keyword.ToString().GetString(), iLine);
        return 1;
    }
    SZamTZFXToken Name;
    SZamTZFXToken FileName;
    if (!Tokens.Next(Name))
    {
        Error.format("Texture name missing in [TEXTURES] on line %d: %s\n", iLine, pLine);
        return 1;
    }
    if (Tokens.AtEnd())
    {
        Error.format("Incomplete definition in [TEXTURES] on line %d: %s\n", iLine, pLine);
        return 1;
    }
    if (!Tokens.Next(FileName))
    {
        Error.format("Texture name missing in [TEXTURES] on line %d: %s\n", iLine, pLine);
        return 1;
    }
    const SZamTZFXToken Rest = Tokens.Rest();
    SZamTZFXTextureParameters Parameters;
    if (ZamTZFXReadFilterList(Rest, Parameters.auiFilters, 3, iLine, pLine, Error)
        || ZamTZFXReadWrapList(Rest, Parameters.auiWraps, 3, iLine, pLine, Error))
        return 1;

    SZamTZFXParserTexture* pTexture = nullptr;
    if (AppendTexture(Document, pTexture))
    {
        Error = "Out of memory\n";
        return 1;
    }
    pTexture->Name.Set(Name.pText, Name.uiLength);
    pTexture->FileName.Set(FileName.pText, FileName.uiLength);
    SetParameters(Parameters, *pTexture);
    return 0;
}
} // namespace

int ZamTZFXReadTexture(const SZamTZFXBlock& Block, SZamTZFXDocument& Document, CZamTString& Error)
{
    SZamTZFXTextureParameters Parameters;
    if (ZamTZFXReadTextureParameters(Block, "TEXTURE", Parameters, Error))
        return 1;
    STextureDeclaration Declaration;
    for (uint32_t uiLine = Block.uiBegin; uiLine < Block.uiEnd; ++uiLine)
    {
        if (!Block.pLines->IsEmpty(uiLine) && ReadTextureLine(*Block.pLines, uiLine, Declaration, Error))
            return 1;
    }
    if (!Declaration.bName)
    {
        Error.format("No NAME tag specified in [TEXTURE] on line %d\n", Block.iOpeningLine);
        return 1;
    }
    if (Declaration.bPath && Declaration.bView)
    {
        Error.format("Both PATH and VIEW tags specified in [TEXTURE] on line %d\n", Block.iOpeningLine);
        return 1;
    }
    if (!Declaration.bPath && !Declaration.bView)
    {
        Error.format("No PATH or VIEW tag specified in [TEXTURE] on line %d\n", Block.iOpeningLine);
        return 1;
    }

    SZamTZFXParserTexture* pTexture = nullptr;
    if (AppendTexture(Document, pTexture))
    {
        Error = "Out of memory\n";
        return 1;
    }
    pTexture->Name.Set(Declaration.Name.pText, Declaration.Name.uiLength);
    const SZamTZFXToken& FileName = Declaration.bView ? Declaration.Name : Declaration.Path;
    pTexture->FileName.Set(FileName.pText, FileName.uiLength);
    pTexture->bRenderToTexture = Declaration.bView;
    SetParameters(Parameters, *pTexture);
    if (Declaration.bView && AppendViewPass(Document, *pTexture, Declaration.View))
    {
        Error = "Out of memory\n";
        return 1;
    }
    return 0;
}

int ZamTZFXReadTarget(const SZamTZFXBlock& Block, SZamTZFXDocument& Document, CZamTString& Error)
{
    SZamTZFXTextureParameters Parameters;
    if (ZamTZFXReadTextureParameters(Block, "TARGET", Parameters, Error))
        return 1;
    SZamTZFXParserRenderTarget Target;
    for (uint32_t uiLine = Block.uiBegin; uiLine < Block.uiEnd; ++uiLine)
    {
        if (!Block.pLines->IsEmpty(uiLine) && ReadTargetLine(*Block.pLines, uiLine, Target, Error))
            return 1;
    }
    Target.uiWidth = Parameters.uiWidth;
    Target.uiHeight = Parameters.uiHeight;
    Target.uiSurfaceFlags = Parameters.uiSurfaceFlags;
    if (Document.RenderTargets.Append(Target))
    {
        Error = "Out of memory\n";
        return 1;
    }
    return 0;
}

int ZamTZFXReadTextures(const SZamTZFXBlock& Block, SZamTZFXDocument& Document, CZamTString& Error)
{
    for (uint32_t uiLine = Block.uiBegin; uiLine < Block.uiEnd; ++uiLine)
    {
        if (!Block.pLines->IsEmpty(uiLine) && ReadTexturesLine(*Block.pLines, uiLine, Document, Error))
            return 1;
    }
    return 0;
}
