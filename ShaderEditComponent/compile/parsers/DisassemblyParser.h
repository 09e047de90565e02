#pragma once

#include <QString>
#include <QVector>

// The source line of each line of a disassembly text, when the disassembly has a `line`
// column: a comment line (starting with ";") whose words after the ";" name the columns, one
// of them "line", followed by instruction lines whose words stand in those columns. Entry i
// belongs to text line i: the named source line moved by iLineOffset, or 0 for comment lines,
// lines without a number in that column and every line of a disassembly without the column.
// The column header is searched in the first iHeaderSearchLines lines only.
[[nodiscard]] QVector<int> ParseDisassemblyLines(const QString& Text, int iLineOffset, int iHeaderSearchLines = 64);
