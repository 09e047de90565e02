#pragma once

#include "DialogCommandLine.h"

#include <QString>

// Texts of the shell's dialogs that the application text table does not hold.
enum EDialogText : int
{
    DialogText_ProblemEmpty = 0,
    DialogText_ProblemUnbalancedQuotes,
    DialogText_ProblemNoProgram,
    DialogText_ProblemNoCompiler,
    DialogText_ProblemNoOutputDirectory,
    DialogText_ProblemQuoteInOutputDirectory,
    DialogText_ArgumentsTitle,
    DialogText_CompilerGLSLES,
    DialogText_ProgramLabel,
    DialogText_ArgumentLabel,

    DialogText_Count
};

[[nodiscard]] QString DialogText(EDialogText eText);

// The sentence that says why a command line is refused; empty for a usable one.
[[nodiscard]] QString DescribeCommandLineProblem(ECommandLineProblem eProblem);
