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

STxeOperand Determinant2(const SBuiltinCall& call, const SValue& m)
{
    const STxeOperand product = call.Compute(Op_Mul, {Lane(m.aSlots[0], 0), Lane(m.aSlots[1], 1)}, 1);
    return call.Compute(Op_Mad, {Negated(Lane(m.aSlots[0], 1)), Lane(m.aSlots[1], 0), product}, 1);
}

// A 4x4 matrix as four 3-lane column tops a, b, c, d and a bottom row (x, y, z, w), with
// s = a × b, t = c × d, u = a y - b x, v = c w - d z; det = s·v + t·u.
struct SMatrix4Parts
{
    STxeOperand a, b, c, d;
    STxeOperand s, t, u, v;
    STxeOperand det;
};

SMatrix4Parts Matrix4Parts(const SBuiltinCall& call, const SValue& m)
{
    SMatrix4Parts parts;
    const CLanes xyz = {0, 1, 2};
    parts.a = Swizzled(m.aSlots[0], xyz);
    parts.b = Swizzled(m.aSlots[1], xyz);
    parts.c = Swizzled(m.aSlots[2], xyz);
    parts.d = Swizzled(m.aSlots[3], xyz);
    auto bottom = [&m](int iColumn) { return Broadcast(Lane(m.aSlots[static_cast<std::size_t>(iColumn)], 3), 3); };
    parts.s = CrossOf(call, parts.a, parts.b);
    parts.t = CrossOf(call, parts.c, parts.d);
    const STxeOperand bx = call.Compute(Op_Mul, {parts.b, bottom(0)}, 3);
    parts.u = call.Compute(Op_Mad, {parts.a, bottom(1), Negated(bx)}, 3);
    const STxeOperand dz = call.Compute(Op_Mul, {parts.d, bottom(2)}, 3);
    parts.v = call.Compute(Op_Mad, {parts.c, bottom(3), Negated(dz)}, 3);
    const STxeOperand sv = call.Compute(Op_Dp3, {parts.s, parts.v}, 1);
    const STxeOperand tu = call.Compute(Op_Dp3, {parts.t, parts.u}, 1);
    parts.det = call.Compute(Op_Add, {sv, tu}, 1);
    return parts;
}

bool Determinant(const SBuiltinCall& call)
{
    const SValue& m = call.aArgs[0];
    if (m.aSlots.size() == 2)
        call.Push(Determinant2(call, m));
    else if (m.aSlots.size() == 3)
        call.Push(call.Compute(Op_Dp3, {m.aSlots[0], CrossOf(call, m.aSlots[1], m.aSlots[2])}, 1));
    else
        call.Push(Matrix4Parts(call, m).det);
    return true;
}

// Rows of the inverse, each one 3-lane operand, written transposed and scaled into columns.
void ColumnsFromRows(const SBuiltinCall& call, const std::vector<STxeOperand>& aRows, const STxeOperand& scale,
                     std::vector<STxeOperand>& aColumns)
{
    for (std::size_t j = 0; j < aColumns.size() && j < 3; ++j)
    {
        for (std::size_t i = 0; i < aRows.size(); ++i)
            call.builder.Emit(Op_Mul, Lane(aColumns[j], static_cast<int>(i)), {Lane(aRows[i], static_cast<int>(j)), scale},
                              call.iLine);
    }
}

// Rows of the adjugate: b × v + t y, v × a - t x, d × u + s w, u × c - s z, with fourth
// lanes -b·t, a·t, -d·s, c·s.
void InverseOf4(const SBuiltinCall& call, const SValue& m, std::vector<STxeOperand>& aColumns)
{
    const SMatrix4Parts p = Matrix4Parts(call, m);
    const STxeOperand scale = call.Compute(Op_Rcp, {p.det}, 1);
    auto bottom = [&m](int iColumn) { return Broadcast(Lane(m.aSlots[static_cast<std::size_t>(iColumn)], 3), 3); };
    auto row = [&](const STxeOperand& left, const STxeOperand& right, const STxeOperand& along, const STxeOperand& by) {
        return call.Compute(Op_Mad, {along, by, CrossOf(call, left, right)}, 3);
    };
    const std::vector<STxeOperand> aRows = {row(p.b, p.v, p.t, bottom(1)), row(p.v, p.a, Negated(p.t), bottom(0)),
                                            row(p.d, p.u, p.s, bottom(3)), row(p.u, p.c, Negated(p.s), bottom(2))};
    ColumnsFromRows(call, aRows, scale, aColumns);
    const STxeOperand aFourth[4][2] = {{Negated(p.b), p.t}, {p.a, p.t}, {Negated(p.d), p.s}, {p.c, p.s}};
    for (int i = 0; i < 4; ++i)
        call.builder.Emit(Op_Dp3, Lane(aColumns[3], i), {aFourth[i][0], aFourth[i][1]}, call.iLine);
    aColumns[3] = call.Compute(Op_Mul, {aColumns[3], Broadcast(scale, 4)}, 4);
}

// inverse(M) = adj(M) / det(M); for 3x3 the rows of the adjugate are b × c, c × a, a × b.
bool Inverse(const SBuiltinCall& call)
{
    const SValue& m = call.aArgs[0];
    const std::size_t uiSize = m.aSlots.size();
    std::vector<STxeOperand> aColumns;
    for (std::size_t j = 0; j < uiSize; ++j)
        aColumns.push_back(call.builder.NewTemp(static_cast<int>(uiSize)));
    if (uiSize == 2)
    {
        const STxeOperand scale = call.Compute(Op_Rcp, {Determinant2(call, m)}, 1);
        const STxeOperand a = m.aSlots[0];
        const STxeOperand b = m.aSlots[1];
        call.builder.Emit(Op_Mul, Lane(aColumns[0], 0), {Lane(b, 1), scale}, call.iLine);
        call.builder.Emit(Op_Mul, Lane(aColumns[0], 1), {Negated(Lane(a, 1)), scale}, call.iLine);
        call.builder.Emit(Op_Mul, Lane(aColumns[1], 0), {Negated(Lane(b, 0)), scale}, call.iLine);
        call.builder.Emit(Op_Mul, Lane(aColumns[1], 1), {Lane(a, 0), scale}, call.iLine);
    }
    else if (uiSize == 3)
    {
        const std::vector<STxeOperand> aRows = {CrossOf(call, m.aSlots[1], m.aSlots[2]),
                                                CrossOf(call, m.aSlots[2], m.aSlots[0]),
                                                CrossOf(call, m.aSlots[0], m.aSlots[1])};
        const STxeOperand det = call.Compute(Op_Dp3, {m.aSlots[0], aRows[0]}, 1);
        ColumnsFromRows(call, aRows, call.Compute(Op_Rcp, {det}, 1), aColumns);
    }
    else
    {
        InverseOf4(call, m, aColumns);
    }
    for (const STxeOperand& column : aColumns)
        call.Push(column);
    return true;
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
        {EOpMatrixInverse, "inverse", Inverse},
    };
    aEntries.insert(aEntries.end(), std::begin(aGeometry), std::end(aGeometry));
}

} // namespace ZamCompiler
