// Second start of the editor: the time from starting the process until it has handed its file
// to the running instance and exited, and until the running instance has the message. Bare
// starts of a program that only builds a QCoreApplication or a QApplication are measured in
// the same run, interleaved, as the baseline. Prints medians, ratios, and one last line of
// name=value figures.

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace
{
constexpr int Rounds = 41;
constexpr int WaitMs = 10000;

double Median(std::vector<double> Values)
{
    std::sort(Values.begin(), Values.end());
    return Values[Values.size() / 2];
}

// Milliseconds from start to a clean exit; negative when the program failed.
double TimeRun(const QProcessEnvironment& Environment, const QString& Program, const QStringList& Arguments)
{
    QProcess Process;
    Process.setProcessEnvironment(Environment);
    QElapsedTimer Timer;
    Timer.start();
    Process.start(Program, Arguments);
    if (!Process.waitForFinished(WaitMs) || Process.exitStatus() != QProcess::NormalExit || Process.exitCode() != 0)
        return -1.0;
    return double(Timer.nsecsElapsed()) / 1e6;
}

bool WaitForLine(QProcess& Process, const QByteArray& Line)
{
    QElapsedTimer Timer;
    Timer.start();
    while (!Timer.hasExpired(WaitMs))
    {
        while (Process.canReadLine())
        {
            if (Process.readLine().trimmed() == Line)
                return true;
        }
        Process.waitForReadyRead(int(WaitMs - Timer.elapsed()));
    }
    return false;
}

struct STimes
{
    std::vector<double> Core;
    std::vector<double> Gui;
    std::vector<double> HandOver;
    std::vector<double> Delivered;
};

bool MeasureRound(const QProcessEnvironment& Environment, QProcess& First, const QString& File, STimes& Times)
{
    Times.Core.push_back(TimeRun(Environment, QStringLiteral(ZAM_BARE_START), {QStringLiteral("core")}));
    Times.Gui.push_back(TimeRun(Environment, QStringLiteral(ZAM_BARE_START), {QStringLiteral("gui")}));
    QElapsedTimer Timer;
    Timer.start();
    Times.HandOver.push_back(TimeRun(Environment, QStringLiteral(ZAM_INSTANCE_HOST), {File}));
    if (!WaitForLine(First, "message " + QFile::encodeName(File)))
        return false;
    Times.Delivered.push_back(double(Timer.nsecsElapsed()) / 1e6);
    return Times.Core.back() >= 0 && Times.Gui.back() >= 0 && Times.HandOver.back() >= 0;
}
} // namespace

int main(int argc, char** argv)
{
    QCoreApplication App(argc, argv);
    QTemporaryDir Folder;
    QProcessEnvironment Environment = QProcessEnvironment::systemEnvironment();
    Environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), Folder.path());
    Environment.insert(QStringLiteral("TMPDIR"), Folder.path());
    if (!Environment.contains(QStringLiteral("QT_QPA_PLATFORM")))
        Environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    const QString File = Folder.filePath(QStringLiteral("lit.frag"));
    QFile Shader(File);
    if (!Shader.open(QIODevice::WriteOnly) || Shader.write("void main() {}\n") < 0)
        return 1;
    Shader.close();

    QProcess First;
    First.setProcessEnvironment(Environment);
    First.start(QStringLiteral(ZAM_INSTANCE_HOST), QStringList());
    if (!First.waitForReadyRead(WaitMs) || !First.readLine().startsWith("first "))
    {
        std::fprintf(stderr, "the first instance did not start\n");
        return 1;
    }
    STimes Times;
    for (int i = 0; i < Rounds; ++i)
    {
        if (!MeasureRound(Environment, First, File, Times))
        {
            std::fprintf(stderr, "round %d failed\n", i);
            return 1;
        }
    }
    First.closeWriteChannel();
    First.waitForFinished(WaitMs);

    const double Core = Median(Times.Core);
    const double Gui = Median(Times.Gui);
    const double HandOver = Median(Times.HandOver);
    const double Delivered = Median(Times.Delivered);
    std::printf("platform %s, %d rounds, medians:\n", qPrintable(Environment.value(QStringLiteral("QT_QPA_PLATFORM"))),
                Rounds);
    std::printf("  bare QCoreApplication start   %7.2f ms\n", Core);
    std::printf("  bare QApplication start       %7.2f ms\n", Gui);
    std::printf("  second start, hand-over, exit %7.2f ms  (%.2fx core, %.2fx gui; goal under 50 ms)\n", HandOver,
                HandOver / Core, HandOver / Gui);
    std::printf("  ... until the message arrived %7.2f ms\n", Delivered);
    std::printf(
        "handover_ms=%.2f delivered_ms=%.2f bare_core_ms=%.2f bare_gui_ms=%.2f ratio_core=%.2f ratio_gui=%.2f\n",
        HandOver, Delivered, Core, Gui, HandOver / Core, HandOver / Gui);
    return 0;
}
