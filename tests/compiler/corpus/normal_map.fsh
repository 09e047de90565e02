// Tangent-space normal mapping through a TBN matrix.
precision mediump float;

varying vec2 vTexCoord;
varying vec3 vTangent;
varying vec3 vBitangent;
varying vec3 vNormal;
uniform sampler2D uNormalMap;
uniform vec3 uLightDir;

void main()
{
    mat3 tbn = mat3(normalize(vTangent), normalize(vBitangent), normalize(vNormal));
    vec3 sampled = texture2D(uNormalMap, vTexCoord).xyz * 2.0 - 1.0;
    vec3 n = normalize(tbn * sampled);
    float lambert = max(dot(n, uLightDir), 0.0);
    gl_FragColor = vec4(vec3(lambert), 1.0);
}
