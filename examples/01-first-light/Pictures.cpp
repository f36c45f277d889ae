// SPDX-License-Identifier: MIT
// The pictures that drift are periodic in u.
#include "Pictures.h"

#include "Lettering.h"
#include "Paint.h"

#include <cmath>

namespace
{

Color paintNight(float, float v)
{
    return gradient(v, {{0.012f, 0.018f, 0.055f, 1},
                        {0.022f, 0.034f, 0.095f, 1},
                        {0.045f, 0.07f, 0.16f, 1},
                        {0.09f, 0.11f, 0.22f, 1}});
}

Color paintDawn(float u, float v)
{
    const Color sky = gradient(v, {{0.05f, 0.08f, 0.22f, 1},
                                   {0.16f, 0.17f, 0.38f, 1},
                                   {0.46f, 0.29f, 0.46f, 1},
                                   {0.88f, 0.45f, 0.38f, 1},
                                   {1.0f, 0.72f, 0.42f, 1}});
    // Cooler away from the sun.
    const float away = smooth(0.1f, 0.9f, std::abs(u - 0.62f) * 1.5f);
    return mix(sky, {sky.r * 0.66f, sky.g * 0.72f, sky.b * 0.95f, 1}, away);
}

Color paintStars(float u, float v)
{
    constexpr float columns = 140;
    constexpr float rows = 70;
    const int x = static_cast<int>(u * columns);
    const int y = static_cast<int>(v * rows);
    const float dx = u * columns - static_cast<float>(x) - 0.25f - 0.5f * hash(x, y, 1);
    const float dy = v * rows - static_cast<float>(y) - 0.25f - 0.5f * hash(x, y, 2);
    const float magnitude = std::pow(hash(x, y, 3), 9.0f);
    const float r = dx * dx + dy * dy;
    const float light =
        magnitude * (1.6f * std::exp(-r * (260 - 150 * magnitude)) + 0.1f * std::exp(-r * 25));
    const float warmth = hash(x, y, 4);
    return {0.75f + 0.25f * warmth, 0.86f, 1.0f - 0.3f * warmth, clamp01(light)};
}

Color paintGlow(float u, float v)
{
    const float r = 2 * std::hypot(u - 0.5f, v - 0.5f);
    const float edge = 1 - smooth(0.3f, 1.0f, r);
    return {1, 1, 1, edge * (0.75f * std::exp(-r * r * 9) + 0.25f / (1 + 60 * r * r))};
}

Color paintHalo(float u, float v)
{
    const float r = 2 * std::hypot(u - 0.5f, v - 0.5f);
    const float edge = 1 - smooth(0.4f, 1.0f, r);
    const float halo = 0.55f * std::exp(-r * 9) + 0.25f * std::exp(-r * 3);
    return {1, 0.93f, 0.8f, clamp01(halo * edge)};
}

/// A little darker toward its limb.
Color paintDisc(float u, float v)
{
    constexpr float radius = 0.78f;
    const float r = 2 * std::hypot(u - 0.5f, v - 0.5f);
    const float limb = 1 - 0.1f * smooth(0.3f * radius, radius, r);
    return {1, limb, 0.8f * limb * limb + 0.2f, 1 - smooth(radius - 0.02f, radius + 0.02f, r)};
}

Color paintRays(float u, float v)
{
    const float r = 2 * std::hypot(u - 0.5f, v - 0.5f);
    const float turn = std::atan2(v - 0.5f, u - 0.5f) / 6.2831853f + 0.5f;
    const float beams =
        smooth(0.35f, 0.95f, noise(turn * 26, 0, 26, 7) * 0.6f + noise(turn * 61, 0, 61, 8) * 0.5f);
    return {1, 1, 1, beams * smooth(0.02f, 0.2f, r) * std::pow(1 - smooth(0.0f, 1.0f, r), 1.6f)};
}

Color paintClouds(float u, float v)
{
    const float warp = fractal(u, v * 5, 4, 4, 31);
    const float body = fractal(u, v * 14 + 3 * warp, 5, 6, 20);
    const float band = smooth(0.0f, 0.45f, v) * (1 - smooth(0.55f, 1.0f, v));
    const float cover = smooth(0.46f, 0.86f, body + 0.12f * warp) * band;
    const float lit = 0.65f + 0.35f * smooth(0.4f, 0.8f, fractal(u, v * 14 + 0.5f + 3 * warp, 5, 6, 20));
    return {lit, lit, lit, cover};
}

/// A mountain range: rough from `period` peaks, lighter toward its foot, where mist lies.
Color paintRidge(float u, float v, int period, int seed, float roughness)
{
    const float broad = noise(u * static_cast<float>(period), 0, period, seed);
    const float detail = fractal(u, 0, period * 3, 6, seed + 1) - 0.5f;
    const float top = 0.62f - 0.5f * broad * broad - roughness * detail;
    const float cover = smooth(top - 0.004f, top + 0.004f, v);
    const float face = 0.05f * fractal(u, v * 9, period * 8, 4, seed + 9);
    const float mist = smooth(top, 1.05f, v);
    const float light = 0.62f + face + 0.38f * mist * mist;
    return {light, light, light, cover};
}

/// Slopes of waves that lie on a plane toward the horizon, which is at v = 0: across in red, down in green, 0.5
/// for none. Farther waves are smaller: their octaves pass into each other.
Color paintRipples(float u, float v)
{
    const float distance = 1 / (v + 0.06f);
    const float fineness = std::log2(3.0f + 1.1f * distance);
    const int octave = static_cast<int>(fineness);
    const auto slope = [&](int at, int seed) {
        const int period = 1 << at;
        const float y = distance * 7 + 3 * noise(u * 3, distance, 3, seed + 7);
        return noise(u * static_cast<float>(period), y, period, seed + at) +
               0.5f * noise(u * static_cast<float>(2 * period), 2.3f * y, 2 * period, seed + 20 + at) - 0.75f;
    };
    const float part = smooth(0, 1, fineness - static_cast<float>(octave));
    const float strength = smooth(0, 0.12f, v) * (0.16f + 0.84f * v);
    const auto shift = [&](int seed) {
        return 0.5f + 0.62f * strength * (slope(octave, seed) * (1 - part) + slope(octave + 1, seed) * part);
    };
    return {shift(100), shift(160), 0, 1};
}

/// What the water leaves of the light: less toward the viewer, most on the way to the sun.
Color paintWater(float u, float v)
{
    const float x = (u - 0.615f) / (0.1f + 0.12f * v);
    const float way = std::exp(-x * x);
    const float light = 0.92f - 0.46f * std::pow(v, 0.8f);
    const Color open = {0.94f * light, 0.84f * light, 0.93f * light, 1};
    return mix(open, {std::min(1.0f, 1.25f * light + 0.1f), 1.1f * light, 0.85f * light, 1}, way);
}

Color paintGlints(float u, float v)
{
    const float body = noise(u * 24, v * 64, 24, 50) * 0.6f + noise(u * 52, v * 128, 52, 51) * 0.5f;
    const float light = smooth(0.5f, 0.82f, body);
    return {light, light, light, 1};
}

Color paintColumn(float u, float v)
{
    const float width = 0.05f + 0.24f * v;
    const float x = (u - 0.5f) / width;
    const float light = std::exp(-x * x * 1.4f) * (0.35f + 0.65f * (1 - v)) * (1 - smooth(0.82f, 1.0f, v));
    return {light, light, light, 1};
}

Color paintVignette(float u, float v)
{
    const float r = std::hypot((u - 0.5f) * 1.05f, (v - 0.48f) * 0.95f);
    const float light = 1 - 0.72f * smooth(0.28f, 0.78f, r);
    return {light, light, 0.02f + 0.98f * light, 1};
}

Color paintGrain(float u, float v)
{
    const int x = static_cast<int>(u * 256);
    const int y = static_cast<int>(v * 256);
    const float light = 0.5f * (hash(x, y, 70) + hash(x, y, 71));
    return {light, light, light, 1};
}

/// The name in thin strokes with a soft glow, to be added.
Color paintTitle(const Lettering& title, float u, float v)
{
    constexpr float aspect = 8;
    const float nearest = title.getDistance(u * aspect - (aspect - title.getWidth()) / 2, v - 0.32f);
    const float core = 1 - smooth(0.008f, 0.016f, nearest);
    const float glow = 0.42f * std::exp(-nearest * 22) + 0.12f * std::exp(-nearest * 6);
    const float light = clamp01(core + glow * smooth(0, 0.2f, v) * (1 - smooth(0.75f, 1, v)));
    return {light, light * 0.97f, light * (0.82f + 0.18f * core), 1};
}

} // namespace

