// The log, disassembly and profile views, fed by a real shader edit controller running the
// bundled reference compiler.

#include "Common/ZamPreferences/ZamPreferences.h"
#include "ShaderEditComponent/compile/controller/CShaderEditController.h"
#include "ShaderEditComponent/compile/model/MetaTypes.h"
#include "ShaderEditComponent/COutputHighlighter_p.h"
#include "ShaderEditComponent/CShaderEditASMOutput.h"
#include "ShaderEditComponent/CShaderEditLogOutput.h"
#include "ShaderEditComponent/CShaderEditProfileOutput.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"
#include "tests/support/CompileTestSupport.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTextBlock>
#include <QTextLayout>
#include <QtTest>
#include <QVBoxLayout>

#include <memory>

using namespace CompileTest;

namespace
{
// Compiles to nothing at all: every cycle figure is 0.
const char kEmptyFragment[] = "void main()\n{\n}\n";

// A warning on line 1 and an error on line 5.
const char kBrokenFragment[] = "#extension GL_EXT_nothing_here : enable\n"
                               "precision mediump float;\n"
                               "void main()\n"
                               "{\n"
                               "    gl_FragColor = vec4(1.0) * undefinedThing;\n"
                               "}\n";

// The shipped examples: a lit mesh whose worst path, through its branches, costs more than the
// average one, and a bloom effect of three shaders.
QString Example(const char* pName)
{
    return QString::fromUtf8(ReadAll(QDir(SourceDir()).filePath(QStringLiteral("examples/") + QLatin1String(pName))));
}

QString LitMesh()
{
    return Example("lit_mesh.fsh");
}

// The bloom effect, with Tail added to line 119, in CompositeFS.
QString Bloom(const char* pTail = "")
{
    QStringList Lines = Example("bloom_postprocess.zfx").split(QLatin1Char('\n'));
    Lines[118] += QLatin1String(pTail);
    return Lines.join(QLatin1Char('\n'));
}

template <typename T> T* Child(const QWidget& Parent, const char* pName)
{
    return Parent.findChild<T*>(QLatin1String(pName));
}

QString Text(const QWidget& Parent, const char* pName)
{
    const QLabel* pLabel = Child<QLabel>(Parent, pName);
    return pLabel ? pLabel->text() : QStringLiteral("<no %1>").arg(QLatin1String(pName));
}

// The instruction and temporary counts the compiler states in its disassembly header.
QPair<int, int> DisassemblyCounts(const QString& Disassembly)
{
    const QRegularExpressionMatch Match =
        QRegularExpression(QStringLiteral("^; TXE .* program: (\\d+) instructions, (\\d+) temporaries"))
            .match(Disassembly);
    return Match.hasMatch() ? qMakePair(Match.captured(1).toInt(), Match.captured(2).toInt()) : qMakePair(-1, -1);
}

QColor ForegroundOf(const QTextBlock& Block)
{
    const QVector<QTextLayout::FormatRange> Ranges = Block.layout()->formats();
    if (Ranges.isEmpty())
        return QColor();
    // A coloured message is one range over the whole line.
    if (Ranges.size() != 1 || Ranges.first().start != 0 || Ranges.first().length != Block.length() - 1)
        return QColor(Qt::transparent);
    return Ranges.first().format.foreground().color();
}

QTextBlock FindBlock(const QPlainTextEdit& Edit, const QString& Start)
{
    for (QTextBlock Block = Edit.document()->begin(); Block.isValid(); Block = Block.next())
    {
        if (Block.text().startsWith(Start))
            return Block;
    }
    return QTextBlock();
}
} // namespace

// Exposes what the log view needs to aim a double click at a line.
class CLogProbe : public CShaderEditLogOutput
{
public:
    using CShaderEditLogOutput::CShaderEditLogOutput;

    QPoint CentreOf(const QTextBlock& Block) const
    {
        return blockBoundingGeometry(Block).translated(contentOffset()).center().toPoint();
    }
};

class COutputViewsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void SingleShader();
    void EffectFileSelectorsAndEmptyViews();
    void LogColoursAndJumps();
    void OverlongLines();

