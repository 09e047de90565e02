#include "CShaderEditAllCoresOutput.h"

#include "ShaderEditComponent/compile/model/ZamStringConversion.h"

#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace
{
const std::array<const char*, CShaderEditAllCoresOutput::Column_Count> s_apHeaders = {
    "Core",       "Cycles",        "Worst case",   "vs. cheapest", "Registers",
    "Attributes", "Texture loads", "Instructions", "Status"};
const char* const s_pNoteReady = "The current shader on every bundled core; the dearest core is marked.";
const char* const s_pNoteCompiling = "Compiling for every core\u2026";
const char* const s_pNoteNotCompiled = "Only GLSL ES shaders and effect files are compiled for every core.";
const QColor s_DearestBackground = QColor(0xFF, 0xD8, 0xA8);

QString Figure(int iValue)
{
    return iValue < 0 ? QStringLiteral("\u2013") : QString::number(iValue);
}

QString Figure(float fValue)
{
    return fValue < 0.0f ? QStringLiteral("\u2013") : QString::number(static_cast<double>(fValue), 'f', 0);
}

// The first error of a failed core, so the row says why.
QString FirstProblem(const SCompileResult& Result)
{
    for (const SCompileMessage& Message : Result.Messages)
    {
        if (Message.eSeverity == SCompileMessage::Severity_Error)
            return Message.Text;
    }
    return ToQString(Result.Log).trimmed();
}

QTableWidgetItem* Cell(const QString& Text, Qt::Alignment eAlign = Qt::AlignRight | Qt::AlignVCenter)
{
    QTableWidgetItem* pItem = new QTableWidgetItem(Text);
    pItem->setTextAlignment(eAlign);
    pItem->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    return pItem;
}
} // namespace

CShaderEditAllCoresOutput::CShaderEditAllCoresOutput(QWidget* pParent)
    : QFrame(pParent)
{
    setObjectName(QStringLiteral("AllCoresOutput"));
    QVBoxLayout* pLayout = new QVBoxLayout(this);
    m_pNote = new QLabel(this);
    m_pNote->setObjectName(QStringLiteral("AllCoresNote"));
    m_pNote->setWordWrap(true);
    pLayout->addWidget(m_pNote);
    m_Selector = CreateShaderSelector(this, "AllCoresShaderLayout", "AllCoresShaderLabel", "AllCoresShaderCombo");
    m_Selector.pLabel->setText(tr("Shader:"));
    pLayout->addLayout(m_Selector.pLayout);
    m_pTable = new QTableWidget(0, Column_Count, this);
    m_pTable->setObjectName(QStringLiteral("AllCoresTable"));
    m_pTable->verticalHeader()->hide();
    // Four rows fit the height of a log-sized dock.
    m_pTable->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 4);
    m_pTable->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_pTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_pTable->horizontalHeader()->setStretchLastSection(true);
    pLayout->addWidget(m_pTable, 1);
    SetRetranslatedHeaders();
    connect(m_Selector.pCombo, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &CShaderEditAllCoresOutput::OnShaderSelected);
    OnClear();
}

QString CShaderEditAllCoresOutput::GetNote() const
{
    return m_pNote->text();
}

void CShaderEditAllCoresOutput::SetRetranslatedHeaders()
{
    QStringList Headers;
    for (const char* pHeader : s_apHeaders)
        Headers << tr(pHeader);
    m_pTable->setHorizontalHeaderLabels(Headers);
}

void CShaderEditAllCoresOutput::OnResult(const SAllCoresResult& Result)
{
    m_Result = Result;
    m_pNote->setText(tr(s_pNoteReady));
    // The shaders are those of any core that compiled; a failed core has no records.
    const SAllCoresResult::SCore* pNamed = nullptr;
    for (const SAllCoresResult::SCore& Core : std::as_const(m_Result.Cores))
    {
        if (!pNamed || Core.Result.Profiles.GetSize() > pNamed->Result.Profiles.GetSize())
            pNamed = &Core;
    }
    const QString Current = m_Selector.pCombo->currentText();
    if (pNamed && pNamed->Result.Profiles.GetSize() > 0)
    {
        FillShaderSelector(m_Selector, pNamed->Result.Profiles);
        const int iCurrent = m_Selector.pCombo->findText(Current);
        if (iCurrent > 0)
        {
            const QSignalBlocker Blocker(m_Selector.pCombo);
            m_Selector.pCombo->setCurrentIndex(iCurrent);
        }
    }
    else
    {
        ClearShaderSelector(m_Selector);
    }
    ShowShaderSelector(m_Selector, m_Selector.pCombo->count() > 1);
    FillRows(ToZamString(m_Selector.pCombo->currentText()));
}

