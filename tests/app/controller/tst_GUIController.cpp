// The application controller and the recent-files list against real preference files in a
// private configuration folder, reloaded the way the next start of the program reads them.

#include "app/controller/ApplicationText.h"
#include "app/controller/CGUIController.h"
#include "app/controller/CRecentFiles.h"
#include "Common/ZamPreferences/ZamPreferences.h"
#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"

#include <QMenu>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace
{
std::unique_ptr<CGUIController> NewController()
{
    return std::make_unique<CGUIController>(std::make_unique<CZamPreferences>(QStringLiteral("ZamShaderEditor")));
}

QByteArray PreferenceFileBytes()
{
    QFile File(CZamPreferences(QStringLiteral("ZamShaderEditor")).GetFilePath());
    return File.open(QIODevice::ReadOnly) ? File.readAll() : QByteArray();
}

QList<QAction*> MenuEntries(const QMenu& Menu)
{
    QList<QAction*> Entries;
    for (QAction* pAction : Menu.actions())
    {
        if (pAction->objectName() == QLatin1String("ARecentFile"))
            Entries << pAction;
    }
    return Entries;
}

SShaderEditControllerOptions EditOptions(CGUIController& GUI, const QString& SearchPath)
{
    SShaderEditControllerOptions Options;
    Options.pPreferences = &GUI.GetPreferences();
    Options.CompilerSearchPaths = QStringList{SearchPath};
    return Options;
}
} // namespace

class CGUIControllerTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void OneStoreServesEveryControllerAcrossARestart();
    void AFailedSaveIsReportedOnce();
    void RecentFiles();
    void TextsOutsideTheTableAreEmpty();

private:
    QTemporaryDir m_Config;
    QTemporaryDir m_Files;
};

void CGUIControllerTest::init()
{
    // Every test starts as a first start: no preference file.
    QVERIFY(m_Config.isValid());
    qputenv("XDG_CONFIG_HOME", m_Config.path().toUtf8());
    QDir(m_Config.path()).removeRecursively();
    QDir().mkpath(m_Config.path());
}

void CGUIControllerTest::OneStoreServesEveryControllerAcrossARestart()
{
    {
        auto pGUI = NewController();
        CShaderEditController Edit(EditOptions(*pGUI, m_Files.path()));
        CShaderHighlightController Highlight(&pGUI->GetPreferences());

        Settings::SCompiler Compiler = Edit.GetCompilerSettings();
        Compiler.bAutoCompile = false;
        Edit.SetCompilerSettings(Compiler, Settings::CompilerSetting_AutoCompile);
        QTextCharFormat Keyword = Highlight.GetFormat(3);
        Keyword.setForeground(QColor(0x12, 0x34, 0x56));
        Highlight.OnSyntaxColourChanged(3, Keyword);
        Settings::SEditor Editor = Edit.GetEditorSettings();
        Editor.iTabSpaceSize = 7;
        Edit.SetEditorSettings(Editor, Settings::EditorSetting_TabSpaceSize);

        Settings::SGeneral All;
        All.bOpenLastTabs = true;
        All.CompileOutputPath = ToZamString(QStringLiteral("/out"));
        All.CustomCommand = ToZamString(QStringLiteral("\"cc\" %f%"));
        All.LastDirectory = ToZamString(QStringLiteral("/first"));
        pGUI->SetGeneralSettings(All, Settings::GeneralSetting_All);
        // A mask takes only its fields; the rest stays as stored.
        Settings::SGeneral Other;
        Other.LastDirectory = ToZamString(QStringLiteral("/second"));
        pGUI->SetGeneralSettings(Other, Settings::GeneralSetting_LastDirectory);
        pGUI->SetGeneralSettings(Other, 0);
    }
    const QByteArray Bytes = PreferenceFileBytes();
    for (const char* pKey : {"<key>AutoCompile</key>", "<key>OpenLastTabs</key>", "<key>TabSpaceSize</key>",
                             "<key>General</key>", "<key>Compiler</key>", "<key>Editor</key>"})
        QVERIFY2(Bytes.count(pKey) == 1, pKey);

    auto pGUI = NewController();
    CShaderEditController Edit(EditOptions(*pGUI, m_Files.path()));
    CShaderHighlightController Highlight(&pGUI->GetPreferences());
    QCOMPARE(Edit.GetCompilerSettings().bAutoCompile, false);
    QCOMPARE(Edit.GetEditorSettings().iTabSpaceSize, 7);
    QCOMPARE(Highlight.GetFormat(3).foreground().color(), QColor(0x12, 0x34, 0x56));
    const Settings::SGeneral& Reloaded = pGUI->GetGeneralSettings();
    QCOMPARE(Reloaded.bOpenLastTabs, true);
    QCOMPARE(ToQString(Reloaded.CompileOutputPath), QStringLiteral("/out"));
    QCOMPARE(ToQString(Reloaded.CustomCommand), QStringLiteral("\"cc\" %f%"));
    QCOMPARE(ToQString(Reloaded.LastDirectory), QStringLiteral("/second"));
}

