#version 300 es
// Structures passed in, out and back: a small surface/light model split into helpers.
precision highp float;

struct Surface
{
    vec3 normal;
    vec3 albedo;
    float gloss;
};

struct Light
{
    vec3 direction;
    vec3 colour;
};

struct Shading
{
    vec3 diffuse;
    vec3 specular;
};

uniform Light uKeyLight;
uniform Light uFillLights[2];
uniform vec3 uViewDirection;

in vec3 vNormal;
in vec3 vAlbedo;

out vec4 fragColour;

Surface makeSurface(vec3 n, vec3 albedo)
{
    Surface s;
    s.normal = normalize(n);
    s.albedo = albedo;
    s.gloss = 8.0 + 56.0 * clamp(albedo.g, 0.0, 1.0);
    return s;
}

Shading shadeOne(Surface s, Light light, vec3 view)
{
    vec3 l = normalize(light.direction);
    vec3 h = normalize(l + view);
    return Shading(light.colour * max(dot(s.normal, l), 0.0),
                   light.colour * pow(max(dot(s.normal, h), 0.0), s.gloss));
}

void accumulate(inout Shading total, Shading add, float weight)
{
    total.diffuse += add.diffuse * weight;
    total.specular += add.specular * weight;
}

void main()
{
    Surface s = makeSurface(vNormal, vAlbedo);
    vec3 view = normalize(uViewDirection);
    Shading total = shadeOne(s, uKeyLight, view);
    for (int i = 0; i < 2; ++i)
        accumulate(total, shadeOne(s, uFillLights[i], view), 0.3);
    fragColour = vec4(s.albedo * total.diffuse + total.specular * 0.5, 1.0);
}
