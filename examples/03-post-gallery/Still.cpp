// SPDX-License-Identifier: MIT
#include "Still.h"

#include "Paint.h"

#include <helvantine/core/Vec3.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <optional>
#include <vector>

using namespace helvantine;

namespace
{

constexpr int stillWidth = 1920;
constexpr int stillHeight = 1080;
constexpr float farthest = 4096; // where the sky is
constexpr float tanHalfFov = 0.41421356f;
constexpr float aspect = 16.0f / 9.0f;
constexpr float pitch = 0.16f; // radians, down
const Vec3 eye(0, 2.6f, 0);
const Vec3 sunward = normalize(Vec3(0.36f, 0.16f, 1));

struct Ball
{
    Vec3 centre;
    float radius;
    Vec3 color;
    float mirror; ///< share of the light that is reflected
    bool shines;
};

constexpr Ball balls[] = {
    {{-1.9f, 0.95f, 7.2f}, 0.95f, {0.9f, 0.16f, 0.12f}, 0.14f, false},
    {{0.15f, 0.6f, 5.9f}, 0.6f, {0.95f, 0.72f, 0.18f}, 0.1f, false},
    {{1.75f, 0.8f, 6.8f}, 0.8f, {0.12f, 0.42f, 0.85f}, 0.16f, false},
    {{-0.2f, 1.5f, 10.6f}, 1.5f, {0.82f, 0.84f, 0.88f}, 0.72f, false},
    {{3.6f, 1.3f, 11.8f}, 1.3f, {0.1f, 0.62f, 0.42f}, 0.14f, false},
    {{-4.6f, 1.4f, 12.8f}, 1.4f, {0.56f, 0.26f, 0.72f}, 0.14f, false},
    {{2.2f, 1.7f, 19}, 1.7f, {0.94f, 0.9f, 0.84f}, 0.1f, false},
    {{-3.4f, 1.9f, 22}, 1.9f, {0.95f, 0.45f, 0.14f}, 0.12f, false},
    {{8.8f, 2.4f, 25}, 2.4f, {0.2f, 0.3f, 0.62f}, 0.2f, false},
    {{-10.5f, 2.6f, 29}, 2.6f, {0.72f, 0.2f, 0.36f}, 0.14f, false},
    {{-0.75f, 0.22f, 5.2f}, 0.22f, {1, 0.82f, 0.5f}, 0, true},
    {{1.0f, 0.2f, 5.3f}, 0.2f, {0.55f, 0.85f, 1}, 0, true},
    {{-3.1f, 0.3f, 8.6f}, 0.3f, {1, 0.62f, 0.72f}, 0, true},
    {{2.9f, 0.32f, 8.9f}, 0.32f, {0.72f, 1, 0.72f}, 0, true},
    {{5.6f, 0.5f, 15}, 0.5f, {1, 0.72f, 0.4f}, 0, true},
    {{-7.2f, 0.5f, 17}, 0.5f, {0.66f, 0.72f, 1}, 0, true},
};

struct Hit
{
    float distance;
    Vec3 point;
    Vec3 normal;
    const Ball* ball; ///< null: the floor
};

/// The nearest thing along a ray of unit direction; nothing where the sky is.
std::optional<Hit> trace(const Vec3& from, const Vec3& ray)
{
    constexpr float nearest = 1e-3f;
    std::optional<Hit> hit;
    if (ray.y < -1e-4f) {
        const float t = -from.y / ray.y;
        if (t > nearest && t < farthest)
            hit = Hit{t, from + t * ray, Vec3(0, 1, 0), nullptr};
    }
    for (const Ball& ball : balls) {
        const Vec3 toCentre = ball.centre - from;
        const float along = dot(toCentre, ray);
        const float inside = ball.radius * ball.radius - dot(toCentre, toCentre) + along * along;
        if (inside < 0)
            continue;
        const float t = along - std::sqrt(inside);
        if (t > nearest && (!hit || t < hit->distance)) {
            const Vec3 point = from + t * ray;
            hit = Hit{t, point, (point - ball.centre) / ball.radius, &ball};
        }
    }
    return hit;
}

Vec3 mixColor(const Vec3& a, const Vec3& b, float t)
{
    return a + (b - a) * t;
}

Vec3 getSky(const Vec3& ray)
{
    const Color band = gradient(std::sqrt(clamp01(ray.y)), {{1.0f, 0.58f, 0.3f, 1},
                                                            {0.82f, 0.34f, 0.36f, 1},
                                                            {0.36f, 0.2f, 0.42f, 1},
                                                            {0.09f, 0.1f, 0.28f, 1},
                                                            {0.03f, 0.05f, 0.16f, 1}});
    const float toSun = std::max(dot(ray, sunward), 0.0f);
    const Vec3 sun = Vec3(1, 0.86f, 0.6f) * (2 * smooth(0.9992f, 0.9995f, toSun) +
                                             0.5f * std::pow(toSun, 120.0f) + 0.22f * std::pow(toSun, 9.0f));
    return Vec3(band.r, band.g, band.b) + sun;
}

/// How much of the sun reaches a point; softer the farther away what stands before it is.
float getSunlight(const Vec3& point)
{
    float light = 1;
    for (const Ball& ball : balls) {
        const Vec3 toCentre = ball.centre - point;
        const float along = dot(toCentre, sunward);
        if (along <= 0 || ball.shines)
            continue;
        const float gap = length(toCentre - along * sunward) - ball.radius;
        light = std::min(light, smooth(-0.06f * along, 0.06f * along, gap));
    }
    return light;
}

/// The light of the shining balls, and the sky's less what balls close by hide of it.
Vec3 getFill(const Hit& hit)
{
    Vec3 light = mixColor(Vec3(0.3f, 0.2f, 0.2f), Vec3(0.25f, 0.26f, 0.42f), 0.5f + 0.5f * hit.normal.y);
    for (const Ball& ball : balls) {
        const Vec3 toCentre = ball.centre - hit.point;
        const float distance = length(toCentre);
        const float facing = std::max(dot(hit.normal, toCentre) / distance, 0.0f);
        const float size = ball.radius / std::max(distance, ball.radius);
        if (&ball == hit.ball)
            continue;
        if (ball.shines)
            light += ball.color * (7 * facing * size * size);
        else
            light *= 1 - 0.8f * facing * size * size;
    }
    return light;
}

Vec3 getFloorColor(const Vec3& point)
{
    const float x = point.x * 0.62f + 0.5f;
    const float z = point.z * 0.62f;
    const bool dark = (static_cast<int>(std::floor(x)) + static_cast<int>(std::floor(z))) & 1;
    const float far = smooth(15, 60, point.z); // where tiles are smaller than pixels
    return mixColor(dark ? Vec3(0.07f, 0.07f, 0.11f) : Vec3(0.42f, 0.4f, 0.42f), Vec3(0.24f, 0.23f, 0.26f),
                    far);
}

Vec3 getLight(const Vec3& from, const Vec3& ray, int bounces)
{
    const auto hit = trace(from, ray);
    if (!hit)
        return getSky(ray);
    if (hit->ball && hit->ball->shines)
        return hit->ball->color * (1 + 1.5f * std::max(-dot(ray, hit->normal), 0.0f));
    const Vec3 color = hit->ball ? hit->ball->color : getFloorColor(hit->point);
    const float sun = std::max(dot(hit->normal, sunward), 0.0f) * getSunlight(hit->point);
    Vec3 light = color * (getFill(*hit) + Vec3(1.5f, 1.0f, 0.62f) * sun);
    if (bounces > 0) {
        const float grazing = std::pow(1 - clamp01(-dot(ray, hit->normal)), 4.0f);
        const float share = (hit->ball ? hit->ball->mirror : 0.1f) + 0.5f * grazing;
        const Vec3 mirrored = ray - 2 * dot(ray, hit->normal) * hit->normal;
        light = mixColor(light, getLight(hit->point, mirrored, bounces - 1), std::min(share, 0.9f));
    }
    // Haze takes the far floor into the sky.
    const float haze = hit->ball ? 0.5f * smooth(14, 70, hit->distance) : smooth(18, 160, hit->distance);
    return mixColor(light, getSky(normalize(Vec3(ray.x, 0, ray.z))), haze);
}

/// Through a point of the picture; in view space, where z is ahead.
Vec3 getViewRay(float u, float v)
{
    return normalize(Vec3((2 * u - 1) * tanHalfFov * aspect, (1 - 2 * v) * tanHalfFov, 1));
}

Vec3 turn(const Vec3& v, float angle)
{
    const float c = std::cos(angle);
    const float s = std::sin(angle);
    return {v.x, c * v.y - s * v.z, s * v.y + c * v.z};
}

Color paintColor(float u, float v)
{
    constexpr int samples = 2; // squared, to a pixel
    Vec3 sum;
    for (int i = 0; i < samples * samples; ++i) {
        const int row = i / samples;
        const float du = (static_cast<float>(i % samples) + 0.5f) / samples - 0.5f;
        const float dv = (static_cast<float>(row) + 0.5f) / samples - 0.5f;
        const Vec3 light =
            getLight(eye, turn(getViewRay(u + du / stillWidth, v + dv / stillHeight), pitch), 3);
        sum += Vec3(std::min(light.x, 1.0f), std::min(light.y, 1.0f), std::min(light.z, 1.0f));
    }
    sum /= static_cast<float>(samples * samples);
    return {sum.x, sum.y, sum.z, 1};
}

Color paintDepth(float u, float v)
{
    const Vec3 view = getViewRay(u, v);
    const auto hit = trace(eye, turn(view, pitch));
    if (!hit)
        return {0, 0, -1, farthest};
    const Vec3 normal = turn(hit->normal, -pitch);
    return {normal.x, normal.y, normal.z, std::min(hit->distance * view.z, farthest)};
}

/// An uncompressed DDS file of 32-bit floats, four a pixel.
bool writeFloatPicture(const std::string& path, uint32_t width, uint32_t height,
                       Color (*paint)(float u, float v))
{
    constexpr uint32_t fourCcDx10 = 0x30315844;
    constexpr uint32_t formatRgba32F = 2;
    std::array<uint32_t, 37> header = {0x20534444, 124, 0x100F, height, width, width * 16};
    header[19] = 32; // the pixel format
    header[20] = 4;  // which is named by its code
    header[21] = fourCcDx10;
    header[27] = 0x1000; // a texture
    header[32] = formatRgba32F;
    header[33] = 3; // in two dimensions
    header[35] = 1; // one of them
    std::vector<Color> pixels;
    pixels.reserve(size_t{width} * height);
    for (uint32_t y = 0; y < height; ++y)
        for (uint32_t x = 0; x < width; ++x)
            pixels.push_back(paint((static_cast<float>(x) + 0.5f) / static_cast<float>(width),
                                   (static_cast<float>(y) + 0.5f) / static_cast<float>(height)));
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(header.data()), sizeof(header));
    file.write(reinterpret_cast<const char*>(pixels.data()),
               static_cast<std::streamsize>(pixels.size() * sizeof(Color)));
    return file.flush().good();
}

} // namespace

bool paintStill(const std::string& folder)
{
    return writePicture(folder + "still.tga", stillWidth, stillHeight, paintColor) &&
           writeFloatPicture(folder + "still-depth.dds", 640, 360, paintDepth);
}
