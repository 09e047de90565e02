// What keeps large documents fast must not change what the user sees or the compiler gets.

#include "EditorFixture.h"
#include "ShaderEditComponent/DocumentTextMirror.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightElements.h"

#include <QPaintEvent>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTextBlock>
#include <QRegularExpression>
#include <QtTest>

#include <functional>
#include <utility>

namespace
{
class CPaintRecorder : public QObject
{
public:
    explicit CPaintRecorder(QWidget* pWidget) { pWidget->installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* pEvent) override
    {
        if (pEvent->type() == QEvent::Paint)
            Painted += static_cast<QPaintEvent*>(pEvent)->region();
        return false;
    }
    QRegion Painted;
};

// iCount lines of Line with %1 replaced by the line's index.
QString Lines(int iCount, const QString& Line)
{
    QStringList Text;
    for (int i = 0; i < iCount; ++i)
        Text << QString(Line).replace(QLatin1String("%1"), QString::number(i));
    return Text.join(QLatin1Char('\n'));
}

QList<QTextEdit::ExtraSelection> HighlightsOf(QTextDocument* pDocument, const QString& Text, const QColor& Colour)
{
    QList<QTextEdit::ExtraSelection> Highlights;
    QTextEdit::ExtraSelection Highlight;
    Highlight.format.setBackground(Colour);
    for (Highlight.cursor = pDocument->find(Text); !Highlight.cursor.isNull();
         Highlight.cursor = pDocument->find(Text, Highlight.cursor))
        Highlights << Highlight;
    return Highlights;
}

bool VisibleLinesHighlighted(CShaderEditPanel* pPanel)
{
    QSet<int> Highlighted;
    for (const QTextEdit::ExtraSelection& Highlight : pPanel->extraSelections())
        Highlighted << Highlight.cursor.blockNumber();
    const int iLine = pPanel->fontMetrics().lineSpacing();
    for (int y = iLine / 2; y < pPanel->viewport()->height(); y += iLine)
    {
        if (!Highlighted.contains(pPanel->cursorForPosition(QPoint(1, y)).blockNumber()))
            return false;
    }
    return true;
}

QList<QPair<int, int>> Ranges(const QList<QTextEdit::ExtraSelection>& Highlights)
{
    QList<QPair<int, int>> Result;
    for (const QTextEdit::ExtraSelection& Highlight : Highlights)
        Result << qMakePair(Highlight.cursor.selectionStart(), Highlight.cursor.selectionEnd());
    return Result;
}
} // namespace

class CLargeDocumentsTest : public QObject
{
    Q_OBJECT

private slots:
    // The text compile requests and cursor matching work on
    void CompileRequestsCarryTheWholeText();
    void PlainTextSurvivesUnreportedEdits();
    // Repaints and highlights
    void ChangeRepaintsTheLinesItAffects_data();
    void ChangeRepaintsTheLinesItAffects();
    void HighlightsFollowTheViewport();
    // Cursor matching
    void CursorMatchesAreTheDocumentSearchsMatches_data();
    void CursorMatchesAreTheDocumentSearchsMatches();

private:
    std::unique_ptr<CShaderEditPanel> MakePanel(const QString& Text);

    SEditorFixture m_F;
};

std::unique_ptr<CShaderEditPanel> CLargeDocumentsTest::MakePanel(const QString& Text)
{
    auto pPanel = m_F.NewPanel(DocType_GLSLESFragment, QStringLiteral("/tmp/large.fsh"));
    pPanel->SetContents(Text, false);
    QTest::qWait(0);
    return pPanel;
}

void CLargeDocumentsTest::CompileRequestsCarryTheWholeText()
{
    auto pPanel = MakePanel(QStringLiteral("void main()\n{\n\tfloat a = 1.0;\n\tgl_FragColor = vec4(a);\n}\n"));
    CShaderEditPanel* p = pPanel.get();
    QList<QPair<QString, QString>> Requests; // what each carried, and the text at that moment
    connect(p, &CShaderEditPanel::RecompileContents, this,
            [&Requests, p](const CZamTHash&, const QString& Text) { Requests << qMakePair(Text, p->toPlainText()); });
    auto Select = [p](int iAnchor, int iPosition) {
        QTextCursor Cursor = p->textCursor();
        Cursor.setPosition(iAnchor);
        Cursor.setPosition(iPosition, QTextCursor::KeepAnchor);
        p->setTextCursor(Cursor);
    };
    const QList<QPair<const char*, std::function<void()>>> Steps = {
        {"typing", [&] { Select(25, 25); QTest::keyClicks(p, QStringLiteral("xyz")); }},
        {"return copying the indentation", [&] { QTest::keyClick(p, Qt::Key_Return); }},
        {"backspace joining two lines", [&] { Select(12, 12); QTest::keyClick(p, Qt::Key_Backspace); }},
        {"typing over lines", [&] { Select(5, 40); QTest::keyClicks(p, QStringLiteral("one\ttwo")); }},
        {"commenting lines", [&] { Select(0, 20); p->CommentSelection(); }},
        {"stored separators", [&] { p->insertPlainText(QString(QChar::Nbsp) + QChar::LineSeparator + 'x'); }},
        {"undo and redo", [&] { p->Undo(); p->Undo(); p->Redo(); }},
        {"the last character", [&] { p->moveCursor(QTextCursor::End); QTest::keyClick(p, Qt::Key_Backspace); }},
    };
    for (const auto& [pStep, Edit] : Steps)
    {
        Requests.clear();
        Edit();
        QVERIFY2(!Requests.isEmpty(), pStep);
        for (const auto& [Carried, Actual] : Requests)
            QVERIFY2(Carried == Actual, pStep);
        QVERIFY2(p->GetPlainText() == p->toPlainText(), pStep); // cursor matching searches it any time
    }
}

