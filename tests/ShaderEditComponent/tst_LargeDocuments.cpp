// What keeps editing fast on large documents must not change what the user sees: the text a
// compile request carries, the lines repainted after a change, the highlights shown while
// scrolling and editing, and which cursor moves count as cursor moves.

#include "CShaderEditPanel.h"
#include "CShaderEditor.h"
#include "DocumentTextMirror.h"
#include "MetaTypes.h"
#include "ShaderHighlightController.h"
#include "ShaderHighlightElements.h"

#include <QPaintEvent>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTextBlock>
#include <QtTest>

#include <functional>
#include <memory>
#include <utility>

namespace
{
// Collects the region painted on a widget.
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

// Every occurrence of Word in the document, as one highlight each.
QList<QTextEdit::ExtraSelection> HighlightsOf(QTextDocument* pDocument, const QString& Word, const QColor& Colour)
{
    QList<QTextEdit::ExtraSelection> Highlights;
    QTextEdit::ExtraSelection Highlight;
    Highlight.format.setBackground(Colour);
    for (QTextCursor Found = pDocument->find(Word); !Found.isNull(); Found = pDocument->find(Word, Found))
    {
        Highlight.cursor = Found;
        Highlights << Highlight;
    }
    return Highlights;
}

// Whether every line in view carries one of the panel's extra selections.
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
} // namespace

class CLargeDocumentTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void CompileRequestsCarryTheWholeText();
    void PlainTextSurvivesUnreportedEdits();
    void ChangeRepaintsTheLinesItAffects_data();
    void ChangeRepaintsTheLinesItAffects();

    void HighlightsFollowTheViewport();
    void CursorMatchesAreTheDocumentSearchsMatches_data();
    void CursorMatchesAreTheDocumentSearchsMatches();
    void MovedHighlightsAreNoCursorMoves();

private:
    std::unique_ptr<CShaderEditPanel> MakePanel(const QString& Text);

    std::unique_ptr<CShaderHighlightController> m_pHighlight;
};

void CLargeDocumentTest::initTestCase()
{
    RegisterCompileMetaTypes();
    m_pHighlight = std::make_unique<CShaderHighlightController>();
}

std::unique_ptr<CShaderEditPanel> CLargeDocumentTest::MakePanel(const QString& Text)
{
    auto pPanel = std::make_unique<CShaderEditPanel>(nullptr, CZamTString("/tmp/large.fsh"), nullptr,
                                                     DocType_GLSLESFragment, m_pHighlight.get());
    pPanel->resize(600, 400);
    pPanel->show();
    pPanel->SetContents(Text, false);
    QTest::qWait(0);
    return pPanel;
}

void CLargeDocumentTest::CompileRequestsCarryTheWholeText()
{
    auto pPanel = MakePanel(QStringLiteral("void main()\n{\n\tfloat a = 1.0;\n\tgl_FragColor = vec4(a);\n}\n"));
    CShaderEditPanel* p = pPanel.get();
    // What each request carried, and the document's text at that moment.
    QList<QPair<QString, QString>> Requests;
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
        {"typing after it", [&] { QTest::keyClicks(p, QStringLiteral("b;")); }},
        {"backspace joining two lines", [&] { Select(12, 12); QTest::keyClick(p, Qt::Key_Backspace); }},
        {"pasting several lines", [&] { p->insertPlainText(QStringLiteral("one\n  two\nthree")); }},
        {"typing over a selection across lines", [&] { Select(5, 40); QTest::keyClick(p, Qt::Key_Q); }},
        {"commenting lines", [&] { Select(0, 20); p->CommentSelection(); }},
        {"indenting lines", [&] { Select(0, 30); p->AddIndentToSelection(); }},
        {"separators a document stores differently",
         [&] { p->insertPlainText(QString(QChar::Nbsp) + QChar::LineSeparator + QStringLiteral("x")); }},
        {"undo", [&] { p->Undo(); p->Undo(); }},
        {"redo", [&] { p->Redo(); }},
        {"new contents", [&] { p->SetContents(QStringLiteral("fresh\n\ttext"), false); }},
        {"deleting the last character", [&] { p->moveCursor(QTextCursor::End); QTest::keyClick(p, Qt::Key_Backspace); }},
        {"deleting everything", [&] { p->selectAll(); QTest::keyClick(p, Qt::Key_Delete); }},
    };
    for (const auto& [pStep, Edit] : Steps)
    {
        Requests.clear();
        Edit();
        QVERIFY2(!Requests.isEmpty(), pStep);
        for (const auto& [Carried, Actual] : Requests)
            QVERIFY2(Carried == Actual, pStep);
        // Cursor matching searches this text at any time.
        QVERIFY2(p->GetPlainText() == p->toPlainText(), pStep);
    }
}

