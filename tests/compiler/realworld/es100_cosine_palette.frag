// Animated rings coloured with a cosine palette.
precision mediump float;

uniform float uTime;
uniform vec3 uPhase;

varying vec2 vTexCoord;

vec3 palette(float t, vec3 a, vec3 b, vec3 c, vec3 d)
{
    return a + b * cos(6.28318 * (c * t + d));
}

void main()
{
    vec2 p = vTexCoord - 0.5;
    float r = length(p);
    float rings = sin(r * 24.0 - uTime * 3.0) * 0.5 + 0.5;
    vec3 colour = palette(r + uTime * 0.1, vec3(0.5), vec3(0.5), vec3(1.0), uPhase);
    gl_FragColor = vec4(colour * (0.4 + 0.6 * rings), 1.0);
}
