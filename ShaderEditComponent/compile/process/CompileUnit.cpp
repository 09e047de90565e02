#include "CompileUnit.h"

#include "RegularFile.h"
#include "ShaderEditComponent/compile/model/UIString.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/compile/parsers/CompilerOutputParser.h"
#include "ShaderEditComponent/compile/parsers/PerformanceEstimateParser.h"
#include "ShaderEditComponent/compile/parsers/ProfileParser.h"

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>

#include <cstring>

namespace
{
// Not among the interface table's fixed texts. A WARNING or ERROR start colours them in the log.
const char* const s_pOutputCutNote = "WARNING: The compiler's output was cut after %1 and the compiler was stopped.";
const char* const s_pEndedBySignal = "The compiler was ended by signal %1 (%2).";
const char* const s_pUnreadableOutputFile = "ERROR: Could not read %1: %2.";

// Where the compiler leaves its files, and which of them to read.
struct SUnitOutputs
{
    QString OutputBase;
    bool bProfile = false;
    bool bDisassembly = false;
    bool bDependencies = false;        // the private folder may hold the headers the compile read
    qint64 iLastLine = MaxProfileLine; // the last document line the compiled text covers
};

void AppendLog(SCompileResult& Result, const QByteArray& Text)
{
    Result.Log.Append(Text.constData(), static_cast<uint32_t>(Text.size()));
}

void AppendLogLine(SCompileResult& Result, const QString& Text)
{
    AppendLog(Result, Text.toUtf8() + '\n');
}

// An output file of the compiler; anything but a regular file within the limit is refused
// with the reason, so a FIFO left at its name can never stall the compile.
bool ReadOutputFile(const QString& Path, QByteArray& Bytes, QString& Error)
{
    const SRegularFile File = ReadRegularFile(Path, MaxProfileFileBytes);
    if (File.eResult != RegularFile_Read)
    {
        Error = QString::fromLatin1(s_pUnreadableOutputFile).arg(Path, DescribeReadFailure(File));
        return false;
    }
    Bytes = File.Bytes;
    return true;
}

void ReadProfile(const SCompileUnit& Unit, const SUnitOutputs& Outputs, SCompileResult::SProfile& Profile,
                 SCompileResult& Result)
{
    QByteArray Bytes;
    QString Error;
    if (!ReadOutputFile(Outputs.OutputBase + QStringLiteral(".prof"), Bytes, Error))
    {
        AppendLogLine(Result, Error);
        return;
    }
    const SProfileParse Parse =
        ParseProfile(QString::fromUtf8(Bytes), Unit.iLineOffset, Outputs.iLastLine, Result.CycleCounts);
    Profile.iTotalConsumedCycles = Parse.iTotalConsumedCycles;
    Profile.iGeneratedInstructions = Parse.iGeneratedInstructions;
    if (Parse.bMalformed)
        AppendLogLine(Result, UIString(UIS_MalformedProfileFile));
    if (Parse.iOutOfRangeEntries > 0)
        AppendLogLine(Result, OutOfRangeNote(Parse, Outputs.iLastLine));
}

void ReadDisassembly(const QString& Path, SCompileResult::SProfile& Profile, SCompileResult& Result)
{
    QByteArray Bytes;
    QString Error;
    if (!ReadOutputFile(Path, Bytes, Error))
        return;
    Profile.Disassembly = CZamTString(Bytes.constData(), static_cast<uint32_t>(Bytes.size()));
    Result.Disassembly += Profile.Disassembly;
}

// "<output base>.deps": one header a line. Written by a compiler that knows it, also on failure.
void ReadDependencies(const QString& Path, SCompileResult& Result)
{
    if (!QFile::exists(Path))
        return;
    QByteArray Bytes;
    QString Error;
    if (!ReadOutputFile(Path, Bytes, Error))
    {
        AppendLogLine(Result, Error);
        return;
    }
    for (const QByteArray& Line : Bytes.split('\n'))
    {
        const QString File = QString::fromUtf8(Line.trimmed());
        if (!File.isEmpty() && !Result.IncludedFiles.contains(File))
            Result.IncludedFiles.append(File);
    }
}

// The unit's verdict line, and how the compiler ended when a signal ended it.
void AppendHeader(SCompileResult& Result, const SCompileUnit& Unit, EUIString eText, const QString& EndedBySignal)
{
    AppendLog(Result, QByteArray(Unit.Name.GetString(), static_cast<qsizetype>(Unit.Name.GetLength())) + ": ");
    AppendLogLine(Result, UIString(eText));
    if (!EndedBySignal.isEmpty())
        AppendLogLine(Result, EndedBySignal);
}

void AppendMessages(SCompileResult& Result, const SCompilerOutput& Parsed)
{
    AppendLog(Result, Parsed.LogText);
    Result.Messages += Parsed.Messages;
}

// Turns a finished run into the unit's status, log lines, messages and profile record.
ECompileStatus JudgeRun(const SCompileUnit& Unit, const SCommandRun& Run, const SUnitOutputs& Outputs,
                        qint64 iOutputCap, SCompileResult& Result)
{
    if (Run.eStatus == CompileStatus_NotRun)
    {
        AppendLogLine(Result, UIString(UIS_FailedToExecuteCompiler));
        return CompileStatus_NotRun;
    }
    if (Outputs.bDependencies)
        ReadDependencies(Outputs.OutputBase + QStringLiteral(".deps"), Result);
    const SCompilerOutput Parsed = ParseCompilerOutput(Run.Output, Unit.iLineOffset);
    const ECompileStatus eStatus = Parsed.bSucceeded ? Run.eStatus : CompileStatus_Failed;
    const QString EndedBySignal = Run.iExitSignal == 0 ? QString()
                                                       : QString::fromLatin1(s_pEndedBySignal)
                                                             .arg(Run.iExitSignal)
                                                             .arg(QString::fromLocal8Bit(strsignal(Run.iExitSignal)));
    if (eStatus == CompileStatus_Completed)
    {
        SCompileResult::SProfile Profile;
        Profile.Name = Unit.Name;
        Profile.bRequestFlag = Unit.uiRequestFlags == 2;
        Profile.iLineOffset = Unit.iLineOffset;
        if (Outputs.bProfile)
            ReadProfile(Unit, Outputs, Profile, Result);
        if (Outputs.bDisassembly)
            ReadDisassembly(Outputs.OutputBase + QStringLiteral(".disasm"), Profile, Result);
        if (Parsed.bHasEstimate)
            ApplyPerformanceEstimate(ParsePerformanceEstimate(QString::fromUtf8(Run.Output)), Profile);
        Result.AddProfile(Profile);
        AppendHeader(Result, Unit, UIS_CompileSucceeded, EndedBySignal);
        AppendMessages(Result, Parsed);
    }
    else
    {
        AppendHeader(Result, Unit, Parsed.bFailed ? UIS_CompileFailed : UIS_CompilerCriticalError, EndedBySignal);
        if (Parsed.Messages.isEmpty())
            AppendLog(Result, RawOutputForLog(Run.Output));
        else if (Parsed.bFailed)
            AppendMessages(Result, Parsed);
    }
    if (Run.bOutputCut)
        AppendLogLine(Result, QString::fromLatin1(s_pOutputCutNote).arg(QLocale::c().formattedDataSize(iOutputCap, 0)));
    return eStatus;
}

bool AsksFor(const SCompileCommand& Command, const char* pSwitch)
{
    return Command.Arguments.contains(QLatin1String(pSwitch));
}
} // namespace

