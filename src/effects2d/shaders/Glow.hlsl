// SPDX-License-Identifier: MIT
// --- glow: bright pass and combination ---

cbuffer GlowConstantBuffer : register(b1)
{
    float glowThreshold    : packoffset(c0.x);
    float bloomIntensity   : packoffset(c0.y);
    float sourceIntensity  : packoffset(c0.z);
    float bloomSaturation  : packoffset(c0.w);
    float sourceSaturation : packoffset(c1.x);
};

// A vertex with one texture coordinate.
struct VS_Glow_Input
{
    float4 position  : POSITION;
    float4 color     : COLOR0;
    float2 texCoord0 : TEXCOORD0;
};

struct VS_Glow_Output
{
    float4 position  : SV_Position;
    float4 color     : COLOR0;
    float2 texCoord0 : TEXCOORD0;
};

VS_Glow_Output VS_Glow(VS_Glow_Input input)
{
    VS_Glow_Output output;
    output.position = mul(float4(input.position.xyz, 1), worldViewProjection);
    output.color = input.color;
    output.texCoord0 = input.texCoord0;
    return output;
}

// What is above the threshold, stretched to the full range.
float4 PS_Glow(VS_Glow_Output input) : SV_Target
{
    float4 color = texture0.Sample(texture0Sampler, input.texCoord0);
    float4 glow = saturate((color - glowThreshold) / (1 - glowThreshold));
    return float4(glow.rgb, 1);
}

VS_Glow_Output VS_GlowCombine(VS_Glow_Input input)
{
    VS_Glow_Output output;
    output.position = mul(input.position, worldViewProjection);
    output.color = input.color;
    output.texCoord0 = input.texCoord0;
    return output;
}

float3 AdjustSaturation(float3 color, float amount)
{
    float grey = dot(color, float3(0.3, 0.59, 0.11));
    return lerp(float3(grey, grey, grey), color, amount);
}

float4 PS_GlowCombine(VS_Glow_Output input) : SV_Target
{
    float4 bc = texture0.Sample(texture0Sampler, input.texCoord0);
    float4 sc = texture1.Sample(texture1Sampler, input.texCoord0);

    float3 bloom = AdjustSaturation(bc.rgb, bloomSaturation) * bloomIntensity;
    float3 source = AdjustSaturation(sc.rgb, sourceSaturation) * sourceIntensity;
    source *= 1 - saturate(bloom);  // keeps bright places from burning out
    return float4(source + bloom, sc.a) * input.color;
}
