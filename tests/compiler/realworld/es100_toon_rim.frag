// Cel shading: lighting quantised into bands, a hard specular spot and a rim outline.
precision mediump float;

uniform vec3 uLightDirection;
uniform vec3 uBaseColour;
uniform float uBands;

varying vec3 vNormal;
varying vec3 vViewDirection;

float quantise(float value, float bands)
{
    return floor(value * bands + 0.5) / bands;
}

void main()
{
    vec3 n = normalize(vNormal);
    vec3 v = normalize(vViewDirection);
    vec3 l = normalize(uLightDirection);
    float ndl = max(dot(n, l), 0.0);
    float tone = quantise(ndl, 2.0 + floor(uBands * 3.0));
    float spec = smoothstep(0.92, 0.95, dot(reflect(-l, n), v));
    float rim = 1.0 - max(dot(n, v), 0.0);
    rim = smoothstep(0.55, 0.75, rim) * ndl;
    vec3 colour = uBaseColour * (0.3 + 0.7 * tone) + vec3(spec * 0.6) + vec3(rim * 0.4);
    gl_FragColor = vec4(colour, 1.0);
}
