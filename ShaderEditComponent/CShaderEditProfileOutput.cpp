#include "CShaderEditProfileOutput.h"

#include "CompileChange.h"
#include "OutputViewSupport.h"
#include "ShaderEditComponent/compile/controller/CShaderEditController.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace
{
struct SFigureNames
{
    const char* pCaption;
    const char* pValue;
};

// Indexed by EFigure.
constexpr SFigureNames s_aNames[] = {
    {"PerLineLabel", "PerLineTotal"},
    {"EmulatedCycleTotalLabel", "EmulatedCycleTotal"},
    {"CompilerLabel", "CompilerString"},
    {"VersionLabel", "VersionString"},
    {"EmulatedCyclesLabel", "EmulatedCycles"},
    {"EmulatedCyclesWorstLabel", "EmulatedCyclesWorst"},
    {"TempRegLabel", "TempReg"},
    {"PrimaryAttribsLabel", "PrimaryAttribs"},
    {"NonDependLabel", "NonDepend"},
    {"GlobalTXCLabel", "GlobalTXC"},
};

// The worst case sits between the emulated cycles and the registers when it is shown.
constexpr int s_iWorstCaseRow = 3;

QString FormatCycles(float fCycles)
{
    return QString::number(static_cast<double>(fCycles), 'g', 6);
}
} // namespace

CShaderEditProfileOutput::CShaderEditProfileOutput(CShaderEditController* pController, QWidget* pParent)
    : QFrame(pParent)
{
    SetupUi();
    Reset();

    connect(pController, &CShaderEditController::CompileProfileChanged, this,
            &CShaderEditProfileOutput::OnCompileResults);
    connect(pController, &CShaderEditController::ClearCompileOutput, this, &CShaderEditProfileOutput::OnClearResults);
    connect(m_Selector.pCombo, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &CShaderEditProfileOutput::OnPopulateResults);
}

void CShaderEditProfileOutput::SetupUi()
{
    setObjectName(QStringLiteral("ProfileWindow"));
    for (int i = 0; i < Figure_Count; ++i)
    {
        m_apCaptions[i] = new QLabel(this);
        m_apCaptions[i]->setObjectName(QLatin1String(s_aNames[i].pCaption));
        m_apValues[i] = new QLabel(this);
        m_apValues[i]->setObjectName(QLatin1String(s_aNames[i].pValue));
    }

    auto* pOuter = new QVBoxLayout(this);
    pOuter->setContentsMargins(0, 0, 0, 0);
    auto* pContainer = new QFrame(this);
    pContainer->setObjectName(QStringLiteral("ContainerFrame"));
    pOuter->addWidget(pContainer);

    auto* pLayout = new QVBoxLayout(pContainer);
    m_pStale = new QLabel(pContainer);
    m_pStale->setObjectName(QStringLiteral("StaleLabel"));
    m_pStale->hide();
    pLayout->addWidget(m_pStale);
    pLayout->addWidget(CreateGlobalEstimates(pContainer));
    m_pChange = new QLabel(pContainer);
    m_pChange->setObjectName(QStringLiteral("ChangeLabel"));
    m_pChange->setWordWrap(true);
    pLayout->addWidget(m_pChange);
    m_Selector =
        CreateShaderSelector(pContainer, "ShaderSelectLayout", "ShaderSelectorLabel", "ShaderSelectorComboBox");
    pLayout->addLayout(m_Selector.pLayout);
    pLayout->addLayout(CreateForm());
    pLayout->addStretch(1);
    RetranslateUi();
}

QFrame* CShaderEditProfileOutput::CreateGlobalEstimates(QWidget* pParent)
{
    auto* pFrame = new QFrame(pParent);
    pFrame->setObjectName(QStringLiteral("GlobalEstimatesFrame"));
    pFrame->setFrameShape(QFrame::StyledPanel);
    auto* pLayout = new QHBoxLayout(pFrame);
    pLayout->setObjectName(QStringLiteral("horizontalLayout"));
    for (EFigure eFigure : {Figure_PerLineTotal, Figure_EmulatedCycleTotal})
    {
        m_apCaptions[eFigure]->setParent(pFrame);
        m_apValues[eFigure]->setParent(pFrame);
        pLayout->addWidget(m_apCaptions[eFigure]);
        pLayout->addWidget(m_apValues[eFigure]);
        pLayout->addSpacing(12);
    }
    pLayout->addStretch(1);
    return pFrame;
}

QFormLayout* CShaderEditProfileOutput::CreateForm()
{
    m_pForm = new QFormLayout();
    m_pForm->setObjectName(QStringLiteral("formLayout"));
    for (int i = Figure_Compiler; i < Figure_Count; ++i)
    {
        if (i != Figure_EmulatedCyclesWorst)
            m_pForm->addRow(m_apCaptions[i], m_apValues[i]);
    }
    return m_pForm;
}

void CShaderEditProfileOutput::RetranslateUi()
{
    const QString Captions[Figure_Count] = {
        tr("Per-Line Cycle Estimate Total:"),
        tr("Emulated Cycle Total:"),
        tr("Compiler:"),
        tr("Version:"),
        tr("Emulated Cycles:"),
        tr("Emulated Cycles (Worst Case):"),
        tr("Temporary Registers Used:"),
        tr("Primary Attributes Used:"),
        tr("Non-Dependent Texture Loads:"),
        tr("Global TXC Instructions:"),
    };
    for (int i = 0; i < Figure_Count; ++i)
        m_apCaptions[i]->setText(Captions[i]);
    m_Selector.pLabel->setText(tr("Shader:"));
}

