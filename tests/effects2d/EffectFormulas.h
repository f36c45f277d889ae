// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Matrix.h>
#include <helvantine/core/Vector.h>
#include <helvantine/effects2d/TextureEffectType.h>
#include <helvantine/testsupport/Image.h>

#include <vector>

/// What the effects' programs compute for a pixel, on the CPU and without the vertex colour.
namespace helvantine::test
{

struct ColorCorrection
{
    float brightness = 1, contrast = 1, saturation = 1, hue = 0; ///< hue in degrees
};
/// Brightness, contrast about mid-grey, saturation, rotation about the grey axis, one after the other.
Vec4 correctColor(const Vec4& color, const ColorCorrection& correction);

/// program: one of the ten blends.
Vec4 blendColors(TextureEffectType program, const Vec4& base, const Vec4& blend, float threshold);

/// cell: the texture coordinate times the dither scale.
Vec4 ditherColor(const Vec4& color, Vec2 cell, bool grayscale);

/// What the source shows where a map shifts it by its red and green times the power.
Vec4 readDisplaced(const Image& source, Vec2 texCoord, const Vec4& map, Vec2 power);
/// The same, each colour with a power of its own.
Vec4 readRgbDisplaced(const Image& source, Vec2 texCoord, const Vec4& map, const Vec2 (&powers)[3]);

/// The lens flare's ghost. In the very centre it isn't defined.
Vec4 readGhost(const Image& source, Vec2 texCoord);

Vec4 glowColor(const Vec4& color, float threshold);
struct GlowCombination
{
    float bloomIntensity = 1, sourceIntensity = 1, bloomSaturation = 1, sourceSaturation = 1;
};
Vec4 combineGlow(const Vec4& bloom, const Vec4& source, const GlowCombination& combination);

/// Nine weighed samples, a step apart.
Vec4 readBlurred(const Image& source, Vec2 texCoord, Vec2 step);

/// What ambient occlusion looks at: view-space normals (rgb) and depth (alpha), random vectors, and how far it looks.
struct Occlusion
{
    float radius = 0.5f, fadeStart = 0.2f, fadeEnd = 2.0f, epsilon = 0.05f;
    std::vector<Vec3> offsets;
    float halfWidth = 1, halfHeight = 1, farPlane = 1; ///< of the frustum, at its far plane
    Matrix viewToTexture;
};
Vec4 readOcclusion(const Image& surface, const Image& random, Vec2 texCoord, const Occlusion& occlusion);
/// Eleven samples, a step apart, of those that lie on the same surface.
Vec4 readOcclusionBlurred(const Image& surface, const Image& occlusion, Vec2 texCoord, Vec2 step);

struct Focus
{
    float distance = 10, width = 20, coc = 10;
};
/// The picture and a blurred one, mixed by depth.
Vec4 mixByDepth(const Vec4& sharp, const Vec4& blurred, float depth, const Focus& focus);
/// The disc blur's taps lie on a diagonal, each at its shift in both directions; depth is the alpha of `depths`.
Vec4 readDiscBlurred(const Image& source, const Image& depths, bool filterDepth, Vec2 texCoord,
                     const std::vector<float>& shifts, const Focus& focus);

} // namespace helvantine::test
