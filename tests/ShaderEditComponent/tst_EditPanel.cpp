#include "EditorFixture.h"
#include "EditTestSupport.h"
#include "ShaderEditComponent/CLineNumberArea.h"
#include "ShaderEditComponent/highlighting/ShaderHighlighter.h"
#include "tests/support/CompileTestSupport.h"

#include <QSignalSpy>
#include <QTextBlock>
#include <QtTest>

#include <cmath>

using namespace EditTestSupport;

namespace
{
using CompileTest::MessageAt;

CZamTArray<int> CountsOf(std::initializer_list<int> Values)
{
    CZamTArray<int> Counts;
    for (const int iValue : Values)
        Counts.Append(iValue);
    return Counts;
}

QList<int> ListOf(const CZamTArray<int>& Counts)
{
    QList<int> List;
    for (uint32_t ui = 0; ui < Counts.GetSize(); ++ui)
        List.append(Counts[ui]);
    return List;
}

void TypeAt(CShaderEditPanel* pPanel, int iBlock, int iColumn, const QString& Text)
{
    QTextCursor Cursor(pPanel->document()->findBlockByNumber(iBlock));
    Cursor.setPosition(Cursor.position() + iColumn);
    Cursor.insertText(Text);
}

// The wavy underlines in the text edit, as (0-based line, colour).
QList<QPair<int, QColor>> Underlines(const CShaderEditPanel* pPanel)
{
    QList<QPair<int, QColor>> Lines;
    for (const QTextEdit::ExtraSelection& Selection : pPanel->extraSelections())
    {
        // A selection whose text was deleted draws nothing.
        if (Selection.format.underlineStyle() == QTextCharFormat::WaveUnderline && Selection.cursor.hasSelection())
            Lines.append({Selection.cursor.block().blockNumber(), Selection.format.underlineColor()});
    }
    return Lines;
}
} // namespace

class CEditPanelTest : public QObject
{
    Q_OBJECT

private slots:
    void GuttersWidenButNeverNarrow();
    void CountsShowWhileTheyCanBeReplaced();
    void CountsStayOnTheirLinesAndShowWhatMoved();
    void MessagesMarkTheirLines();

    void Keys_data();
    void Keys();
    void TabOverSeveralLinesAsksForIndentation();
    void OnlyATypedReturnCopiesIndentation();

    void BackgroundCompileRequests();
    void DocumentTypeDetectionAndChange();
    void EffectBlocksGetTheirBackground();

private:
    static void ApplyEditorSettings(CShaderEditPanel* pPanel, bool bTabAsSpace, int iTabSize);

    SEditorFixture m_F;
};

void CEditPanelTest::ApplyEditorSettings(CShaderEditPanel* pPanel, bool bTabAsSpace, int iTabSize)
{
    Settings::SEditor Editor;
    Editor.bTreatTabAsSpace = bTabAsSpace;
    Editor.iTabSpaceSize = iTabSize;
    pPanel->OnEditorSettingsChanged(Editor);
}

