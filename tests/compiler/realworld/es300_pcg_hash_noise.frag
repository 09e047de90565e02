#version 300 es
// White noise and dithering from the PCG integer hash, the usual replacement for sine hashes.
precision highp float;
precision highp int;

uniform uint uFrame;

out vec4 fragColour;

uint pcg(uint v)
{
    uint state = v * 747796405u + 2891336453u;
    uint word = ((state >> ((state >> 28u) + 4u)) ^ state) * 277803737u;
    return (word >> 22u) ^ word;
}

float random(uvec2 pixel, uint frame)
{
    return float(pcg(pixel.x + pcg(pixel.y + pcg(frame)))) / 4294967295.0;
}

void main()
{
    uvec2 pixel = uvec2(gl_FragCoord.xy);
    float n = random(pixel, uFrame);
    fragColour = vec4(vec3(n), 1.0);
}
