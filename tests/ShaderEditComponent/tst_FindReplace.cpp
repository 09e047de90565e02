#include "EditorFixture.h"
#include "EditTestSupport.h"
#include "ShaderEditComponent/CFindReplace.h"
#include "ShaderEditComponent/TextSearch_p.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDockWidget>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <QSignalSpy>
#include <QToolButton>
#include <QtTest>

using namespace EditTestSupport;

namespace
{
// vec4 three times, VEC3, vec3, and my_vec4, where the underscore is no part of a word for
// the document's own whole-word search.
const char* const s_Shader = "uniform vec4 a;\nvec4 b = vec4(1.0);\nVEC3 c; vec3 d;\nmy_vec4 e;\n";
} // namespace

class CFindReplaceTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    // The search itself
    void CountsWhatFindNextStepsThrough();
    void ReplacesAll();

    // The bar over the editor's current tab
    void QuickFindCountsAndHighlights();
    void StepsAndWrapsOnce();
    void ReplaceReplacesAnySelection();
    void ReplaceAllIsOneUndoStep();
    void BrokenExpressionIsHarmless();
    void ShowFindTakesTheSelection();
    void RowsGrowAndShrinkTheBar();
    void HidingResetsTheBar();
    void WorksOnTheEditorsCurrentPanel();

private:
    template <typename T> T* Child(const char* pName) const { return m_pBar->findChild<T*>(QLatin1String(pName)); }
    QString MatchesLabel() const { return Child<QLabel>("NumMatchesLabel")->text(); }
    void Click(const char* pCheckBox) { Child<QCheckBox>(pCheckBox)->click(); }
    CShaderEditPanel* Edit() const { return m_F.pEditor->GetCurrentPanel(); }
    QList<QTextEdit::ExtraSelection> Highlights() const
    {
        return Edit()->GetHighlightSelections(CShaderEditPanel::Highlight_FindResults);
    }

    SEditorFixture m_F;
    CFindReplace* m_pBar = nullptr;
};

void CFindReplaceTest::init()
{
    m_F.Reset();
    m_F.pEditor->OnNewFile(DocType_PlainText);
    m_pBar = new CFindReplace;
    m_pBar->SetDelegate(m_F.pEditor.get());
}

void CFindReplaceTest::cleanup()
{
    delete m_pBar;
}

void CFindReplaceTest::CountsWhatFindNextStepsThrough()
{
    const uint Text = FindFlag_Textual;
    const uint Pattern = FindFlag_RegExp;
    const uint Case = FindFlag_MatchCase;
    const uint Word = FindFlag_WholeWords;
    const struct
    {
        const char* pText;
        uint uiFlags;
        int iCount;
    } Counts[] = {
        {"vec", Text, 6},           {"vec", Text | Case, 5}, {"vec4", Text | Word, 4},
        {"vec.", Text, 0},          {"vec[34]", Pattern, 6}, {"[a-z]+\\d", Pattern | Word | Case, 5},
        {"a;\\s*vec4", Pattern, 0}, {"x*", Pattern, 1}, // an empty match ends the count
        {"u*", Pattern, 2},         {"vec(", Pattern, 0},
    };
    QTextDocument Shader(QString::fromLatin1(s_Shader));
    for (const auto& Row : Counts)
    {
        const int iCount = CTextSearch(Row.pText, Row.uiFlags | FindFlag_FindAll).FindAll(&Shader).size();
        QVERIFY2(iCount == Row.iCount, Row.pText);
    }

    // The count must cover exactly what find next steps through, or the label lies; the plain
    // space finds the no-break space as the document's own search does.
    const QPair<const char*, uint> Stepping[] = {
        {"aa", Text},     {"ab", Text | Word},  {"a b", Text}, {"vec\\d", Pattern}, {"a\\w", Pattern | Word},
        {"b*$", Pattern}, {"a_a", Text | Word}, // past a part-word hit
    };
    QTextDocument Odd(QString::fromLatin1(s_Shader)
                      + QStringLiteral("a\u00a0b aaaa ab-ab _ab ab9 \u00e9ab xa_a_a a_a"));
    for (const auto& [pText, uiFlags] : Stepping)
    {
        const CTextSearch Search(QString::fromUtf8(pText), uiFlags);
        QVector<STextRange> Stepped;
        for (QTextCursor Found = Search.FindFrom(&Odd, QTextCursor(&Odd)); !Found.isNull();
             Found = Search.FindFrom(&Odd, Found))
        {
            const STextRange Match{Found.selectionStart(), Found.selectionEnd() - Found.selectionStart()};
            if (!Stepped.isEmpty() && Stepped.constLast() == Match)
                break;
            Stepped.append(Match);
        }
        QVERIFY2(!Stepped.isEmpty() && Search.FindAll(&Odd) == Stepped, pText);
    }
}

