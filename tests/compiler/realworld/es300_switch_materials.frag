#version 300 es
// Shading model chosen per material with a switch, including deliberate fall-through.
precision highp float;
precision highp int;

uniform int uShadingModel;
uniform vec3 uLightDirection;

in vec3 vNormal;
in vec3 vColour;
flat in int vMaterialFlags;

out vec4 fragColour;

vec3 shade(int model, vec3 n, vec3 l, vec3 albedo)
{
    vec3 result = vec3(0.0);
    switch (model)
    {
    case 0:
        result = albedo;
        break;
    case 1:
        result = albedo * 0.1;
        // fall through: lambert adds to the ambient term
    case 2:
        result += albedo * max(dot(n, l), 0.0);
        break;
    case 3:
    {
        float wrap = (dot(n, l) + 0.5) / 1.5;
        result = albedo * max(wrap, 0.0);
        break;
    }
    default:
        result = vec3(1.0, 0.0, 1.0);
        break;
    }
    return result;
}

void main()
{
    vec3 n = normalize(vNormal);
    vec3 l = normalize(uLightDirection);
    vec3 colour = shade(uShadingModel - 1, n, l, vColour) + shade(vMaterialFlags + 2, n, l, vColour) * 0.5;
    fragColour = vec4(colour, 1.0);
}
