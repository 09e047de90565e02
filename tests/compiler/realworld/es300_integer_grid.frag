#version 300 es
// Debug overlay: tile grid, XOR pattern and tile ids from integer pixel coordinates.
precision highp float;
precision highp int;

uniform int uTileSize;
uniform vec3 uGridColour;

out vec4 fragColour;

void main()
{
    ivec2 pixel = ivec2(gl_FragCoord.xy);
    int tile = 2 + uTileSize;
    ivec2 cell = pixel / tile;
    ivec2 inCell = pixel % tile;
    bool border = inCell.x == 0 || inCell.y == 0;
    int pattern = (cell.x ^ cell.y) & 3;
    int id = cell.y * 16 + cell.x;
    float shade = float(pattern) / 3.0;
    vec3 colour = border ? uGridColour : vec3(shade, float(id % 7) / 6.0, float(abs(cell.x - cell.y)) / 8.0);
    fragColour = vec4(colour, float(min(max(id, 0), 255)) / 255.0);
}
