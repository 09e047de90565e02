// The compiler as a process, run by the editor's runner against fake compilers: how its end is
// judged, what it reads, what it leaves behind, and that nothing it starts outlives a compile.

#include "ShaderEditComponent/compile/model/CompileOptions.h"
#include "ShaderEditComponent/compile/model/UIString.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/compile/process/CommandRunner.h"
#include "ShaderEditComponent/compile/process/CompileUnit.h"
#include "tests/support/CompileTestSupport.h"

#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace CompileTest;

namespace
{
const QString s_Unit = QStringLiteral("GLSL:ES Fragment Shader: ");

SCompileTarget TargetFor(const QString& Executable, const QString& TempDirectory, unsigned int uiSwitches = 0)
{
    SCompileTarget Target;
    Target.Executable = Executable;
    Target.TempDirectory = TempDirectory;
    Target.uiSwitches = uiSwitches;
    return Target;
}

QString LogOf(const SCompileResult& Result)
{
    return ToQString(Result.Log);
}

// Runs the compile on a thread of its own, so that a runner that hangs fails the test
// instead of hanging it.
class CBackgroundCompile
{
public:
    CBackgroundCompile(const SCompileTarget& Target, const QByteArray& Source)
        : m_Thread(
              [this, Target, Source]
              {
                  const SCompileUnit Unit{CZamTString("GLSL:ES Fragment Shader"), 0, 0};
                  m_eStatus = CompileSource(Unit, Source, Target, m_Control, m_Result);
                  m_bDone = true;
              })
    {
    }
    ~CBackgroundCompile()
    {
        m_Control.Cancel();
        m_Thread.join();
    }

    bool IsDone() const { return m_bDone; }
    void Cancel() { m_Control.Cancel(); }
    ECompileStatus GetStatus() const { return m_eStatus; }
    const SCompileResult& GetResult() const { return m_Result; }

private:
    CRunControl m_Control;
    SCompileResult m_Result;
    ECompileStatus m_eStatus = CompileStatus_NotRun;
    std::atomic<bool> m_bDone{false};
    std::thread m_Thread;
};
} // namespace

class CCompilerProcessesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void EndIsJudgedByTheOutput_data();
    void EndIsJudgedByTheOutput();
    void MalformedProfileIsNamed();
    void CompilerReadsNoInput();
    void NothingOutlivesACompile_data();
    void NothingOutlivesACompile();
    void OutputFilesMustBeRegularFiles();

private:
    QTemporaryDir m_Temp;
    QString m_PidFile;
    QString m_OwnPidFile;
};

void CCompilerProcessesTest::initTestCase()
{
    QVERIFY(QFileInfo(Fake("segv")).isExecutable());
    m_PidFile = m_Temp.filePath("child.pid");
    m_OwnPidFile = m_Temp.filePath("own.pid");
    qputenv("ZAM_FAKE_PID_FILE", m_PidFile.toUtf8());
    qputenv("ZAM_FAKE_OWN_PID_FILE", m_OwnPidFile.toUtf8());
}

void CCompilerProcessesTest::init()
{
    QFile::remove(m_PidFile);
    QFile::remove(m_OwnPidFile);
}

void CCompilerProcessesTest::cleanup()
{
    KillIfRunning(m_PidFile);
    KillIfRunning(m_OwnPidFile);
    QTRY_COMPARE_WITH_TIMEOUT(Children().iLiving + Children().iZombies, 0, 5000);
}

