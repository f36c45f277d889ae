// SPDX-License-Identifier: MIT
#pragma once

/// A project's own shader: marches a ray for each pixel down a twisting tunnel whose walls carry the texture.
inline constexpr const char* tunnelShader = R"(cbuffer Constants : register(b0)
{
    float4x4 worldViewProjection : packoffset(c0);
    float2 invScreenSize         : packoffset(c4.x);
    float time                   : packoffset(c4.z);
};

Texture2D wall : register(t0);
SamplerState wallSampler : register(s0);

struct Vertex
{
    float4 position : POSITION;
    float4 color    : COLOR0;
    float2 texCoord : TEXCOORD0;
};

struct Pixel
{
    float4 position : SV_Position;
    float4 color    : COLOR0;
    float2 texCoord : TEXCOORD0;
};

Pixel VS_Main(Vertex vertex)
{
    Pixel pixel;
    pixel.position = mul(vertex.position, worldViewProjection);
    pixel.color = vertex.color;
    pixel.texCoord = vertex.texCoord;
    return pixel;
}

float2 GetAxis(float z)
{
    return float2(sin(z * 0.31), cos(z * 0.23)) * 0.9;
}

// Distance to the wall: a tube about the axis, with ribs and rounded pillars along it.
float GetDistance(float3 p)
{
    float2 q = p.xy - GetAxis(p.z);
    float angle = atan2(q.y, q.x) + 0.25 * p.z;
    float ribs = 0.1 * cos(p.z * 3.0) + 0.16 * cos(angle * 6.0);
    return 0.8 * (1.7 + ribs - length(q));
}

float4 PS_Main(Pixel pixel) : SV_Target
{
    float start = time * 3.0;
    float3 eye = float3(GetAxis(start), start);
    float3 ray = normalize(float3((pixel.texCoord - 0.5) * float2(1.78, -1.0), 0.75));
    ray.xy += (GetAxis(start + 2.0) - GetAxis(start)) * 0.35;

    float t = 0.0;
    for (int i = 0; i < 48; ++i)
        t += GetDistance(eye + ray * t);
    float3 p = eye + ray * t;
    float2 q = p.xy - GetAxis(p.z);

    float2 e = float2(0.01, 0.0);
    float3 normal = normalize(float3(GetDistance(p + e.xyy) - GetDistance(p - e.xyy),
                                     GetDistance(p + e.yxy) - GetDistance(p - e.yxy),
                                     GetDistance(p + e.yyx) - GetDistance(p - e.yyx)));
    float2 place = float2(atan2(q.y, q.x) / 6.2831853 + 0.5, frac(p.z * 0.125));
    float3 veins = wall.SampleLevel(wallSampler, place * float2(2.0, 2.0), 0).rgb;
    float3 stone = lerp(float3(0.10, 0.16, 0.30), float3(0.55, 0.30, 0.42), veins.r);
    stone = lerp(stone, float3(0.95, 0.62, 0.36), 0.7 * veins.g * veins.b);
    float facing = saturate(dot(normal, -ray));
    float lamps = pow(0.5 + 0.5 * cos(p.z * 1.2), 6.0);
    float3 light = stone * (0.3 + 0.9 * facing + 1.1 * lamps) + float3(1.0, 0.55, 0.25) * pow(1.0 - facing, 4.0) * 0.5;
    float3 far = float3(1.0, 0.72, 0.45);
    return float4(lerp(far, light, exp(-t * 0.07)), 1.0) * pixel.color;
}
)";
