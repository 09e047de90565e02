// The command-line protocol as the editor sees it (its banner is read by the editor's own
// detection in tst_CompilePipeline): one table of runs, each in a fresh folder: what a compiler prints, its exit
// status and the files it leaves, for options, include folders, headers and bad input that must
// end in one clear error instead of a crash or a hang. The corpus test holds the full outputs of
// ordinary compiles to their reference files; the source limits' texts are checked in process.

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

using FFiles = QMap<QString, QByteArray>;

struct SRun
{
    int iExitCode = -1;
    bool bFinished = false;
    bool bCrashed = false;
    QString output;
};

SRun Run(const QString& program, const QStringList& args, const QString& clang = QString())
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    if (!clang.isEmpty())
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("ZAM_CLANG", clang);
        process.setProcessEnvironment(environment);
    }
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

const QByteArray k_goodShader = "precision mediump float;\n"
                                "varying vec2 vUv;\n"
                                "uniform sampler2D uTex;\n"
                                "void main()\n"
                                "{\n"
                                "    gl_FragColor = texture2D(uTex, vUv) * 0.5;\n"
                                "}\n";

// A document in inc/doc including a header from inc/lib, which includes one beside itself, and
// one from inc/sys by <>; GAIN comes from -D.
FFiles IncludeFiles()
{
    return {{"inc/lib/light.glsl", "// lighting\nfloat lambert(vec3 n, vec3 l)\n{\n    return max(dot(n, l), 0.0);\n}\n"
                                   "#include \"deeper/tone.glsl\"\n"},
            {"inc/lib/deeper/tone.glsl", "vec3 tonemap(vec3 c)\n{\n    return c / (c + vec3(1.0));\n}\n"},
            {"inc/sys/scale.glsl", "#define SCALE 2.0\n"},
            {"inc/doc/main.frag", "#version 300 es\n"
                                  "precision mediump float;\n"
                                  "#include \"light.glsl\"\n"
                                  "#include <scale.glsl>\n"
                                  "in vec3 vNormal;\n"
                                  "out vec4 color;\n"
                                  "void main()\n"
                                  "{\n"
                                  "    float d = lambert(normalize(vNormal), vec3(0.0, 0.0, 1.0)) * SCALE * GAIN;\n"
                                  "    color = vec4(tonemap(vec3(d)), 1.0);\n"
                                  "}\n"}};
}

FFiles With(FFiles files, const QString& path, const QByteArray& text)
{
    files.insert(path, text);
    return files;
}

} // namespace

