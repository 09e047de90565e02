// Turnaround of a background compile through the real controller and the bundled compiler
// (request until CompileOutputChanged), against running the bare compiler process on the same
// text with the same switches, both medians of one run; plus the effect-parser figure of the
// zfxparser benchmark. Usage: bench_pipeline <folder of the bundled compilers> <bench_zfxparser>.
// Last line: turnaround_vs_bare=<ratio> zfx_parse_ms=<ms>.

#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/compile/model/CompileOptions.h"
#include "ShaderEditComponent/compile/model/MetaTypes.h"
#include "ShaderEditComponent/compile/process/CompileCommandLine.h"
#include "ShaderEditComponent/compile/process/CompilerLocator.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace
{
constexpr int s_iRounds = 41;

// A fragment shader of exactly 100 lines with arithmetic, a loop, a branch and texture reads.
QString HundredLineShader()
{
    QStringList Lines = {"precision mediump float;",
                         "uniform sampler2D u_base;",
                         "uniform sampler2D u_detail;",
                         "uniform vec4 u_tint;",
                         "uniform float u_time;",
                         "varying vec2 v_uv;",
                         "void main()",
                         "{",
                         "    vec4 c = texture2D(u_base, v_uv);",
                         "    vec4 d = texture2D(u_detail, v_uv * 4.0);",
                         "    float k = 0.0;"};
    for (int i = 0; Lines.size() < 92; ++i)
        Lines << QStringLiteral("    k += sin(v_uv.x * %1.0 + u_time) * %2;").arg(i + 1).arg(0.01 * (i + 1));
    Lines << "    for (int i = 0; i < 4; ++i)"
          << "    {"
          << "        c = c * 0.9 + d * 0.1;"
          << "    }"
          << "    if (k > 0.5) c *= u_tint;"
          << "    else c += u_tint * k;"
          << "    gl_FragColor = c;"
          << "}";
    return Lines.join('\n') + '\n';
}

// The last "parse_5000_ms=<ms>" figure the effect-parser benchmark prints; negative if none.
double EffectParseMs(const QString& Program)
{
    QProcess Process;
    Process.start(Program, QStringList());
    if (!Process.waitForFinished(-1) || Process.exitCode() != 0)
        return -1.0;
    const QList<QByteArray> Lines = Process.readAllStandardOutput().trimmed().split('\n');
    const QByteArray Last = Lines.isEmpty() ? QByteArray() : Lines.last().trimmed();
    bool bOk = false;
    const double dMs = Last.startsWith("parse_5000_ms=") ? Last.mid(14).toDouble(&bOk) : -1.0;
    return bOk ? dMs : -1.0;
}

double Median(std::vector<double> Values)
{
    std::sort(Values.begin(), Values.end());
    return Values[Values.size() / 2];
}

// The compiler process alone: spawned directly, its output drained, waited for.
double BareCompileMs(const SCompileCommand& Command)
{
    std::vector<QByteArray> Storage{Command.Program.toLocal8Bit()};
    for (const QString& Argument : Command.Arguments)
        Storage.push_back(Argument.toLocal8Bit());
    std::vector<char*> Argv;
    for (QByteArray& Part : Storage)
        Argv.push_back(Part.data());
    Argv.push_back(nullptr);

    QElapsedTimer Clock;
    Clock.start();
    int aiPipe[2];
    if (::pipe(aiPipe) != 0)
        return -1.0;
    posix_spawn_file_actions_t Actions;
    posix_spawn_file_actions_init(&Actions);
    posix_spawn_file_actions_adddup2(&Actions, aiPipe[1], 1);
    posix_spawn_file_actions_adddup2(&Actions, aiPipe[1], 2);
    posix_spawn_file_actions_addclose(&Actions, aiPipe[0]);
    pid_t iPid = 0;
    const int iSpawned = posix_spawn(&iPid, Argv[0], &Actions, nullptr, Argv.data(), environ);
    posix_spawn_file_actions_destroy(&Actions);
    ::close(aiPipe[1]);
    char acBuffer[4096];
    while (iSpawned == 0 && ::read(aiPipe[0], acBuffer, sizeof(acBuffer)) > 0)
    {
    }
    ::close(aiPipe[0]);
    int iStatus = 0;
    if (iSpawned == 0)
        ::waitpid(iPid, &iStatus, 0);
    return Clock.nsecsElapsed() / 1e6;
}

double ControllerCompileMs(CShaderEditController& Controller, const QString& Text, QString* pLog = nullptr)
{
    QEventLoop Loop;
    const QMetaObject::Connection Connection =
        QObject::connect(&Controller, &CShaderEditController::CompileOutputChanged, &Loop,
                         [&](const QString& Log)
                         {
                             if (pLog)
                                 *pLog = Log;
                             Loop.quit();
                         });
    QElapsedTimer Clock;
    Clock.start();
    Controller.OnCompilePanel(CZamTHash("bench"), Text, DocType_GLSLESFragment, CompileInvocation_Background);
    Loop.exec();
    const double dMs = Clock.nsecsElapsed() / 1e6;
    QObject::disconnect(Connection);
    return dMs;
}
} // namespace

