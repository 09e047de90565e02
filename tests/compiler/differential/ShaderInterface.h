#pragma once

// What a shader exchanges with the application, read from glslang's typed tree:
// every uniform, block member, input and output down to single values, each with
// the name GL knows it by and the slot the TXE program keeps it in.

#include "TxeIsa.h"

#include <string>
#include <vector>

namespace ZamDifferential
{

enum EScalar
{
    Scalar_Float,
    Scalar_Int,
    Scalar_Uint,
    Scalar_Bool,
};

// One scalar, vector or matrix.
struct SLeaf
{
    std::string glName;  // "uLights[1].colour", "Material.albedo", "gl_Position"
    std::string binding; // the symbol the compiler binds: "uLights", "anon@0"
    std::string alias;   // another name the binding may carry (an anonymous block's type name)
    int iSlot = 0;       // first slot inside that binding
    EScalar eScalar = Scalar_Float;
    int iColumns = 1;    // slots: matrix columns, 1 otherwise
    int iRows = 1;       // components per slot
    int Components() const { return iColumns * iRows; }
};

enum ESamplerKind
{
    Sampler_2D,
    Sampler_Cube,
};

struct SSampler
{
    std::string name;
    ESamplerKind eKind = Sampler_2D;
};

// A uniform or storage block; GL addresses its members by leaf name.
struct SBlock
{
    std::string typeName;
    bool bStorage = false;
    std::vector<SLeaf> aLeaves;
};

// A stage input or output variable.
struct SVariable
{
    std::string name;
    std::string type;       // "vec3", "mat2", "ivec2"
    int iArraySize = 0;     // 0: not an array
    bool bFlat = false;
    bool bCentroid = false;
    int iLocation = -1;
    std::vector<SLeaf> aLeaves;
};

struct SShaderInterface
{
    ZamCompiler::ETxeStage eStage = ZamCompiler::Stage_Fragment;
    int iVersion = 100;
    std::vector<SLeaf> aUniforms; // default-block uniforms other than samplers
    std::vector<SSampler> aSamplers;
    std::vector<SBlock> aBlocks;
    std::vector<SVariable> aInputs;
    std::vector<SVariable> aOutputs; // vertex: gl_Position first
    bool bWritesPointSize = false;
};

// Needs a live ZamCompiler::CFrontEndProcess. False with a reason for shapes the
// differential harness cannot feed (sampler arrays, struct varyings, ...).
bool ReadShaderInterface(const std::string& source, ZamCompiler::ETxeStage eStage, SShaderInterface& shaderInterface,
                         std::string& error);

} // namespace ZamDifferential
