#include "DialogText_p.h"

#include <iterator>

namespace
{
const char* const s_apEnglish[] = {
    "The command line is empty. Type the program to run and its arguments.",
    "A double quote in the command line is never closed.",
    "The command line does not start with a program to run.",
    "No compiler is set up. Choose one on the Compiler Settings page of the preferences.",
    "Choose the directory the output is written to.",
    "The output directory holds a double quote, which a command line cannot pass on.",
    "Runs the program with these arguments, without a shell:",
    "Built-in compiler",
    "Program: %1",
    "Argument %1: %2",
};
static_assert(std::size(s_apEnglish) == DialogText_Count, "every text needs exactly one entry");
} // namespace

QString DialogText(EDialogText eText)
{
    if (eText < 0 || eText >= DialogText_Count)
        return QString();
    return QString::fromUtf8(s_apEnglish[eText]);
}

QString DescribeCommandLineProblem(ECommandLineProblem eProblem)
{
    switch (eProblem)
    {
    case CommandLineProblem_None: return QString();
    case CommandLineProblem_Empty: return DialogText(DialogText_ProblemEmpty);
    case CommandLineProblem_UnbalancedQuotes: return DialogText(DialogText_ProblemUnbalancedQuotes);
    case CommandLineProblem_NoProgram: return DialogText(DialogText_ProblemNoProgram);
    case CommandLineProblem_NoCompiler: return DialogText(DialogText_ProblemNoCompiler);
    case CommandLineProblem_NoOutputDirectory: return DialogText(DialogText_ProblemNoOutputDirectory);
    case CommandLineProblem_QuoteInOutputDirectory: return DialogText(DialogText_ProblemQuoteInOutputDirectory);
    }
    return QString();
}
