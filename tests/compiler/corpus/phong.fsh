// Per-pixel Phong lighting with one directional light.
precision highp float;

varying vec3 vNormal;
varying vec3 vViewDir;
varying vec2 vTexCoord;

uniform sampler2D uDiffuseMap;
uniform vec3 uLightDir;
uniform vec3 uLightColor;
uniform float uShininess;

void main()
{
    vec3 n = normalize(vNormal);
    vec3 v = normalize(vViewDir);
    vec3 l = normalize(uLightDir);
    float diffuse = max(dot(n, l), 0.0);
    vec3 h = normalize(l + v);
    float specular = pow(max(dot(n, h), 0.0), uShininess);
    vec3 albedo = texture2D(uDiffuseMap, vTexCoord).rgb;
    vec3 color = albedo * uLightColor * diffuse + uLightColor * specular;
    gl_FragColor = vec4(color, 1.0);
}
