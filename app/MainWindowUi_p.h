#pragma once

#include <QKeySequence>
#include <QList>

class QAction;
class QMainWindow;
class QMenu;
class QToolBar;

// The main window's actions, menus and tool bar, built in one place so the window itself
// only wires them. Texts are set by Retranslate, so a language change is one call.
struct SMainWindowUi
{
    QAction* actionUsage = nullptr;
    QAction* actionFeedback = nullptr;
    QAction* actionAbout = nullptr;
    QAction* actionNew = nullptr;
    QAction* actionClose = nullptr;
    QAction* actionClose_All = nullptr;
    QAction* actionQuit = nullptr;
    QAction* actionOpen = nullptr;
    QAction* actionSave = nullptr;
    QAction* actionSave_All = nullptr;
    QAction* actionCut = nullptr;
    QAction* actionCopy = nullptr;
    QAction* actionPaste = nullptr;
    QAction* actionFind = nullptr;
    QAction* actionPreferences = nullptr;
    QAction* actionUndo = nullptr;
    QAction* actionRedo = nullptr;
    QAction* actionCompile = nullptr;
    QAction* actionDelete = nullptr;
    QAction* actionSelect_All = nullptr;
    QAction* actionComment_Selection = nullptr;
    QAction* actionUncomment_Selection = nullptr;
    QAction* actionIndent_Selection = nullptr;
    QAction* actionOutdent_Selection = nullptr;
    QAction* actionShow_Source_Viewer = nullptr;
    QAction* actionShow_Compile_Output = nullptr;
    QAction* actionShow_Profile_Output = nullptr;
    QAction* actionSave_As = nullptr;
    QAction* actionReplace = nullptr;
    QAction* actionShow_ASM_Output = nullptr;
    QAction* actionPrint = nullptr;
    QAction* actionCheck_For_Updates = nullptr;

    QMenu* menuFile = nullptr;
    QMenu* menuOpen_Recent = nullptr;
    QMenu* menuEdit = nullptr;
    QMenu* menuCompile = nullptr;
    QMenu* menuView = nullptr;
    QMenu* menuHelp = nullptr;
    QToolBar* mainToolBar = nullptr;

    // Creates everything as children of pWindow, fills the menus and the tool bar, and sets
    // the texts.
    void Setup(QMainWindow* pWindow);
    void Retranslate();

    // The commands that need an open document, in the order they are enabled.
    QList<QAction*> DocumentActions() const;

private:
    void CreateActions(QMainWindow* pWindow);
    void FillMenus(QMainWindow* pWindow);
    void FillToolBar(QMainWindow* pWindow);
    void SetStandardShortcuts();
};

// The desktop's keys for eKey, less those in Taken; Fallback (unless taken) when that leaves none.
[[nodiscard]] QList<QKeySequence> StandardShortcuts(QKeySequence::StandardKey eKey, const QKeySequence& Fallback,
                                                    const QList<QKeySequence>& Taken);
