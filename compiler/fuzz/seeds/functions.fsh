// User functions with in, out and inout parameters and an early return.
precision highp float;

varying vec3 vNormal;
varying vec3 vPosition;
uniform vec3 uLightPos;
uniform vec3 uAmbient;

float attenuate(float distance)
{
    if (distance > 50.0)
        return 0.0;
    return 1.0 / (1.0 + 0.1 * distance + 0.01 * distance * distance);
}

void lightVector(in vec3 position, out vec3 direction, out float distance)
{
    vec3 delta = uLightPos - position;
    distance = length(delta);
    direction = delta / distance;
}

void addAmbient(inout vec3 color)
{
    color += uAmbient;
}

void main()
{
    vec3 direction;
    float distance;
    lightVector(vPosition, direction, distance);
    vec3 color = vec3(max(dot(normalize(vNormal), direction), 0.0) * attenuate(distance));
    addAmbient(color);
    gl_FragColor = vec4(color, 1.0);
}
