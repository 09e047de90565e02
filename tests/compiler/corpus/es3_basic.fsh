#version 300 es
// GLSL ES 3.00 fragment shader with an explicit output.
precision mediump float;

in vec2 vTexCoord;
in vec4 vColor;
uniform sampler2D uTexture;

out vec4 fragColor;

void main()
{
    fragColor = texture(uTexture, vTexCoord) * vColor;
}
