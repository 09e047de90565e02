#include "FakeEditorDelegate.h"
#include "ShaderEditComponent/compile/model/MetaTypes.h"
#include "ShaderEditComponent/CShaderEditor.h"
#include "ShaderEditComponent/CShaderEditPanel.h"
#include "ShaderEditComponent/DocumentFile.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"
#include "tests/support/TestFiles.h"

#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <memory>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

// Opening and saving through the editor, with the inputs and failures that real disks produce.
class CDocumentFilesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void BadInputOpens_data();
    void BadInputOpens();
    void OpenedBytesSaveBackUnchanged_data();
    void OpenedBytesSaveBackUnchanged();
    void TypedTextIsNeverDropped();
    void UnreadableFile();

    void SaveFailures_data();
    void SaveFailures();
    void ReadOnlyFolder();
    void FullDiskLeavesTheFileAlone();

private:
    void ExpectSaveFailure(const QString& Path, const QString& ErrorStart);

    std::unique_ptr<CShaderHighlightController> m_pHighlight;
    std::unique_ptr<CShaderEditor> m_pEditor;
    std::unique_ptr<QTemporaryDir> m_pDir;
    CFakeEditorDelegate m_Delegate;
};

void CDocumentFilesTest::initTestCase()
{
    RegisterCompileMetaTypes();
    m_pHighlight = std::make_unique<CShaderHighlightController>();
}

void CDocumentFilesTest::init()
{
    m_Delegate = CFakeEditorDelegate();
    m_pDir = std::make_unique<QTemporaryDir>();
    m_pEditor = std::make_unique<CShaderEditor>(m_pHighlight.get());
    m_pEditor->SetDelegate(&m_Delegate);
}

