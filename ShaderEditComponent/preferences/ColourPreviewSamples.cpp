#include "ColourPreviewSamples_p.h"

#include "ShaderEditComponent/highlighting/ShaderHighlightElements.h"

namespace
{
const char* const s_pGLSLES = R"(// Textured, lit fragment
#version 100
precision mediump float;
uniform sampler2D sTexture;
varying highp vec2 vTexCoord;
varying lowp vec3 vNormal;

void main()
{
    /* ambient plus diffuse */
    float fLight = max(dot(normalize(vNormal), vec3(0.0, 0.0, 1.0)), 0.25);
    vec4 Colour = texture2D(sTexture, vTexCoord) * fLight;
    gl_FragColor = vec4(Colour.rgb, undeclaredAlpha);
}
)";

const char* const s_pGLSL = R"(// Desktop fragment shader
#version 330 core
uniform sampler2D Albedo;
in vec2 TexCoord;
out vec4 FragColour;

void main()
{
    /* gamma to linear */
    vec3 Linear = pow(texture(Albedo, TexCoord).rgb, vec3(2.2));
    FragColour = vec4(Linear, 1.0);
}
)";

const char* const s_pHLSL = R"(// Pixel shader, shader model 3.0
#define TAPS 4
sampler2D Source : register(s0);
float4 Tint;

float4 main(float2 uv : TEXCOORD0) : COLOR0
{
    /* average the taps */
    float4 sum = 0;
    for (int i = 0; i < TAPS; ++i)
        sum += tex2D(Source, uv + float2(i * 0.01, 0));
    return saturate(sum / TAPS) * Tint;
}
)";

const char* const s_pOpenCL = R"(// Scales a buffer in place
#define FACTOR 2.5f

__kernel void scale(__global float4* data, const unsigned int count)
{
    size_t gid = get_global_id(0);
    /* guard the tail */
    if (gid < count)
        data[gid] = clamp(data[gid] * FACTOR, 0.0f, 1.0f);
    barrier(CLK_GLOBAL_MEM_FENCE);
}
)";

const char* const s_pEffect = R"(// A lit effect
[HEADER]
    VERSION         01.00.00.00
    DESCRIPTION     Preview of the effect colours
[/HEADER]

[TEXTURE]
    NAME            BaseMap
    PATH            base.pvr
    MINIFICATION    LINEAR
[/TEXTURE]

[VERTEXSHADER]
    NAME            LitVertex
    [GLSL_CODE]
        attribute highp vec4 inVertex;
        uniform highp mat4 MVPMatrix;
        void main() { gl_Position = MVPMatrix * inVertex; }
    [/GLSL_CODE]
[/VERTEXSHADER]

[EFFECT]
    NAME            Lit
    ATTRIBUTE       inVertex        POSITION
    UNIFORM         MVPMatrix       WORLDVIEWPROJECTION
    VERTEXSHADER    LitVertex
[/EFFECT]
)";
} // namespace

EShaderDocType PreviewTypeForElement(unsigned int uiElement)
{
    if (uiElement >= HighlightElement_ZFXCode && uiElement <= HighlightElement_ZFXComment)
        return DocType_ZFXGLSLES;
    if (uiElement >= HighlightElement_GLSLCode && uiElement <= HighlightElement_GLSLNumber)
        return DocType_GLSLFragment;
    if (uiElement >= HighlightElement_HLSLCode && uiElement <= HighlightElement_HLSLNumber)
        return DocType_HLSLFragment;
    if (uiElement >= HighlightElement_OpenCLCode && uiElement <= HighlightElement_OpenCLNumber)
        return DocType_OpenCLKernel;
    return DocType_GLSLESFragment;
}

QString PreviewSample(EShaderDocType eType)
{
    switch (eType)
    {
    case DocType_ZFXGLSLES:
    case DocType_ZFXGLSL:
        return QString::fromLatin1(s_pEffect);
    case DocType_GLSLVertex:
    case DocType_GLSLFragment:
        return QString::fromLatin1(s_pGLSL);
    case DocType_HLSLVertex:
    case DocType_HLSLFragment:
    case DocType_HLSLGeometry:
    case DocType_HLSLFX:
        return QString::fromLatin1(s_pHLSL);
    case DocType_OpenCLKernel:
        return QString::fromLatin1(s_pOpenCL);
    default:
        return QString::fromLatin1(s_pGLSLES);
    }
}

QString PreviewErrorWord()
{
    return QStringLiteral("undeclaredAlpha");
}
