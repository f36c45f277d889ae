// SPDX-License-Identifier: MIT
// Behind the planets: night, the sun's light in the dust, stars, and each planet's orbit with the trail that it
// leaves. The quad covers the screen of 960 by 540 units; its colour carries the angles of the four planets.
//
//     helvantine play orrery.hfx --watch examples/04-graph
//
// shows what becomes of a change to this file at once.

cbuffer Common : register(b0)
{
    float4x4 worldViewProjection : packoffset(c0);
};

struct Vertex
{
    float4 position : POSITION;
    float4 angles   : COLOR0;
    float2 place    : TEXCOORD0;
};

struct Pixel
{
    float4 position : SV_Position;
    float4 angles   : COLOR0;
    float2 place    : TEXCOORD0;
};

static const float tau = 6.2831853;

// As the orrery has them.
static const float2 sun = float2(480, 262);
static const float flatness = 0.37;
static const float radii[4] = {142, 222, 318, 412};
static const float3 trails[4] = {float3(1.0, 0.62, 0.42), float3(1.0, 0.86, 0.6), float3(0.42, 0.84, 1.0),
                                 float3(0.95, 0.66, 0.74)};

Pixel VS_Main(Vertex vertex)
{
    Pixel pixel;
    pixel.position = mul(vertex.position, worldViewProjection);
    pixel.angles = vertex.angles;
    pixel.place = vertex.place * float2(960, 540);
    return pixel;
}

// A number from 0 to 1 for each cell of a grid, the same with every driver.
float hash(float2 cell)
{
    const uint2 q = uint2(int2(cell)) * uint2(1597334677u, 3812015801u);
    uint n = (q.x ^ q.y) * 2654435769u;
    n = (n ^ (n >> 15)) * 2246822519u;
    return float((n ^ (n >> 13)) >> 8) / 16777216;
}

float noise(float2 p)
{
    const float2 cell = floor(p);
    const float2 f = smoothstep(0, 1, p - cell);
    const float top = lerp(hash(cell), hash(cell + float2(1, 0)), f.x);
    const float bottom = lerp(hash(cell + float2(0, 1)), hash(cell + float2(1, 1)), f.x);
    return lerp(top, bottom, f.y);
}

float cloud(float2 p)
{
    return noise(p) * 0.55 + noise(p * 2.3 + 7) * 0.28 + noise(p * 5.1 + 19) * 0.17;
}

float3 night(float2 place)
{
    const float2 p = (place - sun) / 540;
    const float r = length(p * float2(0.8, 1.25));
    const float2 stirred = place * 0.0052 + 1.3 * noise(place * 0.0041 + 11);
    const float dust = smoothstep(0.32, 0.85, cloud(stirred + 3));
    const float gas = smoothstep(0.38, 0.9, cloud(stirred * 1.4 + 40));
    float3 light = lerp(float3(0.020, 0.030, 0.075), float3(0.006, 0.009, 0.026), saturate(r));
    light += dust * float3(0.016, 0.050, 0.105) + gas * float3(0.085, 0.028, 0.092);
    light *= 1 - 0.55 * smoothstep(0.5, 1.25, length(p * float2(0.9, 1.3)));
    return light + float3(0.40, 0.18, 0.07) * exp(-r * 5.2) * (0.65 + 0.7 * dust);
}

// One star in each cell; few are bright. They twinkle a whole number of times in each turn of the first planet.
float3 stars(float2 place, float size, float turn)
{
    const float2 cell = floor(place / size);
    const float2 offset = place - size * (cell + 0.2 + 0.6 * float2(hash(cell), hash(cell + 17)));
    const float magnitude = pow(hash(cell + 31), 14);
    const float twinkle = 0.75 + 0.25 * sin(turn * floor(1 + 3 * hash(cell + 5)) + tau * hash(cell + 43));
    const float warmth = hash(cell + 71);
    const float3 color = float3(0.75 + 0.25 * warmth, 0.85, 1.05 - 0.3 * warmth);
    return color * magnitude * twinkle * exp(-dot(offset, offset) * 0.9);
}

// The line of an orbit: faint all around, bright behind the planet.
float3 orbit(float2 place, float radius, float angle, float3 color)
{
    const float2 p = (place - sun) / float2(radius, radius * flatness);
    const float round = length(p);
    const float off = (round - 1) * round / length(p / float2(radius, radius * flatness));
    const float behind = frac((angle - atan2(p.y, p.x)) / tau);
    const float trail = exp(-behind * 6);
    const float fine = exp(-off * off * 1.4);
    const float soft = exp(-off * off * 0.06) * trail * trail;
    return color * (fine * (0.10 + 0.75 * trail) + soft * 0.22);
}

float4 PS_Main(Pixel pixel) : SV_Target
{
    float3 light = night(pixel.place);
    const float outside = smoothstep(36, 60, length(pixel.place - sun)); // no star shines through the sun
    light += 0.8 * outside * stars(pixel.place, 9, pixel.angles.x);
    light += 1.5 * outside * stars(pixel.place + 500, 31, pixel.angles.x);
    [unroll] for (int i = 0; i < 4; ++i)
        light += orbit(pixel.place, radii[i], pixel.angles[i], trails[i]);
    const float dither = (hash(floor(pixel.position.xy)) - 0.5) / 255;
    return float4(light + dither, 1);
}
