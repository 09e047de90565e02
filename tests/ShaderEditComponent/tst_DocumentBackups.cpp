#include "FakeEditorDelegate.h"
#include "ShaderEditComponent/AtomicFile_p.h"
#include "ShaderEditComponent/CDocumentBackups.h"
#include "ShaderEditComponent/compile/model/MetaTypes.h"
#include "ShaderEditComponent/CShaderEditor.h"
#include "ShaderEditComponent/CShaderEditPanel.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"
#include "tests/support/TestFiles.h"

#include <QCryptographicHash>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <sys/stat.h>
#include <unistd.h>

// Backups of modified documents: their format, when they are written and removed, and how
// the documents of a session that ended without closing come back.
class CDocumentBackupsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void FormatRoundTripsAndRefusesDamage();
    void BackupsFollowTheDocument();
    void LeftBackupsComeBack();
    void AtomicWritesLeaveNoStrayFile();

private:
    std::unique_ptr<CShaderEditor> NewEditor();
    QStringList BackupFiles() const;

    std::unique_ptr<CShaderHighlightController> m_pHighlight;
    std::unique_ptr<QTemporaryDir> m_pDir;
    QString m_Folder;
    CFakeEditorDelegate m_Delegate;
};

void CDocumentBackupsTest::initTestCase()
{
    RegisterCompileMetaTypes();
    m_pHighlight = std::make_unique<CShaderHighlightController>();
}

void CDocumentBackupsTest::init()
{
    m_Delegate = CFakeEditorDelegate();
    m_pDir = std::make_unique<QTemporaryDir>();
    m_Folder = m_pDir->filePath(QStringLiteral("state/Brenmoor Systems/ZamShaderEditor"));
}

std::unique_ptr<CShaderEditor> CDocumentBackupsTest::NewEditor()
{
    auto pEditor = std::make_unique<CShaderEditor>(m_pHighlight.get());
    pEditor->SetDelegate(&m_Delegate);
    return pEditor;
}

QStringList CDocumentBackupsTest::BackupFiles() const
{
    return QDir(m_Folder).entryList({QStringLiteral("*.zsbackup")}, QDir::Files);
}

void CDocumentBackupsTest::FormatRoundTripsAndRefusesDamage()
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

