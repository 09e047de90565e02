#include "Common/ZamPreferences/ZamPreferences.h"
#include "Common/ZamPreferences/ZamPreferencesPosix_p.h"
#include "tests/support/TestFiles.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <limits>
#include <sys/stat.h>
#include <unistd.h>

using namespace TestFiles;

namespace
{
const QString sLocationLine = QStringLiteral("..\\..\\..\\..\\Common\\ZamPreferences\\ZamPreferences\n");

// Collects what the store reports on its logging category.
class CLogCapture
{
public:
    CLogCapture()
    {
        s_Messages.clear();
        m_pPrevious = qInstallMessageHandler(&CLogCapture::Handle);
    }
    ~CLogCapture() { qInstallMessageHandler(m_pPrevious); }

    static QStringList Messages() { return s_Messages; }
    // The report texts of the messages that start with the location line.
    static QStringList Reports()
    {
        return QStringList(s_Messages.filter(sLocationLine)).replaceInStrings(sLocationLine, "");
    }

private:
    static void Handle(QtMsgType, const QMessageLogContext& Context, const QString& Message)
    {
        if (QByteArray(Context.category) == "zam.preferences")
            s_Messages.append(Message);
    }

    static QStringList s_Messages;
    QtMessageHandler m_pPrevious;
};
QStringList CLogCapture::s_Messages;

int ModeOf(const QString& Path)
{
    struct stat Status;
    return ::stat(QFile::encodeName(Path).constData(), &Status) == 0 ? int(Status.st_mode & 07777) : -1;
}

QByteArray PlistWith(const QByteArray& DictBody)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n" + DictBody
           + "\n</dict>\n</plist>\n";
}

// Writes a part of the file and then fails, like a disk that fills up.
class CFailingWritePosix : public CZamPreferencesPosix
{
public:
    using CZamPreferencesPosix::CZamPreferencesPosix;

protected:
    bool WriteFile(const QByteArray& Bytes) override
    {
        CZamPreferencesPosix::WriteFile(Bytes.left(Bytes.size() / 2));
        return false;
    }
};

// One value of every type, flattened to "type:text" the way the Python check prints them.
const QJsonObject EveryType{
    {"Flags/On", "bool:True"},
    {"Flags/Off", "bool:False"},
    {"Numbers/Min", "int:-9223372036854775808"},
    {"Numbers/Max", "int:9223372036854775807"},
    {"Numbers/Tenth", "real:0.1"},
    {"Numbers/Huge", "real:-1.5e+300"},
    {"Text/Unicode", QString::fromUtf8("Grüße, 世界 \xF0\x9F\x8E\xA8 <&>\"'")},
    {"Text/Empty", ""},
    {"Text/Spaces", "  "},
    {"Text/Lines", "a\r\nb\n"},
    {"Text/Tabs", "\t\t"},
    {"Text/Markup", "</string><key>x</key>]]>&amp;"},
    {"Blob/Empty", "data:"},
    {"Blob/Bytes", "data:AAF/gP7/"},
    {"Lists/Paths", QJsonArray{"/tmp/a.frag", QString::fromUtf8("/home/ü/b.vert"), ""}},
    {"Lists/None", QJsonArray()},
    {"Colours/GLSL:ES/Keyword/Foreground", "int:-3866625"},
};

// "bool", "int", "real", "data", "array" or "string", after the prefix of an EveryType value.
QString KindOf(const QJsonValue& Value)
{
    const QString Prefix = Value.toString().section(':', 0, 0);
    if (Value.isArray())
        return "array";
    return QStringList{"bool", "int", "real", "data"}.contains(Prefix) ? Prefix : "string";
}

