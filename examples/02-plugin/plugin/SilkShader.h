// SPDX-License-Identifier: MIT
#pragma once

namespace silk
{

inline constexpr char g_shaderText[] = R"hlsl(
cbuffer Constants : register(b0)
{
    float4 colors[8];
    float colorCount;
    float aspect; // width by height
    float time;
    float folds;
    float glow;
};

struct Varyings
{
    float4 position : SV_Position;
    float2 place : TEXCOORD0; // from -1 at the bottom left to 1 at the top right
};

// One triangle whose inside covers the target.
Varyings vertexMain(uint vertex : SV_VertexID)
{
    Varyings output;
    output.place = float2(vertex == 2 ? 3.0 : -1.0, vertex == 1 ? 3.0 : -1.0);
    output.position = float4(output.place, 0.0, 1.0);
    return output;
}

// Waves that bend the waves after them: the cloth's height, from -1 to 1.
float height(float2 place)
{
    float2 bent = place;
    for (int i = 1; i <= 5; ++i)
        bent += 0.7 / i * cos(i * 1.4 * bent.yx + float2(0.31, 0.23) * i * time + float2(0.0, 1.9) * i);
    return sin(bent.x + 0.6 * bent.y);
}

float3 paletteColor(float t)
{
    float place = saturate(t) * (colorCount - 1.0);
    int index = min(int(place), int(colorCount) - 2);
    return lerp(colors[index].rgb, colors[index + 1].rgb, smoothstep(0.0, 1.0, place - index));
}

float4 pixelMain(Varyings input) : SV_Target
{
    float2 place = input.place * float2(aspect, 1.0) * folds;
    const float step = 0.01;
    float h = height(place);
    float2 rise = float2(height(place + float2(step, 0.0)), height(place + float2(0.0, step))) - h;
    float3 normal = normalize(float3(-rise / step, 2.6));

    float3 light = normalize(float3(-0.5, 0.7, 0.75));
    float diffuse = saturate(dot(normal, light));
    float sheen = pow(saturate(dot(normal, normalize(light + float3(0.0, 0.0, 1.0)))), 36.0);
    float3 cloth = paletteColor(0.5 + 0.5 * h) * (0.25 + 0.75 * diffuse);
    float3 shine = paletteColor(1.0) * sheen * (0.15 + 0.6 * glow);
    float vignette = 1.0 - 0.35 * dot(input.place, input.place) * 0.5;
    return float4((cloth + shine) * vignette, 1.0);
}
)hlsl";

} // namespace silk
