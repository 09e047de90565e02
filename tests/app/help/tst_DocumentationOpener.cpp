#include "app/help/DocumentationOpener.h"
#include "Common/ZamPreferences/ZamPreferences.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QUrl>
#include <QtTest>

#include <memory>

namespace
{
// A name no build produces, so only the files made here can be found.
const QString kFileName = QStringLiteral("tst-opener-manual.pdf");
const QString kKey = QStringLiteral("OpenDocs/") + kFileName;

std::unique_ptr<CZamPreferences> LoadStore()
{
    auto pStore = std::make_unique<CZamPreferences>(QStringLiteral("ZamShaderEditor"));
    pStore->Load();
    return pStore;
}

bool WriteFile(const QString& Path)
{
    QDir().mkpath(QFileInfo(Path).absolutePath());
    QFile File(Path);
    return File.open(QIODevice::WriteOnly) && File.write("%PDF-1.4\n") > 0;
}

// Records everything the opener asks of the desktop and the user.
struct SRecorder
{
    QStringList Opened;            // local paths handed to the viewer
    QStringList Refused;           // paths the viewer is to fail on
    QStringList Warnings;          // "title: text"
    QStringList ChooserCalls;      // "title|filter"
    QString Choice;                // what the user picks in the file chooser

    void Attach(CDocumentationOpener& Opener)
    {
        Opener.SetUrlOpener([this](const QUrl& Url) {
            Opened << Url.toLocalFile();
            return !Refused.contains(Url.toLocalFile());
        });
        Opener.SetWarner([this](QWidget*, const QString& Title, const QString& Text) { Warnings << Title + QStringLiteral(": ") + Text; });
        Opener.SetFileChooser([this](QWidget*, const QString& Title, const QString&, const QString& Filter) {
            ChooserCalls << Title + QLatin1Char('|') + Filter;
            return Choice;
        });
    }
};
} // namespace

class CDocumentationOpenerTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void CandidatesInOrder();
    void FirstCandidateThatOpensWins();
    void MissingFileIsLocatedOnceAndRemembered();
    void FailuresAreReported();

private:
    QTemporaryDir m_Config;
    QTemporaryDir m_Files;
};

void CDocumentationOpenerTest::initTestCase()
{
    QVERIFY(m_Config.isValid() && m_Files.isValid());
    qputenv("XDG_CONFIG_HOME", m_Config.path().toUtf8());
}

void CDocumentationOpenerTest::init()
{
    QFile::remove(LoadStore()->GetFilePath());
}

void CDocumentationOpenerTest::CandidatesInOrder()
{
    const QString AppDir = QCoreApplication::applicationDirPath();
    std::unique_ptr<CZamPreferences> pStore = LoadStore();
    CDocumentationOpener Opener(*pStore);
    const QString Beside = QDir::cleanPath(AppDir + QStringLiteral("/../Documentation/") + kFileName);
    const QString Installed = QDir::cleanPath(AppDir + QStringLiteral("/../share/doc/zamshadereditor/") + kFileName);
    QCOMPARE(Opener.Candidates(QStringLiteral("../Documentation/"), kFileName), QStringList({Beside, Installed}));

    // A relative directory is the executable's, not the working directory's.
    const QString Before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_Files.path()));
    QCOMPARE(Opener.Candidates(QStringLiteral("../Documentation/"), kFileName).value(0), Beside);
    QVERIFY(QDir::setCurrent(Before));

    pStore->SetString(kKey, QStringLiteral("/somewhere/chosen.pdf"));
    QCOMPARE(Opener.Candidates(QStringLiteral("../Documentation/"), kFileName),
             QStringList({QStringLiteral("/somewhere/chosen.pdf"), Beside, Installed}));
    QCOMPARE(Opener.Candidates(m_Files.path(), kFileName).value(1), QDir(m_Files.path()).filePath(kFileName));
}

