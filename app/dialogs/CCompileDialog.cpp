#include "CCompileDialog.h"

#include "app/controller/ApplicationText.h"
#include "app/controller/CGUIController.h"
#include "DialogText_p.h"
#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/compile/model/CompileOptions.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace
{
struct SPlaceholderRow
{
    const char* pLabelName;
    EApplicationText eText;
    const char* pToken;
};

const SPlaceholderRow s_aPlaceholders[4] = {
    {"CompOptCust_labelSourceDir", AppText_SourceDirectory, "%i%"},
    {"CompOptCust_labelSourceFilename", AppText_SourceFilename, "%f%"},
    {"CompOptCust_labelSourceFilenameNoExt", AppText_SourceFilenameNoExt, "%b%"},
    {"CompOptCust_labelOutputDir", AppText_OutputDirectory, "%o%"},
};

template <typename TWidget> TWidget* Named(const char* pName, QWidget* pParent)
{
    TWidget* pWidget = new TWidget(pParent);
    pWidget->setObjectName(QLatin1String(pName));
    return pWidget;
}

// The program and each argument on a line of its own: what the quoted line cannot show
// unambiguously when a file name holds quotes or blanks.
QString DescribeCommand(const SCompileCommand& Command)
{
    QStringList Lines{DialogText(DialogText_ArgumentsTitle), DialogText(DialogText_ProgramLabel).arg(Command.Program)};
    for (int i = 0; i < Command.Arguments.size(); ++i)
        Lines << DialogText(DialogText_ArgumentLabel).arg(i + 1).arg(Command.Arguments.at(i));
    return Lines.join(QLatin1Char('\n'));
}
} // namespace

