#pragma once

#include "ShaderEditComponent/compile/model/ShaderDocType.h"

#include <QString>

// The document type the colours page previews an element in: the type of the element's
// language ("None" and "Error" belong to no language and show GLSL:ES).
[[nodiscard]] EShaderDocType PreviewTypeForElement(unsigned int uiElement);

// A short document of the type that shows every element of its language.
[[nodiscard]] QString PreviewSample(EShaderDocType eType);

// A word of the GLSL:ES sample that the preview marks with the "Error" element, as the editor
// marks an error.
[[nodiscard]] QString PreviewErrorWord();
