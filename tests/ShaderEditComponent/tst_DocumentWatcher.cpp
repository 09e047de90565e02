#include "FakeEditorDelegate.h"
#include "ShaderEditComponent/CShaderEditor.h"
#include "ShaderEditComponent/CShaderEditPanel.h"
#include "ShaderEditComponent/DocumentFile.h"
#include "ShaderEditComponent/DocumentWatcher.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"
#include "tests/support/TestFiles.h"

#include <QProcess>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

// Files are changed by real programs the way users' tools change them: a shell redirection
// writes in place, sed -i and mv rename another file over it, rm deletes it, git checkout
// writes it anew. A change that must not be reported is followed by one that must, and only
// the second may arrive.
class CDocumentWatcherTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void ChangesByOtherProgramsAreReported();
    void OnlyNewBytesOfWatchedFilesAreReported();
    void DeletedFilesAreReportedAndWatchedForTheirReturn();
    void EditorFollowsItsFiles();

private:
    static void Run(const QString& Program, const QStringList& Arguments, const QString& Folder);
    static void Shell(const QString& Command, const QString& Folder) { Run("sh", {"-c", Command}, Folder); }
    // The changes reported so far, as "file name:bytes", once the iCount-th has come.
    static QStringList WaitForChanges(QSignalSpy& Spy, int iCount);

    std::unique_ptr<QTemporaryDir> m_pFolder;
    QString m_Path;
};

void CDocumentWatcherTest::init()
{
    m_pFolder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_pFolder->isValid());
    m_Path = TestFiles::WriteTestFile(m_pFolder->path(), "shader.frag", "one\n");
}

void CDocumentWatcherTest::Run(const QString& Program, const QStringList& Arguments, const QString& Folder)
{
    QProcess Process;
    Process.setWorkingDirectory(Folder);
    Process.start(Program, Arguments);
    QVERIFY2(Process.waitForFinished(10000), qPrintable(Program));
    QVERIFY2(Process.exitStatus() == QProcess::NormalExit && Process.exitCode() == 0,
             qPrintable(Program + ": " + Process.readAllStandardError()));
}

QStringList CDocumentWatcherTest::WaitForChanges(QSignalSpy& Spy, int iCount)
{
    // Whatever came: a missing change shows in the caller's comparison.
    static_cast<void>(QTest::qWaitFor([&Spy, iCount] { return Spy.size() >= iCount; }, 10000));
    QStringList Changes;
    for (const QList<QVariant>& Arguments : Spy)
        Changes << QFileInfo(Arguments.at(0).toString()).fileName() + ":" + Arguments.at(1).toByteArray();
    return Changes;
}

void CDocumentWatcherTest::ChangesByOtherProgramsAreReported()
{
    CDocumentWatcher Watcher;
    Watcher.Watch(m_Path, "one\n");
    QSignalSpy Changed(&Watcher, &CDocumentWatcher::FileChanged);
    const QString Folder = m_pFolder->path();

    Shell("printf 'two\\n' > shader.frag", Folder);
    QCOMPARE(WaitForChanges(Changed, 1), QStringList({"shader.frag:two\n"}));

    // sed -i writes a new file and renames it over the old one; the watch must survive it,
    // twice in a row.
    Run("sed", {"-i", "s/two/three/", "shader.frag"}, Folder);
    QCOMPARE(WaitForChanges(Changed, 2).last(), QStringLiteral("shader.frag:three\n"));
    Run("sed", {"-i", "s/three/four/", "shader.frag"}, Folder);
    QCOMPARE(WaitForChanges(Changed, 3).last(), QStringLiteral("shader.frag:four\n"));

    TestFiles::WriteTestFile(Folder, "other.frag", "five\n");
    Run("mv", {"other.frag", "shader.frag"}, Folder);
    QCOMPARE(WaitForChanges(Changed, 4).last(), QStringLiteral("shader.frag:five\n"));
    Shell("printf 'six\\n' >> shader.frag", Folder);
    QCOMPARE(WaitForChanges(Changed, 5).last(), QStringLiteral("shader.frag:five\nsix\n"));
    QCOMPARE(Changed.size(), 5);
}

