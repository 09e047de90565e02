#pragma once

#include <QTextCharFormat>
#include <QtGlobal>

// Syntax elements in their fixed order; the index is also how the colour scheme and the
// rule tables address an element.
enum EHighlightElement : unsigned int
{
    HighlightElement_None = 0,
    HighlightElement_Error,
    HighlightElement_ZFXCode,
    HighlightElement_ZFXKeyword,
    HighlightElement_ZFXValue,
    HighlightElement_ZFXSemantic,
    HighlightElement_ZFXTag,
    HighlightElement_ZFXComment,
    HighlightElement_GLSLCode,
    HighlightElement_GLSLKeyword,
    HighlightElement_GLSLBuiltInFunction,
    HighlightElement_GLSLBuiltInType,
    HighlightElement_GLSLPreprocessor,
    HighlightElement_GLSLComment,
    HighlightElement_GLSLNumber,
    HighlightElement_GLSLESCode,
    HighlightElement_GLSLESKeyword,
    HighlightElement_GLSLESBuiltInFunction,
    HighlightElement_GLSLESBuiltInType,
    HighlightElement_GLSLESPreprocessor,
    HighlightElement_GLSLESComment,
    HighlightElement_GLSLESNumber,
    HighlightElement_HLSLCode,
    HighlightElement_HLSLKeyword,
    HighlightElement_HLSLBuiltInFunction,
    HighlightElement_HLSLBuiltInType,
    HighlightElement_HLSLPreprocessor,
    HighlightElement_HLSLComment,
    HighlightElement_HLSLNumber,
    HighlightElement_OpenCLCode,
    HighlightElement_OpenCLKeyword,
    HighlightElement_OpenCLBuiltInFunction,
    HighlightElement_OpenCLBuiltInType,
    HighlightElement_OpenCLPreprocessor,
    HighlightElement_OpenCLComment,
    HighlightElement_OpenCLNumber,
    HighlightElement_Count
};

// One built-in row of the colour scheme. Colours are 32-bit ARGB.
struct SHighlightElementRow
{
    const char* pName;
    quint32 uiForeground;
    quint32 uiBackground;
    bool bBold;
    bool bUnderline;
};

// uiElement must be below HighlightElement_Count.
const SHighlightElementRow& GetHighlightElementRow(unsigned int uiElement);

[[nodiscard]] QTextCharFormat MakeHighlightFormat(quint32 uiForeground, quint32 uiBackground, bool bBold,
                                                  bool bUnderline);

// Saved as bold when heavier than the normal weight (Qt 6 weights: Normal is 400).
[[nodiscard]] bool IsHighlightFormatBold(const QTextCharFormat& Format);
