#include "ShaderHighlightRules.h"

// The word lists are deliberately kept as they are, duplicates, fused entries
// ("\bunsigned\b\bhvec2\b" can never match) and mangled escapes ("\quad\b" is "q" + "uad",
// "\double2x2\b" starts with a digit class) included: every entry decides which words users
// see coloured, so tidying one up changes the product.

namespace
{
// GLSL:ES/Keyword
const char* const s_GLSLESKeyword[] = {
    R"(\battribute\b)", R"(\bconst\b)", R"(\buniform\b)", R"(\bvarying\b)", R"(\bbreak\b)",
    R"(\bcontinue\b)", R"(\bdo\b)", R"(\bfor\b)", R"(\bwhile\b)", R"(\bif\b)", R"(\belse\b)",
    R"(\bin\b)", R"(\bout\b)", R"(\binout\b)", R"(\btrue\b)", R"(\bfalse\b)", R"(\blowp\b)",
    R"(\bmediump\b)", R"(\bhighp\b)", R"(\bprecision\b)", R"(\binvariant\b)", R"(\bdiscard\b)",
    R"(\breturn\b)", R"(\bstruct\b)", R"(\basm\b)", R"(\bclass\b)", R"(\bunion\b)", R"(\benum\b)",
    R"(\btypedef\b)", R"(\btemplate\b)", R"(\bthis\b)", R"(\bpacked\b)", R"(\bgoto\b)",
    R"(\bswitch\b)", R"(\bdefault\b)", R"(\binline\b)", R"(\bnoinline\b)", R"(\bvolatile\b)",
    R"(\bpublic\b)", R"(\bstatic\b)", R"(\bextern\b)", R"(\bexternal\b)", R"(\binterface\b)",
    R"(\bflat\b)", R"(\bsuperp\b)", R"(\binput\b)", R"(\boutput\b)", R"(\bsizeof\b)", R"(\bcast\b)",
    R"(\bnamespace\b)", R"(\busing\b)", R"(\b#extension\b)", R"(\b#version\b)", R"(\b#pragma\b)",
    R"(\b#line\b)", R"(\b#ifdef\b)", R"(\b#endif\b)", R"(\b#else\b)", R"(\blayout\b)",
    R"(\bcentroid\b)", R"(\bflat\b)", R"(\bsmooth\b)", R"(\bcase\b)", R"(\battribute\b)",
    R"(\bvarying\b)", R"(\bcoherent\b)", R"(\bvolatile\b)", R"(\brestrict\b)", R"(\breadonly\b)",
    R"(\bwriteonly\b)", R"(\bresource\b)", R"(\batomic_uint\b)", R"(\bnoperspective\b)",
    R"(\bpatch\b)", R"(\bsample\b)", R"(\bsubroutine\b)", R"(\bcommon\b)", R"(\bpartition\b)",
    R"(\bactive\b)", R"(\basm\b)", R"(\bclass\b)", R"(\bunion\b)", R"(\benum\b)", R"(\btypedef\b)",
    R"(\btemplate\b)", R"(\bthis\b)", R"(\bpacked\b)", R"(\bgoto\b)", R"(\binline\b)",
    R"(\bnoinline\b)", R"(\bvolatile\b)", R"(\bpublic\b)", R"(\bstatic\b)", R"(\bextern\b)",
    R"(\bexternal\b)", R"(\binterface\b)", R"(\blong\b)", R"(\bshort\b)", R"(\bdouble\b)",
    R"(\bhalf\b)", R"(\bfixed\b)", R"(\bunsigned\b)", R"(\bsuperp\b)", R"(\binput\b)",
    R"(\boutput\b)", R"(\bhvec2\b)", R"(\bhvec3\b)", R"(\bhvec4\b)", R"(\bdvec2\b)", R"(\bdvec3\b)",
    R"(\bdvec4\b)", R"(\bfvec2\b)", R"(\bfvec3\b)", R"(\bfvec4\b)", R"(\bsampler3DRect\b)",
    R"(\bfilter\b)", R"(\bimage1D\b)", R"(\bimage2D\b)", R"(\bimage3D\b)", R"(\bimageCube\b)",
    R"(\biimage1D\b)", R"(\biimage2D\b)", R"(\biimage3D\b)", R"(\biimageCube\b)", R"(\buimage1D\b)",
    R"(\buimage2D\b)", R"(\buimage3D\b)", R"(\buimageCube\b)", R"(\bimage1DArray\b)",
    R"(\bimage2DArray\b)", R"(\biimage1DArray\b)", R"(\biimage2DArray\b)", R"(\buimage1DArray\b)",
    R"(\buimage2DArray\b)", R"(\bimage1DShadow\b)", R"(\bimage2DShadow\b)",
    R"(\bimage1DArrayShadow\b)", R"(\bimage2DArrayShadow\b)", R"(\bimageBuffer\b)",
    R"(\biimageBuffer\b)", R"(\buimageBuffer\b)", R"(\bsampler1D\b)", R"(\bsampler1DShadow\b)",
    R"(\bsampler1DArray\b)", R"(\bsampler1DArrayShadow\b)", R"(\bisampler1D\b)",
    R"(\bisampler1DArray\b)", R"(\busampler1D\b)", R"(\busampler1DArray\b)", R"(\bsampler2DRect\b)",
    R"(\bsampler2DRectShadow\b)", R"(\bisampler2DRect\b)", R"(\busampler2DRect\b)",
    R"(\bsamplerBuffer\b)", R"(\bisamplerBuffer\b)", R"(\busamplerBuffer\b)", R"(\bsampler2DMS\b)",
    R"(\bisampler2DMS\b)", R"(\busampler2DMS\b)", R"(\bsampler2DMSArray\b)",
    R"(\bisampler2DMSArray\b)", R"(\busampler2DMSArray\b)", R"(\bsizeof\b)", R"(\bcast\b)",
    R"(\bnamespace\b)", R"(\busing\b)",
};

// GLSL:ES/Built-in Type
const char* const s_GLSLESBuiltInType[] = {
    R"(\bfloat\b)", R"(\bint\b)", R"(\bvoid\b)", R"(\bbool\b)", R"(\bmat2\b)", R"(\bmat3\b)",
    R"(\bmat4\b)", R"(\bvec2\b)", R"(\bvec3\b)", R"(\bvec4\b)", R"(\bivec2\b)", R"(\bivec3\b)",
    R"(\bivec4\b)", R"(\bbvec2\b)", R"(\bbvec3\b)", R"(\bbvec4\b)", R"(\bsampler2D\b)",
    R"(\bsampler3D\b)", R"(\bsamplerCube\b)", R"(\blong\b)", R"(\bshort\b)", R"(\bdouble\b)",
    R"(\bhalf\b)", R"(\bfixed\b)", R"(\bunsigned\b\bhvec2\b)", R"(\bhvec3\b)", R"(\bhvec4\b)",
    R"(\bdvec2\b)", R"(\bdvec3\b)", R"(\bdevc4\b)", R"(\bfvec2\b)", R"(\bfvec3\b)", R"(\bfvec4\b)",
    R"(\bsampler1D\b)", R"(\bsampler1DShadow\b)", R"(\bsampler2DShadow\b)", R"(\bsampler2DRect\b)",
    R"(\bsampler3DRect\b)", R"(\bsampler2DRectShadow\b)", R"(\bmat2x2\b)", R"(\bmat3x2\b)",
    R"(\bmat4x2\b)", R"(\bmat2x3\b)", R"(\bmat3x3\b)", R"(\bmat4x3\b)", R"(\bmat2x4\b)",
    R"(\bmat3x4\b)", R"(\bmat4x4\b)", R"(\bsamplerCubeShadow\b)", R"(\bsampler2DArray\b)",
    R"(\bsampler2DArrayShadow\b)", R"(\bisampler2D\b)", R"(\bisampler3D\b)", R"(\bisamplerCube\b)",
    R"(\bisampler2DArray\b)", R"(\busampler2D\b)", R"(\busampler3D\b)", R"(\busamplerCube\b)",
    R"(\busampler2DArray\b)",
};

// GLSL:ES/Built-in Function
const char* const s_GLSLESBuiltInFunction[] = {
    R"(\bgl_Position\b)", R"(\bgl_PointSize\b)", R"(\bgl_FragColor\b)", R"(\bgl_FragData\b)",
    R"(\bgl_PointCoord\b)", R"(\bgl_FragCoord\b)", R"(\bgl_FrontFacing\b)",
    R"(\bgl_MaxVertexAttribs\b)", R"(\bgl_MaxVertexUniformVectors\b)",
    R"(\bgl_MaxVaryingVectors\b)", R"(\bgl_MaxVertexTextureImageUnits\b)",
    R"(\bgl_MaxCombinedTextureImageUnits\b)", R"(\bgl_MaxTextureImageUnits\b)",
    R"(\bgl_MaxFragmentUniformVectors\b)", R"(\bgl_MaxDrawBuffers\b)",
    R"(\bgl_MaxVertexUniformVectors\b)", R"(\bgl_MaxVaryingVectors\b)",
    R"(\bgl_MaxFragmentUniformVectors\b)", R"(\bgl_DepthRange\b)", R"(\bmain\b)", R"(\bradians\b)",
    R"(\bdegrees\b)", R"(\bsin\b)", R"(\bcos\b)", R"(\btan\b)", R"(\basin\b)", R"(\bacos\b)",
    R"(\batan\b)", R"(\bpow\b)", R"(\bexp\b)", R"(\blog\b)", R"(\bexp2\b)", R"(\blog2\b)",
    R"(\bsqrt\b)", R"(\binversesqrt\b)", R"(\babs\b)", R"(\bsign\b)", R"(\bfloor\b)", R"(\bceil\b)",
    R"(\bfract\b)", R"(\bmod\b)", R"(\bmin\b)", R"(\bmax\b)", R"(\bclamp\b)", R"(\bmix\b)",
    R"(\bstep\b)", R"(\bsmoothstep\b)", R"(\blength\b)", R"(\bdistance\b)", R"(\bdot\b)",
    R"(\bcross\b)", R"(\bnormalize\b)", R"(\bfaceforward\b)", R"(\breflect\b)", R"(\brefract\b)",
    R"(\bmatrixCompMult\b)", R"(\blessThan\b)", R"(\blessThanEqual\b)", R"(\bgreaterThan\b)",
    R"(\bgreaterThanEqual\b)", R"(\bequal\b)", R"(\bnotEqual\b)", R"(\bany\b)", R"(\ball\b)",
    R"(\bnot\b)", R"(\btexture2D\b)", R"(\btexture2DProj\b)", R"(\btexture2DLod\b)",
    R"(\btexture2DProjLod\b)", R"(\btextureCube\b)", R"(\btextureCubeLod\b)", R"(\bdFdx\b)",
    R"(\bdFdy\b)", R"(\bfwidth\b)",
};

// GLSL/Keyword
const char* const s_GLSLKeyword[] = {
    R"(\battribute\b)", R"(\bconst\b)", R"(\buniform\b)", R"(\bvarying\b)", R"(\bcoherent\b)",
    R"(\bvolatile\b)", R"(\brestrict\b)", R"(\breadonly\b)", R"(\bwriteonly\b)",
    R"(\batomic_uint\b)", R"(\blayout\b)", R"(\bcentroid\b)", R"(\bflat\b)", R"(\bsmooth\b)",
    R"(\bnoperspective\b)", R"(\bpatch\b)", R"(\bsample\b)", R"(\bbreak\b)", R"(\bcontinue\b)",
    R"(\bdo\b)", R"(\bfor\b)", R"(\bwhile\b)", R"(\bswitch\b)", R"(\bcase\b)", R"(\bdefault\b)",
    R"(\bif\b)", R"(\belse\b)", R"(\bsubroutine\b)", R"(\bin\b)", R"(\bout\b)", R"(\binout\b)",
    R"(\btrue\b)", R"(\bfalse\b)", R"(\binvariant\b)", R"(\bdiscard\b)", R"(\breturn\b)",
    R"(\blowp\b)", R"(\bmediump\b)", R"(\bhighp\b)", R"(\bprecision\b)", R"(\bstruct\b)",
    R"(\bcommon\b)", R"(\bpartition\b)", R"(\bactive\b)", R"(\basm\b)", R"(\bclass\b)",
    R"(\bunion\b)", R"(\benum\b)", R"(\btypedef\b)", R"(\btemplate\b)", R"(\bthis\b)",
    R"(\bpacked,\b\bresource\b)", R"(\bgoto\b)", R"(\binline\b)", R"(\bnoinline\b)",
    R"(\bpublic\b)", R"(\bstatic\b)", R"(\bextern\b)", R"(\bexternal\b)", R"(\binterface\b)",
    R"(\bsuperp\b)", R"(\binput\b)", R"(\boutput\b)", R"(\bfilter\b)", R"(\bsizeof\b)",
    R"(\bcast\b)", R"(\bnamespace\b)", R"(\busing\b)", R"(\brow_major\b)",
};

// GLSL/Built-in Type
const char* const s_GLSLBuiltInType[] = {
    R"(\bfloat\b)", R"(\bint\b)", R"(\bvoid\b)", R"(\bbool\b)", R"(\bmat2\b)", R"(\bmat3\b)",
    R"(\bmat4\b)", R"(\bvec2\b)", R"(\bvec3\b)", R"(\bvec4\b)", R"(\bivec2\b)", R"(\bivec3\b)",
    R"(\bivec4\b)", R"(\bbvec2\b)", R"(\bbvec3\b)", R"(\bbvec4\b)", R"(\bsampler2D\b)",
    R"(\bsampler3D\b)", R"(\bsamplerCube\b)", R"(\blong\b)", R"(\bshort\b)", R"(\bdouble\b)",
    R"(\bhalf\b)", R"(\bfixed\b)", R"(\bhvec2\b)", R"(\bhvec3\b)", R"(\bhvec4\b)", R"(\bdvec2\b)",
    R"(\bdvec3\b)", R"(\bdevc4\b)", R"(\bfvec2\b)", R"(\bfvec3\b)", R"(\bfvec4\b)",
    R"(\bsampler1D\b)", R"(\bsampler1DShadow\b)", R"(\bsampler2DShadow\b)", R"(\bsampler2DRect\b)",
    R"(\bsampler3DRect\b)", R"(\bsampler2DRectShadow\b)", R"(\bmat2x2\b)", R"(\bmat2x3\b)",
    R"(\bmat2x4\b)", R"(\bmat3x2\b)", R"(\bmat3x3\b)", R"(\bmat3x4\b)", R"(\bmat4x2\b)",
    R"(\bmat4x3\b)", R"(\bmat4x4\b)",
};

// GLSL/Built-in Function
const char* const s_GLSLBuiltInFunction[] = {
    R"(\bgl_Position\b)", R"(\bgl_PointSize\b)", R"(\bgl_ClipVertex\b)", R"(\bgl_FragColor\b)",
    R"(\bgl_FragData\b)", R"(\bgl_FragDepth\b)", R"(\bglFragCoord\b)", R"(\bgl_FrontFacing\b)",
    R"(\bgl_Color\b)", R"(\bgl_SecondaryColor\b)", R"(\bgl_Normal\b)", R"(\bgl_Vertex\b)",
    R"(\bgl_FogCoord\b)", R"(\bgl_MultiTexCoord0\b)", R"(\bgl_MultiTexCoord1\b)",
    R"(\bgl_MultiTexCoord2\b)", R"(\bgl_MultiTexCoord3\b)", R"(\bgl_MultiTexCoord4\b)",
    R"(\bgl_MultiTexCoord5\b)", R"(\bgl_MultiTexCoord6\b)", R"(\bgl_MultiTexCoord7\b)",
    R"(\bgl_MaxLights\b)", R"(\bgl_MaxClipPlanes\b)", R"(\bgl_MaxTextureUnits\b)",
    R"(\bgl_MaxTextureCoords\b)", R"(\bgl_MaxVertexAttribs\b)",
    R"(\bgl_MaxVertexUniformComponents\b)", R"(\bgl_MaxVaryingFloats\b)",
    R"(\bgl_MaxVertexTextureImageUnits\b)", R"(\bgl_MaxCombinedTextureImageUnits\b)",
    R"(\bgl_MaxTextureImageUnits\b)", R"(\bgl_MaxFragmentUniformComponents\b)",
    R"(\bgl_MaxDrawBuffers\b)", R"(\bgl_MaxVertexUniformVectors\b)", R"(\bgl_MaxVaryingVectors\b)",
    R"(\bgl_MaxFragmentUniformVectors\b)", R"(\bgl_ModelViewMatrix\b)",
    R"(\bgl_ProjectionMatrix\b)", R"(\bgl_ModelViewProjectionMatrix\b)", R"(\bgl_TextureMatrix\b)",
    R"(\bgl_NormalMatrix\b)", R"(\bgl_ModelViewMatrixInverse\b)",
    R"(\bgl_ProjectionMatrixInverse\b)", R"(\bgl_ModelViewProjectionMatrixInverse\b)",
    R"(\bgl_TextureMatrixInverse\b)", R"(\bgl_ModelViewMatrixTranspose\b)",
    R"(\bgl_ProjectionMatrixTranspose\b)", R"(\bgl_ModelViewProjectionMatrixTranspose\b)",
    R"(\bgl_TextureMatrixTranspose\b)", R"(\bgl_ModelViewMatrixInverseTranspose\b)",
    R"(\bgl_ProjectionMatrixInverseTranspose\b)", R"(\bgl_ModelViewMatrixInverseTranspose\b)",
    R"(\bgl_TextureMatrixInverseTranspose\b)", R"(\bgl_NormalScale\b)", R"(\bgl_DepthRange\b)",
    R"(\bgl_ClipPlane\b)", R"(\bgl_Point\b)", R"(\bgl_FrontMaterial\b)", R"(\bgl_BackMaterial\b)",
    R"(\bgl_LightSource\b)", R"(\bgl_LightModel\b)", R"(\bgl_FrontLightModelProduct\b)",
    R"(\bgl_BackLightModelProduct\b)", R"(\bgl_FrontLightProduct\b)", R"(\bgl_BackLightProduct\b)",
    R"(\bgl_TextureEnvColor\b)", R"(\bgl_EyePlaneS\b)", R"(\bgl_EyePlaneT\b)", R"(\bglEyePlaneR\b)",
    R"(\bglEyePlaneQ\b)", R"(\bgl_ObjectPlaneS\b)", R"(\bgl_ObjectPlaneT\b)",
    R"(\bgl_ObjectPlaneR\b)", R"(\bgl_ObjectPlaneQ\b)", R"(\bgl_Fog\b)", R"(\bgl_FrontColor\b)",
    R"(\bgl_BackColor\b)", R"(\bgl_FrontSecondaryColor\b)", R"(\bgl_BackSecondaryColor\b)",
    R"(\bgl_TexCoord\b)", R"(\bgl_FogFragCoord\b)", R"(\bgl_Color\b)", R"(\bgl_SecondaryColor\b)",
    R"(\bmain\b)", R"(\bradians\b)", R"(\bdegrees\b)", R"(\bsin\b)", R"(\bcos\b)", R"(\btan\b)",
    R"(\basin\b)", R"(\bacos\b)", R"(\batan\b)", R"(\bpow\b)", R"(\bexp\b)", R"(\blog\b)",
    R"(\bexp2\b)", R"(\blog2\b)", R"(\bsqrt\b)", R"(\binversesqrt\b)", R"(\babs\b)", R"(\bsign\b)",
    R"(\bfloor\b)", R"(\bceil\b)", R"(\bfract\b)", R"(\bmod\b)", R"(\bmin\b)", R"(\bmax\b)",
    R"(\bclamp\b)", R"(\bmix\b)", R"(\bstep\b)", R"(\bsmoothstep\b)", R"(\blength\b)",
    R"(\bdistance\b)", R"(\bdot\b)", R"(\bcross\b)", R"(\bnormalize\b)", R"(\bftransform\b)",
    R"(\bfaceforward\b)", R"(\breflect\b)", R"(\brefract\b)", R"(\bmatrixCompMult\b)",
    R"(\bouterProduct\b)", R"(\btranspose\b)", R"(\blessThan\b)", R"(\blessThanEqual\b)",
    R"(\bgreaterThan\b)", R"(\bgreaterThanEqual\b)", R"(\bequal\b)", R"(\bnotEqual\b)",
    R"(\bany\b)", R"(\ball\b)", R"(\bnot\b)", R"(\btexture1D\b)", R"(\btexture1DProj\b)",
    R"(\btexture1DLod\b)", R"(\btexture1DProjLod\b)", R"(\btexture2D\b)", R"(\btexture2DProj\b)",
    R"(\btexture2DLod\b)", R"(\btexture2DProjLod\b)", R"(\btexture3D\b)", R"(\btexture3DProj\b)",
    R"(\btexture3DLod\b)", R"(\btexture3DProjLod\b)", R"(\btextureCube\b)", R"(\btextureCubeLod\b)",
    R"(\bshadow1D\b)", R"(\bshadow2D\b)", R"(\bshadow1DProj\b)", R"(\bshadow2DProj\b)",
    R"(\bshadow1DLod\b)", R"(\bshadow2DLod\b)", R"(\bshadow1DProjLod\b)", R"(\bshadow2DProjLod\b)",
    R"(\bdFdx\b)", R"(\bdFdy\b)", R"(\bfwidth\b)", R"(\bnoise1\b)", R"(\bnoise2\b)",
    R"(\bnoise3\b)", R"(\bnoise4\b)",
};

// HLSL/Keyword
const char* const s_HLSLKeyword[] = {
    R"(\bblendstate\b)", R"(\bbreak\b)", R"(\bcbuffer\b)", R"(\bcolumn_major\b)", R"(\bcompile\b)",
    R"(\bconst\b)", R"(\bcontinue\b)", R"(\bdepthstencilstate\b)", R"(\bdepthstencilview\b)",
    R"(\bdiscard\b)", R"(\bdo\b)", R"(\belse\b)", R"(\bextern\b)", R"(\bfalse\b)", R"(\bfor\b)",
    R"(\bgeometryshader\b)", R"(\bif\b)", R"(\bin\b)", R"(\binline\b)", R"(\binout\b)",
    R"(\bnamespace\b)", R"(\bnointerpolation\b\bout\b)", R"(\bpass\b)", R"(\bpixelshader\b)",
    R"(\brasterizerstate\b)", R"(\brendertargetview\b)", R"(\breturn\b)", R"(\bregister\b)",
    R"(\brow_major\b)", R"(\bshared\b)", R"(\bstateblock\b)", R"(\bstateblock_state\b)",
    R"(\bstatic\b)", R"(\bstop\b)", R"(\bstruct\b)", R"(\bswitch\b)", R"(\btbuffer\b)",
    R"(\btechnique\b)", R"(\btechnique10\b)", R"(\btrue\b)", R"(\btypedef\b)", R"(\buniform\b)",
    R"(\bvertexshader\b)", R"(\bvolatile\b)", R"(\bwhile\b)", R"(\bauto\b)", R"(\bcase\b)",
    R"(\bcatch\b)", R"(\bchar\b)", R"(\bclass\b)", R"(\bconst_cast\b)", R"(\bdefault\b)",
    R"(\bdelete\b)", R"(\bdynamic_cast\b)", R"(\benum\b)", R"(\bexplicit\b)", R"(\bfriend\b)",
    R"(\bgoto\b)", R"(\blong\b)", R"(\bmutable\b)", R"(\bnew\b)", R"(\boperator\b)",
    R"(\bprivate\b)", R"(\bprotected\b)", R"(\bpublic\b)", R"(\breinterpret_cast\b)",
    R"(\bshort\b)", R"(\bsigned\b)", R"(\bsizeof\b)", R"(\bstatic_cast\b)", R"(\btemplate\b)",
    R"(\bthis\b)", R"(\bthrow\b)", R"(\btry\b)", R"(\btypename\b)", R"(\bunion\b)",
    R"(\bunsigned\b)", R"(\busing\b)", R"(\bvirtual\b)",
};

// HLSL/Built-in Type
const char* const s_HLSLBuiltInType[] = {
    R"(\bvoid\b)", R"(\bbool\b)", R"(\bbool1\b)", R"(\bbool2\b)", R"(\bbool3\b)", R"(\bbool4\b)",
    R"(\bbool1x1\b)", R"(\bbool1x2\b)", R"(\bbool1x3\b)", R"(\bbool1x4\b)", R"(\bbool2x1\b)",
    R"(\bbool2x2\b)", R"(\bbool2x3\b)", R"(\bbool2x4\b)", R"(\bbool3x1\b)", R"(\bbool3x2\b)",
    R"(\bbool3x3\b)", R"(\bbool3x4\b)", R"(\bbool4x1\b)", R"(\bbool4x2\b)", R"(\bbool4x3\b)",
    R"(\bbool4x4\b)", R"(\bint\b)", R"(\bint1\b)", R"(\bint2\b)", R"(\bint3\b)", R"(\bint4\b)",
    R"(\bint1x1\b)", R"(\bint1x2\b)", R"(\bint1x3\b)", R"(\bint1x4\b)", R"(\bint2x1\b)",
    R"(\bint2x2\b)", R"(\bint2x3\b)", R"(\bint2x4\b)", R"(\bint3x1\b)", R"(\bint3x2\b)",
    R"(\bint3x3\b)", R"(\bint3x4\b)", R"(\bint4x1\b)", R"(\bint4x2\b)", R"(\bint4x3\b)",
    R"(\bint4x4\b)", R"(\buint\b)", R"(\buint1\b)", R"(\buint2\b)", R"(\buint3\b)", R"(\buint4\b)",
    R"(\buint1x1\b)", R"(\buint1x2\b)", R"(\buint1x3\b)", R"(\buint1x4\b)", R"(\buint2x1\b)",
    R"(\buint2x2\b)", R"(\buint2x3\b)", R"(\buint2x4\b)", R"(\buint3x1\b)", R"(\buint3x2\b)",
    R"(\buint3x3\b)", R"(\buint3x4\b)", R"(\buint4x1\b)", R"(\buint4x2\b)", R"(\buint4x3\b)",
    R"(\buint4x4\b)", R"(\bhalf\b)", R"(\bhalf1\b)", R"(\bhalf2\b)", R"(\bhalf3\b)", R"(\bhalf4\b)",
    R"(\bhalf1x1\b)", R"(\bhalf1x2\b)", R"(\bhalf1x3\b)", R"(\bhalf1x4\b)", R"(\bhalf2x1\b)",
    R"(\bhalf2x2\b)", R"(\bhalf2x3\b)", R"(\bhalf2x4\b)", R"(\bhalf3x1\b)", R"(\bhalf3x2\b)",
    R"(\bhalf3x3\b)", R"(\bhalf3x4\b)", R"(\bhalf4x1\b)", R"(\bhalf4x2\b)", R"(\bhalf4x3\b)",
    R"(\bhalf4x4\b)", R"(\bfloat\b)", R"(\bfloat1\b)", R"(\bfloat2\b)", R"(\bfloat3\b)",
    R"(\bfloat4\b)", R"(\bfloat1x1\b)", R"(\bfloat1x2\b)", R"(\bfloat1x3\b)", R"(\bfloat1x4\b)",
    R"(\bfloat2x1\b)", R"(\bfloat2x2\b)", R"(\bfloat2x3\b)", R"(\bfloat2x4\b)", R"(\bfloat3x1\b)",
    R"(\bfloat3x2\b)", R"(\bfloat3x3\b)", R"(\bfloat3x4\b)", R"(\bfloat4x1\b)", R"(\bfloat4x2\b)",
    R"(\bfloat4x3\b)", R"(\bfloat4x4\b)", R"(\bdouble\b)", R"(\bdouble1\b)", R"(\bdouble2\b)",
    R"(\bdouble3\b)", R"(\bdouble4\b)", R"(\bdouble1x1\b)", R"(\bdouble1x2\b)", R"(\bdouble1x3\b)",
    R"(\bdouble1x4\b)", R"(\bdouble2x1\b)", R"(\bdouble2x2\b)", R"(\bdouble2x3\b)",
    R"(\bdouble2x4\b)", R"(\bdouble3x1\b)", R"(\bdouble3x2\b)", R"(\bdouble3x3\b)",
    R"(\bdouble3x4\b)", R"(\bdouble4x1\b)", R"(\bdouble4x2\b)", R"(\bdouble4x3\b)",
    R"(\bdouble4x4\b)", R"(\bvector\b)", R"(\bmatrix\b)", R"(\bsampler\b)", R"(\bsampler1d\b)",
    R"(\bsampler2d\b)", R"(\bsampler3d\b)", R"(\bsamplercube\b)", R"(\bsampler_state\b)",
    R"(\bsamplerstate\b)", R"(\bsamplercomparisonstate\b)", R"(\btexture\b)", R"(\btexture1d\b)",
    R"(\btexture1darray\b)", R"(\btexture2d\b)", R"(\btexture2darray\b)", R"(\btexture2dms\b)",
    R"(\btexture2dmsarray\b)", R"(\btexture3d\b)", R"(\btexturecube\b)", R"(\btexturecubearray\b)",
    R"(\bbuffer\b)", R"(\bstring\b)", R"(\bsnorm\b)", R"(\bunorm\b)", R"(\bvs_4_0\b)",
    R"(\bps_4_0\b)", R"(\bvs_2_0\b)", R"(\bps_2_0\b)",
};

// HLSL/Built-in Function
const char* const s_HLSLBuiltInFunction[] = {
    R"(\babs\b)", R"(\bacos\b)", R"(\ball\b)", R"(\bany\b)", R"(\basfloat\b)", R"(\basin\b)",
    R"(\basint\b)", R"(\basuint\b)", R"(\batan\b)", R"(\batan2\b)", R"(\bceil\b)", R"(\bclamp\b)",
    R"(\bclip\b)", R"(\bcos\b)", R"(\bcosh\b)", R"(\bcross\b\bD3DCOLORtoUBYTE\b)", R"(\bddx\b)",
    R"(\bddy\b)", R"(\bdegrees\b)", R"(\bdeterminant\b)", R"(\bdistance\b)", R"(\bdot\b)",
    R"(\bexp\b)", R"(\bexp2\b)", R"(\bfaceforward\b)", R"(\bfloor\b)", R"(\bfmod\b)", R"(\bfrac\b)",
    R"(\bfrexp\b)", R"(\bfwidth\b)", R"(\bGetRenderTargetSamplePosition\b)",
    R"(\bGetRenderTargetSampleCount\b)", R"(\bCompileShader\b)", R"(\bSetBlendState\b)",
    R"(\bSetDepthStencilState\b)", R"(\bSetRasterizerState\b)", R"(\bShaderFunction\b)",
    R"(\bSetVertexShader\b)", R"(\bSetGeometryShader\b)", R"(\bSetPixelShader\b)",
    R"(\bisfinite\b)", R"(\bisinf\b)", R"(\bisnan\b)", R"(\bldexp\b)", R"(\blength\b)",
    R"(\blerp\b)", R"(\blit\b)", R"(\blog\b)", R"(\blog2\b)", R"(\blog10\b)", R"(\bmax\b)",
    R"(\bmin\b)", R"(\bmodf\b)", R"(\bmul\b)", R"(\bnoise\b)", R"(\bnormalize\b)", R"(\bpow\b)",
    R"(\bradians\b)", R"(\breflect\b)", R"(\brefract\b)", R"(\bround\b)", R"(\brsqrt\b)",
    R"(\bsaturate\b)", R"(\bsign\b)", R"(\bsin\b)", R"(\bsincos\b)", R"(\bsinh\b)",
    R"(\bsmoothstep\b)", R"(\bsqrt\b)", R"(\bstep\b)", R"(\btan\b)", R"(\btanh\b)", R"(\btex1D\b)",
    R"(\btex1Dbias\b)", R"(\btex1Dlod\b)", R"(\btex1Dgrad\b)", R"(\btex1Dproj\b)", R"(\btex2D\b)",
    R"(\btex2Dbias\b)", R"(\btex2Dlod\b)", R"(\btex2Dgrad\b)", R"(\btex2Dproj\b)", R"(\btex3D\b)",
    R"(\btex3Dbias\b)", R"(\btex3Dlod\b)", R"(\btex3Dgrad\b)", R"(\btex3Dproj\b)", R"(\btexCUBE\b)",
    R"(\btexCUBEbias\b)", R"(\btexCUBElod\b)", R"(\btexCUBEgrad\b)", R"(\btexCUBEproj\b)",
    R"(\btranspose\b)", R"(\btrunc\b)", R"(\bsampler2D\b)",
};

// ZFX/Keyword
const char* const s_ZFXKeyword[] = {
    R"(\bVERSION\b)", R"(\bDESCRIPTION\b)", R"(\bCOPYRIGHT\b)", R"(\bFILE\b)", R"(\bNAME\b)",
    R"(\bUNIFORM\b)", R"(\bATTRIBUTE\b)", R"(\bVERTEXSHADER\b)", R"(\bFRAGMENTSHADER\b)",
    R"(\bTEXTURE[^\[\]]\b)", R"(\bPATH\b)", R"(\bRESOLUTION\b)", R"(\bSURFACETYPE\b)",
    R"(\bFILTER\b)", R"(\bWRAP\b)", R"(\bTARGET\b)", R"(\bSOURCE\b)", R"(\bVIEW\b)",
    R"(\bMINIFICATION\b)", R"(\bMAGNIFICATION\b)", R"(\bMIPMAP\b)", R"(\bWRAP_S\b)",
    R"(\bWRAP_T\b)", R"(\bWRAP_R\b)", R"(\bCAMERA\b)",
};

// ZFX/Tag
const char* const s_ZFXTag[] = {
    R"(^\s*\[/*HEADER\]\s*$)", R"(^\s*\[/*TEXTURES\]\s*$)", R"(^\s*\[/*VERTEXSHADER\]\s*$)",
    R"(^\s*\[/*FRAGMENTSHADER\]\s*$)", R"(^\s*\[/*EFFECT\]\s*$)", R"(^\s*\[/*GLSL_CODE\]\s*$)",
    R"(^\s*\[/*ANNOTATION\]\s*$)", R"(^\s*\[/*TEXTURE\]\s*$)", R"(^\s*\[/*TARGET\]\s*$)",
};

// ZFX/Value
const char* const s_ZFXValue[] = {
    R"(\bLINEAR\b)", R"(\bNEAREST\b)", R"(\bNONE\b)", R"(\bCLAMP\b)", R"(\bREPEAT\b)",
    R"(\bRGBA8888\b)", R"(\bRGBA4444\b)", R"(\bRGB888\b)", R"(\bRGB565\b)", R"(\bINTENSITY8\b)",
    R"(\bDEPTH24\b)", R"(\bDEPTH16\b)", R"(\bDEPTH8\b)", R"(\bCOLOR[0-9]+\b)", R"(\bDEPTH\b)",
    R"(\bZFX_CURRENTVIEW\b)",
};

// OpenCL/Keyword
const char* const s_OpenCLKeyword[] = {
    R"(\bauto\b)", R"(\bbreak\b)", R"(\bcase\b)", R"(\bchar\b)", R"(\bconst\b)", R"(\bcontinue\b)",
    R"(\bdefault\b)", R"(\bdo\b)", R"(\bdouble\b)", R"(\belse\b)", R"(\benum\b)", R"(\bextern\b)",
    R"(\bfloat\b)", R"(\bfor\b)", R"(\bgoto\b)", R"(\bif\b)", R"(\bint\b)", R"(\blong\b)",
    R"(\bregister\b)", R"(\breturn\b)", R"(\bshort\b)", R"(\bsigned\b)", R"(\bsizeof\b)",
    R"(\bstatic\b)", R"(\bstruct\b)", R"(\bswitch\b)", R"(\btypedef\b)", R"(\bunion\b)",
    R"(\bunsigned\b)", R"(\bvoid\b)", R"(\bvolatile\b)", R"(\bwhile\b)", R"(\b_Bool\b)",
    R"(\b_Complex\b)", R"(\b_Imaginary\b)", R"(\binline\b)", R"(\b__global\b)", R"(\bglobal\b)",
    R"(\b__local\b)", R"(\blocal\b)", R"(\b__constant\b)", R"(\bconstant\b)", R"(\b__private\b)",
    R"(\bprivate\b)", R"(\b__kernel\b)", R"(\bkernel\b)", R"(\b__read_only\b)", R"(\bread_only\b)",
    R"(\b__write_only\b)", R"(\bwrite_only\b)", R"(\b__read_write\b)", R"(\bread_write\b)",
    R"(\b__attribute__\b)", R"(\bwork_group_size_hint\b)", R"(\breqd_work_group_size\b)",
};

// OpenCL/Built-in Type
const char* const s_OpenCLBuiltInType[] = {
    R"(\bbool\b)", R"(\bunsigned\b)", R"(\bvoid\b)", R"(\bchar\b)", R"(\buchar\b)", R"(\bshort\b)",
    R"(\bushort\b)", R"(\bint\b)", R"(\buint\b)", R"(\blong\b)", R"(\bulong\b)", R"(\bfloat\b)",
    R"(\bhalf\b)", R"(\bsize_t\b)", R"(\bptrdiff_t\b)", R"(\bintptr_t\b)", R"(\buintptr_t\b)",
    R"(\bfloat2\b)", R"(\bchar2\b)", R"(\buchar2\b)", R"(\bshort2\b)", R"(\bushort2\b)",
    R"(\bint2\b)", R"(\buint2\b)", R"(\blong2\b)", R"(\bulong2\b)", R"(\bfloat3\b)", R"(\bchar3\b)",
    R"(\buchar3\b)", R"(\bshort3\b)", R"(\bushort3\b)", R"(\bint3\b)", R"(\buint3\b)",
    R"(\blong3\b)", R"(\bulong3\b)", R"(\bfloat4\b)", R"(\bchar4\b)", R"(\buchar4\b)",
    R"(\bshort4\b)", R"(\bushort4\b)", R"(\bint4\b)", R"(\buint4\b)", R"(\blong4\b)",
    R"(\bulong4\b)", R"(\bfloat8\b)", R"(\bchar8\b)", R"(\buchar8\b)", R"(\bshort8\b)",
    R"(\bushort8\b)", R"(\bint8\b)", R"(\buint8\b)", R"(\blong8\b)", R"(\bulong8\b)",
    R"(\bfloat16\b)", R"(\bchar16\b)", R"(\buchar16\b)", R"(\bshort16\b)", R"(\bushort16\b)",
    R"(\bint16\b)", R"(\buint16\b)", R"(\blong16\b)", R"(\bulong16\b)", R"(\bimage2d_t\b)",
    R"(\bimage3d_t\b)", R"(\bsampler_t\b)", R"(\bevent_t\b)", R"(\quad\b)", R"(\complex\b)",
    R"(\imaginary\b)", R"(\bool2\b)", R"(\half2\b)", R"(\quad2\b)", R"(\bool3\b)", R"(\half3\b)",
    R"(\quad3\b)", R"(\bool4\b)", R"(\half4\b)", R"(\quad4\b)", R"(\bool8\b)", R"(\half8\b)",
    R"(\quad8\b)", R"(\bool16\b)", R"(\half16\b)", R"(\quad16\b)", R"(\float2x2\b)",
    R"(\float2x3\b)", R"(\float2x4\b)", R"(\float2x8\b)", R"(\float2x16\b)", R"(\float3x2\b)",
    R"(\float3x3\b)", R"(\float3x4\b)", R"(\float3x8\b)", R"(\float3x16\b)", R"(\float4x2\b)",
    R"(\float4x3\b)", R"(\float4x4\b)", R"(\float4x8\b)", R"(\float4x16\b)", R"(\float8x2\b)",
    R"(\float8x3\b)", R"(\float8x4\b)", R"(\float8x8\b)", R"(\float8x16\b)", R"(\float16x2\b)",
    R"(\float16x3\b)", R"(\float16x4\b)", R"(\float16x8\b)", R"(\float16x16\b)", R"(\double2x2\b)",
    R"(\double2x3\b)", R"(\double2x4\b)", R"(\double2x8\b)", R"(\double2x16\b)", R"(\double3x2\b)",
    R"(\double3x3\b)", R"(\double3x4\b)", R"(\double3x8\b)", R"(\double3x16\b)", R"(\double4x2\b)",
    R"(\double4x3\b)", R"(\double4x4\b)", R"(\double4x8\b)", R"(\double4x16\b)", R"(\double8x2\b)",
    R"(\double8x3\b)", R"(\double8x4\b)", R"(\double8x8\b)", R"(\double8x16\b)", R"(\double16x2\b)",
    R"(\double16x3\b)", R"(\double16x4\b)", R"(\double16x8\b)", R"(\double16x16\b)",
};

// OpenCL/Built-in Function
const char* const s_OpenCLBuiltInFunction[] = {
    R"(\bas_\b)", R"(\bget_work_dim\b)", R"(\bget_global_size\b)", R"(\bget_global_id\b)",
    R"(\bget_local_size\b)", R"(\bget_local_id\b)", R"(\bget_num_groups\b)", R"(\bget_group_id\b)",
    R"(\bget_global_offset\b)", R"(\bacos\b)", R"(\bacosh\b)", R"(\bacospi\b)", R"(\basin\b)",
    R"(\basinh\b)", R"(\basinpi\b)", R"(\batan\b)", R"(\batan2\b)", R"(\batanh\b)", R"(\batanpi\b)",
    R"(\batan2pi\b)", R"(\bcbrt\b)", R"(\bceil\b)", R"(\bcopysign\b)", R"(\bcos\b)", R"(\bcosh\b)",
    R"(\bcospi\b)", R"(\berfc\b)", R"(\berf\b)", R"(\bexp\b)", R"(\bexp2\b)", R"(\bexp10\b)",
    R"(\bexpm1\b)", R"(\bfabs\b)", R"(\bfdim\b)", R"(\bfloor\b)", R"(\bfma\b)", R"(\bfmax\b)",
    R"(\bfmin\b)", R"(\bfmod\b)", R"(\bfract\b)", R"(\bfrexp\b)", R"(\bhypot\b)", R"(\bilogb\b)",
    R"(\bldexp\b)", R"(\blgamma\b)", R"(\blgamma_r\b)", R"(\blog\b)", R"(\blog2\b)", R"(\blog10\b)",
    R"(\blog1p\b)", R"(\blogb\b)", R"(\bmad\b)", R"(\bmaxmag\b)", R"(\bminmag\b)", R"(\bmodf\b)",
    R"(\bnan\b)", R"(\bnextafter\b)", R"(\bpow\b)", R"(\bpown\b)", R"(\bpowr\b)",
    R"(\bremainder\b)", R"(\bremquo\b)", R"(\brint\b)", R"(\brootn\b)", R"(\bround\b)",
    R"(\bsin\b)", R"(\bsincos\b)", R"(\bsinh\b)", R"(\bsinpi\b)", R"(\bsqrt\b)", R"(\btan\b)",
    R"(\btanh\b)", R"(\btanpi\b)", R"(\btgamma\b)", R"(\btrunc\b)", R"(\bhalf_\b)",
    R"(\bnative_\b)", R"(\bMAXFLOAT\b)", R"(\bHUGE_VALF\b)", R"(\bINFINITY\b)", R"(\bNAN\b)",
    R"(\babs\b)", R"(\babs_diff\b)", R"(\badd_sat\b)", R"(\bhadd\b)", R"(\brhadd\b)",
    R"(\bclamp\b)", R"(\bclz\b)", R"(\bmad_hi\b)", R"(\bmad_sat\b)", R"(\bmax\b)", R"(\bmin\b)",
    R"(\bmul_hi\b)", R"(\brotate\b)", R"(\bsub_sat\b)", R"(\bupsample\b)", R"(\bmad24\b)",
    R"(\bmul24\b)", R"(\bclamp\b)", R"(\bdegrees\b)", R"(\bmax\b)", R"(\bmin\b)", R"(\bmix\b)",
    R"(\bradians\b)", R"(\bstep\b)", R"(\bsmoothstep\b)", R"(\bsign\b)", R"(\bcross\b)",
    R"(\bdot\b)", R"(\bdistance\b)", R"(\blength\b)", R"(\bnormalize\b)", R"(\bfast_\b)",
    R"(\bisequal\b)", R"(\bisnotequal\b)", R"(\bisgreater\b)", R"(\bisgreaterequal\b)",
    R"(\bisless\b)", R"(\bislessequal\b)", R"(\bislessgreater\b)", R"(\bisfinite\b)",
    R"(\bisinf\b)", R"(\bisnan\b)", R"(\bisnormal\b)", R"(\bisordered\b)", R"(\bisunordered\b)",
    R"(\bsignbit\b)", R"(\bany\b)", R"(\ball\b)", R"(\bbitselect\b)", R"(\bselect\b)",
    R"(\bvload2\b)", R"(\bvload3\b)", R"(\bvload4\b)", R"(\bvload8\b)", R"(\bvload16\b)",
    R"(\bvstore2\b)", R"(\bvstore3\b)", R"(\bvstore4\b)", R"(\bvstore8\b)", R"(\bvstore16\b)",
    R"(\bvload_half\b)", R"(\bvload_half2\b)", R"(\bvload_half3\b)", R"(\bvload_half4\b)",
    R"(\bvload_half8\b)", R"(\bvload_half16\b)", R"(\bvstore_half\b)", R"(\bvstore_half2\b)",
    R"(\bvstore_half3\b)", R"(\bvstore_half4\b)", R"(\bvstore_half8\b)", R"(\bvstore_half16\b)",
    R"(\bvloada_half\b)", R"(\bvloada_half2\b)", R"(\bvloada_half3\b)", R"(\bvloada_half4\b)",
    R"(\bvloada_half8\b)", R"(\bvloada_half16\b)", R"(\bvstorea_half\b)", R"(\bvstorea_half2\b)",
    R"(\bvstorea_half3\b)", R"(\bvstorea_half4\b)", R"(\bvstorea_half8\b)", R"(\bvstorea_half16\b)",
    R"(\b_rte\b)", R"(\b_rtz\b)", R"(\b_rtp\b)", R"(\b_rtn\b)", R"(\bbarrier\b)",
    R"(\bmem_fence\b)", R"(\bread_mem_fence\b)", R"(\bwrite_mem_fence\b)",
    R"(\basync_work_group_copy\b)", R"(\basync_work_group_strided_copy\b)",
    R"(\bwait_group_events\b)", R"(\bprefetch\b)", R"(\batomic_add\b)", R"(\batomic_sub\b)",
    R"(\batomic_xchg\b)", R"(\batomic_inc\b)", R"(\batomic_dec\b)", R"(\batomic_cmpxchg\b)",
    R"(\batomic_min\b)", R"(\batomic_max\b)", R"(\batomic_and\b)", R"(\batomic_or\b)",
    R"(\batomic_xor\b)", R"(\bvec_step\b)", R"(\bshuffle\b)", R"(\bread_imagef\b)",
    R"(\bread_imagei\b)", R"(\bread_imageui\b)", R"(\bwrite_imagef\b)", R"(\bwrite_imagei\b)",
    R"(\bwrite_imageui\b)", R"(\bget_image_width\b)", R"(\bget_image_height\b)",
    R"(\bget_image_depth\b)", R"(\bget_image_channel_data_type\b)",
    R"(\bget_image_channel_order\b)", R"(\bget_image_dim\b)",
};

const SHighlightRuleTable s_RuleTables[] = {
    {16, 3, s_GLSLESKeyword, sizeof(s_GLSLESKeyword) / sizeof(s_GLSLESKeyword[0])},
    {18, 3, s_GLSLESBuiltInType, sizeof(s_GLSLESBuiltInType) / sizeof(s_GLSLESBuiltInType[0])},
    {17, 3, s_GLSLESBuiltInFunction, sizeof(s_GLSLESBuiltInFunction) / sizeof(s_GLSLESBuiltInFunction[0])},
    {9, 12, s_GLSLKeyword, sizeof(s_GLSLKeyword) / sizeof(s_GLSLKeyword[0])},
    {11, 12, s_GLSLBuiltInType, sizeof(s_GLSLBuiltInType) / sizeof(s_GLSLBuiltInType[0])},
    {10, 12, s_GLSLBuiltInFunction, sizeof(s_GLSLBuiltInFunction) / sizeof(s_GLSLBuiltInFunction[0])},
    {23, 960, s_HLSLKeyword, sizeof(s_HLSLKeyword) / sizeof(s_HLSLKeyword[0])},
    {25, 960, s_HLSLBuiltInType, sizeof(s_HLSLBuiltInType) / sizeof(s_HLSLBuiltInType[0])},
    {24, 960, s_HLSLBuiltInFunction, sizeof(s_HLSLBuiltInFunction) / sizeof(s_HLSLBuiltInFunction[0])},
    {3, 48, s_ZFXKeyword, sizeof(s_ZFXKeyword) / sizeof(s_ZFXKeyword[0])},
    {6, 48, s_ZFXTag, sizeof(s_ZFXTag) / sizeof(s_ZFXTag[0])},
    {4, 48, s_ZFXValue, sizeof(s_ZFXValue) / sizeof(s_ZFXValue[0])},
    {30, 1024, s_OpenCLKeyword, sizeof(s_OpenCLKeyword) / sizeof(s_OpenCLKeyword[0])},
    {32, 1024, s_OpenCLBuiltInType, sizeof(s_OpenCLBuiltInType) / sizeof(s_OpenCLBuiltInType[0])},
    {31, 1024, s_OpenCLBuiltInFunction, sizeof(s_OpenCLBuiltInFunction) / sizeof(s_OpenCLBuiltInFunction[0])},
};

} // namespace

