#include "app/help/BuildInfo.h"
#include "app/help/CAboutBoxDialog.h"
#include "app/help/CFeedbackDialog.h"
#include "app/help/CUpdateChecker.h"
#include "app/help/DocumentationOpener.h"
#include "Common/ZamPreferences/ZamPreferences.h"
#include "tests/support/TestFiles.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QtTest>
#include <QUrl>
#include <QUrlQuery>

#include <memory>

namespace
{
const QString kSplash = QStringLiteral(":/ZamShaderEditor/Graphics/SplashZamShaderEditor.png");
const QString kAppText = QStringLiteral("ZamShaderEditor 2.0");
// A manual name no build produces, so only the files made here can be found.
const QString kManual = QStringLiteral("tst-opener-manual.pdf");
const QString kKey = QStringLiteral("OpenDocs/") + kManual;

// A fresh store on the preference file, as the next start of the program reads it.
std::unique_ptr<CZamPreferences> LoadStore()
{
    auto pStore = std::make_unique<CZamPreferences>(QStringLiteral("ZamShaderEditor"));
    pStore->Load();
    return pStore;
}

bool WriteFile(const QString& Path)
{
    return TestFiles::WriteAll(Path, "%PDF-1.4\n");
}

// A documentation opener on a fresh store that records everything it asks of the desktop and
// the user.
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
        Opener.SetUrlOpener(
            [this](const QUrl& Url)
            {
                Opened << Url.toLocalFile();
                return !Refused.contains(Url.toLocalFile());
            });
        Opener.SetWarner([this](QWidget*, const QString& Title, const QString& Text)
                         { Warnings << Title + QStringLiteral(": ") + Text; });
        Opener.SetFileChooser(
            [this](QWidget*, const QString& Title, const QString&, const QString& Filter)
            {
                ChooserCalls << Title + QLatin1Char('|') + Filter;
                return Choice;
            });
    }
};

// Runs the box and presses OK if it comes up; true when it was shown modally.
bool RunAndAnswer(CAboutBoxDialog& Box)
{
    bool bShown = false;
    QTimer::singleShot(0, &Box, [&Box, &bShown] {
        if (QApplication::activeModalWidget() != &Box)
            return;
        bShown = true;
        Box.findChild<QPushButton*>(QStringLiteral("OkButton"))->click();
    });
    Box.Run();
    // When Run did not block, the answer above runs now and finds no modal box.
    QCoreApplication::processEvents();
    return bShown;
}

// The href of the first link in a label's rich text, with the HTML escapes undone.
QString LinkOf(const QLabel* pLabel)
{
    static const QRegularExpression s_Href(QStringLiteral("href=\"([^\"]*)\""));
    QString Href = s_Href.match(pLabel->text()).captured(1);
    Href.replace(QStringLiteral("&quot;"), QStringLiteral("\""));
    Href.replace(QStringLiteral("&lt;"), QStringLiteral("<"));
    Href.replace(QStringLiteral("&gt;"), QStringLiteral(">"));
    Href.replace(QStringLiteral("&amp;"), QStringLiteral("&"));
    return Href;
}

// Answers the next message box that comes up, remembering its title and text.
void AnswerNextMessageBox(QString& Title, QString& Text)
{
    QTimer::singleShot(0, [&Title, &Text] {
        QMessageBox* pBox = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!pBox)
            return;
        Title = pBox->windowTitle();
        Text = pBox->text();
        pBox->accept();
    });
}
} // namespace

class CHelpDialogsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void AboutBoxShowAtStartupPersists();
    void AboutBoxWidgetsAndLinks();
    void FeedbackIdentifiesBuildAndMailLink();
    void UpdateCheckTellsInstalledVersion();
    void ManualCandidatesInOrder();
    void FirstManualThatOpensWins();
    void MissingManualIsLocatedOnceAndRemembered();
    void ManualFailuresAreReported();

private:
    QTemporaryDir m_Config;
    QTemporaryDir m_Files;
};

void CHelpDialogsTest::initTestCase()
{
    QVERIFY(m_Config.isValid() && m_Files.isValid());
    qputenv("XDG_CONFIG_HOME", m_Config.path().toUtf8());
}

void CHelpDialogsTest::init()
{
    QFile::remove(LoadStore()->GetFilePath());
}

