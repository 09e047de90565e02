#pragma once

// Where every variable lives: temporaries, scratch memory or a slot of a register file,
// and how values are read from and written to a place inside one.

#include "ZcLowerProgram.h"

#include <memory>
#include <string>
#include <unordered_map>

namespace glslang
{
class TIntermSymbol;
class TIntermConstantUnion;
} // namespace glslang

namespace ZamCompiler
{

enum EStorage
{
    Storage_Temp,
    Storage_Alias, // an in-parameter bound straight to the caller's operands
    Storage_Scratch,
    Storage_Input,
    Storage_Uniform,
    Storage_Output,
    Storage_Sampler,
    Storage_Buffer, // a shader storage buffer, read from the constant file
};

struct SVariable
{
    EStorage eStorage = Storage_Temp;
    // Names the variable in messages; its name is only built when a message needs it.
    const glslang::TIntermSymbol* pSymbol = nullptr;
    std::string name;                 // a variable without a symbol (a literal array)
    CInlineList<std::uint8_t, 4> aLanes; // lanes per slot
    CInlineList<int, 4> aTemps;          // Storage_Temp: one virtual register per slot
    SValue alias;                     // Storage_Alias
    int iBase = 0;                    // first slot in its file
    bool bRead = false;
    bool bGlobal = false;
};

// The name the user wrote for the variable.
std::string VariableName(const SVariable& variable);

// A place inside a variable, as an access path (a.b[i].xy) resolves it.
struct SAccess
{
    SVariable* pVariable = nullptr;
    int iSlot = 0;                    // constant slot offset
    int iSlotCount = 0;
    int iDynamic = -1;                // virtual register with a slot offset, -1 none
    CLanes aLanes; // selected lanes when the access is one slot
    // A column of a matrix held in registers, or a lane of a vector, chosen at run time: the
    // register with the index, -1 none. A chosen column is one of the iSlotCount slots.
    int iSelectColumn = -1;
    int iSelectLane = -1;
    ETxeType eLaneType = Type_Float;
};

class CVariableStore
{
public:
    explicit CVariableStore(CProgramBuilder& builder) : m_builder(builder) {}

    // The symbol's variable, created on first use; null (and an error) for a kind of
    // variable the code generator does not handle.
    SVariable* Variable(glslang::TIntermSymbol* pSymbol);
    // The variable a symbol id is bound to now, or null.
    SVariable* Find(long long llId) const;
    // Binds the id to a copy of the variable (an alias or a variable written in place).
    SVariable* Bind(long long llId, SVariable variable);
    void Unbind(long long llId) { m_mapVariables.erase(llId); }
    // A literal array indexed at run time, placed in the constant bank once.
    SVariable* ConstantArray(glslang::TIntermConstantUnion* pConstant, int iLine);

    // Locals created after the mark are dropped by DropLocals, so that every inlined call
    // gets fresh registers.
    std::size_t MarkLocals() const { return m_aCreated.size(); }
    void DropLocals(std::size_t uiMark);

    bool Load(const SAccess& access, int iLine, SValue& value);
    bool Store(const SAccess& access, const SValue& value, int iLine);
    // The whole variable, or one slot of it.
    static SAccess WholeOf(SVariable* pVariable);

    int InputSlotsRead() const;

private:
    bool LoadSelected(const SAccess& access, int iLine, SValue& value);
    bool StoreSelected(const SAccess& access, const SValue& value, int iLine);
    bool StoreSlot(const SAccess& access, int k, const STxeOperand& source, int iLine);
    STxeOperand SlotOperand(const SAccess& access, int iSlot, int iLine);

    // A variable in the arena: constructed in place, never moved.
    SVariable& NewVariable();

    CProgramBuilder& m_builder;
    // Variables live in an arena that only grows, so an SVariable* stays valid for the
    // whole lowering, even after its symbol is unbound at the end of an inlined call. Every
    // call binds its parameters anew: chunks of many variables keep that to few allocations.
    static constexpr std::size_t k_uiChunkVariables = 128;
    std::vector<std::unique_ptr<SVariable[]>> m_aArena;
    std::size_t m_uiUsedInChunk = k_uiChunkVariables;
    std::unordered_map<long long, SVariable*> m_mapVariables;
    std::unordered_map<const void*, SVariable*> m_mapConstantArrays;
    std::vector<long long> m_aCreated; // locals, in creation order
};

} // namespace ZamCompiler
