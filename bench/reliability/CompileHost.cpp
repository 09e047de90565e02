// Runs the editor's compile path against the misbehaving fake compilers of tests/support and
// prints figures, one name=value line each.
//   reliability_compile_host template BIN_DIR WORK_DIR  50 hostile file names through a custom
//                                                       command template
//   reliability_compile_host runaway BIN_DIR TRIALS     forking and session-leaving compilers
//                                                       cancelled; every descendant gone in 2 s?
//   reliability_compile_host flood BIN_DIR              a compiler printing 1 GiB
//   reliability_compile_host cycles BIN_DIR CYCLES      compile/cancel cycles: zombies, descriptors

#include "app/dialogs/DialogCommandLine.h"
#include "ShaderEditComponent/compile/process/CommandRunner.h"
#include "ShaderEditComponent/compile/process/CompileUnit.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QThread>

#include <csignal>
#include <cstdio>
#include <sys/resource.h>
#include <thread>

namespace
{
void Figure(const char* pName, const QString& Value)
{
    std::printf("%s=%s\n", pName, Value.toUtf8().constData());
    std::fflush(stdout);
}

QStringList HostileNames()
{
    const QStringList Parts{QStringLiteral(";"),
                            QStringLiteral("$(touch pwned)"),
                            QStringLiteral("`touch pwned`"),
                            QStringLiteral("'"),
                            QStringLiteral("\""),
                            QStringLiteral("\n"),
                            QStringLiteral("-o"),
                            QString::fromUtf8("ünï 着色器"),
                            QStringLiteral(" "),
                            QStringLiteral("%f%"),
                            QStringLiteral("*"),
                            QStringLiteral("|"),
                            QStringLiteral("&&"),
                            QStringLiteral(">x"),
                            QStringLiteral("\\"),
                            QStringLiteral("\t"),
                            QStringLiteral("$HOME"),
                            QStringLiteral("<b>"),
                            QStringLiteral("#"),
                            QStringLiteral("~")};
    QStringList Names;
    for (int i = 0; Names.size() < 50; ++i)
    {
        // A leading "-" for some, and every part next to every other over the run.
        QString Name = (i % 5 == 0 ? QStringLiteral("-") : QString()) + Parts.at(i % Parts.size()) + QStringLiteral("x")
                       + Parts.at((i * 7 + 3) % Parts.size()) + QString::number(i);
        Names << Name;
    }
    return Names;
}

int Template(const QString& Bin, const QString& Work)
{
    const QString Sources = Work + QStringLiteral("/src");
    const QString Output = Work + QStringLiteral("/out");
    const QString Record = Work + QStringLiteral("/record");
    for (const QString& Folder : {Sources, Output, Record})
        QDir().mkpath(Folder);
    qputenv("ZAM_FAKE_RECORD_DIR", Record.toLocal8Bit());
    int iExact = 0;
    int iIndex = 0;
    const QStringList Names = HostileNames();
    for (const QString& Base : Names)
    {
        const QString Source = Sources + QLatin1Char('/') + Base + QStringLiteral(".fsh");
        QFile File(Source);
        if (!File.open(QIODevice::WriteOnly) || File.write("void main() {}\n") < 0)
            return 1;
        File.close();
        const SDialogCommandLine Line =
            MakeCustomCommandLine(Bin + QStringLiteral("/fakecc_print %i%/%f% %o%/%b%.bin"), Source, Output);
        CRunControl Control;
        const SCommandRun Run = RunCommand(Line.Command, Control);
        QFile Args(Record + QLatin1Char('/') + QString::number(iIndex++) + QStringLiteral(".args"));
        const QByteArray Expected =
            (Source + QLatin1Char('\n') + Output + QLatin1Char('/') + Base + QStringLiteral(".bin\n")).toUtf8();
        if (Run.eStatus == CompileStatus_Completed && Args.open(QIODevice::ReadOnly) && Args.readAll() == Expected)
            ++iExact;
    }
    Figure("template_hostile_names", QString::number(Names.size()));
    Figure("template_exact_argument_lists", QString::number(iExact));
    Figure("template_files_created_by_names",
           QString::number(QFile::exists(Sources + QStringLiteral("/pwned")) + QFile::exists(QStringLiteral("pwned"))));
    return 0;
}

bool Gone(qint64 iPid)
{
    if (iPid <= 0)
        return false;
    QFile Stat(QStringLiteral("/proc/%1/stat").arg(iPid));
    if (!Stat.open(QIODevice::ReadOnly))
        return true;
    const QByteArray Text = Stat.readAll();
    // A zombie waits only for its parent (init for an orphan): it runs no more.
    const qsizetype iState = Text.lastIndexOf(')') + 2;
    return iState < Text.size() && Text.at(iState) == 'Z';
}

qint64 ReadPid(const QString& File, int iWaitMs)
{
    QElapsedTimer Timer;
    Timer.start();
    while (Timer.elapsed() < iWaitMs)
    {
        QFile Pid(File);
        if (Pid.open(QIODevice::ReadOnly))
        {
            const qint64 iPid = Pid.readAll().trimmed().toLongLong();
            if (iPid > 0)
                return iPid;
        }
        QThread::msleep(2);
    }
    return 0;
}

// Starts the compiler, waits until it has forked, cancels, and tells whether the compiler and
// its child were gone within 2 s of the cancel.
bool CancelOneRunaway(const QString& Program, const QString& Work)
{
    const QString ChildFile = Work + QStringLiteral("/child.pid");
    const QString OwnFile = Work + QStringLiteral("/own.pid");
    QFile::remove(ChildFile);
    QFile::remove(OwnFile);
    qputenv("ZAM_FAKE_PID_FILE", ChildFile.toLocal8Bit());
    qputenv("ZAM_FAKE_OWN_PID_FILE", OwnFile.toLocal8Bit());
    CRunControl Control;
    SCompileCommand Command{Program, {QStringLiteral("in.fsh"), QStringLiteral("unit"), QStringLiteral("out")}};
    std::thread Runner([&] { (void)RunCommand(Command, Control); });
    const qint64 iChild = ReadPid(ChildFile, 5000);
    const qint64 iOwn = ReadPid(OwnFile, 5000);
    QElapsedTimer Timer;
    Timer.start();
    Control.Cancel();
    Runner.join();
    while (Timer.elapsed() < 2000 && !(Gone(iChild) && Gone(iOwn)))
        QThread::msleep(5);
    return Gone(iChild) && Gone(iOwn);
}

int Runaway(const QString& Bin, int iTrials)
{
    const QString Work =
        QDir::tempPath() + QStringLiteral("/zam-runaway-") + QString::number(QCoreApplication::applicationPid());
    QDir().mkpath(Work);
    int iGone = 0;
    for (int i = 0; i < iTrials; ++i)
        iGone += CancelOneRunaway(
            Bin + (i % 2 ? QStringLiteral("/fakecc_setsidhang") : QStringLiteral("/fakecc_forkhang")), Work);
    QDir(Work).removeRecursively();
    Figure("runaway_cancels", QString::number(iTrials));
    Figure("runaway_all_descendants_gone_within_2s", QString::number(iGone));
    return 0;
}

int Flood(const QString& Bin)
{
    SCompileResult Result;
    CRunControl Control;
    SCompileUnit Unit;
    SCompileTarget Target;
    Target.Executable = Bin + QStringLiteral("/fakecc_flood");
    QElapsedTimer Timer;
    Timer.start();
    CompileSource(Unit, "void main() {}\n", Target, Control, Result);
    rusage Usage{};
    getrusage(RUSAGE_SELF, &Usage);
    Figure("flood_seconds", QString::number(Timer.elapsed() / 1000.0, 'f', 2));
    Figure("flood_peak_memory_mib", QString::number(Usage.ru_maxrss / 1024));
    Figure("flood_output_cap_mib", QString::number(DefaultOutputCap / (1024 * 1024)));
    Figure("flood_log_says_cut",
           QString::number(QString::fromUtf8(Result.Log.GetString()).contains(QLatin1String("was cut"))));
    return 0;
}

int CountEntries(const QString& Folder)
{
    return QDir(Folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System).size();
}

int Zombies()
{
    int iZombies = 0;
    const QString Self = QString::number(QCoreApplication::applicationPid());
    for (const QString& Pid : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs))
    {
        QFile Stat(QStringLiteral("/proc/") + Pid + QStringLiteral("/stat"));
        if (!Stat.open(QIODevice::ReadOnly))
            continue;
        const QByteArray Text = Stat.readAll();
        const QList<QByteArray> After = Text.mid(Text.lastIndexOf(')') + 2).split(' ');
        if (After.size() > 1 && After.at(0) == "Z" && After.at(1) == Self.toLatin1())
            ++iZombies;
    }
    return iZombies;
}

