// The figures the editor shows for every real-world shader, from the real
// executables on every core: the profile's lines are the disassembly's lines, their
// counts add up to the total and to the instructions' own cycles, and the estimate's
// best path costs no more than the average, the average no more than the worst.

#include "Corpus.h"

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
    void figuresAddUp_data();
    void figuresAddUp();

private:
    QMap<QString, SExpectedFailure> m_mapExpected;
};

void CCompilerFiguresTest::initTestCase()
{
    QString error;
    QVERIFY2(ReadExpectedFailures(m_mapExpected, error), qPrintable(error));
    QVERIFY2(CorpusShaders().size() >= 60, qPrintable("the corpus is missing: " + CorpusDir()));
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
    process.start(qEnvironmentVariable("ZAM_BIN_DIR") + "/glslcompiler_" + core,
                  {CorpusDir() + "/" + shader, shader, base, "-profile", "-perfsim", "-disasm"});
    QVERIFY(process.waitForFinished(120000));
    const QString log = QString::fromUtf8(process.readAllStandardOutput());
    const bool bRefusalListed = m_mapExpected.contains(shader) && m_mapExpected.value(shader).eOutcome == Outcome_Refused;
    if (process.exitCode() != 0 && bRefusalListed)
        return; // the differential test holds it to its line in the list
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
        QVERIFY2(iLine > iPrevious && iLine <= iSourceLines, qPrintable(QString("line %1 out of order or range").arg(iLine)));
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
