// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/effects2d/TextureEffect.h>

namespace helvantine
{

/// Blurs a texture by passes through two render targets of the project. A smaller target blurs more and costs less.
class HELVANTINE_FX_API TextureBlurEffect : public TextureEffect
{
    HELVANTINE_PLUGIN_CLASS(TextureBlurEffect)

    TextureBlurEffect();
    ~TextureBlurEffect() override;

    void onPropertyChanged(PropertyBase* property) override;
    void onRender(FxRenderContext& context) override;

protected:
    void drawVariants(FxWarmUpContext& context) override;

private:
    SmartRef<PropertyGroup> m_blurGroup;
    StringProperty m_verticalBlurTargetProperty;
    StringProperty m_horizontalBlurTargetProperty;
    IntProperty m_blurCount; ///< cycles, from 0; at most 32
    // Named the wrong way round, deliberately: the first holds what is blurred along rows, the second the result.
    SmartRef<RenderTargetResource> m_verticalBlurTarget;
    SmartRef<RenderTargetResource> m_horizontalBlurTarget;
};

} // namespace helvantine
