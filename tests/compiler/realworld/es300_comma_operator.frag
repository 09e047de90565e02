#version 300 es
// The comma operator where real code puts it: two counters in a for header and paired updates.
precision highp float;

uniform sampler2D uImage;
uniform vec2 uTexelSize;

in vec2 vTexCoord;

out vec4 fragColour;

void main()
{
    vec3 sum = vec3(0.0);
    float weight = 0.0, w = 1.0;
    for (int i = 0, j = 4; i < j; ++i, --j)
    {
        vec2 offset = vec2(float(i - j), float(j - i)) * uTexelSize;
        sum += texture(uImage, vTexCoord + offset).rgb * w, weight += w;
        w *= 0.5;
    }
    float lo, hi;
    lo = 0.1, hi = 0.9;
    fragColour = vec4(clamp(sum / weight, lo, hi), 1.0);
}
