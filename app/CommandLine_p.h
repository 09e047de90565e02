#pragma once

#include <QString>

// The options that are answered without a window or a display: --help and --version (and
// -h, -v). Returns the text to print when argv asks for one of them, else an empty text.
// Only the first argument is looked at, like the file name the program opens.
[[nodiscard]] QString InformationRequested(int iArgc, char** ppArgv);

// The usage text of the program.
[[nodiscard]] QString UsageText();
