#pragma once

#include "Tools/ZamTString.h"

#include <QColor>
#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QTextCharFormat>

#include <functional>

class CZamPreferences;

namespace Settings
{
// Change-mask bits of SEditor, one per field.
enum EEditorSetting : unsigned int
{
    EditorSetting_TreatTabAsSpace = 1,
    EditorSetting_TabSpaceSize = 2,
    EditorSetting_PerformCursorMatch = 4,
    EditorSetting_CursorMatchColour = 8,
    EditorSetting_HighlightFindResults = 16,
    EditorSetting_FindResultColour = 32,
    EditorSetting_CloseTabsMiddleMouse = 64,
    EditorSetting_All = 127,
};

// Change-mask bits of SCompiler, one per field; 4 is unused.
enum ECompilerSetting : unsigned int
{
    CompilerSetting_AutoCompile = 1,
    CompilerSetting_CustomCompilerPath = 2,
    CompilerSetting_TempDirectory = 8,
    CompilerSetting_WarningFormat = 16,
    CompilerSetting_ErrorFormat = 32,
    CompilerSetting_ShouldFormat = 64,
    CompilerSetting_CompilerSelection = 128,
    CompilerSetting_IncludeFolders = 256,
    CompilerSetting_All = 1 | 2 | 8 | 16 | 32 | 64 | 128 | 256,
};

// Default-constructed records hold the defaults used when a key is missing.
struct SEditor
{
    bool bTreatTabAsSpace = false;
    bool bPerformCursorMatch = true;
    bool bHighlightFindResults = true;
    bool bCloseTabsMiddleMouse = false;
    int iTabSpaceSize = 4;
    QColor CursorMatchColour = QColor::fromRgba(0xFFC4FFFFu);
    QColor FindResultColour = QColor::fromRgba(0xFFFFFF80u);
};

struct SCompiler
{
    SCompiler();

    bool bAutoCompile = true;
    bool bShouldFormat = true;
    CZamTString CustomCompilerPath; // UTF-8
    CZamTString TempDirectory;      // UTF-8, with a trailing separator by default
    QTextCharFormat WarningFormat;  // only the foreground colour is kept
    QTextCharFormat ErrorFormat;
    quint32 uiCompilerSelection = 0;
    // Searched for #include headers after the document's own folder, in order.
    QStringList IncludeFolders;
};

// The system's temporary directory with a trailing '/', as UTF-8. Empty when the path is
// longer than the 260 characters the record can hold, rather than a cut-off path that
// might name some other directory.
[[nodiscard]] CZamTString DefaultTempDirectory();

// A text format whose foreground is a solid brush of the colour.
[[nodiscard]] QTextCharFormat MakeForegroundFormat(quint32 uiArgb);

// Reads every field of the record; keys that are missing or hold a value of the wrong
// type or range give the field's default.
void LoadEditorSettings(const CZamPreferences& Prefs, SEditor& Record);
void LoadCompilerSettings(const CZamPreferences& Prefs, SCompiler& Record);

// Writes the fields of In whose mask bits are set to the store and into Live, then saves
// the file. Returns what the save returned.
bool StoreEditorSettings(CZamPreferences& Prefs, SEditor& Live, const SEditor& In, unsigned int uiMask,
                         QString* pError = nullptr);

// Called right after the custom compiler path or the compiler selection was taken into
// the live record, with that field's bit, so the compiler can be detected again.
using FCompilerChanged = std::function<void(ECompilerSetting eChanged)>;

bool StoreCompilerSettings(CZamPreferences& Prefs, SCompiler& Live, const SCompiler& In, unsigned int uiMask,
                           const FCompilerChanged& OnCompilerChanged, QString* pError = nullptr);
} // namespace Settings

Q_DECLARE_METATYPE(Settings::SEditor)
Q_DECLARE_METATYPE(Settings::SCompiler)
