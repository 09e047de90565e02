#version 300 es
// A forward-lit material shader with the helper library a production renderer carries
// along: noise, colour spaces, tone mapping, physically based lighting for several light
// types, shadow filtering, parallax, detail and weather layers, and post-effects applied
// before the colour is written. Most helpers are used; some only by some material paths.
precision highp float;
precision highp int;
precision highp sampler2D;
precision highp samplerCube;
precision highp sampler2DShadow;

// ---------------------------------------------------------------------------------------
// Inputs
// ---------------------------------------------------------------------------------------

in vec3 vWorldPosition;
in vec3 vWorldNormal;
in vec4 vWorldTangent;
in vec2 vTexCoord0;
in vec2 vTexCoord1;
in vec4 vColour;
in vec4 vShadowCoord0;
in vec4 vShadowCoord1;
in vec4 vShadowCoord2;
in float vViewDepth;

layout(location = 0) out vec4 outColour;
layout(location = 1) out vec4 outNormalRoughness;

// ---------------------------------------------------------------------------------------
// Material textures
// ---------------------------------------------------------------------------------------

uniform sampler2D uBaseColourMap;
uniform sampler2D uNormalMap;
uniform sampler2D uMetalRoughnessMap;
uniform sampler2D uOcclusionMap;
uniform sampler2D uEmissiveMap;
uniform sampler2D uHeightMap;
uniform sampler2D uDetailAlbedoMap;
uniform sampler2D uDetailNormalMap;
uniform sampler2D uWetnessMaskMap;
uniform sampler2D uSnowAlbedoMap;
uniform sampler2D uBlueNoiseMap;
uniform sampler2D uBrdfLut;
uniform samplerCube uIrradianceMap;
uniform samplerCube uPrefilteredMap;
uniform sampler2DShadow uShadowMap0;
uniform sampler2DShadow uShadowMap1;
uniform sampler2DShadow uShadowMap2;
uniform sampler2D uSpotCookie;

// ---------------------------------------------------------------------------------------
// Material parameters
// ---------------------------------------------------------------------------------------

uniform vec4 uBaseColourFactor;
uniform vec3 uEmissiveFactor;
uniform float uEmissiveStrength;
uniform float uMetallicFactor;
uniform float uRoughnessFactor;
uniform float uNormalScale;
uniform float uOcclusionStrength;
uniform float uAlphaCutoff;
uniform float uHeightScale;
uniform float uDetailTiling;
uniform float uDetailStrength;
uniform float uClearCoat;
uniform float uClearCoatRoughness;
uniform float uSheen;
uniform vec3 uSheenColour;
uniform float uAnisotropy;
uniform float uTransmission;
uniform float uSubsurface;
uniform vec3 uSubsurfaceColour;
uniform int uMaterialModel;
uniform int uDebugView;

// ---------------------------------------------------------------------------------------
// Frame and lights
// ---------------------------------------------------------------------------------------

const int MAX_POINT_LIGHTS = 8;
const int MAX_SPOT_LIGHTS = 4;
const int SHADOW_CASCADES = 3;

struct DirectionalLight
{
    vec3 direction;
    vec3 colour;
    float intensity;
    float angularSize;
};

struct PointLight
{
    vec3 position;
    vec3 colour;
    float intensity;
    float range;
    float sourceRadius;
};

struct SpotLight
{
    vec3 position;
    vec3 direction;
    vec3 colour;
    float intensity;
    float range;
    float innerCone;
    float outerCone;
    mat4 cookieMatrix;
};

uniform DirectionalLight uSun;
uniform PointLight uPointLights[MAX_POINT_LIGHTS];
uniform SpotLight uSpotLights[MAX_SPOT_LIGHTS];
uniform int uPointLightCount;
uniform int uSpotLightCount;

uniform vec3 uCameraPosition;
uniform vec3 uAmbientColour;
uniform float uEnvironmentIntensity;
uniform float uEnvironmentMipCount;
uniform float uExposure;
uniform float uTime;
uniform vec2 uViewportSize;
uniform vec4 uCascadeSplits;
uniform vec2 uShadowTexelSize;
uniform float uShadowSoftness;
uniform float uShadowBias;
uniform vec3 uFogColour;
uniform float uFogDensity;
uniform float uFogHeightFalloff;
uniform float uFogStart;
uniform float uWetness;
uniform float uSnowAmount;
uniform vec3 uWindDirection;
uniform float uRainIntensity;
uniform int uToneMapper;
uniform float uSaturation;
uniform float uContrast;
uniform vec3 uColourFilter;
uniform float uVignetteStrength;
uniform float uGrainStrength;
uniform float uDitherStrength;

// ---------------------------------------------------------------------------------------
// Constants and small helpers
// ---------------------------------------------------------------------------------------

const float PI = 3.14159265359;
const float TWO_PI = 6.28318530718;
const float HALF_PI = 1.57079632679;
const float INV_PI = 0.31830988618;
const float EPSILON = 1e-5;
const float LUMINANCE_R = 0.2126;
const float LUMINANCE_G = 0.7152;
const float LUMINANCE_B = 0.0722;

float saturate(float x)
{
    return clamp(x, 0.0, 1.0);
}

vec2 saturate(vec2 x)
{
    return clamp(x, 0.0, 1.0);
}

vec3 saturate(vec3 x)
{
    return clamp(x, 0.0, 1.0);
}

float square(float x)
{
    return x * x;
}

float pow5(float x)
{
    float x2 = x * x;
    return x2 * x2 * x;
}

float maxComponent(vec3 v)
{
    return max(v.x, max(v.y, v.z));
}

float minComponent(vec3 v)
{
    return min(v.x, min(v.y, v.z));
}

float luminance(vec3 colour)
{
    return dot(colour, vec3(LUMINANCE_R, LUMINANCE_G, LUMINANCE_B));
}

float remap(float value, float fromLow, float fromHigh, float toLow, float toHigh)
{
    float t = saturate((value - fromLow) / (fromHigh - fromLow));
    return mix(toLow, toHigh, t);
}

float smootherstep(float edge0, float edge1, float x)
{
    float t = saturate((x - edge0) / (edge1 - edge0));
    return t * t * t * (t * (t * 6.0 - 15.0) + 10.0);
}

float linearStep(float edge0, float edge1, float x)
{
    return saturate((x - edge0) / (edge1 - edge0));
}

vec2 rotate(vec2 v, float angle)
{
    float s = sin(angle);
    float c = cos(angle);
    return vec2(c * v.x - s * v.y, s * v.x + c * v.y);
}

mat3 cotangentFrame(vec3 normal, vec3 position, vec2 uv)
{
    vec3 dp1 = dFdx(position);
    vec3 dp2 = dFdy(position);
    vec2 duv1 = dFdx(uv);
    vec2 duv2 = dFdy(uv);
    vec3 dp2perp = cross(dp2, normal);
    vec3 dp1perp = cross(normal, dp1);
    vec3 tangent = dp2perp * duv1.x + dp1perp * duv2.x;
    vec3 bitangent = dp2perp * duv1.y + dp1perp * duv2.y;
    float invMax = inversesqrt(max(dot(tangent, tangent), dot(bitangent, bitangent)));
    return mat3(tangent * invMax, bitangent * invMax, normal);
}

vec3 orthogonal(vec3 v)
{
    return abs(v.x) > abs(v.z) ? vec3(-v.y, v.x, 0.0) : vec3(0.0, -v.z, v.y);
}

mat3 basisFromNormal(vec3 n)
{
    vec3 tangent = normalize(orthogonal(n));
    vec3 bitangent = cross(n, tangent);
    return mat3(tangent, bitangent, n);
}

vec2 octahedronWrap(vec2 v)
{
    return (1.0 - abs(v.yx)) * vec2(v.x >= 0.0 ? 1.0 : -1.0, v.y >= 0.0 ? 1.0 : -1.0);
}

vec2 encodeOctahedron(vec3 n)
{
    n /= abs(n.x) + abs(n.y) + abs(n.z);
    n.xy = n.z >= 0.0 ? n.xy : octahedronWrap(n.xy);
    return n.xy * 0.5 + 0.5;
}

vec3 decodeOctahedron(vec2 encoded)
{
    encoded = encoded * 2.0 - 1.0;
    vec3 n = vec3(encoded.x, encoded.y, 1.0 - abs(encoded.x) - abs(encoded.y));
    float t = saturate(-n.z);
    n.x += n.x >= 0.0 ? -t : t;
    n.y += n.y >= 0.0 ? -t : t;
    return normalize(n);
}

float linearizeDepth(float depth, float nearPlane, float farPlane)
{
    float z = depth * 2.0 - 1.0;
    return 2.0 * nearPlane * farPlane / (farPlane + nearPlane - z * (farPlane - nearPlane));
}

vec3 blendNormalsReoriented(vec3 base, vec3 detail)
{
    vec3 t = base * vec3(2.0, 2.0, 2.0) + vec3(-1.0, -1.0, 0.0);
    vec3 u = detail * vec3(-2.0, -2.0, 2.0) + vec3(1.0, 1.0, -1.0);
    return normalize(t * dot(t, u) - u * t.z);
}

vec3 blendNormalsWhiteout(vec3 base, vec3 detail)
{
    return normalize(vec3(base.xy + detail.xy, base.z * detail.z));
}

vec3 unpackNormal(vec4 packedNormal, float scale)
{
    vec3 n = packedNormal.xyz * 2.0 - 1.0;
    n.xy *= scale;
    return normalize(n);
}

vec3 unpackNormalRG(vec2 rg, float scale)
{
    vec2 xy = (rg * 2.0 - 1.0) * scale;
    float z = sqrt(saturate(1.0 - dot(xy, xy)));
    return vec3(xy, z);
}

// ---------------------------------------------------------------------------------------
// Hashes and noise
// ---------------------------------------------------------------------------------------

uint hashUint(uint x)
{
    x ^= x >> 16u;
    x *= 0x7feb352du;
    x ^= x >> 15u;
    x *= 0x846ca68bu;
    x ^= x >> 16u;
    return x;
}

uint hashUint2(uvec2 v)
{
    return hashUint(v.x ^ hashUint(v.y));
}

