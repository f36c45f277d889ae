// SPDX-License-Identifier: MIT
// --- blur of nine samples in one direction ---

struct VS_Blur_Input
{
    float4 position  : POSITION;
    float2 texCoord0 : TEXCOORD0;
};

// TEXCOORD0 to TEXCOORD8 are the samples from -4 to 4 texels, TEXCOORD9 is the coordinate itself.
struct VS_Blur_Output
{
    float4 position  : SV_Position;
    float2 texCoord0 : TEXCOORD0;
    float2 texCoord1 : TEXCOORD1;
    float2 texCoord2 : TEXCOORD2;
    float2 texCoord3 : TEXCOORD3;
    float2 texCoord4 : TEXCOORD4;
    float2 texCoord5 : TEXCOORD5;
    float2 texCoord6 : TEXCOORD6;
    float2 texCoord7 : TEXCOORD7;
    float2 texCoord8 : TEXCOORD8;
    float2 texCoord9 : TEXCOORD9;
};

VS_Blur_Output BlurVertex(VS_Blur_Input input, float2 texel)
{
    VS_Blur_Output output;
    output.position = mul(float4(input.position.xyz, 1), worldViewProjection);
    output.texCoord0 = input.texCoord0 - 4 * texel;
    output.texCoord1 = input.texCoord0 - 3 * texel;
    output.texCoord2 = input.texCoord0 - 2 * texel;
    output.texCoord3 = input.texCoord0 - texel;
    output.texCoord4 = input.texCoord0;
    output.texCoord5 = input.texCoord0 + texel;
    output.texCoord6 = input.texCoord0 + 2 * texel;
    output.texCoord7 = input.texCoord0 + 3 * texel;
    output.texCoord8 = input.texCoord0 + 4 * texel;
    output.texCoord9 = input.texCoord0;
    return output;
}

VS_Blur_Output VS_HorizontalBlur(VS_Blur_Input input)
{
    return BlurVertex(input, float2(invScreenSize.x, 0));
}

VS_Blur_Output VS_VerticalBlur(VS_Blur_Input input)
{
    return BlurVertex(input, float2(0, invScreenSize.y));
}

float4 BlurSample(float2 texCoord, float weight)
{
    return texture0.Sample(texture0Sampler, texCoord) * weight;
}

// The weights add up to 1, so repeated passes keep the brightness.
float4 PS_Blur(VS_Blur_Output input) : SV_Target
{
    const float total = 1.0 + 2 * (0.9 + 0.55 + 0.18 + 0.1);
    float4 sum = BlurSample(input.texCoord0, 0.1 / total);
    sum += BlurSample(input.texCoord1, 0.18 / total);
    sum += BlurSample(input.texCoord2, 0.55 / total);
    sum += BlurSample(input.texCoord3, 0.9 / total);
    sum += BlurSample(input.texCoord4, 1.0 / total);
    sum += BlurSample(input.texCoord5, 0.9 / total);
    sum += BlurSample(input.texCoord6, 0.55 / total);
    sum += BlurSample(input.texCoord7, 0.18 / total);
    sum += BlurSample(input.texCoord8, 0.1 / total);
    return sum;
}
