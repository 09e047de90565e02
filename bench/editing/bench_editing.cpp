// Editing speed on large documents: opening until the first highlighted paint, typing, cursor
// matching and quick find; then a 64 MiB document, opened and typed in, against a bare
// QPlainTextEdit given the same text in the same run (the ratios). Prints one summary line
// last.
//
// With a scenario argument only that part runs after the opening, so an instruction counter
// can measure it alone:
//   bench_editing typing <keys>   <keys> keystrokes at the end, then as many in the middle
//   bench_editing match           one cursor match on a word that occurs 5,000 times
//   bench_editing find            one quick find of a text with 10,000 matches
//   bench_editing highlighted <keys>
//                                 with both kinds of highlights shown: ten pages down,
//                                 then <keys> keystrokes
//   bench_editing large <keys>    only the 64 MiB document: open, then <keys> keystrokes
//   bench_editing marks <keys>    with a compile's messages marked on every tenth line and
//                                 changed cycle counts in the gutter, <keys> keystrokes
//   bench_editing cores <keys>    with the background compile and the All Cores view's four
//                                 compiles started (and cancelled) by every keystroke
// e.g. valgrind --tool=callgrind --collect-atstart=no --toggle-collect='*Scenario*'
//      bench/bench_editing typing 20

#include "ShaderEditComponent/CFindReplace.h"
#include "ShaderEditComponent/compile/controller/CAllCoresCompile.h"
#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/compile/model/MetaTypes.h"
#include "ShaderEditComponent/CShaderEditor.h"
#include "ShaderEditComponent/CShaderEditPanel.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"
#include "ShaderEditComponent/IShaderEditorDelegate.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

namespace
{
class CSilentDelegate : public IShaderEditorDelegate
{
public:
    QMessageBox::StandardButton AskSaveChanges(const QString&) override { return QMessageBox::Discard; }
    bool GetSaveFileName(CZamTString&, EShaderDocType) override { return false; }
    int ShowPrintDialog(QPrinter*, bool) override { return 0; }
    bool GetOpenFileName(CZamTString&) override { return false; }
    void ReportIOError(const CZamTString&, const CZamTString& Error) override
    {
        std::fprintf(stderr, "error: %s\n", Error.GetString());
    }
};

// A GLSL ES fragment shader of iLines lines in which "shade" occurs 5,000 times and
// "vec3" 10,000 times.
QByteArray GenerateShader(int iLines)
{
    QByteArray Text = "precision mediump float;\nuniform sampler2D uTexture;\nvarying vec2 vCoord;\n";
    for (int i = 3; i < iLines - 1; ++i)
    {
        if (i % 4 == 0)
            Text += "    vec3 shade" + QByteArray::number(i) + " = shade * vec3(0.5, 0.25, 1.0); // tint\n";
        else if (i % 4 == 2)
            Text += "    vec4 c" + QByteArray::number(i) + " = texture2D(uTexture, vCoord) * vec4(0.5);\n";
        else
            Text += "    float f" + QByteArray::number(i) + " = clamp(dot(vCoord, vCoord), 0.0, 1.0);\n";
    }
    Text += "void main() { gl_FragColor = vec4(1.0); }\n";
    return Text;
}

double Milliseconds(const QElapsedTimer& Timer)
{
    return static_cast<double>(Timer.nsecsElapsed()) / 1.0e6;
}

double Percentile(std::vector<double> Samples, double dFraction)
{
    std::sort(Samples.begin(), Samples.end());
    const size_t uiIndex =
        std::min(Samples.size() - 1, static_cast<size_t>(dFraction * static_cast<double>(Samples.size())));
    return Samples[uiIndex];
}

// One key press and release, then everything it queued, including the repaint.
double TimeKeystroke(QWidget* pTarget, char cKey)
{
    QElapsedTimer Timer;
    Timer.start();
    QTest::keyClick(pTarget, cKey);
    QApplication::processEvents();
    return Milliseconds(Timer);
}

void MoveTo(CShaderEditPanel* pPanel, int iBlock)
{
    QTextCursor Cursor(pPanel->document()->findBlockByNumber(iBlock));
    Cursor.movePosition(QTextCursor::EndOfBlock);
    pPanel->setTextCursor(Cursor);
    pPanel->centerCursor();
    QApplication::processEvents();
}

struct SFixture
{
    QTemporaryDir Dir;
    CShaderHighlightController Highlight;
    CSilentDelegate Delegate;
    CShaderEditor Editor{&Highlight};
    CShaderEditPanel* pPanel = nullptr;
    double dOpenMs = 0.0;