void CShaderEditAllCoresOutput::OnShaderSelected(int iIndex)
{
    if (iIndex >= 0)
        FillRows(ToZamString(m_Selector.pCombo->itemText(iIndex)));
}

void CShaderEditAllCoresOutput::FillRows(const CZamTString& Shader)
{
    m_pTable->setRowCount(m_Result.Cores.size());
    float fCheapest = -1.0f;
    float fDearest = -1.0f;
    for (const SAllCoresResult::SCore& Core : std::as_const(m_Result.Cores))
    {
        const SCompileResult::SProfile* pProfile = Core.Result.FindProfile(Shader);
        if (!pProfile || pProfile->fCycleCount < 0.0f)
            continue;
        fCheapest = fCheapest < 0.0f ? pProfile->fCycleCount : std::min(fCheapest, pProfile->fCycleCount);
        fDearest = std::max(fDearest, pProfile->fCycleCount);
    }
    for (int iRow = 0; iRow < m_Result.Cores.size(); ++iRow)
    {
        const SAllCoresResult::SCore& Core = m_Result.Cores[iRow];
        const SCompileResult::SProfile* pProfile = Core.Result.FindProfile(Shader);
        SCompileResult::SProfile Figures;
        if (pProfile)
            Figures = *pProfile;
        m_pTable->setItem(iRow, Column_Core, Cell(Core.Name, Qt::AlignLeft | Qt::AlignVCenter));
        m_pTable->setItem(iRow, Column_Cycles, Cell(Figure(Figures.fCycleCount)));
        m_pTable->setItem(iRow, Column_WorstCycles, Cell(Figure(Figures.fWorstCycleCount)));
        const bool bRelative = fCheapest > 0.0f && Figures.fCycleCount >= 0.0f;
        m_pTable->setItem(iRow, Column_Relative,
                          Cell(bRelative ? QStringLiteral("%1\u00d7").arg(Figures.fCycleCount / fCheapest, 0, 'f', 2)
                                         : QStringLiteral("\u2013")));
        m_pTable->setItem(iRow, Column_Registers, Cell(Figure(Figures.iTemporaryRegisters)));
        m_pTable->setItem(iRow, Column_Attributes, Cell(Figure(Figures.iPrimaryAttributes)));
        m_pTable->setItem(iRow, Column_TextureLoads, Cell(Figure(Figures.iNonDependentTextureReads)));
        m_pTable->setItem(iRow, Column_Instructions, Cell(Figure(Figures.iGeneratedInstructions)));
        const bool bCompiled = Core.Result.iStatus == CompileStatus_Completed && pProfile;
        QTableWidgetItem* pStatus = Cell(bCompiled ? tr("compiled") : tr("failed"), Qt::AlignLeft | Qt::AlignVCenter);
        if (!bCompiled)
            pStatus->setToolTip(FirstProblem(Core.Result));
        m_pTable->setItem(iRow, Column_Status, pStatus);
        // Only a real difference marks a core: equal figures everywhere mark none.
        const bool bDearest = bCompiled && fDearest > fCheapest && Figures.fCycleCount == fDearest;
        for (int iColumn = 0; iColumn < Column_Count; ++iColumn)
        {
            QTableWidgetItem* pItem = m_pTable->item(iRow, iColumn);
            QFont Font = pItem->font();
            Font.setBold(bDearest);
            pItem->setFont(Font);
            pItem->setBackground(bDearest ? QBrush(s_DearestBackground) : QBrush());
            if (bDearest)
                pItem->setForeground(QBrush(Qt::black));
        }
    }
    m_pTable->resizeColumnsToContents();
}

void CShaderEditAllCoresOutput::OnCompiling()
{
    m_pNote->setText(tr(s_pNoteCompiling));
}

void CShaderEditAllCoresOutput::OnNotCompiled()
{
    OnClear();
    m_pNote->setText(tr(s_pNoteNotCompiled));
}

void CShaderEditAllCoresOutput::OnClear()
{
    m_Result = SAllCoresResult();
    ClearShaderSelector(m_Selector);
    ShowShaderSelector(m_Selector, false);
    m_pTable->setRowCount(0);
    m_pNote->setText(QString());
}