void CDocumentFilesTest::cleanup()
{
    m_pEditor.reset();
    QFile::setPermissions(m_pDir->path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
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
}

void CDocumentFilesTest::BadInputOpens()
{
    QFETCH(QString, Kind);
    QFETCH(QString, Error);
    QString Path = Kind.startsWith(QLatin1Char('/')) ? Kind : m_pDir->filePath(Kind);
    if (Kind == QLatin1String("binary"))
        TestFiles::WriteTestFile(m_pDir->path(), Kind,
                                 QByteArray("\x7F"
                                            "ELF\0\0\x01\xFF\xFE\r\n\0zz",
                                            14));
    else if (Kind == QLatin1String("latin1"))
        TestFiles::WriteTestFile(m_pDir->path(), Kind, "vec4 caf\xE9 = vec4(1.0);\n");
    else if (Kind == QLatin1String("huge"))
    {
        QFile Huge(Path);
        QVERIFY(Huge.open(QIODevice::WriteOnly));
        QVERIFY(Huge.resize(300ll * 1024 * 1024)); // sparse: costs no disk
    }
    else if (Kind == QLatin1String("large"))
        TestFiles::WriteTestFile(
            m_pDir->path(), Kind,
            QByteArray("float f = 1.0; // a line of a large generated table\n").repeated(400 * 1024));
    else if (Kind == QLatin1String("directory"))
        QVERIFY(QDir(m_pDir->path()).mkdir(Kind));
    else if (Kind == QLatin1String("fifo"))
        QCOMPARE(mkfifo(QFile::encodeName(Path).constData(), 0600), 0);

    const bool bOpened = m_pEditor->OnOpenFile(Path);
    QCOMPARE(bOpened, Error.isEmpty());
    QCOMPARE(m_pEditor->GetTabCount(), bOpened ? 1 : 0);
    if (bOpened)
    {
        QVERIFY(m_Delegate.Errors.isEmpty());
        QVERIFY(!m_pEditor->GetCurrentPanel()->IsModified());
        return;
    }
    QCOMPARE(m_Delegate.ErrorPaths, QStringList{Path});
    QCOMPARE(m_Delegate.Errors, QStringList{Error.arg(Path)});
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
    const QString Path = TestFiles::WriteTestFile(m_pDir->path(), QStringLiteral("doc.txt"), Bytes);
    QVERIFY(m_pEditor->OnOpenFile(Path));
    QCOMPARE(m_pEditor->GetCurrentPanel()->toPlainText(), Text);
    QFile::remove(Path);
    m_pEditor->OnSaveCurrentTab();
    QCOMPARE(TestFiles::ReadAll(Path), Bytes);
}

void CDocumentFilesTest::TypedTextIsNeverDropped()
{
    // Mixed line ends are written in the style most lines used.
    const QString Mixed = TestFiles::WriteTestFile(m_pDir->path(), QStringLiteral("mixed.vsh"), "a\r\nb\r\nc\nd");
    QVERIFY(m_pEditor->OnOpenFile(Mixed));
    m_pEditor->OnSaveCurrentTab();
    QCOMPARE(TestFiles::ReadAll(Mixed), QByteArray("a\r\nb\r\nc\r\nd"));

    // A Latin-1 document that gains a character Latin-1 cannot hold is saved as UTF-8.
    const QString Latin1 = TestFiles::WriteTestFile(m_pDir->path(), QStringLiteral("latin1.txt"), "caf\xE9");
    QVERIFY(m_pEditor->OnOpenFile(Latin1));
    m_pEditor->GetCurrentPanel()->moveCursor(QTextCursor::End);
    m_pEditor->GetCurrentPanel()->insertPlainText(QString::fromUtf8(" \xE2\x82\xAC"));
    m_pEditor->OnSaveCurrentTab();
    QCOMPARE(QString::fromUtf8(TestFiles::ReadAll(Latin1)), QString::fromUtf8("café €"));
}

void CDocumentFilesTest::UnreadableFile()
{
    if (geteuid() == 0)
        QSKIP("root reads every file");
    const QString Path = TestFiles::WriteTestFile(m_pDir->path(), QStringLiteral("secret.vsh"), "x");
    QVERIFY(QFile::setPermissions(Path, QFileDevice::WriteOwner));
    QVERIFY(!m_pEditor->OnOpenFile(Path));
    QCOMPARE(m_Delegate.Errors,
             QStringList{QStringLiteral("Failed to open file: %1\nReason: Permission denied").arg(Path)});
}

void CDocumentFilesTest::ExpectSaveFailure(const QString& Path, const QString& ErrorStart)
{
    QCOMPARE(m_Delegate.ErrorPaths, QStringList{Path});
    QVERIFY2(m_Delegate.Errors.value(0).startsWith(ErrorStart), qPrintable(m_Delegate.Errors.value(0)));
    QVERIFY(m_pEditor->GetCurrentPanel()->IsModified());
    QCOMPARE(m_pEditor->GetTabCount(), 1);
}

void CDocumentFilesTest::SaveFailures_data()
{
    QTest::addColumn<QString>("Case");
    QTest::newRow("folder deleted") << "vanished";
    // Root may write anywhere, but not below a regular file: a folder nobody can write to.
    QTest::newRow("folder is a file") << "below a file";
}

void CDocumentFilesTest::SaveFailures()
{
    QFETCH(QString, Case);
    QString Target;
    if (Case == QLatin1String("vanished"))
    {
        QVERIFY(QDir(m_pDir->path()).mkdir(QStringLiteral("gone")));
        Target = TestFiles::WriteTestFile(m_pDir->path(), QStringLiteral("gone/a.vsh"), "old");
        QVERIFY(m_pEditor->OnOpenFile(Target));
        QVERIFY(QDir(m_pDir->filePath(QStringLiteral("gone"))).removeRecursively());
    }
    else
    {
        TestFiles::WriteTestFile(m_pDir->path(), QStringLiteral("plain"), "file");
        Target = m_pDir->filePath(QStringLiteral("plain/a.vsh"));
        m_pEditor->OnNewFile(DocType_GLSLESVertex);
        m_Delegate.SavePath = Target;
    }
    m_pEditor->GetCurrentPanel()->insertPlainText(QStringLiteral("typed"));
    if (Case == QLatin1String("vanished"))
        m_pEditor->OnSaveCurrentTab();
    else
        QVERIFY(!m_pEditor->OnSaveAllTabs());
    ExpectSaveFailure(Target, QStringLiteral("Failed to save file: %1\nReason: ").arg(Target));
    QVERIFY(m_pEditor->GetCurrentPanel()->GetFilename().IsEmpty() == (Case != QLatin1String("vanished")));
}

void CDocumentFilesTest::ReadOnlyFolder()
{
    if (geteuid() == 0)
        QSKIP("root writes into read-only folders; SaveFailures covers a folder nobody can write to");
    const QString Path = TestFiles::WriteTestFile(m_pDir->path(), QStringLiteral("ro.vsh"), "old");
    QVERIFY(m_pEditor->OnOpenFile(Path));
    QVERIFY(QFile::setPermissions(m_pDir->path(), QFile::ReadOwner | QFile::ExeOwner));
    m_pEditor->GetCurrentPanel()->insertPlainText(QStringLiteral("typed"));
    m_pEditor->OnSaveCurrentTab();
    ExpectSaveFailure(Path, QStringLiteral("Failed to save file: %1\nReason: ").arg(Path));
    QCOMPARE(TestFiles::ReadAll(Path), QByteArray("old"));
}

void CDocumentFilesTest::FullDiskLeavesTheFileAlone()
{
    // A file-size limit makes the write fail half way, as a full disk does.
    const QString Path = TestFiles::WriteTestFile(m_pDir->path(), QStringLiteral("full.vsh"), "old contents");
    QVERIFY(m_pEditor->OnOpenFile(Path));
    m_pEditor->GetCurrentPanel()->insertPlainText(QString(64 * 1024, QLatin1Char('x')));

    rlimit Saved{};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &Saved), 0);
    rlimit Small = Saved;
    Small.rlim_cur = 4096;
    const auto pPreviousHandler = std::signal(SIGXFSZ, SIG_IGN);
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &Small), 0);
    m_pEditor->OnSaveCurrentTab();
    setrlimit(RLIMIT_FSIZE, &Saved);
    std::signal(SIGXFSZ, pPreviousHandler);

    ExpectSaveFailure(Path, QStringLiteral("Error while writing file:") + Path);
    QCOMPARE(m_Delegate.Errors.value(0), QStringLiteral("Error while writing file:") + Path);
    QCOMPARE(TestFiles::ReadAll(Path), QByteArray("old contents"));
    QCOMPARE(QDir(m_pDir->path()).entryList(QDir::Files), QStringList{QStringLiteral("full.vsh")});

    // Once there is room again the same document saves.
    m_Delegate.Errors.clear();
    m_pEditor->OnSaveCurrentTab();
    QVERIFY(m_Delegate.Errors.isEmpty());
    QCOMPARE(TestFiles::ReadAll(Path).size(), 64 * 1024 + 12);
}

QTEST_MAIN(CDocumentFilesTest)
#include "tst_DocumentFiles.moc"
