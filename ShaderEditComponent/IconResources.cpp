#include "IconResources.h"

#include <QtGlobal>

// Q_INIT_RESOURCE must be used outside of any namespace.
static void InitZamIcons()
{
    Q_INIT_RESOURCE(ZamIcons);
}

void InitIconResources()
{
    static const bool s_bRegistered = (InitZamIcons(), true);
    Q_UNUSED(s_bRegistered);
}
