// Screen-space derivatives for an anti-aliased grid.
#extension GL_OES_standard_derivatives : enable
precision mediump float;

varying vec2 vGrid;

void main()
{
    vec2 width = fwidth(vGrid);
    vec2 cell = abs(fract(vGrid - 0.5) - 0.5) / width;
    float line = min(cell.x, cell.y);
    gl_FragColor = vec4(vec3(1.0 - min(line, 1.0)), 1.0);
}