uint hashUint3(uvec3 v)
{
    return hashUint(v.x ^ hashUint(v.y ^ hashUint(v.z)));
}

float uintToUnitFloat(uint x)
{
    return float(x >> 8u) * (1.0 / 16777216.0);
}

float hash12(vec2 p)
{
    vec3 p3 = fract(vec3(p.xyx) * 0.1031);
    p3 += dot(p3, p3.yzx + 33.33);
    return fract((p3.x + p3.y) * p3.z);
}

vec2 hash22(vec2 p)
{
    vec3 p3 = fract(vec3(p.xyx) * vec3(0.1031, 0.1030, 0.0973));
    p3 += dot(p3, p3.yzx + 33.33);
    return fract((p3.xx + p3.yz) * p3.zy);
}

float hash13(vec3 p3)
{
    p3 = fract(p3 * 0.1031);
    p3 += dot(p3, p3.zyx + 31.32);
    return fract((p3.x + p3.y) * p3.z);
}

vec3 hash33(vec3 p3)
{
    p3 = fract(p3 * vec3(0.1031, 0.1030, 0.0973));
    p3 += dot(p3, p3.yxz + 33.33);
    return fract((p3.xxy + p3.yxx) * p3.zyx);
}

float valueNoise2(vec2 p)
{
    vec2 i = floor(p);
    vec2 f = fract(p);
    vec2 u = f * f * (3.0 - 2.0 * f);
    float a = hash12(i);
    float b = hash12(i + vec2(1.0, 0.0));
    float c = hash12(i + vec2(0.0, 1.0));
    float d = hash12(i + vec2(1.0, 1.0));
    return mix(mix(a, b, u.x), mix(c, d, u.x), u.y);
}

float gradientNoise2(vec2 p)
{
    vec2 i = floor(p);
    vec2 f = fract(p);
    vec2 u = f * f * f * (f * (f * 6.0 - 15.0) + 10.0);
    vec2 ga = hash22(i) * 2.0 - 1.0;
    vec2 gb = hash22(i + vec2(1.0, 0.0)) * 2.0 - 1.0;
    vec2 gc = hash22(i + vec2(0.0, 1.0)) * 2.0 - 1.0;
    vec2 gd = hash22(i + vec2(1.0, 1.0)) * 2.0 - 1.0;
    float va = dot(ga, f);
    float vb = dot(gb, f - vec2(1.0, 0.0));
    float vc = dot(gc, f - vec2(0.0, 1.0));
    float vd = dot(gd, f - vec2(1.0, 1.0));
    return va + u.x * (vb - va) + u.y * (vc - va) + u.x * u.y * (va - vb - vc + vd);
}

float gradientNoise3(vec3 p)
{
    vec3 i = floor(p);
    vec3 f = fract(p);
    vec3 u = f * f * (3.0 - 2.0 * f);
    float n000 = dot(hash33(i) * 2.0 - 1.0, f);
    float n100 = dot(hash33(i + vec3(1.0, 0.0, 0.0)) * 2.0 - 1.0, f - vec3(1.0, 0.0, 0.0));
    float n010 = dot(hash33(i + vec3(0.0, 1.0, 0.0)) * 2.0 - 1.0, f - vec3(0.0, 1.0, 0.0));
    float n110 = dot(hash33(i + vec3(1.0, 1.0, 0.0)) * 2.0 - 1.0, f - vec3(1.0, 1.0, 0.0));
    float n001 = dot(hash33(i + vec3(0.0, 0.0, 1.0)) * 2.0 - 1.0, f - vec3(0.0, 0.0, 1.0));
    float n101 = dot(hash33(i + vec3(1.0, 0.0, 1.0)) * 2.0 - 1.0, f - vec3(1.0, 0.0, 1.0));
    float n011 = dot(hash33(i + vec3(0.0, 1.0, 1.0)) * 2.0 - 1.0, f - vec3(0.0, 1.0, 1.0));
    float n111 = dot(hash33(i + vec3(1.0, 1.0, 1.0)) * 2.0 - 1.0, f - vec3(1.0, 1.0, 1.0));
    float nx00 = mix(n000, n100, u.x);
    float nx10 = mix(n010, n110, u.x);
    float nx01 = mix(n001, n101, u.x);
    float nx11 = mix(n011, n111, u.x);
    return mix(mix(nx00, nx10, u.y), mix(nx01, nx11, u.y), u.z);
}

vec3 mod289(vec3 x)
{
    return x - floor(x * (1.0 / 289.0)) * 289.0;
}

vec2 mod289(vec2 x)
{
    return x - floor(x * (1.0 / 289.0)) * 289.0;
}

vec3 permute(vec3 x)
{
    return mod289(((x * 34.0) + 1.0) * x);
}

float simplexNoise2(vec2 v)
{
    const vec4 C = vec4(0.211324865405187, 0.366025403784439, -0.577350269189626, 0.024390243902439);
    vec2 i = floor(v + dot(v, C.yy));
    vec2 x0 = v - i + dot(i, C.xx);
    vec2 i1 = x0.x > x0.y ? vec2(1.0, 0.0) : vec2(0.0, 1.0);
    vec4 x12 = x0.xyxy + C.xxzz;
    x12.xy -= i1;
    i = mod289(i);
    vec3 p = permute(permute(i.y + vec3(0.0, i1.y, 1.0)) + i.x + vec3(0.0, i1.x, 1.0));
    vec3 m = max(0.5 - vec3(dot(x0, x0), dot(x12.xy, x12.xy), dot(x12.zw, x12.zw)), 0.0);
    m = m * m;
    m = m * m;
    vec3 x = 2.0 * fract(p * C.www) - 1.0;
    vec3 h = abs(x) - 0.5;
    vec3 ox = floor(x + 0.5);
    vec3 a0 = x - ox;
    m *= 1.79284291400159 - 0.85373472095314 * (a0 * a0 + h * h);
    vec3 g;
    g.x = a0.x * x0.x + h.x * x0.y;
    g.yz = a0.yz * x12.xz + h.yz * x12.yw;
    return 130.0 * dot(m, g);
}

float worleyNoise2(vec2 p)
{
    vec2 cell = floor(p);
    vec2 local = fract(p);
    float nearest = 8.0;
    for (int y = -1; y <= 1; y++)
    {
        for (int x = -1; x <= 1; x++)
        {
            vec2 offset = vec2(float(x), float(y));
            vec2 feature = hash22(cell + offset);
            vec2 delta = offset + feature - local;
            nearest = min(nearest, dot(delta, delta));
        }
    }
    return sqrt(nearest);
}

float fbm2(vec2 p, int octaves)
{
    float sum = 0.0;
    float amplitude = 0.5;
    float frequency = 1.0;
    for (int i = 0; i < 8; i++)
    {
        if (i >= octaves)
            break;
        sum += amplitude * gradientNoise2(p * frequency);
        frequency *= 2.03;
        amplitude *= 0.5;
    }
    return sum;
}

float fbm3(vec3 p)
{
    float sum = 0.0;
    float amplitude = 0.5;
    for (int i = 0; i < 5; i++)
    {
        sum += amplitude * gradientNoise3(p);
        p = p * 2.01 + vec3(0.13, 0.71, 0.37);
        amplitude *= 0.5;
    }
    return sum;
}

float ridgedNoise(vec2 p)
{
    float sum = 0.0;
    float amplitude = 0.5;
    float previous = 1.0;
    for (int i = 0; i < 5; i++)
    {
        float n = 1.0 - abs(simplexNoise2(p));
        n *= n;
        sum += n * amplitude * previous;
        previous = n;
        p *= 2.1;
        amplitude *= 0.5;
    }
    return sum;
}

vec2 domainWarp(vec2 p, float strength)
{
    vec2 q = vec2(fbm2(p, 4), fbm2(p + vec2(5.2, 1.3), 4));
    return p + strength * q;
}

float interleavedGradientNoise(vec2 pixel)
{
    return fract(52.9829189 * fract(dot(pixel, vec2(0.06711056, 0.00583715))));
}

vec3 cosineSampleHemisphere(vec2 u)
{
    float r = sqrt(u.x);
    float phi = TWO_PI * u.y;
    return vec3(r * cos(phi), r * sin(phi), sqrt(max(1.0 - u.x, 0.0)));
}

vec3 sphericalFibonacci(float index, float count)
{
    const float goldenAngle = 2.39996323;
    float z = 1.0 - (2.0 * index + 1.0) / count;
    float radius = sqrt(max(1.0 - z * z, 0.0));
    float phi = goldenAngle * index;
    return vec3(radius * cos(phi), radius * sin(phi), z);
}

// ---------------------------------------------------------------------------------------
// Colour spaces and tone mapping
// ---------------------------------------------------------------------------------------

vec3 srgbToLinear(vec3 colour)
{
    vec3 low = colour / 12.92;
    vec3 high = pow((colour + 0.055) / 1.055, vec3(2.4));
    return mix(low, high, step(vec3(0.04045), colour));
}

vec3 linearToSrgb(vec3 colour)
{
    vec3 low = colour * 12.92;
    vec3 high = 1.055 * pow(colour, vec3(1.0 / 2.4)) - 0.055;
    return mix(low, high, step(vec3(0.0031308), colour));
}

vec3 rgbToHsv(vec3 c)
{
    vec4 K = vec4(0.0, -1.0 / 3.0, 2.0 / 3.0, -1.0);
    vec4 p = mix(vec4(c.bg, K.wz), vec4(c.gb, K.xy), step(c.b, c.g));
    vec4 q = mix(vec4(p.xyw, c.r), vec4(c.r, p.yzx), step(p.x, c.r));
    float d = q.x - min(q.w, q.y);
    return vec3(abs(q.z + (q.w - q.y) / (6.0 * d + EPSILON)), d / (q.x + EPSILON), q.x);
}

vec3 hsvToRgb(vec3 c)
{
    vec4 K = vec4(1.0, 2.0 / 3.0, 1.0 / 3.0, 3.0);
    vec3 p = abs(fract(c.xxx + K.xyz) * 6.0 - K.www);
    return c.z * mix(K.xxx, saturate(p - K.xxx), c.y);
}