// Touching, writing the same bytes, the editor's own save and a file no longer watched in the
// same folder are no changes.
void CDocumentWatcherTest::OnlyNewBytesOfWatchedFilesAreReported()
{
    const QString Folder = m_pFolder->path();
    const QString Other = TestFiles::WriteTestFile(Folder, "other.frag", "a\n");
    CDocumentWatcher Watcher;
    Watcher.Watch(m_Path, "one\n");
    Watcher.Watch(Other, "a\n");
    Watcher.Unwatch(Other);
    QVERIFY(!Watcher.IsWatching(Other));
    QSignalSpy Changed(&Watcher, &CDocumentWatcher::FileChanged);
    QSignalSpy Deleted(&Watcher, &CDocumentWatcher::FileDeleted);

    Run("touch", {"shader.frag"}, Folder);
    Run("sed", {"-i", "s/one/one/", "shader.frag"}, Folder);
    Shell("printf 'b\\n' > other.frag; rm other.frag", Folder);
    QVERIFY(WriteDocumentFile(m_Path, "saved\n").bOk);
    Watcher.Watch(m_Path, "saved\n"); // the editor tells the watcher its new bytes with its save
    Shell("printf 'outside\\n' > shader.frag", Folder);
    QCOMPARE(WaitForChanges(Changed, 1), QStringList({"shader.frag:outside\n"}));

    // And after the save it is still watched.
    Run("sed", {"-i", "s/outside/again/", "shader.frag"}, Folder);
    QCOMPARE(WaitForChanges(Changed, 2).last(), QStringLiteral("shader.frag:again\n"));
    QCOMPARE(Changed.size(), 2);
    QCOMPARE(Deleted.size(), 0);
}

void CDocumentWatcherTest::DeletedFilesAreReportedAndWatchedForTheirReturn()
{
    const QString Folder = m_pFolder->path();
    Run("git", {"init", "-q"}, Folder);
    Run("git", {"-c", "user.name=t", "-c", "user.email=t@t", "commit", "-q", "--allow-empty", "-m", "start"}, Folder);
    Run("git", {"add", "shader.frag"}, Folder);
    Run("git", {"-c", "user.name=t", "-c", "user.email=t@t", "commit", "-q", "-m", "one"}, Folder);

    CDocumentWatcher Watcher;
    Watcher.Watch(m_Path, "one\n");
    QSignalSpy Changed(&Watcher, &CDocumentWatcher::FileChanged);
    QSignalSpy Deleted(&Watcher, &CDocumentWatcher::FileDeleted);

    Run("rm", {"shader.frag"}, Folder);
    QTRY_COMPARE_WITH_TIMEOUT(Deleted.size(), 1, 10000);
    QCOMPARE(Deleted.at(0).at(0).toString(), m_Path);

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

void CDocumentWatcherTest::EditorFollowsItsFiles()
{
    const QString Folder = m_pFolder->path();
    QByteArray Text;
    for (int i = 1; i <= 200; ++i)
        Text += "float line" + QByteArray::number(i) + " = 1.0;\n";
    TestFiles::WriteTestFile(Folder, "shader.frag", Text);
    CShaderHighlightController Highlight;
    CShaderEditor Editor(&Highlight);
    CFakeEditorDelegate Delegate;
    Editor.SetDelegate(&Delegate);
    Editor.resize(600, 300);
    Editor.show();
    QVERIFY(QTest::qWaitForWindowExposed(&Editor));
    QVERIFY(Editor.OnOpenFile(m_Path));
    CShaderEditPanel* pPanel = Editor.GetCurrentPanel();

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
    QVERIFY(Delegate.ReloadAsked.isEmpty());
    pPanel->undo(); // the reload is one step, taken back like any other
    QVERIFY(pPanel->toPlainText().contains("float line3 = 1.0;"));
    QVERIFY(pPanel->IsModified());

    // Modified: the user is asked; keeping the typed text keeps it.
    Run("sed", {"-i", "s/line4 =/other =/", "shader.frag"}, Folder);
    QTRY_COMPARE_WITH_TIMEOUT(Delegate.ReloadAsked.size(), 1, 10000);
    QCOMPARE(Delegate.ReloadAsked.at(0), m_Path);
    QVERIFY(pPanel->toPlainText().contains("float line3 = 1.0;"));
    QVERIFY(pPanel->IsModified());
    Delegate.bReload = true;
    Run("sed", {"-i", "s/line5 =/third =/", "shader.frag"}, Folder);
    QTRY_COMPARE_WITH_TIMEOUT(Delegate.ReloadAsked.size(), 2, 10000);
    QCOMPARE(pPanel->toPlainText().toUtf8(), TestFiles::ReadAll(m_Path));
    QVERIFY(!pPanel->IsModified());

    // Deleted: nothing is lost, the document is marked for saving, and saving brings it back.
    const QString Before = pPanel->toPlainText();
    Run("rm", {"shader.frag"}, Folder);
    QTRY_VERIFY_WITH_TIMEOUT(pPanel->IsModified(), 10000);
    QCOMPARE(pPanel->toPlainText(), Before);
    Editor.OnSaveCurrentTab();
    QCOMPARE(TestFiles::ReadAll(m_Path), Before.toUtf8());
    QVERIFY(!pPanel->IsModified());
    Shell("printf 'void main() {}\\n' > shader.frag", Folder);
    QTRY_COMPARE_WITH_TIMEOUT(pPanel->toPlainText(), QStringLiteral("void main() {}\n"), 10000);
    QCOMPARE(Delegate.ReloadAsked.size(), 2);
}

QTEST_MAIN(CDocumentWatcherTest)
#include "tst_DocumentWatcher.moc"
