#include "ShaderEditComponent/compile/model/CompileOptions.h"
#include "ShaderEditComponent/compile/model/CompileResult.h"
#include "ShaderEditComponent/compile/model/FileFormats.h"
#include "ShaderEditComponent/compile/model/ShaderDocType.h"
#include "ShaderEditComponent/compile/model/UIString.h"

#include <QtTest>

class CDocTypesTest : public QObject
{
    Q_OBJECT

private slots:
    void Detection_data();
    void Detection();
    void DetectionOfUnusualTexts();
    void NewFileListAndFilter();
    void OptionNamesAndTexts();
    void ProfileLookup();
};

void CDocTypesTest::Detection_data()
{
    QTest::addColumn<QString>("Contents");
    QTest::addColumn<QString>("Extension");
    QTest::addColumn<int>("Expected");

    // The HLSL and OpenCL extensions are decided before the text is looked at.
    QTest::newRow("vs beats highp") << "precision highp float; gl_Position = p;" << "vs" << 64;
    QTest::newRow("ps") << "lowp gl_Position" << "ps" << 128;
    QTest::newRow("cl") << "highp gl_FragColor" << "cl" << 1024;
    // With a precision qualifier the text beats the extension; vertex markers come first.
    QTest::newRow("fsh holding a vertex shader") << "uniform mediump mat4 m;\ngl_Position = m[0];" << "fsh" << 1;
    QTest::newRow("vert highp fragment") << "precision highp float;\ngl_FragColor = c;" << "vert" << 2;
    QTest::newRow("both markers") << "mediump vec4 c; gl_FragColor = c; gl_Position = c;" << "" << 1;
    QTest::newRow("layout in beats gl_FragColor") << "mediump x; gl_FragColor = x;\nlayout(location=0) in vec4 a;"
                                                  << "frag" << 1;
    QTest::newRow("nothing between layout and in") << "mediump float f; layout in vec4 a;" << "frag" << 1;
    QTest::newRow("layout out") << "precision mediump float;\nlayout(location = 0) out vec4 o;" << "" << 2;
    QTest::newRow("layout spans lines") << "mediump float f;\nlayout(std140) uniform B {};\nvoid g(const in vec4 v);"
                                        << "txt" << 1;
    // Without one the extension decides, and desktop GLSL is never produced.
    QTest::newRow("vert without precision") << "gl_FragColor = c;" << "vert" << 1;
    QTest::newRow("frag without precision") << "gl_Position = p;" << "frag" << 2;
    QTest::newRow("fsh") << "" << "fsh" << 2;
    QTest::newRow("unknown, vertex marker") << "gl_Position = a;" << "shader" << 0;
    QTest::newRow("unknown, layout in") << "layout(location=0) in vec4 a;" << "" << 0;
    QTest::newRow("precision, no stage, vsh") << "precision highp float;" << "vsh" << 1;
    QTest::newRow("precision, no stage, txt") << "precision highp float;" << "txt" << 0;
    QTest::newRow("zfx with precision") << "gl_Position = p; lowp float f;" << "zfx" << 16;
    QTest::newRow("zfx without precision") << "gl_Position = p;" << "zfx" << 32;
    // Whole words only, case-sensitive, exact extensions.
    QTest::newRow("qualifiers inside words") << "highpx xmediump lowp_a gl_Position" << "" << 0;
    QTest::newRow("marker inside a word") << "mediump float my_gl_Position;" << "txt" << 0;
    QTest::newRow("upper-case qualifier") << "HIGHP gl_Position" << "" << 0;
    QTest::newRow("upper-case HLSL extension") << "highp gl_Position" << "VS" << 1;
    QTest::newRow("upper-case GLSL extension") << "gl_Position" << "VSH" << 0;
}

void CDocTypesTest::Detection()
{
    QFETCH(QString, Contents);
    QFETCH(QString, Extension);
    QFETCH(int, Expected);
    const QByteArray Text = Contents.toUtf8();
    const QByteArray Ext = Extension.toUtf8();
    QCOMPARE(int(DetectDocumentType(CZamTString(Text.constData(), Text.size()), CZamTString(Ext.constData()))),
             Expected);
}

void CDocTypesTest::DetectionOfUnusualTexts()
{
    // The text after a NUL byte still counts.
    const char Bytes[] = "void main()\0{ mediump vec4 c; gl_FragColor = c; }";
    QCOMPARE(DetectDocumentType(CZamTString(Bytes, sizeof(Bytes) - 1), CZamTString("txt")), DocType_GLSLESFragment);

    // Many "layout" words with the only marker at the very end.
    QString Contents = QStringLiteral("precision mediump float;\n");
    while (Contents.size() < 256 * 1024)
        Contents += QStringLiteral("layout(std140) ");
    QCOMPARE(DetectDocumentType(Contents, QStringLiteral("txt")), DocType_PlainText);
    QCOMPARE(DetectDocumentType(Contents + QStringLiteral(" out"), QStringLiteral("txt")), DocType_GLSLESFragment);
    QCOMPARE(DetectDocumentType(Contents + QStringLiteral(" out in"), QStringLiteral("txt")), DocType_GLSLESVertex);
}

