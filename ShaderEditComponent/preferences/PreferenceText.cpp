#include "PreferenceText_p.h"

#include <iterator>

namespace
{
const char* const s_apEnglish[] = {
    "Custom compiler",
    "Checking the compiler\u2026",
    "Temporary files need an existing folder that you can write to.",
    "The tab size must be a whole number from 1 to 64.",
    "All Files (*)",
    "Select the compiler",
    "Select the folder for temporary files",
    "Element",
    "Foreground",
    "Background",
    "Bold",
    "Underline",
    "Defaults",
    "All Defaults",
    "Font",
    "Size",
    "Preview",
    "General",
    "Include Folders",
    "#include \"...\" looks beside the document first, then in these folders, top to bottom.",
    "Add\u2026",
    "Remove",
    "Select a folder to search for included headers",
};
static_assert(std::size(s_apEnglish) == PrefText_Count, "every text needs exactly one entry");
} // namespace

QString PreferenceText(EPreferenceText eText)
{
    if (eText < 0 || eText >= PrefText_Count)
        return QString();
    return QString::fromUtf8(s_apEnglish[eText]);
}
