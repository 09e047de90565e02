// The executables' outputs. Every shader of tests/compiler/corpus reproduces its reference log,
// profile and disassembly byte for byte (after an intended change of output:
// tests/compiler/regenerate.sh <build> and review the diff). For every real-world shader on
// every core, the figures the editor shows add up: the profile's lines are the disassembly's
// lines, their counts add up to the total and to the instructions' own cycles, and the
// estimate's best path costs no more than the average, the average no more than the worst.

#include "Corpus.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

using namespace ZamDifferential;

namespace
{

QString ReadText(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// Runs glslcompiler_<core> with every output asked for; false when it does not end.
bool Compile(const QString& core, const QStringList& args, QProcess& process)
{
    process.start(qEnvironmentVariable("ZAM_BIN_DIR") + "/glslcompiler_" + core,
                  args + QStringList{"-profile", "-perfsim", "-disasm"});
    return process.waitForFinished(120000);
}

QString ReferenceDir()
{
    return qEnvironmentVariable("ZAM_SOURCE_DIR") + "/tests/compiler";
}

qint64 Figure(const QString& text, const QString& pattern)
{
    const QRegularExpressionMatch match = QRegularExpression(pattern).match(text);
    return match.hasMatch() ? match.captured(1).toLongLong() : -1;
}

// Cycles per source line as the disassembly lists its instructions.
QMap<int, qint64> DisassemblyLines(const QString& disassembly, int& iInstructions)
{
    QMap<int, qint64> mapLines;
    iInstructions = 0;
    static const QRegularExpression s_instruction("^\\s*\\d+\\s+(\\d+)\\s+(\\d+)\\s\\s");
    for (const QString& line : disassembly.split('\n'))
    {
        const QRegularExpressionMatch match = s_instruction.match(line);
        if (!match.hasMatch())
            continue;
        ++iInstructions;
        if (match.captured(1).toInt() > 0)
            mapLines[match.captured(1).toInt()] += match.captured(2).toLongLong();
    }
    return mapLines;
}

} // namespace

class CCompilerFiguresTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void referenceOutputs_data();
    void referenceOutputs();
    void figuresAddUp_data();
    void figuresAddUp();
};

void CCompilerFiguresTest::initTestCase()
{
    QVERIFY2(CorpusShaders().size() >= 60, qPrintable("the corpus is missing: " + CorpusDir()));
}

void CCompilerFiguresTest::referenceOutputs_data()
{
    QTest::addColumn<QString>("core");
    QTest::addColumn<QString>("shader");
    const QDir expected(ReferenceDir() + "/expected");
    const QDir corpus(ReferenceDir() + "/corpus");
    QVERIFY2(corpus.exists() && expected.exists(), "ZAM_SOURCE_DIR must point at the source tree");
    int iRows = 0;
    for (const QString& core : expected.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
    {
        for (const QString& log : QDir(expected.filePath(core)).entryList({"*.log"}))
        {
            const QStringList matches = corpus.entryList({log.chopped(4) + ".*"});
            QCOMPARE(matches.size(), 1);
            QTest::addRow("%s/%s", qPrintable(core), qPrintable(matches.first())) << core << matches.first();
            ++iRows;
        }
    }
    QVERIFY(iRows >= 30);
}

void CCompilerFiguresTest::referenceOutputs()
{
    QFETCH(QString, core);
    QFETCH(QString, shader);
    const QString name = shader.section('.', 0, 0);
    const QString expectedBase = ReferenceDir() + "/expected/" + core + "/" + name;
    QTemporaryDir work;
    QVERIFY(work.isValid());
    const QString base = work.filePath("program");
    QProcess process;
    process.setWorkingDirectory(ReferenceDir() + "/corpus");
    QVERIFY(Compile(core, {shader, name, base, shader.endsWith(".vsh") ? "-v" : "-f"}, process));
    QCOMPARE(process.readAllStandardError(), QByteArray());
    const QString log = QString::fromUtf8(process.readAllStandardOutput());
    QCOMPARE(log, ReadText(expectedBase + ".log"));
    QCOMPARE(process.exitCode() == 0, log.endsWith("Success.\n"));
    for (const char* pKind : {".prof", ".disasm"})
    {
        QCOMPARE(QFile::exists(base + pKind), QFile::exists(expectedBase + pKind));
        QCOMPARE(ReadText(base + pKind), ReadText(expectedBase + pKind));
    }
}

void CCompilerFiguresTest::figuresAddUp_data()
{
    QTest::addColumn<QString>("core");
    QTest::addColumn<QString>("shader");
    for (const char* pCore : {"zc1", "zc2", "zc3", "zd1"})
    {
        for (const QString& shader : CorpusShaders())
            QTest::addRow("%s/%s", pCore, qPrintable(shader)) << QString(pCore) << shader;
    }
}

void CCompilerFiguresTest::figuresAddUp()
{
    QFETCH(QString, core);
    QFETCH(QString, shader);
    QTemporaryDir work;
    QVERIFY(work.isValid());
    const QString base = work.filePath("program");
    QProcess process;
    QVERIFY(Compile(core, {CorpusDir() + "/" + shader, shader, base}, process));
    const QString log = QString::fromUtf8(process.readAllStandardOutput());
    QVERIFY2(process.exitCode() == 0 && log.endsWith("Success.\n"), qPrintable(log));

    const QString profile = ReadText(base + ".prof");
    const int iSourceLines = ReadText(CorpusDir() + "/" + shader).count('\n') + 1;
    QMap<int, qint64> mapProfile;
    qint64 llSum = 0;
    int iPrevious = 0;
    static const QRegularExpression s_line("^line: (\\d+), count: (\\d+)$", QRegularExpression::MultilineOption);
    for (auto it = s_line.globalMatch(profile); it.hasNext();)
    {
        const QRegularExpressionMatch match = it.next();
        const int iLine = match.captured(1).toInt();
        QVERIFY2(iLine > iPrevious && iLine <= iSourceLines,
                 qPrintable(QString("line %1 out of order or range").arg(iLine)));
        iPrevious = iLine;
        mapProfile[iLine] = match.captured(2).toLongLong();
        llSum += mapProfile[iLine];
    }
    QVERIFY(!mapProfile.isEmpty());
    QCOMPARE(Figure(profile, "Total consumed cycles = (\\d+)"), llSum);

    int iInstructions = 0;
    QCOMPARE(DisassemblyLines(ReadText(base + ".disasm"), iInstructions), mapProfile);
    QCOMPARE(Figure(profile, "TXC generated instructions = (\\d+)"), static_cast<qint64>(iInstructions));

    const qint64 llBest = Figure(log, "Cycle count:\\s+(\\d+)");
    const qint64 llAverage = Figure(log, "Average cycle count:\\s+(\\d+)");
    const qint64 llWorst = Figure(log, "Worst   cycle count:\\s+(\\d+)");
    QVERIFY2(llBest > 0 && llBest <= llAverage && llAverage <= llWorst,
             qPrintable(QString("best %1, average %2, worst %3").arg(llBest).arg(llAverage).arg(llWorst)));
}

QTEST_GUILESS_MAIN(CCompilerFiguresTest)
#include "tst_compiler_figures.moc"
