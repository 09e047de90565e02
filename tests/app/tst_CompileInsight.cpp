// What the compile results tell beside the text, through the real main window offscreen with
// the bundled compiler: messages marked in the text, the source line and its instructions
// found from either side, the last good result kept while the text does not compile, and how
// each edit moved the figures.

#include "ShaderEditComponent/CLineNumberArea.h"
#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "WindowTestSupport.h"

#include <QComboBox>
#include <QDockWidget>
#include <QLabel>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QtTest>

using namespace WindowTest;

namespace
{
constexpr int s_iWait = 20000;

// The wavy underlines of the panel's text, as (0-based line, colour name).
QList<QPair<int, QString>> Underlines(const CShaderEditPanel* pPanel)
{
    QList<QPair<int, QString>> Lines;
    for (const QTextEdit::ExtraSelection& Selection : pPanel->extraSelections())
    {
        if (Selection.format.underlineStyle() == QTextCharFormat::WaveUnderline && Selection.cursor.hasSelection())
            Lines.append({Selection.cursor.block().blockNumber(), Selection.format.underlineColor().name()});
    }
    return Lines;
}

// The source line column of a line of the bundled compiler's disassembly.
int SourceLineOf(const QTextBlock& Block)
{
    const QStringList Words = Block.text().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    return Words.size() > 1 ? Words.at(1).toInt() : 0;
}

QList<int> HighlightedSourceLines(const QPlainTextEdit* pDisassembly)
{
    QList<int> Lines;
    for (const QTextEdit::ExtraSelection& Selection : pDisassembly->extraSelections())
        Lines.append(SourceLineOf(Selection.cursor.block()));
    return Lines;
}

void PutCursorOnLine(CShaderEditPanel* pPanel, int iLine)
{
    QTextCursor Cursor(pPanel->document()->findBlockByNumber(iLine - 1));
    Cursor.movePosition(QTextCursor::EndOfBlock);
    pPanel->setTextCursor(Cursor);
}

void ReplaceInLine(CShaderEditPanel* pPanel, int iLine, const QString& Old, const QString& New)
{
    const QTextBlock Block = pPanel->document()->findBlockByNumber(iLine - 1);
    QTextCursor Cursor(Block);
    const int iColumn = static_cast<int>(Block.text().indexOf(Old));
    QVERIFY(iColumn >= 0);
    Cursor.setPosition(Block.position() + iColumn);
    Cursor.setPosition(Block.position() + iColumn + static_cast<int>(Old.size()), QTextCursor::KeepAnchor);
    Cursor.insertText(New);
}
} // namespace

class CCompileInsightTest : public CWindowTest
{
    Q_OBJECT

private slots:
    void MessagesAreMarkedInTheText();
    void SourceLinesAndInstructionsFindEachOther();
    void LastGoodResultStaysWhileTheTextDoesNotCompile();
    void EachEditShowsWhatItCost();
};

