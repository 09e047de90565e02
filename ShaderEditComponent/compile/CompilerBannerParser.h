#pragma once

#include "ZamTArray.h"

#include <QString>

// Banners longer than this (16 KiB) are cut before parsing; real ones are a few hundred bytes.
constexpr qint64 MaxBannerBytes = 16 * 1024;
// The compiler and version patterns are matched against the first 1 KiB only: with their
// leading ".*" they backtrack in time quadratic in the text (about 0.1 s for 1 KiB, 2 s for
// 4 KiB), and a compiler names itself on its first line.
constexpr qint64 MaxBannerIdentificationBytes = 1024;

// Reads what a compiler printed when run without arguments. Compiler and Version are set in
// every case ("Unknown" when no banner pattern matches); the option names found after the
// option header are appended to Options without their hyphen. Returns true when the header
// was found. An OpenCL banner lists its options after "Control options are:" as "-name :";
// every other banner after "OPTIONS are:" as " -name " (blanks on both sides, so options
// separated by a single blank are found only every other one).
bool ParseCompilerBanner(const QString& Output, QString& Compiler, QString& Version, CZamTArray<QString>& Options);
