#pragma once

#include "Tools/ZamTArray.h"

#include <QString>

// Banners longer than this (16 KiB) are cut before parsing; real ones are a few hundred bytes.
constexpr qint64 MaxBannerBytes = 16 * 1024;
// A compiler names itself within this much text (256 characters, a long line) from where its
// pattern's first literal words (" for ", "Zam OpenCL ") stand; see ParseCompilerBanner.
constexpr qint64 MaxBannerIdentificationBytes = 256;

// Reads what a compiler printed when run without arguments. Compiler and Version are set in
// every case ("Unknown" when no banner pattern matches); the option names found after the
// option header are appended to Options without their hyphen. The whole (capped) text is
// searched, preamble and all. A pattern that starts with ".*" takes the match that starts
// last, as its greedy ".*" would; the pattern is tried only where its first literal words
// stand, within MaxBannerIdentificationBytes from there, so a long or hostile text costs time
// in proportion to its length, not its square. Returns true when the header
// was found. An OpenCL banner lists its options after "Control options are:" as "-name :";
// every other banner after "OPTIONS are:" as " -name " (blanks on both sides, so options
// separated by a single blank are found only every other one).
[[nodiscard]] bool ParseCompilerBanner(const QString& Output, QString& Compiler, QString& Version,
                                       CZamTArray<QString>& Options);
