// The real main window, offscreen, on a private preference file and real files: its
// actions, command state, session and layout, drag and drop, recent files, and compilers held
// back until the first picture.

#include "app/controller/CRecentFiles.h"
#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "WindowTestSupport.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDockWidget>
#include <QFileDialog>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QtTest>

using namespace WindowTest;

namespace
{
QAction* MenuAction(const QMenu* pMenu, const QString& Text)
{
    for (QAction* pAction : pMenu->actions())
    {
        if (pAction->text() == Text)
            return pAction;
    }
    qFatal("no %s", qPrintable(Text));
}

QList<QAction*> RecentEntries(const QMenu* pMenu)
{
    QList<QAction*> Entries;
    for (QAction* pAction : pMenu->actions())
    {
        if (pAction->objectName() == QLatin1String("ARecentFile"))
            Entries << pAction;
    }
    return Entries;
}
} // namespace

class CMainWindowTest : public CWindowTest
{
    Q_OBJECT

private slots:
    void KeysAndDockNamesAreUnique();
    void ActionsReachTheEditor();
    void CommandsFollowTheEditor();
    void SessionAndCloseSequence();
    void FirstStartShowsAnExample();
    void DragAndDropOpensEachFile();
    void RecentFilesAndAppMessages();
    void CompilersStartAfterTheFirstPicture();
};

void CMainWindowTest::KeysAndDockNamesAreUnique()
{
    auto pWindow = NewWindow(*m_pGUI);
    const SMainWindowUi& Ui = pWindow->GetUi();
    QVERIFY(!pWindow->windowIcon().isNull());
    QHash<QKeySequence, QString> Owners;
    for (const QAction* pAction : pWindow->findChildren<QAction*>())
    {
        for (const QKeySequence& Key : pAction->shortcuts())
        {
            QVERIFY2(!Owners.contains(Key), qPrintable(Key.toString() + " of " + pAction->objectName() + " and "
                                                         + Owners.value(Key)));
            Owners.insert(Key, pAction->objectName());
        }
    }
    // The everyday commands have keys even where the desktop names none (as here, offscreen).
    for (const QAction* pAction : {Ui.actionOpen, Ui.actionClose, Ui.actionClose_All, Ui.actionQuit, Ui.actionUndo,
                                   Ui.actionRedo, Ui.actionCut, Ui.actionCopy, Ui.actionPaste, Ui.actionPreferences})
        QVERIFY2(!pAction->shortcut().isEmpty(), qPrintable(pAction->objectName()));

    // The desktop's keys come first; a taken one is left to its owner, and so is the fallback.
    const QKeySequence SaveAll(QStringLiteral("Ctrl+Shift+S"));
    QCOMPARE(Ui.actionSave_All->shortcut(), SaveAll);
    QVERIFY(!StandardShortcuts(QKeySequence::SaveAs, SaveAll, {SaveAll}).contains(SaveAll));
    QCOMPARE(StandardShortcuts(QKeySequence::UnknownKey, QKeySequence(QStringLiteral("Ctrl+Q")), {}),
             QList<QKeySequence>({QKeySequence(QStringLiteral("Ctrl+Q"))}));
    QCOMPARE(StandardShortcuts(QKeySequence::Copy, QKeySequence(), {}), QKeySequence::keyBindings(QKeySequence::Copy));

    // A stored layout finds each dock again by its name.
    QStringList DockNames;
    for (const QDockWidget* pDock : pWindow->findChildren<QDockWidget*>())
        DockNames << pDock->objectName();
    QCOMPARE(DockNames.size(), QSet<QString>(DockNames.begin(), DockNames.end()).size());
}

