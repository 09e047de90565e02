// The compile-to-file dialog, driven through its widgets: what it shows is what runs, and the
// fake compiler records exactly what ran.

#include "app/dialogs/CCompileDialog.h"
#include "DialogTestSupport.h"
#include "tests/support/TestFiles.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

using namespace CompileTest;
using namespace DialogTest;

class CCompileDialogTest : public CDialogTest
{
    Q_OBJECT

public:
    CCompileDialogTest()
    {
        QDir().mkpath(m_SourceDir);
        QDir().mkpath(m_OutputDir);
    }

private slots:
    void CustomLinesRunWhatTheyShow_data();
    void CustomLinesRunWhatTheyShow();
    void HostileFileNamesStayOneArgument_data();
    void HostileFileNamesStayOneArgument();
    void UnusableLinesAreRefused_data();
    void UnusableLinesAreRefused();
    void BuiltInCompileWritesIntoTheOutputDirectory();
    void OkStoresOnlyAChangedTemplateAndCancelNothing();
    void BundledCompilerWritesOneOutputPerShader();

private:
    // A dialog on Source, with the custom page, Template and Output filled in as a user would.
    std::unique_ptr<CCompileDialog> Open(const QString& Source, const QString& Template, const QString& Output,
                                         EShaderDocType eType = DocType_GLSLESFragment);
    // Presses OK and waits for the compile; the argument lists the fake recorded, in order.
    QList<QStringList> CompileAndRecord(CCompileDialog& Dialog, const QString& RecordName);
    QString Source(const QString& Name) const;
    QString Expand(QString Text) const;

    const QString m_SourceDir = m_Temp.filePath(QStringLiteral("src"));
    const QString m_OutputDir = m_Temp.filePath(QStringLiteral("out dir"));
};

QString CCompileDialogTest::Source(const QString& Name) const
{
    return QDir(m_SourceDir).filePath(Name);
}

// The built-in compiler page with these switches ticked.
static void ChooseBuiltIn(CCompileDialog& Dialog, const QStringList& Switches)
{
    Dialog.findChild<QComboBox*>(QStringLiteral("compilerTypeComboBox"))->setCurrentIndex(0);
    for (const QString& Switch : Switches)
        Dialog.findChild<QCheckBox*>(QStringLiteral("CompOptGLSLES_") + Switch)->click();
}

// {S}, {O} and {P} in a test's text stand for the source folder, the output folder and the
// fake's full path ({p}: without its leading "/").
QString CCompileDialogTest::Expand(QString Text) const
{
    return Text.replace(QStringLiteral("{S}"), m_SourceDir)
        .replace(QStringLiteral("{O}"), m_OutputDir)
        .replace(QStringLiteral("{P}"), Fake("print"))
        .replace(QStringLiteral("{p}"), Fake("print").mid(1));
}

std::unique_ptr<CCompileDialog> CCompileDialogTest::Open(const QString& SourcePath, const QString& Template,
                                                         const QString& Output, EShaderDocType eType)
{
    QFile File(SourcePath);
    if (!File.exists() && File.open(QIODevice::WriteOnly))
        File.write("void main() {}\n");
    auto pDialog = std::make_unique<CCompileDialog>(nullptr, *m_Controllers.pGUI, *m_Controllers.pEdit,
                                                    CZamTHash(SourcePath.toUtf8().constData()), SourcePath, eType);
    pDialog->findChild<QComboBox*>(QStringLiteral("compilerTypeComboBox"))->setCurrentIndex(1);
    pDialog->findChild<QPlainTextEdit*>(QStringLiteral("CompOptCust_cmd"))->setPlainText(Template);
    pDialog->findChild<QLineEdit*>(QStringLiteral("outputDirectoryTextEdit"))->setText(Output);
    return pDialog;
}

QList<QStringList> CCompileDialogTest::CompileAndRecord(CCompileDialog& Dialog, const QString& RecordName)
{
    const QString Records = m_Temp.filePath(RecordName);
    QDir(Records).removeRecursively();
    QDir().mkpath(Records);
    CScopedEnv Record("ZAM_FAKE_RECORD_DIR", Records.toUtf8());
    QSignalSpy Results(m_Controllers.pEdit.get(), &CShaderEditController::CompileProfileChanged);
    Dialog.findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"))->button(QDialogButtonBox::Ok)->click();
    if (Dialog.result() != QDialog::Accepted || !Results.wait(20000))
        return {};
    QList<QStringList> Runs;
    for (int i = 0; QFile::exists(QStringLiteral("%1/%2.args").arg(Records).arg(i)); ++i)
    {
        const QString Text = QString::fromUtf8(ReadAll(QStringLiteral("%1/%2.args").arg(Records).arg(i)));
        Runs << Text.left(Text.size() - 1).split(QLatin1Char('\n')); // one argument a line
    }
    return Runs;
}

