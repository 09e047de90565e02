// Anti-aliased procedural checkerboard: the filter width comes from screen-space derivatives.
#extension GL_OES_standard_derivatives : enable
precision mediump float;

uniform vec3 uColourA;
uniform vec3 uColourB;
uniform float uScale;

varying vec2 vTexCoord;

float filteredSquareWave(vec2 p)
{
    vec2 w = fwidth(p) + 1e-4;
    vec2 i = 2.0 * (abs(fract((p - 0.5 * w) * 0.5) - 0.5) - abs(fract((p + 0.5 * w) * 0.5) - 0.5)) / w;
    return 0.5 - 0.5 * i.x * i.y;
}

void main()
{
    vec2 p = vTexCoord * (4.0 + 8.0 * uScale);
    float checker = filteredSquareWave(p);
    vec2 grad = vec2(dFdx(p.x), dFdy(p.y));
    gl_FragColor = vec4(mix(uColourA, uColourB, checker), clamp(length(grad), 0.0, 1.0));
}
