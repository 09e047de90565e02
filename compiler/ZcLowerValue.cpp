#include "ZcLowerValue.h"

#include <algorithm>

namespace ZamCompiler
{

STxeOperand TempOperand(int iRegister, int iLanes)
{
    STxeOperand op;
    op.eFile = File_Temp;
    op.iIndex = iRegister;
    op.uiCount = static_cast<std::uint8_t>(std::clamp(iLanes, 1, 4));
    return op;
}

STxeOperand Swizzled(const STxeOperand& op, const CLanes& aLanes)
{
    STxeOperand result = op;
    const int iCount = std::min<int>(4, static_cast<int>(aLanes.size()));
    for (int i = 0; i < iCount; ++i)
        result.auiSwizzle[i] = op.auiSwizzle[std::min<int>(aLanes[i], 3)];
    result.uiCount = static_cast<std::uint8_t>(iCount);
    return result;
}

STxeOperand Lane(const STxeOperand& op, int iLane)
{
    return Swizzled(op, {static_cast<std::uint8_t>(iLane)});
}

STxeOperand Broadcast(const STxeOperand& op, int iLanes)
{
    if (op.uiCount != 1 || iLanes <= 1)
        return op;
    STxeOperand result = op;
    for (int i = 0; i < 4; ++i)
        result.auiSwizzle[i] = op.auiSwizzle[0];
    result.uiCount = static_cast<std::uint8_t>(std::min(iLanes, 4));
    return result;
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

CLanes IdentityLanes(int iLanes)
{
    CLanes aLanes;
    for (int i = 0; i < iLanes; ++i)
        aLanes.push_back(static_cast<std::uint8_t>(i));
    return aLanes;
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
