#include "EditorFixture.h"
#include "EditTestSupport.h"
#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/CShaderEditPanel.h"
#include "ShaderEditComponent/NewFileName_p.h"

#include <QSignalSpy>
#include <QTabBar>
#include <QTabWidget>
#include <QTextBlock>
#include <QTextLayout>
#include <QtTest>

using namespace EditTestSupport;
using TestFiles::ReadAll;

class CShaderEditorTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void NewFileNames_data();
    void NewFileNames();
    void EffectFilesCompileAsTheyAre();

    void CloseQuestion_data();
    void CloseQuestion();
    void NewFilesAndClosingThem();

    void OpenSwitchesToAnOpenFile();
    void ModifiedMarkerAndSaveAs();
    void HighlightsFollowTheSettings();
    void HiddenTabsAreColouredLater();
    void FollowsTheController();

private:
    struct SDelivered
    {
        SCompileResult Last;
        QString Log;
        int iResults = 0;
    };
    // A controller with the bundled compiler, wired to the editor; null when the compiler is
    // not part of the build.
    std::unique_ptr<CShaderEditController> BundledCompilerController(SDelivered& Delivered);
    QStringList TabTitles() const;
    void Type(const QString& Text);

    SEditorFixture m_F;
};

void CShaderEditorTest::init()
{
    m_F.Reset();
    m_F.pEditor->resize(700, 500);
    m_F.pEditor->show();
}

void CShaderEditorTest::cleanup()
{
    m_F.pEditor.reset();
}

QStringList CShaderEditorTest::TabTitles() const
{
    QStringList Titles;
    const auto* pTabs = m_F.pEditor->findChild<QTabWidget*>();
    for (int i = 0; i < pTabs->count(); ++i)
        Titles << pTabs->tabText(i);
    return Titles;
}

void CShaderEditorTest::Type(const QString& Text)
{
    QTest::keyClicks(m_F.pEditor->GetCurrentPanel(), Text);
}

void CShaderEditorTest::NewFileNames_data()
{
    QTest::addColumn<QStringList>("Tabs");
    QTest::addColumn<QString>("Next");
    QTest::newRow("no tabs") << QStringList() << "New File";
    QTest::newRow("one new file") << QStringList{"New File"} << "New File (1)";
    QTest::newRow("the last one decides") << QStringList{"New File", "New File (4)", "New File"} << "New File (1)";
    QTest::newRow("not the largest") << QStringList{"New File (4)", "New File (2)"} << "New File (3)";
    QTest::newRow("modified marker") << QStringList{"New File (2)*"} << "New File (3)";
    QTest::newRow("other files do not count") << QStringList{"New File (4)", "a.vsh"} << "New File (5)";
    QTest::newRow("case matters") << QStringList{"new file (7)"} << "New File";
}

void CShaderEditorTest::NewFileNames()
{
    QFETCH(QStringList, Tabs);
    QFETCH(QString, Next);
    QCOMPARE(NextNewFileName(Tabs), Next);
}

std::unique_ptr<CShaderEditController> CShaderEditorTest::BundledCompilerController(SDelivered& Delivered)
{
    const QString BinDir = TestFiles::BinDir();
    if (!QFileInfo(QDir(BinDir).filePath(QStringLiteral("glslcompiler_zc1"))).isExecutable())
        return nullptr;
    SShaderEditControllerOptions Options;
    Options.CompilerSearchPaths = {BinDir};
    auto pController = std::make_unique<CShaderEditController>(Options);
    // Whatever an earlier test stored: compile in the background, with the first bundled core.
    Settings::SCompiler Compiler = pController->GetCompilerSettings();
    Compiler.bAutoCompile = true;
    Compiler.uiCompilerSelection = 0;
    pController->SetCompilerSettings(Compiler, Settings::CompilerSetting_All);
    pController->WaitForCompilerDetection();
    connect(pController.get(), &CShaderEditController::CompileProfileChanged, this,
            [&Delivered](const SCompileResult& Result)
            {
                Delivered.Last = Result;
                Delivered.Log = ToQString(Result.Log);
                ++Delivered.iResults;
            });
    m_F.pEditor->SetController(pController.get());
    return pController;
}

