// Alpha test with discard.
precision mediump float;

varying vec2 vTexCoord;
uniform sampler2D uTexture;
uniform float uAlphaRef;

void main()
{
    vec4 texel = texture2D(uTexture, vTexCoord);
    if (texel.a < uAlphaRef)
        discard;
    gl_FragColor = texel;
}
