// Skinned mesh for OpenGL ES 2.0 (GLSL ES 1.00): every vertex follows up to four bones,
// blended by its weights, and gets a per-vertex diffuse term for a cheap fragment stage.
attribute vec4 aPosition;
attribute vec3 aNormal;
attribute vec2 aTexCoord;
attribute vec4 aBoneIndices; // bone numbers, as floats
attribute vec4 aBoneWeights; // sum to 1

uniform mat4 uBones[24];
uniform mat4 uViewProjection;
uniform vec3 uLightDirection; // towards the light, normalised

varying vec2 vTexCoord;
varying float vDiffuse;

void main()
{
    mat4 skin = uBones[int(aBoneIndices.x)] * aBoneWeights.x
              + uBones[int(aBoneIndices.y)] * aBoneWeights.y
              + uBones[int(aBoneIndices.z)] * aBoneWeights.z
              + uBones[int(aBoneIndices.w)] * aBoneWeights.w;

    vec3 normal = normalize((skin * vec4(aNormal, 0.0)).xyz);
    vDiffuse = max(dot(normal, uLightDirection), 0.0);
    vTexCoord = aTexCoord;
    gl_Position = uViewProjection * (skin * aPosition);
}
