#include "PaletteColours.h"

#include <algorithm>

namespace
{
constexpr quint32 s_uiText = 0xFFDCDCDCu;
constexpr quint32 s_uiNoBackground = 0x00000000u;
constexpr quint32 s_uiEffectVeil = 0x12FFFFFFu;
constexpr quint32 s_uiTagVeil = 0x1EFFFFFFu;
constexpr quint32 s_uiCommentVeil = 0x1280FF80u;

// The four languages share one set, as they do in the light scheme.
#define ZAM_DARK_LANGUAGE(Name)                                                                                        \
    {Name "/Code", s_uiText, s_uiNoBackground, false, false},                                                          \
        {Name "/Keyword", 0xFF82B1FFu, s_uiNoBackground, false, false},                                                \
        {Name "/Built-in Function", 0xFFFF8F87u, s_uiNoBackground, false, false},                                      \
        {Name "/Built-in Type", 0xFFFF8FB3u, s_uiNoBackground, false, false},                                          \
        {Name "/Preprocessor", 0xFFB4B4B4u, s_uiNoBackground, false, false},                                           \
        {Name "/Comment", 0xFF8BCF8Bu, s_uiNoBackground, false, false},                                                \
    {                                                                                                                  \
        Name "/Number", 0xFF5FD3D8u, s_uiNoBackground, false, false                                                    \
    }

const SHighlightElementRow s_DarkRows[HighlightElement_Count] = {
    {"None", s_uiText, s_uiNoBackground, false, false},
    {"Error", 0xFFFF8A8Au, s_uiNoBackground, false, true},
    {"ZFX/Code", s_uiText, s_uiEffectVeil, false, false},
    {"ZFX/Keyword", 0xFF8AB4FFu, s_uiEffectVeil, false, false},
    {"ZFX/Value", 0xFFFF8FD0u, s_uiEffectVeil, false, false},
    {"ZFX/Semantic", 0xFFE39AFFu, s_uiEffectVeil, false, false},
    {"ZFX/Tag", 0xFF5CC8FFu, s_uiTagVeil, false, false},
    {"ZFX/Comment", 0xFF8BCF8Bu, s_uiCommentVeil, false, false},
    ZAM_DARK_LANGUAGE("GLSL"),
    ZAM_DARK_LANGUAGE("GLSL:ES"),
    ZAM_DARK_LANGUAGE("HLSL"),
    ZAM_DARK_LANGUAGE("OpenCL"),
};
#undef ZAM_DARK_LANGUAGE

struct SColourPair
{
    quint32 uiLight;
    quint32 uiDark;
};

// The built-in defaults of the editor and log colour settings, and what they become.
const SColourPair s_SettingColours[] = {
    {0xFFC4FFFFu, 0xFF1F5552u}, // cursor matches
    {0xFFFFFF80u, 0xFF5E5A1Cu}, // find results
    {0xFFFF0000u, 0xFFFF8A8Au}, // log errors
    {0xFFE25A00u, 0xFFFFA55Cu}, // log warnings
};
} // namespace

bool IsDarkPalette(const QPalette& Palette)
{
    return Palette.color(QPalette::Base).lightness() < Palette.color(QPalette::Text).lightness();
}

const SHighlightElementRow& GetDarkHighlightElementRow(unsigned int uiElement)
{
    Q_ASSERT(uiElement < HighlightElement_Count);
    return s_DarkRows[uiElement];
}

QColor DarkBackgroundOn(quint32 uiBackground, const QColor& Base)
{
    const QColor Veil = QColor::fromRgba(uiBackground);
    if (Veil.alpha() == 0)
        return Veil;
    const float fAlpha = Veil.alphaF();
    auto Mix = [fAlpha](float fTop, float fBottom) { return fTop * fAlpha + fBottom * (1.0f - fAlpha); };
    return QColor::fromRgbF(Mix(Veil.redF(), Base.redF()), Mix(Veil.greenF(), Base.greenF()),
                            Mix(Veil.blueF(), Base.blueF()));
}

QColor ColourForPalette(const QColor& Colour, const QPalette& Palette)
{
    if (!IsDarkPalette(Palette))
        return Colour;
    for (const SColourPair& Pair : s_SettingColours)
    {
        if (Colour.rgba() == Pair.uiLight)
            return QColor::fromRgba(Pair.uiDark);
    }
    return Colour;
}

SGutterColours GutterColours(const QPalette& Palette)
{
    if (!IsDarkPalette(Palette))
        return {QColor(Qt::lightGray), QColor(191, 215, 215, 255), QColor(Qt::black)};
    // The light gutters' grey and grey-teal, as dark shades a little apart from the base.
    const QColor Base = Palette.color(QPalette::Base);
    const QColor LineNumbers =
        QColor::fromHsl(Base.hslHue(), Base.hslSaturation(), std::min(255, Base.lightness() + 24));
    return {LineNumbers, QColor(0x2D, 0x47, 0x47), Palette.color(QPalette::Text)};
}