QString PrivateFolderTemplate(const QString& TempDirectory)
{
    const QString Folder = TempDirectory.isEmpty() ? QDir::tempPath() : TempDirectory;
    return QDir(Folder).filePath(QStringLiteral("zamshadereditor-XXXXXX"));
}

QString WriteUnitSource(QTemporaryDir& Folder, const QString& FileName, const QByteArray& Source)
{
    if (!Folder.isValid())
        return QString();
    const QString Path = Folder.filePath(FileName);
    QFile File(Path);
    // Owner-only like its folder, so a copy moved or linked out of the folder stays private.
    if (!File.open(QIODevice::WriteOnly | QIODevice::NewOnly, QFileDevice::ReadOwner | QFileDevice::WriteOwner)
        || File.write(Source) != Source.size() || !File.flush())
    {
        File.remove();
        return QString();
    }
    return Path;
}

ECompileStatus CompileSource(const SCompileUnit& Unit, const QByteArray& Source, const SCompileTarget& Target,
                             CRunControl& Control, SCompileResult& Result)
{
    QTemporaryDir Private(PrivateFolderTemplate(Target.TempDirectory));
    const QString InputPath = WriteUnitSource(Private, QStringLiteral("shader.tmp"), Source);
    if (InputPath.isEmpty())
    {
        AppendLogLine(Result, UIString(UIS_CouldNotCreateTempFile));
        return CompileStatus_NotRun;
    }

    SUnitOutputs Outputs;
    Outputs.OutputBase = Private.filePath(QStringLiteral("shader"));
    const QString Unit8 = ToQString(Unit.Name);
    const SCompileCommand Command = BuildCompilerCommand(Target.Executable, InputPath, Unit8, Outputs.OutputBase,
                                                         Target.uiSwitches, Target.ExtraArguments);
    Outputs.bProfile = AsksFor(Command, "-profile");
    Outputs.bDisassembly = AsksFor(Command, "-disasm");
    Outputs.bDependencies = true;
    Outputs.iLastLine = Unit.iLineOffset + Source.count('\n') + 1;

    SRunOptions Options;
    Options.iOutputCap = Target.iOutputCap;
    Options.CleanupFolder = Private.path();
    const SCommandRun Run = RunCommand(Command, Control, Options);
    return JudgeRun(Unit, Run, Outputs, Target.iOutputCap, Result);
}

ECompileStatus RunFileCommand(const SCompileUnit& Unit, const SCompileCommand& Command, const QString& WorkingDirectory,
                              qint64 iOutputCap, CRunControl& Control, SCompileResult& Result,
                              const QString& CleanupFolder)
{
    SUnitOutputs Outputs;
    const QStringList Positional = PositionalArguments(Command);
    if (Positional.size() >= 3)
    {
        Outputs.OutputBase = QDir(WorkingDirectory).filePath(Positional.at(2));
        Outputs.bProfile = AsksFor(Command, "-profile");
        Outputs.bDisassembly = AsksFor(Command, "-disasm");
    }
    SRunOptions Options;
    Options.WorkingDirectory = WorkingDirectory;
    Options.iOutputCap = iOutputCap;
    Options.CleanupFolder = CleanupFolder;
    const SCommandRun Run = RunCommand(Command, Control, Options);
    return JudgeRun(Unit, Run, Outputs, iOutputCap, Result);
}
