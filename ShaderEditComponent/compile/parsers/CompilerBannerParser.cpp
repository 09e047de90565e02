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

// Where a pattern can match: what it starts with when its leading ".*" is set aside, and the
// literal words it begins with.
struct SPatternStart
{
    QString Rest;
    QString Literal;
    bool bLastMatch = false; // the leading ".*" makes the last possible start win
};

SPatternStart SplitPattern(const char* pPattern)
{
    SPatternStart Start;
    Start.Rest = QString::fromLatin1(pPattern);
    Start.bLastMatch = Start.Rest.startsWith(QLatin1String(".*"));
    if (Start.bLastMatch)
        Start.Rest.remove(0, 2);
    const QString Special = QStringLiteral(".()[]\\*+?{}^$|");
    qsizetype iLiteral = 0;
    while (iLiteral < Start.Rest.size() && !Special.contains(Start.Rest.at(iLiteral)))
        ++iLiteral;
    Start.Literal = Start.Rest.left(iLiteral);
    return Start;
}

// Tries the pattern, anchored, at each place its literal words stand: from the last place
// for a leading ".*", from the first otherwise. Match holds the captures when found.
bool FindBanner(const QString& Text, const char* pPattern, QRegExp& Match)
{
    const SPatternStart Start = SplitPattern(pPattern);
    Match = QRegExp(QLatin1Char('^') + Start.Rest);
    const int iWindow = static_cast<int>(MaxBannerIdentificationBytes);
    int iAt = Start.bLastMatch ? Text.lastIndexOf(Start.Literal) : Text.indexOf(Start.Literal);
    while (iAt >= 0)
    {
        if (Match.indexIn(Text.mid(iAt, iWindow)) == 0)
            return true;
        iAt = Start.bLastMatch ? (iAt == 0 ? -1 : Text.lastIndexOf(Start.Literal, iAt - 1))
                               : Text.indexOf(Start.Literal, iAt + 1);
    }
    return false;
}

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
    Compiler = QStringLiteral("Unknown");
    Version = QStringLiteral("Unknown");
    int iStyle = 1;
    for (const SBannerPattern& Pattern : s_Patterns)
    {
        QRegExp Match;
        if (!FindBanner(Text, Pattern.pPattern, Match))
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
