#version 300 es
// Parallax occlusion mapping: march the height field in layers, then refine between the last two.
precision highp float;

uniform sampler2D uHeightMap;
uniform sampler2D uAlbedoMap;
uniform float uHeightScale;

in vec2 vTexCoord;
in vec3 vTangentViewDirection;

out vec4 fragColour;

float depthAt(vec2 uv)
{
    return 1.0 - textureLod(uHeightMap, uv, 0.0).r;
}

vec2 parallax(vec2 uv, vec3 view)
{
    const float layers = 16.0;
    float layerDepth = 1.0 / layers;
    vec2 shift = view.xy / max(abs(view.z), 0.2) * uHeightScale * 0.1;
    vec2 delta = shift / layers;
    float currentDepth = 0.0;
    vec2 currentUv = uv;
    float mapDepth = depthAt(currentUv);
    for (int i = 0; i < 16; ++i)
    {
        if (currentDepth >= mapDepth)
            break;
        currentUv -= delta;
        mapDepth = depthAt(currentUv);
        currentDepth += layerDepth;
    }
    vec2 previousUv = currentUv + delta;
    float after = mapDepth - currentDepth;
    float before = depthAt(previousUv) - currentDepth + layerDepth;
    float weight = after / (after - before);
    return mix(currentUv, previousUv, weight);
}

void main()
{
    vec2 uv = parallax(vTexCoord, normalize(vTangentViewDirection));
    fragColour = vec4(textureLod(uAlbedoMap, uv, 0.0).rgb, 1.0);
}
