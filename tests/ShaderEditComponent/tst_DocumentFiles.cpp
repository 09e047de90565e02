#include "EditorFixture.h"
#include "ShaderEditComponent/AtomicFile_p.h"
#include "ShaderEditComponent/CDocumentBackups.h"
#include "ShaderEditComponent/CShaderEditPanel.h"
#include "ShaderEditComponent/DocumentFile.h"
#include "ShaderEditComponent/DocumentWatcher.h"

#include <QCryptographicHash>
#include <QProcess>
#include <QScrollBar>
#include <QSignalSpy>
#include <QtTest>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using TestFiles::ReadAll;

// Documents on disk through the editor: opening and saving with the inputs and failures real
// disks produce, the backups of modified documents, and files changed by other programs the
// way users' tools change them (a shell redirection writes in place, sed -i and mv rename
// another file over it, rm deletes it, git checkout writes it anew); a change that must not
// be reported is followed by one that must, and only the second may arrive.
class CDocumentFilesTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void BadInputOpens_data();
    void BadInputOpens();
    void OpenedBytesSaveBackUnchanged_data();
    void OpenedBytesSaveBackUnchanged();
    void TypedTextIsNeverDropped();
    void SaveFailures_data();
    void SaveFailures();
    void FullDiskLeavesTheFileAlone();

    void BackupFormatRoundTripsAndRefusesDamage();
    void BackupsFollowTheDocument();
    void LeftBackupsComeBack();
    void AtomicWritesLeaveNoStrayFile();

    void OnlyNewBytesAreReported();
    void DeletedFilesAreReportedAndWatchedForTheirReturn();
    void EditorFollowsItsFiles();

private:
    void ExpectSaveFailure(const QString& Path, const QString& ErrorStart);
    QStringList BackupFiles() const;
    static void Run(const QString& Program, const QStringList& Arguments, const QString& Folder);
    static void Shell(const QString& Command, const QString& Folder) { Run("sh", {"-c", Command}, Folder); }
    // The changes reported so far, as "file name:bytes", once the iCount-th has come.
    static QStringList WaitForChanges(QSignalSpy& Spy, int iCount);

    SEditorFixture m_F;
    QString m_Backups; // the backup folder
};

void CDocumentFilesTest::init()
{
    m_F.Reset();
    m_Backups = m_F.pDir->filePath(QStringLiteral("state/Brenmoor Systems/ZamShaderEditor"));
}

