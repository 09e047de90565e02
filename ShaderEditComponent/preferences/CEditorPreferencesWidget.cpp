#include "CEditorPreferencesWidget.h"

#include "CColourSelectButton_p.h"
#include "PreferenceText_p.h"
#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/compile/model/UIString.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace
{
constexpr unsigned int s_uiPageMask =
    Settings::EditorSetting_TreatTabAsSpace | Settings::EditorSetting_TabSpaceSize
    | Settings::EditorSetting_PerformCursorMatch | Settings::EditorSetting_CursorMatchColour
    | Settings::EditorSetting_HighlightFindResults | Settings::EditorSetting_FindResultColour;

template <typename TWidget> TWidget* Named(const char* pName, QWidget* pParent)
{
    TWidget* pWidget = new TWidget(pParent);
    pWidget->setObjectName(QLatin1String(pName));
    return pWidget;
}
} // namespace

CEditorPreferencesWidget::CEditorPreferencesWidget(CShaderEditController& Edit, QWidget* pParent)
    : QWidget(pParent)
    , m_Edit(Edit)
{
    setObjectName(QStringLiteral("EditorPreferencesWidget"));
    // Invalid until the settings are loaded.
    m_Editor.CursorMatchColour = QColor();
    m_Editor.FindResultColour = QColor();
    QVBoxLayout* pLayout = new QVBoxLayout(this);
    pLayout->addWidget(BuildTabGroup());
    m_pCursorGroup =
        BuildHighlightGroup("CursorMatchGroupbox", "CursorMatchCheckbox", "CursorMatchBGColourLabel",
                            "CursorMatchColButton", &m_pCursorMatch, &m_pCursorColourLabel, &m_pCursorColour);
    pLayout->addWidget(m_pCursorGroup);
    m_pFindGroup = BuildHighlightGroup("FindResultGroupbox", "FindResultCheckbox", "FindResultBGColourLabel",
                                       "FindResultColButton", &m_pFindResults, &m_pFindColourLabel, &m_pFindColour);
    pLayout->addWidget(m_pFindGroup);
    pLayout->addStretch();
    Connect();
    OnRetranslate();
    LoadSettings();
}

QGroupBox* CEditorPreferencesWidget::BuildTabGroup()
{
    m_pTabGroup = Named<QGroupBox>("TabGroupbox", this);
    m_pTabAsSpace = Named<QCheckBox>("TabAsSpaceCheckbox", m_pTabGroup);
    m_pTabSizeLabel = Named<QLabel>("TabSizeLabel", m_pTabGroup);
    m_pTabSize = Named<QLineEdit>("TabSize", m_pTabGroup);
    m_pTabSize->setMaximumWidth(80);
    m_pTabSizeProblem = Named<QLabel>("TabSizeProblemLabel", m_pTabGroup);
    m_pTabSizeProblem->setStyleSheet(QStringLiteral("color: #c00000"));
    m_pTabSizeProblem->hide();

    QFormLayout* pForm = new QFormLayout(m_pTabGroup);
    pForm->addRow(m_pTabAsSpace);
    pForm->addRow(m_pTabSizeLabel, m_pTabSize);
    pForm->addRow(m_pTabSizeProblem);
    return m_pTabGroup;
}

QGroupBox* CEditorPreferencesWidget::BuildHighlightGroup(const char* pGroup, const char* pCheckbox, const char* pLabel,
                                                         const char* pButton, QCheckBox** ppCheckbox, QLabel** ppLabel,
                                                         CColourSelectButton** ppButton)
{
    QGroupBox* pBox = Named<QGroupBox>(pGroup, this);
    *ppCheckbox = Named<QCheckBox>(pCheckbox, pBox);
    *ppLabel = Named<QLabel>(pLabel, pBox);
    *ppButton = Named<CColourSelectButton>(pButton, pBox);
    QFormLayout* pForm = new QFormLayout(pBox);
    pForm->addRow(*ppCheckbox);
    pForm->addRow(*ppLabel, *ppButton);
    // The colour only matters while its highlight is on.
    connect(*ppCheckbox, &QCheckBox::toggled, *ppLabel, &QWidget::setEnabled);
    connect(*ppCheckbox, &QCheckBox::toggled, *ppButton, &QWidget::setEnabled);
    return pBox;
}

