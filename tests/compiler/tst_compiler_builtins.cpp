// Built-in functions compute what GLSL defines. Float results run in the tests' TXE
// interpreter. Integer and bit results need exact 32-bit lanes, so they run in a small
// evaluator of straight-line programs written from the instruction set's definition
// (docs/compiler.md); the expected values come from C++ doing the same arithmetic.

#include "TxeMachine.h"
#include "ZcCompilation.h"
#include "ZcFrontEnd.h"

#include <QtTest>

#include <cmath>
#include <cstring>
#include <map>
#include <memory>

using namespace ZamCompiler;
using namespace ZamCompilerTest;

namespace
{

using SExact = std::array<double, 4>;

// Runs a program without flow with every lane an exact number, typed instructions
// wrapping to 32 bits as the instruction set says.
class CExactEvaluator
{
public:
    explicit CExactEvaluator(const STxeProgram& program) : m_program(program) {}

    void Set(const std::string& name, const SExact& lanes)
    {
        for (const STxeBinding& binding : m_program.aBindings)
        {
            if (binding.name == name)
                m_mapRegisters[{binding.eFile, binding.iBase}] = lanes;
        }
    }

    bool Run(QString& error)
    {
        for (const STxeInstruction& instr : m_program.aInstructions)
        {
            if (TxeOpInfo(instr.eOp).eClass == Class_Flow || TxeOpInfo(instr.eOp).eClass == Class_Texture)
            {
                error = QString("cannot evaluate '%1'").arg(TxeOpInfo(instr.eOp).pMnemonic);
                return false;
            }
            Execute(instr);
        }
        return true;
    }

    SExact Output(int iSlot) { return m_mapRegisters[{File_Output, iSlot}]; }

private:
    // A number read as a 32-bit value of the type (floats are left alone).
    static double Wrap(double dValue, ETxeType eType)
    {
        if (eType == Type_Float)
            return dValue;
        const auto uiBits = static_cast<std::uint32_t>(static_cast<std::int64_t>(dValue));
        return eType == Type_Int ? static_cast<double>(static_cast<std::int32_t>(uiBits)) : uiBits;
    }

    static std::uint32_t Bits(double dValue) { return static_cast<std::uint32_t>(static_cast<std::int64_t>(dValue)); }

    SExact Fetch(const STxeOperand& op, ETxeType eType)
    {
        SExact base = {0, 0, 0, 0};
        if (op.eFile == File_Immediate)
        {
            for (int i = 0; i < 4; ++i)
                base[i] = m_program.aPool[static_cast<std::size_t>(op.iIndex) * 4 + i];
        }
        else if (op.eFile != File_None)
        {
            base = m_mapRegisters[{op.eFile, op.iIndex}];
        }
        SExact lanes;
        for (int i = 0; i < 4; ++i)
        {
            double dValue = base[op.auiSwizzle[std::min(i, std::max(0, op.uiCount - 1))] & 3];
            dValue = op.bAbs ? std::fabs(dValue) : dValue;
            lanes[i] = Wrap(op.bNegate ? -dValue : dValue, eType);
        }
        return lanes;
    }

    static double Float(ETxeOp eOp, double a, double b, double c)
    {
        const auto f = [](double d) { return static_cast<double>(static_cast<float>(d)); };
        switch (eOp)
        {
        case Op_Add: return f(a + b);
        case Op_Mul: return f(a * b);
        case Op_Mad: return f(a * b + c);
        case Op_Min: return std::min(a, b);
        case Op_Max: return std::max(a, b);
        case Op_Rnd: return std::nearbyint(a);
        case Op_Flr: return std::floor(a);
        case Op_Slt: return a < b;
        case Op_Sge: return a >= b;
        case Op_Seq: return a == b;
        case Op_Sne: return a != b;
        case Op_Sel: return a != 0.0 ? b : c;
        default: return a; // mov
        }
    }