void CGUIControllerTest::AFailedSaveIsReportedOnce()
{
    auto pController = NewController();
    // A folder where the temporary copy must go makes every write fail, whoever runs this.
    const QString Blocker = pController->GetPreferences().GetFilePath() + QStringLiteral(".tmp");
    QVERIFY(QDir().mkpath(Blocker));
    QSignalSpy Failed(pController.get(), &CGUIController::PreferencesSaveFailed);
    Settings::SGeneral General;
    General.bOpenLastTabs = true;
    pController->SetGeneralSettings(General, Settings::GeneralSetting_OpenLastTabs);
    pController->SetGeneralSettings(General, Settings::GeneralSetting_OpenLastTabs);
    QVERIFY(QDir(Blocker).removeRecursively());
    QCOMPARE(Failed.count(), 1);
    QVERIFY(!Failed.at(0).at(0).toString().isEmpty());
    // The record still follows the user's choice for the rest of the session.
    QCOMPARE(pController->GetGeneralSettings().bOpenLastTabs, true);

    // A file the user made read-only is left alone; the notice tells why, once, and the
    // failed saves add nothing to it.
    pController->SavePreferences();
    const QString File = pController->GetPreferences().GetFilePath();
    const QByteArray Before = PreferenceFileBytes();
    QVERIFY(QFile::setPermissions(File, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
    pController = NewController();
    QSignalSpy Notices(pController.get(), &CGUIController::PreferencesNotice);
    QSignalSpy SaveFailures(pController.get(), &CGUIController::PreferencesSaveFailed);
    pController->DeliverPreferenceNotices();
    General.bOpenLastTabs = false;
    pController->SetGeneralSettings(General, Settings::GeneralSetting_OpenLastTabs);
    pController->SetGeneralSettings(General, Settings::GeneralSetting_OpenLastTabs);
    QFile::setPermissions(File, QFile::ReadOwner | QFile::WriteOwner);
    QCOMPARE(Notices.count(), 1);
    QCOMPARE(SaveFailures.count(), 0);
    QCOMPARE(PreferenceFileBytes(), Before);
}

void CGUIControllerTest::RecentFiles()
{
    CZamPreferences Store(QStringLiteral("ZamShaderEditor"));
    Store.Load();
    CRecentFiles Recent(&Store, CRecentFiles::Flag_OnlyExistingFiles, QStringLiteral("Open"), 10);
    QMenu Menu;
    Recent.Attach(&Menu);

    QStringList Paths;
    for (int i = 0; i < 11; ++i)
    {
        Paths << m_Files.filePath(QStringLiteral("f%1 & co.frag").arg(i));
        QFile File(Paths.last());
        QVERIFY(File.open(QIODevice::WriteOnly));
    }
    Recent.Add(Paths[0]);
    Recent.Add(Paths[1]);
    Recent.Add(Paths[0]);
    Recent.Add(m_Files.filePath(QStringLiteral("missing.frag")));
    const auto Stored = [](QString Path) { return Path.replace(QLatin1Char('/'), QLatin1Char('\\')); };
    QCOMPARE(Recent.GetEntries(), (QStringList{Stored(Paths[0]), Stored(Paths[1])}));
    QCOMPARE(Store.GetStringArray(QStringLiteral("Open/Recent files")).first(), Stored(Paths[0]));
    QCOMPARE(MenuEntries(Menu).first()->text(),
             QStringLiteral("1 ") + Stored(Paths[0]).replace(QLatin1String("&"), QLatin1String("&&")));

    // The eleventh distinct file pushes the oldest out.
    for (int i = 1; i < 11; ++i)
        Recent.Add(Paths[i]);
    QCOMPARE(Recent.GetEntries().size(), 10);
    QVERIFY(!Recent.GetEntries().contains(Stored(Paths[0])));

    // (Choosing an entry opens its file: tst_MainWindow.)
    // Clearing empties the file and the menu at once; the next start sees it too.
    Menu.findChild<QAction*>(QStringLiteral("ClearRecentFiles"))->trigger();
    QVERIFY(MenuEntries(Menu).isEmpty());
    CZamPreferences Reloaded(QStringLiteral("ZamShaderEditor"));
    Reloaded.Load();
    QVERIFY(Reloaded.HasKey(QStringLiteral("Open/Recent files")));
    QVERIFY(Reloaded.GetStringArray(QStringLiteral("Open/Recent files")).isEmpty());
}

// A text index from outside the table, as a stale language file could give, reads as nothing.
void CGUIControllerTest::TextsOutsideTheTableAreEmpty()
{
    QCOMPARE(GetApplicationText(-1), QString());
    QCOMPARE(GetApplicationText(AppText_Count), QString());
    QCOMPARE(GetApplicationText(AppText_Cancel), QStringLiteral("Cancel"));
    QVERIFY(!SetApplicationLanguage(GetApplicationLanguageCount()));
    QCOMPARE(GetApplicationLanguage(), 0);
}

QTEST_MAIN(CGUIControllerTest)
#include "tst_GUIController.moc"
