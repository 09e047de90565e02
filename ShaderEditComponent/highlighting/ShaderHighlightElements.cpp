#include "ShaderHighlightElements.h"

#include <QBrush>
#include <QColor>
#include <QFont>

namespace
{
const SHighlightElementRow s_ElementRows[HighlightElement_Count] = {
    {"None", 0xFF000000u, 0xFFFFFFFFu, false, false},
    {"Error", 0xFFFF0000u, 0xFFFFFFFFu, false, true},
    {"ZFX/Code", 0xFF000000u, 0xFFFBFBFBu, false, false},
    {"ZFX/Keyword", 0xFF0000A0u, 0xFFFBFBFBu, false, false},
    {"ZFX/Value", 0xFFFF00A0u, 0xFFFBFBFBu, false, false},
    {"ZFX/Semantic", 0xFFC800C8u, 0xFFFBFBFBu, false, false},
    {"ZFX/Tag", 0xFF0064B4u, 0xFFF4F4F4u, false, false},
    {"ZFX/Comment", 0xFF006C00u, 0xFFFBFFFBu, false, false},
    {"GLSL/Code", 0xFF000000u, 0xFFFFFFFFu, false, false},
    {"GLSL/Keyword", 0xFF0000FFu, 0xFFFFFFFFu, false, false},
    {"GLSL/Built-in Function", 0xFFC80000u, 0xFFFFFFFFu, false, false},
    {"GLSL/Built-in Type", 0xFFA80020u, 0xFFFFFFFFu, false, false},
    {"GLSL/Preprocessor", 0xFF606060u, 0xFFFFFFFFu, false, false},
    {"GLSL/Comment", 0xFF006C00u, 0xFFFFFFFFu, false, false},
    {"GLSL/Number", 0xFF0050A0u, 0xFFFFFFFFu, false, false},
    {"GLSL:ES/Code", 0xFF000000u, 0xFFFFFFFFu, false, false},
    {"GLSL:ES/Keyword", 0xFF0000FFu, 0xFFFFFFFFu, false, false},
    {"GLSL:ES/Built-in Function", 0xFFC80000u, 0xFFFFFFFFu, false, false},
    {"GLSL:ES/Built-in Type", 0xFFA80020u, 0xFFFFFFFFu, false, false},
    {"GLSL:ES/Preprocessor", 0xFF606060u, 0xFFFFFFFFu, false, false},
    {"GLSL:ES/Comment", 0xFF006C00u, 0xFFFFFFFFu, false, false},
    {"GLSL:ES/Number", 0xFF0050A0u, 0xFFFFFFFFu, false, false},
    {"HLSL/Code", 0xFF000000u, 0xFFFFFFFFu, false, false},
    {"HLSL/Keyword", 0xFF0000FFu, 0xFFFFFFFFu, false, false},
    {"HLSL/Built-in Function", 0xFFC80000u, 0xFFFFFFFFu, false, false},
    {"HLSL/Built-in Type", 0xFFA80020u, 0xFFFFFFFFu, false, false},
    {"HLSL/Preprocessor", 0xFF606060u, 0xFFFFFFFFu, false, false},
    {"HLSL/Comment", 0xFF006C00u, 0xFFFFFFFFu, false, false},
    {"HLSL/Number", 0xFF0050A0u, 0xFFFFFFFFu, false, false},
    {"OpenCL/Code", 0xFF000000u, 0xFFFFFFFFu, false, false},
    {"OpenCL/Keyword", 0xFF0000FFu, 0xFFFFFFFFu, false, false},
    {"OpenCL/Built-in Function", 0xFFC80000u, 0xFFFFFFFFu, false, false},
    {"OpenCL/Built-in Type", 0xFFA80020u, 0xFFFFFFFFu, false, false},
    {"OpenCL/Preprocessor", 0xFF606060u, 0xFFFFFFFFu, false, false},
    {"OpenCL/Comment", 0xFF006C00u, 0xFFFFFFFFu, false, false},
    {"OpenCL/Number", 0xFF0050A0u, 0xFFFFFFFFu, false, false},
};
} // namespace

const SHighlightElementRow& GetHighlightElementRow(unsigned int uiElement)
{
    Q_ASSERT(uiElement < HighlightElement_Count);
    return s_ElementRows[uiElement];
}

QTextCharFormat MakeHighlightFormat(quint32 uiForeground, quint32 uiBackground, bool bBold, bool bUnderline)
{
    QTextCharFormat Format;
    Format.setBackground(QBrush(QColor::fromRgba(uiBackground)));
    Format.setForeground(QBrush(QColor::fromRgba(uiForeground)));
    Format.setFontWeight(bBold ? QFont::Bold : QFont::Normal);
    Format.setFontUnderline(bUnderline);
    return Format;
}

bool IsHighlightFormatBold(const QTextCharFormat& Format)
{
    return Format.fontWeight() > QFont::Normal;
}
