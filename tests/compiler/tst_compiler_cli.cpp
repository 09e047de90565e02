// The command-line protocol as the editor sees it: banner detection with the
// editor's own patterns, the log's last line and exit status, the output files,
// and bad input that must end in one clear error instead of a crash or a hang.

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegExp>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

struct SRun
{
    int iExitCode = -1;
    bool bFinished = false;
    bool bCrashed = false;
    QString output;
};

SRun Run(const QString& program, const QStringList& args, const QString& workingDir = QString())
{
    QProcess process;
    if (!workingDir.isEmpty())
        process.setWorkingDirectory(workingDir);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(qEnvironmentVariable("ZAM_BIN_DIR") + "/" + program, args);
    SRun run;
    // A guard against hangs, not a speed check.
    run.bFinished = process.waitForFinished(120000);
    if (!run.bFinished)
        process.kill();
    run.bCrashed = process.exitStatus() == QProcess::CrashExit;
    run.iExitCode = process.exitCode();
    run.output = QString::fromUtf8(process.readAll());
    return run;
}

int CountErrorLines(const QString& output)
{
    int iCount = 0;
    for (const QString& line : output.split('\n'))
        iCount += line.startsWith("ERROR: ");
    return iCount;
}

bool WriteBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

const QByteArray k_goodShader = "precision mediump float;\n"
                                "varying vec2 vUv;\n"
                                "uniform sampler2D uTex;\n"
                                "void main()\n"
                                "{\n"
                                "    gl_FragColor = texture2D(uTex, vUv) * 0.5;\n"
                                "}\n";

} // namespace

class CCompilerCliTest : public QObject
{
    Q_OBJECT

private slots:
    void bannerIsDetectedByTheEditorPatterns_data()
    {
        QTest::addColumn<QString>("executable");
        QTest::addColumn<int>("pattern");
        QTest::addColumn<QStringList>("identity"); // the pattern's first two captures
        QTest::addColumn<QStringList>("options");
        const QStringList glsl{"v", "f", "nowarn", "profile", "perfsim", "disasm", "D", "I"};
        QTest::addRow("zc1") << "glslcompiler_zc1" << 2 << QStringList{"ZC1", "1"} << glsl;
        QTest::addRow("zc2") << "glslcompiler_zc2" << 2 << QStringList{"ZC2", "2"} << glsl;
        QTest::addRow("zc3") << "glslcompiler_zc3" << 2 << QStringList{"ZC3", "1"} << glsl;
        QTest::addRow("zd1") << "glslcompiler_zd1" << 2 << QStringList{"ZD1", "3"} << glsl;
        QTest::addRow("OpenCL") << "clcompiler_zc1" << 0 << QStringList{"1.2", "ZC1"}
                                << QStringList{"nowarn", "profile", "disasm"};
    }

    void bannerIsDetectedByTheEditorPatterns()
    {
        QFETCH(QString, executable);
        QFETCH(int, pattern);
        QFETCH(QStringList, identity);
        QFETCH(QStringList, options);
        for (const QStringList& args : {QStringList(), QStringList{"-h"}})
        {
            const SRun run = Run(executable, args);
            QVERIFY(run.bFinished);
            QCOMPARE(run.iExitCode, 0);

            // The editor tries its identification patterns in this order; the first match decides.
            const QStringList patterns = {
                "Zam OpenCL ([0-9.]+) (.*) compiler. Version .* ([A-Za-z0-9._]+)@(\\d+)",
                ".* for (\\w+). Version ([A-Za-z0-9._]+)@(\\d+)",
                ".* for (\\w+) rev (\\d+).* zcddk ([A-Za-z0-9._]+)@(\\d+)",
            };
            int iMatched = -1;
            QRegExp match;
            for (int i = 0; i < patterns.size() && iMatched < 0; ++i)
            {
                match = QRegExp(patterns[i]);
                if (match.indexIn(run.output) >= 0)
                    iMatched = i;
            }
            QCOMPARE(iMatched, pattern);
            QCOMPARE((QStringList{match.cap(1), match.cap(2)}), identity);
            QVERIFY(QRegExp("\\d+\\.\\d+\\.\\d+").exactMatch(match.cap(3)));
            QVERIFY(QRegExp("\\d+").exactMatch(match.cap(4)));

            // The options are the lines that start with one, right after the first heading.
            const QStringList lines = run.output.split('\n');
            int iLine = 0;
            while (iLine < lines.size() && !lines[iLine].endsWith("options are:", Qt::CaseInsensitive))
                ++iLine;
            QVERIFY(iLine < lines.size());
            const QRegularExpression option("^ ?-(\\w+)");
            QStringList listed;
            for (++iLine; iLine < lines.size() && option.match(lines[iLine]).hasMatch(); ++iLine)
                listed << option.match(lines[iLine]).captured(1);
            QCOMPARE(listed, options);
        }
    }

