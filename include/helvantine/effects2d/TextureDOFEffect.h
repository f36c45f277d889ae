// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/effects2d/EffectConstants.h>
#include <helvantine/effects2d/TextureEffect.h>

namespace helvantine
{

/// Depth of field: blurs a render target by the depth of what it shows, over the whole current target. Position, size,
/// rotation, "Blend", "3D" and "Wrap" play no part.
class HELVANTINE_FX_API TextureDOFEffect : public TextureEffect
{
    HELVANTINE_PLUGIN_CLASS(TextureDOFEffect)

    TextureDOFEffect();
    ~TextureDOFEffect() override;

    void onPropertyChanged(PropertyBase* property) override;
    void onRender(FxRenderContext& context) override;

protected:
    void drawVariants(FxWarmUpContext& context) override;

private:
    enum Type : int32_t
    {
        DownsampleBlur = 0,
        DiscBlur = 1
    };

    static constexpr std::size_t tapCount = 12;

    struct Constants
    {
        float farClip;
        float focalDistance;
        float focalWidth;
        float coc;
        Vec4 filterTaps[tapCount]; ///< x, y in texture coordinates
    };
    static_assert(sizeof(Constants) == 208);

    void writeConstants(const FxRenderContext& context, const Texture& source);
    void drawDiscBlur(Texture* source);
    void drawDownsampleBlur(Texture* source);

    SmartRef<PropertyGroup> m_dofGroup;
    IntProperty m_type;
    FloatProperty m_focalWidth;    ///< from sharp to fully blurred, in units of depth
    FloatProperty m_focalDistance; ///< depth of what is sharp
    FloatProperty m_coc; ///< disc blur: the radius in steps of half a texel; else the share of the blurred
    StringProperty m_depthSourceProperty;
    StringProperty m_blurSourceProperty;
    SmartRef<RenderTargetResource> m_depthSource; ///< alpha holds the view-space depth
    SmartRef<RenderTargetResource>
        m_blurSource; ///< the blurred picture, for downsample blur; the project fills it
    SmartRef<TextureSampler> m_pointSampler; ///< clamps; that of all effects, of the renderer that draws
    EffectConstants<Constants> m_constantBuffer;
};

} // namespace helvantine
