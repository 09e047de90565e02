#version 120
// Matrix-palette skinning with the fixed-function inputs of desktop OpenGL.

#define BONES 48

uniform mat4 Bones[BONES];
uniform vec3 LightDirection;
attribute vec4 BoneIndices;
attribute vec4 BoneWeights;

varying vec4 FrontColour;
varying float FogCoordinate;

vec4 Skin(vec4 position)
{
    vec4 result = vec4(0.0);
    for (int i = 0; i < 4; i++)
    {
        int index = int(BoneIndices[i]);
        result += BoneWeights[i] * (Bones[index] * position);
    }
    return result;
}

void main()
{
    vec4 skinned = Skin(gl_Vertex);
    vec3 normal = normalize(gl_NormalMatrix * gl_Normal);
    float lambert = max(dot(normal, normalize(LightDirection)), 0.0);
    FrontColour = gl_Color * gl_LightSource[0].diffuse * lambert + gl_LightModel.ambient;
    gl_TexCoord[0] = gl_TextureMatrix[0] * gl_MultiTexCoord0;
    gl_TexCoord[1] = gl_MultiTexCoord1;
    FogCoordinate = abs((gl_ModelViewMatrix * skinned).z);
    gl_FrontColor = FrontColour;
    gl_Position = gl_ModelViewProjectionMatrix * skinned;
    gl_ClipVertex = gl_ModelViewMatrix * skinned;
    /* ftransform() would skip the skinning:
       gl_Position = ftransform(); */
}
