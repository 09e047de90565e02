#include "app/help/ManualRenderer.h"
#include "tests/support/TestFiles.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace
{
const QString kManualName = QStringLiteral("ZamShaderEditor.User Manual.pdf");

// Pages as the PDF's page objects count them (Qt writes them uncompressed).
int PageObjects(const QByteArray& Pdf)
{
    static const QRegularExpression s_Page(QStringLiteral("/Type\\s*/Page(?![a-zA-Z])"));
    int iCount = 0;
    QRegularExpressionMatchIterator It = s_Page.globalMatch(QString::fromLatin1(Pdf));
    while (It.hasNext())
    {
        It.next();
        ++iCount;
    }
    return iCount;
}

// The text of a PDF through poppler's pdftotext; empty when it is not installed.
QString PdfText(const QString& Path)
{
    const QString Tool = QStandardPaths::findExecutable(QStringLiteral("pdftotext"));
    if (Tool.isEmpty())
        return QString();
    QProcess Process;
    Process.start(Tool, {QStringLiteral("-layout"), Path, QStringLiteral("-")});
    if (!Process.waitForFinished(60000) || Process.exitCode() != 0)
        return QString();
    return QString::fromUtf8(Process.readAllStandardOutput());
}

// Text extraction breaks words at line ends, spreads table cells and keeps ligatures ("fi" as
// one letter); compare on plain words alone.
QString Squeezed(QString Text)
{
    Text = Text.normalized(QString::NormalizationForm_KC);
    Text.replace(QRegularExpression(QStringLiteral("\\s+")), QStringLiteral(" "));
    return Text;
}
} // namespace

class CUserManualTest : public QObject
{
    Q_OBJECT

private slots:
    void BuiltManualIsComplete();
    void RendererPagesAndFailures();
};

void CUserManualTest::BuiltManualIsComplete()
{
    const QString Pdf = QDir(TestFiles::BinDir()).filePath(QStringLiteral("../Documentation/") + kManualName);
    const QByteArray Bytes = TestFiles::ReadAll(Pdf);
    QVERIFY2(Bytes.startsWith("%PDF-"), qPrintable(Pdf));
    const int iPages = PageObjects(Bytes);
    QVERIFY2(iPages >= 25, qPrintable(QString::number(iPages)));

    const QString Text = PdfText(Pdf);
    if (Text.isEmpty())
        QSKIP("pdftotext (poppler-utils) is not installed; the page count was checked");
    // pdftotext separates pages with form feeds: every page has text on it.
    const QStringList Pages = Text.split(QLatin1Char('\f'), Qt::SkipEmptyParts);
    QCOMPARE(Pages.size(), iPages);
    for (const QString& Page : Pages)
        QVERIFY(!Page.trimmed().isEmpty());

    // Every heading of the source made it into the PDF, in the contents and in the text.
    const QString Source =
        QString::fromUtf8(TestFiles::ReadAll(TestFiles::SourceDir() + QStringLiteral("/docs/manual.md")));
    const QString Words = Squeezed(Text);
    static const QRegularExpression s_Heading(QStringLiteral("^#{1,3} (.+)$"), QRegularExpression::MultilineOption);
    static const QRegularExpression s_Fence(QStringLiteral("^```.*?^```"),
                                            QRegularExpression::MultilineOption
                                                | QRegularExpression::DotMatchesEverythingOption);
    QRegularExpressionMatchIterator It = s_Heading.globalMatch(QString(Source).remove(s_Fence));
    int iHeadings = 0;
    for (; It.hasNext(); ++iHeadings)
    {
        const QString Heading = Squeezed(It.next().captured(1).remove(QLatin1Char('`')));
        QVERIFY2(Words.contains(Heading), qPrintable(Heading));
    }
    QVERIFY(iHeadings > 30);
    for (const char* pPhrase : {"Contents", "Performance estimate", "Compile failed.", "[EFFECT]", "[GLSL_CODE]",
                                "Show at startup", "Check for Updates", "luminance_histogram.cl"})
        QVERIFY2(Words.contains(QString::fromLatin1(pPhrase)), pPhrase);
}

void CUserManualTest::RendererPagesAndFailures()
{
    QTemporaryDir Dir;
    const QString Markdown = QStringLiteral(
        "# Title\n\nSubtitle\n\n# One\n\nText with `code`.\n\n## One point one\n\n| a | b |\n|---|---|\n| 1 | 2 |\n\n"
        "```\n# not a heading\n```\n\n# Two\n\nMore.\n");
    // Title page, contents, and a page for each chapter.
    const QString Pdf = Dir.filePath(QStringLiteral("small.pdf"));
    QCOMPARE(RenderMarkdownToPdf(Markdown, Dir.path(), Pdf).iPages, 4);
    QCOMPARE(PageObjects(TestFiles::ReadAll(Pdf)), 4);
    const QString Text = Squeezed(PdfText(Pdf));
    if (!Text.isEmpty())
    {
        // Chapters and sections are numbered, in the text and in the contents with their pages;
        // a "#" line inside a code block stays as it is.
        QVERIFY2(Text.contains(QStringLiteral("Contents 1 One 3 1.1 One point one 3 2 Two 4")), qPrintable(Text));
        QVERIFY(Text.contains(QStringLiteral("# not a heading")));
        QVERIFY(Text.contains(QStringLiteral("Page 4 of 4")));
    }

    // Nothing to typeset, or nowhere to write: no pages and a reason.
    for (const auto& Case : {qMakePair(QStringLiteral(" \n"), QStringLiteral("empty.pdf")),
                             qMakePair(Markdown, QStringLiteral("no/such/folder/x.pdf"))})
    {
        const SManualPdf Refused = RenderMarkdownToPdf(Case.first, Dir.path(), Dir.filePath(Case.second));
        QCOMPARE(Refused.iPages, 0);
        QVERIFY2(!Refused.Error.isEmpty(), qPrintable(Case.second));
    }
}

QTEST_MAIN(CUserManualTest)
#include "tst_UserManual.moc"
