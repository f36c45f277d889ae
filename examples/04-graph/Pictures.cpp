// SPDX-License-Identifier: MIT
#include "Pictures.h"

#include "Lettering.h"
#include "Paint.h"

#include <cmath>

namespace
{

constexpr float ballRadius = 0.46f;   // in widths of the picture
constexpr float ringedRadius = 0.21f; // where rings need the room

/// 1 inside a circle about the middle of the picture, 0 outside, soft over a pixel of `size`.
float cover(float u, float v, float radius, float size)
{
    return 1 - smooth(radius - 1 / size, radius + 1 / size, std::hypot(u - 0.5f, v - 0.5f));
}

/// A planet's face without light and shadow: bands of clouds, stirred.
Color paintFace(float u, float v, float radius, const Color& dark, const Color& bright, float bands, int seed)
{
    const float stir = fractal(u, v * 4, 4, 5, seed) - 0.5f;
    const float latitude = (v - 0.5f) / radius + 0.25f * (u - 0.5f) / radius;
    const float band = 0.5f + 0.5f * std::sin(latitude * bands + 5 * stir);
    Color color =
        mix(dark, bright, clamp01(0.65f * band + 0.35f * fractal(u, v * 6, 6, 5, seed + 7) + 0.2f * stir));
    color.a = cover(u, v, radius, 128);
    return color;
}

Color over(const Color& top, const Color& below)
{
    const float a = top.a + below.a * (1 - top.a);
    if (a <= 0)
        return {top.r, top.g, top.b, 0};
    Color color = mix(below, top, top.a / a);
    color.a = a;
    return color;
}

/// Rings about a planet, in front of it below and behind it above.
Color paintRinged(float u, float v)
{
    const Color ball =
        paintFace(u, v, ringedRadius, {0.62f, 0.40f, 0.42f, 1}, {0.98f, 0.82f, 0.72f, 1}, 9, 40);
    const float x = u - 0.5f;
    const float y = v - 0.5f;
    const float tilted = x * 0.30f + y * 0.954f;
    const float r = std::hypot(x * 0.954f - y * 0.30f, tilted / 0.28f);
    const float gaps = 0.55f + 0.45f * noise(r * 60, 0, 64, 3);
    const float width = smooth(0.28f, 0.30f, r) * (1 - smooth(0.455f, 0.475f, r)) *
                        (1 - 0.75f * smooth(0.375f, 0.383f, r) * (1 - smooth(0.395f, 0.403f, r)));
    const Color ring = {0.96f, 0.84f, 0.78f, 0.85f * width * gaps};
    return tilted > 0 ? over(ring, ball) : over(ball, ring);
}

/// What the light of the sun leaves dark on a ball; the sun is on the left.
Color paintShade(float u, float v, float radius)
{
    const float x = (u - 0.5f) / radius;
    const float y = (v - 0.5f) / radius;
    const float z = std::sqrt(std::fmax(0.0f, 1 - x * x - y * y));
    const float light = smooth(-0.12f, 0.95f, -0.92f * x + 0.39f * z);
    const Color color = mix({0.01f, 0.015f, 0.04f, 1}, {0.10f, 0.05f, 0.03f, 1}, light);
    return {color.r, color.g, color.b, 0.97f * (1 - light) * cover(u, v, radius + 0.02f, 128)};
}

Color paintSun(float u, float v)
{
    const float r = 2 * std::hypot(u - 0.5f, v - 0.5f);
    const float disc = 1 - smooth(0.205f, 0.235f, r);
    const float grain = fractal(u, v * 10, 10, 5, 12);
    const Color surface =
        mix({1, 0.55f, 0.2f, 1}, {1, 0.95f, 0.78f, 1}, clamp01(0.85f - 9 * r * r + 0.9f * (grain - 0.3f)));
    const float halo =
        (1 - smooth(0.3f, 1, r)) * (0.55f * std::exp(-r * 4.2f) + 0.9f * std::exp(-r * r * 26));
    Color color = mix({1, 0.66f, 0.34f, 1}, surface, disc);
    color.a = clamp01(disc + halo);
    return color;
}

/// The moon as it is seen when it has gone `turn` of its way around, from the new moon on; its axis is tilted, and its
/// mountains fray the line between day and night.
Color paintPhase(float u, float v, float turn)
{
    constexpr float cosTilt = 0.921f;
    constexpr float sinTilt = 0.389f;
    const float across = (u - 0.5f) / ballRadius;
    const float down = (v - 0.5f) / ballRadius;
    const float x = across * cosTilt + down * sinTilt;
    const float z = std::sqrt(std::fmax(0.0f, 1 - across * across - down * down));
    const float angle = turn * 6.2831853f;
    const float seas = smooth(0.42f, 0.62f, fractal(u, v * 3, 3, 5, 77));
    const float craters = fractal(u, v * 14, 14, 4, 91) - 0.5f;
    const float height = x * std::sin(angle) - z * std::cos(angle); // of the sun over the ground, as a sine
    const float light = std::pow(smooth(-0.1f, 0.75f, height + 0.3f * craters), 0.75f);
    const float face = 0.93f - 0.26f * seas + 0.22f * craters - 0.18f * (1 - z);
    const Color day = {face, face * 0.97f, face * 0.9f, 1};
    const Color night = {0.035f, 0.045f, 0.08f, 1};
    Color color = mix(night, day, light);
    color.a = cover(u, v, ballRadius, 256);
    return color;
}

Color paintTitle(float u, float v)
{
    static const Lettering title("ORRERY", 0.42f, 0.62f);
    constexpr float aspect = 6;
    const float distance = title.getDistance(u * aspect - 0.08f, v - 0.29f);
    const float line = 1 - smooth(0.012f, 0.03f, distance);
    return {line, line, line, line};
}

} // namespace

