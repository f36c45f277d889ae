// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Vector.h>
#include <helvantine/effects2d/TextureEffectType.h>
#include <helvantine/testsupport/Image.h>

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

} // namespace helvantine::test
