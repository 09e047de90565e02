// Sobel edge detection on luminance, used for outlines in a post-processing stack.
precision mediump float;

uniform sampler2D uScene;
uniform vec2 uTexelSize;
uniform vec3 uEdgeColour;

varying vec2 vTexCoord;

float luminance(vec3 colour)
{
    return dot(colour, vec3(0.2126, 0.7152, 0.0722));
}

float sampleLuma(vec2 uv, float dx, float dy)
{
    return luminance(texture2D(uScene, uv + vec2(dx, dy) * uTexelSize).rgb);
}

void main()
{
    float gx = 0.0;
    float gy = 0.0;
    for (int y = -1; y <= 1; y++)
    {
        for (int x = -1; x <= 1; x++)
        {
            float weightX = float(x) * (y == 0 ? 2.0 : 1.0);
            float weightY = float(y) * (x == 0 ? 2.0 : 1.0);
            float l = sampleLuma(vTexCoord, float(x), float(y));
            gx += l * weightX;
            gy += l * weightY;
        }
    }
    float edge = clamp(sqrt(gx * gx + gy * gy) * 0.5, 0.0, 1.0);
    vec3 scene = texture2D(uScene, vTexCoord).rgb;
    gl_FragColor = vec4(mix(scene, uEdgeColour, edge), 1.0);
}
