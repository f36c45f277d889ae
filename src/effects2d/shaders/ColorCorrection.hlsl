// SPDX-License-Identifier: MIT
// --- colour correction ---

cbuffer ColorCorrectionConstantBuffer : register(b1)
{
    float brightness : packoffset(c0.x);
    float contrast   : packoffset(c0.y);
    float saturation : packoffset(c0.z);
    float hue        : packoffset(c0.w);  // degrees
};

struct VS_ColorCorrection_Input
{
    float4 position  : POSITION;
    float4 color     : COLOR0;
    float2 texCoord0 : TEXCOORD0;
};

struct VS_ColorCorrection_Output
{
    float4 position      : SV_Position;
    float4 color         : COLOR0;
    float2 texCoord0     : TEXCOORD0;
    float4x3 colorMatrix : TEXCOORD1;
};

// All colour matrices act on row vectors (r, g, b, 1).

float4x4 ScaleColor(float scale)
{
    return float4x4(scale, 0, 0, 0,
                    0, scale, 0, 0,
                    0, 0, scale, 0,
                    0, 0, 0, 1);
}

float4x4 TranslateColor(float offset)
{
    return float4x4(1, 0, 0, 0,
                    0, 1, 0, 0,
                    0, 0, 1, 0,
                    offset, offset, offset, 1);
}

// Scales about mid-grey.
float4x4 ContrastMatrix(float scale)
{
    return mul(mul(TranslateColor(-0.5), ScaleColor(scale)), TranslateColor(0.5));
}

float4x4 SaturationMatrix(float s)
{
    float3 grey = float3(0.3086, 0.6094, 0.0820) * (1 - s);
    return float4x4(grey.r + s, grey.r, grey.r, 0,
                    grey.g, grey.g + s, grey.g, 0,
                    grey.b, grey.b, grey.b + s, 0,
                    0, 0, 0, 1);
}

// Rotation about the grey axis.
float4x4 HueMatrix(float degrees)
{
    float3 d = normalize(float3(1, 1, 1));
    float s, c;
    sincos(radians(degrees), s, c);
    float t = 1 - c;
    return float4x4(c + d.x * d.x * t, d.x * d.y * t - d.z * s, d.x * d.z * t + d.y * s, 0,
                    d.x * d.y * t + d.z * s, c + d.y * d.y * t, d.y * d.z * t - d.x * s, 0,
                    d.x * d.z * t - d.y * s, d.y * d.z * t + d.x * s, c + d.z * d.z * t, 0,
                    0, 0, 0, 1);
}

// The matrix is made here, four times a quad, so that a pixel costs one product.
VS_ColorCorrection_Output VS_ColorCorrection(VS_ColorCorrection_Input input)
{
    float4x4 correction = mul(mul(mul(ScaleColor(brightness), ContrastMatrix(contrast)),
                                  SaturationMatrix(saturation)), HueMatrix(hue));

    VS_ColorCorrection_Output output;
    output.position = mul(input.position, worldViewProjection);
    output.color = input.color;
    output.texCoord0 = input.texCoord0;
    output.colorMatrix = (float4x3)correction;
    return output;
}

float4 PS_ColorCorrection(VS_ColorCorrection_Output input) : SV_Target
{
    float4 color = texture0.Sample(texture0Sampler, input.texCoord0);
    return float4(mul(float4(color.rgb, 1), input.colorMatrix), color.a) * input.color;
}
