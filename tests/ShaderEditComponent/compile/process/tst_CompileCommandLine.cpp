// Compiler command lines and command templates: what is written and how it splits back into
// words. (That no file name ever becomes more than its one argument, tst_CompileDialog checks
// through the dialog, with the program run.)

#include "ShaderEditComponent/compile/process/CompileCommandLine.h"

#include <QtTest>

class CCompileCommandLineTest : public QObject
{
    Q_OBJECT

private slots:
    void BuiltCommands();
    void Split_data();
    void Split();
};

void CCompileCommandLineTest::BuiltCommands()
{
    const SCompileCommand Command = BuildCompilerCommand(QStringLiteral("/opt/a b/cc"), QStringLiteral("/t/in.tmp"),
                                                         QString(), QStringLiteral("/t/o"), 1 | 8 | 32 | 64);
    QCOMPARE(Command.Program, QStringLiteral("/opt/a b/cc"));
    QCOMPARE(Command.Arguments, (QStringList{"/t/in.tmp", "/t/o", "-v", "-profile", "-disasm"}));
    QCOMPARE(FormatCommandLine(Command), QStringLiteral("\"/opt/a b/cc\" \"/t/in.tmp\" \"/t/o\"  -v -profile -disasm"));
    QCOMPARE(SplitCommandLine(FormatCommandLine(Command)), QStringList{Command.Program} + Command.Arguments);

    // An OpenCL document's folder rides after the positional arguments as "-I" and the folder,
    // one argument each however the folder is spelt.
    QCOMPARE(BuildCompilerCommand(QStringLiteral("/b/cl"), QStringLiteral("/t/in.tmp"), QStringLiteral("unit"),
                                  QStringLiteral("/t/o"), 8, IncludeFolderArguments(QStringLiteral("/src/-my kernels")))
                 .Arguments,
             (QStringList{"/t/in.tmp", "unit", "/t/o", "-I", "/src/-my kernels", "-profile"}));
    QCOMPARE(IncludeFolderArguments(QString()), QStringList());
    QCOMPARE(IncludeFolderFor(QStringLiteral("/src/k/a.cl")), QStringLiteral("/src/k"));
    QCOMPARE(IncludeFolderFor(QString()), QString());

    QCOMPARE(ShaderCommandFromTemplate(
                 QStringLiteral("\"cc\" \"%i%/%f%\" \"<ZFXShaders>\" \"/out/%b%_<ZFXShaders>\" %f% -profile"),
                 QStringLiteral("/src/fx.zfx"), QStringLiteral("Blur"), QStringLiteral("/tmp/p/shader.fsh"))
                 .Arguments,
             (QStringList{"/tmp/p/shader.fsh", "Blur", "/out/fx_Blur", "/tmp/p/shader.fsh", "-profile"}));
}

void CCompileCommandLineTest::Split_data()
{
    QTest::addColumn<QString>("Line");
    QTest::addColumn<QStringList>("Words");

    QTest::newRow("blanks") << "  a   b\tc " << QStringList{"a", "b", "c"};
    QTest::newRow("quoted blank") << "\"a b\" c" << QStringList{"a b", "c"};
    QTest::newRow("stretches join") << "-o\"a b\"x" << QStringList{"-oa bx"};
    QTest::newRow("empty word") << "a \"\" b" << QStringList{"a", "", "b"};
    QTest::newRow("nothing special") << "x\\y;z $(w) `v` | u" << QStringList{"x\\y;z", "$(w)", "`v`", "|", "u"};
    QTest::newRow("unclosed quote") << "a \"b c" << QStringList{"a", "b c"};
}

void CCompileCommandLineTest::Split()
{
    QFETCH(QString, Line);
    QFETCH(QStringList, Words);
    QCOMPARE(SplitCommandLine(Line), Words);
}

QTEST_APPLESS_MAIN(CCompileCommandLineTest)
#include "tst_CompileCommandLine.moc"
