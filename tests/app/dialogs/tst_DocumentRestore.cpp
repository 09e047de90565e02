#include "app/dialogs/DocumentRestore.h"
#include "ShaderEditComponent/compile/model/MetaTypes.h"
#include "ShaderEditComponent/CShaderEditor.h"
#include "ShaderEditComponent/CShaderEditPanel.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"
#include "tests/support/TestFiles.h"

#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

// The question after a crash: what it says about each document and what each answer does.
class CDocumentRestoreTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void TheQuestionNamesEachDocument();
    void EachAnswerDoesWhatItSays();

private:
    // Leaves the backups of a session that typed into a.vsh and a new document, then ended
    // without closing them.
    void LeaveBackups();
    void Answer(const QString& Button);

    std::unique_ptr<CShaderHighlightController> m_pHighlight;
    QTemporaryDir m_Dir;
    QString m_Folder;
};

void CDocumentRestoreTest::initTestCase()
{
    RegisterCompileMetaTypes();
    m_pHighlight = std::make_unique<CShaderHighlightController>();
    m_Folder = m_Dir.filePath(QStringLiteral("backups"));
}

void CDocumentRestoreTest::LeaveBackups()
{
    const QString Path = TestFiles::WriteTestFile(m_Dir.path(), QStringLiteral("a.vsh"), "old\n");
    CShaderEditor Editor(m_pHighlight.get());
    CDocumentBackups Backups(&Editor, m_Folder);
    Backups.SetDelay(0);
    QVERIFY(Editor.OnOpenFile(Path));
    Editor.GetCurrentPanel()->insertPlainText(QStringLiteral("typed "));
    Editor.OnNewFile(DocType_GLSLESFragment);
    Editor.GetCurrentPanel()->insertPlainText(QStringLiteral("void main() {}"));
    QTRY_COMPARE(QDir(m_Folder).entryList({QStringLiteral("*.zsbackup")}).size(), 2);
    Backups.Flush();
}

void CDocumentRestoreTest::Answer(const QString& Button)
{
    QTimer::singleShot(0, this,
                       [Button]
                       {
                           auto* pBox = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                           QVERIFY(pBox && pBox->objectName() == QLatin1String("RestoreQuestion"));
                           for (QAbstractButton* pButton : pBox->buttons())
                           {
                               if (pButton->text() == Button)
                                   pButton->click();
                           }
                       });
}

void CDocumentRestoreTest::TheQuestionNamesEachDocument()
{
    SBackupScan Scan;
    SLeftBackup Changed;
    Changed.Backup.Path = m_Dir.filePath(QStringLiteral("a.vsh"));
    Changed.Backup.Title = QStringLiteral("a.vsh");
    Changed.bDiskChanged = true;
    TestFiles::WriteTestFile(m_Dir.path(), QStringLiteral("a.vsh"), "x");
    SLeftBackup Gone = Changed;
    Gone.Backup.Path = m_Dir.filePath(QStringLiteral("gone.vsh"));
    Gone.Backup.Title = QStringLiteral("gone.vsh");
    SLeftBackup Unsaved;
    Unsaved.Backup.Title = QStringLiteral("New File (3)");
    Scan.Backups << Changed << Gone << Unsaved;
    Scan.Damaged << SDamagedBackup{QStringLiteral("/b/s1-0.zsbackup"), QStringLiteral("/b/damaged/s1-0.zsbackup"),
                                   QStringLiteral("unknown document type")};

    const SRestoreQuestion Question = DescribeLeftBackups(Scan);
    QVERIFY(Question.Text.contains(QLatin1String("did not close properly")));
    const QStringList Lines = Question.Details.split(QLatin1Char('\n'));
    QCOMPARE(Lines.value(0),
             QStringLiteral("a.vsh \u2014 %1 (the file on disk has changed since)").arg(Changed.Backup.Path));
    QCOMPARE(Lines.value(1), QStringLiteral("gone.vsh \u2014 %1 (the file no longer exists)").arg(Gone.Backup.Path));
    QCOMPARE(Lines.value(2), QStringLiteral("New File (3) (never saved)"));
    QCOMPARE(Lines.last(), QStringLiteral("/b/damaged/s1-0.zsbackup: unknown document type"));

    QVERIFY(DescribeLeftBackups(SBackupScan()).Text.isEmpty());
    Scan.Backups.clear();
    QCOMPARE(DescribeLeftBackups(Scan).Text, QStringLiteral("Some document backups could not be read."));
}

void CDocumentRestoreTest::EachAnswerDoesWhatItSays()
{
    LeaveBackups();
    CShaderEditor Editor(m_pHighlight.get());
    CDocumentBackups Backups(&Editor, m_Folder);

    // Later: nothing opens and the backups wait for the next start.
    Answer(QStringLiteral("Ask Again Next Time"));
    OfferDocumentRestore(nullptr, Backups);
    QCOMPARE(Editor.GetTabCount(), 0);
    QCOMPARE(Backups.FindLeftBackups().Backups.size(), 2);

    Answer(QStringLiteral("Restore"));
    OfferDocumentRestore(nullptr, Backups);
    QCOMPARE(Editor.GetTabCount(), 2);
    QCOMPARE(Editor.GetPanel(0)->toPlainText(), QStringLiteral("typed old\n"));
    QCOMPARE(Editor.DocumentTitle(1), QStringLiteral("New File"));
    QVERIFY(Editor.GetPanel(1)->IsModified());

    // A second crash and Discard: the backups go, nothing opens.
    LeaveBackups();
    CShaderEditor Third(m_pHighlight.get());
    CDocumentBackups ThirdBackups(&Third, m_Folder);
    Answer(QStringLiteral("Discard"));
    OfferDocumentRestore(nullptr, ThirdBackups);
    QCOMPARE(Third.GetTabCount(), 0);
    QVERIFY(ThirdBackups.FindLeftBackups().Backups.isEmpty());
}

QTEST_MAIN(CDocumentRestoreTest)
#include "tst_DocumentRestore.moc"
