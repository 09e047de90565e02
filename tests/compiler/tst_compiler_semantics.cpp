// The lowered TXE program must compute what the GLSL says: the interpreter runs it
// with known uniforms and the outputs are compared with hand-worked values.
// Texture samples return (coordinate.x, coordinate.y, texture unit, 1).

#include "TxeMachine.h"
#include "ZcCompilation.h"
#include "ZcFrontEnd.h"

#include <QtTest>

#include <array>
#include <cmath>
#include <memory>

using namespace ZamCompiler;
using namespace ZamCompilerTest;

namespace
{

// Samples echo what reached the sampler, so a test sees coordinates and units.
class CEchoSampler : public ITxeSampler
{
public:
    SLanes Sample(const STxeSample& sample) override
    {
        return {sample.coordinate[0], sample.coordinate[1], static_cast<float>(sample.iUnit), 1.0f};
    }
    SLanes Size(int, int) override { return {64, 32, 0, 0}; }
};

const char* const k_pEs1 = "precision highp float;\n"
                           "uniform vec4 uA;\n"
                           "uniform vec4 uB;\n"
                           "uniform float uF;\n"
                           "uniform vec4 uArr[3];\n"
                           "uniform sampler2D uTex;\n"
                           "uniform sampler2D uTex2;\n";

const char* const k_pEs3 = "#version 300 es\n"
                           "precision highp float;\n"
                           "precision highp int;\n"
                           "uniform vec4 uA;\n"
                           "uniform vec4 uB;\n"
                           "uniform float uF;\n"
                           "out vec4 o;\n";

} // namespace

class CCompilerSemanticsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_pProcess = std::make_unique<CFrontEndProcess>(); }
    void cleanupTestCase() { m_pProcess.reset(); }
    void loweredProgramComputesTheShader_data();
    void loweredProgramComputesTheShader();

private:
    std::unique_ptr<CFrontEndProcess> m_pProcess;
};