void CLargeDocumentsTest::PlainTextSurvivesUnreportedEdits()
{
    // A document never reports an edit made while it reports another one.
    QTextDocument Document;
    Document.setDocumentLayout(new QPlainTextDocumentLayout(&Document)); // no reports without one
    Document.setPlainText(Lines(20, QStringLiteral("line %1")));
    CDocumentTextMirror Mirror;
    Mirror.Reset(&Document);
    bool bNested = false;
    connect(&Document, &QTextDocument::contentsChange, this, [&](int iPosition, int iRemoved, int iAdded) {
        if (!std::exchange(bNested, true))
            QTextCursor(&Document).insertText(QStringLiteral("nested "));
        Mirror.Apply(iPosition, iRemoved, iAdded);
    });
    QTextCursor Cursor(&Document);
    Cursor.movePosition(QTextCursor::End);
    Cursor.insertText(QStringLiteral(" last"));
    QCOMPARE(Mirror.GetText(), Document.toPlainText());
    QVERIFY(Mirror.GetText().startsWith(QLatin1String("nested line 0")));
}

void CLargeDocumentsTest::ChangeRepaintsTheLinesItAffects_data()
{
    QTest::addColumn<QString>("Typed");
    QTest::addColumn<bool>("LinesBelowChange");
    QTest::newRow("a letter") << QStringLiteral("x") << false;
    QTest::newRow("a line break") << QStringLiteral("\r") << true;
    QTest::newRow("a comment that stays open") << QStringLiteral("/*") << true;
}

void CLargeDocumentsTest::ChangeRepaintsTheLinesItAffects()
{
    QFETCH(QString, Typed);
    QFETCH(bool, LinesBelowChange);
    auto pPanel = MakePanel(Lines(300, QStringLiteral("    float f%1 = 1.0;")));
    pPanel->setTextCursor(QTextCursor(pPanel->document()->findBlockByNumber(5)));
    QTest::keyClicks(pPanel.get(), Typed.chopped(1));
    QTest::qWait(0);

    CPaintRecorder Viewport(pPanel->viewport());
    QTest::keyClicks(pPanel.get(), Typed.right(1));
    QTRY_VERIFY(!Viewport.Painted.isEmpty());
    const int iLine = pPanel->fontMetrics().lineSpacing();
    const QRect Painted = Viewport.Painted.boundingRect();
    if (LinesBelowChange)
        QVERIFY(Painted.bottom() >= pPanel->viewport()->height() - iLine);
    else
        QVERIFY2(Painted.height() <= 2 * iLine, qPrintable(QString::number(Painted.height())));
    const QList<QTextLayout::FormatRange> Below = pPanel->document()->findBlockByNumber(8).layout()->formats();
    const bool bCommented =
        !Below.isEmpty() && Below.constFirst().format == m_F.pHighlight->GetFormat(HighlightElement_GLSLESComment);
    QCOMPARE(bCommented, Typed == QStringLiteral("/*"));
}

