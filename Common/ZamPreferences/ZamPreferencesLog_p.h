#pragma once

#include <QLoggingCategory>
#include <QString>

// What the preference store reports about its file.
Q_DECLARE_LOGGING_CATEGORY(lcZamPreferences)

// Sends one problem report about the preference file to lcZamPreferences: the source
// location line, a line feed, then Text, as a single warning.
void ReportPreferencesProblem(const QString& Text);
