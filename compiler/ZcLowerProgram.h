#pragma once

// Builds the TXE program of one lowering: virtual registers, the instruction list, the
// immediate pool, register-file slots and bindings, and the first error. Instructions
// are named by index, never by reference, because emitting grows the list.

#include "ZcDiagnostics.h"
#include "ZcLowerValue.h"
#include "ZcSourceLimits.h"

#include <initializer_list>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace ZamCompiler
{

class CProgramBuilder
{
    friend class CTypeScope;

public:
    CProgramBuilder(ETxeStage eStage, const SSourceLimits& limits, STxeProgram& program, CDiagnosticList& aDiagnostics);

    // Only the first error is reported: later ones follow from it. Errors name the construct
    // in the user's words: "'name' : text".
    void Fail(int iLine, const std::string& text);
    void Fail(int iLine, const std::string& name, const std::string& text);
    // "'name' : <what> is not supported by the TXE code generator"
    void Refuse(int iLine, const std::string& name, const std::string& what);
    bool Failed() const { return m_bFailed; }

    // --- registers ---
    STxeOperand NewTemp(int iLanes);
    int NewRegister() { return m_iNextTemp++; }
    int RegisterCount() const { return m_iNextTemp; }
    // A register that holds a variable may be written again later, so an instruction that
    // produced it cannot simply be retargeted.
    void MarkVariable(int iRegister) { Mark(iRegister, k_uiVariable); }
    bool IsVariable(int iRegister) const { return Has(iRegister, k_uiVariable); }
    void MarkGlobal(int iRegister) { Mark(iRegister, k_uiGlobal); }
    bool IsGlobal(int iRegister) const { return Has(iRegister, k_uiGlobal); }

    // --- instructions ---
    // Returns the new instruction's index, or -1 once the lowering has failed.
    int Emit(ETxeOp eOp, const STxeOperand& dst, std::initializer_list<STxeOperand> aSrc, int iLine);
    // A fresh temporary with iLanes lanes = eOp(sources).
    STxeOperand Compute(ETxeOp eOp, std::initializer_list<STxeOperand> aSrc, int iLanes, int iLine);
    void SetTrips(int iInstruction, const STxeTrips& trips);
    void MarkNonDependent(int iInstruction);
    void SetTexelOffset(int iInstruction, const std::int8_t aiOffset[3]);
    // dst = src, folded into the instruction that produced a fresh src when possible.
    void MoveInto(const STxeOperand& dst, const STxeOperand& src, int iLine);
    SValue Materialize(const SValue& value, int iLine);
    // Opens a one-trip loop: something to break out of.
    void EmitOneTripLoop(int iLine);

    // --- the type of the instructions and immediates being made ---
    // Integer operations are typed; moves, selects and flow never are.
    ETxeType Type() const { return m_eType; }
    void SetType(ETxeType eType) { m_eType = eType; }

    // --- immediates, of the current type ---
    STxeOperand Immediate(const double adValues[4], int iLanes);
    STxeOperand Immediate(const float afValues[4], int iLanes);
    STxeOperand Immediate(double dValue, int iLanes = 1);
    // The value of one lane of an immediate operand, modifiers applied.
    double ImmediateLane(const STxeOperand& op, int iLane) const;
    // An immediate without modifiers that repeats one pool lane holding fValue.
    bool IsBroadcastImmediate(const STxeOperand& op, float fValue) const;

    // --- register-file slots and bindings ---
    int AllocateSlots(ETxeFile eFile, int iSlots);
    void AddBinding(const STxeBinding& binding);
    void CountNonDependentRead() { ++m_program.iNonDependentReads; }
    void Finish(int iInputSlotsRead);

private:
    static constexpr std::uint8_t k_uiVariable = 1;
    static constexpr std::uint8_t k_uiGlobal = 2;
    void Mark(int iRegister, std::uint8_t uiFlag);
    bool Has(int iRegister, std::uint8_t uiFlag) const;
    bool Touches(std::size_t uiInstruction, const STxeOperand& reg) const;
    bool Retarget(const STxeOperand& dst, const STxeOperand& src);

    const SSourceLimits& m_limits;
    STxeProgram& m_program;
    CDiagnosticList& m_aDiagnostics;
    bool m_bFailed = false;
    int m_iNextTemp = 0;
    std::vector<std::uint8_t> m_aRegisterFlags; // k_uiVariable, k_uiGlobal by virtual register
    // Keyed by the type and the lanes' bits, so -0 and NaN stay themselves.
    struct SPoolKey
    {
        ETxeType eType;
        std::uint64_t auiBits[4];
        bool operator==(const SPoolKey& other) const;
    };
    struct SPoolKeyHash
    {
        std::size_t operator()(const SPoolKey& key) const;
    };
    std::unordered_map<SPoolKey, int, SPoolKeyHash> m_mapPool;
    ETxeType m_eType = Type_Float;
    int m_aiNextSlot[8] = {};
};

// Makes instructions and immediates of one type for as long as it lives.
class CTypeScope
{
public:
    CTypeScope(CProgramBuilder& builder, ETxeType eType) : m_builder(builder), m_ePrevious(builder.Type())
    {
        builder.SetType(eType);
    }
    ~CTypeScope() { m_builder.SetType(m_ePrevious); }
    CTypeScope(const CTypeScope&) = delete;
    CTypeScope& operator=(const CTypeScope&) = delete;

private:
    CProgramBuilder& m_builder;
    ETxeType m_ePrevious;
};

} // namespace ZamCompiler
