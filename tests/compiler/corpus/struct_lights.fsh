// An array of light structures accumulated in a loop.
precision mediump float;

struct Light
{
    vec3 position;
    vec3 color;
    float radius;
};

uniform Light uLights[4];
varying vec3 vPosition;
varying vec3 vNormal;

void main()
{
    vec3 n = normalize(vNormal);
    vec3 result = vec3(0.0);
    for (int i = 0; i < 4; i++)
    {
        vec3 toLight = uLights[i].position - vPosition;
        float d = length(toLight);
        float falloff = clamp(1.0 - d / uLights[i].radius, 0.0, 1.0);
        result += uLights[i].color * max(dot(n, toLight / d), 0.0) * falloff;
    }
    gl_FragColor = vec4(result, 1.0);
}
