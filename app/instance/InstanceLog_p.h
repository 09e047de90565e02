#pragma once

#include <QLoggingCategory>

// What the single-instance protocol reports: folders, segments and sockets that failed.
Q_DECLARE_LOGGING_CATEGORY(lcZamInstance)
