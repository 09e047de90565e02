// Highlighting cost on generated documents: our highlighter, the reference reading (every
// pattern a QRegExp over every block) and, when its program is given, KSyntaxHighlighting's
// GLSL definition; plus the median cost of a one-character edit in the middle of the file.
// Whole-file times are the best of several runs, in CPU time of the highlighting thread: the
// machine is shared, and the best run is the one least disturbed by others.
// Usage: bench_highlight [--ksyntax <path to ksyntax_bench>]
// The last line is "vs_reference=<x> vs_ksyntaxhighlighting=<y> keystroke_us=<median>".
#include "Common/ZamPreferences/ZamPreferences.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"
#include "ShaderEditComponent/highlighting/ShaderHighlighter.h"
#include "ShaderEditComponent/highlighting/reference/ReferenceShaderHighlighter.h"

#include <QApplication>
#include <QFile>
#include <QPlainTextDocumentLayout>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <memory>
#include <vector>

namespace
{
const int s_iGLSLESLines = 20000;
const int s_iEffectLines = 5000;
const int s_iRuns = 7;
const int s_iReferenceRuns = 3;
const int s_iEdits = 301;

class CCpuTimer
{
public:
    CCpuTimer() : m_dStart(Now()) {}
    double ElapsedMs() const { return (Now() - m_dStart) * 1e3; }

private:
    static double Now()
    {
        timespec Time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &Time);
        return double(Time.tv_sec) + double(Time.tv_nsec) * 1e-9;
    }
    double m_dStart;
};

// The floors: what QSyntaxHighlighter costs with no work at all, and with one setFormat per block.
class CEmptyHighlighter : public QSyntaxHighlighter
{
public:
    CEmptyHighlighter(QTextDocument* pDocument, bool bOneFormat) : QSyntaxHighlighter(pDocument), m_bOneFormat(bOneFormat)
    {
        m_Format.setForeground(Qt::blue);
    }

protected:
    void highlightBlock(const QString& Text) override
    {
        if (m_bOneFormat)
            setFormat(0, int(Text.size()), m_Format);
    }

private:
    bool m_bOneFormat;
    QTextCharFormat m_Format;
};

class CRandom
{
public:
    quint32 Next(quint32 uiBound)
    {
        m_uiState ^= m_uiState << 13;
        m_uiState ^= m_uiState >> 17;
        m_uiState ^= m_uiState << 5;
        return m_uiState % uiBound;
    }
    QString Number() { return QStringLiteral("%1.%2").arg(Next(100)).arg(Next(1000)); }

private:
    quint32 m_uiState = 0x2545F491u;
};

// A GLSL ES function of about a dozen lines in the style of real shaders.
void AppendFunction(QStringList& Lines, CRandom& Random, int iIndex)
{
    const QString Id = QString::number(iIndex);
    switch (Random.Next(3))
    {
    case 0:
        Lines << QStringLiteral("// Lighting term %1, tuned for the mobile path").arg(Id);
        break;
    case 1:
        Lines << QStringLiteral("/* Function %1 mixes the base colour with").arg(Id)
              << QStringLiteral("   an attenuated specular highlight. */");
        break;
    default:
        Lines << QStringLiteral("#define FACTOR_%1 %2").arg(Id, Random.Number());
        break;
    }
    Lines << QStringLiteral("uniform highp mat4 uMatrix%1;").arg(Id)
          << QStringLiteral("varying mediump vec2 vTexCoord%1;").arg(Id)
          << QStringLiteral("mediump vec3 Shade%1(mediump vec3 normal, lowp float t)").arg(Id)
          << QStringLiteral("{")
          << QStringLiteral("    mediump float d = max(dot(normal, vec3(%1, %2, 0.8)), 0.0);").arg(Random.Number(), Random.Number())
          << QStringLiteral("    highp vec4 p = uMatrix%1 * vec4(normal * %2, 1.0); // object space").arg(Id, Random.Number())
          << QStringLiteral("    if (d > %1)").arg(Random.Number())
          << QStringLiteral("        d = pow(d, 16.0) + length(p.xyz) * 0.01;")
          << QStringLiteral("    for (int i = 0; i < %1; ++i)").arg(Random.Next(8) + 1)
          << QStringLiteral("        d += texture2D(sTexture, vTexCoord%1 + float(i) * 0.01).r;").arg(Id)
          << QStringLiteral("    lowp vec4 c = vec4(clamp(d, 0.0, 1.0));")
          << QStringLiteral("    return mix(normal, c.rgb, smoothstep(0.0, 1.0, t));")
          << QStringLiteral("}")
          << QString();
}

QString GenerateGLSLES(int iLines)
{
    CRandom Random;
    QStringList Lines = {QStringLiteral("#version 100"), QStringLiteral("precision mediump float;"),
                         QStringLiteral("uniform sampler2D sTexture;"), QString()};
    for (int i = 0; Lines.size() < iLines; ++i)
        AppendFunction(Lines, Random, i);
    return QStringList(Lines.mid(0, iLines)).join(QLatin1Char('\n'));
}