// The new-file dialog promises a basic template for effect files: one the bundled compiler
// takes as it is. An effect's FILE shaders are beside it, whatever folder the editor was
// started in; a tab never saved looks in the folder last opened from or saved to.
void CShaderEditorTest::EffectFilesCompileAsTheyAre()
{
    SDelivered Delivered;
    const auto pController = BundledCompilerController(Delivered);
    if (!pController)
        QSKIP("the bundled compiler is not part of this build");

    m_F.pEditor->OnNewFile(DocType_ZFXGLSLES);
    CShaderEditPanel* pPanel = m_F.pEditor->GetCurrentPanel();
    QVERIFY(!pPanel->IsModified());
    QTRY_COMPARE_WITH_TIMEOUT(Delivered.iResults, 1, 30000);
    QCOMPARE(Delivered.Log, QStringLiteral("MainVS: Compile succeeded.\nMainFS: Compile succeeded.\n"));
    QCOMPARE(Delivered.Last.iStatus, 0);
    QCOMPARE(Delivered.Last.Profiles.GetSize(), 2u);

    m_F.Write(QStringLiteral("fx/lit.frag"), "precision mediump float;\nvoid main() { gl_FragColor = vec4(1.0); }\n");
    // The precision line makes it a GLSL ES effect, which is compiled in the background.
    const QByteArray Effect = "[VERTEXSHADER]\nNAME vs\n[GLSL_CODE]\nprecision highp float;\n"
                              "void main() { gl_Position = vec4(0.0); }\n"
                              "[/GLSL_CODE]\n[/VERTEXSHADER]\n[FRAGMENTSHADER]\nNAME fs\nFILE lit.frag\n"
                              "[/FRAGMENTSHADER]\n[EFFECT]\nNAME e\nVERTEXSHADER vs\nFRAGMENTSHADER fs\n[/EFFECT]\n";
    const QString Expected = QStringLiteral("vs: Compile succeeded.\nfs: Compile succeeded.\n");
    QVERIFY(m_F.pEditor->OnOpenFile(m_F.Write(QStringLiteral("fx/scene.zfx"), Effect)));
    QTRY_COMPARE_WITH_TIMEOUT(Delivered.iResults, 2, 30000);
    QCOMPARE(Delivered.Log, Expected);
    m_F.pEditor->OnNewFile(DocType_ZFXGLSLES);
    QTRY_COMPARE_WITH_TIMEOUT(Delivered.iResults, 3, 30000); // its template
    m_F.pEditor->GetCurrentPanel()->setPlainText(QString::fromLatin1(Effect));
    QTRY_COMPARE_WITH_TIMEOUT(Delivered.iResults, 4, 30000);
    QCOMPARE(Delivered.Log, Expected);
    // The desktop effect gets the same effect; the other types start empty.
    m_F.pEditor->OnNewFile(DocType_ZFXGLSL);
    QCOMPARE(m_F.pEditor->GetCurrentPanel()->toPlainText(), pPanel->toPlainText());
    m_F.pEditor->OnNewFile(DocType_GLSLESFragment);
    QVERIFY(m_F.pEditor->GetCurrentPanel()->toPlainText().isEmpty());
}

void CShaderEditorTest::CloseQuestion_data()
{
    QTest::addColumn<bool>("Modify");
    QTest::addColumn<int>("Answer");
    QTest::addColumn<bool>("FolderVanishes");
    QTest::addColumn<bool>("Closed");
    QTest::addColumn<QByteArray>("OnDisk");

    QTest::newRow("unchanged closes without asking")
        << false << int(QMessageBox::Cancel) << false << true << QByteArray("old");
    QTest::newRow("cancel keeps the tab") << true << int(QMessageBox::Cancel) << false << false << QByteArray("old");
    QTest::newRow("discard closes") << true << int(QMessageBox::Discard) << false << true << QByteArray("old");
    QTest::newRow("save writes the closed tab")
        << true << int(QMessageBox::Save) << false << true << QByteArray("newold");
    QTest::newRow("failed save keeps the tab")
        << true << int(QMessageBox::Save) << true << false << QByteArray("<missing>");
}

