#pragma once

// Front end: glslang parses and type-checks GLSL ES; its info log becomes diagnostics.

#include "TxeIsa.h"
#include "ZcDiagnostics.h"
#include "ZcIncludes.h"
#include "ZcSourceLimits.h"

#include <memory>
#include <string>
#include <vector>

namespace glslang
{
class TShader;
class TIntermediate;
} // namespace glslang

class TIntermNode;

namespace ZamCompiler
{

// glslang's process-wide tables; exactly one alive while anything is parsed.
class CFrontEndProcess
{
public:
    CFrontEndProcess();
    ~CFrontEndProcess();
    CFrontEndProcess(const CFrontEndProcess&) = delete;
    CFrontEndProcess& operator=(const CFrontEndProcess&) = delete;
};

// The same tables for the rest of a process that compiles and exits: they are never freed
// one by one, the exit takes them back at once.
void KeepFrontEndForProcess();

// The parsed tree lives in the shader's memory pool: use it on the parsing thread only.
struct SParsedShader
{
    SParsedShader();
    ~SParsedShader();
    std::unique_ptr<glslang::TShader> pShader;
    glslang::TIntermediate* pIntermediate = nullptr;
    int iVersion = 0;
    std::vector<std::string> aIncludedFiles; // the headers read, each once
};

// Code from included headers is counted against the document line of its #include.
bool ParseShader(const std::string& source, ETxeStage eStage, const SSourceLimits& limits, SParsedShader& parsed,
                 CDiagnosticList& aDiagnostics, const SPreprocessorOptions& options = SPreprocessorOptions());

CDiagnosticList ParseInfoLog(const std::string& log);

// Deepest node below root, measured without recursion; iLine gets that node's line.
int MeasureTreeDepth(TIntermNode* pRoot, int& iLine);

} // namespace ZamCompiler
