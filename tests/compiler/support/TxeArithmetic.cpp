#include "TxeArithmetic.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace ZamCompilerTest
{

using namespace ZamCompiler;

namespace
{

constexpr double k_dTwoTo32 = 4294967296.0;

std::uint32_t Word(double dValue, ETxeType eType)
{
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(Wrapped(dValue, eType)));
}

double Number(std::uint32_t uiWord, ETxeType eType)
{
    return eType == Type_Int ? static_cast<double>(static_cast<std::int32_t>(uiWord)) : static_cast<double>(uiWord);
}

int HighestBit(std::uint32_t uiWord)
{
    return uiWord ? 31 - __builtin_clz(uiWord) : -1;
}

std::uint32_t Reversed(std::uint32_t uiWord)
{
    std::uint32_t uiResult = 0;
    for (int i = 0; i < 32; ++i)
        uiResult |= ((uiWord >> i) & 1u) << (31 - i);
    return uiResult;
}

std::uint32_t FieldMask(std::uint32_t uiBits)
{
    return uiBits >= 32 ? 0xFFFFFFFFu : (1u << uiBits) - 1u;
}

// A float to a 16-bit float: nearest even, overflow to infinity, small values to subnormals.
std::uint32_t ToHalf(float fValue)
{
    std::uint32_t uiBits = 0;
    std::memcpy(&uiBits, &fValue, sizeof uiBits);
    const std::uint32_t uiSign = (uiBits >> 16) & 0x8000u;
    const int iExponent = static_cast<int>((uiBits >> 23) & 0xFFu);
    std::uint32_t uiMantissa = uiBits & 0x7FFFFFu;
    if (iExponent == 0xFF)
        return uiSign | 0x7C00u | (uiMantissa ? 0x200u : 0u);
    const int iHalfExponent = iExponent - 127 + 15;
    if (iHalfExponent >= 31)
        return uiSign | 0x7C00u;
    int iShift = 13;
    std::uint32_t uiHalf = (static_cast<std::uint32_t>(std::max(iHalfExponent, 0)) << 10);
    if (iHalfExponent <= 0)
    {
        if (iHalfExponent < -10)
            return uiSign;
        uiMantissa |= 0x800000u;
        iShift = 14 - iHalfExponent;
        uiHalf = 0;
    }
    uiHalf |= uiMantissa >> iShift;
    const std::uint32_t uiRest = uiMantissa & ((1u << iShift) - 1u), uiHalfway = 1u << (iShift - 1);
    if (uiRest > uiHalfway || (uiRest == uiHalfway && (uiHalf & 1u)))
        ++uiHalf; // a carry into the exponent rounds up correctly, to infinity at the top
    return uiSign | uiHalf;
}

double FromHalf(std::uint32_t uiHalf)
{
    const double dSign = (uiHalf & 0x8000u) ? -1.0 : 1.0;
    const int iExponent = static_cast<int>((uiHalf >> 10) & 0x1Fu);
    const double dMantissa = static_cast<double>(uiHalf & 0x3FFu);
    if (iExponent == 0)
        return dSign * std::ldexp(dMantissa, -24);
    if (iExponent == 31)
        return dMantissa != 0.0 ? std::numeric_limits<double>::quiet_NaN() : dSign * std::numeric_limits<double>::infinity();
    return dSign * std::ldexp(dMantissa + 1024.0, iExponent - 25);
}

// f2i: truncated, NaN to 0, beyond the type's range to its end.
double FloatToInteger(double dValue, ETxeType eType)
{
    const double dFloat = AsFloat(dValue);
    if (std::isnan(dFloat))
        return 0.0;
    const double dLow = eType == Type_Uint ? 0.0 : -2147483648.0;
    const double dHigh = eType == Type_Uint ? 4294967295.0 : 2147483647.0;
    return std::clamp(std::trunc(dFloat), dLow, dHigh);
}

double Divide(double a, double b, ETxeType eType)
{
    if (b == 0.0)
        return 0.0; // undefined in GLSL; the interpreter picks 0
    return Wrapped(std::trunc(a / b), eType);
}

double ShiftRight(std::uint32_t uiWord, std::uint32_t uiCount, ETxeType eType)
{
    if (eType == Type_Uint)
        return Number(uiWord >> (uiCount & 31u), eType);
    return static_cast<double>(static_cast<std::int32_t>(uiWord) >> (uiCount & 31u));
}

double BitfieldExtract(std::uint32_t uiWord, std::uint32_t uiOffset, std::uint32_t uiBits, ETxeType eType)
{
    if (uiBits == 0)
        return 0.0;
    const std::uint32_t uiField = (uiWord >> (uiOffset & 31u)) & FieldMask(uiBits);
    if (eType == Type_Uint || uiBits >= 32 || !((uiField >> (uiBits - 1)) & 1u))
        return Number(uiField, eType);
    return Number(uiField | ~FieldMask(uiBits), eType);
}

double HighMultiply(double a, double b, ETxeType eType)
{
    if (eType == Type_Uint)
    {
        const std::uint64_t uiProduct = static_cast<std::uint64_t>(Word(a, eType)) * Word(b, eType);
        return static_cast<double>(static_cast<std::uint32_t>(uiProduct >> 32));
    }
    const std::int64_t iProduct = static_cast<std::int64_t>(Wrapped(a, eType)) * static_cast<std::int64_t>(Wrapped(b, eType));
    return Number(static_cast<std::uint32_t>(static_cast<std::uint64_t>(iProduct) >> 32), Type_Int);
}

double Bits(ETxeOp eOp, ETxeType eType, double a, double b, double c, double d)
{
    const std::uint32_t wa = Word(a, eType);
    switch (eOp)
    {
    case Op_Bcnt: return __builtin_popcount(wa);
    case Op_Brev: return Number(Reversed(wa), eType);
    case Op_Fbl: return wa ? HighestBit(wa & (~wa + 1u)) : -1;
    case Op_Fbh: return HighestBit(eType == Type_Int && (wa >> 31) ? ~wa : wa);
    case Op_Bfe: return BitfieldExtract(wa, Word(b, eType), Word(c, eType), eType);
    case Op_Bfi:
    {
        const std::uint32_t uiOffset = Word(c, eType) & 31u;
        const std::uint32_t uiMask = FieldMask(Word(d, eType)) << uiOffset;
        return Number((wa & ~uiMask) | ((Word(b, eType) << uiOffset) & uiMask), eType);
    }
    case Op_Mhi: return HighMultiply(a, b, eType);
    case Op_Fbit:
    {
        const float fValue = static_cast<float>(AsFloat(a));
        std::uint32_t uiWord = 0;
        std::memcpy(&uiWord, &fValue, sizeof uiWord);
        return Number(uiWord, eType);
    }
    case Op_Bitf:
    {
        float fValue = 0.0f;
        std::memcpy(&fValue, &wa, sizeof fValue);
        return fValue;
    }
    case Op_F2h: return Number(ToHalf(static_cast<float>(AsFloat(a))), eType);
    case Op_H2f: return FromHalf(wa & 0xFFFFu);
    default: return std::numeric_limits<double>::quiet_NaN();
    }
}

} // namespace

