#pragma once

#include <QString>

// Numbered texts of the application shell's dialogs. The numbers are fixed and not sorted by
// text; equal texts keep entries of their own (6 and 8, 26 and 28) because different widgets
// own them.
enum EApplicationText : int
{
    AppText_TXEASM = 0,
    AppText_Browse = 1,
    AppText_Cancel = 2,
    AppText_CloseTabsMiddleMouse = 3,
    AppText_Col = 4,
    AppText_CommandLine = 5,
    AppText_Compile = 6,
    AppText_CompilerSettings = 7,
    AppText_CompileButton = 8,
    AppText_CompileOptions = 9,
    AppText_CompileInBackground = 10,
    AppText_CustomCommandLine = 11,
    AppText_Directory = 12,
    AppText_DisableWarnings = 13,
    AppText_DocumentModified = 14,
    AppText_EditorColours = 15,
    AppText_EditorSettings = 16,
    AppText_EnableTXEASM = 17,
    AppText_EnablePerfSim = 18,
    AppText_GenerateCycleCounts = 19,
    AppText_General = 20,
    AppText_InvalidCommandLine = 21,
    AppText_IOError = 22,
    AppText_Line = 23,
    AppText_OK = 24,
    AppText_OpenFile = 25,
    AppText_Output = 26,
    AppText_OutputDirectory = 27,
    AppText_OutputGroup = 28,
    AppText_Preferences = 29,
    AppText_PrintShader = 30,
    AppText_Profile = 31,
    AppText_SaveAs = 32,
    AppText_SaveSession = 33,
    AppText_SelectDirectory = 34,
    AppText_ShowTXEASM = 35,
    AppText_ShowCompileOutput = 36,
    AppText_ShowProfile = 37,
    AppText_SourceDirectory = 38,
    AppText_SourceFilename = 39,
    AppText_SourceFilenameNoExt = 40,
    AppText_Type = 41,
    AppText_UnsavedChangesCompile = 42,
    AppText_SaveChangesQuestion = 43,

    AppText_Count = 44
};

// Languages of the table; index 0 is "English", the only one there is.
[[nodiscard]] int GetApplicationLanguageCount();
[[nodiscard]] QString GetApplicationLanguageName(int iLanguage);

// The process-wide language. Unknown indices are refused (false) and change nothing.
[[nodiscard]] bool SetApplicationLanguage(int iLanguage);
[[nodiscard]] int GetApplicationLanguage();

// Text of the current language; numbers outside the table give an empty text.
[[nodiscard]] QString GetApplicationText(int iIndex);
[[nodiscard]] inline QString GetApplicationText(EApplicationText eIndex)
{
    return GetApplicationText(static_cast<int>(eIndex));
}
