// Values the lowered programs compute, for the shapes the lowering once got wrong:
// functions that return calls, nested and early returns, returns inside switches.
// The program runs in the tests' TXE interpreter; the expected values are worked by hand.

#include "TxeMachine.h"
#include "ZcCompilation.h"
#include "ZcFrontEnd.h"

#include <QtTest>

#include <cmath>
#include <memory>

using namespace ZamCompiler;
using namespace ZamCompilerTest;

namespace
{

const char* const k_pEs1 = "precision highp float;\n"
                           "uniform vec4 uA;\n"
                           "uniform vec4 uB;\n"
                           "uniform float uF;\n";

const char* const k_pEs3 = "#version 300 es\n"
                           "precision highp float;\n"
                           "precision highp int;\n"
                           "uniform vec4 uA;\n"
                           "uniform vec4 uB;\n"
                           "uniform float uF;\n"
                           "out vec4 o;\n";

QString Es1(const QString& globals, const QString& body)
{
    return QString(k_pEs1) + globals + "\nvoid main()\n{\n" + body + "\n}\n";
}

QString Es3(const QString& globals, const QString& body)
{
    return QString(k_pEs3) + globals + "\nvoid main()\n{\n" + body + "\n}\n";
}

} // namespace

class CCompilerLoweringTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_pProcess = std::make_unique<CFrontEndProcess>(); }
    void cleanupTestCase() { m_pProcess.reset(); }
    void returnsOfCalls_data();
    void returnsOfCalls();
    void commaOperator_data();
    void commaOperator();
    void storageBuffersAreRead();
    void runTimeIndexesIntoRegisters_data();
    void runTimeIndexesIntoRegisters();
    void refusalsNameWhatTheyRefuse_data();
    void refusalsNameWhatTheyRefuse();

private:
    void AddRows();
    void CheckRow();
    std::unique_ptr<CFrontEndProcess> m_pProcess;
};

void CCompilerLoweringTest::AddRows()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QVector<double>>("expected");
}

// uA = (1.5, -2, 0.25, 3), uB = (0.5, 4, -1, 2), uF = 0.75.
void CCompilerLoweringTest::CheckRow()
{
    QFETCH(QString, source);
    QFETCH(QVector<double>, expected);
    SCompilation compilation;
    const bool bCompiled =
        CompileSource(source.toStdString(), Stage_Fragment, CoreModel(Core_ZC1), DefaultSourceLimits(), compilation);
    for (const SDiagnostic& diagnostic : compilation.aDiagnostics)
        qWarning("%s", FormatDiagnostic(diagnostic).c_str());
    QVERIFY(bCompiled);

    CTxeMachine machine(compilation.program);
    machine.Set("uA", {{1.5f, -2.0f, 0.25f, 3.0f}});
    machine.Set("uB", {{0.5f, 4.0f, -1.0f, 2.0f}});
    machine.Set("uF", {{0.75f, 0, 0, 0}});
    QVERIFY2(machine.Run(), machine.Error().c_str());
    const SLanes result = machine.Output(0);
    for (int i = 0; i < 4; ++i)
        QVERIFY2(std::fabs(result[i] - expected[i]) < 1e-4 * std::max(1.0, std::fabs(expected[i])),
                 qPrintable(QString("lane %1: got %2, expected %3").arg(i).arg(result[i]).arg(expected[i])));
}