    // Round to nearest even, overflow to infinity, small values to 16-bit subnormals.
    static std::uint32_t ToHalf(float fValue)
    {
        std::uint32_t uiBits = 0;
        std::memcpy(&uiBits, &fValue, sizeof(uiBits));
        const std::uint32_t uiSign = (uiBits >> 16) & 0x8000u;
        const float fMagnitude = std::fabs(fValue);
        if (std::isnan(fValue))
            return uiSign | 0x7E00u;
        if (fMagnitude >= 65520.0f)
            return uiSign | 0x7C00u;
        // Scale so that one unit in the last place of the result is 1, then round to even.
        const int iExponent = fMagnitude < 6.103515625e-05f ? -14 : std::ilogb(fMagnitude);
        const double dUnits = std::nearbyint(std::ldexp(static_cast<double>(fMagnitude), 10 - iExponent));
        if (iExponent == -14 && dUnits < 1024.0)
            return uiSign | static_cast<std::uint32_t>(dUnits);
        const std::uint32_t uiUnits = static_cast<std::uint32_t>(dUnits);
        return uiSign | ((static_cast<std::uint32_t>(iExponent + 15) << 10) + (uiUnits - 1024u));
    }

    static double FromHalf(std::uint32_t uiHalf)
    {
        const double dSign = (uiHalf & 0x8000u) ? -1.0 : 1.0;
        const int iExponent = static_cast<int>((uiHalf >> 10) & 31u);
        const double dMantissa = uiHalf & 1023u;
        if (iExponent == 31)
            return dMantissa == 0.0 ? dSign * INFINITY : std::nan("");
        if (iExponent == 0)
            return dSign * std::ldexp(dMantissa, -24);
        return dSign * std::ldexp(1024.0 + dMantissa, iExponent - 25);
    }

    static double FindMsb(std::uint32_t uiBits, bool bSigned)
    {
        const std::uint32_t uiMagnitude = bSigned && static_cast<std::int32_t>(uiBits) < 0 ? ~uiBits : uiBits;
        return uiMagnitude == 0 ? -1.0 : 31 - __builtin_clz(uiMagnitude);
    }

    static double Extract(std::uint32_t uiBits, int iOffset, int iCount, bool bSigned)
    {
        if (iCount == 0)
            return 0.0;
        const std::uint32_t uiMask = iCount == 32 ? ~0u : (1u << iCount) - 1u;
        const std::uint32_t uiField = (uiBits >> iOffset) & uiMask;
        if (bSigned && ((uiField >> (iCount - 1)) & 1u))
            return static_cast<std::int32_t>(uiField | ~uiMask);
        return uiField;
    }

    // Results that are not wrapped to the instruction's type: booleans, positions, floats.
    static double Integer(ETxeOp eOp, bool bSigned, double a, double b, double c, double d)
    {
        const std::uint32_t ua = Bits(a);
        const std::uint32_t ub = Bits(b);
        switch (eOp)
        {
        case Op_Add: return a + b;
        case Op_Mul: return static_cast<std::uint32_t>(ua * ub);
        case Op_Mad: return static_cast<std::uint32_t>(ua * ub + Bits(c));
        case Op_Min: return std::min(a, b);
        case Op_Max: return std::max(a, b);
        case Op_Sgn: return (a > 0.0) - (a < 0.0);
        case Op_And: return ua & ub;
        case Op_Or: return ua | ub;
        case Op_Xor: return ua ^ ub;
        case Op_Not: return ~ua;
        case Op_Shl: return static_cast<std::uint32_t>(ua << (ub & 31));
        case Op_Shr: return bSigned ? static_cast<double>(static_cast<std::int32_t>(ua) >> (ub & 31)) : ua >> (ub & 31);
        case Op_Idiv: return b == 0.0 ? 0.0 : std::trunc(a / b);
        case Op_F2i: return std::trunc(a);
        case Op_Brev:
        {
            std::uint32_t uiReversed = 0;
            for (int i = 0; i < 32; ++i)
                uiReversed |= ((ua >> i) & 1u) << (31 - i);
            return uiReversed;
        }
        case Op_Bfe: return Extract(ua, static_cast<int>(b), static_cast<int>(c), bSigned);
        case Op_Bfi:
        {
            const int iCount = static_cast<int>(d);
            const std::uint32_t uiMask = (iCount == 32 ? ~0u : (1u << iCount) - 1u) << static_cast<int>(c);
            return (ua & ~uiMask) | ((ub << static_cast<int>(c)) & uiMask);
        }
        case Op_Mhi:
            if (bSigned)
                return static_cast<double>((static_cast<std::int64_t>(a) * static_cast<std::int64_t>(b)) >> 32);
            return static_cast<double>((static_cast<std::uint64_t>(ua) * ub) >> 32);
        case Op_F2h: return ToHalf(static_cast<float>(a));
        case Op_Fbit:
        {
            const float fValue = static_cast<float>(a);
            std::uint32_t uiBits = 0;
            std::memcpy(&uiBits, &fValue, sizeof(uiBits));
            return uiBits;
        }
        default: return a; // mov
        }
    }

