// Start-up of the editor: time from starting the process to the first painted main window,
// with a restored session of five shader files, against a bare Qt window measured the same
// way in the same run; and the hand-over of a second start to the running editor, against
// the editor answering --version (loading the program and exiting).
// Usage: bench_startup <editor> <bare window program> [rounds]
//        bench_startup --prepare <folder>   writes the same session and settings into folder,
//        for counting a start's instructions by hand: with XDG_CONFIG_HOME=<folder>/config,
//        XDG_RUNTIME_DIR=<folder>/runtime, XDG_STATE_HOME=<folder>/state, ZAM_STARTUP_PROBE=quit,
//        valgrind --tool=callgrind --dump-before='CStartupProbe::Report()' <editor>; part 1 is
//        the start up to the first paint. Under valgrind the window's one-second fallback may
//        run its after-paint work (FinishStartup) before that paint; subtract it.
// Last line: startup_ms=<median> bare_ms=<median> startup_vs_bare=<ratio>
//            handover_ms=<median> handover_vs_version=<ratio>

#include "Common/ZamPreferences/ZamPreferences.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

namespace
{
long long MonotonicNs()
{
    timespec Now{};
    clock_gettime(CLOCK_MONOTONIC, &Now);
    return static_cast<long long>(Now.tv_sec) * 1000000000LL + static_cast<long long>(Now.tv_nsec);
}

double Median(std::vector<double> Values)
{
    std::sort(Values.begin(), Values.end());
    return Values.empty() ? -1.0 : Values[Values.size() / 2];
}

// A shader of about 400 lines in the style of a lighting pass.
QByteArray SessionShader(int iIndex)
{
    QByteArray Text = "#version 300 es\nprecision highp float;\nin vec3 vNormal;\nin vec2 vUv;\n"
                      "uniform sampler2D uAlbedo;\nuniform vec3 uLightDir[8];\nout vec4 fragColor;\n";
    for (int i = 0; i < 40; ++i)
        Text += QStringLiteral("float term%1(vec3 n, vec3 l)\n{\n    float d = max(dot(n, l), 0.0);\n"
                               "    float s = pow(d, %2.0);\n    // shading term %1 of file %3\n"
                               "    return d * 0.5 + s * 0.25;\n}\n\n")
                    .arg(i)
                    .arg(i + 2)
                    .arg(iIndex)
                    .toUtf8();
    Text += "void main()\n{\n    vec3 n = normalize(vNormal);\n    float light = 0.0;\n";
    for (int i = 0; i < 40; ++i)
        Text += QStringLiteral("    light += term%1(n, uLightDir[%2]);\n").arg(i).arg(i % 8).toUtf8();
    Text += "    fragColor = texture(uAlbedo, vUv) * light;\n}\n";
    return Text;
}

// The folder of the benchmark's user: five session files and a preference file that
// restores them without a splash.
bool PrepareUser(const QDir& Home)
{
    QStringList Session;
    for (int i = 0; i < 5; ++i)
    {
        const QString Path = Home.filePath(QStringLiteral("session%1.frag").arg(i));
        QFile File(Path);
        if (!File.open(QIODevice::WriteOnly) || File.write(SessionShader(i)) < 0)
            return false;
        Session << Path;
    }
    qputenv("XDG_CONFIG_HOME", Home.filePath(QStringLiteral("config")).toUtf8());
    qputenv("XDG_RUNTIME_DIR", Home.filePath(QStringLiteral("runtime")).toUtf8());
    // Backups a crashed editor left for the real user would stop every start at the restore
    // question.
    qputenv("XDG_STATE_HOME", Home.filePath(QStringLiteral("state")).toUtf8());
    QDir().mkpath(Home.filePath(QStringLiteral("runtime")));
    QFile::setPermissions(Home.filePath(QStringLiteral("runtime")),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    CZamPreferences Store(QStringLiteral("ZamShaderEditor"));
    Store.Load();
    Store.SetBool(QStringLiteral("General/OpenLastTabs"), true);
    Store.SetStringArray(QStringLiteral("General/LastOpenTabs"), Session);
    Store.SetBool(QStringLiteral("About/ShowSplash"), false);
    return Store.Save();
}

// Milliseconds from starting Program until it reports its first paint; negative on failure.
double TimeToFirstPaint(const QString& Program, const QStringList& Arguments, QProcess& Process)
{
    Process.setProcessChannelMode(QProcess::SeparateChannels);
    Process.setReadChannel(QProcess::StandardError);
    const long long llStart = MonotonicNs();
    Process.start(Program, Arguments);
    QByteArray Err;
    for (bool bMore = true; bMore;)
    {
        bMore = Process.waitForReadyRead(20000);
        Err += Process.readAllStandardError();
        const int iAt = Err.indexOf("zam-first-paint ");
        const int iEnd = iAt < 0 ? -1 : Err.indexOf('\n', iAt);
        if (iEnd > 0)
            return static_cast<double>(Err.mid(iAt + 16, iEnd - iAt - 16).toLongLong() - llStart) / 1e6;
    }
    std::fprintf(stderr, "no first paint from %s:\n%s\n", qPrintable(Program), Err.constData());
    return -1.0;
}

double TimeFirstPaintAndQuit(const QString& Program)
{
    qputenv("ZAM_STARTUP_PROBE", "quit");
    QProcess Process;
    const double dMs = TimeToFirstPaint(Program, {}, Process);
    if (!Process.waitForFinished(20000))
        Process.kill();
    Process.waitForFinished();
    return dMs;
}

double TimeRun(const QString& Program, const QStringList& Arguments)
{
    QProcess Process;
    QElapsedTimer Timer;
    Timer.start();
    Process.start(Program, Arguments);
    if (!Process.waitForFinished(20000) || Process.exitCode() != 0)
        return -1.0;
    return static_cast<double>(Timer.nsecsElapsed()) / 1e6;
}
} // namespace

int main(int argc, char** argv)
{
    QCoreApplication App(argc, argv);
    const QStringList Args = App.arguments();
    if (Args.size() == 3 && Args.at(1) == QLatin1String("--prepare"))
        return QDir().mkpath(Args.at(2)) && PrepareUser(QDir(QFileInfo(Args.at(2)).absoluteFilePath())) ? 0 : 1;
    if (Args.size() < 3)
    {
        std::fprintf(stderr, "usage: bench_startup <editor> <bare window> [rounds]\n");
        return 2;
    }
    const QString Editor = Args.at(1);
    const QString Bare = Args.at(2);
    const int iRounds = Args.size() > 3 ? Args.at(3).toInt() : 15;
    QTemporaryDir Home;
    if (!Home.isValid() || !PrepareUser(QDir(Home.path())))
        return 1;
    if (qgetenv("QT_QPA_PLATFORM").isEmpty() && qgetenv("DISPLAY").isEmpty())
        qputenv("QT_QPA_PLATFORM", "offscreen");

    std::vector<double> Editors, Bares;
    for (int i = 0; i < iRounds; ++i)
    {
        Editors.push_back(TimeFirstPaintAndQuit(Editor));
        Bares.push_back(TimeFirstPaintAndQuit(Bare));
    }

    // A running editor, and second starts that hand it a file.
    qputenv("ZAM_STARTUP_PROBE", "1");
    QProcess First;
    const bool bFirstUp = TimeToFirstPaint(Editor, {}, First) >= 0.0;
    std::vector<double> HandOvers, Versions;
    for (int i = 0; bFirstUp && i < iRounds; ++i)
    {
        HandOvers.push_back(TimeRun(Editor, {Home.filePath(QStringLiteral("session%1.frag").arg(i % 5))}));
        Versions.push_back(TimeRun(Editor, {QStringLiteral("--version")}));
    }
    First.terminate();
    if (!First.waitForFinished(5000))
        First.kill();

    const double dEditor = Median(Editors), dBare = Median(Bares);
    const double dHandOver = Median(HandOvers), dVersion = Median(Versions);
    std::printf("first paint, restored session of 5 files: editor %.1f ms, bare Qt window %.1f ms (%d rounds)\n",
                dEditor, dBare, iRounds);
    std::printf("second start handing over a file: %.1f ms; the editor's --version: %.1f ms\n", dHandOver, dVersion);
    std::printf("startup_ms=%.1f bare_ms=%.1f startup_vs_bare=%.2f handover_ms=%.1f handover_vs_version=%.2f\n",
                dEditor, dBare, dEditor / dBare, dHandOver, dHandOver / dVersion);
    const bool bValid = dEditor > 0 && dBare > 0 && dHandOver > 0 && dVersion > 0;
    return bValid ? 0 : 1;
}
