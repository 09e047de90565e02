#pragma once

#include <QString>

// What this build is, for the about box, the feedback text and the update message.

// The project version of the build ("0.1.0").
[[nodiscard]] QString BuildVersion();
// Commits in the checkout's history when the build ran; 0 when it was built without one.
[[nodiscard]] int BuildNumber();
// The short commit of the build, or empty when unknown.
[[nodiscard]] QString BuildCommit();

// "SDK build <version>@<build number>".
[[nodiscard]] QString BuildIdentifier();
// The application text followed by the build identifier in parentheses.
[[nodiscard]] QString ApplicationTextWithBuild(const QString& AppText);

// The libraries the program runs on, starting with "Qt version <run-time version>", joined
// with " | ".
[[nodiscard]] QString LibraryVersionLine();

// Several lines that identify this build and the system it runs on, for feedback reports.
[[nodiscard]] QString IdentificationText(const QString& AppText);
