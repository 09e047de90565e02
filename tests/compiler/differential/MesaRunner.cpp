#include "MesaRunner.h"

#include "InputValues.h"

#include <cstring>
#include <regex>

namespace ZamDifferential
{

namespace
{

void SetUniformLeaf(GLint iLocation, const SLeaf& leaf, const std::vector<float>& aValues)
{
    if (leaf.eScalar == Scalar_Float && leaf.iColumns > 1)
    {
        using FMatrix = void (*)(GLint, GLsizei, GLboolean, const GLfloat*);
        static const FMatrix s_apMatrix[3][3] = {{glUniformMatrix2fv, glUniformMatrix2x3fv, glUniformMatrix2x4fv},
                                                 {glUniformMatrix3x2fv, glUniformMatrix3fv, glUniformMatrix3x4fv},
                                                 {glUniformMatrix4x2fv, glUniformMatrix4x3fv, glUniformMatrix4fv}};
        s_apMatrix[leaf.iColumns - 2][leaf.iRows - 2](iLocation, 1, GL_FALSE, aValues.data());
        return;
    }
    if (leaf.eScalar == Scalar_Float)
    {
        using FVector = void (*)(GLint, GLsizei, const GLfloat*);
        static const FVector s_apFloat[4] = {glUniform1fv, glUniform2fv, glUniform3fv, glUniform4fv};
        s_apFloat[leaf.iRows - 1](iLocation, 1, aValues.data());
        return;
    }
    if (leaf.eScalar == Scalar_Uint)
    {
        using FVector = void (*)(GLint, GLsizei, const GLuint*);
        static const FVector s_apUint[4] = {glUniform1uiv, glUniform2uiv, glUniform3uiv, glUniform4uiv};
        std::vector<GLuint> aUints(aValues.begin(), aValues.end());
        s_apUint[leaf.iRows - 1](iLocation, 1, aUints.data());
        return;
    }
    using FVector = void (*)(GLint, GLsizei, const GLint*);
    static const FVector s_apInt[4] = {glUniform1iv, glUniform2iv, glUniform3iv, glUniform4iv};
    std::vector<GLint> aInts(aValues.begin(), aValues.end());
    s_apInt[leaf.iRows - 1](iLocation, 1, aInts.data());
}

struct SBlockLayout
{
    GLint iOffset = -1;
    GLint iMatrixStride = 0;
    bool bRowMajor = false;
};

GLint Property(GLuint uiProgram, GLenum eInterface, GLuint uiIndex, GLenum eProperty)
{
    GLint iValue = 0;
    glGetProgramResourceiv(uiProgram, eInterface, uiIndex, 1, &eProperty, 1, nullptr, &iValue);
    return iValue;
}

// GL lists an array of plain values once, as "a[0]", and a storage block's top-level
// array of structures by its first element: other elements are found through strides.
bool FindLayout(GLuint uiProgram, bool bStorage, const std::string& name, SBlockLayout& layout)
{
    const GLenum eInterface = bStorage ? GL_BUFFER_VARIABLE : GL_UNIFORM;
    static const std::regex s_last("\\[(\\d+)\\]$"), s_first("\\[(\\d+)\\]");
    std::smatch last, first;
    const bool bLast = std::regex_search(name, last, s_last);
    const bool bFirst = bStorage && std::regex_search(name, first, s_first);
    for (int iTry = 0; iTry < 4; ++iTry)
    {
        std::string candidate = name;
        int iLastIndex = 0, iFirstIndex = 0;
        if ((iTry & 1) && bLast)
        {
            iLastIndex = std::stoi(last[1].str());
            candidate = candidate.substr(0, static_cast<std::size_t>(last.position(0))) + "[0]";
        }
        if ((iTry & 2) && bFirst)
        {
            iFirstIndex = std::stoi(first[1].str());
            candidate.replace(static_cast<std::size_t>(first.position(0)), static_cast<std::size_t>(first.length(0)), "[0]");
        }
        const GLuint uiIndex = glGetProgramResourceIndex(uiProgram, eInterface, candidate.c_str());
        if (uiIndex == GL_INVALID_INDEX)
            continue;
        layout.iOffset = Property(uiProgram, eInterface, uiIndex, GL_OFFSET) +
                         iLastIndex * Property(uiProgram, eInterface, uiIndex, GL_ARRAY_STRIDE);
        if (iFirstIndex)
            layout.iOffset += iFirstIndex * Property(uiProgram, eInterface, uiIndex, GL_TOP_LEVEL_ARRAY_STRIDE);
        layout.iMatrixStride = Property(uiProgram, eInterface, uiIndex, GL_MATRIX_STRIDE);
        layout.bRowMajor = Property(uiProgram, eInterface, uiIndex, GL_IS_ROW_MAJOR) != 0;
        return true;
    }
    return false;
}

void WriteLeaf(const SLeaf& leaf, const SBlockLayout& layout, std::vector<unsigned char>& aData)
{
    const std::vector<float> aValues = UniformValues(leaf);
    for (int c = 0; c < leaf.iColumns; ++c)
    {
        for (int r = 0; r < leaf.iRows; ++r)
        {
            const int iStep = leaf.iColumns > 1 ? layout.iMatrixStride : 0;
            const std::size_t uiOffset = static_cast<std::size_t>(
                layout.iOffset + (layout.bRowMajor ? r * iStep + c * 4 : c * iStep + r * 4));
            const float fValue = aValues[static_cast<std::size_t>(c * leaf.iRows + r)];
            unsigned char acBytes[4];
            if (leaf.eScalar == Scalar_Float)
            {
                std::memcpy(acBytes, &fValue, 4);
            }
            else
            {
                const std::int32_t iValue = static_cast<std::int32_t>(fValue);
                std::memcpy(acBytes, &iValue, 4);
            }
            if (uiOffset + 4 <= aData.size())
                std::memcpy(aData.data() + uiOffset, acBytes, 4);
        }
    }
}

bool SetBlock(GLuint uiProgram, const SBlock& block, GLuint uiBindingPoint, CGlObjects& objects, std::string& error)
{
    const GLenum eBlockInterface = block.bStorage ? GL_SHADER_STORAGE_BLOCK : GL_UNIFORM_BLOCK;
    const GLuint uiIndex = glGetProgramResourceIndex(uiProgram, eBlockInterface, block.typeName.c_str());
    if (uiIndex == GL_INVALID_INDEX)
        return true; // not used by the shader
    std::vector<unsigned char> aData(static_cast<std::size_t>(Property(uiProgram, eBlockInterface, uiIndex, GL_BUFFER_DATA_SIZE)));
    for (const SLeaf& leaf : block.aLeaves)
    {
        SBlockLayout layout;
        if (!FindLayout(uiProgram, block.bStorage, leaf.glName, layout))
        {
            error = "Mesa lists no block member '" + leaf.glName + "'";
            return false;
        }
        WriteLeaf(leaf, layout, aData);
    }
    const GLenum eTarget = block.bStorage ? GL_SHADER_STORAGE_BUFFER : GL_UNIFORM_BUFFER;
    const GLuint uiBuffer = objects.Buffer();
    glBindBuffer(eTarget, uiBuffer);
    glBufferData(eTarget, static_cast<GLsizeiptr>(aData.size()), aData.data(), GL_STATIC_DRAW);
    if (block.bStorage)
        uiBindingPoint = static_cast<GLuint>(Property(uiProgram, eBlockInterface, uiIndex, GL_BUFFER_BINDING));
    else
        glUniformBlockBinding(uiProgram, uiIndex, uiBindingPoint);
    glBindBufferBase(eTarget, uiBindingPoint, uiBuffer);
    return true;
}

void BindTextures(GLuint uiProgram, const SShaderInterface& shaderInterface, const CReferenceTextures& textures,
                  CGlObjects& objects)
{
    for (int iUnit = 0; iUnit < textures.Units(); ++iUnit)
    {
        const bool bCube = textures.Kind(iUnit) == Sampler_Cube;
        const GLenum eTarget = bCube ? GL_TEXTURE_CUBE_MAP : GL_TEXTURE_2D;
        glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(iUnit));
        glBindTexture(eTarget, objects.Texture());
        for (int iFace = 0; iFace < (bCube ? 6 : 1); ++iFace)
        {
            const GLenum eImage = bCube ? GL_TEXTURE_CUBE_MAP_POSITIVE_X + static_cast<GLenum>(iFace) : GL_TEXTURE_2D;
            const GLsizei iSize = bCube ? 1 : k_iTextureSize;
            glTexImage2D(eImage, 0, GL_RGBA32F, iSize, iSize, 0, GL_RGBA, GL_FLOAT, textures.Texels(iUnit, iFace).data());
        }
        // A cube face is one texel: nearest keeps seamless filtering from blending faces.
        const GLint iFilter = bCube ? GL_NEAREST : GL_LINEAR;
        glTexParameteri(eTarget, GL_TEXTURE_MIN_FILTER, iFilter);
        glTexParameteri(eTarget, GL_TEXTURE_MAG_FILTER, iFilter);
        glTexParameteri(eTarget, GL_TEXTURE_MAX_LEVEL, 0);
        const GLint iWrap = bCube ? GL_CLAMP_TO_EDGE : GL_REPEAT;
        glTexParameteri(eTarget, GL_TEXTURE_WRAP_S, iWrap);
        glTexParameteri(eTarget, GL_TEXTURE_WRAP_T, iWrap);
        glUniform1i(glGetUniformLocation(uiProgram, shaderInterface.aSamplers[static_cast<std::size_t>(iUnit)].name.c_str()),
                    iUnit);
    }
    glActiveTexture(GL_TEXTURE0);
}

bool SetInputs(GLuint uiProgram, const SShaderInterface& shaderInterface, const CReferenceTextures& textures,
               CGlObjects& objects, std::string& error)
{
    glUseProgram(uiProgram);
    for (const SLeaf& leaf : shaderInterface.aUniforms)
    {
        const GLint iLocation = glGetUniformLocation(uiProgram, leaf.glName.c_str());
        if (iLocation >= 0)
            SetUniformLeaf(iLocation, leaf, UniformValues(leaf));
    }
    for (std::size_t i = 0; i < shaderInterface.aBlocks.size(); ++i)
    {
        if (!SetBlock(uiProgram, shaderInterface.aBlocks[i], static_cast<GLuint>(i), objects, error))
            return false;
    }
    BindTextures(uiProgram, shaderInterface, textures, objects);
    return true;
}

} // namespace

