// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/effects2d/EffectConstants.h>
#include <helvantine/effects2d/TextureEffect.h>

#include <memory>

namespace helvantine
{

/// Ambient occlusion in screen space, from a render target that holds view-space normals (rgb) and depth (alpha). Draws
/// into its own targets only; later effects use the result as a texture.
class HELVANTINE_FX_API TextureSSAOEffect : public TextureEffect
{
    HELVANTINE_PLUGIN_CLASS(TextureSSAOEffect)

    /// What chance makes for all of these effects, once: the first makes it, the last takes it along.
    class SharedData;

    TextureSSAOEffect();
    ~TextureSSAOEffect() override;

    void onPropertyChanged(PropertyBase* property) override;
    void onRender(FxRenderContext& context) override;

protected:
    void drawVariants(FxWarmUpContext& context) override;

private:
    static constexpr std::size_t offsetCount = 14;
    static constexpr std::size_t weightCount = 11;

    struct OcclusionConstants
    {
        float occlusionRadius;
        float occlusionFadeStart;
        float occlusionFadeEnd;
        float occlusionSurfaceEpsilon;
        Vec4 offsetVectors[offsetCount];
        Vec4 frustumCorners[4];    ///< of the far plane, in view space
        Matrix viewToTextureSpace; ///< transposed
    };
    static_assert(sizeof(OcclusionConstants) == 368);

    struct BlurConstants
    {
        float texelWidth;
        float texelHeight;
        float unused[2];
        Vec4 weights[weightCount]; ///< in x
    };
    static_assert(sizeof(BlurConstants) == 192);

    void writeOcclusionConstants(const FxRenderContext& context);
    void writeBlurConstants(const RenderTarget& target);
    void drawOcclusion(FxRenderContext& context, Texture* normalDepth);
    void drawBlur(Texture* normalDepth);

    SmartRef<PropertyGroup> m_ssaoGroup;
    FloatProperty
        m_occlusionRadius; ///< how far around a point is looked, in units of view space, as the three below
    FloatProperty m_occlusionFadeStart;
    FloatProperty m_occlusionFadeEnd; ///< what lies farther in front doesn't occlude
    FloatProperty m_occlusionEpsilon; ///< nor what lies nearer than this
    StringProperty m_hBlurTargetProperty;
    StringProperty m_vBlurTargetProperty;
    IntProperty m_blurCount; ///< cycles, from 0; at most 7
    SmartRef<RenderTargetResource> m_normalDepthTarget;
    SmartRef<RenderTargetResource> m_hBlurTarget;
    SmartRef<RenderTargetResource> m_vBlurTarget; ///< takes the result
    SmartRef<TextureSampler> m_pointSampler;      ///< clamps; that of all effects, of the renderer that draws
    EffectConstants<OcclusionConstants> m_ssaoConstantBuffer;
    EffectConstants<BlurConstants> m_blurConstantBuffer;

    static std::unique_ptr<SharedData> s_sharedSsaoData;
    static unsigned s_instanceCount;
};

} // namespace helvantine
