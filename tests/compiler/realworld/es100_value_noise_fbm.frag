// Domain-warped fractal value noise, the staple of procedural clouds and marble.
precision highp float;

uniform float uTime;
uniform vec3 uColourA;
uniform vec3 uColourB;

varying vec2 vTexCoord;

float hash(vec2 p)
{
    p = fract(p * vec2(0.3183099, 0.3678794)) * 17.0;
    return fract(p.x * p.y * (p.x + p.y));
}

float noise(vec2 p)
{
    vec2 i = floor(p);
    vec2 f = fract(p);
    vec2 u = f * f * (3.0 - 2.0 * f);
    float a = hash(i);
    float b = hash(i + vec2(1.0, 0.0));
    float c = hash(i + vec2(0.0, 1.0));
    float d = hash(i + vec2(1.0, 1.0));
    return mix(mix(a, b, u.x), mix(c, d, u.x), u.y);
}

float fbm(vec2 p)
{
    float sum = 0.0;
    float amplitude = 0.5;
    for (int i = 0; i < 5; i++)
    {
        sum += amplitude * noise(p);
        p = mat2(1.6, 1.2, -1.2, 1.6) * p;
        amplitude *= 0.5;
    }
    return sum;
}

float pattern(vec2 p)
{
    vec2 q = vec2(fbm(p), fbm(p + vec2(5.2, 1.3)));
    return fbm(p + 2.0 * q + 0.1 * uTime) * 0.5 + 0.25;
}

void main()
{
    float f = pattern(vTexCoord * 3.0);
    gl_FragColor = vec4(mix(uColourA, uColourB, clamp(f * 1.5, 0.0, 1.0)), 1.0);
}
