// Box filter with nested loops over a 3x3 kernel.
precision mediump float;

varying vec2 vTexCoord;
uniform sampler2D uImage;
uniform vec2 uTexel;

void main()
{
    vec4 total = vec4(0.0);
    for (int y = -1; y <= 1; y++)
    {
        for (int x = -1; x <= 1; x++)
        {
            total += texture2D(uImage, vTexCoord + vec2(float(x), float(y)) * uTexel);
        }
    }
    gl_FragColor = total / 9.0;
}
