#ifndef ZAMTZFXPARSERBLOCKS_H
#define ZAMTZFXPARSERBLOCKS_H

#include "ZamTZFXParserText_p.h"
#include "ZamTZFXParserTypes.h"

// The readers of the effect file's blocks and the checks made once the whole file has been
// read. Each returns 0 on success, or 1 with one message in Error. Internal to the parser.

// The lines strictly between an opening tag and its closing tag.
struct SZamTZFXBlock
{
    const CZamTZFXLineTable* pLines = nullptr;
    uint32_t uiBegin = 0;
    uint32_t uiEnd = 0;
    // File line number of the opening tag.
    int iOpeningLine = 0;
    // Where relative FILE and BINARYFILE names are; empty: as written.
    const char* pFileFolder = "";
};

[[nodiscard]] int ZamTZFXReadHeader(const SZamTZFXBlock& Block, SZamTZFXDocument& Document, CZamTString& Error);
[[nodiscard]] int ZamTZFXReadTexture(const SZamTZFXBlock& Block, SZamTZFXDocument& Document, CZamTString& Error);
[[nodiscard]] int ZamTZFXReadTarget(const SZamTZFXBlock& Block, SZamTZFXDocument& Document, CZamTString& Error);
[[nodiscard]] int ZamTZFXReadTextures(const SZamTZFXBlock& Block, SZamTZFXDocument& Document, CZamTString& Error);
[[nodiscard]] int ZamTZFXReadVertexShader(const SZamTZFXBlock& Block, SZamTZFXDocument& Document, CZamTString& Error);
[[nodiscard]] int ZamTZFXReadFragmentShader(const SZamTZFXBlock& Block, SZamTZFXDocument& Document, CZamTString& Error);
[[nodiscard]] int ZamTZFXReadEffect(const SZamTZFXBlock& Block, SZamTZFXDocument& Document, CZamTString& Error);

// The filter, wrap, resolution and surface lines shared by [TEXTURE] and [TARGET].
struct SZamTZFXTextureParameters
{
    uint32_t auiFilters[3] = {}; // minification, magnification, mipmap
    uint32_t auiWraps[3] = {};   // S, T, R
    uint32_t uiWidth = 0;
    uint32_t uiHeight = 0;
    uint32_t uiSurfaceFlags = 0;
};

// Runs over the whole block before the block's own keywords are read; pBlockName
// ("TEXTURE" or "TARGET") goes into the messages.
int ZamTZFXReadTextureParameters(const SZamTZFXBlock& Block, const char* pBlockName,
                                 SZamTZFXTextureParameters& Parameters, CZamTString& Error);
// Whether the parameter pass handles lines with this keyword.
[[nodiscard]] bool ZamTZFXIsTextureParameter(const CZamTHash& Keyword);
// Reads up to uiFields "-"-joined filter (or wrap) names from the first word of Text that
// holds one; values that are no name leave their field alone.
int ZamTZFXReadFilterList(const SZamTZFXToken& Text, uint32_t* puiFields, uint32_t uiFields, int iLine,
                          const char* pLine, CZamTString& Error);
int ZamTZFXReadWrapList(const SZamTZFXToken& Text, uint32_t* puiFields, uint32_t uiFields, int iLine, const char* pLine,
                        CZamTString& Error);

// Reads a UNIFORM's bracketed default, the text after its semantic.
int ZamTZFXReadDefaultValues(const SZamTZFXToken& Text, int iLine, SZamTZFXParserSemantic& Uniform,
                             const CZamTString& FullSemantic, CZamTString& Error);

// Every texture an effect names must be declared.
[[nodiscard]] int ZamTZFXCheckEffectTextures(const SZamTZFXDocument& Document, CZamTString& Error);
// Checks the effects' render targets and puts the render passes in dependency order.
[[nodiscard]] int ZamTZFXOrderRenderPasses(SZamTZFXDocument& Document, CZamTString& Error);

#endif // ZAMTZFXPARSERBLOCKS_H
