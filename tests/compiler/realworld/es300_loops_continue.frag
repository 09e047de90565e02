#version 300 es
// Loop control as real filters write it: skipped taps, early exits and a while with two conditions.
precision highp float;
precision highp int;

uniform sampler2D uImage;
uniform vec2 uTexelSize;
uniform int uSkip;

in vec2 vTexCoord;

out vec4 fragColour;

void main()
{
    vec3 sum = vec3(0.0);
    float count = 0.0;
    for (int y = -2; y <= 2; ++y)
    {
        if (y == uSkip - 3)
            continue;
        for (int x = -2; x <= 2; ++x)
        {
            if (((x + y) & 1) != 0)
                continue;
            vec3 tap = texture(uImage, vTexCoord + vec2(x, y) * uTexelSize).rgb;
            if (dot(tap, vec3(1.0)) > 2.7)
                break;
            sum += tap;
            count += 1.0;
        }
    }
    float energy = dot(sum, vec3(0.333));
    int steps = 0;
    while (energy > 0.5 && steps < 6)
    {
        energy *= 0.7;
        ++steps;
    }
    fragColour = vec4(sum / max(count, 1.0), float(steps) / 6.0);
}
