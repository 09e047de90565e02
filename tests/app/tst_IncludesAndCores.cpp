// #include headers and the all-cores table through the real main window offscreen with the
// bundled compilers: headers found beside the document and in the include folders of the
// preferences, messages in a header that open it at its line, the gutter counting only the
// document's lines, and the current shader's figures for every core, checked against the
// compilers run by hand.

#include "ShaderEditComponent/compile/controller/CAllCoresCompile.h"
#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/compile/model/CompileOptions.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/CShaderEditAllCoresOutput.h"
#include "WindowTestSupport.h"

#include <QAction>
#include <QDockWidget>
#include <QPlainTextEdit>
#include <QProcess>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QtTest>

using namespace WindowTest;
using Column = CShaderEditAllCoresOutput;

namespace
{
constexpr int s_iWait = 30000;

// Line 3 includes a header beside the document, line 4 one from the include folders.
const char* const s_pDocument = "#version 300 es\n"
                                "precision mediump float;\n"
                                "#include \"tint.glsl\"\n"
                                "#include \"lighting.glsl\"\n"
                                "in vec3 vNormal;\n"
                                "out vec4 colour;\n"
                                "void main()\n"
                                "{\n"
                                "    colour = vec4(tint(lambert(normalize(vNormal))), 1.0);\n"
                                "}\n";
const char* const s_pLighting = "// Lighting helpers\n"
                                "float lambert(vec3 n)\n"
                                "{\n"
                                "    return max(dot(n, LIGHT_DIRECTION), 0.0);\n"
                                "}\n";
const char* const s_pTint = "#define LIGHT_DIRECTION vec3(0.0, 0.0, 1.0)\n"
                            "vec3 tint(float d) { return vec3(d) * vec3(1.0, 0.9, 0.8); }\n";

// A kernel whose header brings in another: their code counts on line 2, the #include.
const char* const s_pKernel = "// Scales a buffer\n"
                              "#include \"scale.h\"\n"
                              "\n"
                              "// one work item per element\n"
                              "__kernel void run(__global float* p)\n"
                              "{\n"
                              "    int i = get_global_id(0);\n"
                              "    p[i] = scale(p[i]);\n"
                              "}\n";
const char* const s_pScale = "#include \"twice.h\"\n"
                             "inline float scale(float x)\n"
                             "{\n"
                             "    return twice(x) * cos(x);\n"
                             "}\n";
const char* const s_pTwice = "inline float twice(float x)\n"
                             "{\n"
                             "    return x * 2.0f + sin(x);\n"
                             "}\n";

// Texture reads in a loop and a branch: the cores price these differently.
const char* const s_pBlur = "#version 300 es\n"
                            "precision mediump float;\n"
                            "uniform sampler2D uImage;\n"
                            "uniform vec2 uStep;\n"
                            "in vec2 vUv;\n"
                            "out vec4 colour;\n"
                            "void main()\n"
                            "{\n"
                            "    vec4 sum = vec4(0.0);\n"
                            "    for (int i = -4; i <= 4; ++i)\n"
                            "        sum += texture(uImage, vUv + float(i) * uStep) * (5.0 - abs(float(i)));\n"
                            "    colour = sum.a > 0.5 ? sum / 25.0 : vec4(pow(sum.rgb, vec3(2.2)), 1.0);\n"
                            "}\n";

void AppendText(CShaderEditPanel* pPanel, const QString& Text)
{
    QTextCursor Cursor(pPanel->document());
    Cursor.movePosition(QTextCursor::End);
    Cursor.insertText(Text);
}

QTextBlock FindLogLine(const QPlainTextEdit* pLog, const QString& Start)
{
    for (QTextBlock Block = pLog->document()->firstBlock(); Block.isValid(); Block = Block.next())
    {
        if (Block.text().startsWith(Start))
            return Block;
    }
    return QTextBlock();
}

// "Cycle count:" of the bundled compiler for the core, run by hand on the file.
int CyclesByHand(const QString& Executable, const QString& Path)
{
    QProcess Compiler;
    Compiler.start(Program(Executable),
                   {Path, QStringLiteral("u"), Path + QStringLiteral(".out"), QStringLiteral("-perfsim")});
    if (!Compiler.waitForFinished(s_iWait))
        return -1;
    const QRegularExpressionMatch Match =
        QRegularExpression(QStringLiteral("Average cycle count: +(\\d+)")).match(QString::fromUtf8(Compiler.readAll()));
    return Match.hasMatch() ? Match.captured(1).toInt() : -1;
}
} // namespace

class CIncludesAndCoresTest : public CWindowTest
{
    Q_OBJECT

private slots:
    void IncludedHeadersCompileAndOpenAtTheirLines();
    void OpenCLHeadersCountOnTheirIncludeLine();
    void AllCoresShowsEveryCoreAndFollowsEdits();
};

