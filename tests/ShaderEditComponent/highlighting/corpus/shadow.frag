#version 330 core
#extension GL_ARB_explicit_uniform_location : require

layout(location = 0) out vec4 FragColour;

in vec4 ShadowCoord;
in vec3 Normal;
in vec2 TexCoord;
noperspective in vec3 EdgeDistance;

uniform sampler2DShadow ShadowMap;
uniform sampler2D DiffuseMap;
uniform vec4 Ambient = vec4(0.1, 0.1, 0.12, 1.0);
uniform float Bias;

subroutine vec4 ShadeModel(vec3 n);
subroutine uniform ShadeModel Shade;

subroutine(ShadeModel) vec4 Flat(vec3 n) { return Ambient; }

float PercentageCloser(vec4 coord)
{
    float sum = 0.0;
    // 3x3 kernel, offsets in texels
    for (int x = -1; x <= 1; ++x)
        for (int y = -1; y <= 1; ++y)
            sum += textureProjOffset(ShadowMap, coord, ivec2(x, y));
    return sum / 9.0;
}

void main()
{
    vec4 coord = ShadowCoord;
    coord.z -= Bias;
    float lit = PercentageCloser(coord);
    vec4 colour = texture(DiffuseMap, TexCoord);
    float edge = min(min(EdgeDistance.x, EdgeDistance.y), EdgeDistance.z);
    float wire = smoothstep(0.5, 1.5, edge);
    FragColour = mix(vec4(0.0, 0.0, 0.0, 1.0), colour * (Ambient + lit), wire);
    FragColour.rgb = pow(FragColour.rgb, vec3(1.0 / 2.2)); // gamma
    gl_FragDepth = gl_FragCoord.z;
}
