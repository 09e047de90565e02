// What lowered programs compute: the tests' TXE interpreter runs each shader with known
// uniforms and the outputs are compared with hand-worked values: the shapes the lowering once got
// wrong (functions that return calls, nested and early returns, returns inside switches, the
// comma operator, run-time indexes) and those the real-world shaders compared with Mesa in
// tst_compiler_differential do not have. Integer results are compared as
// exact 32-bit words, their expected values computed by C++ doing the same arithmetic.
// Every built-in function compiles (most are computed here or against Mesa in
// tst_compiler_differential), or is refused with one message naming it at its line.

#include "TxeMachine.h"
#include "ZcCompilation.h"
#include "ZcFrontEnd.h"

#include <QtTest>

#include <cmath>
#include <cstring>
#include <memory>

using namespace ZamCompiler;
using namespace ZamCompilerTest;

namespace
{

const char* const k_pEs1 = "precision highp float;\nuniform vec4 uA;\nuniform vec4 uB;\nuniform float uF;\n"
                           "uniform vec4 uArr[3];\n";
const char* const k_pEs3 = "#version 300 es\nprecision highp float;\nprecision highp int;\n"
                           "uniform vec4 uA;\nuniform vec4 uB;\nuniform float uF;\nout vec4 o;\n";
const char* const k_pEs31 = "#version 310 es\nprecision highp float;\nprecision highp int;\n";
const char* const k_pMatrices =
    "uniform vec4 uA;\nuniform mat2 uM2;\nuniform mat3 uM3;\nuniform mat4 uM4;\nout vec4 o;\n";
const char* const k_pWords = "uniform uint uU;\nuniform int uI;\nout uvec4 o;\n";

QString Shader(const QString& header, const QString& globals, const QString& body)
{
    return header + globals + "\nvoid main()\n{\n" + body + "\n}\n";
}

QString Es1(const QString& globals, const QString& body)
{
    return Shader(k_pEs1, globals, body);
}

QString Es3(const QString& globals, const QString& body)
{
    return Shader(k_pEs3, globals, body);
}

std::uint32_t FloatBits(float fValue)
{
    std::uint32_t uiBits = 0;
    std::memcpy(&uiBits, &fValue, sizeof(uiBits));
    return uiBits;
}

bool Lower(const QString& source, ETxeStage eStage, SCompilation& compilation, QStringList& diagnostics)
{
    const bool bCompiled =
        CompileSource(source.toStdString(), eStage, CoreModel(Core_ZC1), DefaultSourceLimits(), compilation);
    for (const SDiagnostic& diagnostic : compilation.aDiagnostics)
        diagnostics << QString::fromStdString(FormatDiagnostic(diagnostic));
    return bCompiled;
}

enum EStages
{
    Vertex = 1,
    Fragment = 2,
    Both = 3,
};

struct SBuiltinUse
{
    const char* pName;
    const char* pVersion;
    int iStages;
    const char* pStatement; // adds to vec4 s
};

// The built-in functions of GLSL ES 1.00, 3.00 and 3.10 that neither the real-world shaders
// (checked against Mesa) nor the value tables here call, each called once; they all compile.
// clang-format off
const SBuiltinUse s_aCompiled[] = {
    {"radians", "100", Both, "s.x += radians(f);"},
    {"degrees", "100", Both, "s.x += degrees(f);"},
    {"tan", "100", Both, "s.x += tan(f);"},
    {"asin", "100", Both, "s.x += asin(f);"},
    {"acos", "100", Both, "s.x += acos(f);"},
    {"atan", "100", Both, "s.x += atan(f, v2.x) + atan(f);"},
    {"log", "100", Both, "s.x += log(f);"},
    {"inversesqrt", "100", Both, "s.x += inversesqrt(f);"},
    {"distance", "100", Both, "s.x += distance(v3, v3.zyx);"},
    {"faceforward", "100", Both, "s.xyz += faceforward(v3, v3.yzx, v3.zxy);"},
    {"refract", "100", Both, "s.xyz += refract(v3, v3.yzx, f);"},
    {"greaterThanEqual", "100", Both, "s.xy += vec2(greaterThanEqual(v2, v2.yx));"},
    {"notEqual", "100", Both, "s.xy += vec2(notEqual(v2, v2.yx));"},
    {"texture2D", "100", Both, "s += texture2D(t2, v2);"},
    {"texture2D", "100", Fragment, "s += texture2D(t2, v2, f);"},
    {"texture2DProj", "100", Both, "s += texture2DProj(t2, v3) + texture2DProj(t2, v4);"},
    {"texture2DLod", "100", Vertex, "s += texture2DLod(t2, v2, f);"},
    {"texture2DProjLod", "100", Vertex, "s += texture2DProjLod(t2, v3, f);"},
    {"textureCube", "100", Both, "s += textureCube(tc, v3);"},
    {"textureCubeLod", "100", Vertex, "s += textureCubeLod(tc, v3, f);"},
    {"sinh", "300 es", Both, "s.x += sinh(f) + cosh(f) + tanh(f);"},
    {"asinh", "300 es", Both, "s.x += asinh(f) + acosh(f) + atanh(f);"},
    {"trunc", "300 es", Both, "s.x += trunc(f) + round(f) + roundEven(f);"},
    {"min", "300 es", Both, "s.x += float(min(i, 3) + max(i, 1) + clamp(i, 0, 2)) + float(min(u, 3u) + clamp(u, 1u, 2u));"},
    {"mix", "300 es", Both, "s.xy += mix(v2, v2.yx, bvec2(true, false));"},
    {"isnan", "300 es", Both, "s.x += isnan(f) || isinf(f) ? 1.0 : 0.0;"},
    {"packSnorm2x16", "300 es", Both, "s.xy += unpackSnorm2x16(packSnorm2x16(v2));"},
    {"packUnorm2x16", "300 es", Both, "s.xy += unpackUnorm2x16(packUnorm2x16(v2));"},
    {"abs", "300 es", Both, "s.x += float(abs(i) + sign(i));"},
    {"textureSize", "300 es", Both, "s.xy += vec2(textureSize(t2, 0)) + vec2(textureSize(tc, 1));"},
    {"texture", "300 es", Both, "s += texture(t2, v2) + texture(tc, v3) + texture(t3, v3) + texture(ta, v3) + vec4(texture(ts, v3));"},
    {"texture", "300 es", Fragment, "s += texture(t2, v2, f);"},
    {"textureProj", "300 es", Both, "s += textureProj(t2, v3) + textureProj(t2, v4);"},
    {"textureLod", "300 es", Both, "s += textureLod(t2, v2, f) + textureLod(ta, v3, f);"},
    {"textureOffset", "300 es", Both, "s += textureOffset(t2, v2, ivec2(1, -1));"},
    {"texelFetch", "300 es", Both, "s += texelFetch(t2, ivec2(i), 0) + vec4(texelFetch(ti, ivec2(i), 0)) + vec4(texelFetch(tu, ivec2(i), 0));"},
    {"texelFetchOffset", "300 es", Both, "s += texelFetchOffset(t2, ivec2(i), 0, ivec2(1));"},
    {"textureProjOffset", "300 es", Both, "s += textureProjOffset(t2, v3, ivec2(1));"},
    {"textureLodOffset", "300 es", Both, "s += textureLodOffset(t2, v2, f, ivec2(1));"},
    {"textureProjLod", "300 es", Both, "s += textureProjLod(t2, v3, f) + textureProjLodOffset(t2, v4, f, ivec2(1));"},
    {"textureGrad", "300 es", Both, "s += textureGrad(t2, v2, v2, v2) + textureGradOffset(t2, v2, v2, v2, ivec2(1));"},
    {"textureProjGrad", "300 es", Both, "s += textureProjGrad(t2, v3, v2, v2) + textureProjGradOffset(t2, v4, v2, v2, ivec2(1));"},
    {"dFdx", "300 es", Fragment, "s.xy += dFdx(v2) + dFdy(v2) + fwidth(v2);"},
    {"packUnorm4x8", "310 es", Both, "s += unpackUnorm4x8(packUnorm4x8(v4)) + unpackSnorm4x8(packSnorm4x8(v4));"},
};

// Functions the code generator refuses: the message names the function at its line.
const SBuiltinUse s_aRefused[] = {
    {"textureGather", "310 es", Fragment, "s += textureGather(t2, v2);"},
    {"textureGatherOffset", "310 es", Fragment, "s += textureGatherOffset(t2, v2, ivec2(1));"},
    {"atomicCounterIncrement", "310 es", Fragment, "s.x += float(atomicCounterIncrement(ac));"},
    {"atomicAdd", "310 es", Fragment, "s.x += float(atomicAdd(counts.n, 1u));"},
    {"imageSize", "310 es", Fragment, "s.xy += vec2(imageSize(img));"},
    {"imageLoad", "310 es", Fragment, "s += imageLoad(img, ivec2(i));"},
    {"memoryBarrier", "310 es", Fragment, "memoryBarrier();"},
    {"interpolateAtCentroid", "320 es", Fragment, "s.xy += interpolateAtCentroid(vIn);"},
};
// clang-format on

QString BuiltinShader(const SBuiltinUse& use, bool bVertex, int& iLine)
{
    const QString version = use.pVersion;
    const bool bEs1 = version == "100";
    QString text = "#version " + version + "\n";
    if (bEs1 && !bVertex)
        text += "#extension GL_OES_standard_derivatives : enable\n";
    text += "precision highp float;\nprecision highp int;\nuniform float f;\nuniform vec2 v2;\nuniform vec3 v3;\n"
            "uniform vec4 v4;\nuniform mat2 m2;\nuniform mat3 m3;\nuniform mat4 m4;\nuniform int i;\n"
            "uniform sampler2D t2;\nuniform samplerCube tc;\n";
    if (!bEs1)
    {
        text += "precision highp sampler3D;\nprecision highp sampler2DArray;\nprecision highp sampler2DShadow;\n"
                "precision highp isampler2D;\nprecision highp usampler2D;\nuniform uint u;\nuniform sampler3D t3;\n"
                "uniform sampler2DArray ta;\nuniform sampler2DShadow ts;\nuniform isampler2D ti;\n"
                "uniform usampler2D tu;\n";
        text += bVertex ? "out vec4 vOut;\n" : "out vec4 o;\n";
    }
    if (version == "310 es" || version == "320 es")
        text += "layout(binding = 0) uniform atomic_uint ac;\n"
                "layout(std430, binding = 0) buffer Counts { uint n; } counts;\n"
                "layout(rgba8, binding = 1) readonly uniform highp image2D img;\n";
    if (version == "320 es" && !bVertex)
        text += "in vec2 vIn;\n";
    text += "void main()\n{\n    vec4 s = vec4(0.0);\n";
    iLine = text.count('\n') + 1;
    const char* pOutput = bEs1 ? (bVertex ? "gl_Position = s;" : "gl_FragColor = s;")
                               : (bVertex ? "gl_Position = s; vOut = s;" : "o = s;");
    return text + "    " + use.pStatement + "\n    " + pOutput + "\n}\n";
}

} // namespace

class CCompilerSemanticsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_pProcess = std::make_unique<CFrontEndProcess>(); }
    void cleanupTestCase() { m_pProcess.reset(); }

    // uA = (1.5, -2, 0.25, 3), uB = (0.5, 4, -1, 2), uF = 0.75, uArr = (1, 2, ..., 12).
    void loweredProgramComputesTheShader_data()
    {
        AddColumns();
        using V = QVector<double>;
        // clang-format off
        QTest::addRow("rounding") << Es1("", "gl_FragColor = vec4(mod(7.5, uF * 4.0), floor(uA.y), fract(uA.x), ceil(uA.z));")
                                  << V{1.5f, -2, 0.5f, 1};
        QTest::addRow("do while") << Es1("", "int n = 0; do { n++; } while (n < 3); int m = 5; do { m++; } while (m < 3);\n"
                                             "gl_FragColor = vec4(float(n), float(m), 0.0, 0.0);")
                                  << V{3, 6, 0, 0};
        QTest::addRow("effects only when needed")
            << Es1("float n = 0.0;\nbool touch() { n += 1.0; return true; }",
                   "bool a = uF > 1.0 && touch(); bool b = uF < 1.0 || touch(); bool c = uF < 1.0 && touch();\n"
                   "gl_FragColor = vec4(n, float(a), float(b), float(c));")
            << V{1, 0, 1, 1};
        QTest::addRow("indexed uniform and vector")
            << Es1("", "int k = int(uF * 4.0) - 1; vec4 v = uArr[k]; gl_FragColor = vec4(v[k], uArr[k - 1].w, 0.0, 0.0);")
            << V{11, 8, 0, 0};
        QTest::addRow("increments") << Es1("", "float i = 1.0; float a = i++; float b = ++i; gl_FragColor = vec4(a, b, i, 0.0);")
                                    << V{1, 3, 3, 0};
        QTest::addRow("vector comparisons")
            << Es1("", "bvec4 b = lessThan(uA, uB); gl_FragColor = vec4(b) + vec4(any(b) ? 10.0 : 0.0, all(b) ? 10.0 : 0.0, 0.0, 0.0);")
            << V{10, 1, 0, 0};
        QTest::addRow("whole-value equality")
            << Es1("", "gl_FragColor = vec4(uA == uA ? 1.0 : 0.0, uA != uB ? 1.0 : 0.0, uA.xy == vec2(1.5, -2.0) ? 1.0 : 0.0, 0.0);")
            << V{1, 1, 1, 0};
        QTest::addRow("transcendentals")
            << Es1("", "gl_FragColor = vec4(pow(uB.y, 1.5), exp(0.0 * uF), log2(uB.y), inversesqrt(uB.y));") << V{8, 1, 2, 0.5f};
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
        // Vectors and matrices in registers indexed at run time, read and written; k is 3.
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
        // clang-format on
    }
    void loweredProgramComputesTheShader() { Check(QString(), 1e-4); }

    // uM2, uM3 and uM4 are invertible matrices without structure (no zero, no symmetry).
    void matrixFunctions_data()
    {
        AddColumns();
        using V = QVector<double>;
        // clang-format off
        QTest::addRow("inverse times the matrix")
            << "mat2 p2 = inverse(uM2) * uM2; mat3 p3 = uM3 * inverse(uM3); mat4 p4 = inverse(uM4) * uM4;\n"
               "o = vec4(p2[0][0] + p2[1][1], p3[0][0] + p3[1][1] + p3[2][2], p4[0][0] + p4[1][1] + p4[2][2] + p4[3][3],\n"
               "         abs(p2[0][1]) + abs(p3[2][0]) + abs(p3[1][2]) + abs(p4[3][0]) + abs(p4[1][3]) + abs(p4[2][1]));"
            << V{2, 3, 4, 0};
        // For M = diag(2, 4, 0.5) the normal matrix is diag(0.5, 0.25, 2).
        QTest::addRow("normal matrix")
            << "mat4 model = mat4(2.0, 0.0, 0.0, 0.0, 0.0, 4.0, 0.0, 0.0, 0.0, 0.0, 0.5, 0.0, uA.x, uA.y, uA.z, 1.0);\n"
               "mat3 normalMatrix = transpose(inverse(mat3(model)));\n"
               "o = vec4(normalMatrix * vec3(1.0, 1.0, 1.0), normalMatrix[2][0]);"
            << V{0.5, 0.25, 2, 0};
        // det(uM4) * det(inverse(uM4)) is 1; the 4x4 determinant of a scaled identity is the product.
        QTest::addRow("determinants")
            << "o = vec4(determinant(uM4) * determinant(inverse(uM4)), determinant(mat4(2.0)), "
               "determinant(uM3) * determinant(inverse(uM3)), determinant(uM2) * determinant(inverse(uM2)));"
            << V{1, 16, 1, 1};
        // clang-format on
    }
    void matrixFunctions() { Check(QString(k_pEs31) + k_pMatrices, 1e-4); }

    void floatDecomposition_data()
    {
        AddColumns();
        using V = QVector<double>;
        // clang-format off
        QTest::addRow("frexp") << "int e1; int e2; int e3;\n"
                                  "float m1 = frexp(uA.y * 4.0, e1); float m2 = frexp(uA.z, e2); float m3 = frexp(uA.z * 0.0, e3);\n"
                                  "o = vec4(m1, float(e1), m2 + m3, float(e2 * 10 + e3));"
                               << V{-0.5, 4, 0.5, -10};
        QTest::addRow("frexp across powers of two")
            << "int e1; int e2; float m1 = frexp(uA.w * 341.0 + 0.0 * uA.x, e1); float m2 = frexp(1023.99994, e2);\n"
               "o = vec4(m1, float(e1), m2, float(e2));"
            << V{1023.0 / 1024.0, 10, 1023.99994 / 1024.0, 10};
        QTest::addRow("ldexp") << "o = vec4(ldexp(uA.x, 3), ldexp(uA.y, -1), ldexp(vec2(uA.z), ivec2(2, 0)));" << V{12, -1, 1, 0.25};
        QTest::addRow("modf") << "float i1; vec2 i2; float f1 = modf(uA.x + 1.0, i1); vec2 f2 = modf(vec2(-2.25, uA.w), i2);\n"
                                 "o = vec4(f1 + i1 * 10.0, f2.x, i2.x, i2.y + f2.y);"
                              << V{20.5, -0.25, -2, 3};
        // clang-format on
    }
    void floatDecomposition() { Check(QString(k_pEs31) + k_pMatrices, 1e-6); }

    // uU = 0xF00DBEEF, uI = -12345.
    void integerFunctions_data()
    {
        AddColumns();
        using V = QVector<double>;
        // clang-format off
        const std::uint32_t u = 0xF00DBEEFu;
        const std::int32_t i = -12345;
        auto reversed = [](std::uint32_t x) {
            std::uint32_t r = 0;
            for (int k = 0; k < 32; ++k)
                r |= ((x >> k) & 1u) << (31 - k);
            return r;
        };
        QTest::addRow("bit counts and positions")
            << "o = uvec4(bitCount(uU), uint(findLSB(uU) + 100 * findMSB(uU)), uint(findMSB(uI) + 100 * bitCount(uI)), uint(findLSB(0u) + 2));"
            << V{double(__builtin_popcount(u)), double(__builtin_ctz(u) + 100 * 31), double(31 - __builtin_clz(~std::uint32_t(i)) + 100 * __builtin_popcount(std::uint32_t(i))), 1};
        QTest::addRow("bitfields")
            << "o = uvec4(bitfieldExtract(uU, 4, 12), uint(bitfieldExtract(int(uU), 24, 8)), bitfieldInsert(uU, 0x5u, 28, 3), bitfieldReverse(uU));"
            << V{double((u >> 4) & 0xFFFu), double(std::uint32_t(std::int32_t(std::int8_t(u >> 24)))),
                 double((u & ~(7u << 28)) | (5u << 28)), double(reversed(u))};
        QTest::addRow("carry and borrow")
            << "uint c1; uint c2; uint b1; uint b2;\n"
               "uint s1 = uaddCarry(uU, 0x10000000u, c1); uint s2 = uaddCarry(uU, 1u, c2);\n"
               "uint d1 = usubBorrow(5u, uU, b1); uint d2 = usubBorrow(uU, 5u, b2);\n"
               "o = uvec4(s1, c1 * 10u + c2, d1, b1 * 10u + b2);"
            << V{double(u + 0x10000000u), 10, double(5u - u), 10};
        QTest::addRow("extended products")
            << "uint hi; uint lo; int ihi; int ilo;\n"
               "umulExtended(uU, 0x9E3779B9u, hi, lo); imulExtended(uI, 0x7FFFFFFF, ihi, ilo);\n"
               "o = uvec4(hi, lo, uint(ihi), uint(ilo));"
            << V{double((std::uint64_t(u) * 0x9E3779B9ull) >> 32), double(std::uint32_t(u * 0x9E3779B9u)),
                 double(std::uint32_t((std::int64_t(i) * 0x7FFFFFFF) >> 32)), double(std::uint32_t(std::int64_t(i) * 0x7FFFFFFF))};
        QTest::addRow("hash arithmetic wraps")
            << "uint h = uU; h ^= h >> 16; h *= 0x7feb352du; h ^= h >> 15; h *= 0x846ca68bu; h ^= h >> 16;\n"
               "o = uvec4(h, uint(uI * 3 - 7), ~uU, uint(-uI << 20));"
            << [&] {
                   std::uint32_t h = u;
                   h ^= h >> 16;
                   h *= 0x7feb352du;
                   h ^= h >> 15;
                   h *= 0x846ca68bu;
                   h ^= h >> 16;
                   return V{double(h), double(std::uint32_t(i * 3 - 7)), double(~u), double(std::uint32_t(-i) << 20)};
               }();
        QTest::addRow("float bits")
            << "o = uvec4(floatBitsToUint(1.0 + 0.0 * float(uI)), uint(floatBitsToInt(-2.5 + 0.0 * float(uI))),\n"
               "          uint(intBitsToFloat(0x40490fdb + uI * 0) * 1000.0), uint(uintBitsToFloat(uU & 0u | 0x3f000000u) * 8.0));"
            << V{double(FloatBits(1.0f)), double(FloatBits(-2.5f)), 3141, 4};
        QTest::addRow("half floats")
            << "vec2 v = vec2(1.0, -2.0) + 0.0 * float(uI);\n"
               "uint a = packHalf2x16(v); uint b = packHalf2x16(vec2(65504.0, 1.0e-6) + 0.0 * float(uI));\n"
               "uint c = packHalf2x16(vec2(1.00048828125, 70000.0) + 0.0 * float(uI));\n"
               "o = uvec4(a, b, c, uint(unpackHalf2x16(0xC0003555u + uU * 0u).x * 30000.0) + uint(-unpackHalf2x16(0xC0003555u).y));"
            << V{double(0x3C00u | (0xC000u << 16)), double(0x7BFFu | (0x0011u << 16)), double(0x3C00u | (0x7C00u << 16)),
                 std::floor(0.333251953125 * 30000.0) + 2};
        QTest::addRow("packed formats")
            << "vec4 v = vec4(1.0, 0.5, -0.25, 2.0) + 0.0 * float(uI);\n"
               "uint a = packUnorm4x8(v); uint b = packSnorm2x16(v.zx);\n"
               "vec4 back = unpackSnorm4x8(packSnorm4x8(v)) - v;\n"
               "o = uvec4(a, b, uint(unpackUnorm2x16(b).x * 65535.0), uint(dot(abs(back.xyz), vec3(1.0)) * 10000.0));"
            << V{double(255u | (128u << 8) | (0u << 16) | (255u << 24)), double((std::uint32_t(std::int32_t(-8192)) & 0xFFFFu) | (32767u << 16)),
                 double(0xFFFFu & std::uint32_t(std::int32_t(-8192))),
                 std::floor(10000.0 * (std::fabs(64.0 / 127.0 - 0.5) + std::fabs(-32.0 / 127.0 + 0.25)))};
        // clang-format on
    }
    void integerFunctions() { Check(QString(k_pEs31) + k_pWords, 0.0); }

    // A named block and an anonymous one with a runtime-sized array, bound by their names.
    void storageBuffersAreRead()
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
        QStringList diagnostics;
        QVERIFY2(Lower(source, Stage_Fragment, compilation, diagnostics), qPrintable(diagnostics.join('\n')));
        CTxeMachine machine(compilation.program);
        machine.Set("Lights", {{3, 0, 0, 0}, {1, 2, 3, 4}, {10, 20, 30, 40}, {100, 200, 300, 400}, {-1, -1, -1, -1}});
        machine.Set("params", {{0.5f, 0, 0, 0}, {7, 0, 0, 0}});
        QVERIFY2(machine.Run(), machine.Error().c_str());
        QCOMPARE(machine.Output(0), (SLanes{55.5f + 7.0f, 111.0f + 40.0f, 166.5f, 222.0f}));
    }

    // A refusal is one error at the construct's line, naming it as the user wrote it.
    void compilesOrIsRefusedByName_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("refusal"); // empty: it compiles
        QTest::addColumn<bool>("bVertex");
        auto add = [](const SBuiltinUse& use, bool bRefused)
        {
            for (const bool bVertex : {true, false})
            {
                if (!(use.iStages & (bVertex ? Vertex : Fragment)))
                    continue;
                int iLine = 0;
                const QString source = BuiltinShader(use, bVertex, iLine);
                const QString refusal = bRefused
                                            ? QString("ERROR: 0:%1: '%2' : this built-in function is not supported by "
                                                      "the TXE code generator")
                                                  .arg(iLine)
                                                  .arg(use.pName)
                                            : QString();
                QTest::addRow("%s %s %s", use.pName, use.pVersion, bVertex ? "vertex" : "fragment")
                    << source << refusal << bVertex;
            }
        };
        for (const SBuiltinUse& use : s_aCompiled)
            add(use, false);
        for (const SBuiltinUse& use : s_aRefused)
            add(use, true);

        const QString es310 = "#version 310 es\nprecision highp float;\nuniform int k;\nout vec4 o;\n";
        const QString buffers = "layout(std430, binding = 0) buffer Params { float gain; } params;\n"
                                "layout(std430, binding = 1) buffer Lights { vec4 count; vec4 colors[]; };\n";
        const QString refused = " is not supported by the TXE code generator";
        // clang-format off
        QTest::addRow("continue in a switch")
            << es310 + "void main()\n{\n    float s = 0.0;\n    for (int j = 0; j < 3; j++) {\n"
                       "        switch (j) { case 1: continue; default: s += 1.0; }\n    }\n    o = vec4(s);\n}\n"
            << "ERROR: 0:9: 'continue' : a continue inside a switch" + refused << false;
        QTest::addRow("demote")
            << "#version 310 es\n#extension GL_EXT_demote_to_helper_invocation : enable\nprecision highp float;\nout vec4 o;\n"
               "void main()\n{\n    o = vec4(1.0);\n    if (gl_FragCoord.x > 2.0)\n        demote;\n}\n"
            << "ERROR: 0:9: 'demote' : this statement" + refused << false;
        QTest::addRow("writing a named storage buffer")
            << es310 + buffers + "void main()\n{\n    params.gain = 2.0;\n    o = vec4(0.0);\n}\n"
            << "ERROR: 0:9: 'params' : writing a shader storage buffer" + refused << false;
        QTest::addRow("writing an anonymous storage buffer")
            << es310 + buffers + "void main()\n{\n    o = vec4(0.0);\n    count = o;\n}\n"
            << "ERROR: 0:10: 'Lights' : writing a shader storage buffer" + refused << false;
        QTest::addRow("length of a runtime-sized array")
            << es310 + buffers + "void main()\n{\n    o = vec4(float(colors.length()));\n}\n"
            << "ERROR: 0:9: 'length' : the length of a runtime-sized array" + refused << false;
        QTest::addRow("constant index past a runtime-sized array's elements")
            << es310 + buffers + "void main()\n{\n    o = colors[2] + colors[16];\n}\n"
            << "ERROR: 0:9: 'colors' : a constant index past the 16 elements a runtime-sized array is bound with" + refused << false;
        QTest::addRow("writing an element chosen by two indexes")
            << es310 + "uniform mat3 uM;\nvoid main()\n{\n    mat3 m = uM;\n    m[k][k - 1] = 1.0;\n    o = vec4(m[0], 1.0);\n}\n"
            << "ERROR: 0:9: 'm' : writing an element chosen by two non-constant indexes" + refused << false;
        QTest::addRow("non-constant index into an array of samplers")
            << "#version 320 es\nprecision highp float;\nuniform int k;\nuniform sampler2D uTex[4];\nout vec4 o;\n"
               "void main()\n{\n    o = texture(uTex[k], vec2(0.5));\n}\n"
            << "ERROR: 0:8: 'uTex' : a non-constant index into an array of samplers" + refused << false;
        QTest::addRow("non-constant index into a computed matrix")
            << es310 + "uniform mat2 uM;\nvoid main()\n{\n    o = vec4((uM * 2.0)[k], 0.0, 0.0);\n}\n"
            << "ERROR: 0:8: '[]' : a non-constant index into a computed mat2" + refused << false;
        QTest::addRow("function without a body")
            << es310 + "float g(float x);\nvoid main()\n{\n    o = vec4(g(3.0));\n}\n"
            << "ERROR: 0:8: 'g' : the function is declared but has no body" << false;
        QTest::addRow("recursion")
            << es310 + "float f(float x) { return x > 1.0 ? f(x - 1.0) : x; }\nvoid main()\n{\n    o = vec4(f(3.0));\n}\n"
            << "ERROR: 0:5: 'f' : recursion is not allowed" << false;
        // clang-format on
    }

    void compilesOrIsRefusedByName()
    {
        QFETCH(QString, source);
        QFETCH(QString, refusal);
        QFETCH(bool, bVertex);
        SCompilation compilation;
        QStringList diagnostics;
        const bool bCompiled = Lower(source, bVertex ? Stage_Vertex : Stage_Fragment, compilation, diagnostics);
        if (refusal.isEmpty())
        {
            QVERIFY2(bCompiled, qPrintable(diagnostics.join('\n')));
            return;
        }
        QVERIFY(!bCompiled);
        QCOMPARE(diagnostics, QStringList{refusal});
    }

