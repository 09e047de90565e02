// The three preference pages, driven as a user would, against a real controller, a real
// preference file and real (misbehaving) compiler programs.

#include "Common/ZamPreferences/ZamPreferences.h"
#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/compile/model/MetaTypes.h"
#include "ShaderEditComponent/compile/process/CompilerLocator.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"
#include "ShaderEditComponent/highlighting/ShaderHighlighter.h"
#include "ShaderEditComponent/preferences/CColourSelectButton_p.h"
#include "ShaderEditComponent/preferences/CCompilerPreferencesWidget.h"
#include "ShaderEditComponent/preferences/CEditorColoursPreferencesWidget.h"
#include "ShaderEditComponent/preferences/CEditorPreferencesWidget.h"
#include "tests/support/CompileTestSupport.h"

#include <QCheckBox>
#include <QComboBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <QTimer>
#include <QtTest>

using namespace CompileTest;

namespace
{
const QString s_Store = QStringLiteral("ZamShaderEditor");

// The foreground the highlighter gave the first occurrence of Word in Document.
QColor ForegroundOf(QTextDocument& Document, const QString& Word)
{
    const QTextCursor Found = Document.find(Word);
    if (Found.isNull())
        return QColor();
    const QTextBlock Block = Found.block();
    const int iColumn = Found.selectionStart() - Block.position();
    for (const QTextLayout::FormatRange& Range : Block.layout()->formats())
    {
        if (iColumn >= Range.start && iColumn < Range.start + Range.length)
            return Range.format.foreground().color();
    }
    return QColor();
}

// The last EnableOK a page sent.
bool LastEnable(const QSignalSpy& Spy)
{
    return !Spy.isEmpty() && Spy.last().at(0).toBool();
}
} // namespace

class CPreferencePagesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void CompilerPageChecksTheCompilerWithoutBlocking();
    void CompilerPageSavesItsFieldsWithItsMask();
    void EditorPageSavesItsFieldsWithItsMask();
    void ColoursPageGroupsPreviewsAndApplies();

private:
    void MakeController(const QString& CustomCompiler);
    // The page's result stack and OK state once the compiler check has answered.
    int SettledPage(CCompilerPreferencesWidget& Page);

    QTemporaryDir m_Temp;
    std::unique_ptr<CZamPreferences> m_pStore;
    std::unique_ptr<CShaderEditController> m_pEdit;
};

void CPreferencePagesTest::initTestCase()
{
    RegisterCompileMetaTypes();
    QVERIFY(QFileInfo(Fake("print")).isExecutable());
}

void CPreferencePagesTest::init()
{
    QFile::remove(CZamPreferences(s_Store).GetFilePath());
    m_pStore = std::make_unique<CZamPreferences>(s_Store);
    QVERIFY(m_pStore->Load());
}

void CPreferencePagesTest::cleanup()
{
    m_pEdit.reset();
    m_pStore.reset();
    QTRY_COMPARE_WITH_TIMEOUT(Children().iLiving + Children().iZombies, 0, 5000);
}

void CPreferencePagesTest::MakeController(const QString& CustomCompiler)
{
    m_pStore->SetString(QStringLiteral("Compiler/GLSLES"), CustomCompiler);
    m_pStore->SetInteger(QStringLiteral("Compiler/CompilerSelection"), CustomCompilerSelection);
    SShaderEditControllerOptions Options;
    Options.pPreferences = m_pStore.get();
    Options.CompilerSearchPaths = {m_Temp.filePath(QStringLiteral("no-bundled-compilers"))};
    m_pEdit = std::make_unique<CShaderEditController>(Options);
    m_pEdit->WaitForCompilerDetection();
}

int CPreferencePagesTest::SettledPage(CCompilerPreferencesWidget& Page)
{
    if (!QTest::qWaitFor([&] { return !Page.IsCheckingCompiler(); }, 10000))
        return -1;
    return Page.findChild<QStackedWidget*>(QStringLiteral("CompilerResultStack"))->currentIndex();
}

