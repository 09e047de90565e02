#include "Tools/ZamTResourceFile.h"

#include <QtTest>

#include <cstdlib>
#include <cstring>

#include <sys/stat.h>

namespace
{
QByteArray Contents(const CZamTResourceFile& File)
{
    return QByteArray(static_cast<const char*>(File.GetData()), qsizetype(File.GetSize()));
}

CZamTString g_LastPath;

int FixedLoad(const char* pPath, void** ppData, size_t* puiSize)
{
    g_LastPath = pPath;
    *ppData = std::malloc(3);
    std::memcpy(*ppData, "fix", 3);
    *puiSize = 3;
    return 0;
}

int FailingLoad(const char* pPath, void**, size_t*)
{
    g_LastPath = pPath;
    return 1;
}
} // namespace

class CZamTResourceFileTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QVERIFY(m_Dir.isValid());
        CZamTResourceFile::SetReadPath((m_Dir.path() + "/").toLocal8Bit().constData());
    }

    void cleanup()
    {
        CZamTResourceFile::SetReadPath("");
        CZamTResourceFile::SetLoadFunction(nullptr);
        for (const char* pName : {"mem.txt", "both.txt", "adir", "empty.txt", "owned"})
            CZamTResourceFile::UnregisterMemoryFile(pName);
    }

    void DiskAndTable()
    {
        WriteFile("disk.txt", QByteArray("hello\0world", 11));
        static const char s_Table[] = "from table";
        static const char s_Both[] = "table copy";
        QCOMPARE(CZamTResourceFile::RegisterMemoryFile("mem.txt", s_Table, 10, false), 0);
        QCOMPARE(CZamTResourceFile::RegisterMemoryFile("both.txt", s_Both, 10, false), 0);
        WriteFile("both.txt", "disk copy");

        const CZamTResourceFile Disk("disk.txt");
        QVERIFY(Disk.IsOpen());
        QCOMPARE(Contents(Disk), QByteArray("hello\0world", 11));
        QCOMPARE(static_cast<const char*>(Disk.GetData())[11], '\0');

        const CZamTResourceFile Table("mem.txt");
        QVERIFY(Table.IsOpen());
        QVERIFY(Table.GetData() == s_Table);
        QCOMPARE(Table.GetSize(), size_t(10));

        QCOMPARE(Contents(CZamTResourceFile("both.txt")), QByteArray("disk copy"));
        QVERIFY(!CZamTResourceFile("MEM.TXT").IsOpen());

        const CZamTResourceFile Missing("missing.txt");
        QVERIFY(!Missing.IsOpen());
        QCOMPARE(Missing.GetSize(), size_t(0));
        QVERIFY(!Missing.GetData());
        QVERIFY(!CZamTResourceFile(nullptr).IsOpen());

        // The read path is a plain prefix: with none, an absolute name reaches the disk.
        CZamTResourceFile::SetReadPath("");
        QVERIFY(!CZamTResourceFile("disk.txt").IsOpen());
        QCOMPARE(Contents(CZamTResourceFile(m_Dir.filePath("disk.txt").toLocal8Bit().constData())),
                 QByteArray("hello\0world", 11));
    }

    void RefusedFiles()
    {
        QVERIFY(QDir(m_Dir.path()).mkdir("adir"));
        WriteFile("empty.txt", QByteArray());
        WriteFile("five.txt", "12345");
        QVERIFY(mkfifo(m_Dir.filePath("fifo").toLocal8Bit().constData(), 0600) == 0);

        QVERIFY(!CZamTResourceFile("adir").IsOpen());
        QVERIFY(!CZamTResourceFile("empty.txt").IsOpen());
        QVERIFY(!CZamTResourceFile("fifo").IsOpen());

        // A name the disk refuses still reaches the table.
        static const char s_Dir[] = "dir entry";
        static const char s_Empty[] = "was empty";
        QCOMPARE(CZamTResourceFile::RegisterMemoryFile("adir", s_Dir, 9, false), 0);
        QCOMPARE(CZamTResourceFile::RegisterMemoryFile("empty.txt", s_Empty, 9, false), 0);
        QCOMPARE(Contents(CZamTResourceFile("adir")), QByteArray("dir entry"));
        QCOMPARE(Contents(CZamTResourceFile("empty.txt")), QByteArray("was empty"));

        const size_t uiOldMax = CZamTResourceFile::GetMaxFileSize();
        CZamTResourceFile::SetMaxFileSize(4);
        QVERIFY(!CZamTResourceFile("five.txt").IsOpen());
        CZamTResourceFile::SetMaxFileSize(5);
        QVERIFY(CZamTResourceFile("five.txt").IsOpen());
        CZamTResourceFile::SetMaxFileSize(uiOldMax);
    }

    void Registration()
    {
        static const char s_Data[] = "data";
        QCOMPARE(CZamTResourceFile::RegisterMemoryFile("mem.txt", s_Data, 4, false), 0);
        QCOMPARE(CZamTResourceFile::RegisterMemoryFile("mem.txt", s_Data, 4, false), 1);
        QCOMPARE(CZamTResourceFile::RegisterMemoryFile(nullptr, s_Data, 4, false), 1);
        QCOMPARE(CZamTResourceFile::RegisterMemoryFile("null.txt", nullptr, 4, false), 1);
        QCOMPARE(CZamTResourceFile::RegisterMemoryFile("zero.txt", s_Data, 0, false), 1);
        QCOMPARE(CZamTResourceFile::UnregisterMemoryFile("mem.txt"), 0);
        QCOMPARE(CZamTResourceFile::UnregisterMemoryFile("mem.txt"), 1);
        QVERIFY(!CZamTResourceFile("mem.txt").IsOpen());

        // Owned data is freed on unregistration; the leak checker of a sanitizer build sees it.
        for (int i = 0; i < 2; ++i)
        {
            char* pOwned = static_cast<char*>(std::malloc(6));
            std::memcpy(pOwned, "owned!", 6);
            QCOMPARE(CZamTResourceFile::RegisterMemoryFile("owned", pOwned, 6, true), 0);
            QCOMPARE(Contents(CZamTResourceFile("owned")), QByteArray("owned!"));
            QCOMPARE(CZamTResourceFile::UnregisterMemoryFile("owned"), 0);
        }
        // Left registered on purpose: the table releases it at program end.
        char* pAtExit = static_cast<char*>(std::malloc(4));
        std::memcpy(pAtExit, "exit", 4);
        QCOMPARE(CZamTResourceFile::RegisterMemoryFile("released at exit", pAtExit, 4, true), 0);
    }

    void LoadFunction()
    {
        QVERIFY(CZamTResourceFile::GetLoadFunction() == &CZamTResourceFile::DefaultLoad);
        CZamTResourceFile::SetReadPath("prefix/");
        CZamTResourceFile::SetLoadFunction(&FixedLoad);
        QCOMPARE(Contents(CZamTResourceFile("name")), QByteArray("fix"));
        QVERIFY(g_LastPath == "prefix/name");

        static const char s_Table[] = "table";
        QCOMPARE(CZamTResourceFile::RegisterMemoryFile("mem.txt", s_Table, 5, false), 0);
        CZamTResourceFile::SetLoadFunction(&FailingLoad);
        QCOMPARE(Contents(CZamTResourceFile("mem.txt")), QByteArray("table"));
        QVERIFY(g_LastPath == "prefix/mem.txt");

        CZamTResourceFile::SetLoadFunction(nullptr);
        QVERIFY(CZamTResourceFile::GetLoadFunction() == &CZamTResourceFile::DefaultLoad);
    }

private:
    void WriteFile(const char* pName, const QByteArray& Data)
    {
        QFile File(m_Dir.filePath(pName));
        QVERIFY(File.open(QIODevice::WriteOnly));
        QCOMPARE(File.write(Data), Data.size());
    }

    QTemporaryDir m_Dir;
};

QTEST_APPLESS_MAIN(CZamTResourceFileTest)
#include "tst_ZamTResourceFile.moc"
