#version 300 es
// Debug view selected by a switch statement.
precision mediump float;

in vec3 vNormal;
in vec2 vTexCoord;
uniform int uView;
uniform sampler2D uTexture;

out vec4 fragColor;

void main()
{
    vec4 color = vec4(0.0);
    switch (uView)
    {
    case 0:
        color = texture(uTexture, vTexCoord);
        break;
    case 1:
        color = vec4(normalize(vNormal) * 0.5 + 0.5, 1.0);
        break;
    case 2:
    case 3:
        color = vec4(vTexCoord, 0.0, 1.0);
        break;
    default:
        color = vec4(1.0, 0.0, 1.0, 1.0);
        break;
    }
    fragColor = color;
}
