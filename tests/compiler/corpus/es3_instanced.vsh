#version 300 es
// Instanced grid of cubes: the offset comes from gl_InstanceID and a uniform block.
layout(location = 0) in vec3 aPosition;
layout(location = 1) in vec3 aNormal;

uniform Camera
{
    mat4 viewProjection;
    vec3 eye;
};
uniform int uColumns;
uniform float uSpacing;

out vec3 vNormal;
out float vDistance;

void main()
{
    int column = gl_InstanceID % uColumns;
    int row = gl_InstanceID / uColumns;
    vec3 offset = vec3(float(column), 0.0, float(row)) * uSpacing;
    vec3 world = aPosition + offset;
    vNormal = aNormal;
    vDistance = distance(world, eye);
    gl_Position = viewProjection * vec4(world, 1.0);
}
