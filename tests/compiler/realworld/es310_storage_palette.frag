#version 310 es
// A palette and per-material parameters read from a shader storage buffer.
precision highp float;
precision highp int;

layout(std430, binding = 0) readonly buffer Palette
{
    vec4 colours[8];
    float weights[8];
    int count;
} uPalette;

in vec2 vUv;

out vec4 fragColour;

void main()
{
    int index = int(clamp(vUv.x, 0.0, 0.999) * 8.0);
    vec4 colour = uPalette.colours[index] * uPalette.weights[index];
    fragColour = vec4(colour.rgb, float(uPalette.count) / 8.0);
}