void CCompileDialogTest::CustomLinesRunWhatTheyShow_data()
{
    QTest::addColumn<QString>("Template");
    QTest::addColumn<QString>("File");
    QTest::addColumn<QString>("Display");
    QTest::addColumn<QStringList>("Arguments");

    // The file name is one quoted argument; after the bare "-o" nothing is quoted, so the
    // output folder's blank splits it.
    QTest::newRow("bare option") << "fakecc_print %f% -o %o%"
                                 << "my shader.fsh" << "\"fakecc_print\" \"my shader.fsh\" -o {O}"
                                 << QStringList{"my shader.fsh", "-o", m_Temp.path() + "/out", "dir"};
    QTest::newRow("already quoted") << "\"fakecc_print\" \"%f%\" \"-o\" \"%o%\""
                                    << "my shader.fsh" << "\"fakecc_print\" \"my shader.fsh\" \"-o\" \"{O}\""
                                    << QStringList{"my shader.fsh", "-o", m_OutputDir};
    QTest::newRow("unknown placeholder") << "fakecc_print %x% %f%"
                                         << "shader.fsh" << "\"fakecc_print\" %\"x%\" \"shader.fsh\""
                                         << QStringList{"%x%", "shader.fsh"};
    QTest::newRow("quoting resumes at a quote")
        << "fakecc_print -profile %f% \"x y\" z"
        << "my shader.fsh" << "\"fakecc_print\" -profile my shader.fsh \"x y\" \"z\""
        << QStringList{"-profile", "my shader.fsh", "x y", "z"};
    QTest::newRow("folders and base name") << "fakecc_print %i%/%f% %o%/%b%.bin"
                                           << "a b.c.fsh" << "\"fakecc_print\" \"{S}/a b.c.fsh\" \"{O}/a b.bin\""
                                           << QStringList{m_SourceDir + "/a b.c.fsh", m_OutputDir + "/a b.bin"};
    // A path's first word character follows the "/", so the quote goes after it; after the
    // bare switch nothing more is quoted.
    QTest::newRow("program by path") << "{P} -nowarn %f%"
                                     << "s.fsh" << "/\"{p}\" -nowarn s.fsh" << QStringList{"-nowarn", "s.fsh"};
    QStringList Many;
    for (int i = 0; i < 3329; ++i)
        Many << "ab";
    QTest::newRow("10000 characters") << "fakecc_print " + Many.join(' ') + " " << "s.fsh"
                                      << "\"fakecc_print\" \"" + Many.join("\" \"") + "\" " << Many;
}

void CCompileDialogTest::CustomLinesRunWhatTheyShow()
{
    QFETCH(QString, Template);
    QFETCH(QString, File);
    QFETCH(QString, Display);
    QFETCH(QStringList, Arguments);

    auto pDialog = Open(Source(File), Expand(Template), m_OutputDir);
    QCOMPARE(pDialog->findChild<QLabel*>(QStringLiteral("commandlineTextLabel"))->text(), Expand(Display));
    const QList<QStringList> Runs = CompileAndRecord(*pDialog, QStringLiteral("custom"));
    QCOMPARE(Runs.size(), 1);
    QCOMPARE(Runs.first(), Arguments);
    QCOMPARE(pDialog->GetCommandLine().Command.Arguments, Arguments);
}

void CCompileDialogTest::HostileFileNamesStayOneArgument_data()
{
    QTest::addColumn<QString>("File");
    QTest::addColumn<QString>("Base");

    QTest::newRow("quotes and semicolons") << "x\"; rm -rf ~; \".frag" << "x\"; rm -rf ~; \"";
    QTest::newRow("command substitution") << "$(touch pwned).fsh" << "$(touch pwned)";
    QTest::newRow("back ticks") << "`touch pwned`.fsh" << "`touch pwned`";
    QTest::newRow("leading dash") << "-o.fsh" << "-o";
    QTest::newRow("newline") << "new\nline.fsh" << "new\nline";
    QTest::newRow("non-ASCII") << QString::fromUtf8("ünï cødé 着色器.fsh") << QString::fromUtf8("ünï cødé 着色器");
    QTest::newRow("single quote") << "it's.fsh" << "it's";
    QTest::newRow("placeholder text") << "%f%.fsh" << "%f%";
    QTest::newRow("markup") << "<b>bold<i>.fsh" << "<b>bold<i>";
}

