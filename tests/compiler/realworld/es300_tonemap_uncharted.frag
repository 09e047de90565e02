#version 300 es
// The Uncharted 2 filmic curve: a helper returning the ratio of two calls of another helper.
precision highp float;

uniform sampler2D uHdrImage;
uniform float uExposureBias;

in vec2 vTexCoord;

out vec4 fragColour;

vec3 hable(vec3 x)
{
    const float A = 0.15;
    const float B = 0.50;
    const float C = 0.10;
    const float D = 0.20;
    const float E = 0.02;
    const float F = 0.30;
    return ((x * (A * x + C * B) + D * E) / (x * (A * x + B) + D * F)) - E / F;
}

vec3 filmic(vec3 colour)
{
    const float W = 11.2;
    return hable(colour * (1.0 + uExposureBias)) / hable(vec3(W));
}

vec3 gammaEncode(vec3 linear)
{
    return pow(max(linear, 0.0), vec3(1.0 / 2.2));
}

void main()
{
    vec3 hdr = texture(uHdrImage, vTexCoord).rgb * 8.0;
    fragColour = vec4(gammaEncode(filmic(hdr)), 1.0);
}