void CEditorPreferencesWidget::Connect()
{
    connect(this, &CEditorPreferencesWidget::TreatTabsAsSpacesChanged, m_pTabAsSpace, &QCheckBox::setChecked);
    connect(this, &CEditorPreferencesWidget::TreatTabsAsSpacesChanged, this,
            &CEditorPreferencesWidget::OnTreatTabsAsSpacesChanged);
    connect(m_pTabAsSpace, &QCheckBox::toggled, this, &CEditorPreferencesWidget::OnTreatTabsAsSpacesChanged);
    connect(this, &CEditorPreferencesWidget::TabSpaceSizeChanged, m_pTabSize, &QLineEdit::setText);
    connect(this, &CEditorPreferencesWidget::MatchCursorChanged, m_pCursorMatch, &QCheckBox::setChecked);
    connect(this, &CEditorPreferencesWidget::CusorMatchColChanged, m_pCursorColour, &CColourSelectButton::OnSetColour);
    connect(this, &CEditorPreferencesWidget::HighlightFindResultsChanged, m_pFindResults, &QCheckBox::setChecked);
    connect(this, &CEditorPreferencesWidget::FindResultColChanged, m_pFindColour, &CColourSelectButton::OnSetColour);
    connect(m_pTabSize, &QLineEdit::textChanged, this, &CEditorPreferencesWidget::OnTabSizeEdited);
}

void CEditorPreferencesWidget::LoadSettings()
{
    m_Editor = m_Edit.GetEditorSettings();
    emit TreatTabsAsSpacesChanged(m_Editor.bTreatTabAsSpace);
    emit TabSpaceSizeChanged(QString::number(m_Editor.iTabSpaceSize));
    emit MatchCursorChanged(m_Editor.bPerformCursorMatch);
    emit CusorMatchColChanged(m_Editor.CursorMatchColour);
    emit HighlightFindResultsChanged(m_Editor.bHighlightFindResults);
    emit FindResultColChanged(m_Editor.FindResultColour);
    // The check boxes may have kept their state, so toggled did not set these.
    m_pCursorColourLabel->setEnabled(m_Editor.bPerformCursorMatch);
    m_pCursorColour->setEnabled(m_Editor.bPerformCursorMatch);
    m_pFindColourLabel->setEnabled(m_Editor.bHighlightFindResults);
    m_pFindColour->setEnabled(m_Editor.bHighlightFindResults);
}

int CEditorPreferencesWidget::ReadTabSize(const QString& Text)
{
    bool bOk = false;
    const int iSize = Text.trimmed().toInt(&bOk, 10);
    return bOk ? iSize : 0;
}

void CEditorPreferencesWidget::OnTabSizeEdited(const QString& Text)
{
    const int iSize = ReadTabSize(Text);
    m_bTabSizeValid = iSize >= iMinTabSize && iSize <= iMaxTabSize;
    m_pTabSizeProblem->setVisible(!m_bTabSizeValid);
    OnTreatTabsAsSpacesChanged(m_pTabAsSpace->isChecked());
    emit EnableOK(m_bTabSizeValid);
}

void CEditorPreferencesWidget::OnTreatTabsAsSpacesChanged(bool bSpaces)
{
    // The size is only used for tabs typed as spaces; a size that needs fixing stays editable.
    const bool bEditable = bSpaces || !m_bTabSizeValid;
    m_pTabSizeLabel->setEnabled(bEditable);
    m_pTabSize->setEnabled(bEditable);
}

void CEditorPreferencesWidget::OnSave()
{
    m_Editor = m_Edit.GetEditorSettings();
    m_Editor.bTreatTabAsSpace = m_pTabAsSpace->checkState() == Qt::Checked;
    m_Editor.iTabSpaceSize = ReadTabSize(m_pTabSize->text());
    m_Editor.bPerformCursorMatch = m_pCursorMatch->checkState() == Qt::Checked;
    m_Editor.bHighlightFindResults = m_pFindResults->checkState() == Qt::Checked;
    m_Editor.CursorMatchColour = m_pCursorColour->GetColour();
    m_Editor.FindResultColour = m_pFindColour->GetColour();
    m_Edit.SetEditorSettings(m_Editor, s_uiPageMask);
}

void CEditorPreferencesWidget::OnRetranslate()
{
    m_pTabGroup->setTitle(UIString(UIS_PrefTab));
    m_pTabAsSpace->setText(UIString(UIS_PrefTreatTabsAsSpaces));
    m_pTabSizeLabel->setText(UIString(UIS_PrefTabSize));
    m_pTabSizeProblem->setText(PreferenceText(PrefText_TabSizeInvalid));
    m_pCursorGroup->setTitle(UIString(UIS_PrefCursorMatching));
    m_pCursorMatch->setText(UIString(UIS_PrefEnableCursorMatching));
    m_pCursorColourLabel->setText(UIString(UIS_PrefBackgroundColour));
    m_pFindGroup->setTitle(UIString(UIS_PrefFindResults));
    m_pFindResults->setText(UIString(UIS_PrefHighlightFindResults));
    m_pFindColourLabel->setText(UIString(UIS_PrefBackgroundColour));
}
