#version 300 es
// Edge detection for a post-process anti-aliasing pass, written the way FXAA-style code
// reads its neighbours: textureLodOffset on level 0 through a macro, then a blend towards
// the stronger gradient; an atlas lookup with explicit gradients reads the detail layer.
precision highp float;

uniform sampler2D uFrame;
uniform sampler2D uDetailAtlas;
uniform float uStrength;

in vec2 vTexCoord;

out vec4 fragColour;

#define TEX_OFF(o) textureLodOffset(uFrame, vTexCoord, 0.0, o)

float luma(vec4 c)
{
    return dot(c.rgb, vec3(0.299, 0.587, 0.114));
}

void main()
{
    vec4 centre = textureLod(uFrame, vTexCoord, 0.0);
    float lumaNW = luma(TEX_OFF(ivec2(-1, 1)));
    float lumaNE = luma(TEX_OFF(ivec2(1, 1)));
    float lumaSW = luma(TEX_OFF(ivec2(-1, -1)));
    float lumaSE = luma(TEX_OFF(ivec2(1, -1)));

    vec2 direction = vec2(-((lumaNW + lumaNE) - (lumaSW + lumaSE)), (lumaNW + lumaSW) - (lumaNE + lumaSE));
    float edge = clamp(length(direction) * 4.0, 0.0, 1.0) * uStrength;

    // Detail tiles are sampled with the frame's gradients so the atlas seams pick no wrong level.
    vec2 tileUv = fract(vTexCoord * 2.0) * 0.5;
    vec2 dx = vec2(0.01, 0.0), dy = vec2(0.0, 0.01);
    vec4 detail = textureGradOffset(uDetailAtlas, tileUv, dx, dy, ivec2(1, 0));
    detail += textureGradOffset(uDetailAtlas, tileUv, dx, dy, ivec2(0, 1));

    vec4 neighbours = (TEX_OFF(ivec2(-1, 1)) + TEX_OFF(ivec2(1, -1))) * 0.5;
    fragColour = mix(centre, neighbours, edge) + detail * 0.05;
}
