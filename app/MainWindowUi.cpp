#include "MainWindowUi_p.h"

#include <QAction>
#include <QApplication>
#include <QMainWindow>
#include <QMenuBar>
#include <QToolBar>

namespace
{
struct SActionText
{
    QAction* SMainWindowUi::*pMember;
    const char* pText;
    const char* pToolTip;
    const char* pShortcut;
};

// Tool tips and shortcuts as the window has always had them. Tab and Shift+Tab are set in
// code below: as strings they would be retranslated along with the texts.
const SActionText s_Texts[] = {
    {&SMainWindowUi::actionUsage, "ZamShaderEditor Help", nullptr, "F1"},
    {&SMainWindowUi::actionFeedback, "Feedback...", nullptr, nullptr},
    {&SMainWindowUi::actionAbout, "About ZamShaderEditor", nullptr, nullptr},
    {&SMainWindowUi::actionNew, "New...", nullptr, "Ctrl+N"},
    {&SMainWindowUi::actionClose, "Close", nullptr, nullptr},
    {&SMainWindowUi::actionClose_All, "Close All", nullptr, nullptr},
    {&SMainWindowUi::actionQuit, "Quit", nullptr, nullptr},
    {&SMainWindowUi::actionOpen, "Open...", "Open File", nullptr},
    {&SMainWindowUi::actionSave, "Save", "Save", "Ctrl+S"},
    {&SMainWindowUi::actionSave_All, "Save All", "Save All", "Ctrl+Shift+S"},
    {&SMainWindowUi::actionCut, "Cut", "Cut", nullptr},
    {&SMainWindowUi::actionCopy, "Copy", "Copy", nullptr},
    {&SMainWindowUi::actionPaste, "Paste", "Paste", nullptr},
    {&SMainWindowUi::actionFind, "Find", "Find", "Ctrl+F"},
    {&SMainWindowUi::actionPreferences, "Preferences...", "Preferences", nullptr},
    {&SMainWindowUi::actionUndo, "Undo", "Undo", nullptr},
    {&SMainWindowUi::actionRedo, "Redo", "Redo", nullptr},
    {&SMainWindowUi::actionCompile, "Compile...", "Compile", "F7"},
    {&SMainWindowUi::actionDelete, "Delete", nullptr, "Del"},
    {&SMainWindowUi::actionSelect_All, "Select All", nullptr, "Ctrl+A"},
    {&SMainWindowUi::actionComment_Selection, "Comment Selection", nullptr, "Ctrl+K"},
    {&SMainWindowUi::actionUncomment_Selection, "Uncomment Selection", nullptr, "Ctrl+U"},
    {&SMainWindowUi::actionIndent_Selection, "Decrease Indent", nullptr, nullptr},
    {&SMainWindowUi::actionOutdent_Selection, "Increase Indent", nullptr, nullptr},
    {&SMainWindowUi::actionShow_Source_Viewer, "Show Source Viewer", nullptr, nullptr},
    {&SMainWindowUi::actionShow_Compile_Output, "Show Compile Output", nullptr, nullptr},
    {&SMainWindowUi::actionShow_Profile_Output, "Show Profile Output", nullptr, nullptr},
    {&SMainWindowUi::actionSave_As, "Save As...", nullptr, nullptr},
    {&SMainWindowUi::actionReplace, "Replace", nullptr, "Ctrl+H"},
    {&SMainWindowUi::actionShow_ASM_Output, "Show ASM Output", nullptr, nullptr},
    {&SMainWindowUi::actionPrint, "Print...", nullptr, "Ctrl+P"},
    {&SMainWindowUi::actionCheck_For_Updates, "Check for Updates", nullptr, nullptr},
};

struct SActionIcon
{
    QAction* SMainWindowUi::*pMember;
    const char* pIcon;
};

const SActionIcon s_Icons[] = {
    {&SMainWindowUi::actionNew, ":/Icons/doc_24.png"},
    {&SMainWindowUi::actionOpen, ":/Icons/file_24.png"},
    {&SMainWindowUi::actionSave, ":/Icons/diskette_24.png"},
    {&SMainWindowUi::actionSave_All, ":/Icons/saveall_24.png"},
    {&SMainWindowUi::actionCut, ":/Icons/cut_24.png"},
    {&SMainWindowUi::actionCopy, ":/Icons/copy_24.png"},
    {&SMainWindowUi::actionPaste, ":/Icons/paste_24.png"},
    {&SMainWindowUi::actionFind, ":/Icons/binoculars_24.png"},
    {&SMainWindowUi::actionPreferences, ":/Icons/config_24.png"},
    {&SMainWindowUi::actionUndo, ":/Icons/back_24.png"},
    {&SMainWindowUi::actionRedo, ":/Icons/go_24.png"},
    {&SMainWindowUi::actionCompile, ":/Icons/compile_24.png"},
};

// Object names come from the member names of the table above.
const char* const s_ObjectNames[] = {
    "actionUsage",           "actionFeedback",          "actionAbout",
    "actionNew",             "actionClose",             "actionClose_All",
    "actionQuit",            "actionOpen",              "actionSave",
    "actionSave_All",        "actionCut",               "actionCopy",
    "actionPaste",           "actionFind",              "actionPreferences",
    "actionUndo",            "actionRedo",              "actionCompile",
    "actionDelete",          "actionSelect_All",        "actionComment_Selection",
    "actionUncomment_Selection", "actionIndent_Selection", "actionOutdent_Selection",
    "actionShow_Source_Viewer", "actionShow_Compile_Output", "actionShow_Profile_Output",
    "actionSave_As",         "actionReplace",           "actionShow_ASM_Output",
    "actionPrint",           "actionCheck_For_Updates",
};
static_assert(sizeof(s_ObjectNames) / sizeof(s_ObjectNames[0]) == sizeof(s_Texts) / sizeof(s_Texts[0]),
              "one object name per action");

QString Translate(const char* pText)
{
    return pText ? QApplication::translate("MainWindow", pText) : QString();
}

// Keys for actions the window gives none: the desktop's own where it has them, else a common
// choice. A key another action already holds stays with that action (on most desktops Save As
// would take Save All's Ctrl+Shift+S).
struct SStandardShortcut
{
    QAction* SMainWindowUi::*pMember;
    QKeySequence::StandardKey eKey;
    const char* pFallback;
};

const SStandardShortcut s_StandardShortcuts[] = {
    {&SMainWindowUi::actionOpen, QKeySequence::Open, "Ctrl+O"},
    {&SMainWindowUi::actionSave_As, QKeySequence::SaveAs, nullptr},
    {&SMainWindowUi::actionClose, QKeySequence::Close, "Ctrl+W"},
    {&SMainWindowUi::actionClose_All, QKeySequence::UnknownKey, "Ctrl+Shift+W"},
    {&SMainWindowUi::actionQuit, QKeySequence::Quit, "Ctrl+Q"},
    {&SMainWindowUi::actionUndo, QKeySequence::Undo, "Ctrl+Z"},
    {&SMainWindowUi::actionRedo, QKeySequence::Redo, "Ctrl+Shift+Z"},
    {&SMainWindowUi::actionCut, QKeySequence::Cut, "Ctrl+X"},
    {&SMainWindowUi::actionCopy, QKeySequence::Copy, "Ctrl+C"},
    {&SMainWindowUi::actionPaste, QKeySequence::Paste, "Ctrl+V"},
    {&SMainWindowUi::actionPreferences, QKeySequence::Preferences, "Ctrl+,"},
};
} // namespace

