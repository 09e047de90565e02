// End to end: the controller with the bundled reference compilers, and the command-line
// compile of the zamshadereditor executable.

#include "Common/ZamPreferences/ZamPreferences.h"
#include "ShaderEditComponent/compile/controller/CCompiler_p.h"
#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/compile/model/MetaTypes.h"
#include "ShaderEditComponent/compile/model/UIString.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/compile/process/CompileCommandLine.h"
#include "tests/support/CompileTestSupport.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <map>
#include <memory>

using namespace CompileTest;

namespace
{
const char kFragment[] = "precision mediump float;\n"       // 1
                         "uniform sampler2D t;\n"           // 2
                         "varying vec2 uv;\n"               // 3
                         "\n"                               // 4
                         "void main()\n"                    // 5
                         "{\n"                              // 6
                         "    vec4 c = texture2D(t, uv);\n" // 7
                         "    gl_FragColor = c * 2.0;\n"    // 8
                         "}\n";                             // 9

// Three shaders; code lines 8, 19 and 31 do the work.
const char kEffect[] = "[VERTEXSHADER]\n"                            // 1
                       "NAME SceneVS\n"                              // 2
                       "[GLSL_CODE]\n"                               // 3
                       "attribute vec4 a_position;\n"                // 4
                       "uniform mat4 u_mvp;\n"                       // 5
                       "void main()\n"                               // 6
                       "{\n"                                         // 7
                       "gl_Position = u_mvp * a_position;\n"         // 8
                       "}\n"                                         // 9
                       "[/GLSL_CODE]\n"                              // 10
                       "[/VERTEXSHADER]\n"                           // 11
                       "[FRAGMENTSHADER]\n"                          // 12
                       "NAME FlatFS\n"                               // 13
                       "[GLSL_CODE]\n"                               // 14
                       "precision mediump float;\n"                  // 15
                       "uniform vec4 u_colour;\n"                    // 16
                       "void main()\n"                               // 17
                       "{\n"                                         // 18
                       "gl_FragColor = u_colour * 0.5;\n"            // 19
                       "}\n"                                         // 20
                       "[/GLSL_CODE]\n"                              // 21
                       "[/FRAGMENTSHADER]\n"                         // 22
                       "[FRAGMENTSHADER]\n"                          // 23
                       "NAME TexturedFS\n"                           // 24
                       "[GLSL_CODE]\n"                               // 25
                       "precision mediump float;\n"                  // 26
                       "uniform sampler2D u_tex;\n"                  // 27
                       "varying vec2 v_uv;\n"                        // 28
                       "void main()\n"                               // 29
                       "{\n"                                         // 30
                       "gl_FragColor = texture2D(u_tex, v_uv) %1;\n" // 31
                       "}\n"                                         // 32
                       "[/GLSL_CODE]\n"                              // 33
                       "[/FRAGMENTSHADER]\n"                         // 34
                       "[EFFECT]\nNAME Flat\nVERTEXSHADER SceneVS\nFRAGMENTSHADER FlatFS\n[/EFFECT]\n"
                       "[EFFECT]\nNAME Textured\nVERTEXSHADER SceneVS\nFRAGMENTSHADER TexturedFS\n[/EFFECT]\n";

QString Effect(const char* pLine31Tail = "* 2.0")
{
    return QString::fromLatin1(kEffect).arg(QLatin1String(pLine31Tail));
}

QString BrokenFragment()
{
    return QString::fromLatin1(kFragment).replace(QStringLiteral("c * 2.0"), QStringLiteral("c * missing"));
}

// The effect with FlatFS's code block replaced by Code.
QString EffectWithFlatCode(const QString& Code)
{
    QString Text = Effect();
    const qsizetype iCode = Text.indexOf(QStringLiteral("[GLSL_CODE]"), Text.indexOf(QStringLiteral("NAME FlatFS")));
    const qsizetype iEnd = Text.indexOf(QStringLiteral("[/GLSL_CODE]\n"), iCode) + 13;
    return Text.replace(iCode, iEnd - iCode, Code);
}

const QString kEffectSucceeded =
    QStringLiteral("SceneVS: Compile succeeded.\nFlatFS: Compile succeeded.\nTexturedFS: Compile succeeded.\n");

// The document lines (1-based) that have a cycle count.
QList<int> CountedLines(const CZamTArray<int>& Counts)
{
    QList<int> Lines;
    for (uint32_t i = 0; i < Counts.GetSize(); ++i)
    {
        if (Counts[i] >= 0)
            Lines << static_cast<int>(i) + 1;
    }
    return Lines;
}

int SumOfLines(const CZamTArray<int>& Counts, int iFirst, int iLast)
{
    int iSum = 0;
    for (int iLine = iFirst; iLine <= iLast && iLine <= static_cast<int>(Counts.GetSize()); ++iLine)
        iSum += qMax(0, Counts[static_cast<uint32_t>(iLine - 1)]);
    return iSum;
}
} // namespace

class CCompilePipelineTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void ShaderLogCountsProfileAndDisassembly();
    void EffectFileShaderByShader();
    void BackgroundCompileLog_data();
    void BackgroundCompileLog();
    void CompileToFiles_data();
    void CompileToFiles();
    void HundredRequestsForOnePanel();
    void TwoPanelsAtOnce();
    void UnsavedOpenCLKernelHasNoHeaderFolder();
    void CommandLineCompile();

private:
    struct SDelivery
    {
        std::map<uint32_t, CZamTArray<int>> CountsByPanel;
        SCompileResult Last;
        QString LastLog;
        int iResults = 0;
    };
    void CompileAndWait(const QString& Text, EShaderDocType eType, const QString& Folder = QString());

    std::unique_ptr<CShaderEditController> m_pController; // a fresh one for each test
    SDelivery m_Delivery;
    QTemporaryDir m_Temp;
};

void CCompilePipelineTest::initTestCase()
{
    RegisterCompileMetaTypes();
    QVERIFY(QFileInfo(Program("glslcompiler_zc1")).isExecutable());
    WriteTestFile(m_Temp.filePath("fx/shaders"), "flat.frag", kFragment);
    WriteTestFile(m_Temp.filePath("files"), "scene.zfx", Effect().toUtf8());
    WriteTestFile(m_Temp.filePath("files"), "-x.frag", kFragment);
    QVERIFY(QDir().mkpath(m_Temp.filePath("files/out")));
}

void CCompilePipelineTest::init()
{
    QFile::remove(CZamPreferences(QStringLiteral("ZamShaderEditor")).GetFilePath());
    m_Delivery = SDelivery();
    SShaderEditControllerOptions Options;
    Options.CompilerSearchPaths = {BinDir()};
    m_pController = std::make_unique<CShaderEditController>(Options);
    m_pController->WaitForCompilerDetection();
    connect(m_pController.get(), &CShaderEditController::CompileCycleCountChanged, this,
            [this](const CZamTHash& PanelID, const CZamTArray<int>& Counts)
            { m_Delivery.CountsByPanel[PanelID.GetValue()] = Counts; });
    connect(m_pController.get(), &CShaderEditController::CompileProfileChanged, this,
            [this](const SCompileResult& Result)
            {
                m_Delivery.Last = Result;
                ++m_Delivery.iResults;
            });
    connect(m_pController.get(), &CShaderEditController::CompileOutputChanged, this,
            [this](const QString& Log) { m_Delivery.LastLog = Log; });
}

void CCompilePipelineTest::cleanup()
{
    m_pController.reset();
    QTRY_COMPARE_WITH_TIMEOUT(CCompiler::GetLiveCount(), 0, 5000);
    QTRY_COMPARE_WITH_TIMEOUT(Children().iLiving + Children().iZombies, 0, 5000);
}

void CCompilePipelineTest::CompileAndWait(const QString& Text, EShaderDocType eType, const QString& Folder)
{
    const int iBefore = m_Delivery.iResults;
    m_pController->CompilePanelIn(Folder, CZamTHash("panel"), Text, eType, CompileInvocation_Background);
    QTRY_COMPARE_WITH_TIMEOUT(m_Delivery.iResults, iBefore + 1, 60000);
}

void CCompilePipelineTest::ShaderLogCountsProfileAndDisassembly()
{
    QCOMPARE(m_pController->GetCompilerDetection().Compiler, QStringLiteral("ZC1 rev 1"));
    QCOMPARE(m_pController->GetCompilerFlags(), CShaderEditController::BackgroundOptions);

    CompileAndWait(QString::fromLatin1(kFragment), DocType_GLSLESFragment);
    const SCompileResult& Result = m_Delivery.Last;
    QCOMPARE(Result.iStatus, 0);
    QCOMPARE(m_Delivery.LastLog, QStringLiteral("GLSL:ES Fragment Shader: Compile succeeded.\n"));
    QCOMPARE(CountedLines(m_Delivery.CountsByPanel[CZamTHash("panel").GetValue()]), (QList<int>{7, 8}));

    QCOMPARE(Result.Profiles.GetSize(), 1u);
    const SCompileResult::SProfile& Profile = Result.Profiles[0];
    QCOMPARE(Profile.iTotalConsumedCycles, SumOfLines(Result.CycleCounts, 1, 9));
    QVERIFY(Profile.iTotalConsumedCycles > 0);
    QVERIFY(Profile.iGeneratedInstructions > 0);
    QVERIFY(Profile.bEstimateFound);
    QVERIFY(Profile.fCycleCount > 0 && Profile.fWorstCycleCount >= Profile.fCycleCount);
    QCOMPARE(Profile.iNonDependentTextureReads, 1);
    QVERIFY(QByteArray(Profile.Disassembly.GetString()).startsWith("; TXE"));
    QCOMPARE(QByteArray(Result.Disassembly.GetString()), QByteArray(Profile.Disassembly.GetString()));
}

