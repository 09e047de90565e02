#version 300 es
// The denoise pass after a quarter-resolution effect: a 5-tap cross of whole texels read
// with texelFetchOffset around the pixel's texel, kept one texel away from the edges.
precision highp float;

uniform sampler2D uQuarterRes;
uniform float uCentreWeight;

out vec4 fragColour;

void main()
{
    ivec2 size = textureSize(uQuarterRes, 0);
    ivec2 texel = clamp(ivec2(gl_FragCoord.xy) / 4, ivec2(1), size - 2);
    vec4 centre = texelFetch(uQuarterRes, texel, 0);
    vec4 cross = texelFetchOffset(uQuarterRes, texel, 0, ivec2(-1, 0));
    cross += texelFetchOffset(uQuarterRes, texel, 0, ivec2(1, 0));
    cross += texelFetchOffset(uQuarterRes, texel, 0, ivec2(0, -1));
    cross += texelFetchOffset(uQuarterRes, texel, 0, ivec2(0, 1));
    float w = clamp(uCentreWeight, 0.2, 0.6);
    fragColour = centre * w + cross * ((1.0 - w) * 0.25);
}