vec3 rgbToYCoCg(vec3 c)
{
    float y = dot(c, vec3(0.25, 0.5, 0.25));
    float co = dot(c, vec3(0.5, 0.0, -0.5));
    float cg = dot(c, vec3(-0.25, 0.5, -0.25));
    return vec3(y, co, cg);
}

vec3 yCoCgToRgb(vec3 c)
{
    float t = c.x - c.z;
    return vec3(t + c.y, c.x + c.z, t - c.y);
}

vec3 rgbToXyz(vec3 c)
{
    const mat3 m = mat3(0.4124, 0.2126, 0.0193, 0.3576, 0.7152, 0.1192, 0.1805, 0.0722, 0.9505);
    return m * c;
}

vec3 xyzToRgb(vec3 c)
{
    const mat3 m = mat3(3.2406, -0.9689, 0.0557, -1.5372, 1.8758, -0.2040, -0.4986, 0.0415, 1.0570);
    return m * c;
}

vec3 temperatureToRgb(float kelvin)
{
    float t = kelvin / 100.0;
    vec3 colour;
    colour.r = t <= 66.0 ? 1.0 : saturate(1.29293618606 * pow(t - 60.0, -0.1332047592));
    colour.g = t <= 66.0 ? saturate(0.39008157876 * log(t) - 0.63184144378)
                         : saturate(1.12989086089 * pow(t - 60.0, -0.0755148492));
    colour.b = t >= 66.0 ? 1.0 : (t <= 19.0 ? 0.0 : saturate(0.54320678911 * log(t - 10.0) - 1.19625408914));
    return colour;
}

vec3 toneMapReinhard(vec3 colour)
{
    return colour / (1.0 + colour);
}

vec3 toneMapReinhardExtended(vec3 colour, float whitePoint)
{
    float l = luminance(colour);
    float mapped = l * (1.0 + l / (whitePoint * whitePoint)) / (1.0 + l);
    return colour * (mapped / max(l, EPSILON));
}

vec3 toneMapAcesFitted(vec3 colour)
{
    const mat3 inputMatrix = mat3(0.59719, 0.07600, 0.02840, 0.35458, 0.90834, 0.13383, 0.04823, 0.01566, 0.83777);
    const mat3 outputMatrix = mat3(1.60475, -0.10208, -0.00327, -0.53108, 1.10813, -0.07276, -0.07367, -0.00605, 1.07602);
    colour = inputMatrix * colour;
    vec3 a = colour * (colour + 0.0245786) - 0.000090537;
    vec3 b = colour * (0.983729 * colour + 0.4329510) + 0.238081;
    colour = a / b;
    return saturate(outputMatrix * colour);
}

vec3 uncharted2Curve(vec3 x)
{
    const float A = 0.15;
    const float B = 0.50;
    const float C = 0.10;
    const float D = 0.20;
    const float E = 0.02;
    const float F = 0.30;
    return ((x * (A * x + C * B) + D * E) / (x * (A * x + B) + D * F)) - E / F;
}

vec3 toneMapUncharted2(vec3 colour)
{
    const float whitePoint = 11.2;
    vec3 curve = uncharted2Curve(colour * 2.0);
    vec3 whiteScale = 1.0 / uncharted2Curve(vec3(whitePoint));
    return curve * whiteScale;
}

vec3 toneMapLottes(vec3 colour)
{
    const vec3 a = vec3(1.6);
    const vec3 d = vec3(0.977);
    const vec3 hdrMax = vec3(8.0);
    const vec3 midIn = vec3(0.18);
    const vec3 midOut = vec3(0.267);
    vec3 b = (-pow(midIn, a) + pow(hdrMax, a) * midOut) / ((pow(hdrMax, a * d) - pow(midIn, a * d)) * midOut);
    vec3 c = (pow(hdrMax, a * d) * pow(midIn, a) - pow(hdrMax, a) * pow(midIn, a * d) * midOut) /
             ((pow(hdrMax, a * d) - pow(midIn, a * d)) * midOut);
    return pow(colour, a) / (pow(colour, a * d) * b + c);
}

vec3 toneMapUchimura(vec3 x)
{
    const float P = 1.0;
    const float a = 1.0;
    const float m = 0.22;
    const float l = 0.4;
    const float c = 1.33;
    const float b = 0.0;
    float l0 = ((P - m) * l) / a;
    float S0 = m + l0;
    float S1 = m + a * l0;
    float C2 = (a * P) / (P - S1);
    float CP = -C2 / P;
    vec3 w0 = 1.0 - smoothstep(0.0, m, x);
    vec3 w2 = step(m + l0, x);
    vec3 w1 = 1.0 - w0 - w2;
    vec3 T = m * pow(x / m, vec3(c)) + b;
    vec3 S = P - (P - S1) * exp(CP * (x - S0));
    vec3 L = m + a * (x - m);
    return T * w0 + L * w1 + S * w2;
}

vec3 applyToneMapper(vec3 colour, int mapper)
{
    if (mapper == 0)
        return toneMapReinhard(colour);
    if (mapper == 1)
        return toneMapReinhardExtended(colour, 4.0);
    if (mapper == 2)
        return toneMapAcesFitted(colour);
    if (mapper == 3)
        return toneMapUncharted2(colour);
    if (mapper == 4)
        return toneMapLottes(colour);
    return toneMapUchimura(colour);
}

vec3 adjustSaturation(vec3 colour, float amount)
{
    float grey = luminance(colour);
    return mix(vec3(grey), colour, amount);
}

vec3 adjustContrast(vec3 colour, float amount)
{
    const float logMid = 0.18;
    vec3 logColour = log2(max(colour, vec3(EPSILON)) / logMid);
    return logMid * exp2(logColour * amount);
}

vec3 liftGammaGain(vec3 colour, vec3 lift, vec3 gamma, vec3 gain)
{
    vec3 lifted = colour * (1.5 - 0.5 * lift) + 0.5 * lift - 0.5;
    vec3 gained = saturate(lifted) * gain;
    return pow(gained, 1.0 / max(gamma, vec3(EPSILON)));
}

vec3 splitToning(vec3 colour, vec3 shadows, vec3 highlights, float balance)
{
    float l = saturate(luminance(colour) + balance);
    vec3 shadowTint = mix(vec3(0.5), shadows, 1.0 - l);
    vec3 highlightTint = mix(vec3(0.5), highlights, l);
    colour = mix(colour, 2.0 * colour * shadowTint, 1.0 - l);
    return mix(colour, 2.0 * colour * highlightTint, l);
}

// ---------------------------------------------------------------------------------------
// Surface description and BRDFs
// ---------------------------------------------------------------------------------------

struct Surface
{
    vec3 position;
    vec3 normal;
    vec3 geometricNormal;
    vec3 tangent;
    vec3 bitangent;
    vec3 view;
    vec3 albedo;
    vec3 specularColour;
    vec3 emissive;
    float metallic;
    float roughness;
    float alpha;
    float occlusion;
    float clearCoat;
    float clearCoatAlpha;
    float sheen;
    float anisotropy;
    float subsurface;
    float opacity;
    float nDotV;
};

vec3 fresnelSchlick(vec3 f0, float cosTheta)
{
    return f0 + (1.0 - f0) * pow5(1.0 - cosTheta);
}

vec3 fresnelSchlickRoughness(vec3 f0, float cosTheta, float roughness)
{
    return f0 + (max(vec3(1.0 - roughness), f0) - f0) * pow5(1.0 - cosTheta);
}

float fresnelDielectric(float cosTheta, float eta)
{
    float c = abs(cosTheta);
    float g = eta * eta - 1.0 + c * c;
    if (g < 0.0)
        return 1.0;
    g = sqrt(g);
    float a = (g - c) / (g + c);
    float b = (c * (g + c) - 1.0) / (c * (g - c) + 1.0);
    return 0.5 * a * a * (1.0 + b * b);
}

float distributionGgx(float nDotH, float alpha)
{
    float a2 = alpha * alpha;
    float d = nDotH * nDotH * (a2 - 1.0) + 1.0;
    return a2 / (PI * d * d + EPSILON);
}

float distributionGgxAnisotropic(float nDotH, float tDotH, float bDotH, float alphaT, float alphaB)
{
    float a2 = alphaT * alphaB;
    vec3 v = vec3(alphaB * tDotH, alphaT * bDotH, a2 * nDotH);
    float v2 = dot(v, v);
    float w2 = a2 / max(v2, EPSILON);
    return a2 * w2 * w2 * INV_PI;
}

float distributionCharlie(float nDotH, float alpha)
{
    float invAlpha = 1.0 / max(alpha, EPSILON);
    float cos2 = nDotH * nDotH;
    float sin2 = max(1.0 - cos2, 0.0078125);
    return (2.0 + invAlpha) * pow(sin2, invAlpha * 0.5) / TWO_PI;
}

float visibilitySmithGgxCorrelated(float nDotV, float nDotL, float alpha)
{
    float a2 = alpha * alpha;
    float ggxV = nDotL * sqrt(nDotV * nDotV * (1.0 - a2) + a2);
    float ggxL = nDotV * sqrt(nDotL * nDotL * (1.0 - a2) + a2);
    return 0.5 / max(ggxV + ggxL, EPSILON);
}

float visibilitySmithGgxFast(float nDotV, float nDotL, float alpha)
{
    float ggxV = nDotL * (nDotV * (1.0 - alpha) + alpha);
    float ggxL = nDotV * (nDotL * (1.0 - alpha) + alpha);
    return 0.5 / max(ggxV + ggxL, EPSILON);
}

float visibilityAnisotropic(float nDotV, float nDotL, float tDotV, float bDotV, float tDotL, float bDotL,
                            float alphaT, float alphaB)
{
    float lambdaV = nDotL * length(vec3(alphaT * tDotV, alphaB * bDotV, nDotV));
    float lambdaL = nDotV * length(vec3(alphaT * tDotL, alphaB * bDotL, nDotL));
    return 0.5 / max(lambdaV + lambdaL, EPSILON);
}

float visibilityKelemen(float lDotH)
{
    return 0.25 / max(lDotH * lDotH, EPSILON);
}

