#pragma once

#include <QString>

// Numbered interface texts of the editor component. The numbers are the table's
// contract (translations are indexed by them), so new texts are only ever appended.
enum EUIString : int
{
    // File-dialog filter names
    UIS_AllSupportedFormats = 0,
    UIS_AllFiles,

    // Document-type titles
    UIS_DocTypePlainText,
    UIS_DocTypeGLSLESVertex,
    UIS_DocTypeGLSLESFragment,
    UIS_DocTypeGLSLVertex,
    UIS_DocTypeGLSLFragment,
    UIS_DocTypeZFXGLSLES,
    UIS_DocTypeZFXGLSL,
    UIS_DocTypeHLSLVertex,
    UIS_DocTypeHLSLFragment,
    UIS_DocTypeHLSLGeometry,
    UIS_DocTypeHLSLFX,
    UIS_DocTypeOpenCLKernel,

    // Language group names ("Plain Text" shares the document-type title)
    UIS_LanguageGLSLES,
    UIS_LanguageGLSL,
    UIS_LanguageHLSL,
    UIS_LanguageOpenCL,

    // Document-type descriptions
    UIS_DescPlainText,
    UIS_DescGLSLESVertex,
    UIS_DescGLSLESFragment,
    UIS_DescGLSLVertex,
    UIS_DescGLSLFragment,
    UIS_DescZFXGLSLES,
    UIS_DescZFXGLSL,
    UIS_DescHLSLVertex,
    UIS_DescHLSLFragment,
    UIS_DescHLSLGeometry,
    UIS_DescHLSLFX,
    UIS_DescOpenCLKernel,

    // Compile log
    UIS_CompileSucceeded,
    UIS_CompileFailed,
    UIS_MalformedProfileFile,
    UIS_CouldNotCreateTempFile,
    UIS_FailedToExecuteCompiler,
    UIS_CompilerCriticalError,
    UIS_FailedToExecuteCommandLine,

    // Documents
    UIS_NewFile,
    UIS_FailedToOpenFile,
    UIS_Reason,
    UIS_NotEnoughMemoryToLoadFile,
    UIS_ErrorWhileReadingFile,
    UIS_FailedToSaveFile,
    UIS_ErrorWhileWritingFile,

    // Find and replace bar
    UIS_FindMatches,
    UIS_FindPlaceholder,
    UIS_FindAdvanced,
    UIS_FindModeFind,
    UIS_FindModeReplace,
    UIS_FindClose,
    UIS_FindMethod,
    UIS_FindMethodTextual,
    UIS_FindMethodRegExp,
    UIS_FindMatchCase,
    UIS_FindMatchWholeWord,
    UIS_FindReplacePlaceholder,
    UIS_FindReplaceAll,

    // Compiler preference page
    UIS_PrefCompilerLabel,
    UIS_PrefCompilerPath,
    UIS_PrefBrowse,
    UIS_PrefTempFilesLocation,
    UIS_PrefCompilerDetails,
    UIS_PrefCompiler,
    UIS_PrefVersion,
    UIS_PrefSupportedOptions,
    UIS_PrefCompilerUnexpectedResult,
    UIS_PrefCompilerPathInvalid,
    UIS_PrefCompilerOutput,
    UIS_PrefColourCompilerOutput,
    UIS_PrefErrorColour,
    UIS_PrefWarningColour,

    // Editor preference page
    UIS_PrefTab,
    UIS_PrefTreatTabsAsSpaces,
    UIS_PrefTabSize,
    UIS_PrefCursorMatching,
    UIS_PrefEnableCursorMatching,
    UIS_PrefBackgroundColour,
    UIS_PrefFindResults,
    UIS_PrefHighlightFindResults,

    UIS_Count
};

// Only one language exists; the index is kept so callers don't hard-wire that.
[[nodiscard]] int GetUIStringLanguageCount();
[[nodiscard]] QString GetUIStringLanguageName(int iLanguage);

[[nodiscard]] QString UIString(EUIString eIndex);
// Out-of-range numbers give an empty text.
[[nodiscard]] QString GetUIString(int iIndex);