void CHelpDialogsTest::AboutBoxShowAtStartupPersists()
{
    // First start: no preference yet, the splash shows and offers to stay.
    {
        std::unique_ptr<CZamPreferences> pStore = LoadStore();
        CAboutBoxDialog Box(nullptr, kAppText, kSplash, *pStore, false);
        QCheckBox* pShow = Box.findChild<QCheckBox*>(QStringLiteral("ShowAtStartUpCB"));
        QVERIFY(pShow && pShow->isChecked());
        QVERIFY(RunAndAnswer(Box));
        // Only looking at the box writes nothing.
        QVERIFY(!LoadStore()->HasKey(CAboutBoxDialog::ShowSplashKey()));
        pShow->click();
        QVERIFY(!pShow->isChecked());
    }
    // The next start reads the file afresh: no splash.
    {
        std::unique_ptr<CZamPreferences> pStore = LoadStore();
        QCOMPARE(pStore->GetBool(QStringLiteral("About/ShowSplash"), true), false);
        CAboutBoxDialog Splash(nullptr, kAppText, kSplash, *pStore, false);
        QVERIFY(!Splash.IsShowFlagSet());
        QCOMPARE(Splash.Run(), int(QDialog::Accepted));
        QVERIFY(!RunAndAnswer(Splash));

        // The Help menu still shows the box, with the box unticked; ticking it brings the
        // splash back.
        CAboutBoxDialog About(nullptr, kAppText, kSplash, *pStore, true);
        QVERIFY(About.IsShowFlagSet());
        QCheckBox* pShow = About.findChild<QCheckBox*>(QStringLiteral("ShowAtStartUpCB"));
        QVERIFY(!pShow->isChecked());
        QVERIFY(RunAndAnswer(About));
        pShow->click();
    }
    std::unique_ptr<CZamPreferences> pStore = LoadStore();
    QCOMPARE(pStore->GetBool(CAboutBoxDialog::ShowSplashKey(), false), true);
    CAboutBoxDialog Splash(nullptr, kAppText, kSplash, *pStore, false);
    QVERIFY(RunAndAnswer(Splash));
}

void CHelpDialogsTest::AboutBoxWidgetsAndLinks()
{
    std::unique_ptr<CZamPreferences> pStore = LoadStore();
    CAboutBoxDialog Box(nullptr, kAppText, kSplash, *pStore, true);

    // The splash image is the background, and the box has exactly its size.
    const QPixmap Splash(kSplash);
    QVERIFY(!Splash.isNull());
    QCOMPARE(Box.minimumSize(), Splash.size());
    QCOMPARE(Box.maximumSize(), Splash.size());
    QCOMPARE(Box.palette().brush(QPalette::Window).texture().size(), Splash.size());

    const QString AppVersion = Box.findChild<QLabel*>(QStringLiteral("AppVersionLabel"))->text();
    const QRegularExpressionMatch Build =
        QRegularExpression(QStringLiteral("^ZamShaderEditor 2\\.0 \\(SDK build (\\d+\\.\\d+\\.\\d+)@(\\d+)\\)$")).match(AppVersion);
    QVERIFY2(Build.hasMatch(), qPrintable(AppVersion));
    QCOMPARE(Build.captured(1), QStringLiteral(ZAM_TEST_PROJECT_VERSION));
    if (QFileInfo::exists(TestFiles::SourceDir() + QStringLiteral("/.git")))
        QVERIFY(Build.captured(2).toInt() > 0);
    const QStringList Libraries = Box.findChild<QLabel*>(QStringLiteral("VersionLabel"))->text().split(QStringLiteral(" | "));
    QCOMPARE(Libraries.value(0), QStringLiteral("Qt version ") + QString::fromLatin1(qVersion()));

    // Both links go to the desktop's opener as they stand in the labels.
    QList<QUrl> Opened;
    Box.SetUrlOpener([&Opened](const QUrl& Url) {
        Opened << Url;
        return true;
    });
    for (const char* pName : {"EmailLabel", "WebsiteLabel"})
    {
        QLabel* pLabel = Box.findChild<QLabel*>(QString::fromLatin1(pName));
        emit pLabel->linkActivated(LinkOf(pLabel));
    }
    QCOMPARE(Opened.size(), 2);
    QCOMPARE(Opened[0].scheme(), QStringLiteral("mailto"));
    QVERIFY(Opened[0].path().endsWith(QStringLiteral(".example")));
    QCOMPARE(Opened[1].scheme(), QStringLiteral("https"));
    QVERIFY(Opened[1].host().endsWith(QStringLiteral(".example")));
}

