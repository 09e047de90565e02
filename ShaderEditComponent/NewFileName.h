#pragma once

#include <QString>
#include <QStringList>

// Title for the next new document, given the titles of the open tabs in order. The last tab
// whose title mentions "New File" decides: "New File (n)" makes the next one n + 1, a plain
// "New File" makes it 1. Not the largest number: reusing a freed number is intended.
QString NextNewFileName(const QStringList& TabTitles);
