// SPDX-License-Identifier: MIT
#include <helvantine/effects2d/TextureDisplacementEffect.h>

#include <helvantine/object/AddProperties.h>

namespace helvantine
{

TextureDisplacementEffect::TextureDisplacementEffect()
    : TwoTextureEffect("Displacement Texture", "Displacement UV-Rect"), m_uPower(this, KindFloat, "U Power"),
      m_vPower(this, KindFloat, "V Power")
{
    m_uPower.setDefault(1.0f);
    m_vPower.setDefault(1.0f);
    addProperties(*m_uvGroup, {&m_uPower, &m_vPower});
}

TextureDisplacementEffect::~TextureDisplacementEffect() = default;

void TextureDisplacementEffect::bindEffectData(FxRenderContext&)
{
    m_constantBuffer.write({.uPower = m_uPower.m_value, .vPower = m_vPower.m_value, .unused = {}});
    m_constantBuffer.bindPS();
    bindSecondTexture();
}

} // namespace helvantine
