// The single instance between real processes (the host program starts the way the editor does),
// and the message reader, the private folder and the peer check on their own.

#include "app/instance/InstanceLocation_p.h"
#include "app/instance/InstanceMessage.h"
#include "tests/support/TestFiles.h"

#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QProcess>
#include <QSharedMemory>
#include <QTemporaryDir>
#include <QtTest>

#include <grp.h>
#include <sys/ipc.h>
#include <sys/shm.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace
{
constexpr int WaitMs = 20000;
using ProcessList = std::vector<std::unique_ptr<QProcess>>;

// One folder per test stands in for the user's runtime and temporary folders, so a test
// never meets a real editor or another test.
class CSession
{
public:
    CSession()
        : m_Environment(QProcessEnvironment::systemEnvironment())
    {
        m_Environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_Folder.path());
        m_Environment.insert(QStringLiteral("TMPDIR"), m_Folder.path());
        m_Environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    }

    void SetVariable(const QString& Name, const QString& Value) { m_Environment.insert(Name, Value); }

    QString Path(const QString& Name = QString()) const
    {
        return Name.isEmpty() ? m_Folder.path() : m_Folder.filePath(Name);
    }
    // The instance's name: of its server under the runtime folder and of its shared memory.
    static QString Key() { return QStringLiteral("ZamShaderEditor-") + QString::number(geteuid()); }
    QString ServerPath() const { return Path(Key()); }

    QString MakeFile(const QString& Name) const { return TestFiles::WriteTestFile(Path(), Name, "void main() {}\n"); }
    QStringList MakeFiles(const QString& Stem, int iCount) const
    {
        QStringList Files;
        for (int i = 0; i < iCount; ++i)
            Files << MakeFile(QStringLiteral("%1%2.frag").arg(Stem).arg(i));
        return Files;
    }

    std::unique_ptr<QProcess> Start(const QStringList& Arguments, const QString& WorkingFolder = QString()) const
    {
        auto pProcess = std::make_unique<QProcess>();
        pProcess->setProcessEnvironment(m_Environment);
        pProcess->setWorkingDirectory(WorkingFolder.isEmpty() ? Path() : WorkingFolder);
        pProcess->start(TestFiles::Program(QStringLiteral("zam_instance_host")), Arguments);
        return pProcess;
    }

private:
    QTemporaryDir m_Folder;
    QProcessEnvironment m_Environment;
};

// A second start ends by itself with code 0 and prints nothing; what went wrong otherwise.
QString SecondStartFault(QProcess& Process)
{
    if (Process.state() != QProcess::NotRunning && !Process.waitForFinished(WaitMs))
        return QStringLiteral("still running");
    const QByteArray Output = Process.readAllStandardOutput();
    if (Process.exitStatus() != QProcess::NormalExit || Process.exitCode() != 0 || !Output.isEmpty())
        return QStringLiteral("exit code %1, output \"%2\", errors \"%3\"")
            .arg(Process.exitCode())
            .arg(QString::fromUtf8(Output), QString::fromUtf8(Process.readAllStandardError()));
    return QString();
}

QString RunSecondStart(const CSession& Session, const QStringList& Arguments, const QString& WorkingFolder = QString())
{
    return SecondStartFault(*Session.Start(Arguments, WorkingFolder));
}

ProcessList StartEach(const CSession& Session, const QStringList& Files)
{
    ProcessList Processes;
    for (const QString& File : Files)
        Processes.push_back(Session.Start({File}));
    return Processes;
}

QStringList AsMessages(const QStringList& Files)
{
    QStringList Lines;
    for (const QString& File : Files)
        Lines << QStringLiteral("message ") + File;
    Lines.sort();
    return Lines;
}

// A running first instance with what it printed so far.
class CFirstInstance
{
public:
    explicit CFirstInstance(const CSession& Session)
        : m_pProcess(Session.Start({}))
    {
    }
    // A start that became the first instance by itself.
    explicit CFirstInstance(std::unique_ptr<QProcess> pProcess)
        : m_pProcess(std::move(pProcess))
    {
    }

    ~CFirstInstance()
    {
        m_pProcess->closeWriteChannel();
        if (!m_pProcess->waitForFinished(WaitMs))
            m_pProcess->kill();
    }

