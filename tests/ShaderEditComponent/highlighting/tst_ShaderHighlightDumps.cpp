// Reference output: each corpus file, highlighted as the type its extension stands for,
// must leave exactly the committed per-block dump in expected/. After a deliberate change,
// regenerate.sh rewrites the dumps; review their diff before committing.
#include "HighlightTestSupport.h"
#include "ShaderEditComponent/highlighting/ShaderHighlighter.h"

#include <QFile>
#include <QTest>
#include <QTextDocument>

class CShaderHighlightDumpsTest : public QObject
{
    Q_OBJECT

private slots:
    void CorpusMatchesDumps_data();
    void CorpusMatchesDumps();

private:
    CDistinctScheme m_Scheme;
};

void CShaderHighlightDumpsTest::CorpusMatchesDumps_data()
{
    QTest::addColumn<QString>("FileName");
    for (const QString& File : CorpusFiles())
        QTest::newRow(qPrintable(File)) << File;
}

void CShaderHighlightDumpsTest::CorpusMatchesDumps()
{
    QFETCH(QString, FileName);
    const unsigned int uiType = DocumentTypeOfFile(FileName);
    QTextDocument Document(ReadCorpusFile(FileName));
    CShaderHighlighter Highlighter(&Document, EShaderDocType(uiType), m_Scheme.GetController());
    Highlighter.rehighlight();
    const QString Dump = QStringLiteral("# %1 as type %2\n").arg(FileName).arg(uiType)
                         + DumpBlocks(CaptureBlocks(Document, m_Scheme), m_Scheme);

    QFile Expected(QStringLiteral(ZAM_HIGHLIGHT_TEST_DIR "/expected/") + FileName + QStringLiteral(".dump"));
    if (qEnvironmentVariableIsSet("ZAM_REGENERATE_HIGHLIGHT_DUMPS"))
    {
        QVERIFY(Expected.open(QIODevice::WriteOnly | QIODevice::Truncate));
        Expected.write(Dump.toUtf8());
        return;
    }
    QVERIFY2(Expected.open(QIODevice::ReadOnly), qPrintable(Expected.fileName()));
    // Line by line, so a failure names the first block that differs.
    QCOMPARE(Dump.split(QLatin1Char('\n')), QString::fromUtf8(Expected.readAll()).split(QLatin1Char('\n')));
}

QTEST_MAIN(CShaderHighlightDumpsTest)
#include "tst_ShaderHighlightDumps.moc"
