// Flat colour with a uniform tint.
precision mediump float;

uniform vec4 uColor;

void main()
{
    gl_FragColor = uColor;
}
