#version 300 es
// Deferred shading G-buffer: albedo, octahedron-encoded normal and view depth into three targets.
precision highp float;

uniform sampler2D uAlbedoMap;
uniform float uNear;
uniform float uFar;

in vec2 vTexCoord;
in vec3 vNormal;
in vec3 vViewPosition;

layout(location = 0) out vec4 outAlbedo;
layout(location = 1) out vec4 outNormal;
layout(location = 2) out vec4 outDepth;

vec2 octWrap(vec2 v)
{
    return (1.0 - abs(v.yx)) * vec2(v.x >= 0.0 ? 1.0 : -1.0, v.y >= 0.0 ? 1.0 : -1.0);
}

vec2 encodeNormal(vec3 n)
{
    n /= abs(n.x) + abs(n.y) + abs(n.z);
    n.xy = n.z >= 0.0 ? n.xy : octWrap(n.xy);
    return n.xy * 0.5 + 0.5;
}

void main()
{
    outAlbedo = vec4(texture(uAlbedoMap, vTexCoord).rgb, 1.0);
    outNormal = vec4(encodeNormal(normalize(vNormal)), 0.0, 1.0);
    float near = uNear * 0.1;
    float far = 20.0 + uFar * 80.0;
    outDepth = vec4((-vViewPosition.z - near) / (far - near), 0.0, 0.0, 1.0);
}
