#include "Common/ZamPreferences/ZamPreferences.h"
#include "ShaderEditComponent/compile/model/Settings.h"
#include "ShaderEditComponent/highlighting/PaletteColours.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"

#include <QGuiApplication>
#include <QSignalSpy>
#include <QtTest>

#include <cmath>

// Readability is measured, not assumed: every built-in colour must keep the contrast that
// text needs (4.5:1, the usual accessibility floor for body text) on the dark bases people use.
class CPaletteColoursTest : public QObject
{
    Q_OBJECT

private slots:
    void DarkDefaultsAreReadable();
    void SettingColoursFollowThePalette();
    void ControllerFollowsTheApplicationPalette();

private:
    static QPalette DarkPalette(const QColor& Base);
    static double Contrast(const QColor& A, const QColor& B);
    static QColor Over(const QColor& Top, const QColor& Bottom);
};

QPalette CPaletteColoursTest::DarkPalette(const QColor& Base)
{
    QPalette Palette;
    Palette.setColor(QPalette::Window, Base.lighter(110));
    Palette.setColor(QPalette::WindowText, QColor(0xE0, 0xE0, 0xE0));
    Palette.setColor(QPalette::Base, Base);
    Palette.setColor(QPalette::Text, QColor(0xE0, 0xE0, 0xE0));
    return Palette;
}

double CPaletteColoursTest::Contrast(const QColor& A, const QColor& B)
{
    auto Luminance = [](const QColor& Colour)
    {
        auto Channel = [](double d) { return d <= 0.03928 ? d / 12.92 : std::pow((d + 0.055) / 1.055, 2.4); };
        return 0.2126 * Channel(Colour.redF()) + 0.7152 * Channel(Colour.greenF()) + 0.0722 * Channel(Colour.blueF());
    };
    const double dA = Luminance(A);
    const double dB = Luminance(B);
    return (std::max(dA, dB) + 0.05) / (std::min(dA, dB) + 0.05);
}

QColor CPaletteColoursTest::Over(const QColor& Top, const QColor& Bottom)
{
    const double dAlpha = Top.alphaF();
    return QColor::fromRgbF(float(Top.redF() * dAlpha + Bottom.redF() * (1 - dAlpha)),
                            float(Top.greenF() * dAlpha + Bottom.greenF() * (1 - dAlpha)),
                            float(Top.blueF() * dAlpha + Bottom.blueF() * (1 - dAlpha)));
}

void CPaletteColoursTest::DarkDefaultsAreReadable()
{
    QVERIFY(!IsDarkPalette(QGuiApplication::palette()));
    // Black and the bases of common dark themes; on the lightest dark grey that themes use for
    // a base, the 3:1 that large text and marks need.
    const QList<QPair<QColor, double>> Bases = {{QColor(Qt::black), 4.5},
                                                {QColor(0x1E, 0x1E, 0x1E), 4.5},
                                                {QColor(0x2A, 0x2A, 0x2A), 4.5},
                                                {QColor(0x3C, 0x3F, 0x41), 3.0}};
    for (const auto& [Base, dFloor] : Bases)
    {
        const QPalette Palette = DarkPalette(Base);
        QVERIFY(IsDarkPalette(Palette));
        for (unsigned int i = 0; i < HighlightElement_Count; ++i)
        {
            const SHighlightElementRow& Dark = GetDarkHighlightElementRow(i);
            QCOMPARE(QLatin1String(Dark.pName), QLatin1String(GetHighlightElementRow(i).pName));
            const QColor Background = Over(QColor::fromRgba(Dark.uiBackground), Base);
            const double dContrast = Contrast(QColor::fromRgba(Dark.uiForeground), Background);
            QVERIFY2(dContrast >= dFloor,
                     qPrintable(QStringLiteral("%1 on %2: %3").arg(Dark.pName, Base.name()).arg(dContrast)));
        }
        const SGutterColours Gutters = GutterColours(Palette);
        QVERIFY(Contrast(Gutters.Text, Gutters.LineNumbers) >= dFloor);
        QVERIFY(Contrast(Gutters.Text, Gutters.CycleCounts) >= dFloor);
        // The two gutters and the text area stay apart, as in the light scheme.
        QVERIFY(Gutters.LineNumbers != Gutters.CycleCounts && Gutters.LineNumbers != Base);
    }
}

