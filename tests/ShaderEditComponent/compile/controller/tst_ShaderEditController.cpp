// The shader edit controller, its compiler workers and its compiler detection, run against
// fake compilers that misbehave the ways a real one can: odd line ends, floods, hangs and forks.
// Detection runs beside the GUI thread: a compiler that hangs, floods or is not a program at
// all never holds up the event loop, and compiles asked for meanwhile wait for the answer.
// How a single run is judged is tst_CompilerProcesses' part.

#include "Common/ZamPreferences/ZamPreferences.h"
#include "ShaderEditComponent/compile/controller/CCompiler_p.h"
#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/compile/model/MetaTypes.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/compile/process/CompilerLocator.h"
#include "tests/support/CompileTestSupport.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace CompileTest;

// A controller and every signal it sent, in order.
class CRecorder : public QObject
{
    Q_OBJECT

public:
    explicit CRecorder(const SShaderEditControllerOptions& Options)
        : Controller(Options)
    {
        using C = CShaderEditController;
        connect(&Controller, &C::CompileOutputChanged, this,
                [this](const QString& Text)
                {
                    Names << "Output";
                    Log = Text;
                });
        connect(&Controller, &C::CompileProfileChanged, this,
                [this](const SCompileResult& Result)
                {
                    Names << "Profile";
                    Last = Result;
                    ++iResults;
                });
        connect(&Controller, &C::CompileCycleCountChanged, this,
                [this](const CZamTHash& PanelID, const CZamTArray<int>&)
                { Names << QStringLiteral("Counts(%1)").arg(PanelID.GetValue()); });
        connect(&Controller, &C::CompilerSettingsChanged, this,
                [this](const Settings::SCompiler&, unsigned int uiMask)
                { Names << QStringLiteral("CompilerSettings(%1)").arg(uiMask); });
        connect(&Controller, &C::EditorSettingsChanged, this, [this] { Names << "EditorSettings"; });
        connect(&Controller, &C::ClearCompileOutput, this, [this] { Names << "Clear"; });
        connect(&Controller, &C::CompilerFlagsChanged, this,
                [this](unsigned int uiFlags) { Names << QStringLiteral("Flags(%1)").arg(uiFlags); });
        connect(&Controller, &C::BeginCompiling, this, [this] { Names << "Begin"; });
        connect(&Controller, &C::EndCompiling, this, [this] { Names << "End"; });
    }

    // Makes the controller use Executable as its custom compiler.
    void UseCompiler(const QString& Executable, const QString& TempDirectory)
    {
        Settings::SCompiler Compiler = Controller.GetCompilerSettings();
        Compiler.CustomCompilerPath = ToZamString(Executable);
        Compiler.uiCompilerSelection = CustomCompilerSelection;
        Compiler.TempDirectory = ToZamString(TempDirectory);
        Controller.SetCompilerSettings(Compiler, Settings::CompilerSetting_All);
        Controller.WaitForCompilerDetection();
        Names.clear();
    }

    void Compile(const char* pPanel, const QString& Text, unsigned int uiFlags = 0)
    {
        Controller.OnCompilePanel(CZamTHash(pPanel), Text, DocType_GLSLESFragment, CompileInvocation_Manual, uiFlags);
    }

    CShaderEditController Controller;
    QStringList Names;
    QString Log;
    SCompileResult Last;
    int iResults = 0;
};

class CShaderEditControllerTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void SignalsOfOneCompile_data();
    void SignalsOfOneCompile();
    void CancelAndTearDownEndEverything();
    void FloodIsCutWithinMemoryCap();
    void ThousandCompileCancelCycles();
    void BadExecutablesAreUnusable_data();
    void BadExecutablesAreUnusable();
    void NewestRequestWins();
    void HangingCompilerNeverBlocksTheController();
    void CompilesWaitForTheAnswer();
    void SelectionResolvesExecutable_data();
    void SelectionResolvesExecutable();
    void PanelSwitchAndEditorState();

