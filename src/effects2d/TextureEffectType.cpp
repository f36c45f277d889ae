// SPDX-License-Identifier: MIT
#include <helvantine/effects2d/TextureEffectType.h>

namespace helvantine
{

extern const char* const g_effectShaderText;

namespace
{

// In the order of TextureEffectType.
constexpr TextureEffectProgram programs[] = {
    {"VS_Main", "PS_Main"},
    {"VS_ColorCorrection", "PS_ColorCorrection"},
    {"VS_Blend", "PS_BlendLinear"},
    {"VS_Blend", "PS_BlendLighten"},
    {"VS_Blend", "PS_BlendDarken"},
    {"VS_Blend", "PS_BlendAdd"},
    {"VS_Blend", "PS_BlendSubtract"},
    {"VS_Blend", "PS_BlendScreen"},
    {"VS_Blend", "PS_BlendOverlay"},
    {"VS_Blend", "PS_BlendColorDodge"},
    {"VS_Blend", "PS_BlendColorBurn"},
    {"VS_Blend", "PS_BlendMultiply"},
    {"VS_Glow", "PS_Glow"},
    {"VS_GlowCombine", "PS_GlowCombine"},
    {"VS_VerticalBlur", "PS_Blur"},
    {"VS_HorizontalBlur", "PS_Blur"},
    {"VS_Lensflare", "PS_Lensflare"},
    {"VS_Displacement", "PS_Displacement"},
    {"VS_Dither", "PS_Dither"},
    {"VS_Dither", "PS_DitherGrayscale"},
    {"VS_Displacement", "PS_RgbDisplacement"},
    {"VS_SSAO", "PS_SSAO"},
    {"VS_SSAOBlurH", "PS_SSAOBlurH"},
    {"VS_SSAOBlurV", "PS_SSAOBlurV"},
    {"VS_DOF", "PS_DOF"},
    {"VS_DOF", "PS_DOFBlurBuffer"},
};
static_assert(sizeof(programs) / sizeof(programs[0]) == textureEffectTypeCount);

} // namespace

const TextureEffectProgram* getTextureEffectProgram(TextureEffectType type)
{
    const auto index = static_cast<int32_t>(type);
    return index >= 0 && index < textureEffectTypeCount ? &programs[index] : nullptr;
}

const char* getEffectShaderText()
{
    return g_effectShaderText;
}

} // namespace helvantine