private:
    void Compile(const QString& Text, EShaderDocType eType, const char* pPanel = "panel");
    // The selector's label and combo box are both shown (bShown) or both hidden.
    bool Selector(const QWidget& View, const char* pLabel, const char* pCombo, bool bShown) const;
    QStringList SelectorItems(const QWidget& View, const char* pCombo) const;

    std::unique_ptr<CShaderEditController> m_pController;
    std::unique_ptr<CShaderHighlightController> m_pHighlight;
    std::unique_ptr<CLogProbe> m_pLog;
    std::unique_ptr<CShaderEditASMOutput> m_pAsm;
    std::unique_ptr<CShaderEditProfileOutput> m_pProfile;
    SCompileResult m_Last;
    int m_iResults = 0;
};

void COutputViewsTest::initTestCase()
{
    RegisterCompileMetaTypes();
    QVERIFY(QFileInfo(Program("glslcompiler_zc1")).isExecutable());
}

void COutputViewsTest::init()
{
    QFile::remove(CZamPreferences(QStringLiteral("ZamShaderEditor")).GetFilePath());
    SShaderEditControllerOptions Options;
    Options.CompilerSearchPaths = {BinDir()};
    m_pController = std::make_unique<CShaderEditController>(Options);
    m_pHighlight = std::make_unique<CShaderHighlightController>();
    m_pLog = std::make_unique<CLogProbe>(m_pController.get());
    m_pAsm = std::make_unique<CShaderEditASMOutput>(m_pController.get(), m_pHighlight.get());
    m_pProfile = std::make_unique<CShaderEditProfileOutput>(m_pController.get());
    m_iResults = 0;
    connect(m_pController.get(), &CShaderEditController::CompileProfileChanged, this,
            [this](const SCompileResult& Result)
            {
                m_Last = Result;
                ++m_iResults;
            });
    for (QWidget* pView : {static_cast<QWidget*>(m_pLog.get()), static_cast<QWidget*>(m_pAsm.get()),
                           static_cast<QWidget*>(m_pProfile.get())})
    {
        pView->resize(640, 360);
        pView->show();
        QVERIFY(QTest::qWaitForWindowExposed(pView));
    }
}

void COutputViewsTest::cleanup()
{
    m_pProfile.reset();
    m_pAsm.reset();
    m_pLog.reset();
    m_pHighlight.reset();
    m_pController.reset();
}

void COutputViewsTest::Compile(const QString& Text, EShaderDocType eType, const char* pPanel)
{
    const int iBefore = m_iResults;
    m_pController->OnCompilePanel(CZamTHash(pPanel), Text, eType, CompileInvocation_Background);
    QTRY_COMPARE_WITH_TIMEOUT(m_iResults, iBefore + 1, 60000);
}

bool COutputViewsTest::Selector(const QWidget& View, const char* pLabel, const char* pCombo, bool bShown) const
{
    const QLabel* pLabelWidget = Child<QLabel>(View, pLabel);
    const QComboBox* pComboWidget = Child<QComboBox>(View, pCombo);
    return pLabelWidget && pComboWidget && pLabelWidget->isVisible() == bShown && pComboWidget->isVisible() == bShown;
}

QStringList COutputViewsTest::SelectorItems(const QWidget& View, const char* pCombo) const
{
    QStringList Items;
    const QComboBox* pComboWidget = Child<QComboBox>(View, pCombo);
    for (int i = 0; pComboWidget && i < pComboWidget->count(); ++i)
        Items << pComboWidget->itemText(i);
    return Items;
}

