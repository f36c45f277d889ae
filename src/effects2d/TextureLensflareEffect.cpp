// SPDX-License-Identifier: MIT
#include <helvantine/effects2d/TextureLensflareEffect.h>

#include <helvantine/effects2d/TextureEffectSharedData.h>
#include <helvantine/renderer/Texture.h>

namespace helvantine
{

TextureLensflareEffect::TextureLensflareEffect() : m_lensflareGroup(new PropertyGroup(this, "Lensflare"))
{
    addInputGroup(m_lensflareGroup.get());
}

TextureLensflareEffect::~TextureLensflareEffect() = default;

void TextureLensflareEffect::onRender(FxRenderContext& context)
{
    if (!hasSource() || !prepareSharedData())
        return;
    Shader* shader = getShader(TextureEffectType::Lensflare);
    if (!shader)
        return;
    prepareVertices(context);
    shader->bind(s_sharedData->m_vertexDeclaration.get());
    bindPassConstants(getWorldViewProjection());
    Texture* source = getSourceTexture();
    if (source)
        m_constantBuffer.write({.texture0Size = Vec2(static_cast<float>(source->getWidth()),
                                                     static_cast<float>(source->getHeight())),
                                .unused = {}});
    m_constantBuffer.bindPS();
    // Never tests depth, whatever "3D" says.
    bindStates(static_cast<BlendMode>(m_blend.m_value), s_sharedData->m_depthOffState.get());
    const Input inputs[] = {{source, s_sharedData->m_clampSampler.get()}};
    declareQuad(getWorldViewProjection());
    drawQuad(inputs);
    shader->unbind();
}

} // namespace helvantine
