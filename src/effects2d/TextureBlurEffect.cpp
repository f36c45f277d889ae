// SPDX-License-Identifier: MIT
#include <helvantine/effects2d/TextureBlurEffect.h>

#include <helvantine/object/AddProperties.h>
#include <helvantine/resource/ResourceManager.h>

namespace helvantine
{

TextureBlurEffect::TextureBlurEffect()
    : m_blurGroup(new PropertyGroup(this, "Blur")),
      m_verticalBlurTargetProperty(this, KindResource, "Vertical Blur Target"),
      m_horizontalBlurTargetProperty(this, KindResource, "Horizontal Blur Target"),
      m_blurCount(this, KindInt, "Blur Count")
{
    m_blurCount.setDefault(1);
    addProperties(*m_blurGroup,
                  {&m_blurCount, &m_verticalBlurTargetProperty, &m_horizontalBlurTargetProperty});
    addInputGroup(m_blurGroup.get());
}

TextureBlurEffect::~TextureBlurEffect() = default;

void TextureBlurEffect::onPropertyChanged(PropertyBase* property)
{
    TextureEffect::onPropertyChanged(property);
    resolveTarget(*property, m_verticalBlurTargetProperty, m_verticalBlurTarget);
    resolveTarget(*property, m_horizontalBlurTargetProperty, m_horizontalBlurTarget);
}

void TextureBlurEffect::onRender(FxRenderContext& context)
{
    // Without its targets it draws nothing, not even its source.
    if (!hasSource() || !m_verticalBlurTarget || !m_horizontalBlurTarget || !prepareSharedData())
        return;
    Texture* result = getSourceTexture();
    writeFullTargetQuad();
    if (m_blurCount.m_value > 0) {
        bindPassStates();
        result = drawBlurChain(result, *m_verticalBlurTarget, *m_horizontalBlurTarget, m_blurCount.m_value);
    }
    drawFinalPass(context, TextureEffectType::Texture, result ? result : getSourceTexture());
}

void TextureBlurEffect::drawVariants(FxWarmUpContext& context)
{
    drawWithCount(context, m_blurCount);
}

} // namespace helvantine
