#include "CompileLog_p.h"

Q_LOGGING_CATEGORY(lcZamCompile, "zam.compile")
