#version 300 es
// Triplanar texturing for terrain cliffs: three projections blended by the normal's sharpened axes.
precision highp float;

uniform sampler2D uRock;
uniform float uSharpness;
uniform float uTiling;

in vec3 vWorldPosition;
in vec3 vWorldNormal;

out vec4 fragColour;

vec3 triplanarWeights(vec3 n)
{
    vec3 w = pow(abs(n), vec3(1.0 + 7.0 * uSharpness));
    return w / (w.x + w.y + w.z);
}

vec3 triplanar(vec3 p, vec3 n)
{
    vec3 w = triplanarWeights(n);
    float scale = 0.5 + uTiling;
    vec3 x = texture(uRock, p.zy * scale).rgb;
    vec3 y = texture(uRock, p.xz * scale).rgb;
    vec3 z = texture(uRock, p.xy * scale).rgb;
    return x * w.x + y * w.y + z * w.z;
}

void main()
{
    vec3 n = normalize(vWorldNormal);
    fragColour = vec4(triplanar(vWorldPosition, n), 1.0);
}
