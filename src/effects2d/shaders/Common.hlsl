// SPDX-License-Identifier: MIT
// The first part of the effect shader library. All parts are one text: the compiler gets them joined in the
// order that the build lists them in, together with the entry points of one program.
//
// b0 holds what all programs share, b1 what one program family needs; t0 to t2 are the inputs, each with the
// sampler of the same number.

cbuffer ConstantBufferData : register(b0)
{
    float4x4 worldViewProjection : packoffset(c0);
    float2 invScreenSize         : packoffset(c4.x);  // one texel of the target
    float time                   : packoffset(c4.z);  // seconds since the effect's start
};

Texture2D texture0 : register(t0);
Texture2D texture1 : register(t1);
Texture2D texture2 : register(t2);
SamplerState texture0Sampler : register(s0);
SamplerState texture1Sampler : register(s1);
SamplerState texture2Sampler : register(s2);

struct VS_Input
{
    float4 position  : POSITION;
    float4 color     : COLOR0;
    float2 texCoord0 : TEXCOORD0;
    float2 texCoord1 : TEXCOORD1;
};

struct VS_Main_Output
{
    float4 position  : SV_Position;
    float4 color     : COLOR0;
    float2 texCoord0 : TEXCOORD0;
    float2 texCoord1 : TEXCOORD1;
};

// The pixel side of VS_Main_Output.
struct PS_Main_Input
{
    float4 position  : SV_Position;
    float4 color     : COLOR0;
    float2 texCoord0 : TEXCOORD0;
    float2 texCoord1 : TEXCOORD1;
};

VS_Main_Output TransformVertex(VS_Input input)
{
    VS_Main_Output output;
    output.position = mul(input.position, worldViewProjection);
    output.color = input.color;
    output.texCoord0 = input.texCoord0;
    output.texCoord1 = input.texCoord1;
    return output;
}

VS_Main_Output VS_Main(VS_Input input)
{
    return TransformVertex(input);
}

float4 PS_Main(PS_Main_Input input) : SV_Target
{
    return texture0.Sample(texture0Sampler, input.texCoord0) * input.color;
}
