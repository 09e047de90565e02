// What a start after a crash finds: tabs brought back from backups or from the last session
// are watched like opened files, and the lock files of killed sessions are cleared away
// while a running session's lock stays.

#include "ShaderEditComponent/CDocumentBackups.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "WindowTestSupport.h"

#include <QAbstractButton>
#include <QMessageBox>
#include <QProcess>

using namespace WindowTest;

namespace
{
const char s_pBefore[] = "precision mediump float;\nvoid main() { gl_FragColor = vec4(1.0); }\n";
const char s_pOtherProgram[] = "precision mediump float;\nvoid main() { gl_FragColor = vec4(0.25); }\n";

// The process id each lock file in Folder names (its first line), by file name.
QHash<QString, qint64> LockOwners(const QString& Folder)
{
    QHash<QString, qint64> Owners;
    for (const QString& Name : QDir(Folder).entryList({QStringLiteral("*.lock")}, QDir::Files))
        Owners.insert(Name, ReadAll(Folder + QLatin1Char('/') + Name).split('\n').value(0).toLongLong());
    return Owners;
}
} // namespace

class CCrashRecoveryTest : public CWindowTest
{
    Q_OBJECT

private slots:
    void RestoredTabsNoticeChangesOnDisk();
    void KilledSessionsLoseTheirLocks();

private:
    // An editor started as the user starts it, on the test's own folders; its runtime folder
    // is its own, so no start hands over to another.
    void StartEditor(QProcess& Process, const QString& Name);
    QString BackupFolder() const { return m_Config.filePath(QStringLiteral("state/Brenmoor Systems/ZamShaderEditor")); }
};

void CCrashRecoveryTest::RestoredTabsNoticeChangesOnDisk()
{
    const QString FromBackup = NewFile(QStringLiteral("backed-up.frag"), s_pBefore);
    const QString FromSession = NewFile(QStringLiteral("session.frag"), s_pBefore);
    // What a crashed session left: a backup of typed text, no lock, so its session is over.
    SDocumentBackup Left;
    Left.Path = FromBackup;
    Left.Title = QStringLiteral("backed-up.frag");
    Left.eType = DocType_GLSLESFragment;
    Left.DiskChecksum = DiskChecksumOf(FromBackup);
    Left.Text = QStringLiteral("// typed before the crash\n") + QLatin1String(s_pBefore);
    QDir().mkpath(BackupFolder());
    QVERIFY(WriteAll(BackupFolder() + QStringLiteral("/s1crashed-0.zsbackup"), EncodeBackup(Left)));

    Settings::SGeneral General = m_pGUI->GetGeneralSettings();
    General.bOpenLastTabs = true;
    m_pGUI->SetGeneralSettings(General, Settings::GeneralSetting_OpenLastTabs);
    CZamTArray<CZamTString> Session;
    QCOMPARE(Session.Append(ToZamString(FromSession)), 0);
    m_pGUI->StoreLastOpenTabs(Session);

    auto pWindow = NewWindow(*m_pGUI);
    CDocumentBackups Backups(pWindow->GetEditor());
    const SBackupScan Scan = Backups.FindLeftBackups();
    QCOMPARE(Scan.Backups.size(), 1);
    Backups.Restore(Scan.Backups);
    pWindow->show();
    QVERIFY(QTest::qWaitForWindowExposed(pWindow.get()));
    QCOMPARE(pWindow->GetEditor()->GetTabCount(), 2);
    QCOMPARE(PanelText(*pWindow, 1), Left.Text);
    QVERIFY(pWindow->GetEditor()->GetPanel(1)->IsModified());

    // The session's unmodified tab reads the file again by itself.
    QVERIFY(WriteAll(FromSession, s_pOtherProgram));
    QTRY_COMPARE_WITH_TIMEOUT(PanelText(*pWindow, 0), QString::fromLatin1(s_pOtherProgram), 10000);

    // The restored tab holds typed text, so the user is asked; reading again takes the file.
    auto pAsked = std::make_shared<QString>();
    auto pAnswered = AnswerNextModal(
        [pAsked](QWidget* pModal)
        {
            auto* pBox = qobject_cast<QMessageBox*>(pModal);
            if (!pBox)
                return;
            *pAsked = pBox->detailedText();
            pBox->button(QMessageBox::Yes)->click();
        });
    QVERIFY(WriteAll(FromBackup, s_pOtherProgram));
    QTRY_VERIFY_WITH_TIMEOUT(*pAnswered, 10000);
    QCOMPARE(*pAsked, QDir::toNativeSeparators(FromBackup));
    QTRY_COMPARE(PanelText(*pWindow, 1), QString::fromLatin1(s_pOtherProgram));
    QVERIFY(!pWindow->GetEditor()->GetPanel(1)->IsModified());
    QCOMPARE(ReadAll(FromBackup), QByteArray(s_pOtherProgram));
}

void CCrashRecoveryTest::StartEditor(QProcess& Process, const QString& Name)
{
    const QString Runtime = m_Files.filePath(QStringLiteral("run-") + Name);
    QDir().mkpath(Runtime);
    QFile::setPermissions(Runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QProcessEnvironment Environment = QProcessEnvironment::systemEnvironment();
    Environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), Runtime);
    Environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    Process.setProcessEnvironment(Environment);
    Process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    Process.start(BinDir() + QStringLiteral("/zamshadereditor"), {});
}

void CCrashRecoveryTest::KilledSessionsLoseTheirLocks()
{
    // Two editors that hold their session locks; one is then killed as a crash would end it.
    QProcess Running;
    QProcess Killed;
    StartEditor(Running, QStringLiteral("running"));
    StartEditor(Killed, QStringLiteral("killed"));
    QVERIFY(Running.waitForStarted() && Killed.waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(LockOwners(BackupFolder()).size() == 2, 30000);
    QCOMPARE(QSet<qint64>(LockOwners(BackupFolder()).cbegin(), LockOwners(BackupFolder()).cend()),
             (QSet<qint64>{Running.processId(), Killed.processId()}));
    Killed.kill();
    QVERIFY(Killed.waitForFinished());

    // The next start clears the killed session's lock and keeps the running one's.
    auto pWindow = NewWindow(*m_pGUI);
    {
        CDocumentBackups Backups(pWindow->GetEditor());
        const QHash<QString, qint64> Owners = LockOwners(BackupFolder());
        QCOMPARE(Owners.size(), 2);
        QVERIFY(!QSet<qint64>(Owners.cbegin(), Owners.cend()).contains(Killed.processId()));
        QVERIFY(QSet<qint64>(Owners.cbegin(), Owners.cend()).contains(Running.processId()));
        QVERIFY(QSet<qint64>(Owners.cbegin(), Owners.cend()).contains(QCoreApplication::applicationPid()));
    }
    // A clean end leaves only the running session's lock.
    QCOMPARE(LockOwners(BackupFolder()).values(), QList<qint64>{Running.processId()});
    Running.kill();
    QVERIFY(Running.waitForFinished());
}

QTEST_MAIN(CCrashRecoveryTest)
#include "tst_CrashRecovery.moc"