void CFindReplaceTest::ReplacesAll()
{
    const struct
    {
        const char* pBefore;
        const char* pText;
        uint uiFlags;
        const char* pReplacement;
        const char* pAfter;
    } Rows[] = {
        {"vec4 VEC2 myvec3", "vec", FindFlag_Textual, "X", "X4 X2 myX3"},
        {"pos Pos position pos", "pos", FindFlag_Textual | FindFlag_MatchCase | FindFlag_WholeWords, "X",
         "X Pos position X"},
        {"a-a", "a", FindFlag_Textual, "aa", "aa-aa"}, // the replacement holds the text
        {"a\n\nc", "^", FindFlag_RegExp, "// ", "// a\n// \n// c"},
        {"ab", "z*", FindFlag_RegExp, "X", "XaXbX"}, // empty matches step on
        {"a(b", "(", FindFlag_RegExp, "X", "a(b"},
    };
    for (const auto& Row : Rows)
    {
        QTextDocument Document(QString::fromLatin1(Row.pBefore));
        ReplaceAllMatches(CTextSearch(Row.pText, Row.uiFlags | FindFlag_Forward), Row.pReplacement,
                          QTextCursor(&Document));
        QCOMPARE(Document.toPlainText(), QString::fromLatin1(Row.pAfter));
    }
}

// Every change to the text or the options searches again at once, with only the options
// the bar shows: options on a hidden row would make a plain looking search find nothing.
void CFindReplaceTest::QuickFindCountsAndHighlights()
{
    QVERIFY(m_pBar->isHidden());
    Edit()->setPlainText(QStringLiteral("vec4 a; vec4 b;\nvec3 c; vec4 d;"));
    m_pBar->ShowFind();
    QLineEdit* pFind = Child<QLineEdit>("FindTextbox");
    QTest::keyClicks(pFind, QStringLiteral("vec"));
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 4"));
    QCOMPARE(Highlights().size(), 4);
    QCOMPARE(Highlights().last().cursor.selectionStart(), 24);
    QCOMPARE(Edit()->textCursor().position(), 0); // quick find only looks

    // With no match the earlier highlights stay.
    Click("CheckAdvanced");
    Click("MatchWord");
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 0"));
    QCOMPARE(Highlights().size(), 4);
    pFind->setText(QStringLiteral("VEC\\d"));
    Child<QComboBox>("MatchMode")->setCurrentIndex(1);
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 4"));
    Click("MatchCase");
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 0"));

    // Folding the row away takes its options out of force; unfolded, they are back.
    Click("CheckAdvanced");
    pFind->setText(QStringLiteral("VEC"));
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 4"));
    Child<QToolButton>("FindNext")->click();
    QCOMPARE(Edit()->textCursor().selectedText(), QStringLiteral("vec"));
    Click("CheckAdvanced");
    QVERIFY(Child<QCheckBox>("MatchCase")->isChecked());
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 0"));
    // Closed and opened again, the bar shows no options, so it uses none.
    m_pBar->hide();
    m_pBar->ShowFind();
    QVERIFY(!Child<QWidget>("AdvancedWidget")->isVisible());
    pFind->setText(QStringLiteral("VEC"));
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 4"));

    // An empty find text is no search: nothing counted, nothing left highlighted.
    pFind->clear();
    QCOMPARE(MatchesLabel(), QString());
    QVERIFY(Highlights().isEmpty());
}

