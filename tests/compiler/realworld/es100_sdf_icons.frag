// Flat icons from 2D distance functions, each shape a helper that returns another helper's call.
precision mediump float;

uniform vec2 uResolution;
uniform vec3 uInk;
uniform vec3 uPaper;

float circle(vec2 p, float r)
{
    return length(p) - r;
}

float ring(vec2 p, float r, float width)
{
    return abs(circle(p, r)) - width;
}

float segment(vec2 p, vec2 a, vec2 b, float width)
{
    vec2 pa = p - a;
    vec2 ba = b - a;
    float h = clamp(dot(pa, ba) / dot(ba, ba), 0.0, 1.0);
    return circle(pa - ba * h, width);
}

float clockIcon(vec2 p)
{
    return min(ring(p, 0.6, 0.05), min(segment(p, vec2(0.0), vec2(0.0, 0.4), 0.04),
                                       segment(p, vec2(0.0), vec2(0.3, -0.1), 0.04)));
}

float icon(vec2 p)
{
    return clockIcon(p * 1.1) / 1.1;
}

void main()
{
    vec2 p = (2.0 * gl_FragCoord.xy - uResolution) / uResolution.y;
    float d = icon(p);
    float coverage = clamp(0.5 - d * uResolution.y * 0.5, 0.0, 1.0);
    gl_FragColor = vec4(mix(uPaper, uInk, coverage), 1.0);
}
