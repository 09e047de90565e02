#pragma once

#include "ShaderEditComponent/compile/model/CompileResult.h"

#include <QByteArray>
#include <QVector>

// What the log takes from one run's output.
struct SCompilerOutput
{
    // Every line holding the word ERROR or WARNING, in output order.
    QVector<SCompileMessage> Messages;
    // The same lines as log text, each ending in "\n".
    QByteArray LogText;
    bool bSucceeded = false;   // the output holds "Success.\n"
    bool bFailed = false;      // the output holds "Compile failed."
    bool bHasEstimate = false; // the output holds "Performance estimate"
};

// Splits a compiler's output into messages. A line is a message when ERROR or WARNING stands
// in it as a whole word; the first such word gives the severity. When the word is followed by
// ": <string>:<line>", the line number is moved by iLineOffset (the line at which the compiled
// unit starts in its document) both in the text and in the message's iLine, so that a
// double-click in the log lands on the document's own line. Numbers too large to move leave
// the line as it is, without a line. When <string> is the path of an included header instead of
// a number, the message keeps the header and its line in File and iFileLine, unmoved.
[[nodiscard]] SCompilerOutput ParseCompilerOutput(const QByteArray& Output, int iLineOffset);

// The most of a failed run's raw output that the log shows: 16 KiB.
constexpr qsizetype MaxRawOutputInLog = 16 * 1024;

// A failed run's output as log text, for when it held no message at all: a custom compiler's
// own words for failing are then the only reason there is. Whole lines up to
// MaxRawOutputInLog, each ending in "\n", then a note of what was left out.
[[nodiscard]] QByteArray RawOutputForLog(const QByteArray& Output);
