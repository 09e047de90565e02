#pragma once

#include "ShaderEditComponent/compile/model/Settings.h"

#include <QPlainTextEdit>

class CShaderEditController;
class COutputHighlighter;

// The compiler log of the last compile. Errors and warnings are coloured; double-clicking
// one asks for a jump to the line it reports, in the document or in an included header.
class CShaderEditLogOutput : public QPlainTextEdit
{
    Q_OBJECT

public:
    explicit CShaderEditLogOutput(CShaderEditController* pController, QWidget* pParent = nullptr);

    const COutputHighlighter* GetHighlighter() const { return m_pHighlighter; }

signals:
    // Line as the message states it: 1-based, in the document that was compiled.
    void JumpToLine(int iLine);
    // A message about a line of an included header: the header as the compiler named it.
    void JumpToFileLine(const QString& Path, int iLine);

private slots:
    void OnCompileOutputChanged(const QString& Log);
    void OnCompilerSettingsChanged(const Settings::SCompiler& settings, unsigned int uiSettingMask);

protected:
    void mouseDoubleClickEvent(QMouseEvent* pEvent) override;

private:
    COutputHighlighter* m_pHighlighter;
};
