#pragma once

// The TXE instruction set: a small structured vector ISA. Registers hold four
// 32-bit lanes; every operand carries a swizzle, so the same encoding serves the
// scalar, vector and matrix-column operations the lowering produces. An instruction
// works on floats unless it is typed as signed or unsigned 32-bit integers.

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace ZamCompiler
{

enum ETxeFile : std::uint8_t
{
    File_None = 0,
    File_Temp,      // r#: allocated temporaries (virtual before allocation)
    File_Input,     // a#: vertex attributes / fragment varyings and built-in inputs
    File_Uniform,   // c#: uniform slots
    File_Output,    // o#: outputs
    File_Sampler,   // s#: texture units
    File_Immediate, // #: literal in the instruction's pool entry
    File_Scratch,   // m#: indexable local memory (local arrays)
};

enum ETxeClass : std::uint8_t
{
    Class_Alu,
    Class_Transcendental,
    Class_Texture,
    Class_Flow,
    Class_Move,
};

enum ETxeOp : std::uint8_t
{
    // moves
    Op_Mov,
    Op_Ldm, // load from scratch (optionally indexed)
    Op_Stm, // store to scratch (optionally indexed)
    Op_Ldc, // indexed uniform / input load
    // ALU
    Op_Add,
    Op_Mul,
    Op_Mad,
    Op_Dp2,
    Op_Dp3,
    Op_Dp4,
    Op_Min,
    Op_Max,
    Op_Flr,
    Op_Frc,
    Op_Rnd,
    Op_Slt,
    Op_Sge,
    Op_Seq,
    Op_Sne,
    Op_Sel, // dst = src0 != 0 ? src1 : src2
    Op_And,
    Op_Or,
    Op_Xor,
    Op_Not,
    Op_Shl,
    Op_Shr,
    Op_F2i,
    Op_I2f,
    Op_Sgn,
    Op_Ddx,
    Op_Ddy,
    // transcendental (one lane per issue)
    Op_Rcp,
    Op_Rsq,
    Op_Sqrt,
    Op_Exp2,
    Op_Log2,
    Op_Sin,
    Op_Cos,
    Op_Atan,
    Op_Idiv,
    // texture
    Op_Tex,
    Op_Txb,
    Op_Txl,
    Op_Txp,
    Op_Txg,
    Op_Txf,
    Op_Txs,
    // structured flow
    Op_If,    // if src0.x != 0
    Op_Else,
    Op_Endif,
    Op_Loop,  // trip counts in the instruction
    Op_Endloop,
    Op_Brk,
    Op_Brkz,  // break when src0.x == 0
    Op_Cont,
    Op_Kil,
    Op_Ret,
    // integer bit operations (ALU)
    Op_Bcnt, // bits set
    Op_Brev, // bits reversed
    Op_Fbl,  // lowest set bit, -1 when none
    Op_Fbh,  // highest bit that differs from the sign (unsigned: highest set bit), -1 when none
    Op_Bfe,  // bitfield extract: src0, offset, bits (signed: sign-extended)
    Op_Bfi,  // bitfield insert: base, insert, offset, bits
    Op_Mhi,  // high 32 bits of the 64-bit product
    Op_Fbit, // a float's 32 bits as an integer
    Op_Bitf, // an integer's 32 bits as a float
    Op_F2h,  // a float as a 16-bit float, its bits in the low half
    Op_H2f,  // the low 16 bits as a 16-bit float, as a float
    Op_Count
};

// What the lanes of an instruction's operands and result hold.
enum ETxeType : std::uint8_t
{
    Type_Float = 0,
    Type_Int = 1,  // signed 32-bit, results wrap
    Type_Uint = 2, // unsigned 32-bit, results wrap
};

struct STxeOpInfo
{
    const char* pMnemonic;
    ETxeClass eClass;
    int iSources;
};

const STxeOpInfo& TxeOpInfo(ETxeOp eOp);

struct STxeOperand
{
    ETxeFile eFile = File_None;
    int iIndex = 0;                        // register / slot number, or pool entry for immediates
    std::uint8_t auiSwizzle[4] = {0, 1, 2, 3};
    std::uint8_t uiCount = 0;              // lanes selected (destination: lanes written, ascending)
    bool bNegate = false;
    bool bAbs = false;
    int iRelative = -1;                    // temp register holding a dynamic slot offset, -1 none
    int iRelativeLane = 0;
};

// Trip counts a loop is costed with (best, average, worst).
struct STxeTrips
{
    int iBest = 1;
    int iAverage = 1;
    int iWorst = 1;
    bool bKnown = false;
};

// The texel offsets an instruction can carry (GL ES's minimum range).
constexpr int k_iMinTexelOffset = -8;
constexpr int k_iMaxTexelOffset = 7;

struct STxeInstruction
{
    ETxeOp eOp = Op_Mov;
    ETxeType eType = Type_Float;
    STxeOperand dst;
    STxeOperand aSrc[4];
    int iLine = 0;              // source line, 0 when none
    bool bNonDependent = false; // texture: coordinates straight from an input
    // Samples: a constant offset (x, y, z) added to the texel address, in texels of the level
    // sampled, as GL's ...Offset functions define it.
    std::int8_t aiTexelOffset[3] = {0, 0, 0};
    STxeTrips trips;            // loops only
};

bool HasTexelOffset(const STxeInstruction& instr);

// One named resource of a register file, for the listing header and the program file.
struct STxeBinding
{
    ETxeFile eFile = File_None;
    int iBase = 0;
    int iSlots = 0;
    std::string name;
    std::vector<float> aValues; // constants the loader places in these slots, four per slot
};

enum ETxeStage : std::uint8_t
{
    Stage_Vertex = 0,
    Stage_Fragment = 1,
};

struct STxeProgram
{
    ETxeStage eStage = Stage_Fragment;
    std::vector<STxeInstruction> aInstructions;
    std::vector<double> aPool;        // immediates, four values per entry (exact for floats and 32-bit integers)
    std::vector<ETxeType> aPoolTypes; // one per entry: how the program file stores its lanes
    std::vector<STxeBinding> aBindings;
    int iTemps = 0;           // temporaries after allocation (virtual count before)
    int iScratchSlots = 0;
    int iInputSlotsRead = 0;
    int iNonDependentReads = 0;
};

// Text built a character at a time into a fixed buffer and handed to the string in blocks:
// a listing of thousands of lines pays std::string's bookkeeping once per block, not per character.
class CTextSink
{
public:
    explicit CTextSink(std::string& out) : m_out(out) {}
    CTextSink(const CTextSink&) = delete;
    CTextSink& operator=(const CTextSink&) = delete;
    ~CTextSink() { Flush(); }

    void Put(char c)
    {
        if (m_uiSize == sizeof(m_acBuffer))
            Flush();
        m_acBuffer[m_uiSize++] = c;
    }
    void Put(const char* pText, std::size_t uiLength)
    {
        if (uiLength > sizeof(m_acBuffer) - m_uiSize)
            return PutLong(pText, uiLength);
        std::memcpy(m_acBuffer + m_uiSize, pText, uiLength);
        m_uiSize += uiLength;
    }
    void Put(const char* pText) { Put(pText, std::strlen(pText)); }
    void Put(const std::string& text) { Put(text.data(), text.size()); }
    void Repeat(char c, std::size_t uiCount);
    // Register numbers are mostly one or two digits: those are stored without a call.
    void Integer(long long llValue)
    {
        if (llValue >= 0 && llValue < 100 && m_uiSize + 2 <= sizeof(m_acBuffer))
        {
            if (llValue >= 10)
                m_acBuffer[m_uiSize++] = static_cast<char>('0' + llValue / 10);
            m_acBuffer[m_uiSize++] = static_cast<char>('0' + llValue % 10);
            return;
        }
        RightAligned(llValue, 0);
    }
    void RightAligned(long long llValue, std::size_t uiWidth); // padded with spaces on the left
    // Numbers right-aligned in columns of the given widths, one space apart, then uiTrailing
    // spaces: the start of a table row in one step.
    void Row(const long long* pValues, const std::size_t* pWidths, std::size_t uiCount, std::size_t uiTrailing);
    std::size_t Size() const { return m_out.size() + m_uiSize; }
    // Room for up to uiBytes (no more than k_uiRoom) in the buffer itself: a caller that
    // knows a bound writes through the pointer without a check a character, then hands the
    // end to Commit.
    static constexpr std::size_t k_uiRoom = 1024;
    char* Reserve(std::size_t uiBytes)
    {
        if (uiBytes > sizeof(m_acBuffer) - m_uiSize)
            Flush();
        return m_acBuffer + m_uiSize;
    }
    void Commit(const char* pEnd) { m_uiSize = static_cast<std::size_t>(pEnd - m_acBuffer); }
    void Flush()
    {
        m_out.append(m_acBuffer, m_uiSize);
        m_uiSize = 0;
    }

private:
    void PutLong(const char* pText, std::size_t uiLength);

    std::string& m_out;
    char m_acBuffer[2048];
    std::size_t m_uiSize = 0;
};

// "mul r0.xyz, a1.xyz, c0.x" (no line, no cost).
std::string FormatInstruction(const STxeProgram& program, const STxeInstruction& instr);
std::string FormatOperand(const STxeProgram& program, const STxeOperand& op, bool bDestination);
// The same, appended: a listing of thousands of instructions builds one string. With
// pPoolTexts (ImmediateTexts of the program) immediates are not formatted again.
void AppendInstruction(std::string& out, const STxeProgram& program, const STxeInstruction& instr,
                       const std::vector<std::string>* pPoolTexts = nullptr);
void AppendOperand(std::string& out, const STxeProgram& program, const STxeOperand& op, bool bDestination,
                   const std::vector<std::string>* pPoolTexts = nullptr);
void AppendInstruction(CTextSink& out, const STxeProgram& program, const STxeInstruction& instr,
                       const std::vector<std::string>* pPoolTexts = nullptr);
// Every lane of the immediate pool as the listing prints it.
std::vector<std::string> ImmediateTexts(const STxeProgram& program);

} // namespace ZamCompiler
