#include "HelpResources.h"

#include <QtGlobal>

// Q_INIT_RESOURCE must be used outside of any namespace.
static void InitZamApplicationResources()
{
    Q_INIT_RESOURCE(ZamApplication);
}

void InitHelpResources()
{
    static const bool s_bRegistered = (InitZamApplicationResources(), true);
    Q_UNUSED(s_bRegistered);
}
