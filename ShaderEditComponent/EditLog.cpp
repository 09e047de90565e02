#include "EditLog_p.h"

Q_LOGGING_CATEGORY(lcZamEdit, "zam.edit")