QList<QKeySequence> StandardShortcuts(QKeySequence::StandardKey eKey, const QKeySequence& Fallback,
                                      const QList<QKeySequence>& Taken)
{
    QList<QKeySequence> Keys;
    for (const QKeySequence& Key : QKeySequence::keyBindings(eKey))
    {
        if (!Taken.contains(Key))
            Keys << Key;
    }
    if (Keys.isEmpty() && !Fallback.isEmpty() && !Taken.contains(Fallback))
        Keys << Fallback;
    return Keys;
}

void SMainWindowUi::Setup(QMainWindow* pWindow)
{
    CreateActions(pWindow);
    FillMenus(pWindow);
    FillToolBar(pWindow);
    Retranslate();
}

void SMainWindowUi::CreateActions(QMainWindow* pWindow)
{
    for (std::size_t i = 0; i < sizeof(s_Texts) / sizeof(s_Texts[0]); ++i)
    {
        QAction* pAction = new QAction(pWindow);
        pAction->setObjectName(QLatin1String(s_ObjectNames[i]));
        this->*(s_Texts[i].pMember) = pAction;
    }
    for (const SActionIcon& Icon : s_Icons)
    {
        (this->*(Icon.pMember))->setIcon(QIcon(QLatin1String(Icon.pIcon)));
        (this->*(Icon.pMember))->setIconVisibleInMenu(true);
    }
    for (QAction* pAction : {actionShow_Source_Viewer, actionShow_Compile_Output, actionShow_Profile_Output,
                             actionShow_ASM_Output})
        pAction->setCheckable(true);
    actionShow_Compile_Output->setChecked(true);
    actionShow_Profile_Output->setChecked(true);
    // The find bar's dock reports its visibility into this action.
    actionFind->setCheckable(true);

    actionQuit->setMenuRole(QAction::QuitRole);
    actionPreferences->setMenuRole(QAction::PreferencesRole);
    actionAbout->setMenuRole(QAction::AboutRole);
}

