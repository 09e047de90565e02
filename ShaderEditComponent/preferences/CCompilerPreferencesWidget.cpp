#include "CCompilerPreferencesWidget.h"

#include "CColourSelectButton_p.h"
#include "PreferenceText_p.h"
#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/compile/model/CompileOptions.h"
#include "ShaderEditComponent/compile/model/UIString.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/compile/process/CompilerLocator.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>

namespace
{
// Typing in the path field asks the compiler once the user pauses.
constexpr int s_iTypingPauseMs = 300;

constexpr unsigned int s_uiPageMask =
    Settings::CompilerSetting_CustomCompilerPath | Settings::CompilerSetting_TempDirectory
    | Settings::CompilerSetting_WarningFormat | Settings::CompilerSetting_ErrorFormat
    | Settings::CompilerSetting_ShouldFormat | Settings::CompilerSetting_CompilerSelection
    | Settings::CompilerSetting_IncludeFolders;

QLabel* NamedLabel(const char* pName, QWidget* pParent)
{
    QLabel* pLabel = new QLabel(pParent);
    pLabel->setObjectName(QLatin1String(pName));
    return pLabel;
}

// A label for a value the compiler reported: selectable, and wrapped when long.
QLabel* ValueLabel(const char* pName, QWidget* pParent)
{
    QLabel* pLabel = NamedLabel(pName, pParent);
    pLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    pLabel->setWordWrap(true);
    return pLabel;
}

QWidget* PageWith(const char* pName, QLabel* pText)
{
    QWidget* pPage = new QWidget;
    pPage->setObjectName(QLatin1String(pName));
    QVBoxLayout* pLayout = new QVBoxLayout(pPage);
    pText->setWordWrap(true);
    pLayout->addWidget(pText);
    pLayout->addStretch();
    return pPage;
}
} // namespace

CCompilerPreferencesWidget::CCompilerPreferencesWidget(CShaderEditController& Edit, QWidget* pParent)
    : QWidget(pParent)
    , m_Edit(Edit)
    , m_pDetector(new CCompilerDetector(DefaultDetectionTimeoutMs, this))
    , m_pTypingPause(new QTimer(this))
{
    setObjectName(QStringLiteral("CompilerPreferencesWidget"));
    m_pTypingPause->setSingleShot(true);
    m_pTypingPause->setInterval(s_iTypingPauseMs);
    QVBoxLayout* pLayout = new QVBoxLayout(this);
    pLayout->addLayout(BuildCompilerRows());
    pLayout->addWidget(BuildDetailsGroup());
    pLayout->addWidget(BuildIncludeGroup());
    pLayout->addWidget(BuildOutputGroup());
    pLayout->addStretch();
    Connect();
    OnRetranslate();
    LoadSettings();
}

CCompilerPreferencesWidget::~CCompilerPreferencesWidget() = default;

void CCompilerPreferencesWidget::SetDetectionTimeout(int iTimeoutMs)
{
    m_pDetector->SetTimeout(iTimeoutMs);
}

bool CCompilerPreferencesWidget::IsCheckingCompiler() const
{
    return m_pDetector->IsBusy() || m_pTypingPause->isActive();
}

QGridLayout* CCompilerPreferencesWidget::BuildCompilerRows()
{
    QGridLayout* pGrid = new QGridLayout;
    m_pCompilerLabel = NamedLabel("CompilerLabel", this);
    m_pCompilerCombo = new QComboBox(this);
    m_pCompilerCombo->setObjectName(QStringLiteral("CompilerCombobox"));
    for (int i = 0; i < GetCompilerTargetCount(); ++i)
        m_pCompilerCombo->addItem(GetCompilerTarget(i).DisplayName, i);
    m_pCompilerCombo->addItem(QString(), CustomCompilerSelection);
    m_pCompilerCombo->setCurrentIndex(-1);
    m_pPathLabel = NamedLabel("GLSLESPathLabel", this);
    m_pPath = new QLineEdit(this);
    m_pPath->setObjectName(QStringLiteral("GLSLESPath"));
    m_pBrowsePath = new QPushButton(this);
    m_pBrowsePath->setObjectName(QStringLiteral("BrowseGLSLES"));
    m_pTempLabel = NamedLabel("TempFilesLabel", this);
    m_pTempPath = new QLineEdit(this);
    m_pTempPath->setObjectName(QStringLiteral("TempPath"));
    m_pBrowseTemp = new QPushButton(this);
    m_pBrowseTemp->setObjectName(QStringLiteral("BrowseTemp"));
    m_pTempProblem = NamedLabel("TempPathProblemLabel", this);
    m_pTempProblem->setStyleSheet(QStringLiteral("color: #c00000"));
    m_pTempProblem->setWordWrap(true);
    m_pTempProblem->hide();

    pGrid->addWidget(m_pCompilerLabel, 0, 0);
    pGrid->addWidget(m_pCompilerCombo, 0, 1, 1, 2);
    pGrid->addWidget(m_pPathLabel, 1, 0);
    pGrid->addWidget(m_pPath, 1, 1);
    pGrid->addWidget(m_pBrowsePath, 1, 2);
    pGrid->addWidget(m_pTempLabel, 2, 0);
    pGrid->addWidget(m_pTempPath, 2, 1);
    pGrid->addWidget(m_pBrowseTemp, 2, 2);
    pGrid->addWidget(m_pTempProblem, 3, 1, 1, 2);
    pGrid->setColumnStretch(1, 1);
    return pGrid;
}

