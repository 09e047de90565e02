#include "ZamShaderEditorWindow.h"

#include "AllCoresDock.h"
#include "FindBarDock.h"
#include "IncludeWatch.h"
#include "app/controller/ApplicationText.h"
#include "app/controller/CGUIController.h"
#include "app/controller/CRecentFiles.h"
#include "app/controller/InstallLayout.h"
#include "app/help/CUpdateChecker.h"
#include "Common/ZamPreferences/ZamPreferences.h"
#include "ShaderEditComponent/CNewShaderFileDialog.h"
#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/compile/model/FileFormats.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/CompileChange.h"
#include "ShaderEditComponent/CShaderEditASMOutput.h"
#include "ShaderEditComponent/CShaderEditLogOutput.h"
#include "ShaderEditComponent/CShaderEditor.h"
#include "ShaderEditComponent/CShaderEditPanel.h"
#include "ShaderEditComponent/CShaderEditProfileOutput.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"
#include "ShaderEditComponent/IconResources.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QDockWidget>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QPrintDialog>
#include <QStatusBar>
#include <QTimer>
#include <QUrl>

#include <utility>

namespace
{
const char* const s_pWindowTitle = "ZamShaderEditor 2.0";
const char* const s_pRaiseKeyword = "raisebanana";
// The TXE ASM view is only useful with a compiler that writes disassembly.
constexpr unsigned int s_uiDisassemblyFlag = 32;

const EShaderDocType s_DocTypes[] = {
    DocType_PlainText,    DocType_GLSLESVertex, DocType_GLSLESFragment, DocType_GLSLVertex,
    DocType_GLSLFragment, DocType_ZFXGLSLES,    DocType_ZFXGLSL,        DocType_HLSLVertex,
    DocType_HLSLFragment, DocType_HLSLGeometry, DocType_HLSLFX,         DocType_OpenCLKernel,
};

SShaderEditControllerOptions EditControllerOptions(CGUIController& GUI, const SEditorWindowOptions& Options)
{
    SShaderEditControllerOptions EditOptions;
    EditOptions.pPreferences = &GUI.GetPreferences();
    EditOptions.CompilerSearchPaths = Options.CompilerSearchPaths;
    EditOptions.bDeferDetection = true; // started by the first paint
    return EditOptions;
}

constexpr int s_iDetectionFallbackMs = 1000;
} // namespace

ZamShaderEditorWindow::ZamShaderEditorWindow(const SEditorWindowOptions& Options)
    : m_GUI(Options.pGUI ? *Options.pGUI : CGUIController::Instance())
    , m_bWelcomeExample(Options.bWelcomeExample)
    , m_pHighlight(std::make_unique<CShaderHighlightController>(&m_GUI.GetPreferences()))
    , m_pEditController(std::make_unique<CShaderEditController>(EditControllerOptions(m_GUI, Options)))
{
    InitIconResources();
    // The restored tabs behind the current one are coloured after the first paint.
    m_pHighlight->SetColourHiddenLater(true);
    setObjectName(QStringLiteral("MainWindow"));
    setAcceptDrops(true);
    setWindowIcon(QIcon(QStringLiteral(":/ZamShaderEditor/Icons/ZamShaderEditor_48.png")));
    m_pUpdateChecker = new CUpdateChecker(QStringLiteral("ZamShaderEditor"), this);

    m_Ui.Setup(this);
    m_pEditor = new CShaderEditor(m_pHighlight.get(), this);
    m_pEditor->SetDelegate(this);
    m_pEditor->SetController(m_pEditController.get());
    setCentralWidget(m_pEditor);
    BuildStatusBar();
    BuildDocks();
    m_pRecentFiles = new CRecentFiles(&m_GUI.GetPreferences(), CRecentFiles::Flag_OnlyExistingFiles,
                                      QStringLiteral("Open"), 10, this);
    m_pRecentFiles->Attach(m_Ui.menuOpen_Recent);
    RetranslateUi();

    ConnectEditor();
    ConnectActions();
    OnEditorStateChanged(m_pEditor->GetTabCount() > 0 ? 2 : 1);

    // Each entry in the recent files saves the preference file, twice synced to disk: the
    // session's entries wait until after the first paint.
    m_bHoldRecentFiles = true;
    OpenStartFiles(Options.pArguments ? *Options.pArguments : QCoreApplication::arguments());
    m_bHoldRecentFiles = false;
    OnCompilerFlagsChanged(m_pEditController->GetCompilerFlags());
    m_pUpdateChecker->OnStartupCheck();
    if (m_GUI.HasWindowLayout())
    {
        m_GUI.RestoreWindowLayout(*this);
        m_bASMWanted = !m_pASMDock->isHidden();
        m_pFindBar->MakeBarIfShown();
    }
    else
    {
        resize(1280, 800);
    }
    OnCompilerFlagsChanged(m_pEditController->GetCompilerFlags());
    // A window that is never painted (kept hidden, minimised at start) still compiles.
    QTimer::singleShot(s_iDetectionFallbackMs, this, &ZamShaderEditorWindow::FinishStartup);
}

