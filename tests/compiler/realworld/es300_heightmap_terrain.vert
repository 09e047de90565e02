#version 300 es
// Terrain from a height map sampled in the vertex shader, normals by central differences.
in vec2 aGridPosition;

uniform sampler2D uHeightMap;
uniform mat4 uModelViewProjection;
uniform float uHeightScale;
uniform vec2 uTexelSize;

out vec3 vNormal;
out float vHeight;

float heightAt(vec2 uv)
{
    return textureLod(uHeightMap, uv, 0.0).r * uHeightScale;
}

void main()
{
    vec2 uv = aGridPosition * 0.5 + 0.5;
    float h = heightAt(uv);
    float left = heightAt(uv - vec2(uTexelSize.x, 0.0));
    float right = heightAt(uv + vec2(uTexelSize.x, 0.0));
    float down = heightAt(uv - vec2(0.0, uTexelSize.y));
    float up = heightAt(uv + vec2(0.0, uTexelSize.y));
    vNormal = normalize(vec3(left - right, 2.0 * uTexelSize.x * 4.0, down - up));
    vHeight = h;
    gl_Position = uModelViewProjection * vec4(aGridPosition.x, h, aGridPosition.y, 1.0);
}
