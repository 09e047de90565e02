// Feeds arbitrary bytes to the preference-file reader, then checks that what the store
// writes back loads again without complaint and serialises to the same bytes.
#include "Common/ZamPreferences/ZamPreferences.h"

#include <QLoggingCategory>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t uiSize)
{
    static const bool bQuiet = []
    {
        QLoggingCategory::setFilterRules(QStringLiteral("zam.preferences.warning=false"));
        return true;
    }();
    (void)bQuiet;

    CZamPreferences Store(QStringLiteral("FuzzTarget"));
    Store.LoadFromBytes(QByteArray(reinterpret_cast<const char*>(pData), static_cast<int>(uiSize)));
    Store.GetInteger(QStringLiteral("Editor/TabSpaceSize"), 4);
    Store.GetStringArray(QStringLiteral("General/LastOpenTabs"));
    Store.GetArgb(QStringLiteral("Colours/GLSL/Keyword/Foreground"), 0xFF0000FFu);

    const QByteArray Written = Store.ToBytes();
    CZamPreferences Again(QStringLiteral("FuzzTarget"));
    if (!Again.LoadFromBytes(Written) || Again.ToBytes() != Written)
        std::abort();
    return 0;
}
