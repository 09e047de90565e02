#version 300 es
// Shadow mapping with a manual 3x3 percentage-closer filter over a depth stored in a float texture.
precision highp float;

uniform sampler2D uShadowMap;
uniform vec2 uShadowTexelSize;
uniform float uBias;
uniform vec3 uLightDirection;

in vec4 vShadowCoord;
in vec3 vNormal;

out vec4 fragColour;

float shadowFactor(vec4 coord, float bias)
{
    vec3 projected = coord.xyz / coord.w;
    projected = projected * 0.5 + 0.5;
    float lit = 0.0;
    for (int y = -1; y <= 1; ++y)
    {
        for (int x = -1; x <= 1; ++x)
        {
            float stored = texture(uShadowMap, projected.xy + vec2(x, y) * uShadowTexelSize).r;
            lit += projected.z - bias > stored ? 0.0 : 1.0;
        }
    }
    return lit / 9.0;
}

void main()
{
    vec3 n = normalize(vNormal);
    float ndl = max(dot(n, normalize(uLightDirection)), 0.0);
    float bias = max(0.05 * (1.0 - ndl), 0.005) * uBias;
    fragColour = vec4(vec3(0.2 + 0.8 * ndl * shadowFactor(vShadowCoord, bias)), 1.0);
}