bool ZamShaderEditorWindow::event(QEvent* pEvent)
{
    // Compiler processes, the session's compiles and what the first picture does not show
    // wait until the window is on screen, so they never stand between the user and it.
    if (pEvent->type() == QEvent::Paint && !std::exchange(m_bPainted, true))
        QTimer::singleShot(0, this, &ZamShaderEditorWindow::FinishStartup);
    return QMainWindow::event(pEvent);
}

void ZamShaderEditorWindow::FinishStartup()
{
    if (std::exchange(m_bStartupFinished, true))
        return;
    MakeASMView();
    m_pHighlight->SetColourHiddenLater(false);
    AddHeldRecentFiles();
    m_pEditController->StartCompilerDetection();
    m_pEditor->OnLoadTabsBehind();
}

ZamShaderEditorWindow::~ZamShaderEditorWindow()
{
    // The views and the panels use both controllers, which are members; they go first.
    delete m_pEditor;
    for (QDockWidget* pDock : {m_pLogDock, m_pProfileDock, m_pASMDock, m_pFindDock})
        delete pDock;
}

void ZamShaderEditorWindow::BuildStatusBar()
{
    m_pCompilingLabel = new QLabel(this);
    m_pCompilingLabel->setObjectName(QStringLiteral("CompilingIndicator"));
    m_pCompilingLabel->hide();
    statusBar()->addWidget(m_pCompilingLabel);
    // How the last change moved the figures.
    auto* pChange = new QLabel(this);
    pChange->setObjectName(QStringLiteral("CompileChangeLabel"));
    statusBar()->addWidget(pChange);
    connect(m_pEditController.get(), &CShaderEditController::CompileProfileChanged, pChange,
            [pChange](const SCompileResult& Result) { pChange->setText(DescribeResultChange(Result)); });
    connect(m_pEditController.get(), &CShaderEditController::ClearCompileOutput, pChange, &QLabel::clear);

    m_pLineLabel = new QLabel(this);
    m_pColumnLabel = new QLabel(this);
    m_pLineLabel->setObjectName(QStringLiteral("LineNumberLabel"));
    m_pColumnLabel->setObjectName(QStringLiteral("ColumnNumberLabel"));
    m_pLineLabel->setMinimumWidth(40);
    m_pColumnLabel->setMinimumWidth(30);
    statusBar()->addPermanentWidget(new QLabel(GetApplicationText(AppText_Line), this));
    statusBar()->addPermanentWidget(m_pLineLabel);
    statusBar()->addPermanentWidget(new QLabel(GetApplicationText(AppText_Col), this));
    statusBar()->addPermanentWidget(m_pColumnLabel);

    m_pFileTypeSelector = new QComboBox(this);
    m_pFileTypeSelector->setObjectName(QStringLiteral("FileTypeComboSelector"));
    for (const EShaderDocType eType : s_DocTypes)
        m_pFileTypeSelector->addItem(GetDocTypeName(eType), static_cast<uint>(eType));
    statusBar()->addPermanentWidget(m_pFileTypeSelector);
}