float visibilityNeubelt(float nDotV, float nDotL)
{
    return saturate(1.0 / (4.0 * (nDotL + nDotV - nDotL * nDotV)));
}

float diffuseLambert()
{
    return INV_PI;
}

float diffuseBurley(float nDotV, float nDotL, float lDotH, float roughness)
{
    float f90 = 0.5 + 2.0 * roughness * lDotH * lDotH;
    float lightScatter = 1.0 + (f90 - 1.0) * pow5(1.0 - nDotL);
    float viewScatter = 1.0 + (f90 - 1.0) * pow5(1.0 - nDotV);
    return lightScatter * viewScatter * INV_PI;
}

float diffuseOrenNayar(vec3 l, vec3 v, vec3 n, float roughness)
{
    float sigma2 = roughness * roughness;
    float a = 1.0 - 0.5 * sigma2 / (sigma2 + 0.33);
    float b = 0.45 * sigma2 / (sigma2 + 0.09);
    float nDotL = dot(n, l);
    float nDotV = dot(n, v);
    float s = dot(l, v) - nDotL * nDotV;
    float t = s > 0.0 ? max(nDotL, nDotV) : 1.0;
    return max(nDotL, 0.0) * (a + b * s / t) * INV_PI;
}

float diffuseWrapped(float nDotL, float wrap)
{
    return saturate((nDotL + wrap) / square(1.0 + wrap));
}

vec3 subsurfaceScattering(vec3 l, vec3 v, vec3 n, float thickness, vec3 colour)
{
    vec3 h = normalize(l + n * 0.3);
    float transmitted = pow(saturate(dot(v, -h)), 4.0) * (1.0 - thickness);
    return colour * transmitted;
}

struct BrdfTerms
{
    vec3 diffuse;
    vec3 specular;
};

BrdfTerms evaluateBrdf(Surface s, vec3 l, vec3 lightColour)
{
    BrdfTerms terms;
    vec3 h = normalize(l + s.view);
    float nDotL = saturate(dot(s.normal, l));
    float nDotH = saturate(dot(s.normal, h));
    float lDotH = saturate(dot(l, h));
    float nDotV = s.nDotV;

    vec3 f = fresnelSchlick(s.specularColour, lDotH);
    float d;
    float visibility;
    if (abs(s.anisotropy) > 0.01)
    {
        float alphaT = max(s.alpha * (1.0 + s.anisotropy), 0.002);
        float alphaB = max(s.alpha * (1.0 - s.anisotropy), 0.002);
        d = distributionGgxAnisotropic(nDotH, dot(s.tangent, h), dot(s.bitangent, h), alphaT, alphaB);
        visibility = visibilityAnisotropic(nDotV, nDotL, dot(s.tangent, s.view), dot(s.bitangent, s.view),
                                           dot(s.tangent, l), dot(s.bitangent, l), alphaT, alphaB);
    }
    else
    {
        d = distributionGgx(nDotH, s.alpha);
        visibility = visibilitySmithGgxCorrelated(nDotV, nDotL, s.alpha);
    }
    vec3 specular = d * visibility * f;
    vec3 diffuse = s.albedo * diffuseBurley(nDotV, nDotL, lDotH, s.roughness) * (1.0 - f);

    if (s.sheen > 0.0)
    {
        float sheenD = distributionCharlie(nDotH, max(s.roughness, 0.07));
        specular += uSheenColour * s.sheen * sheenD * visibilityNeubelt(nDotV, nDotL);
    }
    if (s.clearCoat > 0.0)
    {
        float coatD = distributionGgx(nDotH, s.clearCoatAlpha);
        float coatV = visibilityKelemen(lDotH);
        float coatF = 0.04 + 0.96 * pow5(1.0 - lDotH);
        specular = specular * (1.0 - coatF * s.clearCoat) + vec3(coatD * coatV * coatF * s.clearCoat);
        diffuse *= 1.0 - coatF * s.clearCoat;
    }
    terms.diffuse = diffuse * lightColour * nDotL;
    terms.specular = specular * lightColour * nDotL;
    if (s.subsurface > 0.0)
        terms.diffuse += subsurfaceScattering(l, s.view, s.normal, 1.0 - s.subsurface, uSubsurfaceColour) * lightColour;
    return terms;
}

// ---------------------------------------------------------------------------------------
// Shadows
// ---------------------------------------------------------------------------------------

const vec2 POISSON_DISK[16] = vec2[16](
    vec2(-0.94201624, -0.39906216), vec2(0.94558609, -0.76890725), vec2(-0.09418410, -0.92938870),
    vec2(0.34495938, 0.29387760), vec2(-0.91588581, 0.45771432), vec2(-0.81544232, -0.87912464),
    vec2(-0.38277543, 0.27676845), vec2(0.97484398, 0.75648379), vec2(0.44323325, -0.97511554),
    vec2(0.53742981, -0.47373420), vec2(-0.26496911, -0.41893023), vec2(0.79197514, 0.19090188),
    vec2(-0.24188840, 0.99706507), vec2(-0.81409955, 0.91437590), vec2(0.19984126, 0.78641367),
    vec2(0.14383161, -0.14100790));

int selectCascade(float viewDepth)
{
    if (viewDepth < uCascadeSplits.x)
        return 0;
    if (viewDepth < uCascadeSplits.y)
        return 1;
    return 2;
}

float sampleCascade(int cascade, vec3 coord)
{
    if (cascade == 0)
        return texture(uShadowMap0, coord);
    if (cascade == 1)
        return texture(uShadowMap1, coord);
    return texture(uShadowMap2, coord);
}

float shadowPcf(int cascade, vec4 shadowCoord, float bias, float rotation)
{
    vec3 coord = shadowCoord.xyz / shadowCoord.w;
    coord.z -= bias;
    if (coord.x < 0.0 || coord.x > 1.0 || coord.y < 0.0 || coord.y > 1.0 || coord.z > 1.0)
        return 1.0;
    float filterRadius = uShadowSoftness * (1.0 + float(cascade));
    float sum = 0.0;
    for (int i = 0; i < 16; i++)
    {
        vec2 offset = rotate(POISSON_DISK[i], rotation) * uShadowTexelSize * filterRadius;
        sum += sampleCascade(cascade, vec3(coord.xy + offset, coord.z));
    }
    return sum / 16.0;
}

float shadowForCascade(int cascade, float bias, float rotation)
{
    if (cascade == 0)
        return shadowPcf(0, vShadowCoord0, bias, rotation);
    if (cascade == 1)
        return shadowPcf(1, vShadowCoord1, bias * 1.5, rotation);
    return shadowPcf(2, vShadowCoord2, bias * 2.0, rotation);
}

float directionalShadow(Surface s, vec3 l)
{
    float nDotL = saturate(dot(s.geometricNormal, l));
    float bias = uShadowBias * tan(acos(max(nDotL, 0.05)));
    bias = clamp(bias, 0.0, 0.01);
    float rotation = TWO_PI * interleavedGradientNoise(gl_FragCoord.xy);
    int cascade = selectCascade(vViewDepth);
    float shadow = shadowForCascade(cascade, bias, rotation);
    // Blend into the next cascade near the split to hide the seam.
    float split = cascade == 0 ? uCascadeSplits.x : (cascade == 1 ? uCascadeSplits.y : uCascadeSplits.z);
    float fade = linearStep(split * 0.9, split, vViewDepth);
    if (fade > 0.0 && cascade < SHADOW_CASCADES - 1)
        shadow = mix(shadow, shadowForCascade(cascade + 1, bias, rotation), fade);
    return shadow;
}

// ---------------------------------------------------------------------------------------
// Light attenuation
// ---------------------------------------------------------------------------------------

float distanceAttenuation(float distanceSquared, float range)
{
    float factor = distanceSquared / (range * range);
    float smoothFactor = saturate(1.0 - factor * factor);
    return smoothFactor * smoothFactor / max(distanceSquared, 1e-4);
}

float angleAttenuation(vec3 l, vec3 spotDirection, float innerCone, float outerCone)
{
    float cosOuter = cos(outerCone);
    float cosInner = cos(innerCone);
    float scale = 1.0 / max(cosInner - cosOuter, 1e-4);
    float offset = -cosOuter * scale;
    float cd = dot(normalize(-spotDirection), l);
    float attenuation = saturate(cd * scale + offset);
    return attenuation * attenuation;
}

vec3 sphereLightDirection(vec3 reflected, vec3 toLight, float radius)
{
    vec3 centreToRay = dot(toLight, reflected) * reflected - toLight;
    vec3 closest = toLight + centreToRay * saturate(radius / max(length(centreToRay), EPSILON));
    return normalize(closest);
}

float sphereNormalization(float alpha, float radius, float distance)
{
    float alphaPrime = saturate(alpha + radius / (2.0 * max(distance, EPSILON)));
    return square(alpha / max(alphaPrime, EPSILON));
}

vec3 directionalLight(Surface s, DirectionalLight light, out vec3 specularOut)
{
    vec3 l = normalize(-light.direction);
    float shadow = directionalShadow(s, l);
    BrdfTerms terms = evaluateBrdf(s, l, light.colour * light.intensity * shadow);
    specularOut = terms.specular;
    return terms.diffuse;
}

vec3 pointLight(Surface s, PointLight light, out vec3 specularOut)
{
    vec3 toLight = light.position - s.position;
    float distanceSquared = dot(toLight, toLight);
    if (distanceSquared > light.range * light.range)
    {
        specularOut = vec3(0.0);
        return vec3(0.0);
    }
    vec3 reflected = reflect(-s.view, s.normal);
    vec3 l = normalize(toLight);
    vec3 specularL = sphereLightDirection(reflected, toLight, light.sourceRadius);
    float attenuation = distanceAttenuation(distanceSquared, light.range);
    vec3 radiance = light.colour * light.intensity * attenuation;
    BrdfTerms diffuseTerms = evaluateBrdf(s, l, radiance);
    BrdfTerms specularTerms = evaluateBrdf(s, specularL, radiance);
    specularOut = specularTerms.specular * sphereNormalization(s.alpha, light.sourceRadius, sqrt(distanceSquared));
    return diffuseTerms.diffuse;
}