void CLargeDocumentsTest::HighlightsFollowTheViewport()
{
    auto pPanel = MakePanel(Lines(3000, QStringLiteral("line %1 word")));
    pPanel->SetHighlightSelections(CShaderEditPanel::Highlight_FindResults,
                                   HighlightsOf(pPanel->document(), QStringLiteral("word"), Qt::yellow));
    pPanel->SetHighlightSelections(CShaderEditPanel::Highlight_CursorMatches,
                                   HighlightsOf(pPanel->document(), QStringLiteral("line 1"), Qt::cyan));
    QCOMPARE(pPanel->GetHighlightSelections(CShaderEditPanel::Highlight_FindResults).size(), 3000);
    QCOMPARE(pPanel->GetHighlightSelections(CShaderEditPanel::Highlight_CursorMatches).size(), 1111);
    QVERIFY(pPanel->extraSelections().size() < 500);
    QVERIFY(VisibleLinesHighlighted(pPanel.get()));
    // Painted in this order: find results, then cursor matches.
    QCOMPARE(pPanel->extraSelections().constFirst().format.background().color(), QColor(Qt::yellow));
    QCOMPARE(pPanel->extraSelections().constLast().format.background().color(), QColor(Qt::cyan));

    for (int iValue : {pPanel->verticalScrollBar()->maximum(), 1500, 1490, 0})
    {
        pPanel->verticalScrollBar()->setValue(iValue);
        QTRY_VERIFY2(VisibleLinesHighlighted(pPanel.get()), qPrintable(QString::number(iValue)));
    }
    pPanel->resize(600, 1600);
    QTRY_VERIFY(VisibleLinesHighlighted(pPanel.get()));

    // Highlights stay on their text through edits before them; a large edit brings lines
    // into view whose highlights were far away.
    pPanel->moveCursor(QTextCursor::Start);
    QTest::keyClicks(pPanel.get(), QStringLiteral("new "));
    for (const QTextEdit::ExtraSelection& Highlight : pPanel->extraSelections())
        QVERIFY(QStringList({"word", "line 1"}).contains(Highlight.cursor.selectedText()));
    QTextCursor Cut(pPanel->document()->findBlockByNumber(100));
    Cut.setPosition(0, QTextCursor::KeepAnchor);
    Cut.removeSelectedText();
    QTRY_VERIFY(VisibleLinesHighlighted(pPanel.get()));

    pPanel->SetHighlightSelections(CShaderEditPanel::Highlight_FindResults, {});
    pPanel->SetHighlightSelections(CShaderEditPanel::Highlight_CursorMatches, {});
    QVERIFY(pPanel->extraSelections().isEmpty());
}

void CLargeDocumentsTest::CursorMatchesAreTheDocumentSearchsMatches_data()
{
    QTest::addColumn<QString>("Line");
    QTest::addColumn<QString>("Word");
    // Identifiers are words: letters, digits and underscores all make a neighbour part of one.
    QTest::newRow("identifier") << QStringLiteral("shade shade1 my_shade Shade shadeshade (shade) shade_x;")
                                << QStringLiteral("shade");
    QTest::newRow("underscores") << QStringLiteral("gl_Position = gl_Position2 + xgl_Position * gl_Position_;")
                                 << QStringLiteral("gl_Position");
    QTest::newRow("a letter of an identifier") << QStringLiteral("o = o_color + my_o * o_o + o;") << QStringLiteral("o");
    QTest::newRow("a part of an identifier") << QStringLiteral("color = o_color.rgb * color_2 + color;")
                                             << QStringLiteral("color");
    QTest::newRow("overlapping a part-word hit") << QStringLiteral("a_a xa_a_a a_a") << QStringLiteral("a_a");
    QTest::newRow("non-breaking spaces") << QStringLiteral("half\u00a0half,half\u00a0xhalf") << QStringLiteral("half");
}

void CLargeDocumentsTest::CursorMatchesAreTheDocumentSearchsMatches()
{
    QFETCH(QString, Line);
    QFETCH(QString, Word);
    CShaderEditor Editor(m_F.pHighlight.get());
    Editor.OnNewFile(DocType_GLSLESFragment);
    CShaderEditPanel* pPanel = Editor.GetCurrentPanel();
    pPanel->SetContents(Lines(2000, Line), false);
    pPanel->moveCursor(QTextCursor::Right);

    // The reference: a regular expression that wants no word character on either side.
    QList<QTextEdit::ExtraSelection> Expected;
    const QRegularExpression Whole(QStringLiteral("(?<!\\w)%1(?!\\w)").arg(QRegularExpression::escape(Word)),
                                   QRegularExpression::UseUnicodePropertiesOption);
    for (QTextCursor Found = pPanel->document()->find(Whole, 0, QTextDocument::FindCaseSensitively); !Found.isNull();
         Found = pPanel->document()->find(Whole, Found, QTextDocument::FindCaseSensitively))
        Expected << QTextEdit::ExtraSelection{Found, {}};
    QTRY_VERIFY(!pPanel->GetHighlightSelections(CShaderEditPanel::Highlight_CursorMatches).isEmpty());
    QCOMPARE(Ranges(pPanel->GetHighlightSelections(CShaderEditPanel::Highlight_CursorMatches)), Ranges(Expected));
    // Highlighting changes nothing in the document, not even its undo history.
    QVERIFY(!pPanel->IsModified());
    QVERIFY(!pPanel->document()->isUndoAvailable());

    // Typing before them moves every highlight; the status bar hears of the caret only.
    QSignalSpy Lines(&Editor, &CShaderEditor::LineChanged);
    QSignalSpy Columns(&Editor, &CShaderEditor::ColChanged);
    QTest::keyClick(pPanel, Qt::Key_Z);
    QVERIFY2(!Lines.isEmpty() && Lines.size() <= 2, qPrintable(QString::number(Lines.size())));
    QCOMPARE(Columns.last().at(0).toInt(), 3);
}

QTEST_MAIN(CLargeDocumentsTest)
#include "tst_LargeDocuments.moc"
