// SPDX-License-Identifier: MIT
#include <helvantine/effects2d/TextureRgbDisplacementEffect.h>

#include <helvantine/object/AddProperties.h>

namespace helvantine
{

TextureRgbDisplacementEffect::TextureRgbDisplacementEffect()
    : TwoTextureEffect("RgbDisplacement Texture", "RgbDisplacement UV-Rect"),
      m_uPowerR(this, KindFloat, "U Power R"), m_vPowerR(this, KindFloat, "V Power R"),
      m_uPowerG(this, KindFloat, "U Power G"), m_vPowerG(this, KindFloat, "V Power G"),
      m_uPowerB(this, KindFloat, "U Power B"), m_vPowerB(this, KindFloat, "V Power B")
{
    for (FloatProperty* power : {&m_uPowerR, &m_vPowerR, &m_uPowerG, &m_vPowerG, &m_uPowerB, &m_vPowerB}) {
        power->setDefault(1.0f);
        addProperties(*m_uvGroup, {power});
    }
}

TextureRgbDisplacementEffect::~TextureRgbDisplacementEffect() = default;

void TextureRgbDisplacementEffect::bindEffectData(FxRenderContext&)
{
    m_constantBuffer.write({.uPowerR = m_uPowerR.m_value,
                            .vPowerR = m_vPowerR.m_value,
                            .uPowerG = m_uPowerG.m_value,
                            .vPowerG = m_vPowerG.m_value,
                            .uPowerB = m_uPowerB.m_value,
                            .vPowerB = m_vPowerB.m_value,
                            .unused = {}});
    m_constantBuffer.bindPS();
    bindSecondTexture();
}

} // namespace helvantine