private:
    SShaderEditControllerOptions Options(int iTimeoutMs) const;
    std::unique_ptr<CRecorder> Make(const QString& Executable, int iTimeoutMs = DefaultDetectionTimeoutMs);
    // A controller whose stored selection is the custom compiler Custom: detection starts with it.
    std::unique_ptr<CShaderEditController> MakeStored(const QString& Custom, int iTimeoutMs);

    QTemporaryDir m_Temp;
};

void CShaderEditControllerTest::initTestCase()
{
    RegisterCompileMetaTypes();
    QVERIFY(QFileInfo(Fake("print")).isExecutable());
}

void CShaderEditControllerTest::init()
{
    QFile::remove(CZamPreferences(QStringLiteral("ZamShaderEditor")).GetFilePath());
}

void CShaderEditControllerTest::cleanup()
{
    QTRY_COMPARE_WITH_TIMEOUT(CCompiler::GetLiveCount(), 0, 5000);
    QTRY_COMPARE_WITH_TIMEOUT(Children().iLiving + Children().iZombies, 0, 5000);
}

SShaderEditControllerOptions CShaderEditControllerTest::Options(int iTimeoutMs) const
{
    SShaderEditControllerOptions Options;
    Options.CompilerSearchPaths = {m_Temp.filePath("none")};
    Options.iDetectionTimeoutMs = iTimeoutMs;
    return Options;
}

std::unique_ptr<CRecorder> CShaderEditControllerTest::Make(const QString& Executable, int iTimeoutMs)
{
    auto pRecorder = std::make_unique<CRecorder>(Options(iTimeoutMs));
    pRecorder->UseCompiler(Executable, m_Temp.path() + "/");
    return pRecorder;
}

std::unique_ptr<CShaderEditController> CShaderEditControllerTest::MakeStored(const QString& Custom, int iTimeoutMs)
{
    StoreCustomCompiler(Custom, m_Temp.path() + "/");
    return std::make_unique<CShaderEditController>(Options(iTimeoutMs));
}

void CShaderEditControllerTest::SignalsOfOneCompile_data()
{
    QTest::addColumn<int>("Invocation");
    QTest::addColumn<QStringList>("Switches");

    // The fake lists every option, so a background compile adds profile, perfsim and disasm.
    QTest::newRow("background") << int(CompileInvocation_Background)
                                << QStringList{"-f", "-profile", "-perfsim", "-disasm"};
    QTest::newRow("manual") << int(CompileInvocation_Manual) << QStringList{"-f"};
}

void CShaderEditControllerTest::SignalsOfOneCompile()
{
    QFETCH(int, Invocation);
    QFETCH(QStringList, Switches);

    const QString Records = m_Temp.filePath(QStringLiteral("records-%1").arg(Invocation));
    QDir().mkpath(Records);
    CScopedEnv Record("ZAM_FAKE_RECORD_DIR", Records.toUtf8());
    CScopedEnv Output("ZAM_FAKE_OUTPUT", "WARNING: 0:2: w\r\nSuccess.\r\n");
    CScopedEnv Profile("ZAM_FAKE_PROFILE", "line: 2, count: 6\n");
    CScopedEnv Disassembly("ZAM_FAKE_DISASM", "mov\n");
    auto pRun = Make(Fake("print"));
    QCOMPARE(pRun->Controller.GetCompilerFlags(), CShaderEditController::BackgroundOptions);

    pRun->Controller.OnCompilePanel(CZamTHash("p"), QStringLiteral("a\nb\n"), DocType_GLSLESFragment,
                                    static_cast<ECompileInvocationType>(Invocation));
    QCOMPARE(pRun->Names, QStringList{"Begin"}); // the call does not wait for the compile
    QTRY_COMPARE_WITH_TIMEOUT(pRun->Names.size(), 5, 30000);
    QCOMPARE(pRun->Names, (QStringList{"Begin", "Output", "Profile",
                                       QStringLiteral("Counts(%1)").arg(CZamTHash("p").GetValue()), "End"}));
    // Carriage returns are gone; the log is the unit's verdict and the compiler's messages.
    QCOMPARE(pRun->Log, QStringLiteral("GLSL:ES Fragment Shader: Compile succeeded.\nWARNING: 0:2: w\n"));
    QCOMPARE(pRun->Last.CompilerString, QStringLiteral("FAKE rev 1"));
    QCOMPARE(pRun->Last.VersionString, QStringLiteral("1.0.0@7"));
    QTRY_COMPARE(pRun->Controller.GetCompilesInFlight(), 0);
    QCOMPARE(ReadLines(Records + "/0.args").mid(3), Switches);
    // The files are read only when asked for.
    const bool bAsked = Switches.contains("-profile");
    QCOMPARE(pRun->Last.CycleCounts.GetSize(), bAsked ? 2u : 0u);
    QCOMPARE(QByteArray(pRun->Last.Disassembly.GetString()), bAsked ? QByteArray("mov\n") : QByteArray());
}

