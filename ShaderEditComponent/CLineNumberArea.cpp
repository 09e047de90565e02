#include "CLineNumberArea.h"

#include "CShaderEditPanel.h"

CLineNumberArea::CLineNumberArea(CShaderEditPanel* pPanel, int iKind)
    : QWidget(pPanel)
    , m_pPanel(pPanel)
    , m_iKind(iKind)
{
}

QSize CLineNumberArea::sizeHint() const
{
    switch (m_iKind)
    {
    case Kind_LineNumbers:
        return QSize(m_pPanel->LineNumberAreaWidth(), 0);
    case Kind_CycleCounts:
        return QSize(m_pPanel->CycleCountAreaWidth(), 0);
    default:
        return QSize(0, 0);
    }
}

void CLineNumberArea::paintEvent(QPaintEvent* pEvent)
{
    m_pPanel->PaintGutter(pEvent, m_iKind);
}
