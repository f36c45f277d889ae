// SPDX-License-Identifier: MIT
#include <helvantine/effects2d/TextureEffect.h>

#include <helvantine/effects2d/TextureEffectSharedData.h>
#include <helvantine/object/AddProperties.h>
#include <helvantine/renderer/RenderTarget.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/resource/ResourceManager.h>

#include <algorithm>

namespace helvantine
{

namespace
{

enum Wrap : int32_t
{
    WrapClamp = 0,
    WrapRepeat = 1,
    WrapMirror = 2
};

constexpr float blendFactor[4] = {1.0f, 1.0f, 1.0f, 1.0f};
constexpr unsigned sampleMask = 0xFFFFFF; // 24 bits, deliberately

constexpr Effect2D::Corners fullTargetCorners = {Vec3(-1.0f, 1.0f, 0.0f), Vec3(1.0f, 1.0f, 0.0f),
                                                 Vec3(1.0f, -1.0f, 0.0f), Vec3(-1.0f, -1.0f, 0.0f)};

} // namespace

TextureEffect::TextureEffectSharedData* TextureEffect::s_sharedData = nullptr;
TextureEffect::TextureEffectShaderCache* TextureEffect::s_shaderCache = nullptr;
unsigned TextureEffect::s_instanceCount = 0;

TextureEffect::TextureEffect()
    : m_attributesGroup(new PropertyGroup(this, "Attributes")),
      m_textureProperty(this, KindResource, "Texture"), m_color(this, KindColor, "Color"),
      m_blend(this, KindEnum, "Blend"), m_uvGroup(new PropertyGroup(this, "UV")),
      m_uvRect(this, KindVec4, "UV-Rect"), m_wrap(this, KindEnum, "Wrap")
{
    m_color.setDefault(Vec4(1.0f, 1.0f, 1.0f, 1.0f));
    m_blend.setDefault(0);
    for (int32_t mode = 0; mode < blendModeCount; ++mode)
        m_blend.m_enumLabels[mode] = getBlendName(static_cast<BlendMode>(mode));
    addProperties(*m_attributesGroup, {&m_color, &m_blend, &m_textureProperty});
    addInputGroup(m_attributesGroup.get());

    m_wrap.setDefault(WrapClamp);
    m_wrap.m_enumLabels = {{WrapClamp, "Clamp"}, {WrapRepeat, "Wrap"}, {WrapMirror, "Mirror"}};
    m_uvRect.setDefault(Vec4(0.0f, 0.0f, 1.0f, 1.0f));
    addProperties(*m_uvGroup, {&m_wrap, &m_uvRect});
    addInputGroup(m_uvGroup.get());

    if (s_instanceCount++ == 0) {
        s_shaderCache = new TextureEffectShaderCache();
        s_sharedData = new TextureEffectSharedData();
    }
}

TextureEffect::~TextureEffect()
{
    if (--s_instanceCount > 0)
        return;
    delete s_sharedData;
    s_sharedData = nullptr;
    delete s_shaderCache;
    s_shaderCache = nullptr;
}

void TextureEffect::onPropertyChanged(PropertyBase* property)
{
    PropertyContext::onPropertyChanged(property);
    if (property->m_id != m_textureProperty.m_id)
        return;
    m_textureResource = findResourceOfType<TextureResource>(m_textureProperty.m_value);
    m_renderTargetResource =
        m_textureResource ? nullptr : findResourceOfType<RenderTargetResource>(m_textureProperty.m_value);
}

void TextureEffect::onRender(FxRenderContext& context)
{
    if (!prepareSharedData())
        return;
    Shader* shader = getShader(getEffectType());
    if (!shader)
        return;
    prepareVertices(context);
    shader->bind(s_sharedData->m_vertexDeclaration.get());
    bindConstants(context);
    bindEffectData(context);
    bindFinalStates();
    declareQuad(getWorldViewProjection());
    const Input inputs[] = {{getSourceTexture(), getWrapSampler()}};
    drawQuad(inputs);
    shader->unbind();
}

void TextureEffect::onWarmUp(FxWarmUpContext& context)
{
    m_warmingUp = true;
    forEachValue(context, m_blend, blendModeCount, [&] { drawVariants(context); });
    m_warmingUp = false;
}

void TextureEffect::drawVariants(FxWarmUpContext& context)
{
    onRender(context);
}

void TextureEffect::drawWithCount(FxWarmUpContext& context, IntProperty& count)
{
    const int32_t own = count.m_value;
    if (own > 1 || context.mayChange(count))
        count.m_value = 1;
    onRender(context);
    count.m_value = own;
}

void TextureEffect::prepareVertices(FxRenderContext& context)
{
    s_sharedData->m_quad.reset(); // an override may fill the buffer by itself
    writeVertices(context);
}

void TextureEffect::writeVertices(FxRenderContext&)
{
    writeEffectQuad(nullptr);
}

void TextureEffect::bindEffectData(FxRenderContext&) {}

TextureEffectType TextureEffect::getEffectType()
{
    return TextureEffectType::Texture;
}

bool TextureEffect::prepareSharedData()
{
    if (s_sharedData->isCurrent())
        return true;
    s_shaderCache->clear();
    return s_sharedData->create();
}

Texture* TextureEffect::getSourceTexture() const
{
    if (m_renderTargetResource)
        return getTexture(*m_renderTargetResource);
    return m_textureResource ? m_textureResource->getTexture() : nullptr;
}

TextureSampler* TextureEffect::getWrapSampler() const
{
    switch (m_wrap.m_value) {
    case WrapClamp:
        return s_sharedData->m_clampSampler.get();
    case WrapRepeat:
        return s_sharedData->m_wrapSampler.get();
    default:
        return s_sharedData->m_mirrorSampler.get();
    }
}

Shader* TextureEffect::getShader(TextureEffectType type)
{
    return s_shaderCache->getShader(type);
}

void TextureEffect::resolveTarget(const PropertyBase& property, const StringProperty& own,
                                  SmartRef<RenderTargetResource>& target)
{
    if (property.m_id == own.m_id)
        target = findResourceOfType<RenderTargetResource>(own.m_value);
}

Texture* TextureEffect::getTexture(const RenderTargetResource& resource)
{
    const RenderTarget* target = resource.getRenderTarget();
    return target ? target->getTexture() : nullptr;
}

void TextureEffect::writeEffectQuad(const Vec4* secondUvRect)
{
    const Vec4& color = m_color.m_value;
    writeQuad(m_corners, {color, color, color, color}, secondUvRect);
}

void TextureEffect::writeFullTargetQuad()
{
    const Vec4& color = m_color.m_value;
    writeFullTargetQuad({color, color, color, color});
}

void TextureEffect::writeFullTargetQuad(const VertexColors& colors)
{
    writeQuad(fullTargetCorners, colors, nullptr);
}

void TextureEffect::writeQuad(const Corners& corners, const VertexColors& colors,
                              const Vec4* secondUvRect) const
{
    using Vertex = TextureEffectSharedData::Vertex;
    auto* vertices = static_cast<Vertex*>(s_sharedData->m_vertexBuffer->map(D3D11_MAP_WRITE_DISCARD));
    s_sharedData->m_quad = corners;
    if (!vertices)
        return;
    // Left, top, right, bottom of a rectangle are its x, y, z, w.
    const auto texCoord = [](const Vec4& rect, std::size_t i) {
        return Vec2(i % 2 == 0 ? rect.x : rect.z, i < 2 ? rect.y : rect.w);
    };
    constexpr std::size_t cornerOfVertex[] = {0, 1, 3, 2};
    for (std::size_t i = 0; i < 4; ++i) {
        vertices[i].position = m_warmingUp ? Vec3() : corners[cornerOfVertex[i]];
        vertices[i].color = colors[i];
        vertices[i].texCoord0 = texCoord(m_uvRect.m_value, i);
        if (secondUvRect)
            vertices[i].texCoord1 = texCoord(*secondUvRect, i);
    }
    s_sharedData->m_vertexBuffer->unmap();
}

void TextureEffect::declareQuad(const Matrix& worldViewProjection)
{
    if (s_sharedData->m_quad)
        g_renderer->declareQuad(*s_sharedData->m_quad, worldViewProjection);
}

Matrix TextureEffect::getWorldViewProjection() const
{
    return MatrixMultiply(MatrixMultiply(m_world, m_view), m_projection);
}

void TextureEffect::bindConstants(const FxRenderContext& context) const
{
    ConstantBuffer& buffer = *s_sharedData->m_constantBuffer;
    auto* constants = static_cast<TextureEffectSharedData::Constants*>(buffer.map());
    if (!constants)
        return;
    constants->worldViewProjection = MatrixTranspose(getWorldViewProjection());
    if (const RenderTarget* target = g_renderer->getRenderTarget())
        constants->invScreenSize = Vec2(1.0f / target->getWidth(), 1.0f / target->getHeight());
    constants->time = context.relativeTime;
    buffer.unmap();
    buffer.bindVS(0);
}

void TextureEffect::bindPassConstants(const Matrix& worldViewProjection)
{
    ConstantBuffer& buffer = *s_sharedData->m_constantBuffer;
    auto* constants = static_cast<TextureEffectSharedData::Constants*>(buffer.map());
    if (!constants)
        return;
    constants->worldViewProjection = MatrixTranspose(worldViewProjection);
    const RenderTarget* target = g_renderer->getRenderTarget();
    if (const Texture* texture = target ? target->getTexture() : nullptr)
        constants->invScreenSize = Vec2(1.0f / texture->getWidth(), 1.0f / texture->getHeight());
    buffer.unmap();
    buffer.bindVS(0);
}

void TextureEffect::bindStates(BlendMode blend, DepthStencilState* depth)
{
    getBlendState(blend)->bind(blendFactor, sampleMask);
    s_sharedData->m_rasterizerState->bind();
    depth->bind(0);
}

void TextureEffect::bindPassStates()
{
    bindStates(BlendMode::Solid, s_sharedData->m_depthOffState.get());
}

void TextureEffect::bindFinalStates() const
{
    bindStates(static_cast<BlendMode>(m_blend.m_value),
               m_is3D.m_value ? s_sharedData->m_depthOnState.get() : s_sharedData->m_depthOffState.get());
}

void TextureEffect::drawQuad(std::span<const Input> inputs)
{
    for (unsigned slot = 0; slot < inputs.size(); ++slot) {
        if (inputs[slot].texture)
            inputs[slot].texture->bind(slot);
        if (inputs[slot].sampler)
            inputs[slot].sampler->bind(slot);
    }

    s_sharedData->m_vertexBuffer->bind(0);
    g_renderer->getContext()->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLESTRIP);
    g_renderer->getContext()->Draw(4, 0);
    s_sharedData->m_vertexBuffer->unbind(0);

