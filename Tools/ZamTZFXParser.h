#ifndef ZAMTZFXPARSER_H
#define ZAMTZFXPARSER_H

#include "ZamTZFXParserTypes.h"

// Reads a ZFX effect file: [HEADER], [TEXTURE], [TARGET], [TEXTURES], [VERTEXSHADER],
// [FRAGMENTSHADER] and [EFFECT] blocks. The first problem ends the parse with one message
// (ending in "\n") in the caller's string; records read before it stay but are incomplete,
// so discard the parser after a failure. Each parse starts from an empty parser.
//
// Bounded on any input: at most 5000 lines of at most 511 characters are kept (a longer line
// goes on as the next line), so a parse allocates a few megabytes at most besides the files
// that FILE and BINARYFILE read.
//
// Shaders for the compiler: each entry of GetVertexShaders() and GetFragmentShaders() has
// its Name, its Source, its uiIndex in its list and uiFirstLine, the effect-file line of its
// "[GLSL_CODE]" tag. Source line k is effect-file line uiFirstLine + k, so uiFirstLine is the
// offset to add to the compiler's line numbers. Inline code arrives without // comments and
// with its whitespace collapsed, line for line. A shader read from FILE has uiFirstLine 0.
// Line numbers are the parser's: a line longer than 511 characters counts as several.
//
// Within blocks, empty and comment-only lines are skipped; inside [GLSL_CODE] and
// [ANNOTATION] they stay as empty lines. The empty text after a final line feed is a line of
// its own and counts towards the 5000.
//
// Render passes: each texture declared with VIEW renders that view in a pass. An effect draws
// into the targets of its TARGET lines and samples its TEXTURE lines, so a pass that renders
// a texture comes before every pass whose texture an effect renders while sampling it. Passes
// that depend on each other in a cycle (ping-pong between two textures) have the edges among
// them dropped. Among the passes free to go next, the one declared first goes first.
//
// Render targets: "TARGET COLOR <name>" and "TARGET DEPTH <name>" must name a texture or a
// [TARGET] whose SURFACETYPE is of that kind, when it has one.
class CZamTZFXParser
{
public:
    CZamTZFXParser() = default;
    CZamTZFXParser(const CZamTZFXParser&) = delete;
    CZamTZFXParser& operator=(const CZamTZFXParser&) = delete;

    // pText is NUL-terminated 8-bit text. Returns 0 on success; 1 with Error set, or with
    // Error empty when pText is null.
    int ParseFromMemory(const char* pText, CZamTString& Error);
    // Reads the file through CZamTResourceFile, then parses it as ParseFromMemory does; the
    // text ends at its first NUL byte. Its FILE and BINARYFILE names are relative to its folder.
    int ParseFromFile(const char* pFileName, CZamTString& Error);
    // The folder that relative FILE and BINARYFILE names of ParseFromMemory are found in: the
    // folder of the effect file the text belongs to. Empty (the default): names are used as
    // written, against the working folder and the in-memory files. A missing file is named
    // in the error with the folder it was looked for in.
    void SetFileFolder(const char* pFolder);

    const CZamTString& GetVersion() const { return m_Document.Version; }
    const CZamTString& GetDescription() const { return m_Document.Description; }
    const CZamTString& GetCopyright() const { return m_Document.Copyright; }
    const CZamTArrayManagedPointers<SZamTZFXParserTexture>& GetTextures() const { return m_Document.Textures; }
    const CZamTArray<SZamTZFXParserRenderTarget>& GetRenderTargets() const { return m_Document.RenderTargets; }
    const CZamTArray<SZamTTargetPair>& GetTargets() const { return m_Document.Targets; }
    const CZamTArray<SZamTZFXParserShader>& GetVertexShaders() const { return m_Document.VertexShaders; }
    const CZamTArray<SZamTZFXParserShader>& GetFragmentShaders() const { return m_Document.FragmentShaders; }
    const CZamTArray<SZamTZFXParserEffect>& GetEffects() const { return m_Document.Effects; }
    // In the order they must run.
    const CZamTArray<SZamTZFXRenderPass>& GetRenderPasses() const { return m_Document.RenderPasses; }

private:
    SZamTZFXDocument m_Document;
    CZamTString m_FileFolder;
};

#endif // ZAMTZFXPARSER_H