vec3 spotLight(Surface s, SpotLight light, out vec3 specularOut)
{
    vec3 toLight = light.position - s.position;
    float distanceSquared = dot(toLight, toLight);
    vec3 l = normalize(toLight);
    float attenuation = distanceAttenuation(distanceSquared, light.range) *
                        angleAttenuation(l, light.direction, light.innerCone, light.outerCone);
    if (attenuation <= 0.0)
    {
        specularOut = vec3(0.0);
        return vec3(0.0);
    }
    vec4 cookieCoord = light.cookieMatrix * vec4(s.position, 1.0);
    vec3 cookie = texture(uSpotCookie, cookieCoord.xy / cookieCoord.w * 0.5 + 0.5).rgb;
    BrdfTerms terms = evaluateBrdf(s, l, light.colour * light.intensity * attenuation * cookie);
    specularOut = terms.specular;
    return terms.diffuse;
}

// ---------------------------------------------------------------------------------------
// Image-based lighting
// ---------------------------------------------------------------------------------------

vec3 environmentBrdfApproximation(vec3 specularColour, float roughness, float nDotV)
{
    const vec4 c0 = vec4(-1.0, -0.0275, -0.572, 0.022);
    const vec4 c1 = vec4(1.0, 0.0425, 1.04, -0.04);
    vec4 r = roughness * c0 + c1;
    float a004 = min(r.x * r.x, exp2(-9.28 * nDotV)) * r.x + r.y;
    vec2 ab = vec2(-1.04, 1.04) * a004 + r.zw;
    return specularColour * ab.x + ab.y;
}

vec3 environmentDiffuse(vec3 normal)
{
    return texture(uIrradianceMap, normal).rgb * uEnvironmentIntensity;
}

vec3 environmentSpecular(vec3 reflected, float roughness)
{
    float lod = roughness * (uEnvironmentMipCount - 1.0);
    return textureLod(uPrefilteredMap, reflected, lod).rgb * uEnvironmentIntensity;
}

vec3 dominantDirection(vec3 normal, vec3 reflected, float roughness)
{
    float smoothness = 1.0 - roughness;
    float lerpFactor = smoothness * (sqrt(smoothness) + roughness);
    return normalize(mix(normal, reflected, lerpFactor));
}

float specularOcclusion(float nDotV, float occlusion, float roughness)
{
    return saturate(pow(nDotV + occlusion, exp2(-16.0 * roughness - 1.0)) - 1.0 + occlusion);
}

float horizonOcclusion(vec3 reflected, vec3 geometricNormal)
{
    float horizon = saturate(1.0 + 1.2 * dot(reflected, geometricNormal));
    return horizon * horizon;
}

vec3 imageBasedLighting(Surface s, out vec3 specularOut)
{
    vec3 reflected = reflect(-s.view, s.normal);
    vec3 specularDirection = dominantDirection(s.normal, reflected, s.roughness);
    vec2 lut = texture(uBrdfLut, vec2(s.nDotV, s.roughness)).rg;
    vec3 fresnel = fresnelSchlickRoughness(s.specularColour, s.nDotV, s.roughness);
    vec3 specularWeight = fresnel * lut.x + lut.y;
    vec3 energyCompensation = 1.0 + s.specularColour * (1.0 / max(lut.x + lut.y, EPSILON) - 1.0);
    float occlusion = specularOcclusion(s.nDotV, s.occlusion, s.roughness) * horizonOcclusion(reflected, s.geometricNormal);
    specularOut = environmentSpecular(specularDirection, s.roughness) * specularWeight * energyCompensation * occlusion;
    if (s.clearCoat > 0.0)
    {
        float coatFresnel = 0.04 + 0.96 * pow5(1.0 - s.nDotV);
        vec3 coatReflection = environmentSpecular(reflect(-s.view, s.geometricNormal), sqrt(s.clearCoatAlpha));
        specularOut = specularOut * (1.0 - coatFresnel * s.clearCoat) + coatReflection * coatFresnel * s.clearCoat;
    }
    vec3 diffuse = environmentDiffuse(s.normal) * s.albedo * (1.0 - specularWeight) * s.occlusion;
    return diffuse;
}

// ---------------------------------------------------------------------------------------
// Surface construction: parallax, detail and weather layers
// ---------------------------------------------------------------------------------------

vec2 parallaxOcclusion(vec2 uv, vec3 viewTangent, float scale)
{
    const float minLayers = 8.0;
    const float maxLayers = 32.0;
    float layers = mix(maxLayers, minLayers, abs(viewTangent.z));
    float layerDepth = 1.0 / layers;
    vec2 shift = viewTangent.xy / max(viewTangent.z, 0.05) * scale / layers;
    vec2 currentUv = uv;
    float currentDepth = 0.0;
    float sampledDepth = 1.0 - texture(uHeightMap, currentUv).r;
    for (int i = 0; i < 32; i++)
    {
        if (currentDepth >= sampledDepth)
            break;
        currentUv -= shift;
        sampledDepth = 1.0 - textureLod(uHeightMap, currentUv, 0.0).r;
        currentDepth += layerDepth;
    }
    vec2 previousUv = currentUv + shift;
    float after = sampledDepth - currentDepth;
    float before = 1.0 - textureLod(uHeightMap, previousUv, 0.0).r - currentDepth + layerDepth;
    float weight = after / (after - before);
    return mix(currentUv, previousUv, weight);
}

vec3 triplanarWeights(vec3 normal, float sharpness)
{
    vec3 weights = pow(abs(normal), vec3(sharpness));
    return weights / (weights.x + weights.y + weights.z);
}

vec4 triplanarSample(sampler2D map, vec3 position, vec3 normal, float tiling)
{
    vec3 weights = triplanarWeights(normal, 4.0);
    vec4 x = texture(map, position.zy * tiling);
    vec4 y = texture(map, position.xz * tiling);
    vec4 z = texture(map, position.xy * tiling);
    return x * weights.x + y * weights.y + z * weights.z;
}

vec3 triplanarNormal(sampler2D map, vec3 position, vec3 normal, float tiling)
{
    vec3 weights = triplanarWeights(normal, 4.0);
    vec3 tx = unpackNormal(texture(map, position.zy * tiling), 1.0);
    vec3 ty = unpackNormal(texture(map, position.xz * tiling), 1.0);
    vec3 tz = unpackNormal(texture(map, position.xy * tiling), 1.0);
    tx = vec3(tx.xy + normal.zy, abs(tx.z) * normal.x);
    ty = vec3(ty.xy + normal.xz, abs(ty.z) * normal.y);
    tz = vec3(tz.xy + normal.xy, abs(tz.z) * normal.z);
    return normalize(tx.zyx * weights.x + ty.xzy * weights.y + tz.xyz * weights.z);
}

float wetnessMask(vec3 position, vec3 normal)
{
    float puddles = texture(uWetnessMaskMap, position.xz * 0.05).r;
    float upFacing = smoothstep(0.6, 0.95, normal.y);
    float noise = fbm2(position.xz * 0.3, 3) * 0.5 + 0.5;
    return saturate(uWetness * (puddles * upFacing + noise * 0.3));
}

void applyWetness(inout Surface s, float wetness)
{
    // Darker and glossier; standing water flattens the normal.
    float porosity = saturate((s.roughness - 0.5) / 0.4) * (1.0 - s.metallic);
    float darkening = mix(1.0, 0.2, porosity);
    s.albedo *= mix(1.0, darkening, wetness);
    s.roughness = mix(s.roughness, 0.08, wetness);
    float puddle = smoothstep(0.6, 0.9, wetness);
    s.normal = normalize(mix(s.normal, s.geometricNormal, puddle));
    s.specularColour = mix(s.specularColour, vec3(0.02), puddle * (1.0 - s.metallic));
}

vec2 rippleOffset(vec2 uv, float time)
{
    vec2 cell = floor(uv * 4.0);
    vec2 local = fract(uv * 4.0) - 0.5;
    vec2 offset = vec2(0.0);
    for (int i = 0; i < 3; i++)
    {
        vec2 random = hash22(cell + float(i) * 17.0);
        float phase = fract(time * (0.6 + random.x * 0.4) + random.y);
        vec2 centre = (random - 0.5) * 0.6;
        float radius = phase * 0.5;
        float d = length(local - centre);
        float ring = sin((d - radius) * 40.0) * (1.0 - phase) * smoothstep(radius + 0.05, radius, d);
        offset += normalize(local - centre + EPSILON) * ring;
    }
    return offset * 0.02;
}

void applySnow(inout Surface s, vec3 position)
{
    float upFacing = dot(s.geometricNormal, vec3(0.0, 1.0, 0.0));
    float drift = fbm2(position.xz * 0.7, 4) * 0.5 + 0.5;
    float coverage = smoothstep(1.0 - uSnowAmount, 1.0 - uSnowAmount + 0.15, upFacing * 0.8 + drift * 0.2);
    if (coverage <= 0.0)
        return;
    vec3 snow = triplanarSample(uSnowAlbedoMap, position, s.geometricNormal, 0.5).rgb;
    float sparkle = step(0.995, hash13(floor(position * 200.0))) * 4.0;
    s.albedo = mix(s.albedo, snow, coverage);
    s.roughness = mix(s.roughness, 0.6, coverage);
    s.metallic = mix(s.metallic, 0.0, coverage);
    s.specularColour = mix(s.specularColour, vec3(0.02 + sparkle * 0.1), coverage);
    s.normal = normalize(mix(s.normal, s.geometricNormal, coverage * 0.7));
}

vec3 detailAlbedo(vec3 albedo, vec2 uv, float strength)
{
    vec3 detail = texture(uDetailAlbedoMap, uv * uDetailTiling).rgb * 2.0;
    return albedo * mix(vec3(1.0), detail, strength);
}

vec3 detailNormal(vec3 normalTangent, vec2 uv, float strength)
{
    vec3 detail = unpackNormal(texture(uDetailNormalMap, uv * uDetailTiling), strength);
    return blendNormalsReoriented(normalTangent * 0.5 + 0.5, detail * 0.5 + 0.5);
}

