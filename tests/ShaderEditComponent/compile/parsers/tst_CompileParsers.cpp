// The readers of what compilers write: output and messages, profile files, performance
// estimates and banners.

#include "ShaderEditComponent/compile/parsers/CompilerBannerParser.h"
#include "ShaderEditComponent/compile/parsers/CompilerOutputParser.h"
#include "ShaderEditComponent/compile/parsers/DisassemblyParser.h"
#include "ShaderEditComponent/compile/parsers/PerformanceEstimateParser.h"
#include "ShaderEditComponent/compile/parsers/ProfileParser.h"

#include <QtTest>

class CCompileParsersTest : public QObject
{
    Q_OBJECT

private slots:
    void OutputMessages_data();
    void OutputMessages();

    void Profile_data();
    void Profile();
    void ProfileKeepsEarlierUnitsCounts();
    void ProfileLinesPastTheUnit();

    void EstimateFigures();

    void DisassemblyLineColumn();

    void Banner_data();
    void Banner();
};

using IntList = QList<int>;
constexpr int Malformed = -2;

static IntList ToList(const CZamTArray<int>& Array)
{
    IntList List;
    for (uint32_t i = 0; i < Array.GetSize(); ++i)
        List.append(Array[i]);
    return List;
}

void CCompileParsersTest::OutputMessages_data()
{
    QTest::addColumn<QByteArray>("Output");
    QTest::addColumn<int>("Offset");
    QTest::addColumn<QByteArray>("Log");
    QTest::addColumn<IntList>("Lines");
    QTest::addColumn<IntList>("Severities"); // 0 error, 1 warning

    QTest::newRow("error and warning") << QByteArray(
        "ERROR: 0:12: 'x' : undeclared\nWARNING: 0:3: unused\nCompile failed.\n")
                                       << 0 << QByteArray("ERROR: 0:12: 'x' : undeclared\nWARNING: 0:3: unused\n")
                                       << IntList{12, 3} << IntList{0, 1};
    QTest::newRow("effect offset") << QByteArray("ERROR: 0:2: bad\n") << 40 << QByteArray("ERROR: 0:42: bad\n")
                                   << IntList{42} << IntList{0};
    QTest::newRow("chatter dropped") << QByteArray("Performance estimate\nCycle count: 3\nSuccess.\n") << 0
                                     << QByteArray() << IntList{} << IntList{};
    QTest::newRow("not whole words") << QByteArray("MYERRORS here\nERROR_CODE 4\nxWARNING\n") << 0 << QByteArray()
                                     << IntList{} << IntList{};
    QTest::newRow("no line number") << QByteArray("ERROR: cannot read input file 'a'\n") << 5
                                    << QByteArray("ERROR: cannot read input file 'a'\n") << IntList{0} << IntList{0};
    QTest::newRow("number too large to move") << QByteArray("ERROR: 0:99999999999: x\n") << 5
                                              << QByteArray("ERROR: 0:99999999999: x\n") << IntList{0} << IntList{0};
    QTest::newRow("keyword inside a line") << QByteArray("shader.vsh: WARNING: 0:7: y") << 1
                                           << QByteArray("shader.vsh: WARNING: 0:8: y\n") << IntList{8} << IntList{1};
}

void CCompileParsersTest::OutputMessages()
{
    QFETCH(QByteArray, Output);
    QFETCH(int, Offset);
    QFETCH(QByteArray, Log);
    QFETCH(IntList, Lines);
    QFETCH(IntList, Severities);

    const SCompilerOutput Parsed = ParseCompilerOutput(Output, Offset);
    QCOMPARE(Parsed.LogText, Log);
    QCOMPARE(Parsed.Messages.size(), Lines.size());
    for (int i = 0; i < Lines.size(); ++i)
    {
        QCOMPARE(Parsed.Messages.at(i).iLine, Lines.at(i));
        QCOMPARE(static_cast<int>(Parsed.Messages.at(i).eSeverity), Severities.at(i));
    }
}

