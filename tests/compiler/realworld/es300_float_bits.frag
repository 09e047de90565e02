#version 300 es
// Bit-level float tricks: a fast approximate reciprocal square root and a sign-bit flip.
precision highp float;
precision highp int;

in vec3 vValues;

out vec4 fragColour;

float fastInverseSqrt(float x)
{
    int i = floatBitsToInt(x);
    i = 0x5f3759df - (i >> 1);
    float y = intBitsToFloat(i);
    return y * (1.5 - 0.5 * x * y * y);
}

float flipSign(float x)
{
    return uintBitsToFloat(floatBitsToUint(x) ^ 0x80000000u);
}

void main()
{
    float x = abs(vValues.x) + 0.25;
    fragColour = vec4(fastInverseSqrt(x), flipSign(vValues.y), fastInverseSqrt(x * 4.0) * 2.0, 1.0);
}