// The compiler and the child it forked, both hanging: a cancel ends them within 2 s, and so
// does closing the controller with compiles in flight.
void CShaderEditControllerTest::CancelAndTearDownEndEverything()
{
    const QString PidFile = m_Temp.filePath("forkhang.pid");
    CScopedEnv Env("ZAM_FAKE_PID_FILE", PidFile.toUtf8());
    auto pRun = Make(Fake("forkhang"));
    pRun->Compile("p", QStringLiteral("a\n"));
    qint64 iForked = 0;
    QTRY_VERIFY_WITH_TIMEOUT((iForked = ReadPid(PidFile)) > 0, 10000);
    pRun->Controller.OnCancelCompile(CZamTHash("p"));
    QCOMPARE(pRun->Names.last(), QStringLiteral("End"));
    QTRY_VERIFY_WITH_TIMEOUT(CCompiler::GetLiveCount() == 0 && Children().iLiving + Children().iZombies == 0, 2000);
    QTRY_VERIFY_WITH_TIMEOUT(!IsRunning(iForked), 2000);
    QCOMPARE(pRun->iResults, 0); // superseded: no result
    QCOMPARE(pRun->Controller.GetCompilesInFlight(), 0);

    QFile::remove(PidFile);
    pRun->Compile("a", QStringLiteral("x\n"));
    pRun->Compile("b", QStringLiteral("y\n"));
    pRun->Compile("a", QStringLiteral("z\n"));
    QTRY_VERIFY_WITH_TIMEOUT((iForked = ReadPid(PidFile)) > 0, 10000);
    QCOMPARE(CCompiler::GetLiveCount(), 3);
    QElapsedTimer Clock;
    Clock.start();
    pRun.reset();
    QVERIFY(Clock.elapsed() < 2000);
    QCOMPARE(CCompiler::GetLiveCount(), 0);
    QCOMPARE(Children().iLiving, 0);
    QTRY_VERIFY_WITH_TIMEOUT(!IsRunning(iForked), 2000);
}

void CShaderEditControllerTest::FloodIsCutWithinMemoryCap()
{
    const qint64 iPeakBefore = PeakMemoryKiB();
    auto pRun = Make(Fake("flood"));
    pRun->Compile("p", QStringLiteral("a\n"));
    QTRY_COMPARE_WITH_TIMEOUT(pRun->iResults, 1, 60000);
    QCOMPARE(pRun->Last.iStatus, 1);
    QVERIFY(pRun->Log.contains("WARNING: The compiler's output was cut after 8 MiB"));
    // The output is kept up to the cap, so a copy or two of it may exist at once; 1 GiB may not.
    const qint64 iGrowthKiB = PeakMemoryKiB() - iPeakBefore;
    QVERIFY2(iGrowthKiB < 128 * 1024, qPrintable(QString::number(iGrowthKiB)));
}