void CCompilerLoweringTest::returnsOfCalls_data()
{
    AddRows();
    using V = QVector<double>;
    QTest::addRow("a function returns a call")
        << Es1("float g(vec2 p) { return length(p) + 1.0; }\n"
               "float f(vec2 p) { float a = p.x * 2.0; return g(p) * 0.5 + a; }",
               "gl_FragColor = vec4(f(uB.xy), f(uA.zw), 0.0, 1.0);")
        << V{(std::sqrt(16.25) + 1.0) * 0.5 + 1.0, (std::sqrt(9.0625) + 1.0) * 0.5 + 0.5, 0, 1};
    QTest::addRow("calls returned three levels deep")
        << Es1("float h(float x) { return x * x; }\n"
               "float g(float x) { return h(x + 1.0) - h(x); }\n"
               "vec2 f(float x) { return vec2(g(x), g(g(x))) * 2.0; }",
               "gl_FragColor = vec4(f(uF), f(uA.y));")
        << V{5, 12, -6, -10};
    QTest::addRow("early returns of calls")
        << Es1("float sq(float x) { return x * x; }\n"
               "float pick(float x) { if (x > 1.0) return sq(x) + 1.0; if (x < 0.0) return -sq(x); return sq(x + 1.0); }",
               "gl_FragColor = vec4(pick(uA.x), pick(uA.y), pick(uF), pick(uA.z));")
        << V{3.25, -4, 3.0625, 1.5625};
    QTest::addRow("a return of a call inside a loop")
        << Es1("float weight(float i) { return i * uF; }\n"
               "float firstAbove(float t) { for (int i = 0; i < 8; i++) { if (weight(float(i)) > t) return weight(float(i)) * 2.0; } return -1.0; }",
               "gl_FragColor = vec4(firstAbove(2.0), firstAbove(100.0), 0.0, 0.0);")
        << V{4.5, -1, 0, 0};
    QTest::addRow("a return inside a switch")
        << Es3("float half_(float x) { return x * 0.5; }\n"
               "float f(int k) { switch (k) { case 1: return half_(uB.y); case 2: return 7.0; default: break; } return -1.0; }",
               "o = vec4(f(1), f(2), f(3), 0.0);")
        << V{2, 7, -1, 0};
}

void CCompilerLoweringTest::returnsOfCalls()
{
    CheckRow();
}

void CCompilerLoweringTest::commaOperator_data()
{
    AddRows();
    using V = QVector<double>;
    QTest::addRow("statement")
        << Es3("", "float a, b;\na = 1.0, b = uF * 2.0;\no = vec4(a, b, 0.0, 0.0);") << V{1, 1.5, 0, 0};
    QTest::addRow("two loop counters")
        << Es3("", "float s = 0.0;\nfor (int i = 0, j = 4; i < 4; ++i, --j) s += float(i * j);\no = vec4(s);")
        << V{10, 10, 10, 10};
    QTest::addRow("continue runs the whole increment")
        << Es3("", "float s = 0.0; int k = 0;\n"
                   "for (int i = 0, j = 10; i < 5; i++, j -= 2) { if (i == 2) continue; s += float(j); k++; }\n"
                   "o = vec4(s, float(k), 0.0, 0.0);")
        << V{24, 4, 0, 0};
    QTest::addRow("inside an expression")
        << Es3("", "float a = uF;\nfloat c = (a += 1.0, a * 2.0);\no = vec4(a, c, 0.0, 0.0);") << V{1.75, 3.5, 0, 0};
    QTest::addRow("with effects in a conditional")
        << Es3("", "float n = 0.0;\nfloat r = uF > 0.5 ? (n += 1.0, n * 10.0) : -1.0;\n"
                   "float q = uF > 1.0 ? (n += 5.0, n) : -2.0;\no = vec4(n, r, q, 0.0);")
        << V{1, 10, -2, 0};
    QTest::addRow("as a call argument")
        << Es1("float twice(float x) { return 2.0 * x; }", "float a = 0.0;\ngl_FragColor = vec4(twice((a = uB.y, a + 1.0)), a, 0.0, 0.0);")
        << V{10, 4, 0, 0};
}

void CCompilerLoweringTest::commaOperator()
{
    CheckRow();
}