float geometricSpecularAntiAliasing(vec3 normal, float roughness)
{
    vec3 du = dFdx(normal);
    vec3 dv = dFdy(normal);
    float variance = 0.25 * (dot(du, du) + dot(dv, dv));
    float kernelRoughness = min(2.0 * variance, 0.18);
    return saturate(sqrt(roughness * roughness + kernelRoughness));
}

Surface buildSurface(vec2 uv)
{
    Surface s;
    s.position = vWorldPosition;
    s.view = normalize(uCameraPosition - vWorldPosition);
    s.geometricNormal = normalize(vWorldNormal);
    if (!gl_FrontFacing)
        s.geometricNormal = -s.geometricNormal;
    vec3 tangent = normalize(vWorldTangent.xyz - s.geometricNormal * dot(s.geometricNormal, vWorldTangent.xyz));
    vec3 bitangent = cross(s.geometricNormal, tangent) * vWorldTangent.w;
    mat3 tbn = mat3(tangent, bitangent, s.geometricNormal);

    if (uHeightScale > 0.0)
    {
        vec3 viewTangent = normalize(transpose(tbn) * s.view);
        uv = parallaxOcclusion(uv, viewTangent, uHeightScale);
    }
    if (uRainIntensity > 0.0)
        uv += rippleOffset(s.position.xz * 0.5, uTime) * uRainIntensity;

    vec4 baseColour = texture(uBaseColourMap, uv) * uBaseColourFactor * vColour;
    baseColour.rgb = srgbToLinear(baseColour.rgb);
    vec3 metalRoughness = texture(uMetalRoughnessMap, uv).rgb;
    float occlusion = texture(uOcclusionMap, vTexCoord1).r;
    vec3 normalTangent = unpackNormal(texture(uNormalMap, uv), uNormalScale);
    if (uDetailStrength > 0.0)
    {
        baseColour.rgb = detailAlbedo(baseColour.rgb, uv, uDetailStrength);
        normalTangent = detailNormal(normalTangent, uv, uDetailStrength);
    }

    s.normal = normalize(tbn * normalTangent);
    s.tangent = normalize(tbn * vec3(1.0, 0.0, 0.0));
    s.bitangent = normalize(cross(s.normal, s.tangent));
    s.metallic = saturate(metalRoughness.b * uMetallicFactor);
    s.roughness = clamp(metalRoughness.g * uRoughnessFactor, 0.045, 1.0);
    s.roughness = geometricSpecularAntiAliasing(s.normal, s.roughness);
    s.occlusion = mix(1.0, occlusion, uOcclusionStrength);
    s.albedo = baseColour.rgb * (1.0 - s.metallic);
    s.specularColour = mix(vec3(0.04), baseColour.rgb, s.metallic);
    s.opacity = baseColour.a;
    s.emissive = srgbToLinear(texture(uEmissiveMap, uv).rgb) * uEmissiveFactor * uEmissiveStrength;
    s.clearCoat = uClearCoat;
    s.clearCoatAlpha = square(clamp(uClearCoatRoughness, 0.045, 1.0));
    s.sheen = uSheen;
    s.anisotropy = uAnisotropy;
    s.subsurface = uSubsurface;

    if (uWetness > 0.0)
        applyWetness(s, wetnessMask(s.position, s.geometricNormal));
    if (uSnowAmount > 0.0)
        applySnow(s, s.position);

    s.alpha = s.roughness * s.roughness;
    s.nDotV = max(dot(s.normal, s.view), 1e-4);
    return s;
}

// ---------------------------------------------------------------------------------------
// Fog and atmosphere
// ---------------------------------------------------------------------------------------

float exponentialHeightFog(vec3 cameraPosition, vec3 worldPosition)
{
    vec3 ray = worldPosition - cameraPosition;
    float distance = length(ray);
    float start = max(distance - uFogStart, 0.0);
    float heightFactor = uFogHeightFalloff * ray.y;
    float densityAtCamera = uFogDensity * exp(-uFogHeightFalloff * cameraPosition.y);
    float lineIntegral = densityAtCamera * start;
    if (abs(heightFactor) > 0.01)
        lineIntegral *= (1.0 - exp(-heightFactor)) / heightFactor;
    return 1.0 - exp(-lineIntegral);
}

vec3 fogInscattering(vec3 viewDirection, vec3 sunDirection, vec3 sunColour)
{
    float sunAmount = max(dot(viewDirection, sunDirection), 0.0);
    float forward = pow(sunAmount, 8.0);
    float halo = pow(sunAmount, 64.0);
    return uFogColour + sunColour * (forward * 0.3 + halo * 0.6);
}

float rayleighPhase(float cosTheta)
{
    return 3.0 / (16.0 * PI) * (1.0 + cosTheta * cosTheta);
}

float henyeyGreenstein(float cosTheta, float g)
{
    float g2 = g * g;
    return (1.0 - g2) / (4.0 * PI * pow(1.0 + g2 - 2.0 * g * cosTheta, 1.5));
}

float cornetteShanks(float cosTheta, float g)
{
    float g2 = g * g;
    float k = 3.0 / (8.0 * PI) * (1.0 - g2) / (2.0 + g2);
    return k * (1.0 + cosTheta * cosTheta) / pow(1.0 + g2 - 2.0 * g * cosTheta, 1.5);
}

vec3 skyGradient(vec3 direction, vec3 sunDirection)
{
    float height = saturate(direction.y * 0.5 + 0.5);
    vec3 zenith = vec3(0.20, 0.38, 0.75);
    vec3 horizon = vec3(0.70, 0.80, 0.95);
    vec3 colour = mix(horizon, zenith, pow(height, 0.6));
    float cosTheta = dot(direction, sunDirection);
    colour += vec3(1.0, 0.85, 0.6) * henyeyGreenstein(cosTheta, 0.76) * 0.5;
    colour += vec3(0.3, 0.5, 1.0) * rayleighPhase(cosTheta) * 0.4;
    return colour;
}

vec3 aerialPerspective(vec3 colour, vec3 worldPosition)
{
    vec3 viewRay = worldPosition - uCameraPosition;
    vec3 viewDirection = normalize(viewRay);
    vec3 sunDirection = normalize(-uSun.direction);
    float fog = exponentialHeightFog(uCameraPosition, worldPosition);
    vec3 inscatter = fogInscattering(viewDirection, sunDirection, uSun.colour * uSun.intensity);
    inscatter = mix(inscatter, skyGradient(viewDirection, sunDirection), 0.3);
    return mix(colour, inscatter, fog);
}

float windGust(vec3 position, float time)
{
    vec2 flow = uWindDirection.xz * time * 0.5;
    float gust = gradientNoise2(position.xz * 0.05 + flow) * 0.5 + 0.5;
    float turbulence = gradientNoise2(position.xz * 0.3 + flow * 2.0);
    return saturate(gust + turbulence * 0.2) * length(uWindDirection);
}

vec3 rainStreaks(vec2 screenUv, float time)
{
    vec2 uv = screenUv * vec2(40.0, 4.0) + vec2(0.0, time * 8.0);
    float column = hash12(vec2(floor(uv.x), 0.0));
    float streak = fract(uv.y + column * 10.0);
    streak = smoothstep(0.0, 0.05, streak) * smoothstep(0.3, 0.05, streak);
    return vec3(streak * column * uRainIntensity * 0.05);
}

// ---------------------------------------------------------------------------------------
// Per-pixel finishing: exposure, grading, vignette, grain, dithering
// ---------------------------------------------------------------------------------------

float computeEv100(float aperture, float shutterTime, float iso)
{
    return log2(aperture * aperture / shutterTime * 100.0 / iso);
}

float exposureFromEv100(float ev100)
{
    return 1.0 / (1.2 * exp2(ev100));
}

float vignette(vec2 uv, float strength)
{
    vec2 centred = uv * 2.0 - 1.0;
    float d = dot(centred, centred);
    return mix(1.0, saturate(1.0 - d * 0.5), strength);
}

float filmGrain(vec2 pixel, float time, float strength)
{
    float noise = hash12(pixel + fract(time) * 1000.0) - 0.5;
    return noise * strength;
}

vec3 ditherTriangular(vec3 colour, vec2 pixel, float strength)
{
    vec2 noise = texture(uBlueNoiseMap, pixel / 64.0).rg;
    float triangular = noise.x + noise.y - 1.0;
    return colour + vec3(triangular * strength / 255.0);
}

vec3 colourGrade(vec3 colour)
{
    colour *= uColourFilter;
    colour = adjustContrast(colour, uContrast);
    colour = adjustSaturation(colour, uSaturation);
    colour = liftGammaGain(colour, vec3(0.02, 0.0, -0.01), vec3(1.0, 1.0, 1.02), vec3(1.02, 1.0, 0.98));
    colour = splitToning(colour, vec3(0.45, 0.5, 0.6), vec3(0.6, 0.55, 0.45), 0.0);
    return max(colour, vec3(0.0));
}

vec3 bloomContribution(vec3 colour, float threshold, float knee)
{
    float brightness = maxComponent(colour);
    float soft = brightness - threshold + knee;
    soft = clamp(soft, 0.0, 2.0 * knee);
    soft = soft * soft / (4.0 * knee + EPSILON);
    float contribution = max(soft, brightness - threshold) / max(brightness, EPSILON);
    return colour * contribution;
}

vec3 finishColour(vec3 hdr, vec2 pixel)
{
    vec2 uv = pixel / uViewportSize;
    vec3 colour = hdr * uExposure;
    colour += bloomContribution(colour, 1.0, 0.5) * 0.04;
    colour = colourGrade(colour);
    colour = applyToneMapper(colour, uToneMapper);
    colour *= vignette(uv, uVignetteStrength);
    colour += vec3(filmGrain(pixel, uTime, uGrainStrength));
    colour = linearToSrgb(saturate(colour));
    colour = ditherTriangular(colour, pixel, uDitherStrength);
    return colour;
}

// ---------------------------------------------------------------------------------------
// Debug views
// ---------------------------------------------------------------------------------------