void CShaderEditorTest::CloseQuestion()
{
    QFETCH(bool, Modify);
    QFETCH(int, Answer);
    QFETCH(bool, FolderVanishes);
    QFETCH(bool, Closed);
    QFETCH(QByteArray, OnDisk);

    QVERIFY(QDir(m_F.pDir->path()).mkdir(QStringLiteral("sub")));
    const QString Closing = m_F.Write(QStringLiteral("sub/closing.vsh"), "old");
    const QString Current = m_F.Write(QStringLiteral("current.fsh"), "keep");
    QVERIFY(m_F.pEditor->OnOpenFile(Closing));
    if (Modify)
        Type(QStringLiteral("new"));
    QVERIFY(m_F.pEditor->OnOpenFile(Current));
    Type(QStringLiteral("unsaved"));
    if (FolderVanishes)
        QVERIFY(QDir(m_F.pDir->filePath(QStringLiteral("sub"))).removeRecursively());

    // The background tab is closed while another one is current.
    m_F.Delegate.eAnswer = static_cast<QMessageBox::StandardButton>(Answer);
    auto* pTabs = m_F.pEditor->findChild<QTabWidget*>();
    emit pTabs->tabCloseRequested(0);

    QCOMPARE(m_F.Delegate.Asked, Modify ? QStringList{QDir::toNativeSeparators(Closing)} : QStringList());
    QCOMPARE(m_F.pEditor->GetTabCount(), Closed ? 1 : 2);
    QCOMPARE(QFile::exists(Closing) ? ReadAll(Closing) : QByteArray("<missing>"), OnDisk);
    QCOMPARE(ReadAll(Current), QByteArray("keep"));
    if (!Closed)
        QVERIFY(m_F.pEditor->GetPanel(0)->IsModified());
    QCOMPARE(m_F.Delegate.Errors.size(), FolderVanishes ? 1 : 0);
}

void CShaderEditorTest::NewFilesAndClosingThem()
{
    QSignalSpy State(m_F.pEditor.get(), &CShaderEditor::StateChanged);
    m_F.pEditor->OnNewFile(DocType_GLSLESVertex);
    m_F.pEditor->OnNewFile(DocType_PlainText);
    Type(QStringLiteral("typed"));
    m_F.pEditor->OnNewFile(DocType_OpenCLKernel);
    QCOMPARE(TabTitles(), QStringList({"New File", "New File (1)*", "New File (2)"}));
    QCOMPARE(State.count(), 1);
    QCOMPARE(State.at(0).at(0).toInt(), 2);
    QCOMPARE(m_F.pEditor->GetCurrentPanel()->GetDocumentType(), DocType_OpenCLKernel);
    // Never-saved documents share the PanelID of the empty path.
    QCOMPARE(m_F.pEditor->GetPanel(0)->GetPanelID(), m_F.pEditor->GetPanel(2)->GetPanelID());
    QCOMPARE(m_F.pEditor->GetPanel(0)->GetPanelID(), CZamTHash(""));

    // The document asked about is the one in view while the question is asked.
    auto* pTabs = m_F.pEditor->findChild<QTabWidget*>();
    QStringList Shown;
    m_F.Delegate.OnAsk = [&] { Shown << pTabs->tabText(pTabs->currentIndex()); };
    QVERIFY(!m_F.pEditor->OnCloseAllTabs());
    QCOMPARE(TabTitles(), QStringList({"New File (1)*", "New File (2)"}));
    QCOMPARE(m_F.Delegate.Asked, QStringList{"New File (1)"});
    QCOMPARE(Shown, QStringList{"New File (1)*"});

    // Save of a never-saved document asks for a name; cancelling that keeps the tab too.
    m_F.Delegate.eAnswer = QMessageBox::Save;
    QVERIFY(!m_F.pEditor->OnCloseAllTabs());
    QCOMPARE(m_F.Delegate.iSaveNameRequests, 1);
    QCOMPARE(m_F.pEditor->GetTabCount(), 2);

    // A middle click closes a tab, asking first, only when the setting says so.
    const QPoint FirstTab = pTabs->tabBar()->tabRect(0).center();
    m_F.Delegate.Asked.clear();
    QTest::mouseClick(pTabs->tabBar(), Qt::MiddleButton, Qt::NoModifier, FirstTab);
    QCOMPARE(m_F.pEditor->GetTabCount(), 2);
    Settings::SEditor Editor;
    Editor.bCloseTabsMiddleMouse = true;
    m_F.pEditor->OnEditorSettingsChanged(Editor);
    m_F.Delegate.eAnswer = QMessageBox::Discard;
    QTest::mouseClick(pTabs->tabBar(), Qt::MiddleButton, Qt::NoModifier, FirstTab);
    QCOMPARE(m_F.Delegate.Asked, QStringList{"New File (1)"});
    QCOMPARE(TabTitles(), QStringList{"New File (2)"});

    QVERIFY(m_F.pEditor->OnCloseAllTabs());
    QCOMPARE(m_F.pEditor->GetTabCount(), 0);
    QCOMPARE(State.count(), 2);
    QCOMPARE(State.at(1).at(0).toInt(), 1);
}