void CHelpDialogsTest::FeedbackIdentifiesBuildAndMailLink()
{
    // Characters that a hand-built link would get wrong.
    const QString AppText = QStringLiteral("Zam & Co \u00FCber+50% #1?");
    CFeedbackDialog Dialog(nullptr, AppText);
    QVERIFY(LinkOf(Dialog.findChild<QLabel*>(QStringLiteral("ForumURL"))).startsWith(QStringLiteral("https://")));

    // The identification names the build, the toolkit and the system.
    const QPlainTextEdit* pRequired = Dialog.findChild<QPlainTextEdit*>(QStringLiteral("RequiredText"));
    QVERIFY(pRequired && pRequired->isReadOnly());
    const QString Identification = pRequired->toPlainText();
    const QStringList Lines = Identification.split(QLatin1Char('\n'));
    QCOMPARE(Lines.value(0), AppText + QStringLiteral(" (") + BuildIdentifier() + QLatin1Char(')'));
    QVERIFY(Identification.contains(QString::fromLatin1(qVersion())));
    QVERIFY(Identification.contains(QSysInfo::prettyProductName()));
    QVERIFY(Identification.contains(QSysInfo::currentCpuArchitecture()));

    // The mail link decodes back to exactly the subject and the identification.
    const QString Href = LinkOf(Dialog.findChild<QLabel*>(QStringLiteral("SupportEmail")));
    QVERIFY2(!Href.contains(QLatin1Char(' ')) && !Href.contains(QLatin1Char('\n')), qPrintable(Href));
    QVERIFY(Href.startsWith(QStringLiteral("mailto:support@brenmoor.example?subject=Feedback")));
    const QUrl Url(Href, QUrl::StrictMode);
    QVERIFY2(Url.isValid(), qPrintable(Url.errorString()));
    const QUrlQuery Query(Url);
    QCOMPARE(Query.queryItems(QUrl::FullyDecoded).size(), 2);
    QCOMPARE(Query.queryItemValue(QStringLiteral("subject"), QUrl::FullyDecoded), QStringLiteral("Feedback ") + AppText);
    QString Body = Query.queryItemValue(QStringLiteral("body"), QUrl::FullyDecoded);
    QVERIFY(Body.contains(QStringLiteral("\r\n")));
    QCOMPARE(Body.replace(QStringLiteral("\r\n"), QStringLiteral("\n")), Identification);

    QList<QUrl> Opened;
    Dialog.SetUrlOpener([&Opened](const QUrl& Opening) {
        Opened << Opening;
        return true;
    });
    emit Dialog.findChild<QLabel*>(QStringLiteral("SupportEmail"))->linkActivated(Href);
    QCOMPARE(Opened.value(0), Url);

    // Close ends the modal run.
    QTimer::singleShot(0, &Dialog, [&Dialog] {
        Dialog.findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"))->button(QDialogButtonBox::Close)->click();
    });
    Dialog.exec();
    QVERIFY(!Dialog.isVisible());
}

void CHelpDialogsTest::UpdateCheckTellsInstalledVersion()
{
    QWidget Window;
    CUpdateChecker Checker(QStringLiteral("ZamShaderEditor"), &Window);
    QString Title;
    QString Text;
    AnswerNextMessageBox(Title, Text);
    Checker.OnForceCheckForUpdates();
    QCOMPARE(Title, QStringLiteral("Check for Updates"));
    QVERIFY2(Text.contains(QStringLiteral("ZamShaderEditor (") + BuildIdentifier() + QLatin1Char(')')), qPrintable(Text));
    QVERIFY(Text.contains(QStringLiteral("package manager")));
}

