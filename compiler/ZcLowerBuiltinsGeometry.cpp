// Geometric, matrix and vector relational functions.

#include "ZcLowerBuiltins.h"

#include "ZcLowerTree.h"

namespace ZamCompiler
{

using namespace glslang;

namespace
{

STxeOperand LengthOf(const SBuiltinCall& call, const STxeOperand& v)
{
    if (v.uiCount == 1)
        return Absolute(v);
    const STxeOperand squared = call.Compute(DotFor(v.uiCount), {v, v}, 1);
    return call.Compute(Op_Sqrt, {squared}, 1);
}

// a × b = a.yzx * b.zxy - a.zxy * b.yzx
STxeOperand CrossOf(const SBuiltinCall& call, const STxeOperand& a, const STxeOperand& b)
{
    const STxeOperand product = call.Compute(Op_Mul, {Swizzled(a, {2, 0, 1}), Swizzled(b, {1, 2, 0})}, 3);
    return call.Compute(Op_Mad, {Swizzled(a, {1, 2, 0}), Swizzled(b, {2, 0, 1}), Negated(product)}, 3);
}

bool Length(const SBuiltinCall& call)
{
    call.Push(LengthOf(call, call.Raw(0)));
    return true;
}

bool Distance(const SBuiltinCall& call)
{
    const int iWidth = call.Raw(0).uiCount;
    const STxeOperand difference = call.Compute(Op_Add, {call.Raw(0), Negated(Broadcast(call.Raw(1), iWidth))}, iWidth);
    call.Push(LengthOf(call, difference));
    return true;
}

bool Dot(const SBuiltinCall& call)
{
    call.Push(call.Compute(DotFor(call.Raw(0).uiCount), {call.Raw(0), call.Raw(1)}, 1));
    return true;
}

bool Cross(const SBuiltinCall& call)
{
    call.Push(CrossOf(call, call.Raw(0), call.Raw(1)));
    return true;
}

bool Normalize(const SBuiltinCall& call)
{
    const STxeOperand v = call.Raw(0);
    if (v.uiCount == 1)
    {
        call.Push(call.Compute(Op_Sgn, {Fit(v, call.Lanes())}, call.Lanes()));
        return true;
    }
    const STxeOperand squared = call.Compute(DotFor(v.uiCount), {v, v}, 1);
    const STxeOperand inverse = call.Compute(Op_Rsq, {squared}, 1);
    call.Push(call.Compute(Op_Mul, {v, Broadcast(inverse, v.uiCount)}, v.uiCount));
    return true;
}

// faceforward(N, I, Nref) = dot(Nref, I) < 0 ? N : -N
bool FaceForward(const SBuiltinCall& call)
{
    const int iLanes = call.Lanes();
    const STxeOperand d = call.Compute(DotFor(call.Raw(2).uiCount), {call.Raw(2), call.Raw(1)}, 1);
    const STxeOperand facing = call.Compute(Op_Slt, {d, call.builder.Immediate(0.0f)}, 1);
    call.Push(call.Compute(Op_Sel, {Broadcast(facing, iLanes), call.Arg(0), Negated(call.Arg(0))}, iLanes));
    return true;
}

// reflect(I, N) = I - 2 dot(N, I) N
bool Reflect(const SBuiltinCall& call)
{
    const int iLanes = call.Lanes();
    const STxeOperand d = call.Compute(DotFor(call.Raw(1).uiCount), {call.Raw(1), call.Raw(0)}, 1);
    const STxeOperand twice = call.Compute(Op_Add, {d, d}, 1);
    call.Push(call.Compute(Op_Mad, {Negated(call.Arg(1)), Broadcast(twice, iLanes), call.Arg(0)}, iLanes));
    return true;
}

// k = 1 - eta² (1 - dot(N, I)²); k < 0 ? 0 : eta I - (eta dot(N, I) + sqrt(k)) N
bool Refract(const SBuiltinCall& call)
{
    const int iLanes = call.Lanes();
    CProgramBuilder& builder = call.builder;
    const STxeOperand eta = Broadcast(call.Raw(2), 1);
    const STxeOperand d = call.Compute(DotFor(call.Raw(1).uiCount), {call.Raw(1), call.Raw(0)}, 1);
    const STxeOperand oneMinus = call.Compute(Op_Mad, {Negated(d), d, builder.Immediate(1.0f)}, 1);
    const STxeOperand eta2 = call.Compute(Op_Mul, {eta, eta}, 1);
    const STxeOperand k = call.Compute(Op_Mad, {Negated(eta2), oneMinus, builder.Immediate(1.0f)}, 1);
    const STxeOperand valid = call.Compute(Op_Sge, {k, builder.Immediate(0.0f)}, 1);
    const STxeOperand clamped = call.Compute(Op_Max, {k, builder.Immediate(0.0f)}, 1);
    const STxeOperand root = call.Compute(Op_Sqrt, {clamped}, 1);
    const STxeOperand factor = call.Compute(Op_Mad, {eta, d, root}, 1);
    const STxeOperand scaledI = call.Compute(Op_Mul, {call.Arg(0), Broadcast(eta, iLanes)}, iLanes);
    const STxeOperand bent =
        call.Compute(Op_Mad, {Negated(Broadcast(factor, iLanes)), call.Arg(1), scaledI}, iLanes);
    call.Push(call.Compute(Op_Mul, {bent, Broadcast(valid, iLanes)}, iLanes));
    return true;
}

// The lanes summed by a dot product with ones, then compared.
bool AnyAll(const SBuiltinCall& call)
{
    const STxeOperand v = call.Raw(0);
    CProgramBuilder& builder = call.builder;
    const STxeOperand sum = call.Compute(DotFor(v.uiCount), {v, builder.Immediate(1.0f, v.uiCount)}, 1);
    if (call.eOp == EOpAny)
        call.Push(call.Compute(Op_Slt, {builder.Immediate(0.0f), sum}, 1));
    else
        call.Push(call.Compute(Op_Sge, {sum, builder.Immediate(static_cast<float>(v.uiCount))}, 1));
    return true;
}

bool Transpose(const SBuiltinCall& call)
{
    const SValue& matrix = call.aArgs[0];
    for (std::uint8_t uiRows : SlotLanes(call.type))
    {
        const STxeOperand column = call.builder.NewTemp(uiRows);
        const int iColumn = static_cast<int>(call.value.aSlots.size());
        for (int r = 0; r < uiRows && r < static_cast<int>(matrix.aSlots.size()); ++r)
            call.builder.Emit(Op_Mov, Lane(column, r), {Lane(matrix.aSlots[r], iColumn)}, call.iLine);
        call.Push(column);
    }
    return true;
}

bool OuterProduct(const SBuiltinCall& call)
{
    const STxeOperand column = call.Raw(0);
    const STxeOperand row = call.Raw(1);
    for (int c = 0; c < row.uiCount; ++c)
        call.Push(call.Compute(Op_Mul, {column, Broadcast(Lane(row, c), column.uiCount)}, column.uiCount));
    return true;
}

bool Determinant(const SBuiltinCall& call)
{
    const SValue& m = call.aArgs[0];
    if (m.aSlots.size() == 2)
    {
        const STxeOperand product = call.Compute(Op_Mul, {Lane(m.aSlots[0], 0), Lane(m.aSlots[1], 1)}, 1);
        call.Push(call.Compute(Op_Mad, {Negated(Lane(m.aSlots[0], 1)), Lane(m.aSlots[1], 0), product}, 1));
        return true;
    }
    if (m.aSlots.size() == 3)
    {
        call.Push(call.Compute(Op_Dp3, {m.aSlots[0], CrossOf(call, m.aSlots[1], m.aSlots[2])}, 1));
        return true;
    }
    return call.Fail("'determinant' of a 4x4 matrix is not supported by the TXE code generator");
}

} // namespace

void AddGeometryBuiltins(std::vector<SBuiltinEntry>& aEntries)
{
    const SBuiltinEntry aGeometry[] = {
        {EOpLength, "length", Length},
        {EOpDistance, "distance", Distance},
        {EOpDot, "dot", Dot},
        {EOpCross, "cross", Cross},
        {EOpNormalize, "normalize", Normalize},
        {EOpFaceForward, "faceforward", FaceForward},
        {EOpReflect, "reflect", Reflect},
        {EOpRefract, "refract", Refract},
        {EOpAny, "any", AnyAll},
        {EOpAll, "all", AnyAll},
        {EOpTranspose, "transpose", Transpose},
        {EOpOuterProduct, "outerProduct", OuterProduct},
        {EOpDeterminant, "determinant", Determinant},
    };
    aEntries.insert(aEntries.end(), std::begin(aGeometry), std::end(aGeometry));
}

} // namespace ZamCompiler
