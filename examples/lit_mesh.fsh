#version 300 es
// Lit mesh, fragment stage: Blinn-Phong shading of a normal-mapped surface under one
// directional light and up to four point lights, faded into distance fog.
// Pairs with lit_mesh.vsh.
precision mediump float;

const int MAX_POINT_LIGHTS = 4;

in vec3 vWorldPosition;
in vec3 vNormal;
in vec3 vTangent;
in vec3 vBitangent;
in vec2 vTexCoord;

uniform sampler2D uAlbedoMap;
uniform sampler2D uNormalMap;

uniform vec3 uCameraPosition;
uniform vec3 uAmbientColour;
uniform vec3 uSunDirection; // towards the sun, normalised
uniform vec3 uSunColour;
uniform vec4 uPointLights[MAX_POINT_LIGHTS]; // xyz: position, w: radius
uniform vec3 uPointColours[MAX_POINT_LIGHTS];
uniform int uPointLightCount;
uniform float uShininess;

uniform vec3 uFogColour;
uniform vec2 uFogRange; // x: distance where fog starts, y: distance where it is complete

out vec4 fragColour;

vec3 blinnPhong(vec3 normal, vec3 toEye, vec3 toLight, vec3 lightColour, vec3 albedo)
{
    float diffuse = max(dot(normal, toLight), 0.0);
    vec3 halfway = normalize(toLight + toEye);
    float specular = diffuse > 0.0 ? pow(max(dot(normal, halfway), 0.0), uShininess) : 0.0;
    return lightColour * (albedo * diffuse + vec3(specular));
}

void main()
{
    vec4 albedo = texture(uAlbedoMap, vTexCoord);
    vec3 tangentNormal = texture(uNormalMap, vTexCoord).xyz * 2.0 - 1.0;
    mat3 tangentToWorld = mat3(normalize(vTangent), normalize(vBitangent), normalize(vNormal));
    vec3 normal = normalize(tangentToWorld * tangentNormal);
    vec3 toEye = normalize(uCameraPosition - vWorldPosition);

    vec3 colour = uAmbientColour * albedo.rgb;
    colour += blinnPhong(normal, toEye, uSunDirection, uSunColour, albedo.rgb);

    for (int i = 0; i < MAX_POINT_LIGHTS; ++i)
    {
        if (i >= uPointLightCount)
            break;
        vec3 toLight = uPointLights[i].xyz - vWorldPosition;
        float distanceToLight = length(toLight);
        float falloff = clamp(1.0 - distanceToLight / uPointLights[i].w, 0.0, 1.0);
        colour += blinnPhong(normal, toEye, toLight / distanceToLight, uPointColours[i] * falloff * falloff, albedo.rgb);
    }

    float fog = smoothstep(uFogRange.x, uFogRange.y, length(uCameraPosition - vWorldPosition));
    fragColour = vec4(mix(colour, uFogColour, fog), albedo.a);
}