void CShaderEditControllerTest::ThousandCompileCancelCycles()
{
    auto pRun = Make(Fake("hang"), 300);
    const auto Cycle = [&]
    {
        pRun->Compile("p", QStringLiteral("x\n"));
        const bool bStarted = QTest::qWaitFor([] { return Children().iLiving == 1; }, 10000);
        pRun->Controller.OnCancelCompile(CZamTHash("p"));
        return bStarted;
    };
    QVERIFY(Cycle()); // warms up whatever Qt opens once
    QTRY_VERIFY_WITH_TIMEOUT(CCompiler::GetLiveCount() == 0 && Children().iLiving + Children().iZombies == 0, 5000);
    const int iFilesBefore = OpenFileCount();

    for (int i = 0; i < 1000; ++i)
        QVERIFY2(Cycle(), qPrintable(QStringLiteral("cycle %1").arg(i)));
    QTRY_VERIFY_WITH_TIMEOUT(CCompiler::GetLiveCount() == 0 && Children().iLiving + Children().iZombies == 0, 5000);
    QCOMPARE(OpenFileCount(), iFilesBefore);

    pRun->UseCompiler(Fake("print"), m_Temp.path() + "/");
    pRun->Compile("p", QStringLiteral("x\n"));
    QTRY_COMPARE_WITH_TIMEOUT(pRun->iResults, 1, 30000);
    QCOMPARE(pRun->Last.iStatus, 0);
}

void CShaderEditControllerTest::SelectionResolvesExecutable_data()
{
    QTest::addColumn<quint32>("Selection");
    QTest::addColumn<QString>("Expected"); // below the test folder; "" for none

    QTest::newRow("first target, second folder") << 0u << "install/glslcompiler_zc1";
    QTest::newRow("beside the executable wins") << 1u << "beside/glslcompiler_zc2";
    QTest::newRow("not executable") << 2u << "";
    QTest::newRow("not installed") << 3u << "";
    QTest::newRow("custom") << 4u << "custom/cc";
    QTest::newRow("past the table is custom") << 9u << "custom/cc";
}

void CShaderEditControllerTest::SelectionResolvesExecutable()
{
    QFETCH(quint32, Selection);
    QFETCH(QString, Expected);

    const QString Root = m_Temp.filePath("resolve");
    for (const char* pPath : {"beside/glslcompiler_zc2", "install/glslcompiler_zc2", "install/glslcompiler_zc1",
                              "install/glslcompiler_zc3"})
    {
        QDir().mkpath(QFileInfo(Root + "/" + pPath).path());
        QFile::copy(Fake("print"), Root + "/" + pPath);
    }
    QFile::setPermissions(Root + "/install/glslcompiler_zc3", QFile::ReadOwner | QFile::WriteOwner);

    Settings::SCompiler Compiler;
    Compiler.uiCompilerSelection = Selection;
    Compiler.CustomCompilerPath = ToZamString(Root + "/custom/cc");
    const QString Found = ResolveCompilerPath(Compiler, {Root + "/beside", Root + "/install"});
    QCOMPARE(Found, Expected.isEmpty() ? QString() : Root + "/" + Expected);
}

void CShaderEditControllerTest::PanelSwitchAndEditorState()
{
    CScopedEnv Echo("ZAM_FAKE_ECHO", "1");
    auto pRun = Make(Fake("print"));
    pRun->Compile("first", QStringLiteral("one\n"));
    pRun->Compile("second", QStringLiteral("two\n"));
    QTRY_COMPARE_WITH_TIMEOUT(pRun->iResults, 2, 30000);
    QVERIFY(pRun->Log.contains("two")); // the views show whichever arrived last

    pRun->Names.clear();
    pRun->Controller.OnPanelChanged(CZamTHash("first")); // its own result, without its counts
    QVERIFY(pRun->Log.contains("one"));
    pRun->Controller.OnPanelChanged(CZamTHash("never compiled"));
    pRun->Controller.OnEditorStateChanged(0);
    pRun->Controller.OnEditorStateChanged(1);
    pRun->Controller.OnCompilePanel(CZamTHash("first"), QString(), DocType_GLSLESFragment,
                                    CompileInvocation_Background);
    QCOMPARE(pRun->Names, (QStringList{"Output", "Profile", "Clear", "Clear"}));
    QCOMPARE(pRun->Controller.GetCompilesInFlight(), 0);
}

