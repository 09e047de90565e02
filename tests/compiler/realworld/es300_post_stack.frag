#version 300 es
// A post-processing chain in one pass, each stage a function whose return value is the next call.
precision highp float;

uniform sampler2D uScene;
uniform float uExposure;
uniform float uVignette;
uniform vec2 uTexelSize;

in vec2 vTexCoord;

out vec4 fragColour;

vec3 sampleScene(vec2 uv)
{
    return texture(uScene, uv).rgb;
}

vec3 sharpen(vec2 uv)
{
    vec3 blurred = (sampleScene(uv + vec2(uTexelSize.x, 0.0)) + sampleScene(uv - vec2(uTexelSize.x, 0.0)) +
                    sampleScene(uv + vec2(0.0, uTexelSize.y)) + sampleScene(uv - vec2(0.0, uTexelSize.y))) * 0.25;
    return sampleScene(uv) * 1.5 - blurred * 0.5;
}

vec3 expose(vec2 uv)
{
    return sharpen(uv) * exp2(uExposure * 2.0 - 1.0);
}

vec3 reinhard(vec3 c)
{
    return c / (1.0 + dot(c, vec3(0.2126, 0.7152, 0.0722)));
}

vec3 vignette(vec2 uv)
{
    float falloff = 1.0 - uVignette * dot(uv - 0.5, uv - 0.5) * 2.0;
    return reinhard(expose(uv)) * falloff;
}

void main()
{
    fragColour = vec4(vignette(vTexCoord), 1.0);
}