QString GenerateEffect(int iLines)
{
    CRandom Random;
    QStringList Lines = {QStringLiteral("[HEADER]"), QStringLiteral("    VERSION 01.00.00.00"),
                         QStringLiteral("    DESCRIPTION Generated effect"), QStringLiteral("[/HEADER]"), QString()};
    for (int i = 0; Lines.size() < iLines; ++i)
    {
        const QString Id = QString::number(i);
        Lines << QStringLiteral("[TEXTURE]") << QStringLiteral("    NAME Map%1").arg(Id)
              << QStringLiteral("    PATH textures/map%1.pvr").arg(Id) << QStringLiteral("    FILTER LINEAR-LINEAR-NEAREST")
              << QStringLiteral("    WRAP REPEAT-CLAMP") << QStringLiteral("[/TEXTURE]")
              << QStringLiteral("[FRAGMENTSHADER]") << QStringLiteral("    NAME Fragment%1").arg(Id)
              << QStringLiteral("    [GLSL_CODE]");
        QStringList Code;
        AppendFunction(Code, Random, i);
        for (const QString& Line : Code)
            Lines << QStringLiteral("        ") + Line;
        Lines << QStringLiteral("    [/GLSL_CODE]") << QStringLiteral("[/FRAGMENTSHADER]")
              << QStringLiteral("[EFFECT]") << QStringLiteral("    NAME Effect%1").arg(Id)
              << QStringLiteral("    UNIFORM sTexture TEXTURE%1 // bound below").arg(i % 8)
              << QStringLiteral("    TEXTURE %1 Map%2").arg(i % 8).arg(Id)
              << QStringLiteral("    FRAGMENTSHADER Fragment%1").arg(Id) << QStringLiteral("[/EFFECT]") << QString();
    }
    return QStringList(Lines.mid(0, iLines)).join(QLatin1Char('\n'));
}

std::unique_ptr<QTextDocument> MakeDocument(const QString& Text)
{
    auto pDocument = std::make_unique<QTextDocument>();
    pDocument->setDocumentLayout(new QPlainTextDocumentLayout(pDocument.get()));
    pDocument->setPlainText(Text);
    return pDocument;
}

using FMakeHighlighter = std::function<std::unique_ptr<QSyntaxHighlighter>(QTextDocument*)>;

// Best time of rehighlight() over fresh documents; the last document is kept for comparison.
double BestHighlightMs(const QString& Text, const FMakeHighlighter& Make, int iRuns, std::unique_ptr<QTextDocument>* ppLast)
{
    std::vector<double> Times;
    for (int iRun = 0; iRun < iRuns; ++iRun)
    {
        std::unique_ptr<QTextDocument> pDocument = MakeDocument(Text);
        std::unique_ptr<QSyntaxHighlighter> pHighlighter = Make(pDocument.get());
        const CCpuTimer Timer;
        pHighlighter->rehighlight();
        Times.push_back(Timer.ElapsedMs());
        pHighlighter.reset();
        *ppLast = std::move(pDocument);
    }
    return *std::min_element(Times.begin(), Times.end());
}

bool SameFormats(const QTextDocument& A, const QTextDocument& B)
{
    if (A.blockCount() != B.blockCount())
        return false;
    for (QTextBlock BlockA = A.begin(), BlockB = B.begin(); BlockA.isValid(); BlockA = BlockA.next(), BlockB = BlockB.next())
    {
        if (BlockA.userState() != BlockB.userState() || BlockA.layout()->formats() != BlockB.layout()->formats())
            return false;
    }
    return true;
}

double MedianKeystrokeUs(const QString& Text, EShaderDocType eType, const CShaderHighlightController& Controller)
{
    std::unique_ptr<QTextDocument> pDocument = MakeDocument(Text);
    CShaderHighlighter Highlighter(pDocument.get(), eType, &Controller);
    QCoreApplication::processEvents(); // the first, full highlight
    CRandom Random;
    std::vector<double> Times;
    const int iMiddle = pDocument->blockCount() / 2;
    for (int i = 0; i < s_iEdits; ++i)
    {
        const QTextBlock Block = pDocument->findBlockByNumber(iMiddle - 100 + int(Random.Next(200)));
        QTextCursor Cursor(Block);
        Cursor.setPosition(Block.position() + Block.length() / 2);
        const CCpuTimer Timer;
        Cursor.insertText(QStringLiteral("x"));
        Times.push_back(Timer.ElapsedMs() * 1e3);
        Cursor.deletePreviousChar();
    }
    std::sort(Times.begin(), Times.end());
    return Times[Times.size() / 2];
}