    QProcess& Process() { return *m_pProcess; }
    void Command(const QString& Line) { m_pProcess->write((Line + QLatin1Char('\n')).toUtf8()); }

    // Waits for the "first" line and then for iCount more lines.
    bool WaitForLines(int iCount)
    {
        return QTest::qWaitFor([&]() { return Collect().size() >= iCount + 1; }, WaitMs);
    }

    bool WaitForError(const QString& Text)
    {
        return QTest::qWaitFor(
            [&]()
            {
                Collect();
                return m_Errors.contains(Text);
            },
            WaitMs);
    }

    // Everything after the "first" line, sorted: messages of concurrent senders come in any order.
    QStringList SortedReport()
    {
        QStringList Lines = Collect().mid(1);
        Lines.sort();
        return Lines;
    }

    const QStringList& Collect()
    {
        m_Output += m_pProcess->readAllStandardOutput();
        m_Errors += QString::fromUtf8(m_pProcess->readAllStandardError());
        for (qsizetype iEnd = m_Output.indexOf('\n'); iEnd >= 0; iEnd = m_Output.indexOf('\n'))
        {
            m_Lines << QString::fromUtf8(m_Output.left(iEnd));
            m_Output.remove(0, iEnd + 1);
        }
        return m_Lines;
    }

    const QString& Errors() const { return m_Errors; }

private:
    std::unique_ptr<QProcess> m_pProcess;
    QByteArray m_Output;
    QStringList m_Lines;
    QString m_Errors;
};

// Writes raw bytes as one connection; false when the connection was refused or cut.
bool SendRaw(const QString& ServerPath, const QByteArray& Bytes)
{
    QLocalSocket Socket;
    Socket.connectToServer(ServerPath);
    if (!Socket.waitForConnected(WaitMs))
        return false;
    Socket.write(Bytes);
    while (Socket.bytesToWrite() > 0)
    {
        if (!Socket.waitForBytesWritten(WaitMs))
            return false;
    }
    Socket.disconnectFromServer();
    return true;
}

// Connects from a child process that has become another user and sends the message. Exit code
// 0: it connected (the instance may cut the connection before the message is written);
// 2: the connection was refused.
int ConnectAsUser(uid_t User, const QString& ServerPath, const QByteArray& Message)
{
    sockaddr_un Address = {};
    Address.sun_family = AF_UNIX;
    const QByteArray Path = QFile::encodeName(ServerPath);
    qstrncpy(Address.sun_path, Path.constData(), sizeof(Address.sun_path));
    const char* pMessage = Message.constData();
    const size_t uiLength = size_t(Message.size());
    const pid_t Child = ::fork();
    if (Child == 0)
    {
        if (::setgroups(0, nullptr) != 0 || ::setgid(User) != 0 || ::setuid(User) != 0)
            ::_exit(3);
        const int iSocket = ::socket(AF_UNIX, SOCK_STREAM, 0);
        if (::connect(iSocket, reinterpret_cast<sockaddr*>(&Address), sizeof(Address)) != 0)
            ::_exit(2);
        ::send(iSocket, pMessage, uiLength, MSG_NOSIGNAL);
        ::close(iSocket);
        ::_exit(0);
    }
    int iStatus = 0;
    if (Child < 0 || ::waitpid(Child, &iStatus, 0) != Child || !WIFEXITED(iStatus))
        return -1;
    return WEXITSTATUS(iStatus);
}

// Whether the session's instance segment exists, without attaching to it (attaching and
// detaching would remove a segment nobody else uses).
bool SegmentExists(const CSession& Session)
{
    const QByteArray SavedTemp = qgetenv("TMPDIR");
    qputenv("TMPDIR", QFile::encodeName(Session.Path()));
    QSharedMemory Segment;
    Segment.setKey(CSession::Key());
    const QByteArray KeyFile = QFile::encodeName(Segment.nativeKey());
    qputenv("TMPDIR", SavedTemp);
    const key_t SystemKey = ::ftok(KeyFile.constData(), 'Q');
    return SystemKey != -1 && ::shmget(SystemKey, 0, 0) != -1;
}
} // namespace

class CSingleInstanceTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void HandOverBetweenProcesses_data();
    void HandOverBetweenProcesses();
    void ConcurrentFirstStarts();
    void ManySecondStartsAtOnce();
    void CrashedFirstInstance();
    void BadSendersLeaveTheInstanceServing();
    void OtherUsersAreKeptOut();
    void MessageDecoding();
    void PeerUser();
    // Last: it points the process's own folders elsewhere.
    void PrivateFolders();
};

void CSingleInstanceTest::initTestCase()
{
    const QString Host = TestFiles::Program(QStringLiteral("zam_instance_host"));
    QVERIFY2(QFileInfo(Host).isExecutable(), qPrintable(Host + " is missing; run through ctest"));
}

void CSingleInstanceTest::HandOverBetweenProcesses_data()
{
    QTest::addColumn<bool>("bLate");
    QTest::newRow("before the application object") << false;
    QTest::newRow("through the application object") << true;
}

void CSingleInstanceTest::HandOverBetweenProcesses()
{
    QFETCH(bool, bLate);
    CSession Session;
    if (bLate)
        Session.SetVariable(QStringLiteral("ZAM_INSTANCE_HOST_LATE"), QStringLiteral("1"));
    const QString Shader = Session.MakeFile(QStringLiteral("lit mesh.frag"));
    const QString Keyword = Session.MakeFile(QStringLiteral("raisebanana"));
    {
        CFirstInstance First(Session);
        QVERIFY(First.WaitForLines(0));
        QCOMPARE(First.Collect().first(), QStringLiteral("first ") + Session.ServerPath());

        QCOMPARE(RunSecondStart(Session, {}), QString());
        // A relative name is resolved in the second start's folder; only the first file counts.
        QDir Folder(Session.Path());
        QVERIFY(Folder.mkdir(QStringLiteral("elsewhere")));
        QCOMPARE(RunSecondStart(Session, {"lit mesh.frag", Keyword}), QString());
        QCOMPARE(RunSecondStart(Session, {"../raisebanana"}, Folder.filePath(QStringLiteral("elsewhere"))), QString());
        QCOMPARE(RunSecondStart(Session, {Session.Path(QStringLiteral("missing.frag")), Shader}), QString());
        First.Command(QStringLiteral("fileopen /work/effects/post chain.zfx"));
        QVERIFY(First.WaitForLines(4));
        const QStringList Expected = {"fileopen /work/effects/post chain.zfx", "message " + Shader,
                                      "message " + Keyword, "message raisebanana"};
        QCOMPARE(First.SortedReport(), Expected);

        // A normal end takes the server with it.
        First.Command(QStringLiteral("quit"));
        QVERIFY(First.Process().waitForFinished(WaitMs));
        QCOMPARE(First.Process().exitCode(), 0);
        QVERIFY(!QFileInfo::exists(Session.ServerPath()));
        QVERIFY(!SegmentExists(Session));
    }
    CFirstInstance Next(Session);
    QVERIFY(Next.WaitForLines(0));
    QCOMPARE(RunSecondStart(Session, {Shader}), QString());
    QVERIFY(Next.WaitForLines(1));
    QCOMPARE(Next.SortedReport(), QStringList({"message " + Shader}));
}

void CSingleInstanceTest::ConcurrentFirstStarts()
{
    CSession Session;
    // Five first starts at once: one becomes the instance, the others hand their file to it.
    const QStringList Racing = Session.MakeFiles(QStringLiteral("race"), 5);
    ProcessList Starts = StartEach(Session, Racing);
    const auto IsRunning = [](const std::unique_ptr<QProcess>& pStart) { return pStart->state() != QProcess::NotRunning; };
    QVERIFY(QTest::qWaitFor([&] { return std::count_if(Starts.begin(), Starts.end(), IsRunning) == 1; }, WaitMs));
    const int iFirst = int(std::find_if(Starts.begin(), Starts.end(), IsRunning) - Starts.begin());
    for (int i = 0; i < int(Starts.size()); ++i)
    {
        if (i != iFirst)
            QCOMPARE(SecondStartFault(*Starts[size_t(i)]), QString());
    }
    CFirstInstance Winner(std::move(Starts[size_t(iFirst)]));
    QVERIFY(Winner.WaitForLines(4));
    QVERIFY(Winner.Collect().first().startsWith(QStringLiteral("first ")));
    QStringList Handed = Racing;
    Handed.removeAt(iFirst);
    QCOMPARE(Winner.SortedReport(), AsMessages(Handed));
}

