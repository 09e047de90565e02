// The zamshadereditor program as a user starts it: the options that need no display, and a
// second start handing its file to the running editor, which records it among the recent
// files in the preference file.

#include "tests/support/TestFiles.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace
{
constexpr int s_iWaitMs = 30000;

QString Editor()
{
    return TestFiles::BinDir() + QStringLiteral("/zamshadereditor");
}

// A user of their own: configuration, runtime folder, and no splash to answer.
class CUser
{
public:
    CUser()
    {
        m_Environment = QProcessEnvironment::systemEnvironment();
        m_Environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_Home.filePath(QStringLiteral("config")));
        m_Environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_Home.filePath(QStringLiteral("run")));
        m_Environment.insert(QStringLiteral("XDG_STATE_HOME"), m_Home.filePath(QStringLiteral("state")));
        m_Environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        QDir().mkpath(m_Home.filePath(QStringLiteral("run")));
        QFile::setPermissions(m_Home.filePath(QStringLiteral("run")),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        TestFiles::WriteAll(PreferenceFile(),
                            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
                            "<key>About</key><dict><key>ShowSplash</key><false/></dict></dict></plist>\n");
    }

    QString PreferenceFile() const
    {
        return m_Home.filePath(QStringLiteral("config/Brenmoor Systems/ZamShaderEditor.plist"));
    }
    // Whether the preference file lists Path (among the recent files).
    bool Remembers(const QString& Path) const
    {
        return TestFiles::ReadAll(PreferenceFile())
            .contains(QString(Path).replace(QLatin1Char('/'), QLatin1Char('\\')).toUtf8());
    }
    QString File(const QString& Name) const
    {
        return TestFiles::WriteTestFile(m_Home.path(), Name,
                                        "precision mediump float;\nvoid main() { gl_FragColor = vec4(1.0); }\n");
    }

    void Start(QProcess& Process, const QStringList& Arguments) const
    {
        Process.setProcessEnvironment(m_Environment);
        Process.start(Editor(), Arguments);
    }

    // A second start; its exit code, or -1 when it did not end by itself.
    int RunSecond(const QStringList& Arguments) const
    {
        QProcess Second;
        Start(Second, Arguments);
        if (!Second.waitForFinished(s_iWaitMs) || Second.exitStatus() != QProcess::NormalExit)
            return -1;
        return Second.exitCode();
    }

private:
    QTemporaryDir m_Home;
    QProcessEnvironment m_Environment;
};
} // namespace

class CEditorProcessTest : public QObject
{
    Q_OBJECT

private slots:
    void InformationNeedsNoDisplay();
    void SecondStartsHandOverToTheEditor();
};

void CEditorProcessTest::InformationNeedsNoDisplay()
{
    QProcessEnvironment Environment = QProcessEnvironment::systemEnvironment();
    // A window system that is not there: any attempt to open a window would fail.
    Environment.remove(QStringLiteral("DISPLAY"));
    Environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    Environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    for (const char* pOption : {"--help", "--version"})
    {
        QProcess Process;
        Process.setProcessEnvironment(Environment);
        Process.start(Editor(), {QLatin1String(pOption)});
        QVERIFY(Process.waitForFinished(s_iWaitMs));
        QCOMPARE(Process.exitCode(), 0);
        const QByteArray Output = Process.readAllStandardOutput();
        QVERIFY2(Output.contains(qstrcmp(pOption, "--help") == 0 ? "Usage: zamshadereditor"
                                                                 : "ZamShaderEditor 2.0 (SDK build"),
                 Output.constData());
    }
}

// What a file manager does with several selected files and an Exec line that takes one: a
// start per file; the first becomes the editor, the others hand their files to it. A start
// naming two files opens only the first. (A crashed editor's successor is tested between the
// single-instance host processes.)
void CEditorProcessTest::SecondStartsHandOverToTheEditor()
{
    CUser User;
    const QString First = User.File(QStringLiteral("first.frag"));
    const QString Ignored = User.File(QStringLiteral("ignored.frag"));
    QProcess Editor;
    User.Start(Editor, {First, Ignored});
    QVERIFY(QTest::qWaitFor([&] { return User.Remembers(First); }, s_iWaitMs));

    // The running editor opens each: it is then among its recent files.
    const QString Third = User.File(QStringLiteral("third file.frag"));
    const QString Fourth = User.File(QStringLiteral("fourth.frag"));
    QCOMPARE(User.RunSecond({Third}), 0);
    QCOMPARE(User.RunSecond({Fourth}), 0);
    // A missing file changes nothing, and that start still ends cleanly.
    QCOMPARE(User.RunSecond({User.File(QStringLiteral("x")) + QStringLiteral(".missing")}), 0);
    QVERIFY(QTest::qWaitFor([&] { return User.Remembers(Third) && User.Remembers(Fourth); }, s_iWaitMs));
    QVERIFY(!User.Remembers(Ignored));
    QVERIFY(Editor.state() == QProcess::Running);
    Editor.kill();
    Editor.waitForFinished(s_iWaitMs);
}

QTEST_GUILESS_MAIN(CEditorProcessTest)
#include "tst_EditorProcess.moc"
