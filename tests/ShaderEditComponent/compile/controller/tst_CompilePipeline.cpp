// End to end: the controller with the bundled reference compilers. (The single shader's figures
// are tst_OutputViews', the command-line compile of the editor tst_Examples'.)

#include "Common/ZamPreferences/ZamPreferences.h"
#include "ShaderEditComponent/compile/controller/CCompiler_p.h"
#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/compile/model/MetaTypes.h"
#include "ShaderEditComponent/compile/model/UIString.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/compile/process/CompileCommandLine.h"
#include "tests/support/CompileTestSupport.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
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

// The bloom example: three shaders with comments, a loop and functions of their own.
QString Effect()
{
    return QString::fromUtf8(ReadAll(SourceDir() + QStringLiteral("/examples/bloom_postprocess.zfx")));
}

const QString kEffectSucceeded = QStringLiteral(
    "FullScreenVS: Compile succeeded.\nBrightPassFS: Compile succeeded.\nCompositeFS: Compile succeeded.\n");

// The document line (1-based) of the first line that holds Needle.
int LineOf(const QString& Text, const QString& Needle)
{
    return static_cast<int>(Text.left(Text.indexOf(Needle)).count(QLatin1Char('\n'))) + 1;
}

struct SShaderCode
{
    QString Name;
    int iFirst = 0; // the document lines of its code, 1-based
    int iLast = 0;
};

// Each shader's name and code lines, in the order of the file.
QList<SShaderCode> ShaderCode(const QString& Text)
{
    QList<SShaderCode> Shaders;
    const QStringList Lines = Text.split(QLatin1Char('\n'));
    for (int i = 1; i < Lines.size(); ++i)
    {
        if (Lines[i - 1].endsWith(QLatin1String("SHADER]")) && Lines[i].startsWith(QLatin1String("NAME ")))
            Shaders.append({Lines[i].mid(5), 0, 0});
        else if (Lines[i] == QLatin1String("[GLSL_CODE]"))
            Shaders.last().iFirst = i + 2;
        else if (Lines[i] == QLatin1String("[/GLSL_CODE]"))
            Shaders.last().iLast = i;
    }
    return Shaders;
}

QString BrokenFragment()
{
    return QString::fromLatin1(kFragment).replace(QStringLiteral("c * 2.0"), QStringLiteral("c * missing"));
}

// The effect with BrightPassFS's code block replaced by Code.
QString EffectWithBrightPassCode(const QString& Code)
{
    QString Text = Effect();
    const qsizetype iCode = Text.indexOf(QStringLiteral("[GLSL_CODE]"), Text.indexOf(QStringLiteral("NAME BrightPassFS")));
    const qsizetype iEnd = Text.indexOf(QStringLiteral("[/GLSL_CODE]\n"), iCode) + 13;
    return Text.replace(iCode, iEnd - iCode, Code);
}

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

    void BundledCompilersAreDetected_data();
    void BundledCompilersAreDetected();
    void EffectFileShaderByShader();
    void BackgroundCompileLog_data();
    void BackgroundCompileLog();
    void CompileToFiles_data();
    void CompileToFiles();
    void HundredRequestsForOnePanel();
    void TwoPanelsAtOnce();
    void UnsavedOpenCLKernelHasNoHeaderFolder();

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

// Each bundled compiler's banner, read the way the editor looks for compilers: its name, its
// version and the switches it lists.
void CCompilePipelineTest::BundledCompilersAreDetected_data()
{
    QTest::addColumn<QString>("Executable");
    QTest::addColumn<QString>("Compiler");
    QTest::addColumn<QStringList>("Options");

    const QStringList Glsl{"v", "f", "nowarn", "profile", "perfsim", "disasm", "D", "I"};
    QTest::newRow("zc1") << "glslcompiler_zc1" << "ZC1 rev 1" << Glsl;
    QTest::newRow("zc2") << "glslcompiler_zc2" << "ZC2 rev 2" << Glsl;
    QTest::newRow("zc3") << "glslcompiler_zc3" << "ZC3 rev 1" << Glsl;
    QTest::newRow("zd1") << "glslcompiler_zd1" << "ZD1 rev 3" << Glsl;
    QTest::newRow("OpenCL") << "clcompiler_zc1" << "OpenCL 1.2 ZC1" << QStringList{"nowarn", "profile", "disasm"};
}

void CCompilePipelineTest::BundledCompilersAreDetected()
{
    QFETCH(QString, Executable);
    QFETCH(QString, Compiler);
    QFETCH(QStringList, Options);
    if (!QFileInfo(Program(Executable)).isExecutable())
        QSKIP("not part of this build");
    const SCompilerDetection Detection = DetectCompiler(Program(Executable));
    QVERIFY(Detection.IsUsable());
    QCOMPARE(Detection.Compiler, Compiler);
    QVERIFY2(QRegularExpression(QStringLiteral("^\\d+\\.\\d+\\.\\d+@\\d+$")).match(Detection.Version).hasMatch(),
             qPrintable(Detection.Version));
    QStringList Found;
    for (uint32_t i = 0; i < Detection.Options.GetSize(); ++i)
        Found << Detection.Options[i];
    QCOMPARE(Found, Options);
}

