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
    // Literal words any match holds after its start, in this order (null when fewer): where
    // they do not follow, the pattern is not tried, so text that is no banner costs no
    // regular-expression run.
    const char* apRequired[3];
    // What follows the word after " for " (one more character may stand between for
    // ". Version "); null for a pattern whose first words are followed by a version number.
    const char* pAfterWord;
    bool bCharBeforeAfterWord;
};

// In the order they are tried; a capture number of 0 means "not used".
// clang-format off
const SBannerPattern s_Patterns[] = {
    {"Zam OpenCL ([0-9.]+) (.*) compiler. Version .* ([A-Za-z0-9._]+)@(\\d+)", "OpenCL %1 %2", {1, 2}, "%1@%2", {3, 4},
     {" compiler", " Version ", "@"}, nullptr, false},
    {".* for (\\w+). Version ([A-Za-z0-9._]+)@(\\d+)", "%1", {1, 0}, "%1@%2", {2, 3},
     {" Version ", "@"}, " Version ", true},
    {".* for (\\w+) rev (\\d+).* zcddk ([A-Za-z0-9._]+)@(\\d+)", "%1 rev %2", {1, 2}, "%1@%2", {3, 4},
     {" rev ", " zcddk ", "@"}, " rev ", false},
    {".* for (\\w+) rev (\\d+).* zcddk \\d+ ([A-Za-z0-9._]+)@(\\d+)", "%1 rev %2", {1, 2}, "%1@%2", {3, 4},
     {" rev ", " zcddk ", "@"}, " rev ", false},
    {".* for (\\w+) rev (\\d+).* Version ([0-9.]*).*", "%1 rev %2", {1, 2}, "%1", {3, 0},
     {" rev ", " Version "}, " rev ", false},
};
// clang-format on

bool HoldsRequiredWords(QStringView Text, const SBannerPattern& Pattern)
{
    qsizetype iFrom = 0;
    for (const char* pWord : Pattern.apRequired)
    {
        if (!pWord)
            break;
        const QLatin1String Word(pWord);
        const qsizetype iAt = Text.indexOf(Word, iFrom);
        if (iAt < 0)
            return false;
        iFrom = iAt + Word.size();
    }
    return true;
}

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

// Taken generously (marks, connectors, surrogate halves), so that no place where \\w+ matches
// is passed over.
bool IsWordLike(QChar Char)
{
    return Char.isLetterOrNumber() || Char.isMark() || Char.isSurrogate()
           || Char.category() == QChar::Punctuation_Connector;
}

// What must follow a pattern's first literal words (iLiteral characters at the start of Window)
// for it to match there: a version digit, or a word and then the pattern's next words. Most
// places fail this without running the expression.
bool MayMatchAt(QStringView Window, const SBannerPattern& Pattern, qsizetype iLiteral)
{
    if (Window.size() <= iLiteral)
        return false;
    if (!Pattern.pAfterWord)
        return Window.at(iLiteral).isDigit() || Window.at(iLiteral) == QLatin1Char('.');
    qsizetype iWordEnd = iLiteral;
    while (iWordEnd < Window.size() && IsWordLike(Window.at(iWordEnd)))
        ++iWordEnd;
    if (iWordEnd == iLiteral)
        return false;
    const QStringView After = Window.sliced(iWordEnd);
    const QLatin1String Next(Pattern.pAfterWord);
    // The one character before the next words may be the word's own last one.
    return After.startsWith(Next)
           || (Pattern.bCharBeforeAfterWord && !After.isEmpty() && After.sliced(1).startsWith(Next));
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
        const QStringView Window = QStringView(Text).mid(iAt, iWindow);
        const SBannerPattern& Pattern = s_Patterns[iPattern];
        if (MayMatchAt(Window, Pattern, Start.Literal.size()) && HoldsRequiredWords(Window, Pattern))
        {
            Match = Start.Rest.match(Window, 0, QRegularExpression::NormalMatch,
                                     QRegularExpression::AnchorAtOffsetMatchOption);
            if (Match.hasMatch())
                return true;
        }
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
