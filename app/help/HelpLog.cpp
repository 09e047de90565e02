#include "HelpLog.h"

Q_LOGGING_CATEGORY(lcZamHelp, "zam.help")
