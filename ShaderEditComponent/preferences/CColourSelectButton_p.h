#pragma once

#include <QColor>
#include <QPushButton>

// A button that shows a colour as a swatch and lets the user pick another one.
class CColourSelectButton : public QPushButton
{
    Q_OBJECT

public:
    explicit CColourSelectButton(QWidget* pParent = nullptr);

    const QColor& GetColour() const { return m_Colour; }

signals:
    // The colour differs from before, whether picked by the user or set by the program.
    void ColourChanged(const QColor& Colour);

public slots:
    void OnSetColour(const QColor& Colour);
    // Asks the user for a colour, starting from the current one.
    void OnChooseColour();

protected:
    void changeEvent(QEvent* pEvent) override;

private:
    void UpdateSwatch();

    QColor m_Colour;
};
