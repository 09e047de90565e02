#include "Tools/ZamTArray.h"
#include "Tools/ZamTHash.h"
#include "Tools/ZamTSkipGraph_p.h"
#include "Tools/ZamTString.h"

#include <QtTest>

#include <cstring>
#include <map>

namespace
{
// Assignable but not copy-constructible: the array must only ever assign elements.
struct SAssignOnly
{
    SAssignOnly() = default;
    SAssignOnly(const SAssignOnly&) = delete;
    SAssignOnly& operator=(const SAssignOnly&) = default;
    int iValue = 0;
};

struct SHuge
{
    char Bytes[1 << 20];
};

struct SCounted
{
    static int s_iDeleted;
    explicit SCounted(int iId)
        : iId(iId)
    {
    }
    ~SCounted() { ++s_iDeleted; }
    int iId;
};
int SCounted::s_iDeleted = 0;

QByteArray Bytes(const CZamTString& String)
{
    return QByteArray(String.GetString(), int(String.GetLength()));
}

CZamTArray<int> Ints(std::initializer_list<int> Values)
{
    CZamTArray<int> Array;
    for (int i : Values)
        Array.Append(i);
    return Array;
}
} // namespace

// The failed-allocation test needs a null from operator new under AddressSanitizer too;
// unused in other builds.
extern "C" const char* __asan_default_options()
{
    return "allocator_may_return_null=1";
}

