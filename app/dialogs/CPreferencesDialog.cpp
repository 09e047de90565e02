#include "CPreferencesDialog.h"

#include "app/controller/ApplicationText.h"
#include "app/controller/CGUIController.h"
#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/preferences/CCompilerPreferencesWidget.h"
#include "ShaderEditComponent/preferences/CEditorColoursPreferencesWidget.h"
#include "ShaderEditComponent/preferences/CEditorPreferencesWidget.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

CPreferencesDialog::CPreferencesDialog(QWidget* pParent, CGUIController& GUI, CShaderEditController& Edit,
                                       CShaderHighlightController& Highlight)
    : QDialog(pParent)
    , m_GUI(GUI)
    , m_Edit(Edit)
{
    setObjectName(QStringLiteral("PreferencesDialog"));
    setModal(true);
    m_pTabs = new QTabWidget(this);
    m_pTabs->setObjectName(QStringLiteral("preferencesTabWidget"));
    m_pButtons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_pButtons->setObjectName(QStringLiteral("buttonBox"));
    m_pTabs->addTab(BuildGeneralTab(), QString());
    m_pCompilerPage = new CCompilerPreferencesWidget(Edit);
    m_pEditorPage = new CEditorPreferencesWidget(Edit);
    m_pColoursPage = new CEditorColoursPreferencesWidget(Highlight);
    m_pTabs->addTab(TabHolding("tabCompiler", m_pCompilerPage), QString());
    m_pTabs->addTab(TabHolding("tabEditorSettings", m_pEditorPage), QString());
    m_pTabs->addTab(TabHolding("tabEditorCols", m_pColoursPage), QString());
    QVBoxLayout* pLayout = new QVBoxLayout(this);
    pLayout->addWidget(m_pTabs);
    pLayout->addWidget(m_pButtons);
    Connect();
    // Room for the colours page's preview.
    resize(820, 620);

    // The pages judged their input while they were built, before anyone listened.
    TrackEnableOK(Tab_Compiler, m_pCompilerPage->IsInputValid());
    TrackEnableOK(Tab_EditorSettings, m_pEditorPage->IsInputValid());
    emit CompileInBackgroundChanged(m_Edit.GetCompilerSettings().bAutoCompile);
    emit CloseWithMiddleMouseChanged(m_Edit.GetEditorSettings().bCloseTabsMiddleMouse);
    emit OpenPreviousTabsChanged(m_GUI.GetGeneralSettings().bOpenLastTabs);
}

QWidget* CPreferencesDialog::BuildGeneralTab()
{
    QWidget* pTab = new QWidget;
    pTab->setObjectName(QStringLiteral("tabGeneral"));
    m_pCloseTabsMiddleMouse = new QCheckBox(pTab);
    m_pCloseTabsMiddleMouse->setObjectName(QStringLiteral("closeTabsMiddleMouseCheckbox"));
    m_pCompileInBackground = new QCheckBox(pTab);
    m_pCompileInBackground->setObjectName(QStringLiteral("compileInBackgroundCheckbox"));
    m_pSaveSession = new QCheckBox(pTab);
    m_pSaveSession->setObjectName(QStringLiteral("saveSessionCheckbox"));
    QVBoxLayout* pLayout = new QVBoxLayout(pTab);
    pLayout->addWidget(m_pCloseTabsMiddleMouse);
    pLayout->addWidget(m_pCompileInBackground);
    pLayout->addWidget(m_pSaveSession);
    pLayout->addStretch();
    return pTab;
}

QWidget* CPreferencesDialog::TabHolding(const char* pName, QWidget* pPage)
{
    QWidget* pTab = new QWidget;
    pTab->setObjectName(QLatin1String(pName));
    QVBoxLayout* pLayout = new QVBoxLayout(pTab);
    pLayout->setContentsMargins(0, 0, 0, 0);
    pLayout->addWidget(pPage);
    return pTab;
}

