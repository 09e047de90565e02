// Compiler detection runs beside the GUI thread: a compiler that hangs, floods or is not a
// program at all never holds up the event loop, and compiles asked for meanwhile wait for
// the answer instead of running without the switches the compiler lists.

#include "Common/ZamPreferences/ZamPreferences.h"
#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/compile/model/MetaTypes.h"
#include "ShaderEditComponent/compile/process/CompilerLocator.h"
#include "tests/support/CompileTestSupport.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

using namespace CompileTest;

class CCompilerDetectorTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void BadExecutablesAreUnusable_data();
    void BadExecutablesAreUnusable();
    void NewestRequestWins();
    void HangingCompilerNeverBlocksTheController();
    void CompilesWaitForTheAnswer();

private:
    std::unique_ptr<CShaderEditController> MakeController(const QString& Custom, int iTimeoutMs);

    QTemporaryDir m_Temp;
};

void CCompilerDetectorTest::initTestCase()
{
    RegisterCompileMetaTypes();
    QVERIFY(QFileInfo(Fake("print")).isExecutable());
}

void CCompilerDetectorTest::init()
{
    QFile::remove(CZamPreferences(QStringLiteral("ZamShaderEditor")).GetFilePath());
}

void CCompilerDetectorTest::cleanup()
{
    QTRY_COMPARE_WITH_TIMEOUT(Children().iLiving + Children().iZombies, 0, 5000);
}

// A controller whose stored selection is the custom compiler Custom.
std::unique_ptr<CShaderEditController> CCompilerDetectorTest::MakeController(const QString& Custom, int iTimeoutMs)
{
    StoreCustomCompiler(Custom, m_Temp.path() + "/");
    SShaderEditControllerOptions Options;
    Options.CompilerSearchPaths = {m_Temp.filePath(QStringLiteral("none"))};
    Options.iDetectionTimeoutMs = iTimeoutMs;
    return std::make_unique<CShaderEditController>(Options);
}

void CCompilerDetectorTest::BadExecutablesAreUnusable_data()
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

void CCompilerDetectorTest::BadExecutablesAreUnusable()
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

void CCompilerDetectorTest::NewestRequestWins()
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

void CCompilerDetectorTest::HangingCompilerNeverBlocksTheController()
{
    QElapsedTimer Clock;
    Clock.start();
    auto pController = MakeController(Fake("hang"), 1500);
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

void CCompilerDetectorTest::CompilesWaitForTheAnswer()
{
    const QString Records = m_Temp.filePath(QStringLiteral("records"));
    QVERIFY(QDir().mkpath(Records));
    CScopedEnv Record("ZAM_FAKE_RECORD_DIR", Records.toUtf8());
    auto pController = MakeController(Fake("print"), 5000);
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

    // One cancelled while it waits never runs.
    pController->SetCompilerSettings(pController->GetCompilerSettings(), Settings::CompilerSetting_CompilerSelection);
    QVERIFY(pController->IsDetectingCompilers());
    pController->OnCompilePanel(CZamTHash("gone"), QStringLiteral("x\n"), DocType_GLSLESFragment,
                                CompileInvocation_Manual);
    pController->OnCancelCompile(CZamTHash("gone"));
    pController->WaitForCompilerDetection();
    QTest::qWait(200);
    QCOMPARE(Results.size(), 1);
    QVERIFY(!QFile::exists(Records + "/1.args"));
}

QTEST_GUILESS_MAIN(CCompilerDetectorTest)
#include "tst_CompilerDetector.moc"