void CCompilePipelineTest::EffectFileShaderByShader()
{
    CompileAndWait(Effect(), DocType_ZFXGLSLES);
    const SCompileResult& Result = m_Delivery.Last;
    QCOMPARE(Result.iStatus, 0);
    QCOMPARE(m_Delivery.LastLog, kEffectSucceeded);

    // Counts land on the effect file's own lines, inside each shader's code.
    const CZamTArray<int>& Counts = m_Delivery.CountsByPanel[CZamTHash("panel").GetValue()];
    const QList<int> Lines = CountedLines(Counts);
    QVERIFY(Lines.contains(8) && Lines.contains(19) && Lines.contains(31));
    for (int iLine : Lines)
        QVERIFY2((iLine >= 4 && iLine <= 9) || (iLine >= 15 && iLine <= 20) || (iLine >= 26 && iLine <= 32),
                 qPrintable(QString::number(iLine)));

    QCOMPARE(Result.Profiles.GetSize(), 3u);
    const struct
    {
        const char* pName;
        int iFirst;
        int iLast;
    } Shaders[] = {{"SceneVS", 4, 9}, {"FlatFS", 15, 20}, {"TexturedFS", 26, 32}};
    for (uint32_t i = 0; i < 3; ++i)
    {
        const SCompileResult::SProfile* pProfile = Result.FindProfile(Shaders[i].pName);
        QVERIFY2(pProfile, Shaders[i].pName);
        QCOMPARE(QByteArray(Result.Profiles[i].Name.GetString()), QByteArray(Shaders[i].pName));
        QCOMPARE(pProfile->iTotalConsumedCycles, SumOfLines(Counts, Shaders[i].iFirst, Shaders[i].iLast));
        QVERIFY(QByteArray(pProfile->Disassembly.GetString()).startsWith("; TXE"));
    }
    QCOMPARE(Result.FindProfile("TexturedFS")->iNonDependentTextureReads, 1);
    QCOMPARE(Result.FindProfile("FlatFS")->iNonDependentTextureReads, 0);
}

void CCompilePipelineTest::BackgroundCompileLog_data()
{
    QTest::addColumn<QString>("Text");
    QTest::addColumn<int>("Type");
    QTest::addColumn<QString>("Folder"); // the document's; "" for a never-saved one
    QTest::addColumn<QString>("Log");    // how the log starts
    QTest::addColumn<int>("Status");
    QTest::addColumn<int>("ErrorLine"); // of the first message; 0 for none

    const int iFragment = DocType_GLSLESFragment;
    const int iEffect = DocType_ZFXGLSLES;
    const QString Fx = m_Temp.filePath("fx");
    // Errors land on the document's line, in an effect on the effect file's; the other shaders still compile.
    QTest::newRow("fragment error") << BrokenFragment() << iFragment << QString()
                                    << "GLSL:ES Fragment Shader: Compile failed.\nERROR: 0:8:" << 1 << 8;
    QTest::newRow("effect error") << Effect("* nowhere") << iEffect << QString()
                                  << "SceneVS: Compile succeeded.\nFlatFS: Compile succeeded.\n"
                                     "TexturedFS: Compile failed.\nERROR: 0:31:"
                                  << 1 << 31;
    QTest::newRow("shader named like a switch") << Effect().replace(QStringLiteral("FlatFS"), QStringLiteral("-v"))
                                                << iEffect << QString()
                                                << "SceneVS: Compile succeeded.\n-v: Compile succeeded.\n"
                                                   "TexturedFS: Compile succeeded.\n"
                                                << 0 << 0;
    // Said to be skipped, not left out in silence.
    QTest::newRow("shader without source") << EffectWithFlatCode(QStringLiteral("[GLSL_CODE]\n[/GLSL_CODE]\n"))
                                           << iEffect << QString()
                                           << "SceneVS: Compile succeeded.\nFlatFS: no source to compile.\n"
                                              "TexturedFS: Compile succeeded.\n"
                                           << 0 << 0;
    // FILE shaders are read from beside the effect, whatever folder the program runs in.
    QTest::newRow("FILE shader") << EffectWithFlatCode(QStringLiteral("FILE shaders/flat.frag\n")) << iEffect << Fx
                                 << kEffectSucceeded << 0 << 0;
    QTest::newRow("FILE shader missing") << EffectWithFlatCode(QStringLiteral("FILE shaders/gone.frag\n")) << iEffect
                                         << Fx << QStringLiteral("Error loading file '%1/shaders/gone.frag'").arg(Fx)
                                         << 1 << 0;
}

