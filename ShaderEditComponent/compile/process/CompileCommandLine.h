#pragma once

#include "ShaderEditComponent/compile/model/ShaderDocType.h"

#include <QString>
#include <QStringList>

// The two effect-file types, whose shaders are compiled one by one.
[[nodiscard]] bool IsEffectType(EShaderDocType eType);

// The stage switch a document type adds to a compile: "v" (1) for the vertex types, "f" (2)
// for the fragment types, nothing for the others.
unsigned int StageSwitchFor(EShaderDocType eType);

// A program and its arguments, run directly: no shell ever sees them.
struct SCompileCommand
{
    QString Program;
    QStringList Arguments;
};

// Whether the executable is one of the bundled compilers, which take "--" to end their options
// (told by its file name: glslcompiler_zc1 ... and clcompiler_zc1).
[[nodiscard]] bool TakesEndOfOptions(const QString& Executable);

// The compiler's command: the three positional arguments (input, unit name, output base; empty
// ones are left out), the extra arguments as they are, then one switch per option flag set, in
// flag order ("-v", "-f", "-nowarn", "-profile", "-perfsim", "-disasm"). Flags outside the
// option table add nothing. A bundled compiler gets the switches and the extra arguments
// first, then "--", then the positional arguments, so no name is ever read as a switch.
SCompileCommand BuildCompilerCommand(const QString& Executable, const QString& Input, const QString& Unit,
                                     const QString& OutputBase, unsigned int uiFlags,
                                     const QStringList& ExtraArguments = QStringList());

// The arguments that are no options: those after "--", or else those that do not start with
// "-" (a lone "-" counts as a name).
[[nodiscard]] QStringList PositionalArguments(const SCompileCommand& Command);
// Adds an option where it is still read as one: before "--" if there is one, else at the end.
void AddOption(SCompileCommand& Command, const QString& Option);

// The folder a document's local headers are searched in: the folder of its file, empty for a
// document that was never saved.
[[nodiscard]] QString IncludeFolderFor(const QString& DocumentPath);
// "-I" and the folder, as two arguments, for Folder and then each of MoreFolders; nothing for
// an empty folder.
[[nodiscard]] QStringList IncludeFolderArguments(const QString& Folder, const QStringList& MoreFolders = {});

// The command as one line of text, in argument order: the program and each argument that is
// not a switch in double quotes followed by a blank, each switch as " -name". SplitCommandLine
// gives the command back as long as no part holds a double quote.
[[nodiscard]] QString FormatCommandLine(const SCompileCommand& Command);

// Splits a command template into words. Blanks separate words outside double quotes; a double
// quote opens or closes a quoted stretch and is dropped; stretches that touch form one word
// (-o"a b" gives -oa b); "" is an empty word. Nothing else is special, so a backslash or a
// semicolon is an ordinary character.
[[nodiscard]] QStringList SplitCommandLine(const QString& Line);

// The values that a command template's placeholders stand for, from the source file's path.
struct SSourcePlaceholders
{
    QString Directory; // %i%: the file's absolute folder, native separators
    QString FileName;  // %f%: name with extension
    QString BaseName;  // %b%: the name before its first dot
};

[[nodiscard]] SSourcePlaceholders PlaceholdersForFile(const QString& FilePath);

// Replaces %i%, %f%, %b% and, when ShaderName is not null, "<ZFXShaders>" in one word, in a
// single left-to-right pass: a replacement is never scanned again, so a file name that holds
// a placeholder text stays as it is. Other %word% texts stay as typed.
QString ExpandPlaceholders(const QString& Word, const SSourcePlaceholders& Values,
                           const QString& ShaderName = QString());

// A compile-to-file template turned into a command: split first, placeholders expanded in each
// word afterwards, so whatever the file name holds (blanks, quotes, semicolons) stays inside
// its one argument. A word that only starts with "-" because of its placeholder's value (a
// file named -x.frag) gets "./" in front, so it is never read as an option. An empty template
// gives an empty program.
SCompileCommand CommandFromTemplate(const QString& Template, const SSourcePlaceholders& Values,
                                    const QString& ShaderName = QString());

// The command of a compile-to-file template for one shader of an effect file: "<ZFXShaders>"
// becomes the shader's name, and every argument that names the effect file itself (its
// absolute path, or its bare file name as %f% gives it) becomes ShaderSourcePath, the file
// holding that shader's own source.
SCompileCommand ShaderCommandFromTemplate(const QString& Template, const QString& EffectPath, const QString& ShaderName,
                                          const QString& ShaderSourcePath);
