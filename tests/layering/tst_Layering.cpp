// The include graph of the tree follows the layers of its libraries (see LayeringCheck.h).

#include "LayeringCheck.h"
#include "tests/support/TestFiles.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

namespace
{
bool WriteSource(const QDir& Root, const QString& Path, const QByteArray& Text)
{
    QDir().mkpath(QFileInfo(Root.filePath(Path)).path());
    QFile File(Root.filePath(Path));
    return File.open(QIODevice::WriteOnly) && File.write(Text) == Text.size();
}
} // namespace

class CLayeringTest : public QObject
{
    Q_OBJECT

private slots:
    void TreeFollowsItsLayers();
    void PlantedViolationsAreCaught();
};

void CLayeringTest::TreeFollowsItsLayers()
{
    const SLibraryTable Table = ReadLibraryTable(QStringLiteral(ZAM_LIBRARY_TABLE));
    QVERIFY2(!Table.Libraries.isEmpty(), qPrintable(Table.Error));
    const QVector<SLayeringLibrary>& Libraries = Table.Libraries;
    const QDir Root(TestFiles::SourceDir());
    for (const SLayeringLibrary& Library : Libraries)
        QVERIFY2(Root.exists(Library.Folders.value(0)), qPrintable(Library.Name));

    // The bundled compiler's tests and fuzz target still include its headers by bare names.
    const QStringList Violations =
        CheckLayering(Root.path(), Libraries, {QStringLiteral("tests/compiler"), QStringLiteral("compiler/fuzz")});
    QVERIFY2(Violations.isEmpty(), qPrintable(QStringLiteral("\n") + Violations.join(QLatin1Char('\n'))));
}

// A small tree with one of each fault, and lines that look like faults but are not.
void CLayeringTest::PlantedViolationsAreCaught()
{
    QTemporaryDir Temp;
    const QDir Root(Temp.path());
    const QList<QPair<QString, QByteArray>> Sources = {
        {"Low/Low.h", ""},
        {"Low/Low_p.h", ""},
        {"Low/Low.cpp", "#include \"Low.h\"\n#include \"Low_p.h\"\n#include \"High/High.h\"\n"},
        {"High/High.h", "#include \"Low/Low.h\"\n"},
        {"High/High.cpp", "#include \"High.h\"\n#include \"Low/Low_p.h\"\n#include \"Low.h\"\n"
                          "#include \"High/High.h\"\n#include \"moc_High.cpp\"\n  #  include \"Side/Side.h\"\n"},
        {"High/tool/main.cpp", "#include \"High/High.h\"\n"},
        {"Side/Side.h", ""},
        {"tests/Low/tst_Low.cpp", "#include \"Low/Low_p.h\"\n#include \"tests/support/Fixture.h\"\n"},
        {"tests/High/tst_High.cpp", "#include \"Low/Low_p.h\"\n"},
        {"tests/support/Fixture.h", ""},
        {"bench/b/b.cpp", "#include \"tests/support/Fixture.h\"\n#include \"High/High.h\"\n"},
        {"build-x/b.cpp", "#include \"Low.h\"\n"},
    };
    for (const auto& Source : Sources)
        QVERIFY(WriteSource(Root, Source.first, Source.second));
    const QVector<SLayeringLibrary> Libraries = {
        {"Low", {"Low"}, {}},
        {"High", {"High"}, {"Low"}},
        {"Side", {"Side"}, {}},
        {"CycleA", {"CycleA"}, {"CycleB"}},
        {"CycleB", {"CycleB"}, {"CycleA"}},
    };

    const QStringList Found = CheckLayering(Root.path(), Libraries);
    const QList<QPair<QString, QString>> Expected = {
        {"CycleB:0:", "links form a cycle: CycleA -> CycleB -> CycleA"},
        {"Low/Low.cpp:3:", "Low includes High/High.h of High, which it does not link"},
        {"High/High.cpp:2:", "Low/Low_p.h is private to Low"},
        {"High/High.cpp:3:", "\"Low.h\" is found only through an include folder"},
        {"High/High.cpp:4:", "\"High/High.h\" is the library's own header"},
        {"High/High.cpp:6:", "High includes Side/Side.h of Side, which it does not link"},
        {"tests/High/tst_High.cpp:1:", "Low/Low_p.h is private to Low"},
        {"bench/b/b.cpp:1:", "tests/support/Fixture.h is test code"},
    };
    for (const auto& Violation : Expected)
    {
        QVERIFY2(Found.filter(Violation.first + QLatin1Char(' ') + Violation.second).size() == 1,
                 qPrintable(Violation.first + Violation.second + QStringLiteral("\nfound:\n") + Found.join('\n')));
    }
    QVERIFY2(Found.size() == Expected.size(), qPrintable(Found.join('\n')));

    // A folder left out is not read.
    QCOMPARE(CheckLayering(Root.path(), Libraries.mid(0, 3), {"High", "Low", "tests", "bench"}), QStringList());
}

QTEST_GUILESS_MAIN(CLayeringTest)
#include "tst_Layering.moc"