// The best time of the Qt 5 program, or a negative value when it can't be run.
double RunKSyntax(const QString& Program, const QString& Text)
{
    QTemporaryDir Directory;
    QFile File(Directory.filePath(QStringLiteral("generated.glsl")));
    if (Program.isEmpty() || !Directory.isValid() || !File.open(QIODevice::WriteOnly))
        return -1.0;
    File.write(Text.toUtf8());
    File.close();
    QProcess Process;
    Process.start(Program, {File.fileName(), QStringLiteral("GLSL"), QString::number(s_iRuns)});
    if (!Process.waitForFinished(300000) || Process.exitCode() != 0)
        return -1.0;
    const QString Output = QString::fromUtf8(Process.readAllStandardOutput()).trimmed();
    const QString Prefix = QStringLiteral("best_ms=");
    return Output.startsWith(Prefix) ? Output.mid(Prefix.size()).toDouble() : -1.0;
}

struct SResult
{
    double dOurs = 0;
    double dReference = 0;
    bool bIdentical = false;
};

SResult Measure(const char* pName, const QString& Text, EShaderDocType eType, const CShaderHighlightController& Controller)
{
    SResult Result;
    std::unique_ptr<QTextDocument> pOurs;
    std::unique_ptr<QTextDocument> pReference;
    Result.dOurs = BestHighlightMs(Text, [&](QTextDocument* pDocument) -> std::unique_ptr<QSyntaxHighlighter> {
        return std::make_unique<CShaderHighlighter>(pDocument, eType, &Controller);
    }, s_iRuns, &pOurs);
    Result.dReference = BestHighlightMs(Text, [&](QTextDocument* pDocument) -> std::unique_ptr<QSyntaxHighlighter> {
        return std::make_unique<CReferenceShaderHighlighter>(pDocument, eType, &Controller);
    }, s_iReferenceRuns, &pReference);
    Result.bIdentical = SameFormats(*pOurs, *pReference);
    std::unique_ptr<QTextDocument> pFloor;
    const double dEmpty = BestHighlightMs(Text, [&](QTextDocument* pDocument) -> std::unique_ptr<QSyntaxHighlighter> {
        return std::make_unique<CEmptyHighlighter>(pDocument, false);
    }, s_iRuns, &pFloor);
    const double dOneFormat = BestHighlightMs(Text, [&](QTextDocument* pDocument) -> std::unique_ptr<QSyntaxHighlighter> {
        return std::make_unique<CEmptyHighlighter>(pDocument, true);
    }, s_iRuns, &pFloor);
    std::printf("%s: %d lines, ours %.1f ms, reference %.1f ms (x%.1f), formats identical: %s; "
                "floor: empty highlighter %.1f ms, one setFormat per block %.1f ms\n",
                pName, pOurs->blockCount(), Result.dOurs, Result.dReference, Result.dReference / Result.dOurs,
                Result.bIdentical ? "yes" : "NO", dEmpty, dOneFormat);
    return Result;
}
} // namespace

int main(int argc, char** argv)
{
    QApplication Application(argc, argv);
    const QStringList Arguments = Application.arguments();
    const int iKSyntax = int(Arguments.indexOf(QStringLiteral("--ksyntax")));
    const QString KSyntaxProgram = iKSyntax >= 0 && iKSyntax + 1 < Arguments.size() ? Arguments.at(iKSyntax + 1) : QString();

    // The built-in scheme: a store that is never loaded or saved.
    CZamPreferences Store(QStringLiteral("HighlightBenchmark"));
    const CShaderHighlightController Controller(&Store);

    const QString GLSLES = GenerateGLSLES(s_iGLSLESLines);
    const SResult Shader = Measure("GLSL ES", GLSLES, DocType_GLSLESFragment, Controller);
    const SResult Effect = Measure("effect", GenerateEffect(s_iEffectLines), DocType_ZFXGLSLES, Controller);

    const double dKSyntax = RunKSyntax(KSyntaxProgram, GLSLES);
    if (dKSyntax > 0)
        std::printf("GLSL ES: KSyntaxHighlighting (GLSL definition) %.1f ms\n", dKSyntax);
    else
        std::printf("GLSL ES: KSyntaxHighlighting not run (pass --ksyntax <ksyntax_bench>)\n");

    const double dKeystroke = MedianKeystrokeUs(GLSLES, DocType_GLSLESFragment, Controller);
    std::printf("one-character edit mid-file: median %.1f us over %d edits\n", dKeystroke, s_iEdits);

    const QString VsKSyntax = dKSyntax > 0 ? QString::number(dKSyntax / Shader.dOurs, 'f', 2) : QStringLiteral("n/a");
    std::printf("vs_reference=%.2f vs_ksyntaxhighlighting=%s keystroke_us=%.1f\n", Shader.dReference / Shader.dOurs,
                qPrintable(VsKSyntax), dKeystroke);
    return Shader.bIdentical && Effect.bIdentical ? 0 : 1;
}
