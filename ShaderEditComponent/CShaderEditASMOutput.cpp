#include "CShaderEditASMOutput.h"

#include "CompileChange.h"
#include "OutputViewSupport.h"
#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/compile/parsers/DisassemblyParser.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QVBoxLayout>

CShaderEditASMOutput::CShaderEditASMOutput(CShaderEditController* pController,
                                           const CShaderHighlightController* pHighlightController, QWidget* pParent)
    : QFrame(pParent)
{
    SetupUi();
    OnFontChanged(pHighlightController->GetFont());
    ShowSelector(false);

    connect(pController, &CShaderEditController::CompileProfileChanged, this, &CShaderEditASMOutput::OnCompileResults);
    connect(pController, &CShaderEditController::ClearCompileOutput, this, &CShaderEditASMOutput::OnClearResults);
    connect(m_Selector.pCombo, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &CShaderEditASMOutput::OnPopulateResults);
    connect(pHighlightController, &CShaderHighlightController::FontChanged, this, &CShaderEditASMOutput::OnFontChanged);
    connect(m_pOutput, &QPlainTextEdit::cursorPositionChanged, this, &CShaderEditASMOutput::OnCursorMoved);
}

void CShaderEditASMOutput::SetupUi()
{
    setObjectName(QStringLiteral("ASMWidget"));
    m_pLayout = new QVBoxLayout(this);
    m_pLayout->setObjectName(QStringLiteral("verticalLayout"));

    m_Selector = CreateShaderSelector(this, "horizontalLayout", "label", "ShaderSelectCombo");
    m_pLayout->addLayout(m_Selector.pLayout);

    m_pStale = new QLabel(this);
    m_pStale->setObjectName(QStringLiteral("StaleLabel"));
    m_pStale->hide();
    m_pLayout->addWidget(m_pStale);

    m_pOutput = new QPlainTextEdit(this);
    m_pOutput->setObjectName(QStringLiteral("OutputTextEdit"));
    m_pOutput->setReadOnly(true);
    m_pOutput->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_pOutput->setUndoRedoEnabled(false);
    m_pLayout->addWidget(m_pOutput, 1);

    RetranslateUi();
}

void CShaderEditASMOutput::RetranslateUi()
{
    m_Selector.pLabel->setText(tr("Shader:"));
}

void CShaderEditASMOutput::ShowSelector(bool bShow)
{
    ShowShaderSelector(m_Selector, bShow);
    const int iGap = bShow ? 6 : 0;
    m_pLayout->setContentsMargins(0, iGap, 0, 0);
    m_pLayout->setSpacing(iGap);
}

void CShaderEditASMOutput::OnCompileResults(const SCompileResult& Results)
{
    // A fresh array lets the texts of the previous result go at once.
    m_Texts = CZamTArray<QString>(Results.Profiles.GetSize());
    m_SourceLines.clear();
    for (uint32_t ui = 0; ui < Results.Profiles.GetSize(); ++ui)
    {
        m_Texts.Append(BreakOverlongLines(ToQString(Results.Profiles[ui].Disassembly)));
        m_SourceLines.append(ParseDisassemblyLines(m_Texts[ui], Results.Profiles[ui].iLineOffset));
    }
    // Greyed, so that it is not taken for the code of the text at hand.
    const bool bStale = Results.iEditsBehind > 0;
    m_pStale->setText(bStale ? DescribeStaleResult(Results.iEditsBehind) : QString());
    m_pStale->setVisible(bStale);
    QPalette Palette = m_pOutput->palette();
    Palette.setColor(QPalette::Text, palette().color(bStale ? QPalette::Disabled : QPalette::Active, QPalette::Text));
    m_pOutput->setPalette(Palette);

    if (m_Texts.GetSize() < 2)
    {
        ShowSelector(false);
        ShowText(m_Texts.GetSize() == 0 ? QString() : m_Texts[0]);
        HighlightSourceLine(true);
        return;
    }
    FillShaderSelector(m_Selector, Results.Profiles);
    ShowSelector(true);
    OnPopulateResults(0);
    ShowShaderOfSourceLine();
}

