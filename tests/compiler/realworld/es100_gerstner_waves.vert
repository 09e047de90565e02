// Ocean surface: four Gerstner waves displace a flat grid; the normal comes from the same sum.
attribute vec3 aPosition;

uniform mat4 uModelViewProjection;
uniform float uTime;
uniform vec4 uWaveDirections[4];
uniform vec4 uWaveShapes[4]; // amplitude, wavelength, speed, steepness

varying vec3 vNormal;
varying float vHeight;

void main()
{
    vec3 p = aPosition;
    vec3 normal = vec3(0.0, 1.0, 0.0);
    for (int i = 0; i < 4; i++)
    {
        vec2 d = normalize(uWaveDirections[i].xy + vec2(0.1));
        float amplitude = uWaveShapes[i].x * 0.2;
        float k = 6.28318 / (uWaveShapes[i].y * 4.0 + 0.5);
        float phase = k * dot(d, aPosition.xz) - uWaveShapes[i].z * uTime;
        float q = uWaveShapes[i].w / (k * amplitude * 4.0 + 1.0);
        p.xz += q * amplitude * d * cos(phase);
        p.y += amplitude * sin(phase);
        normal.xz -= d * k * amplitude * cos(phase);
        normal.y -= q * k * amplitude * sin(phase);
    }
    vNormal = normalize(normal);
    vHeight = p.y;
    gl_Position = uModelViewProjection * vec4(p, 1.0);
}
