#version 300 es
#extension GL_EXT_shader_framebuffer_fetch : enable
#pragma optimize(on)

precision highp float;
precision mediump int;

in vec2 vTexCoord;
in vec3 vWorldNormal;
in vec4 vWorldPosition;
flat in int vMaterial;

layout(location = 0) out vec4 outAlbedo;
layout(location = 1) out vec4 outNormal;
layout(location = 2) out vec4 outPosition;

uniform sampler2D uAlbedo;
uniform sampler2DArray uDetail;
uniform sampler2DShadow uShadow;
uniform mat4x3 uBoneMatrices[32];
uniform uvec4 uFlags;

struct Material
{
    vec4 tint;
    float roughness;
    float metallic;
};

layout(std140) uniform Materials
{
    Material uMaterials[16];
};

vec3 EncodeNormal(vec3 n)
{
    return n * 0.5 + 0.5;
}

void main()
{
    Material m = uMaterials[vMaterial];
    vec4 albedo = texture(uAlbedo, vTexCoord) * m.tint;
    vec3 detail = texture(uDetail, vec3(vTexCoord * 8.0, float(vMaterial))).rgb;
    albedo.rgb *= detail * 2.0;
    switch (vMaterial)
    {
    case 0:
        albedo.a = 1.0;
        break;
    default:
        albedo.a = m.roughness;
        break;
    }
    outAlbedo = albedo;
    outNormal = vec4(EncodeNormal(normalize(vWorldNormal)), m.metallic);
    outPosition = vWorldPosition; /* w carries the linear depth */
}