    void successAndFailureProtocol()
    {
        const QString input = m_work.filePath("good.fsh");
        QVERIFY(WriteBytes(input, k_goodShader));
        const QString base = m_work.filePath("good-out");

        SRun run = Run("glslcompiler_zc2", {input, "unit", base, "-f", "-profile", "-perfsim", "-disasm"});
        QVERIFY(run.bFinished);
        QCOMPARE(run.iExitCode, 0);
        QVERIFY(run.output.endsWith("Success.\n"));
        const QStringList estimate = run.output.split('\n');
        const int iHeader = estimate.indexOf("Performance estimate");
        QVERIFY(iHeader >= 0 && iHeader + 6 < estimate.size());
        const QStringList prefixes = {
            "Cycle count:                ", "Average cycle count:        ", "Worst   cycle count:        ",
            "Temporary registers used:   ", "Primary attributes used:    ", "Non-dependent texture reads:"};
        for (int i = 0; i < prefixes.size(); ++i)
            QVERIFY2(QRegExp(QRegExp::escape(prefixes[i]) + "\\d+").exactMatch(estimate[iHeader + 1 + i]),
                     qPrintable(estimate[iHeader + 1 + i]));

        QFile program(base);
        QVERIFY(program.open(QIODevice::ReadOnly));
        QCOMPARE(program.read(4), QByteArray("ZTXE"));
        QVERIFY(QFile::exists(base + ".prof"));
        QFile disasm(base + ".disasm");
        QVERIFY(disasm.open(QIODevice::ReadOnly));
        // Every instruction line names the source line it came from: 6 here.
        QVERIFY(QRegExp("\\n\\s+\\d+\\s+6\\s+\\d+\\s+tex ").indexIn(QString::fromUtf8(disasm.readAll())) >= 0);

        // An empty unit name may be left out altogether.
        run = Run("glslcompiler_zc2", {input, m_work.filePath("unnamed-out"), "-f"});
        QCOMPARE(run.output, QString("Success.\n"));
        QVERIFY(QFile::exists(m_work.filePath("unnamed-out")));

        // Options that are not asked for leave no files and print no estimate.
        const QString plainBase = m_work.filePath("plain-out");
        run = Run("glslcompiler_zc2", {input, "unit", plainBase, "-f"});
        QCOMPARE(run.output, QString("Success.\n"));
        QVERIFY(QFile::exists(plainBase));
        QVERIFY(!QFile::exists(plainBase + ".prof") && !QFile::exists(plainBase + ".disasm"));

        const QString broken = m_work.filePath("broken.fsh");
        QVERIFY(WriteBytes(broken, QByteArray(k_goodShader).replace("vUv)", "vUw)")));
        run = Run("glslcompiler_zc2", {broken, "unit", m_work.filePath("broken-out"), "-f", "-profile"});
        QCOMPARE(run.iExitCode, 1);
        QVERIFY(run.output.startsWith("ERROR: 0:6: 'vUw' : undeclared identifier\n"));
        QVERIFY(run.output.endsWith("Compile failed.\n"));
        QVERIFY(!run.output.contains("Success.\n"));
        QVERIFY(!QFile::exists(m_work.filePath("broken-out.prof")));
    }

