#pragma once

// Internal to the lowering: the state shared by its three source files
// (storage and access paths, expressions, statements).

#include "ZcLowerControl.h"
#include "ZcLowerValue.h"
#include "ZcLowering.h"

#include <glslang/MachineIndependent/localintermediate.h>

#include <deque>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace ZamCompiler
{

enum EStorage
{
    Storage_Temp,
    Storage_Alias,   // an in-parameter bound straight to the caller's operands
    Storage_Scratch,
    Storage_Input,
    Storage_Uniform,
    Storage_Output,
    Storage_Sampler,
};

struct SVariable
{
    EStorage eStorage = Storage_Temp;
    std::vector<std::uint8_t> aLanes; // lanes per slot
    std::vector<int> aTemps;          // Storage_Temp: one virtual register per slot
    SValue alias;                     // Storage_Alias
    int iBase = 0;                    // first slot in its file
    bool bRead = false;
    bool bGlobal = false;
};

// Where an lvalue or rvalue expression points inside a variable.
struct SAccess
{
    SVariable* pVariable = nullptr;
    int iSlot = 0;                     // constant slot offset
    int iSlotCount = 0;
    int iDynamic = -1;                 // virtual register with a slot offset, -1 none
    std::vector<std::uint8_t> aLanes;  // selected lanes when the access is one slot
};

double ConstantAsDouble(const glslang::TConstUnion& constant);

class CLowerer
{
public:
    CLowerer(ETxeStage eStage, const SSourceLimits& limits, STxeProgram& program, CDiagnosticList& aDiagnostics);

    bool Run(glslang::TIntermediate& intermediate);

    // --- storage and values (ZcLowerValues.cpp) ---
    bool Failed() const { return m_bFailed; }
    void Fail(int iLine, const std::string& text);
    int Line(const TIntermNode* pNode) const;

    STxeOperand NewTemp(int iLanes);
    int NewRegister() { return m_iNextTemp++; }
    // Returns the new instruction's index (or -1 once the lowering has failed).
    int Emit(ETxeOp eOp, const STxeOperand& dst, std::initializer_list<STxeOperand> aSrc, int iLine);
    void SetTrips(int iInstruction, const STxeTrips& trips);
    STxeOperand Immediate(const float afValues[4], int iLanes);
    STxeOperand Immediate(float fValue, int iLanes = 1);
    static STxeOperand Swizzled(const STxeOperand& op, const std::vector<std::uint8_t>& aLanes);
    static STxeOperand Lane(const STxeOperand& op, int iLane);
    static STxeOperand Broadcast(const STxeOperand& op, int iLanes);
    static STxeOperand Negated(const STxeOperand& op);
    static std::vector<std::uint8_t> SlotLanes(const glslang::TType& type);
    static int LanesOf(const glslang::TType& type);

    SVariable* Variable(glslang::TIntermSymbol* pSymbol);
    SVariable* Bind(long long llId, const SVariable& variable);
    bool ResolveAccess(glslang::TIntermTyped* pNode, SAccess& access);
    bool Load(const SAccess& access, int iLine, SValue& value);
    bool Store(const SAccess& access, const SValue& value, int iLine);
    bool IsAccessNode(glslang::TIntermTyped* pNode) const;
    glslang::TIntermSymbol* RootSymbol(glslang::TIntermTyped* pNode) const;
    SValue ConstantValue(const glslang::TIntermConstantUnion* pConstant);
    static std::vector<float> ConstantSlots(const glslang::TType& type, const glslang::TConstUnionArray& aConstants);
    SValue Materialize(const SValue& value, int iLine);
    bool IsVariableRegister(int iRegister) const { return m_setVariableTemps.count(iRegister) != 0; }
    bool IsGlobalRegister(int iRegister) const { return m_setGlobalTemps.count(iRegister) != 0; }
    // dst = src, folded into the instruction that produced a fresh src when possible.
    void MoveInto(const STxeOperand& dst, const STxeOperand& src, int iLine);

    // --- expressions (ZcLowerExpressions.cpp) ---
    bool Expression(glslang::TIntermTyped* pNode, SValue& value);
    bool Binary(glslang::TIntermBinary* pNode, SValue& value);
    bool Unary(glslang::TIntermUnary* pNode, SValue& value);
    bool Aggregate(glslang::TIntermAggregate* pNode, SValue& value);
    bool Operation(glslang::TOperator eOp, const glslang::TType& type, const std::vector<glslang::TIntermTyped*>& aArgs,
                   int iLine, SValue& value);
    bool Builtin(glslang::TOperator eOp, const glslang::TType& type, const std::vector<SValue>& aArgs,
                 const std::vector<glslang::TIntermTyped*>& aNodes, int iLine, SValue& value);
    bool Arithmetic(glslang::TOperator eOp, const glslang::TType& type, const SValue& left, const SValue& right,
                    int iLine, SValue& value);
    bool Comparison(glslang::TOperator eOp, const SValue& left, const SValue& right, int iLine, SValue& value);
    bool Constructor(const glslang::TType& type, const std::vector<SValue>& aArgs, int iLine, SValue& value);
    bool Texture(glslang::TOperator eOp, const glslang::TType& type, const std::vector<SValue>& aArgs, int iLine,
                 SValue& value);
    bool Assignment(glslang::TIntermBinary* pNode, SValue& value);
    bool IncDec(glslang::TIntermUnary* pNode, bool bValueUsed, SValue& value);
    bool Ternary(glslang::TIntermSelection* pNode, SValue& value);
    bool ShortCircuit(glslang::TIntermBinary* pNode, SValue& value);
    bool HasSideEffects(TIntermNode* pNode) const;
    STxeOperand Compute(ETxeOp eOp, std::initializer_list<STxeOperand> aSrc, int iLanes, int iLine);
    STxeOperand Sample(ETxeOp eOp, const glslang::TType& type, std::initializer_list<STxeOperand> aSrc, int iLine);

    // --- statements and functions (ZcLowerStatements.cpp) ---
    bool Statement(TIntermNode* pNode);
    bool Sequence(glslang::TIntermAggregate* pNode);
    bool IfStatement(glslang::TIntermSelection* pNode);
    bool Loop(glslang::TIntermLoop* pNode);
    bool Switch(glslang::TIntermSwitch* pNode);
    bool Branch(glslang::TIntermBranch* pNode);
    bool Return(glslang::TIntermBranch* pNode);
    void LeaveOnReturnFlag(int iLine);
    bool Call(glslang::TIntermAggregate* pNode, SValue& value);
    STxeTrips TripCount(glslang::TIntermLoop* pNode);
    void NoteWrite(long long llId);
    void NoteConstant(long long llId, double dValue);
    void BeginRegion();
    void EndRegion();

private:
    ETxeStage m_eStage;
    const SSourceLimits& m_limits;
    STxeProgram& m_program;
    CDiagnosticList& m_aDiagnostics;
    bool m_bFailed = false;
    int m_iNextTemp = 0;
    // Variables live in an arena that only grows, so an SVariable* stays valid for the whole
    // lowering even after its symbol is unbound at the end of an inlined call.
    std::deque<SVariable> m_aVariableArena;
    std::map<long long, SVariable*> m_mapVariables;
    std::map<const void*, SVariable*> m_mapConstantArrays; // literal arrays indexed at run time
    std::vector<long long> m_aCreated; // locals, in creation order, so inlined calls can drop theirs
    std::set<int> m_setVariableTemps;
    std::set<int> m_setGlobalTemps;
    std::map<std::vector<std::uint32_t>, int> m_mapPool;
    int m_aiNextSlot[8] = {};
    std::unordered_map<std::string, glslang::TIntermAggregate*> m_mapFunctions;
    CControlStack m_control;
    std::set<std::string> m_setActiveFunctions;
    std::map<long long, double> m_mapKnownConstants;
    std::vector<std::set<long long>> m_aRegionWrites;

    friend class CLowererTestAccess;
};

} // namespace ZamCompiler