void CCompilePipelineTest::EffectFileShaderByShader()
{
    const QString Text = Effect();
    CompileAndWait(Text, DocType_ZFXGLSLES);
    const SCompileResult& Result = m_Delivery.Last;
    QCOMPARE(Result.iStatus, 0);
    QCOMPARE(m_Delivery.LastLog, kEffectSucceeded);

    // Counts land on the effect file's own lines: on code, inside a shader, never on a comment.
    const CZamTArray<int>& Counts = m_Delivery.CountsByPanel[CZamTHash("panel").GetValue()];
    const QList<SShaderCode> Shaders = ShaderCode(Text);
    const QStringList TextLines = Text.split(QLatin1Char('\n'));
    const QList<int> Lines = CountedLines(Counts);
    for (const char* pWork : {"gl_Position = vec4(corner", "ramp = ramp * ramp", "fragColour = vec4(pow("})
        QVERIFY2(Lines.contains(LineOf(Text, pWork)), pWork);
    for (int iLine : Lines)
    {
        const QString Line = TextLines.value(iLine - 1).trimmed();
        const bool bInCode = std::any_of(Shaders.begin(), Shaders.end(), [&](const SShaderCode& Shader)
                                         { return iLine >= Shader.iFirst && iLine <= Shader.iLast; });
        QVERIFY2(bInCode && !Line.isEmpty() && !Line.startsWith(QLatin1String("//")), qPrintable(Line));
    }

    QCOMPARE(Shaders.size(), 3);
    QCOMPARE(Result.Profiles.GetSize(), 3u);
    for (uint32_t i = 0; i < 3; ++i)
    {
        const SShaderCode& Shader = Shaders[static_cast<int>(i)];
        const SCompileResult::SProfile* pProfile = Result.FindProfile(ToZamString(Shader.Name));
        QVERIFY2(pProfile, qPrintable(Shader.Name));
        QCOMPARE(ToQString(Result.Profiles[i].Name), Shader.Name);
        QCOMPARE(pProfile->iTotalConsumedCycles, SumOfLines(Counts, Shader.iFirst, Shader.iLast));
        QVERIFY(QByteArray(pProfile->Disassembly.GetString()).startsWith("; TXE"));
    }
    QCOMPARE(Result.FindProfile("BrightPassFS")->iNonDependentTextureReads, 1);
    QCOMPARE(Result.FindProfile("FullScreenVS")->iNonDependentTextureReads, 0);
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
    const QString Scene = QStringLiteral("vec3 scene = texture(uScene, vTexCoord).rgb");
    QTest::newRow("effect error") << Effect().replace(Scene, Scene + " * nowhere") << iEffect << QString()
                                  << QStringLiteral("FullScreenVS: Compile succeeded.\nBrightPassFS: Compile succeeded.\n"
                                                    "CompositeFS: Compile failed.\nERROR: 0:%1:")
                                         .arg(LineOf(Effect(), Scene))
                                  << 1 << LineOf(Effect(), Scene);
    QTest::newRow("shader named like a switch")
        << Effect().replace(QStringLiteral("BrightPassFS"), QStringLiteral("-v")) << iEffect << QString()
        << "FullScreenVS: Compile succeeded.\n-v: Compile succeeded.\nCompositeFS: Compile succeeded.\n" << 0 << 0;
    // Said to be skipped, not left out in silence.
    QTest::newRow("shader without source")
        << EffectWithBrightPassCode(QStringLiteral("[GLSL_CODE]\n[/GLSL_CODE]\n")) << iEffect << QString()
        << "FullScreenVS: Compile succeeded.\nBrightPassFS: no source to compile.\nCompositeFS: Compile succeeded.\n"
        << 0 << 0;
    // FILE shaders are read from beside the effect (tst_ShaderEditor opens one that is there).
    QTest::newRow("FILE shader missing") << EffectWithBrightPassCode(QStringLiteral("FILE shaders/gone.frag\n")) << iEffect
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

    // Names that look like options, with the built-in command and with one typed by hand. (An
    // effect's outputs, one per shader, are tst_CompileDialog's.)
    QTest::newRow("dash name, built-in") << "-x.frag" << int(DocType_GLSLESFragment)
                                         << uint(CompileOption_Disassembly) << "-x.frag: Compile succeeded.\n"
                                         << QStringList{"-x.disasm"};
    QTest::newRow("dash name, typed") << "-x.frag" << int(DocType_GLSLESFragment) << 0u
                                      << "-x.frag: Compile succeeded.\n" << QStringList{"-x_typed"};
}

void CCompilePipelineTest::CompileToFiles()
{
    QFETCH(QString, Source);
    QFETCH(int, Type);
    QFETCH(uint, Option);
    QFETCH(QString, Log);
    QFETCH(QStringList, Outputs);

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

QTEST_GUILESS_MAIN(CCompilePipelineTest)
#include "tst_CompilePipeline.moc"
