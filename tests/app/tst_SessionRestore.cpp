// A start with a stored session of several files, as the real window restores it: the tabs
// behind the one in front read their files only after the first paint, or as soon as anything
// needs their text, and every use of a document sees the file's text and format either way.

#include "ShaderEditComponent/CDocumentBackups.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/DocumentBackup.h"
#include "WindowTestSupport.h"

#include <QAbstractButton>
#include <QMenu>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTabBar>
#include <QTabWidget>
#include <QtTest>

namespace
{
const char s_pFragment[] = "#version 300 es\nprecision mediump float;\nout vec4 fragColor;\n"
                           "void main()\n{\n    fragColor = vec4(0.5);\n}\n";
const char s_pVertex[] = "#version 300 es\nin vec4 aPosition;\nvoid main()\n{\n    gl_Position = aPosition;\n}\n";
// Latin-1 with Windows line breaks: only a real read of the file knows to write it back so.
const char s_pLatin1Crlf[] =
    "// r\xe9glage \xb0\r\nprecision mediump float;\r\nvoid main() { gl_FragColor = vec4(1.0); }\r\n";
const char s_pTyped[] = "// typed\n";

int PendingTabs(const CShaderEditor& Editor)
{
    int iPending = 0;
    for (int i = 0; i < Editor.GetTabCount(); ++i)
        iPending += Editor.GetPanel(i)->IsTextPending() ? 1 : 0;
    return iPending;
}

// The tabs still without their text when the window first paints.
class CFirstPaintWatch : public QObject
{
public:
    explicit CFirstPaintWatch(ZamShaderEditorWindow& Window)
        : m_Window(Window)
    {
        Window.installEventFilter(this);
    }
    int m_iPendingAtPaint = -1;

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override
    {
        if (pWatched == &m_Window && pEvent->type() == QEvent::Paint && m_iPendingAtPaint < 0)
            m_iPendingAtPaint = PendingTabs(*m_Window.GetEditor());
        return false;
    }

private:
    ZamShaderEditorWindow& m_Window;
};
} // namespace

class CSessionRestoreTest : public WindowTest::CWindowTest
{
    Q_OBJECT

private slots:
    void HiddenTabsReadAfterTheFirstPaint();
    void EveryUseOfAHiddenTabSeesItsFile();

private:
    // Stores the paths as the last session's tabs, reopened at the next start.
    void StoreSession(const QStringList& Paths);
    static QString Text(const ZamShaderEditorWindow& Window, int iTab) { return WindowTest::PanelText(Window, iTab); }
};

void CSessionRestoreTest::StoreSession(const QStringList& Paths)
{
    Settings::SGeneral General = m_pGUI->GetGeneralSettings();
    General.bOpenLastTabs = true;
    m_pGUI->SetGeneralSettings(General, Settings::GeneralSetting_OpenLastTabs);
    CZamTArray<CZamTString> Session;
    for (const QString& Path : Paths)
        Session.Append(ToZamString(Path));
    m_pGUI->StoreLastOpenTabs(Session);
}

