#version 300 es
// Screen-space ambient occlusion over a constant hemisphere kernel, with a range check.
precision highp float;

uniform sampler2D uDepth;
uniform sampler2D uNormals;
uniform float uRadius;

in vec2 vTexCoord;

out vec4 fragColour;

const vec3 KERNEL[8] = vec3[8](vec3(0.05, 0.02, 0.08), vec3(-0.09, 0.06, 0.11), vec3(0.13, -0.11, 0.05),
                               vec3(-0.04, -0.16, 0.19), vec3(0.24, 0.1, 0.14), vec3(-0.26, 0.21, 0.2),
                               vec3(0.17, -0.33, 0.31), vec3(-0.4, -0.12, 0.45));

float linearDepth(vec2 uv)
{
    return texture(uDepth, uv).r * 10.0;
}

void main()
{
    vec3 normal = normalize(texture(uNormals, vTexCoord).xyz * 2.0 - 1.0 + vec3(0.0, 0.0, 0.5));
    float depth = linearDepth(vTexCoord);
    float occlusion = 0.0;
    for (int i = 0; i < 8; ++i)
    {
        vec3 sampleDirection = KERNEL[i];
        if (dot(sampleDirection, normal) < 0.0)
            sampleDirection = -sampleDirection;
        vec2 uv = vTexCoord + sampleDirection.xy * uRadius * 0.1;
        float sampleDepth = linearDepth(uv);
        float expected = depth - sampleDirection.z * uRadius;
        float rangeCheck = smoothstep(0.0, 1.0, uRadius / max(abs(depth - sampleDepth), 1e-3));
        occlusion += (sampleDepth <= expected - 0.025 ? 1.0 : 0.0) * rangeCheck;
    }
    fragColour = vec4(vec3(1.0 - occlusion / 8.0), 1.0);
}
