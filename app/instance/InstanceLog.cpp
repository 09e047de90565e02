#include "InstanceLog_p.h"

Q_LOGGING_CATEGORY(lcZamInstance, "zam.instance")