void CSessionRestoreTest::HiddenTabsReadAfterTheFirstPaint()
{
    const QStringList Paths = {
        NewFile(QStringLiteral("backed.frag"), s_pFragment), NewFile(QStringLiteral("two.vert"), s_pVertex),
        NewFile(QStringLiteral("gone.frag"), s_pFragment), NewFile(QStringLiteral("changed.frag"), s_pFragment),
        NewFile(QStringLiteral("front.frag"), s_pFragment)};
    StoreSession(Paths);
    auto pWindow = WindowTest::NewWindow(*m_pGUI);
    CShaderEditor* pEditor = pWindow->GetEditor();

    // Every tab is there at once, named, closable, in its place, the last one in front with its text.
    QCOMPARE(pEditor->GetTabCount(), 5);
    QCOMPARE(pEditor->GetCurrentPanel(), pEditor->GetPanel(4));
    const QTabBar* pBar = pEditor->findChild<QTabWidget*>()->tabBar();
    for (int i = 0; i < 5; ++i)
    {
        QCOMPARE(ToQString(pEditor->GetPanel(i)->GetFilename()), Paths.at(i));
        QCOMPARE(pEditor->DocumentTitle(i), QFileInfo(Paths.at(i)).fileName());
        QCOMPARE(pBar->tabText(i), QFileInfo(Paths.at(i)).fileName());
        QVERIFY(pBar->tabButton(i, QTabBar::RightSide) || pBar->tabButton(i, QTabBar::LeftSide));
        QCOMPARE(pEditor->findChild<QTabWidget*>()->tabToolTip(i), QDir::toNativeSeparators(Paths.at(i)));
        QCOMPARE(pEditor->GetPanel(i)->IsTextPending(), i < 4);
        QVERIFY(!pEditor->GetPanel(i)->IsModified());
    }
    QCOMPARE(Text(*pWindow, 4), QString::fromLatin1(s_pFragment));

    // A backup left by a crash goes into its unread tab and stays: the file never replaces it.
    const QString Folder = m_Config.filePath(QStringLiteral("backups"));
    SDocumentBackup Left;
    Left.Path = Paths.at(0);
    Left.Title = QStringLiteral("backed.frag");
    Left.eType = DocType_GLSLESFragment;
    Left.DiskChecksum = DiskChecksumOf(Paths.at(0));
    Left.Text = QLatin1String(s_pTyped) + QLatin1String(s_pFragment);
    QVERIFY(QDir().mkpath(Folder));
    QVERIFY(TestFiles::WriteAll(Folder + QStringLiteral("/s1crashed-0.zsbackup"), EncodeBackup(Left)));
    CDocumentBackups Backups(pEditor, Folder);
    const SBackupScan Scan = Backups.FindLeftBackups();
    QCOMPARE(Scan.Backups.size(), 1);
    Backups.Restore(Scan.Backups);
    QCOMPARE(pEditor->GetTabCount(), 5);
    QVERIFY(pEditor->GetPanel(0)->IsModified());
    QCOMPARE(Text(*pWindow, 0), Left.Text);

    // What happens to the files before the tabs read them is what they find.
    QVERIFY(QFile::remove(Paths.at(2)));
    QVERIFY(TestFiles::WriteAll(Paths.at(3), s_pVertex));
    CFirstPaintWatch Watch(*pWindow);
    auto pAnswered = WindowTest::AnswerNextModal(
        [](QWidget* pModal) { static_cast<QMessageBox*>(pModal)->button(QMessageBox::Ok)->click(); });
    pWindow->show();
    QVERIFY(QTest::qWaitForWindowExposed(pWindow.get()));
    QTRY_VERIFY(Watch.m_iPendingAtPaint >= 0);
    QCOMPARE(Watch.m_iPendingAtPaint, 3);

    // Right after it they read in the idle time; the one whose file went is reported and closed.
    QTRY_VERIFY_WITH_TIMEOUT(*pAnswered && pEditor->GetTabCount() == 4, 10000);
    QCOMPARE(PendingTabs(*pEditor), 0);
    QCOMPARE(ToQString(pEditor->GetPanel(2)->GetFilename()), Paths.at(3));
    QCOMPARE(Text(*pWindow, 1), QString::fromLatin1(s_pVertex));
    QCOMPARE(Text(*pWindow, 2), QString::fromLatin1(s_pVertex));
    QCOMPARE(pEditor->GetPanel(1)->GetDocumentType(), DocType_GLSLESVertex);
    for (int i = 1; i < 4; ++i)
        QVERIFY(!pEditor->GetPanel(i)->IsModified());
    // The backup's tab kept its text, and its file is as it was.
    QCOMPARE(Text(*pWindow, 0), Left.Text);
    QVERIFY(pEditor->GetPanel(0)->IsModified());
    QCOMPARE(TestFiles::ReadAll(Paths.at(0)), QByteArray(s_pFragment));

    // Open Recent lists the session as it was opened, the front file on top.
    QMenu* pRecent = pWindow->GetUi().menuOpen_Recent;
    emit pRecent->aboutToShow();
    QStringList Recent;
    for (const QAction* pAction : pRecent->actions())
    {
        if (pAction->objectName() == QLatin1String("ARecentFile"))
            Recent << pAction->text();
    }
    QCOMPARE(Recent.size(), 4);
    QCOMPARE(Recent.at(0), QStringLiteral("1 ") + QString(Paths.at(4)).replace(QLatin1Char('/'), QLatin1Char('\\')));
    QCOMPARE(Recent.at(1), QStringLiteral("2 ") + QString(Paths.at(3)).replace(QLatin1Char('/'), QLatin1Char('\\')));

    // A tab read late is watched like any other.
    QVERIFY(TestFiles::WriteAll(Paths.at(1), s_pFragment));
    QTRY_COMPARE_WITH_TIMEOUT(Text(*pWindow, 1), QString::fromLatin1(s_pFragment), 10000);

    // The session written at close is the tabs still open, in order.
    pAnswered = WindowTest::AnswerNextModal(
        [](QWidget* pModal) { static_cast<QMessageBox*>(pModal)->button(QMessageBox::Discard)->click(); });
    QVERIFY(pWindow->close());
    QVERIFY(*pAnswered);
    const CZamTArray<CZamTString> Stored = m_pGUI->LoadLastOpenTabs();
    QCOMPARE(Stored.GetSize(), 4u);
    QCOMPARE(ToQString(Stored[2]), Paths.at(3));
}

