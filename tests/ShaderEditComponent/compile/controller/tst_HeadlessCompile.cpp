// The command-line compile as a process of its own: interrupted, killed, out of time, and given
// files that are no shader files at all. Nothing it started may outlive it.

#include "tests/support/CompileTestSupport.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <sys/stat.h>

using namespace CompileTest;

namespace
{
const char kShader[] = "precision mediump float;\nvoid main() { gl_FragColor = vec4(1.0); }\n";

QStringList Entries(const QString& Folder)
{
    return QDir(Folder).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System | QDir::Hidden);
}
} // namespace

class CHeadlessCompileTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void EndedEditorLeavesNothingBehind_data();
    void EndedEditorLeavesNothingBehind();
    void TimeLimitCancelsTheCompile();
    void OnlyRegularFilesAreRead();

private:
    // Stores Executable as the custom compiler in the preference file the host reads.
    void UseCompiler(const QString& Executable);
    void Start(const QStringList& Arguments);

    QTemporaryDir m_Temp;
    QString m_TempFolder; // the compiles' temporary directory
    QString m_PidFile;
    QString m_OwnPidFile;
    QProcess m_Host;
};

void CHeadlessCompileTest::initTestCase()
{
    QVERIFY(QFileInfo(Program("zam_headless_host")).isExecutable());
    m_PidFile = m_Temp.filePath("child.pid");
    m_OwnPidFile = m_Temp.filePath("own.pid");
    QVERIFY(WriteAll(m_Temp.filePath("good.fsh"), kShader));
}

void CHeadlessCompileTest::init()
{
    QFile::remove(m_PidFile);
    QFile::remove(m_OwnPidFile);
}

void CHeadlessCompileTest::cleanup()
{
    if (m_Host.state() != QProcess::NotRunning)
    {
        m_Host.kill();
        m_Host.waitForFinished();
    }
    KillIfRunning(m_PidFile);
    KillIfRunning(m_OwnPidFile);
}

void CHeadlessCompileTest::UseCompiler(const QString& Executable)
{
    // A folder of its own each time, so what one case leaves behind is not blamed on the next.
    static int s_iUse = 0;
    m_TempFolder = m_Temp.filePath(QStringLiteral("tmp%1").arg(++s_iUse));
    QVERIFY(QDir().mkpath(m_TempFolder));
    StoreCustomCompiler(Executable, m_TempFolder + "/");
}

void CHeadlessCompileTest::Start(const QStringList& Arguments)
{
    QProcessEnvironment Environment = QProcessEnvironment::systemEnvironment();
    Environment.insert("ZAM_FAKE_PID_FILE", m_PidFile);
    Environment.insert("ZAM_FAKE_OWN_PID_FILE", m_OwnPidFile);
    // No options: a background compile then asks for no profile the fakes would not write.
    Environment.insert("ZAM_FAKE_BANNER", "Fake compiler for FAKE rev 1 Version 1.0\n");
    m_Host.setProcessEnvironment(Environment);
    m_Host.setWorkingDirectory(m_Temp.path());
    m_Host.start(Program("zam_headless_host"), QStringList{"--compile"} + Arguments);
    QVERIFY(m_Host.waitForStarted());
}

void CHeadlessCompileTest::EndedEditorLeavesNothingBehind_data()
{
    QTest::addColumn<QString>("Executable");
    QTest::addColumn<int>("Signal");

    for (const char* pMode : {"forkhang", "setsidhang"})
    {
        for (const auto& [iSignal, pName] : {std::pair{SIGINT, "Ctrl+C"}, {SIGTERM, "SIGTERM"}, {SIGKILL, "SIGKILL"}})
            QTest::addRow("%s, %s", pMode, pName) << Fake(pMode) << iSignal;
    }
}

