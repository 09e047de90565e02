#version 300 es
// Metallic-roughness PBR: GGX distribution, Smith-Schlick geometry, Schlick Fresnel, three lights.
precision highp float;

const float PI = 3.14159265359;

uniform vec3 uAlbedo;
uniform float uMetallic;
uniform float uRoughness;
uniform vec3 uCameraPosition;
uniform vec3 uLightPositions[3];
uniform vec3 uLightColours[3];

in vec3 vWorldPosition;
in vec3 vNormal;

out vec4 fragColour;

float distributionGGX(vec3 n, vec3 h, float roughness)
{
    float a = roughness * roughness;
    float a2 = a * a;
    float ndh = max(dot(n, h), 0.0);
    float denominator = ndh * ndh * (a2 - 1.0) + 1.0;
    return a2 / (PI * denominator * denominator);
}

float geometrySchlickGGX(float ndv, float roughness)
{
    float r = roughness + 1.0;
    float k = r * r / 8.0;
    return ndv / (ndv * (1.0 - k) + k);
}

float geometrySmith(vec3 n, vec3 v, vec3 l, float roughness)
{
    return geometrySchlickGGX(max(dot(n, v), 0.0), roughness) * geometrySchlickGGX(max(dot(n, l), 0.0), roughness);
}

vec3 fresnelSchlick(float cosTheta, vec3 f0)
{
    return f0 + (1.0 - f0) * pow(clamp(1.0 - cosTheta, 0.0, 1.0), 5.0);
}

vec3 radiance(int i, vec3 n, vec3 v, vec3 f0)
{
    vec3 toLight = uLightPositions[i] * 4.0 - vWorldPosition;
    vec3 l = normalize(toLight);
    vec3 h = normalize(v + l);
    float attenuation = 1.0 / dot(toLight, toLight);
    vec3 f = fresnelSchlick(max(dot(h, v), 0.0), f0);
    float ndf = distributionGGX(n, h, uRoughness);
    float g = geometrySmith(n, v, l, uRoughness);
    vec3 specular = ndf * g * f / (4.0 * max(dot(n, v), 0.0) * max(dot(n, l), 0.0) + 0.0001);
    vec3 kd = (vec3(1.0) - f) * (1.0 - uMetallic);
    return (kd * uAlbedo / PI + specular) * uLightColours[i] * 10.0 * attenuation * max(dot(n, l), 0.0);
}

void main()
{
    vec3 n = normalize(vNormal);
    vec3 v = normalize(uCameraPosition * 4.0 - vWorldPosition);
    vec3 f0 = mix(vec3(0.04), uAlbedo, uMetallic);
    vec3 lo = vec3(0.0);
    for (int i = 0; i < 3; ++i)
        lo += radiance(i, n, v, f0);
    vec3 colour = lo + vec3(0.03) * uAlbedo;
    colour = colour / (colour + vec3(1.0));
    fragColour = vec4(pow(colour, vec3(1.0 / 2.2)), 1.0);
}