void CSingleInstanceTest::ManySecondStartsAtOnce()
{
    CSession Session;
    CFirstInstance First(Session);
    QVERIFY(First.WaitForLines(0));
    const QStringList Files = Session.MakeFiles(QStringLiteral("shader"), 20);
    for (const auto& pSecond : StartEach(Session, Files))
        QCOMPARE(SecondStartFault(*pSecond), QString());
    QVERIFY(First.WaitForLines(20));
    QCOMPARE(First.SortedReport(), AsMessages(Files));

    // The instance's event loop stays blocked until the release file exists, so every second
    // start below finishes while nobody accepts: the kernel queues the connections.
    const QString Release = Session.Path(QStringLiteral("compile-finished"));
    First.Command(QStringLiteral("block ") + Release);
    QVERIFY(First.WaitForLines(21));
    const QStringList Queued = Session.MakeFiles(QStringLiteral("queued"), 20);
    for (const auto& pSecond : StartEach(Session, Queued))
        QCOMPARE(SecondStartFault(*pSecond), QString());
    QCOMPARE(First.Collect().size(), 22);

    QVERIFY(!Session.MakeFile(QStringLiteral("compile-finished")).isEmpty());
    QVERIFY(First.WaitForLines(42));
    QStringList Expected = AsMessages(Files + Queued);
    Expected << "blocking " + Release << "unblocked " + Release;
    Expected.sort();
    QCOMPARE(First.SortedReport(), Expected);
}

void CSingleInstanceTest::CrashedFirstInstance()
{
    CSession Session;
    {
        CFirstInstance Crashed(Session);
        QVERIFY(Crashed.WaitForLines(0));
        Crashed.Process().kill();
        QVERIFY(Crashed.Process().waitForFinished(WaitMs));
        QCOMPARE(Crashed.Process().exitStatus(), QProcess::CrashExit);
    }
    // Both marks of a first instance outlive it.
    QVERIFY(QFileInfo::exists(Session.ServerPath()));
    QVERIFY(SegmentExists(Session));

    const QString Shader = Session.MakeFile(QStringLiteral("after crash.vert"));
    CFirstInstance Next(Session);
    QVERIFY(Next.WaitForLines(0));
    QCOMPARE(RunSecondStart(Session, {Shader}), QString());
    QVERIFY(Next.WaitForLines(1));
    QCOMPARE(Next.SortedReport(), QStringList({"message " + Shader}));
    QVERIFY2(!Next.Errors().contains(QStringLiteral("Unable to create single instance.")), qPrintable(Next.Errors()));
    QVERIFY(SegmentExists(Session));
}

void CSingleInstanceTest::BadSendersLeaveTheInstanceServing()
{
    CSession Session;
    CFirstInstance First(Session);
    QVERIFY(First.WaitForLines(0));

    // A silent connection and a slow one stay open meanwhile.
    QLocalSocket Silent;
    Silent.connectToServer(Session.ServerPath());
    QVERIFY(Silent.waitForConnected(WaitMs));
    const QByteArray Long =
        QFile::encodeName(Session.Path(QString(3000, QLatin1Char('d')) + QStringLiteral("/deep.frag")));
    QLocalSocket Slow;
    Slow.connectToServer(Session.ServerPath());
    QVERIFY(Slow.waitForConnected(WaitMs));
    Slow.write(Long.left(1000));
    QVERIFY(Slow.waitForBytesWritten(WaitMs));

    const QString Shader = Session.MakeFile(QStringLiteral("valid.frag"));
    const QByteArray Path = QFile::encodeName(Shader);
    QVERIFY(SendRaw(Session.ServerPath(), "/tmp/\xFF\xFE\xC0\xAF.frag"));
    QVERIFY(SendRaw(Session.ServerPath(), Path + QByteArray("\0.frag", 6)));
    QVERIFY(SendRaw(Session.ServerPath(), QByteArray()));
    // The instance cuts the connection once the limit is passed, so the write may fail.
    SendRaw(Session.ServerPath(), QByteArray(1024 * 1024, 'a'));
    QVERIFY(First.WaitForError(QStringLiteral("not valid UTF-8")));
    QVERIFY(First.WaitForError(QStringLiteral("NUL byte")));
    QVERIFY(First.WaitForError(QStringLiteral("longer than 65536 bytes")));

    // None of them holds up a normal second start.
    QCOMPARE(RunSecondStart(Session, {Shader}), QString());
    QVERIFY(First.WaitForLines(1));
    QCOMPARE(First.SortedReport(), QStringList({"message " + Shader}));

    // The slow message arrives whole, not as the part seen first.
    Slow.write(Long.mid(1000));
    Slow.disconnectFromServer();
    QVERIFY(First.WaitForLines(2));
    QCOMPARE(First.Collect().last(), QStringLiteral("message ") + QString::fromUtf8(Long));

    // The silent one is dropped after its time.
    QVERIFY(Silent.state() == QLocalSocket::UnconnectedState || Silent.waitForDisconnected(WaitMs));
    QVERIFY(First.WaitForError(QStringLiteral("no complete message within 5000 ms")));
    QCOMPARE(First.Process().state(), QProcess::Running);
}