void CFindReplaceTest::StepsAndWrapsOnce()
{
    const struct
    {
        const char* pBefore;
        const char* pText;
        const char* pButton;
        const char* pAfter;
    } Rows[] = {
        {"<ab| x ab x ab", "ab", "FindNext", "ab x <ab| x ab"},
        {"ab x\nab x <ab|", "ab", "FindNext", "<ab| x\nab x ab"},
        {"ab x |ab", "ab", "Return", "ab x <ab|"},
        {"ab x ab x |ab", "ab", "FindPrevious", "ab x <ab| x ab"},
        {"<ab| x ab x ab", "ab", "FindPrevious", "ab x ab x <ab|"},
        {"<ab| x ab", "zz", "FindNext", "<ab| x ab"},
        {"x <ab| x", "ab", "FindNext", "x <ab| x"}, // a lone match wraps to itself
    };
    m_pBar->ShowFind();
    QLineEdit* pFind = Child<QLineEdit>("FindTextbox");
    for (const auto& Row : Rows)
    {
        SetMarkedText(Edit(), QString::fromLatin1(Row.pBefore));
        pFind->setText(QString::fromLatin1(Row.pText));
        if (qstrcmp(Row.pButton, "Return") == 0)
            QTest::keyClick(pFind, Qt::Key_Return);
        else
            Child<QToolButton>(Row.pButton)->click();
        QVERIFY2(MarkedText(Edit()) == QString::fromLatin1(Row.pAfter), Row.pBefore);
    }
}

void CFindReplaceTest::ReplaceReplacesAnySelection()
{
    SetMarkedText(Edit(), QStringLiteral("<foo| vec vec"));
    m_pBar->ShowReplace();
    QVERIFY(Child<QWidget>("ReplaceWidget")->isVisible());
    Child<QLineEdit>("FindTextbox")->setText(QStringLiteral("vec"));
    Child<QLineEdit>("ReplaceTextbox")->setText(QStringLiteral("ivec"));

    // The selection is no match and is replaced all the same; then the next match is selected.
    Child<QPushButton>("Replace")->click();
    QCOMPARE(MarkedText(Edit()), QStringLiteral("ivec <vec| vec"));
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 3"));
    SetMarkedText(Edit(), QStringLiteral("a|b vec"));
    Child<QPushButton>("Replace")->click();
    QCOMPARE(MarkedText(Edit()), QStringLiteral("ab <vec|"));
}

void CFindReplaceTest::ReplaceAllIsOneUndoStep()
{
    const QString Before = QStringLiteral("vec4 a;\nVec4 b; myvec4 c;\nfloat x;\nf|loat y;\nvec4 d;");
    SetMarkedText(Edit(), Before);
    m_pBar->ShowReplace();
    Click("CheckAdvanced");
    Click("MatchWord");
    Child<QLineEdit>("FindTextbox")->setText(QStringLiteral("vec4"));
    Child<QLineEdit>("ReplaceTextbox")->setText(QStringLiteral("half4"));
    Child<QPushButton>("ReplaceAll")->click();
    QCOMPARE(Edit()->toPlainText(), QStringLiteral("half4 a;\nhalf4 b; myvec4 c;\nfloat x;\nfloat y;\nhalf4 d;"));
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 0"));

    // One undo takes the whole replacement back, and the cursor is where the user left it.
    Edit()->undo();
    QCOMPARE(MarkedText(Edit()), Before);
    QVERIFY(!Edit()->document()->isUndoAvailable());
}

