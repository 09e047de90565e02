#pragma once

#include <QLoggingCategory>

// What the application controller reports: preference files it could not read or write.
Q_DECLARE_LOGGING_CATEGORY(lcZamApp)