QGroupBox* CCompilerPreferencesWidget::BuildIncludeGroup()
{
    m_pIncludeGroup = new QGroupBox(this);
    m_pIncludeGroup->setObjectName(QStringLiteral("IncludeFoldersGroup"));
    m_pIncludeHint = NamedLabel("IncludeFoldersHint", m_pIncludeGroup);
    m_pIncludeHint->setWordWrap(true);
    m_pIncludeList = new QListWidget(m_pIncludeGroup);
    m_pIncludeList->setObjectName(QStringLiteral("IncludeFolderList"));
    m_pIncludeList->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_pIncludeList->setDragDropMode(QAbstractItemView::InternalMove);
    m_pIncludeList->setMaximumHeight(fontMetrics().height() * 6);
    m_pAddInclude = new QPushButton(m_pIncludeGroup);
    m_pAddInclude->setObjectName(QStringLiteral("AddIncludeFolder"));
    m_pRemoveInclude = new QPushButton(m_pIncludeGroup);
    m_pRemoveInclude->setObjectName(QStringLiteral("RemoveIncludeFolder"));
    m_pRemoveInclude->setEnabled(false);

    QVBoxLayout* pButtons = new QVBoxLayout;
    pButtons->addWidget(m_pAddInclude);
    pButtons->addWidget(m_pRemoveInclude);
    pButtons->addStretch();
    QGridLayout* pGrid = new QGridLayout(m_pIncludeGroup);
    pGrid->addWidget(m_pIncludeHint, 0, 0, 1, 2);
    pGrid->addWidget(m_pIncludeList, 1, 0);
    pGrid->addLayout(pButtons, 1, 1);
    connect(m_pAddInclude, &QPushButton::clicked, this, &CCompilerPreferencesWidget::OnAddIncludeFolder);
    connect(m_pRemoveInclude, &QPushButton::clicked, this, [this] { qDeleteAll(m_pIncludeList->selectedItems()); });
    connect(m_pIncludeList, &QListWidget::itemSelectionChanged, this,
            [this] { m_pRemoveInclude->setEnabled(!m_pIncludeList->selectedItems().isEmpty()); });
    return m_pIncludeGroup;
}

void CCompilerPreferencesWidget::OnAddIncludeFolder()
{
    const QString Chosen = QFileDialog::getExistingDirectory(this, PreferenceText(PrefText_SelectIncludeFolder));
    if (Chosen.isEmpty())
        return;
    const QString Folder = QDir::toNativeSeparators(Chosen);
    if (m_pIncludeList->findItems(Folder, Qt::MatchExactly).isEmpty())
        m_pIncludeList->addItem(Folder);
}