void CDocumentFilesTest::cleanup()
{
    m_F.pEditor.reset();
    QFile::setPermissions(m_F.pDir->filePath(QStringLiteral("sub")),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void CDocumentFilesTest::BadInputOpens_data()
{
    QTest::addColumn<QString>("Kind");
    QTest::addColumn<QString>("Error"); // empty: the document opens
    const QString Failed = QStringLiteral("Failed to open file: %1\nReason: ");
    QTest::newRow("binary") << "binary" << QString();
    QTest::newRow("invalid UTF-8") << "latin1" << QString();
    // Large shaders open (generated code, big tables); past 256 MiB the limit is named.
    QTest::newRow("20 MiB") << "large" << QString();
    QTest::newRow("300 MiB") << "huge" << Failed + QStringLiteral("too large (300 MiB); the limit is 256 MiB");
    QTest::newRow("directory") << "directory" << Failed + QStringLiteral("not a regular file (a folder)");
    QTest::newRow("vanished") << "vanished" << Failed + QStringLiteral("No such file or directory");
    QTest::newRow("pipe") << "fifo" << Failed + QStringLiteral("not a regular file (a FIFO)");
    QTest::newRow("device") << "/dev/zero" << Failed + QStringLiteral("not a regular file (a device)");
    QTest::newRow("unreadable") << "unreadable" << Failed + QStringLiteral("Permission denied");
}

void CDocumentFilesTest::BadInputOpens()
{
    QFETCH(QString, Kind);
    QFETCH(QString, Error);
    QString Path = Kind.startsWith(QLatin1Char('/')) ? Kind : m_F.pDir->filePath(Kind);
    if (Kind == QLatin1String("binary"))
        m_F.Write(Kind, QByteArray("\x7F"
                                   "ELF\0\0\x01\xFF\xFE\r\n\0zz",
                                   14));
    else if (Kind == QLatin1String("latin1"))
        m_F.Write(Kind, "vec4 caf\xE9 = vec4(1.0);\n");
    else if (Kind == QLatin1String("huge"))
    {
        QFile Huge(Path);
        QVERIFY(Huge.open(QIODevice::WriteOnly));
        QVERIFY(Huge.resize(300ll * 1024 * 1024)); // sparse: costs no disk
    }
    else if (Kind == QLatin1String("large"))
        m_F.Write(Kind, QByteArray("float f = 1.0; // a line of a large generated table\n").repeated(400 * 1024));
    else if (Kind == QLatin1String("directory"))
        QVERIFY(QDir(m_F.pDir->path()).mkdir(Kind));
    else if (Kind == QLatin1String("fifo"))
        QCOMPARE(mkfifo(QFile::encodeName(Path).constData(), 0600), 0);
    else if (Kind == QLatin1String("unreadable"))
    {
        if (geteuid() == 0)
            QSKIP("root reads every file");
        QVERIFY(QFile::setPermissions(m_F.Write(Kind, "x"), QFileDevice::WriteOwner));
    }

    const bool bOpened = m_F.pEditor->OnOpenFile(Path);
    QCOMPARE(bOpened, Error.isEmpty());
    QCOMPARE(m_F.pEditor->GetTabCount(), bOpened ? 1 : 0);
    if (bOpened)
    {
        QVERIFY(m_F.Delegate.Errors.isEmpty());
        QVERIFY(!m_F.pEditor->GetCurrentPanel()->IsModified());
        return;
    }
    QCOMPARE(m_F.Delegate.ErrorPaths, QStringList{Path});
    QCOMPARE(m_F.Delegate.Errors, QStringList{Error.arg(Path)});
}

void CDocumentFilesTest::OpenedBytesSaveBackUnchanged_data()
{
    QTest::addColumn<QByteArray>("Bytes");
    QTest::addColumn<QString>("Text");
    QTest::newRow("CRLF") << QByteArray("a\r\nb\r\n") << "a\nb\n";
    QTest::newRow("LF") << QByteArray("a\nb") << "a\nb";
    QTest::newRow("UTF-8 with a BOM") << QByteArray("\xEF\xBB\xBF"
                                                    "caf\xC3\xA9\n")
                                      << QString::fromUtf8("café\n");
    QTest::newRow("Latin-1") << QByteArray("caf\xE9\r\n") << QString::fromUtf8("café\n");
    QTest::newRow("NUL bytes") << QByteArray("a\0b\n", 4) << QString::fromLatin1("a\0b\n", 4);
}

void CDocumentFilesTest::OpenedBytesSaveBackUnchanged()
{
    QFETCH(QByteArray, Bytes);
    QFETCH(QString, Text);
    const QString Path = m_F.Write(QStringLiteral("doc.txt"), Bytes);
    QVERIFY(m_F.pEditor->OnOpenFile(Path));
    QCOMPARE(m_F.pEditor->GetCurrentPanel()->toPlainText(), Text);
    QFile::remove(Path);
    m_F.pEditor->OnSaveCurrentTab();
    QCOMPARE(ReadAll(Path), Bytes);
}

void CDocumentFilesTest::TypedTextIsNeverDropped()
{
    // Mixed line ends are written in the style most lines used.
    const QString Mixed = m_F.Write(QStringLiteral("mixed.vsh"), "a\r\nb\r\nc\nd");
    QVERIFY(m_F.pEditor->OnOpenFile(Mixed));
    m_F.pEditor->OnSaveCurrentTab();
    QCOMPARE(ReadAll(Mixed), QByteArray("a\r\nb\r\nc\r\nd"));

    // A Latin-1 document that gains a character Latin-1 cannot hold is saved as UTF-8.
    const QString Latin1 = m_F.Write(QStringLiteral("latin1.txt"), "caf\xE9");
    QVERIFY(m_F.pEditor->OnOpenFile(Latin1));
    m_F.pEditor->GetCurrentPanel()->moveCursor(QTextCursor::End);
    m_F.pEditor->GetCurrentPanel()->insertPlainText(QString::fromUtf8(" \xE2\x82\xAC"));
    m_F.pEditor->OnSaveCurrentTab();
    QCOMPARE(QString::fromUtf8(ReadAll(Latin1)), QString::fromUtf8("café €"));
}

void CDocumentFilesTest::ExpectSaveFailure(const QString& Path, const QString& ErrorStart)
{
    QCOMPARE(m_F.Delegate.ErrorPaths, QStringList{Path});
    QVERIFY2(m_F.Delegate.Errors.value(0).startsWith(ErrorStart), qPrintable(m_F.Delegate.Errors.value(0)));
    QVERIFY(m_F.pEditor->GetCurrentPanel()->IsModified());
    QCOMPARE(m_F.pEditor->GetTabCount(), 1);
}

void CDocumentFilesTest::SaveFailures_data()
{
    QTest::addColumn<QString>("Case");
    QTest::newRow("folder deleted") << "vanished";
    // Root may write anywhere, but not below a regular file: a folder nobody can write to.
    QTest::newRow("folder is a file") << "below a file";
    QTest::newRow("read-only folder") << "read-only";
}

void CDocumentFilesTest::SaveFailures()
{
    QFETCH(QString, Case);
    const bool bNew = Case == QLatin1String("below a file");
    if (Case == QLatin1String("read-only") && geteuid() == 0)
        QSKIP("root writes into read-only folders; the folder below a file is one nobody can write to");
    QString Target = m_F.Write(QStringLiteral("sub/a.vsh"), "old");
    if (bNew)
    {
        m_F.Write(QStringLiteral("plain"), "file");
        Target = m_F.pDir->filePath(QStringLiteral("plain/a.vsh"));
        m_F.pEditor->OnNewFile(DocType_GLSLESVertex);
        m_F.Delegate.SavePath = Target;
    }
    else
        QVERIFY(m_F.pEditor->OnOpenFile(Target));
    const QString Folder = m_F.pDir->filePath(QStringLiteral("sub"));
    if (Case == QLatin1String("vanished"))
        QVERIFY(QDir(Folder).removeRecursively());
    else if (!bNew)
        QVERIFY(QFile::setPermissions(Folder, QFile::ReadOwner | QFile::ExeOwner));
    m_F.pEditor->GetCurrentPanel()->insertPlainText(QStringLiteral("typed"));
    if (bNew)
        QVERIFY(!m_F.pEditor->OnSaveAllTabs());
    else
        m_F.pEditor->OnSaveCurrentTab();
    ExpectSaveFailure(Target, QStringLiteral("Failed to save file: %1\nReason: ").arg(Target));
    QCOMPARE(m_F.pEditor->GetCurrentPanel()->GetFilename().IsEmpty(), bNew);
    if (Case == QLatin1String("read-only"))
        QCOMPARE(ReadAll(Target), QByteArray("old"));
}

void CDocumentFilesTest::FullDiskLeavesTheFileAlone()
{
    // A file-size limit makes the write fail half way, as a full disk does.
    const QString Path = m_F.Write(QStringLiteral("full.vsh"), "old contents");
    QVERIFY(m_F.pEditor->OnOpenFile(Path));
    m_F.pEditor->GetCurrentPanel()->insertPlainText(QString(64 * 1024, QLatin1Char('x')));

    rlimit Saved{};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &Saved), 0);
    rlimit Small = Saved;
    Small.rlim_cur = 4096;
    const auto pPreviousHandler = std::signal(SIGXFSZ, SIG_IGN);
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &Small), 0);
    m_F.pEditor->OnSaveCurrentTab();
    setrlimit(RLIMIT_FSIZE, &Saved);
    std::signal(SIGXFSZ, pPreviousHandler);

    ExpectSaveFailure(Path, QString());
    QCOMPARE(m_F.Delegate.Errors.value(0), QStringLiteral("Error while writing file:") + Path);
    QCOMPARE(ReadAll(Path), QByteArray("old contents"));
    QCOMPARE(QDir(m_F.pDir->path()).entryList(QDir::Files), QStringList{QStringLiteral("full.vsh")});

    // Once there is room again the same document saves.
    m_F.Delegate.Errors.clear();
    m_F.pEditor->OnSaveCurrentTab();
    QVERIFY(m_F.Delegate.Errors.isEmpty());
    QCOMPARE(ReadAll(Path).size(), 64 * 1024 + 12);
}

