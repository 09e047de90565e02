#pragma once

#include "IShaderEditorDelegate.h"

#include <QMainWindow>

#include <memory>

class CFindReplace;
class CShaderEditController;
class CShaderEditPanel;
class CShaderEditor;
class CShaderHighlightController;
class QComboBox;
class QLabel;

// A plain window around the editor tabs and the find bar: file and edit menus, line and column read-outs and
// the document-type selector, and the real dialogs behind the editor's questions. It stands
// in for the full main window until that exists.
class CEditorWindow : public QMainWindow, public IShaderEditorDelegate
{
    Q_OBJECT

public:
    explicit CEditorWindow(QWidget* pParent = nullptr);
    ~CEditorWindow() override;

    bool OpenFile(const QString& Path);

    QMessageBox::StandardButton AskSaveChanges(const QString& FileName) override;
    bool GetSaveFileName(CZamTString& FileName, EShaderDocType eType) override;
    int ShowPrintDialog(QPrinter* pPrinter, bool bHasSelection) override;
    bool GetOpenFileName(CZamTString& FileName) override;
    void ReportIOError(const CZamTString& Path, const CZamTString& Error) override;

protected:
    void closeEvent(QCloseEvent* pEvent) override;

private slots:
    void OnEditorStateChanged(int iState);
    void OnPanelChanged(const CShaderEditPanel* pPanel);
    void OnFileTypeSelectorChanged(int iRow);

private:
    void BuildMenus();
    void BuildStatusBar();
    QString FileFilter(EShaderDocType eType, QString* pSelected) const;

    std::unique_ptr<CShaderHighlightController> m_pHighlight;
    std::unique_ptr<CShaderEditController> m_pController;
    CShaderEditor* m_pEditor;
    CFindReplace* m_pFindReplace;
    QComboBox* m_pFileTypeSelector = nullptr;
    QList<QAction*> m_DocumentActions;
    QString m_LastDirectory;
};
