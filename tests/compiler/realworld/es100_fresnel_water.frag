// Water surface: scrolling normals, Schlick Fresnel between a refraction tint and a sky cube.
precision mediump float;

uniform samplerCube uSky;
uniform sampler2D uWaves;
uniform float uTime;
uniform vec3 uDeepColour;

varying vec3 vWorldPosition;
varying vec3 vEyePosition;
varying vec2 vTexCoord;

float fresnelSchlick(float cosTheta, float f0)
{
    return f0 + (1.0 - f0) * pow(1.0 - cosTheta, 5.0);
}

vec3 waterNormal(vec2 uv)
{
    vec2 a = texture2D(uWaves, uv + vec2(0.03, 0.01) * uTime).xy;
    vec2 b = texture2D(uWaves, uv * 1.7 - vec2(0.02, 0.04) * uTime).xy;
    vec2 slope = (a + b) - 1.0;
    return normalize(vec3(slope.x * 0.3, 1.0, slope.y * 0.3));
}

void main()
{
    vec3 n = waterNormal(vTexCoord);
    vec3 v = normalize(vEyePosition - vWorldPosition);
    float cosTheta = clamp(dot(n, v), 0.0, 1.0);
    vec3 sky = textureCube(uSky, reflect(-v, n)).rgb;
    float f = fresnelSchlick(cosTheta, 0.02);
    gl_FragColor = vec4(mix(uDeepColour * 0.5, sky, f), 1.0);
}