void CDocumentBackupsTest::BackupsFollowTheDocument()
{
    const QString Path = TestFiles::WriteTestFile(m_pDir->path(), QStringLiteral("lit.fsh"), "void main() {}\n");
    std::unique_ptr<CShaderEditor> pEditor = NewEditor();
    CDocumentBackups Backups(pEditor.get(), m_Folder);
    Backups.SetDelay(20);
    QVERIFY2(Backups.GetError().isEmpty(), qPrintable(Backups.GetError()));
    struct stat Status
    {
    };
    QCOMPARE(::stat(QFile::encodeName(m_Folder).constData(), &Status), 0);
    QCOMPARE(Status.st_mode & 0777, 0700u);

    QVERIFY(pEditor->OnOpenFile(Path));
    QTest::qWait(60);
    QVERIFY2(BackupFiles().isEmpty(), "an unmodified document needs no backup");
    pEditor->GetCurrentPanel()->insertPlainText(QStringLiteral("// typed\n"));
    QTRY_COMPARE(BackupFiles().size(), 1);
    Backups.Flush();
    const QString File = m_Folder + QLatin1Char('/') + BackupFiles().at(0);
    QCOMPARE(QFileInfo(File).permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
    const SBackupDecodeResult Read = DecodeBackup(TestFiles::ReadAll(File));
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
    m_Delegate.eAnswer = QMessageBox::Discard;
    pEditor->OnCloseCurrentTab();
    Backups.Flush();
    QCOMPARE(BackupFiles(), QStringList());
}

void CDocumentBackupsTest::LeftBackupsComeBack()
{
    const QString Path = TestFiles::WriteTestFile(m_pDir->path(), QStringLiteral("a.vsh"), "old\n");
    const QString Gone = TestFiles::WriteTestFile(m_pDir->path(), QStringLiteral("b.vsh"), "b\n");
    std::unique_ptr<CShaderEditor> pFirst = NewEditor();
    auto pFirstBackups = std::make_unique<CDocumentBackups>(pFirst.get(), m_Folder);
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
    std::unique_ptr<CShaderEditor> pSecond = NewEditor();
    auto pSecondBackups = std::make_unique<CDocumentBackups>(pSecond.get(), m_Folder);
    QVERIFY(pSecondBackups->FindLeftBackups().Backups.isEmpty());

    // The first session ends without closing its tabs, as in a crash; meanwhile one file
    // changes on disk, another goes, and a stranger's file lands in the folder.
    pFirstBackups.reset();
    pFirst.reset();
    QVERIFY(TestFiles::WriteAll(Path, "changed elsewhere\n"));
    QVERIFY(QFile::remove(Gone));
    QVERIFY(TestFiles::WriteAll(m_Folder + QStringLiteral("/s1-0.zsbackup"), "garbage"));
    const SBackupScan Scan = pSecondBackups->FindLeftBackups();
    QCOMPARE(Scan.Backups.size(), 3);
    QCOMPARE(Scan.Damaged.size(), 1);
    QCOMPARE(Scan.Damaged.at(0).KeptAs, m_Folder + QStringLiteral("/damaged/s1-0.zsbackup"));
    QCOMPARE(TestFiles::ReadAll(Scan.Damaged.at(0).KeptAs), QByteArray("garbage"));
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
    QCOMPARE(TestFiles::ReadAll(Path), QByteArray("changed elsewhere\n"));
    // The backups now belong to the restored tabs: another crash still finds them.
    pSecondBackups->Flush();
    QCOMPARE(BackupFiles().size(), 3);
    pSecondBackups.reset();
    std::unique_ptr<CShaderEditor> pThird = NewEditor();
    CDocumentBackups ThirdBackups(pThird.get(), m_Folder);
    const SBackupScan Again = ThirdBackups.FindLeftBackups();
    QCOMPARE(Again.Backups.size(), 3);
    ThirdBackups.Discard(Again.Backups);
    QCOMPARE(BackupFiles(), QStringList());
}

void CDocumentBackupsTest::AtomicWritesLeaveNoStrayFile()
{
    const QString Path = TestFiles::WriteTestFile(m_pDir->path(), QStringLiteral("doc.frag"), "old");
    QVERIFY(QFile::setPermissions(Path, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup));
    // One stray of a process long gone, one of a process that runs (init), one not ours.
    const QString Dead = TestFiles::WriteTestFile(m_pDir->path(), QStringLiteral(".doc.frag.zs999999999-x.tmp"), "o");
    const QString Live = TestFiles::WriteTestFile(m_pDir->path(), QStringLiteral(".doc.frag.zs1-x.tmp"), "o");
    const QString Other = TestFiles::WriteTestFile(m_pDir->path(), QStringLiteral(".doc.frag.swp"), "o");

    const SAtomicWriteResult Written = WriteFileAtomically(Path, "new");
    QVERIFY2(Written.bOk, qPrintable(Written.Reason));
    QCOMPARE(TestFiles::ReadAll(Path), QByteArray("new"));
    struct stat Status
    {
    };
    QCOMPARE(::stat(QFile::encodeName(Path).constData(), &Status), 0);
    QCOMPARE(Status.st_mode & 0777, 0640u);
    QVERIFY(!QFileInfo::exists(Dead));
    QVERIFY(QFileInfo::exists(Live));
    QVERIFY(QFileInfo::exists(Other));

    // A link is written through: it stays a link and its target gets the bytes.
    const QString Link = m_pDir->filePath(QStringLiteral("link.frag"));
    QVERIFY(QFile::link(Path, Link));
    QVERIFY(WriteFileAtomically(Link, "through").bOk);
    QVERIFY(QFileInfo(Link).isSymLink());
    QCOMPARE(TestFiles::ReadAll(Path), QByteArray("through"));
    QCOMPARE(QDir(m_pDir->path()).entryList(QDir::Files | QDir::Hidden).size(), 4);
}

QTEST_MAIN(CDocumentBackupsTest)
#include "tst_DocumentBackups.moc"
