#version 300 es
// A lookup table read with exact texel addressing, sized from the texture itself.
precision highp float;

uniform sampler2D uLut;
uniform sampler2D uImage;

in vec2 vTexCoord;

out vec4 fragColour;

vec3 lookup(float luminance)
{
    ivec2 size = textureSize(uLut, 0);
    int index = int(clamp(luminance, 0.0, 0.999) * float(size.x * size.y));
    ivec2 texel = ivec2(index % size.x, index / size.x);
    return texelFetch(uLut, texel, 0).rgb;
}

void main()
{
    vec3 colour = texture(uImage, vTexCoord).rgb;
    float luminance = dot(colour, vec3(0.299, 0.587, 0.114));
    fragColour = vec4(mix(colour, lookup(luminance), 0.75), 1.0);
}
