#version 300 es
// A grid of quads generated from gl_VertexID alone: no vertex buffer, attributes from integer maths.
uniform mat4 uViewProjection;
uniform int uColumns;
uniform float uSpacing;

out vec2 vCellUv;
flat out int vCell;

void main()
{
    int quad = gl_VertexID / 6;
    int corner = gl_VertexID % 6;
    int columns = uColumns + 1;
    ivec2 cell = ivec2(quad % columns, quad / columns);
    const vec2 corners[6] = vec2[6](vec2(0.0, 0.0), vec2(1.0, 0.0), vec2(1.0, 1.0),
                                    vec2(0.0, 0.0), vec2(1.0, 1.0), vec2(0.0, 1.0));
    vec2 local = corners[corner];
    vec2 position = (vec2(cell) + local * 0.9) * uSpacing + float(gl_InstanceID);
    vCellUv = local;
    vCell = cell.y * columns + cell.x;
    gl_Position = uViewProjection * vec4(position.x, 0.0, position.y, 1.0);
}
