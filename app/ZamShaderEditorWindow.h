#pragma once

#include "MainWindowUi_p.h"
#include "ShaderEditComponent/compile/model/ShaderDocType.h"
#include "ShaderEditComponent/IShaderEditorDelegate.h"

#include <QMainWindow>
#include <QStringList>

#include <memory>

class CFindBarDock;
class CGUIController;
class CRecentFiles;
class CShaderEditController;
class CShaderEditPanel;
class CShaderEditor;
class CShaderHighlightController;
class CUpdateChecker;
class QComboBox;
class QDockWidget;
class QLabel;

// How a window is set up; the defaults are the program's.
struct SEditorWindowOptions
{
    // Null: the process-wide controller on the user's preference file.
    CGUIController* pGUI = nullptr;
    // The program's command line (argument 1 may name a file to open); null: the
    // application's own arguments.
    const QStringList* pArguments = nullptr;
    // Folders searched for the bundled compilers; empty: beside the executable.
    QStringList CompilerSearchPaths;
    // A first start (no stored window layout) with nothing to open shows an example.
    bool bWelcomeExample = true;
};

// The one top-level window. It builds the menus, tool bar, status bar and docks around the
// editor tabs and wires them; the editor, the controllers and the views do the work. It
// answers the editor's questions to the user (IShaderEditorDelegate).
class ZamShaderEditorWindow : public QMainWindow, public IShaderEditorDelegate
{
    Q_OBJECT

public:
    explicit ZamShaderEditorWindow(const SEditorWindowOptions& Options = SEditorWindowOptions());
    ~ZamShaderEditorWindow() override;

    CShaderEditor* GetEditor() const { return m_pEditor; }
    CShaderEditController* GetEditController() const { return m_pEditController.get(); }
    const SMainWindowUi& GetUi() const { return m_Ui; }

    // IShaderEditorDelegate
    QMessageBox::StandardButton AskSaveChanges(const QString& FileName) override;
    bool GetSaveFileName(CZamTString& FileName, EShaderDocType eType) override;
    int ShowPrintDialog(QPrinter* pPrinter, bool bHasSelection) override;
    bool GetOpenFileName(CZamTString& FileName) override;
    void ReportIOError(const CZamTString& Path, const CZamTString& Error) override;
    bool AskReloadChangedFile(const QString& FileName) override;

signals:
    void FileTypeChanged(EShaderDocType eType);
    void EnableCommands(bool bEnable);
    void Retranslate();

public slots:
    void ReceiveAppMessage(const QString& Message);
    void OnOpenFile(const QString& File);
    void OnNewFileDialog();
    void OnPreferencesDialog();
    void OnCompileDialog();
    void OnUsageDialog();
    void OnAboutDialog();
    void OnFeedbackDialog();
    void OnEditorStateChanged(int uiState);
    void OnFileTypeSelectorChanged(int iRow);
    void OnFileOpened(const QString& FileName);
    void OnPanelChanged(const CShaderEditPanel* pPanel);
    void OnCompilerFlagsChanged(uint uiFlags);

protected:
    bool event(QEvent* pEvent) override;
    void closeEvent(QCloseEvent* pEvent) override;
    void dragEnterEvent(QDragEnterEvent* pEvent) override;
    void dropEvent(QDropEvent* pEvent) override;

private slots:
    void OnBeginCompiling();
    void OnEndCompiling();
    void OnPreferencesSaveFailed(const QString& Reason);
    void OnPreferencesNotice(const QString& Text);

private:
    void BuildStatusBar();
    void BuildDocks();
    // Once, after the first paint or a second after construction when never painted.
    void FinishStartup();
    // The files opened while the recent files were held, in order.
    void AddHeldRecentFiles();
    // The disassembly view, once.
    void MakeASMView();
    // pView may be null: the dock's view is set later.
    QDockWidget* AddDock(QWidget* pView, const char* pObjectName, Qt::DockWidgetArea eArea, int iTitle, int iToggle);
    void ConnectEditor();
    void ConnectActions();
    void RetranslateUi();
    void OpenStartFiles(const QStringList& Arguments);
    bool RestoreSession();
    void OpenWelcomeExample();
    bool AskForFileName(CZamTString& FileName, bool bSave, EShaderDocType eType);
    void ShowSettingsProblem(const QString& Text, const QString& Details);

    CGUIController& m_GUI;
    const bool m_bWelcomeExample;
    SMainWindowUi m_Ui;
    std::unique_ptr<CShaderHighlightController> m_pHighlight;
    std::unique_ptr<CShaderEditController> m_pEditController;
    CShaderEditor* m_pEditor = nullptr;
    CFindBarDock* m_pFindBar = nullptr;
    QDockWidget* m_pFindDock = nullptr;
    QDockWidget* m_pLogDock = nullptr;
    QDockWidget* m_pProfileDock = nullptr;
    QDockWidget* m_pASMDock = nullptr;
    CRecentFiles* m_pRecentFiles = nullptr;
    CUpdateChecker* m_pUpdateChecker = nullptr;
    QComboBox* m_pFileTypeSelector = nullptr;
    QLabel* m_pLineLabel = nullptr;
    QLabel* m_pColumnLabel = nullptr;
    QLabel* m_pCompilingLabel = nullptr;
    // Whether the user wants the TXE ASM dock while the compiler writes disassembly; the
    // compiler's answer can come after the stored layout has been applied.
    bool m_bASMWanted = true;
    bool m_bApplyingFlags = false;
    bool m_bPainted = false;
    bool m_bStartupFinished = false;
    bool m_bHoldRecentFiles = false;
    QStringList m_HeldRecentFiles;
};
