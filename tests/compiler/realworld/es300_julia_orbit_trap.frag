#version 300 es
// Julia set coloured with a smooth iteration count and an orbit trap.
precision highp float;

uniform vec2 uConstant;
uniform vec2 uResolution;

out vec4 fragColour;

vec2 complexSquare(vec2 z)
{
    return vec2(z.x * z.x - z.y * z.y, 2.0 * z.x * z.y);
}

void main()
{
    vec2 z = (gl_FragCoord.xy / uResolution - 0.5) * 3.0;
    vec2 c = vec2(-0.8, 0.156) + (uConstant - 0.5) * 0.05;
    float trap = 10.0;
    float iterations = 0.0;
    for (int i = 0; i < 10; ++i)
    {
        z = complexSquare(z) + c;
        trap = min(trap, abs(z.x * z.y));
        if (dot(z, z) > 256.0)
            break;
        iterations += 1.0;
    }
    float smoothCount = iterations - log2(max(log2(dot(z, z)), 1.0));
    fragColour = vec4(smoothCount / 10.0, sqrt(trap), 0.5 + 0.5 * cos(smoothCount), 1.0);
}