void CShaderEditASMOutput::OnPopulateResults(int iIndex)
{
    if (iIndex >= 0 && static_cast<uint32_t>(iIndex) < m_Texts.GetSize())
    {
        ShowText(m_Texts[static_cast<uint32_t>(iIndex)]);
        HighlightSourceLine(true);
        return;
    }
    ShowText(QString());
    ShowSelector(false);
}

void CShaderEditASMOutput::OnClearResults()
{
    m_Texts = CZamTArray<QString>();
    m_SourceLines.clear();
    m_pStale->hide();
    ClearShaderSelector(m_Selector);
    OnPopulateResults(-1);
}

void CShaderEditASMOutput::ShowText(const QString& Text)
{
    // Filling the view moves its cursor; that is no pick by the user.
    m_bPlacingCursor = true;
    m_pOutput->setPlainText(Text);
    m_bPlacingCursor = false;
}

int CShaderEditASMOutput::CurrentShader() const
{
    return m_Selector.pCombo->isHidden() ? 0 : m_Selector.pCombo->currentIndex();
}

bool CShaderEditASMOutput::HasInstructionsOf(int iShader, int iLine) const
{
    return iShader >= 0 && iShader < m_SourceLines.size() && m_SourceLines.at(iShader).contains(iLine);
}

void CShaderEditASMOutput::OnSourceLineSelected(int iLine)
{
    if (iLine == m_iSourceLine)
        return;
    m_iSourceLine = iLine;
    ShowShaderOfSourceLine();
}

void CShaderEditASMOutput::ShowShaderOfSourceLine()
{
    // The line may belong to another shader of the effect.
    if (m_iSourceLine > 0 && !HasInstructionsOf(CurrentShader(), m_iSourceLine) && !m_Selector.pCombo->isHidden())
    {
        for (int i = 0; i < m_SourceLines.size(); ++i)
        {
            if (HasInstructionsOf(i, m_iSourceLine))
            {
                m_Selector.pCombo->setCurrentIndex(i); // shows it, highlighted
                return;
            }
        }
    }
    HighlightSourceLine(true);
}

void CShaderEditASMOutput::HighlightSourceLine(bool bScroll)
{
    const int iShown = CurrentShader();
    QList<QTextEdit::ExtraSelection> Selections;
    if (m_iSourceLine > 0 && iShown >= 0 && iShown < m_SourceLines.size())
    {
        const QVector<int>& Lines = m_SourceLines.at(iShown);
        for (int i = 0; i < Lines.size(); ++i)
        {
            if (Lines.at(i) != m_iSourceLine)
                continue;
            QTextEdit::ExtraSelection Selection;
            Selection.cursor = QTextCursor(m_pOutput->document()->findBlockByNumber(i));
            Selection.format.setBackground(SourceLineBackground(m_pOutput->palette()));
            Selection.format.setProperty(QTextFormat::FullWidthSelection, true);
            Selections.append(Selection);
        }
    }
    m_pOutput->setExtraSelections(Selections);
    if (!bScroll || Selections.isEmpty())
        return;
    m_bPlacingCursor = true;
    m_pOutput->setTextCursor(Selections.first().cursor);
    // In the middle, so that the instructions around it show too.
    m_pOutput->centerCursor();
    m_bPlacingCursor = false;
}

void CShaderEditASMOutput::OnCursorMoved()
{
    if (m_bPlacingCursor)
        return;
    const int iShown = CurrentShader();
    const int iBlock = m_pOutput->textCursor().blockNumber();
    if (iShown < 0 || iShown >= m_SourceLines.size() || iBlock >= m_SourceLines.at(iShown).size())
        return;
    const int iLine = m_SourceLines.at(iShown).at(iBlock);
    if (iLine <= 0)
        return;
    m_iSourceLine = iLine;
    HighlightSourceLine(false);
    emit SourceLineSelected(iLine);
}

void CShaderEditASMOutput::OnFontChanged(const QFont& Font)
{
    m_pOutput->setFont(Font);
}
