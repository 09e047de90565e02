#include "CompileCommandLine.h"

#include "CompilerLocator.h"
#include "ShaderEditComponent/compile/model/CompileOptions.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"

#include <QDir>
#include <QFileInfo>

namespace
{
const QLatin1String s_ShaderMarker("<ZFXShaders>");

void AppendQuoted(QString& Line, const QString& Part)
{
    // After a switch ("-f", "--") the quote must not touch it.
    if (!Line.isEmpty() && !Line.endsWith(QLatin1Char(' ')))
        Line += QLatin1Char(' ');
    Line += QLatin1Char('"');
    Line += Part;
    Line += QLatin1String("\" ");
}

bool IsSwitch(const QString& Argument)
{
    return Argument.size() > 1 && Argument.at(0) == QLatin1Char('-');
}
} // namespace

bool IsEffectType(EShaderDocType eType)
{
    return eType == DocType_ZFXGLSLES || eType == DocType_ZFXGLSL;
}

unsigned int StageSwitchFor(EShaderDocType eType)
{
    if (eType == DocType_GLSLESVertex || eType == DocType_GLSLVertex)
        return CompileOption_Verbose;
    if (eType == DocType_GLSLESFragment || eType == DocType_GLSLFragment)
        return CompileOption_F;
    return 0;
}

bool TakesEndOfOptions(const QString& Executable)
{
    const QString Name = QFileInfo(Executable).fileName();
    if (Name.isEmpty())
        return false;
    if (Name == OpenCLCompilerBaseName())
        return true;
    for (int i = 0; i < GetCompilerTargetCount(); ++i)
    {
        if (Name == ToQString(GetCompilerTarget(i).ExecutableBaseName))
            return true;
    }
    return false;
}

SCompileCommand BuildCompilerCommand(const QString& Executable, const QString& Input, const QString& Unit,
                                     const QString& OutputBase, unsigned int uiFlags, const QStringList& ExtraArguments)
{
    QStringList Positional;
    for (const QString* pPart : {&Input, &Unit, &OutputBase})
    {
        if (!pPart->isEmpty())
            Positional.append(*pPart);
    }
    QStringList Options = ExtraArguments;
    for (int i = 0; i < GetCompileOptionCount(); ++i)
    {
        const SCompileOptionName Option = GetCompileOption(i);
        if (uiFlags & Option.eFlag)
            Options.append(QLatin1Char('-') + QLatin1String(Option.pName));
    }
    SCompileCommand Command;
    Command.Program = Executable;
    if (TakesEndOfOptions(Executable))
        Command.Arguments = Options + QStringList{QStringLiteral("--")} + Positional;
    else
        Command.Arguments = Positional + Options;
    return Command;
}

QStringList PositionalArguments(const SCompileCommand& Command)
{
    const qsizetype iEnd = Command.Arguments.indexOf(QStringLiteral("--"));
    if (iEnd >= 0)
        return Command.Arguments.mid(iEnd + 1);
    QStringList Positional;
    for (const QString& Argument : Command.Arguments)
    {
        if (!IsSwitch(Argument))
            Positional.append(Argument);
    }
    return Positional;
}

void AddOption(SCompileCommand& Command, const QString& Option)
{
    const qsizetype iEnd = Command.Arguments.indexOf(QStringLiteral("--"));
    if (iEnd >= 0)
        Command.Arguments.insert(iEnd, Option);
    else
        Command.Arguments.append(Option);
}

QString IncludeFolderFor(const QString& DocumentPath)
{
    return DocumentPath.isEmpty() ? QString() : QFileInfo(DocumentPath).absolutePath();
}

QStringList IncludeFolderArguments(const QString& Folder, const QStringList& MoreFolders)
{
    QStringList Arguments;
    for (const QString& Each : QStringList(Folder) + MoreFolders)
    {
        if (!Each.isEmpty())
            Arguments << QStringLiteral("-I") << Each;
    }
    return Arguments;
}

QString FormatCommandLine(const SCompileCommand& Command)
{
    QString Line;
    AppendQuoted(Line, Command.Program);
    for (const QString& Argument : Command.Arguments)
    {
        if (IsSwitch(Argument))
            Line += QLatin1Char(' ') + Argument;
        else
            AppendQuoted(Line, Argument);
    }
    return Line;
}

QStringList SplitCommandLine(const QString& Line)
{
    QStringList Words;
    QString Word;
    bool bInWord = false;
    bool bQuoted = false;
    for (const QChar Char : Line)
    {
        if (Char == QLatin1Char('"'))
        {
            bQuoted = !bQuoted;
            bInWord = true;
        }
        else if (!bQuoted && Char.isSpace())
        {
            if (bInWord)
                Words.append(Word);
            Word.clear();
            bInWord = false;
        }
        else
        {
            Word += Char;
            bInWord = true;
        }
    }
    if (bInWord)
        Words.append(Word);
    return Words;
}

SSourcePlaceholders PlaceholdersForFile(const QString& FilePath)
{
    const QFileInfo Info(FilePath);
    SSourcePlaceholders Values;
    Values.Directory = QDir::toNativeSeparators(Info.absolutePath());
    Values.FileName = Info.fileName();
    Values.BaseName = Info.fileName().section(QLatin1Char('.'), 0, 0);
    return Values;
}

QString ExpandPlaceholders(const QString& Word, const SSourcePlaceholders& Values, const QString& ShaderName)
{
    const struct
    {
        QLatin1String Token;
        const QString* pValue;
    } Table[] = {
        {QLatin1String("%i%"), &Values.Directory},
        {QLatin1String("%f%"), &Values.FileName},
        {QLatin1String("%b%"), &Values.BaseName},
        {s_ShaderMarker, ShaderName.isNull() ? nullptr : &ShaderName},
    };
    QString Expanded;
    int iPos = 0;
    while (iPos < Word.size())
    {
        bool bReplaced = false;
        for (const auto& Entry : Table)
        {
            if (Entry.pValue && QStringView(Word).mid(iPos).startsWith(Entry.Token))
            {
                Expanded += *Entry.pValue;
                iPos += Entry.Token.size();
                bReplaced = true;
                break;
            }
        }
        if (!bReplaced)
            Expanded += Word.at(iPos++);
    }
    return Expanded;
}

SCompileCommand CommandFromTemplate(const QString& Template, const SSourcePlaceholders& Values,
                                    const QString& ShaderName)
{
    SCompileCommand Command;
    const QStringList Words = SplitCommandLine(Template);
    for (int i = 0; i < Words.size(); ++i)
    {
        QString Word = ExpandPlaceholders(Words.at(i), Values, ShaderName);
        if (i == 0)
        {
            Command.Program = Word;
            continue;
        }
        if (Word.startsWith(QLatin1Char('-')) && !Words.at(i).startsWith(QLatin1Char('-')))
            Word.prepend(QLatin1String("./"));
        Command.Arguments.append(Word);
    }
    return Command;
}

SCompileCommand ShaderCommandFromTemplate(const QString& Template, const QString& EffectPath, const QString& ShaderName,
                                          const QString& ShaderSourcePath)
{
    const SSourcePlaceholders Values = PlaceholdersForFile(EffectPath);
    const QString AbsolutePath = QFileInfo(EffectPath).absoluteFilePath();
    SCompileCommand Command = CommandFromTemplate(Template, Values, ShaderName);
    for (QString& Argument : Command.Arguments)
    {
        if (Argument == Values.FileName || QFileInfo(Argument).absoluteFilePath() == AbsolutePath)
            Argument = ShaderSourcePath;
    }
    return Command;
}
