#pragma once

// The stacks the lowering keeps while it walks inlined functions, loops and switches.
// Lowering any expression can inline a call, which pushes and pops entries here, so
// nothing outside hands out references into them: callers hold an index and go through
// the accessors every time.

#include "ZcLowerValue.h"

namespace glslang
{
class TIntermTyped;
}

namespace ZamCompiler
{

class CControlStack
{
public:
    // --- inlined functions; the first one entered is main ---
    // bWrapped: the body runs inside a one-trip loop so that a return can leave it.
    // iReturnFlag: register set by a return nested in a loop or switch, -1 when none is needed.
    int EnterFunction(bool bWrapped, int iReturnFlag);
    // Returns the value the function's returns produced (empty for none).
    SValue LeaveFunction();
    int CurrentFunction() const { return static_cast<int>(m_aFrames.size()) - 1; }
    bool IsWrapped(int iFunction) const;
    int ReturnFlag(int iFunction) const;
    bool HasResult(int iFunction) const;
    SValue Result(int iFunction) const;
    void SetResult(int iFunction, const SValue& result);
    // Loops and switches opened inside the function and not yet closed.
    int OpenLevels(int iFunction) const;

    // --- loops and switches, innermost last; each is one TXE loop ---
    // pIncrement: the for loop's increment (null for while, do and switch).
    void EnterLoop(glslang::TIntermTyped* pIncrement);
    void EnterSwitch();
    void Leave();
    bool InLoop() const { return !m_aLevels.empty(); }
    bool InnermostIsSwitch() const;
    glslang::TIntermTyped* InnermostIncrement() const;

private:
    struct SFrame
    {
        SValue result;
        bool bWrapped = false;
        int iReturnFlag = -1;
        int iOpenLevels = 0;
    };
    struct SLevel
    {
        glslang::TIntermTyped* pIncrement = nullptr;
        bool bSwitch = false;
    };

    void Open(const SLevel& level);

    std::vector<SFrame> m_aFrames;
    std::vector<SLevel> m_aLevels;
};

} // namespace ZamCompiler
