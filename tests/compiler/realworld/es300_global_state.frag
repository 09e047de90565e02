#version 300 es
// Global accumulators updated by helpers, out and inout parameters, and calls feeding calls.
precision highp float;

uniform vec3 uLightDirection;
uniform float uRoughness;

in vec3 vNormal;
in vec3 vView;

out vec4 fragColour;

vec3 gDiffuse = vec3(0.0);
vec3 gSpecular = vec3(0.0);
int gLightsApplied = 0;

void splitLight(vec3 colour, float amount, out vec3 diffusePart, out vec3 specularPart)
{
    diffusePart = colour * (1.0 - amount);
    specularPart = colour * amount;
}

void addLight(vec3 n, vec3 v, vec3 l, vec3 colour)
{
    vec3 diffusePart;
    vec3 specularPart;
    splitLight(colour, 0.3, diffusePart, specularPart);
    float ndl = max(dot(n, l), 0.0);
    gDiffuse += diffusePart * ndl;
    gSpecular += specularPart * pow(max(dot(reflect(-l, n), v), 0.0), 2.0 + 30.0 * (1.0 - uRoughness));
    gLightsApplied++;
}

void normaliseInPlace(inout vec3 a, inout vec3 b)
{
    a = normalize(a);
    b = normalize(b);
}

void main()
{
    vec3 n = vNormal;
    vec3 v = vView;
    normaliseInPlace(n, v);
    addLight(n, v, normalize(uLightDirection), vec3(1.0, 0.95, 0.9));
    addLight(n, v, normalize(vec3(-uLightDirection.x, 0.5, uLightDirection.z)), vec3(0.2, 0.3, 0.5));
    addLight(n, v, normalize(-n + vec3(0.0, 0.1, 0.0)), vec3(0.1));
    fragColour = vec4(gDiffuse + gSpecular, float(gLightsApplied) / 4.0);
}
