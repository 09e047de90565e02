// The application controller and the recent-files list against real preference files in a
// private configuration folder, reloaded the way the next start of the program reads them.

#include "app/controller/CGUIController.h"
#include "app/controller/CRecentFiles.h"
#include "Common/ZamPreferences/ZamPreferences.h"
#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"

#include <QDockWidget>
#include <QMainWindow>
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

QStringList MenuEntries(const QMenu& Menu)
{
    QStringList Entries;
    for (const QAction* pAction : Menu.actions())
    {
        if (pAction->objectName() == QLatin1String("ARecentFile"))
            Entries << pAction->text();
    }
    return Entries;
}
} // namespace

class CGUIControllerTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void GeneralSettingsDefaultsAndMasks();
    void LayoutAndTabsSurviveARestart();
    void OneStoreServesEveryController();
    void AFailedSaveIsReportedOnce();
    void RecentFiles();

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

void CGUIControllerTest::GeneralSettingsDefaultsAndMasks()
{
    auto pController = NewController();
    const Settings::SGeneral& First = pController->GetGeneralSettings();
    QCOMPARE(First.bOpenLastTabs, false);
    QCOMPARE(ToQString(First.CompileOutputPath), QDir::toNativeSeparators(QDir::homePath()));
    QVERIFY(First.CustomCommand.IsEmpty());
    QVERIFY(First.LastDirectory.IsEmpty());
    QVERIFY(!pController->HasWindowLayout());

    Settings::SGeneral All;
    All.bOpenLastTabs = true;
    All.CompileOutputPath = ToZamString(QStringLiteral("/out"));
    All.CustomCommand = ToZamString(QStringLiteral("\"cc\" %f%"));
    All.LastDirectory = ToZamString(QStringLiteral("/first"));
    pController->SetGeneralSettings(All, Settings::GeneralSetting_All);

    // Mask 8 takes only the last directory; the rest stays as stored.
    Settings::SGeneral Other;
    Other.LastDirectory = ToZamString(QStringLiteral("/second"));
    QSignalSpy Changed(pController.get(), &CGUIController::GeneralSettingsChanged);
    pController->SetGeneralSettings(Other, Settings::GeneralSetting_LastDirectory);
    pController->SetGeneralSettings(Other, 0);
    QCOMPARE(Changed.count(), 2);

    pController = NewController();
    const Settings::SGeneral& Reloaded = pController->GetGeneralSettings();
    QCOMPARE(Reloaded.bOpenLastTabs, true);
    QCOMPARE(ToQString(Reloaded.CompileOutputPath), QStringLiteral("/out"));
    QCOMPARE(ToQString(Reloaded.CustomCommand), QStringLiteral("\"cc\" %f%"));
    QCOMPARE(ToQString(Reloaded.LastDirectory), QStringLiteral("/second"));
}

void CGUIControllerTest::LayoutAndTabsSurviveARestart()
{
    QByteArray SavedState;
    {
        auto pController = NewController();
        QMainWindow Window;
        auto* pDock = new QDockWidget(QStringLiteral("Dock"), &Window);
        pDock->setObjectName(QStringLiteral("Dock"));
        Window.addDockWidget(Qt::LeftDockWidgetArea, pDock);
        Window.resize(640, 480);
        pDock->hide();
        SavedState = Window.saveState(0);
        pController->SaveWindowLayout(Window);

        CZamTArray<CZamTString> Tabs;
        Tabs.Append(ToZamString(QStringLiteral("/a/b.frag")));
        Tabs.Append(ToZamString(QString::fromUtf8("/\xc3\xa4/c.vert")));
        pController->StoreLastOpenTabs(Tabs);
    }
    auto pController = NewController();
    QVERIFY(pController->HasWindowLayout());
    QMainWindow Window;
    auto* pDock = new QDockWidget(QStringLiteral("Dock"), &Window);
    pDock->setObjectName(QStringLiteral("Dock"));
    Window.addDockWidget(Qt::LeftDockWidgetArea, pDock);
    pController->RestoreWindowLayout(Window);
    QCOMPARE(Window.saveState(0), SavedState);
    QVERIFY(pDock->isHidden());

    const CZamTArray<CZamTString> Tabs = pController->LoadLastOpenTabs();
    QCOMPARE(Tabs.GetSize(), 2u);
    QCOMPARE(ToQString(Tabs[1]), QString::fromUtf8("/\xc3\xa4/c.vert"));

    // No tab open: an empty array, so an old session cannot come back.
    pController->StoreLastOpenTabs(CZamTArray<CZamTString>());
    QVERIFY(PreferenceFileBytes().contains("<key>LastOpenTabs</key>"));
    QCOMPARE(NewController()->LoadLastOpenTabs().GetSize(), 0u);
}

