#version 310 es
// Exponent and mantissa: HDR values stored as shared-exponent colour, the RGBE way.
precision highp float;
precision highp int;

in vec3 vRadiance;

out vec4 fragColour;

vec4 encodeRgbe(vec3 colour)
{
    float brightest = max(colour.r, max(colour.g, colour.b));
    int exponent;
    float mantissa = frexp(brightest, exponent);
    return vec4(colour * (mantissa / brightest), float(exponent + 128) / 255.0);
}

vec3 decodeRgbe(vec4 rgbe)
{
    int exponent = int(rgbe.a * 255.0 + 0.5) - 128;
    return ldexp(rgbe.rgb, ivec3(exponent));
}

void main()
{
    vec3 radiance = abs(vRadiance) * 16.0 + 0.01;
    vec4 word = encodeRgbe(radiance);
    fragColour = vec4(decodeRgbe(word), word.a);
}
