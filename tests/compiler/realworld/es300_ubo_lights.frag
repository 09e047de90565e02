#version 300 es
// Four lights from a uniform block; material from a struct uniform.
precision highp float;

struct Material
{
    vec3 albedo;
    float roughness;
};

layout(std140) uniform Lights
{
    vec4 positions[4];
    vec4 colours[4];
    int count;
} uLights;

uniform Material uMaterial;

in vec3 vPosition;
in vec3 vNormal;
out vec4 fragColour;

vec3 shade(vec3 n, int i)
{
    vec3 l = normalize(uLights.positions[i].xyz - vPosition);
    return uLights.colours[i].rgb * max(dot(n, l), 0.0);
}

void main()
{
    vec3 n = normalize(vNormal);
    vec3 sum = vec3(0.0);
    for (int i = 0; i < 4; ++i)
    {
        if (i >= uLights.count)
            break;
        sum += shade(n, i);
    }
    fragColour = vec4(uMaterial.albedo * sum * (1.0 - 0.5 * uMaterial.roughness), 1.0);
}
