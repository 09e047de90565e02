#include "tests/support/TestFiles.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace
{
struct SCompileRun
{
    int iExitCode = -1;
    QString Output;
};

// The editor's command-line compile, as a build script would run it.
SCompileRun CompileWithEditor(const QStringList& Arguments)
{
    QProcess Process;
    Process.setProcessChannelMode(QProcess::MergedChannels);
    Process.start(QDir(TestFiles::BinDir()).filePath(QStringLiteral("zamshadereditor")),
                  QStringList{QStringLiteral("--compile")} + Arguments);
    SCompileRun Run;
    if (!Process.waitForFinished(120000))
    {
        Process.kill();
        Process.waitForFinished();
        Run.Output = QStringLiteral("did not finish");
        return Run;
    }
    Run.iExitCode = Process.exitStatus() == QProcess::NormalExit ? Process.exitCode() : -1;
    Run.Output = QString::fromUtf8(Process.readAll());
    return Run;
}

QFileInfoList ExampleShaders()
{
    const QDir Examples(TestFiles::SourceDir() + QStringLiteral("/examples"));
    return Examples.entryInfoList(
        {QStringLiteral("*.vsh"), QStringLiteral("*.fsh"), QStringLiteral("*.zfx"), QStringLiteral("*.cl")},
        QDir::Files, QDir::Name);
}

// Each compiled unit reports one line; a clean compile has no other.
void VerifyClean(const SCompileRun& Run, int iUnits, const QString& What)
{
    QVERIFY2(Run.iExitCode == 0, qPrintable(What + QStringLiteral(":\n") + Run.Output));
    const QStringList Lines = Run.Output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QCOMPARE(Lines.size(), iUnits);
    for (const QString& Line : Lines)
        QVERIFY2(Line.endsWith(QStringLiteral(": Compile succeeded.")), qPrintable(What + QStringLiteral(": ") + Line));
}
} // namespace

class CExamplesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void EveryExampleCompilesCleanlyOnEveryCore();
    void ExamplesAreBesideTheBuild();
    void BadFilesFailTheRun();

private:
    QTemporaryDir m_Config;
};

void CExamplesTest::initTestCase()
{
    // The command-line compile reads the user's preferences; it gets an empty folder, and no
    // display of any kind.
    QVERIFY(m_Config.isValid());
    qputenv("XDG_CONFIG_HOME", m_Config.path().toUtf8());
    for (const char* pName : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        qunsetenv(pName);
    QVERIFY(ExampleShaders().size() >= 5);
}

void CExamplesTest::EveryExampleCompilesCleanlyOnEveryCore()
{
    QStringList Kinds;
    QStringList All;
    QStringList Glsl;
    int iGlslUnits = 0;
    for (const QFileInfo& Example : ExampleShaders())
    {
        Kinds << Example.suffix();
        All << Example.absoluteFilePath();
        if (Example.suffix() == QStringLiteral("cl"))
            continue;
        Glsl << Example.absoluteFilePath();
        // Effect files compile shader by shader; the post-processing chain has three.
        iGlslUnits += Example.suffix() == QStringLiteral("zfx") ? 3 : 1;
    }
    for (const char* pKind : {"vsh", "fsh", "zfx", "cl"})
        QVERIFY2(Kinds.contains(QString::fromLatin1(pKind)), pKind);
    // The core chosen in the (empty) preferences, then the others by name.
    VerifyClean(CompileWithEditor(All), iGlslUnits + All.size() - Glsl.size(), QStringLiteral("default core"));
    for (const char* pCore : {"zc2", "zc3", "zd1"})
        VerifyClean(CompileWithEditor(QStringList{QStringLiteral("--core"), QString::fromLatin1(pCore)} + Glsl),
                    iGlslUnits, QString::fromLatin1(pCore));
}

void CExamplesTest::ExamplesAreBesideTheBuild()
{
    // Where the program looks for them, from its own folder, in a build as when installed.
    const QDir Beside(TestFiles::BinDir() + QStringLiteral("/../share/zamshadereditor/examples"));
    for (const QFileInfo& Example : ExampleShaders())
    {
        QFile Built(Beside.filePath(Example.fileName()));
        QFile Source(Example.absoluteFilePath());
        QVERIFY(Built.open(QIODevice::ReadOnly) && Source.open(QIODevice::ReadOnly));
        QCOMPARE(Built.readAll(), Source.readAll());
    }
}

// A good file, a broken one and a missing one, then no file at all: both runs fail, and
// nothing is written to the configuration folder.
void CExamplesTest::BadFilesFailTheRun()
{
    const QString Good = QDir(TestFiles::SourceDir()).filePath(QStringLiteral("examples/lit_mesh.fsh"));
    QTemporaryDir Work;
    const QString Broken = TestFiles::WriteTestFile(Work.path(), "broken.fsh",
                                                    "void main()\n{\n    gl_FragColor = missing;\n}\n");
    const SCompileRun Run = CompileWithEditor({QStringLiteral("--core"), QStringLiteral("zc2"), Good, Broken,
                                               QStringLiteral("absent.fsh")});
    QCOMPARE(Run.iExitCode, 1);
    QVERIFY2(Run.Output.contains(QStringLiteral("GLSL:ES Fragment Shader: Compile succeeded.\n"
                                                 "GLSL:ES Fragment Shader: Compile failed.\nERROR: 0:3:"))
                 && Run.Output.contains(QStringLiteral("absent.fsh")),
             qPrintable(Run.Output));
    const SCompileRun Nothing = CompileWithEditor({});
    QCOMPARE(Nothing.iExitCode, 1);
    QVERIFY(!Nothing.Output.isEmpty());
    QCOMPARE(QDir(m_Config.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries), QStringList());
}

QTEST_GUILESS_MAIN(CExamplesTest)
#include "tst_Examples.moc"