void CPreferencePagesTest::CompilerPageChecksTheCompilerWithoutBlocking()
{
    MakeController(Fake("print"));
    CCompilerPreferencesWidget Page(*m_pEdit);
    QSignalSpy Enable(&Page, &CCompilerPreferencesWidget::EnableOK);
    auto* pStack = Page.findChild<QStackedWidget*>(QStringLiteral("CompilerResultStack"));
    auto* pPath = Page.findChild<QLineEdit*>(QStringLiteral("GLSLESPath"));
    auto* pCombo = Page.findChild<QComboBox*>(QStringLiteral("CompilerCombobox"));
    Page.SetDetectionTimeout(1500);

    // Filled from the settings; the check is under way when the page appears.
    QCOMPARE(pCombo->currentText(), QStringLiteral("Custom compiler"));
    QCOMPARE(pPath->text(), Fake("print"));
    QCOMPARE(pStack->currentIndex(), int(CCompilerPreferencesWidget::ResultPage_Checking));
    QCOMPARE(SettledPage(Page), int(CCompilerPreferencesWidget::ResultPage_Success));
    QVERIFY(LastEnable(Enable));
    QCOMPARE(Page.findChild<QLabel*>(QStringLiteral("CoreRevValLabel"))->text(), QStringLiteral("FAKE rev 1"));
    QCOMPARE(Page.findChild<QLabel*>(QStringLiteral("VersionValLabel"))->text(), QStringLiteral("1.0.0@7"));
    QCOMPARE(Page.findChild<QLabel*>(QStringLiteral("OptionsValLabel"))->text(),
             QStringLiteral("-v\n-f\n-nowarn\n-profile\n-perfsim\n-disasm"));

    // Typing a compiler that never answers: "checking" and OK off at once, the page keeps
    // responding, then the error page.
    pPath->selectAll();
    QTest::keyClicks(pPath, Fake("hang"));
    QCOMPARE(pStack->currentIndex(), int(CCompilerPreferencesWidget::ResultPage_Checking));
    QVERIFY(!LastEnable(Enable));
    const qint64 iStall = LongestStall([&] { return !Page.IsCheckingCompiler(); }, 10000);
    QVERIFY2(iStall >= 0 && iStall < 400, qPrintable(QString::number(iStall)));
    QCOMPARE(pStack->currentIndex(), int(CCompilerPreferencesWidget::ResultPage_Error));
    QVERIFY(!LastEnable(Enable));

    // (Which programs are unusable, and how they are told apart, is tst_ShaderEditController's.)
    emit Page.GLSLESPathChanged(QString());
    QCOMPARE(pStack->currentIndex(), int(CCompilerPreferencesWidget::ResultPage_NoPath));
    QVERIFY(!LastEnable(Enable));

    // A bundled target that is not installed: no path, and the field is not the user's to edit.
    pCombo->setCurrentIndex(1);
    QVERIFY(pPath->isReadOnly());
    QVERIFY(!Page.findChild<QPushButton*>(QStringLiteral("BrowseGLSLES"))->isEnabled());
    QCOMPARE(pStack->currentIndex(), int(CCompilerPreferencesWidget::ResultPage_NoPath));

    // A good compiler with a temporary folder that does not exist still leaves OK off.
    pCombo->setCurrentIndex(4);
    emit Page.GLSLESPathChanged(Fake("print"));
    QCOMPARE(SettledPage(Page), int(CCompilerPreferencesWidget::ResultPage_Success));
    QVERIFY(LastEnable(Enable));
    emit Page.CompilerTempPathChanged(m_Temp.filePath(QStringLiteral("missing-folder")));
    QVERIFY(!LastEnable(Enable));
    QVERIFY(Page.findChild<QLabel*>(QStringLiteral("TempPathProblemLabel"))->isVisibleTo(&Page));
    emit Page.CompilerTempPathChanged(m_Temp.path());
    QVERIFY(LastEnable(Enable));
}

