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

// An opener on a fresh store that records everything it asks of the desktop and the user.
struct SOpening
{
    std::unique_ptr<CZamPreferences> pStore = LoadStore();
    CDocumentationOpener Opener{*pStore};
    QStringList Opened;       // local paths handed to the viewer
    QStringList Refused;      // paths the viewer is to fail on
    QStringList Warnings;     // "title: text"
    QStringList ChooserCalls; // "title|filter"
    QString Choice;           // what the user picks in the file chooser

    SOpening()
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
    SOpening Doc;
    const QString Beside = QDir::cleanPath(AppDir + QStringLiteral("/../Documentation/") + kFileName);
    const QString Installed = QDir::cleanPath(AppDir + QStringLiteral("/../share/doc/zamshadereditor/") + kFileName);
    QCOMPARE(Doc.Opener.Candidates(QStringLiteral("../Documentation/"), kFileName), QStringList({Beside, Installed}));

    // A relative directory is the executable's, not the working directory's.
    const QString Before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_Files.path()));
    QCOMPARE(Doc.Opener.Candidates(QStringLiteral("../Documentation/"), kFileName).value(0), Beside);
    QVERIFY(QDir::setCurrent(Before));

    Doc.pStore->SetString(kKey, QStringLiteral("/somewhere/chosen.pdf"));
    QCOMPARE(Doc.Opener.Candidates(QStringLiteral("../Documentation/"), kFileName),
             QStringList({QStringLiteral("/somewhere/chosen.pdf"), Beside, Installed}));
    QCOMPARE(Doc.Opener.Candidates(m_Files.path(), kFileName).value(1), QDir(m_Files.path()).filePath(kFileName));
}

void CDocumentationOpenerTest::FirstCandidateThatOpensWins()
{
    const QString Folder = m_Files.filePath(QStringLiteral("docs"));
    const QString InFolder = QDir(Folder).filePath(kFileName);
    QVERIFY(WriteFile(InFolder));
    SOpening Doc;
    // A remembered location that has gone since is skipped, and never handed to the viewer.
    Doc.pStore->SetString(kKey, m_Files.filePath(QStringLiteral("moved-away.pdf")));
    QVERIFY(Doc.Opener.Open(nullptr, Folder, kFileName));
    QCOMPARE(Doc.Opened, QStringList({InFolder}));
    QVERIFY(Doc.Warnings.isEmpty() && Doc.ChooserCalls.isEmpty());

    // A viewer that fails on the remembered file: the next candidate is tried.
    const QString Chosen = m_Files.filePath(QStringLiteral("chosen.pdf"));
    QVERIFY(WriteFile(Chosen));
    Doc.pStore->SetString(kKey, Chosen);
    Doc.Opened.clear();
    Doc.Refused = {Chosen};
    QVERIFY(Doc.Opener.Open(nullptr, Folder, kFileName));
    QCOMPARE(Doc.Opened, QStringList({Chosen, InFolder}));
    QVERIFY(Doc.Warnings.isEmpty());
}

void CDocumentationOpenerTest::MissingFileIsLocatedOnceAndRemembered()
{
    const QString Empty = m_Files.filePath(QStringLiteral("empty"));
    QVERIFY(QDir().mkpath(Empty));
    const QString Located = m_Files.filePath(QStringLiteral("elsewhere/The Manual.pdf"));
    QVERIFY(WriteFile(Located));
    {
        SOpening Doc;
        Doc.Choice = Located;
        QVERIFY(Doc.Opener.Open(nullptr, Empty, kFileName));
        QCOMPARE(Doc.Warnings, QStringList({QStringLiteral("Documentation File Not Found: Please locate the file: ") + kFileName}));
        QCOMPARE(Doc.ChooserCalls, QStringList({QStringLiteral("Open Source File|Portable Document Format (*.pdf)")}));
        QCOMPARE(Doc.Opened, QStringList({Located}));
    }
    // A later run opens it directly, though the given directory still lacks it.
    SOpening Doc;
    QCOMPARE(Doc.pStore->GetString(kKey), Located);
    QVERIFY(Doc.Opener.Open(nullptr, Empty, kFileName));
    QCOMPARE(Doc.Opened, QStringList({Located}));
    QVERIFY(Doc.Warnings.isEmpty() && Doc.ChooserCalls.isEmpty());
}

void CDocumentationOpenerTest::FailuresAreReported()
{
    const QString Empty = m_Files.filePath(QStringLiteral("nothing-here"));
    SOpening Doc;
    // The user cancels the chooser: nothing opened, nothing remembered.
    QVERIFY(!Doc.Opener.Open(nullptr, Empty, kFileName));
    QCOMPARE(Doc.Warnings.size(), 1);
    QCOMPARE(Doc.ChooserCalls.size(), 1);
    QVERIFY(Doc.Opened.isEmpty());

    // The chosen file exists but no viewer takes it, or it does not exist whatever the viewer
    // would say: told, and not remembered.
    const QString Broken = m_Files.filePath(QStringLiteral("broken.pdf"));
    QVERIFY(WriteFile(Broken));
    for (const QString& Chosen : {Broken, m_Files.filePath(QStringLiteral("typed-by-hand.pdf"))})
    {
        Doc.Choice = Chosen;
        Doc.Refused = {Broken};
        Doc.Opened.clear();
        Doc.Warnings.clear();
        QVERIFY(!Doc.Opener.Open(nullptr, Empty, kFileName));
        QCOMPARE(Doc.Warnings.size(), 2);
        QVERIFY2(Doc.Warnings[1].startsWith(QStringLiteral("File Open Failed: ")), qPrintable(Doc.Warnings[1]));
        QVERIFY(Doc.Warnings[1].contains(QFileInfo(Chosen).fileName()));
        QCOMPARE(Doc.Opened.isEmpty(), Chosen != Broken);
    }
    QVERIFY(!LoadStore()->HasKey(kKey));
}

QTEST_GUILESS_MAIN(CDocumentationOpenerTest)
#include "tst_DocumentationOpener.moc"
