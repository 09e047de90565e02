#pragma once

#include "ZamTArray.h"

#include <QString>

// How long a compiler may take to print its banner before it is given up (and killed).
constexpr int DefaultDetectionTimeoutMs = 5000;

// What a compiler executable says about itself.
struct SCompilerDetection
{
    bool bRan = false;        // it started and ended within the time limit
    bool bHasOptions = false; // its banner holds an option list
    QString Compiler = QStringLiteral("Unknown");
    QString Version = QStringLiteral("Unknown");
    CZamTArray<QString> Options;    // option names without their hyphen
    unsigned int uiOptionFlags = 0; // the names that are known option switches, as flags

    // A compiler the editor can work with: it answered and listed its options.
    bool IsUsable() const { return bRan && bHasOptions; }
};

// Runs the executable without arguments, which makes a compiler print its banner, and parses
// what it printed (at most the banner limit is read). A path that does not start, or a
// program that has not ended within the time limit, gives an unusable result.
SCompilerDetection DetectCompiler(const QString& ExecutablePath, int iTimeoutMs = DefaultDetectionTimeoutMs);