void CCompileInsightTest::MessagesAreMarkedInTheText()
{
    QByteArray Broken = s_pFragment;
    Broken.replace("precision mediump float;\n", "#extension GL_OES_made_up : warn\nprecision mediump float;\n");
    Broken.replace("vec3(0.3, 0.6, 0.1)", "vec3(0.3, 0.6, undefinedName)");
    auto pWindow = OpenCompiled(NewFile(QStringLiteral("marked.frag"), Broken), s_iWait);
    QVERIFY(pWindow);
    CShaderEditPanel* pPanel = pWindow->GetEditor()->GetCurrentPanel();
    const Settings::SCompiler& Colours = pWindow->GetEditController()->GetCompilerSettings();
    const QString Red = Colours.ErrorFormat.foreground().color().name();
    const QString Amber = Colours.WarningFormat.foreground().color().name();

    // The warning on line 2, the error on line 10, in the log's colours, with the message as tool tip.
    QTRY_COMPARE(Underlines(pPanel), (QList<QPair<int, QString>>{{1, Amber}, {9, Red}}));
    QVERIFY(pPanel->GetCompileMessages(9).contains(QStringLiteral("'undefinedName' : undeclared identifier")));
    QVERIFY(pPanel->GetCompileMessages(1).startsWith(QStringLiteral("WARNING: 0:2:")));
    auto* pGutter = pPanel->findChildren<CLineNumberArea*>().at(0);
    const QPoint OnLine10(6, pPanel->cursorRect(QTextCursor(pPanel->document()->findBlockByNumber(9))).center().y());
    QCOMPARE(pPanel->GutterToolTip(CLineNumberArea::Kind_LineNumbers, OnLine10), pPanel->GetCompileMessages(9));
    QCOMPARE(pGutter->grab().toImage().pixelColor(0, OnLine10.y()).name(), Red);
    // A double-click on the log's error line takes the cursor there.
    QPlainTextEdit* pLog = LogOf(*pWindow);
    const QRect LogLine = pLog->cursorRect(QTextCursor(pLog->document()->find(QStringLiteral("ERROR: 0:10:")).block()));
    QTest::mouseDClick(pLog->viewport(), Qt::LeftButton, Qt::NoModifier, LogLine.center() + QPoint(20, 0));
    QCOMPARE(pPanel->textCursor().blockNumber(), 9);
    QVERIFY(pPanel->hasFocus());

    // A line added above moves the marks at once, before the next result arrives.
    QSignalSpy Results(pWindow->GetEditController(), &CShaderEditController::PanelResultChanged);
    QTextCursor(pPanel->document()->findBlockByNumber(1)).insertText(QStringLiteral("// a new second line\n"));
    QCOMPARE(Underlines(pPanel), (QList<QPair<int, QString>>{{2, Amber}, {10, Red}}));
    QVERIFY(Results.wait(s_iWait));
    QCOMPARE(Underlines(pPanel), (QList<QPair<int, QString>>{{2, Amber}, {10, Red}}));

    // Fixed, the error's mark goes; the warning stays.
    ReplaceInLine(pPanel, 11, QStringLiteral("undefinedName"), QStringLiteral("0.1"));
    QTRY_COMPARE_WITH_TIMEOUT(Underlines(pPanel), (QList<QPair<int, QString>>{{2, Amber}}), s_iWait);

    // An effect file's messages land on the effect file's own lines.
    QByteArray Effect = ReadAll(QDir(SourceDir()).filePath(QStringLiteral("examples/bloom_postprocess.zfx")));
    QVERIFY(Effect.contains("    ramp = ramp * ramp / (4.0 * knee);\n"));
    Effect.replace("    ramp = ramp * ramp / (4.0 * knee);\n", "    ramp = ramp * rampp / (4.0 * knee);\n");
    pWindow->OnOpenFile(NewFile(QStringLiteral("bloom.zfx"), Effect));
    CShaderEditPanel* pEffect = pWindow->GetEditor()->GetCurrentPanel();
    QVERIFY(pEffect != pPanel);
    QTRY_VERIFY_WITH_TIMEOUT(pEffect->GetCompileMessages(75).contains(QStringLiteral("rampp")), s_iWait);
    QVERIFY(pEffect->document()->findBlockByNumber(75).text().contains(QStringLiteral("rampp")));
    // The text edit holds the underlines near the lines in view; scrolling brings them in.
    PutCursorOnLine(pEffect, 76);
    QTRY_COMPARE(Underlines(pEffect), (QList<QPair<int, QString>>{{75, Red}}));
}

