#version 300 es
// Ray against a height function: a coarse march, then bisection in a do-while loop.
precision highp float;

uniform float uAmplitude;
uniform vec2 uResolution;

out vec4 fragColour;

float terrain(vec2 p)
{
    return uAmplitude * 0.3 * sin(p.x * 1.7) * cos(p.y * 1.3);
}

float refine(vec3 origin, vec3 direction, float lo, float hi)
{
    int iterations = 0;
    float mid;
    do
    {
        mid = 0.5 * (lo + hi);
        vec3 p = origin + direction * mid;
        if (p.y < terrain(p.xz))
            hi = mid;
        else
            lo = mid;
        ++iterations;
        if (hi - lo < 1e-4)
            break;
    } while (iterations < 20);
    return mid;
}

void main()
{
    vec2 uv = (gl_FragCoord.xy / uResolution) * 2.0 - 1.0;
    vec3 origin = vec3(0.0, 1.0, 0.0);
    vec3 direction = normalize(vec3(uv.x, uv.y - 0.6, 1.5));
    float t = 0.0;
    float found = -1.0;
    for (int i = 0; i < 40; ++i)
    {
        float next = t + 0.15;
        vec3 p = origin + direction * next;
        if (p.y < terrain(p.xz))
        {
            found = refine(origin, direction, t, next);
            break;
        }
        t = next;
    }
    vec3 colour = found < 0.0 ? vec3(0.6, 0.75, 0.9) : vec3(0.4, 0.35, 0.2) * (1.0 + terrain((origin + direction * found).xz));
    fragColour = vec4(colour, found);
}
