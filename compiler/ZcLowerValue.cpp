#include "ZcLowerValue.h"

#include <algorithm>

namespace ZamCompiler
{

STxeOperand Lane(const STxeOperand& op, int iLane)
{
    return Swizzled(op, {static_cast<std::uint8_t>(iLane)});
}

STxeOperand Fit(const STxeOperand& op, int iWidth)
{
    STxeOperand result = Broadcast(op, iWidth);
    result.uiCount = static_cast<std::uint8_t>(std::min<int>(iWidth, result.uiCount));
    return result;
}

STxeOperand Negated(const STxeOperand& op)
{
    STxeOperand result = op;
    result.bNegate = !result.bNegate;
    return result;
}

STxeOperand Absolute(const STxeOperand& op)
{
    STxeOperand result = op;
    result.bAbs = true;
    result.bNegate = false;
    return result;
}

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

} // namespace ZamCompiler