void CShaderEditProfileOutput::Reset()
{
    for (QLabel* pValue : m_apValues)
        pValue->setText(QStringLiteral("-"));
    ShowShaderSelector(m_Selector, false);
    ShowWorstCaseRow(false);
    m_pChange->clear();
    m_pChange->hide();
    ShowStale(0);
}

void CShaderEditProfileOutput::ShowStale(int iEditsBehind)
{
    const bool bStale = iEditsBehind > 0;
    m_pStale->setText(bStale ? DescribeStaleResult(iEditsBehind) : QString());
    m_pStale->setVisible(bStale);
    // Greyed, so that the figures are not taken for those of the text at hand.
    const QColor Text = palette().color(bStale ? QPalette::Disabled : QPalette::Active, QPalette::WindowText);
    for (QLabel* pValue : m_apValues)
    {
        QPalette Palette = pValue->palette();
        Palette.setColor(QPalette::WindowText, Text);
        pValue->setPalette(Palette);
    }
}

void CShaderEditProfileOutput::ShowWorstCaseRow(bool bShow)
{
    QLabel* pCaption = m_apCaptions[Figure_EmulatedCyclesWorst];
    QLabel* pValue = m_apValues[Figure_EmulatedCyclesWorst];
    const bool bInLayout = m_pForm->indexOf(pCaption) >= 0;
    if (bShow && !bInLayout)
        m_pForm->insertRow(s_iWorstCaseRow, pCaption, pValue);
    else if (!bShow && bInLayout)
    {
        // The taken row's layout items are ours to delete; the labels stay with the view.
        const QFormLayout::TakeRowResult Row = m_pForm->takeRow(pCaption);
        delete Row.labelItem;
        delete Row.fieldItem;
    }
    pCaption->setVisible(bShow);
    pValue->setVisible(bShow);
}

void CShaderEditProfileOutput::SetFigure(EFigure eFigure, int iValue)
{
    // A negative figure was not reported: the previous text stays.
    if (iValue >= 0)
        m_apValues[eFigure]->setText(QString::number(iValue));
}

void CShaderEditProfileOutput::MakeFiguresSelectable()
{
    // Figures are often pasted into reports. A selectable label lays its text out as a
    // document of its own, so the placeholders of a start do without.
    if (m_pChange->textInteractionFlags() & Qt::TextSelectableByMouse)
        return;
    for (QLabel* pValue : m_apValues)
        pValue->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_pChange->setTextInteractionFlags(Qt::TextSelectableByMouse);
}

void CShaderEditProfileOutput::OnCompileResults(const SCompileResult& Results)
{
    MakeFiguresSelectable();
    Reset();
    m_Profiles = Results.Profiles;
    m_PreviousProfiles = Results.PreviousProfiles;
    ShowStale(Results.iEditsBehind);
    if (m_Profiles.GetSize() >= 2)
    {
        FillShaderSelector(m_Selector, m_Profiles);
        ShowShaderSelector(m_Selector, true);
    }
    OnPopulateResults(0);
    m_apValues[Figure_Compiler]->setText(Results.CompilerString);
    m_apValues[Figure_Version]->setText(Results.VersionString);
}

void CShaderEditProfileOutput::OnPopulateResults(int iIndex)
{
    if (iIndex < 0 || static_cast<uint32_t>(iIndex) >= m_Profiles.GetSize())
        return;
    const SCompileResult::SProfile& Profile = m_Profiles[static_cast<uint32_t>(iIndex)];
    SetFigure(Figure_PerLineTotal, Profile.iTotalConsumedCycles);

    const float fCycles = Profile.fCycleCount;
    const float fWorst = Profile.fWorstCycleCount;
    const bool bWorst = fWorst > 0.0f;
    ShowWorstCaseRow(bWorst);
    if (bWorst)
        m_apValues[Figure_EmulatedCyclesWorst]->setText(FormatCycles(fWorst));
    if (fCycles >= 0.0f)
    {
        m_apValues[Figure_EmulatedCycles]->setText(FormatCycles(fCycles));
        QString Range = FormatCycles(fCycles);
        if (bWorst)
            Range += QChar(0x2012) + FormatCycles(fWorst);
        m_apValues[Figure_EmulatedCycleTotal]->setText(Range);
    }

    SetFigure(Figure_TempReg, Profile.iTemporaryRegisters);
    SetFigure(Figure_PrimaryAttribs, Profile.iPrimaryAttributes);
    SetFigure(Figure_NonDepend, Profile.iNonDependentTextureReads);
    SetFigure(Figure_GlobalTXC, Profile.iGeneratedInstructions);

    const QString Change = DescribeFigureChange(FindProfileNamed(m_PreviousProfiles, Profile.Name), Profile);
    m_pChange->setText(Change.isEmpty() ? QString() : tr("Last change: %1").arg(Change));
    m_pChange->setVisible(!Change.isEmpty());
}

void CShaderEditProfileOutput::OnClearResults()
{
    m_Profiles = CZamTArray<SCompileResult::SProfile>();
    m_PreviousProfiles = CZamTArray<SCompileResult::SProfile>();
    ClearShaderSelector(m_Selector);
    Reset();
}
