// Every corpus shader, compiled by the real executables, must reproduce its
// reference log, profile and disassembly byte for byte.
// After an intended change of output: tests/compiler/regenerate.sh <build> and review the diff.

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

class CCompilerCorpusTest : public QObject
{
    Q_OBJECT

private slots:
    void referenceOutputs_data();
    void referenceOutputs();

private:
    static QString SourceDir() { return qEnvironmentVariable("ZAM_SOURCE_DIR") + "/tests/compiler"; }
};

static QByteArray ReadAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void CCompilerCorpusTest::referenceOutputs_data()
{
    QTest::addColumn<QString>("core");
    QTest::addColumn<QString>("shader");
    const QDir expected(SourceDir() + "/expected");
    const QDir corpus(SourceDir() + "/corpus");
    QVERIFY2(corpus.exists() && expected.exists(), "ZAM_SOURCE_DIR must point at the source tree");
    int iRows = 0;
    for (const QString& core : expected.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
    {
        for (const QString& log : QDir(expected.filePath(core)).entryList({"*.log"}))
        {
            const QString name = log.chopped(4);
            const QStringList matches = corpus.entryList({name + ".*"});
            QCOMPARE(matches.size(), 1);
            QTest::addRow("%s/%s", qPrintable(core), qPrintable(matches.first())) << core << matches.first();
            ++iRows;
        }
    }
    QVERIFY(iRows >= 30);
}

void CCompilerCorpusTest::referenceOutputs()
{
    QFETCH(QString, core);
    QFETCH(QString, shader);
    const QString name = shader.section('.', 0, 0);
    const QString expectedBase = SourceDir() + "/expected/" + core + "/" + name;
    QTemporaryDir work;
    QVERIFY(work.isValid());
    const QString outputBase = work.filePath("program");

    QProcess process;
    process.setWorkingDirectory(SourceDir() + "/corpus");
    process.start(qEnvironmentVariable("ZAM_BIN_DIR") + "/glslcompiler_" + core,
                  {shader, name, outputBase, shader.endsWith(".vsh") ? "-v" : "-f", "-profile", "-perfsim", "-disasm"});
    QVERIFY(process.waitForFinished(120000));
    QCOMPARE(process.readAllStandardError(), QByteArray());
    const QByteArray log = process.readAllStandardOutput();
    QCOMPARE(QString::fromUtf8(log), QString::fromUtf8(ReadAll(expectedBase + ".log")));
    QCOMPARE(process.exitCode() == 0, log.endsWith("Success.\n"));

    for (const char* pKind : {".prof", ".disasm"})
    {
        const bool bExpected = QFile::exists(expectedBase + pKind);
        QCOMPARE(QFile::exists(outputBase + pKind), bExpected);
        if (bExpected)
            QCOMPARE(QString::fromUtf8(ReadAll(outputBase + pKind)), QString::fromUtf8(ReadAll(expectedBase + pKind)));
    }
}

QTEST_GUILESS_MAIN(CCompilerCorpusTest)
#include "tst_compiler_corpus.moc"
