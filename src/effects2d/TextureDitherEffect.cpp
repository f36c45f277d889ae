// SPDX-License-Identifier: MIT
#include <helvantine/effects2d/TextureDitherEffect.h>

#include <helvantine/object/AddProperties.h>

namespace helvantine
{

TextureDitherEffect::TextureDitherEffect()
    : m_ditherGroup(new PropertyGroup(this, "Dither")), m_grayscale(this, KindBool, "Grayscale"),
      m_ditherScale(this, KindVec2, "Dither Scale")
{
    m_grayscale.setDefault(false);
    m_ditherScale.setDefault(Vec2(64.0f, 64.0f));
    addProperties(*m_ditherGroup, {&m_grayscale, &m_ditherScale});
    addInputGroup(m_ditherGroup.get());
}

TextureDitherEffect::~TextureDitherEffect() = default;

void TextureDitherEffect::bindEffectData(FxRenderContext&)
{
    m_constantBuffer.write({.ditherScale = m_ditherScale.m_value, .unused = {}});
    m_constantBuffer.bindPS();
}

TextureEffectType TextureDitherEffect::getEffectType()
{
    return m_grayscale.m_value ? TextureEffectType::DitherGrayscale : TextureEffectType::Dither;
}

void TextureDitherEffect::drawVariants(FxWarmUpContext& context)
{
    forEachValue(context, m_grayscale, 2, [&] { onRender(context); });
}

} // namespace helvantine