int Cycles(const QString& Bin, int iCycles)
{
    int iFdsBefore = 0;
    // The first cycle sets up what every later one shares (the thread's own descriptors).
    for (int i = -1; i < iCycles; ++i)
    {
        if (i == 0)
            iFdsBefore = CountEntries(QStringLiteral("/proc/self/fd"));
        CRunControl Control;
        SCompileCommand Command{Bin + QStringLiteral("/fakecc_hang"), {QStringLiteral("in.fsh")}};
        std::thread Runner([&] { (void)RunCommand(Command, Control); });
        QThread::usleep(static_cast<unsigned long>(500 + ((i + 7) % 7) * 700));
        Control.Cancel();
        Runner.join();
    }
    QThread::msleep(200);
    Figure("cycles_compile_cancel", QString::number(iCycles));
    Figure("cycles_zombies", QString::number(Zombies()));
    Figure("cycles_descriptor_growth", QString::number(CountEntries(QStringLiteral("/proc/self/fd")) - iFdsBefore));
    return 0;
}
} // namespace

int main(int argc, char** argv)
{
    QCoreApplication App(argc, argv);
    const QStringList Args = App.arguments();
    const QString Mode = Args.value(1);
    if (Mode == QLatin1String("template") && Args.size() > 3)
        return Template(Args.at(2), Args.at(3));
    if (Mode == QLatin1String("runaway") && Args.size() > 3)
        return Runaway(Args.at(2), Args.at(3).toInt());
    if (Mode == QLatin1String("flood") && Args.size() > 2)
        return Flood(Args.at(2));
    if (Mode == QLatin1String("cycles") && Args.size() > 3)
        return Cycles(Args.at(2), Args.at(3).toInt());
    std::fprintf(stderr, "usage: %s template|runaway|flood|cycles BIN_DIR [WORK_DIR|COUNT]\n", argv[0]);
    return 2;
}
