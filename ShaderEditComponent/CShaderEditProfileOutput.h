#pragma once

#include "OutputViewSupport.h"
#include "ShaderEditComponent/compile/model/CompileResult.h"
#include "Tools/ZamTArray.h"

#include <QFrame>

#include <array>

class CShaderEditController;
class QFormLayout;
class QLabel;

// The performance figures of the last compile: totals, compiler and version, and the
// figures of one shader, picked with a selector when an effect file yields several, with how
// the last change moved them. A last good result shown for text that does not compile is
// greyed and says how many edits ago it was.
class CShaderEditProfileOutput : public QFrame
{
    Q_OBJECT

public:
    explicit CShaderEditProfileOutput(CShaderEditController* pController, QWidget* pParent = nullptr);

public slots:
    void OnCompileResults(const SCompileResult& Results);
    void OnPopulateResults(int iIndex);
    void OnClearResults();

private:
    // Caption and value label pairs, in the order of the form.
    enum EFigure
    {
        Figure_PerLineTotal,
        Figure_EmulatedCycleTotal,
        Figure_Compiler,
        Figure_Version,
        Figure_EmulatedCycles,
        Figure_EmulatedCyclesWorst,
        Figure_TempReg,
        Figure_PrimaryAttribs,
        Figure_NonDepend,
        Figure_GlobalTXC,
        Figure_Count
    };

    void SetupUi();
    QFrame* CreateGlobalEstimates(QWidget* pParent);
    QFormLayout* CreateForm();
    void RetranslateUi();

    void Reset();
    void MakeFiguresSelectable();
    void ShowWorstCaseRow(bool bShow);
    void SetFigure(EFigure eFigure, int iValue);
    void ShowStale(int iEditsBehind);

    std::array<QLabel*, Figure_Count> m_apCaptions{};
    std::array<QLabel*, Figure_Count> m_apValues{};
    SShaderSelector m_Selector;
    QFormLayout* m_pForm = nullptr;
    CZamTArray<SCompileResult::SProfile> m_Profiles;
    CZamTArray<SCompileResult::SProfile> m_PreviousProfiles;
    QLabel* m_pStale = nullptr;
    QLabel* m_pChange = nullptr;
};