// Each compile result and each deleted line used to resize the gutters, moving every line of
// text left or right under the user's hands: they widen with the digits and never narrow.
void CEditPanelTest::GuttersWidenButNeverNarrow()
{
    auto pPanel = m_F.NewPanel(DocType_GLSLESVertex, QStringLiteral("/tmp/steady.vsh"));
    pPanel->setPlainText(QStringLiteral("a\nb\nc"));
    const float fNine = static_cast<float>(pPanel->fontMetrics().horizontalAdvance(QLatin1Char('9')));
    const auto Width = [fNine](float fChars) { return static_cast<int>(std::ceil(fNine * fChars)); };
    const auto Gutters = pPanel->findChildren<CLineNumberArea*>();
    QCOMPARE(Gutters.size(), 2);
    QCOMPARE(pPanel->LineNumberAreaWidth(), Width(2.3f));
    QCOMPARE(pPanel->CycleCountAreaWidth(), Width(2.5f));

    // Only the panel's own counts, and none for the first line or past the last one, widen it.
    const CZamTArray<int> Counts = CountsOf({99999, -1, 1234, 7777777});
    pPanel->OnCompileCycleCountChanged(CZamTHash("/tmp/other.vsh"), Counts);
    QCOMPARE(pPanel->GetCycleCounts().GetSize(), 0u);
    pPanel->OnCompileCycleCountChanged(pPanel->GetPanelID(), Counts);
    QCOMPARE(pPanel->GetCycleCounts().GetSize(), 4u);
    QCOMPARE(pPanel->CycleCountAreaWidth(), Width(5.5f));
    QCOMPARE(Gutters.at(1)->width(), Width(5.5f));

    // One digit more than the largest line number needs.
    for (const auto& [iLines, fChars] :
         {qMakePair(9, 2.3f), qMakePair(10, 3.3f), qMakePair(99, 3.3f), qMakePair(100, 4.3f), qMakePair(121, 4.3f)})
    {
        pPanel->setPlainText(QStringLiteral("line\n").repeated(iLines - 1) + QStringLiteral("line"));
        QVERIFY2(pPanel->LineNumberAreaWidth() == Width(fChars), qPrintable(QString::number(iLines)));
    }
    QTRY_COMPARE(pPanel->viewport()->x(), pPanel->contentsRect().left() + Width(4.3f) + Width(5.5f));
    QCOMPARE(Gutters.at(0)->width(), Width(4.3f));
    const int iTextLeft = pPanel->viewport()->x();

    // Smaller counts, counts gone, lines deleted: the text stays where it is.
    pPanel->OnCompileCycleCountChanged(pPanel->GetPanelID(), CountsOf({-1, 7}));
    QCOMPARE(pPanel->CycleCountAreaWidth(), Width(5.5f));
    pPanel->OnCompileCycleCountChanged(pPanel->GetPanelID(), CZamTArray<int>());
    QTextCursor Cursor(pPanel->document());
    Cursor.movePosition(QTextCursor::End);
    Cursor.movePosition(QTextCursor::Up, QTextCursor::KeepAnchor, 115);
    Cursor.removeSelectedText();
    QCOMPARE(pPanel->blockCount(), 6);
    QCOMPARE(pPanel->LineNumberAreaWidth(), Width(4.3f));
    QCoreApplication::processEvents(); // the gutters are brought up to date once per batch of edits
    QCOMPARE(pPanel->viewport()->x(), iTextLeft);

    pPanel->OnCompileCycleCountChanged(pPanel->GetPanelID(), CountsOf({-1, 123456}));
    QCOMPARE(pPanel->CycleCountAreaWidth(), Width(7.5f));
    pPanel->setPlainText(QStringLiteral("line\n").repeated(1200));
    QCOMPARE(pPanel->LineNumberAreaWidth(), Width(5.3f));
}

// The first line's count is never drawn, and a type that is not compiled drops its counts:
// nothing would ever replace them.
void CEditPanelTest::CountsShowWhileTheyCanBeReplaced()
{
    auto pPanel = m_F.NewPanel(DocType_GLSLESFragment, QStringLiteral("/tmp/typed.fsh"));
    pPanel->setPlainText(QStringLiteral("a\nb"));
    CLineNumberArea* pGutter = pPanel->findChildren<CLineNumberArea*>().at(1);
    const auto HasInk = [pGutter]()
    {
        const QImage Image = pGutter->grab().toImage();
        for (int y = 0; y < Image.height(); ++y)
            for (int x = 0; x < Image.width(); ++x)
                if (qGray(Image.pixel(x, y)) < 64)
                    return true;
        return false;
    };
    QCOMPARE(pGutter->grab().toImage().pixelColor(1, 1), QColor(191, 215, 215));
    pPanel->OnCompileCycleCountChanged(pPanel->GetPanelID(), CountsOf({88, -1}));
    QVERIFY(!HasInk());
    pPanel->OnCompileCycleCountChanged(pPanel->GetPanelID(), CountsOf({88, 88}));
    QVERIFY(HasInk());

    // Another compiled type is compiled again at once; its new counts will replace these.
    pPanel->SetDocumentType(DocType_GLSLESVertex);
    QCOMPARE(pPanel->GetCycleCounts().GetSize(), 2u);
    pPanel->SetDocumentType(DocType_PlainText);
    QCOMPARE(pPanel->GetCycleCounts().GetSize(), 0u);
    QVERIFY(!HasInk());
}

