#pragma once

#include <QString>

// Sends one problem report about the preference file to lcZamPreferences: the source
// location line, a line feed, then Text, as a single warning.
void ReportPreferencesProblem(const QString& Text);
