// SPDX-License-Identifier: MIT
// --- ordered dither ---

cbuffer DitherConstantBuffer : register(b1)
{
    float2 ditherScale : packoffset(c0.x);  // cells across the texture
};

VS_Main_Output VS_Dither(VS_Input input)
{
    return TransformVertex(input);
}

// The 8 by 8 Bayer matrix, row x and column y:
//
//      0 32  8 40  2 34 10 42
//     48 16 56 24 50 18 58 26
//     12 44  4 36 14 46  6 38
//     60 28 52 20 62 30 54 22
//      3 35 11 43  1 33  9 41
//     51 19 59 27 49 17 57 25
//     15 47  7 39 13 45  5 37
//     63 31 55 23 61 29 53 21
//
// It is computed and not looked up, since a table that is indexed at run time is copied for every pixel: the
// bits of x ^ y and of x, interleaved, in reverse order.
int BayerValue(int x, int y)
{
    int d = x ^ y;
    return ((d & 1) << 5) | ((x & 1) << 4) | ((d & 2) << 2) | ((x & 2) << 1) | ((d & 4) >> 1) | ((x & 4) >> 2);
}

// 0 below the limit of the matrix's cell, else 1. The limits run from 1/64 to 1: 0 stays 0, 1 stays 1.
float find_closest(int x, int y, float c)
{
    float limit = x < 8 ? (BayerValue(x, y) + 1) / 64.0 : 0;
    return c < limit ? 0 : 1;
}

// The cell follows the texture coordinate, not the target's pixels.
int2 DitherCell(float2 texCoord)
{
    return int2(fmod(texCoord * ditherScale, 8));
}

float4 PS_Dither(PS_Main_Input input) : SV_Target
{
    float4 color = texture0.Sample(texture0Sampler, input.texCoord0);
    int2 cell = DitherCell(input.texCoord0);
    return float4(find_closest(cell.x, cell.y, color.r), find_closest(cell.x, cell.y, color.g),
                  find_closest(cell.x, cell.y, color.b), color.a) * input.color;
}

float4 PS_DitherGrayscale(PS_Main_Input input) : SV_Target
{
    float4 color = texture0.Sample(texture0Sampler, input.texCoord0);
    float grey = dot(color, float4(0.299, 0.587, 0.114, 0));
    int2 cell = DitherCell(input.texCoord0);
    float dithered = find_closest(cell.x, cell.y, grey);
    return float4(dithered, dithered, dithered, color.a) * input.color;
}
