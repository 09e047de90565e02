#include "ZcFrontEnd.h"

#include <glslang/MachineIndependent/localintermediate.h>
#include <glslang/Public/ResourceLimits.h>
#include <glslang/Public/ShaderLang.h>

#include <utility>
#include <vector>

namespace ZamCompiler
{

namespace
{

std::string Trim(const std::string& text)
{
    std::size_t uiBegin = text.find_first_not_of(" \t\r");
    if (uiBegin == std::string::npos)
        return std::string();
    std::size_t uiEnd = text.find_last_not_of(" \t\r");
    return text.substr(uiBegin, uiEnd - uiBegin + 1);
}

bool IsDigits(const std::string& text, std::size_t uiBegin, std::size_t uiEnd)
{
    if (uiEnd <= uiBegin)
        return false;
    for (std::size_t i = uiBegin; i < uiEnd; ++i)
    {
        if (text[i] < '0' || text[i] > '9')
            return false;
    }
    return true;
}

// "<string>:<line>: message", where <string> is the source number or the path of an
// included header (which may hold colons itself: the first ":<digits>:" ends it).
bool ParseLocation(const std::string& rest, int& iLine, std::string& file, std::string& message)
{
    for (std::size_t uiColon = rest.find(':', 1); uiColon != std::string::npos; uiColon = rest.find(':', uiColon + 1))
    {
        const std::size_t uiLineEnd = rest.find(':', uiColon + 1);
        if (uiLineEnd == std::string::npos)
            return false;
        if (!IsDigits(rest, uiColon + 1, uiLineEnd) || uiLineEnd - uiColon - 1 > 9)
            continue;
        file = IsDigits(rest, 0, uiColon) ? std::string() : rest.substr(0, uiColon);
        iLine = std::stoi(rest.substr(uiColon + 1, uiLineEnd - uiColon - 1));
        message = Trim(rest.substr(uiLineEnd + 1));
        return true;
    }
    return false;
}

int FindVersionLine(const std::string& source)
{
    int iLine = 1;
    std::size_t uiStart = 0;
    while (uiStart < source.size())
    {
        std::size_t uiEnd = source.find('\n', uiStart);
        if (uiEnd == std::string::npos)
            uiEnd = source.size();
        const std::string line = Trim(source.substr(uiStart, uiEnd - uiStart));
        if (line.rfind("#", 0) == 0 && Trim(line.substr(1)).rfind("version", 0) == 0)
            return iLine;
        ++iLine;
        uiStart = uiEnd + 1;
    }
    return 1;
}

bool HasMain(TIntermNode* pRoot)
{
    glslang::TIntermAggregate* pSequence = pRoot ? pRoot->getAsAggregate() : nullptr;
    if (!pSequence)
        return false;
    for (TIntermNode* pChild : pSequence->getSequence())
    {
        glslang::TIntermAggregate* pFunction = pChild ? pChild->getAsAggregate() : nullptr;
        if (pFunction && pFunction->getOp() == glslang::EOpFunction && pFunction->getName() == "main(")
            return true;
    }
    return false;
}

} // namespace

CFrontEndProcess::CFrontEndProcess()
{
    glslang::InitializeProcess();
}

CFrontEndProcess::~CFrontEndProcess()
{
    glslang::FinalizeProcess();
}

void KeepFrontEndForProcess()
{
    static const bool s_bInitialized = glslang::InitializeProcess();
    static_cast<void>(s_bInitialized);
}

SParsedShader::SParsedShader() = default;
SParsedShader::~SParsedShader() = default;

CDiagnosticList ParseInfoLog(const std::string& log)
{
    CDiagnosticList aDiagnostics;
    std::size_t uiStart = 0;
    while (uiStart < log.size())
    {
        std::size_t uiEnd = log.find('\n', uiStart);
        if (uiEnd == std::string::npos)
            uiEnd = log.size();
        const std::string line = Trim(log.substr(uiStart, uiEnd - uiStart));
        uiStart = uiEnd + 1;
        if (line.empty())
            continue;

        SDiagnostic diagnostic;
        std::string rest;
        if (line.rfind("ERROR: ", 0) == 0)
        {
            diagnostic.eSeverity = Severity_Error;
            rest = line.substr(7);
        }
        else if (line.rfind("WARNING: ", 0) == 0)
        {
            diagnostic.eSeverity = Severity_Warning;
            rest = line.substr(9);
        }
        else
        {
            if (!aDiagnostics.empty())
                aDiagnostics.back().text += " " + line;
            continue;
        }

        // glslang's summary lines repeat what the messages already say.
        if (rest.find("compilation errors.") != std::string::npos ||
            rest.find("compilation terminated") != std::string::npos)
            continue;

        if (!ParseLocation(rest, diagnostic.iLine, diagnostic.file, diagnostic.text))
        {
            diagnostic.iLine = -1;
            diagnostic.text = rest;
        }
        aDiagnostics.push_back(diagnostic);
    }
    return aDiagnostics;
}

int MeasureTreeDepth(TIntermNode* pRoot, int& iLine)
{
    iLine = 1;
    std::vector<std::pair<TIntermNode*, int>> aStack;
    aStack.reserve(256);
    if (pRoot)
        aStack.emplace_back(pRoot, 1);
    int iMax = 0;
    auto push = [&aStack](TIntermNode* pNode, int iDepth) {
        if (pNode)
            aStack.emplace_back(pNode, iDepth);
    };
    while (!aStack.empty())
    {
        auto [pNode, iDepth] = aStack.back();
        aStack.pop_back();
        if (iDepth > iMax)
        {
            iMax = iDepth;
            if (pNode->getLoc().line > 0)
                iLine = pNode->getLoc().line;
        }
        if (pNode->getAsSymbolNode() || pNode->getAsConstantUnion())
            continue; // leaves, the most common nodes
        if (auto* pBinary = pNode->getAsBinaryNode())
        {
            push(pBinary->getLeft(), iDepth + 1);
            push(pBinary->getRight(), iDepth + 1);
        }
        else if (auto* pUnary = pNode->getAsUnaryNode())
        {
            push(pUnary->getOperand(), iDepth + 1);
        }
        else if (auto* pAggregate = pNode->getAsAggregate())
        {
            for (TIntermNode* pChild : pAggregate->getSequence())
                push(pChild, iDepth + 1);
        }
        else if (auto* pSelection = pNode->getAsSelectionNode())
        {
            push(pSelection->getCondition(), iDepth + 1);
            push(pSelection->getTrueBlock(), iDepth + 1);
            push(pSelection->getFalseBlock(), iDepth + 1);
        }
        else if (auto* pLoop = pNode->getAsLoopNode())
        {
            push(pLoop->getTest(), iDepth + 1);
            push(pLoop->getBody(), iDepth + 1);
            push(pLoop->getTerminal(), iDepth + 1);
        }
        else if (auto* pBranch = pNode->getAsBranchNode())
        {
            push(pBranch->getExpression(), iDepth + 1);
        }
        else if (auto* pSwitch = pNode->getAsSwitchNode())
        {
            push(pSwitch->getCondition(), iDepth + 1);
            push(pSwitch->getBody(), iDepth + 1);
        }
    }
    return iMax;
}

bool ParseShader(const std::string& source, ETxeStage eStage, const SSourceLimits& limits, SParsedShader& parsed,
                 CDiagnosticList& aDiagnostics, const SPreprocessorOptions& options)
{
    const EShLanguage eLanguage = eStage == Stage_Vertex ? EShLangVertex : EShLangFragment;
    parsed.pShader = std::make_unique<glslang::TShader>(eLanguage);
    const char* pText = source.data();
    const int iLength = static_cast<int>(source.size());
    parsed.pShader->setStringsWithLengths(&pText, &iLength, 1);
    const std::string preamble = Preamble(options);
    parsed.pShader->setPreamble(preamble.c_str());

    // A source without #version is GLSL ES 1.00.
    CIncluder includer(options, limits);
    const bool bParsed =
        parsed.pShader->parse(GetDefaultResources(), 100, EEsProfile, false, false, EShMsgDefault, includer);
    parsed.aIncludedFiles = includer.Files();
    CDiagnosticList aLog = ParseInfoLog(parsed.pShader->getInfoLog());
    DropMessagesAfterHeaderError(aLog);
    aDiagnostics.insert(aDiagnostics.end(), aLog.begin(), aLog.end());
    parsed.pIntermediate = parsed.pShader->getIntermediate();
    if (!bParsed || !parsed.pIntermediate)
    {
        if (!HasErrors(aDiagnostics))
            AddError(aDiagnostics, 1, "the shader could not be parsed");
        return false;
    }

    parsed.iVersion = parsed.pIntermediate->getVersion();
    if (parsed.pIntermediate->getProfile() != EEsProfile)
    {
        AddError(aDiagnostics, FindVersionLine(source),
                 "'#version' : only GLSL ES 100, 300 es, 310 es and 320 es are supported");
        return false;
    }
    if (!HasMain(parsed.pIntermediate->getTreeRoot()))
    {
        AddError(aDiagnostics, CountLines(source), "'main' : missing entry point: the shader has no main function");
        return false;
    }
    int iDeepestLine = 1;
    if (MeasureTreeDepth(parsed.pIntermediate->getTreeRoot(), iDeepestLine) > limits.iMaxTreeDepth)
    {
        AddError(aDiagnostics, iDeepestLine,
                 "expressions nest too deeply: the limit is " + std::to_string(limits.iMaxTreeDepth) + " levels");
        return false;
    }
    includer.MoveToDocumentLines(source, parsed.pIntermediate->getTreeRoot());
    return true;
}

} // namespace ZamCompiler