void CEditPanelTest::CountsStayOnTheirLinesAndShowWhatMoved()
{
    auto pPanel = m_F.NewPanel(DocType_GLSLESFragment, QStringLiteral("/tmp/moves.fsh"));
    pPanel->setPlainText(QStringLiteral("l1\nl2\nl3\nl4\nl5"));
    pPanel->OnCompileCycleCountChanged(pPanel->GetPanelID(), CountsOf({-1, 2, 3, 4, 5}));
    // The first counts replace nothing, so nothing has moved.
    for (int i = 0; i < 5; ++i)
        QVERIFY(!pPanel->HasCycleCountChanged(i));

    // Return at the start of line 2 pushes it down; in the middle of line 4 splits it.
    TypeAt(pPanel.get(), 1, 0, QStringLiteral("\n"));
    QCOMPARE(ListOf(pPanel->GetCycleCounts()), (QList<int>{-1, -1, 2, 3, 4, 5}));
    TypeAt(pPanel.get(), 4, 1, QStringLiteral("\nnew"));
    QCOMPARE(ListOf(pPanel->GetCycleCounts()), (QList<int>{-1, -1, 2, 3, 4, -1, 5}));
    // Deleting two whole lines takes their counts; joining a line to the one above keeps the upper one's.
    QTextCursor Cursor(pPanel->document()->findBlockByNumber(2));
    Cursor.setPosition(pPanel->document()->findBlockByNumber(4).position(), QTextCursor::KeepAnchor);
    Cursor.removeSelectedText();
    QCOMPARE(ListOf(pPanel->GetCycleCounts()), (QList<int>{-1, -1, 4, -1, 5}));
    Cursor.setPosition(pPanel->document()->findBlockByNumber(4).position());
    Cursor.deletePreviousChar();
    QCOMPARE(ListOf(pPanel->GetCycleCounts()), (QList<int>{-1, -1, 4, -1}));
    QCOMPARE(pPanel->toPlainText(), QStringLiteral("l1\n\nl\nnew4l5"));

    // The next counts are compared line by line with the moved ones.
    pPanel->OnCompileCycleCountChanged(pPanel->GetPanelID(), CountsOf({-1, -1, 4, 9}));
    QVERIFY(!pPanel->HasCycleCountChanged(2));
    QVERIFY(pPanel->HasCycleCountChanged(3));
    CLineNumberArea* pGutter = pPanel->findChildren<CLineNumberArea*>().at(1);
    const int iRowHeight = pPanel->fontMetrics().height();
    const QImage Image = pGutter->grab().toImage();
    const QPoint Changed(
        2, static_cast<int>(pPanel->cursorRect(QTextCursor(pPanel->document()->findBlockByNumber(3))).center().y()));
    const QPoint Kept(2, Changed.y() - iRowHeight);
    QVERIFY(Image.pixelColor(Changed) != Image.pixelColor(Kept));
    QCOMPARE(pPanel->GutterToolTip(CLineNumberArea::Kind_CycleCounts, Changed), QStringLiteral("9 cycles, was none"));
    QVERIFY(pPanel->GutterToolTip(CLineNumberArea::Kind_CycleCounts, Kept).isEmpty());

    // A stale result greys the counts and says so.
    SCompileResult Stale;
    Stale.iEditsBehind = 3;
    pPanel->OnPanelResultChanged(pPanel->GetPanelID(), Stale);
    QCOMPARE(pPanel->GetEditsBehind(), 3);
    QVERIFY(pPanel->GutterToolTip(CLineNumberArea::Kind_CycleCounts, Kept).contains(QStringLiteral("3 edits ago")));
    QCOMPARE(ListOf(pPanel->GetCycleCounts()), (QList<int>{-1, -1, 4, 9}));
}