bool RunOnMesa(const std::string& source, const SShaderInterface& shaderInterface, const CReferenceTextures& textures,
               SResults& results, std::string& error)
{
    CGlObjects objects;
    const bool bVertex = shaderInterface.eStage == ZamCompiler::Stage_Vertex;
    std::vector<std::string> aCaptured;
    if (bVertex)
    {
        for (const SVariable& output : shaderInterface.aOutputs)
            aCaptured.push_back(output.name);
    }
    const std::string shader = FullPrecision(source);
    const GLuint uiProgram = bVertex ? objects.Program(shader, SinkFragmentShader(shaderInterface), aCaptured, error)
                                     : objects.Program(FeedingVertexShader(shaderInterface), shader, aCaptured, error);
    if (!uiProgram || !SetInputs(uiProgram, shaderInterface, textures, objects, error))
        return false;
    results = SResults();
    results.aColumns = OutputColumns(shaderInterface);
    const bool bRan = bVertex ? CaptureVertices(uiProgram, shaderInterface, objects, results, error)
                              : RenderFragments(uiProgram, shaderInterface, objects, results, error);
    const GLenum eError = glGetError();
    if (bRan && eError != GL_NO_ERROR)
    {
        error = "GL error " + std::to_string(eError) + " while running the shader";
        return false;
    }
    return bRan;
}

} // namespace ZamDifferential
