#version 300 es
// A UI widget drawn with 2D distance functions: rounded panel, border, knob and a soft shadow.
precision highp float;

uniform vec2 uResolution;
uniform float uValue;
uniform vec4 uPanelColour;
uniform vec4 uAccentColour;

out vec4 fragColour;

float sdRoundedBox(vec2 p, vec2 halfSize, float radius)
{
    vec2 q = abs(p) - halfSize + radius;
    return length(max(q, 0.0)) + min(max(q.x, q.y), 0.0) - radius;
}

float sdCircle(vec2 p, float r)
{
    return length(p) - r;
}

float fill(float d, float pixel)
{
    return clamp(0.5 - d / pixel, 0.0, 1.0);
}

vec4 over(vec4 top, vec4 bottom)
{
    float a = top.a + bottom.a * (1.0 - top.a);
    return vec4((top.rgb * top.a + bottom.rgb * bottom.a * (1.0 - top.a)) / max(a, 1e-4), a);
}

void main()
{
    float pixel = 2.0 / uResolution.y;
    vec2 p = (2.0 * gl_FragCoord.xy - uResolution) / uResolution.y;
    float panel = sdRoundedBox(p, vec2(0.8, 0.3), 0.15);
    float shadow = sdRoundedBox(p - vec2(0.03, -0.05), vec2(0.8, 0.3), 0.15);
    vec2 knobCentre = vec2(mix(-0.6, 0.6, uValue), 0.0);
    float knob = sdCircle(p - knobCentre, 0.18);

    vec4 colour = vec4(0.12, 0.12, 0.14, 1.0);
    colour = over(vec4(0.0, 0.0, 0.0, 0.4 * (1.0 - smoothstep(-0.05, 0.1, shadow))), colour);
    colour = over(vec4(uPanelColour.rgb, fill(panel, pixel)), colour);
    colour = over(vec4(uAccentColour.rgb, fill(abs(panel) - 0.01, pixel)), colour);
    colour = over(vec4(uAccentColour.rgb * 1.2, fill(knob, pixel)), colour);
    fragColour = colour;
}
