#version 300 es
// A signed-distance-field scene rendered by sphere tracing: a dozen primitives combined
// with smooth operators, soft shadows, ambient occlusion, fog and two samples per pixel.
precision highp float;
precision highp int;

uniform vec3 iResolution;
uniform float iTime;
uniform vec3 uCameraPosition;
uniform vec3 uCameraTarget;
uniform vec3 uSunDirection;
uniform vec3 uSunColour;
uniform vec3 uSkyColour;
uniform float uFogDensity;

in vec2 vFragCoord;
out vec4 fragColour;

const int MAX_STEPS = 128;
const float MAX_DISTANCE = 80.0;
const float SURFACE_EPSILON = 0.0005;
const float PI = 3.14159265;

struct Hit
{
    float distance;
    float material;
};

mat2 rotate2d(float angle)
{
    float c = cos(angle);
    float s = sin(angle);
    return mat2(c, -s, s, c);
}

float sdSphere(vec3 p, float radius)
{
    return length(p) - radius;
}

float sdBox(vec3 p, vec3 halfSize)
{
    vec3 q = abs(p) - halfSize;
    return length(max(q, 0.0)) + min(max(q.x, max(q.y, q.z)), 0.0);
}

float sdRoundBox(vec3 p, vec3 halfSize, float radius)
{
    vec3 q = abs(p) - halfSize + radius;
    return length(max(q, 0.0)) + min(max(q.x, max(q.y, q.z)), 0.0) - radius;
}

float sdTorus(vec3 p, vec2 radii)
{
    vec2 q = vec2(length(p.xz) - radii.x, p.y);
    return length(q) - radii.y;
}

float sdCapsule(vec3 p, vec3 a, vec3 b, float radius)
{
    vec3 pa = p - a;
    vec3 ba = b - a;
    float h = clamp(dot(pa, ba) / dot(ba, ba), 0.0, 1.0);
    return length(pa - ba * h) - radius;
}

float sdCylinder(vec3 p, float height, float radius)
{
    vec2 d = abs(vec2(length(p.xz), p.y)) - vec2(radius, height);
    return min(max(d.x, d.y), 0.0) + length(max(d, 0.0));
}

float sdCone(vec3 p, vec2 sinCos, float height)
{
    vec2 q = height * vec2(sinCos.x / sinCos.y, -1.0);
    vec2 w = vec2(length(p.xz), p.y);
    vec2 a = w - q * clamp(dot(w, q) / dot(q, q), 0.0, 1.0);
    vec2 b = w - q * vec2(clamp(w.x / q.x, 0.0, 1.0), 1.0);
    float k = sign(q.y);
    float d = min(dot(a, a), dot(b, b));
    float s = max(k * (w.x * q.y - w.y * q.x), k * (w.y - q.y));
    return sqrt(d) * sign(s);
}

float sdOctahedron(vec3 p, float size)
{
    p = abs(p);
    return (p.x + p.y + p.z - size) * 0.57735027;
}

float sdPlane(vec3 p, vec3 normal, float offset)
{
    return dot(p, normal) + offset;
}

float opSmoothUnion(float a, float b, float k)
{
    float h = clamp(0.5 + 0.5 * (b - a) / k, 0.0, 1.0);
    return mix(b, a, h) - k * h * (1.0 - h);
}

float opSmoothSubtraction(float a, float b, float k)
{
    float h = clamp(0.5 - 0.5 * (b + a) / k, 0.0, 1.0);
    return mix(b, -a, h) + k * h * (1.0 - h);
}

float opSmoothIntersection(float a, float b, float k)
{
    float h = clamp(0.5 - 0.5 * (b - a) / k, 0.0, 1.0);
    return mix(b, a, h) + k * h * (1.0 - h);
}

vec3 opRepeat(vec3 p, vec3 period)
{
    return mod(p + 0.5 * period, period) - 0.5 * period;
}

vec3 opTwist(vec3 p, float amount)
{
    float angle = amount * p.y;
    vec2 xz = rotate2d(angle) * p.xz;
    return vec3(xz.x, p.y, xz.y);
}

Hit closer(Hit a, Hit b)
{
    return a.distance < b.distance ? a : b;
}

float hash31(vec3 p)
{
    p = fract(p * 0.3183099 + 0.1);
    p *= 17.0;
    return fract(p.x * p.y * p.z * (p.x + p.y + p.z));
}