QGroupBox* CCompilerPreferencesWidget::BuildDetailsGroup()
{
    m_pDetailsGroup = new QGroupBox(this);
    m_pDetailsGroup->setObjectName(QStringLiteral("GLSLESCompilerDetailsGroup"));
    m_pResultStack = new QStackedWidget(m_pDetailsGroup);
    m_pResultStack->setObjectName(QStringLiteral("CompilerResultStack"));

    QWidget* pSuccess = new QWidget;
    pSuccess->setObjectName(QStringLiteral("SuccessPage"));
    QFormLayout* pForm = new QFormLayout(pSuccess);
    m_pCoreRevLabel = NamedLabel("CoreRevLabel", pSuccess);
    m_pCoreRevValue = ValueLabel("CoreRevValLabel", pSuccess);
    m_pVersionLabel = NamedLabel("VersionLabel", pSuccess);
    m_pVersionValue = ValueLabel("VersionValLabel", pSuccess);
    m_pOptionsLabel = NamedLabel("OptionsLabel", pSuccess);
    m_pOptionsValue = ValueLabel("OptionsValLabel", pSuccess);
    pForm->addRow(m_pCoreRevLabel, m_pCoreRevValue);
    pForm->addRow(m_pVersionLabel, m_pVersionValue);
    pForm->addRow(m_pOptionsLabel, m_pOptionsValue);
    m_pResultStack->insertWidget(ResultPage_Success, pSuccess);

    m_pErrorText = NamedLabel("ESCompilerErrorLabel", nullptr);
    m_pResultStack->insertWidget(ResultPage_Error, PageWith("ErrorPage", m_pErrorText));
    m_pNoPathText = NamedLabel("ESCompilerNoPathLabel", nullptr);
    m_pResultStack->insertWidget(ResultPage_NoPath, PageWith("NoPathPage", m_pNoPathText));
    m_pCheckingText = NamedLabel("ESCompilerCheckingLabel", nullptr);
    m_pResultStack->insertWidget(ResultPage_Checking, PageWith("CheckingPage", m_pCheckingText));
    m_pResultStack->setCurrentIndex(ResultPage_NoPath);

    QVBoxLayout* pLayout = new QVBoxLayout(m_pDetailsGroup);
    pLayout->addWidget(m_pResultStack);
    return m_pDetailsGroup;
}

QGroupBox* CCompilerPreferencesWidget::BuildOutputGroup()
{
    m_pOutputGroup = new QGroupBox(this);
    m_pOutputGroup->setObjectName(QStringLiteral("CompilerOutputGroupbox"));
    m_pColourOutput = new QCheckBox(m_pOutputGroup);
    m_pColourOutput->setObjectName(QStringLiteral("ColourCompilerOutputCheckbox"));
    m_pErrorColourLabel = NamedLabel("ErrorColourLabel", m_pOutputGroup);
    m_pErrorColour = new CColourSelectButton(m_pOutputGroup);
    m_pErrorColour->setObjectName(QStringLiteral("ErrorColourButton"));
    m_pWarningColourLabel = NamedLabel("WarningColourLabel", m_pOutputGroup);
    m_pWarningColour = new CColourSelectButton(m_pOutputGroup);
    m_pWarningColour->setObjectName(QStringLiteral("WarningColourButton"));

    QFormLayout* pForm = new QFormLayout;
    pForm->addRow(m_pErrorColourLabel, m_pErrorColour);
    pForm->addRow(m_pWarningColourLabel, m_pWarningColour);
    QVBoxLayout* pLayout = new QVBoxLayout(m_pOutputGroup);
    pLayout->addWidget(m_pColourOutput);
    pLayout->addLayout(pForm);
    return m_pOutputGroup;
}

void CCompilerPreferencesWidget::Connect()
{
    connect(m_pBrowsePath, &QPushButton::clicked, this, &CCompilerPreferencesWidget::OnBrowseGLSLESPath);
    connect(m_pBrowseTemp, &QPushButton::clicked, this, &CCompilerPreferencesWidget::OnBrowseTempPath);
    connect(m_pCompilerCombo, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &CCompilerPreferencesWidget::OnCompilerComboChanged);

    // The page is filled by emitting its own signals.
    connect(this, &CCompilerPreferencesWidget::CompilerSelectionChanged, m_pCompilerCombo, &QComboBox::setCurrentIndex);
    connect(this, &CCompilerPreferencesWidget::GLSLESPathChanged, m_pPath, &QLineEdit::setText);
    connect(this, &CCompilerPreferencesWidget::GLSLESPathChanged, this,
            [this](const QString& Path)
            {
                if (IsCustomSelected())
                    m_CustomPath = Path;
            });
    connect(this, &CCompilerPreferencesWidget::GLSLESPathChanged, this,
            &CCompilerPreferencesWidget::OnCheckGLSLESCompiler);
    connect(this, &CCompilerPreferencesWidget::CompilerTempPathChanged, m_pTempPath, &QLineEdit::setText);
    connect(this, &CCompilerPreferencesWidget::ShouldFormatOutputChanged, m_pColourOutput, &QCheckBox::setChecked);
    connect(this, &CCompilerPreferencesWidget::ErrorColourChanged, m_pErrorColour, &CColourSelectButton::OnSetColour);
    connect(this, &CCompilerPreferencesWidget::WarningColourChanged, m_pWarningColour,
            &CColourSelectButton::OnSetColour);
    connect(m_pColourOutput, &QCheckBox::toggled, m_pErrorColour, &QWidget::setEnabled);
    connect(m_pColourOutput, &QCheckBox::toggled, m_pWarningColour, &QWidget::setEnabled);

    connect(m_pPath, &QLineEdit::textEdited, this,
            [this](const QString& Path)
            {
                m_CustomPath = Path;
                m_pDetector->Cancel();
                m_pResultStack->setCurrentIndex(ResultPage_Checking);
                m_bCompilerOK = false;
                UpdateEnableOK();
                m_pTypingPause->start();
            });
    connect(m_pTypingPause, &QTimer::timeout, this, [this] { OnCheckGLSLESCompiler(m_pPath->text()); });
    connect(m_pTempPath, &QLineEdit::textChanged, this, &CCompilerPreferencesWidget::OnTempPathEdited);
    connect(m_pDetector, &CCompilerDetector::Detected, this, &CCompilerPreferencesWidget::OnCompilerDetected);
}

