#include "ShaderInterface.h"

#include "ZcFrontEnd.h"
#include "ZcSourceLimits.h"

#include <glslang/MachineIndependent/localintermediate.h>

#include <regex>

namespace ZamDifferential
{

using namespace glslang;

namespace
{

bool ScalarOf(TBasicType eBasic, EScalar& eScalar)
{
    switch (eBasic)
    {
    case EbtFloat: eScalar = Scalar_Float; return true;
    case EbtInt: eScalar = Scalar_Int; return true;
    case EbtUint: eScalar = Scalar_Uint; return true;
    case EbtBool: eScalar = Scalar_Bool; return true;
    default: return false;
    }
}

// Flattens a type into leaves in the compiler's slot order: array elements,
// then structure members in declaration order, a slot per matrix column.
bool Walk(const TType& type, const std::string& glName, const SLeaf& base, int& iSlot, std::vector<SLeaf>& aLeaves,
          std::string& error)
{
    if (type.isArray())
    {
        if (!type.isSizedArray())
        {
            error = "'" + glName + "' is an unsized array";
            return false;
        }
        const TType element(type, 0);
        for (int i = 0; i < type.getOuterArraySize(); ++i)
        {
            if (!Walk(element, glName + "[" + std::to_string(i) + "]", base, iSlot, aLeaves, error))
                return false;
        }
        return true;
    }
    if (type.isStruct())
    {
        for (const TTypeLoc& member : *type.getStruct())
        {
            if (!Walk(*member.type, glName + "." + member.type->getFieldName().c_str(), base, iSlot, aLeaves, error))
                return false;
        }
        return true;
    }
    SLeaf leaf = base;
    leaf.glName = glName;
    leaf.iSlot = iSlot;
    if (!ScalarOf(type.getBasicType(), leaf.eScalar))
    {
        error = "'" + glName + "' has a type the harness cannot feed";
        return false;
    }
    leaf.iColumns = type.isMatrix() ? type.getMatrixCols() : 1;
    leaf.iRows = type.isMatrix() ? type.getMatrixRows() : std::max(1, type.getVectorSize());
    iSlot += leaf.iColumns;
    aLeaves.push_back(leaf);
    return true;
}

std::string TypeName(const TType& type)
{
    static const char* const s_apPrefix[] = {"", "i", "u", "b"};
    EScalar eScalar = Scalar_Float;
    ScalarOf(type.getBasicType(), eScalar);
    if (type.isMatrix())
    {
        return type.getMatrixCols() == type.getMatrixRows()
                   ? "mat" + std::to_string(type.getMatrixCols())
                   : "mat" + std::to_string(type.getMatrixCols()) + "x" + std::to_string(type.getMatrixRows());
    }
    if (type.getVectorSize() <= 1)
    {
        static const char* const s_apScalar[] = {"float", "int", "uint", "bool"};
        return s_apScalar[eScalar];
    }
    return std::string(s_apPrefix[eScalar]) + "vec" + std::to_string(type.getVectorSize());
}

bool ReadVariable(const TIntermSymbol& symbol, SVariable& variable, std::string& error)
{
    const TType& type = symbol.getType();
    const TQualifier& qualifier = type.getQualifier();
    variable.name = symbol.getName().c_str();
    if (type.isStruct() || (type.isArray() && type.getArraySizes()->getNumDims() > 1))
    {
        error = "'" + variable.name + "' : structure and nested-array inputs and outputs are not fed by the harness";
        return false;
    }
    variable.type = TypeName(type);
    variable.iArraySize = type.isSizedArray() ? type.getOuterArraySize() : 0;
    variable.bFlat = qualifier.flat;
    variable.bCentroid = qualifier.centroid;
    variable.iLocation = qualifier.hasLocation() ? static_cast<int>(qualifier.layoutLocation) : -1;
    SLeaf base;
    base.binding = variable.name;
    int iSlot = 0;
    return Walk(type, variable.name, base, iSlot, variable.aLeaves, error);
}

bool ReadSampler(const TIntermSymbol& symbol, SShaderInterface& shaderInterface, std::string& error)
{
    const TSampler& sampler = symbol.getType().getSampler();
    SSampler entry;
    entry.name = symbol.getName().c_str();
    const bool bPlain = !symbol.getType().isArray() && !sampler.isShadow() && !sampler.isArrayed() &&
                        sampler.getBasicType() == EbtFloat && sampler.isCombined();
    if (bPlain && (sampler.dim == Esd2D || sampler.dim == EsdCube))
    {
        entry.eKind = sampler.dim == Esd2D ? Sampler_2D : Sampler_Cube;
        shaderInterface.aSamplers.push_back(entry);
        return true;
    }
    error = "'" + entry.name + "' : the harness has float 2D and cube textures only";
    return false;
}

bool ReadBlock(const TIntermSymbol& symbol, SShaderInterface& shaderInterface, std::string& error)
{
    const TType& type = symbol.getType();
    if (type.isArray())
    {
        error = "'" + std::string(symbol.getName().c_str()) + "' : arrays of blocks are not fed by the harness";
        return false;
    }
    SBlock block;
    block.typeName = type.getTypeName().c_str();
    block.bStorage = type.getQualifier().storage == EvqBuffer;
    SLeaf base;
    base.binding = symbol.getName().c_str();
    const bool bAnonymous = IsAnonymous(symbol.getName());
    if (bAnonymous)
        base.alias = block.typeName;
    int iSlot = 0;
    for (const TTypeLoc& member : *type.getStruct())
    {
        const std::string prefix = bAnonymous ? std::string() : block.typeName + ".";
        if (!Walk(*member.type, prefix + member.type->getFieldName().c_str(), base, iSlot, block.aLeaves, error))
            return false;
    }
    shaderInterface.aBlocks.push_back(block);
    return true;
}

bool ReadUniform(const TIntermSymbol& symbol, SShaderInterface& shaderInterface, std::string& error)
{
    const TType& type = symbol.getType();
    if (type.getBasicType() == EbtSampler)
        return ReadSampler(symbol, shaderInterface, error);
    if (type.getBasicType() == EbtBlock)
        return ReadBlock(symbol, shaderInterface, error);
    SLeaf base;
    base.binding = symbol.getName().c_str();
    int iSlot = 0;
    return Walk(type, base.binding, base, iSlot, shaderInterface.aUniforms, error);
}

bool ReadSymbol(const TIntermSymbol& symbol, SShaderInterface& shaderInterface, std::string& error)
{
    switch (symbol.getType().getQualifier().storage)
    {
    case EvqUniform:
    case EvqBuffer:
        return ReadUniform(symbol, shaderInterface, error);
    case EvqVaryingIn:
    case EvqVaryingOut:
    {
        if (symbol.getType().getBasicType() == EbtBlock)
            return true; // gl_PerVertex: its members are found where the tree uses them
        SVariable variable;
        if (!ReadVariable(symbol, variable, error))
            return false;
        const bool bInput = symbol.getType().getQualifier().storage == EvqVaryingIn;
        (bInput ? shaderInterface.aInputs : shaderInterface.aOutputs).push_back(variable);
        return true;
    }
    default:
        return true;
    }
}

// In GLSL ES 3.10 gl_Position and gl_PointSize are members of the built-in output
// block gl_PerVertex, which only the statements using it mention.
class CPerVertexFinder : public TIntermTraverser
{
public:
    std::vector<SLeaf> aMembers;
    std::string error;

