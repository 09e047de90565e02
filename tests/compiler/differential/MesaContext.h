#pragma once

// Mesa's software renderer (llvmpipe) through EGL without a display: an OpenGL ES
// 3.2 context on the surfaceless platform, which compiles GLSL ES 1.00 to 3.20.

#include <GLES3/gl32.h>

#include <string>
#include <utility>
#include <vector>

namespace ZamDifferential
{

class CMesaContext
{
public:
    CMesaContext() = default;
    ~CMesaContext();
    CMesaContext(const CMesaContext&) = delete;
    CMesaContext& operator=(const CMesaContext&) = delete;

    // Forces llvmpipe (deterministic, no GPU); false with a reason when EGL or Mesa is missing.
    bool Initialise(std::string& error);
    std::string Renderer() const;

private:
    void* m_pDisplay = nullptr;
    void* m_pContext = nullptr;
};

// GL objects of one run, deleted together.
class CGlObjects
{
public:
    CGlObjects() = default;
    ~CGlObjects();
    CGlObjects(const CGlObjects&) = delete;
    CGlObjects& operator=(const CGlObjects&) = delete;

    GLuint Buffer() { return Generate(glGenBuffers, glDeleteBuffers); }
    GLuint Texture() { return Generate(glGenTextures, glDeleteTextures); }
    GLuint Renderbuffer() { return Generate(glGenRenderbuffers, glDeleteRenderbuffers); }
    GLuint Framebuffer() { return Generate(glGenFramebuffers, glDeleteFramebuffers); }
    // A linked program, or 0 with Mesa's log in error. aCaptured: transform feedback varyings.
    GLuint Program(const std::string& vertexSource, const std::string& fragmentSource,
                   const std::vector<std::string>& aCaptured, std::string& error);

private:
    using FNames = void (*)(GLsizei, GLuint*);
    using FDelete = void (*)(GLsizei, const GLuint*);
    GLuint Generate(FNames pGenerate, FDelete pDelete);
    GLuint Shader(GLenum eType, const std::string& source, std::string& error);

    std::vector<std::pair<FDelete, GLuint>> m_aNames;
    std::vector<GLuint> m_aShaders;
    std::vector<GLuint> m_aPrograms;
};

} // namespace ZamDifferential
