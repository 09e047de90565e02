#ifndef ZAMTZFXPARSERTYPES_H
#define ZAMTZFXPARSERTYPES_H

#include "ZamTArray.h"
#include "ZamTHash.h"
#include "ZamTString.h"

#include <cstdint>

// The records an effect file is read into. Every record is default-constructible and
// assignable so that it can live in a CZamTArray.

// A name with its hash; keywords and cross references are matched by the hash.
struct SZamTZFXName
{
    CZamTString Text;
    CZamTHash Hash;

    void Set(const char* pText, uint32_t uiLength)
    {
        Text.Assign(pText, uiLength);
        Hash = CZamTHash(Text);
    }
    void Set(const CZamTString& Value) { Set(Value.GetString(), Value.GetLength()); }
};

// Indices into the filter names "NEAREST", "LINEAR", "NONE".
enum EZamTZFXFilter : uint32_t
{
    eZamTZFXFilterNearest = 0,
    eZamTZFXFilterLinear = 1,
    eZamTZFXFilterNone = 2,
};

// Indices into the wrap names "CLAMP", "REPEAT".
enum EZamTZFXWrap : uint32_t
{
    eZamTZFXWrapClamp = 0,
    eZamTZFXWrapRepeat = 1,
};

// Surface flags: each SURFACETYPE name sets one kind bit and one format bit. A texture or
// target without SURFACETYPE has no kind bit and is never reported as mismatched.
enum EZamTZFXSurfaceFlags : uint32_t
{
    eZamTZFXSurfaceColor = 0x00000001,
    eZamTZFXSurfaceDepth = 0x00000002,
    eZamTZFXSurfaceKindMask = 0x00000003,

    eZamTZFXSurfaceRGBA8888 = 0x00000100,
    eZamTZFXSurfaceRGBA4444 = 0x00000200,
    eZamTZFXSurfaceRGB888 = 0x00000400,
    eZamTZFXSurfaceRGB565 = 0x00000800,
    eZamTZFXSurfaceIntensity8 = 0x00001000,
    eZamTZFXSurfaceDepth24 = 0x00002000,
    eZamTZFXSurfaceDepth16 = 0x00004000,
    eZamTZFXSurfaceDepth8 = 0x00008000,
};

// One texture of [TEXTURE] or [TEXTURES].
struct SZamTZFXParserTexture
{
    SZamTZFXName Name;
    // The PATH value; for a texture rendered from a VIEW, the texture's own name.
    SZamTZFXName FileName;
    bool bRenderToTexture = false;
    uint32_t uiMinificationFilter = 0;
    uint32_t uiMagnificationFilter = 0;
    uint32_t uiMipmapFilter = 0;
    uint32_t uiWrapS = 0;
    uint32_t uiWrapT = 0;
    uint32_t uiWrapR = 0;
    uint32_t uiWidth = 0;
    uint32_t uiHeight = 0;
    uint32_t uiSurfaceFlags = 0;
};

// One [TARGET] block: a named surface that effects can draw into without sampling it.
struct SZamTZFXParserRenderTarget
{
    SZamTZFXName Name;
    uint32_t uiWidth = 0;
    uint32_t uiHeight = 0;
    uint32_t uiSurfaceFlags = 0;
};

enum EZamTZFXRenderPassType : uint32_t
{
    eZamTZFXRenderPassViewToTexture = 1,
};

enum EZamTZFXViewKind : uint32_t
{
    eZamTZFXViewCurrent = 0, // "ZFX_CURRENTVIEW"
    eZamTZFXViewNamed = 1,
};

// Rendering one view into a texture declared with VIEW.
struct SZamTZFXRenderPass
{
    uint32_t uiType = 0;
    uint32_t uiViewKind = 0;
    uint32_t uiSurfaceFlags = 0;
    uint32_t uiReserved = 0;
    SZamTZFXParserTexture* pTexture = nullptr; // owned by the parser's texture list
    SZamTZFXName ViewName;                     // empty for the current view
    SZamTZFXName TextureName;
};

// A TARGET line of an [EFFECT]: "TARGET <kind> <target>". The kind is "COLOR" or "DEPTH"
// (other words are kept but not checked); the target names a texture or a [TARGET].
struct SZamTTargetPair
{
    CZamTString Kind;
    CZamTString Target;
};

// One [VERTEXSHADER] or [FRAGMENTSHADER] block.
struct SZamTZFXParserShader
{
    SZamTZFXName Name;
    // From FILE, or the inline lines each followed by "\n". Always NUL-terminated.
    CZamTString Source;
    // BINARYFILE contents; GetLength() is the size in bytes (NULs included).
    CZamTString Binary;
    // The effect-file line of "[GLSL_CODE]"; 0 when the source came from FILE. Line k of the
    // inline source is effect-file line uiFirstLine + k, so this is the offset to add to
    // the compiler's line numbers.
    uint32_t uiFirstLine = 0;
    // Position in the parser's vertex- or fragment-shader list.
    uint32_t uiIndex = 0;
};

// One UNIFORM or ATTRIBUTE line of an [EFFECT].
struct SZamTZFXParserSemantic
{
    static constexpr uint32_t MaxDefaultValues = 16; // enough for a 4x4 matrix

    CZamTString Variable;
    // The semantic up to its first digit, e.g. "TEXTURE" of "TEXTURE0".
    CZamTString Semantic;
    // The number from the first digit on; 0 when there is none.
    uint32_t uiIndex = 0;
    // A UNIFORM's bracketed default, e.g. "(1.0, 0.5, true)"; true and false read as 1 and 0.
    uint32_t uiDefaultCount = 0;
    float afDefault[MaxDefaultValues] = {};
};

// One TEXTURE line of an [EFFECT]: "TEXTURE <unit> <name>".
struct SZamTZFXParserEffectTexture
{
    SZamTZFXName Name;
    uint32_t uiUnit = 0;
};

// One [EFFECT] block.
struct SZamTZFXParserEffect
{
    SZamTZFXName Name;
    CZamTString Annotation;
    SZamTZFXName VertexShader;
    SZamTZFXName FragmentShader;
    // Started small: every record of a block is constructed up front, and a file may hold
    // hundreds of effects.
    CZamTArray<SZamTZFXParserSemantic> Uniforms{4u};
    CZamTArray<SZamTZFXParserSemantic> Attributes{4u};
    CZamTArray<SZamTZFXParserEffectTexture> Textures{2u};
    CZamTArray<SZamTTargetPair> Targets{1u};
};

// Everything read from one effect file.
struct SZamTZFXDocument
{
    CZamTString Version;
    CZamTString Description;
    CZamTString Copyright;
    CZamTArrayManagedPointers<SZamTZFXParserTexture> Textures;
    CZamTArray<SZamTZFXParserRenderTarget> RenderTargets;
    // The TARGET lines of every effect, in file order.
    CZamTArray<SZamTTargetPair> Targets;
    CZamTArray<SZamTZFXParserShader> VertexShaders;
    CZamTArray<SZamTZFXParserShader> FragmentShaders;
    CZamTArray<SZamTZFXParserEffect> Effects;
    CZamTArray<SZamTZFXRenderPass> RenderPasses;

    void Clear()
    {
        Version.Clear();
        Description.Clear();
        Copyright.Clear();
        // Passes point at textures: drop them first.
        RenderPasses.Clear();
        Textures.Clear();
        RenderTargets.Clear();
        Targets.Clear();
        VertexShaders.Clear();
        FragmentShaders.Clear();
        Effects.Clear();
    }
};

#endif // ZAMTZFXPARSERTYPES_H
