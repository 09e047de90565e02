#pragma once

#include "ShaderHighlightElements.h"

// Document-type masks the highlighter dispatches on.
enum EHighlightTypeMask : unsigned int
{
    HighlightMask_GLSLES = 0x3,
    HighlightMask_GLSL = 0xC,
    HighlightMask_Effect = 0x30,
    HighlightMask_HLSL = 0x3C0,
    HighlightMask_OpenCL = 0x400,
    HighlightMask_Code = 0x7CF, // every type but the two effect types
};

// Block state bits.
enum EHighlightBlockState : int
{
    HighlightState_CodeSection = 2, // inside an effect file's [GLSL_CODE] section
    HighlightState_OpenComment = 4, // ends inside an unterminated /* comment
};

// One rule: an element coloured by a list of QRegExp patterns for the types in the mask.
struct SHighlightRuleTable
{
    unsigned int uiElement;
    unsigned int uiTypeMask;
    const char* const* ppPatterns;
    unsigned int uiPatternCount;
};

struct SHighlightRuleSet
{
    const SHighlightRuleTable* pTables; // in the order they are built, not by element
    unsigned int uiCount;
};

[[nodiscard]] SHighlightRuleSet GetShaderHighlightRules();

// The fixed expressions.
namespace HighlightPattern
{
extern const char* const CommentStart;
extern const char* const CommentEnd;
extern const char* const CodeSectionStart;
extern const char* const CodeSectionEnd;
extern const char* const LineComment;
extern const char* const Number;
extern const char* const Preprocessor;
} // namespace HighlightPattern

// Element of each role for a type mask. The tests run in the order effect, GLSL:ES, GLSL,
// HLSL, OpenCL; no match gives HighlightElement_None. Preprocessor and number have no
// effect branch.
unsigned int GetCodeElement(unsigned int uiMask);
unsigned int GetCommentElement(unsigned int uiMask);
unsigned int GetPreprocessorElement(unsigned int uiMask);
unsigned int GetNumberElement(unsigned int uiMask);
