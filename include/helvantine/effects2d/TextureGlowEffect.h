// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/effects2d/EffectConstants.h>
#include <helvantine/effects2d/TextureEffect.h>

namespace helvantine
{

/// Lets the bright parts of a texture shine over the rest: a pass picks them, others blur them, the last adds them.
class HELVANTINE_FX_API TextureGlowEffect : public TextureEffect
{
    HELVANTINE_PLUGIN_CLASS(TextureGlowEffect)

    TextureGlowEffect();
    ~TextureGlowEffect() override;

    void onPropertyChanged(PropertyBase* property) override;
    void onRender(FxRenderContext& context) override;

protected:
    void drawVariants(FxWarmUpContext& context) override;

private:
    struct Constants
    {
        float glowThreshold;
        float bloomIntensity;
        float sourceIntensity;
        float bloomSaturation;
        float sourceSaturation;
        float unused[3];
    };

    void drawBrightPass(Texture* source);
    void drawCombinePass(FxRenderContext& context, Texture* bloom, Texture* source);

    SmartRef<PropertyGroup> m_glowGroup;
    StringProperty m_glowTargetProperty;
    StringProperty m_verticalBlurTargetProperty;
    StringProperty m_horizontalBlurTargetProperty;
    FloatProperty m_threshold; ///< the program gets it clamped to 0 to 1; at 1 it divides by zero
    FloatProperty m_bloomIntensity;
    FloatProperty m_sourceIntensity;
    FloatProperty m_bloomSaturation;
    FloatProperty m_sourceSaturation;
    IntProperty m_blurCount; ///< cycles, from 0; at most 32
    SmartRef<RenderTargetResource> m_glowTarget;
    // As in TextureBlurEffect. Without both the bright parts stay sharp.
    SmartRef<RenderTargetResource> m_verticalBlurTarget;
    SmartRef<RenderTargetResource> m_horizontalBlurTarget;
    EffectConstants<Constants> m_constantBuffer;
};

} // namespace helvantine
