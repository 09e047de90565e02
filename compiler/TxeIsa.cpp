#include "TxeIsa.h"

#include <cstdio>

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

// Integer immediates print every digit; floats as briefly as they read back.
std::string FormatValue(double dValue, ETxeType eType)
{
    char acBuf[32];
    if (eType == Type_Float)
        std::snprintf(acBuf, sizeof(acBuf), "%g", dValue);
    else
        std::snprintf(acBuf, sizeof(acBuf), "%.0f", dValue);
    return acBuf;
}

std::string FormatImmediate(const STxeProgram& program, const STxeOperand& op)
{
    const std::size_t uiBase = static_cast<std::size_t>(op.iIndex) * 4;
    if (uiBase + 4 > program.aPool.size())
        return "#?";
    const std::size_t uiEntry = static_cast<std::size_t>(op.iIndex);
    const ETxeType eType = uiEntry < program.aPoolTypes.size() ? program.aPoolTypes[uiEntry] : Type_Float;
    bool bSplat = true;
    for (int i = 1; i < op.uiCount; ++i)
        bSplat = bSplat && program.aPool[uiBase + op.auiSwizzle[i]] == program.aPool[uiBase + op.auiSwizzle[0]];
    if (bSplat || op.uiCount <= 1)
        return "#" + FormatValue(program.aPool[uiBase + op.auiSwizzle[0]], eType);
    std::string text = "#(";
    for (int i = 0; i < op.uiCount; ++i)
    {
        if (i)
            text += ", ";
        text += FormatValue(program.aPool[uiBase + op.auiSwizzle[i]], eType);
    }
    return text + ")";
}

} // namespace

const STxeOpInfo& TxeOpInfo(ETxeOp eOp)
{
    return s_aOpInfo[eOp < Op_Count ? eOp : Op_Mov];
}

std::string FormatOperand(const STxeProgram& program, const STxeOperand& op, bool bDestination)
{
    if (op.eFile == File_Immediate)
        return (op.bNegate ? "-" : "") + FormatImmediate(program, op);

    std::string reg;
    if (op.iRelative >= 0)
    {
        reg = std::string(1, FileLetter(op.eFile)) + "[r" + std::to_string(op.iRelative) + "." + "xyzw"[op.iRelativeLane & 3] +
              "+" + std::to_string(op.iIndex) + "]";
    }
    else
    {
        reg = std::string(1, FileLetter(op.eFile)) + std::to_string(op.iIndex);
    }

    if (op.eFile != File_Sampler)
    {
        bool bIdentity = op.uiCount == 4;
        for (int i = 0; i < 4 && bIdentity; ++i)
            bIdentity = op.auiSwizzle[i] == i;
        if (!bIdentity)
        {
            reg += '.';
            for (int i = 0; i < op.uiCount; ++i)
                reg += "xyzw"[op.auiSwizzle[i] & 3];
        }
    }
    if (!bDestination && op.bAbs)
        reg = "|" + reg + "|";
    if (!bDestination && op.bNegate)
        reg = "-" + reg;
    return reg;
}

std::string FormatInstruction(const STxeProgram& program, const STxeInstruction& instr)
{
    const STxeOpInfo& info = TxeOpInfo(instr.eOp);
    std::string text = info.pMnemonic;
    if (instr.eType == Type_Int)
        text += ".i";
    else if (instr.eType == Type_Uint)
        text += ".u";
    if (instr.eOp == Op_Loop)
    {
        if (instr.trips.bKnown)
            return text + " " + std::to_string(instr.trips.iWorst);
        return text + " ?";
    }
    const bool bHasDst = instr.dst.eFile != File_None;
    if (!bHasDst && info.iSources == 0)
        return text;
    text.resize(text.size() < 8 ? 8 : text.size() + 1, ' ');
    bool bFirst = true;
    if (bHasDst)
    {
        text += FormatOperand(program, instr.dst, true);
        bFirst = false;
    }
    for (int i = 0; i < info.iSources; ++i)
    {
        if (instr.aSrc[i].eFile == File_None)
            continue;
        if (!bFirst)
            text += ", ";
        text += FormatOperand(program, instr.aSrc[i], false);
        bFirst = false;
    }
    return text;
}

} // namespace ZamCompiler
