#include "ZcAnalysis.h"

#include <algorithm>
#include <climits>
#include <cmath>

namespace ZamCompiler
{

namespace
{

int Lanes(const STxeInstruction& instr)
{
    switch (instr.eOp)
    {
    case Op_Dp2: return 2;
    case Op_Dp3: return 3;
    case Op_Dp4: return 4;
    case Op_Stm: return std::max<int>(1, instr.aSrc[0].uiCount);
    default: return std::max<int>(1, instr.dst.uiCount);
    }
}

int Issues(int iLanes, int iWidth)
{
    return (iLanes + iWidth - 1) / iWidth;
}

int BaseCost(const STxeInstruction& instr, const SCoreModel& core)
{
    const ETxeClass eClass = TxeOpInfo(instr.eOp).eClass;
    const int iLanes = Lanes(instr);
    switch (eClass)
    {
    case Class_Alu:
        return core.iAluCycles * Issues(iLanes, core.iVectorWidth);
    case Class_Move:
    {
        int iCost = core.iMoveCycles * Issues(iLanes, core.iVectorWidth);
        const bool bIndexed = instr.aSrc[0].iRelative >= 0 || instr.dst.iRelative >= 0;
        if (instr.eOp == Op_Ldm || instr.eOp == Op_Stm || instr.eOp == Op_Ldc || bIndexed)
            iCost += core.iMemoryCycles;
        return iCost;
    }
    case Class_Transcendental:
        return core.iTranscendentalCycles * iLanes;
    case Class_Texture:
        if (instr.eOp == Op_Txs)
            return core.iAluCycles;
        return instr.bNonDependent ? core.iPrefetchedTextureCycles : core.iTextureCycles;
    case Class_Flow:
        if (instr.eOp == Op_Endif)
            return 0;
        if (instr.eOp == Op_Loop)
            return 1;
        return core.iBranchCycles;
    }
    return 1;
}

bool Reads(const STxeInstruction& instr, const STxeOperand& written)
{
    if (written.eFile == File_None)
        return false;
    for (const STxeOperand& src : instr.aSrc)
    {
        if (src.eFile == written.eFile && src.iIndex == written.iIndex)
            return true;
        if (written.eFile == File_Temp && src.iRelative == written.iIndex)
            return true;
    }
    return written.eFile == File_Temp && instr.dst.iRelative == written.iIndex;
}

bool Pairs(const STxeInstruction& first, const STxeInstruction& second, const SCoreModel& core)
{
    const ETxeClass eFirst = TxeOpInfo(first.eOp).eClass;
    const ETxeClass eSecond = TxeOpInfo(second.eOp).eClass;
    if (Reads(second, first.dst))
        return false;
    switch (core.eIssue)
    {
    case Issue_NarrowAluPair:
        return eFirst == Class_Alu && eSecond == Class_Alu && Lanes(first) <= 2 && Lanes(second) <= 2 &&
               core.iVectorWidth >= 2 && core.iAluCycles == 1;
    case Issue_AluMove:
        return eFirst == Class_Alu && second.eOp == Op_Mov && second.dst.iRelative < 0 &&
               second.aSrc[0].iRelative < 0 && Lanes(first) <= core.iVectorWidth &&
               Lanes(second) <= core.iVectorWidth && core.iAluCycles == 1 && core.iMoveCycles == 1;
    case Issue_AluPair:
        return eFirst == Class_Alu && eSecond == Class_Alu && Lanes(first) + Lanes(second) <= core.iVectorWidth &&
               core.iAluCycles == 1;
    case Issue_Single:
        break;
    }
    return false;
}

struct SWalker
{
    const STxeProgram& program;
    const std::vector<int>& aCosts;