void CEditPanelTest::MessagesMarkTheirLines()
{
    auto pPanel = m_F.NewPanel(DocType_GLSLESFragment, QStringLiteral("/tmp/marks.fsh"));
    pPanel->setPlainText(QStringLiteral("void main()\n{\n    x = 1;\n\n    y = 2;  \n}"));
    Settings::SCompiler Compiler;
    Compiler.ErrorFormat = Settings::MakeForegroundFormat(0xFFCC0000);
    Compiler.WarningFormat = Settings::MakeForegroundFormat(0xFFDD8800);
    pPanel->OnCompilerSettingsChanged(Compiler, 0);

    SCompileResult Result;
    Result.Messages = {
        MessageAt(3, SCompileMessage::Severity_Error, QStringLiteral("ERROR: 0:3: 'x' : undeclared identifier")),
        MessageAt(5, SCompileMessage::Severity_Warning, QStringLiteral("WARNING: 0:5: unused")),
        MessageAt(5, SCompileMessage::Severity_Error, QStringLiteral("ERROR: 0:5: 'y' : undeclared identifier")),
        MessageAt(4, SCompileMessage::Severity_Warning, QStringLiteral("WARNING: 0:4: blank line")),
        MessageAt(0, SCompileMessage::Severity_Error, QStringLiteral("ERROR: no line")),
        MessageAt(99, SCompileMessage::Severity_Error, QStringLiteral("ERROR: 0:99: past the end"))};
    pPanel->OnPanelResultChanged(CZamTHash("/tmp/other.fsh"), Result);
    QVERIFY(Underlines(pPanel.get()).isEmpty());
    pPanel->OnPanelResultChanged(pPanel->GetPanelID(), Result);

    // The line's text is underlined, blanks at either end left out; the error's colour is drawn last.
    const QColor Red(0xCC, 0, 0);
    const QColor Amber(0xDD, 0x88, 0);
    QCOMPARE(Underlines(pPanel.get()), (QList<QPair<int, QColor>>{{4, Amber}, {2, Red}, {4, Red}}));
    for (const QTextEdit::ExtraSelection& Selection : pPanel->extraSelections())
    {
        if (Selection.cursor.block().blockNumber() == 4)
            QCOMPARE(Selection.cursor.selectedText(), QStringLiteral("y = 2;"));
    }
    QCOMPARE(pPanel->GetCompileMessages(4),
             QStringLiteral("ERROR: 0:5: 'y' : undeclared identifier\nWARNING: 0:5: unused"));
    QCOMPARE(pPanel->GetCompileMessages(3), QStringLiteral("WARNING: 0:4: blank line"));
    QVERIFY(pPanel->GetCompileMessages(0).isEmpty());

    // The line gutter shows a marker in the message's colour at the marked lines only.
    CLineNumberArea* pGutter = pPanel->findChildren<CLineNumberArea*>().at(0);
    auto MarkerAt = [&](int iBlock)
    {
        const int iY = pPanel->cursorRect(QTextCursor(pPanel->document()->findBlockByNumber(iBlock))).center().y();
        return pGutter->grab().toImage().pixelColor(0, iY);
    };
    QCOMPARE(MarkerAt(2), Red);
    QCOMPARE(MarkerAt(3), Amber);
    QVERIFY(MarkerAt(1) != Red && MarkerAt(1) != Amber);

    // Marks move with edits; a deleted line takes its marks along.
    TypeAt(pPanel.get(), 0, 0, QStringLiteral("// added\n"));
    QCOMPARE(pPanel->GetCompileMessages(3), QStringLiteral("ERROR: 0:3: 'x' : undeclared identifier"));
    QTextCursor Line(pPanel->document()->findBlockByNumber(3));
    Line.movePosition(QTextCursor::NextBlock, QTextCursor::KeepAnchor);
    Line.removeSelectedText();
    QVERIFY(pPanel->GetCompileMessages(2).isEmpty());
    QCOMPARE(pPanel->GetCompileMessages(3), QStringLiteral("WARNING: 0:4: blank line"));
    QCOMPARE(Underlines(pPanel.get()).size(), 2);
}