void CCompilerSemanticsTest::loweredProgramComputesTheShader_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QVector<float>>("expected"); // empty: the fragment is discarded

    auto es1 = [](const QString& globals, const QString& body) {
        return QString(k_pEs1) + globals + "\nvoid main()\n{\n" + body + "\n}\n";
    };
    auto es3 = [](const QString& globals, const QString& body) {
        return QString(k_pEs3) + globals + "\nvoid main()\n{\n" + body + "\n}\n";
    };
    using V = QVector<float>;

    QTest::addRow("arithmetic") << es1("", "gl_FragColor = uA * 2.0 - uB / 4.0;") << V{2.875f, -5, 0.75f, 5.5f};
    QTest::addRow("division") << es1("", "gl_FragColor = uA / uB;") << V{3, -0.5f, -0.25f, 1.5f};
    QTest::addRow("swizzled writes")
        << es1("", "vec4 c = vec4(0.0); c.wx = uA.xy; c.yz = uB.zw; gl_FragColor = c;") << V{-2, -1, 2, 1.5f};
    QTest::addRow("rounding") << es1("", "gl_FragColor = vec4(mod(7.5, uF * 4.0), floor(uA.y), fract(uA.x), ceil(uA.z));")
                              << V{1.5f, -2, 0.5f, 1};
    QTest::addRow("interpolation")
        << es1("", "gl_FragColor = vec4(clamp(uA.x, 0.0, 1.0), mix(uB.x, uB.y, uF), smoothstep(0.0, 1.0, uF), step(uF, uA.z));")
        << V{1, 3.125f, 0.84375f, 0};
    QTest::addRow("geometry")
        << es1("", "vec3 n = normalize(vec3(uB.y, 0.0, 3.0));\n"
                   "gl_FragColor = vec4(n, length(uA.xy)) + vec4(cross(vec3(uF, 0.0, 0.0), vec3(0.0, 1.0, 0.0)), dot(uA.xy, uB.xy));")
        << V{0.8f, 0, 0.6f + 0.75f, -4.75f};
    QTest::addRow("matrix and vector")
        << es1("", "mat2 m = mat2(uA.x, uA.y, uA.z, uA.w); gl_FragColor = vec4(m * uB.xy, uB.xy * m);")
        << V{1.75f, 11, -7.25f, 12.125f};
    QTest::addRow("matrix product")
        << es1("", "mat2 a = mat2(2.0 * uF); mat2 b = mat2(uB.x, uB.y, uB.z, uB.w); mat2 c = a * b; gl_FragColor = vec4(c[0], c[1]);")
        << V{0.75f, 6, -1.5f, 3};
    QTest::addRow("branches")
        << es1("", "vec4 c = uA; if (uF > 0.5) c.x = 10.0; else c.x = 20.0; if (uA.y > 0.0) { c.y = 1.0; } gl_FragColor = c;")
        << V{10, -2, 0.25f, 3};
    QTest::addRow("counted loop") << es1("", "float s = 0.0; for (int i = 0; i < 5; i++) s += float(i); gl_FragColor = vec4(s);")
                                  << V{10, 10, 10, 10};
    QTest::addRow("break and continue")
        << es1("", "float s = 0.0;\n"
                   "for (int i = 0; i < 10; i++) { if (i == 2) continue; if (i == 5) break; s += float(i); }\n"
                   "gl_FragColor = vec4(s);")
        << V{8, 8, 8, 8};
    QTest::addRow("while") << es1("", "float s = 1.0; int n = 0; while (s < 100.0) { s *= uB.y; n++; } gl_FragColor = vec4(s, float(n), 0.0, 0.0);")
                           << V{256, 4, 0, 0};
    QTest::addRow("do while") << es1("", "int n = 0; do { n++; } while (n < 3); int m = 5; do { m++; } while (m < 3);\n"
                                         "gl_FragColor = vec4(float(n), float(m), 0.0, 0.0);")
                              << V{3, 6, 0, 0};
    QTest::addRow("functions")
        << es1("float f(float x) { if (x > 1.0) return 1.0; return x * 0.5; }\n"
               "void g(in float a, out float b, inout vec2 c) { b = a * 2.0; c += vec2(a); }",
               "float b; vec2 c = vec2(1.0, 2.0); g(uF, b, c); gl_FragColor = vec4(f(uA.x), f(uF), b, c.x + c.y);")
        << V{1, 0.375f, 1.5f, 4.5f};
    QTest::addRow("return inside a loop")
        << es1("float firstAbove(float t) { for (int i = 0; i < 8; i++) { if (float(i) * uF > t) return float(i); } return -1.0; }",
               "gl_FragColor = vec4(firstAbove(2.0), firstAbove(100.0), 0.0, 0.0);")
        << V{3, -1, 0, 0};
    QTest::addRow("globals written by a function")
        << es1("float g = 1.0;\nvoid bump() { g *= 3.0; }", "bump(); bump(); gl_FragColor = vec4(g);") << V{9, 9, 9, 9};
    QTest::addRow("selection and logic")
        << es1("", "float x = uF > 0.5 ? uA.x : uB.x; bool t = uA.x > 1.0 && uB.y > 3.0; bool u = uA.y > 0.0 || uB.z > 0.0;\n"
                   "gl_FragColor = vec4(x, t ? 1.0 : 0.0, u ? 1.0 : 0.0, (uA.x == 1.5) ? 2.0 : 3.0);")
        << V{1.5f, 1, 0, 2};
    QTest::addRow("effects only when needed")
        << es1("float n = 0.0;\nbool touch() { n += 1.0; return true; }",
               "bool a = uF > 1.0 && touch(); bool b = uF < 1.0 || touch(); bool c = uF < 1.0 && touch();\n"
               "gl_FragColor = vec4(n, float(a), float(b), float(c));")
        << V{1, 0, 1, 1};
    QTest::addRow("local array")
        << es1("", "float w[4]; for (int i = 0; i < 4; i++) w[i] = float(i) * uF;\n"
                   "float s = 0.0; for (int i = 0; i < 4; i++) s += w[3 - i] * float(i);\n"
                   "gl_FragColor = vec4(s, w[2], 0.0, 0.0);")
        << V{3, 1.5f, 0, 0};
    QTest::addRow("indexed uniform and vector")
        << es1("", "int k = int(uF * 4.0) - 1; vec4 v = uArr[k]; gl_FragColor = vec4(v[k], uArr[k - 1].w, 0.0, 0.0);")
        << V{11, 8, 0, 0};
    QTest::addRow("increments") << es1("", "float i = 1.0; float a = i++; float b = ++i; gl_FragColor = vec4(a, b, i, 0.0);")
                                << V{1, 3, 3, 0};
    QTest::addRow("vector comparisons")
        << es1("", "bvec4 b = lessThan(uA, uB); gl_FragColor = vec4(b) + vec4(any(b) ? 10.0 : 0.0, all(b) ? 10.0 : 0.0, 0.0, 0.0);")
        << V{10, 1, 0, 0};
    QTest::addRow("whole-value equality")
        << es1("", "gl_FragColor = vec4(uA == uA ? 1.0 : 0.0, uA != uB ? 1.0 : 0.0, uA.xy == vec2(1.5, -2.0) ? 1.0 : 0.0, 0.0);")
        << V{1, 1, 1, 0};
    QTest::addRow("transcendentals")
        << es1("", "gl_FragColor = vec4(pow(uB.y, 1.5), exp(0.0 * uF), log2(uB.y), inversesqrt(uB.y));") << V{8, 1, 2, 0.5f};
    QTest::addRow("textures") << es1("", "gl_FragColor = texture2D(uTex, uA.zw) + texture2D(uTex2, vec2(0.5 * uF));")
                              << V{0.625f, 3.375f, 1, 2};
    QTest::addRow("discard") << es1("", "if (uF > 0.5) discard; gl_FragColor = vec4(1.0);") << V{};
    QTest::addRow("integers") << es3("", "int a = int(uA.w); int b = 7;\n"
                                         "o = vec4(float(b / 2), float(b % 3), float(a << 2), float((b & 3) | 8));")
                              << V{3, 1, 12, 11};
    QTest::addRow("switch with fall-through")
        << es3("", "float r = 0.0;\n"
                   "switch (int(uA.w)) { case 1: r = 1.0; break; case 3: r = 3.0; case 4: r += 4.0; break; default: r = -1.0; }\n"
                   "float d = 0.0; switch (int(uB.y)) { case 1: d = 1.0; break; default: d = 5.0; }\n"
                   "o = vec4(r, d, 0.0, 0.0);")
        << V{7, 5, 0, 0};
    QTest::addRow("constant array")
        << es3("const float k[3] = float[3](1.0, 2.0, 4.0);", "o = vec4(k[int(uA.w) - 1], k[0], 0.0, 0.0);") << V{4, 1, 0, 0};
}