    // Accumulates a block until the instruction that closes it; returns that index.
    std::size_t Block(std::size_t i, SPathCycles& total) const
    {
        const std::size_t uiCount = program.aInstructions.size();
        while (i < uiCount)
        {
            const STxeInstruction& instr = program.aInstructions[i];
            if (instr.eOp == Op_Else || instr.eOp == Op_Endif || instr.eOp == Op_Endloop)
                return i;
            const double dCost = aCosts[i];
            if (instr.eOp == Op_If)
            {
                SPathCycles then;
                SPathCycles otherwise;
                i = Block(i + 1, then);
                if (i < uiCount && program.aInstructions[i].eOp == Op_Else)
                {
                    // The jump over the else block is paid on the then path.
                    Add(then, aCosts[i]);
                    i = Block(i + 1, otherwise);
                }
                double dClose = 0.0;
                if (i < uiCount && program.aInstructions[i].eOp == Op_Endif)
                    dClose = aCosts[i++];
                total.dBest += dCost + dClose + std::min(then.dBest, otherwise.dBest);
                total.dAverage += dCost + dClose + (then.dAverage + otherwise.dAverage) / 2.0;
                total.dWorst += dCost + dClose + std::max(then.dWorst, otherwise.dWorst);
                continue;
            }
            if (instr.eOp == Op_Loop)
            {
                SPathCycles body;
                i = Block(i + 1, body);
                if (i < uiCount && program.aInstructions[i].eOp == Op_Endloop)
                    Add(body, aCosts[i++]);
                total.dBest += dCost + body.dBest * instr.trips.iBest;
                total.dAverage += dCost + body.dAverage * instr.trips.iAverage;
                total.dWorst += dCost + body.dWorst * instr.trips.iWorst;
                continue;
            }
            Add(total, dCost);
            ++i;
        }
        return i;
    }

    static void Add(SPathCycles& cycles, double dCost)
    {
        cycles.dBest += dCost;
        cycles.dAverage += dCost;
        cycles.dWorst += dCost;
    }
};

} // namespace

std::vector<int> CostInstructions(const STxeProgram& program, const SCoreModel& core)
{
    const std::vector<STxeInstruction>& aInstructions = program.aInstructions;
    std::vector<int> aCosts(aInstructions.size(), 0);
    bool bPreviousOpen = false; // previous instruction can still take a partner
    for (std::size_t i = 0; i < aInstructions.size(); ++i)
    {
        aCosts[i] = BaseCost(aInstructions[i], core);
        if (bPreviousOpen && Pairs(aInstructions[i - 1], aInstructions[i], core))
        {
            aCosts[i] = 0;
            bPreviousOpen = false;
            continue;
        }
        bPreviousOpen = TxeOpInfo(aInstructions[i].eOp).eClass != Class_Flow;
    }
    return aCosts;
}

std::map<int, long long> LineCycles(const STxeProgram& program, const std::vector<int>& aCosts, int iLastLine)
{
    // Summed by line number first, then entered in ascending order: every insertion lands
    // at the end of the map, with no search.
    std::vector<long long> aSums(static_cast<std::size_t>(std::max(0, iLastLine)) + 1, 0);
    std::vector<bool> aHasCode(aSums.size(), false);
    for (std::size_t i = 0; i < program.aInstructions.size() && i < aCosts.size(); ++i)
    {
        const int iLine = program.aInstructions[i].iLine;
        if (iLine >= 1 && iLine <= iLastLine)
        {
            aSums[static_cast<std::size_t>(iLine)] += aCosts[i];
            aHasCode[static_cast<std::size_t>(iLine)] = true;
        }
    }
    std::map<int, long long> mapLines;
    for (std::size_t uiLine = 1; uiLine < aSums.size(); ++uiLine)
    {
        if (aHasCode[uiLine])
            mapLines.emplace_hint(mapLines.end(), static_cast<int>(uiLine), aSums[uiLine]);
    }
    return mapLines;
}

SPathCycles PathCycles(const STxeProgram& program, const std::vector<int>& aCosts)
{
    SPathCycles total;
    SWalker walker{program, aCosts};
    std::size_t i = 0;
    // Stray closers cannot come out of the lowering; skip them rather than stop.
    while (i < program.aInstructions.size())
    {
        i = walker.Block(i, total);
        if (i < program.aInstructions.size())
            SWalker::Add(total, aCosts[i++]);
    }
    return total;
}

int ClampCycles(double dCycles)
{
    if (!(dCycles >= 0.0))
        return 0;
    if (dCycles >= static_cast<double>(INT_MAX))
        return INT_MAX;
    return static_cast<int>(std::llround(dCycles));
}

} // namespace ZamCompiler