bool paintPictures(const std::string& folder)
{
    const auto shade = [](float u, float v) { return paintShade(u, v, ballRadius); };
    const auto shadeRinged = [](float u, float v) { return paintShade(u, v, ringedRadius); };
    const auto copper = [](float u, float v) {
        return paintFace(u, v, ballRadius, {0.45f, 0.24f, 0.17f, 1}, {0.95f, 0.66f, 0.48f, 1}, 2, 10);
    };
    const auto sand = [](float u, float v) {
        return paintFace(u, v, ballRadius, {0.72f, 0.52f, 0.30f, 1}, {1, 0.93f, 0.76f, 1}, 6, 20);
    };
    const auto sea = [](float u, float v) {
        return paintFace(u, v, ballRadius, {0.07f, 0.28f, 0.52f, 1}, {0.72f, 0.95f, 0.98f, 1}, 4, 30);
    };
    const auto moon = [](float u, float v) {
        return paintFace(u, v, ballRadius, {0.55f, 0.54f, 0.52f, 1}, {0.95f, 0.93f, 0.88f, 1}, 1, 77);
    };
    bool written = writePicture(folder + "sun.tga", 1024, 1024, paintSun) &&
                   writePicture(folder + "copper.tga", 128, 128, copper) &&
                   writePicture(folder + "sand.tga", 128, 128, sand) &&
                   writePicture(folder + "sea.tga", 128, 128, sea) &&
                   writePicture(folder + "ringed.tga", 256, 256, paintRinged) &&
                   writePicture(folder + "moon.tga", 64, 64, moon) &&
                   writePicture(folder + "shade.tga", 128, 128, shade) &&
                   writePicture(folder + "shade-ringed.tga", 256, 256, shadeRinged) &&
                   writePicture(folder + "title.tga", 1536, 256, paintTitle);
    for (int i = 0; i < moonPhases; ++i) {
        const float turn = (static_cast<float>(i) + 0.5f) / moonPhases; // the middle of its share
        written = written && writePicture(folder + "phase-" + std::to_string(i + 1) + ".tga", 256, 256,
                                          [&](float u, float v) { return paintPhase(u, v, turn); });
    }
    return written;
}
