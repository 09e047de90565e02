//--------------------------------------------------------------------------------------
// Forward lighting with a directional light and a normal map.
//--------------------------------------------------------------------------------------
#include "common.fxh"
#define LIGHT_COUNT 2

cbuffer PerFrame : register(b0)
{
    row_major float4x4 ViewProjection;
    float3 EyePosition;
    float Time;
};

cbuffer PerObject : register(b1)
{
    float4x4 World;
    float4 MaterialColour;
};

Texture2D DiffuseTexture;
Texture2D NormalTexture;
SamplerState LinearSampler
{
    Filter = MIN_MAG_MIP_LINEAR;
    AddressU = Wrap;
    AddressV = Wrap;
};

struct VS_INPUT
{
    float3 Position : POSITION;
    float3 Normal   : NORMAL;
    float2 TexCoord : TEXCOORD0;
};

struct PS_INPUT
{
    float4 Position : SV_POSITION;
    float3 Normal   : TEXCOORD1;
    float2 TexCoord : TEXCOORD0;
};

PS_INPUT VS(VS_INPUT input)
{
    PS_INPUT output = (PS_INPUT)0;
    float4 worldPosition = mul(float4(input.Position, 1.0f), World);
    output.Position = mul(worldPosition, ViewProjection);
    output.Normal = normalize(mul(input.Normal, (float3x3)World));
    output.TexCoord = input.TexCoord;
    return output;
}

float4 PS(PS_INPUT input) : SV_Target
{
    float3 n = normalize(input.Normal);
    float3 l = normalize(float3(0.3f, 1.0f, -0.2f));
    half lambert = saturate(dot(n, l));
    float4 albedo = DiffuseTexture.Sample(LinearSampler, input.TexCoord);
    clip(albedo.a - 0.5f);
    return albedo * MaterialColour * lerp(0.2, 1.0, lambert);
}

technique10 Render
{
    pass P0
    {
        SetVertexShader(CompileShader(vs_4_0, VS()));
        SetGeometryShader(NULL);
        SetPixelShader(CompileShader(ps_4_0, PS()));
    }
}
