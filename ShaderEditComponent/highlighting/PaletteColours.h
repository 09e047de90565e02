#pragma once

#include "ShaderHighlightElements.h"

#include <QColor>
#include <QPalette>

// Colours that follow the desktop's palette. Under a dark palette the built-in colours, made
// for black text on white, turn into a dark set of the same hues; a colour the user chose is
// always shown as chosen.

// True when the palette draws light text on a dark base.
[[nodiscard]] bool IsDarkPalette(const QPalette& Palette);

// The dark built-in row of an element: the light row's hues made light enough to read on a
// dark base. Code has no background of its own (the editor's base shows); effect blocks lay a
// faint light veil over it. uiElement must be below HighlightElement_Count.
const SHighlightElementRow& GetDarkHighlightElementRow(unsigned int uiElement);

// A dark row's background as drawn on Base. A veil becomes the solid colour it makes there, so
// a text run and the effect block behind it show one colour instead of adding up; no
// background stays none.
[[nodiscard]] QColor DarkBackgroundOn(quint32 uiBackground, const QColor& Base);

// A colour setting as shown under Palette: one of the built-in light defaults (the cursor-match
// and find-result backgrounds, the log's error and warning colours) becomes its dark
// counterpart under a dark palette; every other colour stays as it is.
[[nodiscard]] QColor ColourForPalette(const QColor& Colour, const QPalette& Palette);

struct SGutterColours
{
    QColor LineNumbers; // background of the line-number gutter
    QColor CycleCounts; // background of the cycle-count gutter
    QColor Text;
};

[[nodiscard]] SGutterColours GutterColours(const QPalette& Palette);
