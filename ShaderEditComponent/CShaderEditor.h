#pragma once

#include "DocumentFile.h"
#include "IFindReplaceDelagte.h"
#include "ShaderEditComponent/compile/model/CompileOptions.h"
#include "ShaderEditComponent/compile/model/Settings.h"
#include "ShaderEditComponent/compile/model/ShaderDocType.h"
#include "Tools/ZamTArray.h"
#include "Tools/ZamTHash.h"
#include "Tools/ZamTString.h"

#include <QSet>
#include <QTimer>
#include <QWidget>

class CDocumentWatcher;
class CShaderEditController;
class CShaderEditPanel;
class CShaderHighlightController;
class IShaderEditorDelegate;
class QTabWidget;
class QTextCursor;

// The editing area: one tab per open document, each holding a CShaderEditPanel. Creates,
// opens, saves and closes documents, tracks line and column, marks modified tabs,
// highlights the other occurrences of the word under the cursor, and forwards the window's
// edit commands to the current panel. Questions to the user go through the delegate.
class CShaderEditor : public QWidget, public IFindReplaceDelagte
{
    Q_OBJECT

public:
    // pHighlight must outlive the editor.
    explicit CShaderEditor(const CShaderHighlightController* pHighlight, QWidget* pParent = nullptr);
    ~CShaderEditor() override;

    // Not owned; null makes every question answer "cancel".
    void SetDelegate(IShaderEditorDelegate* pDelegate) { m_pDelegate = pDelegate; }
    // Takes the controller's settings and wires the compile requests, results and state
    // changes of the editor and all its panels to it. Without one the default settings apply.
    void SetController(CShaderEditController* pController);
    int GetTabCount() const;
    CShaderEditPanel* GetPanel(int iIndex) const;
    CShaderEditPanel* GetCurrentPanel() const;
    // The file names of all open tabs, in tab order (empty for never-saved documents).
    const CZamTArray<CZamTString>& GetOpenFilenames();
    int IndexOfPanel(const CShaderEditPanel* pPanel) const;
    // The tab's title without the modified marker.
    QString DocumentTitle(int iIndex) const;
    // A document brought back from a backup: a modified tab with the title it had, the text
    // and the file it belongs to, which is not touched until the user saves; the file is
    // watched for changes by other programs like an opened one.
    CShaderEditPanel* AddRestoredDocument(const QString& Title, const QString& Text, const QString& Path,
                                          EShaderDocType eType, const SDocumentFormat& Format);