void CIncludesAndCoresTest::IncludedHeadersCompileAndOpenAtTheirLines()
{
    const QString Library = m_Files.filePath(QStringLiteral("library"));
    const QString Header = NewFile(QStringLiteral("library/lighting.glsl"), s_pLighting);
    NewFile(QStringLiteral("project/tint.glsl"), s_pTint);
    const QString Document = NewFile(QStringLiteral("project/lit.frag"), s_pDocument);

    // Without the include folder the header is missing, and the log says where it looked.
    auto pWindow = OpenCompiled(Document, s_iWait);
    QVERIFY(pWindow);
    CShaderEditController* pController = pWindow->GetEditController();
    QPlainTextEdit* pLog = LogOf(*pWindow);
    QVERIFY2(pLog->toPlainText().contains(QStringLiteral("ERROR: 0:4: '#include' : not found in ")),
             qPrintable(pLog->toPlainText()));

    // The folder set in the preferences is searched after the document's own.
    Settings::SCompiler Compiler = pController->GetCompilerSettings();
    Compiler.IncludeFolders = QStringList{Library};
    pController->SetCompilerSettings(Compiler, Settings::CompilerSetting_IncludeFolders);
    QCOMPARE(m_pGUI->GetPreferences().GetStringArray(QStringLiteral("Compiler/IncludeFolders")),
             Compiler.IncludeFolders);
    QSignalSpy Profiles(pController, &CShaderEditController::CompileProfileChanged);
    CShaderEditPanel* pPanel = pWindow->GetEditor()->GetCurrentPanel();
    AppendText(pPanel, QStringLiteral("\n"));
    QTRY_VERIFY_WITH_TIMEOUT(!Profiles.isEmpty(), s_iWait);
    SCompileResult Result = Profiles.last().at(0).value<SCompileResult>();
    QVERIFY2(Result.iStatus == CompileStatus_Completed, qPrintable(ToQString(Result.Log)));
    QCOMPARE(Result.IncludedFiles, (QStringList{m_Files.filePath(QStringLiteral("project/tint.glsl")), Header}));
    // The headers' code counts on their #include lines; nothing lands beyond the document.
    QVERIFY(Result.CycleCounts.GetSize() <= static_cast<uint32_t>(pPanel->blockCount()));
    QVERIFY(Result.CycleCounts[2] > 0);
    QVERIFY(Result.CycleCounts[8] > 0);

    // An error in the header names the header and its line; a double-click opens it there.
    WriteAll(Header, QByteArray(s_pLighting).replace("LIGHT_DIRECTION", "undefinedDirection"));
    Profiles.clear();
    AppendText(pPanel, QStringLiteral("\n"));
    const QString Message = QStringLiteral("ERROR: ") + Header + QStringLiteral(":4: 'undefinedDirection'");
    QTRY_VERIFY_WITH_TIMEOUT(FindLogLine(pLog, Message).isValid(), s_iWait);
    Result = Profiles.last().at(0).value<SCompileResult>();
    QCOMPARE(Result.Messages.first().File, Header);
    QCOMPARE(Result.Messages.first().iFileLine, 4);
    QCOMPARE(Result.Messages.first().iLine, 0);
    // Only the header's messages: the document after its #include is not reported as broken.
    for (const SCompileMessage& Reported : std::as_const(Result.Messages))
        QCOMPARE(Reported.File, Header);
    const QTextBlock Line = FindLogLine(pLog, Message);
    const QPoint Box = pLog->cursorRect(QTextCursor(Line)).center() + QPoint(20, 0);
    QTest::mouseDClick(pLog->viewport(), Qt::LeftButton, {}, Box);
    CShaderEditPanel* pHeaderPanel = pWindow->GetEditor()->GetCurrentPanel();
    QCOMPARE(QFileInfo(ToQString(pHeaderPanel->GetFilename())).canonicalFilePath(),
             QFileInfo(Header).canonicalFilePath());
    QCOMPARE(pHeaderPanel->textCursor().blockNumber(), 3);
    QCOMPARE(pWindow->GetEditor()->GetTabCount(), 2);
    // The header is compiled only inside the document (alone it has no main): its line carries
    // the document's message and its tab shows the document's log.
    QSignalSpy HeaderResults(pController, &CShaderEditController::PanelResultChanged);
    QVERIFY(!pHeaderPanel->IsCompiledAlone());
    QVERIFY(pHeaderPanel->GetCompileMessages(3).contains(QStringLiteral("'undefinedDirection'")));
    QVERIFY(pHeaderPanel->GetCompileMessages(0).isEmpty());
    QVERIFY(pHeaderPanel->GetCycleCounts().GetSize() == 0);
    // A second double-click goes to the open tab instead of opening another.
    pWindow->GetEditor()->findChild<QTabWidget*>()->setCurrentIndex(0);
    QTest::mouseDClick(pLog->viewport(), Qt::LeftButton, {}, Box);
    QCOMPARE(pWindow->GetEditor()->GetTabCount(), 2);

    // Saving the fixed header in its tab recompiles the document that includes it.
    const CZamTHash DocumentID = pPanel->GetPanelID();
    pWindow->GetEditor()->findChild<QTabWidget*>()->setCurrentIndex(1);
    QCOMPARE(pWindow->GetEditor()->GetCurrentPanel(), pHeaderPanel);
    pHeaderPanel->selectAll();
    pHeaderPanel->insertPlainText(QString::fromLatin1(s_pLighting));
    QSignalSpy Results(pController, &CShaderEditController::PanelResultChanged);
    pWindow->GetEditor()->OnSaveCurrentTab();
    QTRY_VERIFY_WITH_TIMEOUT(std::any_of(Results.begin(), Results.end(),
                                         [&DocumentID](const QList<QVariant>& Arguments)
                                         {
                                             return Arguments.at(0).value<CZamTHash>() == DocumentID
                                                    && Arguments.at(1).value<SCompileResult>().Messages.isEmpty();
                                         }),
                             s_iWait);
    // Compiles run in turn, so a compile of the header's own would have ended by now.
    const CZamTHash HeaderID = pHeaderPanel->GetPanelID();
    QVERIFY(std::none_of(HeaderResults.begin(), HeaderResults.end(),
                         [&HeaderID](const QList<QVariant>& Arguments)
                         { return Arguments.at(0).value<CZamTHash>() == HeaderID; }));
    QVERIFY(pHeaderPanel->GetCompileMessages(3).isEmpty());
    QTabWidget* pTabs = pWindow->GetEditor()->findChild<QTabWidget*>();
    pTabs->setCurrentIndex(0);
    pTabs->setCurrentIndex(1);
    QVERIFY2(pLog->toPlainText().contains(QStringLiteral("Compile succeeded.")), qPrintable(pLog->toPlainText()));
    // Once no open document includes it, it is a document of its own again.
    pTabs->setCurrentIndex(0);
    pPanel->MarkSaved();
    HeaderResults.clear();
    pWindow->GetEditor()->OnCloseCurrentTab();
    QVERIFY(pHeaderPanel->IsCompiledAlone());
    QTRY_VERIFY_WITH_TIMEOUT(std::any_of(HeaderResults.begin(), HeaderResults.end(),
                                         [&HeaderID](const QList<QVariant>& Arguments)
                                         { return Arguments.at(0).value<CZamTHash>() == HeaderID; }),
                             s_iWait);
}

