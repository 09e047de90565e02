// Soft particles: fade where the sprite meets the scene, by comparing linearised depths.
precision highp float;

uniform sampler2D uSprite;
uniform sampler2D uSceneDepth;
uniform float uNear;
uniform float uFar;
uniform float uSoftness;

varying vec2 vTexCoord;
varying vec2 vScreenCoord;
varying float vParticleDepth;

float linearDepth(float depth)
{
    float n = uNear * 0.1;
    float f = 10.0 + uFar * 90.0;
    float z = depth * 2.0 - 1.0;
    return 2.0 * n * f / (f + n - z * (f - n));
}

float sceneDepth(vec2 uv)
{
    return linearDepth(texture2D(uSceneDepth, uv).r);
}

void main()
{
    vec4 sprite = texture2D(uSprite, vTexCoord);
    float particle = linearDepth(clamp(vParticleDepth, 0.0, 1.0));
    float difference = sceneDepth(vScreenCoord) - particle;
    float fade = clamp(difference / (uSoftness * 0.5), 0.0, 1.0);
    gl_FragColor = vec4(sprite.rgb, sprite.a * fade);
}
