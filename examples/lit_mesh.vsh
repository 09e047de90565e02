#version 300 es
// Lit mesh, vertex stage: world-space position and tangent frame for normal mapping.
// Pairs with lit_mesh.fsh.
precision highp float;

layout(location = 0) in vec3 aPosition;
layout(location = 1) in vec3 aNormal;
layout(location = 2) in vec4 aTangent; // w: handedness of the bitangent (+1 or -1)
layout(location = 3) in vec2 aTexCoord;

uniform mat4 uModel;
uniform mat4 uViewProjection;
uniform mat3 uNormalMatrix; // inverse transpose of the model matrix's upper 3x3

out vec3 vWorldPosition;
out vec3 vNormal;
out vec3 vTangent;
out vec3 vBitangent;
out vec2 vTexCoord;

void main()
{
    vec4 worldPosition = uModel * vec4(aPosition, 1.0);
    vWorldPosition = worldPosition.xyz;

    vNormal = normalize(uNormalMatrix * aNormal);
    vTangent = normalize(uNormalMatrix * aTangent.xyz);
    vBitangent = cross(vNormal, vTangent) * aTangent.w;
    vTexCoord = aTexCoord;

    gl_Position = uViewProjection * worldPosition;
}
