#version 300 es
// Kaleidoscope: fold the angle into a wedge, mirror it, and sample the image from the fold.
precision highp float;

uniform sampler2D uImage;
uniform float uSegments;
uniform float uTime;

in vec2 vTexCoord;

out vec4 fragColour;

const float TAU = 6.28318530718;

vec2 kaleido(vec2 uv, float segments)
{
    vec2 p = uv - 0.5;
    float radius = length(p);
    float angle = atan(p.y, p.x) + uTime * 0.2;
    float wedge = TAU / segments;
    angle = mod(angle, wedge);
    angle = abs(angle - wedge * 0.5);
    return vec2(cos(angle), sin(angle)) * radius + 0.5;
}

void main()
{
    float segments = 3.0 + floor(uSegments * 6.0);
    vec2 uv = kaleido(vTexCoord, segments);
    fragColour = vec4(texture(uImage, uv).rgb, 1.0);
}
