// HDR resolve: exposure, the fitted ACES curve and a piecewise sRGB encode.
precision highp float;

uniform sampler2D uHdrBuffer;
uniform float uExposure;

varying vec2 vTexCoord;

vec3 acesFitted(vec3 x)
{
    const float a = 2.51;
    const float b = 0.03;
    const float c = 2.43;
    const float d = 0.59;
    const float e = 0.14;
    return clamp((x * (a * x + b)) / (x * (c * x + d) + e), 0.0, 1.0);
}

vec3 linearToSrgb(vec3 linear)
{
    vec3 low = linear * 12.92;
    vec3 high = 1.055 * pow(linear, vec3(1.0 / 2.4)) - 0.055;
    return mix(low, high, step(vec3(0.0031308), linear));
}

void main()
{
    vec3 hdr = texture2D(uHdrBuffer, vTexCoord).rgb * 4.0;
    vec3 mapped = acesFitted(hdr * exp2(uExposure * 2.0 - 1.0));
    gl_FragColor = vec4(linearToSrgb(mapped), 1.0);
}
