#include "ZcWriters.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace ZamCompiler
{

namespace
{

const char* const s_apFileNames[] = {"-", "temp", "input", "uniform", "output", "sampler", "immediate", "scratch"};
const char s_acFileLetters[] = "-racos#m";
constexpr std::size_t k_uiInstructionBytes = 80;

void PutU8(std::string& out, unsigned uiValue)
{
    out.push_back(static_cast<char>(uiValue & 0xFF));
}

void PutU16(std::string& out, unsigned uiValue)
{
    const char acBytes[2] = {static_cast<char>(uiValue & 0xFF), static_cast<char>((uiValue >> 8) & 0xFF)};
    out.append(acBytes, 2);
}

void PutU32(std::string& out, std::uint32_t uiValue)
{
    const char acBytes[4] = {static_cast<char>(uiValue & 0xFF), static_cast<char>((uiValue >> 8) & 0xFF),
                             static_cast<char>((uiValue >> 16) & 0xFF), static_cast<char>((uiValue >> 24) & 0xFF)};
    out.append(acBytes, 4);
}

// Little-endian fields written at fixed places of a record: on a little-endian machine a
// field is one store.
void StoreU16(char* p, unsigned uiValue)
{
    p[0] = static_cast<char>(uiValue & 0xFF);
    p[1] = static_cast<char>((uiValue >> 8) & 0xFF);
}

void StoreU32(char* p, std::uint32_t uiValue)
{
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    std::memcpy(p, &uiValue, sizeof(uiValue));
#else
    StoreU16(p, uiValue & 0xFFFF);
    StoreU16(p + 2, uiValue >> 16);
#endif
}

// Two bits a lane, lane 0 lowest: the four lanes are read as one word and folded together.
unsigned PackSwizzle(const std::uint8_t auiSwizzle[4])
{
    std::uint32_t uiLanes = 0;
    std::memcpy(&uiLanes, auiSwizzle, sizeof(uiLanes));
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    uiLanes &= 0x03030303u;
    return (uiLanes | uiLanes >> 6 | uiLanes >> 12 | uiLanes >> 18) & 0xFFu;
#else
    return (auiSwizzle[0] & 3u) | ((auiSwizzle[1] & 3u) << 2) | ((auiSwizzle[2] & 3u) << 4) | ((auiSwizzle[3] & 3u) << 6);
#endif
}

// An operand's 12 bytes.
inline void StoreOperand(char* p, const STxeOperand& op)
{
    p[0] = static_cast<char>(op.eFile);
    p[1] = static_cast<char>((op.bNegate ? 1u : 0u) | (op.bAbs ? 2u : 0u) | ((op.iRelativeLane & 3u) << 2));
    p[2] = static_cast<char>(op.uiCount);
    p[3] = static_cast<char>(PackSwizzle(op.auiSwizzle));
    StoreU32(p + 4, static_cast<std::uint32_t>(op.iIndex));
    StoreU32(p + 8, static_cast<std::uint32_t>(op.iRelative));
}

// One instruction's 80 bytes.
void StoreInstruction(char* p, const STxeInstruction& instr)
{
    p[0] = static_cast<char>(instr.eOp);
    p[1] = static_cast<char>((instr.bNonDependent ? 1u : 0u) | (static_cast<unsigned>(instr.eType) << 1));
    unsigned uiOffsets = 0;
    for (int i = 0; i < 3; ++i)
        uiOffsets |= (static_cast<unsigned>(instr.aiTexelOffset[i]) & 0xFu) << (4 + 4 * i);
    StoreU16(p + 2, (instr.trips.bKnown ? 1u : 0u) | uiOffsets);
    StoreU32(p + 4, static_cast<std::uint32_t>(instr.iLine));
    StoreOperand(p + 8, instr.dst);
    for (int i = 0; i < 4; ++i)
        StoreOperand(p + 20 + 12 * i, instr.aSrc[i]);
    StoreU32(p + 68, static_cast<std::uint32_t>(instr.trips.iBest));
    StoreU32(p + 72, static_cast<std::uint32_t>(instr.trips.iAverage));
    StoreU32(p + 76, static_cast<std::uint32_t>(instr.trips.iWorst));
}

// A float immediate as its IEEE bits; an integer one as its 32-bit two's complement.
std::uint32_t ImmediateWord(const STxeProgram& program, std::size_t uiLane)
{
    const std::size_t uiEntry = uiLane / 4;
    const double dValue = program.aPool[uiLane];
    if (uiEntry < program.aPoolTypes.size() && program.aPoolTypes[uiEntry] != Type_Float)
        return static_cast<std::uint32_t>(static_cast<std::int64_t>(dValue));
    const float fValue = static_cast<float>(dValue);
    std::uint32_t uiBits = 0;
    std::memcpy(&uiBits, &fValue, sizeof(uiBits));
    return uiBits;
}

// The listing indents the body of an if, else and loop by one level.
bool ClosesLevel(ETxeOp eOp)
{
    return eOp == Op_Else || eOp == Op_Endif || eOp == Op_Endloop;
}

bool OpensLevel(ETxeOp eOp)
{
    return eOp == Op_If || eOp == Op_Else || eOp == Op_Loop;
}

std::string Pad(std::string text, std::size_t uiWidth)
{
    if (text.size() < uiWidth)
        text.append(uiWidth - text.size(), ' ');
    return text;
}

} // namespace

std::string GlslBanner(const SCoreModel& core)
{
    std::string text;
    text += std::string("Zam GLSL ES reference compiler for ") + core.pName + " rev " + std::to_string(core.iRevision) +
            ". zcddk " + k_pCompilerVersion + "@" + std::to_string(k_iCompilerBuild) + "\n";
    text += std::string("Usage: ") + core.pExecutable + " <input> <unit name> <output base> [options]\n";
    text += "OPTIONS are:\n";
    text += " -v        compile a vertex shader\n";
    text += " -f        compile a fragment shader\n";
    text += " -nowarn   leave warnings out of the log\n";
    text += " -profile  write per-line cycle counts to <output base>.prof\n";
    text += " -perfsim  print the performance estimate\n";
    text += " -disasm   write the TXE assembly to <output base>.disasm\n";
    text += " -D NAME[=VALUE]  define a macro for the shader\n";
    text += " -I DIR    search DIR for #include \"...\" and <...> headers\n";
    return text;
}

std::string FormatProfile(const std::map<int, long long>& mapLineCounts, long long llInstructions)
{
    std::string text;
    CTextSink out(text);
    long long llTotal = 0;
    for (const auto& [iLine, llCount] : mapLineCounts)
    {
        out.Put("line: ");
        out.Integer(iLine);
        out.Put(", count: ");
        out.Integer(llCount);
        out.Put('\n');
        llTotal += llCount;
    }
    out.Put("Total consumed cycles = ");
    out.Integer(llTotal);
    out.Put("\nTXC generated instructions = ");
    out.Integer(llInstructions);
    out.Put('\n');
    out.Flush();
    return text;
}

std::string FormatProfile(const SCompilation& compilation)
{
    return FormatProfile(compilation.mapLineCycles, static_cast<long long>(compilation.program.aInstructions.size()));
}

std::string FormatEstimate(const SCompilation& compilation)
{
    std::string text = "Performance estimate\n";
    text += "Cycle count:                " + std::to_string(ClampCycles(compilation.paths.dBest)) + "\n";
    text += "Average cycle count:        " + std::to_string(ClampCycles(compilation.paths.dAverage)) + "\n";
    text += "Worst   cycle count:        " + std::to_string(ClampCycles(compilation.paths.dWorst)) + "\n";
    text += "Temporary registers used:   " + std::to_string(compilation.iTemporaries) + "\n";
    text += "Primary attributes used:    " + std::to_string(compilation.program.iInputSlotsRead) + "\n";
    text += "Non-dependent texture reads:" + std::to_string(compilation.program.iNonDependentReads) + "\n";
    return text;
}

std::string FormatDisassembly(const SCompilation& compilation, const SCoreModel& core)
{
    std::string text = DisassemblyHeader(compilation, core);
    AppendDisassembly(compilation, 0, compilation.program.aInstructions.size(), ImmediateTexts(compilation.program),
                      text);
    return text;
}

std::string DisassemblyHeader(const SCompilation& compilation, const SCoreModel& core)
{
    const STxeProgram& program = compilation.program;
    std::string text = std::string("; TXE ") + core.pName + (program.eStage == Stage_Vertex ? " vertex" : " fragment") +
                       " program: " + std::to_string(program.aInstructions.size()) + " instructions, " +
                       std::to_string(compilation.iTemporaries) + " temporaries\n";
    for (const STxeBinding& binding : program.aBindings)
    {
        const char cLetter = s_acFileLetters[binding.eFile < sizeof(s_acFileLetters) - 1 ? binding.eFile : 0];
        std::string range = cLetter + std::to_string(binding.iBase);
        if (binding.iSlots > 1)
            range += "-" + std::string(1, cLetter) + std::to_string(binding.iBase + binding.iSlots - 1);
        text += "; " + Pad(range, 9) + " " + Pad(s_apFileNames[binding.eFile], 8) + " " + binding.name + "\n";
    }
    text += "; index  line  cycles  instruction\n";
    return text;
}

void AppendDisassembly(const SCompilation& compilation, std::size_t uiFirst, std::size_t uiEnd,
                       const std::vector<std::string>& aPoolTexts, std::string& text)
{
    const STxeProgram& program = compilation.program;
    uiEnd = std::min(uiEnd, program.aInstructions.size());
    text.reserve(text.size() + (uiEnd - std::min(uiFirst, uiEnd)) * 56);

    // The nesting the part starts at, from the instructions before it.
    int iDepth = 0;
    for (std::size_t i = 0; i < uiFirst && i < uiEnd; ++i)
    {
        if (ClosesLevel(program.aInstructions[i].eOp))
            iDepth = iDepth > 0 ? iDepth - 1 : 0;
        if (OpensLevel(program.aInstructions[i].eOp))
            ++iDepth;
    }
    CTextSink out(text);
    for (std::size_t i = uiFirst; i < uiEnd; ++i)
    {
        const STxeInstruction& instr = program.aInstructions[i];
        if (ClosesLevel(instr.eOp))
            iDepth = iDepth > 0 ? iDepth - 1 : 0;
        const long long allColumns[] = {static_cast<long long>(i), instr.iLine,
                                        i < compilation.aCosts.size() ? compilation.aCosts[i] : 0};
        static const std::size_t s_auiWidths[] = {6, 5, 7};
        out.Row(allColumns, s_auiWidths, 3, 2 + static_cast<std::size_t>(iDepth) * 2);
        AppendInstruction(out, program, instr, &aPoolTexts);
        if (instr.eOp == Op_Loop && !instr.trips.bKnown)
        {
            out.Put("  ; trips ");
            out.Integer(instr.trips.iBest);
            out.Put('/');
            out.Integer(instr.trips.iAverage);
            out.Put('/');
            out.Integer(instr.trips.iWorst);
        }
        if (instr.bNonDependent)
            out.Put("  ; non-dependent");
        out.Put('\n');
        if (OpensLevel(instr.eOp))
            ++iDepth;
    }
    out.Flush();
}

std::string EncodeProgram(const SCompilation& compilation, const SCoreModel& core)
{
    const STxeProgram& program = compilation.program;
    std::string out;
    out.reserve(32 + program.aInstructions.size() * k_uiInstructionBytes + program.aPool.size() * 5 + program.aBindings.size() * 64);
    out += "ZTXE";
    PutU16(out, 3);
    PutU8(out, core.eCore);
    PutU8(out, program.eStage);
    PutU32(out, static_cast<std::uint32_t>(program.aInstructions.size()));
    PutU32(out, static_cast<std::uint32_t>(program.aPool.size() / 4));
    PutU32(out, static_cast<std::uint32_t>(program.aBindings.size()));
    PutU32(out, static_cast<std::uint32_t>(compilation.iTemporaries));
    PutU32(out, static_cast<std::uint32_t>(program.iScratchSlots));
    PutU32(out, 0);

    // A large program has tens of thousands of records: they are built in a block on the
    // stack and appended a block at a time, so the file is written once, without clearing it
    // first.
    constexpr std::size_t k_uiBlockRecords = 64;
    char acBlock[k_uiBlockRecords * k_uiInstructionBytes];
    std::size_t uiInBlock = 0;
    for (const STxeInstruction& instr : program.aInstructions)
    {
        StoreInstruction(acBlock + uiInBlock * k_uiInstructionBytes, instr);
        if (++uiInBlock == k_uiBlockRecords)
        {
            out.append(acBlock, sizeof(acBlock));
            uiInBlock = 0;
        }
    }
    out.append(acBlock, uiInBlock * k_uiInstructionBytes);
    for (std::size_t uiEntry = 0; uiEntry * 4 < program.aPool.size(); ++uiEntry)
    {
        PutU8(out, uiEntry < program.aPoolTypes.size() ? program.aPoolTypes[uiEntry] : Type_Float);
        PutU8(out, 0);
        PutU16(out, 0);
        for (std::size_t i = 0; i < 4; ++i)
            PutU32(out, ImmediateWord(program, uiEntry * 4 + i));
    }
    for (const STxeBinding& binding : program.aBindings)
    {
        PutU8(out, binding.eFile);
        PutU8(out, 0);
        PutU16(out, 0);
        PutU32(out, static_cast<std::uint32_t>(binding.iBase));
        PutU32(out, static_cast<std::uint32_t>(binding.iSlots));
        PutU32(out, static_cast<std::uint32_t>(binding.name.size()));
        out += binding.name;
        PutU32(out, static_cast<std::uint32_t>(binding.aValues.size()));
        for (float fValue : binding.aValues)
        {
            std::uint32_t uiBits = 0;
            std::memcpy(&uiBits, &fValue, sizeof(uiBits));
            PutU32(out, uiBits);
        }
    }
    return out;
}

} // namespace ZamCompiler