QDockWidget* ZamShaderEditorWindow::AddDock(QWidget* pView, const char* pObjectName, Qt::DockWidgetArea eArea,
                                            int iTitle, int iToggle)
{
    auto* pDock = new QDockWidget(this);
    pDock->setObjectName(QLatin1String(pObjectName));
    if (pView)
        pDock->setWidget(pView);
    pDock->setWindowTitle(GetApplicationText(iTitle));
    pDock->toggleViewAction()->setText(GetApplicationText(iToggle));
    addDockWidget(eArea, pDock);
    m_Ui.menuView->addAction(pDock->toggleViewAction());
    return pDock;
}

void ZamShaderEditorWindow::BuildDocks()
{
    m_pFindBar = new CFindBarDock(*this, *m_pEditor, *m_Ui.actionFind, *m_Ui.actionReplace);
    m_pFindDock = m_pFindBar->GetDock();

    // Each dock needs a name of its own, or a stored layout cannot tell them apart.
    auto* pLog = new CShaderEditLogOutput(m_pEditController.get(), this);
    m_pLogDock = AddDock(pLog, "DockWidget", Qt::BottomDockWidgetArea, AppText_Output, AppText_ShowCompileOutput);
    m_pProfileDock = AddDock(new CShaderEditProfileOutput(m_pEditController.get(), this), "DockWidget_Profile",
                             Qt::RightDockWidgetArea, AppText_Profile, AppText_ShowProfile);
    // The disassembly is hidden until the compiler is known to write one: its view is made
    // when the dock is to be shown or after the first paint, whichever comes first.
    m_pASMDock = AddDock(nullptr, "DockWidget_TXEASM", Qt::RightDockWidgetArea, AppText_TXEASM, AppText_ShowTXEASM);
    connect(m_pASMDock->toggleViewAction(), &QAction::toggled, this,
            [this](bool bVisible)
            {
                if (!m_bApplyingFlags)
                    m_bASMWanted = bVisible;
            });
    resizeDocks({m_pLogDock}, {170}, Qt::Vertical);
    resizeDocks({m_pProfileDock, m_pASMDock}, {360, 360}, Qt::Horizontal);
    resizeDocks({m_pProfileDock, m_pASMDock}, {250, 400}, Qt::Vertical);
    connect(pLog, &CShaderEditLogOutput::JumpToLine, m_pEditor, &CShaderEditor::OnGotoLine);
    // A message about an included header opens the header, or switches to its tab.
    connect(pLog, &CShaderEditLogOutput::JumpToFileLine, this,
            [this](const QString& Path, int iLine)
            {
                if (m_pEditor->OnOpenFile(Path))
                    m_pEditor->OnGotoLine(iLine);
            });
    new CAllCoresDock(*this, *m_pEditor, *m_pEditController, *m_Ui.menuView);
    new CIncludeWatch(*m_pEditor, *m_pEditController, this);
}

void ZamShaderEditorWindow::MakeASMView()
{
    if (m_pASMDock->widget())
        return;
    auto* pASM = new CShaderEditASMOutput(m_pEditController.get(), m_pHighlight.get(), this);
    m_pASMDock->setWidget(pASM);
    // The editor's line and its instructions find each other.
    connect(m_pEditor, &CShaderEditor::LineChanged, pASM, &CShaderEditASMOutput::OnSourceLineSelected);
    connect(pASM, &CShaderEditASMOutput::SourceLineSelected, this,
            [this](int iLine)
            {
                if (CShaderEditPanel* pPanel = m_pEditor->GetCurrentPanel())
                    pPanel->ShowSourceLine(iLine);
            });
    if (const CShaderEditPanel* pPanel = m_pEditor->GetCurrentPanel())
        pASM->OnSourceLineSelected(pPanel->textCursor().blockNumber() + 1);
}

