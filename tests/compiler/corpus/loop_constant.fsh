// A loop with a constant trip count, unrolled by the cost model.
precision mediump float;

varying vec2 vTexCoord;
uniform sampler2D uTexture;
uniform vec2 uTexelSize;

void main()
{
    vec4 sum = vec4(0.0);
    for (int i = 0; i < 8; i++)
    {
        vec2 offset = vec2(float(i) - 3.5, 0.0) * uTexelSize;
        sum += texture2D(uTexture, vTexCoord + offset);
    }
    gl_FragColor = sum / 8.0;
}
