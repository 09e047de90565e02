#pragma once

// A small TXE interpreter for tests. It runs four invocations in lockstep, as a
// 2x2 fragment quad (invocation 0 bottom left, 1 bottom right, 2 top left, 3 top
// right), so ddx/ddy see their neighbours and divergent branches are masked the
// way a GPU masks them. A lane holds a number, a float or a 32-bit integer, as the
// instruction set defines it (TxeArithmetic.h).

#include "TxeIsa.h"

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace ZamCompilerTest
{

using SLanes = std::array<double, 4>;
constexpr int k_iInvocations = 4;

// One sample instruction as the sampler sees it; txp arrives already projected.
struct STxeSample
{
    ZamCompiler::ETxeOp eOp = ZamCompiler::Op_Tex;
    int iInvocation = 0;
    int iUnit = 0;
    SLanes coordinate = {0, 0, 0, 0};
    int iCoordinateLanes = 0;
    SLanes extra = {0, 0, 0, 0};  // bias, lod or ddx
    SLanes extra2 = {0, 0, 0, 0}; // ddy
    int aiTexelOffset[3] = {0, 0, 0}; // added to the texel address of the level sampled
};

class ITxeSampler
{
public:
    virtual ~ITxeSampler() = default;
    virtual SLanes Sample(const STxeSample& sample) = 0;
    virtual SLanes Size(int iUnit, int iLod) = 0;
};

class CTxeMachine
{
public:
    // The sampler must outlive the machine; without one, samples read zero.
    explicit CTxeMachine(const ZamCompiler::STxeProgram& program, ITxeSampler* pSampler = nullptr);

    // The named resource's binding, or nullptr when the program never uses it.
    const ZamCompiler::STxeBinding* Binding(const std::string& name) const;
    // Writes the slots of a named resource for one invocation (-1: all of them).
    // A name without binding is not an error: the program does not read it.
    void Set(const std::string& name, const std::vector<SLanes>& aSlots, int iInvocation = -1);
    void SetSlot(ZamCompiler::ETxeFile eFile, int iSlot, const SLanes& value, int iInvocation = -1);
    SLanes Slot(ZamCompiler::ETxeFile eFile, int iSlot, int iInvocation = 0) const;
    SLanes Output(int iSlot, int iInvocation = 0) const { return Slot(ZamCompiler::File_Output, iSlot, iInvocation); }

    // False when the program's structure is broken, it runs away or it indexes out of
    // range; Error() then says what happened.
    bool Run();
    bool Discarded(int iInvocation = 0) const { return (m_uiDiscarded >> iInvocation) & 1u; }
    const std::string& Error() const { return m_error; }

private:
    struct SFrame
    {
        bool bLoop = false;
        std::size_t uiStart = 0;
        unsigned uiSaved = 0;     // lanes active when the block was entered
        unsigned uiTaken = 0;     // if: lanes whose condition held
        unsigned uiBroken = 0;    // loop: lanes that left it
        unsigned uiContinued = 0; // loop: lanes waiting for the next iteration
        int iIteration = 1;
    };

    bool Match();
    bool Step(std::size_t& pc);
    bool Flow(const ZamCompiler::STxeInstruction& instr, std::size_t& pc);
    bool Branch(const ZamCompiler::STxeInstruction& instr, std::size_t& pc);
    bool Leave(const ZamCompiler::STxeInstruction& instr, std::size_t& pc);
    bool EndLoop(std::size_t& pc);
    SFrame* InnermostLoop();
    unsigned Blocked();
    unsigned Holding(const ZamCompiler::STxeOperand& op, bool bNonZero);
    void Execute(const ZamCompiler::STxeInstruction& instr);
    using SSources = std::array<SLanes, 4>;
    SLanes Compute(const ZamCompiler::STxeInstruction& instr, const std::array<SSources, k_iInvocations>& aSources,
                   int iInvocation);
    SLanes Texture(const ZamCompiler::STxeInstruction& instr, const SSources& sources, int iInvocation);
    SLanes Fetch(const ZamCompiler::STxeOperand& op, int iInvocation);
    bool Address(const ZamCompiler::STxeOperand& op, int iInvocation, int& iSlot);
    bool InBinding(const ZamCompiler::STxeOperand& op, long long llSlot) const;
    SLanes& Writable(ZamCompiler::ETxeFile eFile, int iSlot, int iInvocation);
    static SLanes Unwritten(ZamCompiler::ETxeFile eFile);
    void Fail(const std::string& text);

    const ZamCompiler::STxeProgram& m_program;
    ITxeSampler* m_pSampler;
    std::array<std::vector<SLanes>, 8> m_aaFiles; // [file][slot * invocations + invocation]
    std::vector<std::size_t> m_aJump;
    std::vector<SFrame> m_aFrames;
    unsigned m_uiActive = 0xFu;
    unsigned m_uiDead = 0;      // returned or discarded
    unsigned m_uiDiscarded = 0;
    std::string m_error;
};

} // namespace ZamCompilerTest
