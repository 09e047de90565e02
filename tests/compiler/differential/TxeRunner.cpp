#include "TxeRunner.h"

#include "InputValues.h"
#include "ZcCores.h"
#include "ZcDiagnostics.h"

#include <limits>

namespace ZamDifferential
{

using ZamCompilerTest::CTxeMachine;
using ZamCompilerTest::k_iInvocations;
using ZamCompilerTest::SLanes;

namespace
{

const ZamCompiler::STxeBinding* LeafBinding(const CTxeMachine& machine, const SLeaf& leaf)
{
    const ZamCompiler::STxeBinding* pBinding = machine.Binding(leaf.binding);
    if (!pBinding && !leaf.alias.empty())
        pBinding = machine.Binding(leaf.alias);
    return pBinding;
}

void SetLeaf(CTxeMachine& machine, const SLeaf& leaf, const std::vector<SLanes>& aSlots, int iInvocation)
{
    const ZamCompiler::STxeBinding* pBinding = LeafBinding(machine, leaf);
    if (!pBinding)
        return; // the program never reads it
    for (std::size_t c = 0; c < aSlots.size(); ++c)
        machine.SetSlot(pBinding->eFile, pBinding->iBase + leaf.iSlot + static_cast<int>(c), aSlots[c], iInvocation);
}

void SetUniforms(CTxeMachine& machine, const SShaderInterface& shaderInterface)
{
    for (const SLeaf& leaf : shaderInterface.aUniforms)
        SetLeaf(machine, leaf, Slots(leaf, UniformValues(leaf)), -1);
    for (const SBlock& block : shaderInterface.aBlocks)
    {
        for (const SLeaf& leaf : block.aLeaves)
            SetLeaf(machine, leaf, Slots(leaf, UniformValues(leaf)), -1);
    }
}

// Invocation i of quad (qx, qy) is pixel (2qx + (i & 1), 2qy + (i >> 1)).
void SetFragmentInputs(CTxeMachine& machine, const SShaderInterface& shaderInterface, int qx, int qy)
{
    for (int i = 0; i < k_iInvocations; ++i)
    {
        const float px = static_cast<float>(2 * qx + (i & 1)) + 0.5f;
        const float py = static_cast<float>(2 * qy + (i >> 1)) + 0.5f;
        machine.Set("gl_FragCoord", {{px, py, 0.5f, 1.0f}}, i);
        machine.Set("gl_FrontFacing", {{1.0f, 1.0f, 1.0f, 1.0f}}, i);
        const double x = 2.0 * px / k_iGridSize - 1.0, y = 2.0 * py / k_iGridSize - 1.0;
        for (const SVariable& input : shaderInterface.aInputs)
        {
            for (const SLeaf& leaf : input.aLeaves)
            {
                std::vector<float> aValues;
                for (const SLinear& value : VaryingValues(leaf, input.bFlat))
                    aValues.push_back(value.At(x, y));
                SetLeaf(machine, leaf, Slots(leaf, aValues), i);
            }
        }
    }
}

void SetVertexInputs(CTxeMachine& machine, const SShaderInterface& shaderInterface, int iFirstVertex)
{
    for (int i = 0; i < k_iInvocations; ++i)
    {
        const float fVertex = static_cast<float>(iFirstVertex + i);
        machine.Set("gl_VertexID", {{fVertex, fVertex, fVertex, fVertex}}, i);
        machine.Set("gl_InstanceID", {{0, 0, 0, 0}}, i);
        for (const SVariable& input : shaderInterface.aInputs)
        {
            for (const SLeaf& leaf : input.aLeaves)
                SetLeaf(machine, leaf, Slots(leaf, AttributeValues(leaf, iFirstVertex + i)), i);
        }
    }
}

// An output the program never binds reads as NaN, which only a NaN from Mesa matches.
std::vector<float> OutputRow(const CTxeMachine& machine, const SShaderInterface& shaderInterface, int iInvocation)
{
    std::vector<float> aRow;
    for (const SVariable& output : shaderInterface.aOutputs)
    {
        for (const SLeaf& leaf : output.aLeaves)
        {
            const ZamCompiler::STxeBinding* pBinding = LeafBinding(machine, leaf);
            for (int c = 0; c < leaf.iColumns; ++c)
            {
                const SLanes slot = pBinding ? machine.Slot(pBinding->eFile, pBinding->iBase + leaf.iSlot + c, iInvocation)
                                             : SLanes{};
                for (int r = 0; r < leaf.iRows; ++r)
                    aRow.push_back(pBinding ? slot[static_cast<std::size_t>(r)] : std::numeric_limits<float>::quiet_NaN());
            }
        }
    }
    return aRow;
}

} // namespace

bool CompileForTxe(const std::string& source, ZamCompiler::ETxeStage eStage, ZamCompiler::SCompilation& compilation,
                   std::string& messages)
{
    const bool bCompiled = ZamCompiler::CompileSource(source, eStage, ZamCompiler::CoreModel(ZamCompiler::Core_ZC1),
                                                      ZamCompiler::DefaultSourceLimits(), compilation);
    messages.clear();
    for (const ZamCompiler::SDiagnostic& diagnostic : compilation.aDiagnostics)
        messages += "\n  " + ZamCompiler::FormatDiagnostic(diagnostic);
    return bCompiled;
}

bool RunOnTxe(const ZamCompiler::STxeProgram& program, const SShaderInterface& shaderInterface,
              CReferenceTextures& textures, SResults& results, std::string& error)
{
    results = SResults();
    results.aColumns = OutputColumns(shaderInterface);
    const bool bVertex = shaderInterface.eStage == ZamCompiler::Stage_Vertex;
    const int iRuns = bVertex ? k_iVertexCount / k_iInvocations : (k_iGridSize / 2) * (k_iGridSize / 2);
    const int iRows = bVertex ? k_iVertexCount : k_iGridSize * k_iGridSize;
    results.aaRows.assign(static_cast<std::size_t>(iRows), {});
    results.abDiscarded.assign(static_cast<std::size_t>(iRows), false);
    results.abUndecided.assign(static_cast<std::size_t>(iRows), false);
    for (int iRun = 0; iRun < iRuns; ++iRun)
    {
        CTxeMachine machine(program, &textures);
        textures.BindSlots(machine);
        SetUniforms(machine, shaderInterface);
        const int qx = iRun % (k_iGridSize / 2), qy = iRun / (k_iGridSize / 2);
        if (bVertex)
            SetVertexInputs(machine, shaderInterface, iRun * k_iInvocations);
        else
            SetFragmentInputs(machine, shaderInterface, qx, qy);
        if (!machine.Run())
        {
            error = machine.Error();
            return false;
        }
        const unsigned uiUndecided = textures.TakeUndecided();
        for (int i = 0; i < k_iInvocations; ++i)
        {
            const int iRow = bVertex ? iRun * k_iInvocations + i : (2 * qy + (i >> 1)) * k_iGridSize + 2 * qx + (i & 1);
            results.aaRows[static_cast<std::size_t>(iRow)] = OutputRow(machine, shaderInterface, i);
            results.abDiscarded[static_cast<std::size_t>(iRow)] = machine.Discarded(i);
            results.abUndecided[static_cast<std::size_t>(iRow)] = (uiUndecided >> i) & 1u;
        }
    }
    return true;
}

} // namespace ZamDifferential
