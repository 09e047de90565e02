#include "EditTestSupport.h"
#include "ShaderEditComponent/CFindReplace.h"
#include "ShaderEditComponent/compile/model/MetaTypes.h"
#include "ShaderEditComponent/CShaderEditor.h"
#include "ShaderEditComponent/CShaderEditPanel.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"
#include "ShaderEditComponent/IFindReplaceDelagte.h"
#include "ShaderEditComponent/TextSearch_p.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDockWidget>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <QSignalSpy>
#include <QToolButton>
#include <QVBoxLayout>
#include <QtTest>

using namespace EditTestSupport;

namespace
{
// The editor side of the bar over a bare text edit, recording the highlights it is given.
class CFakeFindDelegate : public IFindReplaceDelagte
{
public:
    void ShowFindResults(const QList<QTextEdit::ExtraSelection>& lSelections) override { Highlights = lSelections; }
    void ClearFindResults() override { Highlights.clear(); }
    QPlainTextEdit* GetTextEdit() override { return &Edit; }
    QTextCharFormat GetFindResultFormat() const override { return QTextCharFormat(); }
    QString GetSelectedText() const override { return Edit.textCursor().selectedText(); }

    QPlainTextEdit Edit;
    QList<QTextEdit::ExtraSelection> Highlights;
};

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
    void CountsMatches_data();
    void CountsMatches();
    void CountAgreesWithStepping_data();
    void CountAgreesWithStepping();
    void ReplacesAll_data();
    void ReplacesAll();

    // The bar over a text edit
    void QuickFindCountsAndHighlights();
    void StepsAndWrapsOnce_data();
    void StepsAndWrapsOnce();
    void ReplaceReplacesAnySelection();
    void ReplaceAllIsOneUndoStep();
    void BrokenExpressionIsHarmless();
    void ShowFindTakesTheSelection();
    void RowsGrowAndShrinkTheBar();
    void HidingResetsAndClosesTheDock();
    void OnlyVisibleOptionsAreInForce();
    void EscapeAndHidingReturnToFind();
    void WorksOnTheEditorsCurrentPanel();

private:
    template <typename T> T* Child(const char* pName) const { return m_pBar->findChild<T*>(QLatin1String(pName)); }
    QString MatchesLabel() const { return Child<QLabel>("NumMatchesLabel")->text(); }
    void Click(const char* pCheckBox) { Child<QCheckBox>(pCheckBox)->click(); }

    CFakeFindDelegate* m_pDelegate = nullptr;
    CFindReplace* m_pBar = nullptr;
};

void CFindReplaceTest::init()
{
    RegisterCompileMetaTypes();
    m_pDelegate = new CFakeFindDelegate;
    m_pBar = new CFindReplace;
    m_pBar->SetDelegate(m_pDelegate);
}

void CFindReplaceTest::cleanup()
{
    delete m_pBar;
    delete m_pDelegate;
}

void CFindReplaceTest::CountsMatches_data()
{
    QTest::addColumn<QString>("Text");
    QTest::addColumn<uint>("Flags");
    QTest::addColumn<int>("Count");

    QTest::newRow("plain, any case") << "vec" << uint(FindFlag_Textual) << 6;
    QTest::newRow("plain, case") << "vec" << uint(FindFlag_Textual | FindFlag_MatchCase) << 5;
    QTest::newRow("plain, whole word") << "vec4" << uint(FindFlag_Textual | FindFlag_WholeWords) << 4;
    QTest::newRow("plain is no pattern") << "vec." << uint(FindFlag_Textual) << 0;
    QTest::newRow("pattern, any case") << "vec[34]" << uint(FindFlag_RegExp) << 6;
    QTest::newRow("pattern, case, word") << "[a-z]+\\d" << uint(FindFlag_RegExp | FindFlag_WholeWords | FindFlag_MatchCase) << 5;
    QTest::newRow("never across lines") << "a;\\s*vec4" << uint(FindFlag_RegExp) << 0;
    QTest::newRow("empty match ends the count") << "x*" << uint(FindFlag_RegExp) << 1;
    QTest::newRow("match, then empty match") << "u*" << uint(FindFlag_RegExp) << 2;
    QTest::newRow("broken pattern") << "vec(" << uint(FindFlag_RegExp) << 0;
}

void CFindReplaceTest::CountsMatches()
{
    QFETCH(QString, Text);
    QFETCH(uint, Flags);
    QFETCH(int, Count);
    QTextDocument Document(QString::fromLatin1(s_Shader));
    QCOMPARE(CTextSearch(Text, Flags | FindFlag_FindAll).FindAll(&Document).size(), Count);
}

