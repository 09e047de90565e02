#include "HeadlessCompile.h"

#include "CShaderEditController.h"
#include "ShaderEditComponent/compile/model/CompileOptions.h"
#include "ShaderEditComponent/compile/model/MetaTypes.h"
#include "ShaderEditComponent/compile/model/ShaderDocType.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/compile/process/CompilerLocator.h"
#include "ShaderEditComponent/compile/process/RegularFile.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QIODevice>
#include <QSocketNotifier>
#include <QTimer>

#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace
{
const char* const s_pUsage = "usage: zamshadereditor --compile [--core zc1|zc2|zc3|zd1] [--timeout SECONDS] FILE...\n";
constexpr int DefaultTimeoutSeconds = 60;

struct SHeadlessRequest
{
    qint64 iSelection = -1;
    int iTimeoutSeconds = DefaultTimeoutSeconds;
    QStringList Files;
};

// Ctrl+C and SIGTERM while it is in force: the handler only writes the signal into a pipe,
// which the event loop watches, so the run can cancel its compile and clean up.
class CInterruption
{
public:
    CInterruption()
    {
        if (::pipe2(m_aiPipe, O_CLOEXEC | O_NONBLOCK) != 0)
            return;
        s_iWakeFd = m_aiPipe[1];
        struct sigaction Action = {};
        Action.sa_handler = &CInterruption::OnSignal;
        sigemptyset(&Action.sa_mask);
        ::sigaction(SIGINT, &Action, &m_PreviousInt);
        ::sigaction(SIGTERM, &Action, &m_PreviousTerm);
        m_pNotifier = std::make_unique<QSocketNotifier>(m_aiPipe[0], QSocketNotifier::Read);
        QObject::connect(m_pNotifier.get(), &QSocketNotifier::activated, m_pNotifier.get(), [this] { Take(); });
    }
    ~CInterruption()
    {
        if (!m_pNotifier)
            return;
        ::sigaction(SIGINT, &m_PreviousInt, nullptr);
        ::sigaction(SIGTERM, &m_PreviousTerm, nullptr);
        s_iWakeFd = -1;
        m_pNotifier.reset();
        ::close(m_aiPipe[0]);
        ::close(m_aiPipe[1]);
    }
    CInterruption(const CInterruption&) = delete;
    CInterruption& operator=(const CInterruption&) = delete;

    // Emits activated when a signal arrives; null when none could be watched.
    const QSocketNotifier* GetNotifier() const { return m_pNotifier.get(); }
    // The signal that arrived first, 0 while none did.
    int GetSignal()
    {
        Take();
        return m_iSignal;
    }

private:
    static void OnSignal(int iSignal)
    {
        const int iSaved = errno;
        if (s_iWakeFd >= 0 && ::write(s_iWakeFd, &iSignal, sizeof iSignal) < 0)
        {
            // A full pipe already holds a signal; nothing else can be done in a handler.
        }
        errno = iSaved;
    }

    void Take()
    {
        int iSignal = 0;
        while (m_aiPipe[0] >= 0 && ::read(m_aiPipe[0], &iSignal, sizeof iSignal) == sizeof iSignal)
        {
            if (m_iSignal == 0)
                m_iSignal = iSignal;
        }
    }

    static inline volatile sig_atomic_t s_iWakeFd = -1;
    int m_aiPipe[2] = {-1, -1};
    struct sigaction m_PreviousInt = {};
    struct sigaction m_PreviousTerm = {};
    std::unique_ptr<QSocketNotifier> m_pNotifier;
    int m_iSignal = 0;
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
        const QString BaseName = ToQString(GetCompilerTarget(i).ExecutableBaseName);
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
        if (Argument == QLatin1String("--timeout"))
        {
            bool bNumber = false;
            Request.iTimeoutSeconds = i + 1 < Arguments.size() ? Arguments.at(++i).toInt(&bNumber) : 0;
            if (!bNumber || Request.iTimeoutSeconds < 1)
            {
                Error = QStringLiteral("--timeout takes a whole number of seconds, at least 1\n");
                return false;
            }
        }
        else if (Argument == QLatin1String("--core"))
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

// The file's text; false, with the reason written to Err, when it is no file to compile.
bool ReadSource(const QString& Path, QString& Contents, EShaderDocType& eType, QIODevice& Err)
{
    const SRegularFile File = ReadRegularFile(Path, MaxDocumentBytes);
    if (File.eResult != RegularFile_Read)
    {
        Write(Err, QStringLiteral("%1: %2\n").arg(Path, DescribeReadFailure(File)));
        return false;
    }
    Contents = QString::fromUtf8(File.Bytes);
    eType = DetectDocumentType(Contents, QFileInfo(Path).suffix());
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
    return true;
}

// Compiles one file through the controller; false when it did not compile, ran out of time
// or was interrupted.
bool CompileFile(CShaderEditController& Controller, const SHeadlessRequest& Request, const QString& Path,
                 CInterruption& Interruption, QIODevice& Out, QIODevice& Err)
{
    QString Contents;
    EShaderDocType eType = DocType_PlainText;
    if (!ReadSource(Path, Contents, eType, Err))
        return false;

    SCompileResult Result;
    bool bDelivered = false;
    QEventLoop Loop;
    const QMetaObject::Connection Connection =
        QObject::connect(&Controller, &CShaderEditController::CompileProfileChanged, &Loop,
                         [&](const SCompileResult& Delivered)
                         {
                             Result = Delivered;
                             bDelivered = true;
                             Loop.quit();
                         });
    QTimer Limit;
    Limit.setSingleShot(true);
    QObject::connect(&Limit, &QTimer::timeout, &Loop, &QEventLoop::quit);
    if (Interruption.GetNotifier())
        QObject::connect(Interruption.GetNotifier(), &QSocketNotifier::activated, &Loop, &QEventLoop::quit);
    const QString FullPath = QFileInfo(Path).absoluteFilePath();
    const CZamTHash PanelID(FullPath.toUtf8().constData());
    // An effect's FILE shaders are beside it, wherever the run was started from.
    Controller.CompilePanelIn(QFileInfo(FullPath).absolutePath(), PanelID, Contents, eType,
                              CompileInvocation_Background);
    Limit.start(Request.iTimeoutSeconds * 1000);
    if (Interruption.GetSignal() == 0)
        Loop.exec();
    QObject::disconnect(Connection);
    if (!bDelivered)
    {
        // Ends the compiler and everything it started; its private folder goes with it.
        Controller.OnCancelCompile(PanelID);
        if (Interruption.GetSignal() == 0)
            Write(Err, QStringLiteral("%1: the compile took longer than %2 s and was cancelled\n")
                           .arg(Path)
                           .arg(Request.iTimeoutSeconds));
        return false;
    }
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
    CInterruption Interruption;
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
    {
        if (Interruption.GetSignal() != 0)
            break;
        bAllCompiled = CompileFile(Controller, Request, Path, Interruption, Out, Err) && bAllCompiled;
    }
    if (const int iSignal = Interruption.GetSignal())
    {
        Write(Err, QStringLiteral("interrupted (%1): the compile was cancelled\n").arg(strsignal(iSignal)));
        return 128 + iSignal;
    }
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
