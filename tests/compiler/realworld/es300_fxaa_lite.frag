#version 300 es
// A reduced FXAA: local contrast decides, then a blend along the edge direction.
precision highp float;

uniform sampler2D uFrame;
uniform vec2 uTexelSize;

in vec2 vTexCoord;

out vec4 fragColour;

const float EDGE_THRESHOLD_MIN = 0.0312;
const float EDGE_THRESHOLD_MAX = 0.125;

float luma(vec3 rgb)
{
    return sqrt(dot(rgb, vec3(0.299, 0.587, 0.114)));
}

float lumaAt(vec2 uv, vec2 offset)
{
    return luma(textureLod(uFrame, uv + offset * uTexelSize, 0.0).rgb);
}

void main()
{
    vec3 centre = textureLod(uFrame, vTexCoord, 0.0).rgb;
    float lumaCentre = luma(centre);
    float lumaDown = lumaAt(vTexCoord, vec2(0.0, -1.0));
    float lumaUp = lumaAt(vTexCoord, vec2(0.0, 1.0));
    float lumaLeft = lumaAt(vTexCoord, vec2(-1.0, 0.0));
    float lumaRight = lumaAt(vTexCoord, vec2(1.0, 0.0));
    float lumaMin = min(lumaCentre, min(min(lumaDown, lumaUp), min(lumaLeft, lumaRight)));
    float lumaMax = max(lumaCentre, max(max(lumaDown, lumaUp), max(lumaLeft, lumaRight)));
    float range = lumaMax - lumaMin;
    if (range < max(EDGE_THRESHOLD_MIN, lumaMax * EDGE_THRESHOLD_MAX))
    {
        fragColour = vec4(centre, 1.0);
        return;
    }
    bool horizontal = abs(lumaUp + lumaDown - 2.0 * lumaCentre) >= abs(lumaLeft + lumaRight - 2.0 * lumaCentre);
    vec2 step = horizontal ? vec2(0.0, uTexelSize.y) : vec2(uTexelSize.x, 0.0);
    float gradientA = horizontal ? abs(lumaDown - lumaCentre) : abs(lumaLeft - lumaCentre);
    float gradientB = horizontal ? abs(lumaUp - lumaCentre) : abs(lumaRight - lumaCentre);
    if (gradientA >= gradientB)
        step = -step;
    float subpixel = clamp(abs((lumaDown + lumaUp + lumaLeft + lumaRight) * 0.25 - lumaCentre) / range, 0.0, 1.0);
    float blend = smoothstep(0.0, 1.0, subpixel);
    vec3 other = textureLod(uFrame, vTexCoord + step * 0.5, 0.0).rgb;
    fragColour = vec4(mix(centre, other, blend * blend * 0.75), 1.0);
}