float valueNoise(vec3 x)
{
    vec3 i = floor(x);
    vec3 f = fract(x);
    f = f * f * (3.0 - 2.0 * f);
    return mix(mix(mix(hash31(i + vec3(0.0, 0.0, 0.0)), hash31(i + vec3(1.0, 0.0, 0.0)), f.x),
                   mix(hash31(i + vec3(0.0, 1.0, 0.0)), hash31(i + vec3(1.0, 1.0, 0.0)), f.x), f.y),
               mix(mix(hash31(i + vec3(0.0, 0.0, 1.0)), hash31(i + vec3(1.0, 0.0, 1.0)), f.x),
                   mix(hash31(i + vec3(0.0, 1.0, 1.0)), hash31(i + vec3(1.0, 1.0, 1.0)), f.x), f.y),
               f.z);
}

Hit map(vec3 p)
{
    // The ground undulates a little.
    float ground = sdPlane(p, vec3(0.0, 1.0, 0.0), 1.0) + 0.05 * valueNoise(p * 2.0);
    Hit scene = Hit(ground, 1.0);

    // A blob of three spheres melted together.
    vec3 blobCentre = vec3(0.0, 0.4 + 0.2 * sin(iTime), 0.0);
    float blob = sdSphere(p - blobCentre, 0.6);
    blob = opSmoothUnion(blob, sdSphere(p - blobCentre - vec3(0.6 * cos(iTime), 0.3, 0.0), 0.35), 0.3);
    blob = opSmoothUnion(blob, sdSphere(p - blobCentre - vec3(0.0, -0.2, 0.6 * sin(iTime)), 0.4), 0.3);
    scene = closer(scene, Hit(blob, 2.0));

    // A rounded box with a spherical bite out of it.
    vec3 boxPosition = p - vec3(2.2, 0.0, 0.5);
    boxPosition.xz = rotate2d(0.3 * iTime) * boxPosition.xz;
    float box = sdRoundBox(boxPosition, vec3(0.6, 0.8, 0.6), 0.1);
    box = opSmoothSubtraction(sdSphere(boxPosition - vec3(0.0, 0.5, 0.0), 0.55), box, 0.05);
    scene = closer(scene, Hit(box, 3.0));

    // A twisted column.
    float column = sdBox(opTwist(p - vec3(-2.2, 0.5, 0.0), 1.5), vec3(0.3, 1.5, 0.3));
    scene = closer(scene, Hit(column, 4.0));

    // A torus around a capsule.
    float ring = sdTorus(p - vec3(0.0, 0.0, 2.5), vec2(0.7, 0.15));
    float rod = sdCapsule(p, vec3(0.0, -1.0, 2.5), vec3(0.0, 1.2, 2.5), 0.12);
    scene = closer(scene, Hit(min(ring, rod), 5.0));

    // A cone and a cylinder intersected softly.
    vec3 conePosition = p - vec3(-1.5, 0.2, 2.2);
    float cone = sdCone(conePosition - vec3(0.0, 0.8, 0.0), vec2(sin(0.5), cos(0.5)), 1.2);
    float drum = sdCylinder(conePosition, 0.6, 0.5);
    scene = closer(scene, Hit(opSmoothIntersection(cone, drum, 0.1), 6.0));

    // A field of small octahedra, repeated.
    vec3 cell = opRepeat(p - vec3(0.0, -0.6, -4.0), vec3(1.2, 0.0, 1.2));
    cell.y = p.y + 0.6;
    float gems = sdOctahedron(cell, 0.25);
    gems = max(gems, sdBox(p - vec3(0.0, -0.6, -4.0), vec3(3.0, 1.0, 1.5)));
    scene = closer(scene, Hit(gems, 7.0));
    return scene;
}

vec3 calculateNormal(vec3 p)
{
    // The tetrahedron technique: four samples instead of six.
    const vec2 k = vec2(1.0, -1.0);
    const float h = 0.0005;
    return normalize(k.xyy * map(p + k.xyy * h).distance + k.yyx * map(p + k.yyx * h).distance +
                     k.yxy * map(p + k.yxy * h).distance + k.xxx * map(p + k.xxx * h).distance);
}

Hit raymarch(vec3 origin, vec3 direction)
{
    float travelled = 0.0;
    float material = -1.0;
    for (int i = 0; i < MAX_STEPS; i++)
    {
        Hit hit = map(origin + direction * travelled);
        if (abs(hit.distance) < SURFACE_EPSILON * travelled)
        {
            material = hit.material;
            break;
        }
        travelled += hit.distance;
        if (travelled > MAX_DISTANCE)
            break;
    }
    return Hit(travelled, material);
}

