#include "HelpLog_p.h"

Q_LOGGING_CATEGORY(lcZamHelp, "zam.help")
