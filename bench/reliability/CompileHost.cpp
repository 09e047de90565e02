// Runs the editor's compile path against the misbehaving fake compilers of tests/support and
// prints figures, one name=value line each.
//   reliability_compile_host template BIN_DIR WORK_DIR  50 hostile file names through a custom
//                                                       command template
//   reliability_compile_host runaway BIN_DIR TRIALS     forking and session-leaving compilers
//                                                       cancelled; every descendant gone in 2 s?
//   reliability_compile_host flood BIN_DIR              a compiler printing 1 GiB
//   reliability_compile_host cycles BIN_DIR CYCLES      compile/cancel cycles: zombies, descriptors
//   reliability_compile_host tempfiles BIN_DIR WORK_DIR TRIALS
//                                                       compile temporary files: owner-only, in a
//                                                       private folder, never written through a
//                                                       symlink planted in the temporary folder

#include "app/dialogs/DialogCommandLine.h"
#include "ShaderEditComponent/compile/model/CompileOptions.h"
#include "ShaderEditComponent/compile/process/CommandRunner.h"
#include "ShaderEditComponent/compile/process/CompileUnit.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSet>
#include <QThread>

#include <csignal>
#include <cstdio>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

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
// Symlinks at every name the compile path uses in the temporary folder and at names of its
// private folders' pattern, each to a file or folder in Victims: the file named, an existing
// file or an existing folder. Returns the links' names.
QSet<QString> PlantSymlinks(const QString& Temp, const QString& Victims)
{
    QStringList Names{QStringLiteral("shader"),      QStringLiteral("shader.tmp"),
                      QStringLiteral("shader.prof"), QStringLiteral("shader.disasm"),
                      QStringLiteral("shader.deps"), QStringLiteral("shader.fsh"),
                      QStringLiteral("shader.vsh"),  QStringLiteral("zamshadereditor-XXXXXX")};
    static const char s_acLetters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    for (int i = 0; i < 200; ++i)
    {
        QString Name = QStringLiteral("zamshadereditor-");
        for (int c = 0; c < 6; ++c)
            Name += QLatin1Char(s_acLetters[QRandomGenerator::global()->bounded(62)]);
        Names << Name;
    }
    QDir().mkpath(Victims + QStringLiteral("/folder"));
    QFile Existing(Victims + QStringLiteral("/existing"));
    if (Existing.open(QIODevice::WriteOnly))
        Existing.write("untouched\n");
    QSet<QString> Planted;
    for (qsizetype i = 0; i < Names.size(); ++i)
    {
        const QString Target = i % 3 == 0   ? Victims + QStringLiteral("/existing")
                               : i % 3 == 1 ? Victims + QStringLiteral("/folder")
                                            : Victims + QStringLiteral("/new-") + QString::number(i);
        if (QFile::link(Target, Temp + QLatin1Char('/') + Names.at(i)))
            Planted.insert(Names.at(i));
    }
    return Planted;
}

// What Victims holds beyond what PlantSymlinks put there: anything written through a link.
int WrittenThrough(const QString& Victims)
{
    QFile Existing(Victims + QStringLiteral("/existing"));
    const bool bTouched = !Existing.open(QIODevice::ReadOnly) || Existing.readAll() != "untouched\n";
    return CountEntries(Victims) - 2 + CountEntries(Victims + QStringLiteral("/folder")) + (bTouched ? 1 : 0);
}

bool OwnerOnly(const QString& Path, mode_t Type, mode_t Mode)
{
    struct stat Info
    {
    };
    return ::lstat(QFile::encodeName(Path).constData(), &Info) == 0 && (Info.st_mode & S_IFMT) == Type
           && Info.st_uid == ::geteuid() && (Info.st_mode & 07777) == Mode;
}

// Runs a compile that hangs, looks at its private folder and source file while it runs, then
// cancels it. Adds to the two counts when the folder is 0700 and the file 0600, both ours.
void InspectRunningCompile(const QString& Bin, const QString& Temp, const QSet<QString>& Planted, int& iFolders,
                           int& iFiles)
{
    CRunControl Control;
    SCompileResult Result;
    SCompileTarget Target;
    Target.Executable = Bin + QStringLiteral("/fakecc_hang");
    Target.TempDirectory = Temp;
    std::thread Runner([&] { (void)CompileSource(SCompileUnit(), "void main() {}\n", Target, Control, Result); });
    QString Source;
    QElapsedTimer Timer;
    Timer.start();
    while (Source.isEmpty() && Timer.elapsed() < 5000)
    {
        for (const QString& Name : QDir(Temp).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System))
        {
            if (!Planted.contains(Name)
                && QFile::exists(Temp + QLatin1Char('/') + Name + QStringLiteral("/shader.tmp")))
                Source = Temp + QLatin1Char('/') + Name + QStringLiteral("/shader.tmp");
        }
        QThread::msleep(2);
    }
    iFolders += !Source.isEmpty() && OwnerOnly(QFileInfo(Source).path(), S_IFDIR, 0700);
    iFiles += !Source.isEmpty() && OwnerOnly(Source, S_IFREG, 0600);
    Control.Cancel();
    Runner.join();
}

int TempFiles(const QString& Bin, const QString& Work, int iTrials)
{
    const QString Temp = Work + QStringLiteral("/tmp");
    const QString Victims = Work + QStringLiteral("/victims");
    QDir().mkpath(Temp);
    // As shared as /tmp: anyone may plant a name there.
    ::chmod(QFile::encodeName(Temp).constData(), 01777);
    const QSet<QString> Planted = PlantSymlinks(Temp, Victims);
    int iFolders = 0;
    int iFiles = 0;
    int iCompleted = 0;
    for (int i = 0; i < iTrials; ++i)
    {
        InspectRunningCompile(Bin, Temp, Planted, iFolders, iFiles);
        // A real compile that leaves a profile and a disassembly beside its source.
        CRunControl Control;
        SCompileResult Result;
        SCompileTarget Target;
        Target.Executable = Bin + QStringLiteral("/glslcompiler_zc1");
        Target.TempDirectory = Temp;
        Target.uiSwitches = CompileOption_Profile | CompileOption_Disassembly;
        const QByteArray Source = "precision mediump float;\nvoid main() { gl_FragColor = vec4(0.5); }\n";
        iCompleted += CompileSource(SCompileUnit(), Source, Target, Control, Result) == CompileStatus_Completed
                      && Result.CycleCounts.GetSize() > 0;
    }
    Figure("tempfiles_compiles", QString::number(2 * iTrials));
    Figure("tempfiles_private_folder_owner_only", QStringLiteral("%1/%2").arg(iFolders).arg(iTrials));
    Figure("tempfiles_source_owner_only", QStringLiteral("%1/%2").arg(iFiles).arg(iTrials));
    Figure("tempfiles_real_compiles_with_profile", QStringLiteral("%1/%2").arg(iCompleted).arg(iTrials));
    Figure("tempfiles_symlinks_planted", QString::number(Planted.size()));
    Figure("tempfiles_written_through_symlinks", QString::number(WrittenThrough(Victims)));
    Figure("tempfiles_left_behind", QString::number(CountEntries(Temp) - Planted.size()));
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
    if (Mode == QLatin1String("tempfiles") && Args.size() > 4)
        return TempFiles(Args.at(2), Args.at(3), Args.at(4).toInt());
    std::fprintf(stderr, "usage: %s template|runaway|flood|cycles|tempfiles BIN_DIR [WORK_DIR] [COUNT]\n", argv[0]);
    return 2;
}
