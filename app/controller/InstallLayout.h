#pragma once

#include <QString>

// Files shipped with the program are found relative to its executable, so a build tree and
// an installed copy look alike: <prefix>/bin/zamshadereditor beside
// <prefix>/share/zamshadereditor/.

// <prefix>/share/zamshadereditor/examples, whether or not it exists.
[[nodiscard]] QString InstalledExamplesFolder();
// Folder/Name when that is an existing regular file, else empty.
[[nodiscard]] QString FindInstalledFile(const QString& Folder, const QString& Name);
