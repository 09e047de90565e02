#pragma once

#include "CommandRunner.h"
#include "CompileCommandLine.h"
#include "ShaderEditComponent/compile/model/CompileResult.h"

#include <QByteArray>
#include <QString>

class QTemporaryDir;

// One compiled unit: a whole document, or one shader of an effect file.
struct SCompileUnit
{
    CZamTString Name;                // starts its log lines; its profile record is kept under it
    int iLineOffset = 0;             // the document line the unit starts at; 0 for a whole document
    unsigned int uiRequestFlags = 0; // the flags the compile was requested with
};

// The compiler a unit is compiled with.
struct SCompileTarget
{
    QString Executable;
    QString TempDirectory;       // where the private folder for the unit's files is made
    unsigned int uiSwitches = 0; // option flags written on the command line
    QStringList ExtraArguments;  // after the positional arguments (an OpenCL include folder)
    qint64 iOutputCap = DefaultOutputCap;
};

// Writes Source to "<private folder>/shader.tmp" inside the temporary directory, runs the
// compiler on it with the output base "<private folder>/shader", and adds the unit's log
// lines, messages, per-line counts and profile record to Result. The private folder has an
// unpredictable name and is removed with everything the compiler wrote. Returns the unit's
// status.
ECompileStatus CompileSource(const SCompileUnit& Unit, const QByteArray& Source, const SCompileTarget& Target,
                             CRunControl& Control, SCompileResult& Result);

// Runs a ready compile-to-file command in WorkingDirectory and adds its outcome to Result the
// same way. Its third positional argument is the output base whose ".prof" and ".disasm" files
// are read when the command has a "-profile" or "-disasm" argument; they are the user's files
// and stay where they are. CleanupFolder: a private folder the command reads from, removed
// should the editor die while the command runs.
ECompileStatus RunFileCommand(const SCompileUnit& Unit, const SCompileCommand& Command, const QString& WorkingDirectory,
                              qint64 iOutputCap, CRunControl& Control, SCompileResult& Result,
                              const QString& CleanupFolder = QString());

// The QTemporaryDir template of a private folder inside TempDirectory (the system's temporary
// folder when that is empty): an unpredictable name, made with mode 0700.
[[nodiscard]] QString PrivateFolderTemplate(const QString& TempDirectory);

// Writes a unit's source as FileName into a private temporary folder. Returns the file's
// path, empty on failure; the file goes with the folder.
[[nodiscard]] QString WriteUnitSource(QTemporaryDir& Folder, const QString& FileName, const QByteArray& Source);
