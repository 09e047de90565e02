#include "CompileUnit.h"

#include "CompilerOutputParser.h"
#include "PerformanceEstimateParser.h"
#include "ProfileParser.h"
#include "UIString.h"

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>

namespace
{
// Not one of the interface table's fixed texts; it starts with WARNING so the log colours it.
const char* const s_pOutputCutNote = "WARNING: The compiler's output was cut after %1 and the compiler was stopped.";

// Where the compiler leaves its files, and which of them to read.
struct SUnitOutputs
{
    QString OutputBase;
    bool bProfile = false;
    bool bDisassembly = false;
};

void AppendLog(SCompileResult& Result, const QByteArray& Text)
{
    Result.Log.Append(Text.constData(), static_cast<uint32_t>(Text.size()));
}

void AppendLogLine(SCompileResult& Result, const QString& Text)
{
    AppendLog(Result, Text.toUtf8() + '\n');
}

// Reads at most iMaxBytes; bWhole tells whether that was the whole file.
bool ReadBounded(const QString& Path, qint64 iMaxBytes, QByteArray& Bytes, bool& bWhole, QString& Error)
{
    QFile File(Path);
    if (!File.open(QIODevice::ReadOnly))
    {
        Error = File.errorString();
        return false;
    }
    Bytes = File.read(iMaxBytes + 1);
    bWhole = Bytes.size() <= iMaxBytes;
    Bytes.truncate(static_cast<qsizetype>(qMin<qint64>(Bytes.size(), iMaxBytes)));
    return true;
}

void ReadProfile(const SCompileUnit& Unit, const QString& Path, SCompileResult::SProfile& Profile,
                 SCompileResult& Result)
{
    QByteArray Bytes;
    bool bWhole = false;
    QString Error;
    if (!ReadBounded(Path, MaxProfileFileBytes, Bytes, bWhole, Error))
    {
        AppendLogLine(Result, Error);
        return;
    }
    const SProfileParse Parse = bWhole ? ParseProfile(QString::fromUtf8(Bytes), Unit.iLineOffset, Result.CycleCounts)
                                       : SProfileParse{0, -1, -1, true};
    Profile.iTotalConsumedCycles = Parse.iTotalConsumedCycles;
    Profile.iGeneratedInstructions = Parse.iGeneratedInstructions;
    if (Parse.bMalformed)
        AppendLogLine(Result, UIString(UIS_MalformedProfileFile));
}

void ReadDisassembly(const QString& Path, SCompileResult::SProfile& Profile, SCompileResult& Result)
{
    QByteArray Bytes;
    bool bWhole = false;
    QString Error;
    if (!ReadBounded(Path, MaxProfileFileBytes, Bytes, bWhole, Error))
        return;
    Profile.Disassembly = CZamTString(Bytes.constData(), static_cast<uint32_t>(Bytes.size()));
    Result.Disassembly += Profile.Disassembly;
}

void AppendHeader(SCompileResult& Result, const SCompileUnit& Unit, EUIString eText)
{
    AppendLog(Result, QByteArray(Unit.Name.GetString(), static_cast<qsizetype>(Unit.Name.GetLength())) + ": ");
    AppendLogLine(Result, UIString(eText));
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
    const SCompilerOutput Parsed = ParseCompilerOutput(Run.Output, Unit.iLineOffset);
    ECompileStatus eStatus = Parsed.bSucceeded ? Run.eStatus : CompileStatus_Failed;
    if (eStatus == CompileStatus_Completed)
    {
        SCompileResult::SProfile Profile;
        Profile.Name = Unit.Name;
        Profile.bRequestFlag = Unit.uiRequestFlags == 2;
        if (Outputs.bProfile)
            ReadProfile(Unit, Outputs.OutputBase + QStringLiteral(".prof"), Profile, Result);
        if (Outputs.bDisassembly)
            ReadDisassembly(Outputs.OutputBase + QStringLiteral(".disasm"), Profile, Result);
        if (Parsed.bHasEstimate)
            ApplyPerformanceEstimate(ParsePerformanceEstimate(QString::fromUtf8(Run.Output)), Profile);
        Result.AddProfile(Profile);
        AppendHeader(Result, Unit, UIS_CompileSucceeded);
        AppendMessages(Result, Parsed);
    }
    else if (eStatus == CompileStatus_Failed && Parsed.bFailed)
    {
        AppendHeader(Result, Unit, UIS_CompileFailed);
        AppendMessages(Result, Parsed);
    }
    else
    {
        AppendHeader(Result, Unit, UIS_CompilerCriticalError);
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
    if (!File.open(QIODevice::WriteOnly | QIODevice::NewOnly) || File.write(Source) != Source.size() || !File.flush())
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
    const QString Unit8 = QString::fromUtf8(Unit.Name.GetString(), static_cast<int>(Unit.Name.GetLength()));
    const SCompileCommand Command =
        BuildCompilerCommand(Target.Executable, InputPath, Unit8, Outputs.OutputBase, Target.uiSwitches);
    Outputs.bProfile = AsksFor(Command, "-profile");
    Outputs.bDisassembly = AsksFor(Command, "-disasm");

    SRunOptions Options;
    Options.iOutputCap = Target.iOutputCap;
    const SCommandRun Run = RunCommand(Command, Control, Options);
    return JudgeRun(Unit, Run, Outputs, Target.iOutputCap, Result);
}

ECompileStatus RunFileCommand(const SCompileUnit& Unit, const SCompileCommand& Command, const QString& WorkingDirectory,
                              qint64 iOutputCap, CRunControl& Control, SCompileResult& Result)
{
    SUnitOutputs Outputs;
    if (Command.Arguments.size() >= 3)
    {
        Outputs.OutputBase = QDir(WorkingDirectory).filePath(Command.Arguments.at(2));
        Outputs.bProfile = AsksFor(Command, "-profile");
        Outputs.bDisassembly = AsksFor(Command, "-disasm");
    }
    SRunOptions Options;
    Options.WorkingDirectory = WorkingDirectory;
    Options.iOutputCap = iOutputCap;
    const SCommandRun Run = RunCommand(Command, Control, Options);
    return JudgeRun(Unit, Run, Outputs, iOutputCap, Result);
}
