#version 300 es
// Integer arithmetic, bit operations and texel fetches.
precision highp float;
precision highp int;

uniform highp usampler2D uIds;
uniform ivec2 uOffset;
uniform sampler2D uPalette;

out vec4 fragColor;

void main()
{
    ivec2 size = textureSize(uPalette, 0);
    ivec2 texel = ivec2(gl_FragCoord.xy) + uOffset;
    uint id = texelFetch(uIds, texel, 0).r;
    int index = int(id & 255u);
    int row = index / size.x;
    int column = index % size.x;
    fragColor = texelFetch(uPalette, ivec2(column, row), 0);
}
