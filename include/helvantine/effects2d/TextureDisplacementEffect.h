// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/effects2d/EffectConstants.h>
#include <helvantine/effects2d/TwoTextureEffect.h>

namespace helvantine
{

/// Shifts a texture by red (across) and green (down) of another. The shift isn't centred: black is none.
class HELVANTINE_FX_API TextureDisplacementEffect : public TwoTextureEffect
{
    HELVANTINE_PLUGIN_CLASS(TextureDisplacementEffect)

    TextureDisplacementEffect();
    ~TextureDisplacementEffect() override;

    void bindEffectData(FxRenderContext& context) override;
    TextureEffectType getEffectType() override { return TextureEffectType::Displacement; }

private:
    struct Constants
    {
        float uPower;
        float vPower;
        float unused[2];
    };

    FloatProperty m_uPower; ///< the shift at full red, in widths of the texture
    FloatProperty m_vPower; ///< the shift at full green, in heights
    EffectConstants<Constants> m_constantBuffer;
};

} // namespace helvantine
