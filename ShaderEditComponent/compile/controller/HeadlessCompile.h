#pragma once

#include <QStringList>

class QIODevice;

// The command-line compile for build scripts and CI:
//   zamshadereditor --compile [--core zc1|zc2|zc3|zd1] [--timeout SECONDS] FILE...
// Each file goes through the editor's own controller and worker, its type detected as when it
// is opened (effect files shader by shader), and its log is written to Out exactly as the log
// view shows it. Problems with the command line or a file go to Err; only regular files up to
// 256 MiB are read. A compile that takes longer than the time limit (60 s unless given) is
// cancelled and counts as failed. Ctrl+C or SIGTERM cancel the compile under way, which ends
// the compiler with everything it started and removes its temporary files. The user's
// preference file is read but never written. Needs a QCoreApplication; no display is used.

// True when the arguments (program name first) ask for the command-line compile, so the
// caller can choose a QCoreApplication before any GUI is made.
[[nodiscard]] bool IsHeadlessCompileRequest(int argc, const char* const* argv);

// Returns the exit status: 0 when every file compiled, 1 otherwise (a bad command line too),
// 128 + the signal's number when interrupted.
[[nodiscard]] int RunHeadlessCompile(const QStringList& Arguments, QIODevice& Out, QIODevice& Err);

// The whole command-line run for main(): makes the QCoreApplication, writes to the standard
// output and error, returns the exit status.
[[nodiscard]] int RunHeadlessCompileMain(int argc, char** argv);
