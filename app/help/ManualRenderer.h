#pragma once

#include <QString>

// Typesets a Markdown manual as an A4 PDF with Qt alone: the first heading and the text up
// to the next top-level heading make the title page, a contents list with page numbers
// follows, every top-level heading starts a page and is numbered (second-level headings
// too), tables get rules and a repeated header row, code is set in a monospaced font, and
// every page after the title carries the title and its number. Images with relative paths
// are taken from BaseFolder.
//
struct SManualPdf
{
    int iPages = 0; // 0: nothing was written
    QString Error;  // why nothing was written
};

[[nodiscard]] SManualPdf RenderMarkdownToPdf(const QString& Markdown, const QString& BaseFolder,
                                             const QString& PdfPath);