// What the new-file list and the open dialog promise: background compiling in the description
// of exactly the types that get it, and one filter row for both effect flavours.
void CDocTypesTest::NewFileListAndFilter()
{
    for (const SNewFileEntry& Entry : GetNewFileEntries())
    {
        QCOMPARE(GetDocTypeDescription(Entry.eType).endsWith(QStringLiteral(
                     "\n\nBackground compiling is enabled for this type.")),
                 IsBackgroundCompilable(Entry.eType));
        // Panels compile OpenCL kernels while typing too.
        QCOMPARE(IsAutoCompiledType(Entry.eType), QList<uint>({1, 2, 16, 1024}).contains(Entry.eType));
    }
    QVERIFY(!IsAutoCompiledType(DocType_Detect));

    CZamTArray<SFileFormatSpecifier> Rows;
    QCOMPARE(FillFileFormats(Rows), 0);
    QCOMPARE(FillFileFormats(Rows), 0); // refilling replaces
    QCOMPARE(BuildFileDialogFilter(Rows),
             QStringLiteral("All supported formats (*.txt *.vsh *.fsh *.vert *.frag *.zfx *.vs *.ps *.gs *.fx *.cl );;"
                            "Plain Text (*.txt);;GLSL:ES Vertex Shader (*.vsh);;GLSL:ES Fragment Shader (*.fsh);;"
                            "GLSL Vertex Shader (*.vert);;GLSL Fragment Shader (*.frag);;"
                            "Zamrix Effect File (GLSL) (*.zfx);;HLSL Vertex Shader (*.vs);;"
                            "HLSL Fragment Shader (*.ps);;HLSL Geometry Shader (*.gs);;HLSL FX File (*.fx);;"
                            "OpenCL Kernel (*.cl);;All files (*.*)"));
    QCOMPARE(FindFileFormatByExtension(Rows, QStringLiteral("zfx")), 5);
    QCOMPARE(FindFileFormatByType(Rows, DocType_ZFXGLSLES), 5);
    QCOMPARE(FindFileFormatByType(Rows, DocType_ZFXGLSL), 5);
    QCOMPARE(FindFileFormatByType(Rows, DocType_Detect), -1);
    QCOMPARE(FindFileFormatByExtension(Rows, QStringLiteral("ZFX")), -1);
    QCOMPARE(FindFileFormatByExtension(Rows, QStringLiteral("hlsl")), -1);
}

// Option names are matched exactly; a banner's unknown and repeated names add nothing.
void CDocTypesTest::OptionNamesAndTexts()
{
    QCOMPARE(GetCompileOptionFlag(QStringLiteral("profile")), uint(CompileOption_Profile));
    QCOMPARE(GetCompileOptionFlag(QStringLiteral("-disasm")), 0u);
    QCOMPARE(GetCompileOptionFlag(QStringLiteral("Profile")), 0u);
    CZamTArray<QString> Reported;
    for (const char* pName : {"v", "genexthwcode", "perfsim", "disasm", "perfsim"})
        Reported.Append(QString::fromLatin1(pName));
    QCOMPARE(OptionFlagsFromNames(Reported), 1u | 16u | 32u);

    QVERIFY(GetUIString(UIS_Count).isEmpty());
    QVERIFY(GetUIString(-1).isEmpty());
    QCOMPARE(UIString(UIS_MalformedProfileFile), QStringLiteral("ERROR: Malformed profile file."));
    QCOMPARE(UIString(UIS_FailedToExecuteCommandLine), QStringLiteral("ERROR: Failed to execute command line\n"));
    QCOMPARE(UIString(UIS_PrefCompilerUnexpectedResult),
             QStringLiteral("The compiler returned and unexpected result! Please check the executable."));
}

void CDocTypesTest::ProfileLookup()
{
    SCompileResult Result;
    SCompileResult::SProfile Profile;
    for (const auto& Unit : QList<QPair<const char*, int>>{{"vs", 3}, {"fs", 5}, {"vs", 7}})
    {
        Profile.Name = Unit.first;
        Profile.iTemporaryRegisters = Unit.second;
        QCOMPARE(Result.AddProfile(Profile), 0);
    }
    // The list keeps every unit in order; the lookup holds the newest figures per name.
    QCOMPARE(Result.Profiles.GetSize(), 3u);
    QCOMPARE(Result.Profiles[0].iTemporaryRegisters, 3);
    QCOMPARE(Result.FindProfile("vs")->iTemporaryRegisters, 7);
    QCOMPARE(Result.FindProfile("fs")->iTemporaryRegisters, 5);
    QVERIFY(Result.FindProfile("v") == nullptr);
}

QTEST_APPLESS_MAIN(CDocTypesTest)
#include "tst_DocTypes.moc"
