#include "HighlightingLog_p.h"

Q_LOGGING_CATEGORY(lcZamHighlighting, "zam.highlighting")