void CIncludesAndCoresTest::OpenCLHeadersCountOnTheirIncludeLine()
{
    NewFile(QStringLiteral("kernels/scale.h"), s_pScale);
    NewFile(QStringLiteral("kernels/twice.h"), s_pTwice);
    auto pWindow = OpenCompiled(NewFile(QStringLiteral("kernels/scale.cl"), s_pKernel), s_iWait);
    QVERIFY(pWindow);
    QVERIFY2(LogOf(*pWindow)->toPlainText().contains(QStringLiteral("Compile succeeded.")),
             qPrintable(LogOf(*pWindow)->toPlainText()));
    const CShaderEditPanel* pPanel = pWindow->GetEditor()->GetCurrentPanel();
    QTRY_VERIFY_WITH_TIMEOUT(pPanel->GetCycleCounts().GetSize() > 0, s_iWait);
    // Both headers' code (their lines 3 and 4) on the #include; blank and comment lines stay empty.
    const CZamTArray<int>& Counts = pPanel->GetCycleCounts();
    QVERIFY(Counts[1] > 0);
    for (uint32_t i = 0; i < Counts.GetSize(); ++i)
    {
        const QString Line = pPanel->document()->findBlockByNumber(static_cast<int>(i)).text().trimmed();
        if (Counts[i] > 0)
            QVERIFY2(!Line.isEmpty() && !Line.startsWith(QStringLiteral("//")), qPrintable(Line));
    }
}