int main(int argc, char** argv)
{
    QCoreApplication App(argc, argv);
    if (argc != 3)
    {
        std::fprintf(stderr, "usage: bench_pipeline <folder of the bundled compilers> <bench_zfxparser>\n");
        return 1;
    }
    RegisterCompileMetaTypes();
    QTemporaryDir Temp;

    SShaderEditControllerOptions Options;
    Options.CompilerSearchPaths = {QString::fromLocal8Bit(argv[1])};
    Options.bReadOnlySettings = true;
    Options.iCompilerSelection = 0;
    CShaderEditController Controller(Options);
    Controller.WaitForCompilerDetection();
    if (!Controller.GetCompilerDetection().IsUsable())
    {
        std::fprintf(stderr, "bench_pipeline: no usable bundled compiler in %s\n", argv[1]);
        return 1;
    }

    // The bare run compiles the same text with the same switches the controller uses.
    const QString Shader = HundredLineShader();
    const QString Input = Temp.filePath("shader.tmp");
    QFile File(Input);
    if (!File.open(QIODevice::WriteOnly) || File.write(Shader.toUtf8()) < 0)
        return 1;
    File.close();
    const SCompileCommand Bare =
        BuildCompilerCommand(Controller.GetCompilerPath(), Input, GetDocTypeName(DocType_GLSLESFragment),
                             Temp.filePath("shader"), CompileOption_F | Controller.GetCompilerFlags());

    std::vector<double> BareMs;
    std::vector<double> ControllerMs;
    BareCompileMs(Bare);
    QString Log;
    ControllerCompileMs(Controller, Shader, &Log);
    if (!Log.contains(QStringLiteral("Compile succeeded.")))
    {
        std::fprintf(stderr, "bench_pipeline: the shader did not compile:\n%s", qPrintable(Log));
        return 1;
    }
    const QString OutputBase = Bare.Arguments.at(2);
    for (int i = 0; i < s_iRounds; ++i)
    {
        // Fresh output files each time, as the controller's private folder gives its compiler.
        for (const char* pSuffix : {"", ".prof", ".disasm"})
            QFile::remove(OutputBase + QLatin1String(pSuffix));
        BareMs.push_back(BareCompileMs(Bare));
        ControllerMs.push_back(ControllerCompileMs(Controller, Shader));
    }

    const double dParse = EffectParseMs(QString::fromLocal8Bit(argv[2]));
    if (dParse < 0)
    {
        std::fprintf(stderr, "bench_pipeline: %s gave no parse_5000_ms figure\n", argv[2]);
        return 1;
    }

    const double dBare = Median(BareMs);
    const double dController = Median(ControllerMs);
    std::printf("compiler: %s (%d lines of shader, %d rounds)\n", qPrintable(Controller.GetCompilerPath()),
                static_cast<int>(Shader.count('\n')), s_iRounds);
    std::printf("bare_compiler_median_ms=%.2f controller_median_ms=%.2f (target ratio <= 1.3)\n", dBare, dController);
    std::printf("zfx_parse_median_ms=%.3f for 5000 lines (target < 5)\n", dParse);
    std::printf("turnaround_vs_bare=%.3f zfx_parse_ms=%.3f\n", dController / dBare, dParse);
    return 0;
}
