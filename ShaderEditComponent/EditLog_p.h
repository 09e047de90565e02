#pragma once

#include <QLoggingCategory>

// What the editor cannot do quietly in the background: backups it could not write or remove.

Q_DECLARE_LOGGING_CATEGORY(lcZamEdit)