class CZamToolsTest : public QObject
{
    Q_OBJECT

private slots:
    void Hash_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<uint>("expected");
        QTest::newRow("empty") << QByteArray() << 0u;
        QTest::newRow("zero byte") << QByteArray(1, '\0') << 0x050C5D1Fu;
        // Multiply-then-xor: the xor-first variant gives 0xE40C292C for "a".
        QTest::newRow("a") << QByteArray("a") << 0x050C5D7Eu;
        QTest::newRow("foobar") << QByteArray("foobar") << 0x31F0B262u;
        QTest::newRow("collision 1") << QByteArray("kb6e8a25") << 0x049A8433u;
        QTest::newRow("collision 2") << QByteArray("i67snlp7") << 0x049A8433u;
    }

    void Hash()
    {
        QFETCH(QByteArray, data);
        QFETCH(uint, expected);
        QCOMPARE(CZamTHash(data.constData(), 1, size_t(data.size())).GetValue(), expected);
        const CZamTString String(data.constData(), uint32_t(data.size()));
        QCOMPARE(CZamTHash(String).GetValue(), expected);
        if (!data.contains('\0'))
            QCOMPARE(CZamTHash(data.constData()).GetValue(), expected);
    }

    void HashEquality()
    {
        QCOMPARE(CZamTHash().GetValue(), 0u);
        QCOMPARE(CZamTHash(static_cast<const char*>(nullptr)).GetValue(), 0u);
        // Non-zero count of zero-sized elements hashes no bytes but is not "empty".
        QCOMPARE(CZamTHash("xyz", 0, 3).GetValue(), 0x811C9DC5u);
        // The bytes of all elements, in order.
        const uint16_t Words[2] = {0x6261, 0x6463};
        QCOMPARE(CZamTHash(Words, 2, 2), CZamTHash(reinterpret_cast<const char*>(Words), 1, 4));

        QVERIFY(CZamTHash("kb6e8a25") == CZamTHash("i67snlp7"));
        QVERIFY(CZamTHash("a") != CZamTHash("b"));
        // As a map key, colliding names are one key.
        const std::map<CZamTHash, int> Map{
            {CZamTHash("a"), 1}, {CZamTHash("b"), 2}, {CZamTHash("kb6e8a25"), 3}, {CZamTHash("i67snlp7"), 4}};
        QCOMPARE(Map.size(), size_t(3));
    }

    void StringSubString_data()
    {
        QTest::addColumn<uint>("start");
        QTest::addColumn<uint>("length");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("inside") << 1u << 3u << QByteArray("ell");
        QTest::newRow("clipped") << 1u << 100u << QByteArray("ello");
        QTest::newRow("max length") << 2u << 0xFFFFFFFFu << QByteArray("llo");
        QTest::newRow("at end") << 5u << 1u << QByteArray();
        QTest::newRow("past end") << 9u << 2u << QByteArray();
        QTest::newRow("zero length") << 0u << 0u << QByteArray();
    }

    void StringSubString()
    {
        QFETCH(uint, start);
        QFETCH(uint, length);
        QFETCH(QByteArray, expected);
        const CZamTString Sub = CZamTString("hello").SubString(start, length);
        QCOMPARE(Bytes(Sub), expected);
        QCOMPARE(Sub.GetString()[Sub.GetLength()], '\0');
    }

    void StringReplace_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("from");
        QTest::addColumn<QByteArray>("to");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("grow") << QByteArray("a-a-a") << QByteArray("a") << QByteArray("bcd")
                              << QByteArray("bcd-bcd-bcd");
        QTest::newRow("shrink") << QByteArray("abcabcx") << QByteArray("bc") << QByteArray() << QByteArray("aax");
        QTest::newRow("non-overlapping") << QByteArray("aaaaa") << QByteArray("aa") << QByteArray("b")
                                         << QByteArray("bba");
        QTest::newRow("no rescan of output")
            << QByteArray("ab") << QByteArray("a") << QByteArray("aa") << QByteArray("aab");
        QTest::newRow("absent") << QByteArray("hello") << QByteArray("xyz") << QByteArray("q") << QByteArray("hello");
        QTest::newRow("empty from") << QByteArray("hello") << QByteArray() << QByteArray("q") << QByteArray("hello");
        QTest::newRow("whole") << QByteArray("ab") << QByteArray("ab") << QByteArray() << QByteArray();
    }

    void StringReplace()
    {
        QFETCH(QByteArray, text);
        QFETCH(QByteArray, from);
        QFETCH(QByteArray, to);
        QFETCH(QByteArray, expected);
        CZamTString String(text.constData());
        QCOMPARE(String.Replace(from.constData(), to.constData()), 0);
        QCOMPARE(Bytes(String), expected);
        QCOMPARE(String.GetString()[String.GetLength()], '\0');
    }

    void StringEditing()
    {
        CZamTString String;
        QVERIFY(String.IsEmpty());
        QVERIFY(String.GetString() != nullptr);
        QByteArray Expected;
        for (int i = 0; i < 200; ++i)
        {
            QCOMPARE(String.Append("xy"), 0);
            Expected += "xy";
        }
        QCOMPARE(Bytes(String), Expected);

        // Pieces of the string itself, across a reallocation.
        String = "abc";
        String += String;
        QCOMPARE(Bytes(String), QByteArray("abcabc"));
        QCOMPARE(String.Append(String.GetString() + 4), 0);
        QCOMPARE(Bytes(String), QByteArray("abcabcbc"));
        String = String.GetString() + 3;
        QCOMPARE(Bytes(String), QByteArray("abcbc"));
        QCOMPARE(String.Replace("b", String.GetString()), 0);
        QCOMPARE(Bytes(String), QByteArray("aabcbccabcbcc"));

        QCOMPARE(String.Find("bc"), 2);
        QCOMPARE(String.Find("bc", 3), 4);
        QCOMPARE(String.Find("zz"), -1);
        QCOMPARE(String.Find("", 13), 13);
        QCOMPARE(String.Find("a", 14), -1);

        CZamTString Moved(std::move(String));
        QCOMPARE(Bytes(Moved), QByteArray("aabcbccabcbcc"));
        QVERIFY(String.IsEmpty());
        QCOMPARE(String.GetString(), "");
        String = "again";
        QVERIFY(String == "again");
        String.Clear();
        QVERIFY(String == "");
    }

    void StringFormat()
    {
        CZamTString String("old");
        const QByteArray Long(5000, 'q');
        QCOMPARE(String.format("%s|%d|%05.1f|%s", Long.constData(), -42, 2.5, "end"), 0);
        QCOMPARE(Bytes(String), Long + "|-42|002.5|end");

        // The old contents may be an argument.
        String = "ab";
        QCOMPARE(String.format("[%s%s]", String.GetString(), String.GetString()), 0);
        QCOMPARE(Bytes(String), QByteArray("[abab]"));
        QCOMPARE(String.format("%s", ""), 0);
        QVERIFY(String == "");
    }

    void StringComparison()
    {
        const CZamTString WithNul("ab\0c", 4);
        QCOMPARE(WithNul.GetLength(), 4u);
        QVERIFY(WithNul != "ab");
        QVERIFY(WithNul != "ab\0c");
        QVERIFY(WithNul == CZamTString("ab\0c", 4));
        QVERIFY(WithNul != CZamTString("ab\0d", 4));
        QVERIFY(CZamTString("ab") == "ab");
        QVERIFY(CZamTString("ab") != "abc");
        QVERIFY(CZamTString("abc") != "ab");
        QVERIFY("ab" == CZamTString("ab"));
        QVERIFY(CZamTString() == static_cast<const char*>(nullptr));

        QVERIFY(CZamTString("ab") < CZamTString("abc"));
        QVERIFY(!(CZamTString("abc") < CZamTString("ab")));
        QVERIFY(CZamTString("z") < CZamTString("\xff"));
        QVERIFY(!(CZamTString("ab") < CZamTString("ab")));
    }

    void ArrayGrowth()
    {
        CZamTArray<int> Array;
        QCOMPARE(Array.GetCapacity(), 16u);
        for (uint32_t ui = 0; ui < 16; ++ui)
            QCOMPARE(Array.GetData()[ui], 0);
        for (int i = 0; i < 16; ++i)
            QCOMPARE(Array.Append(i), 0);
        QCOMPARE(Array.GetCapacity(), 16u);
        QCOMPARE(Array.Append(16), 0);
        QCOMPARE(Array.GetCapacity(), 32u);
        for (int i = 0; i < 17; ++i)
            QCOMPARE(Array[uint32_t(i)], i);
        QCOMPARE(Array.GetData()[31], 0);

        CZamTArray<int> Other;
        QCOMPARE(Other.SetCapacity(10), 0);
        QCOMPARE(Other.GetCapacity(), 16u);
        QCOMPARE(Other.SetCapacity(100), 0);
        QCOMPARE(Other.GetCapacity(), 100u);
        QCOMPARE(Other.SetCapacity(101), 0);
        QCOMPARE(Other.GetCapacity(), 200u);

        // Appending one of its own elements while the block is replaced.
        CZamTArray<CZamTString> Strings(2);
        Strings.Append("first");
        Strings.Append("second");
        QCOMPARE(Strings.Append(Strings[0]), 0);
        QVERIFY(Strings[2] == "first");

        CZamTArray<SAssignOnly> AssignOnly(1);
        SAssignOnly Item;
        for (int i = 0; i < 40; ++i)
        {
            Item.iValue = i;
            QCOMPARE(AssignOnly.Append(Item), 0);
        }
        QCOMPARE(AssignOnly[39].iValue, 39);

        // Many copies at once, of an outside value and of one of its own elements.
        CZamTArray<int> Padded;
        QCOMPARE(Padded.Append(7), 0);
        QCOMPARE(Padded.AppendCopies(-1, 1000), 0);
        QCOMPARE(Padded.GetSize(), 1001u);
        QCOMPARE(Padded.GetCapacity(), 1001u);
        QCOMPARE(Padded[1], -1);
        QCOMPARE(Padded[1000], -1);
        QCOMPARE(Padded.AppendCopies(Padded[0], 2000), 0);
        QCOMPARE(Padded.GetSize(), 3001u);
        QCOMPARE(Padded[3000], 7);
        QCOMPARE(Padded.AppendCopies(1, UINT32_MAX), 1);
        QCOMPARE(Padded.GetSize(), 3001u);
    }

    void ArrayRemoval()
    {
        CZamTArray<int> Array;
        QCOMPARE(Array.Remove(0), 1);
        QCOMPARE(Array.RemoveLast(), 1);
        QCOMPARE(Array.GetSize(), 0u);
        for (int i = 0; i < 5; ++i)
            Array.Append(i * 10);
        QCOMPARE(Array.Remove(1), 0);
        QCOMPARE(Array, Ints({0, 20, 30, 40}));
        QCOMPARE(Array.Remove(3), 0);
        QCOMPARE(Array, Ints({0, 20, 30}));
        // Past the end only drops the count.
        QCOMPARE(Array.Remove(50), 0);
        QCOMPARE(Array, Ints({0, 20}));
        Array.Clear();
        QCOMPARE(Array.GetSize(), 0u);
        QCOMPARE(Array.GetCapacity(), 16u);
        QCOMPARE(Array.RemoveLast(), 1);
    }

    void ArrayCopyAndMove()
    {
        CZamTArray<CZamTString> Original;
        for (int i = 0; i < 20; ++i)
            Original.Append(CZamTString(QByteArray::number(i).constData()));
        CZamTArray<CZamTString> Copy(Original);
        QCOMPARE(Copy.GetSize(), 20u);
        QVERIFY(Copy == Original);
        Copy[3] = "changed";
        QVERIFY(Original[3] == "3");
        QVERIFY(Copy != Original);

        CZamTArray<CZamTString> Assigned(1);
        Assigned = Original;
        QVERIFY(Assigned == Original);
        const CZamTArray<CZamTString>& Self = Assigned;
        Assigned = Self;
        QVERIFY(Assigned == Original);

        CZamTArray<CZamTString> Moved(std::move(Assigned));
        QVERIFY(Moved == Original);
        QCOMPARE(Assigned.GetSize(), 0u);
        QCOMPARE(Assigned.RemoveLast(), 1);
        QCOMPARE(Assigned.Append("back"), 0);
        QVERIFY(Assigned[0] == "back");
        Moved = std::move(Assigned);
        QCOMPARE(Moved.GetSize(), 1u);
    }

    void ArrayFailedAllocation()
    {
        static SHuge Item;
        Item.Bytes[7] = 'k';
        CZamTArray<SHuge> Array(1);
        QCOMPARE(Array.Append(Item), 0);
        SHuge* pBlock = Array.GetData();
        QCOMPARE(Array.SetCapacity(0xFFFFFFFFu), 1);
        QVERIFY(Array.GetData() == pBlock);
        QCOMPARE(Array.GetSize(), 1u);
        QCOMPARE(Array.GetCapacity(), 1u);
        QCOMPARE(Array[0].Bytes[7], 'k');
    }

    void ManagedPointers()
    {
        SCounted::s_iDeleted = 0;
        {
            CZamTArrayManagedPointers<SCounted> Array;
            for (int i = 0; i < 20; ++i)
                QCOMPARE(Array.Append(new SCounted(i)), 0);
            QCOMPARE(Array.RemoveLast(), 0);
            QCOMPARE(SCounted::s_iDeleted, 1);
            QCOMPARE(Array.Remove(0), 0);
            QCOMPARE(SCounted::s_iDeleted, 2);
            QCOMPARE(Array[0]->iId, 1);
            QCOMPARE(Array.Remove(1000), 0);
            QCOMPARE(SCounted::s_iDeleted, 3);
            QCOMPARE(Array.GetSize(), 17u);
            QCOMPARE(Array[16]->iId, 17);

            CZamTArrayManagedPointers<SCounted> Taken(std::move(Array));
            QCOMPARE(Array.GetSize(), 0u);
            Array.Append(new SCounted(100));
            Array.Clear();
            QCOMPARE(SCounted::s_iDeleted, 4);
            Array.Append(new SCounted(101));
            CZamTArray<SCounted*>& AsBase = Taken;
            QCOMPARE(AsBase.Remove(5), 0);
            QCOMPARE(SCounted::s_iDeleted, 5);
            QCOMPARE(Taken.GetSize(), 16u);
            QCOMPARE(Taken[5]->iId, 7);
        }
        QCOMPARE(SCounted::s_iDeleted, 5 + 16 + 1);
    }

    void SkipGraphNodes()
    {
        int Items[3] = {};
        CZamTSkipGraphRoot<int*> Graph;
        auto* pFirst = Graph.AddNode(&Items[0]);
        QVERIFY(pFirst);
        QCOMPARE(Graph.AddNode(&Items[0]), pFirst);
        QCOMPARE(Graph.GetNodeCount(), 1u);
        QVERIFY(!Graph.FindNode(&Items[1]));
        QCOMPARE(Graph.AddDependency(&Items[1], &Items[2]), 0);
        QCOMPARE(Graph.AddDependency(&Items[1], &Items[2]), 0);
        QCOMPARE(Graph.GetNodeCount(), 3u);
        const auto* pSecond = Graph.FindNode(&Items[1]);
        QVERIFY(pSecond);
        QCOMPARE(pSecond->GetItem(), &Items[1]);
        QCOMPARE(pSecond->GetDependencyCount(), 1u);
        QVERIFY(pSecond->GetDependency(0) == Graph.FindNode(&Items[2]));

        // Items whose hashes collide are still separate nodes.
        const uint64_t uiA = 221706325220ull, uiB = 181298489572ull;
        QVERIFY(CZamTHash(&uiA, sizeof uiA, 1) == CZamTHash(&uiB, sizeof uiB, 1));
        CZamTSkipGraphRoot<uint64_t> Wide;
        QVERIFY(Wide.AddNode(uiA) != Wide.AddNode(uiB));
        QCOMPARE(Wide.GetNodeCount(), 2u);
    }

    void SkipGraphOrder()
    {
        CZamTSkipGraphRoot<int> Graph;
        CZamTArray<int> Order;
        QCOMPARE(Graph.Order(Order), 0);
        QCOMPARE(Order.GetSize(), 0u);

        for (int i : {5, 1, 4, 2, 3})
            Graph.AddNode(i);
        QCOMPARE(Graph.Order(Order), 0);
        QCOMPARE(Order, Ints({5, 1, 4, 2, 3}));

        // 5 needs 2, 1 needs 5; the rest keep insertion order as early as they are free.
        Graph.AddDependency(5, 2);
        Graph.AddDependency(1, 5);
        Order.Append(99);
        QCOMPARE(Graph.Order(Order), 0);
        QCOMPARE(Order, Ints({4, 2, 5, 1, 3}));

        // A cycle, or an item needing itself, fails and leaves the order as it was.
        Graph.AddDependency(2, 3);
        Graph.AddDependency(3, 1);
        QCOMPARE(Graph.Order(Order), 1);
        CZamTSkipGraphRoot<int> Self;
        Self.AddDependency(1, 1);
        QCOMPARE(Self.Order(Order), 1);
        QCOMPARE(Order, Ints({4, 2, 5, 1, 3}));
    }

    void SkipGraphLargeOrder()
    {
        // Items depend only on smaller items, added in scrambled order with many edges.
        const int iCount = 500;
        CZamTSkipGraphRoot<int> Graph;
        uint32_t uiSeed = 12345;
        auto Next = [&uiSeed]
        {
            uiSeed = uiSeed * 1103515245u + 12345u;
            return uiSeed >> 8;
        };
        for (int i = 0; i < iCount; ++i)
            Graph.AddNode((i * 211) % iCount);
        QList<QPair<int, int>> Edges;
        for (int i = 0; i < 3000; ++i)
        {
            const int iLater = int(Next() % (iCount - 1)) + 1;
            const int iEarlier = int(Next() % uint32_t(iLater));
            QCOMPARE(Graph.AddDependency(iLater, iEarlier), 0);
            Edges.append({iLater, iEarlier});
        }
        CZamTArray<int> Order;
        QCOMPARE(Graph.Order(Order), 0);
        QCOMPARE(Order.GetSize(), uint32_t(iCount));
        QHash<int, int> Position;
        for (uint32_t ui = 0; ui < Order.GetSize(); ++ui)
            Position.insert(Order[ui], int(ui));
        QCOMPARE(Position.size(), iCount);
        for (const auto& Edge : Edges)
            QVERIFY(Position.value(Edge.second) < Position.value(Edge.first));

        Graph.AddDependency(Edges.last().second, Edges.last().first);
        QCOMPARE(Graph.Order(Order), 1);
    }
};

QTEST_APPLESS_MAIN(CZamToolsTest)
#include "tst_ZamTools.moc"