void CCompilerProcessesTest::EndIsJudgedByTheOutput_data()
{
    QTest::addColumn<QString>("Executable");
    QTest::addColumn<QByteArray>("Output");
    QTest::addColumn<int>("Status");
    QTest::addColumn<QString>("Log");
    QTest::addColumn<QString>("TempDirectory"); // "" for the test's own

    const QString Critical = s_Unit + UIString(UIS_CompilerCriticalError) + "\n";
    const QString Failed = s_Unit + UIString(UIS_CompileFailed) + "\n";
    const QString Succeeded = s_Unit + UIString(UIS_CompileSucceeded) + "\n";
    const auto EndedBy = [](int iSignal)
    { return QStringLiteral("The compiler was ended by signal %1 (%2).\n").arg(iSignal).arg(strsignal(iSignal)); };

    // A crash is not a compiler that could not be started: its output decides, and the
    // signal is named. Without a single message, the raw output is the only reason there is.
    QTest::newRow("segfault mid-way") << Fake("segv") << QByteArray("parsing shader.tmp\n") << 1
                                      << Critical + EndedBy(SIGSEGV) + "parsing shader.tmp\n" << "";
    QTest::newRow("abort after a failure") << Fake("crash") << QByteArray("ERROR: 0:2: bad\nCompile failed.\n") << 1
                                           << Failed + EndedBy(SIGABRT) + "ERROR: 0:2: bad\n" << "";
    QTest::newRow("segfault after success") << Fake("segv") << QByteArray("Success.\n") << 0
                                            << Succeeded + EndedBy(SIGSEGV) << "";

    // A custom compiler's own words for failing reach the user.
    QTest::newRow("lower-case reason") << Fake("print") << QByteArray("error: cannot open 'common.glsl'\n") << 1
                                       << Critical + "error: cannot open 'common.glsl'\n" << "";
    QTest::newRow("failed without a message") << Fake("print") << QByteArray("fatal: out of registers\r\nCompile failed.")
                                              << 1 << Failed + "fatal: out of registers\nCompile failed.\n" << "";
    QTest::newRow("messages are enough") << Fake("print") << QByteArray("note\nERROR: 0:3: x\nCompile failed.\n") << 1
                                         << Failed + "ERROR: 0:3: x\n" << "";
    QTest::newRow("messages without a verdict") << Fake("print") << QByteArray("ERROR: 0:3: x\n") << 1 << Critical << "";
    QTest::newRow("success without its line break") << Fake("print") << QByteArray("Success.") << 1
                                                    << Critical + "Success.\n" << "";
    QTest::newRow("success shows no output") << Fake("print") << QByteArray("chatter\nSuccess.\n") << 0 << Succeeded
                                             << "";
    QTest::newRow("missing executable") << m_Temp.filePath("no-such-compiler") << QByteArray() << 3
                                        << UIString(UIS_FailedToExecuteCompiler) + "\n" << "";
    // A folder below a plain file cannot be made, not even by root.
    QTest::newRow("temporary folder unusable") << Fake("print") << QByteArray() << 3
                                               << UIString(UIS_CouldNotCreateTempFile) + "\n" << "/dev/null/sub/";
}

void CCompilerProcessesTest::EndIsJudgedByTheOutput()
{
    QFETCH(QString, Executable);
    QFETCH(QByteArray, Output);
    QFETCH(int, Status);
    QFETCH(QString, Log);
    QFETCH(QString, TempDirectory);

    CScopedEnv Env("ZAM_FAKE_OUTPUT", Output);
    CBackgroundCompile Compile(TargetFor(Executable, TempDirectory.isEmpty() ? m_Temp.path() : TempDirectory),
                               "void main(){}\n");
    QTRY_VERIFY_WITH_TIMEOUT(Compile.IsDone(), 20000);
    QCOMPARE(static_cast<int>(Compile.GetStatus()), Status);
    QCOMPARE(LogOf(Compile.GetResult()), Log);
    // Only a completed compile has a profile record.
    QCOMPARE(Compile.GetResult().Profiles.GetSize(), Status == 0 ? 1u : 0u);
}

void CCompilerProcessesTest::MalformedProfileIsNamed()
{
    CScopedEnv Env("ZAM_FAKE_PROFILE", "line: 1, count: 2\nline: 2, count: 2\nline: 1, count: 2\n");
    CBackgroundCompile Compile(TargetFor(Fake("print"), m_Temp.path(), CompileOption_Profile), "a\nb\n");
    QTRY_VERIFY_WITH_TIMEOUT(Compile.IsDone(), 20000);
    QCOMPARE(Compile.GetStatus(), CompileStatus_Completed);
    QVERIFY2(LogOf(Compile.GetResult()).contains(UIString(UIS_MalformedProfileFile) + "\n"),
             qPrintable(LogOf(Compile.GetResult())));
}

