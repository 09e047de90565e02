#include "ZcLowerer.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ZamCompiler
{

using namespace glslang;

namespace
{

constexpr float k_fLog2E = 1.4426950408889634f;
constexpr float k_fLn2 = 0.6931471805599453f;
constexpr float k_fPi = 3.14159265358979f;

ETxeOp DotFor(int iLanes)
{
    static const ETxeOp s_aeDot[5] = {Op_Mul, Op_Mul, Op_Dp2, Op_Dp3, Op_Dp4};
    return s_aeDot[std::clamp(iLanes, 1, 4)];
}

bool SameRegister(const STxeOperand& a, const STxeOperand& b)
{
    return a.eFile == b.eFile && a.iIndex == b.iIndex && a.bNegate == b.bNegate && a.bAbs == b.bAbs &&
           a.iRelative == b.iRelative && a.iRelativeLane == b.iRelativeLane;
}

} // namespace

STxeOperand CLowerer::Sample(ETxeOp eOp, const TType& type, std::initializer_list<STxeOperand> aSrc, int iLine)
{
    const STxeOperand& coordinate = *aSrc.begin();
    const bool bNonDependent = coordinate.eFile == File_Input && coordinate.iRelative < 0 && !coordinate.bNegate &&
                               !coordinate.bAbs;
    STxeOperand dst = NewTemp(LanesOf(type));
    const int iInstruction = Emit(eOp, dst, aSrc, iLine);
    if (iInstruction >= 0 && bNonDependent)
    {
        m_program.aInstructions[static_cast<std::size_t>(iInstruction)].bNonDependent = true;
        ++m_program.iNonDependentReads;
    }
    return dst;
}

bool CLowerer::Texture(TOperator eOp, const TType& type, const std::vector<SValue>& aArgs, int iLine, SValue& value)
{
    if (aArgs.size() < 2 || aArgs[0].aSlots.empty() || aArgs[1].aSlots.empty() ||
        aArgs[0].aSlots[0].eFile != File_Sampler)
    {
        Fail(iLine, "unsupported texture function");
        return false;
    }
    const STxeOperand sampler = aArgs[0].aSlots[0];
    const STxeOperand coordinate = aArgs[1].aSlots[0];
    auto extra = [&aArgs](std::size_t i) { return aArgs.size() > i && !aArgs[i].aSlots.empty() ? aArgs[i].aSlots[0] : STxeOperand(); };

    switch (eOp)
    {
    case EOpTexture:
    case EOpTextureOffset:
    {
        // texture(s, P[, bias]) and textureOffset(s, P, offset[, bias]); offsets ride in the instruction.
        const std::size_t uiBias = eOp == EOpTexture ? 2 : 3;
        if (aArgs.size() > uiBias)
            value.aSlots.push_back(Sample(Op_Txb, type, {coordinate, sampler, extra(uiBias)}, iLine));
        else
            value.aSlots.push_back(Sample(Op_Tex, type, {coordinate, sampler}, iLine));
        break;
    }
    case EOpTextureProj:
    case EOpTextureProjOffset:
        value.aSlots.push_back(Sample(Op_Txp, type, {coordinate, sampler}, iLine));
        break;
    case EOpTextureLod:
    case EOpTextureLodOffset:
    case EOpTextureProjLod:
    case EOpTextureProjLodOffset:
        value.aSlots.push_back(Sample(Op_Txl, type, {coordinate, sampler, extra(2)}, iLine));
        break;
    case EOpTextureGrad:
    case EOpTextureGradOffset:
    case EOpTextureProjGrad:
    case EOpTextureProjGradOffset:
        value.aSlots.push_back(Sample(Op_Txg, type, {coordinate, sampler, extra(2), extra(3)}, iLine));
        break;
    case EOpTextureFetch:
    case EOpTextureFetchOffset:
        value.aSlots.push_back(Sample(Op_Txf, type, {coordinate, sampler, extra(2)}, iLine));
        break;
    case EOpTextureQuerySize:
    {
        STxeOperand lod = aArgs.size() > 1 ? coordinate : Immediate(0.0f);
        value.aSlots.push_back(Compute(Op_Txs, {lod, sampler}, LanesOf(type), iLine));
        break;
    }
    default:
        Fail(iLine, "this texture function is not supported by the TXE code generator");
        return false;
    }
    return !m_bFailed;
}

bool CLowerer::Constructor(const TType& type, const std::vector<SValue>& aArgs, int iLine, SValue& value)
{
    value.aSlots.clear();
    if (type.isArray() || type.isStruct())
    {
        // Aggregates are lists of slots: construction only gathers operands.
        for (const SValue& arg : aArgs)
            value.aSlots.insert(value.aSlots.end(), arg.aSlots.begin(), arg.aSlots.end());
        if (value.aSlots.size() != SlotLanes(type).size())
        {
            Fail(iLine, "unsupported constructor");
            return false;
        }
        return true;
    }

    const std::vector<std::uint8_t> aResultLanes = SlotLanes(type);
    if (aArgs.empty() || aArgs[0].aSlots.empty())
    {
        Fail(iLine, "unsupported constructor");
        return false;
    }

    // Shapes that need no instruction: a splat, or lanes taken from one operand.
    if (aArgs.size() == 1 && aArgs[0].aSlots.size() == 1 && aResultLanes.size() == 1)
    {
        const STxeOperand& source = aArgs[0].aSlots[0];
        if (source.uiCount == 1)
        {
            value.aSlots.push_back(Broadcast(source, aResultLanes[0]));
            return true;
        }
        if (source.uiCount >= aResultLanes[0])
        {
            STxeOperand narrowed = source;
            narrowed.uiCount = aResultLanes[0];
            value.aSlots.push_back(narrowed);
            return true;
        }
    }

    // Each result lane names the operand lane it comes from; -1 lanes are literal (value in afLiteral).
    struct SLaneSource
    {
        STxeOperand op;
        int iLane = -1;
        float fLiteral = 0.0f;
    };
    std::vector<std::vector<SLaneSource>> aaSources(aResultLanes.size());
    const bool bMatrixFromScalar = type.isMatrix() && aArgs.size() == 1 && aArgs[0].aSlots.size() == 1 &&
                                   aArgs[0].aSlots[0].uiCount == 1;
    const bool bMatrixFromMatrix = type.isMatrix() && aArgs.size() == 1 && aArgs[0].aSlots.size() > 1;
    if (bMatrixFromScalar || bMatrixFromMatrix)
    {
        const SValue& source = aArgs[0];
        for (std::size_t c = 0; c < aResultLanes.size(); ++c)
        {
            for (int r = 0; r < aResultLanes[c]; ++r)
            {
                SLaneSource lane;
                if (bMatrixFromScalar && static_cast<int>(c) == r)
                {
                    lane.op = source.aSlots[0];
                    lane.iLane = 0;
                }
                else if (bMatrixFromMatrix && c < source.aSlots.size() && r < source.aSlots[c].uiCount)
                {
                    lane.op = source.aSlots[c];
                    lane.iLane = r;
                }
                else
                {
                    lane.fLiteral = static_cast<int>(c) == r && bMatrixFromMatrix ? 1.0f : 0.0f;
                }
                aaSources[c].push_back(lane);
            }
        }
    }
    else
    {
        std::vector<SLaneSource> aFlat;
        for (const SValue& arg : aArgs)
        {
            for (const STxeOperand& op : arg.aSlots)
            {
                for (int i = 0; i < op.uiCount; ++i)
                {
                    SLaneSource lane;
                    lane.op = op;
                    lane.iLane = i;
                    aFlat.push_back(lane);
                }
            }
        }
        std::size_t uiNext = 0;
        for (std::size_t c = 0; c < aResultLanes.size(); ++c)
        {
            for (int r = 0; r < aResultLanes[c]; ++r)
            {
                if (aFlat.empty())
                    break;
                // A single scalar fills every lane.
                aaSources[c].push_back(aFlat[std::min(uiNext, aFlat.size() - 1)]);
                if (aFlat.size() > 1)
                    ++uiNext;
            }
        }
    }

    for (std::size_t c = 0; c < aResultLanes.size(); ++c)
    {
        STxeOperand result = NewTemp(aResultLanes[c]);
        std::vector<bool> abDone(aaSources[c].size(), false);
        // Literal lanes (and immediate operands) merge into one move of a fresh immediate.
        float afLiteral[4] = {0, 0, 0, 0};
        std::vector<std::uint8_t> aLiteralLanes;
        for (std::size_t r = 0; r < aaSources[c].size(); ++r)
        {
            const SLaneSource& lane = aaSources[c][r];
            if (lane.iLane < 0 || lane.op.eFile == File_Immediate)
            {
                float fValue = lane.fLiteral;
                if (lane.iLane >= 0)
                {
                    const std::size_t uiIndex =
                        static_cast<std::size_t>(lane.op.iIndex) * 4 + lane.op.auiSwizzle[lane.iLane];
                    fValue = uiIndex < m_program.aPool.size() ? m_program.aPool[uiIndex] : 0.0f;
                    if (lane.op.bAbs)
                        fValue = std::fabs(fValue);
                    if (lane.op.bNegate)
                        fValue = -fValue;
                }
                afLiteral[aLiteralLanes.size()] = fValue;
                aLiteralLanes.push_back(static_cast<std::uint8_t>(r));
                abDone[r] = true;
            }
        }
        if (!aLiteralLanes.empty())
        {
            STxeOperand dst = Swizzled(result, aLiteralLanes);
            Emit(Op_Mov, dst, {Immediate(afLiteral, static_cast<int>(aLiteralLanes.size()))}, iLine);
        }
        for (std::size_t r = 0; r < aaSources[c].size(); ++r)
        {
            if (abDone[r])
                continue;
            std::vector<std::uint8_t> aDstLanes;
            std::vector<std::uint8_t> aSrcLanes;
            const STxeOperand& op = aaSources[c][r].op;
            for (std::size_t s = r; s < aaSources[c].size(); ++s)
            {
                if (!abDone[s] && SameRegister(aaSources[c][s].op, op))
                {
                    // Lanes of the register itself: each source applied its own swizzle.
                    const SLaneSource& lane = aaSources[c][s];
                    aDstLanes.push_back(static_cast<std::uint8_t>(s));
                    aSrcLanes.push_back(lane.op.auiSwizzle[lane.iLane & 3]);
                    abDone[s] = true;
                }
            }
            STxeOperand source = op;
            for (std::size_t i = 0; i < aSrcLanes.size() && i < 4; ++i)
                source.auiSwizzle[i] = aSrcLanes[i];
            source.uiCount = static_cast<std::uint8_t>(aSrcLanes.size());
            Emit(Op_Mov, Swizzled(result, aDstLanes), {source}, iLine);
        }
        value.aSlots.push_back(result);
    }
    return !m_bFailed;
}

bool CLowerer::Builtin(TOperator eOp, const TType& type, const std::vector<SValue>& aArgs,
                       const std::vector<TIntermTyped*>& aNodes, int iLine, SValue& value)
{
    value.aSlots.clear();
    const int iLanes = LanesOf(type);
    auto arg = [&](std::size_t i) {
        const int iWidth = i < aNodes.size() ? LanesOf(aNodes[i]->getType()) : 1;
        STxeOperand op = i < aArgs.size() && !aArgs[i].aSlots.empty() ? aArgs[i].aSlots[0] : Immediate(0.0f);
        return Broadcast(op, std::max(iWidth, iLanes));
    };
    auto raw = [&](std::size_t i) {
        return i < aArgs.size() && !aArgs[i].aSlots.empty() ? aArgs[i].aSlots[0] : Immediate(0.0f);
    };
    auto fit = [](const STxeOperand& op, int iWidth) {
        STxeOperand result = CLowerer::Broadcast(op, iWidth);
        result.uiCount = static_cast<std::uint8_t>(std::min<int>(iWidth, result.uiCount));
        return result;
    };
    auto length = [&](const STxeOperand& v) {
        if (v.uiCount == 1)
        {
            STxeOperand absolute = v;
            absolute.bAbs = true;
            absolute.bNegate = false;
            return absolute;
        }
        STxeOperand squared = Compute(DotFor(v.uiCount), {v, v}, 1, iLine);
        return Compute(Op_Sqrt, {squared}, 1, iLine);
    };
    auto unary = [&](ETxeOp eTxe) { value.aSlots.push_back(Compute(eTxe, {fit(raw(0), iLanes)}, iLanes, iLine)); };
    auto scaled = [&](ETxeOp eTxe, float fBefore, float fAfter) {
        STxeOperand x = fit(raw(0), iLanes);
        if (fBefore != 1.0f)
            x = Compute(Op_Mul, {x, Immediate(fBefore, iLanes)}, iLanes, iLine);
        STxeOperand y = Compute(eTxe, {x}, iLanes, iLine);
        if (fAfter != 1.0f)
            y = Compute(Op_Mul, {y, Immediate(fAfter, iLanes)}, iLanes, iLine);
        value.aSlots.push_back(y);
    };

    switch (eOp)
    {
    case EOpRadians: value.aSlots.push_back(Compute(Op_Mul, {arg(0), Immediate(k_fPi / 180.0f, iLanes)}, iLanes, iLine)); break;
    case EOpDegrees: value.aSlots.push_back(Compute(Op_Mul, {arg(0), Immediate(180.0f / k_fPi, iLanes)}, iLanes, iLine)); break;
    case EOpSin: unary(Op_Sin); break;
    case EOpCos: unary(Op_Cos); break;
    case EOpTan:
    {
        STxeOperand s = Compute(Op_Sin, {arg(0)}, iLanes, iLine);
        STxeOperand c = Compute(Op_Cos, {arg(0)}, iLanes, iLine);
        STxeOperand r = Compute(Op_Rcp, {c}, iLanes, iLine);
        value.aSlots.push_back(Compute(Op_Mul, {s, r}, iLanes, iLine));
        break;
    }
    case EOpAsin:
    case EOpAcos:
    {
        STxeOperand x = arg(0);
        STxeOperand t = NewTemp(iLanes);
        Emit(Op_Mad, t, {Negated(x), x, Immediate(1.0f, iLanes)}, iLine);
        STxeOperand root = Compute(Op_Sqrt, {t}, iLanes, iLine);
        if (eOp == EOpAsin)
            value.aSlots.push_back(Compute(Op_Atan, {x, root}, iLanes, iLine));
        else
            value.aSlots.push_back(Compute(Op_Atan, {root, x}, iLanes, iLine));
        break;
    }
    case EOpAtan:
        if (aArgs.size() == 2)
            value.aSlots.push_back(Compute(Op_Atan, {arg(0), arg(1)}, iLanes, iLine));
        else
            value.aSlots.push_back(Compute(Op_Atan, {arg(0), Immediate(1.0f, iLanes)}, iLanes, iLine));
        break;
    case EOpSinh:
    case EOpCosh:
    case EOpTanh:
    {
        STxeOperand x = Compute(Op_Mul, {arg(0), Immediate(k_fLog2E, iLanes)}, iLanes, iLine);
        STxeOperand e = Compute(Op_Exp2, {x}, iLanes, iLine);
        STxeOperand inverse = Compute(Op_Rcp, {e}, iLanes, iLine);
        STxeOperand difference = Compute(Op_Add, {e, Negated(inverse)}, iLanes, iLine);
        STxeOperand sum = Compute(Op_Add, {e, inverse}, iLanes, iLine);
        if (eOp == EOpSinh)
            value.aSlots.push_back(Compute(Op_Mul, {difference, Immediate(0.5f, iLanes)}, iLanes, iLine));
        else if (eOp == EOpCosh)
            value.aSlots.push_back(Compute(Op_Mul, {sum, Immediate(0.5f, iLanes)}, iLanes, iLine));
        else
            value.aSlots.push_back(Compute(Op_Mul, {difference, Compute(Op_Rcp, {sum}, iLanes, iLine)}, iLanes, iLine));
        break;
    }
    case EOpAsinh:
    case EOpAcosh:
    {
        STxeOperand x = arg(0);
        STxeOperand t = NewTemp(iLanes);
        Emit(Op_Mad, t, {x, x, Immediate(eOp == EOpAsinh ? 1.0f : -1.0f, iLanes)}, iLine);
        STxeOperand root = Compute(Op_Sqrt, {t}, iLanes, iLine);
        STxeOperand sum = Compute(Op_Add, {x, root}, iLanes, iLine);
        STxeOperand logarithm = Compute(Op_Log2, {sum}, iLanes, iLine);
        value.aSlots.push_back(Compute(Op_Mul, {logarithm, Immediate(k_fLn2, iLanes)}, iLanes, iLine));
        break;
    }
    case EOpAtanh:
    {
        STxeOperand x = arg(0);
        STxeOperand above = Compute(Op_Add, {Immediate(1.0f, iLanes), x}, iLanes, iLine);
        STxeOperand below = Compute(Op_Add, {Immediate(1.0f, iLanes), Negated(x)}, iLanes, iLine);
        STxeOperand ratio = Compute(Op_Mul, {above, Compute(Op_Rcp, {below}, iLanes, iLine)}, iLanes, iLine);
        STxeOperand logarithm = Compute(Op_Log2, {ratio}, iLanes, iLine);
        value.aSlots.push_back(Compute(Op_Mul, {logarithm, Immediate(0.5f * k_fLn2, iLanes)}, iLanes, iLine));
        break;
    }
    case EOpPow:
    {
        STxeOperand logarithm = Compute(Op_Log2, {arg(0)}, iLanes, iLine);
        STxeOperand product = Compute(Op_Mul, {logarithm, arg(1)}, iLanes, iLine);
        value.aSlots.push_back(Compute(Op_Exp2, {product}, iLanes, iLine));
        break;
    }
    case EOpExp: scaled(Op_Exp2, k_fLog2E, 1.0f); break;
    case EOpLog: scaled(Op_Log2, 1.0f, k_fLn2); break;
    case EOpExp2: unary(Op_Exp2); break;
    case EOpLog2: unary(Op_Log2); break;
    case EOpSqrt: unary(Op_Sqrt); break;
    case EOpInverseSqrt: unary(Op_Rsq); break;
    case EOpAbs:
    {
        STxeOperand absolute = raw(0);
        absolute.bAbs = true;
        absolute.bNegate = false;
        value.aSlots.push_back(absolute);
        break;
    }
    case EOpSign: unary(Op_Sgn); break;
    case EOpFloor: unary(Op_Flr); break;
    case EOpFract: unary(Op_Frc); break;
    case EOpRound:
    case EOpRoundEven: unary(Op_Rnd); break;
    case EOpCeil:
        value.aSlots.push_back(Negated(Compute(Op_Flr, {Negated(fit(raw(0), iLanes))}, iLanes, iLine)));
        break;
    case EOpTrunc:
    {
        STxeOperand magnitude = fit(raw(0), iLanes);
        magnitude.bAbs = true;
        magnitude.bNegate = false;
        STxeOperand whole = Compute(Op_Flr, {magnitude}, iLanes, iLine);
        STxeOperand sign = Compute(Op_Sgn, {fit(raw(0), iLanes)}, iLanes, iLine);
        value.aSlots.push_back(Compute(Op_Mul, {whole, sign}, iLanes, iLine));
        break;
    }
    case EOpMin: value.aSlots.push_back(Compute(Op_Min, {arg(0), arg(1)}, iLanes, iLine)); break;
    case EOpMax: value.aSlots.push_back(Compute(Op_Max, {arg(0), arg(1)}, iLanes, iLine)); break;
    case EOpClamp:
    {
        STxeOperand low = Compute(Op_Max, {arg(0), arg(1)}, iLanes, iLine);
        value.aSlots.push_back(Compute(Op_Min, {low, arg(2)}, iLanes, iLine));
        break;
    }
    case EOpMix:
        if (aNodes.size() == 3 && aNodes[2]->getBasicType() == EbtBool)
        {
            value.aSlots.push_back(Compute(Op_Sel, {arg(2), arg(1), arg(0)}, iLanes, iLine));
        }
        else
        {
            STxeOperand difference = Compute(Op_Add, {arg(1), Negated(arg(0))}, iLanes, iLine);
            STxeOperand result = NewTemp(iLanes);
            Emit(Op_Mad, result, {difference, arg(2), arg(0)}, iLine);
            value.aSlots.push_back(result);
        }
        break;
    case EOpStep: value.aSlots.push_back(Compute(Op_Sge, {arg(1), arg(0)}, iLanes, iLine)); break;
    case EOpSmoothStep:
    {
        STxeOperand offset = Compute(Op_Add, {arg(2), Negated(arg(0))}, iLanes, iLine);
        STxeOperand range = Compute(Op_Add, {arg(1), Negated(arg(0))}, iLanes, iLine);
        STxeOperand inverse = Compute(Op_Rcp, {range}, iLanes, iLine);
        STxeOperand t = Compute(Op_Mul, {offset, inverse}, iLanes, iLine);
        t = Compute(Op_Max, {t, Immediate(0.0f, iLanes)}, iLanes, iLine);
        t = Compute(Op_Min, {t, Immediate(1.0f, iLanes)}, iLanes, iLine);
        STxeOperand cubic = NewTemp(iLanes);
        Emit(Op_Mad, cubic, {t, Immediate(-2.0f, iLanes), Immediate(3.0f, iLanes)}, iLine);
        STxeOperand square = Compute(Op_Mul, {t, t}, iLanes, iLine);
        value.aSlots.push_back(Compute(Op_Mul, {square, cubic}, iLanes, iLine));
        break;
    }
    case EOpLength: value.aSlots.push_back(length(raw(0))); break;
    case EOpDistance:
    {
        const int iWidth = raw(0).uiCount;
        STxeOperand difference = Compute(Op_Add, {raw(0), Negated(Broadcast(raw(1), iWidth))}, iWidth, iLine);
        value.aSlots.push_back(length(difference));
        break;
    }
    case EOpDot:
        value.aSlots.push_back(Compute(DotFor(raw(0).uiCount), {raw(0), raw(1)}, 1, iLine));
        break;
    case EOpCross:
    {
        const STxeOperand a = raw(0);
        const STxeOperand b = raw(1);
        STxeOperand product = Compute(Op_Mul, {Swizzled(a, {2, 0, 1}), Swizzled(b, {1, 2, 0})}, 3, iLine);
        STxeOperand result = NewTemp(3);
        Emit(Op_Mad, result, {Swizzled(a, {1, 2, 0}), Swizzled(b, {2, 0, 1}), Negated(product)}, iLine);
        value.aSlots.push_back(result);
        break;
    }
    case EOpNormalize:
    {
        const STxeOperand v = raw(0);
        if (v.uiCount == 1)
        {
            unary(Op_Sgn);
            break;
        }
        STxeOperand squared = Compute(DotFor(v.uiCount), {v, v}, 1, iLine);
        STxeOperand inverse = Compute(Op_Rsq, {squared}, 1, iLine);
        value.aSlots.push_back(Compute(Op_Mul, {v, Broadcast(inverse, v.uiCount)}, v.uiCount, iLine));
        break;
    }
    case EOpFaceForward:
    {
        STxeOperand d = Compute(DotFor(raw(2).uiCount), {raw(2), raw(1)}, 1, iLine);
        STxeOperand facing = Compute(Op_Slt, {d, Immediate(0.0f)}, 1, iLine);
        value.aSlots.push_back(Compute(Op_Sel, {Broadcast(facing, iLanes), arg(0), Negated(arg(0))}, iLanes, iLine));
        break;
    }
    case EOpReflect:
    {
        STxeOperand d = Compute(DotFor(raw(1).uiCount), {raw(1), raw(0)}, 1, iLine);
        STxeOperand twice = Compute(Op_Add, {d, d}, 1, iLine);
        STxeOperand result = NewTemp(iLanes);
        Emit(Op_Mad, result, {Negated(arg(1)), Broadcast(twice, iLanes), arg(0)}, iLine);
        value.aSlots.push_back(result);
        break;
    }
    case EOpRefract:
    {
        const STxeOperand eta = Broadcast(raw(2), 1);
        STxeOperand d = Compute(DotFor(raw(1).uiCount), {raw(1), raw(0)}, 1, iLine);
        STxeOperand oneMinus = NewTemp(1);
        Emit(Op_Mad, oneMinus, {Negated(d), d, Immediate(1.0f)}, iLine);
        STxeOperand eta2 = Compute(Op_Mul, {eta, eta}, 1, iLine);
        STxeOperand k = NewTemp(1);
        Emit(Op_Mad, k, {Negated(eta2), oneMinus, Immediate(1.0f)}, iLine);
        STxeOperand valid = Compute(Op_Sge, {k, Immediate(0.0f)}, 1, iLine);
        STxeOperand clamped = Compute(Op_Max, {k, Immediate(0.0f)}, 1, iLine);
        STxeOperand root = Compute(Op_Sqrt, {clamped}, 1, iLine);
        STxeOperand factor = NewTemp(1);
        Emit(Op_Mad, factor, {eta, d, root}, iLine);
        STxeOperand scaledI = Compute(Op_Mul, {arg(0), Broadcast(eta, iLanes)}, iLanes, iLine);
        STxeOperand bent = NewTemp(iLanes);
        Emit(Op_Mad, bent, {Negated(Broadcast(factor, iLanes)), arg(1), scaledI}, iLine);
        value.aSlots.push_back(Compute(Op_Mul, {bent, Broadcast(valid, iLanes)}, iLanes, iLine));
        break;
    }
    case EOpFma:
    {
        STxeOperand result = NewTemp(iLanes);
        Emit(Op_Mad, result, {arg(0), arg(1), arg(2)}, iLine);
        value.aSlots.push_back(result);
        break;
    }
    case EOpDPdx:
    case EOpDPdxFine:
    case EOpDPdxCoarse: unary(Op_Ddx); break;
    case EOpDPdy:
    case EOpDPdyFine:
    case EOpDPdyCoarse: unary(Op_Ddy); break;
    case EOpFwidth:
    case EOpFwidthFine:
    case EOpFwidthCoarse:
    {
        STxeOperand dx = Compute(Op_Ddx, {arg(0)}, iLanes, iLine);
        STxeOperand dy = Compute(Op_Ddy, {arg(0)}, iLanes, iLine);
        dx.bAbs = true;
        dy.bAbs = true;
        value.aSlots.push_back(Compute(Op_Add, {dx, dy}, iLanes, iLine));
        break;
    }
    case EOpAny:
    case EOpAll:
    {
        const STxeOperand v = raw(0);
        STxeOperand sum = Compute(DotFor(v.uiCount), {v, Immediate(1.0f, v.uiCount)}, 1, iLine);
        if (eOp == EOpAny)
            value.aSlots.push_back(Compute(Op_Slt, {Immediate(0.0f), sum}, 1, iLine));
        else
            value.aSlots.push_back(Compute(Op_Sge, {sum, Immediate(static_cast<float>(v.uiCount))}, 1, iLine));
        break;
    }
    case EOpIsNan: value.aSlots.push_back(Compute(Op_Sne, {arg(0), arg(0)}, iLanes, iLine)); break;
    case EOpIsInf:
    {
        STxeOperand magnitude = arg(0);
        magnitude.bAbs = true;
        magnitude.bNegate = false;
        value.aSlots.push_back(
            Compute(Op_Seq, {magnitude, Immediate(std::numeric_limits<float>::infinity(), iLanes)}, iLanes, iLine));
        break;
    }
    case EOpFloatBitsToInt:
    case EOpFloatBitsToUint:
    case EOpIntBitsToFloat:
    case EOpUintBitsToFloat:
        value.aSlots.push_back(raw(0)); // lanes are untyped 32-bit words
        break;
    case EOpTranspose:
    {
        const SValue& matrix = aArgs[0];
        const std::vector<std::uint8_t> aResult = SlotLanes(type);
        for (std::size_t c = 0; c < aResult.size(); ++c)
        {
            STxeOperand column = NewTemp(aResult[c]);
            for (int r = 0; r < aResult[c] && r < static_cast<int>(matrix.aSlots.size()); ++r)
                Emit(Op_Mov, Lane(column, r), {Lane(matrix.aSlots[r], static_cast<int>(c))}, iLine);
            value.aSlots.push_back(column);
        }
        break;
    }
    case EOpOuterProduct:
    {
        const STxeOperand column = raw(0);
        const STxeOperand row = raw(1);
        for (int c = 0; c < row.uiCount; ++c)
            value.aSlots.push_back(Compute(Op_Mul, {column, Broadcast(Lane(row, c), column.uiCount)}, column.uiCount, iLine));
        break;
    }
    case EOpDeterminant:
    {
        const SValue& m = aArgs[0];
        if (m.aSlots.size() == 2)
        {
            STxeOperand product = Compute(Op_Mul, {Lane(m.aSlots[0], 0), Lane(m.aSlots[1], 1)}, 1, iLine);
            STxeOperand result = NewTemp(1);
            Emit(Op_Mad, result, {Negated(Lane(m.aSlots[0], 1)), Lane(m.aSlots[1], 0), product}, iLine);
            value.aSlots.push_back(result);
        }
        else if (m.aSlots.size() == 3)
        {
            const STxeOperand& b = m.aSlots[1];
            const STxeOperand& c = m.aSlots[2];
            STxeOperand product = Compute(Op_Mul, {Swizzled(b, {2, 0, 1}), Swizzled(c, {1, 2, 0})}, 3, iLine);
            STxeOperand cross = NewTemp(3);
            Emit(Op_Mad, cross, {Swizzled(b, {1, 2, 0}), Swizzled(c, {2, 0, 1}), Negated(product)}, iLine);
            value.aSlots.push_back(Compute(Op_Dp3, {m.aSlots[0], cross}, 1, iLine));
        }
        else
        {
            Fail(iLine, "'determinant' of a 4x4 matrix is not supported by the TXE code generator");
            return false;
        }
        break;
    }
    default:
        Fail(iLine, "this built-in function is not supported by the TXE code generator");
        return false;
    }
    return !m_bFailed;
}

} // namespace ZamCompiler
