#include "ZamTZFXParserBlocks_p.h"

#include "ZamTResourceFile.h"

#include <utility>

namespace
{
enum EShaderKeyword : uint32_t
{
    eCode,
    eName,
    eFile,
    eBinaryFile,
    eShaderKeywordCount
};

const CZamTHash* ShaderKeywordHashes()
{
    static const CZamTHash s_aHashes[eShaderKeywordCount] = {CZamTHash("[GLSL_CODE]"), CZamTHash("NAME"),
                                                             CZamTHash("FILE"), CZamTHash("BINARYFILE")};
    return s_aHashes;
}

struct SShaderState
{
    SZamTZFXParserShader Shader;
    bool bName = false;
    bool bFile = false;
    bool bCode = false;
};

// One line being read, for the messages.
struct SShaderLine
{
    CZamTZFXTokenizer* pTokens;
    const char* pBlockName;
    int iLine;
    const char* pFileFolder;
};

// A FILE or BINARYFILE name as it is looked for: relative names in the effect's folder.
int ResolveName(const CZamTString& Written, const char* pFolder, CZamTString& Name)
{
    if (!pFolder || !*pFolder || Written.GetString()[0] == '/')
        return Name.Assign(Written.GetString(), Written.GetLength());
    Name = pFolder;
    if (Name.GetString()[Name.GetLength() - 1] != '/' && Name.Append("/"))
        return 1;
    return Name.Append(Written.GetString(), Written.GetLength());
}

int CheckNoMoreData(const SShaderLine& Line, CZamTString& Error)
{
    SZamTZFXToken Extra;
    if (!Line.pTokens->Next(Extra))
        return 0;
    Error.format("Unexpected data in [%s] on line %d: '%s'\n", Line.pBlockName, Line.iLine,
                 Extra.ToString().GetString());
    return 1;
}

// Joins the lines after the "[GLSL_CODE]" line up to "[/GLSL_CODE]", and moves uiLine onto
// the closing line.
int ReadInlineCode(const SZamTZFXBlock& Block, uint32_t& uiLine, const char* pBlockName, SZamTZFXParserShader& Shader,
                   CZamTString& Error)
{
    const CZamTZFXLineTable& Lines = *Block.pLines;
    uint32_t uiClose = uiLine + 1;
    while (uiClose < Block.uiEnd && !Lines.Equals(uiClose, "[/GLSL_CODE]"))
        ++uiClose;
    if (uiClose == Block.uiEnd)
    {
        Error.format("Missing [/GLSL_CODE] tag after [GLSL_CODE] in [%s] on line %d\n", pBlockName,
                     Lines.GetNumber(uiLine));
        return 1;
    }
    Shader.uiFirstLine = static_cast<uint32_t>(Lines.GetNumber(uiLine));
    Shader.Source.Clear();
    for (uint32_t ui = uiLine + 1; ui < uiClose; ++ui)
    {
        if (Shader.Source.Append(Lines.GetText(ui), Lines.GetLength(ui)) || Shader.Source.Append("\n"))
        {
            Error = "Out of memory\n";
            return 1;
        }
    }
    uiLine = uiClose;
    return 0;
}

// The argument of FILE or BINARYFILE, read whole through the resource files.
int LoadFileArgument(const SShaderLine& Line, const char* pMissing, const char* pText, CZamTString& Contents,
                     CZamTString& Error)
{
    SZamTZFXToken Argument;
    if (Line.pTokens->NextArgument(Argument))
    {
        Error.format("Incomplete argument in [%s] on line %d: %s\n", Line.pBlockName, Line.iLine, pText);
        return 1;
    }
    if (Argument.IsEmpty())
    {
        Error.format(pMissing, Line.pBlockName, Line.iLine);
        return 1;
    }
    if (CheckNoMoreData(Line, Error))
        return 1;
    CZamTString Name;
    if (ResolveName(Argument.ToString(), Line.pFileFolder, Name))
    {
        Error = "Out of memory\n";
        return 1;
    }
    const CZamTResourceFile File(Name.GetString());
    if (!File.IsOpen() || File.GetSize() > CZamTString::MaxLength)
    {
        Error.format("Error loading file '%s' in [%s] on line %d\n", Name.GetString(), Line.pBlockName, Line.iLine);
        return 1;
    }
    if (Contents.Assign(static_cast<const char*>(File.GetData()), static_cast<uint32_t>(File.GetSize())))
    {
        Error = "Out of memory\n";
        return 1;
    }
    return 0;
}

int ReadShaderLine(const SZamTZFXBlock& Block, uint32_t& uiLine, const char* pBlockName, SShaderState& State,
                   CZamTString& Error)
{
    const CZamTZFXLineTable& Lines = *Block.pLines;
    CZamTZFXTokenizer Tokens(Lines.GetToken(uiLine), CZamTZFXTokenizer::Spaces);
    const SShaderLine Line = {&Tokens, pBlockName, Lines.GetNumber(uiLine), Block.pFileFolder};
    SZamTZFXToken Keyword;
    if (!Tokens.Next(Keyword))
    {
        Error.format("Missing arguments in [%s] on line %d: %s\n", pBlockName, Line.iLine, Lines.GetText(uiLine));
        return 1;
    }
    switch (ZamTZFXFindKeyword(Keyword.Hash(), ShaderKeywordHashes(), eShaderKeywordCount))
    {
    case eCode:
        if (State.bCode)
            Error.format("[GLSL_CODE] redefined in [%s] on line %d\n", pBlockName, Line.iLine);
        else if (State.bFile)
            Error.format("[GLSL_CODE] not allowed with FILE in [%s] on line %d\n", pBlockName, Line.iLine);
        else if (CheckNoMoreData(Line, Error) == 0)
        {
            State.bCode = true;
            return ReadInlineCode(Block, uiLine, pBlockName, State.Shader, Error);
        }
        return 1;
    case eName:
    {
        SZamTZFXToken Name;
        if (State.bName)
            Error.format("NAME redefined in [%s] on line %d\n", pBlockName, Line.iLine);
        else if (!Tokens.Next(Name))
            Error.format("NAME missing value in [%s] on line %d\n", pBlockName, Line.iLine);
        else if (CheckNoMoreData(Line, Error) == 0)
        {
            State.bName = true;
            State.Shader.Name.Set(Name.pText, Name.uiLength);
            return 0;
        }
        return 1;
    }
    case eFile:
        if (State.bFile)
            Error.format("FILE redefined in [%s] on line %d\n", pBlockName, Line.iLine);
        else if (State.bCode)
            Error.format("FILE not allowed with [GLSL_CODE] in [%s] on line %d\n", pBlockName, Line.iLine);
        else if (LoadFileArgument(Line, "FILE missing value in [%s] on line %d\n", Lines.GetText(uiLine),
                                  State.Shader.Source, Error)
                 == 0)
        {
            State.bFile = true;
            return 0;
        }
        return 1;
    case eBinaryFile:
        return LoadFileArgument(Line, "BINARYFILE missing value in [%s] on line %d\n", Lines.GetText(uiLine),
                                State.Shader.Binary, Error);
    default:
        Error.format("Unknown keyword '%s' in [%s] on line %d\n", Keyword.ToString().GetString(), pBlockName,
                     Line.iLine);
        return 1;
    }
}

int ReadShader(const SZamTZFXBlock& Block, const char* pBlockName, CZamTArray<SZamTZFXParserShader>& List,
               CZamTString& Error)
{
    SShaderState State;
    for (uint32_t uiLine = Block.uiBegin; uiLine < Block.uiEnd; ++uiLine)
    {
        if (!Block.pLines->IsEmpty(uiLine) && ReadShaderLine(Block, uiLine, pBlockName, State, Error))
            return 1;
    }
    if (!State.bName)
    {
        Error.format("NAME not found in [%s] on line %d.\n", pBlockName, Block.iOpeningLine);
        return 1;
    }
    if (!State.bFile && !State.bCode)
    {
        Error.format("No Shader File or Shader Code specified in [%s] on line %d\n", pBlockName, Block.iOpeningLine);
        return 1;
    }
    State.Shader.uiIndex = List.GetSize();
    if (List.Append(SZamTZFXParserShader()))
    {
        Error = "Out of memory\n";
        return 1;
    }
    List[List.GetSize() - 1] = std::move(State.Shader);
    return 0;
}
} // namespace

int ZamTZFXReadVertexShader(const SZamTZFXBlock& Block, SZamTZFXDocument& Document, CZamTString& Error)
{
    return ReadShader(Block, "VERTEXSHADER", Document.VertexShaders, Error);
}

int ZamTZFXReadFragmentShader(const SZamTZFXBlock& Block, SZamTZFXDocument& Document, CZamTString& Error)
{
    return ReadShader(Block, "FRAGMENTSHADER", Document.FragmentShaders, Error);
}