class CCompilerCliTest : public QObject
{
    Q_OBJECT

private slots:
    // %w in the arguments and the expected texts is the row's folder. A result file's text must
    // match its pattern; "!" means it must not exist.
    void runs_data()
    {
        QTest::addColumn<QString>("executable");
        QTest::addColumn<FFiles>("files");
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("output");
        QTest::addColumn<QMap<QString, QString>>("results");
        using R = QMap<QString, QString>;
        const QString success = "Success.\n";
        const QString failed = "Compile failed.\n";
        const FFiles good{{"good.fsh", k_goodShader}};
        const QStringList goodArgs{"%w/good.fsh", "u", "%w/out"};
        // clang-format off
        QTest::addRow("-h") << "glslcompiler_zd1" << FFiles() << QStringList{"-h"} << 0
                            << "Zam GLSL ES reference compiler for ZD1 rev 3. zcddk ..." << R();
        QTest::addRow("unit name left out") << "glslcompiler_zc2" << good << QStringList{"%w/good.fsh", "%w/out", "-f"} << 0 << success
                                            << R{{"out", "^ZTXE"}};
        QTest::addRow("files not asked for") << "glslcompiler_zc2" << good << goodArgs + QStringList{"-f"} << 0 << success
                                             << R{{"out", "^ZTXE"}, {"out.prof", "!"}, {"out.disasm", "!"}};
        QTest::addRow("-nowarn") << "glslcompiler_zd1" << FFiles{{"good.fsh", "#extension GL_ZAM_nothing : warn\n" + k_goodShader}}
                                 << goodArgs + QStringList{"-f", "-nowarn"} << 0 << success << R();

        QTest::addRow("unknown option") << "glslcompiler_zc3" << good << goodArgs + QStringList{"-O3"} << 2
                                        << "ERROR: unknown option '-O3' (run without arguments for the list of options)\n" << R();
        QTest::addRow("input only") << "glslcompiler_zc3" << good << QStringList{"%w/good.fsh", "-f"} << 2
                                    << "ERROR: expected three arguments, <input> <unit name> <output base>, and got 1\n" << R();
        QTest::addRow("extra argument") << "glslcompiler_zc3" << good << goodArgs + QStringList{"more"} << 2
                                        << "ERROR: expected three arguments, <input> <unit name> <output base>, and got 4\n" << R();
        QTest::addRow("vertex and fragment") << "glslcompiler_zc3" << good << goodArgs + QStringList{"-v", "-f"} << 2
                                             << "ERROR: -v and -f exclude each other\n" << R();
        QTest::addRow("missing input file") << "glslcompiler_zc3" << good << QStringList{"%w/absent.fsh", "u", "%w/out", "-f"} << 1
                                            << "ERROR: cannot read input file '%w/absent.fsh': No such file or directory\n" + failed << R();
        QTest::addRow("input is a folder") << "glslcompiler_zc3" << good << QStringList{"%w", "u", "%w/out", "-f"} << 1
                                           << "ERROR: cannot read input file '%w': it is a directory\n" + failed << R();
        QTest::addRow("unwritable output folder") << "glslcompiler_zc3" << good << QStringList{"%w/good.fsh", "u", "%w/no/such/out", "-f"} << 1
                                                  << "ERROR: cannot write '%w/no/such/out': No such file or directory\n" + failed << R();

        QByteArray huge;
        while (huge.size() < 10 * 1024 * 1024)
            huge.append("// a comment line that pads the shader to ten megabytes of text\n");
        // No brackets at all, but a tree 30,000 levels deep.
        QByteArray chain = "precision mediump float; uniform float a; void main() { gl_FragColor = vec4(a";
        for (int i = 0; i < 30000; ++i)
            chain.append(i % 8 == 7 ? "\n+a" : "+a");
        chain.append("); }\n");
        const QStringList all{"%w/bad.fsh", "u", "%w/out", "-f", "-profile", "-perfsim"};
        QTest::addRow("10 MB source") << "glslcompiler_zc1" << FFiles{{"bad.fsh", huge}} << all << 1
                                      << "ERROR: 0:1: source is too large: the limit is 2097152 bytes\n" + failed << R{{"out.prof", "!"}};
        QTest::addRow("30,000 deep expression") << "glslcompiler_zc1" << FFiles{{"bad.fsh", chain}} << all << 1
                                                << "ERROR: 0:1: expressions nest too deeply: the limit is 1000 levels\n" + failed << R{{"out.prof", "!"}};

        // Headers: found beside the header that includes them, in -I folders, <> never beside
        // the document; their code counts on the document's #include line.
        const QStringList include{"%w/inc/doc/main.frag", "main", "%w/inc/out"};
        const QStringList folders{"-I", "%w/inc/lib", "-I", "%w/inc/sys"};
        QTest::addRow("headers") << "glslcompiler_zc1" << IncludeFiles() << include + QStringList{"-profile", "-disasm", "-DGAIN=0.5"} + folders
                                 << 0 << success
                                 << R{{"inc/out.deps", "^%w/inc/lib/light\\.glsl\n%w/inc/lib/deeper/tone\\.glsl\n%w/inc/sys/scale\\.glsl\n$"},
                                      {"inc/out.prof", "^line: 3, count: \\d+\nline: 9, count: \\d+\nline: 10, count: \\d+\nTotal"},
                                      {"inc/out.disasm", "\\n +\\d+ +3 +\\d+  rcp "}};
        QTest::addRow("error in a header") << "glslcompiler_zc1"
                                           << With(IncludeFiles(), "inc/lib/deeper/tone.glsl", "vec3 tonemap(vec3 c)\n{\n    return c + undefinedThing;\n}\n")
                                           << include + QStringList{"-DGAIN=1.0"} + folders << 1
                                           << "ERROR: %w/inc/lib/deeper/tone.glsl:3: 'undefinedThing' : undeclared identifier\n" + failed
                                           << R{{"inc/out.deps", "light"}};
        QTest::addRow("<> not searched beside the document") << "glslcompiler_zc1" << With(IncludeFiles(), "inc/doc/scale.glsl", "#define SCALE 1.0\n")
                                                              << include + QStringList{"-I", "%w/inc/lib"} << 1
                                                              << "ERROR: 0:4: '#include' : not found in %w/inc/lib for header name: scale.glsl\n" + failed << R();
        QTest::addRow("header including itself") << "glslcompiler_zc1"
                                                 << FFiles{{"inc/doc/loop.glsl", "#include \"loop.glsl\"\n"}, {"inc/doc/main.frag", "#include \"loop.glsl\"\nvoid main() {}\n"}}
                                                 << include << 1 << "ERROR: %w/inc/doc/loop.glsl:1: '#include' : headers nest more than 16 deep (does a header include itself?) for header name: loop.glsl\n" + failed << R();
        QTest::addRow("include folder missing") << "glslcompiler_zc1" << IncludeFiles() << include + QStringList{"-I", "%w/inc/missing"} << 1
                                                << "ERROR: the include folder '%w/inc/missing' is not a folder\n" + failed << R();

        const FFiles saxpy{{"saxpy.cl", "__kernel void saxpy(__global const float* x, __global float* y, float a)\n"
                                        "{\n    int i = get_global_id(0);\n    float unused;\n    y[i] = a * x[i] + y[i];\n}\n"}};
        const QStringList kernel{"%w/saxpy.cl", "saxpy", "%w/out"};
        QTest::addRow("kernel") << "clcompiler_zc1" << saxpy << kernel + QStringList{"-profile", "-disasm"} << 0
                                << "WARNING: 0:4: unused variable 'unused' [-Wunused-variable]\n" + success
                                << R{{"out.prof", "(^|\n)line: 5, count: [1-9]\\d*\n"}, {"out.disasm", "."}};
        QTest::addRow("kernel, -nowarn") << "clcompiler_zc1" << saxpy << kernel + QStringList{"-nowarn"} << 0 << success << R();
        QTest::addRow("kernel error") << "clcompiler_zc1" << FFiles{{"saxpy.cl", "__kernel void f(__global int* p)\n{\n    p[0] = q;\n}\n"}}
                                      << kernel + QStringList{"-profile"} << 1 << "ERROR: 0:3: use of undeclared identifier 'q'\n" + failed
                                      << R{{"out.prof", "!"}};
        QTest::addRow("kernel without clang") << "clcompiler_zc1" << saxpy << kernel << 1
                                              << "ERROR: clang was not found: install the clang package to compile OpenCL kernels\n" + failed << R();

        // A kernel needing a header from another folder and a definition: -I and -D reach clang,
        // each value as one argument; bad values are refused before clang runs.
        const FFiles scaled{{"my headers/scale.h", "#define SCALE(x) ((x) * FACTOR)\n"},
                            {"scaled.cl", "#include \"scale.h\"\n#if FACTOR != 3\n#error FACTOR must be 3\n#endif\n"
                                          "__kernel void scale(__global float* p) { p[0] = SCALE(p[0]); }\n"}};
        const QStringList scale{"%w/scaled.cl", "scaled", "%w/out"};
        QTest::addRow("-D without -I") << "clcompiler_zc1" << scaled << scale + QStringList{"-DFACTOR=3"} << 1
                                       << "ERROR: 0:1: 'scale.h' file not found\n" + failed << R();
        QTest::addRow("-I and -D") << "clcompiler_zc1" << scaled << scale + QStringList{"-I", "%w/my headers", "-D", "FACTOR=2"} << 1
                                   << "ERROR: 0:3: FACTOR must be 3\n" + failed << R();
        QTest::addRow("-I and -D joined") << "clcompiler_zc1" << scaled << scale + QStringList{"-I%w/my headers", "-D", "FACTOR=3", "-profile"} << 0
                                          << success << R{{"out.prof", "."}};
        QTest::addRow("-D without a name") << "clcompiler_zc1" << scaled << scale + QStringList{"-D", "-o/tmp/elsewhere"} << 2
                                           << "ERROR: -D needs a macro name, optionally followed by =value, and got '-o/tmp/elsewhere'\n" << R();
        QTest::addRow("-I without a folder") << "clcompiler_zc1" << scaled << scale + QStringList{"-I"} << 2
                                             << "ERROR: -I needs a folder\n" << R();
        // A message about a header's line names the header, so it is not taken for the kernel's.
        QTest::addRow("error in a kernel's header") << "clcompiler_zc1" << With(scaled, "my headers/scale.h", "\nint broken = ;\n")
                                                    << scale + QStringList{"-I", "%w/my headers", "-DFACTOR=3"} << 1
                                                    << "ERROR: %w/my headers/scale.h:2: ..." << R();
        // clang-format on
    }

