#pragma once

#include "ShaderDocType.h"
#include "Tools/ZamTArray.h"

#include <QString>

// One row of the open/save format list.
struct SFileFormatSpecifier
{
    EShaderDocType eType = DocType_PlainText; // a single type, or a union for a shared extension
    QString Name;
    QString Extension; // without the dot
    QString Filter;    // "Name (*.ext)"
};

// Replaces the contents of Rows with the format rows in their fixed order. Returns 0 on
// success, 1 when the array could not grow.
[[nodiscard]] int FillFileFormats(CZamTArray<SFileFormatSpecifier>& Rows);

// The open/save dialog filter: an "all supported" entry, one entry per row, "All files".
[[nodiscard]] QString BuildFileDialogFilter(const CZamTArray<SFileFormatSpecifier>& Rows);

// Index of the row with exactly this extension, or -1.
[[nodiscard]] int FindFileFormatByExtension(const CZamTArray<SFileFormatSpecifier>& Rows, const QString& Extension);
// Index of the first row whose type covers eType (the shared effect row covers both effect
// types), or -1.
[[nodiscard]] int FindFileFormatByType(const CZamTArray<SFileFormatSpecifier>& Rows, EShaderDocType eType);