// Reads Key with the reader of Kind and prints the value as EveryType does; "default" when
// the reader fell back (two different defaults give two different results).
QJsonValue ReadAs(const CZamPreferences& Store, const QString& Key, const QString& Kind)
{
    const auto Read = [&](int iDefault) -> QJsonValue
    {
        const QString Default = QString::number(iDefault);
        if (Kind == "bool")
            return Store.GetBool(Key, iDefault != 0) ? "bool:True" : "bool:False";
        if (Kind == "int")
            return "int:" + QString::number(Store.GetInteger(Key, iDefault));
        if (Kind == "real")
            return "real:" + QString::number(Store.GetReal(Key, iDefault), 'g', QLocale::FloatingPointShortest);
        if (Kind == "data")
            return "data:" + QString(Store.GetData(Key, Default.toLatin1()).toBase64());
        if (Kind == "array")
            return QJsonArray::fromStringList(Store.GetStringArray(Key, {Default}));
        return Store.GetString(Key, Default);
    };
    return Read(0) == Read(1) ? Read(0) : QJsonValue("default");
}

void FillEveryType(CZamPreferences* pStore)
{
    for (auto it = EveryType.begin(); it != EveryType.end(); ++it)
    {
        const QString Kind = KindOf(*it);
        const QString Value = it->toString().section(':', 1);
        if (Kind == "array")
            pStore->SetStringArray(it.key(), it->toVariant().toStringList());
        else if (Kind == "bool")
            pStore->SetBool(it.key(), Value == "True");
        else if (Kind == "int")
            pStore->SetInteger(it.key(), Value.toLongLong());
        else if (Kind == "real")
            pStore->SetReal(it.key(), Value.toDouble());
        else if (Kind == "data")
            pStore->SetData(it.key(), QByteArray::fromBase64(Value.toLatin1()));
        else
            pStore->SetString(it.key(), it->toString());
    }
}

QJsonObject DescribeEveryType(const CZamPreferences& Store)
{
    QJsonObject Out;
    for (auto it = EveryType.begin(); it != EveryType.end(); ++it)
        Out[it.key()] = ReadAs(Store, it.key(), KindOf(*it));
    return Out;
}
} // namespace

class CZamPreferencesTest : public QObject
{
    Q_OBJECT

private:
    // Whatever was read, what gets written loads without a complaint and writes itself again.
    static void VerifySettles(const QByteArray& Bytes)
    {
        QByteArray Saved;
        {
            CLogCapture Log;
            CZamPreferences Store("Settle");
            Store.LoadFromBytes(Bytes);
            Saved = Store.ToBytes();
        }
        CLogCapture Log;
        CZamPreferences Store("Settle");
        QVERIFY2(Store.LoadFromBytes(Saved), Bytes.constData());
        QVERIFY2(Log.Messages().isEmpty(), qPrintable(Log.Messages().join('|') + "\n" + Bytes));
        QCOMPARE(Store.ToBytes(), Saved);
    }

    QScopedPointer<QTemporaryDir> m_pHome;

