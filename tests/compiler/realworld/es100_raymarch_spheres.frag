// Sphere tracing two spheres over a ground plane, normals by central differences.
precision highp float;

uniform float uTime;
uniform vec2 uResolution;
uniform vec3 uLightDirection;

float sdSphere(vec3 p, float r)
{
    return length(p) - r;
}

float map(vec3 p)
{
    float a = sdSphere(p - vec3(-0.6, 0.0, 0.0), 0.5);
    float b = sdSphere(p - vec3(0.7, 0.1 * uTime, 0.2), 0.4);
    float ground = p.y + 0.5;
    return min(min(a, b), ground);
}

vec3 normalAt(vec3 p)
{
    const vec2 e = vec2(0.002, 0.0);
    return normalize(vec3(map(p + e.xyy) - map(p - e.xyy),
                          map(p + e.yxy) - map(p - e.yxy),
                          map(p + e.yyx) - map(p - e.yyx)));
}

float trace(vec3 origin, vec3 direction)
{
    float t = 0.0;
    for (int i = 0; i < 48; i++)
    {
        float d = map(origin + direction * t);
        if (d < 0.001)
            return t;
        t += d;
        if (t > 20.0)
            break;
    }
    return -1.0;
}

void main()
{
    vec2 uv = (2.0 * gl_FragCoord.xy - uResolution) / uResolution.y;
    vec3 origin = vec3(0.0, 0.4, -3.0);
    vec3 direction = normalize(vec3(uv * 0.6, 1.0));
    float t = trace(origin, direction);
    vec3 colour = vec3(0.55, 0.7, 0.9) - direction.y * 0.3;
    if (t > 0.0)
    {
        vec3 n = normalAt(origin + direction * t);
        float diffuse = max(dot(n, normalize(uLightDirection)), 0.0);
        colour = vec3(0.9, 0.8, 0.7) * (0.15 + 0.85 * diffuse);
    }
    gl_FragColor = vec4(colour, 1.0);
}
