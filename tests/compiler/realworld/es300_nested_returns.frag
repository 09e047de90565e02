#version 300 es
// Helpers that return other helpers' results from inside loops and branches.
precision highp float;

uniform float uBias;
uniform vec4 uBands;

in vec2 vPosition;

out vec4 fragColour;

float ramp(float x)
{
    return clamp(x * 0.5 + 0.5, 0.0, 1.0);
}

float band(float x)
{
    for (int i = 0; i < 4; ++i)
    {
        if (x < uBands[i])
            return ramp(float(i) - x);
    }
    return ramp(x) * 0.25;
}

float shape(vec2 p)
{
    float d = length(p) - uBias;
    if (d > 0.5)
        return band(d) * 0.5;
    if (d < -0.5)
        return 1.0 - band(-d);
    return ramp(d * 2.0) * band(d + 1.0);
}

vec3 colourise(vec2 p)
{
    float s = shape(p);
    return vec3(s, shape(p.yx * 1.3), ramp(s - 0.5)) * 0.8;
}

void main()
{
    fragColour = vec4(colourise(vPosition * 2.0), 1.0);
}
