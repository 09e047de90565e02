#pragma once

#include <QLoggingCategory>

// What the highlight controller reports: preference files it could not read or write.
Q_DECLARE_LOGGING_CATEGORY(lcZamHighlighting)