void CCompileParsersTest::Profile_data()
{
    QTest::addColumn<QString>("Profile");
    QTest::addColumn<int>("Offset");
    QTest::addColumn<IntList>("Counts"); // those kept, also when the file is refused
    QTest::addColumn<int>("Total");      // Malformed: the file is refused
    QTest::addColumn<int>("Generated");

    QTest::newRow("padded") << "line: 2, count: 5\nline: 4, count: 7\nTotal consumed cycles = 12\n"
                               "TXC generated instructions = 9\n"
                            << 0 << IntList{-1, 5, -1, 7} << 12 << 9;
    QTest::newRow("moved by the offset") << "line: 1, count: 3\nline: 2, count: 4\n"
                                         << 3 << IntList{-1, -1, -1, 3, 4} << 7 << -1;
    QTest::newRow("descending lines fill holes") << "line: 5, count: 1\nline: 2, count: 2\n"
                                                 << 0 << IntList{-1, 2, -1, -1, 1} << 3 << -1;
    QTest::newRow("line 0 lands at the end") << "line: 3, count: 1\nline: 0, count: 9\n"
                                             << 0 << IntList{-1, -1, 1, 9} << 10 << -1;
    // A line equal to the array's size is "not below" it: the count is appended after it.
    QTest::newRow("last line repeated lands after it") << "line: 2, count: 1\nline: 2, count: 4\n"
                                                       << 0 << IntList{-1, 1, 4} << 5 << -1;
    // Taken literally, a repeated line would make the scan restart at the same place forever.
    QTest::newRow("line counted twice")
        << "line: 1, count: 3\nline: 2, count: 1\nline: 1, count: 3\nline: 3, count: 1\n"
        << 0 << IntList{3, 1} << Malformed << -1;
    QTest::newRow("line does not fit") << "line: 123456789012345678901234, count: 1\n" << 0 << IntList{} << Malformed
                                       << -1;
    QTest::newRow("count does not fit") << "line: 1, count: 4294967296\n" << 0 << IntList{} << Malformed << -1;
    QTest::newRow("total not the sum") << "line: 1, count: 3\nTotal consumed cycles = 4\n" << 0 << IntList{3}
                                       << Malformed << -1;
    QTest::newRow("sum overflows") << "line: 1, count: 2147483647\nline: 2, count: 1\n" << 0 << IntList{2147483647}
                                   << Malformed << -1;
}

void CCompileParsersTest::Profile()
{
    QFETCH(QString, Profile);
    QFETCH(int, Offset);
    QFETCH(IntList, Counts);
    QFETCH(int, Total);
    QFETCH(int, Generated);

    CZamTArray<int> Array;
    const SProfileParse Parse = ParseProfile(Profile, Offset, 1000, Array);
    QCOMPARE(Parse.bMalformed, Total == Malformed);
    QCOMPARE(ToList(Array), Counts);
    if (Total != Malformed)
    {
        QCOMPARE(Parse.iTotalConsumedCycles, Total);
        QCOMPARE(Parse.iGeneratedInstructions, Generated);
    }
}

void CCompileParsersTest::ProfileKeepsEarlierUnitsCounts()
{
    // Two shaders of one effect file share the array; the second may not overwrite the first.
    CZamTArray<int> Array;
    QVERIFY(!ParseProfile(QStringLiteral("line: 1, count: 4\n"), 10, 30, Array).bMalformed);
    QVERIFY(!ParseProfile(QStringLiteral("line: 1, count: 6\n"), 20, 30, Array).bMalformed);
    QCOMPARE(Array[10], 4);
    QCOMPARE(Array[20], 6);
    QVERIFY(ParseProfile(QStringLiteral("line: 1, count: 1\n"), 10, 30, Array).bMalformed);
    QCOMPARE(Array[10], 4);
}

void CCompileParsersTest::ProfileLinesPastTheUnit()
{
    // A line number is untrusted text: past the unit's last line it is skipped, never padded to.
    CZamTArray<int> Array;
    const SProfileParse Parse = ParseProfile(QStringLiteral("line: 2, count: 3\nline: 2000000000, count: 5\n"
                                                            "line: 9, count: 1\nline: 7, count: 4\n"
                                                            "Total consumed cycles = 13\n"),
                                             2, 8, Array);
    QVERIFY(!Parse.bMalformed); // the reported total counts the skipped lines too
    QCOMPARE(ToList(Array), (IntList{-1, -1, -1, 3}));
    QCOMPARE(Parse.iTotalConsumedCycles, 3);
    QCOMPARE(Parse.iOutOfRangeEntries, 3);
    QCOMPARE(Parse.iFirstOutOfRange, 2000000002);
    QCOMPARE(OutOfRangeNote(Parse, 8), QStringLiteral("WARNING: The profile names 3 lines past line 8, the last line "
                                                      "compiled (the first is line 2000000002); their cycle counts "
                                                      "are not shown."));
    QVERIFY(OutOfRangeNote(ParseProfile(QStringLiteral("line: 8, count: 1\n"), 0, 8, Array), 8).isEmpty());
    QCOMPARE(Array.GetSize(), 8u);
    QCOMPARE(
        OutOfRangeNote(ParseProfile(QStringLiteral("line: 9, count: 1\n"), 0, 8, Array), 8),
        QStringLiteral("WARNING: The profile names line 9, past line 8, the last line compiled; its cycle count is "
                       "not shown."));
}

