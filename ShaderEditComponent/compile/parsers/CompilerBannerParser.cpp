#include "CompilerBannerParser.h"

#include <QRegularExpression>

#include <iterator>

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

// Where a pattern can match: what it starts with when its leading ".*" is set aside (compiled
// once, anchored where it is tried), and the literal words it begins with.
struct SPatternStart
{
    QRegularExpression Rest;
    QString Literal;
    bool bLastMatch = false; // the leading ".*" makes the last possible start win
};

// "." takes any character and \w any letter, as the patterns were written for.
const QRegularExpression::PatternOptions s_Options =
    QRegularExpression::DotMatchesEverythingOption | QRegularExpression::UseUnicodePropertiesOption;

SPatternStart SplitPattern(const char* pPattern)
{
    SPatternStart Start;
    QString Rest = QString::fromLatin1(pPattern);
    Start.bLastMatch = Rest.startsWith(QLatin1String(".*"));
    if (Start.bLastMatch)
        Rest.remove(0, 2);
    const QString Special = QStringLiteral(".()[]\\*+?{}^$|");
    qsizetype iLiteral = 0;
    while (iLiteral < Rest.size() && !Special.contains(Rest.at(iLiteral)))
        ++iLiteral;
    Start.Literal = Rest.left(iLiteral);
    Start.Rest = QRegularExpression(Rest, s_Options);
    Start.Rest.optimize();
    return Start;
}

const SPatternStart& PatternStart(int iPattern)
{
    static const SPatternStart s_Starts[] = {
        SplitPattern(s_Patterns[0].pPattern), SplitPattern(s_Patterns[1].pPattern),
        SplitPattern(s_Patterns[2].pPattern), SplitPattern(s_Patterns[3].pPattern),
        SplitPattern(s_Patterns[4].pPattern),
    };
    static_assert(std::size(s_Patterns) == 5);
    return s_Starts[iPattern];
}

// Tries the pattern, anchored, at each place its literal words stand: from the last place
// for a leading ".*", from the first otherwise. Match holds the captures when found.
bool FindBanner(const QString& Text, int iPattern, QRegularExpressionMatch& Match)
{
    const SPatternStart& Start = PatternStart(iPattern);
    const qsizetype iWindow = MaxBannerIdentificationBytes;
    qsizetype iAt = Start.bLastMatch ? Text.lastIndexOf(Start.Literal) : Text.indexOf(Start.Literal);
    while (iAt >= 0)
    {
        Match = Start.Rest.match(QStringView(Text).mid(iAt, iWindow), 0, QRegularExpression::NormalMatch,
                                 QRegularExpression::AnchorAtOffsetMatchOption);
        if (Match.hasMatch())
            return true;
        iAt = Start.bLastMatch ? (iAt == 0 ? -1 : Text.lastIndexOf(Start.Literal, iAt - 1))
                               : Text.indexOf(Start.Literal, iAt + 1);
    }
    return false;
}

QString Fill(const char* pFormat, const int (&aiCaps)[2], const QRegularExpressionMatch& Match)
{
    // One pass over the format, so a capture that itself holds "%2" is not filled again.
    const QString Format = QString::fromLatin1(pFormat);
    if (aiCaps[1] > 0)
        return Format.arg(Match.captured(aiCaps[0]), Match.captured(aiCaps[1]));
    return Format.arg(Match.captured(aiCaps[0]));
}
} // namespace

bool ParseCompilerBanner(const QString& Output, QString& Compiler, QString& Version, CZamTArray<QString>& Options)
{
    const QString Text = Output.left(static_cast<int>(MaxBannerBytes));
    Compiler = QStringLiteral("Unknown");
    Version = QStringLiteral("Unknown");
    int iStyle = 1;
    for (int i = 0; i < static_cast<int>(std::size(s_Patterns)); ++i)
    {
        QRegularExpressionMatch Match;
        if (!FindBanner(Text, i, Match))
            continue;
        Compiler = Fill(s_Patterns[i].pCompiler, s_Patterns[i].aiCompilerCaps, Match);
        Version = Fill(s_Patterns[i].pVersion, s_Patterns[i].aiVersionCaps, Match);
        if (i == 0)
            iStyle = 0;
        break;
    }

    static const char* const s_apHeaders[] = {"Control options are:", "OPTIONS are:"};
    static const char* const s_apOptionPatterns[] = {"-([A-Za-z-]+)\\s*:", " -(\\w+) "};
    const QString Header = QString::fromLatin1(s_apHeaders[iStyle]);
    const int iHeader = Text.indexOf(Header);
    if (iHeader < 0)
        return false;
    static const QRegularExpression s_OptionPatterns[] = {
        QRegularExpression(QLatin1String(s_apOptionPatterns[0]), s_Options),
        QRegularExpression(QLatin1String(s_apOptionPatterns[1]), s_Options),
    };
    qsizetype iPos = iHeader + Header.size();
    for (QRegularExpressionMatch Option = s_OptionPatterns[iStyle].match(Text, iPos); Option.hasMatch();
         Option = s_OptionPatterns[iStyle].match(Text, iPos))
    {
        Options.Append(Option.captured(1));
        iPos = Option.capturedStart() + qMax<qsizetype>(1, Option.capturedLength());
    }
    return true;
}