double AsFloat(double dValue)
{
    if (std::fabs(dValue) > static_cast<double>(std::numeric_limits<float>::max()))
        return std::isnan(dValue) ? dValue : std::copysign(std::numeric_limits<double>::infinity(), dValue);
    return static_cast<double>(static_cast<float>(dValue));
}

double Wrapped(double dValue, ETxeType eType)
{
    if (!std::isfinite(dValue))
        return 0.0;
    double dWrapped = std::fmod(std::trunc(dValue), k_dTwoTo32);
    if (dWrapped < 0.0)
        dWrapped += k_dTwoTo32;
    return Number(static_cast<std::uint32_t>(dWrapped), eType);
}

long long Integer(double dValue)
{
    if (!std::isfinite(dValue) || std::fabs(dValue) > 9.0e18)
        return 0;
    return std::llround(dValue);
}

bool IsFloatLaneOp(ETxeOp eOp, ETxeType eType)
{
    if (eOp >= Op_Bcnt || eOp == Op_Shl || eOp == Op_Shr || eOp == Op_F2i || eOp == Op_I2f)
        return false;
    return eType == Type_Float;
}

double FloatLane(ETxeOp eOp, double da, double db, double dc)
{
    const float a = static_cast<float>(AsFloat(da)), b = static_cast<float>(AsFloat(db)), c = static_cast<float>(AsFloat(dc));
    switch (eOp)
    {
    case Op_Add: return a + b;
    case Op_Mul: return a * b;
    case Op_Mad: return a * b + c;
    case Op_Min: return std::min(a, b);
    case Op_Max: return std::max(a, b);
    case Op_Flr: return std::floor(a);
    case Op_Frc: return a - std::floor(a);
    case Op_Rnd: return std::nearbyint(a);
    case Op_Slt: return a < b;
    case Op_Sge: return a >= b;
    case Op_Seq: return a == b;
    case Op_Sne: return a != b;
    // Without a type the logic instructions combine booleans.
    case Op_And: return a != 0.0f && b != 0.0f;
    case Op_Or: return a != 0.0f || b != 0.0f;
    case Op_Xor: return (a != 0.0f) != (b != 0.0f);
    case Op_Not: return a == 0.0f;
    case Op_Sgn: return static_cast<float>((a > 0.0f) - (a < 0.0f));
    case Op_Rcp: return 1.0f / a;
    case Op_Rsq: return 1.0f / std::sqrt(a);
    case Op_Sqrt: return std::sqrt(a);
    case Op_Exp2: return std::exp2(a);
    case Op_Log2: return std::log2(a);
    case Op_Sin: return std::sin(a);
    case Op_Cos: return std::cos(a);
    case Op_Atan: return std::atan2(a, b);
    case Op_Idiv: return std::trunc(a / b);
    default: return std::numeric_limits<double>::quiet_NaN();
    }
}