void CCompilePipelineTest::BackgroundCompileLog()
{
    QFETCH(QString, Text);
    QFETCH(int, Type);
    QFETCH(QString, Folder);
    QFETCH(QString, Log);
    QFETCH(int, Status);
    QFETCH(int, ErrorLine);

    CompileAndWait(Text, static_cast<EShaderDocType>(Type), Folder);
    QVERIFY2(m_Delivery.LastLog.startsWith(Log), qPrintable(m_Delivery.LastLog));
    QCOMPARE(m_Delivery.Last.iStatus, Status);
    if (ErrorLine > 0)
        QCOMPARE(m_Delivery.Last.Messages.first().iLine, ErrorLine);
}

void CCompilePipelineTest::CompileToFiles_data()
{
    QTest::addColumn<QString>("Source"); // in the files folder
    QTest::addColumn<int>("Type");
    QTest::addColumn<uint>("Option"); // of the built-in command; 0: the typed one
    QTest::addColumn<QString>("Log");
    QTest::addColumn<QStringList>("Outputs"); // in files/out
    QTest::addColumn<int>("CountedLine");     // 0: none asked for

    QTest::newRow("effect") << "scene.zfx" << int(DocType_ZFXGLSLES) << uint(CompileOption_Profile) << kEffectSucceeded
                            << QStringList{"scene_SceneVS", "scene_SceneVS.prof", "scene_FlatFS", "scene_FlatFS.prof",
                                           "scene_TexturedFS", "scene_TexturedFS.prof"}
                            << 31;
    // Names that look like options, with the built-in command and with one typed by hand.
    QTest::newRow("dash name, built-in") << "-x.frag" << int(DocType_GLSLESFragment)
                                         << uint(CompileOption_Disassembly) << "-x.frag: Compile succeeded.\n"
                                         << QStringList{"-x.disasm"} << 0;
    QTest::newRow("dash name, typed") << "-x.frag" << int(DocType_GLSLESFragment) << 0u
                                      << "-x.frag: Compile succeeded.\n" << QStringList{"-x_typed"} << 0;
}

void CCompilePipelineTest::CompileToFiles()
{
    QFETCH(QString, Source);
    QFETCH(int, Type);
    QFETCH(uint, Option);
    QFETCH(QString, Log);
    QFETCH(QStringList, Outputs);
    QFETCH(int, CountedLine);

    const QString Folder = m_Temp.filePath("files");
    const QString Path = Folder + "/" + Source;
    const EShaderDocType eType = static_cast<EShaderDocType>(Type);
    const QString Template = Option ? m_pController->GetCompileCommandLine(Option, eType, Folder + "/out")
                                    : QStringLiteral("\"%1\" -f %f% \"%b%\" \"out/%b%_typed\"").arg(Program("glslcompiler_zc1"));
    m_pController->OnCompileFile(CZamTHash(Path.toUtf8().constData()), ToZamString(Path), ToZamString(Template), eType);
    QTRY_COMPARE_WITH_TIMEOUT(m_Delivery.iResults, 1, 60000);
    QVERIFY2(m_Delivery.LastLog == Log, qPrintable(Template + "\n" + m_Delivery.LastLog));
    for (const QString& Output : Outputs)
        QVERIFY2(QFileInfo::exists(Folder + "/out/" + Output), qPrintable(Output));
    if (CountedLine > 0)
        QVERIFY(CountedLines(m_Delivery.Last.CycleCounts).contains(CountedLine));
}