void CCompileInsightTest::SourceLinesAndInstructionsFindEachOther()
{
    auto pWindow = OpenCompiled(NewFile(QStringLiteral("follow.frag"), s_pFragment), s_iWait);
    QVERIFY(pWindow);
    CShaderEditPanel* pPanel = pWindow->GetEditor()->GetCurrentPanel();
    auto* pDisassembly = Child<QPlainTextEdit>(*pWindow, "OutputTextEdit");
    QTRY_VERIFY_WITH_TIMEOUT(pDisassembly->toPlainText().contains(QStringLiteral("; index")), s_iWait);
    // Compiler detection runs off the GUI thread; the disassembly's dock follows its answer.
    auto* pASMDock = Child<QDockWidget>(*pWindow, "DockWidget_TXEASM");
    QTRY_VERIFY(pASMDock->isVisible());
    QVERIFY(pASMDock->toggleViewAction()->isEnabled());

    // The cursor on line 9 lights that line's instructions, and the view shows the first.
    PutCursorOnLine(pPanel, 9);
    const QList<int> Lit = HighlightedSourceLines(pDisassembly);
    QVERIFY(!Lit.isEmpty());
    QCOMPARE(Lit, QList<int>(Lit.size(), 9));
    QCOMPARE(SourceLineOf(pDisassembly->textCursor().block()), 9);

    // Clicking an instruction of line 10 lights line 10 in the editor; the cursor stays.
    QTextBlock Instruction = pDisassembly->document()->firstBlock();
    while (Instruction.isValid() && SourceLineOf(Instruction) != 10)
        Instruction = Instruction.next();
    QVERIFY(Instruction.isValid());
    const QRect Rect = pDisassembly->cursorRect(QTextCursor(Instruction));
    QTest::mouseClick(pDisassembly->viewport(), Qt::LeftButton, Qt::NoModifier, Rect.center() + QPoint(30, 0));
    const auto& SourceLine = pPanel->GetHighlightSelections(CShaderEditPanel::Highlight_SourceLine);
    QCOMPARE(SourceLine.size(), 1);
    QCOMPARE(SourceLine.first().cursor.blockNumber(), 9);
    QCOMPARE(pPanel->textCursor().blockNumber(), 8);
    QVERIFY(HighlightedSourceLines(pDisassembly).contains(10));
    // Going elsewhere in the text puts the light out.
    PutCursorOnLine(pPanel, 3);
    QVERIFY(pPanel->GetHighlightSelections(CShaderEditPanel::Highlight_SourceLine).isEmpty());

    // In an effect file the line picks its shader, through the shader's first line.
    const QString Effect = QDir(SourceDir()).filePath(QStringLiteral("examples/bloom_postprocess.zfx"));
    pWindow->OnOpenFile(Effect);
    CShaderEditPanel* pEffect = pWindow->GetEditor()->GetCurrentPanel();
    auto* pSelector = Child<QComboBox>(*pWindow, "ShaderSelectCombo");
    QTRY_COMPARE_WITH_TIMEOUT(pSelector->count(), 3, s_iWait);
    QCOMPARE(pSelector->currentText(), QStringLiteral("FullScreenVS"));
    PutCursorOnLine(pEffect, 79); // fragColour = ... in BrightPassFS, whose code starts at line 57
    QCOMPARE(pSelector->currentText(), QStringLiteral("BrightPassFS"));
    const QList<int> EffectLit = HighlightedSourceLines(pDisassembly);
    QVERIFY(!EffectLit.isEmpty());
    QCOMPARE(EffectLit, QList<int>(EffectLit.size(), 79 - 56));
    pDisassembly->moveCursor(QTextCursor::End);
    pDisassembly->setTextCursor(pDisassembly->extraSelections().first().cursor);
    QCOMPARE(pEffect->GetHighlightSelections(CShaderEditPanel::Highlight_SourceLine).first().cursor.blockNumber(), 78);
}

void CCompileInsightTest::LastGoodResultStaysWhileTheTextDoesNotCompile()
{
    auto pWindow = OpenCompiled(NewFile(QStringLiteral("stale.frag"), s_pFragment), s_iWait);
    QVERIFY(pWindow);
    CShaderEditPanel* pPanel = pWindow->GetEditor()->GetCurrentPanel();
    QPlainTextEdit* pLog = LogOf(*pWindow);
    auto* pDisassembly = Child<QPlainTextEdit>(*pWindow, "OutputTextEdit");
    auto* pCycles = Child<QLabel>(*pWindow, "EmulatedCycles");
    auto* pASMStale = pDisassembly->parentWidget()->findChild<QLabel*>(QStringLiteral("StaleLabel"));
    auto* pProfileStale = pCycles->window()
                              ->findChild<QWidget*>(QStringLiteral("ProfileWindow"))
                              ->findChild<QLabel*>(QStringLiteral("StaleLabel"));
    QVERIFY(pASMStale && pProfileStale);
    QTRY_VERIFY_WITH_TIMEOUT(pLog->toPlainText().contains(QStringLiteral("Compile succeeded")), s_iWait);
    const QString Good = pDisassembly->toPlainText();
    const QString Cycles = pCycles->text();
    const CZamTArray<int> Counted = pPanel->GetCycleCounts();
    const int* const pEnd = Counted.GetData() + Counted.GetSize();
    QVERIFY(!Good.isEmpty() && Cycles != QStringLiteral("-") && Counted.GetSize() >= 10
            && std::find(Counted.GetData(), pEnd, -1) != pEnd);
    const QColor Normal = pDisassembly->palette().color(QPalette::Text);

    // A typo: the log shows the error, the rest the last good result, greyed and dated.
    QSignalSpy Results(pWindow->GetEditController(), &CShaderEditController::PanelResultChanged);
    PutCursorOnLine(pPanel, 9);
    QTest::keyClick(pPanel, Qt::Key_X);
    QTRY_VERIFY_WITH_TIMEOUT(pLog->toPlainText().contains(QStringLiteral("ERROR: 0:")), s_iWait);
    QVERIFY(pLog->toPlainText().contains(QStringLiteral("Compile failed")));
    QCOMPARE(pDisassembly->toPlainText(), Good);
    QCOMPARE(pCycles->text(), Cycles);
    QCOMPARE(pASMStale->text(), QStringLiteral("Last good result, 1 edit ago"));
    QVERIFY(!pASMStale->isHidden() && !pProfileStale->isHidden());
    QCOMPARE(pProfileStale->text(), pASMStale->text());
    QVERIFY(pDisassembly->palette().color(QPalette::Text) != Normal);
    QCOMPARE(pPanel->GetCycleCounts().GetSize(), Counted.GetSize());
    QVERIFY(!Underlines(pPanel).isEmpty());

    Results.clear();
    QTest::keyClick(pPanel, Qt::Key_Y);
    QTRY_COMPARE_WITH_TIMEOUT(pASMStale->text(), QStringLiteral("Last good result, 2 edits ago"), s_iWait);

    // Fixed: the views are current again.
    QTest::keyClick(pPanel, Qt::Key_Backspace);
    QTest::keyClick(pPanel, Qt::Key_Backspace);
    QTRY_VERIFY_WITH_TIMEOUT(pASMStale->isHidden(), s_iWait);
    QVERIFY(pLog->toPlainText().contains(QStringLiteral("Compile succeeded")));
    QVERIFY(pProfileStale->isHidden());
    QCOMPARE(pDisassembly->palette().color(QPalette::Text), Normal);
    QVERIFY(Underlines(pPanel).isEmpty());
}

