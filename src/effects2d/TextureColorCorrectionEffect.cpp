// SPDX-License-Identifier: MIT
#include <helvantine/effects2d/TextureColorCorrectionEffect.h>

#include <helvantine/object/AddProperties.h>

namespace helvantine
{

TextureColorCorrectionEffect::TextureColorCorrectionEffect()
    : m_colorCorrectionGroup(new PropertyGroup(this, "Color Correction")),
      m_brightness(this, KindFloat, "Brightness"), m_contrast(this, KindFloat, "Contrast"),
      m_saturation(this, KindFloat, "Saturation"), m_hue(this, KindFloat, "Hue")
{
    m_brightness.setDefault(1.0f);
    m_contrast.setDefault(1.0f);
    m_saturation.setDefault(1.0f);
    m_hue.setDefault(0.0f);
    addProperties(*m_colorCorrectionGroup, {&m_brightness, &m_contrast, &m_saturation, &m_hue});
    addInputGroup(m_colorCorrectionGroup.get());
}

TextureColorCorrectionEffect::~TextureColorCorrectionEffect() = default;

void TextureColorCorrectionEffect::bindEffectData(FxRenderContext&)
{
    m_constantBuffer.write({.brightness = m_brightness.m_value,
                            .contrast = m_contrast.m_value,
                            .saturation = m_saturation.m_value,
                            .hue = m_hue.m_value});
    m_constantBuffer.bindVS(); // the vertex program makes the matrix
}

} // namespace helvantine
