#version 300 es
// Signed integer arithmetic: division and remainder of positive values, negation, clamps and shifts.
precision highp float;
precision highp int;

uniform int uDivisor;
uniform ivec2 uOffset;

in vec2 vUv;

out vec4 fragColour;

void main()
{
    ivec2 p = ivec2(floor(vUv * 100.0)) + 200 + uOffset;
    int d = uDivisor + 2;
    ivec2 q = p / d;
    ivec2 r = p - q * d;
    int negated = -(q.x - q.y);
    int clamped = clamp(negated, -5, 5);
    int shifted = (p.x << 2) >> 3;
    int mask = ~(p.y) & 0xff;
    ivec2 mn = min(p, ivec2(260)) - max(p, ivec2(240));
    fragColour = vec4(float(r.x + r.y) / float(2 * d), float(clamped) / 5.0, float(shifted % 64) / 63.0,
                      float(mask + mn.x + abs(mn.y)) / 512.0 + float(sign(negated)));
}
