// SPDX-License-Identifier: MIT
#include "Paint.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <vector>

namespace
{

uint8_t toByte(float value, float dither)
{
    return static_cast<uint8_t>(std::clamp(value * 255.0f + dither, 0.0f, 255.0f));
}

} // namespace

float clamp01(float x)
{
    return std::clamp(x, 0.0f, 1.0f);
}

float smooth(float from, float to, float x)
{
    const float t = clamp01((x - from) / (to - from));
    return t * t * (3 - 2 * t);
}

Color mix(const Color& a, const Color& b, float t)
{
    return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t, a.a + (b.a - a.a) * t};
}

float hash(int x, int y, int seed)
{
    uint32_t h = static_cast<uint32_t>(x) * 374761393u + static_cast<uint32_t>(y) * 668265263u +
                 static_cast<uint32_t>(seed) * 2246822519u;
    h = (h ^ (h >> 13)) * 1274126177u;
    h = (h ^ (h >> 16)) * 2654435761u;
    return static_cast<float>((h ^ (h >> 15)) & 0xffffff) / 16777215.0f;
}

float noise(float x, float y, int period, int seed)
{
    const int x0 = static_cast<int>(std::floor(x));
    const int y0 = static_cast<int>(std::floor(y));
    const float fx = smooth(0, 1, x - static_cast<float>(x0));
    const float fy = smooth(0, 1, y - static_cast<float>(y0));
    const auto at = [&](int i, int j) { return hash(((x0 + i) % period + period) % period, y0 + j, seed); };
    const float top = at(0, 0) + (at(1, 0) - at(0, 0)) * fx;
    const float bottom = at(0, 1) + (at(1, 1) - at(0, 1)) * fx;
    return top + (bottom - top) * fy;
}

float fractal(float u, float y, int period, int octaves, int seed)
{
    float sum = 0;
    float weight = 0.5f;
    float scale = static_cast<float>(period);
    for (int i = 0; i < octaves; ++i, scale *= 2, weight *= 0.5f)
        sum += weight *
               noise(u * scale, y * scale / static_cast<float>(period), static_cast<int>(scale), seed + i);
    return sum;
}

Color gradient(float t, std::initializer_list<Color> stops)
{
    const float place = clamp01(t) * static_cast<float>(stops.size() - 1);
    const auto index = std::min(static_cast<size_t>(place), stops.size() - 2);
    return mix(stops.begin()[index], stops.begin()[index + 1], place - static_cast<float>(index));
}

bool writePicture(const std::string& path, int width, int height,
                  const std::function<Color(float u, float v)>& paint)
{
    const auto low = [](int n) { return static_cast<uint8_t>(n & 255); };
    const auto high = [](int n) { return static_cast<uint8_t>(n >> 8); };
    // Uncompressed, rows from the top.
    std::vector<uint8_t> bytes = {
        0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, low(width), high(width), low(height), high(height), 32, 0x28};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const Color c = paint((static_cast<float>(x) + 0.5f) / static_cast<float>(width),
                                  (static_cast<float>(y) + 0.5f) / static_cast<float>(height));
            const float d = hash(x, y, 99);
            bytes.insert(bytes.end(), {toByte(c.b, d), toByte(c.g, d), toByte(c.r, d), toByte(c.a, d)});
        }
    }
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return file.flush().good();
}