void CMainWindowTest::ActionsReachTheEditor()
{
    const QString Original = QStringLiteral("void main()\n{\n}\n");
    const QString Path = NewFile(QStringLiteral("edit.frag"), Original.toUtf8());
    auto pWindow = NewWindow(*m_pGUI, {Path});
    pWindow->show();
    QVERIFY(QTest::qWaitForWindowExposed(pWindow.get()));
    const SMainWindowUi& Ui = pWindow->GetUi();
    CShaderEditor* pEditor = pWindow->GetEditor();
    QCOMPARE(pEditor->GetTabCount(), 1);
    const auto Text = [&pWindow] { return PanelText(*pWindow, 0); };

    Ui.actionSelect_All->trigger();
    Ui.actionComment_Selection->trigger();
    QVERIFY(Text().startsWith(QStringLiteral("//void main()")));
    Ui.actionUncomment_Selection->trigger();
    QCOMPARE(Text(), Original);
    // The menu's texts read the other way round from the actions' object names.
    QAction* pIncrease = MenuAction(Ui.menuEdit, QStringLiteral("Increase Indent"));
    QAction* pDecrease = MenuAction(Ui.menuEdit, QStringLiteral("Decrease Indent"));
    QCOMPARE(pIncrease->shortcut(), QKeySequence(Qt::Key_Tab));
    QCOMPARE(pDecrease->shortcut(), QKeySequence(Qt::SHIFT | Qt::Key_Tab));
    pIncrease->trigger();
    QVERIFY(Text().startsWith(QLatin1Char('\t')) || Text().startsWith(QLatin1Char(' ')));
    pDecrease->trigger();
    QCOMPARE(Text(), Original);

    const QList<QPair<QAction*, QString>> Steps = {
        {Ui.actionSelect_All, Original}, {Ui.actionCopy, Original}, {Ui.actionDelete, QString()},
        {Ui.actionPaste, Original},      {Ui.actionUndo, QString()}, {Ui.actionRedo, Original},
        {Ui.actionSelect_All, Original}, {Ui.actionCut, QString()}};
    for (const auto& [pAction, Expected] : Steps)
    {
        pAction->trigger();
        QVERIFY2(Text() == Expected, qPrintable(pAction->objectName()));
    }
    pEditor->GetCurrentPanel()->setPlainText(QStringLiteral("saved text\n"));

    Ui.actionSave->trigger();
    QCOMPARE(ReadAll(Path), QByteArray("saved text\n"));

    // Save As asks through the window's file dialog and remembers its folder.
    const QString Copy = m_Files.filePath(QStringLiteral("copy.frag"));
    auto pAnswered = AnswerNextModal(
        [Copy](QWidget* pModal)
        {
            auto* pDialog = qobject_cast<QFileDialog*>(pModal);
            QVERIFY(pDialog);
            pDialog->selectFile(Copy);
            QMetaObject::invokeMethod(pDialog, "accept");
        });
    Ui.actionSave_As->trigger();
    QVERIFY(*pAnswered);
    QCOMPARE(ReadAll(Copy), QByteArray("saved text\n"));
    QCOMPARE(ToQString(m_pGUI->GetGeneralSettings().LastDirectory), m_Files.path());

    auto* pFindDock = Child<QDockWidget>(*pWindow, "FindDock");
    QVERIFY(pFindDock->isHidden());
    Ui.actionFind->trigger();
    QVERIFY(pFindDock->isVisible());
    QVERIFY(Ui.actionFind->isChecked());
    Ui.actionFind->trigger(); // pressed again while the bar is up: it stays, and so does the check
    QVERIFY(Ui.actionFind->isChecked());

    // New asks for a type; the new document gets a tab of its own.
    pAnswered = AnswerNextModal([](QWidget* pModal) { static_cast<QDialog*>(pModal)->accept(); });
    Ui.actionNew->trigger();
    QVERIFY(*pAnswered);
    QCOMPARE(pEditor->GetTabCount(), 2);
    Ui.actionClose->trigger();
    QCOMPARE(pEditor->GetTabCount(), 1);
    Ui.actionClose_All->trigger();
    QCOMPARE(pEditor->GetTabCount(), 0);

    Ui.actionQuit->trigger();
    QVERIFY(!pWindow->isVisible());
}

void CMainWindowTest::CommandsFollowTheEditor()
{
    auto pWindow = NewWindow(*m_pGUI);
    const SMainWindowUi& Ui = pWindow->GetUi();
    auto* pSelector = Child<QComboBox>(*pWindow, "FileTypeComboSelector");
    pWindow->show();
    QVERIFY(QTest::qWaitForWindowExposed(pWindow.get()));

    QCOMPARE(pWindow->GetEditor()->GetTabCount(), 0);
    for (QAction* pAction : Ui.DocumentActions())
        QVERIFY2(!pAction->isEnabled(), qPrintable(pAction->objectName()));
    QVERIFY(!pSelector->isVisible());

    pWindow->OnOpenFile(NewFile(QStringLiteral("state.vert"), "void main() { gl_Position = vec4(0.0); }\n"));
    for (QAction* pAction : Ui.DocumentActions())
        QVERIFY2(pAction->isEnabled(), qPrintable(pAction->objectName()));
    QVERIFY(pSelector->isVisible());
    QCOMPARE(pSelector->currentData().toUInt(), static_cast<uint>(DocType_GLSLESVertex));

    // Choosing a type in the status bar changes the document's type.
    pSelector->setCurrentIndex(pSelector->findData(static_cast<uint>(DocType_GLSLVertex)));
    QCOMPARE(pWindow->GetEditor()->GetCurrentPanel()->GetDocumentType(), DocType_GLSLVertex);

    // Line and column follow the cursor.
    CShaderEditPanel* pPanel = pWindow->GetEditor()->GetCurrentPanel();
    QTextCursor Cursor = pPanel->textCursor();
    Cursor.setPosition(5);
    pPanel->setTextCursor(Cursor);
    QCOMPARE(Child<QLabel>(*pWindow, "ColumnNumberLabel")->text(), QStringLiteral("6"));
    QCOMPARE(Child<QLabel>(*pWindow, "LineNumberLabel")->text(), QStringLiteral("1"));

    // A file that is not there opens nothing.
    pWindow->OnOpenFile(m_Files.filePath(QStringLiteral("missing.frag")));
    QCOMPARE(pWindow->GetEditor()->GetTabCount(), 1);
}