void CCompileDialogTest::HostileFileNamesStayOneArgument()
{
    QFETCH(QString, File);
    QFETCH(QString, Base);

    auto pDialog = Open(Source(File), "fakecc_print %i%/%f% %o%/%b%.bin", m_OutputDir);
    // The line is shown as text, never as markup.
    QCOMPARE(pDialog->findChild<QLabel*>(QStringLiteral("commandlineTextLabel"))->textFormat(), Qt::PlainText);
    const QList<QStringList> Runs = CompileAndRecord(*pDialog, QStringLiteral("hostile"));
    QCOMPARE(Runs.size(), 1);
    // The fake writes one argument a line, so a newline inside one is compared as text.
    QCOMPARE(Runs.first().join('\n'), (QStringList{Source(File), m_OutputDir + "/" + Base + ".bin"}.join('\n')));
    QVERIFY(!QFile::exists(Source(QStringLiteral("pwned"))));
    QVERIFY(!QFile::exists(QStringLiteral("pwned")));
}

void CCompileDialogTest::UnusableLinesAreRefused_data()
{
    QTest::addColumn<QString>("Template");
    QTest::addColumn<QString>("Output");
    QTest::addColumn<int>("Problem");

    QTest::newRow("empty") << "" << "{O}" << int(CommandLineProblem_Empty);
    QTest::newRow("blanks and a newline") << "  \n " << "{O}" << int(CommandLineProblem_Empty);
    QTest::newRow("unbalanced quote") << "fakecc_print \"%f% -o x" << "{O}" << int(CommandLineProblem_UnbalancedQuotes);
    QTest::newRow("no program") << "\"\" %f%" << "{O}" << int(CommandLineProblem_NoProgram);
    QTest::newRow("no output directory") << "fakecc_print %f% %o%" << "" << int(CommandLineProblem_NoOutputDirectory);
    QTest::newRow("quote in the output directory")
        << "fakecc_print %f% \"%o%\"" << "{O}/a\"b" << int(CommandLineProblem_QuoteInOutputDirectory);
}

void CCompileDialogTest::UnusableLinesAreRefused()
{
    QFETCH(QString, Template);
    QFETCH(QString, Output);
    QFETCH(int, Problem);

    QSignalSpy General(m_Controllers.pGUI.get(), &CGUIController::GeneralSettingsChanged);
    auto pDialog = Open(Source("s.fsh"), Template, Expand(Output));
    QSignalSpy Compile(pDialog.get(), &CCompileDialog::CompileFile);
    pDialog->show();
    QCOMPARE(int(pDialog->GetCommandLine().eProblem), Problem);
    pDialog->findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"))->button(QDialogButtonBox::Ok)->click();

    auto* pBox = pDialog->findChild<QMessageBox*>(QStringLiteral("InvalidCommandLineBox"));
    QVERIFY(pBox);
    QCOMPARE(pBox->text(), QStringLiteral("Invalid commandline"));
    QVERIFY(!pBox->informativeText().isEmpty());
    QVERIFY(pDialog->isVisible());
    QCOMPARE(Compile.size(), 0);
    QCOMPARE(General.size(), 0);
    // The user's text is still there to be fixed.
    QCOMPARE(pDialog->findChild<QPlainTextEdit*>(QStringLiteral("CompOptCust_cmd"))->toPlainText(), Template);
    pBox->close();
}

// A single shader: its own path in, "<output folder>/<base name>" out, the chosen switches. Effect
// files, one compile per shader, are checked against the bundled compiler below.
void CCompileDialogTest::BuiltInCompileWritesIntoTheOutputDirectory()
{
    auto pDialog = Open(Source(QStringLiteral("lit.fsh")), QString(), m_OutputDir);
    ChooseBuiltIn(*pDialog, {"nowarn", "perfsim"});
    const QString Shown = pDialog->findChild<QLabel*>(QStringLiteral("commandlineTextLabel"))->text();
    QVERIFY2(Shown.contains(Fake("print")) && Shown.contains("-nowarn -perfsim"), qPrintable(Shown));
    const QList<QStringList> Runs = CompileAndRecord(*pDialog, QStringLiteral("single"));
    QCOMPARE(Runs.size(), 1);
    QCOMPARE(Runs.first(), (QStringList{Source("lit.fsh"), "lit", m_OutputDir + "/lit", "-f", "-nowarn", "-perfsim"}));
}

