#include "DesktopIntegration.h"

#include <QApplication>
#include <QStyle>
#include <QStyleFactory>

QString DesktopApplicationId()
{
    return QStringLiteral("com.brenmoor.ZamShaderEditor");
}

QPalette DarkFusionPalette()
{
    const QColor Window(0x35, 0x37, 0x3A);
    const QColor Base(0x25, 0x27, 0x2A);
    const QColor Text(0xE2, 0xE2, 0xE2);
    const QColor Disabled(0x80, 0x80, 0x80);
    QPalette Palette(Text, Window, Window.lighter(130), Window.darker(150), Window.darker(120), Text, Text, Base,
                     Window);
    Palette.setColor(QPalette::AlternateBase, Window);
    Palette.setColor(QPalette::ToolTipBase, Window.lighter(120));
    Palette.setColor(QPalette::ToolTipText, Text);
    Palette.setColor(QPalette::PlaceholderText, Disabled);
    Palette.setColor(QPalette::Highlight, QColor(0x3D, 0x7A, 0xD6));
    Palette.setColor(QPalette::HighlightedText, Qt::white);
    Palette.setColor(QPalette::Link, QColor(0x6F, 0xA8, 0xFF));
    Palette.setColor(QPalette::LinkVisited, QColor(0xB3, 0x8C, 0xFF));
    for (QPalette::ColorRole eRole : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        Palette.setColor(QPalette::Disabled, eRole, Disabled);
    return Palette;
}

void SetUpDesktopIntegration()
{
    QGuiApplication::setDesktopFileName(DesktopApplicationId());
    const QString Wanted = qEnvironmentVariable("ZAMSHADEREDITOR_PALETTE").toLower();
    if (Wanted != QLatin1String("dark") && Wanted != QLatin1String("light"))
        return;
    QStyle* pFusion = QStyleFactory::create(QStringLiteral("Fusion"));
    if (!pFusion)
        return;
    QApplication::setStyle(pFusion);
    QApplication::setPalette(Wanted == QLatin1String("dark") ? DarkFusionPalette() : pFusion->standardPalette());
}