// Vectors and matrices in registers indexed at run time, read and written; k is 3.
void CCompilerLoweringTest::runTimeIndexesIntoRegisters_data()
{
    AddRows();
    using V = QVector<double>;
    QTest::addRow("vector lanes")
        << Es3("", "int k = int(uF * 4.0);\nvec4 v = uA;\nv[k] = 9.0;\nv[k - 1] += 1.0;\no = v;") << V{1.5, -2, 1.25, 9};
    QTest::addRow("integer lanes")
        << Es3("", "int k = int(uF * 4.0);\nivec4 h = ivec4(1, 2, 3, 4);\nh[k] = h[k - 1] * 10;\nh[k - 3]++;\no = vec4(h);")
        << V{2, 2, 3, 30};
    QTest::addRow("matrix columns")
        << Es3("", "int k = int(uF * 4.0);\nmat3 m = mat3(uA.xyz, uB.xyz, vec3(7.0, 8.0, 9.0));\nvec3 c = m[k - 1];\n"
                   "m[k - 2] = vec3(0.5);\nm[k - 3].z = -1.0;\no = vec4(c.xy, m[1].y + m[k - 1][k - 2], m[0].z);")
        << V{7, 8, 8.5, -1};
    QTest::addRow("matrix parameter")
        << Es3("vec3 column(mat3 m, int i) { return m[i] * 2.0; }",
               "int k = int(uF * 4.0);\no = vec4(column(mat3(uA.xyz, uB.xyz, uA.zwx), k - 2), 1.0);")
        << V{1, 8, -2, 1};
}

void CCompilerLoweringTest::runTimeIndexesIntoRegisters()
{
    CheckRow();
}

// A named block and an anonymous one with a runtime-sized array, bound by their names.
void CCompilerLoweringTest::storageBuffersAreRead()
{
    const QString source = "#version 310 es\n"
                           "precision highp float;\n"
                           "layout(std430, binding = 0) readonly buffer Lights { vec4 count; vec4 colors[]; };\n"
                           "layout(std430, binding = 1) buffer Params { float gain; int n; } params;\n"
                           "out vec4 o;\n"
                           "void main()\n"
                           "{\n"
                           "    vec4 c = vec4(0.0);\n"
                           "    for (int i = 0; i < int(count.x); i++)\n"
                           "        c += colors[i];\n"
                           "    o = c * params.gain + vec4(float(params.n), colors[1].w, 0.0, 0.0);\n"
                           "}\n";
    SCompilation compilation;
    QVERIFY(CompileSource(source.toStdString(), Stage_Fragment, CoreModel(Core_ZC1), DefaultSourceLimits(), compilation));
    CTxeMachine machine(compilation.program);
    machine.Set("Lights", {{3, 0, 0, 0}, {1, 2, 3, 4}, {10, 20, 30, 40}, {100, 200, 300, 400}, {-1, -1, -1, -1}});
    machine.Set("params", {{0.5f, 0, 0, 0}, {7, 0, 0, 0}});
    QVERIFY2(machine.Run(), machine.Error().c_str());
    const SLanes result = machine.Output(0);
    QCOMPARE(result, (SLanes{55.5f + 7.0f, 111.0f + 40.0f, 166.5f, 222.0f}));
    int iLoads = 0;
    for (const STxeInstruction& instr : compilation.program.aInstructions)
        iLoads += instr.eOp == Op_Ldc ? 1 : 0;
    QVERIFY2(iLoads >= 4, "every read of a storage buffer is a load");
}

