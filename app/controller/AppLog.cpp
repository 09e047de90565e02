#include "AppLog_p.h"

Q_LOGGING_CATEGORY(lcZamApp, "zam.app")
