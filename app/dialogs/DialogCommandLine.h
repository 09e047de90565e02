#pragma once

#include "ShaderEditComponent/compile/process/CompileCommandLine.h"

#include <QString>

// Why the compile dialog refuses a command line.
enum ECommandLineProblem
{
    CommandLineProblem_None = 0,
    CommandLineProblem_Empty,            // the custom template holds nothing but blanks
    CommandLineProblem_UnbalancedQuotes, // a double quote is never closed
    CommandLineProblem_NoProgram,        // the first word is empty, so there is nothing to run
    CommandLineProblem_NoCompiler,       // the built-in compile has no compiler to run
    CommandLineProblem_NoOutputDirectory,
    CommandLineProblem_QuoteInOutputDirectory, // no command line can pass such a folder intact
};

// One command line of the compile dialog, in its three forms.
struct SDialogCommandLine
{
    // What the dialog shows: the placeholders filled in and the words quoted.
    QString Display;
    // What goes to the compiler worker: the same, but with %i%, %f% and %b% still in it, so
    // that the worker fills them in after splitting the line into words and a file name
    // stays one argument whatever it holds.
    QString CompileForm;
    // The program and arguments the worker will run for this line (before "<ZFXShaders>" is
    // replaced for each shader of an effect file).
    SCompileCommand Command;
    ECommandLineProblem eProblem = CommandLineProblem_None;

    bool IsUsable() const { return eProblem == CommandLineProblem_None; }
};

// The dialog's quoting step on a text: from the start, each word character that begins a
// token gets a double quote before it and one at the next blank (or the end), unless it
// follows a double quote or a "-". After such a character nothing is quoted up to the next
// double quote, so "-o" stays bare and so does whatever follows it until a quote.
[[nodiscard]] QString QuoteCommandWords(const QString& Text);

// A custom template: %i% (the source's folder), %f% (its file name), %b% (its name before the
// first dot) and %o% (OutputDirectory) are filled in, and the words quoted. Each filled-in
// placeholder counts as one word for the quoting, so a name with blanks is quoted as a whole.
// Other %word% texts stay as typed.
SDialogCommandLine MakeCustomCommandLine(const QString& Template, const QString& SourcePath,
                                         const QString& OutputDirectory);

// The built-in compiler's line as the controller gives it (already quoted, placeholders in it).
SDialogCommandLine MakeBuiltInCommandLine(const QString& Line, const QString& CompilerPath, const QString& SourcePath,
                                          const QString& OutputDirectory);