void CMainWindowTest::SessionAndCloseSequence()
{
    const QString First = NewFile(QStringLiteral("one.frag"), s_pFragment);
    const QString Second = NewFile(QStringLiteral("tw\u00f6.vert"), "void main() { gl_Position = vec4(1.0); }\n");
    Settings::SGeneral General = m_pGUI->GetGeneralSettings();
    General.bOpenLastTabs = true;
    m_pGUI->SetGeneralSettings(General, Settings::GeneralSetting_OpenLastTabs);
    {
        auto pWindow = NewWindow(*m_pGUI, {First});
        pWindow->OnOpenFile(Second);
        pWindow->show();
        QVERIFY(QTest::qWaitForWindowExposed(pWindow.get()));
        pWindow->resize(900, 600);
        Child<QDockWidget>(*pWindow, "DockWidget_Profile")->hide();
        pWindow->GetUi().actionFind->trigger();
        // The first tab is the modified one, so a cancel at its question closes nothing.
        pWindow->GetEditor()->GetPanel(0)->insertPlainText(QStringLiteral("// edited\n"));

        // Cancel at the question keeps the window open; the tab list is already stored.
        auto pAnswered = AnswerNextModal(
            [](QWidget* pModal)
            { static_cast<QMessageBox*>(pModal)->button(QMessageBox::Cancel)->click(); });
        QVERIFY(!pWindow->close());
        QVERIFY(*pAnswered);
        QVERIFY(pWindow->isVisible());
        QCOMPARE(m_pGUI->LoadLastOpenTabs().GetSize(), 2u);

        pAnswered = AnswerNextModal(
            [](QWidget* pModal)
            { static_cast<QMessageBox*>(pModal)->button(QMessageBox::Discard)->click(); });
        QVERIFY(pWindow->close());
        QVERIFY(*pAnswered);
    }
    // The next start (a new controller reads the file again) restores both tabs in order, the
    // window's size and its docks.
    m_pGUI = NewGUIController();
    {
        auto pWindow = NewWindow(*m_pGUI);
        QCOMPARE(pWindow->GetEditor()->GetTabCount(), 2);
        QCOMPARE(ToQString(pWindow->GetEditor()->GetPanel(0)->GetFilename()), First);
        QCOMPARE(ToQString(pWindow->GetEditor()->GetPanel(1)->GetFilename()), Second);
        QCOMPARE(PanelText(*pWindow, 0), QString::fromLatin1(s_pFragment));
        QCOMPARE(pWindow->size(), QSize(900, 600));
        QVERIFY(Child<QDockWidget>(*pWindow, "DockWidget_Profile")->isHidden());
        QVERIFY(!Child<QDockWidget>(*pWindow, "DockWidget")->isHidden());
        // The find bar left open comes back with its dock, though bars are otherwise made on first use.
        const QDockWidget* pFindDock = Child<QDockWidget>(*pWindow, "FindDock");
        QVERIFY(!pFindDock->isHidden());
        QVERIFY(pFindDock->widget() && pFindDock->widget()->objectName() == QLatin1String("FindReplaceDialog"));

        // With the option off, closing stores an empty list.
        General.bOpenLastTabs = false;
        m_pGUI->SetGeneralSettings(General, Settings::GeneralSetting_OpenLastTabs);
        QVERIFY(pWindow->close());
    }
    QCOMPARE(NewGUIController()->LoadLastOpenTabs().GetSize(), 0u);
}

