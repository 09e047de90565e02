#include "ZcLowerProgram.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace ZamCompiler
{

namespace
{

constexpr std::size_t k_uiRetargetWindow = 16;

bool IsTypedOp(ETxeOp eOp)
{
    switch (eOp)
    {
    case Op_Add:
    case Op_Mul:
    case Op_Mad:
    case Op_Min:
    case Op_Max:
    case Op_Slt:
    case Op_Sge:
    case Op_Seq:
    case Op_Sne:
    case Op_Sgn:
    case Op_And:
    case Op_Or:
    case Op_Xor:
    case Op_Not:
    case Op_Shl:
    case Op_Shr:
    case Op_Idiv:
    case Op_F2i:
    case Op_I2f:
        return true;
    default:
        return eOp >= Op_Bcnt && eOp < Op_Count;
    }
}

} // namespace

CProgramBuilder::CProgramBuilder(ETxeStage eStage, const SSourceLimits& limits, STxeProgram& program,
                                 CDiagnosticList& aDiagnostics)
    : m_limits(limits), m_program(program), m_aDiagnostics(aDiagnostics)
{
    m_program.eStage = eStage;
    m_program.aInstructions.reserve(4096);
}

void CProgramBuilder::Fail(int iLine, const std::string& text)
{
    if (!m_bFailed)
        AddError(m_aDiagnostics, iLine > 0 ? iLine : 1, text);
    m_bFailed = true;
}

void CProgramBuilder::Fail(int iLine, const std::string& name, const std::string& text)
{
    Fail(iLine, "'" + name + "' : " + text);
}

void CProgramBuilder::Refuse(int iLine, const std::string& name, const std::string& what)
{
    Fail(iLine, name, what + " is not supported by the TXE code generator");
}

void CProgramBuilder::Mark(int iRegister, std::uint8_t uiFlag)
{
    if (iRegister < 0)
        return;
    if (static_cast<std::size_t>(iRegister) >= m_aRegisterFlags.size())
        m_aRegisterFlags.resize(static_cast<std::size_t>(iRegister) * 2 + 16, 0);
    m_aRegisterFlags[static_cast<std::size_t>(iRegister)] |= uiFlag;
}

bool CProgramBuilder::Has(int iRegister, std::uint8_t uiFlag) const
{
    return iRegister >= 0 && static_cast<std::size_t>(iRegister) < m_aRegisterFlags.size() &&
           (m_aRegisterFlags[static_cast<std::size_t>(iRegister)] & uiFlag) != 0;
}

bool CProgramBuilder::SPoolKey::operator==(const SPoolKey& other) const
{
    return eType == other.eType && std::memcmp(auiBits, other.auiBits, sizeof(auiBits)) == 0;
}

std::size_t CProgramBuilder::SPoolKeyHash::operator()(const SPoolKey& key) const
{
    std::uint64_t uiHash = 1469598103934665603ull ^ key.eType;
    for (std::uint64_t uiBits : key.auiBits)
        uiHash = (uiHash ^ uiBits) * 1099511628211ull;
    return static_cast<std::size_t>(uiHash ^ (uiHash >> 29));
}

STxeOperand CProgramBuilder::NewTemp(int iLanes)
{
    return TempOperand(m_iNextTemp++, iLanes);
}

int CProgramBuilder::Emit(ETxeOp eOp, const STxeOperand& dst, std::initializer_list<STxeOperand> aSrc, int iLine)
{
    if (m_bFailed)
        return -1;
    if (static_cast<int>(m_program.aInstructions.size()) >= m_limits.iMaxInstructions)
    {
        Fail(iLine, "the program is too large: more than " + std::to_string(m_limits.iMaxInstructions) +
                        " instructions after inlining");
        return -1;
    }
    // Copied from a blank one and filled in place: an instruction is large, and building it
    // aside and copying it in was most of what emitting cost.
    static const STxeInstruction s_blank;
    STxeInstruction& instr = m_program.aInstructions.emplace_back(s_blank);
    instr.eOp = eOp;
    instr.eType = IsTypedOp(eOp) ? m_eType : Type_Float;
    instr.dst = dst;
    int i = 0;
    for (const STxeOperand& src : aSrc)
    {
        if (i < 4)
            instr.aSrc[i++] = src;
    }
    instr.iLine = iLine;
    return static_cast<int>(m_program.aInstructions.size()) - 1;
}

STxeOperand CProgramBuilder::Compute(ETxeOp eOp, std::initializer_list<STxeOperand> aSrc, int iLanes, int iLine)
{
    STxeOperand dst = NewTemp(iLanes);
    Emit(eOp, dst, aSrc, iLine);
    return dst;
}

void CProgramBuilder::SetTrips(int iInstruction, const STxeTrips& trips)
{
    if (iInstruction >= 0 && iInstruction < static_cast<int>(m_program.aInstructions.size()))
        m_program.aInstructions[static_cast<std::size_t>(iInstruction)].trips = trips;
}

void CProgramBuilder::MarkNonDependent(int iInstruction)
{
    if (iInstruction >= 0 && iInstruction < static_cast<int>(m_program.aInstructions.size()))
        m_program.aInstructions[static_cast<std::size_t>(iInstruction)].bNonDependent = true;
}

void CProgramBuilder::SetTexelOffset(int iInstruction, const std::int8_t aiOffset[3])
{
    if (iInstruction >= 0 && iInstruction < static_cast<int>(m_program.aInstructions.size()))
        std::copy(aiOffset, aiOffset + 3, m_program.aInstructions[static_cast<std::size_t>(iInstruction)].aiTexelOffset);
}

void CProgramBuilder::EmitOneTripLoop(int iLine)
{
    STxeTrips once;
    once.bKnown = true;
    SetTrips(Emit(Op_Loop, STxeOperand(), {}, iLine), once);
}

bool CProgramBuilder::Touches(std::size_t uiInstruction, const STxeOperand& reg) const
{
    const STxeInstruction& instr = m_program.aInstructions[uiInstruction];
    if (instr.dst.eFile == reg.eFile && instr.dst.iIndex == reg.iIndex)
        return true;
    for (const STxeOperand& op : instr.aSrc)
    {
        if ((op.eFile == reg.eFile && op.iIndex == reg.iIndex) || (reg.eFile == File_Temp && op.iRelative == reg.iIndex))
            return true;
    }
    return reg.eFile == File_Temp && instr.dst.iRelative == reg.iIndex;
}

// Finds the fresh value's producer a few instructions back; when nothing after it touches
// the value or the destination, writing the destination there is the same.
bool CProgramBuilder::Retarget(const STxeOperand& dst, const STxeOperand& src)
{
    const std::size_t uiCount = m_program.aInstructions.size();
    for (std::size_t uiBack = 1; uiBack <= k_uiRetargetWindow && uiBack <= uiCount; ++uiBack)
    {
        const std::size_t uiCandidate = uiCount - uiBack;
        const STxeOperand produced = m_program.aInstructions[uiCandidate].dst;
        const ETxeOp eOp = m_program.aInstructions[uiCandidate].eOp;
        if (TxeOpInfo(eOp).eClass == Class_Flow)
            return false;
        if (produced.eFile != File_Temp || produced.iIndex != src.iIndex)
            continue;
        bool bFull = produced.uiCount == src.uiCount && produced.iRelative < 0 && eOp != Op_Stm;
        for (int i = 0; i < produced.uiCount && bFull; ++i)
            bFull = produced.auiSwizzle[i] == i;
        for (std::size_t k = uiCandidate + 1; k < uiCount && bFull; ++k)
            bFull = !Touches(k, src) && !Touches(k, dst);
        if (!bFull)
            return false;
        m_program.aInstructions[uiCandidate].dst.eFile = dst.eFile;
        m_program.aInstructions[uiCandidate].dst.iIndex = dst.iIndex;
        return true;
    }
    return false;
}

void CProgramBuilder::MoveInto(const STxeOperand& dst, const STxeOperand& src, int iLine)
{
    bool bFresh = src.eFile == File_Temp && !src.bNegate && !src.bAbs && src.iRelative < 0 && dst.iRelative < 0 &&
                  !IsVariable(src.iIndex) && !m_program.aInstructions.empty();
    for (int i = 0; i < src.uiCount && bFresh; ++i)
        bFresh = src.auiSwizzle[i] == i && dst.auiSwizzle[i] == i;
    if (bFresh && !m_bFailed && Retarget(dst, src))
        return;
    Emit(Op_Mov, dst, {src}, iLine);
}

SValue CProgramBuilder::Materialize(const SValue& value, int iLine)
{
    SValue result;
    for (const STxeOperand& op : value.aSlots)
        result.aSlots.push_back(Compute(Op_Mov, {op}, op.uiCount, iLine));
    return result;
}

STxeOperand CProgramBuilder::Immediate(const double adValues[4], int iLanes)
{
    double adLanes[4] = {0.0, 0.0, 0.0, 0.0};
    for (int i = 0; i < iLanes && i < 4; ++i)
    {
        // A float immediate holds what a 32-bit lane can hold.
        adLanes[i] = m_eType == Type_Float ? static_cast<double>(static_cast<float>(adValues[i])) : adValues[i];
    }
    SPoolKey key{m_eType, {}};
    std::memcpy(key.auiBits, adLanes, sizeof(adLanes));
    const auto inserted = m_mapPool.try_emplace(key, static_cast<int>(m_program.aPool.size() / 4));
    const int iEntry = inserted.first->second;
    if (inserted.second)
    {
        m_program.aPool.insert(m_program.aPool.end(), adLanes, adLanes + 4);
        m_program.aPoolTypes.push_back(m_eType);
    }
    STxeOperand op;
    op.eFile = File_Immediate;
    op.iIndex = iEntry;
    op.uiCount = static_cast<std::uint8_t>(std::clamp(iLanes, 1, 4));
    return op;
}

STxeOperand CProgramBuilder::Immediate(const float afValues[4], int iLanes)
{
    const double adValues[4] = {afValues[0], iLanes > 1 ? afValues[1] : 0.0f, iLanes > 2 ? afValues[2] : 0.0f,
                                iLanes > 3 ? afValues[3] : 0.0f};
    return Immediate(adValues, iLanes);
}

STxeOperand CProgramBuilder::Immediate(double dValue, int iLanes)
{
    const double adValues[4] = {dValue, dValue, dValue, dValue};
    return Broadcast(Immediate(adValues, 1), iLanes);
}

double CProgramBuilder::ImmediateLane(const STxeOperand& op, int iLane) const
{
    const std::size_t uiIndex = static_cast<std::size_t>(op.iIndex) * 4 + op.auiSwizzle[iLane & 3];
    double dValue = uiIndex < m_program.aPool.size() ? m_program.aPool[uiIndex] : 0.0;
    if (op.bAbs)
        dValue = std::fabs(dValue);
    return op.bNegate ? -dValue : dValue;
}

bool CProgramBuilder::IsBroadcastImmediate(const STxeOperand& op, float fValue) const
{
    return op.eFile == File_Immediate && !op.bNegate && !op.bAbs && ImmediateLane(op, 0) == static_cast<double>(fValue) &&
           (op.uiCount == 1 || op.auiSwizzle[1] == op.auiSwizzle[0]);
}

int CProgramBuilder::AllocateSlots(ETxeFile eFile, int iSlots)
{
    const int iBase = m_aiNextSlot[eFile & 7];
    m_aiNextSlot[eFile & 7] += iSlots;
    if (eFile == File_Scratch)
        m_program.iScratchSlots = m_aiNextSlot[eFile];
    return iBase;
}

void CProgramBuilder::AddBinding(const STxeBinding& binding)
{
    m_program.aBindings.push_back(binding);
}

void CProgramBuilder::Finish(int iInputSlotsRead)
{
    m_program.iTemps = m_iNextTemp;
    m_program.iInputSlotsRead = iInputSlotsRead;
}

} // namespace ZamCompiler
