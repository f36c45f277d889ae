// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/effects2d/EffectConstants.h>
#include <helvantine/effects2d/TwoTextureEffect.h>

namespace helvantine
{

/// Blends two textures, in ten ways.
class HELVANTINE_FX_API TextureBlendEffect : public TwoTextureEffect
{
    HELVANTINE_PLUGIN_CLASS(TextureBlendEffect)

    TextureBlendEffect();
    ~TextureBlendEffect() override;

    void bindEffectData(FxRenderContext& context) override;
    TextureEffectType getEffectType() override;

protected:
    void drawVariants(FxWarmUpContext& context) override;

private:
    struct Constants
    {
        float threshold;
        float unused[3];
    };

    SmartRef<PropertyGroup> m_blendGroup;
    IntProperty m_blendType;
    FloatProperty m_threshold; ///< share of the first texture: in all channels of "Mix", else in alpha
    EffectConstants<Constants> m_constantBuffer;
};

} // namespace helvantine