void CCompilerSemanticsTest::loweredProgramComputesTheShader()
{
    QFETCH(QString, source);
    QFETCH(QVector<float>, expected);
    SCompilation compilation;
    const bool bCompiled =
        CompileSource(source.toStdString(), Stage_Fragment, CoreModel(Core_ZC3), DefaultSourceLimits(), compilation);
    if (!bCompiled)
    {
        for (const SDiagnostic& diagnostic : compilation.aDiagnostics)
            qWarning("%s", FormatDiagnostic(diagnostic).c_str());
    }
    QVERIFY(bCompiled);

    CEchoSampler sampler;
    CTxeMachine machine(compilation.program, &sampler);
    machine.Set("uA", {{1.5f, -2.0f, 0.25f, 3.0f}});
    machine.Set("uB", {{0.5f, 4.0f, -1.0f, 2.0f}});
    machine.Set("uF", {{0.75f, 0, 0, 0}});
    machine.Set("uArr", {{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}});
    QVERIFY2(machine.Run(), machine.Error().c_str());
    QCOMPARE(machine.Discarded(), expected.isEmpty());
    if (expected.isEmpty())
        return;
    const SLanes result = machine.Output(0);
    for (int i = 0; i < 4; ++i)
        QVERIFY2(std::fabs(result[i] - expected[i]) < 1e-4f,
                 qPrintable(QString("lane %1: got %2, expected %3").arg(i).arg(result[i]).arg(expected[i])));
}

QTEST_GUILESS_MAIN(CCompilerSemanticsTest)
#include "tst_compiler_semantics.moc"