float softShadow(vec3 origin, vec3 direction, float minT, float maxT, float hardness)
{
    float result = 1.0;
    float t = minT;
    for (int i = 0; i < 48; i++)
    {
        float h = map(origin + direction * t).distance;
        result = min(result, hardness * h / t);
        t += clamp(h, 0.02, 0.25);
        if (result < 0.001 || t > maxT)
            break;
    }
    return clamp(result, 0.0, 1.0);
}

float ambientOcclusion(vec3 p, vec3 normal)
{
    float occlusion = 0.0;
    float weight = 1.0;
    for (int i = 0; i < 5; i++)
    {
        float h = 0.01 + 0.12 * float(i) / 4.0;
        float d = map(p + normal * h).distance;
        occlusion += (h - d) * weight;
        weight *= 0.95;
    }
    return clamp(1.0 - 3.0 * occlusion, 0.0, 1.0);
}

vec3 materialColour(float material, vec3 p)
{
    if (material < 1.5)
    {
        float checker = mod(floor(p.x) + floor(p.z), 2.0);
        return mix(vec3(0.25, 0.22, 0.2), vec3(0.45, 0.42, 0.38), checker);
    }
    if (material < 2.5)
        return vec3(0.8, 0.25, 0.1);
    if (material < 3.5)
        return vec3(0.2, 0.45, 0.8);
    if (material < 4.5)
        return vec3(0.9, 0.75, 0.3);
    if (material < 5.5)
        return vec3(0.6, 0.6, 0.65);
    if (material < 6.5)
        return vec3(0.3, 0.7, 0.35);
    return vec3(0.85, 0.85, 0.95);
}

vec3 sky(vec3 direction)
{
    float horizon = pow(1.0 - max(direction.y, 0.0), 4.0);
    vec3 colour = mix(uSkyColour, vec3(0.85, 0.9, 1.0), horizon);
    float sun = pow(max(dot(direction, normalize(uSunDirection)), 0.0), 256.0);
    return colour + uSunColour * sun;
}

vec3 shade(vec3 origin, vec3 direction)
{
    Hit hit = raymarch(origin, direction);
    if (hit.material < 0.0)
        return sky(direction);

    vec3 p = origin + direction * hit.distance;
    vec3 normal = calculateNormal(p);
    vec3 light = normalize(uSunDirection);
    vec3 halfVector = normalize(light - direction);
    vec3 albedo = materialColour(hit.material, p);

    float diffuse = max(dot(normal, light), 0.0);
    float shadow = softShadow(p + normal * 0.01, light, 0.02, 12.0, 16.0);
    float occlusion = ambientOcclusion(p, normal);
    float specular = pow(max(dot(normal, halfVector), 0.0), 48.0) * diffuse * shadow;
    float fresnel = pow(clamp(1.0 + dot(normal, direction), 0.0, 1.0), 5.0);
    float skyLight = clamp(0.5 + 0.5 * normal.y, 0.0, 1.0);

    vec3 colour = albedo * uSunColour * diffuse * shadow;
    colour += albedo * uSkyColour * skyLight * occlusion * 0.6;
    colour += uSunColour * specular * 0.8;
    colour += sky(reflect(direction, normal)) * fresnel * occlusion * 0.3;

    float fog = 1.0 - exp(-uFogDensity * hit.distance * hit.distance);
    return mix(colour, sky(direction), fog);
}

mat3 lookAt(vec3 eye, vec3 target, float roll)
{
    vec3 forward = normalize(target - eye);
    vec3 side = vec3(sin(roll), cos(roll), 0.0);
    vec3 right = normalize(cross(forward, side));
    vec3 up = cross(right, forward);
    return mat3(right, up, forward);
}

void main()
{
    mat3 camera = lookAt(uCameraPosition, uCameraTarget, 0.0);
    vec3 colour = vec3(0.0);
    for (int sampleIndex = 0; sampleIndex < 2; sampleIndex++)
    {
        vec2 jitter = vec2(float(sampleIndex), 0.5) - 0.5;
        vec2 uv = (2.0 * (vFragCoord + 0.5 * jitter) - iResolution.xy) / iResolution.y;
        vec3 direction = camera * normalize(vec3(uv, 1.8));
        colour += shade(uCameraPosition, direction);
    }
    colour *= 0.5;

    // Filmic curve, then gamma.
    colour = colour * (2.51 * colour + 0.03) / (colour * (2.43 * colour + 0.59) + 0.14);
    colour = pow(clamp(colour, 0.0, 1.0), vec3(1.0 / 2.2));
    vec2 q = vFragCoord / iResolution.xy;
    colour *= 0.5 + 0.5 * pow(16.0 * q.x * q.y * (1.0 - q.x) * (1.0 - q.y), 0.2);
    fragColour = vec4(colour, 1.0);
}
