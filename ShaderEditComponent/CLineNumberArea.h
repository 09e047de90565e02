#pragma once

#include <QWidget>

class QPaintEvent;

// What a gutter needs from the editor it belongs to. The editor computes the widths and
// paints, so both gutters follow its font and scrolling.
class IGutterHost
{
public:
    virtual ~IGutterHost() = default;
    virtual int GutterAreaWidth(int iKind) const = 0;
    virtual void PaintGutter(QPaintEvent* pEvent, int iKind) = 0;
    // What the gutter says about the line at Position; empty for no tool tip.
    virtual QString GutterToolTip(int iKind, const QPoint& Position) const = 0;
};

// One gutter at the left of an edit panel.
class CLineNumberArea : public QWidget
{
    Q_OBJECT

public:
    enum EKind : int
    {
        Kind_LineNumbers = 0,
        Kind_CycleCounts = 1,
    };

    // pHost must outlive the gutter; pParent is the widget the gutter is drawn on.
    CLineNumberArea(QWidget* pParent, IGutterHost* pHost, int iKind);

    QSize sizeHint() const override;

protected:
    bool event(QEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;

private:
    IGutterHost* m_pHost;
    int m_iKind;
};
