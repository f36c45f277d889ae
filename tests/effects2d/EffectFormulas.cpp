// SPDX-License-Identifier: MIT
#include "EffectFormulas.h"

#include "EffectTest.h"

#include <algorithm>
#include <cmath>

namespace helvantine::test
{

namespace
{

float saturate(float value)
{
    return std::clamp(value, 0.0f, 1.0f);
}

float blendChannel(TextureEffectType program, float base, float blend)
{
    switch (program) {
    case TextureEffectType::BlendLighten:
        return std::max(base, blend);
    case TextureEffectType::BlendDarken:
        return std::min(base, blend);
    case TextureEffectType::BlendAdd:
        return std::min(base + blend, 1.0f);
    case TextureEffectType::BlendSubtract:
        return std::max(base + blend - 1, 0.0f);
    case TextureEffectType::BlendScreen:
        return 1 - (1 - base) * (1 - blend);
    case TextureEffectType::BlendOverlay:
        return base < 0.5f ? 2 * base * blend : 1 - 2 * (1 - base) * (1 - blend);
    case TextureEffectType::BlendColorDodge:
        return blend == 1 ? 1 : std::min(base / (1 - blend), 1.0f);
    case TextureEffectType::BlendColorBurn:
        return blend == 0 ? 0 : std::max(1 - (1 - base) / blend, 0.0f);
    case TextureEffectType::BlendMultiply:
        return base * blend;
    default:
        ADD_FAILURE() << "no blend by a formula: " << static_cast<int32_t>(program);
        return 0;
    }
}

float getBlurFactor(float depth, const Focus& focus)
{
    const float t = saturate(std::abs(focus.distance - depth) / focus.width);
    return t * t * (3 - 2 * t);
}

} // namespace

Vec4 correctColor(const Vec4& c, const ColorCorrection& by)
{
    const auto scale = [&](float v) { return (v * by.brightness - 0.5f) * by.contrast + 0.5f; };
    const float r = scale(c.x), g = scale(c.y), b = scale(c.z);
    const float grey = (0.3086f * r + 0.6094f * g + 0.0820f * b) * (1 - by.saturation);
    const float v[3] = {grey + by.saturation * r, grey + by.saturation * g, grey + by.saturation * b};
    const float radians = by.hue * 3.14159265f / 180.0f;
    const float same = std::cos(radians) + (1 - std::cos(radians)) / 3;
    const float next = (1 - std::cos(radians)) / 3 + std::sin(radians) / std::sqrt(3.0f);
    const float last = (1 - std::cos(radians)) / 3 - std::sin(radians) / std::sqrt(3.0f);
    return Vec4(v[0] * same + v[1] * next + v[2] * last, v[0] * last + v[1] * same + v[2] * next,
                v[0] * next + v[1] * last + v[2] * same, c.w);
}

Vec4 blendColors(TextureEffectType program, const Vec4& base, const Vec4& blend, float threshold)
{
    if (program == TextureEffectType::BlendLinear)
        return base * threshold + blend * (1 - threshold);
    return Vec4(blendChannel(program, base.x, blend.x), blendChannel(program, base.y, blend.y),
                blendChannel(program, base.z, blend.z), base.w * threshold + blend.w * (1 - threshold));
}

Vec4 ditherColor(const Vec4& color, Vec2 cell, bool grayscale)
{
    constexpr int bayer[8][8] = {{0, 32, 8, 40, 2, 34, 10, 42},  {48, 16, 56, 24, 50, 18, 58, 26},
                                 {12, 44, 4, 36, 14, 46, 6, 38}, {60, 28, 52, 20, 62, 30, 54, 22},
                                 {3, 35, 11, 43, 1, 33, 9, 41},  {51, 19, 59, 27, 49, 17, 57, 25},
                                 {15, 47, 7, 39, 13, 45, 5, 37}, {63, 31, 55, 23, 61, 29, 53, 21}};
    const int x = static_cast<int>(std::fmod(cell.x, 8.0f));
    const int y = static_cast<int>(std::fmod(cell.y, 8.0f));
    const auto step = [limit = static_cast<float>(bayer[x][y] + 1) / 64](float c) {
        return c < limit ? 0.0f : 1.0f;
    };
    if (!grayscale)
        return Vec4(step(color.x), step(color.y), step(color.z), color.w);
    const float value = step(0.299f * color.x + 0.587f * color.y + 0.114f * color.z);
    return Vec4(value, value, value, color.w);
}

Vec4 readDisplaced(const Image& source, Vec2 texCoord, const Vec4& map, Vec2 power)
{
    return readLinear(source, Vec2(texCoord.x + map.x * power.x, texCoord.y + map.y * power.y));
}

Vec4 readRgbDisplaced(const Image& source, Vec2 texCoord, const Vec4& map, const Vec2 (&powers)[3])
{
    return Vec4(readDisplaced(source, texCoord, map, powers[0]).x,
                readDisplaced(source, texCoord, map, powers[1]).y,
                readDisplaced(source, texCoord, map, powers[2]).z, 1);
}

Vec4 readGhost(const Image& source, Vec2 uv)
{
    const Vec2 n((1 - uv.x) - 0.5f, (1 - uv.y) - 0.5f);
    const float length = std::sqrt(n.x * n.x + n.y * n.y);
    const Vec2 step(-n.x / length / source.getWidth() * 1.2f, -n.y / length / source.getHeight() * 1.2f);
    const auto bright = [](float v) { return std::max(0.0f, v - 0.1f); };
    Vec4 sum;
    for (int i = 0; i < 12; ++i) {
        const Vec2 at((n.x + step.x * (1 - 2 * i)) * 0.5f + 0.5f, (n.y + step.y * (1 - 2 * i)) * 0.5f + 0.5f);
        if (at.x < 0 || at.x > 1 || at.y < 0 || at.y > 1)
            continue;
        const Vec4 c = readLinear(source, at);
        sum = sum + Vec4(bright(c.x) * 0.7f, bright(c.y) * 0.4f, bright(c.z) * 0.2f, bright(c.w));
    }
    return sum * (1 / 12.0f);
}

Vec4 glowColor(const Vec4& color, float threshold)
{
    const auto stretch = [&](float c) { return saturate((c - threshold) / (1 - threshold)); };
    return Vec4(stretch(color.x), stretch(color.y), stretch(color.z), 1);
}

Vec4 combineGlow(const Vec4& bloom, const Vec4& source, const GlowCombination& by)
{
    const auto adjust = [](const Vec4& c, float channel, float amount) {
        const float grey = 0.3f * c.x + 0.59f * c.y + 0.11f * c.z;
        return grey + (channel - grey) * amount;
    };
    const auto channel = [&](float b, float s) {
        const float shine = adjust(bloom, b, by.bloomSaturation) * by.bloomIntensity;
        return adjust(source, s, by.sourceSaturation) * by.sourceIntensity * (1 - saturate(shine)) + shine;
    };
    return Vec4(channel(bloom.x, source.x), channel(bloom.y, source.y), channel(bloom.z, source.z), source.w);
}

Vec4 readBlurred(const Image& source, Vec2 texCoord, Vec2 step)
{
    constexpr float weights[] = {1.0f, 0.9f, 0.55f, 0.18f, 0.1f};
    constexpr float total = 1 + 2 * (0.9f + 0.55f + 0.18f + 0.1f);
    Vec4 sum;
    for (int i = -4; i <= 4; ++i)
        sum = sum +
              readLinear(source, texCoord + step * static_cast<float>(i)) * (weights[std::abs(i)] / total);
    return sum;
}

Vec4 readOcclusion(const Image& surface, const Image& random, Vec2 uv, const Occlusion& by)
{
    const Vec4 nd = readNearest(surface, uv), rv = readNearest(random, uv);
    const Vec3 n(nd.x, nd.y, nd.z);
    const Vec3 axis(2 * rv.x - 1, 2 * rv.y - 1, 2 * rv.z - 1);
    const Vec3 p = Vec3((2 * uv.x - 1) * by.halfWidth, (1 - 2 * uv.y) * by.halfHeight, by.farPlane) *
                   (nd.w / by.farPlane);
    float sum = 0;
    for (const Vec3& direction : by.offsets) {
        const Vec3 offset = direction - axis * (2 * dot(direction, axis));
        const float side = dot(offset, n);
        const Vec3 q = p + offset * (by.radius * static_cast<float>((side > 0) - (side < 0)));
        const Vec3 onTexture = MatrixTransformCoord(q, by.viewToTexture);
        const Vec3 r = q * (readNearest(surface, Vec2(onTexture.x, onTexture.y)).w / q.z);
        const float distZ = p.z - r.z;
        const float dp = std::max(dot(n, normalize(r - p)), 0.0f);
        sum += distZ > by.epsilon ? dp * saturate((by.fadeEnd - distZ) / (by.fadeEnd - by.fadeStart)) : 0;
    }
    const float access = saturate(std::pow(1 - sum / 14, 4.0f));
    return Vec4(access, access, access, access);
}

Vec4 readOcclusionBlurred(const Image& surface, const Image& occlusion, Vec2 uv, Vec2 step)
{
    constexpr float weights[] = {0.05f, 0.05f, 0.1f, 0.1f, 0.1f, 0.2f, 0.1f, 0.1f, 0.1f, 0.05f, 0.05f};
    const Vec4 centre = readNearest(surface, uv);
    Vec4 sum = readNearest(occlusion, uv) * weights[5];
    float total = weights[5];
    for (int i = -5; i <= 5; ++i) {
        const Vec2 at = uv + step * static_cast<float>(i);
        const Vec4 other = readNearest(surface, at);
        const float turn = centre.x * other.x + centre.y * other.y + centre.z * other.z;
        if (i == 0 || turn < 0.8f || std::abs(centre.w - other.w) > 0.2f)
            continue;
        sum = sum + readNearest(occlusion, at) * weights[i + 5];
        total += weights[i + 5];
    }
    return sum * (1 / total);
}

Vec4 mixByDepth(const Vec4& sharp, const Vec4& blurred, float depth, const Focus& focus)
{
    const float t = saturate(getBlurFactor(depth, focus)) * focus.coc;
    return sharp * (1 - t) + blurred * t;
}

Vec4 readDiscBlurred(const Image& source, const Image& depths, bool filterDepth, Vec2 uv,
                     const std::vector<float>& shifts, const Focus& focus)
{
    Vec4 sum = readNearest(source, uv);
    float total = 1;
    const float centreDepth = readNearest(depths, uv).w;
    const float centreBlur = getBlurFactor(centreDepth, focus);
    for (std::size_t i = 0; i < shifts.size() && centreBlur > 0; ++i) {
        const float shift = shifts[i] * centreBlur * focus.coc;
        const Vec2 at(uv.x + shift, uv.y + shift);
        const float tapDepth = (filterDepth ? readLinear(depths, at) : readNearest(depths, at)).w;
        const float part = tapDepth > centreDepth ? 1 : getBlurFactor(tapDepth, focus);
        sum = sum + readLinear(source, at) * part;
        total += part;
    }
    return sum * (1 / total);
}

} // namespace helvantine::test