void CCompilerProcessesTest::CompilerReadsNoInput()
{
    // The editor's own standard input is a pipe that nobody closes, as a terminal would be.
    int aiPipe[2];
    QCOMPARE(::pipe(aiPipe), 0);
    const int iSavedInput = ::dup(0);
    ::dup2(aiPipe[0], 0);
    ::close(aiPipe[0]);

    CRunControl Control;
    SRunOptions Options;
    Options.iTimeoutMs = 10000;
    const SCommandRun Run = RunCommand({Fake("stdin"), {"in", "unit", "out"}}, Control, Options);

    ::dup2(iSavedInput, 0);
    ::close(iSavedInput);
    ::close(aiPipe[1]);
    QVERIFY(!Run.bTimedOut);
    QCOMPARE(Run.eStatus, CompileStatus_Completed);
    QCOMPARE(Run.Output, QByteArray("read 0 bytes\nSuccess.\n"));
}

void CCompilerProcessesTest::NothingOutlivesACompile_data()
{
    QTest::addColumn<QString>("Executable");
    QTest::addColumn<bool>("Cancel");

    QTest::newRow("own session, cancelled") << Fake("setsidhang") << true;
    QTest::newRow("own session, compiler done") << Fake("setsidexit") << false;
    QTest::newRow("forked child, cancelled") << Fake("forkhang") << true;
    QTest::newRow("forked child, compiler done") << Fake("forkexit") << false;
}

void CCompilerProcessesTest::NothingOutlivesACompile()
{
    QFETCH(QString, Executable);
    QFETCH(bool, Cancel);

    const QString Folder = m_Temp.filePath(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(QDir().mkpath(Folder));
    qint64 iChild = 0;
    {
        CBackgroundCompile Compile(TargetFor(Executable, Folder), "void main(){}\n");
        QTRY_VERIFY_WITH_TIMEOUT((iChild = ReadPid(m_PidFile)) > 0, 10000);
        if (Cancel)
            Compile.Cancel();
        QTRY_VERIFY_WITH_TIMEOUT(Compile.IsDone(), 10000);
        QCOMPARE(Compile.GetStatus(), Cancel ? CompileStatus_Failed : CompileStatus_Completed);
    }
    QTRY_VERIFY_WITH_TIMEOUT(!IsRunning(iChild), 2000);
    QVERIFY(!IsRunning(ReadPid(m_OwnPidFile)));
    QCOMPARE(QDir(Folder).entryList(QDir::NoDotAndDotDot | QDir::AllEntries), QStringList());
}

void CCompilerProcessesTest::OutputFilesMustBeRegularFiles()
{
    const QString Folder = m_Temp.filePath("fifo");
    QVERIFY(QDir().mkpath(Folder));
    auto pCompile = std::make_unique<CBackgroundCompile>(
        TargetFor(Fake("fifoout"), Folder, CompileOption_Profile | CompileOption_Disassembly), "void main(){}\n");
    const bool bDone = QTest::qWaitFor([&] { return pCompile->IsDone(); }, 10000);
    // Reading a FIFO waits for a writer: be one, each time the runner waits on one, so it
    // comes back.
    const auto OpenWriters = [&]
    {
        for (const QString& Private : QDir(Folder).entryList({"zamshadereditor-*"}, QDir::Dirs))
        {
            for (const char* pName : {"shader.prof", "shader.disasm"})
            {
                const int iFd = ::open(QFile::encodeName(Folder + "/" + Private + "/" + pName), O_WRONLY | O_NONBLOCK);
                if (iFd >= 0)
                    ::close(iFd);
            }
        }
        return pCompile->IsDone();
    };
    QVERIFY(QTest::qWaitFor(OpenWriters, 10000));
    QVERIFY2(bDone, "reading the output files waited for a writer");
    QCOMPARE(pCompile->GetStatus(), CompileStatus_Completed);
    const QString Log = LogOf(pCompile->GetResult());
    QVERIFY2(Log.startsWith(QStringLiteral("ERROR: ")) && Log.contains(QStringLiteral("shader.prof")),
             qPrintable(Log));
    QVERIFY(Log.endsWith(s_Unit + UIString(UIS_CompileSucceeded) + "\n"));
    QVERIFY(pCompile->GetResult().Disassembly.IsEmpty());
    pCompile.reset();
    QCOMPARE(QDir(Folder).entryList(QDir::NoDotAndDotDot | QDir::AllEntries), QStringList());
}

QTEST_GUILESS_MAIN(CCompilerProcessesTest)
#include "tst_CompilerProcesses.moc"
