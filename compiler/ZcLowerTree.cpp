#include "ZcLowerTree.h"

#include <algorithm>

namespace ZamCompiler
{

using namespace glslang;

namespace
{

// Collects every variable written: assigned, incremented, or passed to an out parameter.
// With bReturns it also counts the returns, visiting nodes after their children too to
// know which returns sit inside a loop or switch (both leave through a flag then): one walk
// answers both questions an inlined function's body is asked.
class CFactCollector : public TIntermTraverser
{
public:
    explicit CFactCollector(bool bReturns) : TIntermTraverser(true, false, bReturns) {}
    std::vector<long long> aWritten;
    SReturnCount returns;

    bool visitBinary(TVisit eVisit, TIntermBinary* pNode) override
    {
        if (eVisit == EvPreVisit && IsAssignment(pNode->getOp()))
            Note(pNode->getLeft());
        return true;
    }
    bool visitUnary(TVisit eVisit, TIntermUnary* pNode) override
    {
        if (eVisit == EvPreVisit && IsIncDec(pNode->getOp()))
            Note(pNode->getOperand());
        return true;
    }
    bool visitAggregate(TVisit eVisit, TIntermAggregate* pNode) override
    {
        if (eVisit != EvPreVisit)
            return true;
        const bool bCall = pNode->getOp() == EOpFunctionCall;
        const TQualifierList& aQualifiers = pNode->getQualifierList();
        const TIntermSequence& aArgs = pNode->getSequence();
        for (std::size_t i = 0; i < aArgs.size(); ++i)
        {
            // Without qualifiers recorded, any argument of a user function might be written.
            const bool bWritable = bCall ? i >= aQualifiers.size() || aQualifiers[i] == EvqOut || aQualifiers[i] == EvqInOut
                                         : IsBuiltinOutput(pNode->getOp(), i);
            if (bWritable && aArgs[i] && aArgs[i]->getAsTyped())
                Note(aArgs[i]->getAsTyped());
        }
        return true;
    }
    bool visitBranch(TVisit eVisit, TIntermBranch* pNode) override
    {
        if (eVisit == EvPreVisit && pNode->getFlowOp() == EOpReturn)
        {
            ++returns.iReturns;
            returns.bInsideLevel = returns.bInsideLevel || m_iLevels > 0;
        }
        return true;
    }
    bool visitLoop(TVisit eVisit, TIntermLoop*) override
    {
        m_iLevels += eVisit == EvPreVisit ? 1 : -1;
        return true;
    }
    bool visitSwitch(TVisit eVisit, TIntermSwitch*) override
    {
        m_iLevels += eVisit == EvPreVisit ? 1 : -1;
        return true;
    }

private:
    void Note(TIntermTyped* pTarget)
    {
        if (TIntermSymbol* pRoot = RootOf(pTarget))
            aWritten.push_back(pRoot->getId());
    }

    int m_iLevels = 0;
};

class CSideEffectFinder : public TIntermTraverser
{
public:
    bool bFound = false;