void CHeadlessCompileTest::EndedEditorLeavesNothingBehind()
{
    QFETCH(QString, Executable);
    QFETCH(int, Signal);

    UseCompiler(Executable);
    Start({"good.fsh"});
    qint64 iCompiler = 0;
    qint64 iChild = 0;
    QTRY_VERIFY_WITH_TIMEOUT((iCompiler = ReadPid(m_OwnPidFile)) > 0 && (iChild = ReadPid(m_PidFile)) > 0, 20000);
    QCOMPARE(Entries(m_TempFolder).size(), 1); // the compile's private folder

    ::kill(static_cast<pid_t>(m_Host.processId()), Signal);
    QVERIFY(m_Host.waitForFinished(10000));
    if (Signal != SIGKILL)
    {
        // Handled: the compile is cancelled, said so, and the run fails.
        QCOMPARE(m_Host.exitStatus(), QProcess::NormalExit);
        QCOMPARE(m_Host.exitCode(), 128 + Signal);
        QVERIFY(m_Host.readAllStandardError().contains("cancelled"));
    }
    QTRY_VERIFY_WITH_TIMEOUT(!IsRunning(iCompiler) && !IsRunning(iChild), 2000);
    QTRY_COMPARE_WITH_TIMEOUT(Entries(m_TempFolder), QStringList(), 2000);
}

void CHeadlessCompileTest::TimeLimitCancelsTheCompile()
{
    UseCompiler(Fake("hang"));
    Start({"--timeout", "1", "good.fsh"});
    QVERIFY(m_Host.waitForFinished(15000));
    QCOMPARE(m_Host.exitStatus(), QProcess::NormalExit);
    QCOMPARE(m_Host.exitCode(), 1);
    const QByteArray Err = m_Host.readAllStandardError();
    QVERIFY2(Err.contains("good.fsh") && Err.contains("1 s"), Err.constData());
    QVERIFY(!IsRunning(ReadPid(m_OwnPidFile)));
    QCOMPARE(Entries(m_TempFolder), QStringList());

    for (const char* pBad : {"0", "x", "-5"})
    {
        Start({"--timeout", pBad, "good.fsh"});
        QVERIFY(m_Host.waitForFinished(15000));
        QCOMPARE(m_Host.exitCode(), 1);
        QVERIFY(m_Host.readAllStandardError().contains("--timeout"));
    }
}

// Only regular files of a sane size are read, and an effect's FILE shaders are found beside it.
void CHeadlessCompileTest::OnlyRegularFilesAreRead()
{
    UseCompiler(Fake("print"));
    const QString Fifo = m_Temp.filePath("pipe.fsh");
    QCOMPARE(::mkfifo(QFile::encodeName(Fifo).constData(), 0600), 0);
    QVERIFY(QDir().mkpath(m_Temp.filePath("folder.fsh")));
    // Sparse: larger than any document may be, without using the disk.
    QFile Huge(m_Temp.filePath("huge.fsh"));
    QVERIFY(Huge.open(QIODevice::WriteOnly) && Huge.resize(257LL * 1024 * 1024));
    Huge.close();

    // Started from another folder, an effect still finds its FILE shaders beside itself.
    QVERIFY(WriteAll(m_Temp.filePath("fx/lit.frag"), kShader));
    QVERIFY(WriteAll(m_Temp.filePath("fx/scene.zfx"),
                     "[VERTEXSHADER]\nNAME vs\n[GLSL_CODE]\nvoid main() { gl_Position = vec4(0.0); }\n"
                     "[/GLSL_CODE]\n[/VERTEXSHADER]\n[FRAGMENTSHADER]\nNAME fs\nFILE lit.frag\n[/FRAGMENTSHADER]\n"
                     "[EFFECT]\nNAME e\nVERTEXSHADER vs\nFRAGMENTSHADER fs\n[/EFFECT]\n"));

    const QStringList Bad = {"pipe.fsh", "/dev/zero", "folder.fsh", "huge.fsh"};
    Start(Bad + QStringList{"good.fsh", "fx/scene.zfx"});
    const bool bFinished = m_Host.waitForFinished(15000);
    QVERIFY2(bFinished, "the command-line compile blocked on a file");
    QCOMPARE(m_Host.exitStatus(), QProcess::NormalExit);
    QCOMPARE(m_Host.exitCode(), 1);
    const QString Err = QString::fromUtf8(m_Host.readAllStandardError());
    for (const QString& Name : Bad)
        QVERIFY2(Err.contains(Name), qPrintable(Err));
    QVERIFY2(Err.contains("not a regular file") && Err.contains("256 MiB"), qPrintable(Err));
    // The good files after them still compile.
    QCOMPARE(m_Host.readAllStandardOutput(), QByteArray("GLSL:ES Fragment Shader: Compile succeeded.\n"
                                                        "vs: Compile succeeded.\nfs: Compile succeeded.\n"));
}

QTEST_GUILESS_MAIN(CHeadlessCompileTest)
#include "tst_HeadlessCompile.moc"