    void runs()
    {
        QFETCH(QString, executable);
        QFETCH(FFiles, files);
        QFETCH(QStringList, args);
        QFETCH(int, exitCode);
        QFETCH(QString, output);
        using R = QMap<QString, QString>;
        QFETCH(R, results);
        const bool bNoClang = QTest::currentDataTag() == QByteArray("kernel without clang");
        if (executable.startsWith("cl") && !bNoClang && QStandardPaths::findExecutable("clang").isEmpty())
            QSKIP("clang is not installed");
        QTemporaryDir work;
        const QDir folder(work.path());
        for (auto it = files.cbegin(); it != files.cend(); ++it)
        {
            QFile file(folder.filePath(it.key()));
            QVERIFY(folder.mkpath(QFileInfo(file).path()) && file.open(QIODevice::WriteOnly));
            QCOMPARE(file.write(it.value()), it.value().size());
        }
        const SRun run = Run(executable, args.replaceInStrings("%w", work.path()),
                             bNoClang ? folder.filePath("no-such-clang") : QString());
        QVERIFY(run.bFinished && !run.bCrashed);
        // A trailing "..." leaves the rest (a version, clang's text) open.
        output.replace("%w", work.path());
        if (output.endsWith("..."))
            QVERIFY2(run.output.startsWith(output.chopped(3)), qPrintable(run.output));
        else
            QCOMPARE(run.output, output);
        QCOMPARE(run.iExitCode, exitCode);
        for (auto it = results.cbegin(); it != results.cend(); ++it)
        {
            QFile file(folder.filePath(it.key()));
            if (it.value() == "!")
            {
                QVERIFY2(!file.exists(), qPrintable(it.key()));
                continue;
            }
            QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(it.key()));
            const QRegularExpression pattern(
                QString(it.value()).replace("%w", QRegularExpression::escape(work.path())));
            QVERIFY2(pattern.match(QString::fromUtf8(file.readAll())).hasMatch(), qPrintable(it.key()));
        }
    }
};

QTEST_GUILESS_MAIN(CCompilerCliTest)
#include "tst_compiler_cli.moc"