void CCompilerPreferencesWidget::LoadSettings()
{
    const Settings::SCompiler& Compiler = m_Edit.GetCompilerSettings();
    m_CustomPath = ToQString(Compiler.CustomCompilerPath);
    emit CompilerTempPathChanged(ToQString(Compiler.TempDirectory));
    emit ShouldFormatOutputChanged(Compiler.bShouldFormat);
    m_pErrorColour->setEnabled(Compiler.bShouldFormat);
    m_pWarningColour->setEnabled(Compiler.bShouldFormat);
    emit ErrorColourChanged(Compiler.ErrorFormat.foreground().color());
    emit WarningColourChanged(Compiler.WarningFormat.foreground().color());
    m_pIncludeList->clear();
    m_pIncludeList->addItems(Compiler.IncludeFolders);
    // Anything past the bundled targets is the custom compiler.
    const int iCustom = m_pCompilerCombo->count() - 1;
    emit CompilerSelectionChanged(Compiler.uiCompilerSelection < CustomCompilerSelection
                                      ? static_cast<int>(Compiler.uiCompilerSelection)
                                      : iCustom);
}

bool CCompilerPreferencesWidget::IsCustomSelected() const
{
    return m_pCompilerCombo->currentData().toUInt() >= CustomCompilerSelection;
}

void CCompilerPreferencesWidget::OnCompilerComboChanged(int iIdx)
{
    if (iIdx < 0)
        return;
    const bool bCustom = IsCustomSelected();
    m_pPath->setReadOnly(!bCustom);
    m_pBrowsePath->setEnabled(bCustom);
    if (bCustom)
    {
        emit GLSLESPathChanged(m_CustomPath);
        return;
    }
    const CZamTString& BaseName = GetCompilerTarget(m_pCompilerCombo->currentData().toInt()).ExecutableBaseName;
    emit GLSLESPathChanged(FindBundledCompiler(ToQString(BaseName), m_Edit.GetCompilerSearchPaths()));
}

void CCompilerPreferencesWidget::OnCheckGLSLESCompiler(const QString& Path)
{
    m_pTypingPause->stop();
    m_bCompilerOK = false;
    if (Path.isEmpty())
    {
        m_pDetector->Cancel();
        m_pResultStack->setCurrentIndex(ResultPage_NoPath);
    }
    else
    {
        m_pResultStack->setCurrentIndex(ResultPage_Checking);
        m_pDetector->Start(Path);
    }
    UpdateEnableOK();
}

void CCompilerPreferencesWidget::OnCompilerDetected(const QString& Path, const SCompilerDetection& Detection)
{
    // The field changed while the compiler was being asked; its own check follows.
    if (Path != m_pPath->text())
        return;
    m_bCompilerOK = Detection.IsUsable();
    if (m_bCompilerOK)
    {
        QStringList Options;
        for (uint32_t i = 0; i < Detection.Options.GetSize(); ++i)
            Options << QLatin1Char('-') + Detection.Options[i];
        m_pCoreRevValue->setText(Detection.Compiler);
        m_pVersionValue->setText(Detection.Version);
        m_pOptionsValue->setText(Options.join(QLatin1Char('\n')));
    }
    m_pResultStack->setCurrentIndex(m_bCompilerOK ? ResultPage_Success : ResultPage_Error);
    UpdateEnableOK();
}

