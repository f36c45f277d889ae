// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/effects2d/EffectConstants.h>
#include <helvantine/effects2d/TextureEffect.h>

namespace helvantine
{

/// Corrects the colours of a texture: brightness, then contrast, saturation and hue.
class HELVANTINE_FX_API TextureColorCorrectionEffect : public TextureEffect
{
    HELVANTINE_PLUGIN_CLASS(TextureColorCorrectionEffect)

    TextureColorCorrectionEffect();
    ~TextureColorCorrectionEffect() override;

    void bindEffectData(FxRenderContext& context) override;
    TextureEffectType getEffectType() override { return TextureEffectType::ColorCorrection; }

private:
    struct Constants
    {
        float brightness;
        float contrast;
        float saturation;
        float hue;
    };

    SmartRef<PropertyGroup> m_colorCorrectionGroup;
    FloatProperty m_brightness;
    FloatProperty m_contrast;
    FloatProperty m_saturation;
    FloatProperty m_hue; ///< degrees
    EffectConstants<Constants> m_constantBuffer;
};

} // namespace helvantine