    for (unsigned slot = 0; slot < inputs.size(); ++slot) {
        if (inputs[slot].texture)
            inputs[slot].texture->unbind(slot);
        if (inputs[slot].sampler)
            inputs[slot].sampler->unbind(slot);
    }
}

void TextureEffect::drawPass(TextureEffectType type, RenderTarget* target, std::span<const Input> inputs)
{
    Shader* shader = getShader(type);
    if (!shader || !target)
        return;
    shader->bind(s_sharedData->m_vertexDeclaration.get());
    g_renderer->pushRenderTarget(target);
    bindPassConstants(Matrix());
    declareQuad(Matrix());
    drawQuad(inputs);
    g_renderer->popRenderTarget();
    shader->unbind();
}

Texture* TextureEffect::drawBlurChain(Texture* input, const RenderTargetResource& vertical,
                                      const RenderTargetResource& horizontal, int32_t cycles)
{
    constexpr int32_t maxCycles = 32;
    for (int32_t i = 0; i < std::min(cycles, maxCycles); ++i) {
        const Input rows = getPassInput(i == 0 ? input : getTexture(horizontal), vertical);
        drawPass(TextureEffectType::HorizontalBlur, vertical.getRenderTarget(), {&rows, 1});
        const Input columns = getPassInput(getTexture(vertical), horizontal);
        drawPass(TextureEffectType::VerticalBlur, horizontal.getRenderTarget(), {&columns, 1});
    }
    return getTexture(horizontal);
}

TextureEffect::Input TextureEffect::getPassInput(Texture* texture, const RenderTargetResource& resource) const
{
    const RenderTarget* target = resource.getRenderTarget();
    const bool texelForTexel = texture && target && texture->getWidth() == target->getWidth() &&
                               texture->getHeight() == target->getHeight() &&
                               m_uvRect.m_value == Vec4(0.0f, 0.0f, 1.0f, 1.0f);
    return {texture, (texelForTexel ? s_sharedData->m_pointSampler : s_sharedData->m_clampSampler).get()};
}

void TextureEffect::drawFinalPass(FxRenderContext& context, TextureEffectType type,
                                  std::span<const Input> inputs)
{
    Shader* shader = getShader(type);
    if (!shader)
        return;
    prepareVertices(context);
    shader->bind(s_sharedData->m_vertexDeclaration.get());
    bindPassConstants(getWorldViewProjection());
    bindFinalStates();
    declareQuad(getWorldViewProjection());
    drawQuad(inputs);
    shader->unbind();
}

void TextureEffect::drawFinalPass(FxRenderContext& context, TextureEffectType type, Texture* texture)
{
    const Input inputs[] = {{texture, getWrapSampler()}};
    drawFinalPass(context, type, inputs);
}

} // namespace helvantine
