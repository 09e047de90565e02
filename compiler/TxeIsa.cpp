#include "TxeIsa.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <iterator>

namespace ZamCompiler
{

namespace
{

const STxeOpInfo s_aOpInfo[Op_Count] = {
    {"mov", Class_Move, 1},
    {"ldm", Class_Move, 1},
    {"stm", Class_Move, 1},
    {"ldc", Class_Move, 1},
    {"add", Class_Alu, 2},
    {"mul", Class_Alu, 2},
    {"mad", Class_Alu, 3},
    {"dp2", Class_Alu, 2},
    {"dp3", Class_Alu, 2},
    {"dp4", Class_Alu, 2},
    {"min", Class_Alu, 2},
    {"max", Class_Alu, 2},
    {"flr", Class_Alu, 1},
    {"frc", Class_Alu, 1},
    {"rnd", Class_Alu, 1},
    {"slt", Class_Alu, 2},
    {"sge", Class_Alu, 2},
    {"seq", Class_Alu, 2},
    {"sne", Class_Alu, 2},
    {"sel", Class_Alu, 3},
    {"and", Class_Alu, 2},
    {"or", Class_Alu, 2},
    {"xor", Class_Alu, 2},
    {"not", Class_Alu, 1},
    {"shl", Class_Alu, 2},
    {"shr", Class_Alu, 2},
    {"f2i", Class_Alu, 1},
    {"i2f", Class_Alu, 1},
    {"sgn", Class_Alu, 1},
    {"ddx", Class_Alu, 1},
    {"ddy", Class_Alu, 1},
    {"rcp", Class_Transcendental, 1},
    {"rsq", Class_Transcendental, 1},
    {"sqrt", Class_Transcendental, 1},
    {"exp2", Class_Transcendental, 1},
    {"log2", Class_Transcendental, 1},
    {"sin", Class_Transcendental, 1},
    {"cos", Class_Transcendental, 1},
    {"atan", Class_Transcendental, 2},
    {"idiv", Class_Transcendental, 2},
    {"tex", Class_Texture, 2},
    {"txb", Class_Texture, 3},
    {"txl", Class_Texture, 3},
    {"txp", Class_Texture, 2},
    {"txg", Class_Texture, 4},
    {"txf", Class_Texture, 3},
    {"txs", Class_Texture, 2},
    {"if", Class_Flow, 1},
    {"else", Class_Flow, 0},
    {"endif", Class_Flow, 0},
    {"loop", Class_Flow, 0},
    {"endloop", Class_Flow, 0},
    {"brk", Class_Flow, 0},
    {"brkz", Class_Flow, 1},
    {"cont", Class_Flow, 0},
    {"kil", Class_Flow, 0},
    {"ret", Class_Flow, 0},
    {"bcnt", Class_Alu, 1},
    {"brev", Class_Alu, 1},
    {"fbl", Class_Alu, 1},
    {"fbh", Class_Alu, 1},
    {"bfe", Class_Alu, 3},
    {"bfi", Class_Alu, 4},
    {"mhi", Class_Alu, 2},
    {"fbit", Class_Alu, 1},
    {"bitf", Class_Alu, 1},
    {"f2h", Class_Alu, 1},
    {"h2f", Class_Alu, 1},
};

char FileLetter(ETxeFile eFile)
{
    switch (eFile)
    {
    case File_Temp: return 'r';
    case File_Input: return 'a';
    case File_Uniform: return 'c';
    case File_Output: return 'o';
    case File_Sampler: return 's';
    case File_Scratch: return 'm';
    default: return '?';
    }
}

// Two digits a step: a listing is mostly register numbers and counts.
const char s_acPairs[] = "00010203040506070809101112131415161718192021222324"
                         "25262728293031323334353637383940414243444546474849"
                         "50515253545556575859606162636465666768697071727374"
                         "75767778798081828384858687888990919293949596979899";
// Characters a long long can take, sign included.
constexpr std::size_t k_uiMaxDecimal = 20;

unsigned long long Magnitude(long long llValue)
{
    return llValue < 0 ? 0ULL - static_cast<unsigned long long>(llValue) : static_cast<unsigned long long>(llValue);
}

// The digits of ullValue, written backwards so that they end at pEnd; returns the first.
char* DigitsBefore(char* pEnd, unsigned long long ullValue)
{
    while (ullValue >= 100)
    {
        pEnd -= 2;
        std::memcpy(pEnd, s_acPairs + 2 * (ullValue % 100), 2);
        ullValue /= 100;
    }
    if (ullValue >= 10)
    {
        pEnd -= 2;
        std::memcpy(pEnd, s_acPairs + 2 * ullValue, 2);
    }
    else
    {
        *--pEnd = static_cast<char>('0' + ullValue);
    }
    return pEnd;
}

// llValue at p, right-aligned in uiWidth columns or as wide as it needs; returns the end.
// p needs room for max(uiWidth, 8) + k_uiMaxDecimal characters.
char* WriteRightAligned(char* p, long long llValue, std::size_t uiWidth)
{
    static const unsigned long long s_aullLimits[] = {0, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};
    if (llValue >= 0 && uiWidth < std::size(s_aullLimits) &&
        static_cast<unsigned long long>(llValue) < s_aullLimits[uiWidth])
    {
        // The usual case: the field holds the number, so the digits go straight into it.
        std::memcpy(p, "        ", 8);
        DigitsBefore(p + uiWidth, static_cast<unsigned long long>(llValue));
        return p + uiWidth;
    }
    char acDigits[k_uiMaxDecimal];
    char* const pEnd = acDigits + sizeof(acDigits);
    char* pFirst = DigitsBefore(pEnd, Magnitude(llValue));
    if (llValue < 0)
        *--pFirst = '-';
    const std::size_t uiLength = static_cast<std::size_t>(pEnd - pFirst);
    for (std::size_t i = uiLength; i < uiWidth; ++i)
        *p++ = ' ';
    std::memcpy(p, pFirst, uiLength);
    return p + uiLength;
}

char* WriteInteger(char* p, long long llValue)
{
    if (llValue >= 0 && llValue < 10)
    {
        *p = static_cast<char>('0' + llValue);
        return p + 1;
    }
    if (llValue >= 10 && llValue < 100)
    {
        std::memcpy(p, s_acPairs + 2 * llValue, 2);
        return p + 2;
    }
    return WriteRightAligned(p, llValue, 0);
}

std::size_t MnemonicLength(ETxeOp eOp)
{
    static const auto s_auiLengths = [] {
        std::array<std::uint8_t, Op_Count> auiLengths{};
        for (std::size_t i = 0; i < auiLengths.size(); ++i)
            auiLengths[i] = static_cast<std::uint8_t>(std::strlen(s_aOpInfo[i].pMnemonic));
        return auiLengths;
    }();
    return s_auiLengths[eOp < Op_Count ? eOp : Op_Mov];
}

// Integer immediates print every digit; floats with six significant digits, as "%g" does
// (to_chars is printf's format without its cost).
void AppendValue(CTextSink& out, double dValue, ETxeType eType)
{
    char acBuf[400];
    const std::to_chars_result result =
        eType == Type_Float ? std::to_chars(acBuf, acBuf + sizeof(acBuf), dValue, std::chars_format::general, 6)
                            : std::to_chars(acBuf, acBuf + sizeof(acBuf), dValue, std::chars_format::fixed, 0);
    if (result.ec == std::errc())
        out.Put(acBuf, static_cast<std::size_t>(result.ptr - acBuf));
}

void AppendLane(CTextSink& out, const STxeProgram& program, std::size_t uiLane, ETxeType eType,
                const std::vector<std::string>* pPoolTexts)
{
    if (pPoolTexts && uiLane < pPoolTexts->size())
        out.Put((*pPoolTexts)[uiLane]);
    else
        AppendValue(out, program.aPool[uiLane], eType);
}

void AppendImmediate(CTextSink& out, const STxeProgram& program, const STxeOperand& op,
                     const std::vector<std::string>* pPoolTexts)
{
    const std::size_t uiBase = static_cast<std::size_t>(op.iIndex) * 4;
    if (uiBase + 4 > program.aPool.size())
    {
        out.Put("#?", 2);
        return;
    }
    const std::size_t uiEntry = static_cast<std::size_t>(op.iIndex);
    const ETxeType eType = uiEntry < program.aPoolTypes.size() ? program.aPoolTypes[uiEntry] : Type_Float;
    bool bSplat = true;
    for (int i = 1; i < op.uiCount; ++i)
        bSplat = bSplat && program.aPool[uiBase + op.auiSwizzle[i]] == program.aPool[uiBase + op.auiSwizzle[0]];
    out.Put('#');
    if (bSplat || op.uiCount <= 1)
    {
        AppendLane(out, program, uiBase + op.auiSwizzle[0], eType, pPoolTexts);
        return;
    }
    out.Put('(');
    for (int i = 0; i < op.uiCount; ++i)
    {
        if (i)
            out.Put(", ", 2);
        AppendLane(out, program, uiBase + op.auiSwizzle[i], eType, pPoolTexts);
    }
    out.Put(')');
}

void PutOperand(CTextSink& out, const STxeProgram& program, const STxeOperand& op, bool bDestination,
                const std::vector<std::string>* pPoolTexts)
{
    if (op.eFile == File_Immediate)
    {
        if (op.bNegate)
            out.Put('-');
        AppendImmediate(out, program, op, pPoolTexts);
        return;
    }
    // A register operand has a bounded length: it is written straight into the sink.
    char* p = out.Reserve(2 * k_uiMaxDecimal + 16 + op.uiCount);
    const bool bAbs = !bDestination && op.bAbs;
    if (!bDestination && op.bNegate)
        *p++ = '-';
    if (bAbs)
        *p++ = '|';
    *p++ = FileLetter(op.eFile);
    if (op.iRelative >= 0)
    {
        *p++ = '[';
        *p++ = 'r';
        p = WriteInteger(p, op.iRelative);
        *p++ = '.';
        *p++ = "xyzw"[op.iRelativeLane & 3];
        *p++ = '+';
        p = WriteInteger(p, op.iIndex);
        *p++ = ']';
    }
    else
    {
        p = WriteInteger(p, op.iIndex);
    }
    if (op.eFile != File_Sampler)
    {
        bool bIdentity = op.uiCount == 4;
        for (int i = 0; i < 4 && bIdentity; ++i)
            bIdentity = op.auiSwizzle[i] == i;
        if (!bIdentity)
        {
            *p++ = '.';
            for (int i = 0; i < op.uiCount; ++i)
                *p++ = "xyzw"[op.auiSwizzle[i] & 3];
        }
    }
    if (bAbs)
        *p++ = '|';
    out.Commit(p);
}

} // namespace

void CTextSink::PutLong(const char* pText, std::size_t uiLength)
{
    Flush();
    if (uiLength > sizeof(m_acBuffer))
        m_out.append(pText, uiLength);
    else
        Put(pText, uiLength);
}

void CTextSink::Repeat(char c, std::size_t uiCount)
{
    while (uiCount > 0)
    {
        const std::size_t uiRun = std::min(uiCount, k_uiRoom);
        char* p = Reserve(uiRun);
        std::memset(p, c, uiRun);
        Commit(p + uiRun);
        uiCount -= uiRun;
    }
}

void CTextSink::RightAligned(long long llValue, std::size_t uiWidth)
{
    if (uiWidth + k_uiMaxDecimal + 8 > k_uiRoom)
    {
        char acDigits[k_uiMaxDecimal];
        const std::size_t uiLength = static_cast<std::size_t>(WriteRightAligned(acDigits, llValue, 0) - acDigits);
        if (uiLength < uiWidth)
            Repeat(' ', uiWidth - uiLength);
        uiWidth = 0;
    }
    Commit(WriteRightAligned(Reserve(uiWidth + k_uiMaxDecimal + 8), llValue, uiWidth));
}

void CTextSink::Row(const long long* pValues, const std::size_t* pWidths, std::size_t uiCount, std::size_t uiTrailing)
{
    std::size_t uiBound = uiTrailing;
    for (std::size_t i = 0; i < uiCount; ++i)
        uiBound += std::max<std::size_t>(pWidths[i], 8) + k_uiMaxDecimal + 1;
    if (uiBound > k_uiRoom)
    {
        for (std::size_t i = 0; i < uiCount; ++i)
        {
            if (i > 0)
                Put(' ');
            RightAligned(pValues[i], pWidths[i]);
        }
        Repeat(' ', uiTrailing);
        return;
    }
    char* p = Reserve(uiBound);
    for (std::size_t i = 0; i < uiCount; ++i)
    {
        if (i > 0)
            *p++ = ' ';
        p = WriteRightAligned(p, pValues[i], pWidths[i]);
    }
    std::memset(p, ' ', uiTrailing);
    Commit(p + uiTrailing);
}

bool HasTexelOffset(const STxeInstruction& instr)
{
    return instr.aiTexelOffset[0] != 0 || instr.aiTexelOffset[1] != 0 || instr.aiTexelOffset[2] != 0;
}

const STxeOpInfo& TxeOpInfo(ETxeOp eOp)
{
    return s_aOpInfo[eOp < Op_Count ? eOp : Op_Mov];
}

std::vector<std::string> ImmediateTexts(const STxeProgram& program)
{
    std::vector<std::string> aTexts(program.aPool.size());
    for (std::size_t i = 0; i < program.aPool.size(); ++i)
    {
        const ETxeType eType = i / 4 < program.aPoolTypes.size() ? program.aPoolTypes[i / 4] : Type_Float;
        CTextSink sink(aTexts[i]);
        AppendValue(sink, program.aPool[i], eType);
    }
    return aTexts;
}

void AppendOperand(std::string& out, const STxeProgram& program, const STxeOperand& op, bool bDestination,
                   const std::vector<std::string>* pPoolTexts)
{
    CTextSink sink(out);
    PutOperand(sink, program, op, bDestination, pPoolTexts);
}

std::string FormatOperand(const STxeProgram& program, const STxeOperand& op, bool bDestination)
{
    std::string text;
    AppendOperand(text, program, op, bDestination);
    return text;
}

void AppendInstruction(CTextSink& out, const STxeProgram& program, const STxeInstruction& instr,
                       const std::vector<std::string>* pPoolTexts)
{
    const STxeOpInfo& info = TxeOpInfo(instr.eOp);
    // Mnemonic, type and the padding to the operands: a short run written in place.
    char* const pStart = out.Reserve(k_uiMaxDecimal + 16);
    char* p = pStart;
    const std::size_t uiLength = MnemonicLength(instr.eOp);
    std::memcpy(p, info.pMnemonic, uiLength);
    p += uiLength;
    if (instr.eType == Type_Int || instr.eType == Type_Uint)
    {
        *p++ = '.';
        *p++ = instr.eType == Type_Int ? 'i' : 'u';
    }
    const bool bHasDst = instr.dst.eFile != File_None;
    if (instr.eOp == Op_Loop)
    {
        *p++ = ' ';
        if (instr.trips.bKnown)
            p = WriteInteger(p, instr.trips.iWorst);
        else
            *p++ = '?';
    }
    else if (bHasDst || info.iSources != 0)
    {
        const std::size_t uiMnemonic = static_cast<std::size_t>(p - pStart);
        std::memcpy(p, "        ", 8);
        p += uiMnemonic < 8 ? 8 - uiMnemonic : 1;
    }
    out.Commit(p);
    if (instr.eOp == Op_Loop || (!bHasDst && info.iSources == 0))
        return;
    bool bFirst = true;
    if (bHasDst)
    {
        PutOperand(out, program, instr.dst, true, pPoolTexts);
        bFirst = false;
    }
    for (int i = 0; i < info.iSources; ++i)
    {
        if (instr.aSrc[i].eFile == File_None)
            continue;
        if (!bFirst)
            out.Put(", ", 2);
        PutOperand(out, program, instr.aSrc[i], false, pPoolTexts);
        bFirst = false;
    }
    if (HasTexelOffset(instr))
    {
        out.Put(", offset(", 9);
        out.Integer(instr.aiTexelOffset[0]);
        out.Put(", ", 2);
        out.Integer(instr.aiTexelOffset[1]);
        if (instr.aiTexelOffset[2] != 0)
        {
            out.Put(", ", 2);
            out.Integer(instr.aiTexelOffset[2]);
        }
        out.Put(')');
    }
}

void AppendInstruction(std::string& out, const STxeProgram& program, const STxeInstruction& instr,
                       const std::vector<std::string>* pPoolTexts)
{
    CTextSink sink(out);
    AppendInstruction(sink, program, instr, pPoolTexts);
}

std::string FormatInstruction(const STxeProgram& program, const STxeInstruction& instr)
{
    std::string text;
    AppendInstruction(text, program, instr);
    return text;
}

} // namespace ZamCompiler
