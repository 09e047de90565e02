#pragma once

#include <QMetaType>

// Bit-valued document type; language groups are unions of these values.
enum EShaderDocType : unsigned int
{
    DocType_PlainText = 0,
    DocType_GLSLESVertex = 1,
    DocType_GLSLESFragment = 2,
    DocType_GLSLVertex = 4,
    DocType_GLSLFragment = 8,
    DocType_ZFXGLSLES = 16,
    DocType_ZFXGLSL = 32,
    DocType_HLSLVertex = 64,
    DocType_HLSLFragment = 128,
    DocType_HLSLGeometry = 256,
    DocType_HLSLFX = 512,
    DocType_OpenCLKernel = 1024,
    // Asks a panel to detect the type from the text and the extension.
    DocType_Detect = 0x800,
};

enum EShaderLanguageGroup : unsigned int
{
    LanguageGroup_PlainText = 0,
    LanguageGroup_GLSLES = DocType_GLSLESVertex | DocType_GLSLESFragment,
    LanguageGroup_GLSL = DocType_GLSLVertex | DocType_GLSLFragment,
    LanguageGroup_HLSL = DocType_HLSLVertex | DocType_HLSLFragment | DocType_HLSLGeometry | DocType_HLSLFX,
    LanguageGroup_OpenCL = DocType_OpenCLKernel,
};

Q_DECLARE_METATYPE(EShaderDocType)
