#version 300 es
// Image-based lighting for mobile: the analytic environment-BRDF fit and a prefiltered cube map.
precision highp float;

uniform samplerCube uIrradiance;
uniform samplerCube uPrefiltered;
uniform vec3 uBaseColour;
uniform float uRoughness;
uniform float uMetalness;
uniform vec3 uEyePosition;

in vec3 vPosition;
in vec3 vNormal;

out vec4 outColour;

vec2 environmentBrdfApprox(float roughness, float ndv)
{
    const vec4 c0 = vec4(-1.0, -0.0275, -0.572, 0.022);
    const vec4 c1 = vec4(1.0, 0.0425, 1.04, -0.04);
    vec4 r = roughness * c0 + c1;
    float a004 = min(r.x * r.x, exp2(-9.28 * ndv)) * r.x + r.y;
    return vec2(-1.04, 1.04) * a004 + r.zw;
}

vec3 specularIbl(vec3 f0, float roughness, vec3 n, vec3 v)
{
    float ndv = clamp(dot(n, v), 0.0, 1.0);
    vec3 r = reflect(-v, n);
    vec3 prefiltered = textureLod(uPrefiltered, r, roughness * 5.0).rgb;
    vec2 brdf = environmentBrdfApprox(roughness, ndv);
    return prefiltered * (f0 * brdf.x + brdf.y);
}

void main()
{
    vec3 n = normalize(vNormal);
    vec3 v = normalize(uEyePosition * 3.0 - vPosition);
    vec3 f0 = mix(vec3(0.04), uBaseColour, uMetalness);
    vec3 diffuse = texture(uIrradiance, n).rgb * uBaseColour * (1.0 - uMetalness);
    vec3 colour = diffuse + specularIbl(f0, uRoughness, n, v);
    outColour = vec4(colour, 1.0);
}