vec3 heatMap(float value)
{
    vec3 cold = vec3(0.0, 0.0, 1.0);
    vec3 mid = vec3(0.0, 1.0, 0.0);
    vec3 hot = vec3(1.0, 0.0, 0.0);
    return value < 0.5 ? mix(cold, mid, value * 2.0) : mix(mid, hot, value * 2.0 - 1.0);
}

vec3 debugView(Surface s, int view, vec3 lit)
{
    switch (view)
    {
    case 1:
        return s.albedo;
    case 2:
        return s.normal * 0.5 + 0.5;
    case 3:
        return vec3(s.roughness);
    case 4:
        return vec3(s.metallic);
    case 5:
        return vec3(s.occlusion);
    case 6:
        return s.emissive;
    case 7:
        return heatMap(saturate(vViewDepth / 100.0));
    case 8:
    {
        int cascade = selectCascade(vViewDepth);
        return cascade == 0 ? vec3(1.0, 0.3, 0.3) : (cascade == 1 ? vec3(0.3, 1.0, 0.3) : vec3(0.3, 0.3, 1.0));
    }
    case 9:
        return vec3(s.nDotV);
    case 10:
        return heatMap(saturate(luminance(lit) / 4.0));
    default:
        break;
    }
    return lit;
}

// ---------------------------------------------------------------------------------------
// Terrain splatting: four layers blended by height, tiled twice against repetition
// ---------------------------------------------------------------------------------------

uniform sampler2D uSplatControlMap;
uniform sampler2D uLayerAlbedoArray0;
uniform sampler2D uLayerAlbedoArray1;
uniform sampler2D uLayerAlbedoArray2;
uniform sampler2D uLayerAlbedoArray3;
uniform vec4 uLayerTiling;
uniform vec4 uLayerRoughness;
uniform vec4 uLayerHeightContrast;

struct TerrainSample
{
    vec3 albedo;
    float height;
    float roughness;
};

vec4 sampleLayer(int layer, vec2 uv)
{
    if (layer == 0)
        return texture(uLayerAlbedoArray0, uv);
    if (layer == 1)
        return texture(uLayerAlbedoArray1, uv);
    if (layer == 2)
        return texture(uLayerAlbedoArray2, uv);
    return texture(uLayerAlbedoArray3, uv);
}

vec4 sampleWithoutRepetition(int layer, vec2 uv)
{
    // Two lookups at different scales and rotations, blended by a slow noise.
    vec2 rotated = rotate(uv, 0.7) * 0.37;
    float blend = smoothstep(0.3, 0.7, valueNoise2(uv * 0.05));
    return mix(sampleLayer(layer, uv), sampleLayer(layer, rotated), blend);
}

vec4 heightBlendWeights(vec4 heights, vec4 weights, vec4 contrast)
{
    vec4 combined = heights * contrast + weights;
    float top = max(max(combined.x, combined.y), max(combined.z, combined.w));
    vec4 blended = max(combined - (top - 0.2), vec4(0.0));
    return blended / max(dot(blended, vec4(1.0)), EPSILON);
}

TerrainSample sampleTerrain(vec2 uv, vec3 position)
{
    vec4 control = texture(uSplatControlMap, uv);
    control /= max(dot(control, vec4(1.0)), EPSILON);
    vec4 layers[4];
    vec4 heights;
    for (int i = 0; i < 4; i++)
    {
        layers[i] = sampleWithoutRepetition(i, position.xz * uLayerTiling[i]);
        heights[i] = layers[i].a;
    }
    vec4 weights = heightBlendWeights(heights, control, uLayerHeightContrast);
    TerrainSample result;
    result.albedo = layers[0].rgb * weights.x + layers[1].rgb * weights.y + layers[2].rgb * weights.z +
                    layers[3].rgb * weights.w;
    result.height = dot(heights, weights);
    result.roughness = dot(uLayerRoughness, weights);
    // Large-scale colour variation hides the tiling at a distance.
    float macro = fbm2(position.xz * 0.01, 3) * 0.5 + 0.5;
    result.albedo *= mix(vec3(0.85, 0.8, 0.75), vec3(1.1, 1.05, 1.0), macro);
    return result;
}

// ---------------------------------------------------------------------------------------
// Procedural emission: screens, neon and lava
// ---------------------------------------------------------------------------------------

vec3 scanlineScreen(vec2 uv, float time)
{
    vec2 pixelUv = floor(uv * vec2(160.0, 90.0)) / vec2(160.0, 90.0);
    vec3 image = 0.5 + 0.5 * cos(time + pixelUv.xyx * 3.0 + vec3(0.0, 2.0, 4.0));
    float scanline = 0.75 + 0.25 * sin(uv.y * 90.0 * PI * 2.0);
    float flicker = 0.95 + 0.05 * sin(time * 60.0);
    vec2 edge = smoothstep(0.0, 0.03, uv) * smoothstep(1.0, 0.97, uv);
    return image * scanline * flicker * edge.x * edge.y;
}

float neonTube(vec2 uv, float time)
{
    float d = abs(length(uv - 0.5) - 0.3);
    float glow = 0.01 / max(d, 0.001);
    float broken = step(0.2, hash12(vec2(floor(time * 8.0), 1.0)));
    return glow * mix(0.3, 1.0, broken);
}

vec3 lava(vec3 position, float time)
{
    vec2 flow = position.xz * 0.4 + vec2(time * 0.05, time * 0.02);
    vec2 warped = domainWarp(flow, 1.5);
    float crust = ridgedNoise(warped * 1.5);
    float heat = smoothstep(0.4, 0.9, 1.0 - crust);
    vec3 hot = temperatureToRgb(mix(900.0, 2200.0, heat)) * heat * 6.0;
    vec3 cooled = vec3(0.05, 0.04, 0.035) * (0.5 + crust);
    return mix(cooled, hot, heat);
}

vec3 emissiveForMaterial(int model, Surface s, vec2 uv)
{
    if (model == 3)
        return scanlineScreen(uv, uTime) * uEmissiveStrength;
    if (model == 4)
        return vec3(0.9, 0.2, 0.6) * neonTube(uv, uTime) * uEmissiveStrength;
    if (model == 5)
        return lava(s.position, uTime);
    return s.emissive;
}

// ---------------------------------------------------------------------------------------
// Water surface
// ---------------------------------------------------------------------------------------

vec3 waterNormal(vec3 position, float time)
{
    vec2 p = position.xz;
    float e = 0.05;
    float h0 = fbm2(p * 0.5 + vec2(time * 0.1, time * 0.07), 4);
    float hx = fbm2((p + vec2(e, 0.0)) * 0.5 + vec2(time * 0.1, time * 0.07), 4);
    float hz = fbm2((p + vec2(0.0, e)) * 0.5 + vec2(time * 0.1, time * 0.07), 4);
    return normalize(vec3(h0 - hx, e * 4.0, h0 - hz));
}

void applyWater(inout Surface s)
{
    s.normal = waterNormal(s.position, uTime);
    s.albedo = vec3(0.02, 0.05, 0.06);
    s.specularColour = vec3(0.02);
    s.roughness = 0.05;
    s.metallic = 0.0;
    s.alpha = s.roughness * s.roughness;
    s.nDotV = max(dot(s.normal, s.view), 1e-4);
    s.opacity = mix(0.6, 0.95, pow5(1.0 - s.nDotV));
}

// ---------------------------------------------------------------------------------------
// Foliage translucency and wind
// ---------------------------------------------------------------------------------------

vec3 foliageTranslucency(Surface s, vec3 lightDirection, vec3 lightColour)
{
    float backLit = saturate(dot(-s.view, lightDirection));
    float thickness = 1.0 - s.occlusion * 0.5;
    float transmission = pow(backLit, 6.0) * thickness;
    return s.albedo * lightColour * transmission * uTransmission;
}

void applyFoliage(inout Surface s)
{
    float gust = windGust(s.position, uTime);
    s.albedo *= mix(vec3(1.0), vec3(1.15, 1.1, 0.8), gust * 0.3);
    s.roughness = mix(s.roughness, 0.9, 0.5);
    s.subsurface = max(s.subsurface, 0.6);
}

// ---------------------------------------------------------------------------------------
// Area lights by representative points: tubes and rectangles
// ---------------------------------------------------------------------------------------

const int MAX_AREA_LIGHTS = 2;

struct AreaLight
{
    vec3 centre;
    vec3 right;   // half extent along the first axis
    vec3 up;      // half extent along the second axis (zero for a tube)
    vec3 colour;
    float intensity;
    float range;
};

uniform AreaLight uAreaLights[MAX_AREA_LIGHTS];
uniform int uAreaLightCount;

vec3 closestPointOnSegment(vec3 a, vec3 b, vec3 p)
{
    vec3 ab = b - a;
    float t = saturate(dot(p - a, ab) / max(dot(ab, ab), EPSILON));
    return a + ab * t;
}

vec3 closestPointOnLineToRay(vec3 a, vec3 b, vec3 rayOrigin, vec3 rayDirection)
{
    vec3 ab = b - a;
    vec3 ao = a - rayOrigin;
    float abDotRay = dot(ab, rayDirection);
    float denominator = dot(ab, ab) - abDotRay * abDotRay;
    float t = saturate((dot(rayDirection, ao) * abDotRay - dot(ab, ao)) / max(denominator, EPSILON));
    return a + ab * t;
}

vec3 closestPointOnRectangle(vec3 centre, vec3 right, vec3 up, vec3 p)
{
    vec3 d = p - centre;
    float rightLength = length(right);
    float upLength = length(up);
    vec3 rightAxis = right / max(rightLength, EPSILON);
    vec3 upAxis = up / max(upLength, EPSILON);
    float x = clamp(dot(d, rightAxis), -rightLength, rightLength);
    float y = clamp(dot(d, upAxis), -upLength, upLength);
    return centre + rightAxis * x + upAxis * y;
}

float rectangleSolidAngle(vec3 p, vec3 v0, vec3 v1, vec3 v2, vec3 v3)
{
    vec3 n0 = normalize(cross(v0 - p, v1 - p));
    vec3 n1 = normalize(cross(v1 - p, v2 - p));
    vec3 n2 = normalize(cross(v2 - p, v3 - p));
    vec3 n3 = normalize(cross(v3 - p, v0 - p));
    float g0 = acos(clamp(dot(-n0, n1), -1.0, 1.0));
    float g1 = acos(clamp(dot(-n1, n2), -1.0, 1.0));
    float g2 = acos(clamp(dot(-n2, n3), -1.0, 1.0));
    float g3 = acos(clamp(dot(-n3, n0), -1.0, 1.0));
    return g0 + g1 + g2 + g3 - TWO_PI;
}

