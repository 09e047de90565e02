#include "ZamTZFXParserBlocks_p.h"

#include <algorithm>
#include <utility>

namespace
{
enum EEffectKeyword : uint32_t
{
    eAnnotation,
    eVertexShader,
    eFragmentShader,
    eTexture,
    eUniform,
    eAttribute,
    eName,
    eTarget,
    eEffectKeywordCount
};

const CZamTHash* EffectKeywordHashes()
{
    static const CZamTHash s_aHashes[eEffectKeywordCount] = {
        CZamTHash("[ANNOTATION]"), CZamTHash("VERTEXSHADER"), CZamTHash("FRAGMENTSHADER"), CZamTHash("TEXTURE"),
        CZamTHash("UNIFORM"),      CZamTHash("ATTRIBUTE"),    CZamTHash("NAME"),           CZamTHash("TARGET"),
    };
    return s_aHashes;
}

struct SEffectState
{
    SZamTZFXParserEffect Effect;
    // File line of each entry of Effect.Textures, for the uniform check.
    CZamTArray<int> TextureLines;
    bool bName = false;
    bool bVertexShader = false;
    bool bFragmentShader = false;
    bool bAnnotation = false;
};

int OutOfMemory(CZamTString& Error)
{
    Error = "Out of memory\n";
    return 1;
}

// Joins the lines up to "[/ANNOTATION]" and moves uiLine onto it.
int ReadAnnotation(const SZamTZFXBlock& Block, uint32_t& uiLine, CZamTString& Annotation, CZamTString& Error)
{
    const CZamTZFXLineTable& Lines = *Block.pLines;
    uint32_t uiClose = uiLine + 1;
    while (uiClose < Block.uiEnd && !Lines.Equals(uiClose, "[/ANNOTATION]"))
        ++uiClose;
    if (uiClose == Block.uiEnd)
    {
        Error.format("Missing [/ANNOTATION] tag after [ANNOTATION] in [EFFECT] on line %d\n", Lines.GetNumber(uiLine));
        return 1;
    }
    for (uint32_t ui = uiLine + 1; ui < uiClose; ++ui)
    {
        if (Annotation.Append(Lines.GetText(ui), Lines.GetLength(ui)) || Annotation.Append("\n"))
            return OutOfMemory(Error);
    }
    uiLine = uiClose;
    return 0;
}

// NAME, VERTEXSHADER and FRAGMENTSHADER: one value, once per effect.
int ReadName(CZamTZFXTokenizer& Tokens, bool& bSeen, const char* pRedefined, const char* pMissing, int iLine,
             SZamTZFXName& Name, CZamTString& Error)
{
    SZamTZFXToken Value;
    if (bSeen)
        Error.format(pRedefined, iLine);
    else if (!Tokens.Next(Value))
        Error.format(pMissing, iLine);
    else
    {
        bSeen = true;
        Name.Set(Value.pText, Value.uiLength);
        return 0;
    }
    return 1;
}

int ReadTexture(CZamTZFXTokenizer& Tokens, int iLine, SEffectState& State, CZamTString& Error)
{
    SZamTZFXToken Unit;
    SZamTZFXToken Name;
    if (!Tokens.Next(Unit) || !Tokens.Next(Name))
    {
        Error.format("TEXTURE missing value in [EFFECT] on line %d\n", iLine);
        return 1;
    }
    SZamTZFXParserEffectTexture Texture;
    Texture.uiUnit = ZamTZFXLeadingUnsigned(Unit.pText, Unit.uiLength);
    Texture.Name.Set(Name.pText, Name.uiLength);
    if (State.Effect.Textures.Append(Texture) || State.TextureLines.Append(iLine))
        return OutOfMemory(Error);
    return 0;
}

// UNIFORM and ATTRIBUTE share one reader and its messages; only uniforms take a default.
int ReadSemantic(CZamTZFXTokenizer& Tokens, int iLine, bool bUniform, SEffectState& State, CZamTString& Error)
{
    SZamTZFXToken Variable;
    SZamTZFXToken Semantic;
    if (!Tokens.Next(Variable))
    {
        Error.format("UNIFORM missing name in [EFFECT] on line %d\n", iLine);
        return 1;
    }
    if (!Tokens.Next(Semantic))
    {
        Error.format("UNIFORM missing value in [EFFECT] on line %d\n", iLine);
        return 1;
    }
    uint32_t uiDigit = 0;
    while (uiDigit < Semantic.uiLength && (Semantic.pText[uiDigit] < '0' || Semantic.pText[uiDigit] > '9'))
        ++uiDigit;
    if (uiDigit == 0)
    {
        Error.format("Semantic contains only numbers in [EFFECT] on line %d\n", iLine);
        return 1;
    }
    SZamTZFXParserSemantic Record;
    Record.Variable.Assign(Variable.pText, Variable.uiLength);
    Record.Semantic.Assign(Semantic.pText, uiDigit);
    Record.uiIndex = ZamTZFXLeadingUnsigned(Semantic.pText + uiDigit, Semantic.uiLength - uiDigit);
    const SZamTZFXToken Default = Tokens.Rest();
    if (bUniform && !Default.IsEmpty() && ZamTZFXReadDefaultValues(Default, iLine, Record, Semantic.ToString(), Error))
        return 1;
    if ((bUniform ? State.Effect.Uniforms : State.Effect.Attributes).Append(Record))
        return OutOfMemory(Error);
    return 0;
}

int ReadTarget(CZamTZFXTokenizer& Tokens, int iLine, SEffectState& State, CZamTString& Error)
{
    SZamTZFXToken Kind;
    SZamTZFXToken Target;
    if (!Tokens.Next(Kind) || !Tokens.Next(Target))
    {
        Error.format("TARGET missing value(s) in [EFFECT] on line %d\n", iLine);
        return 1;
    }
    SZamTTargetPair Pair;
    Pair.Kind.Assign(Kind.pText, Kind.uiLength);
    Pair.Target.Assign(Target.pText, Target.uiLength);
    if (State.Effect.Targets.Append(Pair))
        return OutOfMemory(Error);
    return 0;
}

int ReadEffectLine(const SZamTZFXBlock& Block, uint32_t& uiLine, SEffectState& State, CZamTString& Error)
{
    const CZamTZFXLineTable& Lines = *Block.pLines;
    const int iLine = Lines.GetNumber(uiLine);
    CZamTZFXTokenizer Tokens(Lines.GetToken(uiLine), CZamTZFXTokenizer::Spaces);
    SZamTZFXToken Keyword;
    if (!Tokens.Next(Keyword))
    {
        Error.format("Missing arguments in [EFFECT] on line %d: %s\n", iLine, Lines.GetText(uiLine));
        return 1;
    }
    const uint32_t uiKeyword = ZamTZFXFindKeyword(Keyword.Hash(), EffectKeywordHashes(), eEffectKeywordCount);
    switch (uiKeyword)
    {
    case eAnnotation:
        if (State.bAnnotation)
        {
            Error.format("ANNOTATION redefined in [EFFECT] on line %d: \n", iLine);
            return 1;
        }
        State.bAnnotation = true;
        return ReadAnnotation(Block, uiLine, State.Effect.Annotation, Error);
    case eVertexShader:
        return ReadName(Tokens, State.bVertexShader, "VERTEXSHADER redefined in [EFFECT] on line %d: \n",
                        "VERTEXSHADER missing value in [EFFECT] on line %d\n", iLine, State.Effect.VertexShader, Error);
    case eFragmentShader:
        return ReadName(Tokens, State.bFragmentShader, "FRAGMENTSHADER redefined in [EFFECT] on line %d: \n",
                        "FRAGMENTSHADER missing value in [EFFECT] on line %d\n", iLine, State.Effect.FragmentShader,
                        Error);
    case eTexture:
        return ReadTexture(Tokens, iLine, State, Error);
    case eUniform:
    case eAttribute:
        return ReadSemantic(Tokens, iLine, uiKeyword == eUniform, State, Error);
    case eName:
        return ReadName(Tokens, State.bName, "NAME redefined in [EFFECT] on line %d\n",
                        "NAME missing value in [EFFECT] on line %d\n", iLine, State.Effect.Name, Error);
    case eTarget:
        return ReadTarget(Tokens, iLine, State, Error);
    default:
        Error.format("Unknown keyword '%s' in [EFFECT] on line %d\n", Keyword.ToString().GetString(), iLine);
        return 1;
    }
}

// A texture on unit n is bound through a uniform with the semantic TEXTUREn.
int CheckTextureUniforms(const SEffectState& State, CZamTString& Error)
{
    static const CZamTHash s_TextureSemantic("TEXTURE");
    const SZamTZFXParserEffect& Effect = State.Effect;
    CZamTArray<uint32_t> BoundUnits;
    for (uint32_t ui = 0; ui < Effect.Uniforms.GetSize(); ++ui)
    {
        if (CZamTHash(Effect.Uniforms[ui].Semantic) == s_TextureSemantic
            && BoundUnits.Append(Effect.Uniforms[ui].uiIndex))
            return OutOfMemory(Error);
    }
    uint32_t* pUnits = BoundUnits.GetData();
    std::sort(pUnits, pUnits + BoundUnits.GetSize());
    for (uint32_t uiTexture = 0; uiTexture < Effect.Textures.GetSize(); ++uiTexture)
    {
        if (!std::binary_search(pUnits, pUnits + BoundUnits.GetSize(), Effect.Textures[uiTexture].uiUnit))
        {
            Error.format("TEXTURE %s missing matching UNIFORM in [EFFECT] on line %d\n",
                         Effect.Textures[uiTexture].Name.Text.GetString(), State.TextureLines[uiTexture]);
            return 1;
        }
    }
    return 0;
}

int CheckEffect(const SEffectState& State, int iOpeningLine, CZamTString& Error)
{
    if (CheckTextureUniforms(State, Error))
        return 1;
    if (!State.bName)
        Error.format("No 'NAME' found in [EFFECT] on line %d\n", iOpeningLine);
    else if (!State.bVertexShader)
        Error.format("No 'VERTEXSHADER' defined in [EFFECT] starting on line %d: \n", iOpeningLine);
    else if (!State.bFragmentShader)
        Error.format("No 'FRAGMENTSHADER' defined in [EFFECT] starting on line %d: \n", iOpeningLine);
    else
        return 0;
    return 1;
}
} // namespace

int ZamTZFXReadEffect(const SZamTZFXBlock& Block, SZamTZFXDocument& Document, CZamTString& Error)
{
    SEffectState State;
    for (uint32_t uiLine = Block.uiBegin; uiLine < Block.uiEnd; ++uiLine)
    {
        if (!Block.pLines->IsEmpty(uiLine) && ReadEffectLine(Block, uiLine, State, Error))
            return 1;
    }
    if (CheckEffect(State, Block.iOpeningLine, Error))
        return 1;
    const CZamTArray<SZamTTargetPair>& Targets = State.Effect.Targets;
    for (uint32_t ui = 0; ui < Targets.GetSize(); ++ui)
    {
        if (Document.Targets.Append(Targets[ui]))
            return OutOfMemory(Error);
    }
    if (Document.Effects.Append(SZamTZFXParserEffect()))
        return OutOfMemory(Error);
    Document.Effects[Document.Effects.GetSize() - 1] = std::move(State.Effect);
    return 0;
}