bool paintPictures(const std::string& folder)
{
    const auto far = [](float u, float v) { return paintRidge(u, v, 7, 60, 0.34f); };
    const auto middle = [](float u, float v) { return paintRidge(u, v, 5, 64, 0.4f); };
    const auto near = [](float u, float v) { return paintRidge(u, v, 6, 81, 0.3f); };
    const Lettering letters("HELVANTINE", 0.36f, 0.78f);
    const auto title = [&](float u, float v) { return paintTitle(letters, u, v); };
    const auto white = [](float, float) { return Color{1, 1, 1, 1}; };
    return writePicture(folder + "white.tga", 4, 4, white) &&
           writePicture(folder + "night.tga", 64, 512, paintNight) &&
           writePicture(folder + "dawn.tga", 512, 512, paintDawn) &&
           writePicture(folder + "stars.tga", 2560, 1280, paintStars) &&
           writePicture(folder + "glow.tga", 128, 128, paintGlow) &&
           writePicture(folder + "halo.tga", 512, 512, paintHalo) &&
           writePicture(folder + "disc.tga", 256, 256, paintDisc) &&
           writePicture(folder + "rays.tga", 1024, 1024, paintRays) &&
           writePicture(folder + "clouds.tga", 2048, 512, paintClouds) &&
           writePicture(folder + "ridge-far.tga", 3072, 384, far) &&
           writePicture(folder + "ridge-middle.tga", 3072, 384, middle) &&
           writePicture(folder + "ridge-near.tga", 3072, 384, near) &&
           writePicture(folder + "ripples.tga", 1024, 512, paintRipples) &&
           writePicture(folder + "water.tga", 256, 256, paintWater) &&
           writePicture(folder + "glints.tga", 512, 512, paintGlints) &&
           writePicture(folder + "column.tga", 256, 256, paintColumn) &&
           writePicture(folder + "title.tga", 2048, 256, title) &&
           writePicture(folder + "vignette.tga", 320, 180, paintVignette) &&
           writePicture(folder + "grain.tga", 256, 256, paintGrain);
}
