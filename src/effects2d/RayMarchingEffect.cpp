// SPDX-License-Identifier: MIT
#include <helvantine/effects2d/RayMarchingEffect.h>

#include <helvantine/effects2d/TextureEffectSharedData.h>
#include <helvantine/object/AddProperties.h>
#include <helvantine/resource/ResourceManager.h>

namespace helvantine
{

RayMarchingEffect::RayMarchingEffect()
    : m_raymarchingGroup(new PropertyGroup(this, "Raymarching")),
      m_shaderProperty(this, KindResource, "Shader"), m_constantBuffer(16)
{
    addProperties(*m_raymarchingGroup, {&m_shaderProperty});
    addInputGroup(m_raymarchingGroup.get());
}

RayMarchingEffect::~RayMarchingEffect() = default;

void RayMarchingEffect::onPropertyChanged(PropertyBase* property)
{
    TextureEffect::onPropertyChanged(property);
    if (property->m_id == m_shaderProperty.m_id)
        m_shaderResource = findResourceOfType<ShaderResource>(m_shaderProperty.m_value);
}

void RayMarchingEffect::onRender(FxRenderContext& context)
{
    Shader* shader = m_shaderResource ? m_shaderResource->getShader() : nullptr;
    if (!shader || !prepareSharedData())
        return;
    writeVertices(context);
    shader->bind(s_sharedData->m_vertexDeclaration.get());
    bindConstants(context);
    s_sharedData->m_constantBuffer->bindPS(0);
    bindFinalStates();
    const Input inputs[] = {{getSourceTexture(), getWrapSampler()}};
    drawQuad(inputs);
    shader->unbind();
}

} // namespace helvantine
