// The machine model behind the numbers, in process: cost relations between
// cores, monotonicity, loop trip counts, inputs and texture reads, register
// allocation and path cycles on hand-built programs. The profile's shape is held
// by the corpus's reference files and, for the real-world shaders, tst_compiler_figures.

#include "ClCompiler.h"
#include "ZcCompilation.h"
#include "ZcFrontEnd.h"
#include "ZcRegisterAllocation.h"
#include "ZcWriters.h"

#include <QDir>
#include <QFile>
#include <QtTest>

#include <cstring>
#include <memory>
#include <set>

using namespace ZamCompiler;

namespace
{

SCompilation Compile(const QByteArray& source, ETxeStage eStage, ECore eCore)
{
    SCompilation compilation;
    CompileSource(source.toStdString(), eStage, CoreModel(eCore), DefaultSourceLimits(), compilation);
    return compilation;
}

const char* const k_pFragmentFrame = "precision mediump float;\n"
                                     "varying vec2 vUv;\n"
                                     "uniform sampler2D uTex;\n"
                                     "uniform vec4 uK;\n"
                                     "void main()\n"
                                     "{\n"
                                     "    vec4 c = texture2D(uTex, vUv);\n"
                                     "%1\n"
                                     "    gl_FragColor = c * uK;\n"
                                     "}\n";

QByteArray Fragment(const QString& body)
{
    return QString(k_pFragmentFrame).arg(body).toUtf8();
}

STxeOperand Temp(int iIndex, int iLanes = 1)
{
    STxeOperand op;
    op.eFile = File_Temp;
    op.iIndex = iIndex;
    op.uiCount = static_cast<std::uint8_t>(iLanes);
    return op;
}

STxeOperand Output(int iIndex)
{
    STxeOperand op = Temp(iIndex);
    op.eFile = File_Output;
    return op;
}

STxeInstruction Instr(ETxeOp eOp, STxeOperand dst = STxeOperand(), STxeOperand a = STxeOperand(),
                      STxeOperand b = STxeOperand())
{
    STxeInstruction instr;
    instr.eOp = eOp;
    instr.dst = dst;
    instr.aSrc[0] = a;
    instr.aSrc[1] = b;
    return instr;
}

int LoopTrips(const SCompilation& compilation)
{
    for (const STxeInstruction& instr : compilation.program.aInstructions)
    {
        if (instr.eOp == Op_Loop)
            return instr.trips.bKnown ? instr.trips.iWorst : -1;
    }
    return -2;
}

} // namespace

class CCompilerModelTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_pProcess = std::make_unique<CFrontEndProcess>(); }
    void cleanupTestCase() { m_pProcess.reset(); }

    void corpusFiguresPerCore()
    {
        const QDir corpus(qEnvironmentVariable("ZAM_SOURCE_DIR") + "/tests/compiler/corpus");
        std::set<std::pair<int, int>> setDiffering;
        int iCompiled = 0;
        for (const QString& name : corpus.entryList(QDir::Files))
        {
            QFile file(corpus.filePath(name));
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QByteArray source = file.readAll();
            const ETxeStage eStage = name.endsWith(".vsh") ? Stage_Vertex : Stage_Fragment;
            SCompilation results[Core_Count];
            for (int c = 0; c < Core_Count; ++c)
                results[c] = Compile(source, eStage, static_cast<ECore>(c));
            if (!results[0].bSucceeded)
                continue;
            ++iCompiled;
            for (int c = 1; c < Core_Count; ++c)
            {
                // The scalar ZC1 pays at least as much as any wider core for every instruction.
                QVERIFY2(results[0].paths.dWorst >= results[c].paths.dWorst, qPrintable(name));
                QVERIFY2(results[0].paths.dBest >= results[c].paths.dBest, qPrintable(name));
                for (int d = 0; d < c; ++d)
                {
                    if (results[c].paths.dWorst != results[d].paths.dWorst
                        || results[c].paths.dBest != results[d].paths.dBest)
                        setDiffering.insert({d, c});
                }
            }
        }
        QVERIFY(iCompiled >= 25);
        // Every pair of cores disagrees somewhere in the corpus.
        QCOMPARE(setDiffering.size(), std::size_t(Core_Count * (Core_Count - 1) / 2));
    }

    void addingWorkNeverLowersCycles_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("after");
        const QString scale = "    c *= 1.5;";
        const QString sample = "    c += texture2D(uTex, vUv * 2.0);";
        const QString branch = "    if (c.a > 0.5) c.rgb = sqrt(c.rgb);";
        const QString loop = "    for (int i = 0; i < 3; i++) c += uK * float(i);";
        const QString power = "    c = pow(c, vec4(2.2));";
        const QString swizzle = "    c.rg = c.gr;";
        const QString call = "    c = normalize(c) + vec4(length(c.xy));";
        QTest::addRow("scale") << "" << scale;
        QTest::addRow("sample") << scale << scale + "\n" + sample;
        QTest::addRow("branch") << sample << sample + "\n" + branch;
        QTest::addRow("loop") << branch << branch + "\n" + loop;
        QTest::addRow("longer loop") << loop << QString(loop).replace("i < 3", "i < 4");
        QTest::addRow("work in a branch") << branch << QString(branch).replace("sqrt(c.rgb)", "sqrt(c.rgb) * c.a");
        QTest::addRow("power") << swizzle << swizzle + "\n" + power;
        QTest::addRow("swizzle between pairs") << scale + "\n" + power << scale + "\n" + swizzle + "\n" + power;
        QTest::addRow("call") << power << call + "\n" + power;
    }

    void addingWorkNeverLowersCycles()
    {
        QFETCH(QString, before);
        QFETCH(QString, after);
        for (int c = 0; c < Core_Count; ++c)
        {
            const SCompilation small = Compile(Fragment(before), Stage_Fragment, static_cast<ECore>(c));
            const SCompilation large = Compile(Fragment(after), Stage_Fragment, static_cast<ECore>(c));
            QVERIFY(small.bSucceeded && large.bSucceeded);
            QVERIFY(large.paths.dBest >= small.paths.dBest);
            QVERIFY(large.paths.dAverage >= small.paths.dAverage);
            QVERIFY(large.paths.dWorst > small.paths.dWorst);
            long long llSmall = 0;
            long long llLarge = 0;
            for (const auto& entry : small.mapLineCycles)
                llSmall += entry.second;
            for (const auto& entry : large.mapLineCycles)
                llLarge += entry.second;
            // Line counts are per execution, so a longer loop keeps them; they never drop.
            QVERIFY(llLarge >= llSmall);
        }
    }

    void loopTripCounts_data()
    {
        QTest::addColumn<QString>("loop");
        QTest::addColumn<int>("trips");
        QTest::addRow("ascending") << "for (int i = 0; i < 8; i++) c += uK;" << 8;
        QTest::addRow("inclusive") << "for (int i = -1; i <= 1; ++i) c += uK;" << 3;
        QTest::addRow("stride") << "for (int i = 0; i < 9; i += 2) c += uK;" << 5;
        QTest::addRow("descending") << "for (int i = 10; i > 0; i--) c += uK;" << 10;
        QTest::addRow("float counter") << "for (float f = 0.0; f < 1.0; f += 0.25) c += uK;" << 4;
        QTest::addRow("never runs") << "for (int i = 5; i < 5; i++) c += uK;" << 0;
        QTest::addRow("counter written in body")
            << "for (int i = 0; i < 8; i++) { c += uK; if (c.x > 1.0) i += 1; }" << -1;
        QTest::addRow("uniform bound") << "for (int i = 0; i < 8; i++) { if (float(i) > uK.x) break; c += uK; }" << 8;
        QTest::addRow("unknown start") << "int n = int(uK.x); for (int i = n; i < 8; i++) c += uK;" << -1;
        QTest::addRow("two counters") << "for (int i = 0, j = 4; i < 4; ++i, --j) c += uK * float(j);" << 4;
        QTest::addRow("counter stepped twice") << "for (int i = 0; i < 8; i++, i += 2) c += uK;" << -1;
    }

    void loopTripCounts()
    {
        QFETCH(QString, loop);
        QFETCH(int, trips);
        const SCompilation compilation = Compile(Fragment(loop), Stage_Fragment, Core_ZC1);
        QVERIFY(compilation.bSucceeded);
        QCOMPARE(LoopTrips(compilation), trips);
    }

    void inputsAndNonDependentReads_data()
    {
        QTest::addColumn<QByteArray>("source");
        QTest::addColumn<int>("stage");
        QTest::addColumn<int>("attributes");
        QTest::addColumn<int>("nonDependent");
        const QByteArray header =
            "precision mediump float; varying vec2 vUv; varying vec4 vExtra; uniform sampler2D s;\n";
        QTest::addRow("straight from input")
            << header + "void main() { gl_FragColor = texture2D(s, vUv); }" << int(Stage_Fragment) << 1 << 1;
        QTest::addRow("swizzled input") << header + "void main() { gl_FragColor = texture2D(s, vExtra.zw); }"
                                        << int(Stage_Fragment) << 1 << 1;
        QTest::addRow("scaled input") << header + "void main() { gl_FragColor = texture2D(s, vUv * 2.0); }"
                                      << int(Stage_Fragment) << 1 << 0;
        QTest::addRow("through a local")
            << header + "void main() { vec2 uv = vUv + vExtra.xy; gl_FragColor = texture2D(s, uv); }"
            << int(Stage_Fragment) << 2 << 0;
        QTest::addRow("dependent and not")
            << header
                   + "void main() { vec4 a = texture2D(s, vUv); gl_FragColor = texture2D(s, a.xy) + texture2D(s, vUv); }"
            << int(Stage_Fragment) << 1 << 2;
        QTest::addRow("declared but unread")
            << header + "void main() { gl_FragColor = vec4(1.0); }" << int(Stage_Fragment) << 0 << 0;
        QTest::addRow("matrix attribute")
            << QByteArray("attribute mat4 aM; attribute vec4 aP; void main() { gl_Position = aM * aP; }")
            << int(Stage_Vertex) << 5 << 0;
    }

    void inputsAndNonDependentReads()
    {
        QFETCH(QByteArray, source);
        QFETCH(int, stage);
        QFETCH(int, attributes);
        QFETCH(int, nonDependent);
        const SCompilation compilation = Compile(source, static_cast<ETxeStage>(stage), Core_ZC3);
        QVERIFY(compilation.bSucceeded);
        QCOMPARE(compilation.program.iInputSlotsRead, attributes);
        QCOMPARE(compilation.program.iNonDependentReads, nonDependent);
    }

    void coreFromProgramName_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<int>("core");
        QTest::addRow("plain") << "glslcompiler_zc2" << int(Core_ZC2);
        QTest::addRow("with folder") << "/opt/zam/bin/glslcompiler_zd1" << int(Core_ZD1);
        QTest::addRow("windows name") << "C:\\Zam\\GLSLCOMPILER_ZC3.EXE" << int(Core_ZC3);
        QTest::addRow("OpenCL") << "./clcompiler_zc1" << int(Core_ZC1);
        QTest::addRow("unknown") << "glslcompiler" << -1;
        QTest::addRow("folder named like a core") << "/tmp/zc3/glslcompiler" << -1;
    }

    void coreFromProgramName()
    {
        QFETCH(QString, path);
        QFETCH(int, core);
        ECore eCore = Core_Count;
        const bool bFound = CoreFromProgramName(path.toStdString(), eCore);
        QCOMPARE(bFound, core >= 0);
        if (bFound)
            QCOMPARE(int(eCore), core);
    }

    void registerAllocation()
    {
        // t0 lives into the loop and is read inside; t1 is born and dies inside.
        STxeProgram carried;
        carried.iTemps = 2;
        carried.aInstructions = {Instr(Op_Mov, Temp(0), Temp(9)), Instr(Op_Loop),
                                 Instr(Op_Add, Temp(1), Temp(0), Temp(0)), Instr(Op_Mov, Output(0), Temp(1)),
                                 Instr(Op_Endloop)};
        carried.aInstructions[0].aSrc[0] = STxeOperand();
        QCOMPARE(AllocateRegisters(carried), 2);
        QVERIFY(carried.aInstructions[2].dst.iIndex != carried.aInstructions[2].aSrc[0].iIndex);

        // t0 is read before it is written inside the loop: its value crosses the back edge.
        STxeProgram readFirst;
        readFirst.iTemps = 2;
        readFirst.aInstructions = {Instr(Op_Loop), Instr(Op_Add, Output(0), Temp(0), Temp(0)), Instr(Op_Mov, Temp(1)),
                                   Instr(Op_Mov, Temp(0), Temp(1)), Instr(Op_Endloop)};
        QCOMPARE(AllocateRegisters(readFirst), 2);
        QVERIFY(readFirst.aInstructions[2].dst.iIndex != readFirst.aInstructions[1].aSrc[0].iIndex);

        // Five values alive together, then folded: five registers, and the fold reuses them.
        STxeProgram program;
        program.iTemps = 9;
        for (int i = 0; i < 5; ++i)
            program.aInstructions.push_back(Instr(Op_Mov, Temp(i)));
        program.aInstructions.push_back(Instr(Op_Add, Temp(5), Temp(0), Temp(1)));
        program.aInstructions.push_back(Instr(Op_Add, Temp(6), Temp(5), Temp(2)));
        program.aInstructions.push_back(Instr(Op_Add, Temp(7), Temp(6), Temp(3)));
        program.aInstructions.push_back(Instr(Op_Add, Temp(8), Temp(7), Temp(4)));
        program.aInstructions.push_back(Instr(Op_Mov, Output(0), Temp(8)));
        QCOMPARE(AllocateRegisters(program), 5);
        for (const STxeInstruction& instr : program.aInstructions)
        {
            if (instr.dst.eFile == File_Temp)
                QVERIFY(instr.dst.iIndex >= 0 && instr.dst.iIndex < 5);
        }
    }

    void pathsChooseBranchesAndMultiplyLoops()
    {
        STxeProgram program;
        program.aInstructions = {Instr(Op_If, STxeOperand(), Temp(0)),
                                 Instr(Op_Mov, Temp(1)),
                                 Instr(Op_Else),
                                 Instr(Op_Mov, Temp(1)),
                                 Instr(Op_Mov, Temp(1)),
                                 Instr(Op_Mov, Temp(1)),
                                 Instr(Op_Endif),
                                 Instr(Op_Loop),
                                 Instr(Op_Mov, Temp(2)),
                                 Instr(Op_Endloop)};
        program.aInstructions[7].trips = {2, 5, 10, false};
        // Costs: if 4, then 1 (+2 for the jump over else), else 3 x 1, endif 0, loop 1, body 1 + endloop 3.
        const std::vector<int> aCosts = {4, 1, 2, 1, 1, 1, 0, 1, 1, 3};
        const SPathCycles paths = PathCycles(program, aCosts);
        QCOMPARE(paths.dBest, 4 + 3.0 + 1 + 2 * 4.0);
        QCOMPARE(paths.dAverage, 4 + 3.0 + 1 + 5 * 4.0);
        QCOMPARE(paths.dWorst, 4 + 3.0 + 1 + 10 * 4.0);
    }

    void pairingFreesSecondInstructionOnly()
    {
        STxeProgram program;
        program.aInstructions = {Instr(Op_Add, Temp(0, 3), Temp(8, 3), Temp(8, 3)),
                                 Instr(Op_Mul, Temp(1, 1), Temp(9), Temp(9)),
                                 Instr(Op_Mul, Temp(2, 1), Temp(9), Temp(9)),
                                 Instr(Op_Add, Temp(3, 1), Temp(2), Temp(2)), Instr(Op_Mov, Temp(4, 4), Temp(8, 4))};
        // ZD1 pairs vec3 + scalar; the third op starts a new issue; the fourth reads it, so it stands alone.
        QCOMPARE(CostInstructions(program, CoreModel(Core_ZD1)), (std::vector<int>{1, 0, 1, 1, 1}));
        // ZC3 only lets a move ride along with the ALU op before it.
        QCOMPARE(CostInstructions(program, CoreModel(Core_ZC3)), (std::vector<int>{1, 1, 1, 1, 0}));
        // ZC1 issues one lane at a time and pairs nothing.
        QCOMPARE(CostInstructions(program, CoreModel(Core_ZC1)), (std::vector<int>{3, 1, 1, 1, 4}));
    }

    void sourceLimits_data()
    {
        QTest::addColumn<QByteArray>("source");
        QTest::addColumn<QString>("error"); // empty: accepted
        SSourceLimits limits;
        const QByteArray deep = QByteArray(257, '(') + QByteArray(257, ')');
        QTest::addRow("ordinary") << QByteArray("void main() { }\n") << "";
        QTest::addRow("brackets in comments do not count") << "// " + deep + "\n/* " + deep + " */ void main() { }\n"
                                                           << "";
        QTest::addRow("closing brackets never go below zero")
            << QByteArray(")))))\n") + deep.left(300)
            << "ERROR: 0:2: brackets nest too deeply: the limit is 256 levels";
        QTest::addRow("nesting reported at its line")
            << "void main()\n{\n" + deep + "\n}\n"
            << "ERROR: 0:3: brackets nest too deeply: the limit is 256 levels";
        QTest::addRow("control byte at its line") << QByteArray("void main()\n{\n}\n\x01\n", 17)
                                                  << "ERROR: 0:4: source contains binary data (control byte 1)";
        QTest::addRow("NUL byte") << QByteArray("void\0main", 9)
                                  << "ERROR: 0:1: source contains binary data (control byte 0)";
        QTest::addRow("UTF-8 in a comment") << QByteArray("// caf\xc3\xa9\nvoid main() { }\n") << "";
        QTest::addRow("long line at its line") << "\n\n" + QByteArray(64 * 1024 + 1, 'a')
                                               << "ERROR: 0:3: line is too long: 65537 bytes, the limit is 65536 bytes";
        QTest::addRow("line at the limit") << QByteArray(64 * 1024, ' ') + "x"
                                           << "ERROR: 0:1: line is too long: 65537 bytes, the limit is 65536 bytes";
        QTest::addRow("blank") << QByteArray("\r\n\t \f") << "ERROR: 0:1: source is empty";
    }

    void sourceLimits()
    {
        QFETCH(QByteArray, source);
        QFETCH(QString, error);
        CDiagnosticList aDiagnostics;
        const bool bAccepted = CheckSourceText(source.toStdString(), DefaultSourceLimits(), aDiagnostics);
        QCOMPARE(bAccepted, error.isEmpty());
        QCOMPARE(aDiagnostics.size(), std::size_t(error.isEmpty() ? 0 : 1));
        if (!error.isEmpty())
            QCOMPARE(QString::fromStdString(FormatDiagnostic(aDiagnostics.front())), error);
    }

    // Messages of the GLSL front end and of clang as the editor reads them.
    void diagnostics_data()
    {
        QTest::addColumn<bool>("bClang");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("formatted");
        QTest::addRow("error and summaries")
            << false
            << "ERROR: 0:4: 'x' : undeclared identifier \nERROR: 0:4: '' : compilation terminated \nERROR: 2 compilation errors.  No code generated.\n\n"
            << "ERROR: 0:4: 'x' : undeclared identifier";
        QTest::addRow("warning") << false << "WARNING: 0:1: '#extension' : extension not supported: GL_X\n"
                                 << "WARNING: 0:1: '#extension' : extension not supported: GL_X";
        QTest::addRow("string number is not kept")
            << false << "ERROR: 3:17: 'f' : no matching overloaded function found\n"
            << "ERROR: 0:17: 'f' : no matching overloaded function found";
        QTest::addRow("no location") << false << "ERROR: Linking fragment stage: Missing entry point\n"
                                     << "ERROR: Linking fragment stage: Missing entry point";
        QTest::addRow("continuation line") << false << "ERROR: 0:2: 'a' : first part\n  second part\n"
                                           << "ERROR: 0:2: 'a' : first part second part";
        QTest::addRow("huge line number") << false << "ERROR: 0:99999999999: 'x' : odd\n"
                                          << "ERROR: 0:99999999999: 'x' : odd";
        QTest::addRow("clang error") << true << "/tmp/k.cl:12:5: error: use of undeclared identifier 'q'"
                                     << "ERROR: 0:12: use of undeclared identifier 'q'";
        QTest::addRow("clang warning") << true << "k.cl:3:11: warning: unused variable 'z' [-Wunused-variable]"
                                       << "WARNING: 0:3: unused variable 'z' [-Wunused-variable]";
        QTest::addRow("clang, colons in the path") << true << "C:/a:b/k.cl:7:1: fatal error: 'x.h' file not found"
                                                   << "ERROR: 0:7: 'x.h' file not found";
        QTest::addRow("clang, no location") << true << "error: unable to open output file 'x': 'Permission denied'"
                                            << "";
        QTest::addRow("clang's own location-less error") << true << "clang: error: no such file or directory: 'a.cl'"
                                                         << "ERROR: no such file or directory: 'a.cl'";
        QTest::addRow("clang note and summary") << true << "k.cl:2:3: note: declared here\n1 error generated."
                                                << "";
        QTest::addRow("clang, not numbers") << true << "k.cl:x:5: error: odd"
                                            << "ERROR: odd";
    }

    void diagnostics()
    {
        QFETCH(bool, bClang);
        QFETCH(QString, text);
        QFETCH(QString, formatted);
        QStringList lines;
        for (const SDiagnostic& diagnostic :
             bClang ? ParseClangDiagnostics(text.toStdString()) : ParseInfoLog(text.toStdString()))
            lines << QString::fromStdString(FormatDiagnostic(diagnostic));
        QCOMPARE(lines.join('\n'), formatted);
    }

    void irProfileCountsByLocation()
    {
        const std::string ir =
            "define void @f() !dbg !3 {\n"
            "  call void @llvm.dbg.value(metadata i32 0, metadata !9, metadata !DIExpression()), !dbg !5\n"
            "  %1 = load i32, i32* %p, !dbg !5\n"
            "  %2 = add i32 %1, 1, !dbg !6\n"
            "  store i32 %2, i32* %p, !dbg !5\n"
            "  br label %3\n"
            "3:\n"
            "  ret void, !dbg !7\n"
            "}\n"
            "!5 = !DILocation(line: 4, column: 3, scope: !3)\n"
            "!6 = !DILocation(line: 2, column: 9, scope: !3)\n"
            "!7 = !DILocation(line: 900, column: 1, scope: !3)\n";
        const SIrProfile profile = ProfileIr(ir, 10);
        // Debug intrinsics are not instructions; a location past the file's end is dropped.
        QCOMPARE(profile.llInstructions, 5LL);
        QCOMPARE(profile.mapLineCounts, (std::map<int, long long>{{2, 1}, {4, 2}}));
    }

    // The program file as docs/compiler.md lays it out: a typed integer instruction carries its
    // type in the flags, a sample its texel offset in four-bit fields, and an integer immediate
    // is stored as its 32-bit two's complement.
    void programFileLayout()
    {
        const SCompilation compilation = Compile(
            "#version 300 es\nprecision highp float;\nuniform int k;\nuniform sampler2D t;\nin vec2 uv;\n"
            "out vec4 o;\nvoid main() { o = vec4(float(k * -7), 0.5, 0.0, 1.0) + textureOffset(t, uv, ivec2(-2, 7)); }\n",
            Stage_Fragment, Core_ZC1);
        QVERIFY(compilation.bSucceeded);
        const std::string file = EncodeProgram(compilation, CoreModel(Core_ZC1));
        auto u8 = [&file](std::size_t i) { return static_cast<std::uint8_t>(file[i]); };
        auto u32 = [&](std::size_t i)
        { return u8(i) | (u8(i + 1) << 8) | (u8(i + 2) << 16) | (std::uint32_t(u8(i + 3)) << 24); };
        QCOMPARE(file.substr(0, 4), std::string("ZTXE"));
        QCOMPARE(u8(4) | (u8(5) << 8), 3);
        const std::size_t uiInstructions = u32(8);
        const std::size_t uiImmediates = u32(12);
        QCOMPARE(uiInstructions, compilation.program.aInstructions.size());
        QCOMPARE(uiImmediates * 4, compilation.program.aPool.size());

        int iMultiplies = 0;
        int iSamples = 0;
        for (std::size_t i = 0; i < uiInstructions; ++i)
        {
            const std::size_t uiRecord = 32 + i * 80;
            if (u8(uiRecord) == Op_Tex)
            {
                ++iSamples;
                QCOMPARE(u8(uiRecord + 2) | (u8(uiRecord + 3) << 8), 0x7E0);
            }
            if (u8(uiRecord) != Op_Mul)
                continue;
            ++iMultiplies;
            QCOMPARE((u8(uiRecord + 1) >> 1) & 3, int(Type_Int));
        }
        QCOMPARE(iMultiplies, 1);
        QCOMPARE(iSamples, 1);

        bool bMinusSeven = false;
        bool bHalf = false;
        for (std::size_t i = 0; i < uiImmediates; ++i)
        {
            const std::size_t uiEntry = 32 + uiInstructions * 80 + i * 20;
            const std::uint32_t uiLane = u32(uiEntry + 4);
            bMinusSeven = bMinusSeven || (u8(uiEntry) == Type_Int && uiLane == 0xFFFFFFF9u);
            float fLane = 0.0f;
            std::memcpy(&fLane, &uiLane, sizeof(fLane));
            bHalf = bHalf || (u8(uiEntry) == Type_Float && fLane == 0.5f);
        }
        QVERIFY(bMinusSeven);
        QVERIFY(bHalf);
    }

private:
    std::unique_ptr<CFrontEndProcess> m_pProcess;
};

QTEST_GUILESS_MAIN(CCompilerModelTest)
#include "tst_compiler_model.moc"