void CShaderEditorTest::OpenSwitchesToAnOpenFile()
{
    QSignalSpy Opened(m_F.pEditor.get(), &CShaderEditor::FileOpened);
    const QString First = m_F.Write(QStringLiteral("a.vsh"), "void main() { gl_Position = vec4(1.0); }");
    const QString Second = m_F.Write(QStringLiteral("b.fsh"), "void main() {}");
    QVERIFY(m_F.pEditor->OnOpenFile(First));
    QVERIFY(m_F.pEditor->OnOpenFile(Second));
    QCOMPARE(m_F.pEditor->GetPanel(0)->GetDocumentType(), DocType_GLSLESVertex);
    QCOMPARE(m_F.pEditor->GetPanel(1)->GetDocumentType(), DocType_GLSLESFragment);

    QVERIFY(m_F.pEditor->OnOpenFile(m_F.pDir->path() + QStringLiteral("/./a.vsh")));
    QCOMPARE(m_F.pEditor->GetTabCount(), 2);
    QCOMPARE(m_F.pEditor->GetCurrentPanel(), m_F.pEditor->GetPanel(0));
    QCOMPARE(Opened.count(), 2);
    QCOMPARE(Opened.at(0).at(0).toString(), QDir::toNativeSeparators(First));

    m_F.Delegate.OpenPath = Second;
    QVERIFY(m_F.pEditor->OnOpenFile());
    QCOMPARE(m_F.pEditor->GetCurrentPanel(), m_F.pEditor->GetPanel(1));
    m_F.Delegate.OpenPath.clear();
    QVERIFY(m_F.pEditor->OnOpenFile()); // cancelled: nothing to report
    QCOMPARE(m_F.pEditor->GetTabCount(), 2);
    QVERIFY(!m_F.pEditor->GetPanel(0)->IsModified());
}

// Names may hold the marker themselves; the marker goes with a save or an undo.
void CShaderEditorTest::ModifiedMarkerAndSaveAs()
{
    const QString Path = m_F.Write(QStringLiteral("a*b.vsh"), "abc");
    QVERIFY(m_F.pEditor->OnOpenFile(Path));
    const CZamTHash PanelID = m_F.pEditor->GetCurrentPanel()->GetPanelID();
    QVERIFY(m_F.pEditor->OnOpenFile(m_F.Write(QStringLiteral("star*"), "x")));
    QCOMPARE(TabTitles(), QStringList({"a*b.vsh", "star*"}));
    Type(QStringLiteral("y"));
    m_F.pEditor->findChild<QTabWidget*>()->setCurrentIndex(0);
    Type(QStringLiteral("x*"));
    QCOMPARE(TabTitles(), QStringList({"a*b.vsh*", "star**"}));
    QVERIFY(m_F.pEditor->OnSaveAllTabs());
    QCOMPARE(TabTitles(), QStringList({"a*b.vsh", "star*"}));
    QCOMPARE(ReadAll(Path), QByteArray("x*abc"));
    Type(QStringLiteral("z"));
    m_F.pEditor->GetCurrentPanel()->Undo();
    QCOMPARE(TabTitles(), QStringList({"a*b.vsh", "star*"}));

    m_F.Delegate.SavePath = m_F.pDir->filePath(QStringLiteral("renamed.vsh"));
    Type(QStringLiteral("y"));
    m_F.pEditor->OnSaveCurrentTabAs();
    QCOMPARE(TabTitles(), QStringList({"renamed.vsh", "star*"}));
    QCOMPARE(m_F.pEditor->findChild<QTabWidget*>()->tabToolTip(0), QDir::toNativeSeparators(m_F.Delegate.SavePath));
    QCOMPARE(ReadAll(m_F.Delegate.SavePath), QByteArray("x*yabc"));
    QCOMPARE(m_F.pEditor->GetPanel(0)->GetPanelID(), PanelID);
    QCOMPARE(ToQString(m_F.pEditor->GetOpenFilenames()[0]), m_F.Delegate.SavePath);
}

