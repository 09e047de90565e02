#include "CShaderEditASMOutput.h"

#include "OutputViewSupport.h"
#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
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
}

void CShaderEditASMOutput::SetupUi()
{
    setObjectName(QStringLiteral("ASMWidget"));
    m_pLayout = new QVBoxLayout(this);
    m_pLayout->setObjectName(QStringLiteral("verticalLayout"));

    m_Selector = CreateShaderSelector(this, "horizontalLayout", "label", "ShaderSelectCombo");
    m_pLayout->addLayout(m_Selector.pLayout);

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
    for (uint32_t ui = 0; ui < Results.Profiles.GetSize(); ++ui)
        m_Texts.Append(BreakOverlongLines(ToQString(Results.Profiles[ui].Disassembly)));

    if (m_Texts.GetSize() < 2)
    {
        ShowSelector(false);
        if (m_Texts.GetSize() == 0)
            m_pOutput->clear();
        else
            m_pOutput->setPlainText(m_Texts[0]);
        return;
    }
    FillShaderSelector(m_Selector, Results.Profiles);
    ShowSelector(true);
    OnPopulateResults(0);
}

void CShaderEditASMOutput::OnPopulateResults(int iIndex)
{
    if (iIndex >= 0 && static_cast<uint32_t>(iIndex) < m_Texts.GetSize())
    {
        m_pOutput->setPlainText(m_Texts[static_cast<uint32_t>(iIndex)]);
        return;
    }
    m_pOutput->clear();
    ShowSelector(false);
}

void CShaderEditASMOutput::OnClearResults()
{
    m_Texts = CZamTArray<QString>();
    ClearShaderSelector(m_Selector);
    OnPopulateResults(-1);
}

void CShaderEditASMOutput::OnFontChanged(const QFont& Font)
{
    m_pOutput->setFont(Font);
}