void CCompileDialogTest::OkStoresOnlyAChangedTemplateAndCancelNothing()
{
    const QByteArray Before = ReadAll(StorePath());
    QSignalSpy General(m_Controllers.pGUI.get(), &CGUIController::GeneralSettingsChanged);
    {
        // Cancel stores nothing and compiles nothing.
        auto pDialog = Open(Source("s.fsh"), "fakecc_print %f%", m_OutputDir);
        QSignalSpy Compile(pDialog.get(), &CCompileDialog::CompileFile);
        pDialog->findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"))->button(QDialogButtonBox::Cancel)->click();
        QCOMPARE(pDialog->result(), int(QDialog::Rejected));
        QCOMPARE(Compile.size(), 0);
    }
    QCOMPARE(General.size(), 0);
    QCOMPARE(ReadAll(StorePath()), Before);

    // OK with a new template stores it, with mask 4 only: the output folder is not written.
    auto pDialog = Open(Source("s.fsh"), "fakecc_print %f%", m_OutputDir);
    QCOMPARE(CompileAndRecord(*pDialog, QStringLiteral("store")).size(), 1);
    QCOMPARE(General.size(), 1);
    CZamPreferences File(QStringLiteral("ZamShaderEditor"));
    QVERIFY(File.Load());
    QCOMPARE(File.GetString(QStringLiteral("General/CustomCommand")), QStringLiteral("fakecc_print %f%"));
    QVERIFY(!File.HasKey(QStringLiteral("General/CompileOutputPath")));
    QVERIFY(!File.HasKey(QStringLiteral("General/OpenLastTabs")));

    // The next dialog starts from it; OK with the same template stores nothing again.
    auto pAgain = std::make_unique<CCompileDialog>(nullptr, *m_Controllers.pGUI, *m_Controllers.pEdit, CZamTHash("s"),
                                                   Source("s.fsh"), DocType_GLSLESFragment);
    QCOMPARE(pAgain->findChild<QPlainTextEdit*>(QStringLiteral("CompOptCust_cmd"))->toPlainText(),
             QStringLiteral("fakecc_print %f%"));
    pAgain->findChild<QComboBox*>(QStringLiteral("compilerTypeComboBox"))->setCurrentIndex(1);
    QCOMPARE(CompileAndRecord(*pAgain, QStringLiteral("again")).size(), 1);
    QCOMPARE(General.size(), 1);
}

void CCompileDialogTest::BundledCompilerWritesOneOutputPerShader()
{
    if (!QFileInfo(Program(QStringLiteral("glslcompiler_zc1"))).isExecutable())
        QSKIP("the bundled compiler is not built");
    // The first bundled target, found beside the test's programs.
    m_Controllers = SControllers();
    WriteStartingFile(QString(), m_Temp.path() + "/");
    {
        CZamPreferences Store(QStringLiteral("ZamShaderEditor"));
        QVERIFY(Store.Load());
        Store.SetInteger(QStringLiteral("Compiler/CompilerSelection"), 0);
        QVERIFY(Store.Save());
    }
    m_Controllers = MakeControllers(BinDir());
    QVERIFY(m_Controllers.pEdit->GetCompilerDetection().IsUsable());

    const QString Effect = Source(QStringLiteral("lit effect.zfx"));
    QFile::remove(Effect);
    QVERIFY(QFile::copy(TestFiles::SourceDir() + "/tests/ShaderEditComponent/highlighting/corpus/textured_effect.zfx",
                        Effect));
    const QString Output = m_Temp.filePath(QStringLiteral("bundled out"));
    QDir(Output).removeRecursively();
    QVERIFY(QDir().mkpath(Output));
    auto pDialog = Open(Effect, QString(), Output, DocType_ZFXGLSLES);
    ChooseBuiltIn(*pDialog, {"profile", "asm"});
    QSignalSpy Log(m_Controllers.pEdit.get(), &CShaderEditController::CompileOutputChanged);
    QSignalSpy Result(m_Controllers.pEdit.get(), &CShaderEditController::CompileProfileChanged);
    pDialog->findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"))->button(QDialogButtonBox::Ok)->click();
    QVERIFY(Log.wait(30000));
    // The counts land on the effect file's own lines: line 60 is the fragment shader's only work.
    QTRY_COMPARE(Result.size(), 1);
    const CZamTArray<int> Counts = Result.first().at(0).value<SCompileResult>().CycleCounts;
    QVERIFY(Counts.GetSize() >= 60 && Counts[59] > 0);
    const QStringList Written = QDir(Output).entryList(QDir::Files, QDir::Name);
    QCOMPARE(Written, (QStringList{"lit effect_TexturedFragment", "lit effect_TexturedFragment.disasm",
                                   "lit effect_TexturedFragment.prof", "lit effect_TexturedVertex",
                                   "lit effect_TexturedVertex.disasm", "lit effect_TexturedVertex.prof"}));
    QVERIFY2(!Log.last().at(0).toString().contains("ERROR"), qPrintable(Log.last().at(0).toString()));
}

QTEST_MAIN(CCompileDialogTest)
#include "tst_CompileDialog.moc"
