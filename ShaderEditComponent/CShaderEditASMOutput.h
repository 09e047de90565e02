#pragma once

#include "OutputViewSupport.h"
#include "ShaderEditComponent/compile/model/CompileResult.h"
#include "Tools/ZamTArray.h"

#include <QFrame>
#include <QString>
#include <QVector>

class CShaderEditController;
class CShaderHighlightController;
class QLabel;
class QPlainTextEdit;
class QVBoxLayout;

// The disassembly of the last compile. An effect file yields one text per shader; a
// selector then picks which one is shown. When the disassembly names each instruction's
// source line, the instructions of the editor's line are highlighted, and picking an
// instruction names its line. A last good result shown for text that does not compile is
// greyed and says how many edits ago it was.
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
    // The editor's 1-based line: its instructions are highlighted and scrolled to, in the
    // shader that has them.
    void OnSourceLineSelected(int iLine);

signals:
    // The user put the cursor on an instruction of that 1-based document line.
    void SourceLineSelected(int iLine);

private slots:
    void OnFontChanged(const QFont& Font);

private:
    void SetupUi();
    void RetranslateUi();
    void ShowSelector(bool bShow);
    void ShowText(const QString& Text);
    void ShowShaderOfSourceLine();
    void HighlightSourceLine(bool bScroll);
    int CurrentShader() const;
    bool HasInstructionsOf(int iShader, int iLine) const;
    void OnCursorMoved();

    QVBoxLayout* m_pLayout = nullptr;
    SShaderSelector m_Selector;
    QPlainTextEdit* m_pOutput = nullptr;
    QLabel* m_pStale = nullptr;
    CZamTArray<QString> m_Texts;         // one per shader, in result order
    QVector<QVector<int>> m_SourceLines; // per shader, the document line of each text line (0: none)
    int m_iSourceLine = 0;               // the line whose instructions are highlighted
    bool m_bPlacingCursor = false;
};
