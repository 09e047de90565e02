#pragma once

// Shared by the compile tests: where the built programs are, what this test process has left
// behind (children, zombies, open files, peak memory), and compiler messages to hand out.

#include "Common/ZamPreferences/ZamPreferences.h"
#include "ShaderEditComponent/compile/model/CompileResult.h"
#include "ShaderEditComponent/compile/process/CompilerLocator.h"
#include "TestFiles.h"

#include <QDir>
#include <QElapsedTimer>
#include <QString>
#include <QStringList>
#include <QTest>
#include <QTimer>

#include <csignal>
#include <unistd.h>

namespace CompileTest
{
using namespace TestFiles;

// A fake compiler of the given mode (see fakes/FakeCompiler.cpp).
inline QString Fake(const char* pMode)
{
    return Program(QStringLiteral("fakecc_") + QLatin1String(pMode));
}

inline QStringList ReadLines(const QString& Path)
{
    return QString::fromUtf8(ReadAll(Path)).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

inline qint64 ReadPid(const QString& Path)
{
    return ReadAll(Path).trimmed().toLongLong();
}

// The fields of /proc/<pid>/stat after the command name: state, parent, ...
inline QList<QByteArray> StatFields(const QString& Pid)
{
    const QByteArray Line = ReadAll(QStringLiteral("/proc/%1/stat").arg(Pid));
    return Line.mid(Line.lastIndexOf(')') + 2).split(' ');
}

// Running, as opposed to gone or a zombie left to a parent that may never reap it.
inline bool IsRunning(qint64 iPid)
{
    const QByteArray State = StatFields(QString::number(iPid)).value(0);
    return !State.isEmpty() && State != "Z" && State != "X";
}

// Ends the process whose pid the file holds, if it still runs: what a failed test left behind,
// so that one failure does not cascade.
inline void KillIfRunning(const QString& PidFile)
{
    const qint64 iPid = ReadPid(PidFile);
    if (iPid > 0 && IsRunning(iPid))
        ::kill(static_cast<pid_t>(iPid), SIGKILL);
}

struct SChildren
{
    int iLiving = 0;
    int iZombies = 0;
};

inline SChildren Children()
{
    SChildren Found;
    const QByteArray Own = QByteArray::number(::getpid());
    for (const QString& Entry : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs))
    {
        const QList<QByteArray> Fields = StatFields(Entry);
        if (Fields.size() > 1 && Fields.at(1) == Own)
            ++(Fields.at(0) == "Z" ? Found.iZombies : Found.iLiving);
    }
    return Found;
}

inline int OpenFileCount()
{
    return QDir(QStringLiteral("/proc/self/fd"))
        .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
        .size();
}

// Peak resident memory of this process, in KiB.
inline qint64 PeakMemoryKiB()
{
    for (const QByteArray& Line : ReadAll(QStringLiteral("/proc/self/status")).split('\n'))
    {
        if (Line.startsWith("VmHWM:"))
            return Line.mid(6).trimmed().split(' ').value(0).toLongLong();
    }
    return -1;
}

// The longest time, in ms, a 10 ms timer had to wait for the event loop while Done was false:
// how long the GUI thread was held up. -1 when Done did not come true within the limit.
template <typename FDone> qint64 LongestStall(FDone Done, int iLimitMs)
{
    QElapsedTimer Clock;
    Clock.start();
    qint64 iLast = 0;
    qint64 iLongest = 0;
    QTimer Tick;
    QObject::connect(&Tick, &QTimer::timeout,
                     [&]
                     {
                         iLongest = qMax(iLongest, Clock.elapsed() - iLast);
                         iLast = Clock.elapsed();
                     });
    Tick.start(10);
    if (!QTest::qWaitFor(Done, iLimitMs))
        return -1;
    return qMax(iLongest, Clock.elapsed() - iLast);
}

// Sets an environment variable for the fakes a test starts, and removes it afterwards.
class CScopedEnv
{
public:
    CScopedEnv(const char* pName, const QByteArray& Value)
        : m_pName(pName)
    {
        qputenv(pName, Value);
    }
    ~CScopedEnv() { qunsetenv(m_pName); }
    CScopedEnv(const CScopedEnv&) = delete;
    CScopedEnv& operator=(const CScopedEnv&) = delete;

private:
    const char* m_pName;
};

// Writes the preference file a controller starts from: Executable as the custom compiler, and
// the compiles' temporary folder. A failure ends the test program.
inline void StoreCustomCompiler(const QString& Executable, const QString& TempDirectory)
{
    CZamPreferences Store(QStringLiteral("ZamShaderEditor"));
    Store.Load();
    Store.SetString(QStringLiteral("Compiler/GLSLES"), Executable);
    Store.SetInteger(QStringLiteral("Compiler/CompilerSelection"), CustomCompilerSelection);
    Store.SetString(QStringLiteral("Compiler/TempDirectory"), TempDirectory);
    if (!Store.Save())
        qFatal("cannot write the starting preference file %s", qPrintable(Store.GetFilePath()));
}

// A compiler message on a 1-based document line, as the output parser makes them.
inline SCompileMessage MessageAt(int iLine, SCompileMessage::ESeverity eSeverity, const QString& Text)
{
    SCompileMessage Message;
    Message.iLine = iLine;
    Message.eSeverity = eSeverity;
    Message.Text = Text;
    return Message;
}
} // namespace CompileTest