// The count must cover exactly what find next steps through, or the label lies.
void CFindReplaceTest::CountAgreesWithStepping_data()
{
    QTest::addColumn<QString>("Text");
    QTest::addColumn<uint>("Flags");

    QTest::newRow("overlapping") << "aa" << uint(FindFlag_Textual);
    QTest::newRow("whole word") << "ab" << uint(FindFlag_Textual | FindFlag_WholeWords);
    QTest::newRow("no-break space") << "a b" << uint(FindFlag_Textual);
    QTest::newRow("pattern, any case") << "vec\\d" << uint(FindFlag_RegExp);
    QTest::newRow("pattern, whole word") << "a\\w" << uint(FindFlag_RegExp | FindFlag_WholeWords);
    QTest::newRow("empty at a line end") << "b*$" << uint(FindFlag_RegExp);
    QTest::newRow("whole word after a part-word hit") << "a_a" << uint(FindFlag_Textual | FindFlag_WholeWords);
}

void CFindReplaceTest::CountAgreesWithStepping()
{
    QFETCH(QString, Text);
    QFETCH(uint, Flags);
    QTextDocument Document(QString::fromLatin1(s_Shader) + QStringLiteral("a\u00a0b aaaa ab-ab _ab ab9 \u00e9ab xa_a_a a_a"));
    const CTextSearch Search(Text, Flags);

    QVector<STextRange> Stepped;
    for (QTextCursor Found = Search.FindFrom(&Document, QTextCursor(&Document)); !Found.isNull();
         Found = Search.FindFrom(&Document, Found))
    {
        const STextRange Match{Found.selectionStart(), Found.selectionEnd() - Found.selectionStart()};
        if (!Stepped.isEmpty() && Stepped.constLast() == Match)
            break;
        Stepped.append(Match);
    }
    QVERIFY(!Stepped.isEmpty());
    QCOMPARE(Search.FindAll(&Document), Stepped);
}

void CFindReplaceTest::ReplacesAll_data()
{
    QTest::addColumn<QString>("Before");
    QTest::addColumn<QString>("Text");
    QTest::addColumn<uint>("Flags");
    QTest::addColumn<QString>("Replacement");
    QTest::addColumn<QString>("After");

    QTest::newRow("plain") << "vec4 VEC2 myvec3" << "vec" << uint(FindFlag_Textual) << "X" << "X4 X2 myX3";
    QTest::newRow("case, word") << "pos Pos position pos" << "pos"
                                << uint(FindFlag_Textual | FindFlag_MatchCase | FindFlag_WholeWords) << "X"
                                << "X Pos position X";
    QTest::newRow("replacement holds the text") << "a-a" << "a" << uint(FindFlag_Textual) << "aa" << "aa-aa";
    QTest::newRow("every line start") << "a\n\nc" << "^" << uint(FindFlag_RegExp) << "// " << "// a\n// \n// c";
    QTest::newRow("empty matches step on") << "ab" << "z*" << uint(FindFlag_RegExp) << "X" << "XaXbX";
    QTest::newRow("broken pattern") << "a(b" << "(" << uint(FindFlag_RegExp) << "X" << "a(b";
}

void CFindReplaceTest::ReplacesAll()
{
    QFETCH(QString, Before);
    QFETCH(QString, Text);
    QFETCH(uint, Flags);
    QFETCH(QString, Replacement);
    QFETCH(QString, After);
    QTextDocument Document(Before);
    ReplaceAllMatches(CTextSearch(Text, Flags | FindFlag_Forward), Replacement, QTextCursor(&Document));
    QCOMPARE(Document.toPlainText(), After);
}

void CFindReplaceTest::QuickFindCountsAndHighlights()
{
    QVERIFY(m_pBar->isHidden());
    m_pDelegate->Edit.setPlainText(QStringLiteral("vec4 a; vec4 b;\nvec3 c; vec4 d;"));
    m_pBar->ShowFind();
    QLineEdit* pFind = Child<QLineEdit>("FindTextbox");
    QTest::keyClicks(pFind, QStringLiteral("vec"));
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 4"));
    QCOMPARE(m_pDelegate->Highlights.size(), 4);
    QCOMPARE(m_pDelegate->Highlights.last().cursor.selectionStart(), 24);
    QCOMPARE(m_pDelegate->Edit.textCursor().position(), 0); // quick find only looks

    // Every option searches again at once; with no match the earlier highlights stay.
    Click("CheckAdvanced");
    Click("MatchWord");
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 0"));
    QCOMPARE(m_pDelegate->Highlights.size(), 4);
    pFind->setText(QStringLiteral("VEC\\d"));
    Child<QComboBox>("MatchMode")->setCurrentIndex(1);
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 4"));
    Click("MatchCase");
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 0"));

    // An empty find text is no search: nothing counted, nothing left highlighted.
    pFind->clear();
    QCOMPARE(MatchesLabel(), QString());
    QVERIFY(m_pDelegate->Highlights.isEmpty());
}