void CSessionRestoreTest::EveryUseOfAHiddenTabSeesItsFile()
{
    const QStringList Paths = {
        NewFile(QStringLiteral("compiled.vert"), s_pVertex), NewFile(QStringLiteral("latin.frag"), s_pLatin1Crlf),
        NewFile(QStringLiteral("typed.frag"), s_pFragment), NewFile(QStringLiteral("front.frag"), s_pFragment)};
    StoreSession(Paths);
    auto pWindow = WindowTest::NewWindow(*m_pGUI);
    CShaderEditor* pEditor = pWindow->GetEditor();
    QCOMPARE(PendingTabs(*pEditor), 3);

    // A compile asks for the file's text, as the type the text gives.
    QSignalSpy Compiles(pEditor, &CShaderEditor::RecompileContents);
    pEditor->GetPanel(0)->RequestRecompile();
    QVERIFY(!Compiles.isEmpty());
    QCOMPARE(Compiles.last().at(1).toString(), QString::fromLatin1(s_pVertex));
    QCOMPARE(Compiles.last().at(2).value<EShaderDocType>(), DocType_GLSLESVertex);

    // Typing into an unread tab types into the file's text, and closing it asks and saves that.
    pEditor->GetPanel(2)->insertPlainText(QLatin1String(s_pTyped));
    QVERIFY(pEditor->GetPanel(2)->IsModified());
    auto pAnswered = WindowTest::AnswerNextModal(
        [](QWidget* pModal) { static_cast<QMessageBox*>(pModal)->button(QMessageBox::Save)->click(); });
    emit pEditor->findChild<QTabWidget*>()->tabCloseRequested(2);
    QVERIFY(*pAnswered);
    QCOMPARE(pEditor->GetTabCount(), 3);
    QCOMPARE(TestFiles::ReadAll(Paths.at(2)), QByteArray(s_pTyped) + s_pFragment);

    // Save All writes each file back byte for byte, in the encoding and line breaks it was read in.
    QVERIFY(pEditor->GetPanel(1)->IsTextPending());
    QVERIFY(pEditor->OnSaveAllTabs());
    QCOMPARE(TestFiles::ReadAll(Paths.at(1)), QByteArray(s_pLatin1Crlf));
    QCOMPARE(TestFiles::ReadAll(Paths.at(0)), QByteArray(s_pVertex));
    QCOMPARE(PendingTabs(*pEditor), 0);
    QVERIFY(pWindow->close());
}

QTEST_MAIN(CSessionRestoreTest)
#include "tst_SessionRestore.moc"