void CIncludesAndCoresTest::AllCoresShowsEveryCoreAndFollowsEdits()
{
    const QString Path = NewFile(QStringLiteral("blur.frag"), s_pBlur);
    auto pWindow = OpenCompiled(Path, s_iWait);
    QVERIFY(pWindow);
    auto* pDock = Child<QDockWidget>(*pWindow, "DockWidget_AllCores");
    QVERIFY(pDock);
    QVERIFY(!pDock->isVisible());
    // Hidden, not even its table is made.
    QVERIFY(!Child<QTableWidget>(*pWindow, "AllCoresTable"));
    const CAllCoresCompile* pCores = pWindow->findChild<CAllCoresCompile*>();
    QVERIFY(pCores);

    // Shown from the View menu, it compiles the current shader for the four cores.
    QAction* pToggle = pDock->toggleViewAction();
    QVERIFY(pWindow->findChildren<QAction*>().contains(pToggle));
    QSignalSpy Done(pCores, &CAllCoresCompile::Compiled);
    pToggle->trigger();
    auto* pTable = Child<QTableWidget>(*pWindow, "AllCoresTable");
    QVERIFY(pTable);
    QVERIFY(Done.wait(s_iWait));
    QCOMPARE(pTable->rowCount(), 4);
    QList<int> Cycles;
    for (int iRow = 0; iRow < 4; ++iRow)
    {
        QCOMPARE(pTable->item(iRow, Column::Column_Status)->text(), QStringLiteral("compiled"));
        QCOMPARE(pTable->item(iRow, Column::Column_Core)->text(), GetCompilerTarget(iRow).DisplayName);
        Cycles << pTable->item(iRow, Column::Column_Cycles)->text().toInt();
        QCOMPARE(Cycles.last(), CyclesByHand(ToQString(GetCompilerTarget(iRow).ExecutableBaseName), Path));
    }
    // The dearest core stands out; the cheapest is the measure of the others.
    const int iDearest = *std::max_element(Cycles.begin(), Cycles.end());
    const int iCheapest = *std::min_element(Cycles.begin(), Cycles.end());
    QVERIFY(iDearest > iCheapest);
    for (int iRow = 0; iRow < 4; ++iRow)
    {
        QCOMPARE(pTable->item(iRow, Column::Column_Cycles)->font().bold(), Cycles[iRow] == iDearest);
        if (Cycles[iRow] == iCheapest)
            QCOMPARE(pTable->item(iRow, Column::Column_Relative)->text(), QStringLiteral("1.00\u00d7"));
    }

    // A text that does not compile: every core says why.
    CShaderEditPanel* pPanel = pWindow->GetEditor()->GetCurrentPanel();
    Done.clear();
    AppendText(pPanel, QStringLiteral("garbage("));
    QVERIFY(Done.wait(s_iWait));
    for (int iRow = 0; iRow < 4; ++iRow)
    {
        QCOMPARE(pTable->item(iRow, Column::Column_Status)->text(), QStringLiteral("failed"));
        QVERIFY(pTable->item(iRow, Column::Column_Status)->toolTip().startsWith(QStringLiteral("ERROR: 0:14:")));
    }

    // The next edit drops the compiles under way: two quick edits give one result, the last text's.
    Done.clear();
    pPanel->selectAll();
    pPanel->insertPlainText(QString::fromLatin1(s_pBlur));
    AppendText(pPanel, QStringLiteral("// done\n"));
    QVERIFY(pCores->GetCompilesInFlight() <= 4);
    QVERIFY(Done.wait(s_iWait));
    QTRY_COMPARE_WITH_TIMEOUT(pCores->GetCompilesInFlight(), 0, s_iWait);
    QCOMPARE(Done.size(), 1);
    QCOMPARE(pTable->item(0, Column::Column_Status)->text(), QStringLiteral("compiled"));

    // Hidden, it costs nothing: edits start no compile for the cores.
    pToggle->trigger();
    QVERIFY(!pDock->isVisible());
    QSignalSpy Results(pWindow->GetEditController(), &CShaderEditController::CompileProfileChanged);
    AppendText(pPanel, QStringLiteral("// more\n"));
    QCOMPARE(pCores->GetCompilesInFlight(), 0);
    QVERIFY(Results.wait(s_iWait));
    QCOMPARE(Done.size(), 1);

    // The figures leave with their tab, whether the view is hidden or shown when it closes.
    pPanel->MarkSaved();
    pToggle->trigger();
    QVERIFY(Done.wait(s_iWait));
    QCOMPARE(pTable->rowCount(), 4);
    pToggle->trigger();
    pWindow->GetEditor()->OnCloseCurrentTab();
    pToggle->trigger();
    QCOMPARE(pTable->rowCount(), 0);
    QVERIFY(pWindow->GetEditor()->OnOpenFile(Path));
    QVERIFY(Done.wait(s_iWait));
    QCOMPARE(pTable->rowCount(), 4);
    pWindow->GetEditor()->OnCloseCurrentTab();
    QCOMPARE(pTable->rowCount(), 0);
}

QTEST_MAIN(CIncludesAndCoresTest)
#include "tst_IncludesAndCores.moc"