SHighlightRuleSet GetShaderHighlightRules()
{
    return {s_RuleTables, sizeof(s_RuleTables) / sizeof(s_RuleTables[0])};
}

namespace HighlightPattern
{
const char* const CommentStart = R"(/\*)";
const char* const CommentEnd = R"(\*/)";
const char* const CodeSectionStart = R"(\[GLSL_CODE\])";
const char* const CodeSectionEnd = R"(\[/GLSL_CODE\])";
const char* const LineComment = R"(//[^\n]*)";
const char* const Number = R"(\b[0-9\.]+\b)";
const char* const Preprocessor = R"(#.*$)";
} // namespace HighlightPattern

namespace
{
unsigned int PickElement(unsigned int uiMask, unsigned int uiEffect, unsigned int uiGLSLES, unsigned int uiGLSL,
                         unsigned int uiHLSL, unsigned int uiOpenCL)
{
    if (uiEffect != HighlightElement_None && (uiMask & HighlightMask_Effect))
        return uiEffect;
    if (uiMask & HighlightMask_GLSLES)
        return uiGLSLES;
    if (uiMask & HighlightMask_GLSL)
        return uiGLSL;
    if (uiMask & HighlightMask_HLSL)
        return uiHLSL;
    if (uiMask & HighlightMask_OpenCL)
        return uiOpenCL;
    return HighlightElement_None;
}
} // namespace

unsigned int GetCodeElement(unsigned int uiMask)
{
    return PickElement(uiMask, HighlightElement_ZFXCode, HighlightElement_GLSLESCode, HighlightElement_GLSLCode,
                       HighlightElement_HLSLCode, HighlightElement_OpenCLCode);
}

unsigned int GetCommentElement(unsigned int uiMask)
{
    return PickElement(uiMask, HighlightElement_ZFXComment, HighlightElement_GLSLESComment,
                       HighlightElement_GLSLComment, HighlightElement_HLSLComment, HighlightElement_OpenCLComment);
}

unsigned int GetPreprocessorElement(unsigned int uiMask)
{
    return PickElement(uiMask, HighlightElement_None, HighlightElement_GLSLESPreprocessor,
                       HighlightElement_GLSLPreprocessor, HighlightElement_HLSLPreprocessor,
                       HighlightElement_OpenCLPreprocessor);
}

unsigned int GetNumberElement(unsigned int uiMask)
{
    return PickElement(uiMask, HighlightElement_None, HighlightElement_GLSLESNumber, HighlightElement_GLSLNumber,
                       HighlightElement_HLSLNumber, HighlightElement_OpenCLNumber);
}
