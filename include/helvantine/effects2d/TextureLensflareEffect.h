// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/effects2d/EffectConstants.h>
#include <helvantine/effects2d/TextureEffect.h>

namespace helvantine
{

/// The ghost that the lights of a picture throw through its centre.
class HELVANTINE_FX_API TextureLensflareEffect : public TextureEffect
{
    HELVANTINE_PLUGIN_CLASS(TextureLensflareEffect)

    TextureLensflareEffect();
    ~TextureLensflareEffect() override;

    void onRender(FxRenderContext& context) override;

private:
    struct Constants
    {
        Vec2 texture0Size; ///< of the source, in texels
        float unused[2];
    };

    SmartRef<PropertyGroup> m_lensflareGroup; ///< empty, and part of documents
    EffectConstants<Constants> m_constantBuffer;
};

} // namespace helvantine