    void warningsAndNoWarn()
    {
        const QString input = m_work.filePath("warn.fsh");
        QVERIFY(WriteBytes(input, "#extension GL_ZAM_nothing : warn\n" + k_goodShader));
        SRun run = Run("glslcompiler_zd1", {input, "unit", m_work.filePath("warn-out"), "-f"});
        QCOMPARE(run.iExitCode, 0);
        QVERIFY(run.output.startsWith("WARNING: 0:1: "));
        run = Run("glslcompiler_zd1", {input, "unit", m_work.filePath("warn-out"), "-f", "-nowarn"});
        QCOMPARE(run.output, QString("Success.\n"));
    }

    void badInputGivesOneError_data()
    {
        QTest::addColumn<QByteArray>("source");
        QTest::addColumn<QString>("message");

        QByteArray garbage;
        for (int i = 0; i < 4096; ++i)
            garbage.append(static_cast<char>((i * 7919 + 13) & 0xFF));
        QByteArray longLine =
            "precision mediump float; void main() { float x = 0.0" + QByteArray(1 << 20, ' ') + "; }\n";
        QByteArray huge;
        while (huge.size() < 10 * 1024 * 1024)
            huge.append("// a comment line that pads the shader to ten megabytes of text\n");
        QByteArray nested = "precision mediump float; void main() { gl_FragColor = vec4(" + QByteArray(10000, '(')
                            + "1.0" + QByteArray(10000, ')') + "); }\n";
        // No brackets at all, but a tree 30,000 levels deep.
        QByteArray chain = "precision mediump float; uniform float a; void main() { gl_FragColor = vec4(a";
        for (int i = 0; i < 30000; ++i)
            chain.append(i % 8 == 7 ? "\n+a" : "+a");
        chain.append("); }\n");

        QTest::addRow("empty") << QByteArray() << "source is empty";
        QTest::addRow("binary garbage") << garbage << "binary data";
        QTest::addRow("10 MB source") << huge << "source is too large";
        QTest::addRow("1 MB line") << longLine << "line is too long";
        QTest::addRow("10,000 nested brackets") << nested << "nest too deeply";
        QTest::addRow("30,000 deep expression") << chain << "nest too deeply";
    }

    void badInputGivesOneError()
    {
        QFETCH(QByteArray, source);
        QFETCH(QString, message);
        const QString input = m_work.filePath("bad.fsh");
        QVERIFY(WriteBytes(input, source));
        const SRun run =
            Run("glslcompiler_zc1", {input, "unit", m_work.filePath("bad-out"), "-f", "-profile", "-perfsim"});
        QVERIFY(run.bFinished);
        QVERIFY(!run.bCrashed);
        QVERIFY(run.iExitCode != 0);
        QCOMPARE(CountErrorLines(run.output), 1);
        QVERIFY2(run.output.contains(message), qPrintable(run.output.left(300)));
        QVERIFY(run.output.endsWith("Compile failed.\n"));
    }

    void commandLineErrors_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("exitCode");