void CLargeDocumentTest::PlainTextSurvivesUnreportedEdits()
{
    // A document never reports an edit made while it reports another one.
    QTextDocument Document;
    Document.setDocumentLayout(new QPlainTextDocumentLayout(&Document)); // no reports without one
    CDocumentTextMirror Mirror;
    Mirror.Reset(&Document);
    bool bNested = false;
    connect(&Document, &QTextDocument::contentsChange, this, [&](int iPosition, int iRemoved, int iAdded) {
        if (!std::exchange(bNested, true))
            QTextCursor(&Document).insertText(QStringLiteral("nested "));
        Mirror.Apply(iPosition, iRemoved, iAdded);
    });
    QTextCursor(&Document).insertText(QStringLiteral("first"));
    QTextCursor(&Document).insertText(QStringLiteral("last "));
    QCOMPARE(Mirror.GetText(), QStringLiteral("last nested first"));
}

void CLargeDocumentTest::ChangeRepaintsTheLinesItAffects_data()
{
    QTest::addColumn<QString>("Typed");
    QTest::addColumn<bool>("LinesBelowChange");
    QTest::newRow("a letter") << QStringLiteral("x") << false;
    QTest::newRow("a line break") << QStringLiteral("\r") << true;
    QTest::newRow("a comment that stays open") << QStringLiteral("/*") << true;
}

void CLargeDocumentTest::ChangeRepaintsTheLinesItAffects()
{
    QFETCH(QString, Typed);
    QFETCH(bool, LinesBelowChange);
    auto pPanel = MakePanel(Lines(300, QStringLiteral("    float f%1 = 1.0;")));
    QTextCursor Cursor(pPanel->document()->findBlockByNumber(5));
    pPanel->setTextCursor(Cursor);
    QTest::keyClicks(pPanel.get(), Typed.left(Typed.size() - 1));
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

    // Whatever was repainted, the comment colours the lines below it.
    const QTextBlock Below = pPanel->document()->findBlockByNumber(8);
    const bool bCommented = !Below.layout()->formats().isEmpty()
        && Below.layout()->formats().constFirst().format == m_pHighlight->GetFormat(HighlightElement_GLSLESComment);
    QCOMPARE(bCommented, Typed == QStringLiteral("/*"));
}

void CLargeDocumentTest::HighlightsFollowTheViewport()
{
    auto pPanel = MakePanel(Lines(3000, QStringLiteral("line %1 word")));
    const QList<QTextEdit::ExtraSelection> Found = HighlightsOf(pPanel->document(), QStringLiteral("word"), Qt::yellow);
    pPanel->SetHighlightSelections(CShaderEditPanel::Highlight_FindResults, Found);
    pPanel->SetHighlightSelections(CShaderEditPanel::Highlight_CursorMatches,
                                   HighlightsOf(pPanel->document(), QStringLiteral("line 1"), Qt::cyan));

    QCOMPARE(pPanel->GetHighlightSelections(CShaderEditPanel::Highlight_FindResults).size(), 3000);
    QCOMPARE(pPanel->GetHighlightSelections(CShaderEditPanel::Highlight_CursorMatches).size(), 1111);
    QVERIFY(pPanel->extraSelections().size() < 500);
    QVERIFY(VisibleLinesHighlighted(pPanel.get()));
    // Find results first, then cursor matches, as the text edit paints them in that order.
    bool bMatchSeen = false;
    for (const QTextEdit::ExtraSelection& Highlight : pPanel->extraSelections())
    {
        const bool bMatch = Highlight.format.background().color() == Qt::cyan;
        QVERIFY(bMatch || !bMatchSeen);
        bMatchSeen = bMatchSeen || bMatch;
    }

    for (int iValue : {pPanel->verticalScrollBar()->maximum(), 1500, 1490, 0})
    {
        pPanel->verticalScrollBar()->setValue(iValue);
        QTRY_VERIFY2(VisibleLinesHighlighted(pPanel.get()), qPrintable(QString::number(iValue)));
    }
    pPanel->resize(600, 1600);
    QTRY_VERIFY(VisibleLinesHighlighted(pPanel.get()));

    // Highlights stay on their text through edits before them, and a large edit brings lines
    // into view whose highlights were far away.
    pPanel->moveCursor(QTextCursor::Start);
    QTest::keyClicks(pPanel.get(), QStringLiteral("new "));
    QTest::qWait(0);
    for (const QTextEdit::ExtraSelection& Highlight : pPanel->extraSelections())
    {
        const bool bMatch = Highlight.format.background().color() == Qt::cyan;
        QCOMPARE(Highlight.cursor.selectedText(), bMatch ? QStringLiteral("line 1") : QStringLiteral("word"));
    }
    QTextCursor Cut(pPanel->document()->findBlockByNumber(100));
    Cut.setPosition(0, QTextCursor::KeepAnchor);
    Cut.removeSelectedText();
    QTRY_VERIFY(VisibleLinesHighlighted(pPanel.get()));
    QVERIFY(pPanel->extraSelections().size() < 500);

    pPanel->SetHighlightSelections(CShaderEditPanel::Highlight_FindResults, {});
    pPanel->SetHighlightSelections(CShaderEditPanel::Highlight_CursorMatches, {});
    QVERIFY(pPanel->extraSelections().isEmpty());
}

