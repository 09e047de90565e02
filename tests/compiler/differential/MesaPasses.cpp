#include "MesaRunner.h"

#include "InputValues.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace ZamDifferential
{

namespace
{

// What a render target holds where the fragment was discarded.
const float k_afClearFloat[4] = {-1234.5f, 5678.25f, -9876.125f, 4321.75f};
const GLint k_aiClearInt[4] = {12345, 23456, 34567, 45678}; // also the unsigned clear

struct STarget
{
    int iLocation = 0;
    EScalar eScalar = Scalar_Float;
    int iComponents = 4;
    std::vector<float> aPixels; // RGBA per pixel, rows bottom up
};

int OutputLocation(GLuint uiProgram, const SVariable& output)
{
    if (output.iLocation >= 0)
        return output.iLocation;
    return glGetFragDataLocation(uiProgram, output.name.c_str());
}

bool MakeTargets(GLuint uiProgram, const SShaderInterface& shaderInterface, CGlObjects& objects,
                 std::vector<STarget>& aTargets, std::string& error)
{
    glBindFramebuffer(GL_FRAMEBUFFER, objects.Framebuffer());
    std::vector<GLenum> aeDraw;
    for (const SVariable& output : shaderInterface.aOutputs)
    {
        STarget target;
        target.iLocation = OutputLocation(uiProgram, output);
        if (output.iArraySize > 0 || output.aLeaves.size() != 1 || target.iLocation < 0 || target.iLocation > 7)
        {
            error = "the harness draws one render target per output; '" + output.name + "' does not fit";
            return false;
        }
        target.eScalar = output.aLeaves[0].eScalar;
        target.iComponents = output.aLeaves[0].Components();
        static const GLenum s_aeFormat[] = {GL_RGBA32F, GL_RGBA32I, GL_RGBA32UI, GL_RGBA32I};
        const GLuint uiRenderbuffer = objects.Renderbuffer();
        glBindRenderbuffer(GL_RENDERBUFFER, uiRenderbuffer);
        glRenderbufferStorage(GL_RENDERBUFFER, s_aeFormat[target.eScalar], k_iGridSize, k_iGridSize);
        const GLenum eAttachment = GL_COLOR_ATTACHMENT0 + static_cast<GLenum>(target.iLocation);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, eAttachment, GL_RENDERBUFFER, uiRenderbuffer);
        aeDraw.resize(std::max(aeDraw.size(), static_cast<std::size_t>(target.iLocation + 1)), GL_NONE);
        aeDraw[static_cast<std::size_t>(target.iLocation)] = eAttachment;
        aTargets.push_back(target);
    }
    glDrawBuffers(static_cast<GLsizei>(aeDraw.size()), aeDraw.data());
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE)
    {
        error = "Mesa cannot render to the output formats";
        return false;
    }
    for (const STarget& target : aTargets)
    {
        static const GLuint s_auiClear[4] = {12345u, 23456u, 34567u, 45678u};
        if (target.eScalar == Scalar_Float)
            glClearBufferfv(GL_COLOR, target.iLocation, k_afClearFloat);
        else if (target.eScalar == Scalar_Uint)
            glClearBufferuiv(GL_COLOR, target.iLocation, s_auiClear);
        else
            glClearBufferiv(GL_COLOR, target.iLocation, k_aiClearInt);
    }
    return true;
}

void ReadTarget(STarget& target)
{
    const std::size_t uiCount = static_cast<std::size_t>(k_iGridSize * k_iGridSize * 4);
    glReadBuffer(GL_COLOR_ATTACHMENT0 + static_cast<GLenum>(target.iLocation));
    target.aPixels.assign(uiCount, 0.0f);
    if (target.eScalar == Scalar_Float)
    {
        glReadPixels(0, 0, k_iGridSize, k_iGridSize, GL_RGBA, GL_FLOAT, target.aPixels.data());
        return;
    }
    std::vector<GLint> aiPixels(uiCount, 0);
    const GLenum eType = target.eScalar == Scalar_Uint ? GL_UNSIGNED_INT : GL_INT;
    glReadPixels(0, 0, k_iGridSize, k_iGridSize, GL_RGBA_INTEGER, eType, aiPixels.data());
    for (std::size_t i = 0; i < uiCount; ++i)
        target.aPixels[i] = target.eScalar == Scalar_Uint ? static_cast<float>(static_cast<GLuint>(aiPixels[i]))
                                                          : static_cast<float>(aiPixels[i]);
}

