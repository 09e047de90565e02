#version 300 es
// Signed-distance scene with smooth unions, soft shadows and ambient occlusion.
precision highp float;

uniform vec2 uResolution;
uniform float uTime;
uniform vec3 uSunDirection;

out vec4 fragColour;

float smin(float a, float b, float k)
{
    float h = clamp(0.5 + 0.5 * (b - a) / k, 0.0, 1.0);
    return mix(b, a, h) - k * h * (1.0 - h);
}

float sdBox(vec3 p, vec3 b)
{
    vec3 q = abs(p) - b;
    return length(max(q, 0.0)) + min(max(q.x, max(q.y, q.z)), 0.0);
}

float sdTorus(vec3 p, vec2 t)
{
    vec2 q = vec2(length(p.xz) - t.x, p.y);
    return length(q) - t.y;
}

float scene(vec3 p)
{
    float blob = length(p - vec3(0.0, 0.2 + 0.1 * sin(uTime), 0.0)) - 0.45;
    float box = sdBox(p - vec3(0.6, -0.1, 0.3), vec3(0.25));
    float ring = sdTorus(p - vec3(-0.6, -0.2, 0.2), vec2(0.3, 0.08));
    return min(smin(blob, box, 0.3), min(ring, p.y + 0.45));
}

vec3 sceneNormal(vec3 p)
{
    const float h = 0.001;
    const vec2 k = vec2(1.0, -1.0);
    return normalize(k.xyy * scene(p + k.xyy * h) + k.yyx * scene(p + k.yyx * h) +
                     k.yxy * scene(p + k.yxy * h) + k.xxx * scene(p + k.xxx * h));
}

float softShadow(vec3 origin, vec3 direction)
{
    float result = 1.0;
    float t = 0.02;
    for (int i = 0; i < 24; ++i)
    {
        float h = scene(origin + direction * t);
        result = min(result, 8.0 * h / t);
        t += clamp(h, 0.02, 0.2);
        if (result < 0.004 || t > 4.0)
            break;
    }
    return clamp(result, 0.0, 1.0);
}

float ambientOcclusion(vec3 p, vec3 n)
{
    float occlusion = 0.0;
    float weight = 1.0;
    for (int i = 1; i <= 4; ++i)
    {
        float h = 0.04 * float(i);
        occlusion += (h - scene(p + n * h)) * weight;
        weight *= 0.7;
    }
    return clamp(1.0 - 2.5 * occlusion, 0.0, 1.0);
}

void main()
{
    vec2 uv = (2.0 * gl_FragCoord.xy - uResolution) / uResolution.y;
    vec3 origin = vec3(0.0, 0.3, -2.5);
    vec3 direction = normalize(vec3(uv * 0.7, 1.0));
    float t = 0.0;
    bool hit = false;
    for (int i = 0; i < 64; ++i)
    {
        float d = scene(origin + direction * t);
        if (d < 0.0005)
        {
            hit = true;
            break;
        }
        t += d;
        if (t > 10.0)
            break;
    }
    vec3 colour = vec3(0.7, 0.8, 0.95);
    if (hit)
    {
        vec3 p = origin + direction * t;
        vec3 n = sceneNormal(p);
        vec3 l = normalize(uSunDirection + vec3(0.0, 1.0, 0.0));
        float shadow = softShadow(p + n * 0.01, l);
        float diffuse = max(dot(n, l), 0.0) * shadow;
        colour = vec3(0.8, 0.7, 0.6) * (0.2 * ambientOcclusion(p, n) + 0.8 * diffuse);
    }
    fragColour = vec4(colour, 1.0);
}