void CPaletteColoursTest::SettingColoursFollowThePalette()
{
    const Settings::SEditor Editor;
    const Settings::SCompiler Compiler;
    const QPalette Dark = DarkPalette(QColor(0x2A, 0x2A, 0x2A));
    const QColor Text = Dark.color(QPalette::Text);

    // Highlight backgrounds under the editor's text, and log colours on its base.
    for (const QColor& Background : {Editor.CursorMatchColour, Editor.FindResultColour})
    {
        const QColor Shown = ColourForPalette(Background, Dark);
        QVERIFY(Shown != Background);
        QVERIFY(Contrast(Text, Shown) >= 4.5);
        QVERIFY(Contrast(Shown, Dark.color(QPalette::Base)) > 1.2); // still visible as a highlight
        QCOMPARE(ColourForPalette(Background, QGuiApplication::palette()), Background);
    }
    for (const QColor& Foreground :
         {Compiler.ErrorFormat.foreground().color(), Compiler.WarningFormat.foreground().color()})
        QVERIFY(Contrast(ColourForPalette(Foreground, Dark), Dark.color(QPalette::Base)) >= 4.5);
    // What the user chose is shown as chosen.
    QCOMPARE(ColourForPalette(QColor(0x12, 0x34, 0x56), Dark), QColor(0x12, 0x34, 0x56));
}

void CPaletteColoursTest::ControllerFollowsTheApplicationPalette()
{
    std::unique_ptr<CZamPreferences> pStore = CZamPreferences::MakeInMemory();
    pStore->SetArgb(QStringLiteral("Colours/GLSL:ES/Keyword/Foreground"), 0xFF123456u);
    CShaderHighlightController Controller(pStore.get());
    QSignalSpy Changed(&Controller, &CShaderHighlightController::SyntaxColoursChanged);
    QVERIFY(!Controller.IsUsingDarkDefaults());
    QCOMPARE(Controller.GetFormat(HighlightElement_GLSLESCode).background().color(), QColor(Qt::white));

    const QPalette Light = QGuiApplication::palette();
    QGuiApplication::setPalette(DarkPalette(QColor(0x2A, 0x2A, 0x2A)));
    QVERIFY(Controller.IsUsingDarkDefaults());
    QCOMPARE(Changed.size(), 1);
    QCOMPARE(Controller.GetFormat(HighlightElement_GLSLESCode).foreground().color().rgba(),
             GetDarkHighlightElementRow(HighlightElement_GLSLESCode).uiForeground);
    // Effect backgrounds are solid on the palette's base, so a tag's run and its block show
    // one colour; code has none of its own.
    const QColor Tag = Controller.GetDefaultFormat(HighlightElement_ZFXTag).background().color();
    const QColor Expected = Over(QColor::fromRgba(GetDarkHighlightElementRow(HighlightElement_ZFXTag).uiBackground),
                                 QColor(0x2A, 0x2A, 0x2A));
    QCOMPARE(Tag.alpha(), 255);
    QVERIFY(std::abs(Tag.red() - Expected.red()) <= 1 && std::abs(Tag.blue() - Expected.blue()) <= 1);
    QCOMPARE(Controller.GetDefaultFormat(HighlightElement_GLSLESCode).background().color().alpha(), 0);
    // A customised element keeps the user's colour.
    QCOMPARE(Controller.GetFormat(HighlightElement_GLSLESKeyword).foreground().color(), QColor(0x12, 0x34, 0x56));

    QGuiApplication::setPalette(Light);
    QVERIFY(!Controller.IsUsingDarkDefaults());
    QCOMPARE(Changed.size(), 2);
    QCOMPARE(Controller.GetFormat(HighlightElement_GLSLESCode).background().color(), QColor(Qt::white));
}

QTEST_MAIN(CPaletteColoursTest)
#include "tst_PaletteColours.moc"