bool Cleared(const STarget& target, std::size_t uiPixel)
{
    for (int c = 0; c < target.iComponents; ++c)
    {
        const float fValue = target.aPixels[uiPixel * 4 + static_cast<std::size_t>(c)];
        const float fClear = target.eScalar == Scalar_Float ? k_afClearFloat[c] : static_cast<float>(k_aiClearInt[c]);
        if (fValue != fClear)
            return false;
    }
    return true;
}

void DrawQuad(CGlObjects& objects)
{
    static const float s_afQuad[] = {-1, -1, 1, -1, -1, 1, 1, 1}; // counter-clockwise: front facing
    glBindBuffer(GL_ARRAY_BUFFER, objects.Buffer());
    glBufferData(GL_ARRAY_BUFFER, sizeof s_afQuad, s_afQuad, GL_STATIC_DRAW);
    glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, 0, nullptr);
    glEnableVertexAttribArray(0);
    glViewport(0, 0, k_iGridSize, k_iGridSize);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    glDisableVertexAttribArray(0);
}

// Feeds one attribute from a buffer; false when the shader does not use it.
bool FeedAttribute(GLuint uiProgram, const SVariable& input, CGlObjects& objects, std::vector<GLuint>& auiEnabled)
{
    const GLint iLocation = glGetAttribLocation(uiProgram, input.name.c_str());
    if (iLocation < 0 || input.aLeaves.empty())
        return false;
    const SLeaf& leaf = input.aLeaves[0];
    for (int c = 0; c < leaf.iColumns; ++c)
    {
        std::vector<float> afData;
        std::vector<GLint> aiData;
        for (int v = 0; v < k_iVertexCount; ++v)
        {
            const std::vector<float> aValues = AttributeValues(leaf, v);
            for (int r = 0; r < leaf.iRows; ++r)
            {
                afData.push_back(aValues[static_cast<std::size_t>(c * leaf.iRows + r)]);
                aiData.push_back(static_cast<GLint>(afData.back()));
            }
        }
        const GLuint uiSlot = static_cast<GLuint>(iLocation + c);
        glBindBuffer(GL_ARRAY_BUFFER, objects.Buffer());
        if (leaf.eScalar == Scalar_Float)
        {
            glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(afData.size() * 4), afData.data(), GL_STATIC_DRAW);
            glVertexAttribPointer(uiSlot, leaf.iRows, GL_FLOAT, GL_FALSE, 0, nullptr);
        }
        else
        {
            glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(aiData.size() * 4), aiData.data(), GL_STATIC_DRAW);
            glVertexAttribIPointer(uiSlot, leaf.iRows, leaf.eScalar == Scalar_Uint ? GL_UNSIGNED_INT : GL_INT, 0, nullptr);
        }
        glEnableVertexAttribArray(uiSlot);
        auiEnabled.push_back(uiSlot);
    }
    return true;
}

float CapturedValue(const unsigned char* pData, EScalar eScalar)
{
    if (eScalar == Scalar_Float)
    {
        float fValue = 0.0f;
        std::memcpy(&fValue, pData, 4);
        return fValue;
    }
    std::int32_t iValue = 0;
    std::memcpy(&iValue, pData, 4);
    return eScalar == Scalar_Uint ? static_cast<float>(static_cast<std::uint32_t>(iValue)) : static_cast<float>(iValue);
}

} // namespace

