// SPDX-License-Identifier: MIT
#include <helvantine/effects2d/TextureGlowEffect.h>

#include <helvantine/effects2d/TextureEffectSharedData.h>
#include <helvantine/object/AddProperties.h>
#include <helvantine/renderer/RenderTarget.h>
#include <helvantine/resource/ResourceManager.h>

#include <algorithm>

namespace helvantine
{

TextureGlowEffect::TextureGlowEffect()
    : m_glowGroup(new PropertyGroup(this, "Glow")), m_glowTargetProperty(this, KindResource, "Glow Target"),
      m_verticalBlurTargetProperty(this, KindResource, "Vertical Blur Target"),
      m_horizontalBlurTargetProperty(this, KindResource, "Horizontal Blur Target"),
      m_threshold(this, KindFloat, "Threshold"), m_bloomIntensity(this, KindFloat, "Bloom Intensity"),
      m_sourceIntensity(this, KindFloat, "Source Intensity"),
      m_bloomSaturation(this, KindFloat, "Bloom Saturation"),
      m_sourceSaturation(this, KindFloat, "Source Saturation"), m_blurCount(this, KindInt, "Blur Count")
{
    m_threshold.setDefault(0.5f);
    for (FloatProperty* property :
         {&m_bloomIntensity, &m_sourceIntensity, &m_bloomSaturation, &m_sourceSaturation})
        property->setDefault(1.0f);
    m_blurCount.setDefault(1);
    addProperties(*m_glowGroup, {&m_glowTargetProperty, &m_threshold, &m_bloomIntensity, &m_sourceIntensity,
                                 &m_bloomSaturation, &m_sourceSaturation, &m_blurCount,
                                 &m_verticalBlurTargetProperty, &m_horizontalBlurTargetProperty});
    addInputGroup(m_glowGroup.get());
}

TextureGlowEffect::~TextureGlowEffect() = default;

void TextureGlowEffect::onPropertyChanged(PropertyBase* property)
{
    TextureEffect::onPropertyChanged(property);
    resolveTarget(*property, m_glowTargetProperty, m_glowTarget);
    resolveTarget(*property, m_verticalBlurTargetProperty, m_verticalBlurTarget);
    resolveTarget(*property, m_horizontalBlurTargetProperty, m_horizontalBlurTarget);
}

void TextureGlowEffect::onRender(FxRenderContext& context)
{
    if (!m_glowTarget || !hasSource() || !prepareSharedData() || !getShader(TextureEffectType::Glow))
        return;
    Texture* source = getSourceTexture();
    drawBrightPass(source);
    Texture* bright = getTexture(*m_glowTarget);
    Texture* bloom = nullptr;
    if (m_blurCount.m_value > 0 && m_verticalBlurTarget && m_horizontalBlurTarget)
        bloom = drawBlurChain(bright, *m_verticalBlurTarget, *m_horizontalBlurTarget, m_blurCount.m_value);
    drawCombinePass(context, bloom ? bloom : bright, source);
}

void TextureGlowEffect::drawVariants(FxWarmUpContext& context)
{
    drawWithCount(context, m_blurCount);
}

void TextureGlowEffect::drawBrightPass(Texture* source)
{
    writeFullTargetQuad();
    m_constantBuffer.write({.glowThreshold = std::clamp(m_threshold.m_value, 0.0f, 1.0f),
                            .bloomIntensity = m_bloomIntensity.m_value,
                            .sourceIntensity = m_sourceIntensity.m_value,
                            .bloomSaturation = m_bloomSaturation.m_value,
                            .sourceSaturation = m_sourceSaturation.m_value,
                            .unused = {}});
    m_constantBuffer.bindPS(); // and stays so: the last pass reads it too
    bindPassStates();
    const Input inputs[] = {getPassInput(source, *m_glowTarget)};
    drawPass(TextureEffectType::Glow, m_glowTarget->getRenderTarget(), inputs);
}

void TextureGlowEffect::drawCombinePass(FxRenderContext& context, Texture* bloom, Texture* source)
{
    // Clamps both: "Wrap" plays no part here.
    TextureSampler* sampler = s_sharedData->m_clampSampler.get();
    const Input inputs[] = {{bloom, sampler}, {source, sampler}};
    drawFinalPass(context, TextureEffectType::GlowCombine, inputs);
}

} // namespace helvantine
