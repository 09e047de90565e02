// Terrain-style diffuse lighting with a detail texture and exponential-squared fog.
precision mediump float;

uniform sampler2D uGroundTexture;
uniform sampler2D uDetailTexture;
uniform vec3 uSunDirection;
uniform vec3 uFogColour;
uniform float uFogDensity;

varying vec2 vTexCoord;
varying vec3 vNormal;
varying float vViewDepth;

float fogFactor(float depth, float density)
{
    const float LOG2 = 1.442695;
    float z = depth * 4.0;
    return clamp(exp2(-density * density * z * z * LOG2), 0.0, 1.0);
}

void main()
{
    vec3 ground = texture2D(uGroundTexture, vTexCoord).rgb;
    float detail = texture2D(uDetailTexture, vTexCoord * 8.0).r;
    vec3 albedo = ground * (0.75 + 0.5 * detail);
    float lambert = clamp(dot(normalize(vNormal), normalize(uSunDirection)), 0.0, 1.0);
    vec3 lit = albedo * (0.25 + 0.75 * lambert);
    gl_FragColor = vec4(mix(uFogColour, lit, fogFactor(abs(vViewDepth), uFogDensity)), 1.0);
}
