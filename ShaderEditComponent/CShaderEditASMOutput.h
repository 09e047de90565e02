#pragma once

#include "OutputViewSupport.h"
#include "ShaderEditComponent/compile/model/CompileResult.h"
#include "Tools/ZamTArray.h"

#include <QFrame>
#include <QString>

class CShaderEditController;
class CShaderHighlightController;
class QPlainTextEdit;
class QVBoxLayout;

// The disassembly of the last compile. An effect file yields one text per shader; a
// selector then picks which one is shown.
class CShaderEditASMOutput : public QFrame
{
    Q_OBJECT

public:
    CShaderEditASMOutput(CShaderEditController* pController, const CShaderHighlightController* pHighlightController,
                         QWidget* pParent = nullptr);

public slots:
    void OnCompileResults(const SCompileResult& Results);
    void OnPopulateResults(int iIndex);
    void OnClearResults();

private slots:
    void OnFontChanged(const QFont& Font);

private:
    void SetupUi();
    void RetranslateUi();
    void ShowSelector(bool bShow);

    QVBoxLayout* m_pLayout = nullptr;
    SShaderSelector m_Selector;
    QPlainTextEdit* m_pOutput = nullptr;
    CZamTArray<QString> m_Texts; // one per shader, in result order
};
