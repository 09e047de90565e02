// Per-pixel Blinn-Phong with one point light, distance attenuation and a diffuse map.
precision mediump float;

uniform sampler2D uDiffuseMap;
uniform vec3 uLightPosition;
uniform vec3 uLightColour;
uniform vec3 uCameraPosition;
uniform float uShininess;
uniform float uAmbient;

varying vec3 vWorldPosition;
varying vec3 vNormal;
varying vec2 vTexCoord;

float attenuation(float distance)
{
    return 1.0 / (1.0 + 0.35 * distance + 0.44 * distance * distance);
}

void main()
{
    vec3 albedo = texture2D(uDiffuseMap, vTexCoord).rgb;
    vec3 n = normalize(vNormal);
    vec3 toLight = uLightPosition - vWorldPosition;
    float distance = length(toLight);
    vec3 l = toLight / distance;
    vec3 v = normalize(uCameraPosition - vWorldPosition);
    vec3 h = normalize(l + v);

    float diffuse = max(dot(n, l), 0.0);
    float specular = diffuse > 0.0 ? pow(max(dot(n, h), 0.0), uShininess * 64.0) : 0.0;
    vec3 colour = albedo * (uAmbient + diffuse * uLightColour * attenuation(distance));
    colour += specular * uLightColour;
    gl_FragColor = vec4(colour, 1.0);
}
