#include "CLineNumberArea.h"

CLineNumberArea::CLineNumberArea(QWidget* pParent, IGutterHost* pHost, int iKind)
    : QWidget(pParent)
    , m_pHost(pHost)
    , m_iKind(iKind)
{
}

QSize CLineNumberArea::sizeHint() const
{
    return QSize(m_pHost->GutterAreaWidth(m_iKind), 0);
}

void CLineNumberArea::paintEvent(QPaintEvent* pEvent)
{
    m_pHost->PaintGutter(pEvent, m_iKind);
}
