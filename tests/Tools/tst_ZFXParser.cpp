#include "Tools/ZamTResourceFile.h"
#include "Tools/ZamTZFXParser.h"

#include <QtTest>

#include <random>

namespace
{
// Six lines each, for files that must get past the whole-file checks.
const char kVertexShader[] = "[VERTEXSHADER]\nNAME vs\n[GLSL_CODE]\nvoid main(){}\n[/GLSL_CODE]\n[/VERTEXSHADER]\n";
const char kFragmentShader[] =
    "[FRAGMENTSHADER]\nNAME fs\n[GLSL_CODE]\nvoid main(){}\n[/GLSL_CODE]\n[/FRAGMENTSHADER]\n";
const char kEffect[] = "[EFFECT]\nNAME e\nVERTEXSHADER vs\nFRAGMENTSHADER fs\n[/EFFECT]\n";

const char kWater[] = R"(// Water effect
[HEADER]
VERSION 1.2   beta
DESCRIPTION Water with reflections // not part of the value
COPYRIGHT (c) Example
[/HEADER]

[TEXTURES]
FILE base textures/base.tex LINEAR-LINEAR-NEAREST REPEAT-REPEAT
[/TEXTURES]

[TEXTURE]
NAME reflection
VIEW MirrorView
RESOLUTION 256 128
SURFACETYPE RGBA8888
FILTER LINEAR-LINEAR-NONE
WRAP CLAMP-REPEAT
CAMERA mirror
[/TEXTURE]

[TEXTURE]
	NAME normals
	PATH "textures/water normals.tex"
	WRAP_S REPEAT
[/TEXTURE]

[TARGET]
NAME shadowDepth
RESOLUTION 512 512
SURFACETYPE DEPTH16
[/TARGET]

[VERTEXSHADER]
NAME waterVS
[GLSL_CODE]
attribute vec4 a_position; // object space
uniform mat4 u_mvp;

void main()
{
	gl_Position  =  u_mvp * a_position;
}
[/GLSL_CODE]
[/VERTEXSHADER]

[FRAGMENTSHADER]
NAME waterFS
[GLSL_CODE]
void main() { gl_FragColor = vec4(1.0); }
[/GLSL_CODE]
[/FRAGMENTSHADER]

[FRAGMENTSHADER]
NAME fileFS
FILE shader.frag
BINARYFILE "shader.bin"
[/FRAGMENTSHADER]

[EFFECT]
NAME Water
[ANNOTATION]
Reflective   water.
// a comment line
[/ANNOTATION]
VERTEXSHADER waterVS
FRAGMENTSHADER waterFS
TEXTURE 0 base
TEXTURE 1 reflection
UNIFORM u_base TEXTURE0
UNIFORM u_reflection TEXTURE1
UNIFORM u_tint COLOR (1.0, 0.5, -2, true)
ATTRIBUTE a_uv TEXCOORD12
TARGET COLOR reflection
TARGET DEPTH shadowDepth
[/EFFECT])";

const char kFileShader[] = "void main()\n{\n}\n";
const char kBinary[] = "\x01\x00\x02";

QByteArray Shaders()
{
    return QByteArray(kVertexShader) + kFragmentShader;
}

QByteArray Bytes(const CZamTString& String)
{
    return QByteArray(String.GetString(), int(String.GetLength()));
}

QByteArray ParseError(const QByteArray& Text)
{
    CZamTZFXParser Parser;
    CZamTString Error;
    const int iResult = Parser.ParseFromMemory(Text.constData(), Error);
    return iResult == 0 ? QByteArray("<ok>") : Bytes(Error);
}

// Wraps body lines in a complete file whose vertex shader's [GLSL_CODE] is on line 3.
QByteArray WithCode(const QByteArray& Code)
{
    return "[VERTEXSHADER]\nNAME v\n[GLSL_CODE]\n" + Code + "\n[/GLSL_CODE]\n[/VERTEXSHADER]\n" + kFragmentShader
           + kEffect;
}

QByteArray ViewTexture(const QByteArray& Name, const QByteArray& Extra = QByteArray())
{
    return "[TEXTURE]\nNAME " + Name + "\nVIEW ZFX_CURRENTVIEW\n" + Extra + "[/TEXTURE]\n";
}

// An effect drawing into Drawn while sampling Sampled (space-separated names).
QByteArray DrawingEffect(const QByteArray& Drawn, const QByteArray& Sampled, const QByteArray& Kind = "COLOR")
{
    QByteArray Text = "[EFFECT]\nNAME e\nVERTEXSHADER vs\nFRAGMENTSHADER fs\n";
    int iUnit = 0;
    for (const QByteArray& Name : Sampled.split(' '))
    {
        if (Name.isEmpty())
            continue;
        const QByteArray Unit = QByteArray::number(iUnit++);
        Text += "TEXTURE " + Unit + " " + Name + "\nUNIFORM u TEXTURE" + Unit + "\n";
    }
    for (const QByteArray& Name : Drawn.split(' '))
    {
        if (!Name.isEmpty())
            Text += "TARGET " + Kind + " " + Name + "\n";
    }
    return Text + "[/EFFECT]\n";
}

QByteArray PadToLines(QByteArray Text, int iLines)
{
    const int iHave = int(Text.count('\n')) + 1;
    return Text + QByteArray(iLines - iHave, '\n');
}
} // namespace

class CZFXParserTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QCOMPARE(CZamTResourceFile::RegisterMemoryFile("shader.frag", kFileShader, sizeof(kFileShader) - 1, false), 0);
        QCOMPARE(CZamTResourceFile::RegisterMemoryFile("shader.bin", kBinary, sizeof(kBinary) - 1, false), 0);
        QCOMPARE(CZamTResourceFile::RegisterMemoryFile("water.zfx", kWater, sizeof(kWater) - 1, false), 0);
    }

    void RealisticFile()
    {
        CZamTZFXParser Parser;
        CZamTString Error;
        QCOMPARE(Parser.ParseFromFile("water.zfx", Error), 0);
        QCOMPARE(Bytes(Error), QByteArray());

        QCOMPARE(Bytes(Parser.GetVersion()) + '|' + Bytes(Parser.GetDescription()) + '|' + Bytes(Parser.GetCopyright()),
                 QByteArray("1.2 beta|Water with reflections|(c) Example"));

        const auto& Textures = Parser.GetTextures();
        QCOMPARE(Textures.GetSize(), 3u);
        const SZamTZFXParserTexture& Base = *Textures[0];
        QCOMPARE(Bytes(Base.FileName.Text), QByteArray("textures/base.tex"));
        QCOMPARE(Base.uiMinificationFilter + Base.uiMagnificationFilter * 10 + Base.uiMipmapFilter * 100, 11u);
        QCOMPARE(Base.uiWrapS + Base.uiWrapT * 10 + Base.uiWrapR * 100, 11u);
        const SZamTZFXParserTexture& Reflection = *Textures[1];
        QVERIFY(Reflection.bRenderToTexture);
        QCOMPARE(Bytes(Reflection.FileName.Text), QByteArray("reflection"));
        QCOMPARE(QList<uint>({Reflection.uiWidth, Reflection.uiHeight}), QList<uint>({256, 128}));
        QCOMPARE(Reflection.uiSurfaceFlags, uint32_t(eZamTZFXSurfaceColor | eZamTZFXSurfaceRGBA8888));
        QCOMPARE(Reflection.uiMipmapFilter, uint32_t(eZamTZFXFilterNone));
        QCOMPARE(Reflection.uiWrapT, uint32_t(eZamTZFXWrapRepeat));
        QCOMPARE(Bytes(Textures[2]->FileName.Text), QByteArray("textures/water normals.tex"));
        QVERIFY(!Textures[2]->bRenderToTexture);
        QCOMPARE(Textures[2]->Name.Hash, CZamTHash("normals"));

        QCOMPARE(Parser.GetRenderTargets().GetSize(), 1u);
        QCOMPARE(Parser.GetRenderTargets()[0].uiSurfaceFlags, uint32_t(eZamTZFXSurfaceDepth | eZamTZFXSurfaceDepth16));
        QCOMPARE(Parser.GetRenderPasses().GetSize(), 1u);
        const SZamTZFXRenderPass& Pass = Parser.GetRenderPasses()[0];
        QCOMPARE(Pass.pTexture, Textures[1]);
        QCOMPARE(Pass.uiType, 1u);
        QCOMPARE(Pass.uiViewKind, 1u);
        QCOMPARE(Bytes(Pass.ViewName.Text), QByteArray("MirrorView"));
        QCOMPARE(Pass.uiSurfaceFlags, Reflection.uiSurfaceFlags);

        QCOMPARE(Parser.GetVertexShaders().GetSize(), 1u);
        const SZamTZFXParserShader& Vertex = Parser.GetVertexShaders()[0];
        QCOMPARE(Bytes(Vertex.Name.Text), QByteArray("waterVS"));
        QCOMPARE(Vertex.uiFirstLine, 36u);
        QCOMPARE(Bytes(Vertex.Source), QByteArray("attribute vec4 a_position;\nuniform mat4 u_mvp;\n\nvoid main()\n{\n"
                                                  "gl_Position = u_mvp * a_position;\n}\n"));
        const auto& Fragments = Parser.GetFragmentShaders();
        QCOMPARE(Fragments.GetSize(), 2u);
        QCOMPARE(Fragments[1].uiIndex, 1u);
        QCOMPARE(Fragments[1].uiFirstLine, 0u);
        QCOMPARE(Bytes(Fragments[1].Source), QByteArray(kFileShader));
        QCOMPARE(Bytes(Fragments[1].Binary), QByteArray(kBinary, 3));

        QCOMPARE(Parser.GetEffects().GetSize(), 1u);
        const SZamTZFXParserEffect& Water = Parser.GetEffects()[0];
        QCOMPARE(Bytes(Water.Annotation), QByteArray("Reflective water.\n\n"));
        QCOMPARE(Water.VertexShader.Hash, CZamTHash("waterVS"));
        QCOMPARE(Water.Textures.GetSize(), 2u);
        QCOMPARE(Water.Textures[1].uiUnit, 1u);
        QCOMPARE(Water.Uniforms.GetSize(), 3u);
        QCOMPARE(Bytes(Water.Uniforms[1].Semantic), QByteArray("TEXTURE"));
        QCOMPARE(Water.Uniforms[1].uiIndex, 1u);
        QCOMPARE(Water.Uniforms[2].uiDefaultCount, 4u);
        QCOMPARE(Water.Uniforms[2].afDefault[2], -2.0f);
        QCOMPARE(Water.Uniforms[2].afDefault[3], 1.0f);
        QCOMPARE(Bytes(Water.Attributes[0].Semantic), QByteArray("TEXCOORD"));
        QCOMPARE(Water.Attributes[0].uiIndex, 12u);
        QCOMPARE(Parser.GetTargets().GetSize(), 2u);
        QCOMPARE(Bytes(Parser.GetTargets()[1].Kind) + " " + Bytes(Parser.GetTargets()[1].Target),
                 QByteArray("DEPTH shadowDepth"));

        // A second parse starts from nothing.
        QCOMPARE(Parser.ParseFromMemory((Shaders() + kEffect).constData(), Error), 0);
        QCOMPARE(Parser.GetTextures().GetSize(), 0u);
        QCOMPARE(Parser.GetFragmentShaders().GetSize(), 1u);
        QCOMPARE(Parser.GetRenderPasses().GetSize(), 0u);
        QVERIFY(Parser.GetVersion().IsEmpty());

        QCOMPARE(Parser.ParseFromMemory(nullptr, Error), 1);
        QVERIFY(Error.IsEmpty());
        QCOMPARE(Parser.ParseFromFile("missing.zfx", Error), 1);
        QCOMPARE(Bytes(Error), QByteArray("Error loading file 'missing.zfx'\n"));
    }

    // FILE and BINARYFILE name files beside the effect file, wherever the program was started.
    void FilesBesideTheEffect()
    {
        QTemporaryDir Dir;
        QVERIFY(QDir(Dir.path()).mkpath(QStringLiteral("fx/shaders")));
        const QString Folder = Dir.filePath(QStringLiteral("fx"));
        const auto Write = [&](const QString& Name, const QByteArray& Bytes)
        {
            QFile File(Folder + "/" + Name);
            return File.open(QIODevice::WriteOnly) && File.write(Bytes) == Bytes.size();
        };
        const QByteArray Effect =
            "[VERTEXSHADER]\nNAME vs\nFILE shaders/lit.vert\n[/VERTEXSHADER]\n"
            "[FRAGMENTSHADER]\nNAME fs\nFILE lit.frag\nBINARYFILE \"lit bin.dat\"\n[/FRAGMENTSHADER]\n"
            + QByteArray(kEffect);
        QVERIFY(Write("scene.zfx", Effect) && Write("shaders/lit.vert", "void main() { gl_Position = vec4(0.0); }\n")
                && Write("lit.frag", kFileShader) && Write("lit bin.dat", QByteArray(kBinary, 3)));

        CZamTZFXParser Parser;
        CZamTString Error;
        QCOMPARE(Parser.ParseFromFile(QFile::encodeName(Folder + "/scene.zfx").constData(), Error), 0);
        QCOMPARE(Bytes(Parser.GetFragmentShaders()[0].Source), QByteArray(kFileShader));
        QCOMPARE(Bytes(Parser.GetFragmentShaders()[0].Binary), QByteArray(kBinary, 3));
        QVERIFY(Bytes(Parser.GetVertexShaders()[0].Source).startsWith("void main()"));

        // A text from memory (an editor's tab) is given its folder.
        Parser.SetFileFolder(QFile::encodeName(Folder).constData());
        QCOMPARE(Parser.ParseFromMemory(Effect.constData(), Error), 0);
        QCOMPARE(Bytes(Parser.GetFragmentShaders()[0].Source), QByteArray(kFileShader));
        // An absolute name stays as it is.
        const QByteArray Absolute =
            QByteArray(Effect).replace("FILE lit.frag", "FILE " + QFile::encodeName(Folder) + "/lit.frag");
        QCOMPARE(Parser.ParseFromMemory(Absolute.constData(), Error), 0);
        // A file that is not there is named with the folder it was looked for in.
        const QByteArray Missing = QByteArray(Effect).replace("FILE lit.frag", "FILE absent.frag");
        QCOMPARE(Parser.ParseFromMemory(Missing.constData(), Error), 1);
        QCOMPARE(Bytes(Error),
                 "Error loading file '" + QFile::encodeName(Folder) + "/absent.frag' in [FRAGMENTSHADER] on line 7\n");
    }

    void Errors_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("error");
        const auto Row = [](const char* pName, const char* pText, const char* pError) {
            QTest::newRow(pName) << QByteArray(pText) << QByteArray(pError);
        };
        const QByteArray Effect(kEffect);
        const QByteArray SampleX = "[EFFECT]\nNAME e\nVERTEXSHADER vs\nFRAGMENTSHADER fs\nTEXTURE 0 x\nUNIFORM s TEXTURE0\n[/EFFECT]\n";

        Row("lower-case tag", "[header]\n[/header]", "'[header]' unexpected on line 1\n");
        Row("text after tag", "\n[HEADER] x", "'[HEADER] x' unexpected on line 2\n");
        Row("tag with comment", "[HEADER] // c\n[/HEADER]\nx", "'x' unexpected on line 3\n");
        for (const char* pName : {"HEADER", "TEXTURE", "TARGET", "TEXTURES", "VERTEXSHADER", "FRAGMENTSHADER", "EFFECT"})
        {
            const QByteArray Name(pName);
            QTest::addRow("unclosed %s", pName) << "\n[" + Name + "]\n[/" + Name.toLower() + "]"
                                               << "Missing [/" + Name + "] tag after [" + Name + "] on line 2\n";
        }
        Row("second empty header", "[HEADER]\n[/HEADER]\n[HEADER]", "[HEADER] redefined on line 3\n");
        Row("second textures", "[TEXTURES]\n[/TEXTURES]\n\n[TEXTURES]", "[TEXTURES] redefined on line 4\n");
        QTest::newRow("no effect") << Shaders() << QByteArray("No [EFFECT] found. ZFX file must have at least one defined.\n");
        QTest::newRow("no shaders") << Effect << QByteArray("No [FRAGMENTSHADER] found. ZFX file must have at least one defined.\n");
        QTest::newRow("no vertex shader") << kFragmentShader + Effect << QByteArray("No [VERTEXSHADER] found. ZFX file must have at least one defined.\n");
        QTest::newRow("undeclared texture") << Shaders() + SampleX << QByteArray("Error: TEXTURE 'x' is not defined in [TEXTURES].\n");

        Row("header keyword", "[HEADER]\nversion 1\n[/HEADER]", "Unknown keyword 'version' in [HEADER] on line 2\n");

        Row("filter missing", "[TEXTURE]\nFILTER\n[/TEXTURE]", "Missing FILTER arguments in [TEXTURE] on line 2: FILTER\n");
        Row("wrap missing", "[TARGET]\nWRAP\n[/TARGET]", "Missing WRAP arguments in [TARGET] on line 2: WRAP\n");
        Row("mipmap missing", "[TARGET]\nMIPMAP \n[/TARGET]", "Missing arguments in [TARGET] on line 2: MIPMAP\n");
        Row("surface missing", "[TEXTURE]\nSURFACETYPE\n[/TEXTURE]", "Missing SURFACETYPE arguments in [TARGET] on line 2\n");
        Row("resolution half", "[TEXTURE]\nRESOLUTION 64\n[/TEXTURE]", "Missing RESOLUTION argument(s) (requires width AND height) in [TARGET] on line 2\n");
        Row("resolution word", "[TARGET]\nRESOLUTION 64 x1\n[/TARGET]", "Invalid RESOLUTION argument \"x1\" in [TEXTURE] on line 2\n");
        Row("resolution overflow", "[TARGET]\nRESOLUTION 4294967296 1\n[/TARGET]", "Invalid RESOLUTION argument \"4294967296\" in [TEXTURE] on line 2\n");
        Row("parameter extra", "[TARGET]\nWRAP_S CLAMP REPEAT\n[/TARGET]", "Unexpected keyword 'REPEAT' in [TARGET] on line 2: WRAP_S CLAMP REPEAT\n");
        Row("filter glued name", "[TEXTURE]\nFILTER XLINEAR\n[/TEXTURE]", "Unknown keyword 'XLINEAR' in [TEXTURES] on line 2: FILTER XLINEAR\n");
        Row("parameters before keywords", "[TEXTURE]\nBOGUS\nWRAP\n[/TEXTURE]", "Missing WRAP arguments in [TEXTURE] on line 3: WRAP\n");

        Row("texture name missing", "[TEXTURE]\nNAME\n[/TEXTURE]", "Missing NAME arguments in [TEXTURE] on line 2: NAME\n");
        Row("texture name extra", "[TEXTURE]\nNAME a b\n[/TEXTURE]", "Unexpected keyword 'b' in [TEXTURE] on line 2: NAME a b\n");
        Row("path extra", "[TEXTURE]\nPATH \"a b\" c\n[/TEXTURE]", "Unexpected keyword 'c' in [TEXTURE] on line 2: PATH \"a b\" c\n");
        Row("path missing", "[TEXTURE]\nPATH \"\"\n[/TEXTURE]", "Missing PATH arguments in [TEXTURE] on line 2: PATH \"\"\n");
        Row("view missing", "[TEXTURE]\nVIEW\n[/TEXTURE]", "Missing VIEW argument in [TEXTURE] on line 2: VIEW\n");
        Row("path unclosed", "[TEXTURE]\nPATH \"a b\n[/TEXTURE]", "Incomplete argument in [TEXTURE] on line 2: PATH \"a b\n");
        Row("texture blank token", "[TEXTURE]\n \r \n[/TEXTURE]", "Missing arguments in [TEXTURE] on line 2: \r\n");
        Row("texture keyword", "[TEXTURE]\nFILE a\n[/TEXTURE]", "Unknown keyword 'FILE' in [TEXTURE] on line 2: FILE a\n");
        Row("texture no name", "\n[TEXTURE]\nPATH a\n[/TEXTURE]", "No NAME tag specified in [TEXTURE] on line 2\n");
        Row("texture both", "\n[TEXTURE]\nNAME a\nPATH a\nVIEW v\n[/TEXTURE]", "Both PATH and VIEW tags specified in [TEXTURE] on line 2\n");
        Row("texture neither", "\n[TEXTURE]\nNAME a\n[/TEXTURE]", "No PATH or VIEW tag specified in [TEXTURE] on line 2\n");

        Row("target name missing", "[TARGET]\nNAME\n[/TARGET]", "Missing NAME arguments in [TARGET] on line 2\n");
        Row("target name extra", "[TARGET]\nNAME a b\n[/TARGET]", "Unexpected keyword 'b' in [TARGET] on line 2\n");
        Row("target blank token", "[TARGET]\n\t\r\t\n[/TARGET]", "Missing arguments in [TARGET] on line 2\n");
        Row("target keyword", "[TARGET]\nPATH a\n[/TARGET]", "Unknown keyword 'PATH' in [TARGET] on line 2\n");

        Row("textures render", "[TEXTURES]\nRENDER a\n[/TEXTURES]", "RENDER tag no longer supported in [TEXTURES] block. Use new [TARGET] block instead\n");
        Row("textures keyword", "[TEXTURES]\nFile a a.tex\n[/TEXTURES]", "Unknown keyword 'File' in [TEXTURES] on line 2\n");
        Row("textures blank token", "[TEXTURES]\n \r\t\n[/TEXTURES]", "Missing arguments in [TEXTURES] on line 2: \r\n");
        Row("textures no name", "[TEXTURES]\nFILE\n[/TEXTURES]", "Texture name missing in [TEXTURES] on line 2: FILE\n");
        Row("textures no file", "[TEXTURES]\nFILE a\n[/TEXTURES]", "Incomplete definition in [TEXTURES] on line 2: FILE a\n");
        Row("textures blank file", "[TEXTURES]\nFILE a \r\t\n[/TEXTURES]", "Texture name missing in [TEXTURES] on line 2: FILE a \r\n");
        Row("textures glued wrap", "[TEXTURES]\nFILE a a.tex LINEAR QREPEAT\n[/TEXTURES]", "Unknown keyword 'QREPEAT' in [TEXTURES] on line 2: FILE a a.tex LINEAR QREPEAT\n");

        Row("annotation twice", "[EFFECT]\n[ANNOTATION]\n[/ANNOTATION]\n[ANNOTATION]\n[/ANNOTATION]\n[/EFFECT]", "ANNOTATION redefined in [EFFECT] on line 4: \n");
        Row("annotation unclosed", "[EFFECT]\n[ANNOTATION]\n[/EFFECT]", "Missing [/ANNOTATION] tag after [ANNOTATION] in [EFFECT] on line 2\n");
        Row("vertex twice", "[EFFECT]\nVERTEXSHADER a\nVERTEXSHADER a\n[/EFFECT]", "VERTEXSHADER redefined in [EFFECT] on line 3: \n");
        Row("fragment twice", "[EFFECT]\nFRAGMENTSHADER a\nFRAGMENTSHADER a\n[/EFFECT]", "FRAGMENTSHADER redefined in [EFFECT] on line 3: \n");
        Row("vertex missing", "[EFFECT]\nVERTEXSHADER\n[/EFFECT]", "VERTEXSHADER missing value in [EFFECT] on line 2\n");
        Row("fragment missing", "[EFFECT]\nFRAGMENTSHADER\n[/EFFECT]", "FRAGMENTSHADER missing value in [EFFECT] on line 2\n");
        Row("texture half", "[EFFECT]\nTEXTURE 0\n[/EFFECT]", "TEXTURE missing value in [EFFECT] on line 2\n");
        Row("uniform bare", "[EFFECT]\nUNIFORM\n[/EFFECT]", "UNIFORM missing name in [EFFECT] on line 2\n");
        Row("attribute bare", "[EFFECT]\nATTRIBUTE\n[/EFFECT]", "UNIFORM missing name in [EFFECT] on line 2\n");
        Row("uniform half", "[EFFECT]\nUNIFORM u\n[/EFFECT]", "UNIFORM missing value in [EFFECT] on line 2\n");
        Row("semantic digits", "[EFFECT]\nUNIFORM u 123\n[/EFFECT]", "Semantic contains only numbers in [EFFECT] on line 2\n");
        Row("effect name twice", "[EFFECT]\nNAME a\nNAME a\n[/EFFECT]", "NAME redefined in [EFFECT] on line 3\n");
        Row("effect name missing", "[EFFECT]\nNAME\n[/EFFECT]", "NAME missing value in [EFFECT] on line 2\n");
        Row("target half", "[EFFECT]\nTARGET COLOR\n[/EFFECT]", "TARGET missing value(s) in [EFFECT] on line 2\n");
        Row("effect keyword", "[EFFECT]\nSAMPLER a\n[/EFFECT]", "Unknown keyword 'SAMPLER' in [EFFECT] on line 2\n");
        Row("texture unbound", "[EFFECT]\nUNIFORM u TEXTURE0\nTEXTURE 0 a\nTEXTURE 1 b\n[/EFFECT]", "TEXTURE b missing matching UNIFORM in [EFFECT] on line 4\n");
        Row("effect no name", "\n[EFFECT]\nVERTEXSHADER v\n[/EFFECT]", "No 'NAME' found in [EFFECT] on line 2\n");
        Row("effect no vertex", "\n[EFFECT]\nNAME e\nFRAGMENTSHADER f\n[/EFFECT]", "No 'VERTEXSHADER' defined in [EFFECT] starting on line 2: \n");
        Row("effect no fragment", "\n[EFFECT]\nNAME e\nVERTEXSHADER v\n[/EFFECT]", "No 'FRAGMENTSHADER' defined in [EFFECT] starting on line 2: \n");

        for (const char* pBlock : {"VERTEXSHADER", "FRAGMENTSHADER"})
        {
            const auto ShaderRow = [pBlock](const char* pName, const char* pBody, const char* pError) {
                QTest::addRow("%s %s", pBlock, pName) << ("\n[" + QByteArray(pBlock) + "]\n" + pBody + "\n[/" + pBlock + "]")
                                                      << QByteArray(pError).replace("%B", pBlock);
            };
            ShaderRow("code twice", "[GLSL_CODE]\n[/GLSL_CODE]\n[GLSL_CODE]\n[/GLSL_CODE]", "[GLSL_CODE] redefined in [%B] on line 5\n");
            ShaderRow("code after file", "FILE shader.frag\n[GLSL_CODE]\n[/GLSL_CODE]", "[GLSL_CODE] not allowed with FILE in [%B] on line 4\n");
            ShaderRow("code unclosed", "[GLSL_CODE]\nx", "Missing [/GLSL_CODE] tag after [GLSL_CODE] in [%B] on line 3\n");
            ShaderRow("code data", "[GLSL_CODE] x\n[/GLSL_CODE]", "Unexpected data in [%B] on line 3: 'x'\n");
            ShaderRow("name twice", "NAME a\nNAME b", "NAME redefined in [%B] on line 4\n");
            ShaderRow("name missing", "NAME", "NAME missing value in [%B] on line 3\n");
            ShaderRow("name data", "NAME a b", "Unexpected data in [%B] on line 3: 'b'\n");
            ShaderRow("file twice", "FILE shader.frag\nFILE shader.frag", "FILE redefined in [%B] on line 4\n");
            ShaderRow("file after code", "[GLSL_CODE]\n[/GLSL_CODE]\nFILE shader.frag", "FILE not allowed with [GLSL_CODE] in [%B] on line 5\n");
            ShaderRow("file missing", "FILE", "FILE missing value in [%B] on line 3\n");
            ShaderRow("file unclosed", "FILE \"a", "Incomplete argument in [%B] on line 3: FILE \"a\n");
            ShaderRow("file unreadable", "FILE \"no such.frag\"", "Error loading file 'no such.frag' in [%B] on line 3\n");
            ShaderRow("binary missing", "BINARYFILE", "BINARYFILE missing value in [%B] on line 3\n");
            ShaderRow("binary unreadable", "BINARYFILE none.bin", "Error loading file 'none.bin' in [%B] on line 3\n");
            ShaderRow("keyword", "name a", "Unknown keyword 'name' in [%B] on line 3\n");
            ShaderRow("no name", "FILE shader.frag", "NAME not found in [%B] on line 2.\n");
            ShaderRow("no source", "NAME a\nBINARYFILE shader.bin", "No Shader File or Shader Code specified in [%B] on line 2\n");
        }
        const QByteArray Mismatch = "Surface type mismatch in [EFFECT]. \"%1\" has different type than \"%2\"\n";
        QTest::newRow("colour into depth") << ViewTexture("d", "SURFACETYPE DEPTH24\n") + DrawingEffect("d", "") + Shaders()
                                           << QByteArray(Mismatch).replace("%1", "COLOR").replace("%2", "DEPTH");
        QTest::newRow("depth into colour") << "[TARGET]\nNAME t\nSURFACETYPE RGB565\n[/TARGET]\n" + DrawingEffect("t", "", "DEPTH") + Shaders()
                                           << QByteArray(Mismatch).replace("%1", "DEPTH").replace("%2", "COLOR");
        QTest::newRow("matching") << ViewTexture("d", "SURFACETYPE DEPTH8\n") + DrawingEffect("d", "", "DEPTH") + Shaders() << QByteArray("<ok>");
        QTest::newRow("no surface type") << ViewTexture("d") + DrawingEffect("d", "", "DEPTH") + Shaders() << QByteArray("<ok>");
        QTest::newRow("unknown surface type") << ViewTexture("d", "SURFACETYPE RGBA32F\n") + DrawingEffect("d", "", "DEPTH") + Shaders() << QByteArray("<ok>");
        QTest::newRow("other kind word") << ViewTexture("d", "SURFACETYPE DEPTH8\n") + DrawingEffect("d", "", "STENCIL") + Shaders() << QByteArray("<ok>");
        // clang-format on
    }

    void Errors()
    {
        QFETCH(QByteArray, text);
        QFETCH(QByteArray, error);
        QCOMPARE(ParseError(text), error);
    }

    void Lines_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("code");
        QTest::addColumn<QByteArray>("source");
        const QByteArray Long(600, 'a');
        QTest::newRow("comment and spacing") << QByteArray("\t x  =\t1; // set x\n//\n  y;  ") << QByteArray("x = 1;\n\ny;\n");
        QTest::newRow("comment in string") << QByteArray("s = \"http://a\";") << QByteArray("s = \"http:\n");
        QTest::newRow("crlf") << QByteArray("a;\r\n\r\nb;\r\r") << QByteArray("a;\n\nb;\n");
        QTest::newRow("carriage returns inside") << QByteArray("\r\ra\rb") << QByteArray("a\rb\n");
        QTest::newRow("600 characters") << Long << Long.left(511) + "\n" + Long.left(88) + "\n";
        QTest::newRow("512 characters") << Long.left(512) << Long.left(511) + "\n\n";
        QTest::newRow("long with carriage returns") << Long + "\r\r" << Long.left(511) + "\n" + Long.left(86) + "\n";
        QTest::newRow("1100 characters") << QByteArray(1100, 'b') << QByteArray(511, 'b') + "\n" + QByteArray(511, 'b') + "\n" + QByteArray(76, 'b') + "\n";
        // clang-format on
    }

    void Lines()
    {
        QFETCH(QByteArray, code);
        QFETCH(QByteArray, source);
        CZamTZFXParser Parser;
        CZamTString Error;
        QCOMPARE(Parser.ParseFromMemory(WithCode(code).constData(), Error), 0);
        QCOMPARE(Bytes(Parser.GetVertexShaders()[0].Source), source);
        QCOMPARE(Parser.GetVertexShaders()[0].uiFirstLine, 3u);
        // The split of a long line shifts every later line number by one per extra slice.
        const int iCodeLines = int(source.count('\n'));
        QCOMPARE(ParseError(WithCode(code) + "BOGUS"),
                 "'BOGUS' unexpected on line " + QByteArray::number(iCodeLines + 17) + "\n");
    }

    void TextureParameters_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QList<uint>>("values"); // filters, wraps, width, height
        QTest::newRow("nothing") << QByteArray("") << QList<uint>{0, 0, 0, 0, 0, 0, 0, 0};
        QTest::newRow("filter list") << QByteArray("FILTER NONE-LINEAR-NEAREST") << QList<uint>{2, 1, 0, 0, 0, 0, 0, 0};
        QTest::newRow("unknown filter ignored") << QByteArray("MAGNIFICATION LINEAR\nFILTER FOO") << QList<uint>{0, 1, 0, 0, 0, 0, 0, 0};
        QTest::newRow("unknown value keeps field") << QByteArray("FILTER LINEAR-LINEAR\nFILTER FOO-NONE") << QList<uint>{1, 2, 0, 0, 0, 0, 0, 0};
        QTest::newRow("fourth value ignored") << QByteArray("FILTER LINEAR-LINEAR-LINEAR-NONE") << QList<uint>{1, 1, 1, 0, 0, 0, 0, 0};
        QTest::newRow("case sensitive") << QByteArray("FILTER LINEAR-linear") << QList<uint>{1, 0, 0, 0, 0, 0, 0, 0};
        QTest::newRow("single filters") << QByteArray("MIPMAP NONE\nMINIFICATION LINEAR") << QList<uint>{1, 0, 2, 0, 0, 0, 0, 0};
        QTest::newRow("wrap list") << QByteArray("WRAP REPEAT-CLAMP-REPEAT") << QList<uint>{0, 0, 0, 1, 0, 1, 0, 0};
        QTest::newRow("single wraps") << QByteArray("WRAP_T REPEAT\nWRAP_R REPEAT") << QList<uint>{0, 0, 0, 0, 1, 1, 0, 0};
        QTest::newRow("repeated overwrites") << QByteArray("RESOLUTION 1 2\nRESOLUTION 640 480") << QList<uint>{0, 0, 0, 0, 0, 0, 640, 480};
        // clang-format on
    }

    void TextureParameters()
    {
        QFETCH(QByteArray, body);
        QFETCH(QList<uint>, values);
        CZamTZFXParser Parser;
        CZamTString Error;
        const QByteArray Text = "[TEXTURE]\nNAME t\nPATH t.tex\n" + body + "\n[/TEXTURE]\n" + Shaders() + kEffect;
        QCOMPARE(Parser.ParseFromMemory(Text.constData(), Error), 0);
        const SZamTZFXParserTexture& Texture = *Parser.GetTextures()[0];
        const QList<uint> Actual{Texture.uiMinificationFilter,
                                 Texture.uiMagnificationFilter,
                                 Texture.uiMipmapFilter,
                                 Texture.uiWrapS,
                                 Texture.uiWrapT,
                                 Texture.uiWrapR,
                                 Texture.uiWidth,
                                 Texture.uiHeight};
        QCOMPARE(Actual, values);
    }

    void UniformDefaults_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("tail");
        QTest::addColumn<QByteArray>("result");
        QTest::newRow("none") << QByteArray("") << QByteArray("0:");
        QTest::newRow("values") << QByteArray("( 1.5,-2 ,+.25, true,false)") << QByteArray("5:1.5 -2 0.25 1 0");
        QTest::newRow("sixteen") << "(" + QByteArray("1,").repeated(15) + "1)" << QByteArray("16:1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1");
        QTest::newRow("no bracket") << QByteArray("1.0") << QByteArray("Missing '(' after 'COLOR0' on line 4.\n");
        QTest::newRow("empty") << QByteArray("()") << QByteArray("'u' missing arguments on line 4.\n");
        QTest::newRow("separator") << QByteArray("(1,,2)") << QByteArray("',' unexpected for 'u' on line 4.\n");
        QTest::newRow("seventeen") << "(" + QByteArray("1,").repeated(16) + "1)" << QByteArray("'1' unexpected for 'u' on line 4.\n");
        QTest::newRow("word") << QByteArray("(1, yes)") << QByteArray("'yes' unknown on line 4.\n");
        QTest::newRow("infinity") << QByteArray("(inf)") << QByteArray("'inf' unknown on line 4.\n");
        QTest::newRow("no comma") << QByteArray("(1 2)") << QByteArray("'2' found when expecting ')' for 'u' on line 4.\n");
        QTest::newRow("unclosed") << QByteArray("(1") << QByteArray("'end of line' found when expecting ')' for 'u' on line 4.\n");
        QTest::newRow("after bracket") << QByteArray("(1) x") << QByteArray("'x' unexpected after ')' on line 4.\n");
        // clang-format on
    }

    void UniformDefaults()
    {
        QFETCH(QByteArray, tail);
        QFETCH(QByteArray, result);
        CZamTZFXParser Parser;
        CZamTString Error;
        const QByteArray Text =
            QByteArray(kEffect).replace("NAME e\n", "NAME e\n\nUNIFORM u COLOR0 " + tail + "\n") + Shaders();
        if (Parser.ParseFromMemory(Text.constData(), Error))
        {
            QCOMPARE(Bytes(Error), result);
            return;
        }
        const SZamTZFXParserSemantic& Uniform = Parser.GetEffects()[0].Uniforms[0];
        QByteArray Actual = QByteArray::number(Uniform.uiDefaultCount) + ":";
        for (uint32_t ui = 0; ui < Uniform.uiDefaultCount; ++ui)
            Actual += (ui ? " " : "") + QByteArray::number(Uniform.afDefault[ui]);
        QCOMPARE(Actual, result);
        QCOMPARE(Bytes(Uniform.Semantic), QByteArray("COLOR"));
    }

    void RenderPassOrder_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("declarations");
        QTest::addColumn<QByteArray>("order");
        const QByteArray ABC = ViewTexture("a") + ViewTexture("b") + ViewTexture("c");
        QTest::newRow("file order") << ABC + DrawingEffect("", "a b c") << QByteArray("a b c");
        QTest::newRow("sampled first") << ABC + DrawingEffect("a", "b") << QByteArray("b a c");
        QTest::newRow("chain") << ABC + DrawingEffect("a", "b") + DrawingEffect("b", "c") << QByteArray("c b a");
        QTest::newRow("several targets") << ABC + DrawingEffect("a b", "c") << QByteArray("c a b");
        QTest::newRow("own texture") << ABC + DrawingEffect("b", "b a") << QByteArray("a b c");
        QTest::newRow("ping-pong") << ABC + DrawingEffect("a", "b") + DrawingEffect("b", "a") << QByteArray("a b c");
        QTest::newRow("cycle and chain") << ABC + DrawingEffect("a", "b c") + DrawingEffect("b", "a") << QByteArray("b c a");
        QTest::newRow("plain texture") << "[TEXTURES]\nFILE f f.tex\n[/TEXTURES]\n" + ABC + DrawingEffect("a", "f") << QByteArray("a b c");
        QTest::newRow("target block") << "[TARGET]\nNAME t\n[/TARGET]\n" + ABC + DrawingEffect("t", "c") << QByteArray("a b c");
        // clang-format on
    }

    void RenderPassOrder()
    {
        QFETCH(QByteArray, declarations);
        QFETCH(QByteArray, order);
        CZamTZFXParser Parser;
        CZamTString Error;
        QCOMPARE(Parser.ParseFromMemory((declarations + Shaders()).constData(), Error), 0);
        QByteArray Actual;
        for (uint32_t ui = 0; ui < Parser.GetRenderPasses().GetSize(); ++ui)
        {
            const SZamTZFXRenderPass& Pass = Parser.GetRenderPasses()[ui];
            QCOMPARE(Pass.pTexture->Name.Hash, Pass.TextureName.Hash);
            QCOMPARE(Pass.uiViewKind, 0u);
            QVERIFY(Pass.ViewName.Text.IsEmpty());
            Actual += (ui ? " " : "") + Bytes(Pass.TextureName.Text);
        }
        QCOMPARE(Actual, order);
    }

    void LineLimit()
    {
        const QByteArray Valid = Shaders() + kEffect;
        QCOMPARE(ParseError(PadToLines(Valid, 5000)), QByteArray("<ok>"));
        const QByteArray TooMany("Too many lines of text in file (maximum is 5000)\n");
        QCOMPARE(ParseError(PadToLines(Valid, 5001)), TooMany);
        // The empty text after a final line feed is a line of its own.
        QCOMPARE(ParseError(PadToLines(Valid, 5000) + "\n"), TooMany);
        // Reported before any problem with the blocks.
        QCOMPARE(ParseError(PadToLines("[bogus]", 5001)), TooMany);
        // A huge line is read in slices, each one a line.
        QCOMPARE(ParseError(QByteArray(512 * 4999, 'x')), "'" + QByteArray(511, 'x') + "' unexpected on line 1\n");
        QCOMPARE(ParseError(QByteArray(512 * 5000 + 1, 'x')), TooMany);
    }

    void Garbage_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("error");
        std::mt19937 Random(7);
        QByteArray Binary(70000, 0);
        for (char& c : Binary)
            c = char(1 + Random() % 255);
        QTest::newRow("binary") << Binary << QByteArray();
        QTest::newRow("only line feeds") << QByteArray(4999, '\n') << QByteArray("No [EFFECT] found. ZFX file must have at least one defined.\n");
        QTest::newRow("only carriage returns") << QByteArray(100000, '\r') << QByteArray("No [EFFECT] found. ZFX file must have at least one defined.\n");
        QTest::newRow("no final line feed") << Shaders() + QByteArray(kEffect).chopped(1) << QByteArray("<ok>");
        QTest::newRow("crlf file") << QByteArray(kWater).replace("\n", "\r\n") << QByteArray("<ok>");
        QTest::newRow("cr-only line ends") << QByteArray(kWater).replace("\n", "\r") << QByteArray();
        QByteArray Mixed;
        for (int i = 0; i < 6000; ++i)
            Mixed += QByteArray("[EFFECT]\n\t\r//[/EFFECT]\n\"(,)\"\xff\n").mid(int(Random() % 10), int(Random() % 12));
        QTest::newRow("random lines") << Mixed << QByteArray();
        // clang-format on
    }

    void Garbage()
    {
        QFETCH(QByteArray, text);
        QFETCH(QByteArray, error);
        const QByteArray Actual = ParseError(text);
        if (!error.isEmpty())
            QCOMPARE(Actual, error);
        QVERIFY(Actual == "<ok>" || Actual.endsWith('\n'));

        // Through a file the text ends at its first NUL byte, whatever follows.
        const QByteArray WithNul = Shaders() + kEffect + QByteArray(1, '\0') + text;
        QCOMPARE(CZamTResourceFile::RegisterMemoryFile("nul.zfx", WithNul.constData(), size_t(WithNul.size()), false),
                 0);
        CZamTZFXParser Parser;
        CZamTString Error;
        const int iResult = Parser.ParseFromFile("nul.zfx", Error);
        CZamTResourceFile::UnregisterMemoryFile("nul.zfx");
        QCOMPARE(iResult, 0);
    }

    void Mutations()
    {
        // Random edits of a good file: every result is a success or one message ending the parse.
        std::mt19937 Random(11);
        const QByteArray Water(kWater);
        for (int iRound = 0; iRound < 3000; ++iRound)
        {
            QByteArray Text = Water;
            for (int iEdit = int(Random() % 4); iEdit >= 0; --iEdit)
            {
                const int iAt = int(Random() % uint(Text.size()));
                switch (Random() % 3)
                {
                case 0:
                    Text.remove(iAt, int(Random() % 40));
                    break;
                case 1:
                    Text.insert(iAt, Water.mid(int(Random() % uint(Water.size())), int(Random() % 60)));
                    break;
                default:
                    Text[iAt] = char(1 + Random() % 255);
                    break;
                }
            }
            const QByteArray Actual = ParseError(Text);
            QVERIFY2(Actual == "<ok>" || (Actual.endsWith('\n') && Actual.count('\n') >= 1), Text.constData());
        }
    }
};

QTEST_APPLESS_MAIN(CZFXParserTest)
#include "tst_ZFXParser.moc"
