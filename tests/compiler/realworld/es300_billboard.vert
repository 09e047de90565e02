#version 300 es
// Camera-facing billboards: corners offset along the view matrix's right and up axes.
in vec3 aCentre;
in vec2 aCorner;
in float aSize;

uniform mat4 uView;
uniform mat4 uProjection;

out vec2 vUv;

void main()
{
    vec3 right = vec3(uView[0][0], uView[1][0], uView[2][0]);
    vec3 up = vec3(uView[0][1], uView[1][1], uView[2][1]);
    float size = 0.2 + abs(aSize);
    vec3 position = aCentre + (right * aCorner.x + up * aCorner.y) * size;
    vUv = aCorner * 0.5 + 0.5;
    gl_Position = uProjection * uView * vec4(position, 1.0);
}
