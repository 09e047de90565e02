#pragma once

// Front end: glslang parses and type-checks GLSL ES; its info log becomes diagnostics.

#include "TxeIsa.h"
#include "ZcDiagnostics.h"
#include "ZcSourceLimits.h"

#include <memory>
#include <string>

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

// The parsed tree lives in the shader's memory pool: use it on the parsing thread only.
struct SParsedShader
{
    SParsedShader();
    ~SParsedShader();
    std::unique_ptr<glslang::TShader> pShader;
    glslang::TIntermediate* pIntermediate = nullptr;
    int iVersion = 0;
};

bool ParseShader(const std::string& source, ETxeStage eStage, const SSourceLimits& limits, SParsedShader& parsed,
                 CDiagnosticList& aDiagnostics);

CDiagnosticList ParseInfoLog(const std::string& log);

// Deepest node below root, measured without recursion; iLine gets that node's line.
int MeasureTreeDepth(TIntermNode* pRoot, int& iLine);

} // namespace ZamCompiler
