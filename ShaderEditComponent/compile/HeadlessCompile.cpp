#include "HeadlessCompile.h"

#include "CShaderEditController.h"
#include "CompileOptions.h"
#include "CompilerLocator.h"
#include "MetaTypes.h"
#include "ShaderDocType.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QIODevice>

namespace
{
const char* const s_pUsage = "usage: zamshadereditor --compile [--core zc1|zc2|zc3|zd1] FILE...\n";

struct SHeadlessRequest
{
    qint64 iSelection = -1;
    QStringList Files;
};

void Write(QIODevice& Device, const QString& Text)
{
    Device.write(Text.toUtf8());
}

// The index of a core in the target table from its short name ("zc1" for glslcompiler_zc1).
qint64 CoreSelection(const QString& Core)
{
    for (int i = 0; i < GetCompilerTargetCount(); ++i)
    {
        const QString BaseName = QString::fromUtf8(GetCompilerTarget(i).ExecutableBaseName.GetString());
        if (BaseName.endsWith(QLatin1Char('_') + Core))
            return i;
    }
    return -1;
}

bool ParseArguments(const QStringList& Arguments, SHeadlessRequest& Request, QString& Error)
{
    for (int i = 2; i < Arguments.size(); ++i)
    {
        const QString& Argument = Arguments.at(i);
        if (Argument == QLatin1String("--core"))
        {
            Request.iSelection = i + 1 < Arguments.size() ? CoreSelection(Arguments.at(++i)) : -1;
            if (Request.iSelection < 0)
            {
                Error = QStringLiteral("--core takes one of zc1, zc2, zc3, zd1\n");
                return false;
            }
        }
        else
        {
            Request.Files.append(Argument);
        }
    }
    if (Request.Files.isEmpty())
        Error = QStringLiteral("no file to compile\n");
    return !Request.Files.isEmpty();
}

bool IsCompiledType(EShaderDocType eType)
{
    switch (eType)
    {
    case DocType_GLSLESVertex:
    case DocType_GLSLESFragment:
    case DocType_GLSLVertex:
    case DocType_GLSLFragment:
    case DocType_ZFXGLSLES:
    case DocType_ZFXGLSL:
    case DocType_OpenCLKernel:
        return true;
    default:
        return false;
    }
}

// Compiles one file through the controller; false when it did not compile.
bool CompileFile(CShaderEditController& Controller, const QString& Path, QIODevice& Out, QIODevice& Err)
{
    QFile File(Path);
    if (!File.open(QIODevice::ReadOnly))
    {
        Write(Err, QStringLiteral("%1: %2\n").arg(Path, File.errorString()));
        return false;
    }
    const QByteArray Bytes = File.readAll();
    const QString Contents = QString::fromUtf8(Bytes);
    const EShaderDocType eType = DetectDocumentType(Contents, QFileInfo(Path).suffix());
    if (!IsCompiledType(eType))
    {
        Write(Err, QStringLiteral("%1: not a shader the compilers take (%2)\n").arg(Path, GetDocTypeName(eType)));
        return false;
    }
    if (Contents.isEmpty())
    {
        Write(Err, QStringLiteral("%1: the file is empty\n").arg(Path));
        return false;
    }

    SCompileResult Result;
    QEventLoop Loop;
    const QMetaObject::Connection Connection =
        QObject::connect(&Controller, &CShaderEditController::CompileProfileChanged, &Loop,
                         [&](const SCompileResult& Delivered)
                         {
                             Result = Delivered;
                             Loop.quit();
                         });
    const QByteArray PathBytes = QFileInfo(Path).absoluteFilePath().toUtf8();
    Controller.OnCompilePanel(CZamTHash(PathBytes.constData()), Contents, eType, CompileInvocation_Background);
    Loop.exec();
    QObject::disconnect(Connection);
    Out.write(Result.Log.GetString(), Result.Log.GetLength());
    return Result.iStatus == CompileStatus_Completed;
}
} // namespace

bool IsHeadlessCompileRequest(int argc, const char* const* argv)
{
    return argc > 1 && qstrcmp(argv[1], "--compile") == 0;
}

int RunHeadlessCompile(const QStringList& Arguments, QIODevice& Out, QIODevice& Err)
{
    SHeadlessRequest Request;
    QString Error;
    if (!ParseArguments(Arguments, Request, Error))
    {
        Write(Err, Error + QString::fromLatin1(s_pUsage));
        return 1;
    }
    SShaderEditControllerOptions Options;
    Options.bReadOnlySettings = true;
    Options.iCompilerSelection = Request.iSelection;
    CShaderEditController Controller(Options);
    // Nothing to keep responsive here: the answer is needed before the first compile.
    Controller.WaitForCompilerDetection();
    if (Controller.GetCompilerPath().isEmpty())
        Write(Err, QStringLiteral("warning: the selected compiler was not found\n"));
    else if (!Controller.GetCompilerDetection().bRan)
        Write(Err, QStringLiteral("warning: the compiler %1 did not answer\n").arg(Controller.GetCompilerPath()));

    bool bAllCompiled = true;
    for (const QString& Path : std::as_const(Request.Files))
        bAllCompiled = CompileFile(Controller, Path, Out, Err) && bAllCompiled;
    return bAllCompiled ? 0 : 1;
}

int RunHeadlessCompileMain(int argc, char** argv)
{
    QCoreApplication App(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("ZamShaderEditor"));
    RegisterCompileMetaTypes();
    QFile Out;
    QFile Err;
    if (!Out.open(stdout, QIODevice::WriteOnly) || !Err.open(stderr, QIODevice::WriteOnly | QIODevice::Unbuffered))
        return 1;
    return RunHeadlessCompile(QCoreApplication::arguments(), Out, Err);
}