void SMainWindowUi::FillMenus(QMainWindow* pWindow)
{
    QMenuBar* pBar = pWindow->menuBar();
    menuFile = new QMenu(pBar);
    menuFile->setObjectName(QStringLiteral("menuFile"));
    menuOpen_Recent = new QMenu(menuFile);
    menuOpen_Recent->setObjectName(QStringLiteral("menuOpen_Recent"));
    menuEdit = new QMenu(pBar);
    menuEdit->setObjectName(QStringLiteral("menuEdit"));
    menuCompile = new QMenu(pBar);
    menuCompile->setObjectName(QStringLiteral("menuCompile"));
    menuView = new QMenu(pBar);
    menuView->setObjectName(QStringLiteral("menuView"));
    menuHelp = new QMenu(pBar);
    menuHelp->setObjectName(QStringLiteral("menuHelp"));
    for (QMenu* pMenu : {menuFile, menuEdit, menuCompile, menuView, menuHelp})
        pBar->addAction(pMenu->menuAction());

    menuFile->addActions({actionNew, actionOpen});
    menuFile->addMenu(menuOpen_Recent);
    menuFile->addSeparator();
    menuFile->addActions({actionSave, actionSave_All, actionSave_As});
    menuFile->addSeparator();
    menuFile->addActions({actionClose, actionClose_All});
    menuFile->addSeparator();
    menuFile->addAction(actionPrint);
    menuFile->addSeparator();
    menuFile->addAction(actionQuit);

    menuEdit->addActions({actionUndo, actionRedo});
    menuEdit->addSeparator();
    menuEdit->addActions({actionCut, actionCopy, actionPaste, actionDelete, actionSelect_All});
    menuEdit->addSeparator();
    menuEdit->addActions({actionFind, actionReplace});
    menuEdit->addSeparator();
    menuEdit->addActions(
        {actionComment_Selection, actionUncomment_Selection, actionOutdent_Selection, actionIndent_Selection});
    menuEdit->addSeparator();
    menuEdit->addAction(actionPreferences);

    menuCompile->addAction(actionCompile);

    menuHelp->addAction(actionUsage);
    menuHelp->addSeparator();
    menuHelp->addActions({actionFeedback, actionCheck_For_Updates});
    menuHelp->addSeparator();
    menuHelp->addAction(actionAbout);
}

void SMainWindowUi::FillToolBar(QMainWindow* pWindow)
{
    mainToolBar = new QToolBar(pWindow);
    mainToolBar->setObjectName(QStringLiteral("mainToolBar"));
    pWindow->addToolBar(Qt::TopToolBarArea, mainToolBar);
    mainToolBar->addActions({actionNew, actionOpen, actionSave, actionSave_All});
    mainToolBar->addSeparator();
    mainToolBar->addActions({actionCut, actionCopy, actionPaste});
    mainToolBar->addSeparator();
    mainToolBar->addAction(actionFind);
    mainToolBar->addSeparator();
    mainToolBar->addAction(actionPreferences);
    mainToolBar->addSeparator();
    mainToolBar->addActions({actionUndo, actionRedo});
    mainToolBar->addSeparator();
    mainToolBar->addAction(actionCompile);
}

void SMainWindowUi::Retranslate()
{
    for (const SActionText& Text : s_Texts)
    {
        QAction* pAction = this->*(Text.pMember);
        pAction->setText(Translate(Text.pText));
        if (Text.pToolTip)
            pAction->setToolTip(Translate(Text.pToolTip));
        if (Text.pShortcut)
            pAction->setShortcut(QKeySequence(Translate(Text.pShortcut)));
    }
    // Deliberately crossed: the object names read the other way round from what the
    // actions do, and the keys follow the texts.
    actionOutdent_Selection->setShortcut(QKeySequence(Qt::Key_Tab));
    actionIndent_Selection->setShortcut(QKeySequence(Qt::SHIFT | Qt::Key_Tab));
    SetStandardShortcuts();
    menuFile->setTitle(Translate("File"));
    menuOpen_Recent->setTitle(Translate("Open Recent"));
    menuEdit->setTitle(Translate("Edit"));
    menuCompile->setTitle(Translate("Compile"));
    menuView->setTitle(Translate("View"));
    menuHelp->setTitle(Translate("Help"));
    mainToolBar->setWindowTitle(Translate("mainToolBar"));
}

void SMainWindowUi::SetStandardShortcuts()
{
    QList<QKeySequence> Taken;
    for (const SActionText& Text : s_Texts)
    {
        if (Text.pShortcut)
            Taken << QKeySequence(Translate(Text.pShortcut));
    }
    Taken << QKeySequence(Qt::Key_Tab) << QKeySequence(Qt::SHIFT | Qt::Key_Tab);
    for (const SStandardShortcut& Standard : s_StandardShortcuts)
    {
        const QList<QKeySequence> Keys = StandardShortcuts(
            Standard.eKey, QKeySequence(Translate(Standard.pFallback)), Taken);
        (this->*(Standard.pMember))->setShortcuts(Keys);
        Taken << Keys;
    }
}

QList<QAction*> SMainWindowUi::DocumentActions() const
{
    return {actionCompile,           actionSave,           actionSave_All,         actionSave_As,
            actionClose,             actionClose_All,      actionUndo,             actionRedo,
            actionFind,              actionPaste,          actionCopy,             actionCut,
            actionDelete,            actionSelect_All,     actionComment_Selection, actionUncomment_Selection,
            actionIndent_Selection,  actionOutdent_Selection, actionReplace,       actionPrint};
}