void CGUIControllerTest::OneStoreServesEveryController()
{
    {
        auto pGUI = NewController();
        SShaderEditControllerOptions Options;
        Options.pPreferences = &pGUI->GetPreferences();
        Options.CompilerSearchPaths = QStringList{m_Files.path()};
        CShaderEditController Edit(Options);
        CShaderHighlightController Highlight(&pGUI->GetPreferences());

        Settings::SCompiler Compiler = Edit.GetCompilerSettings();
        Compiler.bAutoCompile = false;
        Edit.SetCompilerSettings(Compiler, Settings::CompilerSetting_AutoCompile);
        QTextCharFormat Keyword = Highlight.GetFormat(3);
        Keyword.setForeground(QColor(0x12, 0x34, 0x56));
        Highlight.OnSyntaxColourChanged(3, Keyword);
        Settings::SGeneral General;
        General.bOpenLastTabs = true;
        pGUI->SetGeneralSettings(General, Settings::GeneralSetting_OpenLastTabs);
        Settings::SEditor Editor = Edit.GetEditorSettings();
        Editor.iTabSpaceSize = 7;
        Edit.SetEditorSettings(Editor, Settings::EditorSetting_TabSpaceSize);
    }
    const QByteArray Bytes = PreferenceFileBytes();
    for (const char* pKey : {"<key>AutoCompile</key>", "<key>OpenLastTabs</key>", "<key>TabSpaceSize</key>",
                             "<key>General</key>", "<key>Compiler</key>", "<key>Editor</key>"})
        QVERIFY2(Bytes.count(pKey) == 1, pKey);

    auto pGUI = NewController();
    SShaderEditControllerOptions Options;
    Options.pPreferences = &pGUI->GetPreferences();
    Options.CompilerSearchPaths = QStringList{m_Files.path()};
    CShaderEditController Edit(Options);
    CShaderHighlightController Highlight(&pGUI->GetPreferences());
    QCOMPARE(Edit.GetCompilerSettings().bAutoCompile, false);
    QCOMPARE(Edit.GetEditorSettings().iTabSpaceSize, 7);
    QCOMPARE(Highlight.GetFormat(3).foreground().color(), QColor(0x12, 0x34, 0x56));
    QCOMPARE(pGUI->GetGeneralSettings().bOpenLastTabs, true);
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
    QString Stored = Paths[0];
    Stored.replace(QLatin1Char('/'), QLatin1Char('\\'));
    QCOMPARE(Recent.GetEntries().size(), 2);
    QCOMPARE(Recent.GetEntries().first(), Stored);
    QCOMPARE(Store.GetStringArray(QStringLiteral("Open/Recent files")).first(), Stored);
    QCOMPARE(MenuEntries(Menu).first(), QStringLiteral("1 ") + Stored.replace(QLatin1String("&"), QLatin1String("&&")));

    // The eleventh distinct file pushes the oldest out.
    for (int i = 1; i < 11; ++i)
        Recent.Add(Paths[i]);
    QCOMPARE(Recent.GetEntries().size(), 10);
    QVERIFY(!Recent.GetEntries().contains(QString(Paths[0]).replace(QLatin1Char('/'), QLatin1Char('\\'))));

    // Choosing an entry gives back a path that opens here.
    QSignalSpy Chosen(&Recent, &CRecentFiles::triggered);
    QAction* pTop = nullptr;
    for (QAction* pAction : Menu.actions())
    {
        if (pAction->objectName() == QLatin1String("ARecentFile"))
        {
            pTop = pAction;
            break;
        }
    }
    QVERIFY(pTop);
    pTop->trigger();
    QCOMPARE(Chosen.count(), 1);
    QCOMPARE(Chosen.at(0).at(0).toString(), Paths[10]);

    // Clearing empties the file and the menu at once; the next start sees it too.
    Menu.findChild<QAction*>(QStringLiteral("ClearRecentFiles"))->trigger();
    QVERIFY(MenuEntries(Menu).isEmpty());
    CZamPreferences Reloaded(QStringLiteral("ZamShaderEditor"));
    Reloaded.Load();
    QVERIFY(Reloaded.HasKey(QStringLiteral("Open/Recent files")));
    QVERIFY(Reloaded.GetStringArray(QStringLiteral("Open/Recent files")).isEmpty());
}

QTEST_MAIN(CGUIControllerTest)
#include "tst_GUIController.moc"