vec3 areaLight(Surface s, AreaLight light, out vec3 specularOut)
{
    vec3 toCentre = light.centre - s.position;
    float distanceSquared = dot(toCentre, toCentre);
    if (distanceSquared > light.range * light.range)
    {
        specularOut = vec3(0.0);
        return vec3(0.0);
    }
    vec3 reflected = reflect(-s.view, s.normal);
    bool tube = dot(light.up, light.up) < EPSILON;
    vec3 diffusePoint;
    vec3 specularPoint;
    float solidAngle;
    if (tube)
    {
        vec3 a = light.centre - light.right;
        vec3 b = light.centre + light.right;
        diffusePoint = closestPointOnSegment(a, b, s.position);
        specularPoint = closestPointOnLineToRay(a, b, s.position, reflected);
        solidAngle = 2.0 * length(light.right) * 0.05 / max(distanceSquared, 1e-4);
    }
    else
    {
        diffusePoint = closestPointOnRectangle(light.centre, light.right, light.up, s.position);
        vec3 planeNormal = normalize(cross(light.right, light.up));
        float t = dot(light.centre - s.position, planeNormal) / min(dot(reflected, planeNormal), -EPSILON);
        vec3 onPlane = s.position + reflected * abs(t);
        specularPoint = closestPointOnRectangle(light.centre, light.right, light.up, onPlane);
        vec3 v0 = light.centre - light.right - light.up;
        vec3 v1 = light.centre + light.right - light.up;
        vec3 v2 = light.centre + light.right + light.up;
        vec3 v3 = light.centre - light.right + light.up;
        solidAngle = rectangleSolidAngle(s.position, v0, v1, v2, v3);
    }
    vec3 diffuseL = normalize(diffusePoint - s.position);
    vec3 specularL = normalize(specularPoint - s.position);
    float falloff = distanceAttenuation(distanceSquared, light.range) * distanceSquared;
    vec3 radiance = light.colour * light.intensity * solidAngle * falloff;
    BrdfTerms diffuseTerms = evaluateBrdf(s, diffuseL, radiance);
    BrdfTerms specularTerms = evaluateBrdf(s, specularL, radiance);
    specularOut = specularTerms.specular;
    return diffuseTerms.diffuse;
}

// ---------------------------------------------------------------------------------------
// Projected decals
// ---------------------------------------------------------------------------------------

const int MAX_DECALS = 4;

struct Decal
{
    mat4 worldToDecal;
    vec4 tint;
    float normalBlend;
    float fadeStart;
    int blendMode;
};

uniform Decal uDecals[MAX_DECALS];
uniform int uDecalCount;
uniform sampler2D uDecalAtlas;
uniform vec4 uDecalAtlasRects[MAX_DECALS];

vec3 blendOverlay(vec3 base, vec3 blend)
{
    return mix(2.0 * base * blend, 1.0 - 2.0 * (1.0 - base) * (1.0 - blend), step(0.5, base));
}

vec3 blendSoftLight(vec3 base, vec3 blend)
{
    return mix(2.0 * base * blend + base * base * (1.0 - 2.0 * blend),
               sqrt(base) * (2.0 * blend - 1.0) + 2.0 * base * (1.0 - blend), step(0.5, blend));
}

void applyDecals(inout Surface s)
{
    for (int i = 0; i < MAX_DECALS; i++)
    {
        if (i >= uDecalCount)
            break;
        vec4 local = uDecals[i].worldToDecal * vec4(s.position, 1.0);
        vec3 box = local.xyz / local.w;
        if (any(greaterThan(abs(box), vec3(0.5))))
            continue;
        vec4 rect = uDecalAtlasRects[i];
        vec2 uv = rect.xy + (box.xy + 0.5) * rect.zw;
        vec4 texel = texture(uDecalAtlas, uv) * uDecals[i].tint;
        float fade = 1.0 - linearStep(uDecals[i].fadeStart, 0.5, abs(box.z));
        float weight = texel.a * fade;
        if (uDecals[i].blendMode == 0)
            s.albedo = mix(s.albedo, texel.rgb, weight);
        else if (uDecals[i].blendMode == 1)
            s.albedo = mix(s.albedo, blendOverlay(s.albedo, texel.rgb), weight);
        else
            s.albedo = mix(s.albedo, blendSoftLight(s.albedo, texel.rgb), weight);
        s.roughness = mix(s.roughness, 0.7, weight * 0.5);
        s.normal = normalize(mix(s.normal, s.geometricNormal, weight * uDecals[i].normalBlend));
    }
}

// ---------------------------------------------------------------------------------------
// Hair and fur: two shifted specular lobes along the strand
// ---------------------------------------------------------------------------------------

uniform vec3 uHairPrimaryColour;
uniform vec3 uHairSecondaryColour;
uniform float uHairPrimaryShift;
uniform float uHairSecondaryShift;

vec3 shiftTangent(vec3 tangent, vec3 normal, float shift)
{
    return normalize(tangent + normal * shift);
}

float strandSpecular(vec3 tangent, vec3 view, vec3 light, float exponent)
{
    vec3 h = normalize(light + view);
    float tDotH = dot(tangent, h);
    float sinTH = sqrt(max(1.0 - tDotH * tDotH, 0.0));
    float directional = smoothstep(-1.0, 0.0, tDotH);
    return directional * pow(sinTH, exponent);
}

vec3 hairLighting(Surface s, vec3 light, vec3 lightColour, float noise)
{
    vec3 t1 = shiftTangent(s.bitangent, s.normal, uHairPrimaryShift + noise - 0.5);
    vec3 t2 = shiftTangent(s.bitangent, s.normal, uHairSecondaryShift + noise - 0.5);
    float diffuse = saturate(mix(0.25, 1.0, dot(s.normal, light)));
    vec3 specular = uHairPrimaryColour * strandSpecular(t1, s.view, light, 80.0);
    specular += uHairSecondaryColour * strandSpecular(t2, s.view, light, 20.0) * noise;
    return (s.albedo * diffuse + specular * 0.3) * lightColour;
}

// ---------------------------------------------------------------------------------------
// Putting it together
// ---------------------------------------------------------------------------------------

struct LightingResult
{
    vec3 diffuse;
    vec3 specular;
};

LightingResult accumulateLights(Surface s)
{
    LightingResult result;
    vec3 specular;
    result.diffuse = directionalLight(s, uSun, specular);
    result.specular = specular;
    for (int i = 0; i < MAX_POINT_LIGHTS; i++)
    {
        if (i >= uPointLightCount)
            break;
        result.diffuse += pointLight(s, uPointLights[i], specular);
        result.specular += specular;
    }
    for (int i = 0; i < MAX_SPOT_LIGHTS; i++)
    {
        if (i >= uSpotLightCount)
            break;
        result.diffuse += spotLight(s, uSpotLights[i], specular);
        result.specular += specular;
    }
    for (int i = 0; i < MAX_AREA_LIGHTS; i++)
    {
        if (i >= uAreaLightCount)
            break;
        result.diffuse += areaLight(s, uAreaLights[i], specular);
        result.specular += specular;
    }
    vec3 ambientSpecular;
    result.diffuse += imageBasedLighting(s, ambientSpecular);
    result.specular += ambientSpecular;
    result.diffuse += uAmbientColour * s.albedo * s.occlusion;
    return result;
}

void alphaTest(float opacity, vec2 pixel)
{
    // Dithered cut-off keeps fading geometry from popping.
    float threshold = uAlphaCutoff + (interleavedGradientNoise(pixel) - 0.5) * 0.1;
    if (opacity < threshold)
        discard;
}

void main()
{
    vec2 pixel = gl_FragCoord.xy;
    Surface s = buildSurface(vTexCoord0);

    if (uMaterialModel == 1)
    {
        TerrainSample terrain = sampleTerrain(vTexCoord0, s.position);
        s.albedo = terrain.albedo;
        s.roughness = clamp(terrain.roughness, 0.045, 1.0);
        s.alpha = s.roughness * s.roughness;
        s.specularColour = vec3(0.04);
    }
    else if (uMaterialModel == 2)
    {
        applyWater(s);
    }
    else if (uMaterialModel == 6)
    {
        applyFoliage(s);
    }

    if (uDecalCount > 0)
    {
        applyDecals(s);
        s.alpha = s.roughness * s.roughness;
        s.nDotV = max(dot(s.normal, s.view), 1e-4);
    }
    if (uAlphaCutoff > 0.0)
        alphaTest(s.opacity, pixel);

    LightingResult lighting = accumulateLights(s);
    vec3 colour = lighting.diffuse + lighting.specular;
    if (uMaterialModel == 6)
        colour += foliageTranslucency(s, normalize(-uSun.direction), uSun.colour * uSun.intensity);
    if (uMaterialModel == 7)
    {
        // Hair takes its sunlight from the strand model instead.
        float strandNoise = texture(uBlueNoiseMap, vTexCoord0 * 8.0).r;
        colour = lighting.specular * 0.2 + hairLighting(s, normalize(-uSun.direction), uSun.colour * uSun.intensity,
                                                        strandNoise);
    }
    colour += emissiveForMaterial(uMaterialModel, s, vTexCoord0);
    colour = aerialPerspective(colour, s.position);
    if (uRainIntensity > 0.0)
        colour += rainStreaks(pixel / uViewportSize, uTime);

    if (uDebugView != 0)
    {
        outColour = vec4(debugView(s, uDebugView, colour), 1.0);
        outNormalRoughness = vec4(encodeOctahedron(s.normal), s.roughness, 1.0);
        return;
    }

    outColour = vec4(finishColour(colour, pixel), s.opacity);
    outNormalRoughness = vec4(encodeOctahedron(s.normal), s.roughness, float(uMaterialModel) / 255.0);
}