// Cursor matches and find results are drawn only while their settings say so.
void CShaderEditorTest::HighlightsFollowTheSettings()
{
    QVERIFY(!m_F.pEditor->GetTextEdit());
    m_F.pEditor->OnNewFile(DocType_GLSLESVertex);
    CShaderEditPanel* pPanel = m_F.pEditor->GetCurrentPanel();
    QCOMPARE(m_F.pEditor->GetTextEdit(), pPanel);
    SetMarkedText(pPanel, QStringLiteral("gl_Position = 1234;\n x = gl_Position + gl_Position2 + gl_|Position;\n1234"));
    auto Highlighted = [pPanel]()
    {
        QStringList Words;
        for (const QTextEdit::ExtraSelection& Selection : pPanel->extraSelections())
            Words << Selection.cursor.selectedText();
        return Words;
    };
    QTRY_COMPARE(Highlighted(), QStringList({"gl_Position", "gl_Position", "gl_Position"}));
    QCOMPARE(pPanel->extraSelections().at(0).format.background().color(), Settings::SEditor().CursorMatchColour);
    QTextCursor Cursor = pPanel->textCursor();
    Cursor.setPosition(static_cast<int>(pPanel->toPlainText().lastIndexOf(QLatin1String("234"))));
    pPanel->setTextCursor(Cursor);
    QTRY_VERIFY(Highlighted().isEmpty()); // numbers are never matched
    Cursor.setPosition(2);
    pPanel->setTextCursor(Cursor);
    QTRY_COMPARE(Highlighted().size(), 3);

    Settings::SEditor Editor;
    Editor.bPerformCursorMatch = false;
    m_F.pEditor->OnEditorSettingsChanged(Editor);
    QVERIFY(Highlighted().isEmpty());
    QTextEdit::ExtraSelection Found;
    Found.cursor = pPanel->document()->find(QStringLiteral("1234"));
    m_F.pEditor->ShowFindResults({Found});
    QCOMPARE(Highlighted(), QStringList{"1234"});
    Editor.bHighlightFindResults = false;
    m_F.pEditor->OnEditorSettingsChanged(Editor);
    QVERIFY(Highlighted().isEmpty());
    m_F.pEditor->ShowFindResults({Found});
    QVERIFY(Highlighted().isEmpty());
    SetMarkedText(pPanel, QStringLiteral("one <two| three"));
    QCOMPARE(m_F.pEditor->GetSelectedText(), QStringLiteral("two"));
}

// A start opens its session before the window is shown: the lines on screen are coloured
// before the first paint, the lines below them and the other tabs when told, exactly as if
// coloured at once even after an edit above, and colouring a tab that is not on screen lays
// out none of its lines.
void CShaderEditorTest::HiddenTabsAreColouredLater()
{
    m_F.pEditor->hide();
    m_F.pHighlight->SetColourHiddenLater(true);
    QByteArray Text = "#version 300 es\nprecision highp float;\n/* a comment\nover lines */\nout vec4 fragColor;\n";
    for (int i = 0; i < 120; ++i)
        Text += "float f" + QByteArray::number(i) + "(vec3 n) { return max(dot(n, n), 0.0); } // "
                + QByteArray::number(i) + "\n";
    for (const char* pName : {"behind.frag", "front.frag", "closed.frag"})
        TestFiles::WriteAll(m_F.pDir->filePath(QLatin1String(pName)), Text);
    QVERIFY(m_F.pEditor->OnOpenFile(m_F.pDir->filePath(QStringLiteral("behind.frag"))));
    QVERIFY(m_F.pEditor->OnOpenFile(m_F.pDir->filePath(QStringLiteral("closed.frag"))));
    m_F.pEditor->OnCloseCurrentTab(); // a tab gone before its colouring
    QVERIFY(m_F.pEditor->OnOpenFile(m_F.pDir->filePath(QStringLiteral("front.frag"))));
    CShaderEditPanel* pBehind = m_F.pEditor->GetPanel(0);
    CShaderEditPanel* pFront = m_F.pEditor->GetPanel(1);
    auto Formats = [](const CShaderEditPanel* pPanel)
    {
        QList<QList<QTextLayout::FormatRange>> Blocks;
        for (QTextBlock Block = pPanel->document()->firstBlock(); Block.isValid(); Block = Block.next())
            Blocks << Block.layout()->formats();
        return Blocks;
    };
    const QList<QTextLayout::FormatRange> None;
    QCOMPARE(Formats(pFront).at(0), None);

    m_F.pEditor->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_F.pEditor.get()));
    QVERIFY(Formats(pFront).at(0) != None);
    QCOMPARE(Formats(pFront).at(Formats(pFront).size() - 2), None);
    QCOMPARE(Formats(pBehind).at(0), None);
    // The comment no longer closes: the lines still waiting become part of it.
    QTextCursor Edit(pFront->document()->findBlockByNumber(3));
    Edit.movePosition(QTextCursor::EndOfBlock);
    Edit.deletePreviousChar();
    Edit.deletePreviousChar();
    const QString Edited = pFront->toPlainText();
    TestFiles::WriteAll(m_F.pDir->filePath(QStringLiteral("edited.frag")), Edited.toUtf8());

    m_F.pHighlight->SetColourHiddenLater(false);
    QTRY_VERIFY(Formats(pFront).at(Formats(pFront).size() - 2) != None);
    QVERIFY(m_F.pEditor->OnOpenFile(m_F.pDir->filePath(QStringLiteral("closed.frag"))));
    const auto AtOnce = Formats(m_F.pEditor->GetCurrentPanel());
    QCOMPARE(Formats(pBehind), AtOnce);
    QVERIFY(m_F.pEditor->OnOpenFile(m_F.pDir->filePath(QStringLiteral("edited.frag"))));
    QCOMPARE(Formats(pFront), Formats(m_F.pEditor->GetCurrentPanel()));
    QVERIFY(Formats(pFront) != AtOnce);
    QCOMPARE(pBehind->document()->lastBlock().previous().layout()->lineCount(), 0);
    // Lines laid out when the tab comes to the front show the colours.
    m_F.pEditor->findChild<QTabWidget*>()->setCurrentIndex(0);
    QTRY_VERIFY(pBehind->document()->firstBlock().layout()->lineCount() > 0);
    QCOMPARE(pBehind->document()->firstBlock().layout()->formats(), AtOnce.at(0));
}

