// Material selection through an if/else-if chain.
precision mediump float;

varying vec2 vTexCoord;
uniform int uMode;
uniform vec4 uColorA;
uniform vec4 uColorB;
uniform sampler2D uMask;

void main()
{
    vec4 color;
    if (uMode == 0)
    {
        color = uColorA;
    }
    else if (uMode == 1)
    {
        color = mix(uColorA, uColorB, vTexCoord.x);
    }
    else
    {
        float mask = texture2D(uMask, vTexCoord).r;
        color = mix(uColorA, uColorB, smoothstep(0.25, 0.75, mask));
    }
    gl_FragColor = color;
}