    static double Unwrapped(ETxeOp eOp, bool bSigned, double a, double b)
    {
        switch (eOp)
        {
        case Op_Slt: return a < b;
        case Op_Sge: return a >= b;
        case Op_Seq: return a == b;
        case Op_Sne: return a != b;
        case Op_I2f: return static_cast<float>(a);
        case Op_Bcnt: return __builtin_popcount(Bits(a));
        case Op_Fbl: return Bits(a) == 0 ? -1.0 : __builtin_ctz(Bits(a));
        case Op_Fbh: return FindMsb(Bits(a), bSigned);
        case Op_H2f: return FromHalf(Bits(a) & 0xFFFFu);
        case Op_Bitf:
        {
            const std::uint32_t uiBits = Bits(a);
            float fValue = 0.0f;
            std::memcpy(&fValue, &uiBits, sizeof(fValue));
            return fValue;
        }
        default: return std::nan("");
        }
    }

    void Execute(const STxeInstruction& instr)
    {
        // f2i, fbit and f2h read floats; every other typed instruction reads its own type.
        const bool bReadsFloat = instr.eOp == Op_F2i || instr.eOp == Op_Fbit || instr.eOp == Op_F2h;
        const ETxeType eRead = bReadsFloat ? Type_Float : instr.eType;
        const SExact a = Fetch(instr.aSrc[0], eRead);
        const SExact b = Fetch(instr.aSrc[1], eRead);
        const SExact c = Fetch(instr.aSrc[2], eRead);
        const SExact d = Fetch(instr.aSrc[3], eRead);
        const int iDot = instr.eOp == Op_Dp2 ? 2 : instr.eOp == Op_Dp3 ? 3 : instr.eOp == Op_Dp4 ? 4 : 0;
        const bool bSigned = instr.eType == Type_Int;
        SExact r = {0, 0, 0, 0};
        for (int i = 0; i < 4; ++i)
        {
            if (iDot)
            {
                for (int k = 0; k < iDot; ++k)
                    r[i] += a[k] * b[k];
            }
            else if (instr.eType == Type_Float)
            {
                r[i] = Float(instr.eOp, a[i], b[i], c[i]);
            }
            else
            {
                const double dUnwrapped = Unwrapped(instr.eOp, bSigned, a[i], b[i]);
                r[i] = std::isnan(dUnwrapped) ? Wrap(Integer(instr.eOp, bSigned, a[i], b[i], c[i], d[i]), instr.eType)
                                              : dUnwrapped;
            }
        }
        SExact& destination = m_mapRegisters[{instr.dst.eFile, instr.dst.iIndex}];
        for (int i = 0; i < instr.dst.uiCount; ++i)
            destination[instr.dst.auiSwizzle[i] & 3] = r[i];
    }

    const STxeProgram& m_program;
    std::map<std::pair<int, int>, SExact> m_mapRegisters;
};

const char* const k_pHeader = "#version 310 es\n"
                              "precision highp float;\n"
                              "precision highp int;\n";

struct SCompiled
{
    SCompilation compilation;
    bool bOk = false;
};

SCompiled Compile(const QString& source)
{
    SCompiled compiled;
    compiled.bOk = CompileSource(source.toStdString(), Stage_Fragment, CoreModel(Core_ZC1), DefaultSourceLimits(),
                                 compiled.compilation);
    for (const SDiagnostic& diagnostic : compiled.compilation.aDiagnostics)
        qWarning("%s", FormatDiagnostic(diagnostic).c_str());
    return compiled;
}

std::uint32_t FloatBits(float fValue)
{
    std::uint32_t uiBits = 0;
    std::memcpy(&uiBits, &fValue, sizeof(uiBits));
    return uiBits;
}

} // namespace

class CCompilerBuiltinsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_pProcess = std::make_unique<CFrontEndProcess>(); }
    void cleanupTestCase() { m_pProcess.reset(); }
    void matrixFunctions_data();
    void matrixFunctions();
    void floatDecomposition_data();
    void floatDecomposition();
    void integerFunctions_data();
    void integerFunctions();
    void everyBuiltinCompilesOrIsNamed_data();
    void everyBuiltinCompilesOrIsNamed();

private:
    void CheckFloats(double dTolerance);
    std::unique_ptr<CFrontEndProcess> m_pProcess;
};

// The row's body runs with uA = (1.5, -2, 0.25, 3) and the matrices below.
void CCompilerBuiltinsTest::CheckFloats(double dTolerance)
{
    QFETCH(QString, body);
    QFETCH(QVector<double>, expected);
    const SCompiled compiled = Compile(QString(k_pHeader) + "uniform vec4 uA;\nuniform mat2 uM2;\nuniform mat3 uM3;\n"
                                                           "uniform mat4 uM4;\nout vec4 o;\nvoid main()\n{\n" + body + "\n}\n");
    QVERIFY(compiled.bOk);
    CTxeMachine machine(compiled.compilation.program);
    machine.Set("uA", {{1.5f, -2.0f, 0.25f, 3.0f}});
    machine.Set("uM2", {{2.0f, 1.0f, 0, 0}, {-1.0f, 3.0f, 0, 0}});
    machine.Set("uM3", {{2.0f, 0.5f, -1.0f, 0}, {1.0f, 3.0f, 0.25f, 0}, {-0.5f, 1.0f, 4.0f, 0}});
    machine.Set("uM4", {{3.0f, 0.5f, -1.0f, 0.25f}, {1.0f, 2.0f, 0.5f, -0.5f}, {0.5f, -1.0f, 4.0f, 1.0f},
                        {0.25f, 1.5f, -0.5f, 2.0f}});
    QVERIFY2(machine.Run(), machine.Error().c_str());
    const SLanes result = machine.Output(0);
    for (int i = 0; i < 4; ++i)
        QVERIFY2(std::fabs(result[i] - expected[i]) < dTolerance,
                 qPrintable(QString("lane %1: got %2, expected %3").arg(i).arg(result[i]).arg(expected[i])));
}

// uM2, uM3 and uM4 are invertible matrices without structure (no zero, no symmetry).
void CCompilerBuiltinsTest::matrixFunctions_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<QVector<double>>("expected");
    using V = QVector<double>;
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
}

void CCompilerBuiltinsTest::matrixFunctions()
{
    CheckFloats(1e-4);
}

void CCompilerBuiltinsTest::floatDecomposition_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<QVector<double>>("expected");
    using V = QVector<double>;
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
}

void CCompilerBuiltinsTest::floatDecomposition()
{
    CheckFloats(1e-6);
}

// uU = 0xF00DBEEF, uI = -12345.
void CCompilerBuiltinsTest::integerFunctions_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<QVector<double>>("expected");
    using V = QVector<double>;
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
}

void CCompilerBuiltinsTest::integerFunctions()
{
    QFETCH(QString, body);
    QFETCH(QVector<double>, expected);
    const SCompiled compiled =
        Compile(QString(k_pHeader) + "uniform uint uU;\nuniform int uI;\nout uvec4 o;\nvoid main()\n{\n" + body + "\n}\n");
    QVERIFY(compiled.bOk);
    CExactEvaluator evaluator(compiled.compilation.program);
    evaluator.Set("uU", {double(0xF00DBEEFu), 0, 0, 0});
    evaluator.Set("uI", {-12345.0, 0, 0, 0});
    QString error;
    QVERIFY2(evaluator.Run(error), qPrintable(error));
    const SExact result = evaluator.Output(0);
    for (int i = 0; i < 4; ++i)
    {
        const double dGot = static_cast<std::uint32_t>(static_cast<std::int64_t>(result[i]));
        QVERIFY2(dGot == expected[i], qPrintable(QString("lane %1: got %2, expected %3").arg(i).arg(dGot, 0, 'f', 0).arg(expected[i], 0, 'f', 0)));
    }
}