    void visitSymbol(TIntermSymbol* pSymbol) override
    {
        const TType& type = pSymbol->getType();
        if (!aMembers.empty() || type.getBasicType() != EbtBlock || type.getQualifier().storage != EvqVaryingOut)
            return;
        SLeaf base;
        base.binding = pSymbol->getName().c_str();
        base.alias = type.getTypeName().c_str();
        int iSlot = 0;
        for (const TTypeLoc& member : *type.getStruct())
            Walk(*member.type, member.type->getFieldName().c_str(), base, iSlot, aMembers, error);
    }
};

TIntermAggregate* LinkerObjects(TIntermediate& intermediate)
{
    TIntermAggregate* pRoot = intermediate.getTreeRoot() ? intermediate.getTreeRoot()->getAsAggregate() : nullptr;
    if (!pRoot)
        return nullptr;
    for (TIntermNode* pChild : pRoot->getSequence())
    {
        TIntermAggregate* pAggregate = pChild ? pChild->getAsAggregate() : nullptr;
        if (pAggregate && pAggregate->getOp() == EOpLinkerObjects)
            return pAggregate;
    }
    return nullptr;
}

SVariable BuiltinOutput(const std::string& name, const std::string& type, int iRows, const std::vector<SLeaf>& aPerVertex)
{
    SVariable variable;
    variable.name = name;
    variable.type = type;
    SLeaf leaf;
    leaf.glName = name;
    leaf.binding = name;
    leaf.iRows = iRows;
    for (const SLeaf& member : aPerVertex)
    {
        if (member.glName == name)
            leaf = member;
    }
    variable.aLeaves.push_back(leaf);
    return variable;
}

bool Mentions(const std::string& source, const char* pWord)
{
    return std::regex_search(source, std::regex(std::string("\\b") + pWord + "\\b"));
}

} // namespace

bool ReadShaderInterface(const std::string& source, ZamCompiler::ETxeStage eStage, SShaderInterface& shaderInterface,
                         std::string& error)
{
    shaderInterface = SShaderInterface();
    shaderInterface.eStage = eStage;
    ZamCompiler::SParsedShader parsed;
    ZamCompiler::CDiagnosticList aDiagnostics;
    if (!ZamCompiler::ParseShader(source, eStage, ZamCompiler::DefaultSourceLimits(), parsed, aDiagnostics))
    {
        error = "glslang refuses the shader";
        for (const ZamCompiler::SDiagnostic& diagnostic : aDiagnostics)
            error += "\n  " + std::to_string(diagnostic.iLine) + ": " + diagnostic.text;
        return false;
    }
    shaderInterface.iVersion = parsed.iVersion;
    TIntermAggregate* pObjects = LinkerObjects(*parsed.pIntermediate);
    for (TIntermNode* pNode : pObjects ? pObjects->getSequence() : TIntermSequence())
    {
        const TIntermSymbol* pSymbol = pNode ? pNode->getAsSymbolNode() : nullptr;
        if (pSymbol && !ReadSymbol(*pSymbol, shaderInterface, error))
            return false;
    }
    CPerVertexFinder finder;
    parsed.pIntermediate->getTreeRoot()->traverse(&finder);
    const std::vector<SLeaf>& aPerVertex = finder.aMembers;
    if (eStage == ZamCompiler::Stage_Vertex)
    {
        auto& aOutputs = shaderInterface.aOutputs;
        aOutputs.insert(aOutputs.begin(), BuiltinOutput("gl_Position", "vec4", 4, aPerVertex));
        shaderInterface.bWritesPointSize = Mentions(source, "gl_PointSize");
        if (shaderInterface.bWritesPointSize)
            aOutputs.insert(aOutputs.begin() + 1, BuiltinOutput("gl_PointSize", "float", 1, aPerVertex));
    }
    else if (shaderInterface.aOutputs.empty())
    {
        const bool bData = Mentions(source, "gl_FragData");
        shaderInterface.aOutputs.push_back(BuiltinOutput(bData ? "gl_FragData" : "gl_FragColor", "vec4", 4, aPerVertex));
        shaderInterface.aOutputs.back().iLocation = 0;
    }
    return true;
}

} // namespace ZamDifferential