void ZamShaderEditorWindow::ConnectEditor()
{
    connect(m_pEditor, qOverload<const CShaderEditPanel*>(&CShaderEditor::PanelChanged), this,
            &ZamShaderEditorWindow::OnPanelChanged);
    connect(m_pEditor, &CShaderEditor::StateChanged, this, &ZamShaderEditorWindow::OnEditorStateChanged);
    connect(m_pEditor, &CShaderEditor::FileOpened, this, &ZamShaderEditorWindow::OnFileOpened);
    connect(m_pRecentFiles, &CRecentFiles::triggered, m_pEditor, qOverload<const QString&>(&CShaderEditor::OnOpenFile));
    connect(this, &ZamShaderEditorWindow::FileTypeChanged, m_pEditor, &CShaderEditor::OnFileTypeChanged);
    connect(m_pEditController.get(), &CShaderEditController::CompilerFlagsChanged, this,
            &ZamShaderEditorWindow::OnCompilerFlagsChanged);
    connect(m_pEditor, &CShaderEditor::LineChanged, m_pLineLabel, qOverload<int>(&QLabel::setNum));
    connect(m_pEditor, &CShaderEditor::ColChanged, m_pColumnLabel, qOverload<int>(&QLabel::setNum));
    connect(m_pFileTypeSelector, &QComboBox::currentIndexChanged, this,
            &ZamShaderEditorWindow::OnFileTypeSelectorChanged);
    connect(m_pEditController.get(), &CShaderEditController::BeginCompiling, this,
            &ZamShaderEditorWindow::OnBeginCompiling);
    connect(m_pEditController.get(), &CShaderEditController::EndCompiling, this,
            &ZamShaderEditorWindow::OnEndCompiling);
    connect(&m_GUI, &CGUIController::PreferencesSaveFailed, this, &ZamShaderEditorWindow::OnPreferencesSaveFailed);
    connect(&m_GUI, &CGUIController::PreferencesNotice, this, &ZamShaderEditorWindow::OnPreferencesNotice);
    m_GUI.DeliverPreferenceNotices();
}