void CLargeDocumentTest::CursorMatchesAreTheDocumentSearchsMatches_data()
{
    QTest::addColumn<QString>("Line");
    QTest::addColumn<QString>("Word");
    // Word characters for the document's whole-word search are letters and digits: an
    // underscore next to the word still leaves it whole.
    QTest::newRow("identifier") << QStringLiteral("shade shade1 my_shade Shade shadeshade (shade) shade_x;")
                                << QStringLiteral("shade");
    QTest::newRow("with underscores") << QStringLiteral("gl_Position = gl_Position2 + xgl_Position * gl_Position_;")
                                      << QStringLiteral("gl_Position");
    // After a part-word hit the search goes on behind it, not inside it.
    QTest::newRow("overlapping a part-word hit") << QStringLiteral("a_a xa_a_a") << QStringLiteral("a_a");
    QTest::newRow("right behind a part-word hit") << QStringLiteral("a_ xa_a_ end") << QStringLiteral("a_");
    QTest::newRow("non-breaking spaces") << QStringLiteral("half\u00a0half,half\u00a0xhalf") << QStringLiteral("half");
}

void CLargeDocumentTest::CursorMatchesAreTheDocumentSearchsMatches()
{
    QFETCH(QString, Line);
    QFETCH(QString, Word);
    CShaderEditor Editor(m_pHighlight.get());
    Editor.OnNewFile(DocType_GLSLESFragment);
    CShaderEditPanel* pPanel = Editor.GetCurrentPanel();
    pPanel->SetContents(Lines(2000, Line), false);
    QTextCursor OnWord = pPanel->document()->find(Word, 0, QTextDocument::FindCaseSensitively | QTextDocument::FindWholeWords);
    OnWord.setPosition(OnWord.selectionStart() + 1);
    pPanel->setTextCursor(OnWord);

    QList<QPair<int, int>> Expected;
    const QTextDocument::FindFlags eFlags = QTextDocument::FindCaseSensitively | QTextDocument::FindWholeWords;
    for (QTextCursor Found = pPanel->document()->find(Word, 0, eFlags); !Found.isNull();
         Found = pPanel->document()->find(Word, Found, eFlags))
        Expected << qMakePair(Found.selectionStart(), Found.selectionEnd());
    QList<QPair<int, int>> Matches;
    QTRY_VERIFY(!pPanel->GetHighlightSelections(CShaderEditPanel::Highlight_CursorMatches).isEmpty());
    for (const QTextEdit::ExtraSelection& Match : pPanel->GetHighlightSelections(CShaderEditPanel::Highlight_CursorMatches))
        Matches << qMakePair(Match.cursor.selectionStart(), Match.cursor.selectionEnd());
    QCOMPARE(Matches, Expected);
    // Highlighting changes nothing in the document, not even its undo history.
    QVERIFY(!pPanel->IsModified());
    QVERIFY(!pPanel->document()->isUndoAvailable());
}

void CLargeDocumentTest::MovedHighlightsAreNoCursorMoves()
{
    CShaderEditor Editor(m_pHighlight.get());
    Editor.OnNewFile(DocType_GLSLESFragment);
    CShaderEditPanel* pPanel = Editor.GetCurrentPanel();
    pPanel->SetContents(Lines(3000, QStringLiteral("vec3 v%1;")), false);
    pPanel->moveCursor(QTextCursor::Right);
    QTRY_COMPARE(pPanel->GetHighlightSelections(CShaderEditPanel::Highlight_CursorMatches).size(), 3000);

    // Typing before them moves every highlight; the status bar hears of the caret only.
    QSignalSpy Lines(&Editor, &CShaderEditor::LineChanged);
    QSignalSpy Columns(&Editor, &CShaderEditor::ColChanged);
    QTest::keyClick(pPanel, Qt::Key_X);
    QVERIFY(!Lines.isEmpty());
    QVERIFY2(Lines.size() <= 2, qPrintable(QString::number(Lines.size())));
    QCOMPARE(Columns.last().at(0).toInt(), 3);
}

QTEST_MAIN(CLargeDocumentTest)
#include "tst_LargeDocuments.moc"
