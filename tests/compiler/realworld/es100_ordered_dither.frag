// Banding-free gradient: a 4x4 Bayer matrix computed from the pixel position, no lookup texture.
precision mediump float;

uniform vec3 uTop;
uniform vec3 uBottom;
uniform float uLevels;

varying vec2 vTexCoord;

float bayer2(vec2 p)
{
    p = floor(p);
    return mod(2.0 * p.y + p.x * (1.0 + 2.0 * p.y), 4.0) / 4.0;
}

float bayer4(vec2 p)
{
    vec2 fine = mod(p, 2.0);
    vec2 coarse = floor(mod(p, 4.0) / 2.0);
    return bayer2(fine) * 0.25 + bayer2(coarse);
}

void main()
{
    float levels = 4.0 + floor(uLevels * 12.0);
    vec3 colour = mix(uBottom, uTop, clamp(vTexCoord.y, 0.0, 1.0));
    float threshold = bayer4(gl_FragCoord.xy) - 0.5;
    colour = floor(colour * levels + threshold + 0.5) / levels;
    gl_FragColor = vec4(colour, 1.0);
}