void CCompilePipelineTest::HundredRequestsForOnePanel()
{
    const CZamTHash Panel("typing.fsh");
    for (int i = 0; i < 100; ++i)
    {
        QString Text = QString::fromLatin1(kFragment);
        Text.replace(QStringLiteral("c * 2.0"), QStringLiteral("c * value%1").arg(i));
        m_pController->OnCancelCompile(Panel);
        m_pController->OnCompilePanel(Panel, Text, DocType_GLSLESFragment, CompileInvocation_Background);
    }
    QTRY_VERIFY_WITH_TIMEOUT(m_Delivery.LastLog.contains("value99"), 60000);
    QTRY_COMPARE_WITH_TIMEOUT(m_pController->GetCompilesInFlight(), 0, 5000);
    QTRY_COMPARE_WITH_TIMEOUT(CCompiler::GetLiveCount(), 0, 5000);
    QCOMPARE(Children().iLiving + Children().iZombies, 0);
    QVERIFY(!m_Delivery.LastLog.contains("value98"));
}

void CCompilePipelineTest::TwoPanelsAtOnce()
{
    const CZamTHash Short("short.fsh");
    const CZamTHash Long("long.fsh");
    QString Longer = QString::fromLatin1(kFragment);
    Longer.replace(QStringLiteral("    gl_FragColor = c * 2.0;\n"),
                   QStringLiteral("\n\n    c = c * c + c;\n    gl_FragColor = c * 2.0;\n"));
    m_pController->OnCompilePanel(Short, QString::fromLatin1(kFragment), DocType_GLSLESFragment,
                                CompileInvocation_Background);
    m_pController->OnCompilePanel(Long, Longer, DocType_GLSLESFragment, CompileInvocation_Background);
    QTRY_COMPARE_WITH_TIMEOUT(m_Delivery.iResults, 2, 60000);
    QCOMPARE(CountedLines(m_Delivery.CountsByPanel[Short.GetValue()]), (QList<int>{7, 8}));
    QCOMPARE(CountedLines(m_Delivery.CountsByPanel[Long.GetValue()]), (QList<int>{7, 10, 11}));
}

// A never-saved kernel has no folder, so a header it includes is not found (tst_IncludesAndCores
// compiles a saved one that finds its headers).
void CCompilePipelineTest::UnsavedOpenCLKernelHasNoHeaderFolder()
{
    if (!QFileInfo(Program("clcompiler_zc1")).isExecutable())
        QSKIP("the OpenCL compiler is not part of this build");
    WriteTestFile(m_Temp.path(), "blur_weights.h", "#define WEIGHT 0.5f\n");
    CompileAndWait(QStringLiteral("#include \"blur_weights.h\"\n"
                                  "__kernel void blur(__global float* b) { b[0] = WEIGHT; }\n"),
                   DocType_OpenCLKernel, IncludeFolderFor(QString()));
    QCOMPARE(m_Delivery.LastLog, QStringLiteral("OpenCL Kernel: Compile failed.\n"
                                                "ERROR: 0:1: 'blur_weights.h' file not found\n"));
}

// With no display of any kind and a configuration folder of its own to check for writes: a good
// file, a broken one and a missing one, then no file at all. Both runs fail.
void CCompilePipelineTest::CommandLineCompile()
{
    const QString Editor = Program("zamshadereditor");
    if (!QFileInfo(Editor).isExecutable())
        QSKIP("the editor executable is not part of this build");
    const QString Folder = m_Temp.filePath("cli");
    WriteTestFile(Folder, "good.fsh", kFragment);
    WriteTestFile(Folder, "broken.fsh", BrokenFragment().toUtf8());
    const QString Config = m_Temp.filePath("cli-config");
    QProcessEnvironment Environment = QProcessEnvironment::systemEnvironment();
    for (const char* pName : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        Environment.remove(pName);
    Environment.insert("XDG_CONFIG_HOME", Config);
    for (const QStringList& Files : {QStringList{"good.fsh", "broken.fsh", "absent.fsh"}, QStringList()})
    {
        QProcess Process;
        Process.setProcessEnvironment(Environment);
        Process.setWorkingDirectory(Folder);
        Process.start(Editor, QStringList{"--compile", "--core", "zc2"} + Files);
        QVERIFY(Process.waitForFinished(60000));
        QCOMPARE(Process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(Process.exitCode(), 1);
        const QString Printed = QString::fromUtf8(Process.readAllStandardOutput());
        QVERIFY2(Files.isEmpty() ? Printed.isEmpty()
                                 : Printed.startsWith("GLSL:ES Fragment Shader: Compile succeeded.\n"
                                                      "GLSL:ES Fragment Shader: Compile failed.\nERROR: 0:8:"),
                 qPrintable(Printed));
        QVERIFY(!Process.readAllStandardError().isEmpty());
    }
    QVERIFY(!QFileInfo::exists(Config + "/Brenmoor Systems"));
}

QTEST_GUILESS_MAIN(CCompilePipelineTest)
#include "tst_CompilePipeline.moc"