void CCompileInsightTest::EachEditShowsWhatItCost()
{
    auto pWindow = OpenCompiled(NewFile(QStringLiteral("cost.frag"), s_pFragment), s_iWait);
    QVERIFY(pWindow);
    CShaderEditPanel* pPanel = pWindow->GetEditor()->GetCurrentPanel();
    QPlainTextEdit* pLog = LogOf(*pWindow);
    auto* pCycles = Child<QLabel>(*pWindow, "EmulatedCycles");
    auto* pStatus = Child<QLabel>(*pWindow, "CompileChangeLabel");
    auto* pChange = Child<QLabel>(*pWindow, "ChangeLabel");
    QTRY_VERIFY_WITH_TIMEOUT(pLog->toPlainText().contains(QStringLiteral("Compile succeeded")), s_iWait);
    // A first result has nothing to compare with.
    QVERIFY(pStatus->text().isEmpty());
    const double dBefore = pCycles->text().toDouble();
    const int iLine10 = pPanel->GetCycleCounts()[9];
    const int iLine8 = pPanel->GetCycleCounts()[7];

    // Line 10 gets dearer; a line pushed down by a new line above it has not changed.
    QSignalSpy Results(pWindow->GetEditController(), &CShaderEditController::PanelResultChanged);
    ReplaceInLine(pPanel, 10, QStringLiteral("colour * light;"), QStringLiteral("colour * sqrt(light) * exp2(light);"));
    QTRY_VERIFY_WITH_TIMEOUT(pStatus->text().startsWith(QStringLiteral("cycles ")), s_iWait);
    const double dAfter = pCycles->text().toDouble();
    QVERIFY(dAfter > dBefore);
    QVERIFY(pStatus->text().startsWith(
        QStringLiteral("cycles %1 \u2192 %2 (+%3)").arg(dBefore).arg(dAfter).arg(dAfter - dBefore)));
    QCOMPARE(pChange->text(), QStringLiteral("Last change: ") + pStatus->text());
    QVERIFY(pPanel->GetCycleCounts()[9] > iLine10);
    QVERIFY(pPanel->HasCycleCountChanged(9));
    QVERIFY(!pPanel->HasCycleCountChanged(7));

    // Undone: the figures move back, and say so.
    Results.clear();
    pPanel->Undo();
    QTRY_VERIFY_WITH_TIMEOUT(
        pStatus->text().startsWith(QStringLiteral("cycles %1 \u2192 %2 (\u2212").arg(dAfter).arg(dBefore)), s_iWait);
    QCOMPARE(pPanel->GetCycleCounts()[9], iLine10);
    QVERIFY(pPanel->HasCycleCountChanged(9));

    // A comment line above changes nothing: every count moves down with its line.
    Results.clear();
    QTextCursor(pPanel->document()->findBlockByNumber(1)).insertText(QStringLiteral("// note\n"));
    QTRY_VERIFY_WITH_TIMEOUT(pStatus->text().startsWith(QStringLiteral("no change: cycles ")), s_iWait);
    QCOMPARE(pPanel->GetCycleCounts()[8], iLine8);
    for (int i = 0; i < 12; ++i)
        QVERIFY2(!pPanel->HasCycleCountChanged(i), qPrintable(QString::number(i)));
}

QTEST_MAIN(CCompileInsightTest)
#include "tst_CompileInsight.moc"