// Settings, compile requests and cycle counts travel between the controller and the panel
// they belong to.
void CShaderEditorTest::FollowsTheController()
{
    CShaderEditController Controller;
    m_F.pEditor->SetController(&Controller);
    const QString Path = m_F.Write(QStringLiteral("c.vsh"), "void main() { gl_Position = vec4(1.0); }\n\n");
    QVERIFY(m_F.pEditor->OnOpenFile(Path));
    m_F.pEditor->OnNewFile(DocType_GLSLESVertex);
    Settings::SEditor Editor = Controller.GetEditorSettings();
    Editor.bTreatTabAsSpace = true;
    Editor.iTabSpaceSize = 2;
    Controller.SetEditorSettings(Editor,
                                 Settings::EditorSetting_TreatTabAsSpace | Settings::EditorSetting_TabSpaceSize);
    Settings::SCompiler Compiler = Controller.GetCompilerSettings();
    Compiler.bAutoCompile = true;
    Controller.SetCompilerSettings(Compiler, Settings::CompilerSetting_AutoCompile);
    QSignalSpy Requests(m_F.pEditor.get(), &CShaderEditor::RecompileContents);
    QSignalSpy Cancels(m_F.pEditor.get(), &CShaderEditor::CancelCompile);
    QTest::keyClick(m_F.pEditor->GetCurrentPanel(), Qt::Key_Tab);
    QCOMPARE(m_F.pEditor->GetCurrentPanel()->toPlainText(), QStringLiteral("  "));
    QCOMPARE(Requests.count(), 1);
    QCOMPARE(Cancels.count(), 1);
    QCOMPARE(Requests.at(0).at(0).value<CZamTHash>(), CZamTHash(""));

    CZamTArray<int> Counts;
    Counts.Append(-1);
    Counts.Append(12);
    emit Controller.CompileCycleCountChanged(CZamTHash(QDir::toNativeSeparators(Path).toUtf8().constData()), Counts);
    QCOMPARE(m_F.pEditor->GetPanel(0)->GetCycleCounts().GetSize(), 2u);
    QCOMPARE(m_F.pEditor->GetPanel(1)->GetCycleCounts().GetSize(), 0u);
    emit Controller.CompileCycleCountChanged(CZamTHash(""), Counts);
    QCOMPARE(m_F.pEditor->GetPanel(1)->GetCycleCounts().GetSize(), 2u);
    m_F.pEditor.reset(); // before the controller it is wired to
}

QTEST_MAIN(CShaderEditorTest)
#include "tst_ShaderEditor.moc"
