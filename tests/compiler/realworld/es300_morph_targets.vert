#version 300 es
// Blend shapes: three morph targets added to the base mesh with uniform weights.
in vec3 aPosition;
in vec3 aNormal;
in vec3 aTarget0;
in vec3 aTarget1;
in vec3 aTarget2;

uniform float uWeights[3];
uniform mat4 uModelViewProjection;

out vec3 vNormal;
out float vDisplacement;

void main()
{
    vec3 offset = aTarget0 * uWeights[0] + aTarget1 * uWeights[1] + aTarget2 * uWeights[2];
    vec3 position = aPosition + offset * 0.5;
    vNormal = normalize(aNormal + offset * 0.1);
    vDisplacement = length(offset);
    gl_Position = uModelViewProjection * vec4(position, 1.0);
}
