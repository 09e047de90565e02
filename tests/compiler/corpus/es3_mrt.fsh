#version 300 es
// Deferred shading: three render targets.
precision highp float;

in vec3 vNormal;
in vec3 vPosition;
in vec2 vTexCoord;
uniform sampler2D uAlbedo;
uniform float uRoughness;

layout(location = 0) out vec4 outAlbedo;
layout(location = 1) out vec4 outNormal;
layout(location = 2) out vec4 outPosition;

void main()
{
    outAlbedo = vec4(texture(uAlbedo, vTexCoord).rgb, uRoughness);
    outNormal = vec4(normalize(vNormal) * 0.5 + 0.5, 0.0);
    outPosition = vec4(vPosition, 1.0);
}
