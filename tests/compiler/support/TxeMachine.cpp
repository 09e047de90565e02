#include "TxeMachine.h"

#include "TxeArithmetic.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ZamCompilerTest
{

using namespace ZamCompiler;

namespace
{

constexpr long k_lMaxSteps = 4000000;
constexpr int k_iMaxSlot = 1 << 20;

bool IsSample(ETxeOp eOp)
{
    return eOp >= Op_Tex && eOp <= Op_Txs;
}

} // namespace

CTxeMachine::CTxeMachine(const STxeProgram& program, ITxeSampler* pSampler) : m_program(program), m_pSampler(pSampler)
{
    for (const STxeBinding& binding : program.aBindings)
    {
        for (std::size_t i = 0; i + 3 < binding.aValues.size(); i += 4)
            SetSlot(binding.eFile, binding.iBase + static_cast<int>(i / 4),
                    {binding.aValues[i], binding.aValues[i + 1], binding.aValues[i + 2], binding.aValues[i + 3]});
    }
}

const STxeBinding* CTxeMachine::Binding(const std::string& name) const
{
    for (const STxeBinding& binding : m_program.aBindings)
    {
        if (binding.name == name)
            return &binding;
    }
    return nullptr;
}

void CTxeMachine::Set(const std::string& name, const std::vector<SLanes>& aSlots, int iInvocation)
{
    const STxeBinding* pBinding = Binding(name);
    if (!pBinding)
        return;
    const std::size_t uiCount = std::min(aSlots.size(), static_cast<std::size_t>(std::max(0, pBinding->iSlots)));
    for (std::size_t i = 0; i < uiCount; ++i)
        SetSlot(pBinding->eFile, pBinding->iBase + static_cast<int>(i), aSlots[i], iInvocation);
}

void CTxeMachine::SetSlot(ETxeFile eFile, int iSlot, const SLanes& value, int iInvocation)
{
    for (int i = 0; i < k_iInvocations; ++i)
    {
        if (iInvocation < 0 || iInvocation == i)
            Writable(eFile, iSlot, i) = value;
    }
}

// Temporaries and scratch memory start as NaN: a program that reads a lane it never
// wrote shows it in its outputs instead of reading a lucky zero.
SLanes CTxeMachine::Unwritten(ETxeFile eFile)
{
    const double f = eFile == File_Temp || eFile == File_Scratch ? std::numeric_limits<double>::quiet_NaN() : 0.0;
    return {f, f, f, f};
}

SLanes CTxeMachine::Slot(ETxeFile eFile, int iSlot, int iInvocation) const
{
    const std::vector<SLanes>& aFile = m_aaFiles[eFile & 7];
    const std::size_t uiIndex = static_cast<std::size_t>(iSlot) * k_iInvocations + static_cast<std::size_t>(iInvocation);
    if (iSlot < 0 || uiIndex >= aFile.size())
        return Unwritten(eFile);
    return aFile[uiIndex];
}

SLanes& CTxeMachine::Writable(ETxeFile eFile, int iSlot, int iInvocation)
{
    std::vector<SLanes>& aFile = m_aaFiles[eFile & 7];
    const std::size_t uiIndex = static_cast<std::size_t>(std::clamp(iSlot, 0, k_iMaxSlot)) * k_iInvocations +
                                static_cast<std::size_t>(iInvocation);
    if (uiIndex >= aFile.size())
        aFile.resize(uiIndex + k_iInvocations, Unwritten(eFile));
    return aFile[uiIndex];
}

void CTxeMachine::Fail(const std::string& text)
{
    if (m_error.empty())
        m_error = text;
}

bool CTxeMachine::Run()
{
    if (!Match())
    {
        Fail("unbalanced if/else/endif or loop/endloop");
        return false;
    }
    std::size_t pc = 0;
    long lSteps = 0;
    while (pc < m_program.aInstructions.size() && m_error.empty())
    {
        if (++lSteps > k_lMaxSteps)
        {
            Fail("the program runs away (more than " + std::to_string(k_lMaxSteps) + " steps)");
            break;
        }
        if (!Step(pc))
            break;
    }
    return m_error.empty();
}

bool CTxeMachine::Step(std::size_t& pc)
{
    const STxeInstruction& instr = m_program.aInstructions[pc];
    if (TxeOpInfo(instr.eOp).eClass == Class_Flow)
        return Flow(instr, pc);
    if (m_uiActive != 0)
        Execute(instr);
    ++pc;
    return true;
}

// Lanes of the active set whose operand's first lane is (or is not) zero.
unsigned CTxeMachine::Holding(const STxeOperand& op, bool bNonZero)
{
    unsigned uiLanes = 0;
    for (int i = 0; i < k_iInvocations; ++i)
    {
        if (((m_uiActive >> i) & 1u) && ((Fetch(op, i)[0] != 0.0) == bNonZero))
            uiLanes |= 1u << i;
    }
    return uiLanes;
}

CTxeMachine::SFrame* CTxeMachine::InnermostLoop()
{
    for (std::size_t i = m_aFrames.size(); i-- > 0;)
    {
        if (m_aFrames[i].bLoop)
            return &m_aFrames[i];
    }
    return nullptr;
}

// Lanes that may not run again before the innermost loop's next iteration (or ever).
unsigned CTxeMachine::Blocked()
{
    const SFrame* pLoop = InnermostLoop();
    return m_uiDead | (pLoop ? pLoop->uiBroken | pLoop->uiContinued : 0u);
}

bool CTxeMachine::Flow(const STxeInstruction& instr, std::size_t& pc)
{
    switch (instr.eOp)
    {
    case Op_If:
    case Op_Else:
    case Op_Endif:
        return Branch(instr, pc);
    case Op_Loop:
        if ((instr.trips.bKnown && instr.trips.iWorst <= 0) || m_uiActive == 0)
        {
            pc = m_aJump[pc] + 1;
            return true;
        }
        m_aFrames.push_back(SFrame());
        m_aFrames.back().bLoop = true;
        m_aFrames.back().uiStart = pc;
        m_aFrames.back().uiSaved = m_uiActive;
        ++pc;
        return true;
    case Op_Endloop:
        return EndLoop(pc);
    case Op_Brk:
    case Op_Brkz:
    case Op_Cont:
        return Leave(instr, pc);
    case Op_Kil:
    case Op_Ret:
        if (instr.eOp == Op_Kil)
            m_uiDiscarded |= m_uiActive;
        m_uiDead |= m_uiActive;
        m_uiActive = 0;
        ++pc;
        return true;
    default:
        Fail("unknown flow instruction");
        return false;
    }
}

// if / else / endif: lanes whose condition fails wait at else, the rest at endif.
bool CTxeMachine::Branch(const STxeInstruction& instr, std::size_t& pc)
{
    if (instr.eOp == Op_If)
    {
        SFrame frame;
        frame.uiSaved = m_uiActive;
        frame.uiTaken = Holding(instr.aSrc[0], true);
        m_aFrames.push_back(frame);
        m_uiActive = frame.uiTaken;
        pc = m_uiActive ? pc + 1 : m_aJump[pc];
        return true;
    }
    if (m_aFrames.empty() || m_aFrames.back().bLoop)
    {
        Fail("else/endif outside an if");
        return false;
    }
    const SFrame frame = m_aFrames.back();
    if (instr.eOp == Op_Else)
    {
        m_uiActive = frame.uiSaved & ~frame.uiTaken & ~Blocked();
        pc = m_uiActive ? pc + 1 : m_aJump[pc];
        return true;
    }
    m_aFrames.pop_back();
    m_uiActive = frame.uiSaved & ~Blocked();
    ++pc;
    return true;
}

// brk, brkz and cont: the leaving lanes wait for the loop's end or next iteration.
bool CTxeMachine::Leave(const STxeInstruction& instr, std::size_t& pc)
{
    const unsigned uiLeaving = instr.eOp == Op_Brkz ? Holding(instr.aSrc[0], false) : m_uiActive;
    SFrame* pLoop = InnermostLoop();
    if (!pLoop)
    {
        Fail(std::string(TxeOpInfo(instr.eOp).pMnemonic) + " outside a loop");
        return false;
    }
    if (instr.eOp == Op_Cont)
        pLoop->uiContinued |= uiLeaving;
    else
        pLoop->uiBroken |= uiLeaving;
    m_uiActive &= ~uiLeaving;
    ++pc;
    return true;
}

bool CTxeMachine::EndLoop(std::size_t& pc)
{
    if (m_aFrames.empty() || !m_aFrames.back().bLoop)
    {
        Fail("endloop closes no loop");
        return false;
    }
    SFrame& frame = m_aFrames.back();
    const STxeInstruction& loop = m_program.aInstructions[frame.uiStart];
    const unsigned uiNext = frame.uiSaved & ~frame.uiBroken & ~m_uiDead;
    ++frame.iIteration;
    if (uiNext == 0 || (loop.trips.bKnown && frame.iIteration > loop.trips.iWorst))
    {
        m_uiActive = frame.uiSaved & ~m_uiDead;
        m_aFrames.pop_back();
        ++pc;
        return true;
    }
    frame.uiContinued = 0;
    m_uiActive = uiNext;
    pc = frame.uiStart + 1;
    return true;
}

// An indexed access stays inside the resource its base slot belongs to.
bool CTxeMachine::InBinding(const STxeOperand& op, long long llSlot) const
{
    if (op.iRelative < 0 || op.eFile == File_Temp)
        return true;
    for (const STxeBinding& binding : m_program.aBindings)
    {
        if (binding.eFile == op.eFile && op.iIndex >= binding.iBase && op.iIndex < binding.iBase + binding.iSlots)
            return llSlot >= binding.iBase && llSlot < binding.iBase + binding.iSlots;
    }
    return true;
}

bool CTxeMachine::Address(const STxeOperand& op, int iInvocation, int& iSlot)
{
    long long llSlot = op.iIndex;
    if (op.iRelative >= 0)
        llSlot += Integer(Slot(File_Temp, op.iRelative, iInvocation)[op.iRelativeLane & 3]);
    if (llSlot < 0 || llSlot > k_iMaxSlot || !InBinding(op, llSlot))
    {
        // Masked-off invocations may hold any index: only running ones are held to it.
        if ((m_uiActive >> iInvocation) & 1u)
            Fail("indexed access to slot " + std::to_string(llSlot) + " is out of range");
        return false;
    }
    iSlot = static_cast<int>(llSlot);
    return true;
}

SLanes CTxeMachine::Fetch(const STxeOperand& op, int iInvocation)
{
    SLanes base = {0, 0, 0, 0};
    if (op.eFile == File_Immediate)
    {
        const std::size_t uiFirst = static_cast<std::size_t>(std::max(0, op.iIndex)) * 4;
        for (std::size_t i = 0; i < 4 && uiFirst + i < m_program.aPool.size(); ++i)
            base[i] = m_program.aPool[uiFirst + i];
    }
    else if (op.eFile == File_Sampler)
    {
        base = {static_cast<double>(op.iIndex), 0, 0, 0};
    }
    else if (op.eFile != File_None)
    {
        int iSlot = 0;
        if (Address(op, iInvocation, iSlot))
            base = Slot(op.eFile, iSlot, iInvocation);
    }
    SLanes lanes;
    for (int i = 0; i < 4; ++i)
    {
        double dValue = base[op.auiSwizzle[std::min(i, std::max(0, op.uiCount - 1))] & 3];
        if (op.bAbs)
            dValue = std::fabs(dValue);
        lanes[i] = op.bNegate ? -dValue : dValue;
    }
    return lanes;
}

void CTxeMachine::Execute(const STxeInstruction& instr)
{
    // Sources of every invocation first: ddx/ddy read the neighbours' values.
    std::array<SSources, k_iInvocations> aSources;
    for (int i = 0; i < k_iInvocations; ++i)
    {
        for (int s = 0; s < 4; ++s)
            aSources[i][s] = Fetch(instr.aSrc[s], i);
    }
    for (int i = 0; i < k_iInvocations; ++i)
    {
        if (!((m_uiActive >> i) & 1u))
            continue;
        const SLanes r = Compute(instr, aSources, i);
        int iSlot = 0;
        if (!Address(instr.dst, i, iSlot))
            return;
        SLanes& destination = Writable(instr.dst.eFile, iSlot, i);
        for (int k = 0; k < instr.dst.uiCount && k < 4; ++k)
            destination[instr.dst.auiSwizzle[k] & 3] = r[k];
    }
}

SLanes CTxeMachine::Compute(const STxeInstruction& instr, const std::array<SSources, k_iInvocations>& aSources,
                            int iInvocation)
{
    const SSources& sources = aSources[iInvocation];
    const SLanes& a = sources[0];
    auto dot = [&](int iLanes) {
        float fSum = 0.0f;
        for (int i = 0; i < iLanes; ++i)
            fSum += static_cast<float>(AsFloat(a[i])) * static_cast<float>(AsFloat(sources[1][i]));
        return SLanes{fSum, fSum, fSum, fSum};
    };
    // Fine derivatives over the quad: each row and each column differences its own pair.
    const int iRow = iInvocation & 2, iColumn = iInvocation & 1;
    SLanes r = {0, 0, 0, 0};
    for (int i = 0; i < 4; ++i)
    {
        switch (instr.eOp)
        {
        case Op_Mov:
        case Op_Ldm:
        case Op_Stm:
        case Op_Ldc: r[i] = a[i]; break; // moves copy the lane, whatever it holds
        case Op_Sel: r[i] = a[i] != 0.0 ? sources[1][i] : sources[2][i]; break;
        case Op_Dp2: return dot(2);
        case Op_Dp3: return dot(3);
        case Op_Dp4: return dot(4);
        case Op_Ddx: r[i] = AsFloat(aSources[iRow + 1][0][i] - aSources[iRow][0][i]); break;
        case Op_Ddy: r[i] = AsFloat(aSources[iColumn + 2][0][i] - aSources[iColumn][0][i]); break;
        default:
            if (IsSample(instr.eOp))
                return Texture(instr, sources, iInvocation);
            if (IsFloatLaneOp(instr.eOp, instr.eType))
                r[i] = FloatLane(instr.eOp, a[i], sources[1][i], sources[2][i]);
            else
                r[i] = IntegerLane(instr.eOp, instr.eType, a[i], sources[1][i], sources[2][i], sources[3][i]);
            break;
        }
    }
    return r;
}

SLanes CTxeMachine::Texture(const STxeInstruction& instr, const SSources& sources, int iInvocation)
{
    if (!m_pSampler)
        return {0, 0, 0, 0};
    if (instr.eOp == Op_Txs)
        return m_pSampler->Size(instr.aSrc[1].iIndex, static_cast<int>(Integer(sources[0][0])));
    STxeSample sample;
    sample.eOp = instr.eOp;
    sample.iInvocation = iInvocation;
    sample.iUnit = instr.aSrc[1].iIndex;
    sample.coordinate = sources[0];
    sample.iCoordinateLanes = instr.aSrc[0].uiCount;
    sample.extra = sources[2];
    sample.extra2 = sources[3];
    for (int i = 0; i < 3; ++i)
        sample.aiTexelOffset[i] = instr.aiTexelOffset[i];
    if (instr.eOp == Op_Txp && sample.iCoordinateLanes > 1)
    {
        const double dDivisor = sample.coordinate[static_cast<std::size_t>(sample.iCoordinateLanes - 1)];
        for (int i = 0; i + 1 < sample.iCoordinateLanes; ++i)
            sample.coordinate[static_cast<std::size_t>(i)] /= dDivisor;
    }
    return m_pSampler->Sample(sample);
}

bool CTxeMachine::Match()
{
    const std::size_t uiCount = m_program.aInstructions.size();
    m_aJump.assign(uiCount, 0);
    std::vector<std::size_t> aOpen;
    for (std::size_t i = 0; i < uiCount; ++i)
    {
        const ETxeOp eOp = m_program.aInstructions[i].eOp;
        if (eOp == Op_If || eOp == Op_Loop)
        {
            aOpen.push_back(i);
        }
        else if (eOp == Op_Else || eOp == Op_Endif || eOp == Op_Endloop)
        {
            if (aOpen.empty())
                return false;
            const ETxeOp eOpening = m_program.aInstructions[aOpen.back()].eOp;
            if ((eOp == Op_Endloop) != (eOpening == Op_Loop) || (eOp == Op_Else && eOpening != Op_If))
                return false;
            m_aJump[aOpen.back()] = i;
            aOpen.pop_back();
            if (eOp == Op_Else)
                aOpen.push_back(i);
        }
    }
    return aOpen.empty();
}

} // namespace ZamCompilerTest