void CShaderEditControllerTest::BadExecutablesAreUnusable_data()
{
    QTest::addColumn<QString>("Path");
    QTest::addColumn<QByteArray>("Banner"); // for the fake; empty: its own
    QTest::addColumn<bool>("bRan");

    QTest::newRow("directory") << m_Temp.path() << QByteArray() << false;
    QTest::newRow("not executable") << WriteTestFile(m_Temp.path(), "not-executable", "OPTIONS are:\n -v \n")
                                    << QByteArray() << false;
    QTest::newRow("missing") << m_Temp.filePath(QStringLiteral("missing")) << QByteArray() << false;
    QTest::newRow("prints nothing") << Fake("print") << QByteArray(" ") << true;
    QTest::newRow("never exits") << Fake("hang") << QByteArray() << false;
    // A script: the fake compiler floods while compiling, not while asked for its banner.
    const QString Flood = WriteTestFile(m_Temp.path(), "flood", "#!/bin/sh\nhead -c 104857600 /dev/zero\n");
    QFile::setPermissions(Flood, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QTest::newRow("prints 100 MB") << Flood << QByteArray() << true;
}

void CShaderEditControllerTest::BadExecutablesAreUnusable()
{
    QFETCH(QString, Path);
    QFETCH(QByteArray, Banner);
    QFETCH(bool, bRan);
    CScopedEnv Env("ZAM_FAKE_BANNER", Banner);
    if (Banner.isEmpty())
        qunsetenv("ZAM_FAKE_BANNER");

    CCompilerDetector Detector(1500);
    QSignalSpy Detected(&Detector, &CCompilerDetector::Detected);
    Detector.Start(Path);
    QVERIFY(Detector.IsBusy());
    const qint64 iStall = LongestStall([&] { return !Detector.IsBusy(); }, 5000);
    QVERIFY2(iStall >= 0 && iStall < 400, qPrintable(QString::number(iStall)));
    QCOMPARE(Detected.size(), 1);
    const SCompilerDetection Detection = Detected.first().at(1).value<SCompilerDetection>();
    QCOMPARE(Detected.first().at(0).toString(), Path);
    QCOMPARE(Detection.bRan, bRan);
    QVERIFY(!Detection.IsUsable());
    QCOMPARE(Detection.Compiler, QStringLiteral("Unknown"));
}

void CShaderEditControllerTest::NewestRequestWins()
{
    CScopedEnv Banner("ZAM_FAKE_BANNER", "Newest compiler for NEW rev 3 Version 1.0\nOPTIONS are:\n -v  -f \n");
    CCompilerDetector Detector(5000);
    QSignalSpy Detected(&Detector, &CCompilerDetector::Detected);
    Detector.Start(Fake("hang"));
    QTRY_COMPARE_WITH_TIMEOUT(Children().iLiving, 1, 5000);
    Detector.Start(Fake("print"));
    QTRY_VERIFY_WITH_TIMEOUT(!Detector.IsBusy(), 5000);
    QCOMPARE(Detected.size(), 1);
    QCOMPARE(Detected.first().at(0).toString(), Fake("print"));
    QCOMPARE(Detected.first().at(1).value<SCompilerDetection>().Compiler, QStringLiteral("NEW rev 3"));
    // The hanging one was killed when it was replaced, long before its time limit.
    QTRY_COMPARE_WITH_TIMEOUT(Children().iLiving, 0, 1000);
}

void CShaderEditControllerTest::HangingCompilerNeverBlocksTheController()
{
    QElapsedTimer Clock;
    Clock.start();
    auto pController = MakeStored(Fake("hang"), 1500);
    QVERIFY2(Clock.elapsed() < 1000, qPrintable(QString::number(Clock.elapsed())));
    QVERIFY(pController->IsDetectingCompilers());
    QCOMPARE(pController->GetCompilerPath(), Fake("hang"));

    // The event loop keeps running all the while the compiler is asked, then gives it up.
    const qint64 iStall = LongestStall([&] { return !pController->IsDetectingCompilers(); }, 5000);
    QVERIFY2(iStall >= 0 && iStall < 400, qPrintable(QString::number(iStall)));
    QVERIFY(Clock.elapsed() >= 1500);
    QVERIFY(!pController->GetCompilerDetection().bRan);
    QCOMPARE(pController->GetCompilerFlags(), 0u);
    QTRY_COMPARE_WITH_TIMEOUT(Children().iLiving, 0, 1000);

    // A window closed while the compiler is still being asked closes at once.
    pController->SetCompilerSettings(pController->GetCompilerSettings(), Settings::CompilerSetting_CustomCompilerPath);
    QTRY_COMPARE_WITH_TIMEOUT(Children().iLiving, 1, 5000);
    Clock.restart();
    pController.reset();
    QVERIFY2(Clock.elapsed() < 1000, qPrintable(QString::number(Clock.elapsed())));
}

void CShaderEditControllerTest::CompilesWaitForTheAnswer()
{
    const QString Records = m_Temp.filePath(QStringLiteral("records"));
    QVERIFY(QDir().mkpath(Records));
    CScopedEnv Record("ZAM_FAKE_RECORD_DIR", Records.toUtf8());
    auto pController = MakeStored(Fake("print"), 5000);
    QSignalSpy Flags(pController.get(), &CShaderEditController::CompilerFlagsChanged);
    QSignalSpy Results(pController.get(), &CShaderEditController::CompileProfileChanged);
    QVERIFY(pController->IsDetectingCompilers());

    // Asked for before the compiler has answered: it starts once the switches are known.
    pController->OnCompilePanel(CZamTHash("early"), QStringLiteral("void main(){}\n"), DocType_GLSLESFragment,
                                CompileInvocation_Background);
    QTRY_COMPARE_WITH_TIMEOUT(Results.size(), 1, 10000);
    QCOMPARE(Flags.size(), 1);
    QCOMPARE(Flags.first().at(0).toUInt(), CShaderEditController::BackgroundOptions);
    const QStringList Arguments = ReadLines(Records + "/0.args");
    QCOMPARE(Arguments.mid(3), (QStringList{"-f", "-profile", "-perfsim", "-disasm"}));

    // A new selection asks again; a banner without options takes the background flags away,
    // announced when the answer arrives. One compile cancelled while it waits never runs.
    CScopedEnv Banner("ZAM_FAKE_BANNER", "Some compiler for X rev 1 Version 2.0\n");
    QSignalSpy Selected(pController.get(), &CShaderEditController::CompilerSettingsChanged);
    pController->SetCompilerSettings(pController->GetCompilerSettings(), Settings::CompilerSetting_CompilerSelection);
    QVERIFY(pController->IsDetectingCompilers());
    QCOMPARE(Selected.size(), 1);
    pController->OnCompilePanel(CZamTHash("gone"), QStringLiteral("x\n"), DocType_GLSLESFragment,
                                CompileInvocation_Manual);
    pController->OnCancelCompile(CZamTHash("gone"));
    QCOMPARE(Flags.size(), 1);
    pController->WaitForCompilerDetection();
    QCOMPARE(Flags.size(), 2);
    QCOMPARE(Flags.last().at(0).toUInt(), 0u);
    QCOMPARE(pController->GetCompilerDetection().Compiler, QStringLiteral("X rev 1"));
    QTest::qWait(200);
    QCOMPARE(Results.size(), 1);
    QVERIFY(!QFile::exists(Records + "/1.args"));
}

QTEST_GUILESS_MAIN(CShaderEditControllerTest)
#include "tst_ShaderEditController.moc"
