#include "CShaderEditLogOutput.h"

#include "COutputHighlighter_p.h"
#include "OutputViewSupport.h"
#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/compile/parsers/CompilerOutputParser.h"

#include <QMouseEvent>
#include <QTextBlock>

namespace
{
constexpr unsigned int s_uiFormatSettings = Settings::CompilerSetting_ShouldFormat
                                            | Settings::CompilerSetting_ErrorFormat
                                            | Settings::CompilerSetting_WarningFormat;
} // namespace

CShaderEditLogOutput::CShaderEditLogOutput(CShaderEditController* pController, QWidget* pParent)
    : QPlainTextEdit(pParent)
    , m_pHighlighter(new COutputHighlighter(document(), pController->GetCompilerSettings()))
{
    setObjectName(QStringLiteral("ShaderEditLogOutput"));
    setReadOnly(true);

    connect(pController, &CShaderEditController::CompileOutputChanged, this,
            &CShaderEditLogOutput::OnCompileOutputChanged);
    connect(pController, &CShaderEditController::ClearCompileOutput, this, &QPlainTextEdit::clear);
    connect(pController, &CShaderEditController::CompilerSettingsChanged, this,
            &CShaderEditLogOutput::OnCompilerSettingsChanged);
}

void CShaderEditLogOutput::OnCompileOutputChanged(const QString& Log)
{
    setPlainText(BreakOverlongLines(Log));
}

void CShaderEditLogOutput::OnCompilerSettingsChanged(const Settings::SCompiler& settings, unsigned int uiSettingMask)
{
    if (uiSettingMask & s_uiFormatSettings)
        m_pHighlighter->SetSettings(settings);
}

void CShaderEditLogOutput::mouseDoubleClickEvent(QMouseEvent* pEvent)
{
    QPlainTextEdit::mouseDoubleClickEvent(pEvent);

    const QPoint Position = pEvent->position().toPoint();
    const QTextBlock Block = cursorForPosition(Position).block();
    // Below the last line the nearest block is the last one; that is not a click on it.
    if (!Block.isValid() || !blockBoundingGeometry(Block).translated(contentOffset()).contains(Position))
        return;
    // The log holds the lines already moved to the document's, so they are read as they stand.
    const SCompilerOutput Parsed = ParseCompilerOutput(Block.text().toUtf8(), 0);
    if (Parsed.Messages.isEmpty())
        return;
    const SCompileMessage& Message = Parsed.Messages.first();
    if (!Message.File.isEmpty())
        emit JumpToFileLine(Message.File, Message.iFileLine);
    else if (Message.iLine > 0)
        emit JumpToLine(Message.iLine);
}