    QString StorePath(const QString& Name) const { return m_pHome->path() + "/Brenmoor Systems/" + Name + ".plist"; }

private slots:
    void init()
    {
        m_pHome.reset(new QTemporaryDir);
        QVERIFY(m_pHome->isValid());
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_pHome->path()));
    }

    void NewFileIsCreatedWithTheEmptyDocument()
    {
        const QByteArray Expected = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                    "<!DOCTYPE plist PUBLIC \"-//Apple Computer//DTD PLIST 1.0//EN\" "
                                    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                                    "<plist version=\"1.0\">\n<dict>\n</dict>\n</plist>";
        CLogCapture Log;
        CZamPreferences Store("Fresh");
        QString Tried;
        QVERIFY(Store.Load(&Tried));
        QCOMPARE(Tried, StorePath("Fresh"));
        QCOMPARE(ReadAll(Tried), Expected);
        QVERIFY(Log.Messages().isEmpty());
        // Saving an untouched store writes the same bytes back.
        QVERIFY(Store.Save());
        QCOMPARE(ReadAll(Tried), Expected);
        QVERIFY(!QFile::exists(Tried + ".tmp"));

        qputenv("XDG_CONFIG_DIRS", "relative/ignored:/opt/site-config:/etc/xdg");
        QCOMPARE(CZamPreferences("Shared", CZamPreferences::Scope_AllUsers).GetFilePath(),
                 QString("/opt/site-config/Brenmoor Systems/Shared.plist"));
        qunsetenv("XDG_CONFIG_DIRS");
        QCOMPARE(CZamPreferences("Shared", CZamPreferences::Scope_AllUsers).GetFilePath(),
                 QString("/etc/xdg/Brenmoor Systems/Shared.plist"));
    }

    // What we write reads back the same, here and in Python's plistlib.
    void EveryTypeSurvivesSaveAndLoad()
    {
        {
            CZamPreferences Store("RoundTrip");
            QVERIFY(Store.Load());
            FillEveryType(&Store);
            QVERIFY(Store.Save());
        }
        CLogCapture Log;
        CZamPreferences Store("RoundTrip");
        QVERIFY(Store.Load());
        QVERIFY(Log.Messages().isEmpty());
        QCOMPARE(DescribeEveryType(Store), EveryType);
        // XML 1.0 cannot carry most control characters at all.
        Store.SetString("Text/Control", QString("a\x01"
                                                "b"));
        QVERIFY(Store.LoadFromBytes(Store.ToBytes()));
        QCOMPARE(Store.GetString("Text/Control"), QString::fromUtf8("a\xEF\xBF\xBD"
                                                                    "b"));

        const QString Python = QStandardPaths::findExecutable("python3");
        if (Python.isEmpty())
            QSKIP("python3 is not installed");
        QProcess Process;
        Process.start(Python, {"-c",
                               "import plistlib, sys, json, base64\n"
                               "def conv(o):\n"
                               "    if isinstance(o, list): return [conv(v) for v in o]\n"
                               "    if isinstance(o, bytes): return 'data:' + base64.b64encode(o).decode()\n"
                               "    if isinstance(o, bool): return 'bool:' + str(o)\n"
                               "    if isinstance(o, int): return 'int:' + str(o)\n"
                               "    if isinstance(o, float): return 'real:' + repr(o)\n"
                               "    return o\n"
                               "def flat(d, prefix, out):\n"
                               "    for k, v in d.items():\n"
                               "        if isinstance(v, dict): flat(v, prefix + k + '/', out)\n"
                               "        else: out[prefix + k] = conv(v)\n"
                               "    return out\n"
                               "print(json.dumps(flat(plistlib.load(open(sys.argv[1], 'rb')), '', {})))\n",
                               StorePath("RoundTrip")});
        QVERIFY(Process.waitForFinished(60000));
        QCOMPARE(Process.exitCode(), 0);
        QCOMPARE(QJsonDocument::fromJson(Process.readAllStandardOutput()).object(), EveryType);
    }

    void TypedReadsFallBackToTheDefault_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QJsonValue>("expected");
        QTest::newRow("integer") << QByteArray("<integer> -42 </integer>") << "int" << QJsonValue("int:-42");
        QTest::newRow("integer of real") << QByteArray("<real>1.5</real>") << "int" << QJsonValue("default");
        QTest::newRow("integer overflow")
            << QByteArray("<integer>9223372036854775808</integer>") << "int" << QJsonValue("default");
        QTest::newRow("real") << QByteArray("<real>2.5e3</real>") << "real" << QJsonValue("real:2500");
        QTest::newRow("real of integer") << QByteArray("<integer>3</integer>") << "real" << QJsonValue("default");
        QTest::newRow("bool of string") << QByteArray("<string>true</string>") << "bool" << QJsonValue("default");
        QTest::newRow("string of integer") << QByteArray("<integer>1</integer>") << "string" << QJsonValue("default");
        QTest::newRow("string with entities") << QByteArray("<string>a&lt;b&#x263A;</string>") << "string"
                                              << QJsonValue(QString::fromUtf8("a<b\xE2\x98\xBA"));
        QTest::newRow("data wrapped") << QByteArray("<data>\n\tQUJD\n\tREVG\n</data>") << "data"
                                      << QJsonValue("data:QUJDREVG");
        QTest::newRow("data garbage") << QByteArray("<data>QU*D</data>") << "data" << QJsonValue("default");
        QTest::newRow("array with an integer")
            << QByteArray("<array><string>a</string><integer>1</integer></array>") << "array" << QJsonValue("default");
        QTest::newRow("array of dict") << QByteArray("<dict/>") << "array" << QJsonValue("default");
        QTest::newRow("array") << QByteArray("<array><string>a</string><!-- note --><string/></array>") << "array"
                               << QJsonValue(QJsonArray{"a", ""});
    }

    void TypedReadsFallBackToTheDefault()
    {
        QFETCH(QByteArray, value);
        QFETCH(QString, kind);
        QFETCH(QJsonValue, expected);
        CZamPreferences Store("Typed");
        QVERIFY(Store.LoadFromBytes(PlistWith("<key>Group</key><dict><key>K</key>" + value + "</dict>")));
        QCOMPARE(ReadAs(Store, "Group/K", kind), expected);
        QCOMPARE(Store.HasKey("Group/K"), !value.startsWith("<dict"));
    }

    void KeysAreGroupPaths()
    {
        CZamPreferences Store("Groups");
        const QByteArray Empty = Store.ToBytes();
        Store.SetArgb("Colours/GLSL:ES/Keyword/Foreground", 0xFF0000FF);
        QVERIFY(Store.HasGroup("Colours"));
        QVERIFY(Store.HasGroup("Colours/GLSL:ES/Keyword"));
        QVERIFY(!Store.HasKey("Colours/GLSL:ES/Keyword"));
        QVERIFY(Store.HasKey("Colours/GLSL:ES/Keyword/Foreground"));
        QVERIFY(!Store.HasGroup("Colours/GLSL:ES/Keyword/Foreground"));
        QVERIFY(Store.ToBytes().contains("<key>Colours</key>\n\t<dict>\n\t\t<key>GLSL:ES</key>\n\t\t<dict>\n"
                                         "\t\t\t<key>Keyword</key>\n\t\t\t<dict>\n\t\t\t\t<key>Foreground</key>\n"
                                         "\t\t\t\t<integer>-16776961</integer>"));

        Store.SetString("Colours/GLSL:ES/Keyword/Background", "x");
        Store.SetInteger("Colours/GLSL:ES/Keyword", 3); // a value replaces the group
        QCOMPARE(Store.GetInteger("Colours/GLSL:ES/Keyword", 0), 3);
        QVERIFY(!Store.HasKey("Colours/GLSL:ES/Keyword/Foreground"));
        Store.SetBool("Colours/GLSL:ES/Keyword/Bold", true); // and a group replaces the value
        QVERIFY(Store.HasGroup("Colours/GLSL:ES/Keyword"));
        QCOMPARE(Store.GetBool("Colours/GLSL:ES/Keyword/Bold", false), true);
        QCOMPARE(Store.ToBytes().count("<key>Keyword</key>"), 1);

        Store.Remove("Colours/GLSL:ES");
        QVERIFY(!Store.HasGroup("Colours/GLSL:ES"));
        QVERIFY(Store.HasGroup("Colours"));
        Store.Remove("Colours");
        QCOMPARE(Store.ToBytes(), Empty);

        QString Deepest = "k";
        for (int i = 1; i < CZamPreferences::iMaxKeySegments; ++i)
            Deepest += "/k";
        for (const QString& Bad : {QString(), QString("/a"), QString("a//b"), QString("a/"), Deepest + "/k"})
        {
            Store.SetInteger(Bad, 1);
            QCOMPARE(Store.GetInteger(Bad, 5), 5);
        }
        QCOMPARE(Store.ToBytes(), Empty);
        Store.SetInteger(Deepest, 1);
        CZamPreferences Copy("Groups");
        QVERIFY(Copy.LoadFromBytes(Store.ToBytes()));
        QCOMPARE(Copy.GetInteger(Deepest, 5), 1);
    }

    void DamagedDocumentsAreRepaired_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("report");
        QTest::addColumn<bool>("keepsGood");
        const QByteArray Good = "<key>Good</key><integer>7</integer>";
        const QByteArray Valid = PlistWith(Good);
        QTest::newRow("no declaration") << QByteArray("<plist version=\"1.0\"><dict>" + Good + "</dict></plist>")
                                        << "^WARNING: No declaration found at the start\\. The declaration will be "
                                           "recreated\\.\\n$"
                                        << true;
        QTest::newRow("no plist") << QByteArray("<?xml version=\"1.0\"?><dict>" + Good + "</dict><junk/>")
                                  << "^WARNING: No root <plist> tag found\\. Tag will be recreated\\.\\n$" << true;
        QTest::newRow("no dict") << QByteArray("<?xml version=\"1.0\"?><plist version=\"1.0\"><array/></plist>")
                                 << "^WARNING: No <dict> tag found\\. Tag will be recreated\\.\\n$" << false;
        QTest::newRow("key without value")
            << PlistWith("<key>Broken</key>\n" + Good) << "^ERROR: Key missing value on line: 4\\n$" << true;
        QTest::newRow("key without value at end")
            << PlistWith(Good + "\n\n<key>Broken</key>") << "^ERROR: Key missing value on line: 6\\n$" << true;
        QTest::newRow("value without key")
            << PlistWith("<string>Broken</string>" + Good) << "^ERROR: Missing <key> tag on line: 4\\n$" << true;
        QTest::newRow("key inside array")
            << PlistWith("<key>Broken</key><array>\n<key>x</key><integer>1</integer></array>" + Good)
            << "^ERROR: Array elements cannot contain a <key> tag! Line: 5\\n$" << true;
        QTest::newRow("truncated") << Valid.left(Valid.size() - 12) << "^\\[\\d+:\\d+\\]: \\S.*$" << false;
        QTest::newRow("not xml") << QByteArray("{ \"Good\": 7 }") << "^\\[\\d+:\\d+\\]: \\S" << false;
        QTest::newRow("not utf-8") << PlistWith("<key>Broken</key><string>caf\xE9\xFF</string>" + Good)
                                   << "^WARNING: The file is not valid UTF-8" << true;
        QTest::newRow("ends in a lead byte") << PlistWith(Good).left(Valid.size() - 9) + "\xC3"
                                             << "^WARNING: The file is not valid UTF-8" << false;
        QTest::newRow("40000 nested elements")
            << PlistWith("<key>Broken</key>" + QByteArray("<array>").repeated(40000) + "</array>" + Good)
            << "^ERROR: Elements are nested deeper than 64 levels" << false;
        QByteArray Attributes;
        for (int i = 0; i < 20000; ++i)
            Attributes += " a" + QByteArray::number(i) + "=\"\"";
        QTest::newRow("20000 attributes") << PlistWith("<key>Broken</key><true" + Attributes + "/>" + Good)
                                          << "^ERROR: A tag holds more than 64 attributes" << false;
        QTest::newRow("a million tags") << PlistWith("<key>Broken</key><array>"
                                                     + QByteArray("<true/>").repeated(1000 * 1000) + "</array>" + Good)
                                        << "^ERROR: The document holds more than 1000000 tags" << false;
    }

    void DamagedDocumentsAreRepaired()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, report);
        QFETCH(bool, keepsGood);
        QVERIFY(WriteAll(StorePath("Damaged"), bytes));
        {
            CLogCapture Log;
            CZamPreferences Store("Damaged");
            Store.Load();
            QVERIFY2(!Log.Reports().filter(QRegularExpression(report)).isEmpty(), qPrintable(Log.Messages().join('|')));
            QCOMPARE(Store.GetInteger("Good", -1), keepsGood ? 7 : -1);
            QCOMPARE(Store.GetInteger("Broken", -1), -1);
            QVERIFY(Store.Save());
        }
        CLogCapture Log;
        CZamPreferences Store("Damaged");
        QVERIFY(Store.Load());
        QCOMPARE(Log.Messages(), QStringList());
        QCOMPARE(Store.GetInteger("Good", -1), keepsGood ? 7 : -1);
    }

    void UnreadableFileIsSetAsideOnSave_data()
    {
        QTest::addColumn<QByteArray>("bytes"); // empty: a FIFO
        QTest::addColumn<QString>("report");   // what the load logs, once; empty: not checked
        QTest::newRow("unparsable") << QByteArray("<plist><dict><key>Tabs</key><string>unterminated") << "";
        QTest::newRow("too large") << PlistWith("<key>Blob</key><data>" + QByteArray(50 * 1024 * 1024, 'A') + "</data>")
                                   << "larger than";
        QTest::newRow("FIFO") << QByteArray() << "";
    }

    void UnreadableFileIsSetAsideOnSave()
    {
        // Loading leaves the file alone (a FIFO is refused at once rather than read for ever); the
        // first save renames it with a time stamp before the fresh one is written, and the user
        // hears of it once.
        QFETCH(QByteArray, bytes);
        QFETCH(QString, report);
        const QString Path = StorePath("Unreadable");
        QVERIFY(WriteAll(Path, bytes));
        if (bytes.isEmpty())
            QVERIFY(QFile::remove(Path) && ::mkfifo(QFile::encodeName(Path).constData(), 0600) == 0);
        QList<SPreferencesNotice> Heard;
        {
            CLogCapture Log;
            CZamPreferences Store("Unreadable");
            QString Error;
            QVERIFY(!Store.Load(nullptr, &Error));
            QVERIFY(!Error.isEmpty());
            QVERIFY(!Store.GetLoadProblem().isEmpty());
            if (!report.isEmpty())
                QCOMPARE(Log.Reports().filter(report).size(), 1);
            if (!bytes.isEmpty())
            {
                QCOMPARE(ReadAll(Path), bytes);
                QVERIFY(!Store.LoadFromBytes(bytes));
            }
            Store.SetNoticeHandler([&Heard](const SPreferencesNotice& Notice) { Heard.append(Notice); });
            Store.SetInteger("Fresh", 1);
            QVERIFY(Store.Save());
            Store.SetInteger("Fresh", 2);
            QVERIFY(Store.Save());
        }
        QCOMPARE(Heard.size(), 1);
        QCOMPARE(Heard.first().eKind, SPreferencesNotice::Kind_SetAside);
        QCOMPARE(Heard.first().FilePath, Path);
        QVERIFY2(QFileInfo(Heard.first().AsidePath)
                     .fileName()
                     .contains(QRegularExpression("^Unreadable\\.plist\\.unreadable-\\d{8}-\\d{6}$")),
                 qPrintable(Heard.first().AsidePath));
        QVERIFY(Heard.first().Text.contains(Heard.first().AsidePath));
        if (!bytes.isEmpty())
            QCOMPARE(ReadAll(Heard.first().AsidePath), bytes);
        CZamPreferences Fresh("Unreadable");
        QVERIFY(Fresh.Load());
        QVERIFY(QFileInfo(Path).isFile());
        QCOMPARE(Fresh.GetInteger("Fresh", 0), 2);
        QVERIFY(Fresh.GetLoadProblem().isEmpty());
    }

    void SaveWritesThroughLinks()
    {
        // A linked file (dot-files kept in a repository) is written through the link, with the
        // temporary beside the target, and keeps its permission bits.
        const QString Repository = m_pHome->path() + "/dotfiles";
        QVERIFY(QDir().mkpath(Repository));
        const QString Target = Repository + "/Linked.plist";
        QVERIFY(WriteAll(Target, PlistWith("<key>Old</key><integer>1</integer>")));
        QVERIFY(QFile::setPermissions(Target, QFile::ReadOwner | QFile::WriteOwner));
        QVERIFY(QDir().mkpath(QFileInfo(StorePath("Linked")).path()));
        QVERIFY(QFile::link("../dotfiles/Linked.plist", StorePath("Linked")));
        {
            CZamPreferences Store("Linked");
            QVERIFY(Store.Load());
            QCOMPARE(Store.GetInteger("Old", 0), 1);
            Store.SetInteger("New", 2);
            QVERIFY(Store.Save());
            QVERIFY(Store.TakeNotices().isEmpty());
        }
        QVERIFY(QFileInfo(StorePath("Linked")).isSymLink());
        QCOMPARE(QFileInfo(StorePath("Linked")).symLinkTarget(), Target);
        QVERIFY(ReadAll(Target).contains("<key>New</key>"));
        QCOMPARE(ModeOf(Target), 0600);
        QVERIFY(!QFile::exists(Target + ".tmp"));
        QVERIFY(!QFile::exists(StorePath("Linked") + ".tmp"));

        // A link whose target does not exist yet gets the target created, and stays a link.
        const QString Later = Repository + "/Later.plist";
        QVERIFY(QFile::link(Later, StorePath("Dangling")));
        {
            CZamPreferences Store("Dangling");
            QVERIFY(Store.Load());
            Store.SetString("Key", "value");
            QVERIFY(Store.Save());
        }
        QVERIFY(QFileInfo(StorePath("Dangling")).isSymLink());
        QVERIFY(ReadAll(Later).contains("<string>value</string>"));
    }

    void SaveLeavesAReadOnlyFileAlone()
    {
        // Every save says why, the notice comes once.
        const QString ReadOnly = StorePath("Locked");
        const QByteArray Kept = PlistWith("<key>Mine</key><integer>7</integer>");
        QVERIFY(WriteAll(ReadOnly, Kept));
        QVERIFY(QFile::setPermissions(ReadOnly, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
        {
            CLogCapture Log;
            CZamPreferences Store("Locked");
            QVERIFY(Store.Load());
            Store.SetInteger("Mine", 8);
            QString Error;
            QVERIFY(!Store.Save(&Error));
            QVERIFY2(Error.contains("read-only") && Error.contains(ReadOnly), qPrintable(Error));
            QVERIFY(!Store.Save(&Error));
            const QList<SPreferencesNotice> Notices = Store.TakeNotices();
            QCOMPARE(Notices.size(), 1);
            QCOMPARE(Notices.first().eKind, SPreferencesNotice::Kind_ReadOnly);
            QCOMPARE(Notices.first().Text, Error);
        }
        QCOMPARE(ReadAll(ReadOnly), Kept);
        QCOMPARE(ModeOf(ReadOnly), 0444);
        QVERIFY(!QFile::exists(ReadOnly + ".tmp"));
    }

    void MemoryStoreNeverTouchesTheDisk()
    {
        const std::unique_ptr<CZamPreferences> pMade = CZamPreferences::MakeInMemory();
        QVERIFY(pMade->Load());
        pMade->SetInteger("Editor/TabSpaceSize", 3);
        QVERIFY(pMade->Save());
        QCOMPARE(pMade->GetInteger("Editor/TabSpaceSize", 0), 3);
        QVERIFY(pMade->GetFilePath().isEmpty());
        QVERIFY(QDir(m_pHome->path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries).isEmpty());
    }

    void ReadOnlyStoreReadsButNeverWrites()
    {
        // A missing file is neither created by a load nor by a save.
        {
            const std::unique_ptr<CZamPreferences> pStore = CZamPreferences::MakeReadOnly("Absent");
            QCOMPARE(pStore->GetFilePath(), StorePath("Absent"));
            pStore->Load();
            pStore->SetInteger("Editor/TabSpaceSize", 2);
            QVERIFY(pStore->Save());
            QVERIFY(!QFile::exists(StorePath("Absent")));
        }
        // An existing file is read like the editor reads it and stays byte for byte.
        const QByteArray Kept = PlistWith("<key>Editor</key><dict><key>TabSpaceSize</key><integer>7</integer></dict>");
        QVERIFY(WriteAll(StorePath("Kept"), Kept));
        const std::unique_ptr<CZamPreferences> pStore = CZamPreferences::MakeReadOnly("Kept");
        QVERIFY(pStore->Load());
        QCOMPARE(pStore->GetInteger("Editor/TabSpaceSize", 0), 7);
        pStore->SetInteger("Editor/TabSpaceSize", 2);
        QVERIFY(pStore->Save());
        QCOMPARE(pStore->GetInteger("Editor/TabSpaceSize", 0), 2);
        QCOMPARE(ReadAll(StorePath("Kept")), Kept);
        QCOMPARE(QDir(QFileInfo(StorePath("Kept")).path()).entryList(QDir::Files), QStringList{"Kept.plist"});
    }

    void FailedSaveLeavesTheOldFile()
    {
        const QString Path = StorePath("Keep");
        {
            CZamPreferences Store("Keep");
            Store.SetString("Old", "value");
            QVERIFY(Store.Save());
        }
        const QByteArray Before = ReadAll(Path);
        {
            CLogCapture Log;
            CZamPreferences Store(std::make_unique<CFailingWritePosix>("Keep", CZamPreferences::Scope_User));
            QVERIFY(Store.Load());
            Store.SetString("Old", QString(1000, 'x'));
            QString Error;
            QVERIFY(!Store.Save(&Error));
            QCOMPARE(Error, QString("ERROR: Failed to open filed, or write temporary file!"));
            QCOMPARE(Log.Messages(), QStringList(sLocationLine + Error));
        }
        QCOMPARE(ReadAll(Path), Before);
        QVERIFY(!QFile::exists(Path + ".tmp"));

        // A link left where the temporary goes is replaced, never written through.
        const QString Victim = m_pHome->path() + "/victim";
        QVERIFY(WriteAll(Victim, "untouched"));
        QVERIFY(QFile::link(Victim, Path + ".tmp"));
        CZamPreferences Store("Keep");
        QVERIFY(Store.Load());
        QVERIFY(Store.Save());
        QCOMPARE(ReadAll(Victim), QByteArray("untouched"));
        QCOMPARE(ReadAll(Path), Before);

        if (::geteuid() == 0)
            QSKIP("permissions do not bind root");
        QFile::setPermissions(QFileInfo(Path).path(), QFile::ReadOwner | QFile::ExeOwner);
        Store.SetString("Old", "new");
        const bool bSaved = Store.Save();
        QFile::setPermissions(QFileInfo(Path).path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QVERIFY(!bSaved);
        QCOMPARE(ReadAll(Path), Before);
    }

    void DocumentsSettleAfterOneSave()
    {
        for (const QByteArray& Odd : {PlistWith("<key>a</key><plist>x\n<dict>y</dict>\nz</plist>"),
                                      PlistWith("<key>a</key><date>2024<b/>-01</date><key>b</key><foo>  </foo>"),
                                      PlistWith("junk<key>a</key>more<true/><![CDATA[ ]]>"),
                                      QByteArray("<!--c--><?xml version=\"1.0\"?><?xml version=\"2\"?><plist/>")})
        {
            VerifySettles(Odd);
            if (QTest::currentTestFailed())
                return;
        }
        // Random edits of a document with every type.
        CZamPreferences Source("Mutate");
        FillEveryType(&Source);
        const QByteArray Original = Source.ToBytes();
        QRandomGenerator Random(20240611);
        const char acInteresting[] = "<>/=\"'&!-?[]\n \xC3\xEF";
        for (int iRound = 0; iRound < 3000; ++iRound)
        {
            QByteArray Bytes = Original;
            const int iEdits = 1 + Random.bounded(4);
            for (int i = 0; i < iEdits; ++i)
            {
                const int iAt = Random.bounded(Bytes.size());
                switch (Random.bounded(3))
                {
                case 0:
                    Bytes.remove(iAt, 1 + Random.bounded(20));
                    break;
                case 1:
                    Bytes.insert(iAt, acInteresting[Random.bounded(int(sizeof(acInteresting)) - 1)]);
                    break;
                default:
                    Bytes.insert(iAt, Bytes.mid(Random.bounded(Bytes.size()), Random.bounded(40)));
                    break;
                }
            }
            VerifySettles(Bytes);
            if (QTest::currentTestFailed())
                return;
        }
    }
};

QTEST_GUILESS_MAIN(CZamPreferencesTest)
#include "tst_ZamPreferences.moc"
