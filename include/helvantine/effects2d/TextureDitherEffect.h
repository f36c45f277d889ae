// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/effects2d/EffectConstants.h>
#include <helvantine/effects2d/TextureEffect.h>

namespace helvantine
{

/// Ordered dithering to two levels, of each channel or of the brightness.
class HELVANTINE_FX_API TextureDitherEffect : public TextureEffect
{
    HELVANTINE_PLUGIN_CLASS(TextureDitherEffect)

    TextureDitherEffect();
    ~TextureDitherEffect() override;

    void bindEffectData(FxRenderContext& context) override;
    TextureEffectType getEffectType() override;

protected:
    void drawVariants(FxWarmUpContext& context) override;

private:
    struct Constants
    {
        Vec2 ditherScale;
        float unused[2];
    };

    SmartRef<PropertyGroup> m_ditherGroup;
    BoolProperty m_grayscale;
    Vec2Property m_ditherScale; ///< cells of the pattern over the texture, across and down
    EffectConstants<Constants> m_constantBuffer;
};

} // namespace helvantine
