#include "UIString.h"

namespace
{
const char* const s_EnglishTexts[] = {
    "All supported formats",
    "All files",

    "Plain Text",
    "GLSL:ES Vertex Shader",
    "GLSL:ES Fragment Shader",
    "GLSL Vertex Shader",
    "GLSL Fragment Shader",
    "Zamrix Effect File (GLSL:ES)",
    "Zamrix Effect File (GLSL)",
    "HLSL Vertex Shader",
    "HLSL Fragment Shader",
    "HLSL Geometry Shader",
    "HLSL FX File",
    "OpenCL Kernel",

    "GLSL:ES",
    "GLSL",
    "HLSL",
    "OpenCL",

    "A plain text file.",
    "A blank vertex shader for use with OpenGL:ES 2.0 and OpenGL:ES 3.0.\n\nBackground compiling is enabled for this type.",
    "A blank fragment shader for use with OpenGL:ES 2.0 and OpenGL:ES 3.0.\n\nBackground compiling is enabled for this type.",
    "A blank vertex shader for use with 'desktop' OpenGL.",
    "A blank fragment shader for use with 'desktop' OpenGL.",
    "A basic template for a Zamrix Effect file for use with OpenGL:ES 2.0 and OpenGL:ES 3.0.\n\nBackground compiling is enabled for this type.",
    "A basic template for a Zamrix Effect file for use with 'desktop' OpenGL.",
    "A blank vertex shader for use with Microsoft DirectX.",
    "A blank fragment shader for use with Microsoft DirectX.",
    "A blank geometry shader for use with Microsoft DirectX.",
    "A blank effect for use with Microsoft DirectX.",
    "A blank OpenCL kernel for general-purpose computing.",

    "Compile succeeded.",
    "Compile failed.",
    "ERROR: Malformed profile file.",
    "ERROR: Could not create temporary file. Please check that the temporary directory is writable.",
    "ERROR: Failed to execute compiler. Please check the path is valid.",
    "ERROR: The compiler returned a critical error. Please check that the command line arguments are valid.",
    "ERROR: Failed to execute command line\n",

    "New File",
    "Failed to open file:",
    "Reason: %s",
    "Not enough memory to load file.",
    "Error while reading file:",
    "Failed to save file:",
    "Error while writing file:",

    "Matches: %1",
    "Find...",
    "Advanced...",
    "Find",
    "Replace",
    "Close",
    "Method:",
    "Textual",
    "Regular Expression",
    "Match Case",
    "Match Whole Word",
    "Replace With...",
    "Replace All",

    "Compiler:",
    "Compiler path:",
    "Browse...",
    "Location for temporary files:",
    "Compiler Details",
    "Compiler",
    "Version",
    "Supported options",
    "The compiler returned and unexpected result! Please check the executable.",
    "The compiler path is invalid. Please check that it is correct.",
    "Compiler Output",
    "Colour compiler output",
    "Error colour",
    "Warning colour",

    "Tab",
    "Treat tabs as spaces",
    "Tab size",
    "Cursor Matching",
    "Enable cursor matching",
    "Background colour",
    "Find Results",
    "Highlight find results",
};

static_assert(sizeof(s_EnglishTexts) / sizeof(s_EnglishTexts[0]) == UIS_Count,
              "every named index needs exactly one text");
} // namespace

int GetUIStringLanguageCount()
{
    return 1;
}

QString GetUIStringLanguageName(int iLanguage)
{
    return iLanguage == 0 ? QStringLiteral("English") : QString();
}

QString UIString(EUIString eIndex)
{
    return GetUIString(eIndex);
}

QString GetUIString(int iIndex)
{
    if (iIndex < 0 || iIndex >= UIS_Count)
        return QString();
    return QString::fromUtf8(s_EnglishTexts[iIndex]);
}
