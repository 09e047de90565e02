#include "ApplicationText.h"

#include <QStringList>
#include <QVector>

#include <atomic>

namespace
{
std::atomic<int> s_iLanguage{0};

QStringList EnglishTexts()
{
    return {
        QStringLiteral("TXE ASM"),
        QStringLiteral("Browse..."),
        QStringLiteral("Cancel"),
        QStringLiteral("Close tabs with middle mouse button"),
        QStringLiteral("Col"),
        QStringLiteral("Command Line"),
        QStringLiteral("Compile"),
        QStringLiteral("Compiler Settings"),
        QStringLiteral("Compile"),
        QStringLiteral("Compile Options"),
        QStringLiteral("Compile shaders in background when possible"),
        QStringLiteral("Custom Commandline"),
        QStringLiteral("Directory"),
        QStringLiteral("Disable warnings (-nowarn)"),
        QStringLiteral("The document has been modified."),
        QStringLiteral("Editor Colours"),
        QStringLiteral("Editor Settings"),
        QStringLiteral("Enable TXE ASM (-genexthwcode)"),
        QStringLiteral("Enable performance simulation (-perfsim)"),
        QStringLiteral("Generate per-line cycle counts (-profile)"),
        QStringLiteral("General"),
        QStringLiteral("Invalid commandline"),
        QStringLiteral("Input/Output Error"),
        QStringLiteral("Line"),
        QStringLiteral("OK"),
        QStringLiteral("Open File"),
        QStringLiteral("Output"),
        QStringLiteral("Output directory"),
        QStringLiteral("Output"),
        QStringLiteral("Preferences"),
        QStringLiteral("Print Shader"),
        QStringLiteral("Profile"),
        QStringLiteral("Save As"),
        QStringLiteral("Save session on exit and reload on start"),
        QStringLiteral("Select Directory"),
        QStringLiteral("Show TXE ASM"),
        QStringLiteral("Show Compile Output"),
        QStringLiteral("Show Profile"),
        QStringLiteral("Source directory"),
        QStringLiteral("Source filename"),
        QStringLiteral("Source filename without extension"),
        QStringLiteral("Type"),
        QStringLiteral("The document has unsaved changes.\nCompilation output will not reflect the current document."),
        QStringLiteral("Do you want to save your changes?"),
    };
}

// One row per language, filled on the first lookup.
const QVector<QStringList>& Table()
{
    static const QVector<QStringList> s_Table = {EnglishTexts()};
    return s_Table;
}
} // namespace

int GetApplicationLanguageCount()
{
    return 1;
}

QString GetApplicationLanguageName(int iLanguage)
{
    return iLanguage == 0 ? QStringLiteral("English") : QString();
}

bool SetApplicationLanguage(int iLanguage)
{
    if (iLanguage < 0 || iLanguage >= GetApplicationLanguageCount())
        return false;
    s_iLanguage = iLanguage;
    return true;
}

int GetApplicationLanguage()
{
    return s_iLanguage;
}

QString GetApplicationText(int iIndex)
{
    const QStringList& Texts = Table()[s_iLanguage];
    if (iIndex < 0 || iIndex >= Texts.size())
        return QString();
    return Texts[iIndex];
}