void CDocumentationOpenerTest::FirstCandidateThatOpensWins()
{
    const QString Folder = m_Files.filePath(QStringLiteral("docs"));
    const QString InFolder = QDir(Folder).filePath(kFileName);
    QVERIFY(WriteFile(InFolder));
    std::unique_ptr<CZamPreferences> pStore = LoadStore();
    // A remembered location that has gone since is skipped, and never handed to the viewer.
    pStore->SetString(kKey, m_Files.filePath(QStringLiteral("moved-away.pdf")));

    CDocumentationOpener Opener(*pStore);
    SRecorder Recorder;
    Recorder.Attach(Opener);
    QVERIFY(Opener.Open(nullptr, Folder, kFileName));
    QCOMPARE(Recorder.Opened, QStringList({InFolder}));
    QVERIFY(Recorder.Warnings.isEmpty() && Recorder.ChooserCalls.isEmpty());

    // A viewer that fails on the remembered file: the next candidate is tried.
    const QString Chosen = m_Files.filePath(QStringLiteral("chosen.pdf"));
    QVERIFY(WriteFile(Chosen));
    pStore->SetString(kKey, Chosen);
    Recorder.Opened.clear();
    Recorder.Refused = {Chosen};
    QVERIFY(Opener.Open(nullptr, Folder, kFileName));
    QCOMPARE(Recorder.Opened, QStringList({Chosen, InFolder}));
    QVERIFY(Recorder.Warnings.isEmpty());
}

void CDocumentationOpenerTest::MissingFileIsLocatedOnceAndRemembered()
{
    const QString Empty = m_Files.filePath(QStringLiteral("empty"));
    QVERIFY(QDir().mkpath(Empty));
    const QString Located = m_Files.filePath(QStringLiteral("elsewhere/The Manual.pdf"));
    QVERIFY(WriteFile(Located));
    {
        std::unique_ptr<CZamPreferences> pStore = LoadStore();
        CDocumentationOpener Opener(*pStore);
        SRecorder Recorder;
        Recorder.Attach(Opener);
        Recorder.Choice = Located;
        QVERIFY(Opener.Open(nullptr, Empty, kFileName));
        QCOMPARE(Recorder.Warnings, QStringList({QStringLiteral("Documentation File Not Found: Please locate the file: ") + kFileName}));
        QCOMPARE(Recorder.ChooserCalls,
                 QStringList({QStringLiteral("Open Source File|Portable Document Format (*.pdf)")}));
        QCOMPARE(Recorder.Opened, QStringList({Located}));
    }
    // A later run opens it directly, though the given directory still lacks it.
    std::unique_ptr<CZamPreferences> pStore = LoadStore();
    QCOMPARE(pStore->GetString(kKey), Located);
    CDocumentationOpener Opener(*pStore);
    SRecorder Recorder;
    Recorder.Attach(Opener);
    QVERIFY(Opener.Open(nullptr, Empty, kFileName));
    QCOMPARE(Recorder.Opened, QStringList({Located}));
    QVERIFY(Recorder.Warnings.isEmpty() && Recorder.ChooserCalls.isEmpty());
}

void CDocumentationOpenerTest::FailuresAreReported()
{
    const QString Empty = m_Files.filePath(QStringLiteral("nothing-here"));
    std::unique_ptr<CZamPreferences> pStore = LoadStore();
    CDocumentationOpener Opener(*pStore);
    SRecorder Recorder;
    Recorder.Attach(Opener);

    // The user cancels the chooser: nothing opened, nothing remembered.
    QVERIFY(!Opener.Open(nullptr, Empty, kFileName));
    QCOMPARE(Recorder.Warnings.size(), 1);
    QCOMPARE(Recorder.ChooserCalls.size(), 1);
    QVERIFY(Recorder.Opened.isEmpty());

    // The chosen file exists but no viewer takes it: told, and not remembered.
    const QString Chosen = m_Files.filePath(QStringLiteral("broken.pdf"));
    QVERIFY(WriteFile(Chosen));
    Recorder.Choice = Chosen;
    Recorder.Refused = {Chosen};
    Recorder.Warnings.clear();
    QVERIFY(!Opener.Open(nullptr, Empty, kFileName));
    QCOMPARE(Recorder.Warnings.size(), 2);
    QVERIFY(Recorder.Warnings[1].startsWith(QStringLiteral("File Open Failed: ")));
    QVERIFY(Recorder.Warnings[1].contains(QStringLiteral("broken.pdf")));

    // A chosen file that does not exist is a failure too, whatever the viewer would say.
    Recorder.Choice = m_Files.filePath(QStringLiteral("typed-by-hand.pdf"));
    Recorder.Refused.clear();
    Recorder.Opened.clear();
    Recorder.Warnings.clear();
    QVERIFY(!Opener.Open(nullptr, Empty, kFileName));
    QVERIFY(Recorder.Opened.isEmpty());
    QVERIFY(Recorder.Warnings.value(1).startsWith(QStringLiteral("File Open Failed: ")));
    QVERIFY(!LoadStore()->HasKey(kKey));
}

QTEST_GUILESS_MAIN(CDocumentationOpenerTest)
#include "tst_DocumentationOpener.moc"
