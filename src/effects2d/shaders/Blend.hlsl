// SPDX-License-Identifier: MIT
// --- blends of two textures ---

cbuffer BlendConstantBuffer : register(b1)
{
    float blendThreshold : packoffset(c0.x);
};

VS_Main_Output VS_Blend(VS_Input input)
{
    return TransformVertex(input);
}

// Cross-fade of all four channels.
float4 PS_BlendLinear(PS_Main_Input input) : SV_Target
{
    float4 first = texture0.Sample(texture0Sampler, input.texCoord0);
    float4 second = texture1.Sample(texture1Sampler, input.texCoord1);
    return (first * blendThreshold + second * (1 - blendThreshold)) * input.color;
}

// The formulas work on one channel: base comes from texture0, blend from texture1.

float Lighten(float base, float blend) { return max(blend, base); }

float Darken(float base, float blend) { return min(blend, base); }

float Add(float base, float blend) { return min(base + blend, 1); }

// Linear burn, and deliberately not a difference.
float Subtract(float base, float blend) { return max(base + blend - 1, 0); }

float Screen(float base, float blend) { return 1 - (1 - base) * (1 - blend); }

float Overlay(float base, float blend)
{
    return base < 0.5 ? 2 * base * blend : 1 - 2 * (1 - base) * (1 - blend);
}

float ColorDodge(float base, float blend)
{
    return blend == 1 ? blend : min(base / (1 - blend), 1);
}

float ColorBurn(float base, float blend)
{
    return blend == 0 ? blend : max(1 - (1 - base) / blend, 0);
}

float Multiply(float base, float blend) { return base * blend; }

// A program that blends the colours by a formula and fades alpha by the threshold.
#define BLEND_PROGRAM(entry, formula)                                                                        \
    float4 entry(PS_Main_Input input) : SV_Target                                                            \
    {                                                                                                        \
        float4 c0 = texture0.Sample(texture0Sampler, input.texCoord0);                                       \
        float4 c1 = texture1.Sample(texture1Sampler, input.texCoord1);                                       \
        float3 color = float3(formula(c0.r, c1.r), formula(c0.g, c1.g), formula(c0.b, c1.b));                \
        float alpha = c0.a * blendThreshold + c1.a * (1 - blendThreshold);                                   \
        return float4(color, alpha) * input.color;                                                           \
    }

BLEND_PROGRAM(PS_BlendLighten, Lighten)
BLEND_PROGRAM(PS_BlendDarken, Darken)
BLEND_PROGRAM(PS_BlendAdd, Add)
BLEND_PROGRAM(PS_BlendSubtract, Subtract)
BLEND_PROGRAM(PS_BlendScreen, Screen)
BLEND_PROGRAM(PS_BlendOverlay, Overlay)
BLEND_PROGRAM(PS_BlendColorDodge, ColorDodge)
BLEND_PROGRAM(PS_BlendColorBurn, ColorBurn)
BLEND_PROGRAM(PS_BlendMultiply, Multiply)
