#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// One message per connection, UTF-8, no framing: the raise keyword or the path of a file.

inline constexpr char RaiseInstanceMessage[] = "raisebanana";

// Well above any path the system accepts (PATH_MAX is 4096), small enough that a flood of
// bytes cannot grow the running instance's memory.
inline constexpr qsizetype MaxInstanceMessageBytes = 64 * 1024;

// What a second start sends, from its arguments (the program first): the raise keyword when
// there is no argument, the absolute path of the first argument when that file exists, else
// nothing (an empty text). The path is made absolute because the running instance has its own
// working folder; it also keeps a file named like the keyword from being taken for it.
[[nodiscard]] QString HandOverMessage(const QStringList& Arguments);

// A message as received: its text, or why it was refused.
struct SInstanceMessage
{
    QString Text;  // empty when refused
    QString Error; // empty when taken
};

// Refuses an empty message, one longer than MaxInstanceMessageBytes, one holding a NUL byte
// (no path can) and one that is not valid UTF-8.
[[nodiscard]] SInstanceMessage DecodeInstanceMessage(const QByteArray& Bytes);
