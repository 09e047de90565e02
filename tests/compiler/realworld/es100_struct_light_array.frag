// Forward lighting over a fixed array of point lights kept in a uniform struct array.
precision mediump float;

struct PointLight
{
    vec3 position;
    vec3 colour;
    float radius;
};

const int LIGHT_COUNT = 3;
uniform PointLight uLights[LIGHT_COUNT];
uniform vec3 uAmbient;

varying vec3 vPosition;
varying vec3 vNormal;

vec3 pointLight(PointLight light, vec3 position, vec3 normal)
{
    vec3 toLight = light.position - position;
    float distance = length(toLight);
    float falloff = clamp(1.0 - distance / (light.radius * 4.0), 0.0, 1.0);
    falloff *= falloff;
    return light.colour * max(dot(normal, toLight / distance), 0.0) * falloff;
}

void main()
{
    vec3 n = normalize(vNormal);
    vec3 colour = uAmbient * 0.2;
    for (int i = 0; i < LIGHT_COUNT; i++)
        colour += pointLight(uLights[i], vPosition, n);
    gl_FragColor = vec4(colour, 1.0);
}
