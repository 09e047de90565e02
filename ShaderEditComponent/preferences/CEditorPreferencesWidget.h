#pragma once

#include "ShaderEditComponent/compile/model/Settings.h"

#include <QColor>
#include <QWidget>

class CColourSelectButton;
class CShaderEditController;
class QCheckBox;
class QGroupBox;
class QLabel;
class QLineEdit;

// The editor settings page of the preferences: tabs as spaces and the tab size, matching of
// the word under the cursor and highlighting of find results, each with its colour.
class CEditorPreferencesWidget : public QWidget
{
    Q_OBJECT

public:
    static constexpr int iMinTabSize = 1;
    static constexpr int iMaxTabSize = 64;

    explicit CEditorPreferencesWidget(CShaderEditController& Edit, QWidget* pParent = nullptr);

    // The tab size the text stands for: a base-10 integer, blanks around it allowed; 0 for
    // anything else (the page then reports the text as invalid).
    static int ReadTabSize(const QString& Text);
    // What the last EnableOK said.
    bool IsInputValid() const { return m_bTabSizeValid; }

signals:
    void TreatTabsAsSpacesChanged(bool bSpaces);
    void TabSpaceSizeChanged(const QString& Size);
    void MatchCursorChanged(bool bMatch);
    void CusorMatchColChanged(const QColor& Colour);
    void HighlightFindResultsChanged(bool bHighlight);
    void FindResultColChanged(const QColor& Colour);
    void EnableOK(bool bEnable);

public slots:
    void OnSave();
    void OnRetranslate();
    void OnTreatTabsAsSpacesChanged(bool bSpaces);

private:
    QGroupBox* BuildTabGroup();
    QGroupBox* BuildHighlightGroup(const char* pGroup, const char* pCheckbox, const char* pLabel, const char* pButton,
                                   QCheckBox** ppCheckbox, QLabel** ppLabel, CColourSelectButton** ppButton);
    void Connect();
    void LoadSettings();
    void OnTabSizeEdited(const QString& Text);

    CShaderEditController& m_Edit;
    Settings::SEditor m_Editor;
    bool m_bTabSizeValid = true;

    QGroupBox* m_pTabGroup = nullptr;
    QCheckBox* m_pTabAsSpace = nullptr;
    QLabel* m_pTabSizeLabel = nullptr;
    QLineEdit* m_pTabSize = nullptr;
    QLabel* m_pTabSizeProblem = nullptr;
    QGroupBox* m_pCursorGroup = nullptr;
    QCheckBox* m_pCursorMatch = nullptr;
    QLabel* m_pCursorColourLabel = nullptr;
    CColourSelectButton* m_pCursorColour = nullptr;
    QGroupBox* m_pFindGroup = nullptr;
    QCheckBox* m_pFindResults = nullptr;
    QLabel* m_pFindColourLabel = nullptr;
    CColourSelectButton* m_pFindColour = nullptr;
};
