// SPDX-License-Identifier: MIT
// --- lens flare: a ghost of the picture, mirrored through its centre ---

cbuffer LensflareConstantBuffer : register(b1)
{
    float2 texture0Size : packoffset(c0.x);  // texels
};

VS_Main_Output VS_Lensflare(VS_Input input)
{
    return TransformVertex(input);
}

float4 PS_Lensflare(PS_Main_Input input) : SV_Target
{
    const float4 tint = float4(0.7, 0.4, 0.2, 1);
    const float threshold = 0.1;
    const float textureScale = 0.5;
    const float blurScale = 0.1;
    const int sampleCount = 12;

    float2 mirrored = float2(1, 1) - input.texCoord0;
    float2 position = (mirrored * 2 - 1) * textureScale;
    float2 towardCentre = normalize(-position);
    float blurDistance = blurScale * sampleCount;
    float2 blurStep = towardCentre / texture0Size * blurDistance;

    // Samples run across the ghost's position, from inside to outside.
    float2 current = position + blurStep;
    float4 sum = float4(0, 0, 0, 0);
    [unroll]
    for (int i = 0; i < sampleCount; ++i)
    {
        float2 texCoord = current * 0.5 + 0.5;
        float4 ghost = max(0, texture0.Sample(texture0Sampler, texCoord) - threshold) * tint;
        bool inside = all(texCoord >= 0) && all(texCoord <= 1);
        sum += inside ? ghost : float4(0, 0, 0, 0);
        current -= 2 * blurStep;
    }
    return sum / sampleCount;
}