void CMainWindowTest::FirstStartShowsAnExample()
{
    {
        auto pWindow = NewWindow(*m_pGUI, {}, true);
        QCOMPARE(pWindow->GetEditor()->GetTabCount(), 1);
        QVERIFY(ToQString(pWindow->GetEditor()->GetPanel(0)->GetFilename()).endsWith(QStringLiteral("lit_mesh.fsh")));
        QVERIFY(pWindow->close());
    }
    // Once the window has been closed, later starts open what the user asked for.
    auto pWindow = NewWindow(*m_pGUI, {}, true);
    QCOMPARE(pWindow->GetEditor()->GetTabCount(), 0);
}

void CMainWindowTest::DragAndDropOpensEachFile()
{
    auto pWindow = NewWindow(*m_pGUI);
    pWindow->show();
    QVERIFY(QTest::qWaitForWindowExposed(pWindow.get()));
    QMimeData Data;
    Data.setUrls({QUrl::fromLocalFile(NewFile(QStringLiteral("d1.frag"), s_pFragment)), QUrl(QStringLiteral("https://example.com/x.frag")),
                  QUrl::fromLocalFile(NewFile(QStringLiteral("d2 with blank.frag"), s_pFragment))});
    const QPoint Centre = pWindow->rect().center();
    QDragEnterEvent Enter(Centre, Qt::CopyAction, &Data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(pWindow.get(), &Enter);
    QVERIFY(Enter.isAccepted());
    QDropEvent Drop(Centre, Qt::CopyAction, &Data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(pWindow.get(), &Drop);
    QCOMPARE(pWindow->GetEditor()->GetTabCount(), 2);
    QVERIFY(ToQString(pWindow->GetEditor()->GetPanel(1)->GetFilename()).endsWith(QStringLiteral("d2 with blank.frag")));

    QMimeData Text;
    Text.setText(QStringLiteral("not files"));
    QDragEnterEvent Refused(Centre, Qt::CopyAction, &Text, Qt::LeftButton, Qt::NoModifier);
    Refused.setAccepted(false);
    QApplication::sendEvent(pWindow.get(), &Refused);
    QVERIFY(!Refused.isAccepted());
}

void CMainWindowTest::RecentFilesAndAppMessages()
{
    const QString First = NewFile(QStringLiteral("r1.frag"), s_pFragment);
    const QString Second = NewFile(QStringLiteral("r2.frag"), s_pFragment);
    // The start's own file enters the list after the first paint, still before any later one.
    auto pWindow = NewWindow(*m_pGUI, {First});
    // A message from a second start opens its file; the raise keyword opens nothing.
    pWindow->ReceiveAppMessage(Second);
    pWindow->ReceiveAppMessage(QStringLiteral("raisebanana"));
    QCOMPARE(pWindow->GetEditor()->GetTabCount(), 2);

    QMenu* pRecent = pWindow->GetUi().menuOpen_Recent;
    emit pRecent->aboutToShow();
    QCOMPARE(RecentEntries(pRecent).size(), 2);
    QCOMPARE(RecentEntries(pRecent).first()->text(),
             QStringLiteral("1 ") + QString(Second).replace(QLatin1Char('/'), QLatin1Char('\\')));

    // Choosing an entry opens the file.
    pWindow->GetEditor()->OnCloseAllTabs();
    RecentEntries(pRecent).first()->trigger();
    QCOMPARE(pWindow->GetEditor()->GetTabCount(), 1);
    QCOMPARE(ToQString(pWindow->GetEditor()->GetPanel(0)->GetFilename()), Second);
}

void CMainWindowTest::CompilersStartAfterTheFirstPicture()
{
    const QString Path = NewFile(QStringLiteral("held.frag"), "void main() { gl_FragColor = vec4(1.0); }\n");
    {
        // No compiler process is started while the window is being built and painted.
        auto pWindow = NewWindow(*m_pGUI, {Path});
        QVERIFY(pWindow->GetEditController()->IsDetectingCompilers());
        QVERIFY(pWindow->GetEditController()->GetCompilerPath().isEmpty());
        pWindow->show();
        QVERIFY(QTest::qWaitForWindowExposed(pWindow.get()));
        QTRY_VERIFY_WITH_TIMEOUT(!pWindow->GetEditController()->GetCompilerPath().isEmpty(), 5000);
    }
    // A window that is never painted still compiles its files.
    auto pHidden = NewWindow(*m_pGUI, {Path});
    QTRY_VERIFY_WITH_TIMEOUT(LogOf(*pHidden)->toPlainText().contains(QStringLiteral("Compile succeeded")), 20000);
}

QTEST_MAIN(CMainWindowTest)
#include "tst_MainWindow.moc"