double IntegerLane(ETxeOp eOp, ETxeType eType, double a, double b, double c, double d)
{
    if (eType == Type_Float)
        eType = Type_Int; // conversions and bit instructions always have an integer side
    const std::uint32_t wa = Word(a, eType), wb = Word(b, eType);
    const double va = Wrapped(a, eType), vb = Wrapped(b, eType);
    switch (eOp)
    {
    case Op_Add: return Number(wa + wb, eType);
    case Op_Mul: return Number(wa * wb, eType);
    case Op_Mad: return Number(wa * wb + Word(c, eType), eType);
    case Op_Min: return std::min(va, vb);
    case Op_Max: return std::max(va, vb);
    case Op_Slt: return va < vb;
    case Op_Sge: return va >= vb;
    case Op_Seq: return va == vb;
    case Op_Sne: return va != vb;
    case Op_Sgn: return (va > 0.0) - (va < 0.0);
    case Op_And: return Number(wa & wb, eType);
    case Op_Or: return Number(wa | wb, eType);
    case Op_Xor: return Number(wa ^ wb, eType);
    case Op_Not: return Number(~wa, eType);
    case Op_Shl: return Number(wa << (wb & 31u), eType);
    case Op_Shr: return ShiftRight(wa, wb, eType);
    case Op_Idiv: return Divide(va, vb, eType);
    case Op_F2i: return FloatToInteger(a, eType);
    case Op_I2f: return AsFloat(va);
    default: return Bits(eOp, eType, a, b, c, d);
    }
}

} // namespace ZamCompilerTest
