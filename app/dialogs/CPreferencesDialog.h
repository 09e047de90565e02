#pragma once

#include <QDialog>

class CCompilerPreferencesWidget;
class CEditorColoursPreferencesWidget;
class CEditorPreferencesWidget;
class CGUIController;
class CShaderEditController;
class CShaderHighlightController;
class QCheckBox;
class QDialogButtonBox;
class QTabWidget;

// The preferences window: a General page of its own and the compiler, editor settings and
// editor colours pages. OK has every page store its settings; OK is usable only while no
// page reports invalid input; Cancel stores nothing.
class CPreferencesDialog : public QDialog
{
    Q_OBJECT

public:
    enum ETab
    {
        Tab_General = 0,
        Tab_Compiler = 1,
        Tab_EditorSettings = 2,
        Tab_EditorColours = 3,
    };

    CPreferencesDialog(QWidget* pParent, CGUIController& GUI, CShaderEditController& Edit,
                       CShaderHighlightController& Highlight);

    CCompilerPreferencesWidget* GetCompilerPage() const { return m_pCompilerPage; }
    CEditorPreferencesWidget* GetEditorPage() const { return m_pEditorPage; }
    CEditorColoursPreferencesWidget* GetColoursPage() const { return m_pColoursPage; }

signals:
    void CompileInBackgroundChanged(bool bCompile);
    void CloseWithMiddleMouseChanged(bool bClose);
    void OpenPreviousTabsChanged(bool bOpen);
    void Save();
    void Retranslate();

public slots:
    void OnRetranslate();
    void OnSave();

private:
    QWidget* BuildGeneralTab();
    QWidget* TabHolding(const char* pName, QWidget* pPage);
    void Connect();
    void TrackEnableOK(int iPage, bool bEnable);

    CGUIController& m_GUI;
    CShaderEditController& m_Edit;
    // Which pages report valid input, one bit per page.
    unsigned int m_uiInvalidPages = 0;

    QTabWidget* m_pTabs = nullptr;
    QCheckBox* m_pCloseTabsMiddleMouse = nullptr;
    QCheckBox* m_pCompileInBackground = nullptr;
    QCheckBox* m_pSaveSession = nullptr;
    CCompilerPreferencesWidget* m_pCompilerPage = nullptr;
    CEditorPreferencesWidget* m_pEditorPage = nullptr;
    CEditorColoursPreferencesWidget* m_pColoursPage = nullptr;
    QDialogButtonBox* m_pButtons = nullptr;
};