void CPreferencePagesTest::CompilerPageSavesItsFieldsWithItsMask()
{
    MakeController(Fake("print"));
    CCompilerPreferencesWidget Page(*m_pEdit);
    QCOMPARE(SettledPage(Page), int(CCompilerPreferencesWidget::ResultPage_Success));
    QSignalSpy Changed(m_pEdit.get(), &CShaderEditController::CompilerSettingsChanged);

    // The user's custom path is kept while a bundled target is selected.
    auto* pPath = Page.findChild<QLineEdit*>(QStringLiteral("GLSLESPath"));
    pPath->selectAll();
    QTest::keyClicks(pPath, QStringLiteral("/opt/tools/my compiler"));
    Page.findChild<QComboBox*>(QStringLiteral("CompilerCombobox"))->setCurrentIndex(2);
    Page.findChild<QLineEdit*>(QStringLiteral("TempPath"))->setText(m_Temp.path());
    Page.findChild<QCheckBox*>(QStringLiteral("ColourCompilerOutputCheckbox"))->setChecked(false);
    Page.findChild<CColourSelectButton*>(QStringLiteral("ErrorColourButton"))->OnSetColour(QColor(10, 20, 30));
    Page.findChild<CColourSelectButton*>(QStringLiteral("WarningColourButton"))->OnSetColour(QColor(40, 50, 60));
    // Include folders keep their order; Remove takes the selected ones.
    auto* pIncludes = Page.findChild<QListWidget*>(QStringLiteral("IncludeFolderList"));
    auto* pRemove = Page.findChild<QPushButton*>(QStringLiteral("RemoveIncludeFolder"));
    QVERIFY(!pRemove->isEnabled());
    pIncludes->addItems({QStringLiteral("/src/common"), QStringLiteral("/src/old"), QStringLiteral("/src/engine")});
    pIncludes->item(1)->setSelected(true);
    QVERIFY(pRemove->isEnabled());
    pRemove->click();
    Page.OnSave();

    QCOMPARE(Changed.size(), 1);
    QCOMPARE(Changed.first().at(1).toUInt(), 2u | 8u | 16u | 32u | 64u | 128u | 256u);
    QCOMPARE(m_pEdit->GetCompilerSettings().IncludeFolders,
             (QStringList{QStringLiteral("/src/common"), QStringLiteral("/src/engine")}));
    CZamPreferences File(s_Store);
    QVERIFY(File.Load());
    QCOMPARE(File.GetString(QStringLiteral("Compiler/GLSLES")), QStringLiteral("/opt/tools/my compiler"));
    QCOMPARE(File.GetInteger(QStringLiteral("Compiler/CompilerSelection"), -1), 2);
    QCOMPARE(File.GetString(QStringLiteral("Compiler/TempDirectory")), m_Temp.path());
    QCOMPARE(File.GetBool(QStringLiteral("Output/ShouldFormat"), true), false);
    QCOMPARE(File.GetStringArray(QStringLiteral("Compiler/IncludeFolders")),
             (QStringList{QStringLiteral("/src/common"), QStringLiteral("/src/engine")}));
    QCOMPARE(File.GetArgb(QStringLiteral("Output/Error"), 0), QColor(10, 20, 30).rgba());
    QCOMPARE(File.GetArgb(QStringLiteral("Output/Warning"), 0), QColor(40, 50, 60).rgba());
    // The General page's bit is not this page's to write.
    QVERIFY(!File.HasKey(QStringLiteral("Compiler/AutoCompile")));
}

void CPreferencePagesTest::EditorPageSavesItsFieldsWithItsMask()
{
    m_pStore->SetBool(QStringLiteral("Editor/CloseTabsMiddleMouse"), true);
    m_pStore->SetInteger(QStringLiteral("Editor/TabSpaceSize"), 6);
    MakeController(QString());
    QSignalSpy Changed(m_pEdit.get(), &CShaderEditController::EditorSettingsChanged);
    CEditorPreferencesWidget Page(*m_pEdit);
    auto* pTabSize = Page.findChild<QLineEdit*>(QStringLiteral("TabSize"));
    auto* pSpaces = Page.findChild<QCheckBox*>(QStringLiteral("TabAsSpaceCheckbox"));
    QCOMPARE(pTabSize->text(), QStringLiteral("6"));
    QVERIFY(!pSpaces->isChecked());
    QVERIFY(!pTabSize->isEnabled()); // only used for tabs typed as spaces
    pSpaces->setChecked(true);
    QVERIFY(pTabSize->isEnabled());
    pTabSize->setText(QStringLiteral("12"));
    Page.findChild<QCheckBox*>(QStringLiteral("CursorMatchCheckbox"))->setChecked(false);
    QVERIFY(!Page.findChild<CColourSelectButton*>(QStringLiteral("CursorMatchColButton"))->isEnabled());
    Page.findChild<CColourSelectButton*>(QStringLiteral("FindResultColButton"))->OnSetColour(QColor(1, 2, 3));
    Page.OnSave();

    QCOMPARE(Changed.size(), 1);
    CZamPreferences File(s_Store);
    QVERIFY(File.Load());
    QCOMPARE(File.GetInteger(QStringLiteral("Editor/TabSpaceSize"), 0), 12);
    QCOMPARE(File.GetBool(QStringLiteral("Editor/TreatTabAsSpace"), false), true);
    QCOMPARE(File.GetBool(QStringLiteral("Editor/PerformCursorMatch"), true), false);
    QCOMPARE(File.GetArgb(QStringLiteral("Editor/FindResultColour"), 0), QColor(1, 2, 3).rgba());
    QCOMPARE(File.GetArgb(QStringLiteral("Editor/CursorMatchColour"), 0), 0xFFC4FFFFu);
    QVERIFY(m_pEdit->GetEditorSettings().bCloseTabsMiddleMouse); // the General page's field stays

    // The tab size is read in base 10; size 0 is refused.
    QSignalSpy Enable(&Page, &CEditorPreferencesWidget::EnableOK);
    const char* const pOverflow = "99999999999999999999";
    const QPair<const char*, int> Rows[] = {
        {"8", 8}, {"010", 10}, {" 3 ", 3}, {"0x10", 0}, {"four", 0},    {"", 0},
        {"0", 0}, {"-4", 0},   {"65", 0},  {"4.5", 0},  {pOverflow, 0},
    };
    for (const auto& [pText, iSize] : Rows)
    {
        pTabSize->setText(QString::fromLatin1(pText));
        QVERIFY2(LastEnable(Enable) == (iSize != 0), pText);
        QVERIFY2(Page.findChild<QLabel*>(QStringLiteral("TabSizeProblemLabel"))->isVisibleTo(&Page) == (iSize == 0),
                 pText);
        if (iSize == 0)
            continue;
        Page.OnSave();
        QCOMPARE(m_pEdit->GetEditorSettings().iTabSpaceSize, iSize);
    }
}

