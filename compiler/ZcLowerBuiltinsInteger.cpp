// Integer and bit functions, and the functions that take floats apart: their bits,
// exponents, whole and fractional parts, and the packed normalized formats.

#include "ZcLowerBuiltins.h"

#include "ZcLowerTree.h"

namespace ZamCompiler
{

using namespace glslang;

namespace
{

bool Unary(const SBuiltinCall& call, ETxeOp eOp)
{
    call.Push(call.Compute(eOp, {Fit(call.Raw(0), call.Lanes())}, call.Lanes()));
    return true;
}

bool WriteArgument(const SBuiltinCall& call, std::size_t i, const STxeOperand& op)
{
    SValue value;
    value.aSlots.push_back(op);
    return call.WriteArgument(i, value);
}

bool BitCount(const SBuiltinCall& call) { return Unary(call, Op_Bcnt); }
bool BitfieldReverse(const SBuiltinCall& call) { return Unary(call, Op_Brev); }
bool FindLsb(const SBuiltinCall& call) { return Unary(call, Op_Fbl); }
bool FindMsb(const SBuiltinCall& call) { return Unary(call, Op_Fbh); }

bool BitfieldExtract(const SBuiltinCall& call)
{
    call.Push(call.Compute(Op_Bfe, {call.Arg(0), call.Arg(1), call.Arg(2)}, call.Lanes()));
    return true;
}

bool BitfieldInsert(const SBuiltinCall& call)
{
    call.Push(call.Compute(Op_Bfi, {call.Arg(0), call.Arg(1), call.Arg(2), call.Arg(3)}, call.Lanes()));
    return true;
}

// The sum wraps; it is below an operand exactly when it carried.
bool AddCarry(const SBuiltinCall& call)
{
    const STxeOperand sum = call.Compute(Op_Add, {call.Arg(0), call.Arg(1)}, call.Lanes());
    const STxeOperand carry = call.Compute(Op_Slt, {sum, call.Arg(0)}, call.Lanes());
    call.Push(sum);
    return WriteArgument(call, 2, carry);
}

bool SubBorrow(const SBuiltinCall& call)
{
    const STxeOperand difference = call.Compute(Op_Add, {call.Arg(0), Negated(call.Arg(1))}, call.Lanes());
    const STxeOperand borrow = call.Compute(Op_Slt, {call.Arg(0), call.Arg(1)}, call.Lanes());
    call.Push(difference);
    return WriteArgument(call, 2, borrow);
}

// umulExtended and imulExtended: the high half to the third argument, the low to the fourth.
bool MulExtended(const SBuiltinCall& call)
{
    const int iLanes = LanesOf(call.aNodes[0]->getType());
    const STxeOperand high = call.Compute(Op_Mhi, {call.Raw(0), Fit(call.Raw(1), iLanes)}, iLanes);
    const STxeOperand low = call.Compute(Op_Mul, {call.Raw(0), Fit(call.Raw(1), iLanes)}, iLanes);
    return WriteArgument(call, 2, high) && WriteArgument(call, 3, low);
}

bool FloatBitsToInt(const SBuiltinCall& call)
{
    const CTypeScope scope(call.builder, TxeTypeOf(call.type.getBasicType()));
    return Unary(call, Op_Fbit);
}

bool IntBitsToFloat(const SBuiltinCall& call) { return Unary(call, Op_Bitf); }

// ldexp(x, e) = x * 2^e
bool Ldexp(const SBuiltinCall& call)
{
    const int iLanes = call.Lanes();
    STxeOperand exponent;
    {
        const CTypeScope scope(call.builder, Type_Int);
        exponent = call.Compute(Op_I2f, {call.Arg(1)}, iLanes);
    }
    const STxeOperand power = call.Compute(Op_Exp2, {exponent}, iLanes);
    call.Push(call.Compute(Op_Mul, {call.Arg(0), power}, iLanes));
    return true;
}

// e = floor(log2 |x|) + 1 and m = x / 2^e, then m is brought into [0.5, 1) when the
// logarithm rounded across a power of two; zero gives (0, 0).
bool Frexp(const SBuiltinCall& call)
{
    const int iLanes = call.Lanes();
    CProgramBuilder& builder = call.builder;
    const STxeOperand x = call.Arg(0);
    const STxeOperand logarithm = call.Compute(Op_Log2, {Absolute(x)}, iLanes);
    const STxeOperand whole = call.Compute(Op_Flr, {logarithm}, iLanes);
    STxeOperand exponent = call.Compute(Op_Add, {whole, builder.Immediate(1.0, iLanes)}, iLanes);
    const STxeOperand scale = call.Compute(Op_Exp2, {Negated(exponent)}, iLanes);
    STxeOperand mantissa = call.Compute(Op_Mul, {x, scale}, iLanes);
    const STxeOperand tooBig = call.Compute(Op_Sge, {Absolute(mantissa), builder.Immediate(1.0, iLanes)}, iLanes);
    const STxeOperand tooSmall = call.Compute(Op_Slt, {Absolute(mantissa), builder.Immediate(0.5, iLanes)}, iLanes);
    // Halve when too big, double when too small: factor 2^(small - big).
    const STxeOperand shift = call.Compute(Op_Add, {tooSmall, Negated(tooBig)}, iLanes);
    mantissa = call.Compute(Op_Mul, {mantissa, call.Compute(Op_Exp2, {shift}, iLanes)}, iLanes);
    exponent = call.Compute(Op_Add, {exponent, Negated(shift)}, iLanes);
    const STxeOperand nonZero = call.Compute(Op_Sne, {x, builder.Immediate(0.0, iLanes)}, iLanes);
    const STxeOperand zero = builder.Immediate(0.0, iLanes);
    mantissa = call.Compute(Op_Sel, {nonZero, mantissa, zero}, iLanes);
    exponent = call.Compute(Op_Sel, {nonZero, exponent, zero}, iLanes);
    STxeOperand integer;
    {
        const CTypeScope scope(builder, Type_Int);
        integer = call.Compute(Op_F2i, {exponent}, iLanes);
    }
    call.Push(mantissa);
    return WriteArgument(call, 1, integer);
}

// modf(x, i): i = trunc(x), the result x - i.
bool Modf(const SBuiltinCall& call)
{
    const int iLanes = call.Lanes();
    const STxeOperand x = call.Arg(0);
    const STxeOperand whole = call.Compute(Op_Flr, {Absolute(x)}, iLanes);
    const STxeOperand sign = call.Compute(Op_Sgn, {x}, iLanes);
    const STxeOperand integer = call.Compute(Op_Mul, {whole, sign}, iLanes);
    call.Push(call.Compute(Op_Add, {x, Negated(integer)}, iLanes));
    return WriteArgument(call, 1, integer);
}

struct SNormFormat
{
    int iBits;      // per component
    double dScale;  // 65535, 32767, 255 or 127
    bool bSigned;
};

// round(clamp(v, lo, 1) * scale) per component, then the components side by side.
bool Pack(const SBuiltinCall& call, const SNormFormat& format)
{
    CProgramBuilder& builder = call.builder;
    const STxeOperand v = call.Raw(0);
    const int iLanes = v.uiCount;
    const CTypeScope floats(builder, Type_Float);
    const STxeOperand low = call.Compute(Op_Max, {v, builder.Immediate(format.bSigned ? -1.0 : 0.0, iLanes)}, iLanes);
    const STxeOperand clamped = call.Compute(Op_Min, {low, builder.Immediate(1.0, iLanes)}, iLanes);
    const STxeOperand scaled = call.Compute(Op_Mul, {clamped, builder.Immediate(format.dScale, iLanes)}, iLanes);
    const STxeOperand rounded = call.Compute(Op_Rnd, {scaled}, iLanes);
    builder.SetType(format.bSigned ? Type_Int : Type_Uint);
    const STxeOperand integers = call.Compute(Op_F2i, {rounded}, iLanes);
    builder.SetType(Type_Uint);
    STxeOperand packed = Lane(integers, 0);
    for (int i = 1; i < iLanes; ++i)
    {
        packed = call.Compute(Op_Bfi, {packed, Lane(integers, i), builder.Immediate(static_cast<double>(i * format.iBits)),
                                       builder.Immediate(static_cast<double>(format.iBits))},
                              1);
    }
    call.Push(packed);
    return true;
}

// Each component's bits extracted at once (signed ones sign-extended), then scaled back.
bool Unpack(const SBuiltinCall& call, const SNormFormat& format)
{
    CProgramBuilder& builder = call.builder;
    const CTypeScope scope(builder, builder.Type());
    const int iLanes = call.Lanes();
    const double adOffsets[4] = {0.0, static_cast<double>(format.iBits), 2.0 * format.iBits, 3.0 * format.iBits};
    builder.SetType(format.bSigned ? Type_Int : Type_Uint);
    const STxeOperand fields = call.Compute(
        Op_Bfe, {Broadcast(call.Raw(0), iLanes), builder.Immediate(adOffsets, iLanes),
                 builder.Immediate(static_cast<double>(format.iBits), iLanes)},
        iLanes);
    const STxeOperand numbers = call.Compute(Op_I2f, {fields}, iLanes);
    builder.SetType(Type_Float);
    STxeOperand result = call.Compute(Op_Mul, {numbers, builder.Immediate(1.0 / format.dScale, iLanes)}, iLanes);
    if (format.bSigned)
        result = call.Compute(Op_Max, {result, builder.Immediate(-1.0, iLanes)}, iLanes);
    call.Push(result);
    return true;
}

// Two halves side by side in one uint, the first in the low bits.
bool PackHalf2x16(const SBuiltinCall& call)
{
    const CTypeScope scope(call.builder, Type_Uint);
    const STxeOperand halves = call.Compute(Op_F2h, {call.Raw(0)}, 2);
    call.Push(call.Compute(Op_Bfi, {Lane(halves, 0), Lane(halves, 1), call.builder.Immediate(16.0),
                                    call.builder.Immediate(16.0)},
                           1));
    return true;
}

bool UnpackHalf2x16(const SBuiltinCall& call)
{
    const CTypeScope scope(call.builder, Type_Uint);
    const double adOffsets[4] = {0.0, 16.0, 0.0, 0.0};
    const STxeOperand fields = call.Compute(
        Op_Bfe, {Broadcast(call.Raw(0), 2), call.builder.Immediate(adOffsets, 2), call.builder.Immediate(16.0, 2)}, 2);
    call.Push(call.Compute(Op_H2f, {fields}, 2));
    return true;
}

bool PackUnorm2x16(const SBuiltinCall& call) { return Pack(call, {16, 65535.0, false}); }
bool PackSnorm2x16(const SBuiltinCall& call) { return Pack(call, {16, 32767.0, true}); }
bool PackUnorm4x8(const SBuiltinCall& call) { return Pack(call, {8, 255.0, false}); }
bool PackSnorm4x8(const SBuiltinCall& call) { return Pack(call, {8, 127.0, true}); }
bool UnpackUnorm2x16(const SBuiltinCall& call) { return Unpack(call, {16, 65535.0, false}); }
bool UnpackSnorm2x16(const SBuiltinCall& call) { return Unpack(call, {16, 32767.0, true}); }
bool UnpackUnorm4x8(const SBuiltinCall& call) { return Unpack(call, {8, 255.0, false}); }
bool UnpackSnorm4x8(const SBuiltinCall& call) { return Unpack(call, {8, 127.0, true}); }

} // namespace

void AddIntegerBuiltins(std::vector<SBuiltinEntry>& aEntries)
{
    const SBuiltinEntry aInteger[] = {
        {EOpBitCount, "bitCount", BitCount},
        {EOpBitFieldReverse, "bitfieldReverse", BitfieldReverse},
        {EOpFindLSB, "findLSB", FindLsb},
        {EOpFindMSB, "findMSB", FindMsb},
        {EOpBitfieldExtract, "bitfieldExtract", BitfieldExtract},
        {EOpBitfieldInsert, "bitfieldInsert", BitfieldInsert},
        {EOpAddCarry, "uaddCarry", AddCarry},
        {EOpSubBorrow, "usubBorrow", SubBorrow},
        {EOpUMulExtended, "umulExtended", MulExtended},
        {EOpIMulExtended, "imulExtended", MulExtended},
        {EOpFloatBitsToInt, "floatBitsToInt", FloatBitsToInt},
        {EOpFloatBitsToUint, "floatBitsToUint", FloatBitsToInt},
        {EOpIntBitsToFloat, "intBitsToFloat", IntBitsToFloat},
        {EOpUintBitsToFloat, "uintBitsToFloat", IntBitsToFloat},
        {EOpLdexp, "ldexp", Ldexp},
        {EOpFrexp, "frexp", Frexp},
        {EOpModf, "modf", Modf},
        {EOpPackHalf2x16, "packHalf2x16", PackHalf2x16},
        {EOpUnpackHalf2x16, "unpackHalf2x16", UnpackHalf2x16},
        {EOpPackUnorm2x16, "packUnorm2x16", PackUnorm2x16},
        {EOpPackSnorm2x16, "packSnorm2x16", PackSnorm2x16},
        {EOpPackUnorm4x8, "packUnorm4x8", PackUnorm4x8},
        {EOpPackSnorm4x8, "packSnorm4x8", PackSnorm4x8},
        {EOpUnpackUnorm2x16, "unpackUnorm2x16", UnpackUnorm2x16},
        {EOpUnpackSnorm2x16, "unpackSnorm2x16", UnpackSnorm2x16},
        {EOpUnpackUnorm4x8, "unpackUnorm4x8", UnpackUnorm4x8},
        {EOpUnpackSnorm4x8, "unpackSnorm4x8", UnpackSnorm4x8},
    };
    aEntries.insert(aEntries.end(), std::begin(aInteger), std::end(aInteger));
}

} // namespace ZamCompiler
