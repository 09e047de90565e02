#include "ZcLowerer.h"

#include <algorithm>
#include <cstring>

namespace ZamCompiler
{

using namespace glslang;

namespace
{

std::vector<std::uint8_t> Identity(int iLanes)
{
    std::vector<std::uint8_t> aLanes;
    for (int i = 0; i < iLanes; ++i)
        aLanes.push_back(static_cast<std::uint8_t>(i));
    return aLanes;
}

EStorage StorageOf(const TType& type, bool& bSupported)
{
    bSupported = true;
    switch (type.getQualifier().storage)
    {
    case EvqUniform:
        return type.getBasicType() == EbtSampler ? Storage_Sampler : Storage_Uniform;
    case EvqConst:
        return Storage_Uniform;
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
    case Storage_Uniform: return File_Uniform;
    case Storage_Output: return File_Output;
    case Storage_Sampler: return File_Sampler;
    case Storage_Scratch: return File_Scratch;
    default: return File_Temp;
    }
}

} // namespace

double ConstantAsDouble(const TConstUnion& constant)
{
    switch (constant.getType())
    {
    case EbtInt: return constant.getIConst();
    case EbtUint: return constant.getUConst();
    case EbtBool: return constant.getBConst() ? 1.0 : 0.0;
    case EbtFloat:
    case EbtDouble: return constant.getDConst();
    default: return 0.0;
    }
}

CLowerer::CLowerer(ETxeStage eStage, const SSourceLimits& limits, STxeProgram& program, CDiagnosticList& aDiagnostics)
    : m_eStage(eStage), m_limits(limits), m_program(program), m_aDiagnostics(aDiagnostics)
{
    m_program.eStage = eStage;
}

void CLowerer::Fail(int iLine, const std::string& text)
{
    if (!m_bFailed)
        AddError(m_aDiagnostics, iLine > 0 ? iLine : 1, text);
    m_bFailed = true;
}

int CLowerer::Line(const TIntermNode* pNode) const
{
    return pNode ? std::max(0, pNode->getLoc().line) : 0;
}

STxeOperand CLowerer::NewTemp(int iLanes)
{
    STxeOperand op;
    op.eFile = File_Temp;
    op.iIndex = m_iNextTemp++;
    op.uiCount = static_cast<std::uint8_t>(std::clamp(iLanes, 1, 4));
    return op;
}

int CLowerer::Emit(ETxeOp eOp, const STxeOperand& dst, std::initializer_list<STxeOperand> aSrc, int iLine)
{
    if (m_bFailed)
        return -1;
    if (static_cast<int>(m_program.aInstructions.size()) >= m_limits.iMaxInstructions)
    {
        Fail(iLine, "the program is too large: more than " + std::to_string(m_limits.iMaxInstructions) +
                        " instructions after inlining");
        return -1;
    }
    STxeInstruction instr;
    instr.eOp = eOp;
    instr.dst = dst;
    int i = 0;
    for (const STxeOperand& src : aSrc)
    {
        if (i < 4)
            instr.aSrc[i++] = src;
    }
    instr.iLine = iLine;
    m_program.aInstructions.push_back(instr);
    return static_cast<int>(m_program.aInstructions.size()) - 1;
}

void CLowerer::SetTrips(int iInstruction, const STxeTrips& trips)
{
    if (iInstruction >= 0 && iInstruction < static_cast<int>(m_program.aInstructions.size()))
        m_program.aInstructions[static_cast<std::size_t>(iInstruction)].trips = trips;
}

STxeOperand CLowerer::Immediate(const float afValues[4], int iLanes)
{
    std::vector<std::uint32_t> aKey(4, 0);
    for (int i = 0; i < iLanes && i < 4; ++i)
        std::memcpy(&aKey[i], &afValues[i], sizeof(float));
    auto it = m_mapPool.find(aKey);
    int iEntry = 0;
    if (it != m_mapPool.end())
    {
        iEntry = it->second;
    }
    else
    {
        iEntry = static_cast<int>(m_program.aPool.size() / 4);
        for (int i = 0; i < 4; ++i)
            m_program.aPool.push_back(i < iLanes ? afValues[i] : 0.0f);
        m_mapPool.emplace(aKey, iEntry);
    }
    STxeOperand op;
    op.eFile = File_Immediate;
    op.iIndex = iEntry;
    op.uiCount = static_cast<std::uint8_t>(std::clamp(iLanes, 1, 4));
    return op;
}

STxeOperand CLowerer::Immediate(float fValue, int iLanes)
{
    const float afValues[4] = {fValue, fValue, fValue, fValue};
    STxeOperand op = Immediate(afValues, 1);
    return Broadcast(op, iLanes);
}

STxeOperand CLowerer::Swizzled(const STxeOperand& op, const std::vector<std::uint8_t>& aLanes)
{
    STxeOperand result = op;
    const int iCount = std::min<int>(4, static_cast<int>(aLanes.size()));
    for (int i = 0; i < iCount; ++i)
        result.auiSwizzle[i] = op.auiSwizzle[std::min<int>(aLanes[i], 3)];
    result.uiCount = static_cast<std::uint8_t>(iCount);
    return result;
}

STxeOperand CLowerer::Lane(const STxeOperand& op, int iLane)
{
    return Swizzled(op, {static_cast<std::uint8_t>(iLane)});
}

STxeOperand CLowerer::Broadcast(const STxeOperand& op, int iLanes)
{
    if (op.uiCount != 1 || iLanes <= 1)
        return op;
    STxeOperand result = op;
    for (int i = 0; i < 4; ++i)
        result.auiSwizzle[i] = op.auiSwizzle[0];
    result.uiCount = static_cast<std::uint8_t>(std::min(iLanes, 4));
    return result;
}

STxeOperand CLowerer::Negated(const STxeOperand& op)
{
    STxeOperand result = op;
    result.bNegate = !result.bNegate;
    return result;
}

std::vector<std::uint8_t> CLowerer::SlotLanes(const TType& type)
{
    std::vector<std::uint8_t> aLanes;
    if (type.isArray())
    {
        const TType element(type, 0);
        const std::vector<std::uint8_t> aElement = SlotLanes(element);
        const int iCount = type.isSizedArray() ? std::max(0, type.getOuterArraySize()) : 0;
        for (int i = 0; i < iCount; ++i)
            aLanes.insert(aLanes.end(), aElement.begin(), aElement.end());
    }
    else if (type.isStruct())
    {
        for (const TTypeLoc& member : *type.getStruct())
        {
            const std::vector<std::uint8_t> aMember = SlotLanes(*member.type);
            aLanes.insert(aLanes.end(), aMember.begin(), aMember.end());
        }
    }
    else if (type.isMatrix())
    {
        for (int i = 0; i < type.getMatrixCols(); ++i)
            aLanes.push_back(static_cast<std::uint8_t>(type.getMatrixRows()));
    }
    else
    {
        aLanes.push_back(static_cast<std::uint8_t>(std::clamp(type.getVectorSize(), 1, 4)));
    }
    return aLanes;
}

int CLowerer::LanesOf(const TType& type)
{
    if (type.isMatrix())
        return type.getMatrixRows();
    return std::clamp(type.getVectorSize(), 1, 4);
}

SVariable* CLowerer::Variable(TIntermSymbol* pSymbol)
{
    auto it = m_mapVariables.find(pSymbol->getId());
    if (it != m_mapVariables.end())
        return it->second;

    const TType& type = pSymbol->getType();
    bool bSupported = true;
    SVariable variable;
    variable.eStorage = StorageOf(type, bSupported);
    if (!bSupported)
    {
        Fail(Line(pSymbol), "'" + std::string(pSymbol->getName().c_str()) +
                                "' : this kind of variable is not supported by the TXE code generator");
        return nullptr;
    }
    variable.aLanes = SlotLanes(type);
    if (variable.aLanes.empty())
    {
        Fail(Line(pSymbol), "'" + std::string(pSymbol->getName().c_str()) + "' : unsized arrays are not supported");
        return nullptr;
    }

    variable.bGlobal = type.getQualifier().storage == EvqGlobal;
    if (variable.eStorage == Storage_Temp)
    {
        for (std::size_t i = 0; i < variable.aLanes.size(); ++i)
        {
            const int iRegister = NewRegister();
            variable.aTemps.push_back(iRegister);
            m_setVariableTemps.insert(iRegister);
            if (variable.bGlobal)
                m_setGlobalTemps.insert(iRegister);
        }
    }
    else
    {
        const ETxeFile eFile = FileOf(variable.eStorage);
        variable.iBase = m_aiNextSlot[eFile];
        m_aiNextSlot[eFile] += static_cast<int>(variable.aLanes.size());
        STxeBinding binding;
        binding.eFile = eFile;
        binding.iBase = variable.iBase;
        binding.iSlots = static_cast<int>(variable.aLanes.size());
        binding.name = pSymbol->getName().c_str();
        if (type.getQualifier().storage == EvqConst)
            binding.aValues = ConstantSlots(type, pSymbol->getConstArray());
        m_program.aBindings.push_back(binding);
        if (eFile == File_Scratch)
            m_program.iScratchSlots = m_aiNextSlot[eFile];
    }
    switch (type.getQualifier().storage)
    {
    case EvqTemporary:
    case EvqIn:
    case EvqOut:
    case EvqInOut:
    case EvqConstReadOnly:
        m_aCreated.push_back(pSymbol->getId());
        break;
    default:
        break;
    }
    return Bind(pSymbol->getId(), variable);
}

SVariable* CLowerer::Bind(long long llId, const SVariable& variable)
{
    m_aVariableArena.push_back(variable);
    SVariable* pVariable = &m_aVariableArena.back();
    m_mapVariables[llId] = pVariable;
    return pVariable;
}

bool CLowerer::IsAccessNode(TIntermTyped* pNode) const
{
    while (pNode)
    {
        if (pNode->getAsSymbolNode())
            return true;
        if (pNode->getAsConstantUnion())
            return pNode->getType().isArray();
        TIntermBinary* pBinary = pNode->getAsBinaryNode();
        if (!pBinary)
            return false;
        switch (pBinary->getOp())
        {
        case EOpIndexDirect:
        case EOpIndexIndirect:
        case EOpIndexDirectStruct:
        case EOpVectorSwizzle:
            pNode = pBinary->getLeft();
            break;
        default:
            return false;
        }
    }
    return false;
}

TIntermSymbol* CLowerer::RootSymbol(TIntermTyped* pNode) const
{
    while (pNode)
    {
        if (TIntermSymbol* pSymbol = pNode->getAsSymbolNode())
            return pSymbol;
        TIntermBinary* pBinary = pNode->getAsBinaryNode();
        if (!pBinary)
            return nullptr;
        pNode = pBinary->getLeft();
    }
    return nullptr;
}

bool CLowerer::ResolveAccess(TIntermTyped* pNode, SAccess& access)
{
    const int iLine = Line(pNode);
    if (TIntermConstantUnion* pConstant = pNode->getAsConstantUnion())
    {
        // A literal array indexed at run time is placed in the constant bank.
        auto it = m_mapConstantArrays.find(pConstant);
        if (it == m_mapConstantArrays.end())
        {
            m_aVariableArena.emplace_back();
            SVariable& constant = m_aVariableArena.back();
            constant.eStorage = Storage_Uniform;
            constant.aLanes = SlotLanes(pConstant->getType());
            constant.iBase = m_aiNextSlot[File_Uniform];
            m_aiNextSlot[File_Uniform] += static_cast<int>(constant.aLanes.size());
            STxeBinding binding;
            binding.eFile = File_Uniform;
            binding.iBase = constant.iBase;
            binding.iSlots = static_cast<int>(constant.aLanes.size());
            binding.name = "(constant array, line " + std::to_string(iLine) + ")";
            binding.aValues = ConstantSlots(pConstant->getType(), pConstant->getConstArray());
            m_program.aBindings.push_back(binding);
            it = m_mapConstantArrays.emplace(pConstant, &constant).first;
        }
        access.pVariable = it->second;
        access.iSlot = 0;
        access.iSlotCount = static_cast<int>(it->second->aLanes.size());
        return access.iSlotCount > 0;
    }
    if (TIntermSymbol* pSymbol = pNode->getAsSymbolNode())
    {
        access.pVariable = Variable(pSymbol);
        if (!access.pVariable)
            return false;
        access.iSlot = 0;
        access.iSlotCount = static_cast<int>(access.pVariable->aLanes.size());
        if (access.iSlotCount == 1)
            access.aLanes = Identity(access.pVariable->aLanes[0]);
        return true;
    }

    TIntermBinary* pBinary = pNode->getAsBinaryNode();
    if (!pBinary || !ResolveAccess(pBinary->getLeft(), access))
        return false;
    const TType& leftType = pBinary->getLeft()->getType();
    TIntermConstantUnion* pConstant = pBinary->getRight()->getAsConstantUnion();

    switch (pBinary->getOp())
    {
    case EOpIndexDirect:
    {
        const int iIndex = pConstant && !pConstant->getConstArray().empty() ? pConstant->getConstArray()[0].getIConst() : -1;
        if (leftType.isArray())
        {
            const int iElementSlots = static_cast<int>(SlotLanes(TType(leftType, 0)).size());
            if (iIndex < 0 || (iIndex + 1) * iElementSlots > access.iSlotCount)
            {
                Fail(iLine, "array index out of range");
                return false;
            }
            access.iSlot += iIndex * iElementSlots;
            access.iSlotCount = iElementSlots;
        }
        else if (leftType.isMatrix())
        {
            if (iIndex < 0 || iIndex >= access.iSlotCount)
            {
                Fail(iLine, "matrix index out of range");
                return false;
            }
            access.iSlot += iIndex;
            access.iSlotCount = 1;
            access.aLanes = Identity(leftType.getMatrixRows());
            return true;
        }
        else
        {
            if (iIndex < 0 || iIndex >= static_cast<int>(access.aLanes.size()))
            {
                Fail(iLine, "vector index out of range");
                return false;
            }
            access.aLanes = {access.aLanes[iIndex]};
            return true;
        }
        access.aLanes.clear();
        if (access.iSlotCount == 1)
            access.aLanes = Identity(access.pVariable->aLanes[access.iSlot]);
        return true;
    }
    case EOpIndexIndirect:
    {
        if (!leftType.isArray() && !leftType.isMatrix())
        {
            Fail(iLine, "indexing a vector component with a non-constant index is not supported");
            return false;
        }
        const EStorage eStorage = access.pVariable->eStorage;
        if (eStorage == Storage_Temp || eStorage == Storage_Alias || eStorage == Storage_Sampler)
        {
            Fail(iLine, "a non-constant index into this variable is not supported");
            return false;
        }
        SValue index;
        if (!Expression(pBinary->getRight(), index) || index.aSlots.empty())
            return false;
        const int iElementSlots = leftType.isArray() ? static_cast<int>(SlotLanes(TType(leftType, 0)).size()) : 1;
        STxeOperand offset = Lane(index.aSlots[0], 0);
        if (iElementSlots != 1)
        {
            STxeOperand scaled = NewTemp(1);
            Emit(Op_Mul, scaled, {offset, Immediate(static_cast<float>(iElementSlots))}, iLine);
            offset = scaled;
        }
        if (access.iDynamic >= 0)
        {
            STxeOperand previous;
            previous.eFile = File_Temp;
            previous.iIndex = access.iDynamic;
            previous.uiCount = 1;
            STxeOperand sum = NewTemp(1);
            Emit(Op_Add, sum, {previous, offset}, iLine);
            offset = sum;
        }
        if (offset.eFile != File_Temp || offset.bNegate || offset.bAbs || offset.auiSwizzle[0] != 0 ||
            IsVariableRegister(offset.iIndex))
        {
            STxeOperand copy = NewTemp(1);
            Emit(Op_Mov, copy, {offset}, iLine);
            offset = copy;
        }
        access.iDynamic = offset.iIndex;
        access.iSlotCount = iElementSlots;
        access.aLanes.clear();
        if (iElementSlots == 1)
            access.aLanes = Identity(leftType.isArray() ? SlotLanes(TType(leftType, 0))[0] : leftType.getMatrixRows());
        return true;
    }
    case EOpIndexDirectStruct:
    {
        const int iMember = pConstant && !pConstant->getConstArray().empty() ? pConstant->getConstArray()[0].getIConst() : -1;
        const TTypeList& members = *leftType.getStruct();
        if (iMember < 0 || iMember >= static_cast<int>(members.size()))
        {
            Fail(iLine, "structure member out of range");
            return false;
        }
        int iOffset = 0;
        for (int i = 0; i < iMember; ++i)
            iOffset += static_cast<int>(SlotLanes(*members[i].type).size());
        access.iSlot += iOffset;
        access.iSlotCount = static_cast<int>(SlotLanes(*members[iMember].type).size());
        access.aLanes.clear();
        if (access.iSlotCount == 1)
            access.aLanes = Identity(access.pVariable->aLanes[access.iSlot]);
        return true;
    }
    case EOpVectorSwizzle:
    {
        TIntermAggregate* pSelectors = pBinary->getRight()->getAsAggregate();
        if (!pSelectors || access.iSlotCount != 1)
        {
            Fail(iLine, "unsupported swizzle");
            return false;
        }
        std::vector<std::uint8_t> aLanes;
        for (TIntermNode* pSelector : pSelectors->getSequence())
        {
            TIntermConstantUnion* pLane = pSelector->getAsConstantUnion();
            const int iLane = pLane ? pLane->getConstArray()[0].getIConst() : -1;
            if (iLane < 0 || iLane >= static_cast<int>(access.aLanes.size()))
            {
                Fail(iLine, "swizzle out of range");
                return false;
            }
            aLanes.push_back(access.aLanes[iLane]);
        }
        access.aLanes = aLanes;
        return true;
    }
    default:
        return false;
    }
}

bool CLowerer::Load(const SAccess& access, int iLine, SValue& value)
{
    SVariable& variable = *access.pVariable;
    value.aSlots.clear();
    const bool bSelect = access.iSlotCount == 1 && !access.aLanes.empty();
    if (variable.eStorage == Storage_Input)
        variable.bRead = true;

    for (int k = 0; k < access.iSlotCount; ++k)
    {
        const int iSlot = access.iSlot + k;
        if (iSlot >= static_cast<int>(variable.aLanes.size()))
        {
            Fail(iLine, "access out of range");
            return false;
        }
        STxeOperand op;
        op.uiCount = variable.aLanes[iSlot];
        switch (variable.eStorage)
        {
        case Storage_Alias:
            if (iSlot >= static_cast<int>(variable.alias.aSlots.size()))
            {
                Fail(iLine, "access out of range");
                return false;
            }
            op = variable.alias.aSlots[iSlot];
            break;
        case Storage_Temp:
            op.eFile = File_Temp;
            op.iIndex = variable.aTemps[iSlot];
            break;
        case Storage_Sampler:
            op.eFile = File_Sampler;
            op.iIndex = variable.iBase + iSlot;
            op.uiCount = 1;
            break;
        default:
        {
            op.eFile = FileOf(variable.eStorage);
            op.iIndex = variable.iBase + iSlot;
            if (variable.eStorage == Storage_Scratch || access.iDynamic >= 0)
            {
                op.iRelative = access.iDynamic;
                STxeOperand loaded = NewTemp(op.uiCount);
                Emit(variable.eStorage == Storage_Scratch ? Op_Ldm : Op_Ldc, loaded, {op}, iLine);
                op = loaded;
            }
            break;
        }
        }
        value.aSlots.push_back(bSelect ? Swizzled(op, access.aLanes) : op);
    }
    return !m_bFailed;
}

bool CLowerer::Store(const SAccess& access, const SValue& value, int iLine)
{
    SVariable& variable = *access.pVariable;
    if (variable.eStorage != Storage_Temp && variable.eStorage != Storage_Output && variable.eStorage != Storage_Scratch)
    {
        Fail(iLine, "this variable cannot be written");
        return false;
    }
    if (static_cast<int>(value.aSlots.size()) != access.iSlotCount)
    {
        Fail(iLine, "assignment of a value with the wrong shape");
        return false;
    }

    for (int k = 0; k < access.iSlotCount; ++k)
    {
        const int iSlot = access.iSlot + k;
        const std::vector<std::uint8_t> aTarget =
            access.iSlotCount == 1 && !access.aLanes.empty() ? access.aLanes : Identity(variable.aLanes[iSlot]);
        STxeOperand src = Broadcast(value.aSlots[k], static_cast<int>(aTarget.size()));

        STxeOperand dst;
        dst.eFile = variable.eStorage == Storage_Temp ? File_Temp : FileOf(variable.eStorage);
        dst.iIndex = variable.eStorage == Storage_Temp ? variable.aTemps[iSlot] : variable.iBase + iSlot;
        dst.iRelative = access.iDynamic;

        // Destination lanes ascend; the source swizzle follows them.
        std::vector<std::pair<std::uint8_t, std::uint8_t>> aPairs;
        for (std::size_t i = 0; i < aTarget.size() && i < src.uiCount; ++i)
            aPairs.emplace_back(aTarget[i], src.auiSwizzle[i]);
        std::sort(aPairs.begin(), aPairs.end());
        dst.uiCount = static_cast<std::uint8_t>(aPairs.size());
        STxeOperand mapped = src;
        bool bIdentityTarget = true;
        for (std::size_t i = 0; i < aPairs.size(); ++i)
        {
            dst.auiSwizzle[i] = aPairs[i].first;
            mapped.auiSwizzle[i] = aPairs[i].second;
            bIdentityTarget = bIdentityTarget && aPairs[i].first == i;
        }
        mapped.uiCount = dst.uiCount;

        if (variable.eStorage == Storage_Scratch)
        {
            Emit(Op_Stm, dst, {mapped}, iLine);
            continue;
        }

        if (bIdentityTarget)
            MoveInto(dst, mapped, iLine);
        else
            Emit(Op_Mov, dst, {mapped}, iLine);
    }
    return !m_bFailed;
}

void CLowerer::MoveInto(const STxeOperand& dst, const STxeOperand& src, int iLine)
{
    bool bFresh = src.eFile == File_Temp && !src.bNegate && !src.bAbs && src.iRelative < 0 &&
                  dst.iRelative < 0 && !IsVariableRegister(src.iIndex) && !m_program.aInstructions.empty();
    for (int i = 0; i < src.uiCount && bFresh; ++i)
        bFresh = src.auiSwizzle[i] == i && dst.auiSwizzle[i] == i;
    if (bFresh)
    {
        // Find the fresh value's producer a few instructions back; nothing after it may touch
        // the value or the destination, so writing the destination there is the same.
        auto touches = [](const STxeInstruction& instr, const STxeOperand& reg) {
            if (instr.dst.eFile == reg.eFile && instr.dst.iIndex == reg.iIndex)
                return true;
            for (const STxeOperand& op : instr.aSrc)
            {
                if ((op.eFile == reg.eFile && op.iIndex == reg.iIndex) ||
                    (reg.eFile == File_Temp && op.iRelative == reg.iIndex))
                    return true;
            }
            return reg.eFile == File_Temp && instr.dst.iRelative == reg.iIndex;
        };
        const std::size_t uiCount = m_program.aInstructions.size();
        for (std::size_t uiBack = 1; uiBack <= 16 && uiBack <= uiCount; ++uiBack)
        {
            STxeInstruction& candidate = m_program.aInstructions[uiCount - uiBack];
            if (TxeOpInfo(candidate.eOp).eClass == Class_Flow)
                break;
            if (candidate.dst.eFile == File_Temp && candidate.dst.iIndex == src.iIndex)
            {
                bool bFull = candidate.dst.uiCount == src.uiCount && candidate.dst.iRelative < 0 &&
                             candidate.eOp != Op_Stm;
                for (int i = 0; i < candidate.dst.uiCount && bFull; ++i)
                    bFull = candidate.dst.auiSwizzle[i] == i;
                for (std::size_t k = uiCount - uiBack + 1; k < uiCount && bFull; ++k)
                    bFull = !touches(m_program.aInstructions[k], src) && !touches(m_program.aInstructions[k], dst);
                if (bFull)
                {
                    candidate.dst.eFile = dst.eFile;
                    candidate.dst.iIndex = dst.iIndex;
                    return;
                }
                break;
            }
        }
    }
    Emit(Op_Mov, dst, {src}, iLine);
}

std::vector<float> CLowerer::ConstantSlots(const TType& type, const TConstUnionArray& aConstants)
{
    std::vector<float> aValues;
    int iNext = 0;
    for (std::uint8_t uiLanes : SlotLanes(type))
    {
        for (int i = 0; i < 4; ++i)
        {
            const bool bPresent = i < uiLanes && iNext < aConstants.size();
            aValues.push_back(bPresent ? static_cast<float>(ConstantAsDouble(aConstants[iNext])) : 0.0f);
            iNext += i < uiLanes ? 1 : 0;
        }
    }
    return aValues;
}

SValue CLowerer::ConstantValue(const TIntermConstantUnion* pConstant)
{
    SValue value;
    const TType& type = pConstant->getType();
    const TConstUnionArray& aConstants = pConstant->getConstArray();
    const std::vector<std::uint8_t> aLanes = SlotLanes(type);
    int iNext = 0;
    for (std::uint8_t uiLanes : aLanes)
    {
        float afValues[4] = {0.0f, 0.0f, 0.0f, 0.0f};
        for (int i = 0; i < uiLanes; ++i, ++iNext)
        {
            if (iNext >= aConstants.size())
                break;
            afValues[i] = static_cast<float>(ConstantAsDouble(aConstants[iNext]));
        }
        value.aSlots.push_back(Immediate(afValues, uiLanes));
    }
    return value;
}

SValue CLowerer::Materialize(const SValue& value, int iLine)
{
    SValue result;
    for (const STxeOperand& op : value.aSlots)
    {
        STxeOperand temp = NewTemp(op.uiCount);
        Emit(Op_Mov, temp, {op}, iLine);
        result.aSlots.push_back(temp);
    }
    return result;
}

} // namespace ZamCompiler