void ZamShaderEditorWindow::ConnectActions()
{
    const SMainWindowUi& Ui = m_Ui;
    CShaderEditor* pEditor = m_pEditor;
    connect(Ui.actionUsage, &QAction::triggered, this, &ZamShaderEditorWindow::OnUsageDialog);
    connect(Ui.actionFeedback, &QAction::triggered, this, &ZamShaderEditorWindow::OnFeedbackDialog);
    connect(Ui.actionAbout, &QAction::triggered, this, &ZamShaderEditorWindow::OnAboutDialog);
    connect(Ui.actionNew, &QAction::triggered, this, &ZamShaderEditorWindow::OnNewFileDialog);
    connect(Ui.actionClose, &QAction::triggered, pEditor, &CShaderEditor::OnCloseCurrentTab);
    connect(Ui.actionClose_All, &QAction::triggered, pEditor, &CShaderEditor::OnCloseAllTabs);
    connect(Ui.actionQuit, &QAction::triggered, this, &QWidget::close);
    connect(Ui.actionOpen, &QAction::triggered, pEditor, qOverload<>(&CShaderEditor::OnOpenFile));
    connect(Ui.actionSave, &QAction::triggered, pEditor, &CShaderEditor::OnSaveCurrentTab);
    connect(Ui.actionSave_All, &QAction::triggered, pEditor, &CShaderEditor::OnSaveAllTabs);
    connect(Ui.actionSave_As, &QAction::triggered, pEditor, &CShaderEditor::OnSaveCurrentTabAs);
    connect(Ui.actionCut, &QAction::triggered, pEditor, &CShaderEditor::OnCut);
    connect(Ui.actionCopy, &QAction::triggered, pEditor, &CShaderEditor::OnCopy);
    connect(Ui.actionPaste, &QAction::triggered, pEditor, &CShaderEditor::OnPaste);
    connect(Ui.actionDelete, &QAction::triggered, pEditor, &CShaderEditor::OnDelete);
    connect(Ui.actionSelect_All, &QAction::triggered, pEditor, &CShaderEditor::OnSelectAll);
    connect(Ui.actionUndo, &QAction::triggered, pEditor, &CShaderEditor::OnUndo);
    connect(Ui.actionRedo, &QAction::triggered, pEditor, &CShaderEditor::OnRedo);
    connect(Ui.actionComment_Selection, &QAction::triggered, pEditor, &CShaderEditor::OnCommentSelection);
    connect(Ui.actionUncomment_Selection, &QAction::triggered, pEditor, &CShaderEditor::OnUncommentSelection);
    connect(Ui.actionIndent_Selection, &QAction::triggered, pEditor, &CShaderEditor::OnIndentSelection);
    connect(Ui.actionOutdent_Selection, &QAction::triggered, pEditor, &CShaderEditor::OnOutdentSelection);
    connect(Ui.actionPrint, &QAction::triggered, pEditor, &CShaderEditor::OnPrint);
    connect(Ui.actionPreferences, &QAction::triggered, this, &ZamShaderEditorWindow::OnPreferencesDialog);
    connect(Ui.actionCompile, &QAction::triggered, this, &ZamShaderEditorWindow::OnCompileDialog);
    connect(Ui.actionCheck_For_Updates, &QAction::triggered, m_pUpdateChecker, &CUpdateChecker::OnForceCheckForUpdates);
    for (QAction* pAction : Ui.DocumentActions())
        connect(this, &ZamShaderEditorWindow::EnableCommands, pAction, &QAction::setEnabled);
    connect(this, &ZamShaderEditorWindow::EnableCommands, m_pFileTypeSelector, &QWidget::setVisible);
}

void ZamShaderEditorWindow::RetranslateUi()
{
    setWindowTitle(QLatin1String(s_pWindowTitle));
    m_Ui.Retranslate();
    m_pCompilingLabel->setText(tr("Compiling\u2026"));
    emit Retranslate();
}

void ZamShaderEditorWindow::OpenStartFiles(const QStringList& Arguments)
{
    bool bOpened = false;
    if (Arguments.size() > 1 && QFileInfo(Arguments.at(1)).isFile())
        bOpened = m_pEditor->OnOpenFile(Arguments.at(1));
    if (m_GUI.GetGeneralSettings().bOpenLastTabs)
        bOpened = RestoreSession() || bOpened;
    // A first start shows the product at work rather than an empty window.
    if (!bOpened && m_bWelcomeExample && !m_GUI.HasWindowLayout())
        OpenWelcomeExample();
}

bool ZamShaderEditorWindow::RestoreSession()
{
    const CZamTArray<CZamTString> Paths = m_GUI.LoadLastOpenTabs();
    QStringList Files;
    for (uint32_t i = 0; i < Paths.GetSize(); ++i)
        Files << ToQString(Paths[i]);
    // Only the tab in front reads its file before the first paint; FinishStartup reads the others.
    m_pEditor->OnOpenFilesBehind(Files);
    return Paths.GetSize() > 0;
}

void ZamShaderEditorWindow::OpenWelcomeExample()
{
    const QString Example = FindInstalledFile(InstalledExamplesFolder(), QStringLiteral("lit_mesh.fsh"));
    if (!Example.isEmpty())
        m_pEditor->OnOpenFile(Example);
}

void ZamShaderEditorWindow::ReceiveAppMessage(const QString& Message)
{
    if (Message != QLatin1String(s_pRaiseKeyword))
        m_pEditor->OnOpenFile(Message);
    activateWindow();
    showNormal();
    raise();
}