void CPreferencesDialog::Connect()
{
    connect(this, &CPreferencesDialog::Retranslate, m_pCompilerPage, &CCompilerPreferencesWidget::OnRetranslate);
    connect(this, &CPreferencesDialog::Retranslate, m_pEditorPage, &CEditorPreferencesWidget::OnRetranslate);
    connect(this, &CPreferencesDialog::Retranslate, m_pColoursPage, &CEditorColoursPreferencesWidget::OnRetranslate);
    connect(this, &CPreferencesDialog::CompileInBackgroundChanged, m_pCompileInBackground, &QCheckBox::setChecked);
    connect(this, &CPreferencesDialog::CloseWithMiddleMouseChanged, m_pCloseTabsMiddleMouse, &QCheckBox::setChecked);
    connect(this, &CPreferencesDialog::OpenPreviousTabsChanged, m_pSaveSession, &QCheckBox::setChecked);

    // OK: the General page stores first, then each page, then the dialog closes.
    connect(m_pButtons, &QDialogButtonBox::accepted, this, &CPreferencesDialog::OnSave);
    connect(this, &CPreferencesDialog::Save, m_pCompilerPage, &CCompilerPreferencesWidget::OnSave);
    connect(this, &CPreferencesDialog::Save, m_pEditorPage, &CEditorPreferencesWidget::OnSave);
    connect(this, &CPreferencesDialog::Save, m_pColoursPage, &CEditorColoursPreferencesWidget::OnSave);
    connect(m_pButtons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_pButtons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    // One page's "fine" must not enable OK while another page's input is invalid.
    connect(m_pCompilerPage, &CCompilerPreferencesWidget::EnableOK, this,
            [this](bool bEnable) { TrackEnableOK(Tab_Compiler, bEnable); });
    connect(m_pEditorPage, &CEditorPreferencesWidget::EnableOK, this,
            [this](bool bEnable) { TrackEnableOK(Tab_EditorSettings, bEnable); });
    connect(m_pColoursPage, &CEditorColoursPreferencesWidget::EnableOK, this,
            [this](bool bEnable) { TrackEnableOK(Tab_EditorColours, bEnable); });
}

void CPreferencesDialog::TrackEnableOK(int iPage, bool bEnable)
{
    const unsigned int uiBit = 1u << iPage;
    m_uiInvalidPages = bEnable ? (m_uiInvalidPages & ~uiBit) : (m_uiInvalidPages | uiBit);
    m_pButtons->button(QDialogButtonBox::Ok)->setEnabled(m_uiInvalidPages == 0);
}

void CPreferencesDialog::OnRetranslate()
{
    setWindowTitle(GetApplicationText(AppText_Preferences));
    m_pCloseTabsMiddleMouse->setText(GetApplicationText(AppText_CloseTabsMiddleMouse));
    m_pCompileInBackground->setText(GetApplicationText(AppText_CompileInBackground));
    m_pSaveSession->setText(GetApplicationText(AppText_SaveSession));
    m_pTabs->setTabText(Tab_General, GetApplicationText(AppText_General));
    m_pTabs->setTabText(Tab_Compiler, GetApplicationText(AppText_CompilerSettings));
    m_pTabs->setTabText(Tab_EditorSettings, GetApplicationText(AppText_EditorSettings));
    m_pTabs->setTabText(Tab_EditorColours, GetApplicationText(AppText_EditorColours));
    m_pButtons->button(QDialogButtonBox::Ok)->setText(GetApplicationText(AppText_OK));
    m_pButtons->button(QDialogButtonBox::Cancel)->setText(GetApplicationText(AppText_Cancel));
    emit Retranslate();
}

void CPreferencesDialog::OnSave()
{
    Settings::SCompiler Compiler = m_Edit.GetCompilerSettings();
    Compiler.bAutoCompile = m_pCompileInBackground->checkState() == Qt::Checked;
    m_Edit.SetCompilerSettings(Compiler, Settings::CompilerSetting_AutoCompile);

    Settings::SEditor Editor = m_Edit.GetEditorSettings();
    Editor.bCloseTabsMiddleMouse = m_pCloseTabsMiddleMouse->checkState() == Qt::Checked;
    m_Edit.SetEditorSettings(Editor, Settings::EditorSetting_CloseTabsMiddleMouse);

    Settings::SGeneral General = m_GUI.GetGeneralSettings();
    General.bOpenLastTabs = m_pSaveSession->checkState() == Qt::Checked;
    m_GUI.SetGeneralSettings(General, Settings::GeneralSetting_OpenLastTabs);
    emit Save();
}