void CSingleInstanceTest::OtherUsersAreKeptOut()
{
    CSession Session;
    CFirstInstance First(Session);
    QVERIFY(First.WaitForLines(0));

    // The folder and the socket are ours and closed to others (a mode of 0: not ours).
    const auto OwnMode = [](const QString& Path)
    {
        struct stat Info;
        return ::lstat(QFile::encodeName(Path).constData(), &Info) == 0 && Info.st_uid == geteuid() ? Info.st_mode
                                                                                                    : mode_t(0);
    };
    QCOMPARE(OwnMode(Session.Path()) & 0777, mode_t(0700));
    QVERIFY(S_ISSOCK(OwnMode(Session.ServerPath())));
    QCOMPARE(OwnMode(Session.ServerPath()) & 0077, mode_t(0));

    if (geteuid() != 0)
        QSKIP("Connecting as another user needs root; the folder and socket modes were checked");
    const QString Shader = Session.MakeFile(QStringLiteral("foreign.frag"));
    const uid_t Nobody = 65534;
    QCOMPARE(ConnectAsUser(Nobody, Session.ServerPath(), QFile::encodeName(Shader)), 2);

    // Even with the folder and socket opened to everyone, the instance refuses the stranger.
    QVERIFY(::chmod(QFile::encodeName(Session.Path()).constData(), 0777) == 0);
    QVERIFY(::chmod(QFile::encodeName(Session.ServerPath()).constData(), 0777) == 0);
    QCOMPARE(ConnectAsUser(Nobody, Session.ServerPath(), QFile::encodeName(Shader)), 0);
    QVERIFY(First.WaitForError(QStringLiteral("a connection from user 65534 was refused")));
    // (A start finding its runtime folder open to others would look for a private one elsewhere.)
    QVERIFY(::chmod(QFile::encodeName(Session.Path()).constData(), 0700) == 0);

    const QString Own = Session.MakeFile(QStringLiteral("own.frag"));
    QCOMPARE(RunSecondStart(Session, {Own}), QString());
    QVERIFY(First.WaitForLines(1));
    QCOMPARE(First.SortedReport(), QStringList({"message " + Own}));
}

void CSingleInstanceTest::MessageDecoding()
{
    const QByteArray Cyrillic = QStringLiteral("/home/anna/шейдеры/свет.frag").toUtf8();
    QCOMPARE(DecodeInstanceMessage(Cyrillic).Text, QStringLiteral("/home/anna/шейдеры/свет.frag"));
    QCOMPARE(DecodeInstanceMessage("raisebanana").Text, QStringLiteral("raisebanana"));

    // A byte-order mark is part of the name, not dropped.
    QCOMPARE(DecodeInstanceMessage("\xEF\xBB\xBF/tmp/a.frag").Text,
             QString(QChar(0xFEFF)) + QStringLiteral("/tmp/a.frag"));

    const QByteArray Longest(MaxInstanceMessageBytes, 'a');
    const SInstanceMessage Taken = DecodeInstanceMessage(Longest);
    QVERIFY(Taken.Error.isEmpty());
    QCOMPARE(Taken.Text.size(), MaxInstanceMessageBytes);

    const QList<QPair<QByteArray, QString>> Refused = {
        {QByteArray(), "without a message"},
        {Longest + 'a', "longer than 65536 bytes"},
        {QByteArray("/tmp/a\0b.frag", 13), "NUL"},
        {"/tmp/\xFF\xFE.frag", "not valid UTF-8"},
        {"/tmp/\xC0\xAF.frag", "not valid UTF-8"},     // overlong '/'
        {"/tmp/\xED\xA0\x80.frag", "not valid UTF-8"}, // an encoded surrogate
        {"/tmp/a.frag\xE2\x82", "not valid UTF-8"},    // cut inside a character
    };
    for (const auto& Case : Refused)
    {
        const SInstanceMessage Refusal = DecodeInstanceMessage(Case.first);
        QVERIFY2(Refusal.Error.contains(Case.second),
                 qPrintable(Case.first.toPercentEncoding() + ": " + Refusal.Error));
        QCOMPARE(Refusal.Text, QString());
    }
}

