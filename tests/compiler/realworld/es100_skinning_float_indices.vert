// GLSL ES 1.00 skinning: joint indices arrive as floats, the palette is a uniform array.
attribute vec4 aPosition;
attribute vec3 aNormal;
attribute vec4 aJointIndices;
attribute vec4 aJointWeights;

uniform mat4 uJointMatrices[6];
uniform mat4 uProjectionView;

varying vec3 vNormal;
varying float vWeightSum;

mat4 jointMatrix(float index)
{
    return uJointMatrices[int(index)];
}

void main()
{
    mat4 skin = aJointWeights.x * jointMatrix(aJointIndices.x);
    skin += aJointWeights.y * jointMatrix(aJointIndices.y);
    skin += aJointWeights.z * jointMatrix(aJointIndices.z);
    skin += aJointWeights.w * jointMatrix(aJointIndices.w);
    vec4 position = skin * vec4(aPosition.xyz, 1.0);
    vNormal = (skin * vec4(aNormal, 0.0)).xyz;
    vWeightSum = dot(aJointWeights, vec4(1.0));
    gl_Position = uProjectionView * position;
}