// The build puts its manual at the "beside" place (tst_UserManual reads it there).
void CHelpDialogsTest::ManualCandidatesInOrder()
{
    const QString AppDir = QCoreApplication::applicationDirPath();
    SOpening Doc;
    const QString Beside = QDir::cleanPath(AppDir + QStringLiteral("/../Documentation/") + kManual);
    const QString Installed = QDir::cleanPath(AppDir + QStringLiteral("/../share/doc/zamshadereditor/") + kManual);
    QCOMPARE(Doc.Opener.Candidates(QStringLiteral("../Documentation/"), kManual), QStringList({Beside, Installed}));

    // A relative directory is the executable's, not the working directory's.
    const QString Before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_Files.path()));
    QCOMPARE(Doc.Opener.Candidates(QStringLiteral("../Documentation/"), kManual).value(0), Beside);
    QVERIFY(QDir::setCurrent(Before));

    Doc.pStore->SetString(kKey, QStringLiteral("/somewhere/chosen.pdf"));
    QCOMPARE(Doc.Opener.Candidates(QStringLiteral("../Documentation/"), kManual),
             QStringList({QStringLiteral("/somewhere/chosen.pdf"), Beside, Installed}));
    QCOMPARE(Doc.Opener.Candidates(m_Files.path(), kManual).value(1), QDir(m_Files.path()).filePath(kManual));
}

void CHelpDialogsTest::FirstManualThatOpensWins()
{
    const QString Folder = m_Files.filePath(QStringLiteral("docs"));
    const QString InFolder = QDir(Folder).filePath(kManual);
    QVERIFY(WriteFile(InFolder));
    SOpening Doc;
    // A remembered location that has gone since is skipped, and never handed to the viewer.
    Doc.pStore->SetString(kKey, m_Files.filePath(QStringLiteral("moved-away.pdf")));
    QVERIFY(Doc.Opener.Open(nullptr, Folder, kManual));
    QCOMPARE(Doc.Opened, QStringList({InFolder}));
    QVERIFY(Doc.Warnings.isEmpty() && Doc.ChooserCalls.isEmpty());

    // A viewer that fails on the remembered file: the next candidate is tried.
    const QString Chosen = m_Files.filePath(QStringLiteral("chosen.pdf"));
    QVERIFY(WriteFile(Chosen));
    Doc.pStore->SetString(kKey, Chosen);
    Doc.Opened.clear();
    Doc.Refused = {Chosen};
    QVERIFY(Doc.Opener.Open(nullptr, Folder, kManual));
    QCOMPARE(Doc.Opened, QStringList({Chosen, InFolder}));
    QVERIFY(Doc.Warnings.isEmpty());
}

void CHelpDialogsTest::MissingManualIsLocatedOnceAndRemembered()
{
    const QString Empty = m_Files.filePath(QStringLiteral("empty"));
    QVERIFY(QDir().mkpath(Empty));
    const QString Located = m_Files.filePath(QStringLiteral("elsewhere/The Manual.pdf"));
    QVERIFY(WriteFile(Located));
    {
        SOpening Doc;
        Doc.Choice = Located;
        QVERIFY(Doc.Opener.Open(nullptr, Empty, kManual));
        QCOMPARE(Doc.Warnings,
                 QStringList({QStringLiteral("Documentation File Not Found: Please locate the file: ") + kManual}));
        QCOMPARE(Doc.ChooserCalls, QStringList({QStringLiteral("Open Source File|Portable Document Format (*.pdf)")}));
        QCOMPARE(Doc.Opened, QStringList({Located}));
    }
    // A later run opens it directly, though the given directory still lacks it.
    SOpening Doc;
    QCOMPARE(Doc.pStore->GetString(kKey), Located);
    QVERIFY(Doc.Opener.Open(nullptr, Empty, kManual));
    QCOMPARE(Doc.Opened, QStringList({Located}));
    QVERIFY(Doc.Warnings.isEmpty() && Doc.ChooserCalls.isEmpty());
}

void CHelpDialogsTest::ManualFailuresAreReported()
{
    const QString Empty = m_Files.filePath(QStringLiteral("nothing-here"));
    SOpening Doc;
    // The user cancels the chooser: nothing opened, nothing remembered.
    QVERIFY(!Doc.Opener.Open(nullptr, Empty, kManual));
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
        QVERIFY(!Doc.Opener.Open(nullptr, Empty, kManual));
        QCOMPARE(Doc.Warnings.size(), 2);
        QVERIFY2(Doc.Warnings[1].startsWith(QStringLiteral("File Open Failed: ")), qPrintable(Doc.Warnings[1]));
        QVERIFY(Doc.Warnings[1].contains(QFileInfo(Chosen).fileName()));
        QCOMPARE(Doc.Opened.isEmpty(), Chosen != Broken);
    }
    QVERIFY(!LoadStore()->HasKey(kKey));
}

QTEST_MAIN(CHelpDialogsTest)
#include "tst_HelpDialogs.moc"