void COutputViewsTest::SingleShader()
{
    const QFormLayout* pForm = Child<QFormLayout>(*m_pProfile, "formLayout");
    QLabel* pWorst = Child<QLabel>(*m_pProfile, "EmulatedCyclesWorst");
    QVERIFY(pForm && pWorst);
    QCOMPARE(pForm->rowCount(), 7);
    Compile(LitMesh(), DocType_GLSLESFragment);
    QCOMPARE(m_Last.iStatus, 0);
    QCOMPARE(m_pLog->toPlainText(), QStringLiteral("GLSL:ES Fragment Shader: Compile succeeded.\n"));

    // Disassembly: the shader's text, no selector.
    const QPlainTextEdit* pAsmText = Child<QPlainTextEdit>(*m_pAsm, "OutputTextEdit");
    QVERIFY(Selector(*m_pAsm, "label", "ShaderSelectCombo", false));
    const QString Disassembly = pAsmText->toPlainText();
    QVERIFY2(Disassembly.startsWith(QStringLiteral("; TXE ZC1 fragment program:")), qPrintable(Disassembly.left(80)));
    QVERIFY(pAsmText->isReadOnly());

    // Profile: the figures agree with what the compiler states in its own disassembly.
    QVERIFY(Selector(*m_pProfile, "ShaderSelectorLabel", "ShaderSelectorComboBox", false));
    const QPair<int, int> Counts = DisassemblyCounts(Disassembly);
    QVERIFY(Counts.first > 0);
    QCOMPARE(Text(*m_pProfile, "GlobalTXC"), QString::number(Counts.first));
    QCOMPARE(Text(*m_pProfile, "TempReg"), QString::number(Counts.second));
    // Both texture reads take the varying as it is; five varyings are read.
    QCOMPARE(Text(*m_pProfile, "NonDepend"), QStringLiteral("2"));
    QCOMPARE(Text(*m_pProfile, "PrimaryAttribs"), QStringLiteral("5"));
    int iLineSum = 0;
    for (uint32_t ui = 0; ui < m_Last.CycleCounts.GetSize(); ++ui)
        iLineSum += qMax(0, m_Last.CycleCounts[ui]);
    QVERIFY(iLineSum > 0);
    QCOMPARE(Text(*m_pProfile, "PerLineTotal"), QString::number(iLineSum));
    QCOMPARE(Text(*m_pProfile, "CompilerString"), m_Last.CompilerString);
    QVERIFY(m_Last.CompilerString.contains(QStringLiteral("ZC1")));
    QCOMPARE(Text(*m_pProfile, "VersionString"), m_Last.VersionString);
    QVERIFY(!m_Last.VersionString.isEmpty());
    // Figures are selectable, for pasting into reports, once there are any.
    QVERIFY(Child<QLabel>(*m_pProfile, "GlobalTXC")->textInteractionFlags() & Qt::TextSelectableByMouse);

    // A branch: the worst path is dearer than the average, shown in a row of its own, and the
    // total shows the range. The same shader again does not add the row twice.
    const QString Cycles = Text(*m_pProfile, "EmulatedCycles");
    const QString Worst = pWorst->text();
    QVERIFY(Cycles.toDouble() > 0 && Worst.toDouble() > Cycles.toDouble());
    QCOMPARE(Text(*m_pProfile, "EmulatedCycleTotal"), Cycles + QChar(0x2012) + Worst);
    QVERIFY(pWorst->isVisible() && Child<QLabel>(*m_pProfile, "EmulatedCyclesWorstLabel")->isVisible());
    Compile(LitMesh() + QLatin1Char('\n'), DocType_GLSLESFragment);
    QCOMPARE(pForm->rowCount(), 8);
    // Nothing to run: worst case 0, no row, the total is the emulated cycles alone.
    Compile(QString::fromLatin1(kEmptyFragment), DocType_GLSLESFragment);
    QCOMPARE(m_Last.iStatus, 0);
    QCOMPARE(Text(*m_pProfile, "EmulatedCycles"), QStringLiteral("0"));
    QCOMPARE(Text(*m_pProfile, "EmulatedCycleTotal"), QStringLiteral("0"));
    QCOMPARE(pForm->rowCount(), 7);
    QVERIFY(!pWorst->isVisible());

    // The disassembly follows the editor font.
    QCOMPARE(pAsmText->font(), m_pHighlight->GetFont());
    QFont Font(QStringLiteral("Monospace"), 17);
    m_pHighlight->OnSetFont(Font);
    QCOMPARE(pAsmText->font().pointSize(), 17);
}

