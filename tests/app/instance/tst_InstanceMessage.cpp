#include "app/instance/InstanceLocation_p.h"
#include "app/instance/InstanceMessage.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

class CInstanceMessageTest : public QObject
{
    Q_OBJECT

private slots:
    void Decoding();
    void PrivateFolders();
    void PeerUser();
};

void CInstanceMessageTest::Decoding()
{
    const QByteArray Cyrillic = QStringLiteral("/home/anna/шейдеры/свет.frag").toUtf8();
    QCOMPARE(DecodeInstanceMessage(Cyrillic).Text, QStringLiteral("/home/anna/шейдеры/свет.frag"));
    QCOMPARE(DecodeInstanceMessage("raisebanana").Text, QStringLiteral("raisebanana"));

    // A byte-order mark is part of the name, not dropped.
    QCOMPARE(DecodeInstanceMessage("\xEF\xBB\xBF/tmp/a.frag").Text, QString(QChar(0xFEFF)) + QStringLiteral("/tmp/a.frag"));

    const QByteArray Longest(MaxInstanceMessageBytes, 'a');
    const SInstanceMessage Taken = DecodeInstanceMessage(Longest);
    QVERIFY(Taken.Error.isEmpty());
    QCOMPARE(Taken.Text.size(), MaxInstanceMessageBytes);

    const QList<QPair<QByteArray, QString>> Refused = {
        {QByteArray(), "without a message"},
        {Longest + 'a', "longer than 65536 bytes"},
        {QByteArray("/tmp/a\0b.frag", 13), "NUL"},
        {"/tmp/\xFF\xFE.frag", "not valid UTF-8"},
        {"/tmp/\xC0\xAF.frag", "not valid UTF-8"},       // overlong '/'
        {"/tmp/\xED\xA0\x80.frag", "not valid UTF-8"},   // an encoded surrogate
        {"/tmp/a.frag\xE2\x82", "not valid UTF-8"},      // cut inside a character
    };
    for (const auto& Case : Refused)
    {
        const SInstanceMessage Refusal = DecodeInstanceMessage(Case.first);
        QVERIFY2(Refusal.Error.contains(Case.second), qPrintable(Case.first.toPercentEncoding() + ": " + Refusal.Error));
        QCOMPARE(Refusal.Text, QString());
    }
}

void CInstanceMessageTest::PrivateFolders()
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

void CInstanceMessageTest::PeerUser()
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

QTEST_GUILESS_MAIN(CInstanceMessageTest)
#include "tst_InstanceMessage.moc"
