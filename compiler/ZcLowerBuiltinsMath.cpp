// Angle, trigonometric, exponential and common functions, and derivatives.

#include "ZcLowerBuiltins.h"

#include <limits>

namespace ZamCompiler
{

using namespace glslang;

namespace
{

constexpr float k_fLog2E = 1.4426950408889634f;
constexpr float k_fLn2 = 0.6931471805599453f;
constexpr float k_fPi = 3.14159265358979f;

// op(x) on the result's lanes.
bool Unary(const SBuiltinCall& call, ETxeOp eOp)
{
    call.Push(call.Compute(eOp, {Fit(call.Raw(0), call.Lanes())}, call.Lanes()));
    return true;
}

// op(x * before) * after, the factors left out when they are 1.
bool Scaled(const SBuiltinCall& call, ETxeOp eOp, float fBefore, float fAfter)
{
    const int iLanes = call.Lanes();
    STxeOperand x = Fit(call.Raw(0), iLanes);
    if (fBefore != 1.0f)
        x = call.Compute(Op_Mul, {x, call.builder.Immediate(fBefore, iLanes)}, iLanes);
    STxeOperand y = call.Compute(eOp, {x}, iLanes);
    if (fAfter != 1.0f)
        y = call.Compute(Op_Mul, {y, call.builder.Immediate(fAfter, iLanes)}, iLanes);
    call.Push(y);
    return true;
}

bool Radians(const SBuiltinCall& call)
{
    call.Push(call.Compute(Op_Mul, {call.Arg(0), call.builder.Immediate(k_fPi / 180.0f, call.Lanes())}, call.Lanes()));
    return true;
}

bool Degrees(const SBuiltinCall& call)
{
    call.Push(call.Compute(Op_Mul, {call.Arg(0), call.builder.Immediate(180.0f / k_fPi, call.Lanes())}, call.Lanes()));
    return true;
}

bool Sin(const SBuiltinCall& call) { return Unary(call, Op_Sin); }
bool Cos(const SBuiltinCall& call) { return Unary(call, Op_Cos); }

bool Tan(const SBuiltinCall& call)
{
    const int iLanes = call.Lanes();
    const STxeOperand s = call.Compute(Op_Sin, {call.Arg(0)}, iLanes);
    const STxeOperand c = call.Compute(Op_Cos, {call.Arg(0)}, iLanes);
    const STxeOperand r = call.Compute(Op_Rcp, {c}, iLanes);
    call.Push(call.Compute(Op_Mul, {s, r}, iLanes));
    return true;
}

// asin(x) = atan(x, sqrt(1 - x²)), acos(x) = atan(sqrt(1 - x²), x).
bool ArcSinCos(const SBuiltinCall& call)
{
    const int iLanes = call.Lanes();
    const STxeOperand x = call.Arg(0);
    const STxeOperand t = call.Compute(Op_Mad, {Negated(x), x, call.builder.Immediate(1.0f, iLanes)}, iLanes);
    const STxeOperand root = call.Compute(Op_Sqrt, {t}, iLanes);
    if (call.eOp == EOpAsin)
        call.Push(call.Compute(Op_Atan, {x, root}, iLanes));
    else
        call.Push(call.Compute(Op_Atan, {root, x}, iLanes));
    return true;
}

bool Atan(const SBuiltinCall& call)
{
    const int iLanes = call.Lanes();
    const STxeOperand x = call.aArgs.size() == 2 ? call.Arg(1) : call.builder.Immediate(1.0f, iLanes);
    call.Push(call.Compute(Op_Atan, {call.Arg(0), x}, iLanes));
    return true;
}

// From e = exp(x): sinh = (e - 1/e) / 2, cosh = (e + 1/e) / 2, tanh = (e - 1/e) / (e + 1/e).
bool Hyperbolic(const SBuiltinCall& call)
{
    const int iLanes = call.Lanes();
    CProgramBuilder& builder = call.builder;
    const STxeOperand x = call.Compute(Op_Mul, {call.Arg(0), builder.Immediate(k_fLog2E, iLanes)}, iLanes);
    const STxeOperand e = call.Compute(Op_Exp2, {x}, iLanes);
    const STxeOperand inverse = call.Compute(Op_Rcp, {e}, iLanes);
    const STxeOperand difference = call.Compute(Op_Add, {e, Negated(inverse)}, iLanes);
    const STxeOperand sum = call.Compute(Op_Add, {e, inverse}, iLanes);
    if (call.eOp == EOpSinh)
        call.Push(call.Compute(Op_Mul, {difference, builder.Immediate(0.5f, iLanes)}, iLanes));
    else if (call.eOp == EOpCosh)
        call.Push(call.Compute(Op_Mul, {sum, builder.Immediate(0.5f, iLanes)}, iLanes));
    else
        call.Push(call.Compute(Op_Mul, {difference, call.Compute(Op_Rcp, {sum}, iLanes)}, iLanes));
    return true;
}

// asinh(x) = ln(x + sqrt(x² + 1)), acosh(x) = ln(x + sqrt(x² - 1)).
bool ArcSinhCosh(const SBuiltinCall& call)
{
    const int iLanes = call.Lanes();
    const STxeOperand x = call.Arg(0);
    const float fOne = call.eOp == EOpAsinh ? 1.0f : -1.0f;
    const STxeOperand t = call.Compute(Op_Mad, {x, x, call.builder.Immediate(fOne, iLanes)}, iLanes);
    const STxeOperand root = call.Compute(Op_Sqrt, {t}, iLanes);
    const STxeOperand sum = call.Compute(Op_Add, {x, root}, iLanes);
    const STxeOperand logarithm = call.Compute(Op_Log2, {sum}, iLanes);
    call.Push(call.Compute(Op_Mul, {logarithm, call.builder.Immediate(k_fLn2, iLanes)}, iLanes));
    return true;
}

// atanh(x) = ln((1 + x) / (1 - x)) / 2.
bool ArcTanh(const SBuiltinCall& call)
{
    const int iLanes = call.Lanes();
    const STxeOperand x = call.Arg(0);
    const STxeOperand one = call.builder.Immediate(1.0f, iLanes);
    const STxeOperand above = call.Compute(Op_Add, {one, x}, iLanes);
    const STxeOperand below = call.Compute(Op_Add, {one, Negated(x)}, iLanes);
    const STxeOperand ratio = call.Compute(Op_Mul, {above, call.Compute(Op_Rcp, {below}, iLanes)}, iLanes);
    const STxeOperand logarithm = call.Compute(Op_Log2, {ratio}, iLanes);
    call.Push(call.Compute(Op_Mul, {logarithm, call.builder.Immediate(0.5f * k_fLn2, iLanes)}, iLanes));
    return true;
}

bool Pow(const SBuiltinCall& call)
{
    const int iLanes = call.Lanes();
    const STxeOperand logarithm = call.Compute(Op_Log2, {call.Arg(0)}, iLanes);
    const STxeOperand product = call.Compute(Op_Mul, {logarithm, call.Arg(1)}, iLanes);
    call.Push(call.Compute(Op_Exp2, {product}, iLanes));
    return true;
}

bool Exp(const SBuiltinCall& call) { return Scaled(call, Op_Exp2, k_fLog2E, 1.0f); }
bool Log(const SBuiltinCall& call) { return Scaled(call, Op_Log2, 1.0f, k_fLn2); }
bool Exp2(const SBuiltinCall& call) { return Unary(call, Op_Exp2); }
bool Log2(const SBuiltinCall& call) { return Unary(call, Op_Log2); }
bool Sqrt(const SBuiltinCall& call) { return Unary(call, Op_Sqrt); }
bool InverseSqrt(const SBuiltinCall& call) { return Unary(call, Op_Rsq); }

bool Abs(const SBuiltinCall& call)
{
    call.Push(Absolute(call.Raw(0)));
    return true;
}

bool Sign(const SBuiltinCall& call) { return Unary(call, Op_Sgn); }
bool Floor(const SBuiltinCall& call) { return Unary(call, Op_Flr); }
bool Fract(const SBuiltinCall& call) { return Unary(call, Op_Frc); }
bool Round(const SBuiltinCall& call) { return Unary(call, Op_Rnd); }

// ceil(x) = -floor(-x)
bool Ceil(const SBuiltinCall& call)
{
    const int iLanes = call.Lanes();
    call.Push(Negated(call.Compute(Op_Flr, {Negated(Fit(call.Raw(0), iLanes))}, iLanes)));
    return true;
}

// trunc(x) = floor(|x|) * sign(x)
bool Trunc(const SBuiltinCall& call)
{
    const int iLanes = call.Lanes();
    const STxeOperand x = Fit(call.Raw(0), iLanes);
    const STxeOperand whole = call.Compute(Op_Flr, {Absolute(x)}, iLanes);
    const STxeOperand sign = call.Compute(Op_Sgn, {x}, iLanes);
    call.Push(call.Compute(Op_Mul, {whole, sign}, iLanes));
    return true;
}

bool Min(const SBuiltinCall& call)
{
    call.Push(call.Compute(Op_Min, {call.Arg(0), call.Arg(1)}, call.Lanes()));
    return true;
}

bool Max(const SBuiltinCall& call)
{
    call.Push(call.Compute(Op_Max, {call.Arg(0), call.Arg(1)}, call.Lanes()));
    return true;
}

bool Clamp(const SBuiltinCall& call)
{
    const STxeOperand low = call.Compute(Op_Max, {call.Arg(0), call.Arg(1)}, call.Lanes());
    call.Push(call.Compute(Op_Min, {low, call.Arg(2)}, call.Lanes()));
    return true;
}

// mix(a, b, t) = (b - a) * t + a; with a boolean t it selects.
bool Mix(const SBuiltinCall& call)
{
    const int iLanes = call.Lanes();
    if (call.aNodes.size() == 3 && call.aNodes[2]->getBasicType() == EbtBool)
    {
        call.Push(call.Compute(Op_Sel, {call.Arg(2), call.Arg(1), call.Arg(0)}, iLanes));
        return true;
    }
    const STxeOperand difference = call.Compute(Op_Add, {call.Arg(1), Negated(call.Arg(0))}, iLanes);
    call.Push(call.Compute(Op_Mad, {difference, call.Arg(2), call.Arg(0)}, iLanes));
    return true;
}

bool Step(const SBuiltinCall& call)
{
    call.Push(call.Compute(Op_Sge, {call.Arg(1), call.Arg(0)}, call.Lanes()));
    return true;
}

// t = clamp((x - e0) / (e1 - e0), 0, 1); t² (3 - 2t)
bool SmoothStep(const SBuiltinCall& call)
{
    const int iLanes = call.Lanes();
    CProgramBuilder& builder = call.builder;
    const STxeOperand offset = call.Compute(Op_Add, {call.Arg(2), Negated(call.Arg(0))}, iLanes);
    const STxeOperand range = call.Compute(Op_Add, {call.Arg(1), Negated(call.Arg(0))}, iLanes);
    const STxeOperand inverse = call.Compute(Op_Rcp, {range}, iLanes);
    STxeOperand t = call.Compute(Op_Mul, {offset, inverse}, iLanes);
    t = call.Compute(Op_Max, {t, builder.Immediate(0.0f, iLanes)}, iLanes);
    t = call.Compute(Op_Min, {t, builder.Immediate(1.0f, iLanes)}, iLanes);
    const STxeOperand cubic = call.Compute(Op_Mad, {t, builder.Immediate(-2.0f, iLanes), builder.Immediate(3.0f, iLanes)}, iLanes);
    const STxeOperand square = call.Compute(Op_Mul, {t, t}, iLanes);
    call.Push(call.Compute(Op_Mul, {square, cubic}, iLanes));
    return true;
}

bool Fma(const SBuiltinCall& call)
{
    call.Push(call.Compute(Op_Mad, {call.Arg(0), call.Arg(1), call.Arg(2)}, call.Lanes()));
    return true;
}

bool IsNan(const SBuiltinCall& call)
{
    call.Push(call.Compute(Op_Sne, {call.Arg(0), call.Arg(0)}, call.Lanes()));
    return true;
}

bool IsInf(const SBuiltinCall& call)
{
    const int iLanes = call.Lanes();
    const STxeOperand infinity = call.builder.Immediate(std::numeric_limits<float>::infinity(), iLanes);
    call.Push(call.Compute(Op_Seq, {Absolute(call.Arg(0)), infinity}, iLanes));
    return true;
}

bool Ddx(const SBuiltinCall& call) { return Unary(call, Op_Ddx); }
bool Ddy(const SBuiltinCall& call) { return Unary(call, Op_Ddy); }

bool Fwidth(const SBuiltinCall& call)
{
    const int iLanes = call.Lanes();
    const STxeOperand dx = call.Compute(Op_Ddx, {call.Arg(0)}, iLanes);
    const STxeOperand dy = call.Compute(Op_Ddy, {call.Arg(0)}, iLanes);
    call.Push(call.Compute(Op_Add, {Absolute(dx), Absolute(dy)}, iLanes));
    return true;
}

} // namespace

void AddMathBuiltins(std::vector<SBuiltinEntry>& aEntries)
{
    const SBuiltinEntry aMath[] = {
        {EOpRadians, "radians", Radians},
        {EOpDegrees, "degrees", Degrees},
        {EOpSin, "sin", Sin},
        {EOpCos, "cos", Cos},
        {EOpTan, "tan", Tan},
        {EOpAsin, "asin", ArcSinCos},
        {EOpAcos, "acos", ArcSinCos},
        {EOpAtan, "atan", Atan},
        {EOpSinh, "sinh", Hyperbolic},
        {EOpCosh, "cosh", Hyperbolic},
        {EOpTanh, "tanh", Hyperbolic},
        {EOpAsinh, "asinh", ArcSinhCosh},
        {EOpAcosh, "acosh", ArcSinhCosh},
        {EOpAtanh, "atanh", ArcTanh},
        {EOpPow, "pow", Pow},
        {EOpExp, "exp", Exp},
        {EOpLog, "log", Log},
        {EOpExp2, "exp2", Exp2},
        {EOpLog2, "log2", Log2},
        {EOpSqrt, "sqrt", Sqrt},
        {EOpInverseSqrt, "inversesqrt", InverseSqrt},
        {EOpAbs, "abs", Abs},
        {EOpSign, "sign", Sign},
        {EOpFloor, "floor", Floor},
        {EOpFract, "fract", Fract},
        {EOpRound, "round", Round},
        {EOpRoundEven, "roundEven", Round},
        {EOpCeil, "ceil", Ceil},
        {EOpTrunc, "trunc", Trunc},
        {EOpMin, "min", Min},
        {EOpMax, "max", Max},
        {EOpClamp, "clamp", Clamp},
        {EOpMix, "mix", Mix},
        {EOpStep, "step", Step},
        {EOpSmoothStep, "smoothstep", SmoothStep},
        {EOpFma, "fma", Fma},
        {EOpIsNan, "isnan", IsNan},
        {EOpIsInf, "isinf", IsInf},
        {EOpDPdx, "dFdx", Ddx},
        {EOpDPdxFine, "dFdxFine", Ddx},
        {EOpDPdxCoarse, "dFdxCoarse", Ddx},
        {EOpDPdy, "dFdy", Ddy},
        {EOpDPdyFine, "dFdyFine", Ddy},
        {EOpDPdyCoarse, "dFdyCoarse", Ddy},
        {EOpFwidth, "fwidth", Fwidth},
        {EOpFwidthFine, "fwidthFine", Fwidth},
        {EOpFwidthCoarse, "fwidthCoarse", Fwidth},
    };
    aEntries.insert(aEntries.end(), std::begin(aMath), std::end(aMath));
}

} // namespace ZamCompiler
