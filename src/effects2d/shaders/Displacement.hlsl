// SPDX-License-Identifier: MIT
// --- displacement of texture0 by the colours of texture1 ---

cbuffer DisplacementConstantBuffer : register(b1)
{
    float uPower : packoffset(c0.x);
    float vPower : packoffset(c0.y);
};

cbuffer RgbDisplacementConstantBuffer : register(b1)
{
    float uPowerR : packoffset(c0.x);
    float vPowerR : packoffset(c0.y);
    float uPowerG : packoffset(c0.z);
    float vPowerG : packoffset(c0.w);
    float uPowerB : packoffset(c1.x);
    float vPowerB : packoffset(c1.y);
};

VS_Main_Output VS_Displacement(VS_Input input)
{
    return TransformVertex(input);
}

// The map isn't centred: grey shifts the picture too.
float4 PS_Displacement(PS_Main_Input input) : SV_Target
{
    float2 shift = texture1.Sample(texture1Sampler, input.texCoord1).xy * float2(uPower, vPower);
    return texture0.Sample(texture0Sampler, input.texCoord0 + shift) * input.color;
}

// Each colour channel has its own powers.
float4 PS_RgbDisplacement(PS_Main_Input input) : SV_Target
{
    float2 d = texture1.Sample(texture1Sampler, input.texCoord1).xy;
    float r = texture0.Sample(texture0Sampler, input.texCoord0 + d * float2(uPowerR, vPowerR)).r;
    float g = texture0.Sample(texture0Sampler, input.texCoord0 + d * float2(uPowerG, vPowerG)).g;
    float b = texture0.Sample(texture0Sampler, input.texCoord0 + d * float2(uPowerB, vPowerB)).b;
    return float4(r, g, b, 1) * input.color;
}