void CFindReplaceTest::BrokenExpressionIsHarmless()
{
    SetMarkedText(Edit(), QStringLiteral("a(b |a(b"));
    m_pBar->ShowReplace();
    Click("CheckAdvanced");
    Child<QComboBox>("MatchMode")->setCurrentIndex(1);
    QLineEdit* pFind = Child<QLineEdit>("FindTextbox");
    QTest::keyClicks(pFind, QStringLiteral("a("));
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 0"));
    QVERIFY(!pFind->toolTip().isEmpty());
    Child<QToolButton>("FindNext")->click();
    Child<QPushButton>("ReplaceAll")->click();
    QCOMPARE(MarkedText(Edit()), QStringLiteral("a(b |a(b"));
    pFind->setText(QStringLiteral("a\\(b"));
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 2"));
    QVERIFY(pFind->toolTip().isEmpty());
}

void CFindReplaceTest::ShowFindTakesTheSelection()
{
    SetMarkedText(Edit(), QStringLiteral("float <gl_Position|; gl_Position = p;"));
    QSignalSpy Shown(m_pBar, &CFindReplace::visibilityChanged);
    m_pBar->ShowFind();
    QCOMPARE(Shown.count(), 1);
    QLineEdit* pFind = Child<QLineEdit>("FindTextbox");
    QCOMPARE(pFind->selectedText(), QStringLiteral("gl_Position"));
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 2"));

    // Without a selection, or with one over several lines (which can never match), the
    // previous text stays, selected to be typed over.
    SetMarkedText(Edit(), QStringLiteral("<a\nb| c"));
    m_pBar->ShowFind();
    QCOMPARE(pFind->selectedText(), QStringLiteral("gl_Position"));
    QCOMPARE(Shown.count(), 1);
}

void CFindReplaceTest::RowsGrowAndShrinkTheBar()
{
    m_pBar->ShowFind();
    QVERIFY(!Child<QWidget>("AdvancedWidget")->isVisible());
    QVERIFY(!Child<QWidget>("ReplaceWidget")->isVisible());
    const int iFindOnly = m_pBar->maximumHeight();
    Click("CheckAdvanced");
    const int iWithAdvanced = m_pBar->maximumHeight();
    QVERIFY(iWithAdvanced > iFindOnly);

    // Toggling back and forth must not let the height drift.
    QComboBox* pMode = Child<QComboBox>("ComboMode");
    for (int i = 0; i < 3; ++i)
    {
        pMode->setCurrentIndex(1);
        QVERIFY(m_pBar->maximumHeight() > iWithAdvanced);
        pMode->setCurrentIndex(0);
    }
    QCOMPARE(m_pBar->maximumHeight(), iWithAdvanced);
    Click("CheckAdvanced");
    QCOMPARE(m_pBar->maximumHeight(), iFindOnly);
}

