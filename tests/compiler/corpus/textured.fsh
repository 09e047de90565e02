// Textured quad, modulated by the vertex colour.
precision mediump float;

varying vec2 vTexCoord;
varying lowp vec4 vColor;
uniform sampler2D uTexture;

void main()
{
    vec4 texel = texture2D(uTexture, vTexCoord);
    gl_FragColor = texel * vColor;
}
