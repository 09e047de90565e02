#include "ZcRegisterAllocation.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace ZamCompiler
{

namespace
{

struct SInterval
{
    int iStart = -1;
    int iEnd = -1;
    bool bFirstIsRead = false;
    int iPhysical = -1;
};

struct SLoopRange
{
    int iBegin;
    int iEnd;
};

// Registers past the end of the list (none, after lowering) grow it.
inline void Touch(std::vector<SInterval>& aIntervals, int iRegister, int iPosition, bool bRead)
{
    if (static_cast<unsigned>(iRegister) >= aIntervals.size())
    {
        if (iRegister < 0)
            return;
        aIntervals.resize(static_cast<std::size_t>(iRegister) + 1);
    }
    SInterval& interval = aIntervals[static_cast<std::size_t>(iRegister)];
    if (interval.iStart < 0)
    {
        interval.iStart = iPosition;
        interval.bFirstIsRead = bRead;
    }
    interval.iEnd = iPosition; // positions only grow
}

std::vector<SInterval> BuildIntervals(const STxeProgram& program)
{
    std::vector<SInterval> aIntervals(static_cast<std::size_t>(std::max(0, program.iTemps)));
    const std::size_t uiCount = program.aInstructions.size();
    for (std::size_t i = 0; i < uiCount; ++i)
    {
        const STxeInstruction& instr = program.aInstructions[i];
        const int iPosition = static_cast<int>(i);
        for (const STxeOperand& src : instr.aSrc)
        {
            if (src.eFile == File_Temp)
                Touch(aIntervals, src.iIndex, iPosition, true);
            if (src.iRelative >= 0)
                Touch(aIntervals, src.iRelative, iPosition, true);
        }
        if (instr.dst.iRelative >= 0)
            Touch(aIntervals, instr.dst.iRelative, iPosition, true);
        if (instr.dst.eFile == File_Temp)
            Touch(aIntervals, instr.dst.iIndex, iPosition, false);
    }
    return aIntervals;
}

std::vector<SLoopRange> FindLoops(const STxeProgram& program)
{
    std::vector<SLoopRange> aLoops;
    std::vector<int> aOpen;
    for (std::size_t i = 0; i < program.aInstructions.size(); ++i)
    {
        if (program.aInstructions[i].eOp == Op_Loop)
        {
            aOpen.push_back(static_cast<int>(i));
        }
        else if (program.aInstructions[i].eOp == Op_Endloop && !aOpen.empty())
        {
            aLoops.push_back({aOpen.back(), static_cast<int>(i)});
            aOpen.pop_back();
        }
    }
    return aLoops;
}

// A value that lives into a loop, or is read before it is written inside one,
// must survive the loop's back edge. aLoops come innermost first (ordered by their end);
// aByBegin holds the same loops ordered by their start.
void ExtendOverLoops(std::vector<SInterval>& aIntervals, const std::vector<SLoopRange>& aLoops,
                     const std::vector<SLoopRange>& aByBegin)
{
    const auto BeginsBefore = [](int iPosition, const SLoopRange& loop) { return iPosition < loop.iBegin; };
    for (SInterval& interval : aIntervals)
    {
        if (interval.iStart < 0)
            continue;
        if (interval.bFirstIsRead)
        {
            for (const SLoopRange& loop : aLoops)
            {
                if (loop.iBegin < interval.iStart && interval.iStart < loop.iEnd)
                {
                    interval.iStart = std::min(interval.iStart, loop.iBegin);
                    interval.iEnd = std::max(interval.iEnd, loop.iEnd);
                }
            }
        }
        // Loops that start inside the interval and end after it, in order of their start: the end
        // only grows, so one pass reaches the same end as repeating until nothing changes.
        auto it = std::upper_bound(aByBegin.begin(), aByBegin.end(), interval.iStart, BeginsBefore);
        for (; it != aByBegin.end() && it->iBegin < interval.iEnd; ++it)
        {
            if (interval.iEnd < it->iEnd)
                interval.iEnd = it->iEnd;
        }
    }
}

// The live registers ordered by where they start, registers that start together in
// ascending order: a counting sort, as starts are instruction positions.
std::vector<int> ByStart(const std::vector<SInterval>& aIntervals, std::size_t uiPositions)
{
    std::vector<int> aFirst(uiPositions + 1, 0);
    for (const SInterval& interval : aIntervals)
    {
        if (interval.iStart >= 0)
            ++aFirst[static_cast<std::size_t>(interval.iStart) + 1];
    }
    for (std::size_t i = 1; i <= uiPositions; ++i)
        aFirst[i] += aFirst[i - 1];
    std::vector<int> aOrder(static_cast<std::size_t>(aFirst[uiPositions]));
    for (std::size_t i = 0; i < aIntervals.size(); ++i)
    {
        if (aIntervals[i].iStart >= 0)
            aOrder[static_cast<std::size_t>(aFirst[static_cast<std::size_t>(aIntervals[i].iStart)]++)] = static_cast<int>(i);
    }
    return aOrder;
}

// Linear scan in order of start: a register whose interval ended at or before the start is
// free again (one read for the last time can be the destination of the same instruction),
// and the lowest free register is taken. Intervals are chained by their end, so freeing is a
// step per position, and the free registers are bits, so the lowest is a bit scan.
int AssignPhysical(std::vector<SInterval>& aIntervals, const std::vector<int>& aOrder, std::size_t uiPositions)
{
    std::vector<int> aEndingAt(uiPositions + 1, -1);
    std::vector<int> aNextEnding(aIntervals.size(), -1);
    std::vector<int> aEndedAlready; // ended where the scan has already freed
    std::vector<std::uint64_t> aFree;
    auto release = [&aFree](int iPhysical) {
        aFree[static_cast<std::size_t>(iPhysical) / 64] |= std::uint64_t(1) << (iPhysical % 64);
    };
    int iPeak = 0;
    int iFreedThrough = -1;
    for (int iRegister : aOrder)
    {
        SInterval& interval = aIntervals[iRegister];
        for (int iEnded : aEndedAlready)
            release(aIntervals[iEnded].iPhysical);
        aEndedAlready.clear();
        for (; iFreedThrough < interval.iStart; ++iFreedThrough)
        {
            for (int iEnded = aEndingAt[iFreedThrough + 1]; iEnded >= 0; iEnded = aNextEnding[iEnded])
                release(aIntervals[iEnded].iPhysical);
        }
        interval.iPhysical = -1;
        for (std::size_t uiWord = 0; uiWord < aFree.size() && interval.iPhysical < 0; ++uiWord)
        {
            if (aFree[uiWord] == 0)
                continue;
            const int iBit = __builtin_ctzll(aFree[uiWord]);
            aFree[uiWord] &= aFree[uiWord] - 1;
            interval.iPhysical = static_cast<int>(uiWord) * 64 + iBit;
        }
        if (interval.iPhysical < 0)
        {
            interval.iPhysical = iPeak++;
            if (static_cast<std::size_t>(iPeak) > aFree.size() * 64)
                aFree.push_back(0);
        }
        if (interval.iEnd <= iFreedThrough)
        {
            aEndedAlready.push_back(iRegister);
        }
        else
        {
            aNextEnding[static_cast<std::size_t>(iRegister)] = aEndingAt[static_cast<std::size_t>(interval.iEnd)];
            aEndingAt[static_cast<std::size_t>(interval.iEnd)] = iRegister;
        }
    }
    return iPeak;
}

inline void Rewrite(STxeOperand& op, const SInterval* pIntervals, std::size_t uiIntervals)
{
    if (op.eFile == File_Temp && static_cast<unsigned>(op.iIndex) < uiIntervals)
        op.iIndex = pIntervals[op.iIndex].iPhysical;
    if (static_cast<unsigned>(op.iRelative) < uiIntervals)
        op.iRelative = pIntervals[op.iRelative].iPhysical;
}

} // namespace

int AllocateRegisters(STxeProgram& program)
{
    std::vector<SInterval> aIntervals = BuildIntervals(program);
    const std::vector<SLoopRange> aLoops = FindLoops(program);
    std::vector<SLoopRange> aByBegin = aLoops;
    std::sort(aByBegin.begin(), aByBegin.end(),
              [](const SLoopRange& a, const SLoopRange& b) { return a.iBegin < b.iBegin; });
    ExtendOverLoops(aIntervals, aLoops, aByBegin);

    const std::vector<int> aOrder = ByStart(aIntervals, program.aInstructions.size());
    const int iPeak = AssignPhysical(aIntervals, aOrder, program.aInstructions.size());

    const SInterval* pIntervals = aIntervals.data();
    const std::size_t uiIntervals = aIntervals.size();
    for (STxeInstruction& instr : program.aInstructions)
    {
        Rewrite(instr.dst, pIntervals, uiIntervals);
        for (STxeOperand& src : instr.aSrc)
            Rewrite(src, pIntervals, uiIntervals);
    }
    program.iTemps = iPeak;
    return iPeak;
}

} // namespace ZamCompiler
