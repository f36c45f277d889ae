// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/Api.h>

#include <cstdint>

namespace helvantine
{

/// The programs of the effect shader library.
enum class TextureEffectType : int32_t
{
    Texture = 0,
    ColorCorrection = 1,
    BlendLinear = 2,
    BlendLighten = 3,
    BlendDarken = 4,
    BlendAdd = 5,
    BlendSubtract = 6,
    BlendScreen = 7,
    BlendOverlay = 8,
    BlendColorDodge = 9,
    BlendColorBurn = 10,
    BlendMultiply = 11,
    Glow = 12,
    GlowCombine = 13,
    VerticalBlur = 14,
    HorizontalBlur = 15,
    Lensflare = 16,
    Displacement = 17,
    Dither = 18,
    DitherGrayscale = 19,
    RgbDisplacement = 20,
    SSAO = 21,
    SSAOBlurH = 22,
    SSAOBlurV = 23,
    DOF = 24,
    DOFBlurBuffer = 25
};

inline constexpr int32_t textureEffectTypeCount = 26;

/// The entry points of a program in the library's text.
struct TextureEffectProgram
{
    const char* vertexEntry;
    const char* pixelEntry;
};

/// Null for a number that names no program.
HELVANTINE_FX_API const TextureEffectProgram* getTextureEffectProgram(TextureEffectType type);

/// The HLSL text of all programs, which is compiled whole for each.
HELVANTINE_FX_API const char* getEffectShaderText();

} // namespace helvantine