void CFindReplaceTest::StepsAndWrapsOnce_data()
{
    QTest::addColumn<QString>("Before");
    QTest::addColumn<QString>("Text");
    QTest::addColumn<QString>("Button");
    QTest::addColumn<QString>("After");

    QTest::newRow("next") << "<ab| x ab x ab" << "ab" << "FindNext" << "ab x <ab| x ab";
    QTest::newRow("next wraps once") << "ab x\nab x <ab|" << "ab" << "FindNext" << "<ab| x\nab x ab";
    QTest::newRow("return is next") << "ab x |ab" << "ab" << "Return" << "ab x <ab|";
    QTest::newRow("previous") << "ab x ab x |ab" << "ab" << "FindPrevious" << "ab x <ab| x ab";
    QTest::newRow("previous wraps once") << "<ab| x ab x ab" << "ab" << "FindPrevious" << "ab x ab x <ab|";
    QTest::newRow("no match moves nothing") << "<ab| x ab" << "zz" << "FindNext" << "<ab| x ab";
    QTest::newRow("lone match wraps to itself") << "x <ab| x" << "ab" << "FindNext" << "x <ab| x";
}

void CFindReplaceTest::StepsAndWrapsOnce()
{
    QFETCH(QString, Before);
    QFETCH(QString, Text);
    QFETCH(QString, Button);
    QFETCH(QString, After);
    SetMarkedText(&m_pDelegate->Edit, Before);
    m_pBar->ShowFind();
    Child<QLineEdit>("FindTextbox")->setText(Text);
    if (Button == QLatin1String("Return"))
        QTest::keyClick(Child<QLineEdit>("FindTextbox"), Qt::Key_Return);
    else
        Child<QToolButton>(Button.toLatin1().constData())->click();
    QCOMPARE(MarkedText(&m_pDelegate->Edit), After);
}

void CFindReplaceTest::ReplaceReplacesAnySelection()
{
    SetMarkedText(&m_pDelegate->Edit, QStringLiteral("<foo| vec vec"));
    m_pBar->ShowReplace();
    QVERIFY(Child<QWidget>("ReplaceWidget")->isVisible());
    Child<QLineEdit>("FindTextbox")->setText(QStringLiteral("vec"));
    Child<QLineEdit>("ReplaceTextbox")->setText(QStringLiteral("ivec"));

    // The selection is no match and is replaced all the same; then the next match is selected.
    Child<QPushButton>("Replace")->click();
    QCOMPARE(MarkedText(&m_pDelegate->Edit), QStringLiteral("ivec <vec| vec"));
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 3"));
    SetMarkedText(&m_pDelegate->Edit, QStringLiteral("a|b vec"));
    Child<QPushButton>("Replace")->click();
    QCOMPARE(MarkedText(&m_pDelegate->Edit), QStringLiteral("ab <vec|"));
}

void CFindReplaceTest::ReplaceAllIsOneUndoStep()
{
    const QString Before = QStringLiteral("vec4 a;\nVec4 b; myvec4 c;\nfloat x;\nf|loat y;\nvec4 d;");
    SetMarkedText(&m_pDelegate->Edit, Before);
    m_pBar->ShowReplace();
    Click("CheckAdvanced");
    Click("MatchWord");
    Child<QLineEdit>("FindTextbox")->setText(QStringLiteral("vec4"));
    Child<QLineEdit>("ReplaceTextbox")->setText(QStringLiteral("half4"));
    Child<QPushButton>("ReplaceAll")->click();
    QCOMPARE(m_pDelegate->Edit.toPlainText(), QStringLiteral("half4 a;\nhalf4 b; myvec4 c;\nfloat x;\nfloat y;\nhalf4 d;"));
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 0"));

    // One undo takes the whole replacement back, and the cursor is where the user left it.
    m_pDelegate->Edit.undo();
    QCOMPARE(MarkedText(&m_pDelegate->Edit), Before);
    QVERIFY(!m_pDelegate->Edit.document()->isUndoAvailable());
}

