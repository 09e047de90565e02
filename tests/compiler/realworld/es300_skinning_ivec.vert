#version 300 es
// Linear blend skinning with integer joint indices and a palette of eight bones.
in vec3 aPosition;
in vec3 aNormal;
in ivec4 aJoints;
in vec4 aWeights;

uniform mat4 uBones[8];
uniform mat4 uViewProjection;

out vec3 vNormal;
flat out int vMainJoint;

void main()
{
    float total = aWeights.x + aWeights.y + aWeights.z + aWeights.w;
    vec4 w = aWeights / max(total, 1e-4);
    mat4 skin = uBones[aJoints.x] * w.x + uBones[aJoints.y] * w.y + uBones[aJoints.z] * w.z + uBones[aJoints.w] * w.w;
    vec4 position = skin * vec4(aPosition, 1.0);
    vNormal = normalize(mat3(skin) * aNormal);
    vMainJoint = aJoints.x;
    gl_Position = uViewProjection * position;
}
