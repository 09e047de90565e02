#version 300 es
// A 2x2 box filter using constant texel offsets, the cheap downsample of a bloom chain.
precision highp float;

uniform sampler2D uSource;

in vec2 vTexCoord;

out vec4 fragColour;

void main()
{
    vec4 sum = textureOffset(uSource, vTexCoord, ivec2(0, 0));
    sum += textureOffset(uSource, vTexCoord, ivec2(1, 0));
    sum += textureOffset(uSource, vTexCoord, ivec2(0, 1));
    sum += textureOffset(uSource, vTexCoord, ivec2(1, 1));
    fragColour = sum * 0.25;
}