    bool Open()
    {
        const QString Path = Dir.filePath(QStringLiteral("large.fsh"));
        QFile File(Path);
        if (!File.open(QIODevice::WriteOnly) || File.write(GenerateShader(20000)) < 0)
            return false;
        File.close();

        Editor.SetDelegate(&Delegate);
        Editor.resize(1200, 900);
        Editor.show();
        QApplication::processEvents();

        QElapsedTimer Timer;
        Timer.start();
        if (!Editor.OnOpenFile(Path))
            return false;
        pPanel = Editor.GetCurrentPanel();
        pPanel->viewport()->repaint();
        QApplication::processEvents();
        dOpenMs = Milliseconds(Timer);
        std::printf("open: %d lines, first highlighted paint after %.1f ms\n", pPanel->blockCount(), dOpenMs);
        return true;
    }
};

// Keystrokes at the end of the document, then in the middle; every keystroke's time.
std::vector<double> ScenarioTyping(CShaderEditPanel* pPanel, int iKeys)
{
    std::vector<double> Keystrokes;
    const char* const pTyped = "abcdefghijklmnopqrstuvwxyz";
    for (int iBlock : {pPanel->blockCount() - 1, pPanel->blockCount() / 2})
    {
        MoveTo(pPanel, iBlock);
        std::vector<double> Here;
        for (int i = 0; i < iKeys; ++i)
            Here.push_back(TimeKeystroke(pPanel, pTyped[i % 26]));
        std::printf("typing at line %d: median %.2f ms, p99 %.2f ms\n", iBlock + 1, Percentile(Here, 0.5),
                    Percentile(Here, 0.99));
        Keystrokes.insert(Keystrokes.end(), Here.begin(), Here.end());
    }
    return Keystrokes;
}

void PlaceCursorOnWord(CShaderEditPanel* pPanel)
{
    QTextCursor OnWord = pPanel->document()->find(QStringLiteral("shade"), 0,
                                                  QTextDocument::FindCaseSensitively | QTextDocument::FindWholeWords);
    OnWord.clearSelection();
    pPanel->setTextCursor(OnWord);
    QApplication::processEvents();
}

// From the match request to the repaint.
double ScenarioCursorMatch(CShaderEditor* pEditor, CShaderEditPanel* pPanel)
{
    QElapsedTimer Timer;
    Timer.start();
    QMetaObject::invokeMethod(pEditor, "OnHighlightCursorMatches");
    pPanel->viewport()->repaint();
    QApplication::processEvents();
    return Milliseconds(Timer);
}

// The whole text typed into the find bar at once, up to the repaint.
double ScenarioQuickFind(QLineEdit* pFindText, CShaderEditPanel* pPanel)
{
    QElapsedTimer Timer;
    Timer.start();
    pFindText->setText(QStringLiteral("vec3"));
    pPanel->viewport()->repaint();
    QApplication::processEvents();
    return Milliseconds(Timer);
}

// Pages down, then keystrokes, with thousands of highlights in the document; every page's
// and every keystroke's time.
std::pair<std::vector<double>, std::vector<double>> ScenarioAmongHighlights(CShaderEditPanel* pPanel, int iPages,
                                                                            int iKeys)
{
    std::vector<double> Pages;
    for (int i = 0; i < iPages; ++i)
    {
        QElapsedTimer Timer;
        Timer.start();
        QTest::keyClick(pPanel, Qt::Key_PageDown);
        QApplication::processEvents();
        Pages.push_back(Milliseconds(Timer));
    }
    std::vector<double> Keystrokes;
    for (int i = 0; i < iKeys; ++i)
        Keystrokes.push_back(TimeKeystroke(pPanel, 'x'));
    return {Pages, Keystrokes};
}

// A compile result as a broken shader gives it: an error or a warning on every tenth line,
// and counts on every line of which every third moved since the result before.
void MarkCompileResult(CShaderEditPanel* pPanel)
{
    SCompileResult Result;
    CZamTArray<int> Before;
    CZamTArray<int> After;
    for (int iLine = 1; iLine <= pPanel->blockCount(); ++iLine)
    {
        if (iLine % 10 == 0)
        {
            const bool bError = iLine % 20 == 0;
            SCompileMessage Message;
            Message.iLine = iLine;
            Message.eSeverity = bError ? SCompileMessage::Severity_Error : SCompileMessage::Severity_Warning;
            Message.Text = QStringLiteral("%1: 0:%2: 'shade' : something to say")
                               .arg(bError ? QStringLiteral("ERROR") : QStringLiteral("WARNING"))
                               .arg(iLine);
            Result.Messages.append(Message);
        }
        Before.Append(iLine % 7);
        After.Append(iLine % 3 == 0 ? iLine % 7 + 1 : iLine % 7);
    }
    pPanel->OnCompileCycleCountChanged(pPanel->GetPanelID(), Before);
    pPanel->OnCompileCycleCountChanged(pPanel->GetPanelID(), After);
    pPanel->OnPanelResultChanged(pPanel->GetPanelID(), Result);
    QApplication::processEvents();
}

// Back to a panel without messages or counts, so the figures after it are taken as before.
void ClearCompileResult(CShaderEditPanel* pPanel)
{
    // The second empty set also drops the counts the first one kept as the previous ones.
    pPanel->OnCompileCycleCountChanged(pPanel->GetPanelID(), CZamTArray<int>());
    pPanel->OnCompileCycleCountChanged(pPanel->GetPanelID(), CZamTArray<int>());
    pPanel->OnPanelResultChanged(pPanel->GetPanelID(), SCompileResult());
    QApplication::processEvents();
}

void DisableCursorMatching(CShaderEditor* pEditor)
{
    // Cursor matching is timed on its own. Its timer would fire between keystrokes whenever
    // one takes longer than its delay, which makes the counts depend on the machine's speed.
    Settings::SEditor Settings;
    Settings.bPerformCursorMatch = false;
    pEditor->OnEditorSettingsChanged(Settings);
}
// The large document: the generated shader repeated up to 64 MiB.
QByteArray GenerateLargeShader()
{
    const QByteArray Block = GenerateShader(20000);
    QByteArray Text;
    Text.reserve(64 * 1024 * 1024);
    while (Text.size() + Block.size() <= 64 * 1024 * 1024)
        Text += Block;
    return Text;
}

struct SLargeRun
{
    double dOpenMs = 0.0;
    std::vector<double> Keystrokes;
};

// Keystrokes in the middle of a large document, after the opening has settled.
std::vector<double> TypeInTheMiddle(QPlainTextEdit* pEdit, int iKeys)
{
    QTextCursor Cursor(pEdit->document()->findBlockByNumber(pEdit->blockCount() / 2));
    Cursor.movePosition(QTextCursor::EndOfBlock);
    pEdit->setTextCursor(Cursor);
    pEdit->centerCursor();
    QApplication::processEvents();
    std::vector<double> Keystrokes;
    for (int i = 0; i < iKeys; ++i)
        Keystrokes.push_back(TimeKeystroke(pEdit, 'a' + static_cast<char>(i % 26)));
    return Keystrokes;
}

// The baseline: what Qt's own text edit needs for the same bytes, decoded the same way.
SLargeRun MeasureBareEdit(const QByteArray& Bytes, int iKeys)
{
    SLargeRun Run;
    QPlainTextEdit Edit;
    Edit.setLineWrapMode(QPlainTextEdit::NoWrap);
    Edit.resize(1200, 900);
    Edit.show();
    QApplication::processEvents();
    QElapsedTimer Timer;
    Timer.start();
    Edit.setPlainText(QString::fromUtf8(Bytes));
    Edit.viewport()->repaint();
    QApplication::processEvents();
    Run.dOpenMs = Milliseconds(Timer);
    Run.Keystrokes = TypeInTheMiddle(&Edit, iKeys);
    return Run;
}

SLargeRun MeasureEditor(const QString& Path, int iKeys)
{
    SLargeRun Run;
    CShaderHighlightController Highlight;
    CSilentDelegate Delegate;
    CShaderEditor Editor(&Highlight);
    Editor.SetDelegate(&Delegate);
    Editor.resize(1200, 900);
    Editor.show();
    DisableCursorMatching(&Editor);
    QApplication::processEvents();
    QElapsedTimer Timer;
    Timer.start();
    if (!Editor.OnOpenFile(Path))
        return Run;
    CShaderEditPanel* pPanel = Editor.GetCurrentPanel();
    pPanel->viewport()->repaint();
    QApplication::processEvents();
    Run.dOpenMs = Milliseconds(Timer);
    Run.Keystrokes = TypeInTheMiddle(pPanel, iKeys);
    return Run;
}

struct SLargeFigures
{
    double dOpenMs = 0.0;
    double dOpenRatio = 0.0;
    double dKeystrokeP99Ms = 0.0;
    double dKeystrokeRatio = 0.0;
};

SLargeFigures ScenarioLargeDocument(const QString& Folder, int iKeys)
{
    SLargeFigures Figures;
    const QByteArray Bytes = GenerateLargeShader();
    const QString Path = Folder + QStringLiteral("/large64.fsh");
    QFile File(Path);
    if (!File.open(QIODevice::WriteOnly) || File.write(Bytes) != Bytes.size())
        return Figures;
    File.close();
    const SLargeRun Bare = MeasureBareEdit(Bytes, iKeys);
    const SLargeRun Ours = MeasureEditor(Path, iKeys);
    if (Ours.Keystrokes.empty())
        return Figures;
    const double dBareP99 = Percentile(Bare.Keystrokes, 0.99);
    Figures.dOpenMs = Ours.dOpenMs;
    Figures.dOpenRatio = Ours.dOpenMs / Bare.dOpenMs;
    Figures.dKeystrokeP99Ms = Percentile(Ours.Keystrokes, 0.99);
    Figures.dKeystrokeRatio = Figures.dKeystrokeP99Ms / dBareP99;
    std::printf("64 MiB (%lld bytes): open %.0f ms, bare text edit %.0f ms, ratio %.2f\n",
                static_cast<long long>(Bytes.size()), Ours.dOpenMs, Bare.dOpenMs, Figures.dOpenRatio);
    std::printf("64 MiB: keystroke p99 %.2f ms (median %.2f), bare text edit p99 %.2f ms, ratio %.2f\n",
                Figures.dKeystrokeP99Ms, Percentile(Ours.Keystrokes, 0.5), dBareP99, Figures.dKeystrokeRatio);
    return Figures;
}

} // namespace

