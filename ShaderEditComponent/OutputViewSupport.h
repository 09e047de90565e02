#pragma once

// Pieces the compiler output views share.

#include "ShaderEditComponent/compile/model/CompileResult.h"
#include "Tools/ZamTArray.h"
#include "Tools/ZamTString.h"

#include <QColor>
#include <QString>

class QComboBox;
class QPalette;
class QHBoxLayout;
class QLabel;
class QWidget;

// Longest line the output views show in one piece. Qt lays out a line as a whole each time
// it is shown, which for a line of megabytes (a custom compiler's binary dump, say) takes
// seconds per paint; shorter lines cost next to nothing.
constexpr qsizetype MaxOutputLineLength = 4096;

// Text with every line longer than iMaxLength continued on further lines; nothing is left
// out. Text without such lines comes back as it is, without a copy.
[[nodiscard]] QString BreakOverlongLines(const QString& Text, qsizetype iMaxLength = MaxOutputLineLength);

// Behind a source line and its instructions when one of them is picked in the editor or the
// disassembly; light or dark with the palette.
[[nodiscard]] QColor SourceLineBackground(const QPalette& Palette);

// The "Shader:" row of a view, with which the user picks one shader of an effect file.
struct SShaderSelector
{
    QHBoxLayout* pLayout = nullptr;
    QLabel* pLabel = nullptr;
    QComboBox* pCombo = nullptr;
};

SShaderSelector CreateShaderSelector(QWidget* pParent, const char* pLayoutName, const char* pLabelName,
                                     const char* pComboName);
void ShowShaderSelector(const SShaderSelector& Selector, bool bShow);
// One item per record, named after it, the first one current. Filled without signals, so
// the caller shows the first record once rather than once per item.
void FillShaderSelector(const SShaderSelector& Selector, const CZamTArray<SCompileResult::SProfile>& Profiles);
void ClearShaderSelector(const SShaderSelector& Selector);
