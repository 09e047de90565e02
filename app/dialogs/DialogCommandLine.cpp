#include "DialogCommandLine.h"

#include <QRegExp>
#include <QVector>

namespace
{
const QLatin1Char s_Quote('"');
const QLatin1String s_OutputToken("%o%");
// The tokens the worker fills in, plus the output folder the dialog fills in itself.
const QLatin1String s_apTokens[] = {QLatin1String("%i%"), QLatin1String("%f%"), QLatin1String("%b%"),
                                    QLatin1String("<ZFXShaders>"), s_OutputToken};
// Stands for every character of a filled-in placeholder while quoting: a word character.
const QLatin1Char s_WordStandIn('x');

// Where QuoteCommandWords puts its quotes, as positions in Text (ascending).
QVector<int> QuotePositions(const QString& Text)
{
    const QRegExp Word(QStringLiteral("\\w"));
    const QRegExp SpaceOrEnd(QStringLiteral("\\s|$"));
    const QRegExp Quote(QStringLiteral("\""));
    QVector<int> Positions;
    int iPos = 0;
    for (;;)
    {
        const int iWord = Word.indexIn(Text, iPos);
        if (iWord < 0)
            break;
        const QChar Before = iWord > 0 ? Text.at(iWord - 1) : QChar();
        if (iWord == 0 || (Before != s_Quote && Before != QLatin1Char('-')))
        {
            const int iEnd = SpaceOrEnd.indexIn(Text, iWord);
            Positions << iWord << iEnd;
            iPos = iEnd;
            continue;
        }
        const int iQuote = Quote.indexIn(Text, iWord);
        if (iQuote < 0)
            break;
        iPos = iQuote;
    }
    return Positions;
}

QString InsertQuotes(const QString& Text, const QVector<int>& Positions)
{
    QString Out;
    Out.reserve(Text.size() + Positions.size());
    int iNext = 0;
    for (int i = 0; i <= Text.size(); ++i)
    {
        while (iNext < Positions.size() && Positions.at(iNext) == i)
        {
            Out += s_Quote;
            ++iNext;
        }
        if (i < Text.size())
            Out += Text.at(i);
    }
    return Out;
}

// The template with %o% filled in (Filled), and the same text with every placeholder's
// characters replaced by the word stand-in (Masked), character for character.
void FillOutputToken(const QString& Template, const QString& OutputDirectory, QString* pFilled, QString* pMasked)
{
    int iPos = 0;
    while (iPos < Template.size())
    {
        bool bToken = false;
        for (const QLatin1String& Token : s_apTokens)
        {
            if (!QStringView(Template).mid(iPos).startsWith(Token))
                continue;
            const QString Value = Token == s_OutputToken ? OutputDirectory : QString(Token);
            *pFilled += Value;
            *pMasked += QString(Value.size(), s_WordStandIn);
            iPos += Token.size();
            bToken = true;
            break;
        }
        if (!bToken)
        {
            *pFilled += Template.at(iPos);
            *pMasked += Template.at(iPos++);
        }
    }
}

// Fills in the source placeholders the way the worker does and judges the result.
SDialogCommandLine Finish(const QString& CompileForm, const QString& SourcePath)
{
    const SSourcePlaceholders Values = PlaceholdersForFile(SourcePath);
    SDialogCommandLine Line;
    Line.CompileForm = CompileForm;
    Line.Display = ExpandPlaceholders(CompileForm, Values);
    Line.Command = CommandFromTemplate(CompileForm, Values);
    if (CompileForm.count(s_Quote) % 2 != 0)
        Line.eProblem = CommandLineProblem_UnbalancedQuotes;
    else if (Line.Command.Program.isEmpty())
        Line.eProblem = CommandLineProblem_NoProgram;
    return Line;
}
} // namespace

QString QuoteCommandWords(const QString& Text)
{
    return InsertQuotes(Text, QuotePositions(Text));
}

SDialogCommandLine MakeCustomCommandLine(const QString& Template, const QString& SourcePath,
                                         const QString& OutputDirectory)
{
    QString Filled;
    QString Masked;
    FillOutputToken(Template, OutputDirectory, &Filled, &Masked);
    SDialogCommandLine Line = Finish(InsertQuotes(Filled, QuotePositions(Masked)), SourcePath);
    const bool bUsesOutput = Template.contains(s_OutputToken);
    if (Template.trimmed().isEmpty())
        Line.eProblem = CommandLineProblem_Empty;
    else if (bUsesOutput && OutputDirectory.contains(s_Quote))
        Line.eProblem = CommandLineProblem_QuoteInOutputDirectory;
    else if (bUsesOutput && OutputDirectory.isEmpty() && Line.IsUsable())
        Line.eProblem = CommandLineProblem_NoOutputDirectory;
    return Line;
}

SDialogCommandLine MakeBuiltInCommandLine(const QString& Line, const QString& CompilerPath, const QString& SourcePath,
                                          const QString& OutputDirectory)
{
    SDialogCommandLine Result = Finish(Line, SourcePath);
    if (CompilerPath.isEmpty())
        Result.eProblem = CommandLineProblem_NoCompiler;
    else if (OutputDirectory.contains(s_Quote))
        Result.eProblem = CommandLineProblem_QuoteInOutputDirectory;
    else if (OutputDirectory.isEmpty())
        Result.eProblem = CommandLineProblem_NoOutputDirectory;
    return Result;
}