void CFindReplaceTest::BrokenExpressionIsHarmless()
{
    SetMarkedText(&m_pDelegate->Edit, QStringLiteral("a(b |a(b"));
    m_pBar->ShowReplace();
    Click("CheckAdvanced");
    Child<QComboBox>("MatchMode")->setCurrentIndex(1);
    QLineEdit* pFind = Child<QLineEdit>("FindTextbox");
    QTest::keyClicks(pFind, QStringLiteral("a("));
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 0"));
    QVERIFY(!pFind->toolTip().isEmpty());
    Child<QToolButton>("FindNext")->click();
    Child<QPushButton>("ReplaceAll")->click();
    QCOMPARE(MarkedText(&m_pDelegate->Edit), QStringLiteral("a(b |a(b"));

    pFind->setText(QStringLiteral("a\\(b"));
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 2"));
    QVERIFY(pFind->toolTip().isEmpty());
}

void CFindReplaceTest::ShowFindTakesTheSelection()
{
    SetMarkedText(&m_pDelegate->Edit, QStringLiteral("float <gl_Position|; gl_Position = p;"));
    QSignalSpy Shown(m_pBar, &CFindReplace::visibilityChanged);
    m_pBar->ShowFind();
    QCOMPARE(Shown.count(), 1);
    QLineEdit* pFind = Child<QLineEdit>("FindTextbox");
    QCOMPARE(pFind->selectedText(), QStringLiteral("gl_Position"));
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 2"));

    // Without a selection, or with one over several lines (which can never match), the
    // previous text stays, selected to be typed over.
    SetMarkedText(&m_pDelegate->Edit, QStringLiteral("<a\nb| c"));
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

void CFindReplaceTest::HidingResetsAndClosesTheDock()
{
    QMainWindow Window;
    auto* pDock = new QDockWidget(&Window);
    Window.addDockWidget(Qt::BottomDockWidgetArea, pDock);
    pDock->setWidget(m_pBar);
    pDock->hide();
    Window.show();

    m_pDelegate->Edit.setPlainText(QStringLiteral("vec4 v; vec4 w;"));
    m_pBar->ShowReplace();
    QVERIFY(pDock->isVisible());
    Click("CheckAdvanced");
    Child<QComboBox>("MatchMode")->setCurrentIndex(1);
    Child<QLineEdit>("FindTextbox")->setText(QStringLiteral("vec4"));
    Child<QLineEdit>("ReplaceTextbox")->setText(QStringLiteral("half4"));

    QSignalSpy Visibility(m_pBar, &CFindReplace::visibilityChanged);
    QSignalSpy Hidden(m_pBar, &CFindReplace::hasBeenHidden);
    Child<QToolButton>("CloseButton")->click();
    QVERIFY(!pDock->isVisible());
    QCOMPARE(Visibility.count(), 1);
    QCOMPARE(Visibility.first().first().toBool(), false);
    QCOMPARE(Hidden.count(), 1);
    QVERIFY(m_pDelegate->Highlights.isEmpty());
    QCOMPARE(MatchesLabel(), QString());
    QCOMPARE(Child<QLineEdit>("FindTextbox")->text(), QString());
    QCOMPARE(Child<QLineEdit>("ReplaceTextbox")->text(), QString());
    QVERIFY(!Child<QCheckBox>("CheckAdvanced")->isChecked());
    QCOMPARE(Child<QComboBox>("MatchMode")->currentIndex(), 0);

    // Closing the dock itself resets the bar the same way.
    m_pBar->ShowFind();
    Child<QLineEdit>("FindTextbox")->setText(QStringLiteral("v"));
    pDock->close();
    QCOMPARE(Hidden.count(), 2);
    QCOMPARE(Child<QLineEdit>("FindTextbox")->text(), QString());

    m_pBar->setParent(nullptr);
}

// What the bar shows is what it searches with: options on a hidden row would make a plain
// looking search find nothing.
void CFindReplaceTest::OnlyVisibleOptionsAreInForce()
{
    m_pDelegate->Edit.setPlainText(QString::fromLatin1(s_Shader));
    m_pBar->ShowFind();
    Click("CheckAdvanced");
    Click("MatchCase");
    Click("MatchWord");
    QLineEdit* pFind = Child<QLineEdit>("FindTextbox");
    pFind->setText(QStringLiteral("VEC"));
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 0"));

    // Folding the row away takes its options out of force, and the count follows at once.
    Click("CheckAdvanced");
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 6"));
    Child<QToolButton>("FindNext")->click();
    QCOMPARE(m_pDelegate->Edit.textCursor().selectedText(), QStringLiteral("vec"));
    // Unfolded, they are back as they were.
    Click("CheckAdvanced");
    QVERIFY(Child<QCheckBox>("MatchCase")->isChecked());
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 0"));

    // Closed and opened again, the bar shows no options, so it uses none.
    m_pBar->hide();
    m_pBar->ShowFind();
    QVERIFY(!Child<QWidget>("AdvancedWidget")->isVisible());
    pFind->setText(QStringLiteral("VEC"));
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 6"));
}

void CFindReplaceTest::EscapeAndHidingReturnToFind()
{
    QWidget Window;
    auto* pLayout = new QVBoxLayout(&Window);
    pLayout->addWidget(&m_pDelegate->Edit);
    pLayout->addWidget(m_pBar);
    // Both belong to the test, not to the window: taken back before it goes, however this ends.
    const auto Unparent = [](QWidget* pWidget) { pWidget->setParent(nullptr); };
    const std::unique_ptr<QWidget, decltype(Unparent)> KeepEdit(&m_pDelegate->Edit, Unparent);
    const std::unique_ptr<QWidget, decltype(Unparent)> KeepBar(m_pBar, Unparent);
    Window.show();
    QApplication::setActiveWindow(&Window);
    QVERIFY(QTest::qWaitForWindowActive(&Window));

    m_pDelegate->Edit.setPlainText(QStringLiteral("vec4 v;"));
    m_pBar->ShowReplace();
    QVERIFY(Child<QWidget>("ReplaceWidget")->isVisible());
    QLineEdit* pFind = Child<QLineEdit>("FindTextbox");
    QVERIFY(pFind->hasFocus());
    QTest::keyClick(pFind, Qt::Key_Escape);
    QVERIFY(m_pBar->isHidden());
    QVERIFY(m_pDelegate->Edit.hasFocus());

    // Hidden, the bar went back to Find mode: it opens without the replace row.
    m_pBar->ShowFind();
    QCOMPARE(Child<QComboBox>("ComboMode")->currentIndex(), 0);
    QVERIFY(!Child<QWidget>("ReplaceWidget")->isVisible());
    QTest::keyClick(Child<QComboBox>("ComboMode"), Qt::Key_Escape);
    QVERIFY(m_pBar->isHidden());
}

// Over the real editor, with a text of 12,000 matches in its second tab.
void CFindReplaceTest::WorksOnTheEditorsCurrentPanel()
{
    QString Text;
    for (int i = 0; i < 2000; ++i)
        Text += QStringLiteral("vec3 a%1 = vec3(1.0) * vec3(b) + vec3(c) - vec3(d);\n").arg(i);
    Text += QStringLiteral("vec3 ").repeated(2000); // and one very long line
    CShaderHighlightController Highlight;
    CShaderEditor Editor(&Highlight);
    m_pBar->SetDelegate(&Editor);

    // Without a tab every command does nothing.
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

    // The whole round trip: search, highlights built and handed to the panel.
    QElapsedTimer Timer;
    Timer.start();
    m_pBar->ShowReplace();
    qInfo("quick find of 12,001 matches in the editor: %lld ms", Timer.elapsed());
    QCOMPARE(MatchesLabel(), QStringLiteral("Matches: 12001"));
    QCOMPARE(pPanel->GetHighlightSelections(CShaderEditPanel::Highlight_FindResults).size(), 12001);
    QVERIFY(Editor.GetPanel(0)->extraSelections().isEmpty());

    Child<QToolButton>("FindNext")->click();
    QCOMPARE(pPanel->textCursor().selectionStart(), 0);
    Child<QLineEdit>("ReplaceTextbox")->setText(QStringLiteral("half3"));
    Child<QPushButton>("ReplaceAll")->click();
    QVERIFY(!pPanel->toPlainText().contains(QStringLiteral("vec3")));
    QCOMPARE(Editor.GetPanel(0)->toPlainText(), QStringLiteral("vec3 v;"));
    m_pBar->hide();
    QVERIFY(pPanel->extraSelections().isEmpty());
    m_pBar->SetDelegate(nullptr);
}

QTEST_MAIN(CFindReplaceTest)
#include "tst_FindReplace.moc"