// Each refusal is one error at the construct's line, naming it as the user wrote it.
void CCompilerLoweringTest::refusalsNameWhatTheyRefuse_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("error");
    const QString es310 = "#version 310 es\nprecision highp float;\nuniform int k;\nout vec4 o;\n";
    const QString buffers = "layout(std430, binding = 0) buffer Params { float gain; } params;\n"
                            "layout(std430, binding = 1) buffer Lights { vec4 count; vec4 colors[]; };\n";
    const QString refused = " is not supported by the TXE code generator";
    QTest::addRow("continue in a switch")
        << es310 + "void main()\n{\n    float s = 0.0;\n    for (int j = 0; j < 3; j++) {\n"
                   "        switch (j) { case 1: continue; default: s += 1.0; }\n    }\n    o = vec4(s);\n}\n"
        << "ERROR: 0:9: 'continue' : a continue inside a switch" + refused;
    QTest::addRow("demote")
        << "#version 310 es\n#extension GL_EXT_demote_to_helper_invocation : enable\nprecision highp float;\nout vec4 o;\n"
           "void main()\n{\n    o = vec4(1.0);\n    if (gl_FragCoord.x > 2.0)\n        demote;\n}\n"
        << "ERROR: 0:9: 'demote' : this statement" + refused;
    QTest::addRow("writing a named storage buffer")
        << es310 + buffers + "void main()\n{\n    params.gain = 2.0;\n    o = vec4(0.0);\n}\n"
        << "ERROR: 0:9: 'params' : writing a shader storage buffer" + refused;
    QTest::addRow("writing an anonymous storage buffer")
        << es310 + buffers + "void main()\n{\n    o = vec4(0.0);\n    count = o;\n}\n"
        << "ERROR: 0:10: 'Lights' : writing a shader storage buffer" + refused;
    QTest::addRow("length of a runtime-sized array")
        << es310 + buffers + "void main()\n{\n    o = vec4(float(colors.length()));\n}\n"
        << "ERROR: 0:9: 'length' : the length of a runtime-sized array" + refused;
    QTest::addRow("constant index past a runtime-sized array's elements")
        << es310 + buffers + "void main()\n{\n    o = colors[2] + colors[16];\n}\n"
        << "ERROR: 0:9: 'colors' : a constant index past the 16 elements a runtime-sized array is bound with" + refused;
    QTest::addRow("writing an element chosen by two indexes")
        << es310 + "uniform mat3 uM;\nvoid main()\n{\n    mat3 m = uM;\n    m[k][k - 1] = 1.0;\n    o = vec4(m[0], 1.0);\n}\n"
        << "ERROR: 0:9: 'm' : writing an element chosen by two non-constant indexes" + refused;
    QTest::addRow("non-constant index into an array of samplers")
        << "#version 320 es\nprecision highp float;\nuniform int k;\nuniform sampler2D uTex[4];\nout vec4 o;\n"
           "void main()\n{\n    o = texture(uTex[k], vec2(0.5));\n}\n"
        << "ERROR: 0:8: 'uTex' : a non-constant index into an array of samplers" + refused;
    QTest::addRow("non-constant index into a computed matrix")
        << es310 + "uniform mat2 uM;\nvoid main()\n{\n    o = vec4((uM * 2.0)[k], 0.0, 0.0);\n}\n"
        << "ERROR: 0:8: '[]' : a non-constant index into a computed mat2" + refused;
    QTest::addRow("function without a body")
        << es310 + "float g(float x);\nvoid main()\n{\n    o = vec4(g(3.0));\n}\n"
        << "ERROR: 0:8: 'g' : the function is declared but has no body";
    QTest::addRow("recursion")
        << es310 + "float f(float x) { return x > 1.0 ? f(x - 1.0) : x; }\nvoid main()\n{\n    o = vec4(f(3.0));\n}\n"
        << "ERROR: 0:5: 'f' : recursion is not allowed";
}

void CCompilerLoweringTest::refusalsNameWhatTheyRefuse()
{
    QFETCH(QString, source);
    QFETCH(QString, error);
    SCompilation compilation;
    QVERIFY(!CompileSource(source.toStdString(), Stage_Fragment, CoreModel(Core_ZC1), DefaultSourceLimits(), compilation));
    QStringList errors;
    for (const SDiagnostic& diagnostic : compilation.aDiagnostics)
        errors << QString::fromStdString(FormatDiagnostic(diagnostic));
    QCOMPARE(errors, QStringList{error});
}

QTEST_GUILESS_MAIN(CCompilerLoweringTest)
#include "tst_compiler_lowering.moc"
