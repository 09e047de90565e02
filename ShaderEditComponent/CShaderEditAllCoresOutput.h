#pragma once

#include "OutputViewSupport.h"
#include "ShaderEditComponent/compile/controller/CAllCoresCompile.h"

#include <QFrame>

class QLabel;
class QTableWidget;

// The current shader compiled for every bundled core, one row per core: the estimated cycles,
// the worst case, how much dearer than the cheapest core, registers, attributes, texture
// loads and instructions. The dearest core's row stands out, so the core a shader is
// expensive on is seen at a glance. An effect file's shaders are picked with a selector.
class CShaderEditAllCoresOutput : public QFrame
{
    Q_OBJECT

public:
    enum EColumn
    {
        Column_Core,
        Column_Cycles,
        Column_WorstCycles,
        Column_Relative,
        Column_Registers,
        Column_Attributes,
        Column_TextureLoads,
        Column_Instructions,
        Column_Status,
        Column_Count
    };

    explicit CShaderEditAllCoresOutput(QWidget* pParent = nullptr);

    const QTableWidget* GetTable() const { return m_pTable; }
    QString GetNote() const;

public slots:
    void OnResult(const SAllCoresResult& Result);
    // A compile for the cores is under way: the figures shown are those of the text before.
    void OnCompiling();
    // The current document is of a kind that is not compiled for the cores, or there is none.
    void OnNotCompiled();
    void OnClear();

private:
    void OnShaderSelected(int iIndex);
    void FillRows(const CZamTString& Shader);
    void SetRetranslatedHeaders();

    QLabel* m_pNote = nullptr;
    SShaderSelector m_Selector;
    QTableWidget* m_pTable = nullptr;
    SAllCoresResult m_Result;
};
