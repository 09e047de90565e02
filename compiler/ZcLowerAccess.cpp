// Access paths into variables: a, a[i], a.member, a.xy and their combinations.

#include "ZcLowerExpressions.h"

#include "ZcLowerTree.h"

namespace ZamCompiler
{

using namespace glslang;

namespace
{

int ConstantIndex(TIntermTyped* pIndex)
{
    TIntermConstantUnion* pConstant = pIndex->getAsConstantUnion();
    return pConstant && !pConstant->getConstArray().empty() ? pConstant->getConstArray()[0].getIConst() : -1;
}

int ElementSlots(const TType& arrayType)
{
    return SlotCount(TType(arrayType, 0));
}

// After the path narrowed to one slot, every lane of that slot is selected.
void SelectWholeSlot(SAccess& access)
{
    access.aLanes.clear();
    if (access.iSlotCount == 1)
        access.aLanes = IdentityLanes(access.pVariable->aLanes[access.iSlot]);
}

} // namespace

bool CExpressionLowerer::ResolveAccess(TIntermTyped* pNode, SAccess& access)
{
    TIntermBinary* pBinary = pNode->getAsBinaryNode();
    if (!pBinary)
        return ResolveRoot(pNode, access);
    if (!ResolveAccess(pBinary->getLeft(), access))
        return false;
    switch (pBinary->getOp())
    {
    case EOpIndexDirect: return ResolveIndex(pBinary, access);
    case EOpIndexIndirect: return ResolveDynamicIndex(pBinary, access);
    case EOpIndexDirectStruct: return ResolveMember(pBinary, access);
    case EOpVectorSwizzle: return ResolveSwizzle(pBinary, access);
    default: return false;
    }
}

bool CExpressionLowerer::IndexOutOfRange(TIntermBinary* pNode, int iIndex)
{
    const int iLine = LineOf(pNode);
    if (pNode->getLeft()->getType().isUnsizedArray())
    {
        m_builder.Refuse(iLine, AccessName(pNode->getLeft()),
                         "a constant index past the " + std::to_string(k_iRuntimeArrayElements) +
                             " elements a runtime-sized array is bound with");
        return false;
    }
    m_builder.Fail(iLine, AccessName(pNode->getLeft()), "index " + std::to_string(iIndex) + " is out of range");
    return false;
}

bool CExpressionLowerer::ResolveRoot(TIntermTyped* pNode, SAccess& access)
{
    SVariable* pVariable = nullptr;
    if (TIntermConstantUnion* pConstant = pNode->getAsConstantUnion())
        pVariable = m_variables.ConstantArray(pConstant, LineOf(pNode));
    else if (TIntermSymbol* pSymbol = pNode->getAsSymbolNode())
        pVariable = m_variables.Variable(pSymbol);
    if (!pVariable)
        return false;
    access = CVariableStore::WholeOf(pVariable);
    if (pNode->getAsConstantUnion())
        access.aLanes.clear();
    return access.iSlotCount > 0;
}

bool CExpressionLowerer::ResolveIndex(TIntermBinary* pNode, SAccess& access)
{
    const TType& leftType = pNode->getLeft()->getType();
    const int iIndex = ConstantIndex(pNode->getRight());
    if (leftType.isArray())
    {
        const int iElementSlots = ElementSlots(leftType);
        if (iIndex < 0 || (iIndex + 1) * iElementSlots > access.iSlotCount)
            return IndexOutOfRange(pNode, iIndex);
        access.iSlot += iIndex * iElementSlots;
        access.iSlotCount = iElementSlots;
        SelectWholeSlot(access);
        return true;
    }
    if (leftType.isMatrix())
    {
        if (iIndex < 0 || iIndex >= access.iSlotCount)
            return IndexOutOfRange(pNode, iIndex);
        access.iSlot += iIndex;
        access.iSlotCount = 1;
        access.aLanes = IdentityLanes(leftType.getMatrixRows());
        return true;
    }
    if (iIndex < 0 || iIndex >= static_cast<int>(access.aLanes.size()))
        return IndexOutOfRange(pNode, iIndex);
    access.aLanes = {access.aLanes[iIndex]};
    return true;
}

bool CExpressionLowerer::ResolveDynamicIndex(TIntermBinary* pNode, SAccess& access)
{
    const int iLine = LineOf(pNode);
    const TType& leftType = pNode->getLeft()->getType();
    const EStorage eStorage = access.pVariable->eStorage;
    if (eStorage == Storage_Sampler)
    {
        m_builder.Refuse(iLine, AccessName(pNode->getLeft()), "a non-constant index into an array of samplers");
        return false;
    }
    const bool bInRegisters = eStorage == Storage_Temp || eStorage == Storage_Alias;
    if ((!leftType.isArray() && !leftType.isMatrix()) || (bInRegisters && leftType.isMatrix()))
        return SelectAtRunTime(pNode, access);
    SValue index;
    if (!Lower(pNode->getRight(), index) || index.aSlots.empty())
        return false;
    const int iElementSlots = leftType.isArray() ? ElementSlots(leftType) : 1;
    const CTypeScope scope(m_builder, Type_Int);
    STxeOperand offset = Lane(index.aSlots[0], 0);
    if (iElementSlots != 1)
        offset = m_builder.Compute(Op_Mul, {offset, m_builder.Immediate(static_cast<float>(iElementSlots))}, 1, iLine);
    if (access.iDynamic >= 0)
        offset = m_builder.Compute(Op_Add, {TempOperand(access.iDynamic, 1), offset}, 1, iLine);
    // The index register must be a plain lane x that nothing else writes.
    if (offset.eFile != File_Temp || offset.bNegate || offset.bAbs || offset.auiSwizzle[0] != 0 ||
        m_builder.IsVariable(offset.iIndex))
        offset = m_builder.Compute(Op_Mov, {offset}, 1, iLine);
    access.iDynamic = offset.iIndex;
    access.iSlotCount = iElementSlots;
    access.aLanes.clear();
    if (iElementSlots == 1)
        access.aLanes = IdentityLanes(leftType.isArray() ? SlotLanes(TType(leftType, 0))[0] : leftType.getMatrixRows());
    return true;
}

// A vector lane, or a column of a matrix in registers, chosen by the index: the access keeps
// every candidate and the index, and loads and stores choose with sel.
bool CExpressionLowerer::SelectAtRunTime(TIntermBinary* pNode, SAccess& access)
{
    const int iLine = LineOf(pNode);
    SValue index;
    if (!Lower(pNode->getRight(), index) || index.aSlots.empty())
        return false;
    const bool bColumn = pNode->getLeft()->getType().isMatrix();
    if ((bColumn && access.iSelectColumn >= 0) || access.iSelectLane >= 0)
    {
        m_builder.Refuse(iLine, AccessName(pNode->getLeft()), "a second non-constant index into the same value");
        return false;
    }
    STxeOperand chosen = Lane(index.aSlots[0], 0);
    if (chosen.eFile != File_Temp || chosen.bNegate || chosen.bAbs || chosen.auiSwizzle[0] != 0 ||
        m_builder.IsVariable(chosen.iIndex))
        chosen = m_builder.Compute(Op_Mov, {chosen}, 1, iLine);
    if (bColumn)
    {
        access.iSelectColumn = chosen.iIndex;
        access.aLanes = IdentityLanes(pNode->getLeft()->getType().getMatrixRows());
        return true;
    }
    access.iSelectLane = chosen.iIndex;
    access.eLaneType = TxeTypeOf(pNode->getBasicType());
    return true;
}

bool CExpressionLowerer::ResolveMember(TIntermBinary* pNode, SAccess& access)
{
    const TTypeList& members = *pNode->getLeft()->getType().getStruct();
    const int iMember = ConstantIndex(pNode->getRight());
    if (iMember < 0 || iMember >= static_cast<int>(members.size()))
        return IndexOutOfRange(pNode, iMember);
    for (int i = 0; i < iMember; ++i)
        access.iSlot += SlotCount(*members[i].type);
    access.iSlotCount = SlotCount(*members[iMember].type);
    SelectWholeSlot(access);
    return true;
}

bool CExpressionLowerer::ResolveSwizzle(TIntermBinary* pNode, SAccess& access)
{
    const int iLine = LineOf(pNode);
    TIntermAggregate* pSelectors = pNode->getRight()->getAsAggregate();
    if (!pSelectors || (access.iSlotCount != 1 && access.iSelectColumn < 0))
    {
        m_builder.Refuse(iLine, VariableName(*access.pVariable), "this swizzle");
        return false;
    }
    CLanes aLanes;
    for (TIntermNode* pSelector : pSelectors->getSequence())
    {
        const int iLane = pSelector->getAsTyped() ? ConstantIndex(pSelector->getAsTyped()) : -1;
        if (iLane < 0 || iLane >= static_cast<int>(access.aLanes.size()))
            return IndexOutOfRange(pNode, iLane);
        aLanes.push_back(access.aLanes[iLane]);
    }
    access.aLanes = aLanes;
    return true;
}

} // namespace ZamCompiler
