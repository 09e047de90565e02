#version 320 es
// GLSL ES 3.20 fragment shader using fma and textureLod.
precision highp float;

in vec2 vTexCoord;
uniform sampler2D uTexture;
uniform float uLod;
uniform vec4 uScale;
uniform vec4 uBias;

out vec4 fragColor;

void main()
{
    vec4 texel = textureLod(uTexture, vTexCoord, uLod);
    fragColor = fma(texel, uScale, uBias);
}
