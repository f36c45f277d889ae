// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/effects2d/EffectConstants.h>
#include <helvantine/effects2d/TwoTextureEffect.h>

namespace helvantine
{

/// Shifts each colour channel of a texture on its own, by red (across) and green (down) of another.
class HELVANTINE_FX_API TextureRgbDisplacementEffect : public TwoTextureEffect
{
    HELVANTINE_PLUGIN_CLASS(TextureRgbDisplacementEffect)

    TextureRgbDisplacementEffect();
    ~TextureRgbDisplacementEffect() override;

    void bindEffectData(FxRenderContext& context) override;
    TextureEffectType getEffectType() override { return TextureEffectType::RgbDisplacement; }

private:
    struct Constants
    {
        float uPowerR, vPowerR;
        float uPowerG, vPowerG;
        float uPowerB, vPowerB;
        float unused[2];
    };

    FloatProperty m_uPowerR; ///< in widths of the texture, as all that begin with u
    FloatProperty m_vPowerR; ///< in heights of the texture, as all that begin with v
    FloatProperty m_uPowerG;
    FloatProperty m_vPowerG;
    FloatProperty m_uPowerB;
    FloatProperty m_vPowerB;
    EffectConstants<Constants> m_constantBuffer;
};

} // namespace helvantine
