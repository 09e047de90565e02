// Mixed precision qualifiers on varyings, uniforms and locals.
precision lowp float;

varying mediump vec2 vTexCoord;
varying lowp vec4 vColor;
uniform highp float uTime;
uniform lowp sampler2D uTexture;

void main()
{
    highp float phase = fract(uTime * 0.25) * 6.2831853;
    mediump vec2 uv = vTexCoord + vec2(sin(phase), cos(phase)) * 0.01;
    lowp vec4 texel = texture2D(uTexture, uv);
    gl_FragColor = texel * vColor;
}
