// Tangent-space normal mapping with a TBN matrix built from interpolated vectors.
precision mediump float;

uniform sampler2D uAlbedoMap;
uniform sampler2D uNormalMap;
uniform vec3 uLightDirection;
uniform float uBumpStrength;

varying vec2 vTexCoord;
varying vec3 vNormal;
varying vec3 vTangent;
varying vec3 vViewDirection;

vec3 perturbedNormal()
{
    vec3 n = normalize(vNormal);
    vec3 t = normalize(vTangent - n * dot(n, vTangent));
    vec3 b = cross(n, t);
    mat3 tbn = mat3(t, b, n);
    vec3 mapped = texture2D(uNormalMap, vTexCoord).xyz * 2.0 - 1.0;
    mapped.xy *= uBumpStrength;
    return normalize(tbn * mapped);
}

void main()
{
    vec3 n = perturbedNormal();
    vec3 l = normalize(uLightDirection);
    vec3 h = normalize(l + normalize(vViewDirection));
    vec3 albedo = texture2D(uAlbedoMap, vTexCoord).rgb;
    float diffuse = max(dot(n, l), 0.0);
    float specular = pow(max(dot(n, h), 0.0), 32.0) * 0.5;
    gl_FragColor = vec4(albedo * (0.1 + diffuse) + specular, 1.0);
}