QStringList CDocumentFilesTest::BackupFiles() const
{
    return QDir(m_Backups).entryList({QStringLiteral("*.zsbackup")}, QDir::Files);
}

void CDocumentFilesTest::BackupFormatRoundTripsAndRefusesDamage()
{
    SDocumentBackup Backup;
    Backup.Path = QStringLiteral("/tmp/odd %name\n;$(x).frag");
    Backup.Title = QStringLiteral("New File (2)");
    Backup.eType = DocType_ZFXGLSLES;
    Backup.Format.bUtf8 = false;
    Backup.Format.bCrlf = true;
    Backup.DiskChecksum = QCryptographicHash::hash("x", QCryptographicHash::Sha256).toHex();
    Backup.Text = QStringLiteral("void main() {}\n\n// gr\u00fc\u00dfe \u2603\n");
    const QByteArray Bytes = EncodeBackup(Backup);

    const SBackupDecodeResult Read = DecodeBackup(Bytes);
    QVERIFY2(Read.bOk, qPrintable(Read.Error));
    QCOMPARE(Read.Backup.Text, Backup.Text);
    QCOMPARE(EncodeBackup(Read.Backup), Bytes); // and every other field, as the encoding holds them all

    // Cut anywhere, one byte changed anywhere, or someone else's file: never a backup.
    for (qsizetype iCut = 0; iCut < Bytes.size(); iCut += 7)
        QVERIFY2(!DecodeBackup(Bytes.left(iCut)).bOk, qPrintable(QString::number(iCut)));
    for (qsizetype i = 0; i < Bytes.size(); i += 5)
    {
        QByteArray Changed = Bytes;
        Changed[i] = Changed.at(i) == 'A' ? 'B' : 'A';
        const SBackupDecodeResult Damaged = DecodeBackup(Changed);
        QVERIFY2(!Damaged.bOk || Damaged.Backup.Text == Backup.Text, qPrintable(QString::number(i)));
        QVERIFY(Damaged.bOk || !Damaged.Error.isEmpty());
    }
    QCOMPARE(DecodeBackup(QByteArray("<?xml version=\"1.0\"?>\n\n<plist/>")).Error,
             QStringLiteral("not a document backup of this program"));
    QByteArray WrongType = Bytes;
    WrongType.replace("\ntype 16\n", "\ntype 2048\n");
    QCOMPARE(DecodeBackup(WrongType).Error, QStringLiteral("unknown document type"));
}