// However the bar goes, it comes back reset in Find mode, and Escape hands the focus back to
// the text.
void CFindReplaceTest::HidingResetsTheBar()
{
    QMainWindow Window;
    Window.setCentralWidget(m_F.pEditor.get());
    auto* pDock = new QDockWidget(&Window);
    Window.addDockWidget(Qt::BottomDockWidgetArea, pDock);
    pDock->setWidget(m_pBar);
    pDock->hide();
    // Both belong to the test, not to the window: taken back before it goes, however this ends.
    const auto Unparent = [](QWidget* pWidget) { pWidget->setParent(nullptr); };
    const std::unique_ptr<QWidget, decltype(Unparent)> KeepEditor(m_F.pEditor.get(), Unparent);
    const std::unique_ptr<QWidget, decltype(Unparent)> KeepBar(m_pBar, Unparent);
    Window.show();
    QApplication::setActiveWindow(&Window);
    QVERIFY(QTest::qWaitForWindowActive(&Window));

    Edit()->setPlainText(QStringLiteral("vec4 v; vec4 w;"));
    m_pBar->ShowReplace();
    QVERIFY(pDock->isVisible());
    Click("CheckAdvanced");
    Child<QComboBox>("MatchMode")->setCurrentIndex(1);
    QLineEdit* pFind = Child<QLineEdit>("FindTextbox");
    pFind->setText(QStringLiteral("vec4"));
    Child<QLineEdit>("ReplaceTextbox")->setText(QStringLiteral("half4"));
    QSignalSpy Visibility(m_pBar, &CFindReplace::visibilityChanged);
    QSignalSpy Hidden(m_pBar, &CFindReplace::hasBeenHidden);
    Child<QToolButton>("CloseButton")->click();
    QVERIFY(!pDock->isVisible());
    QCOMPARE(Visibility.count(), 1);
    QCOMPARE(Visibility.first().first().toBool(), false);
    QCOMPARE(Hidden.count(), 1);
    QVERIFY(Highlights().isEmpty());
    QCOMPARE(MatchesLabel(), QString());
    QCOMPARE(pFind->text(), QString());
    QCOMPARE(Child<QLineEdit>("ReplaceTextbox")->text(), QString());
    QVERIFY(!Child<QCheckBox>("CheckAdvanced")->isChecked());
    QCOMPARE(Child<QComboBox>("MatchMode")->currentIndex(), 0);

    // Closing the dock itself resets the bar the same way.
    m_pBar->ShowFind();
    pFind->setText(QStringLiteral("v"));
    pDock->close();
    QCOMPARE(Hidden.count(), 2);
    QCOMPARE(pFind->text(), QString());

    m_pBar->ShowReplace();
    QTRY_VERIFY(pFind->hasFocus());
    QTest::keyClick(pFind, Qt::Key_Escape);
    QVERIFY(m_pBar->isHidden());
    QVERIFY(Edit()->hasFocus());
    m_pBar->ShowFind();
    QCOMPARE(Child<QComboBox>("ComboMode")->currentIndex(), 0);
    QVERIFY(!Child<QWidget>("ReplaceWidget")->isVisible());
    QTest::keyClick(Child<QComboBox>("ComboMode"), Qt::Key_Escape);
    QVERIFY(m_pBar->isHidden());
}

// Only the current tab is searched, here with a text of 12,000 matches in the second tab.
void CFindReplaceTest::WorksOnTheEditorsCurrentPanel()
{
    QString Text;
    for (int i = 0; i < 2000; ++i)
        Text += QStringLiteral("vec3 a%1 = vec3(1.0) * vec3(b) + vec3(c) - vec3(d);\n").arg(i);
    Text += QStringLiteral("vec3 ").repeated(2000); // and one very long line
    CShaderEditor& Editor = *m_F.pEditor;

    // Without a tab every command does nothing.
    QVERIFY(Editor.OnCloseAllTabs());
    m_pBar->ShowReplace();
    Child<QLineEdit>("FindTextbox")->setText(QStringLiteral("vec3"));
    Child<QToolButton>("FindNext")->click();
    Child<QPushButton>("ReplaceAll")->click();
    QCOMPARE(MatchesLabel(), QString());
    m_pBar->hide();

    Editor.OnNewFile(DocType_GLSLESVertex);
    Editor.GetCurrentPanel()->setPlainText(QStringLiteral("vec3 v;"));
    Editor.OnNewFile(DocType_GLSLESFragment);
    CShaderEditPanel* pPanel = Editor.GetCurrentPanel();
    SetMarkedText(pPanel, Text + QStringLiteral("<vec3|"));
    Editor.resize(800, 600);
    Editor.show();

    m_pBar->ShowReplace();
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 12001"));
    QCOMPARE(Highlights().size(), 12001);
    QVERIFY(Editor.GetPanel(0)->extraSelections().isEmpty());

    Child<QToolButton>("FindNext")->click();
    QCOMPARE(pPanel->textCursor().selectionStart(), 0);
    Child<QLineEdit>("ReplaceTextbox")->setText(QStringLiteral("half3"));
    Child<QPushButton>("ReplaceAll")->click();
    QVERIFY(!pPanel->toPlainText().contains(QStringLiteral("vec3")));
    QCOMPARE(Editor.GetPanel(0)->toPlainText(), QStringLiteral("vec3 v;"));
    m_pBar->hide();
    QVERIFY(pPanel->extraSelections().isEmpty());
}

QTEST_MAIN(CFindReplaceTest)
#include "tst_FindReplace.moc"
