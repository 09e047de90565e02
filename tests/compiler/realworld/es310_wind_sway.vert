#version 310 es
// Vegetation wind: bending grows with height, a gust travels across the field.
in vec3 aPosition;
in vec3 aNormal;
in float aStiffness;

uniform mat4 uModelViewProjection;
uniform vec2 uWindDirection;
uniform float uTime;
uniform float uStrength;

out vec3 vNormal;
out float vBend;

float gust(vec2 position)
{
    float wave = sin(dot(position, vec2(0.7, 0.3)) * 2.0 - uTime * 3.0);
    return wave * 0.5 + 0.5;
}

void main()
{
    float height = max(aPosition.y + 1.0, 0.0);
    float bend = height * height * (1.0 - abs(aStiffness) * 0.8) * uStrength * gust(aPosition.xz);
    vec2 direction = normalize(uWindDirection + 0.001);
    vec3 position = aPosition + vec3(direction.x, -0.3 * bend, direction.y) * bend * 0.2;
    vNormal = normalize(aNormal + vec3(direction.x, 0.0, direction.y) * bend * 0.1);
    vBend = bend;
    gl_Position = uModelViewProjection * vec4(position, 1.0);
    gl_PointSize = 1.0 + bend;
}