    bool visitBinary(TVisit, TIntermBinary* pNode) override
    {
        if (IsAssignment(pNode->getOp()))
            bFound = true;
        return !bFound;
    }
    bool visitUnary(TVisit, TIntermUnary* pNode) override
    {
        if (IsIncDec(pNode->getOp()))
            bFound = true;
        return !bFound;
    }
    bool visitAggregate(TVisit, TIntermAggregate* pNode) override
    {
        if (pNode->getOp() == EOpFunctionCall || IsBuiltinOutput(pNode->getOp(), pNode->getSequence().size() - 1))
            bFound = true;
        return !bFound;
    }
    bool visitBranch(TVisit, TIntermBranch*) override
    {
        bFound = true;
        return false;
    }
    bool visitSelection(TVisit, TIntermSelection* pNode) override
    {
        // Statements inside an expression (never produced for GLSL ES) count as effects.
        if (pNode->getBasicType() == EbtVoid)
            bFound = true;
        return !bFound;
    }
    bool visitLoop(TVisit, TIntermLoop*) override
    {
        bFound = true;
        return false;
    }
};

// A type that is neither an array nor a structure: one slot a matrix column, or one slot.
void PlainSlots(const TType& type, std::size_t& uiSlots, std::uint8_t& uiLanes)
{
    uiSlots = type.isMatrix() ? static_cast<std::size_t>(std::max(0, type.getMatrixCols())) : 1;
    uiLanes = static_cast<std::uint8_t>(type.isMatrix() ? type.getMatrixRows() : std::clamp(type.getVectorSize(), 1, 4));
}

} // namespace

std::vector<std::uint8_t> SlotLanes(const TType& type)
{
    // Most values are one vector or a matrix: one allocation of the final size.
    if (!type.isArray() && !type.isStruct())
    {
        std::size_t uiSlots = 0;
        std::uint8_t uiLanes = 0;
        PlainSlots(type, uiSlots, uiLanes);
        return std::vector<std::uint8_t>(uiSlots, uiLanes);
    }
    std::vector<std::uint8_t> aLanes;
    if (type.isArray())
    {
        const TType element(type, 0);
        const std::vector<std::uint8_t> aElement = SlotLanes(element);
        const bool bRuntimeSized = type.isUnsizedArray() && type.getQualifier().storage == EvqBuffer;
        const int iCount = type.isSizedArray() ? std::max(0, type.getOuterArraySize())
                                               : (bRuntimeSized ? k_iRuntimeArrayElements : 0);
        aLanes.reserve(static_cast<std::size_t>(iCount) * aElement.size());
        for (int i = 0; i < iCount; ++i)
            aLanes.insert(aLanes.end(), aElement.begin(), aElement.end());
    }
    else
    {
        for (const TTypeLoc& member : *type.getStruct())
        {
            const std::vector<std::uint8_t> aMember = SlotLanes(*member.type);
            aLanes.insert(aLanes.end(), aMember.begin(), aMember.end());
        }
    }
    return aLanes;
}

void AppendSlotLanes(const TType& type, CInlineList<std::uint8_t, 4>& aLanes)
{
    if (type.isArray() || type.isStruct())
    {
        const std::vector<std::uint8_t> aAll = SlotLanes(type);
        aLanes.append(aAll.begin(), aAll.end());
        return;
    }
    std::size_t uiSlots = 0;
    std::uint8_t uiLanes = 0;
    PlainSlots(type, uiSlots, uiLanes);
    for (std::size_t i = 0; i < uiSlots; ++i)
        aLanes.push_back(uiLanes);
}

int SlotCount(const TType& type)
{
    if (type.isArray())
    {
        const bool bRuntimeSized = type.isUnsizedArray() && type.getQualifier().storage == EvqBuffer;
        const int iCount = type.isSizedArray() ? std::max(0, type.getOuterArraySize())
                                               : (bRuntimeSized ? k_iRuntimeArrayElements : 0);
        return iCount * SlotCount(TType(type, 0));
    }
    if (type.isStruct())
    {
        int iSlots = 0;
        for (const TTypeLoc& member : *type.getStruct())
            iSlots += SlotCount(*member.type);
        return iSlots;
    }
    return type.isMatrix() ? type.getMatrixCols() : 1;
}

int LanesOf(const TType& type)
{
    if (type.isMatrix())
        return type.getMatrixRows();
    return std::clamp(type.getVectorSize(), 1, 4);
}

bool IsFloatType(TBasicType eType)
{
    return eType == EbtFloat || eType == EbtDouble || eType == EbtFloat16;
}

bool IsIntegerType(TBasicType eType)
{
    return eType == EbtInt || eType == EbtUint || eType == EbtInt8 || eType == EbtUint8 || eType == EbtInt16 ||
           eType == EbtUint16 || eType == EbtInt64 || eType == EbtUint64;
}

ETxeType TxeTypeOf(TBasicType eType)
{
    switch (eType)
    {
    case EbtInt:
    case EbtInt8:
    case EbtInt16:
    case EbtInt64: return Type_Int;
    case EbtUint:
    case EbtUint8:
    case EbtUint16:
    case EbtUint64: return Type_Uint;
    default: return Type_Float;
    }
}

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

std::vector<float> ConstantSlots(const TType& type, const TConstUnionArray& aConstants)
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

bool IsAssignment(TOperator eOp)
{
    return eOp == EOpAssign || BaseOfCompound(eOp) != EOpNull;
}

TOperator BaseOfCompound(TOperator eOp)
{
    switch (eOp)
    {
    case EOpAddAssign: return EOpAdd;
    case EOpSubAssign: return EOpSub;
    case EOpMulAssign: return EOpMul;
    case EOpVectorTimesMatrixAssign: return EOpVectorTimesMatrix;
    case EOpVectorTimesScalarAssign: return EOpVectorTimesScalar;
    case EOpMatrixTimesScalarAssign: return EOpMatrixTimesScalar;
    case EOpMatrixTimesMatrixAssign: return EOpMatrixTimesMatrix;
    case EOpDivAssign: return EOpDiv;
    case EOpModAssign: return EOpMod;
    case EOpAndAssign: return EOpAnd;
    case EOpInclusiveOrAssign: return EOpInclusiveOr;
    case EOpExclusiveOrAssign: return EOpExclusiveOr;
    case EOpLeftShiftAssign: return EOpLeftShift;
    case EOpRightShiftAssign: return EOpRightShift;
    default: return EOpNull;
    }
}

bool IsIncDec(TOperator eOp)
{
    return eOp == EOpPostIncrement || eOp == EOpPostDecrement || eOp == EOpPreIncrement || eOp == EOpPreDecrement;
}

bool IsArithmetic(TOperator eOp)
{
    switch (eOp)
    {
    case EOpAdd:
    case EOpSub:
    case EOpMul:
    case EOpDiv:
    case EOpMod:
    case EOpVectorTimesScalar:
    case EOpMatrixTimesScalar:
    case EOpVectorTimesMatrix:
    case EOpMatrixTimesVector:
    case EOpMatrixTimesMatrix:
    case EOpAnd:
    case EOpInclusiveOr:
    case EOpExclusiveOr:
    case EOpLeftShift:
    case EOpRightShift:
    case EOpLogicalXor:
        return true;
    default:
        return false;
    }
}

bool IsComparison(TOperator eOp)
{
    switch (eOp)
    {
    case EOpEqual:
    case EOpNotEqual:
    case EOpVectorEqual:
    case EOpVectorNotEqual:
    case EOpLessThan:
    case EOpGreaterThan:
    case EOpLessThanEqual:
    case EOpGreaterThanEqual:
        return true;
    default:
        return false;
    }
}

bool IsBuiltinOutput(TOperator eOp, std::size_t i)
{
    switch (eOp)
    {
    case EOpModf:
    case EOpFrexp: return i == 1;
    case EOpAddCarry:
    case EOpSubBorrow: return i == 2;
    case EOpUMulExtended:
    case EOpIMulExtended: return i == 2 || i == 3;
    default: return false;
    }
}

bool IsConversion(TOperator eOp)
{
    return eOp >= EOpConvInt8ToBool && eOp <= EOpConvDoubleToFloat;
}

std::string GlslTypeName(const TType& type)
{
    if (type.isArray())
        return GlslTypeName(TType(type, 0)) + "[]";
    if (type.isStruct())
        return type.getTypeName().c_str();
    std::string name = type.getBasicTypeString().c_str();
    if (type.isMatrix())
        return "mat" + std::to_string(type.getMatrixCols()) +
               (type.getMatrixCols() == type.getMatrixRows() ? "" : "x" + std::to_string(type.getMatrixRows()));
    if (!type.isVector())
        return name;
    const std::string size = std::to_string(type.getVectorSize());
    switch (type.getBasicType())
    {
    case EbtInt: return "ivec" + size;
    case EbtUint: return "uvec" + size;
    case EbtBool: return "bvec" + size;
    default: return "vec" + size;
    }
}

std::string OperatorName(TOperator eOp)
{
    switch (eOp)
    {
    case EOpNegative:
    case EOpSub: return "-";
    case EOpLogicalNot:
    case EOpVectorLogicalNot: return "!";
    case EOpBitwiseNot: return "~";
    case EOpPostIncrement:
    case EOpPreIncrement: return "++";
    case EOpPostDecrement:
    case EOpPreDecrement: return "--";
    case EOpAdd: return "+";
    case EOpMul:
    case EOpVectorTimesScalar:
    case EOpVectorTimesMatrix:
    case EOpMatrixTimesVector:
    case EOpMatrixTimesScalar:
    case EOpMatrixTimesMatrix: return "*";
    case EOpDiv: return "/";
    case EOpMod: return "%";
    case EOpRightShift: return ">>";
    case EOpLeftShift: return "<<";
    case EOpAnd: return "&";
    case EOpInclusiveOr: return "|";
    case EOpExclusiveOr: return "^";
    case EOpEqual:
    case EOpVectorEqual: return "==";
    case EOpNotEqual:
    case EOpVectorNotEqual: return "!=";
    case EOpLessThan: return "<";
    case EOpGreaterThan: return ">";
    case EOpLessThanEqual: return "<=";
    case EOpGreaterThanEqual: return ">=";
    case EOpComma: return ",";
    case EOpLogicalOr: return "||";
    case EOpLogicalXor: return "^^";
    case EOpLogicalAnd: return "&&";
    case EOpIndexDirect:
    case EOpIndexIndirect: return "[]";
    case EOpIndexDirectStruct:
    case EOpVectorSwizzle: return ".";
    case EOpAssign: return "=";
    case EOpAddAssign: return "+=";
    case EOpSubAssign: return "-=";
    case EOpMulAssign:
    case EOpVectorTimesMatrixAssign:
    case EOpVectorTimesScalarAssign:
    case EOpMatrixTimesScalarAssign:
    case EOpMatrixTimesMatrixAssign: return "*=";
    case EOpDivAssign: return "/=";
    case EOpModAssign: return "%=";
    case EOpAndAssign: return "&=";
    case EOpInclusiveOrAssign: return "|=";
    case EOpExclusiveOrAssign: return "^=";
    case EOpLeftShiftAssign: return "<<=";
    case EOpRightShiftAssign: return ">>=";
    default: return std::string();
    }
}

TIntermSymbol* RootOf(TIntermTyped* pNode)
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

std::string AccessName(TIntermTyped* pNode)
{
    while (pNode)
    {
        if (TIntermSymbol* pSymbol = pNode->getAsSymbolNode())
            return UserName(pSymbol);
        TIntermBinary* pBinary = pNode->getAsBinaryNode();
        if (!pBinary)
            return std::string();
        const TType& leftType = pBinary->getLeft()->getType();
        TIntermConstantUnion* pMember = pBinary->getRight()->getAsConstantUnion();
        if (pBinary->getOp() == EOpIndexDirectStruct && leftType.isStruct() && pMember && !pMember->getConstArray().empty())
        {
            const int iMember = pMember->getConstArray()[0].getIConst();
            if (iMember >= 0 && iMember < static_cast<int>(leftType.getStruct()->size()))
                return (*leftType.getStruct())[static_cast<std::size_t>(iMember)].type->getFieldName().c_str();
        }
        pNode = pBinary->getLeft();
    }
    return std::string();
}

bool IsAccessNode(TIntermTyped* pNode)
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

bool WritesVariable(TIntermNode* pNode, long long llId)
{
    if (!pNode)
        return false;
    CFactCollector collector(false);
    pNode->traverse(&collector);
    return std::find(collector.aWritten.begin(), collector.aWritten.end(), llId) != collector.aWritten.end();
}

bool HasSideEffects(TIntermNode* pNode)
{
    if (!pNode)
        return false;
    CSideEffectFinder finder;
    pNode->traverse(&finder);
    return finder.bFound;
}

bool CTreeFacts::Writes(TIntermNode* pNode, long long llId)
{
    if (!pNode)
        return false;
    const std::vector<long long>& aWritten = Facts(pNode).aWritten;
    return std::binary_search(aWritten.begin(), aWritten.end(), llId);
}

SReturnCount CTreeFacts::Returns(TIntermNode* pBody)
{
    return pBody ? Facts(pBody).returns : SReturnCount();
}

const CTreeFacts::SNodeFacts& CTreeFacts::Facts(TIntermNode* pNode)
{
    auto it = m_mapFacts.find(pNode);
    if (it == m_mapFacts.end())
    {
        CFactCollector collector(true);
        pNode->traverse(&collector);
        std::sort(collector.aWritten.begin(), collector.aWritten.end());
        it = m_mapFacts.emplace(pNode, SNodeFacts{std::move(collector.aWritten), collector.returns}).first;
    }
    return it->second;
}

bool CTreeFacts::HasSideEffects(TIntermNode* pNode)
{
    const auto it = m_mapSideEffects.find(pNode);
    if (it != m_mapSideEffects.end())
        return it->second;
    const bool bEffects = ZamCompiler::HasSideEffects(pNode);
    m_mapSideEffects.emplace(pNode, bEffects);
    return bEffects;
}

bool EndsWithReturn(TIntermNode* pBody)
{
    TIntermAggregate* pSequence = pBody ? pBody->getAsAggregate() : nullptr;
    if (!pSequence || pSequence->getSequence().empty())
        return false;
    TIntermBranch* pLast = pSequence->getSequence().back() ? pSequence->getSequence().back()->getAsBranchNode() : nullptr;
    return pLast && pLast->getFlowOp() == EOpReturn;
}

TIntermAggregate* ParametersOf(TIntermAggregate* pDefinition)
{
    TIntermSequence& sequence = pDefinition->getSequence();
    if (sequence.empty() || !sequence[0])
        return nullptr;
    TIntermAggregate* pParameters = sequence[0]->getAsAggregate();
    return pParameters && pParameters->getOp() == EOpParameters ? pParameters : nullptr;
}

TIntermNode* BodyOf(TIntermAggregate* pDefinition)
{
    TIntermSequence& sequence = pDefinition->getSequence();
    return sequence.size() > 1 ? sequence[1] : nullptr;
}

std::string FunctionName(const TString& mangled)
{
    std::string name = mangled.c_str();
    const std::size_t uiParen = name.find('(');
    return uiParen == std::string::npos ? name : name.substr(0, uiParen);
}

std::string UserName(const TIntermSymbol* pSymbol)
{
    const std::string name = pSymbol->getName().c_str();
    if (name.rfind("anon@", 0) == 0 && pSymbol->getType().getBasicType() == EbtBlock)
        return pSymbol->getType().getTypeName().c_str();
    return name;
}

} // namespace ZamCompiler