void CPreferencePagesTest::ColoursPageGroupsPreviewsAndApplies()
{
    CShaderHighlightController Highlight(m_pStore.get());
    // An open panel's document, highlighted by the real scheme.
    QTextDocument Open(QStringLiteral("uniform mediump vec4 Colour;\nvoid main() {}\n"));
    CShaderHighlighter Panel(&Open, DocType_GLSLESFragment, &Highlight);
    connect(&Highlight, &CShaderHighlightController::SyntaxColoursChanged, &Panel, &QSyntaxHighlighter::rehighlight);
    Panel.rehighlight();
    const QColor Blue = QColor::fromRgba(0xFF0000FF);
    QCOMPARE(ForegroundOf(Open, "uniform"), Blue);

    CEditorColoursPreferencesWidget Page(Highlight);
    QSignalSpy Colours(&Highlight, &CShaderHighlightController::SyntaxColoursChanged);
    QSignalSpy Font(&Highlight, &CShaderHighlightController::FontChanged);

    // Editing the keyword colour shows in the preview only.
    QTextDocument* pPreview = Page.findChild<QPlainTextEdit*>(QStringLiteral("PreviewText"))->document();
    Page.SelectElement(HighlightElement_GLSLESKeyword);
    QCOMPARE(ForegroundOf(*pPreview, "uniform"), Blue);
    const QColor Orange(230, 120, 0);
    Page.findChild<CColourSelectButton*>(QStringLiteral("ForegroundButton"))->OnSetColour(Orange);
    Page.findChild<QCheckBox*>(QStringLiteral("BoldCheckbox"))->setChecked(true);
    QCOMPARE(ForegroundOf(*pPreview, "uniform"), Orange);
    QCOMPARE(ForegroundOf(Open, "uniform"), Blue);
    QCOMPARE(Colours.size(), 0);

    // Another language shows its own sample; switching back keeps the edit.
    Page.SelectElement(HighlightElement_OpenCLKeyword);
    QVERIFY(pPreview->toPlainText().contains("__kernel"));
    Page.SelectElement(HighlightElement_GLSLESKeyword);
    QCOMPARE(Page.findChild<CColourSelectButton*>(QStringLiteral("ForegroundButton"))->GetColour(), Orange);

    // "Defaults" takes one element back; the other edits stay.
    Page.SelectElement(HighlightElement_HLSLComment);
    Page.findChild<CColourSelectButton*>(QStringLiteral("BackgroundButton"))->OnSetColour(Qt::yellow);
    Page.findChild<QPushButton*>(QStringLiteral("DefaultsButton"))->click();
    QCOMPARE(Page.GetStyle(HighlightElement_HLSLComment).Background.rgba(), 0xFFFFFFFFu);
    QCOMPARE(Page.GetStyle(HighlightElement_GLSLESKeyword).Foreground, Orange);
    Page.findChild<QSpinBox*>(QStringLiteral("FontSize"))->setValue(15);

    // OK: the open panel follows at once and the file holds the change.
    Page.OnSave();
    QCOMPARE(ForegroundOf(Open, "uniform"), Orange);
    QVERIFY(Colours.size() >= 1);
    QCOMPARE(Font.size(), 1);
    QCOMPARE(Highlight.GetFont().pointSize(), 15);
    CZamPreferences File(s_Store);
    QVERIFY(File.Load());
    QCOMPARE(File.GetArgb(QStringLiteral("Colours/GLSL:ES/Keyword/Foreground"), 0), Orange.rgba());
    QCOMPARE(File.GetBool(QStringLiteral("Colours/GLSL:ES/Keyword/Bold"), false), true);
    QVERIFY(!File.HasGroup(QStringLiteral("Colours/HLSL/Comment"))); // back to its default: nothing to store
    QCOMPARE(File.GetInteger(QStringLiteral("Editor/FontSize"), 0), 15);

    // All defaults, then OK: the panel is back to blue; an OK with nothing changed sends nothing.
    Page.findChild<QPushButton*>(QStringLiteral("AllDefaultsButton"))->click();
    Page.OnSave();
    QCOMPARE(ForegroundOf(Open, "uniform"), Blue);
    const int iSent = Colours.size();
    Page.OnSave();
    QCOMPARE(Colours.size(), iSent);
}

QTEST_MAIN(CPreferencePagesTest)
#include "tst_PreferencePages.moc"