void CCompilerPreferencesWidget::OnTempPathEdited(const QString& Path)
{
    // Empty stands for the system's temporary folder.
    const QFileInfo Folder(Path);
    m_bTempPathOK = Path.isEmpty() || (Folder.isDir() && Folder.isWritable());
    m_pTempProblem->setVisible(!m_bTempPathOK);
    UpdateEnableOK();
}

void CCompilerPreferencesWidget::UpdateEnableOK()
{
    emit EnableOK(IsInputValid());
}

void CCompilerPreferencesWidget::OnBrowseGLSLESPath()
{
    const QFileInfo Current(m_pPath->text());
    const QString Start = Current.isFile() ? Current.absolutePath() : QString();
    const QString Chosen = QFileDialog::getOpenFileName(this, PreferenceText(PrefText_SelectCompiler), Start,
                                                        PreferenceText(PrefText_AllFilesFilter));
    if (Chosen.isEmpty())
        return;
    m_CustomPath = QDir::toNativeSeparators(Chosen);
    emit GLSLESPathChanged(m_CustomPath);
}

void CCompilerPreferencesWidget::OnBrowseTempPath()
{
    const QString Current = m_pTempPath->text();
    const QString Chosen = QFileDialog::getExistingDirectory(this, PreferenceText(PrefText_SelectTempFolder),
                                                             QFileInfo(Current).isDir() ? Current : QString());
    if (!Chosen.isEmpty())
        emit CompilerTempPathChanged(QDir::toNativeSeparators(Chosen));
}

void CCompilerPreferencesWidget::OnSave()
{
    Settings::SCompiler Compiler = m_Edit.GetCompilerSettings();
    if (m_pCompilerCombo->currentIndex() >= 0)
        Compiler.uiCompilerSelection = m_pCompilerCombo->currentData().toUInt();
    Compiler.CustomCompilerPath = ToZamString(m_CustomPath);
    Compiler.TempDirectory = ToZamString(m_pTempPath->text());
    Compiler.bShouldFormat = m_pColourOutput->checkState() == Qt::Checked;
    Compiler.ErrorFormat.setForeground(m_pErrorColour->GetColour());
    Compiler.WarningFormat.setForeground(m_pWarningColour->GetColour());
    Compiler.IncludeFolders.clear();
    for (int i = 0; i < m_pIncludeList->count(); ++i)
        Compiler.IncludeFolders << m_pIncludeList->item(i)->text();
    m_Edit.SetCompilerSettings(Compiler, s_uiPageMask);
}

void CCompilerPreferencesWidget::OnRetranslate()
{
    m_pCompilerLabel->setText(UIString(UIS_PrefCompilerLabel));
    m_pCompilerCombo->setItemText(m_pCompilerCombo->count() - 1, PreferenceText(PrefText_CustomCompiler));
    m_pPathLabel->setText(UIString(UIS_PrefCompilerPath));
    m_pBrowsePath->setText(UIString(UIS_PrefBrowse));
    m_pTempLabel->setText(UIString(UIS_PrefTempFilesLocation));
    m_pBrowseTemp->setText(UIString(UIS_PrefBrowse));
    m_pTempProblem->setText(PreferenceText(PrefText_TempPathMissing));
    m_pDetailsGroup->setTitle(UIString(UIS_PrefCompilerDetails));
    m_pCoreRevLabel->setText(UIString(UIS_PrefCompiler));
    m_pVersionLabel->setText(UIString(UIS_PrefVersion));
    m_pOptionsLabel->setText(UIString(UIS_PrefSupportedOptions));
    m_pErrorText->setText(UIString(UIS_PrefCompilerUnexpectedResult));
    m_pNoPathText->setText(UIString(UIS_PrefCompilerPathInvalid));
    m_pCheckingText->setText(PreferenceText(PrefText_CheckingCompiler));
    m_pOutputGroup->setTitle(UIString(UIS_PrefCompilerOutput));
    m_pColourOutput->setText(UIString(UIS_PrefColourCompilerOutput));
    m_pErrorColourLabel->setText(UIString(UIS_PrefErrorColour));
    m_pWarningColourLabel->setText(UIString(UIS_PrefWarningColour));
    m_pIncludeGroup->setTitle(PreferenceText(PrefText_IncludeFolders));
    m_pIncludeHint->setText(PreferenceText(PrefText_IncludeFoldersHint));
    m_pAddInclude->setText(PreferenceText(PrefText_AddIncludeFolder));
    m_pRemoveInclude->setText(PreferenceText(PrefText_RemoveIncludeFolder));
}
