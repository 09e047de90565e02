#version 310 es
// GLSL ES 3.10: arrays of arrays and explicit uniform locations.
precision highp float;

layout(location = 0) in vec2 vTexCoord;
layout(location = 0) uniform sampler2D uTexture;
layout(location = 1) uniform float uWeights[2][3];

layout(location = 0) out vec4 fragColor;

void main()
{
    vec4 texel = texture(uTexture, vTexCoord);
    float w = 0.0;
    for (int i = 0; i < 2; ++i)
        for (int j = 0; j < 3; ++j)
            w += uWeights[i][j];
    fragColor = texel * w;
}
