#include "CLineNumberArea.h"

#include <QHelpEvent>
#include <QToolTip>

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

bool CLineNumberArea::event(QEvent* pEvent)
{
    if (pEvent->type() != QEvent::ToolTip)
        return QWidget::event(pEvent);
    const auto* pHelp = static_cast<QHelpEvent*>(pEvent);
    const QString Text = m_pHost->GutterToolTip(m_iKind, pHelp->pos());
    if (Text.isEmpty())
    {
        QToolTip::hideText();
        pEvent->ignore();
    }
    else
    {
        QToolTip::showText(pHelp->globalPos(), Text, this);
    }
    return true;
}

void CLineNumberArea::paintEvent(QPaintEvent* pEvent)
{
    m_pHost->PaintGutter(pEvent, m_iKind);
}