void COutputViewsTest::EffectFileSelectorsAndEmptyViews()
{
    const char* const Figures[] = {"PerLineTotal", "EmulatedCycleTotal", "GlobalTXC", "EmulatedCycles",
                                   "NonDepend",    "PrimaryAttribs",     "TempReg",   "EmulatedCyclesWorst"};
    Compile(Bloom(), DocType_ZFXGLSLES);
    QCOMPARE(m_Last.iStatus, 0);
    const QStringList Names{"FullScreenVS", "BrightPassFS", "CompositeFS"};
    QVERIFY(Selector(*m_pAsm, "label", "ShaderSelectCombo", true));
    QVERIFY(Selector(*m_pProfile, "ShaderSelectorLabel", "ShaderSelectorComboBox", true));
    QCOMPARE(SelectorItems(*m_pAsm, "ShaderSelectCombo"), Names);
    QCOMPARE(SelectorItems(*m_pProfile, "ShaderSelectorComboBox"), Names);

    const QPlainTextEdit* pAsmText = Child<QPlainTextEdit>(*m_pAsm, "OutputTextEdit");
    QVERIFY(pAsmText->toPlainText().startsWith(QStringLiteral("; TXE ZC1 vertex program:")));
    QCOMPARE(Text(*m_pProfile, "NonDepend"), QStringLiteral("0"));

    // The user picks the bright pass in each view: its own disassembly and figures.
    Child<QComboBox>(*m_pAsm, "ShaderSelectCombo")->setCurrentIndex(1);
    Child<QComboBox>(*m_pProfile, "ShaderSelectorComboBox")->setCurrentIndex(1);
    const QString BrightPass = pAsmText->toPlainText();
    QVERIFY2(BrightPass.startsWith(QStringLiteral("; TXE ZC1 fragment program:")), qPrintable(BrightPass.left(80)));
    QCOMPARE(Text(*m_pProfile, "NonDepend"), QStringLiteral("1"));
    QCOMPARE(Text(*m_pProfile, "GlobalTXC"), QString::number(DisassemblyCounts(BrightPass).first));
    QCOMPARE(Text(*m_pProfile, "TempReg"), QString::number(DisassemblyCounts(BrightPass).second));

    // Of the composite's eighteen texture reads only the two at the varying itself are
    // non-dependent.
    Child<QComboBox>(*m_pAsm, "ShaderSelectCombo")->setCurrentIndex(2);
    Child<QComboBox>(*m_pProfile, "ShaderSelectorComboBox")->setCurrentIndex(2);
    QVERIFY(pAsmText->toPlainText() != BrightPass);
    QVERIFY(pAsmText->toPlainText().contains(QStringLiteral("uBloom")));
    QCOMPARE(Text(*m_pProfile, "NonDepend"), QStringLiteral("2"));

    // A single shader afterwards takes both selectors away again.
    Compile(LitMesh(), DocType_GLSLESFragment, "single");
    QVERIFY(Selector(*m_pAsm, "label", "ShaderSelectCombo", false));
    QVERIFY(Selector(*m_pProfile, "ShaderSelectorLabel", "ShaderSelectorComboBox", false));
    QCOMPARE(Text(*m_pProfile, "NonDepend"), QStringLiteral("2"));

    // A failed compile of one that never compiled has no figures: every one of them is reset.
    // (One that compiled before keeps its last good result: tst_CompileInsight.)
    Compile(QString::fromLatin1(kBrokenFragment), DocType_GLSLESFragment, "broken");
    QCOMPARE(m_Last.iStatus, 1);
    QCOMPARE(m_Last.Profiles.GetSize(), 0u);
    for (const char* pFigure : Figures)
        QCOMPARE(Text(*m_pProfile, pFigure), QStringLiteral("-"));
    QVERIFY(Selector(*m_pProfile, "ShaderSelectorLabel", "ShaderSelectorComboBox", false));
    QVERIFY(Selector(*m_pAsm, "label", "ShaderSelectCombo", false));
    QVERIFY(Child<QPlainTextEdit>(*m_pAsm, "OutputTextEdit")->toPlainText().isEmpty());

    // Switching panels shows each one's stored result; one that never compiled empties all
    // three views.
    m_pController->OnPanelChanged(CZamTHash("panel"));
    QCOMPARE(SelectorItems(*m_pAsm, "ShaderSelectCombo").size(), 3);
    QVERIFY(Text(*m_pProfile, "GlobalTXC").toInt() > 0);
    m_pController->OnPanelChanged(CZamTHash("never compiled"));
    QVERIFY(m_pLog->toPlainText().isEmpty());
    QVERIFY(Child<QPlainTextEdit>(*m_pAsm, "OutputTextEdit")->toPlainText().isEmpty());
    QVERIFY(Selector(*m_pAsm, "label", "ShaderSelectCombo", false));
    QVERIFY(Selector(*m_pProfile, "ShaderSelectorLabel", "ShaderSelectorComboBox", false));
    for (const char* pFigure : Figures)
        QCOMPARE(Text(*m_pProfile, pFigure), QStringLiteral("-"));
    QCOMPARE(Text(*m_pProfile, "CompilerString"), QStringLiteral("-"));
}

