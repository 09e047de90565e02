#version 300 es
// A spot light's shadow: 3x3 percentage-closer filtering with constant texel offsets on
// projective lookups, as engines unroll it (offsets must be constant expressions), and a
// light cookie projected with the same coordinates.
precision highp float;

uniform sampler2D uShadowMap;
uniform sampler2D uLightCookie;
uniform float uBias;
uniform vec3 uLightColour;
uniform vec3 uLightDirection;

// Light-space position already scaled into texture space by the vertex shader.
in vec4 vShadowCoord;
in vec3 vNormal;

out vec4 fragColour;

#define SHADOW_TAP(x, y) (depth - bias > textureProjOffset(uShadowMap, vShadowCoord, ivec2(x, y)).r ? 0.0 : 1.0)

float pcf(float bias)
{
    float depth = vShadowCoord.z / vShadowCoord.w;
    float lit = SHADOW_TAP(-1, -1) + SHADOW_TAP(0, -1) + SHADOW_TAP(1, -1);
    lit += SHADOW_TAP(-1, 0) + SHADOW_TAP(0, 0) + SHADOW_TAP(1, 0);
    lit += SHADOW_TAP(-1, 1) + SHADOW_TAP(0, 1) + SHADOW_TAP(1, 1);
    return lit / 9.0;
}

void main()
{
    vec3 n = normalize(vNormal);
    float ndl = max(dot(n, normalize(uLightDirection)), 0.0);
    float bias = max(0.05 * (1.0 - ndl), 0.005) * uBias;
    vec3 cookie = textureProjLod(uLightCookie, vShadowCoord, 0.0).rgb;
    fragColour = vec4(uLightColour * cookie * (0.15 + 0.85 * ndl * pcf(bias)), 1.0);
}
