#include "CColourSelectButton_p.h"

#include <QColorDialog>
#include <QEvent>
#include <QPainter>
#include <QPixmap>

CColourSelectButton::CColourSelectButton(QWidget* pParent)
    : QPushButton(pParent)
{
    setMinimumWidth(64);
    connect(this, &QPushButton::clicked, this, &CColourSelectButton::OnChooseColour);
    UpdateSwatch();
}

void CColourSelectButton::OnSetColour(const QColor& Colour)
{
    if (Colour == m_Colour)
        return;
    m_Colour = Colour;
    UpdateSwatch();
    emit ColourChanged(m_Colour);
}

void CColourSelectButton::OnChooseColour()
{
    const QColor Chosen = QColorDialog::getColor(m_Colour.isValid() ? m_Colour : QColor(Qt::white), this);
    if (Chosen.isValid())
        OnSetColour(Chosen);
}

void CColourSelectButton::changeEvent(QEvent* pEvent)
{
    QPushButton::changeEvent(pEvent);
    // A disabled button shows a greyed swatch, like its text.
    if (pEvent->type() == QEvent::EnabledChange)
        UpdateSwatch();
}

void CColourSelectButton::UpdateSwatch()
{
    const QSize Size(40, 14);
    QPixmap Swatch(Size);
    Swatch.fill(Qt::transparent);
    QPainter Painter(&Swatch);
    Painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
    if (m_Colour.isValid())
        Painter.setBrush(isEnabled() ? m_Colour
                                     : QColor(m_Colour.lightness(), m_Colour.lightness(), m_Colour.lightness()));
    Painter.drawRect(QRect(QPoint(0, 0), Size - QSize(1, 1)));
    Painter.end();
    setIcon(Swatch);
    setIconSize(Size);
    setToolTip(m_Colour.isValid() ? m_Colour.name(QColor::HexRgb) : QString());
}
