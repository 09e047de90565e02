#include "Settings.h"

#include "Common/ZamPreferences/ZamPreferences.h"
#include "ZamStringConversion.h"

#include <QBrush>
#include <QDir>

#include <limits>

namespace Settings
{
namespace
{
const char* const s_pAutoCompileKey = "Compiler/AutoCompile";
const char* const s_pCustomCompilerKey = "Compiler/GLSLES";
const char* const s_pTempDirectoryKey = "Compiler/TempDirectory";
const char* const s_pCompilerSelectionKey = "Compiler/CompilerSelection";
const char* const s_pIncludeFoldersKey = "Compiler/IncludeFolders";
const char* const s_pShouldFormatKey = "Output/ShouldFormat";
const char* const s_pWarningKey = "Output/Warning";
const char* const s_pErrorKey = "Output/Error";

const char* const s_pPerformCursorMatchKey = "Editor/PerformCursorMatch";
const char* const s_pHighlightFindResultsKey = "Editor/HighlightFindResults";
const char* const s_pFindResultColourKey = "Editor/FindResultColour";
const char* const s_pCursorMatchColourKey = "Editor/CursorMatchColour";
const char* const s_pTreatTabAsSpaceKey = "Editor/TreatTabAsSpace";
const char* const s_pTabSpaceSizeKey = "Editor/TabSpaceSize";
const char* const s_pCloseTabsMiddleMouseKey = "Editor/CloseTabsMiddleMouse";

constexpr int s_iMaxTempDirectoryLength = 260;
constexpr quint32 s_uiWarningColour = 0xFFE25A00u;
constexpr quint32 s_uiErrorColour = 0xFFFF0000u;

QString Key(const char* pKey)
{
    return QString::fromLatin1(pKey);
}

int ReadInt32(const CZamPreferences& Prefs, const char* pKey, int iDefault)
{
    const qint64 iValue = Prefs.GetInteger(Key(pKey), iDefault);
    if (iValue < std::numeric_limits<int>::min() || iValue > std::numeric_limits<int>::max())
        return iDefault;
    return static_cast<int>(iValue);
}

quint32 ReadUInt32(const CZamPreferences& Prefs, const char* pKey, quint32 uiDefault)
{
    const qint64 iValue = Prefs.GetInteger(Key(pKey), uiDefault);
    if (iValue < 0 || iValue > std::numeric_limits<quint32>::max())
        return uiDefault;
    return static_cast<quint32>(iValue);
}

CZamTString ReadString(const CZamPreferences& Prefs, const char* pKey, const CZamTString& Default)
{
    return ToZamString(Prefs.GetString(Key(pKey), ToQString(Default)));
}

QColor ReadColour(const CZamPreferences& Prefs, const char* pKey, const QColor& Default)
{
    return QColor::fromRgba(Prefs.GetArgb(Key(pKey), Default.rgba()));
}

quint32 ForegroundArgb(const QTextCharFormat& Format)
{
    return Format.foreground().color().rgba();
}

QTextCharFormat ReadFormat(const CZamPreferences& Prefs, const char* pKey, const QTextCharFormat& Default)
{
    return MakeForegroundFormat(Prefs.GetArgb(Key(pKey), ForegroundArgb(Default)));
}
} // namespace

SCompiler::SCompiler()
    : TempDirectory(DefaultTempDirectory())
    , WarningFormat(MakeForegroundFormat(s_uiWarningColour))
    , ErrorFormat(MakeForegroundFormat(s_uiErrorColour))
{
}

CZamTString DefaultTempDirectory()
{
    QString Path = QDir::tempPath();
    if (!Path.endsWith(QLatin1Char('/')))
        Path += QLatin1Char('/');
    if (Path.size() > s_iMaxTempDirectoryLength)
        return CZamTString("");
    return ToZamString(Path);
}

QTextCharFormat MakeForegroundFormat(quint32 uiArgb)
{
    QTextCharFormat Format;
    Format.setForeground(QBrush(QColor::fromRgba(uiArgb), Qt::SolidPattern));
    return Format;
}

void LoadCompilerSettings(const CZamPreferences& Prefs, SCompiler& Record)
{
    const SCompiler Defaults;
    Record.bAutoCompile = Prefs.GetBool(Key(s_pAutoCompileKey), Defaults.bAutoCompile);
    Record.CustomCompilerPath = ReadString(Prefs, s_pCustomCompilerKey, Defaults.CustomCompilerPath);
    Record.TempDirectory = ReadString(Prefs, s_pTempDirectoryKey, Defaults.TempDirectory);
    Record.uiCompilerSelection = ReadUInt32(Prefs, s_pCompilerSelectionKey, Defaults.uiCompilerSelection);
    Record.bShouldFormat = Prefs.GetBool(Key(s_pShouldFormatKey), Defaults.bShouldFormat);
    Record.WarningFormat = ReadFormat(Prefs, s_pWarningKey, Defaults.WarningFormat);
    Record.ErrorFormat = ReadFormat(Prefs, s_pErrorKey, Defaults.ErrorFormat);
    Record.IncludeFolders = Prefs.GetStringArray(Key(s_pIncludeFoldersKey), Defaults.IncludeFolders);
}

void LoadEditorSettings(const CZamPreferences& Prefs, SEditor& Record)
{
    const SEditor Defaults;
    Record.bPerformCursorMatch = Prefs.GetBool(Key(s_pPerformCursorMatchKey), Defaults.bPerformCursorMatch);
    Record.bHighlightFindResults = Prefs.GetBool(Key(s_pHighlightFindResultsKey), Defaults.bHighlightFindResults);
    Record.FindResultColour = ReadColour(Prefs, s_pFindResultColourKey, Defaults.FindResultColour);
    Record.CursorMatchColour = ReadColour(Prefs, s_pCursorMatchColourKey, Defaults.CursorMatchColour);
    Record.bTreatTabAsSpace = Prefs.GetBool(Key(s_pTreatTabAsSpaceKey), Defaults.bTreatTabAsSpace);
    Record.iTabSpaceSize = ReadInt32(Prefs, s_pTabSpaceSizeKey, Defaults.iTabSpaceSize);
    Record.bCloseTabsMiddleMouse = Prefs.GetBool(Key(s_pCloseTabsMiddleMouseKey), Defaults.bCloseTabsMiddleMouse);
}

bool StoreCompilerSettings(CZamPreferences& Prefs, SCompiler& Live, const SCompiler& In, unsigned int uiMask,
                           const FCompilerChanged& OnCompilerChanged, QString* pError)
{
    if (uiMask & CompilerSetting_ShouldFormat)
    {
        Prefs.SetBool(Key(s_pShouldFormatKey), In.bShouldFormat);
        Live.bShouldFormat = In.bShouldFormat;
    }
    if (uiMask & CompilerSetting_ErrorFormat)
    {
        Prefs.SetArgb(Key(s_pErrorKey), ForegroundArgb(In.ErrorFormat));
        Live.ErrorFormat = MakeForegroundFormat(ForegroundArgb(In.ErrorFormat));
    }
    if (uiMask & CompilerSetting_WarningFormat)
    {
        Prefs.SetArgb(Key(s_pWarningKey), ForegroundArgb(In.WarningFormat));
        Live.WarningFormat = MakeForegroundFormat(ForegroundArgb(In.WarningFormat));
    }
    if (uiMask & CompilerSetting_CustomCompilerPath)
    {
        Prefs.SetString(Key(s_pCustomCompilerKey), ToQString(In.CustomCompilerPath));
        Live.CustomCompilerPath = In.CustomCompilerPath;
        if (OnCompilerChanged)
            OnCompilerChanged(CompilerSetting_CustomCompilerPath);
    }
    if (uiMask & CompilerSetting_TempDirectory)
    {
        Prefs.SetString(Key(s_pTempDirectoryKey), ToQString(In.TempDirectory));
        Live.TempDirectory = In.TempDirectory;
    }
    if (uiMask & CompilerSetting_AutoCompile)
    {
        Prefs.SetBool(Key(s_pAutoCompileKey), In.bAutoCompile);
        Live.bAutoCompile = In.bAutoCompile;
    }
    if (uiMask & CompilerSetting_CompilerSelection)
    {
        Prefs.SetInteger(Key(s_pCompilerSelectionKey), In.uiCompilerSelection);
        Live.uiCompilerSelection = In.uiCompilerSelection;
        if (OnCompilerChanged)
            OnCompilerChanged(CompilerSetting_CompilerSelection);
    }
    if (uiMask & CompilerSetting_IncludeFolders)
    {
        Prefs.SetStringArray(Key(s_pIncludeFoldersKey), In.IncludeFolders);
        Live.IncludeFolders = In.IncludeFolders;
    }
    return Prefs.Save(pError);
}

bool StoreEditorSettings(CZamPreferences& Prefs, SEditor& Live, const SEditor& In, unsigned int uiMask, QString* pError)
{
    if (uiMask & EditorSetting_TreatTabAsSpace)
    {
        Prefs.SetBool(Key(s_pTreatTabAsSpaceKey), In.bTreatTabAsSpace);
        Live.bTreatTabAsSpace = In.bTreatTabAsSpace;
    }
    if (uiMask & EditorSetting_TabSpaceSize)
    {
        Prefs.SetInteger(Key(s_pTabSpaceSizeKey), In.iTabSpaceSize);
        Live.iTabSpaceSize = In.iTabSpaceSize;
    }
    if (uiMask & EditorSetting_PerformCursorMatch)
    {
        Prefs.SetBool(Key(s_pPerformCursorMatchKey), In.bPerformCursorMatch);
        Live.bPerformCursorMatch = In.bPerformCursorMatch;
    }
    if (uiMask & EditorSetting_HighlightFindResults)
    {
        Prefs.SetBool(Key(s_pHighlightFindResultsKey), In.bHighlightFindResults);
        Live.bHighlightFindResults = In.bHighlightFindResults;
    }
    if (uiMask & EditorSetting_CursorMatchColour)
    {
        Prefs.SetArgb(Key(s_pCursorMatchColourKey), In.CursorMatchColour.rgba());
        Live.CursorMatchColour = In.CursorMatchColour;
    }
    if (uiMask & EditorSetting_FindResultColour)
    {
        Prefs.SetArgb(Key(s_pFindResultColourKey), In.FindResultColour.rgba());
        Live.FindResultColour = In.FindResultColour;
    }
    if (uiMask & EditorSetting_CloseTabsMiddleMouse)
    {
        Prefs.SetBool(Key(s_pCloseTabsMiddleMouseKey), In.bCloseTabsMiddleMouse);
        Live.bCloseTabsMiddleMouse = In.bCloseTabsMiddleMouse;
    }
    return Prefs.Save(pError);
}
} // namespace Settings