void CCompileParsersTest::EstimateFigures()
{
    const QString Output = QStringLiteral("Performance estimate\n"
                                          "Cycle count:                40\n"
                                          "Average cycle count:        32\n"
                                          "Worst   cycle count:        51\n"
                                          "Temporary registers used:   6\n"
                                          "Primary attributes used:    2\n"
                                          "Non-dependent texture reads:1\n"
                                          "Success.\n");
    SCompileResult::SProfile Profile;
    Profile.fFirstCycleCount = 7.0f;
    ApplyPerformanceEstimate(ParsePerformanceEstimate(Output), Profile);
    QVERIFY(Profile.bEstimateFound);
    QCOMPARE(Profile.fCycleCount, 32.0f); // the average overwrites the first figure
    QCOMPARE(Profile.fFirstCycleCount, 7.0f);
    QCOMPARE(Profile.fWorstCycleCount, 51.0f);
    QCOMPARE(Profile.iTemporaryRegisters, 6);
    QCOMPARE(Profile.iPrimaryAttributes, 2);
    QCOMPARE(Profile.iNonDependentTextureReads, 1);

    const SPerformanceEstimate OnlyFirst =
        ParsePerformanceEstimate(QStringLiteral("Performance estimate\nCycle count:                40\n"));
    QCOMPARE(OnlyFirst.fCycleCount, 40.0f);
    QCOMPARE(OnlyFirst.iTemporaryRegisters, -1);

    // The block's heading is required, the spacing is exact, and figures must fit.
    QVERIFY(!ParsePerformanceEstimate(QStringLiteral("Cycle count:                40\n")).bFound);
    const SPerformanceEstimate Odd = ParsePerformanceEstimate(
        QStringLiteral("Performance estimate\nCycle count: 40\nTemporary registers used:   99999999999\n"));
    QCOMPARE(Odd.fCycleCount, -1.0f);
    QCOMPARE(Odd.iTemporaryRegisters, -1);
}

void CCompileParsersTest::DisassemblyLineColumn()
{
    // The bundled compiler's layout is followed through the window (tst_CompileInsight); here the
    // other layouts a compiler may write.
    // The columns in another order; a line the compiler could not place (0 or "-").
    QCOMPARE(ParseDisassemblyLines(QStringLiteral(";  line index instruction\n"
                                                  "   7    0    mov r0, c0\n"
                                                  "   -    1    nop\n"
                                                  "   0    2    ret\n"),
                                   0),
             (QVector<int>{0, 7, 0, 0, 0}));

    // Without the column nothing is placed, whatever the numbers look like.
    QCOMPARE(ParseDisassemblyLines(QStringLiteral("; index cycles instruction\n 0 10 mov\n"), 0),
             (QVector<int>{0, 0, 0}));
    QCOMPARE(ParseDisassemblyLines(QStringLiteral("0 10 3 mov\n; line\n1 10 3 mov"), 0), (QVector<int>{0, 0, 0}));
    // The header must come near the top; a listing's own "line" comment further down is no header.
    QString Late;
    for (int i = 0; i < 70; ++i)
        Late += QStringLiteral("mov r0, r1\n");
    Late += QStringLiteral("; index line cycles\n0 5 1\n");
    QCOMPARE(ParseDisassemblyLines(Late, 0, 64).value(71), 0);
}