void CDocumentFilesTest::BackupsFollowTheDocument()
{
    const QString Path = m_F.Write(QStringLiteral("lit.fsh"), "void main() {}\n");
    CShaderEditor* pEditor = m_F.pEditor.get();
    CDocumentBackups Backups(pEditor, m_Backups);
    Backups.SetDelay(20);
    QVERIFY2(Backups.GetError().isEmpty(), qPrintable(Backups.GetError()));
    struct stat Status
    {
    };
    QCOMPARE(::stat(QFile::encodeName(m_Backups).constData(), &Status), 0);
    QCOMPARE(Status.st_mode & 0777, 0700u);

    QVERIFY(pEditor->OnOpenFile(Path));
    QTest::qWait(60);
    QVERIFY2(BackupFiles().isEmpty(), "an unmodified document needs no backup");
    pEditor->GetCurrentPanel()->insertPlainText(QStringLiteral("// typed\n"));
    QTRY_COMPARE(BackupFiles().size(), 1);
    Backups.Flush();
    const QString File = m_Backups + QLatin1Char('/') + BackupFiles().at(0);
    QCOMPARE(QFileInfo(File).permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
    const SBackupDecodeResult Read = DecodeBackup(ReadAll(File));
    QVERIFY2(Read.bOk, qPrintable(Read.Error));
    QCOMPARE(Read.Backup.Text, QStringLiteral("// typed\nvoid main() {}\n"));
    QCOMPARE(Read.Backup.Path, Path);
    QCOMPARE(Read.Backup.Title, QStringLiteral("lit.fsh"));
    QCOMPARE(Read.Backup.DiskChecksum,
             QCryptographicHash::hash("void main() {}\n", QCryptographicHash::Sha256).toHex());

    // A save removes it; the next change brings one back; a discarding close removes it again.
    pEditor->OnSaveCurrentTab();
    Backups.Flush();
    QCOMPARE(BackupFiles(), QStringList());
    pEditor->GetCurrentPanel()->insertPlainText(QStringLiteral("x"));
    QTRY_COMPARE(BackupFiles().size(), 1);
    m_F.Delegate.eAnswer = QMessageBox::Discard;
    pEditor->OnCloseCurrentTab();
    Backups.Flush();
    QCOMPARE(BackupFiles(), QStringList());
}

void CDocumentFilesTest::LeftBackupsComeBack()
{
    const QString Path = m_F.Write(QStringLiteral("a.vsh"), "old\n");
    const QString Gone = m_F.Write(QStringLiteral("b.vsh"), "b\n");
    std::unique_ptr<CShaderEditor> pFirst = m_F.NewEditor();
    auto pFirstBackups = std::make_unique<CDocumentBackups>(pFirst.get(), m_Backups);
    pFirstBackups->SetDelay(10);
    QVERIFY(pFirst->OnOpenFile(Path));
    pFirst->GetCurrentPanel()->insertPlainText(QStringLiteral("new "));
    QVERIFY(pFirst->OnOpenFile(Gone));
    pFirst->GetCurrentPanel()->insertPlainText(QStringLiteral("b2 "));
    pFirst->OnNewFile(DocType_GLSLESFragment);
    pFirst->OnNewFile(DocType_OpenCLKernel);
    pFirst->GetCurrentPanel()->insertPlainText(QStringLiteral("kernel"));
    QTRY_COMPARE(BackupFiles().size(), 3);
    pFirstBackups->Flush();

    // While the first session runs, its backups are its own.
    std::unique_ptr<CShaderEditor> pSecond = m_F.NewEditor();
    auto pSecondBackups = std::make_unique<CDocumentBackups>(pSecond.get(), m_Backups);
    QVERIFY(pSecondBackups->FindLeftBackups().Backups.isEmpty());

    // The first session ends without closing its tabs, as in a crash; meanwhile one file
    // changes on disk, another goes, and a stranger's file lands in the folder.
    pFirstBackups.reset();
    pFirst.reset();
    QVERIFY(TestFiles::WriteAll(Path, "changed elsewhere\n"));
    QVERIFY(QFile::remove(Gone));
    QVERIFY(TestFiles::WriteAll(m_Backups + QStringLiteral("/s1-0.zsbackup"), "garbage"));
    const SBackupScan Scan = pSecondBackups->FindLeftBackups();
    QCOMPARE(Scan.Backups.size(), 3);
    QCOMPARE(Scan.Damaged.size(), 1);
    QCOMPARE(Scan.Damaged.at(0).KeptAs, m_Backups + QStringLiteral("/damaged/s1-0.zsbackup"));
    QCOMPARE(ReadAll(Scan.Damaged.at(0).KeptAs), QByteArray("garbage"));
    QCOMPARE(Scan.Backups.at(0).bDiskChanged, true);
    QCOMPARE(Scan.Backups.at(1).bDiskChanged, true);
    QCOMPARE(Scan.Backups.at(2).bDiskChanged, false);

    // The new session has opened one of the files again; its tab takes the restored text.
    QVERIFY(pSecond->OnOpenFile(Path));
    pSecondBackups->Restore(Scan.Backups);
    QCOMPARE(pSecond->GetTabCount(), 3);
    const QStringList Titles{QStringLiteral("a.vsh"), QStringLiteral("b.vsh"), QStringLiteral("New File (1)")};
    const QStringList Texts{QStringLiteral("new old\n"), QStringLiteral("b2 b\n"), QStringLiteral("kernel")};
    for (int i = 0; i < 3; ++i)
    {
        CShaderEditPanel* pPanel = pSecond->GetPanel(i);
        QCOMPARE(pSecond->DocumentTitle(i), Titles.at(i));
        QVERIFY(pPanel->IsModified());
        QCOMPARE(pPanel->toPlainText(), Texts.at(i));
    }
    QCOMPARE(pSecond->GetPanel(2)->GetDocumentType(), DocType_OpenCLKernel);
    QCOMPARE(ReadAll(Path), QByteArray("changed elsewhere\n"));
    // The backups now belong to the restored tabs: another crash still finds them.
    pSecondBackups->Flush();
    QCOMPARE(BackupFiles().size(), 3);
    pSecondBackups.reset();
    std::unique_ptr<CShaderEditor> pThird = m_F.NewEditor();
    CDocumentBackups ThirdBackups(pThird.get(), m_Backups);
    const SBackupScan Again = ThirdBackups.FindLeftBackups();
    QCOMPARE(Again.Backups.size(), 3);
    ThirdBackups.Discard(Again.Backups);
    QCOMPARE(BackupFiles(), QStringList());
}

void CDocumentFilesTest::AtomicWritesLeaveNoStrayFile()
{
    const QString Path = m_F.Write(QStringLiteral("doc.frag"), "old");
    QVERIFY(QFile::setPermissions(Path, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup));
    // One stray of a process long gone, one of a process that runs (init), one not ours.
    const QString Dead = m_F.Write(QStringLiteral(".doc.frag.zs999999999-x.tmp"), "o");
    const QString Live = m_F.Write(QStringLiteral(".doc.frag.zs1-x.tmp"), "o");
    const QString Other = m_F.Write(QStringLiteral(".doc.frag.swp"), "o");

    const SAtomicWriteResult Written = WriteFileAtomically(Path, "new");
    QVERIFY2(Written.bOk, qPrintable(Written.Reason));
    QCOMPARE(ReadAll(Path), QByteArray("new"));
    struct stat Status
    {
    };
    QCOMPARE(::stat(QFile::encodeName(Path).constData(), &Status), 0);
    QCOMPARE(Status.st_mode & 0777, 0640u);
    QVERIFY(!QFileInfo::exists(Dead));
    QVERIFY(QFileInfo::exists(Live));
    QVERIFY(QFileInfo::exists(Other));

    // A link is written through: it stays a link and its target gets the bytes.
    const QString Link = m_F.pDir->filePath(QStringLiteral("link.frag"));
    QVERIFY(QFile::link(Path, Link));
    QVERIFY(WriteFileAtomically(Link, "through").bOk);
    QVERIFY(QFileInfo(Link).isSymLink());
    QCOMPARE(ReadAll(Path), QByteArray("through"));
    QCOMPARE(QDir(m_F.pDir->path()).entryList(QDir::Files | QDir::Hidden).size(), 4);
}

void CDocumentFilesTest::Run(const QString& Program, const QStringList& Arguments, const QString& Folder)
{
    QProcess Process;
    Process.setWorkingDirectory(Folder);
    Process.start(Program, Arguments);
    QVERIFY2(Process.waitForFinished(10000), qPrintable(Program));
    QVERIFY2(Process.exitStatus() == QProcess::NormalExit && Process.exitCode() == 0,
             qPrintable(Program + ": " + Process.readAllStandardError()));
}

QStringList CDocumentFilesTest::WaitForChanges(QSignalSpy& Spy, int iCount)
{
    // Whatever came: a missing change shows in the caller's comparison.
    static_cast<void>(QTest::qWaitFor([&Spy, iCount] { return Spy.size() >= iCount; }, 10000));
    QStringList Changes;
    for (const QList<QVariant>& Arguments : Spy)
        Changes << QFileInfo(Arguments.at(0).toString()).fileName() + ":" + Arguments.at(1).toByteArray();
    return Changes;
}

void CDocumentFilesTest::OnlyNewBytesAreReported()
{
    const QString Folder = m_F.pDir->path();
    const QString Path = m_F.Write("shader.frag", "one\n");
    const QString Other = m_F.Write("other.frag", "a\n");
    CDocumentWatcher Watcher;
    Watcher.Watch(Path, "one\n");
    Watcher.Watch(Other, "a\n");
    Watcher.Unwatch(Other);
    QVERIFY(!Watcher.IsWatching(Other));
    QSignalSpy Changed(&Watcher, &CDocumentWatcher::FileChanged);
    QSignalSpy Deleted(&Watcher, &CDocumentWatcher::FileDeleted);

    // Touching, writing the same bytes and a file no longer watched in the same folder are no
    // changes, also once the watcher has let them settle; writing in place is.
    Run("touch", {"shader.frag"}, Folder);
    Run("sed", {"-i", "s/one/one/", "shader.frag"}, Folder);
    Shell("printf 'b\\n' > other.frag; rm other.frag", Folder);
    QVERIFY(!Changed.wait(1000));
    Shell("printf 'two\\n' > shader.frag", Folder);
    QCOMPARE(WaitForChanges(Changed, 1), QStringList({"shader.frag:two\n"}));

    // sed -i writes a new file and renames it over the old one; the watch must survive it,
    // twice in a row.
    Run("sed", {"-i", "s/two/three/", "shader.frag"}, Folder);
    QCOMPARE(WaitForChanges(Changed, 2).last(), QStringLiteral("shader.frag:three\n"));
    Run("sed", {"-i", "s/three/four/", "shader.frag"}, Folder);
    QCOMPARE(WaitForChanges(Changed, 3).last(), QStringLiteral("shader.frag:four\n"));
    m_F.Write("other.frag", "five\n");
    Run("mv", {"other.frag", "shader.frag"}, Folder);
    QCOMPARE(WaitForChanges(Changed, 4).last(), QStringLiteral("shader.frag:five\n"));
    Shell("printf 'six\\n' >> shader.frag", Folder);
    QCOMPARE(WaitForChanges(Changed, 5).last(), QStringLiteral("shader.frag:five\nsix\n"));

    // The editor's own save is no change, and after it the file is still watched.
    QVERIFY(WriteDocumentFile(Path, "saved\n").bOk);
    Watcher.Watch(Path, "saved\n"); // the editor tells the watcher its new bytes with its save
    QVERIFY(!Changed.wait(1000));
    Shell("printf 'outside\\n' > shader.frag", Folder);
    QCOMPARE(WaitForChanges(Changed, 6).last(), QStringLiteral("shader.frag:outside\n"));
    Run("sed", {"-i", "s/outside/again/", "shader.frag"}, Folder);
    QCOMPARE(WaitForChanges(Changed, 7).last(), QStringLiteral("shader.frag:again\n"));
    QCOMPARE(Changed.size(), 7);
    QCOMPARE(Deleted.size(), 0);
}

void CDocumentFilesTest::DeletedFilesAreReportedAndWatchedForTheirReturn()
{
    const QString Folder = m_F.pDir->path();
    const QString Path = m_F.Write("shader.frag", "one\n");
    Run("git", {"init", "-q"}, Folder);
    Run("git", {"-c", "user.name=t", "-c", "user.email=t@t", "commit", "-q", "--allow-empty", "-m", "start"}, Folder);
    Run("git", {"add", "shader.frag"}, Folder);
    Run("git", {"-c", "user.name=t", "-c", "user.email=t@t", "commit", "-q", "-m", "one"}, Folder);

    CDocumentWatcher Watcher;
    Watcher.Watch(Path, "one\n");
    QSignalSpy Changed(&Watcher, &CDocumentWatcher::FileChanged);
    QSignalSpy Deleted(&Watcher, &CDocumentWatcher::FileDeleted);

    Run("rm", {"shader.frag"}, Folder);
    QTRY_COMPARE_WITH_TIMEOUT(Deleted.size(), 1, 10000);
    QCOMPARE(Deleted.at(0).at(0).toString(), Path);

    // Brought back as it was: reported, so the editor can tell the document is on disk again.
    Run("git", {"checkout", "--", "shader.frag"}, Folder);
    QCOMPARE(WaitForChanges(Changed, 1), QStringList({"shader.frag:one\n"}));

    // Switching to a commit without the file and back deletes it and writes it anew.
    Run("git", {"checkout", "-q", "HEAD~1"}, Folder);
    QTRY_COMPARE_WITH_TIMEOUT(Deleted.size(), 2, 10000);
    TestFiles::WriteTestFile(Folder, "shader.frag", "other\n");
    QCOMPARE(WaitForChanges(Changed, 2).last(), QStringLiteral("shader.frag:other\n"));
    Shell("printf 'last\\n' > shader.frag", Folder);
    QCOMPARE(WaitForChanges(Changed, 3).last(), QStringLiteral("shader.frag:last\n"));
    QCOMPARE(Deleted.size(), 2);
}

void CDocumentFilesTest::EditorFollowsItsFiles()
{
    const QString Folder = m_F.pDir->path();
    QByteArray Text;
    for (int i = 1; i <= 200; ++i)
        Text += "float line" + QByteArray::number(i) + " = 1.0;\n";
    const QString Path = m_F.Write("shader.frag", Text);
    m_F.pEditor->resize(600, 300);
    m_F.pEditor->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_F.pEditor.get()));
    QVERIFY(m_F.pEditor->OnOpenFile(Path));
    CShaderEditPanel* pPanel = m_F.pEditor->GetCurrentPanel();

    // Unmodified: the new text comes in quietly, the cursor and the view stay where they were.
    QTextCursor Cursor(pPanel->document()->findBlockByNumber(150));
    Cursor.movePosition(QTextCursor::Right, QTextCursor::MoveAnchor, 6);
    pPanel->setTextCursor(Cursor);
    pPanel->verticalScrollBar()->setValue(120);
    Run("sed", {"-i", "s/line3 =/changed =/", "shader.frag"}, Folder);
    QTRY_VERIFY_WITH_TIMEOUT(pPanel->toPlainText().contains("float changed = 1.0;"), 10000);
    QVERIFY(!pPanel->IsModified());
    QCOMPARE(pPanel->textCursor().blockNumber(), 150);
    QCOMPARE(pPanel->textCursor().positionInBlock(), 6);
    QCOMPARE(pPanel->verticalScrollBar()->value(), 120);
    QVERIFY(m_F.Delegate.ReloadAsked.isEmpty());
    pPanel->undo(); // the reload is one step, taken back like any other
    QVERIFY(pPanel->toPlainText().contains("float line3 = 1.0;"));
    QVERIFY(pPanel->IsModified());

    // Modified: the user is asked; keeping the typed text keeps it.
    Run("sed", {"-i", "s/line4 =/other =/", "shader.frag"}, Folder);
    QTRY_COMPARE_WITH_TIMEOUT(m_F.Delegate.ReloadAsked.size(), 1, 10000);
    QCOMPARE(m_F.Delegate.ReloadAsked.at(0), Path);
    QVERIFY(pPanel->toPlainText().contains("float line3 = 1.0;"));
    QVERIFY(pPanel->IsModified());
    m_F.Delegate.bReload = true;
    Run("sed", {"-i", "s/line5 =/third =/", "shader.frag"}, Folder);
    QTRY_COMPARE_WITH_TIMEOUT(m_F.Delegate.ReloadAsked.size(), 2, 10000);
    QCOMPARE(pPanel->toPlainText().toUtf8(), ReadAll(Path));
    QVERIFY(!pPanel->IsModified());

    // Deleted: nothing is lost, the document is marked for saving, and saving brings it back.
    const QString Before = pPanel->toPlainText();
    Run("rm", {"shader.frag"}, Folder);
    QTRY_VERIFY_WITH_TIMEOUT(pPanel->IsModified(), 10000);
    QCOMPARE(pPanel->toPlainText(), Before);
    m_F.pEditor->OnSaveCurrentTab();
    QCOMPARE(ReadAll(Path), Before.toUtf8());
    QVERIFY(!pPanel->IsModified());
    Shell("printf 'void main() {}\\n' > shader.frag", Folder);
    QTRY_COMPARE_WITH_TIMEOUT(pPanel->toPlainText(), QStringLiteral("void main() {}\n"), 10000);
    QCOMPARE(m_F.Delegate.ReloadAsked.size(), 2);
}

QTEST_MAIN(CDocumentFilesTest)
#include "tst_DocumentFiles.moc"
