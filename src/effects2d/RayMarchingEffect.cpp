// SPDX-License-Identifier: MIT
#include <helvantine/effects2d/RayMarchingEffect.h>

#include <helvantine/effects2d/TextureEffectSharedData.h>
#include <helvantine/object/AddProperties.h>
#include <helvantine/resource/ResourceManager.h>

namespace helvantine
{

namespace
{

constexpr ProgramBindings::Register registers[] = {
    {'b', 0, ProgramBindings::Both,
     "float4x4 worldViewProjection at c0, float2 invScreenSize at c4.x, float time at c4.z"},
    {'t', 0, ProgramBindings::Both, "the picture that \"Texture\" names"},
    {'s', 0, ProgramBindings::Both, "linear; clamps, wraps or mirrors as \"Wrap\" says"},
};

constexpr ProgramBindings::Input vertexInputs[] = {
    {"POSITION", 0, "float3: the quad's corner, in the units of \"Position\" and \"Size\""},
    {"COLOR", 0, "float4: \"Color\""},
    {"TEXCOORD", 0, "float2: the corner's place in \"UV-Rect\""},
};

} // namespace

const ProgramBindings RayMarchingEffect::s_programBindings = {registers, vertexInputs};

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
