#include "CompilerBannerParser.h"

#include <QRegExp>

namespace
{
struct SBannerPattern
{
    const char* pPattern;
    const char* pCompiler; // "%1 %2" style, filled from the captures named below
    int aiCompilerCaps[2];
    const char* pVersion;
    int aiVersionCaps[2];
};

// In the order they are tried; a capture number of 0 means "not used".
const SBannerPattern s_Patterns[] = {
    {"Zam OpenCL ([0-9.]+) (.*) compiler. Version .* ([A-Za-z0-9._]+)@(\\d+)", "OpenCL %1 %2", {1, 2}, "%1@%2", {3, 4}},
    {".* for (\\w+). Version ([A-Za-z0-9._]+)@(\\d+)", "%1", {1, 0}, "%1@%2", {2, 3}},
    {".* for (\\w+) rev (\\d+).* zcddk ([A-Za-z0-9._]+)@(\\d+)", "%1 rev %2", {1, 2}, "%1@%2", {3, 4}},
    {".* for (\\w+) rev (\\d+).* zcddk \\d+ ([A-Za-z0-9._]+)@(\\d+)", "%1 rev %2", {1, 2}, "%1@%2", {3, 4}},
    {".* for (\\w+) rev (\\d+).* Version ([0-9.]*).*", "%1 rev %2", {1, 2}, "%1", {3, 0}},
};

QString Fill(const char* pFormat, const int (&aiCaps)[2], const QRegExp& Match)
{
    // One pass over the format, so a capture that itself holds "%2" is not filled again.
    const QString Format = QString::fromLatin1(pFormat);
    if (aiCaps[1] > 0)
        return Format.arg(Match.cap(aiCaps[0]), Match.cap(aiCaps[1]));
    return Format.arg(Match.cap(aiCaps[0]));
}
} // namespace

bool ParseCompilerBanner(const QString& Output, QString& Compiler, QString& Version, CZamTArray<QString>& Options)
{
    const QString Text = Output.left(static_cast<int>(MaxBannerBytes));
    const QString Identification = Text.left(static_cast<int>(MaxBannerIdentificationBytes));
    Compiler = QStringLiteral("Unknown");
    Version = QStringLiteral("Unknown");
    int iStyle = 1;
    for (const SBannerPattern& Pattern : s_Patterns)
    {
        QRegExp Match(QString::fromLatin1(Pattern.pPattern));
        if (Match.indexIn(Identification) < 0)
            continue;
        Compiler = Fill(Pattern.pCompiler, Pattern.aiCompilerCaps, Match);
        Version = Fill(Pattern.pVersion, Pattern.aiVersionCaps, Match);
        if (&Pattern == &s_Patterns[0])
            iStyle = 0;
        break;
    }

    static const char* const s_apHeaders[] = {"Control options are:", "OPTIONS are:"};
    static const char* const s_apOptionPatterns[] = {"-([A-Za-z-]+)\\s*:", " -(\\w+) "};
    const QString Header = QString::fromLatin1(s_apHeaders[iStyle]);
    const int iHeader = Text.indexOf(Header);
    if (iHeader < 0)
        return false;
    QRegExp Option(QString::fromLatin1(s_apOptionPatterns[iStyle]));
    int iPos = iHeader + Header.size();
    while ((iPos = Option.indexIn(Text, iPos)) >= 0)
    {
        Options.Append(Option.cap(1));
        iPos += qMax(1, Option.matchedLength());
    }
    return true;
}
