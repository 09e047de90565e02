#include "ZcLowerTrips.h"

#include "ZcLowerTree.h"
#include "ZcLowering.h"

#include <algorithm>

namespace ZamCompiler
{

using namespace glslang;

namespace
{

constexpr int k_iMaxSimulatedTrips = 100000;

bool Compare(TOperator eOp, double dLeft, double dRight)
{
    switch (eOp)
    {
    case EOpLessThan: return dLeft < dRight;
    case EOpGreaterThan: return dLeft > dRight;
    case EOpLessThanEqual: return dLeft <= dRight;
    case EOpGreaterThanEqual: return dLeft >= dRight;
    case EOpNotEqual: return dLeft != dRight;
    default: return false;
    }
}

TOperator Mirrored(TOperator eOp)
{
    switch (eOp)
    {
    case EOpLessThan: return EOpGreaterThan;
    case EOpGreaterThan: return EOpLessThan;
    case EOpLessThanEqual: return EOpGreaterThanEqual;
    case EOpGreaterThanEqual: return EOpLessThanEqual;
    default: return eOp;
    }
}

STxeTrips UnknownTrips()
{
    STxeTrips unknown;
    unknown.iBest = k_iUnknownTripsBest;
    unknown.iAverage = k_iUnknownTripsAverage;
    unknown.iWorst = k_iUnknownTripsWorst;
    return unknown;
}

struct SCounterTest
{
    TIntermSymbol* pCounter = nullptr;
    TOperator eCompare = EOpNull;
    double dLimit = 0.0;
};

// "counter <op> constant" or "constant <op> counter", with a scalar counter.
bool ReadTest(TIntermLoop* pNode, SCounterTest& test)
{
    TIntermBinary* pTest = pNode->getTest() ? pNode->getTest()->getAsBinaryNode() : nullptr;
    if (!pTest)
        return false;
    test.eCompare = pTest->getOp();
    test.pCounter = pTest->getLeft()->getAsSymbolNode();
    TIntermConstantUnion* pLimit = pTest->getRight()->getAsConstantUnion();
    if (!test.pCounter || !pLimit)
    {
        test.pCounter = pTest->getRight()->getAsSymbolNode();
        pLimit = pTest->getLeft()->getAsConstantUnion();
        test.eCompare = Mirrored(test.eCompare);
    }
    if (!test.pCounter || !pLimit || pLimit->getConstArray().empty() || !test.pCounter->getType().isScalar())
        return false;
    test.dLimit = ConstantAsDouble(pLimit->getConstArray()[0]);
    return true;
}

double StepOf(TIntermTyped* pTerminal, long long llCounter);

// "i++, j--": the one part that writes the counter steps it.
double StepOfSequence(TIntermAggregate* pSequence, long long llCounter)
{
    double dStep = 0.0;
    int iWriters = 0;
    for (TIntermNode* pPart : pSequence->getSequence())
    {
        if (!WritesVariable(pPart, llCounter))
            continue;
        ++iWriters;
        dStep = pPart->getAsTyped() ? StepOf(pPart->getAsTyped(), llCounter) : 0.0;
    }
    return iWriters == 1 ? dStep : 0.0;
}

// The constant step of "counter++", "--counter", "counter += k" or "counter -= k"; 0 otherwise.
double StepOf(TIntermTyped* pTerminal, long long llCounter)
{
    TIntermAggregate* pSequence = pTerminal ? pTerminal->getAsAggregate() : nullptr;
    if (pSequence && pSequence->getOp() == EOpComma)
        return StepOfSequence(pSequence, llCounter);
    if (TIntermUnary* pUnary = pTerminal ? pTerminal->getAsUnaryNode() : nullptr)
    {
        TIntermSymbol* pTarget = pUnary->getOperand()->getAsSymbolNode();
        if (!IsIncDec(pUnary->getOp()) || !pTarget || pTarget->getId() != llCounter)
            return 0.0;
        return pUnary->getOp() == EOpPostIncrement || pUnary->getOp() == EOpPreIncrement ? 1.0 : -1.0;
    }
    TIntermBinary* pBinary = pTerminal ? pTerminal->getAsBinaryNode() : nullptr;
    if (!pBinary)
        return 0.0;
    TIntermSymbol* pTarget = pBinary->getLeft()->getAsSymbolNode();
    TIntermConstantUnion* pAmount = pBinary->getRight()->getAsConstantUnion();
    if (!pTarget || pTarget->getId() != llCounter || !pAmount || pAmount->getConstArray().empty() ||
        (pBinary->getOp() != EOpAddAssign && pBinary->getOp() != EOpSubAssign))
        return 0.0;
    const double dStep = ConstantAsDouble(pAmount->getConstArray()[0]);
    return pBinary->getOp() == EOpSubAssign ? -dStep : dStep;
}

} // namespace

void CKnownValues::BeginRegion()
{
    m_aRegionConstants.emplace_back();
}

void CKnownValues::EndRegion()
{
    if (m_aRegionConstants.empty())
        return;
    // A value set inside a branch or loop is not known after it.
    for (long long llId : m_aRegionConstants.back())
        m_mapConstants.erase(llId);
    m_aRegionConstants.pop_back();
}

void CKnownValues::NoteWrite(long long llId)
{
    m_mapConstants.erase(llId);
}

void CKnownValues::NoteConstant(long long llId, double dValue)
{
    m_mapConstants[llId] = dValue;
    if (!m_aRegionConstants.empty())
        m_aRegionConstants.back().push_back(llId);
}

bool CKnownValues::Known(long long llId, double& dValue) const
{
    const auto it = m_mapConstants.find(llId);
    if (it == m_mapConstants.end())
        return false;
    dValue = it->second;
    return true;
}

STxeTrips TripCount(TIntermLoop* pNode, const CKnownValues& known, CTreeFacts& facts)
{
    SCounterTest test;
    double dValue = 0.0;
    if (!ReadTest(pNode, test) || !known.Known(test.pCounter->getId(), dValue))
        return UnknownTrips();
    const double dStep = StepOf(pNode->getTerminal(), test.pCounter->getId());
    if (dStep == 0.0 || facts.Writes(pNode->getBody(), test.pCounter->getId()))
        return UnknownTrips();

    int iTrips = 0;
    while (Compare(test.eCompare, dValue, test.dLimit))
    {
        if (++iTrips > k_iMaxSimulatedTrips)
            return UnknownTrips();
        dValue += dStep;
    }
    if (!pNode->testFirst())
        iTrips = std::max(iTrips, 1);
    STxeTrips trips;
    trips.bKnown = true;
    trips.iBest = trips.iAverage = trips.iWorst = iTrips;
    return trips;
}

} // namespace ZamCompiler
