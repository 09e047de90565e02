#pragma once

#include "Tools/ZamTString.h"

#include <QMetaType>

namespace Settings
{
// Change-mask bits of SGeneral, one per field.
enum EGeneralSetting : unsigned int
{
    GeneralSetting_OpenLastTabs = 1,
    GeneralSetting_CompileOutputPath = 2,
    GeneralSetting_CustomCommand = 4,
    GeneralSetting_LastDirectory = 8,
    GeneralSetting_All = 15,
};

// The application shell's own settings. A default-constructed record is not the stored
// default: the output path's default (the home folder) is filled in when the store is read.
struct SGeneral
{
    bool bOpenLastTabs = false;
    CZamTString CompileOutputPath; // UTF-8, native separators
    CZamTString CustomCommand;     // UTF-8
    CZamTString LastDirectory;     // UTF-8
};
} // namespace Settings

Q_DECLARE_METATYPE(Settings::SGeneral)
