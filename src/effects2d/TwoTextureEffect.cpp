// SPDX-License-Identifier: MIT
#include <helvantine/effects2d/TwoTextureEffect.h>

#include <helvantine/object/AddProperties.h>
#include <helvantine/renderer/Texture.h>
#include <helvantine/renderer/TextureSampler.h>
#include <helvantine/resource/ResourceManager.h>

namespace helvantine
{

TwoTextureEffect::TwoTextureEffect(const char* textureName, const char* uvRectName)
    : m_secondTextureProperty(this, KindResource, textureName), m_secondUvRect(this, KindVec4, uvRectName)
{
    m_secondUvRect.setDefault(Vec4(0.0f, 0.0f, 1.0f, 1.0f));
    addProperties(*m_attributesGroup, {&m_secondTextureProperty});
    addProperties(*m_uvGroup, {&m_secondUvRect});
}

TwoTextureEffect::~TwoTextureEffect() = default;

void TwoTextureEffect::onPropertyChanged(PropertyBase* property)
{
    TextureEffect::onPropertyChanged(property);
    if (property->m_id == m_secondTextureProperty.m_id)
        m_secondTextureResource = findResourceOfType<TextureResource>(m_secondTextureProperty.m_value);
}

void TwoTextureEffect::writeVertices(FxRenderContext&)
{
    writeEffectQuad(&m_secondUvRect.m_value);
}

void TwoTextureEffect::bindSecondTexture()
{
    constexpr unsigned slot = 1;
    if (!m_secondTextureResource)
        return;
    if (Texture* texture = m_secondTextureResource->getTexture())
        texture->bind(slot);
    getWrapSampler()->bind(slot);
}

} // namespace helvantine