bool RenderFragments(GLuint uiProgram, const SShaderInterface& shaderInterface, CGlObjects& objects, SResults& results,
                     std::string& error)
{
    std::vector<STarget> aTargets;
    if (!MakeTargets(uiProgram, shaderInterface, objects, aTargets, error))
        return false;
    DrawQuad(objects);
    for (STarget& target : aTargets)
        ReadTarget(target);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    for (std::size_t p = 0; p < static_cast<std::size_t>(k_iGridSize * k_iGridSize); ++p)
    {
        std::vector<float> aRow;
        bool bDiscarded = true;
        for (const STarget& target : aTargets)
        {
            for (int c = 0; c < target.iComponents; ++c)
                aRow.push_back(target.aPixels[p * 4 + static_cast<std::size_t>(c)]);
            bDiscarded = bDiscarded && Cleared(target, p);
        }
        results.aaRows.push_back(aRow);
        results.abDiscarded.push_back(bDiscarded);
    }
    return true;
}

bool CaptureVertices(GLuint uiProgram, const SShaderInterface& shaderInterface, CGlObjects& objects, SResults& results,
                     std::string& error)
{
    // A draw needs a complete framebuffer even with rasterisation off, and a
    // surfaceless context has none of its own.
    glBindFramebuffer(GL_FRAMEBUFFER, objects.Framebuffer());
    const GLuint uiRenderbuffer = objects.Renderbuffer();
    glBindRenderbuffer(GL_RENDERBUFFER, uiRenderbuffer);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, 1, 1);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, uiRenderbuffer);
    std::vector<GLuint> auiEnabled;
    for (const SVariable& input : shaderInterface.aInputs)
        FeedAttribute(uiProgram, input, objects, auiEnabled);
    const std::size_t uiComponents = results.aColumns.size();
    const std::size_t uiBytes = uiComponents * 4 * k_iVertexCount;
    const GLuint uiCapture = objects.Buffer();
    glBindBuffer(GL_TRANSFORM_FEEDBACK_BUFFER, uiCapture);
    glBufferData(GL_TRANSFORM_FEEDBACK_BUFFER, static_cast<GLsizeiptr>(uiBytes), nullptr, GL_STATIC_READ);
    glBindBufferBase(GL_TRANSFORM_FEEDBACK_BUFFER, 0, uiCapture);
    glEnable(GL_RASTERIZER_DISCARD);
    glBeginTransformFeedback(GL_POINTS);
    glDrawArrays(GL_POINTS, 0, k_iVertexCount);
    glEndTransformFeedback();
    glDisable(GL_RASTERIZER_DISCARD);
    for (GLuint uiSlot : auiEnabled)
        glDisableVertexAttribArray(uiSlot);
    const auto* pData = static_cast<const unsigned char*>(
        glMapBufferRange(GL_TRANSFORM_FEEDBACK_BUFFER, 0, static_cast<GLsizeiptr>(uiBytes), GL_MAP_READ_BIT));
    if (!pData)
    {
        error = "Mesa captured nothing (GL error " + std::to_string(glGetError()) + ")";
        return false;
    }
    std::vector<EScalar> aeScalars;
    for (const SVariable& output : shaderInterface.aOutputs)
    {
        for (const SLeaf& leaf : output.aLeaves)
            aeScalars.insert(aeScalars.end(), static_cast<std::size_t>(leaf.Components()), leaf.eScalar);
    }
    for (std::size_t v = 0; v < static_cast<std::size_t>(k_iVertexCount); ++v)
    {
        std::vector<float> aRow;
        for (std::size_t c = 0; c < uiComponents; ++c)
            aRow.push_back(CapturedValue(pData + (v * uiComponents + c) * 4, aeScalars[c]));
        results.aaRows.push_back(aRow);
        results.abDiscarded.push_back(false);
    }
    glUnmapBuffer(GL_TRANSFORM_FEEDBACK_BUFFER);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    return true;
}

} // namespace ZamDifferential
