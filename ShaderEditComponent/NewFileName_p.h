#pragma once

#include "ShaderEditComponent/compile/model/ShaderDocType.h"

#include <QString>
#include <QStringList>

// Title for the next new document, given the titles of the open tabs in order. The last tab
// whose title mentions "New File" decides: "New File (n)" makes the next one n + 1, a plain
// "New File" makes it 1. Not the largest number: reusing a freed number is intended.
[[nodiscard]] QString NextNewFileName(const QStringList& TabTitles);

// The text a new document of that type starts with. An effect file starts with a minimal
// effect that compiles (one vertex shader, one fragment shader, one effect binding them), as
// the new-file dialog promises; every other type starts empty.
[[nodiscard]] QString NewFileText(EShaderDocType eType);