void CCompileParsersTest::Banner_data()
{
    QTest::addColumn<QString>("Text");
    QTest::addColumn<QString>("Compiler");
    QTest::addColumn<QString>("Version");
    QTest::addColumn<QStringList>("Options");
    QTest::addColumn<bool>("HasOptions");

    // The bundled compilers' own banners are read in tst_CompilePipeline.
    QTest::newRow("plain version") << "Offline compiler for ZC3. Version 1.2.3@45\nOPTIONS are:\n -disasm x\n"
                                   << "ZC3"
                                   << "1.2.3@45" << QStringList{"disasm"} << true;
    QTest::newRow("zcddk with a number") << "Compiler for ZD1 rev 4 built zcddk 7 r1.0@9\n"
                                         << "ZD1 rev 4"
                                         << "r1.0@9" << QStringList{} << false;
    QTest::newRow("rev and version") << "Compiler for ZC2 rev 3 (build) Version 4.5 final\n"
                                     << "ZC2 rev 3"
                                     << "4.5" << QStringList{} << false;
    QTest::newRow("OpenCL") << "Zam OpenCL 1.2 ZCL compiler. Version a b 3.1@77\n"
                               "OPTIONS are:\n -ignored \nControl options are:\n-profile : p\n-no-opt: q\n"
                            << "OpenCL 1.2 ZCL"
                            << "3.1@77" << QStringList{"profile", "no-opt"} << true;
    QTest::newRow("unknown banner") << "hello\n -early \nOPTIONS are:\n -nowarn \n"
                                    << "Unknown"
                                    << "Unknown" << QStringList{"nowarn"} << true;
    // Both blanks belong to a match, so the blank between two options serves only one of them.
    QTest::newRow("every other option") << "OPTIONS are: -a -b -c -d \n"
                                        << "Unknown"
                                        << "Unknown" << QStringList{"a", "c"} << true;
    // The character before ". Version" may be the name's own last letter; names need not be Latin.
    QTest::newRow("name's last letter before Version") << "Compiler for ZC3x Version 1.0@5\n"
                                                       << "ZC3"
                                                       << "1.0@5" << QStringList{} << false;
    QTest::newRow("non-Latin name") << QString::fromUtf8("Compiler for Ядро_2. Version 2.1@3\n")
                                    << QString::fromUtf8("Ядро_2") << "2.1@3" << QStringList{} << false;
    QTest::newRow("capture holding a placeholder") << "Zam OpenCL 1.2 %2 compiler. Version q 1@2\n"
                                                   << "OpenCL 1.2 %2"
                                                   << "1@2" << QStringList{} << false;

    // A compiler that talks before it names itself is still identified, wherever it does.
    QString Preamble;
    for (int i = 0; Preamble.size() < 12 * 1024; ++i)
        Preamble += QStringLiteral("Loading target library %1 for the device, please wait...\n").arg(i);
    QTest::newRow("long preamble") << Preamble
                                          + "Zam GLSL ES reference compiler for ZC2 rev 3. zcddk 4.5.6@78\n"
                                            "OPTIONS are:\n -v        a\n"
                                   << "ZC2 rev 3"
                                   << "4.5.6@78" << QStringList{"v"} << true;
    QTest::newRow("OpenCL after a preamble") << Preamble
                                                    + "Zam OpenCL 1.2 ZCL compiler. Version a b 3.1@77\n"
                                                      "Control options are:\n-profile : p\n"
                                             << "OpenCL 1.2 ZCL"
                                             << "3.1@77" << QStringList{"profile"} << true;
    // The leading ".*" of a pattern takes as much as it can: the last line that fits decides.
    QTest::newRow("two banners") << "Wrapper for ZC1 rev 1. zcddk 1.0@1\n" + Preamble
                                        + "Compiler for ZD1 rev 4. zcddk 2.0@2\n"
                                 << "ZD1 rev 4"
                                 << "2.0@2" << QStringList{} << false;
}

void CCompileParsersTest::Banner()
{
    QFETCH(QString, Text);
    QFETCH(QString, Compiler);
    QFETCH(QString, Version);
    QFETCH(QStringList, Options);
    QFETCH(bool, HasOptions);

    QString FoundCompiler;
    QString FoundVersion;
    CZamTArray<QString> Found;
    QCOMPARE(ParseCompilerBanner(Text, FoundCompiler, FoundVersion, Found), HasOptions);
    QCOMPARE(FoundCompiler, Compiler);
    QCOMPARE(FoundVersion, Version);
    QStringList FoundList;
    for (uint32_t i = 0; i < Found.GetSize(); ++i)
        FoundList.append(Found[i]);
    QCOMPARE(FoundList, Options);
}

QTEST_GUILESS_MAIN(CCompileParsersTest)
#include "tst_CompileParsers.moc"