void CSingleInstanceTest::PeerUser()
{
    int Pair[2];
    QVERIFY(::socketpair(AF_UNIX, SOCK_STREAM, 0, Pair) == 0);
    const SPeerUser Peer = GetPeerUser(Pair[0]);
    QVERIFY2(Peer.bKnown, qPrintable(Peer.Error));
    QCOMPARE(Peer.uiUserId, uint(geteuid()));
    ::close(Pair[0]);
    ::close(Pair[1]);

    // Not a socket: an error, never a user id that could pass the check.
    const SPeerUser Closed = GetPeerUser(Pair[0]);
    QVERIFY(!Closed.bKnown);
    QVERIFY(!Closed.Error.isEmpty());
}

void CSingleInstanceTest::PrivateFolders()
{
    QTemporaryDir Temp;
    QVERIFY(Temp.isValid());
    qputenv("TMPDIR", QFile::encodeName(Temp.path()));
    const QString Fallback = Temp.path() + QStringLiteral("/zamshadereditor-") + QString::number(geteuid());

    // A private runtime folder is used as it is.
    const QString Runtime = Temp.filePath("runtime");
    QVERIFY(QDir().mkdir(Runtime));
    QVERIFY(::chmod(QFile::encodeName(Runtime).constData(), 0700) == 0);
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(Runtime));
    QCOMPARE(PrivateInstanceFolder().Path, Runtime);

    // One that others may enter is passed over for a folder of our own, made private.
    QVERIFY(::chmod(QFile::encodeName(Runtime).constData(), 0755) == 0);
    QCOMPARE(PrivateInstanceFolder().Path, Fallback);
    struct stat Info;
    QVERIFY(::lstat(QFile::encodeName(Fallback).constData(), &Info) == 0);
    QCOMPARE(Info.st_mode & 07777, mode_t(0700));
    qunsetenv("XDG_RUNTIME_DIR");
    QCOMPARE(PrivateInstanceFolder().Path, Fallback);

    // Whatever another user (or a link) put in our fallback's place is refused, not used.
    QVERIFY(QDir().rmdir(Fallback));
    QVERIFY(QFile::link(Runtime, Fallback));
    SPrivateFolder Refused = PrivateInstanceFolder();
    QCOMPARE(Refused.Path, QString());
    QVERIFY2(Refused.Error.contains("not a folder"), qPrintable(Refused.Error));
    QVERIFY(QFile::remove(Fallback));
    QVERIFY(QDir().mkdir(Fallback));
    QVERIFY(::chmod(QFile::encodeName(Fallback).constData(), 0777) == 0);
    Refused = PrivateInstanceFolder();
    QCOMPARE(Refused.Path, QString());
    QVERIFY2(Refused.Error.contains("has mode 0777"), qPrintable(Refused.Error));
    if (geteuid() == 0)
    {
        QVERIFY(::chown(QFile::encodeName(Fallback).constData(), 65534, 65534) == 0);
        QVERIFY(::chmod(QFile::encodeName(Fallback).constData(), 0700) == 0);
        Refused = PrivateInstanceFolder();
        QCOMPARE(Refused.Path, QString());
        QVERIFY2(Refused.Error.contains("belongs to user 65534"), qPrintable(Refused.Error));
    }
}

QTEST_GUILESS_MAIN(CSingleInstanceTest)
#include "tst_SingleInstance.moc"
