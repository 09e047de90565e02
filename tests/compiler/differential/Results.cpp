#include "Results.h"

#include "InputValues.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace ZamDifferential
{

namespace
{

constexpr int k_iReportedDisagreements = 6;

std::string ComponentName(const SLeaf& leaf, int iComponent)
{
    static const char s_acLane[] = "xyzw";
    const int iColumn = iComponent / leaf.iRows, iRow = iComponent % leaf.iRows;
    std::string name = leaf.glName;
    if (leaf.iColumns > 1)
        name += "[" + std::to_string(iColumn) + "]";
    if (leaf.iRows > 1)
        name += std::string(".") + s_acLane[iRow & 3];
    return name;
}

std::string Where(int iRow, ZamCompiler::ETxeStage eStage)
{
    if (eStage == ZamCompiler::Stage_Vertex)
        return "vertex " + std::to_string(iRow);
    return "pixel (" + std::to_string(iRow % k_iGridSize) + ", " + std::to_string(iRow / k_iGridSize) + ")";
}

std::string Number(float f)
{
    char acText[32];
    std::snprintf(acText, sizeof acText, "%.7g", static_cast<double>(f));
    return acText;
}

// The first column two rows disagree in, -1 when they agree.
int FirstDisagreement(const SResults& mesa, const SResults& txe, std::size_t uiRow)
{
    const std::vector<float>& aMesa = mesa.aaRows[uiRow];
    const std::vector<float>& aTxe = txe.aaRows[uiRow];
    for (std::size_t c = 0; c < mesa.aColumns.size() && c < aMesa.size() && c < aTxe.size(); ++c)
    {
        if (!Agree(aMesa[c], aTxe[c], mesa.aColumns[c].bInteger))
            return static_cast<int>(c);
    }
    return -1;
}

} // namespace

std::vector<SColumn> OutputColumns(const SShaderInterface& shaderInterface)
{
    std::vector<SColumn> aColumns;
    for (const SVariable& output : shaderInterface.aOutputs)
    {
        for (const SLeaf& leaf : output.aLeaves)
        {
            for (int i = 0; i < leaf.Components(); ++i)
                aColumns.push_back({ComponentName(leaf, i), leaf.eScalar != Scalar_Float});
        }
    }
    return aColumns;
}

bool Agree(float fMesa, float fTxe, bool bInteger)
{
    if (std::isnan(fMesa) || std::isnan(fTxe))
        return std::isnan(fMesa) && std::isnan(fTxe);
    if (bInteger || std::isinf(fMesa) || std::isinf(fTxe))
        return fMesa == fTxe;
    const double dMesa = fMesa, dTxe = fTxe;
    const double dScale = std::max({1.0, std::fabs(dMesa), std::fabs(dTxe)});
    return std::fabs(dMesa - dTxe) <= std::max(k_dAbsoluteTolerance, k_dRelativeTolerance * dScale);
}

SComparison Compare(const SResults& mesa, const SResults& txe, ZamCompiler::ETxeStage eStage)
{
    SComparison comparison;
    comparison.iRows = static_cast<int>(mesa.aaRows.size());
    if (txe.aaRows.size() != mesa.aaRows.size() || txe.aColumns.size() != mesa.aColumns.size())
    {
        comparison.report = "the two tables differ in shape";
        return comparison;
    }
    int iReported = 0;
    for (std::size_t r = 0; r < mesa.aaRows.size(); ++r)
    {
        if (r < txe.abUndecided.size() && txe.abUndecided[r])
        {
            ++comparison.iUndecidedRows;
            continue;
        }
        const bool bMesaDiscarded = mesa.abDiscarded[r], bTxeDiscarded = txe.abDiscarded[r];
        const int iColumn = bMesaDiscarded || bTxeDiscarded ? -1 : FirstDisagreement(mesa, txe, r);
        if (bMesaDiscarded == bTxeDiscarded && iColumn < 0)
        {
            ++comparison.iAgreeingRows;
            continue;
        }
        if (iReported++ >= k_iReportedDisagreements)
            continue;
        std::string line = "\n  " + Where(static_cast<int>(r), eStage) + ": ";
        if (bMesaDiscarded != bTxeDiscarded)
            line += bMesaDiscarded ? "Mesa discards, TXE does not" : "TXE discards, Mesa does not";
        else
            line += mesa.aColumns[static_cast<std::size_t>(iColumn)].name + " Mesa " +
                    Number(mesa.aaRows[r][static_cast<std::size_t>(iColumn)]) + ", TXE " +
                    Number(txe.aaRows[r][static_cast<std::size_t>(iColumn)]);
        comparison.report += line;
    }
    return comparison;
}

} // namespace ZamDifferential
