#pragma once

#include <QString>

// Texts of the preference pages that the component's string table does not hold. New texts
// are only ever appended, as in that table.
enum EPreferenceText : int
{
    PrefText_CustomCompiler = 0,
    PrefText_CheckingCompiler,
    PrefText_TempPathMissing,
    PrefText_TabSizeInvalid,
    PrefText_AllFilesFilter,
    PrefText_SelectCompiler,
    PrefText_SelectTempFolder,
    PrefText_Element,
    PrefText_Foreground,
    PrefText_Background,
    PrefText_Bold,
    PrefText_Underline,
    PrefText_Defaults,
    PrefText_AllDefaults,
    PrefText_Font,
    PrefText_FontSize,
    PrefText_Preview,
    PrefText_GeneralElements,
    PrefText_IncludeFolders,
    PrefText_IncludeFoldersHint,
    PrefText_AddIncludeFolder,
    PrefText_RemoveIncludeFolder,
    PrefText_SelectIncludeFolder,

    PrefText_Count
};

[[nodiscard]] QString PreferenceText(EPreferenceText eText);