// Messages are coloured as the settings say and a double click on one jumps to its line.
void COutputViewsTest::LogColoursAndJumps()
{
    QSignalSpy Jumps(m_pLog.get(), &CShaderEditLogOutput::JumpToLine);
    const auto NextJump = [&Jumps] { return Jumps.isEmpty() ? -1 : Jumps.takeFirst().value(0).toInt(); };
    Compile(QString::fromLatin1(kBrokenFragment), DocType_GLSLESFragment);
    const QTextBlock Warning = FindBlock(*m_pLog, QStringLiteral("WARNING: 0:1:"));
    const QTextBlock Error = FindBlock(*m_pLog, QStringLiteral("ERROR: 0:5:"));
    const QTextBlock Verdict = FindBlock(*m_pLog, QStringLiteral("GLSL:ES Fragment Shader: Compile failed."));
    QVERIFY2(Warning.isValid() && Error.isValid() && Verdict.isValid(), qPrintable(m_pLog->toPlainText()));
    QCOMPARE(ForegroundOf(Error), QColor(0xFF, 0x00, 0x00));
    QCOMPARE(ForegroundOf(Warning), QColor(0xE2, 0x5A, 0x00));
    QCOMPARE(ForegroundOf(Verdict), QColor());

    QWidget* pViewport = m_pLog->viewport();
    QTest::mouseDClick(pViewport, Qt::LeftButton, {}, m_pLog->CentreOf(Error));
    QCOMPARE(NextJump(), 5);
    QVERIFY(!m_pLog->textCursor().selectedText().isEmpty()); // the default handling still ran
    QTest::mouseDClick(pViewport, Qt::LeftButton, {}, m_pLog->CentreOf(Warning));
    QCOMPARE(NextJump(), 1);
    QTest::mouseDClick(pViewport, Qt::LeftButton, {}, m_pLog->CentreOf(Verdict));
    QCOMPARE(Jumps.size(), 0);

    // Formatting off: the log shown now loses its colours at once.
    Settings::SCompiler Compiler = m_pController->GetCompilerSettings();
    Compiler.bShouldFormat = false;
    m_pController->SetCompilerSettings(Compiler, Settings::CompilerSetting_ShouldFormat);
    QCOMPARE(ForegroundOf(Error), QColor());
    QCOMPARE(ForegroundOf(Warning), QColor());
    Compile(QString::fromLatin1(kBrokenFragment) + QLatin1Char('\n'), DocType_GLSLESFragment);
    QCOMPARE(ForegroundOf(FindBlock(*m_pLog, QStringLiteral("ERROR: 0:5:"))), QColor());

    // On again with a new error colour.
    Compiler.bShouldFormat = true;
    Compiler.ErrorFormat = Settings::MakeForegroundFormat(0xFF0000C0u);
    m_pController->SetCompilerSettings(Compiler,
                                       Settings::CompilerSetting_ShouldFormat | Settings::CompilerSetting_ErrorFormat);
    QCOMPARE(ForegroundOf(FindBlock(*m_pLog, QStringLiteral("ERROR: 0:5:"))), QColor(0, 0, 0xC0));
    QCOMPARE(ForegroundOf(FindBlock(*m_pLog, QStringLiteral("WARNING: 0:1:"))), QColor(0xE2, 0x5A, 0x00));

    // Effect logs start with shader names: one that holds ERROR inside a word is no message.
    // The message names the effect file's own line.
    QString Effect = Bloom(" * missing");
    Effect.replace(QStringLiteral("BrightPassFS"), QStringLiteral("TERRORFS"));
    Compile(Effect, DocType_ZFXGLSLES);
    QCOMPARE(ForegroundOf(FindBlock(*m_pLog, QStringLiteral("TERRORFS: Compile succeeded."))), QColor());
    const QTextBlock EffectError = FindBlock(*m_pLog, QStringLiteral("ERROR: 0:119:"));
    QCOMPARE(ForegroundOf(EffectError), QColor(0, 0, 0xC0));
    QTest::mouseDClick(pViewport, Qt::LeftButton, {}, m_pLog->CentreOf(EffectError));
    QCOMPARE(NextJump(), 119);

    // A custom compiler's log may end without a line end: the empty space below its last
    // message is not that message.
    m_pLog->setPlainText(QStringLiteral("WARNING: 0:12: 'x' : unused"));
    const QPoint Message = m_pLog->CentreOf(m_pLog->document()->lastBlock());
    QTest::mouseDClick(pViewport, Qt::LeftButton, {}, Message + QPoint(0, 200));
    QCOMPARE(Jumps.size(), 0);
    QTest::mouseDClick(pViewport, Qt::LeftButton, {}, Message);
    QCOMPARE(NextJump(), 12);
    QCOMPARE(Jumps.size(), 0);
}

