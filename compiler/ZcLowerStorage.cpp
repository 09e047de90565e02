#include "ZcLowerStorage.h"

#include "ZcLowerOperators.h"
#include "ZcLowerTree.h"

#include <algorithm>
#include <array>
#include <utility>

namespace ZamCompiler
{

using namespace glslang;

namespace
{

EStorage StorageOf(const TType& type, bool& bSupported)
{
    bSupported = true;
    switch (type.getQualifier().storage)
    {
    case EvqUniform:
        return type.getBasicType() == EbtSampler ? Storage_Sampler : Storage_Uniform;
    case EvqConst:
        return Storage_Uniform;
    case EvqBuffer:
        return Storage_Buffer;
    case EvqVaryingIn:
    case EvqVertexId:
    case EvqInstanceId:
    case EvqFace:
    case EvqFragCoord:
    case EvqPointCoord:
        return Storage_Input;
    case EvqVaryingOut:
    case EvqPosition:
    case EvqPointSize:
    case EvqFragColor:
    case EvqFragDepth:
        return Storage_Output;
    case EvqTemporary:
    case EvqGlobal:
    case EvqIn:
    case EvqOut:
    case EvqInOut:
    case EvqConstReadOnly:
        return type.isArray() ? Storage_Scratch : Storage_Temp;
    default:
        bSupported = false;
        return Storage_Temp;
    }
}

ETxeFile FileOf(EStorage eStorage)
{
    switch (eStorage)
    {
    case Storage_Input: return File_Input;
    case Storage_Uniform:
    case Storage_Buffer: return File_Uniform;
    case Storage_Output: return File_Output;
    case Storage_Sampler: return File_Sampler;
    case Storage_Scratch: return File_Scratch;
    default: return File_Temp;
    }
}

// Locals of a function body; they are dropped when an inlined call ends.
bool IsLocal(TStorageQualifier eQualifier)
{
    switch (eQualifier)
    {
    case EvqTemporary:
    case EvqIn:
    case EvqOut:
    case EvqInOut:
    case EvqConstReadOnly:
        return true;
    default:
        return false;
    }
}

} // namespace

std::string VariableName(const SVariable& variable)
{
    return variable.pSymbol ? UserName(variable.pSymbol) : variable.name;
}

SVariable& CVariableStore::NewVariable()
{
    if (m_uiUsedInChunk == k_uiChunkVariables)
    {
        m_aArena.push_back(std::make_unique<SVariable[]>(k_uiChunkVariables));
        m_uiUsedInChunk = 0;
    }
    return m_aArena.back()[m_uiUsedInChunk++];
}

SVariable* CVariableStore::Find(long long llId) const
{
    const auto it = m_mapVariables.find(llId);
    return it == m_mapVariables.end() ? nullptr : it->second;
}

SVariable* CVariableStore::Variable(TIntermSymbol* pSymbol)
{
    if (SVariable* pExisting = Find(pSymbol->getId()))
        return pExisting;

    const TType& type = pSymbol->getType();
    bool bSupported = true;
    const EStorage eStorage = StorageOf(type, bSupported);
    const int iLine = std::max(0, pSymbol->getLoc().line);
    if (!bSupported)
    {
        const std::string name = UserName(pSymbol);
        const bool bBuiltIn = name.rfind("gl_", 0) == 0;
        m_builder.Refuse(iLine, name,
                         bBuiltIn ? std::string("this built-in variable")
                                  : std::string("a '") + GetStorageQualifierString(type.getQualifier().storage) + "' variable");
        return nullptr;
    }
    CInlineList<std::uint8_t, 4> aLanes;
    AppendSlotLanes(type, aLanes);
    if (aLanes.empty())
    {
        m_builder.Refuse(iLine, UserName(pSymbol), "an array without a size");
        return nullptr;
    }

    // Built where it stays: the arena never moves its elements.
    SVariable& variable = NewVariable();
    variable.eStorage = eStorage;
    variable.pSymbol = pSymbol;
    variable.aLanes = std::move(aLanes);
    variable.bGlobal = type.getQualifier().storage == EvqGlobal;
    if (variable.eStorage == Storage_Temp)
    {
        for (std::size_t i = 0; i < variable.aLanes.size(); ++i)
        {
            const int iRegister = m_builder.NewRegister();
            variable.aTemps.push_back(iRegister);
            m_builder.MarkVariable(iRegister);
            if (variable.bGlobal)
                m_builder.MarkGlobal(iRegister);
        }
    }
    else
    {
        STxeBinding binding;
        binding.eFile = FileOf(variable.eStorage);
        binding.iSlots = static_cast<int>(variable.aLanes.size());
        binding.iBase = variable.iBase = m_builder.AllocateSlots(binding.eFile, binding.iSlots);
        binding.name = UserName(pSymbol);
        if (type.getQualifier().storage == EvqConst)
            binding.aValues = ConstantSlots(type, pSymbol->getConstArray());
        m_builder.AddBinding(binding);
    }
    if (IsLocal(type.getQualifier().storage))
        m_aCreated.push_back(pSymbol->getId());
    m_mapVariables[pSymbol->getId()] = &variable;
    return &variable;
}

SVariable* CVariableStore::Bind(long long llId, SVariable variable)
{
    SVariable* pVariable = &NewVariable();
    *pVariable = std::move(variable);
    m_mapVariables[llId] = pVariable;
    return pVariable;
}

SVariable* CVariableStore::ConstantArray(TIntermConstantUnion* pConstant, int iLine)
{
    const auto it = m_mapConstantArrays.find(pConstant);
    if (it != m_mapConstantArrays.end())
        return it->second;
    SVariable constant;
    constant.eStorage = Storage_Uniform;
    const std::vector<std::uint8_t> aLanes = SlotLanes(pConstant->getType());
    constant.aLanes.append(aLanes.begin(), aLanes.end());
    STxeBinding binding;
    binding.eFile = File_Uniform;
    binding.iSlots = static_cast<int>(constant.aLanes.size());
    binding.iBase = constant.iBase = m_builder.AllocateSlots(File_Uniform, binding.iSlots);
    binding.name = "(constant array, line " + std::to_string(iLine) + ")";
    constant.name = binding.name;
    binding.aValues = ConstantSlots(pConstant->getType(), pConstant->getConstArray());
    m_builder.AddBinding(binding);
    SVariable* pVariable = &NewVariable();
    *pVariable = std::move(constant);
    m_mapConstantArrays.emplace(pConstant, pVariable);
    return pVariable;
}

void CVariableStore::DropLocals(std::size_t uiMark)
{
    for (std::size_t i = uiMark; i < m_aCreated.size(); ++i)
        m_mapVariables.erase(m_aCreated[i]);
    m_aCreated.resize(std::min(uiMark, m_aCreated.size()));
}

SAccess CVariableStore::WholeOf(SVariable* pVariable)
{
    SAccess access;
    access.pVariable = pVariable;
    access.iSlotCount = static_cast<int>(pVariable->aLanes.size());
    if (access.iSlotCount == 1)
        access.aLanes = IdentityLanes(pVariable->aLanes[0]);
    return access;
}

STxeOperand CVariableStore::SlotOperand(const SAccess& access, int iSlot, int iLine)
{
    const SVariable& variable = *access.pVariable;
    STxeOperand op;
    op.uiCount = variable.aLanes[iSlot];
    switch (variable.eStorage)
    {
    case Storage_Alias:
        return variable.alias.aSlots[iSlot];
    case Storage_Temp:
        return TempOperand(variable.aTemps[iSlot], op.uiCount);
    case Storage_Sampler:
        op.eFile = File_Sampler;
        op.iIndex = variable.iBase + iSlot;
        op.uiCount = 1;
        return op;
    default:
        break;
    }
    op.eFile = FileOf(variable.eStorage);
    op.iIndex = variable.iBase + iSlot;
    // Scratch and buffer memory is always read with a load; uniforms only when indexed.
    if (variable.eStorage != Storage_Scratch && variable.eStorage != Storage_Buffer && access.iDynamic < 0)
        return op;
    op.iRelative = access.iDynamic;
    STxeOperand loaded = m_builder.NewTemp(op.uiCount);
    m_builder.Emit(variable.eStorage == Storage_Scratch ? Op_Ldm : Op_Ldc, loaded, {op}, iLine);
    return loaded;
}

// The chosen column as the sel of every column, then the chosen lane of it.
bool CVariableStore::LoadSelected(const SAccess& access, int iLine, SValue& value)
{
    SAccess plain = access;
    plain.iSelectColumn = -1;
    plain.iSelectLane = -1;
    if (!Load(plain, iLine, value) || value.aSlots.empty())
        return false;
    if (access.iSelectColumn >= 0)
    {
        STxeOperand chosen = value.aSlots[0];
        for (std::size_t c = 1; c < value.aSlots.size(); ++c)
        {
            const int iLanes = chosen.uiCount;
            STxeOperand hit;
            {
                const CTypeScope scope(m_builder, Type_Int);
                hit = m_builder.Compute(Op_Seq, {TempOperand(access.iSelectColumn, 1), m_builder.Immediate(double(c))}, 1,
                                        iLine);
            }
            chosen = m_builder.Compute(Op_Sel, {Broadcast(hit, iLanes), value.aSlots[c], chosen}, iLanes, iLine);
        }
        value.aSlots.assign(1, chosen);
    }
    if (access.iSelectLane >= 0)
        value.aSlots.assign(1, PickLane(m_builder, value.aSlots[0], TempOperand(access.iSelectLane, 1), access.eLaneType,
                                        iLine));
    return !m_builder.Failed();
}

// Every column (or lane) that could be the chosen one is rewritten with a sel that keeps it
// unless the index names it.
bool CVariableStore::StoreSelected(const SAccess& access, const SValue& value, int iLine)
{
    if (value.aSlots.empty())
        return false;
    SAccess plain = access;
    plain.iSelectColumn = -1;
    plain.iSelectLane = -1;
    if (access.iSelectLane >= 0)
    {
        if (access.iSelectColumn >= 0)
        {
            m_builder.Refuse(iLine, VariableName(*access.pVariable), "writing an element chosen by two non-constant indexes");
            return false;
        }
        SValue current;
        if (!Load(plain, iLine, current))
            return false;
        const int iLanes = current.aSlots[0].uiCount;
        const STxeOperand mask = LaneMask(m_builder, TempOperand(access.iSelectLane, 1), iLanes, iLine);
        SValue merged;
        merged.aSlots.push_back(m_builder.Compute(
            Op_Sel, {mask, Broadcast(Lane(value.aSlots[0], 0), iLanes), current.aSlots[0]}, iLanes, iLine));
        return Store(plain, merged, iLine);
    }
    for (int c = 0; c < access.iSlotCount; ++c)
    {
        SAccess column = plain;
        column.iSlot = access.iSlot + c;
        column.iSlotCount = 1;
        SValue current;
        if (!Load(column, iLine, current))
            return false;
        const int iLanes = current.aSlots[0].uiCount;
        STxeOperand hit;
        {
            const CTypeScope scope(m_builder, Type_Int);
            hit = m_builder.Compute(Op_Seq, {TempOperand(access.iSelectColumn, 1), m_builder.Immediate(double(c))}, 1, iLine);
        }
        SValue merged;
        merged.aSlots.push_back(m_builder.Compute(
            Op_Sel, {Broadcast(hit, iLanes), Broadcast(value.aSlots[0], iLanes), current.aSlots[0]}, iLanes, iLine));
        if (!Store(column, merged, iLine))
            return false;
    }
    return true;
}

bool CVariableStore::Load(const SAccess& access, int iLine, SValue& value)
{
    if (access.iSelectColumn >= 0 || access.iSelectLane >= 0)
        return LoadSelected(access, iLine, value);
    SVariable& variable = *access.pVariable;
    value.aSlots.clear();
    const bool bSelect = access.iSlotCount == 1 && !access.aLanes.empty();
    if (variable.eStorage == Storage_Input)
        variable.bRead = true;

    for (int k = 0; k < access.iSlotCount; ++k)
    {
        const int iSlot = access.iSlot + k;
        const bool bInRange = iSlot < static_cast<int>(variable.aLanes.size()) &&
                              (variable.eStorage != Storage_Alias || iSlot < static_cast<int>(variable.alias.aSlots.size()));
        if (!bInRange)
        {
            m_builder.Fail(iLine, VariableName(variable), "access out of range");
            return false;
        }
        const STxeOperand op = SlotOperand(access, iSlot, iLine);
        value.aSlots.push_back(bSelect ? Swizzled(op, access.aLanes) : op);
    }
    return !m_builder.Failed();
}

bool CVariableStore::StoreSlot(const SAccess& access, int k, const STxeOperand& source, int iLine)
{
    const SVariable& variable = *access.pVariable;
    const int iSlot = access.iSlot + k;
    const CLanes aTarget =
        access.iSlotCount == 1 && !access.aLanes.empty() ? access.aLanes : IdentityLanes(variable.aLanes[iSlot]);
    const STxeOperand src = Broadcast(source, static_cast<int>(aTarget.size()));

    STxeOperand dst;
    dst.eFile = variable.eStorage == Storage_Temp ? File_Temp : FileOf(variable.eStorage);
    dst.iIndex = variable.eStorage == Storage_Temp ? variable.aTemps[iSlot] : variable.iBase + iSlot;
    dst.iRelative = access.iDynamic;

    // Destination lanes ascend; the source swizzle follows them. At most four lanes: no heap.
    std::array<std::pair<std::uint8_t, std::uint8_t>, 4> aPairs;
    std::size_t uiPairs = 0;
    for (std::size_t i = 0; i < aTarget.size() && i < src.uiCount && i < aPairs.size(); ++i)
        aPairs[uiPairs++] = {aTarget[i], src.auiSwizzle[i]};
    std::sort(aPairs.begin(), aPairs.begin() + static_cast<std::ptrdiff_t>(uiPairs));
    dst.uiCount = static_cast<std::uint8_t>(uiPairs);
    STxeOperand mapped = src;
    bool bIdentityTarget = true;
    for (std::size_t i = 0; i < uiPairs; ++i)
    {
        dst.auiSwizzle[i] = aPairs[i].first;
        mapped.auiSwizzle[i] = aPairs[i].second;
        bIdentityTarget = bIdentityTarget && aPairs[i].first == i;
    }
    mapped.uiCount = dst.uiCount;

    if (variable.eStorage == Storage_Scratch)
        m_builder.Emit(Op_Stm, dst, {mapped}, iLine);
    else if (bIdentityTarget)
        m_builder.MoveInto(dst, mapped, iLine);
    else
        m_builder.Emit(Op_Mov, dst, {mapped}, iLine);
    return !m_builder.Failed();
}

bool CVariableStore::Store(const SAccess& access, const SValue& value, int iLine)
{
    const EStorage eStorage = access.pVariable->eStorage;
    if (eStorage == Storage_Buffer)
    {
        m_builder.Refuse(iLine, VariableName(*access.pVariable), "writing a shader storage buffer");
        return false;
    }
    if (eStorage != Storage_Temp && eStorage != Storage_Output && eStorage != Storage_Scratch)
    {
        m_builder.Fail(iLine, VariableName(*access.pVariable), "this variable cannot be written");
        return false;
    }
    if (access.iSelectColumn >= 0 || access.iSelectLane >= 0)
        return StoreSelected(access, value, iLine);
    if (static_cast<int>(value.aSlots.size()) != access.iSlotCount)
    {
        m_builder.Fail(iLine, VariableName(*access.pVariable), "the value does not fit this variable");
        return false;
    }
    for (int k = 0; k < access.iSlotCount; ++k)
    {
        if (!StoreSlot(access, k, value.aSlots[k], iLine))
            return false;
    }
    return true;
}

int CVariableStore::InputSlotsRead() const
{
    int iSlots = 0;
    for (const auto& [llId, pVariable] : m_mapVariables)
    {
        if (pVariable->eStorage == Storage_Input && pVariable->bRead)
            iSlots += static_cast<int>(pVariable->aLanes.size());
    }
    return iSlots;
}

} // namespace ZamCompiler