        const QString good = m_work.filePath("cli-good.fsh");
        WriteBytes(good, k_goodShader);
        const QString out = m_work.filePath("cli-out");
        QTest::addRow("unknown option") << QStringList{good, "u", out, "-O3"} << "unknown option '-O3'" << 2;
        QTest::addRow("input only") << QStringList{good, "-f"} << "expected three arguments" << 2;
        QTest::addRow("extra argument") << QStringList{good, "u", out, "more"} << "expected three arguments" << 2;
        QTest::addRow("vertex and fragment") << QStringList{good, "u", out, "-v", "-f"} << "exclude each other" << 2;
        QTest::addRow("missing input file")
            << QStringList{m_work.filePath("absent.fsh"), "u", out, "-f"} << "cannot read input file" << 1;
        QTest::addRow("input is a folder")
            << QStringList{m_work.path(), "u", out, "-f"} << "cannot read input file" << 1;
        QTest::addRow("unwritable output folder")
            << QStringList{good, "u", m_work.filePath("no/such/folder/out"), "-f"} << "cannot write" << 1;
    }

    void commandLineErrors()
    {
        QFETCH(QStringList, args);
        QFETCH(QString, message);
        QFETCH(int, exitCode);
        const SRun run = Run("glslcompiler_zc3", args);
        QVERIFY(run.bFinished);
        QCOMPARE(run.iExitCode, exitCode);
        QCOMPARE(CountErrorLines(run.output), 1);
        QVERIFY2(run.output.contains(message), qPrintable(run.output));
        QVERIFY(!run.output.contains("Success."));
    }

    void includedHeaders()
    {
        QDir work(m_work.path());
        QVERIFY(work.mkpath("inc/doc") && work.mkpath("inc/lib/deeper") && work.mkpath("inc/sys"));
        const QString lib = work.filePath("inc/lib");
        QVERIFY(WriteBytes(lib + "/light.glsl", "// lighting\n"
                                                "float lambert(vec3 n, vec3 l)\n"
                                                "{\n"
                                                "    return max(dot(n, l), 0.0);\n"
                                                "}\n"
                                                "#include \"deeper/tone.glsl\"\n"));
        // Found beside the header that includes it, not beside the document.
        QVERIFY(WriteBytes(lib + "/deeper/tone.glsl", "vec3 tonemap(vec3 c)\n{\n    return c / (c + vec3(1.0));\n}\n"));
        QVERIFY(WriteBytes(work.filePath("inc/sys/scale.glsl"), "#define SCALE 2.0\n"));
        const QByteArray document = "#version 300 es\n"
                                    "precision mediump float;\n"
                                    "#include \"light.glsl\"\n"
                                    "#include <scale.glsl>\n"
                                    "in vec3 vNormal;\n"
                                    "out vec4 color;\n"
                                    "void main()\n"
                                    "{\n"
                                    "    float d = lambert(normalize(vNormal), vec3(0.0, 0.0, 1.0)) * SCALE * GAIN;\n"
                                    "    color = vec4(tonemap(vec3(d)), 1.0);\n"
                                    "}\n";
        const QString input = work.filePath("inc/doc/main.frag");
        QVERIFY(WriteBytes(input, document));
        const QString base = work.filePath("inc/out");
        const QStringList folders{"-I", lib, "-I", work.filePath("inc/sys")};

        SRun run =
            Run("glslcompiler_zc1", QStringList{input, "main", base, "-profile", "-disasm", "-DGAIN=0.5"} + folders);
        QCOMPARE(run.output, QString("Success.\n"));
        QFile deps(base + ".deps");
        QVERIFY(deps.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(deps.readAll()),
                 lib + "/light.glsl\n" + lib + "/deeper/tone.glsl\n" + work.filePath("inc/sys/scale.glsl") + "\n");
        // The headers' code counts on the line that includes them; no line beyond the document's.
        QFile profile(base + ".prof");
        QVERIFY(profile.open(QIODevice::ReadOnly));
        const QString profileText = QString::fromUtf8(profile.readAll());
        QRegularExpression lineCount("line: (\\d+), count: (\\d+)");
        QSet<int> lines;
        for (auto it = lineCount.globalMatch(profileText); it.hasNext();)
            lines.insert(it.next().captured(1).toInt());
        QCOMPARE(lines, (QSet<int>{3, 9, 10}));
        QFile listing(base + ".disasm");
        QVERIFY(listing.open(QIODevice::ReadOnly));
        QVERIFY(QString::fromUtf8(listing.readAll()).contains(QRegularExpression("\\n +\\d+ +3 +\\d+  rcp ")));

        // An error in a header names the header and its own line; the dependencies are written.
        QVERIFY(WriteBytes(lib + "/deeper/tone.glsl", "vec3 tonemap(vec3 c)\n{\n    return c + undefinedThing;\n}\n"));
        QFile::remove(base + ".deps");
        run = Run("glslcompiler_zc1", QStringList{input, "main", base, "-DGAIN=1.0"} + folders);
        QCOMPARE(run.iExitCode, 1);
        QVERIFY2(
            run.output.startsWith("ERROR: " + lib + "/deeper/tone.glsl:3: 'undefinedThing' : undeclared identifier\n"),
            qPrintable(run.output));
        QVERIFY(QFile::exists(base + ".deps"));
        QVERIFY(WriteBytes(lib + "/deeper/tone.glsl", "vec3 tonemap(vec3 c)\n{\n    return c;\n}\n"));

        // A missing header is reported at its directive with the folders searched; <> never looks
        // beside the document; a header including itself ends with one error.
        run = Run("glslcompiler_zc1", QStringList{input, "main", base, "-I", lib});
        QVERIFY2(run.output.startsWith("ERROR: 0:4: '#include' : not found in " + lib), qPrintable(run.output));
        QVERIFY(WriteBytes(work.filePath("inc/doc/scale.glsl"), "#define SCALE 1.0\n"));
        run = Run("glslcompiler_zc1", QStringList{input, "main", base, "-I", lib});
        QVERIFY2(run.output.startsWith("ERROR: 0:4: '#include' : not found in " + lib), qPrintable(run.output));
        QVERIFY(WriteBytes(work.filePath("inc/doc/loop.glsl"), "#include \"loop.glsl\"\n"));
        QVERIFY(WriteBytes(input, "#include \"loop.glsl\"\nvoid main() {}\n"));
        run = Run("glslcompiler_zc1", {input, "main", base});
        QCOMPARE(run.iExitCode, 1);
        QCOMPARE(CountErrorLines(run.output), 1);
        QVERIFY2(run.output.contains("headers nest more than 16 deep"), qPrintable(run.output));
        run = Run("glslcompiler_zc1", {input, "main", base, "-I", work.filePath("inc/missing")});
        QCOMPARE(run.iExitCode, 1);
        QCOMPARE(run.output,
                 "ERROR: the include folder '" + work.filePath("inc/missing") + "' is not a folder\nCompile failed.\n");
    }

    void openClKernels()
    {
        if (QStandardPaths::findExecutable("clang").isEmpty())
            QSKIP("clang is not installed");
        const QString kernel = m_work.filePath("saxpy.cl");
        QVERIFY(WriteBytes(kernel, "__kernel void saxpy(__global const float* x, __global float* y, float a)\n"
                                   "{\n"
                                   "    int i = get_global_id(0);\n"
                                   "    float unused;\n"
                                   "    y[i] = a * x[i] + y[i];\n"
                                   "}\n"));
        const QString base = m_work.filePath("saxpy-out");
        SRun run = Run("clcompiler_zc1", {kernel, "saxpy", base, "-profile", "-disasm"});
        QCOMPARE(run.iExitCode, 0);
        QVERIFY2(run.output.startsWith("WARNING: 0:4: unused variable 'unused'"), qPrintable(run.output));
        QVERIFY(run.output.endsWith("\nSuccess.\n"));
        QCOMPARE(run.output.count('\n'), 2);
        QFile profile(base + ".prof");
        QVERIFY(profile.open(QIODevice::ReadOnly));
        const QStringList lines = QString::fromUtf8(profile.readAll()).split('\n', Qt::SkipEmptyParts);
        QVERIFY(lines.size() >= 3);
        QVERIFY(!lines.filter(QRegularExpression("^line: 5, count: [1-9]\\d*$")).isEmpty());
        QVERIFY(QFile::exists(base + ".disasm"));

        run = Run("clcompiler_zc1", {kernel, "saxpy", base, "-nowarn"});
        QCOMPARE(run.output, QString("Success.\n"));

        const QString broken = m_work.filePath("broken.cl");
        QVERIFY(WriteBytes(broken, "__kernel void f(__global int* p)\n{\n    p[0] = q;\n}\n"));
        run = Run("clcompiler_zc1", {broken, "f", m_work.filePath("broken-cl"), "-profile"});
        QCOMPARE(run.iExitCode, 1);
        QCOMPARE(run.output, QString("ERROR: 0:3: use of undeclared identifier 'q'\nCompile failed.\n"));
    }

    // A kernel that needs a header from another folder and a definition: -I and -D reach clang,
    // each value as one argument; bad values are refused before clang runs.
    void openClDefinesAndIncludeFolders()
    {
        if (QStandardPaths::findExecutable("clang").isEmpty())
            QSKIP("clang is not installed");
        QVERIFY(QDir(m_work.path()).mkpath("my headers"));
        QVERIFY(WriteBytes(m_work.filePath("my headers/scale.h"), "#define SCALE(x) ((x) * FACTOR)\n"));
        const QString kernel = m_work.filePath("scaled.cl");
        QVERIFY(WriteBytes(kernel, "#include \"scale.h\"\n"
                                   "#if FACTOR != 3\n"
                                   "#error FACTOR must be 3\n"
                                   "#endif\n"
                                   "__kernel void scale(__global float* p) { p[0] = SCALE(p[0]); }\n"));
        const QString base = m_work.filePath("scaled-out");
        const QString headers = m_work.filePath("my headers");

        SRun run = Run("clcompiler_zc1", {kernel, "scaled", base, "-DFACTOR=3"});
        QCOMPARE(run.output, QString("ERROR: 0:1: 'scale.h' file not found\nCompile failed.\n"));
        run = Run("clcompiler_zc1", {kernel, "scaled", base, "-I", headers, "-D", "FACTOR=2"});
        QCOMPARE(run.output, QString("ERROR: 0:3: FACTOR must be 3\nCompile failed.\n"));
        run = Run("clcompiler_zc1", {kernel, "scaled", base, "-I" + headers, "-D", "FACTOR=3", "-profile"});
        QCOMPARE(run.output, QString("Success.\n"));
        QVERIFY(QFile::exists(base + ".prof"));

        run = Run("clcompiler_zc1", {kernel, "scaled", base, "-D", "-o/tmp/elsewhere"});
        QCOMPARE(run.iExitCode, 2);
        QVERIFY2(run.output.startsWith("ERROR: -D needs a macro name"), qPrintable(run.output));
        run = Run("clcompiler_zc1", {kernel, "scaled", base, "-I"});
        QCOMPARE(run.output, QString("ERROR: -I needs a folder\n"));

        // A message about a header's line names the header, so it is not taken for the kernel's.
        QVERIFY(WriteBytes(m_work.filePath("my headers/scale.h"), "\nint broken = ;\n"));
        run = Run("clcompiler_zc1", {kernel, "scaled", base, "-I", headers, "-DFACTOR=3"});
        QVERIFY2(run.output.startsWith("ERROR: " + headers + "/scale.h:2: "), qPrintable(run.output));
    }

    void openClWithoutClang()
    {
        const QString kernel = m_work.filePath("any.cl");
        QVERIFY(WriteBytes(kernel, "__kernel void f() {}\n"));
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("ZAM_CLANG", m_work.filePath("no-such-clang"));
        process.setProcessEnvironment(environment);
        process.start(qEnvironmentVariable("ZAM_BIN_DIR") + "/clcompiler_zc1",
                      {kernel, "f", m_work.filePath("any-out")});
        QVERIFY(process.waitForFinished(120000));
        const QString output = QString::fromUtf8(process.readAllStandardOutput());
        QVERIFY(process.exitCode() != 0);
        QCOMPARE(CountErrorLines(output), 1);
        QVERIFY(output.contains("clang was not found"));
    }

private:
    QTemporaryDir m_work;
};

QTEST_GUILESS_MAIN(CCompilerCliTest)
#include "tst_compiler_cli.moc"