void COutputViewsTest::OverlongLines()
{
    // What a custom compiler that dumps binary data might send: one message of 300,000
    // characters without a break, with a character outside the BMP across a piece's end.
    QString Message = QStringLiteral("ERROR: 0:7: ") + QString(4096 - 13, QLatin1Char('x'));
    Message += QString::fromUtf8("\xF0\x9F\x98\x80") + QString(300000, QLatin1Char('y'));
    emit m_pController->CompileOutputChanged(QStringLiteral("Custom: Compile failed.\n") + Message + "\n");

    int iLongest = 0;
    for (QTextBlock Block = m_pLog->document()->begin(); Block.isValid(); Block = Block.next())
    {
        iLongest = qMax(iLongest, static_cast<int>(Block.text().toUcs4().size()));
        QVERIFY(!Block.text().endsWith(QChar::fromUcs2(0xD83D)));
    }
    QCOMPARE(iLongest, 4096);
    // Every character is there, in order.
    QCOMPARE(m_pLog->toPlainText().remove(QLatin1Char('\n')), QStringLiteral("Custom: Compile failed.") + Message);
    QSignalSpy Jumps(m_pLog.get(), &CShaderEditLogOutput::JumpToLine);
    QTest::mouseDClick(m_pLog->viewport(), Qt::LeftButton, {}, m_pLog->CentreOf(FindBlock(*m_pLog, "ERROR: 0:7:")));
    QCOMPARE(Jumps.size(), 1);
    QCOMPARE(Jumps.first().value(0).toInt(), 7);

    // A disassembly of one endless line, the same way; ordinary lines stay as they are.
    SCompileResult Result;
    SCompileResult::SProfile Profile;
    Profile.Name = "Dump";
    const QByteArray Dump = "; short line\n" + QByteArray(100000, 'z');
    Profile.Disassembly = CZamTString(Dump.constData(), static_cast<uint32_t>(Dump.size()));
    QCOMPARE(Result.AddProfile(Profile), 0);
    emit m_pController->CompileProfileChanged(Result);
    const QPlainTextEdit* pAsmText = Child<QPlainTextEdit>(*m_pAsm, "OutputTextEdit");
    QCOMPARE(pAsmText->document()->blockCount(), 1 + (100000 + 4095) / 4096);
    QCOMPARE(pAsmText->document()->firstBlock().text(), QStringLiteral("; short line"));
    QCOMPARE(pAsmText->toPlainText().remove(QLatin1Char('\n')).toLatin1(), QByteArray(Dump).replace('\n', ""));
}

QTEST_MAIN(COutputViewsTest)
#include "tst_OutputViews.moc"