namespace
{

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

// Every built-in function of GLSL ES 1.00 and 3.00 and the integer functions of 3.10, each
// called once; they all compile.
const SBuiltinUse s_aCompiled[] = {
    {"radians", "100", Both, "s.x += radians(f);"},
    {"degrees", "100", Both, "s.x += degrees(f);"},
    {"sin", "100", Both, "s.x += sin(f);"},
    {"cos", "100", Both, "s.xy += cos(v2);"},
    {"tan", "100", Both, "s.x += tan(f);"},
    {"asin", "100", Both, "s.x += asin(f);"},
    {"acos", "100", Both, "s.x += acos(f);"},
    {"atan", "100", Both, "s.x += atan(f, v2.x) + atan(f);"},
    {"pow", "100", Both, "s += pow(v4, v4);"},
    {"exp", "100", Both, "s.x += exp(f);"},
    {"log", "100", Both, "s.x += log(f);"},
    {"exp2", "100", Both, "s.x += exp2(f);"},
    {"log2", "100", Both, "s.x += log2(f);"},
    {"sqrt", "100", Both, "s.x += sqrt(f);"},
    {"inversesqrt", "100", Both, "s.x += inversesqrt(f);"},
    {"abs", "100", Both, "s.xyz += abs(v3);"},
    {"sign", "100", Both, "s.x += sign(f);"},
    {"floor", "100", Both, "s.x += floor(f);"},
    {"ceil", "100", Both, "s.x += ceil(f);"},
    {"fract", "100", Both, "s.x += fract(f);"},
    {"mod", "100", Both, "s.xy += mod(v2, f) + mod(v2, v2);"},
    {"min", "100", Both, "s.xy += min(v2, f);"},
    {"max", "100", Both, "s.xy += max(v2, v2);"},
    {"clamp", "100", Both, "s.xy += clamp(v2, 0.0, 1.0);"},
    {"mix", "100", Both, "s.xyz += mix(v3, v3 * 2.0, f);"},
    {"step", "100", Both, "s.xy += step(f, v2);"},
    {"smoothstep", "100", Both, "s.xy += smoothstep(0.0, 1.0, v2);"},
    {"length", "100", Both, "s.x += length(v3);"},
    {"distance", "100", Both, "s.x += distance(v3, v3.zyx);"},
    {"dot", "100", Both, "s.x += dot(v4, v4);"},
    {"cross", "100", Both, "s.xyz += cross(v3, v3.yzx);"},
    {"normalize", "100", Both, "s.xyz += normalize(v3);"},
    {"faceforward", "100", Both, "s.xyz += faceforward(v3, v3.yzx, v3.zxy);"},
    {"reflect", "100", Both, "s.xyz += reflect(v3, v3.yzx);"},
    {"refract", "100", Both, "s.xyz += refract(v3, v3.yzx, f);"},
    {"matrixCompMult", "100", Both, "s.xy += matrixCompMult(m2, m2)[1];"},
    {"lessThan", "100", Both, "s.xy += vec2(lessThan(v2, v2.yx));"},
    {"lessThanEqual", "100", Both, "s.xy += vec2(lessThanEqual(v2, v2.yx));"},
    {"greaterThan", "100", Both, "s.xy += vec2(greaterThan(v2, v2.yx));"},
    {"greaterThanEqual", "100", Both, "s.xy += vec2(greaterThanEqual(v2, v2.yx));"},
    {"equal", "100", Both, "s.xy += vec2(equal(v2, v2.yx));"},
    {"notEqual", "100", Both, "s.xy += vec2(notEqual(v2, v2.yx));"},
    {"any", "100", Both, "s.x += any(lessThan(v2, v2.yx)) ? 1.0 : 0.0;"},
    {"all", "100", Both, "s.x += all(lessThan(v2, v2.yx)) ? 1.0 : 0.0;"},
    {"not", "100", Both, "s.xy += vec2(not(lessThan(v2, v2.yx)));"},
    {"texture2D", "100", Both, "s += texture2D(t2, v2);"},
    {"texture2D", "100", Fragment, "s += texture2D(t2, v2, f);"},
    {"texture2DProj", "100", Both, "s += texture2DProj(t2, v3) + texture2DProj(t2, v4);"},
    {"texture2DLod", "100", Vertex, "s += texture2DLod(t2, v2, f);"},
    {"texture2DProjLod", "100", Vertex, "s += texture2DProjLod(t2, v3, f);"},
    {"textureCube", "100", Both, "s += textureCube(tc, v3);"},
    {"textureCubeLod", "100", Vertex, "s += textureCubeLod(tc, v3, f);"},
    {"dFdx", "100", Fragment, "s.x += dFdx(f) + dFdy(f) + fwidth(f);"},
    {"sinh", "300 es", Both, "s.x += sinh(f) + cosh(f) + tanh(f);"},
    {"asinh", "300 es", Both, "s.x += asinh(f) + acosh(f) + atanh(f);"},
    {"trunc", "300 es", Both, "s.x += trunc(f) + round(f) + roundEven(f);"},
    {"modf", "300 es", Both, "float w; s.x += modf(f, w) + w;"},
    {"min", "300 es", Both, "s.x += float(min(i, 3) + max(i, 1) + clamp(i, 0, 2)) + float(min(u, 3u) + clamp(u, 1u, 2u));"},
    {"mix", "300 es", Both, "s.xy += mix(v2, v2.yx, bvec2(true, false));"},
    {"isnan", "300 es", Both, "s.x += isnan(f) || isinf(f) ? 1.0 : 0.0;"},
    {"floatBitsToInt", "300 es", Both, "s.x += float(floatBitsToInt(f)) + float(floatBitsToUint(f));"},
    {"intBitsToFloat", "300 es", Both, "s.x += intBitsToFloat(i) + uintBitsToFloat(u);"},
    {"packSnorm2x16", "300 es", Both, "s.xy += unpackSnorm2x16(packSnorm2x16(v2));"},
    {"packUnorm2x16", "300 es", Both, "s.xy += unpackUnorm2x16(packUnorm2x16(v2));"},
    {"packHalf2x16", "300 es", Both, "s.xy += unpackHalf2x16(packHalf2x16(v2));"},
    {"outerProduct", "300 es", Both, "s.xyz += outerProduct(v3, v2)[1];"},
    {"transpose", "300 es", Both, "s.xyz += transpose(mat3x2(m3))[1];"},
    {"determinant", "300 es", Both, "s.x += determinant(m2) + determinant(m3) + determinant(m4);"},
    {"inverse", "300 es", Both, "s += inverse(m4)[1] + vec4(inverse(m3)[2], inverse(m2)[0].x);"},
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
    {"frexp", "310 es", Both, "int e; s.x += frexp(f, e) + ldexp(f, e);"},
    {"packUnorm4x8", "310 es", Both, "s += unpackUnorm4x8(packUnorm4x8(v4)) + unpackSnorm4x8(packSnorm4x8(v4));"},
    {"uaddCarry", "310 es", Both, "uint c; uint b; s.x += float(uaddCarry(u, u, c) + usubBorrow(u, 1u, b) + c + b);"},
    {"umulExtended", "310 es", Both, "uint h; uint l; int ih; int il; umulExtended(u, u, h, l); imulExtended(i, i, ih, il); s.x += float(h + l) + float(ih + il);"},
    {"bitfieldExtract", "310 es", Both, "s.x += float(bitfieldExtract(i, 1, 3)) + float(bitfieldInsert(u, u, 2, 5));"},
    {"bitfieldReverse", "310 es", Both, "s.x += float(bitfieldReverse(u)) + float(bitCount(i) + findLSB(u) + findMSB(i));"},
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

QString BuiltinShader(const SBuiltinUse& use, bool bVertex, int& iLine)
{
    const QString version = use.pVersion;
    QStringList lines = {"#version " + version};
    if (version == "100" && !bVertex)
        lines << "#extension GL_OES_standard_derivatives : enable";
    lines << "precision highp float;" << "precision highp int;"
          << "uniform float f;" << "uniform vec2 v2;" << "uniform vec3 v3;" << "uniform vec4 v4;"
          << "uniform mat2 m2;" << "uniform mat3 m3;" << "uniform mat4 m4;" << "uniform int i;"
          << "uniform sampler2D t2;" << "uniform samplerCube tc;";
    if (version != "100")
    {
        lines << "precision highp sampler3D;" << "precision highp sampler2DArray;" << "precision highp sampler2DShadow;"
              << "precision highp isampler2D;" << "precision highp usampler2D;"
              << "uniform uint u;" << "uniform sampler3D t3;" << "uniform sampler2DArray ta;" << "uniform sampler2DShadow ts;"
              << "uniform isampler2D ti;" << "uniform usampler2D tu;";
        lines << (bVertex ? "out vec4 vOut;" : "out vec4 o;");
    }
    if (version == "310 es" || version == "320 es")
    {
        lines << "layout(binding = 0) uniform atomic_uint ac;" << "layout(std430, binding = 0) buffer Counts { uint n; } counts;"
              << "layout(rgba8, binding = 1) readonly uniform highp image2D img;";
    }
    if (version == "320 es" && !bVertex)
        lines << "in vec2 vIn;";
    lines << "void main()" << "{" << "    vec4 s = vec4(0.0);";
    iLine = lines.size() + 1;
    lines << QString("    ") + use.pStatement;
    if (version == "100")
        lines << (bVertex ? "    gl_Position = s;" : "    gl_FragColor = s;");
    else
        lines << (bVertex ? "    gl_Position = s; vOut = s;" : "    o = s;");
    lines << "}";
    return lines.join('\n') + '\n';
}

} // namespace

void CCompilerBuiltinsTest::everyBuiltinCompilesOrIsNamed_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<bool>("bVertex");
    QTest::addColumn<QString>("refusal"); // empty: it compiles
    auto add = [](const SBuiltinUse& use, bool bRefused) {
        for (const bool bVertex : {true, false})
        {
            if (!(use.iStages & (bVertex ? Vertex : Fragment)))
                continue;
            int iLine = 0;
            const QString source = BuiltinShader(use, bVertex, iLine);
            const QString refusal = bRefused ? QString("ERROR: 0:%1: '%2' : this built-in function is not supported by "
                                                       "the TXE code generator").arg(iLine).arg(use.pName)
                                             : QString();
            QTest::addRow("%s %s %s", use.pName, use.pVersion, bVertex ? "vertex" : "fragment")
                << source << bVertex << refusal;
        }
    };
    for (const SBuiltinUse& use : s_aCompiled)
        add(use, false);
    for (const SBuiltinUse& use : s_aRefused)
        add(use, true);
}

void CCompilerBuiltinsTest::everyBuiltinCompilesOrIsNamed()
{
    QFETCH(QString, source);
    QFETCH(bool, bVertex);
    QFETCH(QString, refusal);
    SCompilation compilation;
    const bool bCompiled = CompileSource(source.toStdString(), bVertex ? Stage_Vertex : Stage_Fragment,
                                         CoreModel(Core_ZC1), DefaultSourceLimits(), compilation);
    QStringList errors;
    for (const SDiagnostic& diagnostic : compilation.aDiagnostics)
    {
        if (diagnostic.eSeverity == Severity_Error)
            errors << QString::fromStdString(FormatDiagnostic(diagnostic));
    }
    if (refusal.isEmpty())
    {
        QVERIFY2(bCompiled, qPrintable(errors.join('\n')));
        return;
    }
    QVERIFY(!bCompiled);
    QCOMPARE(errors, QStringList{refusal});
}

QTEST_GUILESS_MAIN(CCompilerBuiltinsTest)
#include "tst_compiler_builtins.moc"
