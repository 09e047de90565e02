// A local array indexed by a loop counter lives in scratch memory.
precision mediump float;

varying vec2 vTexCoord;
uniform sampler2D uTexture;
uniform vec2 uStep;

void main()
{
    float weights[5];
    weights[0] = 0.06;
    weights[1] = 0.24;
    weights[2] = 0.40;
    weights[3] = 0.24;
    weights[4] = 0.06;
    vec4 sum = vec4(0.0);
    for (int i = 0; i < 5; i++)
    {
        sum += texture2D(uTexture, vTexCoord + uStep * float(i - 2)) * weights[i];
    }
    gl_FragColor = sum;
}