    // IFindReplaceDelagte
    void ShowFindResults(const QList<QTextEdit::ExtraSelection>& lSelections) override;
    void ClearFindResults() override;
    QPlainTextEdit* GetTextEdit() override;
    QTextCharFormat GetFindResultFormat() const override;
    QString GetSelectedText() const override;

signals:
    void LineChanged(int iLine);
    void ColChanged(int iColumn);
    void StateChanged(int iState);
    void FileOpened(const QString& Path);
    void PanelChanged(const CZamTHash& PanelID);
    void PanelChanged(const CShaderEditPanel* pPanel);
    // Every panel's background-compile requests, relayed for the compile controller.
    void RecompileContents(const CZamTHash& PanelID, const QString& Contents, EShaderDocType eType,
                           ECompileInvocationType eInvocation);
    void CancelCompile(const CZamTHash& PanelID);
    // A tab was opened, and a tab was closed (saved, unmodified or discarded); the panel is
    // still alive when PanelClosed arrives.
    void PanelAdded(CShaderEditPanel* pPanel);
    void PanelClosed(CShaderEditPanel* pPanel);

public slots:
    void OnNewFile(EShaderDocType eType);
    bool OnOpenFile();
    bool OnOpenFile(const QString& Path);
    // Opens the files as tabs in their order, the last readable one in front. The tabs behind
    // it have their titles, paths and places at once but read their files only when first
    // shown, when anything needs their text, or at OnLoadTabsBehind.
    void OnOpenFilesBehind(const QStringList& Paths);
    // Reads the files of the tabs opened behind, one per pass of the event loop.
    void OnLoadTabsBehind();
    void OnSaveCurrentTab();
    void OnSaveCurrentTabAs();
    bool OnSaveAllTabs();
    void OnCloseCurrentTab();
    bool OnCloseAllTabs();
    void OnUndo();
    void OnRedo();
    void OnCut();
    void OnCopy();
    void OnPaste();
    void OnDelete();
    void OnSelectAll();
    void OnPrint();
    // Puts the current panel's cursor at the start of the 1-based line and gives it the focus.
    void OnGotoLine(int iLine);
    void OnCommentSelection();
    void OnUncommentSelection();
    // Removes one indentation level from the selected lines.
    void OnIndentSelection();
    // Adds one indentation level to the selected lines. The name reads the other way round;
    // the window's actions and the panel's Tab key are wired by these names.
    void OnOutdentSelection();
    void OnFileTypeChanged(EShaderDocType eType);
    // Settings and compile results from the compile controller; each panel takes only the
    // cycle counts of its own PanelID.
    void OnEditorSettingsChanged(const Settings::SEditor& Settings);
    void OnCompilerSettingsChanged(const Settings::SCompiler& Settings, unsigned int uiChangedMask);
    void OnCompileCycleCountChanged(const CZamTHash& PanelID, const CZamTArray<int>& CycleCounts);

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private slots:
    void OnCloseTabRequest(int iIndex);
    void OnPanelContentChanged(bool bModified);
    void OnPanelCursorPositionChanged();
    void OnPanelCursorPositionChanged(const QTextCursor& Cursor);
    void OnPanelChanged(int iIndex);
    void OnPanelFilenameChanged(const QString& FileName);
    void OnHighlightCursorMatches();
    void OnFileChangedOnDisk(const QString& Path, const QByteArray& Bytes);
    void OnFileDeletedOnDisk(const QString& Path);

private:
    // A panel in front is made the current tab and gets the focus; one behind reads its file
    // when its text is first needed (LoadTabBehind).
    CShaderEditPanel* AddPanel(const QString& Title, const QString* pText, const QString& Path, EShaderDocType eType,
                               bool bInFront = true);
    void AddTabBehind(const QString& FullPath);
    // The text of a tab opened behind, read when it is first needed.
    void LoadTabBehind(CShaderEditPanel* pPanel);
    void TakeFile(CShaderEditPanel* pPanel, const QString& FullPath, const QByteArray& Bytes,
                  const SDocumentFormat& Format);
    void ConnectPanel(CShaderEditPanel* pPanel);
    bool SaveTab(int iIndex);
    bool SaveTabAs(int iIndex);
    bool WritePanel(CShaderEditPanel* pPanel, const QString& Path);
    bool CloseTab(int iIndex);
    int IndexOfFile(const QString& Path) const;
    QString DocumentName(int iIndex) const;
    // Where the panel's document finds the files it names (an effect's FILE shaders, a kernel's
    // headers): its file's folder; for a never-saved document the folder last opened from or
    // saved to; empty for an unknown panel or before any file was opened or saved.
    QString SourceFolderOf(const CZamTHash& PanelID) const;
    void SetTabTitle(int iIndex, const QString& Title);

    IShaderEditorDelegate* m_pDelegate = nullptr;
    QTimer m_CursorMatchTimer;
    QTabWidget* m_pTabWidget;
    CZamTArray<CZamTString> m_OpenFilenames;
    const CShaderHighlightController* m_pHighlight;
    Settings::SEditor m_EditorSettings;
    Settings::SCompiler m_CompilerSettings;
    QString m_LastFolder; // of the last file opened or saved
    CDocumentWatcher* m_pWatcher; // the open files, for changes made by other programs
    bool m_bAddingBehind = false;
    // Tabs whose file could not be read when they needed it: never saved over the file.
    QSet<const CShaderEditPanel*> m_Unread;
};