private:
    static void AddColumns()
    {
        QTest::addColumn<QString>("shader");
        QTest::addColumn<QVector<double>>("expected");
    }

    // The row's shader is a whole source, or main's body under the header. A tolerance of 0
    // compares the outputs as 32-bit words.
    void Check(const QString& header, double dTolerance)
    {
        QFETCH(QString, shader);
        QFETCH(QVector<double>, expected);
        SCompilation compilation;
        QStringList diagnostics;
        QVERIFY2(
            Lower(header.isEmpty() ? shader : Shader(header, "", shader), Stage_Fragment, compilation, diagnostics),
            qPrintable(diagnostics.join('\n')));
        CTxeMachine machine(compilation.program);
        machine.Set("uA", {{1.5f, -2.0f, 0.25f, 3.0f}});
        machine.Set("uB", {{0.5f, 4.0f, -1.0f, 2.0f}});
        machine.Set("uF", {{0.75f, 0, 0, 0}});
        machine.Set("uArr", {{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}});
        machine.Set("uM2", {{2.0f, 1.0f, 0, 0}, {-1.0f, 3.0f, 0, 0}});
        machine.Set("uM3", {{2.0f, 0.5f, -1.0f, 0}, {1.0f, 3.0f, 0.25f, 0}, {-0.5f, 1.0f, 4.0f, 0}});
        machine.Set("uM4", {{3.0f, 0.5f, -1.0f, 0.25f},
                            {1.0f, 2.0f, 0.5f, -0.5f},
                            {0.5f, -1.0f, 4.0f, 1.0f},
                            {0.25f, 1.5f, -0.5f, 2.0f}});
        machine.Set("uU", {{double(0xF00DBEEFu), 0, 0, 0}});
        machine.Set("uI", {{-12345.0, 0, 0, 0}});
        QVERIFY2(machine.Run(), machine.Error().c_str());
        QVERIFY(!machine.Discarded());
        const SLanes result = machine.Output(0);
        for (int i = 0; i < expected.size(); ++i)
        {
            const double dGot = dTolerance > 0.0 ? result[i] : double(std::uint32_t(std::int64_t(result[i])));
            QVERIFY2(
                std::fabs(dGot - expected[i]) <= dTolerance,
                qPrintable(
                    QString("lane %1: got %2, expected %3").arg(i).arg(dGot, 0, 'g', 12).arg(expected[i], 0, 'g', 12)));
        }
    }

    std::unique_ptr<CFrontEndProcess> m_pProcess;
};

QTEST_GUILESS_MAIN(CCompilerSemanticsTest)
#include "tst_compiler_semantics.moc"
