#version 300 es
// Hue shift and saturation boost through branchless RGB/HSV conversions.
precision highp float;

uniform sampler2D uImage;
uniform float uHueShift;
uniform float uSaturationBoost;

in vec2 vTexCoord;

out vec4 fragColour;

vec3 rgbToHsv(vec3 c)
{
    vec4 k = vec4(0.0, -1.0 / 3.0, 2.0 / 3.0, -1.0);
    vec4 p = mix(vec4(c.bg, k.wz), vec4(c.gb, k.xy), step(c.b, c.g));
    vec4 q = mix(vec4(p.xyw, c.r), vec4(c.r, p.yzx), step(p.x, c.r));
    float d = q.x - min(q.w, q.y);
    float e = 1.0e-10;
    return vec3(abs(q.z + (q.w - q.y) / (6.0 * d + e)), d / (q.x + e), q.x);
}

vec3 hsvToRgb(vec3 c)
{
    vec4 k = vec4(1.0, 2.0 / 3.0, 1.0 / 3.0, 3.0);
    vec3 p = abs(fract(c.xxx + k.xyz) * 6.0 - k.www);
    return c.z * mix(k.xxx, clamp(p - k.xxx, 0.0, 1.0), c.y);
}

void main()
{
    vec3 hsv = rgbToHsv(texture(uImage, vTexCoord).rgb);
    hsv.x = fract(hsv.x + uHueShift);
    hsv.y = clamp(hsv.y * (1.0 + uSaturationBoost), 0.0, 1.0);
    fragColour = vec4(hsvToRgb(hsv), 1.0);
}
