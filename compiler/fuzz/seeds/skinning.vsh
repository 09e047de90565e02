// Four-bone skinning with a palette of matrices indexed by attribute.
attribute vec4 aPosition;
attribute vec4 aBoneWeights;
attribute vec4 aBoneIndices;

uniform mat4 uBones[16];
uniform mat4 uViewProjection;

varying float vWeightSum;

void main()
{
    vec4 skinned = vec4(0.0);
    for (int i = 0; i < 4; i++)
    {
        int index = int(aBoneIndices[i]);
        skinned += uBones[index] * aPosition * aBoneWeights[i];
    }
    vWeightSum = dot(aBoneWeights, vec4(1.0));
    gl_Position = uViewProjection * skinned;
}