void CEditPanelTest::Keys_data()
{
    QTest::addColumn<QString>("Before");
    QTest::addColumn<int>("Key");
    QTest::addColumn<int>("Modifiers");
    QTest::addColumn<bool>("TabAsSpace");
    QTest::addColumn<int>("TabSize");
    QTest::addColumn<QString>("After");

    const int None = Qt::NoModifier;
    const int Shift = Qt::ShiftModifier;
    const int Ctrl = Qt::ControlModifier;

    QTest::newRow("return copies tab and spaces")
        << "\t  foo|" << int(Qt::Key_Return) << None << false << 4 << "\t  foo\n\t  |";
    QTest::newRow("return inside a line")
        << "  foo|bar" << int(Qt::Key_Return) << None << false << 4 << "  foo\n  |bar";
    QTest::newRow("return without blanks") << "foo|" << int(Qt::Key_Return) << None << false << 4 << "foo\n|";
    QTest::newRow("return on a blank line") << "\t|" << int(Qt::Key_Return) << None << false << 4 << "\t\n\t|";

    QTest::newRow("tab inserts a tab") << "ab|" << int(Qt::Key_Tab) << None << false << 4 << "ab\t|";
    QTest::newRow("tab as spaces") << "ab|" << int(Qt::Key_Tab) << None << true << 3 << "ab   |";
    QTest::newRow("tab as spaces does not pad to a stop")
        << "abc|" << int(Qt::Key_Tab) << None << true << 4 << "abc    |";
    QTest::newRow("tab replaces a one-line selection")
        << "a<bc|d" << int(Qt::Key_Tab) << None << true << 4 << "a    |d";
    QTest::newRow("tab size 0 inserts nothing") << "ab|" << int(Qt::Key_Tab) << None << true << 0 << "ab|";

    QTest::newRow("home from the text") << "  foo b|ar" << int(Qt::Key_Home) << None << false << 4 << "  |foo bar";
    QTest::newRow("home from column 0") << "|\t foo" << int(Qt::Key_Home) << None << false << 4 << "\t |foo";
    QTest::newRow("home inside the blanks") << " | foo" << int(Qt::Key_Home) << None << false << 4 << "|  foo";
    QTest::newRow("home after the blanks") << "  |foo" << int(Qt::Key_Home) << None << false << 4 << "|  foo";
    QTest::newRow("home on a blank line") << "|   " << int(Qt::Key_Home) << None << false << 4 << "   |";
    QTest::newRow("home without blanks") << "foo bar|" << int(Qt::Key_Home) << None << false << 4 << "|foo bar";
    QTest::newRow("shift+home selects") << "  foo b|ar" << int(Qt::Key_Home) << Shift << false << 4 << "  |foo b<ar";
    QTest::newRow("ctrl+home stays in the line")
        << "x\n\n\n\n\n\n  int a|;" << int(Qt::Key_Home) << Ctrl << false << 4 << "x\n\n\n\n\n\n  |int a;";
    QTest::newRow("ctrl+home from the blanks")
        << "x\n\n\n\n\n\n | int a;" << int(Qt::Key_Home) << Ctrl << false << 4 << "|x\n\n\n\n\n\n  int a;";
}

void CEditPanelTest::Keys()
{
    QFETCH(QString, Before);
    QFETCH(int, Key);
    QFETCH(int, Modifiers);
    QFETCH(bool, TabAsSpace);
    QFETCH(int, TabSize);
    QFETCH(QString, After);

    auto pPanel = m_F.NewPanel(DocType_PlainText);
    ApplyEditorSettings(pPanel.get(), TabAsSpace, TabSize);
    SetMarkedText(pPanel.get(), Before);
    QTest::keyClick(pPanel.get(), static_cast<Qt::Key>(Key), static_cast<Qt::KeyboardModifiers>(Modifiers));
    QCOMPARE(MarkedText(pPanel.get()), After);
}