void ZamShaderEditorWindow::OnOpenFile(const QString& File)
{
    if (QFile::exists(File))
        m_pEditor->OnOpenFile(File);
}

void ZamShaderEditorWindow::OnNewFileDialog()
{
    CNewShaderFileDialog Dialog(this);
    connect(&Dialog, &CNewShaderFileDialog::NewFile, m_pEditor, &CShaderEditor::OnNewFile);
    Dialog.exec();
}

void ZamShaderEditorWindow::OnEditorStateChanged(int uiState)
{
    // State 1: no document open.
    emit EnableCommands(uiState != 1);
}

void ZamShaderEditorWindow::OnFileTypeSelectorChanged(int iRow)
{
    if (!sender() || sender()->objectName() != QLatin1String("FileTypeComboSelector") || iRow < 0)
        return;
    emit FileTypeChanged(static_cast<EShaderDocType>(m_pFileTypeSelector->itemData(iRow).toUInt()));
}

void ZamShaderEditorWindow::OnFileOpened(const QString& FileName)
{
    if (m_bHoldRecentFiles)
    {
        m_HeldRecentFiles << FileName;
        return;
    }
    AddHeldRecentFiles();
    m_pRecentFiles->Add(QDir::toNativeSeparators(FileName));
}

void ZamShaderEditorWindow::AddHeldRecentFiles()
{
    for (const QString& FileName : std::exchange(m_HeldRecentFiles, {}))
        m_pRecentFiles->Add(QDir::toNativeSeparators(FileName));
}

void ZamShaderEditorWindow::OnPanelChanged(const CShaderEditPanel* pPanel)
{
    if (!pPanel)
        return;
    const QSignalBlocker Blocker(m_pFileTypeSelector);
    m_pFileTypeSelector->setCurrentIndex(m_pFileTypeSelector->findData(static_cast<uint>(pPanel->GetDocumentType())));
}

void ZamShaderEditorWindow::OnCompilerFlagsChanged(uint uiFlags)
{
    const bool bDisassembly = (uiFlags & s_uiDisassemblyFlag) != 0;
    if (bDisassembly && m_bASMWanted)
        MakeASMView();
    m_bApplyingFlags = true;
    m_pASMDock->setVisible(bDisassembly && m_bASMWanted);
    m_pASMDock->toggleViewAction()->setEnabled(bDisassembly);
    m_bApplyingFlags = false;
}

void ZamShaderEditorWindow::OnBeginCompiling()
{
    m_pCompilingLabel->show();
}

void ZamShaderEditorWindow::OnEndCompiling()
{
    m_pCompilingLabel->hide();
}

void ZamShaderEditorWindow::OnPreferencesSaveFailed(const QString& Reason)
{
    ShowSettingsProblem(tr("Your settings could not be saved to %1. They apply until you quit.")
                            .arg(QDir::toNativeSeparators(m_GUI.GetPreferences().GetFilePath())),
                        Reason);
}

void ZamShaderEditorWindow::OnPreferencesNotice(const QString& Text)
{
    ShowSettingsProblem(Text, QString());
}

void ZamShaderEditorWindow::ShowSettingsProblem(const QString& Text, const QString& Details)
{
    // Told without stopping the user: the settings of this session still apply.
    auto* pBox = new QMessageBox(QMessageBox::Warning, QLatin1String(s_pWindowTitle), Text, QMessageBox::Ok, this);
    pBox->setInformativeText(Details);
    pBox->setAttribute(Qt::WA_DeleteOnClose);
    pBox->open();
}

