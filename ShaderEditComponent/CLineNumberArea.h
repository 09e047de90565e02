#pragma once

#include <QWidget>

class CShaderEditPanel;

// One gutter at the left of an edit panel. The panel computes the width and paints it, so
// both gutters follow the panel's font and scrolling.
class CLineNumberArea : public QWidget
{
    Q_OBJECT

public:
    enum EKind : int
    {
        Kind_LineNumbers = 0,
        Kind_CycleCounts = 1,
    };

    CLineNumberArea(CShaderEditPanel* pPanel, int iKind);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* pEvent) override;

private:
    CShaderEditPanel* m_pPanel;
    int m_iKind;
};
