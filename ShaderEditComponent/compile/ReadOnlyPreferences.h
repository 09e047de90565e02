#pragma once

#include <QString>

#include <memory>

class CZamPreferences;

// A preference store that reads the user's file like the editor does but never writes it:
// a missing file is not created, and saving succeeds without touching the disk. For runs that
// must leave the user's settings alone, such as the command-line compile.
std::unique_ptr<CZamPreferences> MakeReadOnlyPreferences(const QString& Name);
