#include "MesaContext.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace ZamDifferential
{

namespace
{

const char* const k_pInstallHint = " (Mesa's EGL and software renderer are needed: packages libegl1, libegl-mesa0 and "
                                   "libgl1-mesa-dri, which scripts/bootstrap.sh installs)";

bool HasExtension(const char* pList, const std::string& name)
{
    return pList && (" " + std::string(pList) + " ").find(" " + name + " ") != std::string::npos;
}

bool HasGlExtension(const char* pName)
{
    GLint iCount = 0;
    glGetIntegerv(GL_NUM_EXTENSIONS, &iCount);
    for (GLint i = 0; i < iCount; ++i)
    {
        const char* pExtension = reinterpret_cast<const char*>(glGetStringi(GL_EXTENSIONS, static_cast<GLuint>(i)));
        if (pExtension && std::strcmp(pExtension, pName) == 0)
            return true;
    }
    return false;
}

std::string EglError(const char* pWhat)
{
    char acCode[16];
    std::snprintf(acCode, sizeof acCode, "%x", static_cast<unsigned>(eglGetError()));
    return std::string(pWhat) + " failed (EGL error 0x" + acCode + ")";
}

} // namespace

// The display is left to the end of the process: Mesa 22's eglTerminate on the surfaceless
// platform loses memory of its own (a bare program that only initialises and terminates the
// display already gets a leak report), which would fail every sanitizer run.
CMesaContext::~CMesaContext()
{
    if (m_pDisplay)
    {
        eglMakeCurrent(m_pDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        if (m_pContext)
            eglDestroyContext(m_pDisplay, m_pContext);
    }
}

bool CMesaContext::Initialise(std::string& error)
{
    // llvmpipe on every machine: a GPU driver would round differently from run to run.
    setenv("LIBGL_ALWAYS_SOFTWARE", "1", 1);
    setenv("GALLIUM_DRIVER", "llvmpipe", 1);
    if (!HasExtension(eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS), "EGL_MESA_platform_surfaceless"))
    {
        error = std::string("EGL offers no surfaceless platform") + k_pInstallHint;
        return false;
    }
    auto pGetDisplay = reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    m_pDisplay =
        pGetDisplay ? pGetDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr) : EGL_NO_DISPLAY;
    if (m_pDisplay == EGL_NO_DISPLAY || !eglInitialize(m_pDisplay, nullptr, nullptr))
    {
        m_pDisplay = nullptr;
        error = EglError("opening the surfaceless display") + k_pInstallHint;
        return false;
    }
    const EGLint aiAttributes[] = {EGL_CONTEXT_MAJOR_VERSION, 3, EGL_CONTEXT_MINOR_VERSION, 2, EGL_NONE};
    if (!eglBindAPI(EGL_OPENGL_ES_API)
        || !(m_pContext = eglCreateContext(m_pDisplay, EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, aiAttributes))
        || !eglMakeCurrent(m_pDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, m_pContext))
    {
        error = EglError("creating an OpenGL ES 3.2 context") + k_pInstallHint;
        return false;
    }
    if (!HasGlExtension("GL_EXT_color_buffer_float") || !HasGlExtension("GL_OES_texture_float_linear"))
    {
        error = "the renderer (" + Renderer() + ") cannot render to or filter float textures";
        return false;
    }
    return true;
}

std::string CMesaContext::Renderer() const
{
    const char* pRenderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    const char* pVersion = reinterpret_cast<const char*>(glGetString(GL_VERSION));
    return std::string(pRenderer ? pRenderer : "?") + ", " + (pVersion ? pVersion : "?");
}

CGlObjects::~CGlObjects()
{
    for (GLuint uiProgram : m_aPrograms)
        glDeleteProgram(uiProgram);
    for (GLuint uiShader : m_aShaders)
        glDeleteShader(uiShader);
    for (const auto& name : m_aNames)
        name.first(1, &name.second);
}

GLuint CGlObjects::Generate(FNames pGenerate, FDelete pDelete)
{
    GLuint uiName = 0;
    pGenerate(1, &uiName);
    m_aNames.emplace_back(pDelete, uiName);
    return uiName;
}

GLuint CGlObjects::Shader(GLenum eType, const std::string& source, std::string& error)
{
    const GLuint uiShader = glCreateShader(eType);
    m_aShaders.push_back(uiShader);
    const char* pText = source.c_str();
    glShaderSource(uiShader, 1, &pText, nullptr);
    glCompileShader(uiShader);
    GLint iCompiled = 0;
    glGetShaderiv(uiShader, GL_COMPILE_STATUS, &iCompiled);
    if (iCompiled)
        return uiShader;
    std::vector<char> acLog(8192, '\0');
    glGetShaderInfoLog(uiShader, static_cast<GLsizei>(acLog.size()), nullptr, acLog.data());
    error = std::string(eType == GL_VERTEX_SHADER ? "vertex" : "fragment") + " shader: " + acLog.data();
    return 0;
}

GLuint CGlObjects::Program(const std::string& vertexSource, const std::string& fragmentSource,
                           const std::vector<std::string>& aCaptured, std::string& error)
{
    const GLuint uiVertex = Shader(GL_VERTEX_SHADER, vertexSource, error);
    const GLuint uiFragment = uiVertex ? Shader(GL_FRAGMENT_SHADER, fragmentSource, error) : 0;
    if (!uiFragment)
        return 0;
    const GLuint uiProgram = glCreateProgram();
    m_aPrograms.push_back(uiProgram);
    glAttachShader(uiProgram, uiVertex);
    glAttachShader(uiProgram, uiFragment);
    glBindAttribLocation(uiProgram, 0, "zamPosition");
    std::vector<const char*> apCaptured;
    for (const std::string& name : aCaptured)
        apCaptured.push_back(name.c_str());
    if (!apCaptured.empty())
        glTransformFeedbackVaryings(uiProgram, static_cast<GLsizei>(apCaptured.size()), apCaptured.data(),
                                    GL_INTERLEAVED_ATTRIBS);
    glLinkProgram(uiProgram);
    GLint iLinked = 0;
    glGetProgramiv(uiProgram, GL_LINK_STATUS, &iLinked);
    if (iLinked)
        return uiProgram;
    std::vector<char> acLog(8192, '\0');
    glGetProgramInfoLog(uiProgram, static_cast<GLsizei>(acLog.size()), nullptr, acLog.data());
    error = std::string("link: ") + acLog.data();
    return 0;
}

} // namespace ZamDifferential
