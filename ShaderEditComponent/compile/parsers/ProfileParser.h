#pragma once

#include "Tools/ZamTArray.h"

#include <QString>

// The highest document line a profile may name when the compiled lines are not known (a
// compile-to-file command): 2^20 lines, so padding the per-line array costs at most 4 MiB.
constexpr int MaxProfileLine = 1 << 20;
// Profile and disassembly files larger than this (16 MiB) are not read whole.
constexpr qint64 MaxProfileFileBytes = 16 * 1024 * 1024;

struct SProfileParse
{
    int iTotalConsumedCycles = 0;    // the sum of the counts taken into the array
    int iGeneratedInstructions = -1; // "TXC generated instructions = N"; -1 when absent
    qint64 iReportedTotal = -1;      // "Total consumed cycles = N"; -1 when absent
    // The profile names a line twice, a line or count that does not fit, or a total that is
    // not the sum of its lines. The log then says "ERROR: Malformed profile file.".
    bool bMalformed = false;
    int iOutOfRangeEntries = 0;  // entries naming a line past iLastLine; their counts are left out
    qint64 iFirstOutOfRange = 0; // the first such line, moved by the offset
};

// Reads the "line: L, count: K" entries of a profile file into CycleCounts (index = document
// line - 1, -1 where there is no count). L is moved by iLineOffset. A line past iLastLine (the
// last line the compiled unit covers) is counted as out of range and skipped, so the array
// never grows with a number the text names. A line below 1 or past the array's end pads the
// array with -1 up to line L - 1 and appends K (so a line 0 lands at the array's end); a line
// whose entry holds -1 takes K. A line that already has a count ends the parse as malformed
// instead of being scanned again without end. Counts taken before the parse stopped stay in
// the array.
[[nodiscard]] SProfileParse ParseProfile(const QString& Text, int iLineOffset, qint64 iLastLine,
                                         CZamTArray<int>& CycleCounts);

// The log line for a parse with out-of-range entries, empty when there are none.
[[nodiscard]] QString OutOfRangeNote(const SProfileParse& Parse, qint64 iLastLine);
