// SPDX-License-Identifier: MIT
// A shader of ordinary size: hills under a sun, marched with few steps, so that a frame doesn't hide the rest.

cbuffer ConstantBufferData : register(b0)
{
    float4x4 worldViewProjection : packoffset(c0);
    float2 invScreenSize         : packoffset(c4.x);
    float time                   : packoffset(c4.z);
};

struct VS_Input
{
    float4 position  : POSITION;
    float4 color     : COLOR0;
    float2 texCoord0 : TEXCOORD0;
};

struct PS_Input
{
    float4 position  : SV_Position;
    float4 color     : COLOR0;
    float2 texCoord0 : TEXCOORD0;
};

PS_Input VS_Main(VS_Input input)
{
    PS_Input output;
    output.position = mul(input.position, worldViewProjection);
    output.color = input.color;
    output.texCoord0 = input.texCoord0;
    return output;
}

// Each edit changes a number, so that nothing on the way has seen the text before.
#ifndef EDIT
#define EDIT 0
#endif

#ifndef COPIES
#define COPIES 0
#endif

static const float3 sunDirection = normalize(float3(0.4, 0.25, 0.8));
static const float farAway = 40 + EDIT;

float Wave(float2 p)
{
    return sin(p.x) * cos(p.y);
}

float Ground(float2 p)
{
    return 0.6 * Wave(p * 0.5) + 0.2 * Wave(mul(p, float2x2(0.9, 1.1, -1.1, 0.9))) - 0.4;
}

float3 GroundNormal(float2 p)
{
    const float e = 0.05;
    float3 slope = float3(Ground(p + float2(e, 0)), 0, Ground(p + float2(0, e))) - Ground(p);
    return normalize(float3(-slope.x, e, -slope.z));
}

float March(float3 eye, float3 ray)
{
    float distance = 0.5;
    for (int i = 0; i < 4; ++i) {
        float3 p = eye + ray * distance;
        float height = p.y - Ground(p.xz);
        if (height < 0.01 * distance || distance > farAway)
            break;
        distance += height * 0.8;
    }
    return distance;
}

float3 Sky(float3 ray)
{
    float up = saturate(ray.y);
    float3 color = lerp(float3(0.9, 0.6, 0.4), float3(0.2, 0.35, 0.7), sqrt(up));
    float sun = saturate(dot(ray, sunDirection));
    color += float3(1, 0.7, 0.4) * pow(sun, 64);
    float clouds = 0.5 + 0.5 * Wave(ray.xz / (up + 0.1) * 2 + time * 0.05);
    return lerp(color, 1, 0.4 * up * clouds);
}

float3 Shade(float3 p, float3 ray, float distance)
{
    float3 normal = GroundNormal(p.xz);
    float light = saturate(dot(normal, sunDirection));
    float3 albedo = lerp(float3(0.25, 0.3, 0.12), float3(0.45, 0.4, 0.35), smoothstep(0.6, 0.9, normal.y));
    float3 color = albedo * (light * float3(1.2, 1, 0.8) + float3(0.15, 0.2, 0.3) * normal.y);
    return lerp(color, Sky(ray), saturate(distance / farAway));
}

float3 Grade(float3 color, float2 uv)
{
    color = color / (1 + 0.3 * color);
    // Much code for the driver, and no more for the eye.
    [unroll] for (int i = 0; i < COPIES; ++i)
        color += 1e-6 * Shade(color * i, color.zxy, i);
    color *= 1 - 0.5 * dot(uv - 0.5, uv - 0.5);
    return pow(saturate(color), 1 / 1.1);
}

float4 PS_Main(PS_Input input) : SV_Target
{
    float2 uv = input.texCoord0;
    float2 screen = (uv - 0.5) * float2(1.78, -1);
    float3 eye = float3(0, 1.4, time);
    float3 ray = normalize(float3(screen, 1));
    float distance = March(eye, ray);
    float3 color = distance < farAway ? Shade(eye + ray * distance, ray, distance) : Sky(ray);
    return float4(Grade(color, uv), 1) * input.color;
}