void CEditPanelTest::TabOverSeveralLinesAsksForIndentation()
{
    auto pPanel = m_F.NewPanel(DocType_PlainText);
    ApplyEditorSettings(pPanel.get(), true, 4);
    QSignalSpy Outdent(pPanel.get(), &CShaderEditPanel::OutdentSelection);

    SetMarkedText(pPanel.get(), QStringLiteral("a<b\nc|d"));
    QTest::keyClick(pPanel.get(), Qt::Key_Tab);
    QCOMPARE(Outdent.count(), 1);
    QCOMPARE(pPanel->toPlainText(), QStringLiteral("ab\ncd")); // the tabs widget does the indenting

    SetMarkedText(pPanel.get(), QStringLiteral("a<b|\ncd"));
    QTest::keyClick(pPanel.get(), Qt::Key_Tab);
    QCOMPARE(Outdent.count(), 1);
}

// Pasted line breaks, and the one an undo of a join brings back, are no typed Return: copying
// the indentation there would double the blanks and lose the redo.
void CEditPanelTest::OnlyATypedReturnCopiesIndentation()
{
    auto pPanel = m_F.NewPanel(DocType_PlainText);
    SetMarkedText(pPanel.get(), QStringLiteral("\tfoo|"));
    pPanel->insertPlainText(QStringLiteral("x\ny"));
    QCOMPARE(MarkedText(pPanel.get()), QStringLiteral("\tfoox\ny|"));

    SetMarkedText(pPanel.get(), QStringLiteral("\tfoo|\n\tbar"));
    QTest::keyClick(pPanel.get(), Qt::Key_Delete);
    QCOMPARE(pPanel->toPlainText(), QStringLiteral("\tfoo\tbar"));
    QTest::keyClick(pPanel.get(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(pPanel->toPlainText(), QStringLiteral("\tfoo\n\tbar"));
    pPanel->Redo();
    QCOMPARE(pPanel->toPlainText(), QStringLiteral("\tfoo\tbar"));
    pPanel->Undo();
    QCOMPARE(pPanel->toPlainText(), QStringLiteral("\tfoo\n\tbar"));
}

void CEditPanelTest::BackgroundCompileRequests()
{
    auto pPanel = m_F.NewPanel(DocType_GLSLESFragment, QStringLiteral("/tmp/x.fsh"));
    pPanel->setPlainText(QStringLiteral("void main() {}"));
    QSignalSpy Cancel(pPanel.get(), &CShaderEditPanel::CancelCompile);
    QSignalSpy Recompile(pPanel.get(), &CShaderEditPanel::RecompileContents);
    // Cancel must come first, so the controller never drops the new request.
    QList<int> Order;
    connect(pPanel.get(), &CShaderEditPanel::CancelCompile, this, [&Order]() { Order << 0; });
    connect(pPanel.get(), &CShaderEditPanel::RecompileContents, this, [&Order]() { Order << 1; });

    pPanel->moveCursor(QTextCursor::End);
    QTest::keyClick(pPanel.get(), Qt::Key_X);
    QCOMPARE(Order, QList<int>({0, 1}));
    QCOMPARE(Cancel.at(0).at(0).value<CZamTHash>(), CZamTHash("/tmp/x.fsh"));
    const QList<QVariant> Request = Recompile.takeFirst();
    QCOMPARE(Request.at(0).value<CZamTHash>(), CZamTHash("/tmp/x.fsh"));
    QCOMPARE(Request.at(1).toString(), QStringLiteral("void main() {}x"));
    QCOMPARE(Request.at(2).value<EShaderDocType>(), DocType_GLSLESFragment);
    QCOMPARE(Request.at(3).value<ECompileInvocationType>(), CompileInvocation_Background);

    Settings::SCompiler Compiler;
    pPanel->OnCompilerSettingsChanged(Compiler, Settings::CompilerSetting_CustomCompilerPath);
    QCOMPARE(Recompile.count(), 1);
    pPanel->OnCompilerSettingsChanged(Compiler, Settings::CompilerSetting_TempDirectory);
    QCOMPARE(Recompile.count(), 1);

    Compiler.bAutoCompile = false;
    pPanel->OnCompilerSettingsChanged(Compiler, Settings::CompilerSetting_AutoCompile);
    QTest::keyClick(pPanel.get(), Qt::Key_Y);
    QCOMPARE(Recompile.count(), 1);

    Compiler.bAutoCompile = true;
    pPanel->OnCompilerSettingsChanged(Compiler, Settings::CompilerSetting_AutoCompile);
    pPanel->SetDocumentType(DocType_HLSLVertex); // not compiled in the background
    QTest::keyClick(pPanel.get(), Qt::Key_Z);
    QCOMPARE(Recompile.count(), 1);
    pPanel->SetDocumentType(DocType_OpenCLKernel);
    QCOMPARE(Recompile.count(), 2);
    pPanel->SetDocumentType(DocType_OpenCLKernel);
    QCOMPARE(Recompile.count(), 2);
}

void CEditPanelTest::DocumentTypeDetectionAndChange()
{
    const QString Vertex = QStringLiteral("precision highp float;\nvoid main() { gl_Position = vec4(0.0); }\n");
    // The HLSL extensions win over the text.
    QCOMPARE(m_F.NewPanel(DocType_Detect, QStringLiteral("/tmp/a.vs"), &Vertex)->GetDocumentType(), DocType_HLSLVertex);
    QCOMPARE(m_F.NewPanel(DocType_Detect, QStringLiteral("/tmp/a.txt"), &Vertex)->GetDocumentType(),
             DocType_GLSLESVertex);
    // An explicit type is kept whatever the text says.
    QCOMPARE(m_F.NewPanel(DocType_GLSLFragment, QStringLiteral("/tmp/a.txt"), &Vertex)->GetDocumentType(),
             DocType_GLSLFragment);

    auto pPanel = m_F.NewPanel(DocType_PlainText, QStringLiteral("/tmp/b.vs"));
    pPanel->SetContents(Vertex, true); // detected without the extension
    QCOMPARE(pPanel->GetDocumentType(), DocType_GLSLESVertex);
    QVERIFY(!pPanel->IsModified());
    pPanel->SetContents(QStringLiteral("plain"), false);
    QCOMPARE(pPanel->GetDocumentType(), DocType_GLSLESVertex);
}

void CEditPanelTest::EffectBlocksGetTheirBackground()
{
    const QString Effect = QStringLiteral("[HEADER]\n  VERSION 1\n[/HEADER]\n\n\n");
    auto BackgroundAt = [](CShaderEditPanel* pPanel, int iBlock)
    {
        const QTextBlock Block = pPanel->document()->findBlockByNumber(iBlock);
        const QRect Line = pPanel->cursorRect(QTextCursor(Block));
        return pPanel->viewport()->grab().toImage().pixelColor(pPanel->viewport()->width() - 20, Line.center().y());
    };
    auto pEffect = m_F.NewPanel(DocType_ZFXGLSLES);
    pEffect->setPlainText(Effect);
    const auto* pData = dynamic_cast<const CTextBlockZFXData*>(pEffect->document()->firstBlock().userData());
    QVERIFY(pData);
    QCOMPARE(BackgroundAt(pEffect.get(), 0), pData->GetFormat().background().color());
    QVERIFY(pData->GetFormat().background().color() != pEffect->palette().base().color());

    pEffect->SetDocumentType(DocType_PlainText);
    QTRY_COMPARE(BackgroundAt(pEffect.get(), 0), pEffect->palette().base().color());
}

QTEST_MAIN(CEditPanelTest)
#include "tst_EditPanel.moc"