// Typing while every keystroke starts the document's compile and the four of the All Cores
// view, each cancelling the ones before, as in the window with that view open. The compilers
// are the build's bundled ones; they run beside the typing, which is what is timed.
double ScenarioAllCores(CShaderEditor* pEditor, CShaderEditPanel* pPanel, int iKeys)
{
    SShaderEditControllerOptions Options;
    Options.CompilerSearchPaths =
        QStringList{QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../bin"))};
    CShaderEditController Controller(Options);
    CAllCoresCompile Cores(Controller);
    pEditor->SetController(&Controller);
    QObject::connect(pEditor, &CShaderEditor::CancelCompile, &Cores, &CAllCoresCompile::OnCancel);
    QObject::connect(pEditor, &CShaderEditor::RecompileContents, &Cores,
                     [&Cores](const CZamTHash& PanelID, const QString& Text, EShaderDocType eType,
                              ECompileInvocationType) { Cores.OnCompile(PanelID, Text, eType, QString()); });
    Controller.WaitForCompilerDetection();
    std::printf("with the All Cores view's compiles:\n");
    const double dP99 = Percentile(ScenarioTyping(pPanel, iKeys), 0.99);
    const int iStarted = Cores.GetCompilesInFlight();
    std::printf("all cores: %d compiles still under way after the last keystroke (4 at most)\n", iStarted);
    return dP99;
}

namespace
{

int Count(int argc, char** argv, int iDefault)
{
    return argc > 2 ? std::atoi(argv[2]) : iDefault;
}

// One scenario on its own, for profiling; returns -1 when the name is not one of them.
int RunScenario(const char* pScenario, SFixture& Fixture, CFindReplace& FindBar, int iCount)
{
    CShaderEditPanel* pPanel = Fixture.pPanel;
    auto* pFindText = FindBar.findChild<QLineEdit*>(QStringLiteral("FindTextbox"));
    if (std::strcmp(pScenario, "typing") == 0)
        ScenarioTyping(pPanel, iCount);
    else if (std::strcmp(pScenario, "cores") == 0)
        ScenarioAllCores(&Fixture.Editor, pPanel, iCount);
    else if (std::strcmp(pScenario, "marks") == 0)
    {
        MarkCompileResult(pPanel);
        ScenarioTyping(pPanel, iCount);
    }
    else if (std::strcmp(pScenario, "match") == 0)
    {
        PlaceCursorOnWord(pPanel);
        std::printf("cursor match: %.1f ms\n", ScenarioCursorMatch(&Fixture.Editor, pPanel));
    }
    else if (std::strcmp(pScenario, "find") == 0)
        std::printf("quick find: %.1f ms\n", ScenarioQuickFind(pFindText, pPanel));
    else if (std::strcmp(pScenario, "highlighted") == 0)
    {
        PlaceCursorOnWord(pPanel);
        ScenarioCursorMatch(&Fixture.Editor, pPanel);
        ScenarioQuickFind(pFindText, pPanel);
        ScenarioAmongHighlights(pPanel, 10, iCount);
    }
    else
        return -1;
    return 0;
}

int RunAll(SFixture& Fixture, CFindReplace& FindBar)
{
    CShaderEditPanel* pPanel = Fixture.pPanel;
    auto* pFindText = FindBar.findChild<QLineEdit*>(QStringLiteral("FindTextbox"));
    auto* pMatches = FindBar.findChild<QLabel*>(QStringLiteral("NumMatchesLabel"));

    const std::vector<double> Keystrokes = ScenarioTyping(pPanel, 200);
    const double dKeystrokeP99 = Percentile(Keystrokes, 0.99);
    MarkCompileResult(pPanel);
    std::printf("with %d compile messages marked:\n", pPanel->blockCount() / 10);
    const double dMarkedP99 = Percentile(ScenarioTyping(pPanel, 200), 0.99);
    ClearCompileResult(pPanel);

    PlaceCursorOnWord(pPanel);
    const double dCursorMatchMs = ScenarioCursorMatch(&Fixture.Editor, pPanel);
    const auto& Matches = pPanel->GetHighlightSelections(CShaderEditPanel::Highlight_CursorMatches);
    std::printf("cursor match: %lld highlights in %.1f ms\n", static_cast<long long>(Matches.size()), dCursorMatchMs);

    const double dQuickFindMs = ScenarioQuickFind(pFindText, pPanel);
    std::printf("quick find: \"%s\" in %.1f ms\n", qPrintable(pMatches->text()), dQuickFindMs);

    // Not part of the summary: what thousands of highlights cost while working on.
    const auto [Pages, Highlighted] = ScenarioAmongHighlights(pPanel, 20, 100);
    const auto& Found = pPanel->GetHighlightSelections(CShaderEditPanel::Highlight_FindResults);
    std::printf("page down with %lld highlights: median %.2f ms, max %.2f ms\n",
                static_cast<long long>(Found.size() + Matches.size()), Percentile(Pages, 0.5), Percentile(Pages, 1.0));
    std::printf("typing among the highlights: median %.2f ms, p99 %.2f ms\n", Percentile(Highlighted, 0.5),
                Percentile(Highlighted, 0.99));

    const SLargeFigures Large = ScenarioLargeDocument(Fixture.Dir.path(), 200);
    const double dAllCoresP99 = ScenarioAllCores(&Fixture.Editor, pPanel, 200);
    std::printf("open_ms=%.1f keystroke_p99_ms=%.2f keystroke_marked_p99_ms=%.2f keystroke_allcores_p99_ms=%.2f "
                "cursor_match_ms=%.1f quick_find_ms=%.1f open64_ms=%.0f open64_vs_bare=%.2f keystroke64_p99_ms=%.2f "
                "keystroke64_vs_bare=%.2f\n",
                Fixture.dOpenMs, dKeystrokeP99, dMarkedP99, dAllCoresP99, dCursorMatchMs, dQuickFindMs, Large.dOpenMs,
                Large.dOpenRatio, Large.dKeystrokeP99Ms, Large.dKeystrokeRatio);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication App(argc, argv);
    RegisterCompileMetaTypes();
    const char* pScenario = argc > 1 ? argv[1] : "";
    if (std::strcmp(pScenario, "large") == 0)
    {
        QTemporaryDir Folder;
        ScenarioLargeDocument(Folder.path(), Count(argc, argv, 200));
        return 0;
    }

    SFixture Fixture;
    if (!Fixture.Open())
        return 1;
    DisableCursorMatching(&Fixture.Editor);
    CFindReplace FindBar;
    FindBar.SetDelegate(&Fixture.Editor);
    FindBar.show();
    if (!FindBar.findChild<QLineEdit*>(QStringLiteral("FindTextbox"))
        || !FindBar.findChild<QLabel*>(QStringLiteral("NumMatchesLabel")))
        return 1;

    if (*pScenario)
    {
        if (RunScenario(pScenario, Fixture, FindBar, Count(argc, argv, 20)) == 0)
            return 0;
        std::fprintf(stderr, "unknown scenario: %s\n", pScenario);
        return 2;
    }
    return RunAll(Fixture, FindBar);
}
