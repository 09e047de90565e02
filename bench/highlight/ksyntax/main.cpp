// Prints the best CPU time, over several runs, that KSyntaxHighlighting takes to highlight a
// file in a QTextDocument with the plain-text layout: "best_ms=<x>".
// Usage: ksyntax_bench <file> [definition] [runs]
#include <KSyntaxHighlighting/Definition>
#include <KSyntaxHighlighting/Repository>
#include <KSyntaxHighlighting/SyntaxHighlighter>
#include <KSyntaxHighlighting/Theme>

#include <QApplication>
#include <QFile>
#include <QPlainTextDocumentLayout>
#include <QTextDocument>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

namespace
{
double CpuSeconds()
{
    timespec Time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &Time);
    return double(Time.tv_sec) + double(Time.tv_nsec) * 1e-9;
}
} // namespace

int main(int argc, char** argv)
{
    QApplication Application(argc, argv);
    const QStringList Arguments = Application.arguments();
    if (Arguments.size() < 2)
    {
        std::fprintf(stderr, "usage: ksyntax_bench <file> [definition] [runs]\n");
        return 1;
    }
    QFile File(Arguments.at(1));
    if (!File.open(QIODevice::ReadOnly))
    {
        std::fprintf(stderr, "cannot read %s\n", qPrintable(Arguments.at(1)));
        return 1;
    }
    const QString Text = QString::fromUtf8(File.readAll());
    const QString DefinitionName = Arguments.size() > 2 ? Arguments.at(2) : QStringLiteral("GLSL");
    const int iRuns = Arguments.size() > 3 ? std::max(1, Arguments.at(3).toInt()) : 5;

    KSyntaxHighlighting::Repository Repository;
    const KSyntaxHighlighting::Definition Definition = Repository.definitionForName(DefinitionName);
    if (!Definition.isValid())
    {
        std::fprintf(stderr, "no definition %s\n", qPrintable(DefinitionName));
        return 1;
    }
    std::vector<double> Times;
    for (int iRun = 0; iRun < iRuns; ++iRun)
    {
        QTextDocument Document;
        Document.setDocumentLayout(new QPlainTextDocumentLayout(&Document));
        Document.setPlainText(Text);
        KSyntaxHighlighting::SyntaxHighlighter Highlighter;
        Highlighter.setTheme(Repository.defaultTheme(KSyntaxHighlighting::Repository::LightTheme));
        Highlighter.setDefinition(Definition);
        Highlighter.setDocument(&Document);
        const double dStart = CpuSeconds();
        Highlighter.rehighlight();
        Times.push_back((CpuSeconds() - dStart) * 1e3);
    }
    std::printf("best_ms=%.2f\n", *std::min_element(Times.begin(), Times.end()));
    return 0;
}