CCompileDialog::CCompileDialog(QWidget* pParent, CGUIController& GUI, CShaderEditController& Edit,
                               const CZamTHash& PanelID, const QString& FileName, EShaderDocType eType)
    : QDialog(pParent)
    , m_GUI(GUI)
    , m_Edit(Edit)
    , m_PanelID(PanelID)
    , m_FileName(FileName)
    , m_eType(eType)
{
    setObjectName(QStringLiteral("CompileDialog"));
    setModal(true);
    setMinimumWidth(600);
    QVBoxLayout* pLayout = new QVBoxLayout(this);
    pLayout->addWidget(BuildCompileGroup());
    pLayout->addWidget(BuildOutputGroup());
    pLayout->addWidget(BuildCommandLineGroup());
    m_pButtons = Named<QDialogButtonBox>("buttonBox", this);
    m_pButtons->setStandardButtons(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    pLayout->addWidget(m_pButtons);

    const Settings::SGeneral& General = m_GUI.GetGeneralSettings();
    m_pOutputDirectory->setText(ToQString(General.CompileOutputPath));
    m_pCustomCommand->setPlainText(ToQString(General.CustomCommand));
    Connect(Edit);
    OnRetranslate();
    OnChangeCompileType(m_pTypeCombo->currentIndex());
}

QGroupBox* CCompileDialog::BuildCompileGroup()
{
    m_pCompileGroup = Named<QGroupBox>("CompileGroup", this);
    m_pTypeLabel = Named<QLabel>("compilerTypeLabel", m_pCompileGroup);
    m_pTypeCombo = Named<QComboBox>("compilerTypeComboBox", m_pCompileGroup);
    m_pTypeCombo->addItem(QString(), int(OptionsPage_BuiltIn));
    m_pTypeCombo->addItem(QString(), int(OptionsPage_Custom));
    QGroupBox* pOptionsGroup = Named<QGroupBox>("CompileOptionsGroup", m_pCompileGroup);
    m_pOptionsStack = Named<QStackedWidget>("CompileOptsStack", pOptionsGroup);
    m_pOptionsStack->insertWidget(OptionsPage_BuiltIn, BuildBuiltInPage());
    m_pOptionsStack->insertWidget(OptionsPage_Custom, BuildCustomPage());
    QVBoxLayout* pOptionsLayout = new QVBoxLayout(pOptionsGroup);
    pOptionsLayout->addWidget(m_pOptionsStack);

    QHBoxLayout* pTypeRow = new QHBoxLayout;
    pTypeRow->addWidget(m_pTypeLabel);
    pTypeRow->addWidget(m_pTypeCombo, 1);
    QVBoxLayout* pLayout = new QVBoxLayout(m_pCompileGroup);
    pLayout->addLayout(pTypeRow);
    pLayout->addWidget(pOptionsGroup);
    return m_pCompileGroup;
}

QWidget* CCompileDialog::BuildBuiltInPage()
{
    QWidget* pPage = Named<QWidget>("GLSLESPage", nullptr);
    m_pNoWarn = Named<QCheckBox>("CompOptGLSLES_nowarn", pPage);
    m_pProfile = Named<QCheckBox>("CompOptGLSLES_profile", pPage);
    m_pPerfSim = Named<QCheckBox>("CompOptGLSLES_perfsim", pPage);
    m_pAsm = Named<QCheckBox>("CompOptGLSLES_asm", pPage);
    QVBoxLayout* pLayout = new QVBoxLayout(pPage);
    for (QCheckBox* pBox : {m_pNoWarn, m_pProfile, m_pPerfSim, m_pAsm})
        pLayout->addWidget(pBox);
    pLayout->addStretch();
    return pPage;
}

QWidget* CCompileDialog::BuildCustomPage()
{
    QWidget* pPage = Named<QWidget>("CustomCmdPage", nullptr);
    m_pCustomCommand = Named<QPlainTextEdit>("CompOptCust_cmd", pPage);
    m_pCustomCommand->setTabChangesFocus(true);
    m_pCustomCommand->setMaximumHeight(80);
    QFormLayout* pForm = new QFormLayout;
    for (int i = 0; i < 4; ++i)
    {
        m_apPlaceholderLabels[i] = Named<QLabel>(s_aPlaceholders[i].pLabelName, pPage);
        m_apPlaceholderValues[i] = new QLabel(QLatin1String(s_aPlaceholders[i].pToken), pPage);
        m_apPlaceholderValues[i]->setObjectName(QLatin1String(s_aPlaceholders[i].pLabelName) + QStringLiteral("Val"));
        m_apPlaceholderValues[i]->setTextInteractionFlags(Qt::TextSelectableByMouse);
        pForm->addRow(m_apPlaceholderLabels[i], m_apPlaceholderValues[i]);
    }
    QVBoxLayout* pLayout = new QVBoxLayout(pPage);
    pLayout->addWidget(m_pCustomCommand);
    pLayout->addLayout(pForm);
    return pPage;
}

QGroupBox* CCompileDialog::BuildOutputGroup()
{
    m_pOutputGroup = Named<QGroupBox>("OutputGroup", this);
    m_pOutputLabel = Named<QLabel>("outputLabel", m_pOutputGroup);
    m_pOutputDirectory = Named<QLineEdit>("outputDirectoryTextEdit", m_pOutputGroup);
    m_pBrowseOutput = Named<QPushButton>("browseOutputButton", m_pOutputGroup);
    QHBoxLayout* pLayout = new QHBoxLayout(m_pOutputGroup);
    pLayout->addWidget(m_pOutputLabel);
    pLayout->addWidget(m_pOutputDirectory, 1);
    pLayout->addWidget(m_pBrowseOutput);
    return m_pOutputGroup;
}

QGroupBox* CCompileDialog::BuildCommandLineGroup()
{
    m_pCommandLineGroup = Named<QGroupBox>("CommandLineGroup", this);
    m_pCommandLine = Named<QLabel>("commandlineTextLabel", m_pCommandLineGroup);
    // A file name is text, never markup.
    m_pCommandLine->setTextFormat(Qt::PlainText);
    m_pCommandLine->setWordWrap(true);
    m_pCommandLine->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_pCommandLine->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    // A template of thousands of characters scrolls instead of growing the dialog.
    QScrollArea* pScroll = new QScrollArea(m_pCommandLineGroup);
    pScroll->setWidget(m_pCommandLine);
    pScroll->setWidgetResizable(true);
    pScroll->setFrameShape(QFrame::NoFrame);
    pScroll->setMaximumHeight(120);
    QVBoxLayout* pLayout = new QVBoxLayout(m_pCommandLineGroup);
    pLayout->addWidget(pScroll);
    return m_pCommandLineGroup;
}

void CCompileDialog::Connect(CShaderEditController& Edit)
{
    // OK goes through OnCompile, which accepts only a line that can run.
    connect(m_pButtons, &QDialogButtonBox::accepted, this, &CCompileDialog::OnCompile);
    connect(m_pButtons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_pTypeCombo, qOverload<int>(&QComboBox::currentIndexChanged), this, &CCompileDialog::OnChangeCompileType);
    connect(m_pBrowseOutput, &QPushButton::clicked, this, &CCompileDialog::OnBrowseOutputDirectory);
    connect(m_pCustomCommand, &QPlainTextEdit::textChanged, this, &CCompileDialog::OnGenerateCommandline);
    for (QCheckBox* pBox : {m_pNoWarn, m_pProfile, m_pPerfSim, m_pAsm})
        connect(pBox, &QCheckBox::clicked, this, &CCompileDialog::OnGenerateCommandline);
    connect(m_pOutputDirectory, &QLineEdit::textChanged, this, &CCompileDialog::OnGenerateCommandline);
    connect(this, &CCompileDialog::CompileFile, &Edit, &CShaderEditController::OnCompileFile);
}

unsigned int CCompileDialog::BuiltInFlags() const
{
    unsigned int uiFlags = 0;
    if (m_pNoWarn->checkState() == Qt::Checked)
        uiFlags |= CompileOption_NoWarn;
    if (m_pProfile->checkState() == Qt::Checked)
        uiFlags |= CompileOption_Profile;
    if (m_pPerfSim->checkState() == Qt::Checked)
        uiFlags |= CompileOption_PerfSim;
    if (m_pAsm->checkState() == Qt::Checked)
        uiFlags |= CompileOption_Disassembly;
    return uiFlags;
}

void CCompileDialog::OnChangeCompileType(int iIndex)
{
    m_pOptionsStack->setCurrentIndex(m_pTypeCombo->itemData(iIndex).toInt());
    OnGenerateCommandline();
}

void CCompileDialog::OnGenerateCommandline()
{
    const QString OutputDirectory = m_pOutputDirectory->text();
    if (m_pOptionsStack->currentIndex() == OptionsPage_Custom)
        m_Line = MakeCustomCommandLine(m_pCustomCommand->toPlainText(), m_FileName, OutputDirectory);
    else
        m_Line = MakeBuiltInCommandLine(m_Edit.GetCompileCommandLine(BuiltInFlags(), m_eType, OutputDirectory),
                                        m_Edit.GetCompilerPath(), m_FileName, OutputDirectory);
    m_pCommandLine->setText(m_Line.Display);
    m_pCommandLine->setToolTip(m_Line.IsUsable() ? DescribeCommand(m_Line.Command)
                                                 : DescribeCommandLineProblem(m_Line.eProblem));
    const SSourcePlaceholders Values = PlaceholdersForFile(m_FileName);
    const QString aValues[4] = {Values.Directory, Values.FileName, Values.BaseName, OutputDirectory};
    for (int i = 0; i < 4; ++i)
        m_apPlaceholderValues[i]->setToolTip(aValues[i]);
}

void CCompileDialog::OnBrowseOutputDirectory()
{
    const QString Chosen = QFileDialog::getExistingDirectory(this, GetApplicationText(AppText_SelectDirectory),
                                                             m_pOutputDirectory->text());
    if (!Chosen.isEmpty())
        m_pOutputDirectory->setText(QDir::toNativeSeparators(Chosen));
}

void CCompileDialog::OnCompile()
{
    OnGenerateCommandline();
    if (!m_Line.IsUsable())
    {
        ShowProblem();
        return;
    }
    Settings::SGeneral General = m_GUI.GetGeneralSettings();
    const QString Template = m_pCustomCommand->toPlainText();
    if (Template != ToQString(General.CustomCommand))
    {
        General.CustomCommand = ToZamString(Template);
        m_GUI.SetGeneralSettings(General, Settings::GeneralSetting_CustomCommand);
    }
    emit CompileFile(m_PanelID, ToZamString(m_FileName), ToZamString(m_Line.CompileForm), m_eType);
    accept();
}

void CCompileDialog::ShowProblem()
{
    // Window-modal and not waited for, so the dialog stays as the user left it.
    QMessageBox* pBox = new QMessageBox(QMessageBox::Warning, GetApplicationText(AppText_Compile),
                                        GetApplicationText(AppText_InvalidCommandLine), QMessageBox::Ok, this);
    pBox->setObjectName(QStringLiteral("InvalidCommandLineBox"));
    pBox->setInformativeText(DescribeCommandLineProblem(m_Line.eProblem));
    pBox->setAttribute(Qt::WA_DeleteOnClose);
    pBox->open();
}

void CCompileDialog::OnRetranslate()
{
    setWindowTitle(GetApplicationText(AppText_Compile));
    m_pCompileGroup->setTitle(GetApplicationText(AppText_CompileOptions));
    m_pTypeLabel->setText(GetApplicationText(AppText_Type));
    m_pTypeCombo->setItemText(OptionsPage_BuiltIn, DialogText(DialogText_CompilerGLSLES));
    m_pTypeCombo->setItemText(OptionsPage_Custom, GetApplicationText(AppText_CustomCommandLine));
    m_pNoWarn->setText(GetApplicationText(AppText_DisableWarnings));
    m_pProfile->setText(GetApplicationText(AppText_GenerateCycleCounts));
    m_pPerfSim->setText(GetApplicationText(AppText_EnablePerfSim));
    m_pAsm->setText(GetApplicationText(AppText_EnableTXEASM));
    for (int i = 0; i < 4; ++i)
        m_apPlaceholderLabels[i]->setText(GetApplicationText(s_aPlaceholders[i].eText));
    m_pOutputGroup->setTitle(GetApplicationText(AppText_OutputGroup));
    m_pOutputLabel->setText(GetApplicationText(AppText_Directory));
    m_pBrowseOutput->setText(GetApplicationText(AppText_Browse));
    m_pCommandLineGroup->setTitle(GetApplicationText(AppText_CommandLine));
    m_pButtons->button(QDialogButtonBox::Ok)->setText(GetApplicationText(AppText_CompileButton));
    m_pButtons->button(QDialogButtonBox::Cancel)->setText(GetApplicationText(AppText_Cancel));
}
