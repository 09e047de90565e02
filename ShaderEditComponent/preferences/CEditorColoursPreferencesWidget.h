#pragma once

#include "ShaderEditComponent/highlighting/ShaderHighlightElements.h"

#include <QColor>
#include <QFont>
#include <QWidget>

#include <array>
#include <memory>

class CColourSelectButton;
class CShaderHighlightController;
class CShaderHighlighter;
class CZamPreferences;
class QCheckBox;
class QFontComboBox;
class QGroupBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QSpinBox;
class QTreeWidget;
class QTreeWidgetItem;

// The editor colours page of the preferences: foreground, background, bold and underline of
// each syntax element, grouped by language, and the editor font. A preview shows a sample of
// the selected element's language in the edited colours. Nothing reaches the editor before
// OnSave, which hands every changed element and the font to the highlight controller, whose
// signals make every open panel highlight again at once.
class CEditorColoursPreferencesWidget : public QWidget
{
    Q_OBJECT

public:
    static constexpr unsigned int ElementCount = HighlightElement_Count;

    // The style of one element as the page edits it.
    struct SElementStyle
    {
        QColor Foreground;
        QColor Background;
        bool bBold = false;
        bool bUnderline = false;
    };

    explicit CEditorColoursPreferencesWidget(CShaderHighlightController& Highlight, QWidget* pParent = nullptr);
    ~CEditorColoursPreferencesWidget() override;

    const SElementStyle& GetStyle(unsigned int uiElement) const { return m_Styles.at(uiElement); }
    const QFont& GetFont() const { return m_Font; }
    unsigned int GetSelectedElement() const { return m_uiSelected; }
    void SelectElement(unsigned int uiElement);

signals:
    // Never false: every value this page offers is valid. Sent once, like every page does.
    void EnableOK(bool bEnable);

public slots:
    void OnSave();
    void OnRetranslate();
    void OnDefaults();
    void OnAllDefaults();

private:
    QWidget* BuildElementTree();
    QGroupBox* BuildElementGroup();
    QGroupBox* BuildFontGroup();
    QGroupBox* BuildPreviewGroup();
    void Connect();
    void FillTree();
    void OnCurrentItemChanged(QTreeWidgetItem* pItem);
    void ShowElement();
    void EditStyle(const SElementStyle& Style);
    void PushToPreview(unsigned int uiElement);
    void ShowPreviewFor(unsigned int uiElement);
    void MarkPreviewError();
    void OnFontEdited();

    CShaderHighlightController& m_Highlight;
    std::array<SElementStyle, ElementCount> m_Styles;
    QFont m_Font;
    unsigned int m_uiSelected = 0;
    bool m_bFilling = false;

    // The preview's own scheme on a store in memory, so previewing never writes the file.
    std::unique_ptr<CZamPreferences> m_pPreviewStore;
    CShaderHighlightController* m_pPreviewScheme = nullptr;
    CShaderHighlighter* m_pPreviewHighlighter = nullptr;

    QTreeWidget* m_pTree = nullptr;
    QGroupBox* m_pElementGroup = nullptr;
    QLabel* m_pForegroundLabel = nullptr;
    CColourSelectButton* m_pForeground = nullptr;
    QLabel* m_pBackgroundLabel = nullptr;
    CColourSelectButton* m_pBackground = nullptr;
    QCheckBox* m_pBold = nullptr;
    QCheckBox* m_pUnderline = nullptr;
    QPushButton* m_pDefaults = nullptr;
    QPushButton* m_pAllDefaults = nullptr;
    QGroupBox* m_pFontGroup = nullptr;
    QFontComboBox* m_pFontFamily = nullptr;
    QLabel* m_pFontSizeLabel = nullptr;
    QSpinBox* m_pFontSize = nullptr;
    QGroupBox* m_pPreviewGroup = nullptr;
    QPlainTextEdit* m_pPreview = nullptr;
};