void ZamShaderEditorWindow::closeEvent(QCloseEvent* pEvent)
{
    // The tab list is stored before any question, so even a close the user then cancels
    // has rewritten it.
    CZamTArray<CZamTString> Tabs;
    if (m_GUI.GetGeneralSettings().bOpenLastTabs)
    {
        const CZamTArray<CZamTString>& Open = m_pEditor->GetOpenFilenames();
        for (uint32_t i = 0; i < Open.GetSize(); ++i)
        {
            if (!Open[i].IsEmpty())
                Tabs.Append(Open[i]);
        }
    }
    m_GUI.StoreLastOpenTabs(Tabs);
    if (!m_pEditor->OnCloseAllTabs())
    {
        pEvent->ignore();
        return;
    }
    m_GUI.SaveWindowLayout(*this);
    pEvent->accept();
}

void ZamShaderEditorWindow::dragEnterEvent(QDragEnterEvent* pEvent)
{
    if (pEvent->mimeData()->hasFormat(QStringLiteral("text/uri-list")))
        pEvent->acceptProposedAction();
}

void ZamShaderEditorWindow::dropEvent(QDropEvent* pEvent)
{
    for (const QUrl& Url : pEvent->mimeData()->urls())
    {
        const QString Path = Url.toLocalFile();
        if (!Path.isEmpty())
            m_pEditor->OnOpenFile(Path);
    }
    pEvent->acceptProposedAction();
}

QMessageBox::StandardButton ZamShaderEditorWindow::AskSaveChanges(const QString& FileName)
{
    QMessageBox Box(QMessageBox::Warning, QLatin1String(s_pWindowTitle), GetApplicationText(AppText_DocumentModified),
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, this);
    Box.setInformativeText(GetApplicationText(AppText_SaveChangesQuestion));
    Box.setDetailedText(FileName);
    Box.setDefaultButton(QMessageBox::Save);
    return static_cast<QMessageBox::StandardButton>(Box.exec());
}

bool ZamShaderEditorWindow::AskForFileName(CZamTString& FileName, bool bSave, EShaderDocType eType)
{
    const QString Start = ToQString(m_GUI.GetGeneralSettings().LastDirectory);
    const QString Filter = m_pEditController->GetFileDialogFilter();
    QString Selected;
    const int iRow = FindFileFormatByType(m_pEditController->GetFileFormats(), eType);
    if (bSave && iRow >= 0)
        Selected = m_pEditController->GetFileFormats()[static_cast<uint32_t>(iRow)].Filter;
    const QString Name =
        bSave ? QFileDialog::getSaveFileName(this, GetApplicationText(AppText_SaveAs), Start, Filter, &Selected)
              : QFileDialog::getOpenFileName(this, GetApplicationText(AppText_OpenFile), Start, Filter);
    if (Name.isEmpty())
        return false;
    Settings::SGeneral General = m_GUI.GetGeneralSettings();
    General.LastDirectory = ToZamString(QFileInfo(Name).path());
    m_GUI.SetGeneralSettings(General, Settings::GeneralSetting_LastDirectory);
    FileName = ToZamString(Name);
    return true;
}

bool ZamShaderEditorWindow::GetSaveFileName(CZamTString& FileName, EShaderDocType eType)
{
    return AskForFileName(FileName, true, eType);
}

bool ZamShaderEditorWindow::GetOpenFileName(CZamTString& FileName)
{
    return AskForFileName(FileName, false, DocType_PlainText);
}

int ZamShaderEditorWindow::ShowPrintDialog(QPrinter* pPrinter, bool bHasSelection)
{
    QPrintDialog Dialog(pPrinter, this);
    Dialog.setWindowTitle(GetApplicationText(AppText_PrintShader));
    Dialog.setOption(QAbstractPrintDialog::PrintSelection, bHasSelection);
    return Dialog.exec();
}

void ZamShaderEditorWindow::ReportIOError(const CZamTString& Path, const CZamTString& Error)
{
    Q_UNUSED(Path);
    QMessageBox Box(QMessageBox::Critical, QLatin1String(s_pWindowTitle), GetApplicationText(AppText_IOError),
                    QMessageBox::Ok);
    Box.setInformativeText(ToQString(Error));
    Box.exec();
}
