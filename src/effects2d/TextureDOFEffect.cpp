// SPDX-License-Identifier: MIT
#include <helvantine/effects2d/TextureDOFEffect.h>

#include <helvantine/effects2d/TextureEffectSharedData.h>
#include <helvantine/object/AddProperties.h>
#include <helvantine/renderer/Texture.h>
#include <helvantine/resource/ResourceManager.h>

namespace helvantine
{

namespace
{

/// The second and the third share their x, deliberately.
constexpr Vec2 s_taps[] = {
    {-0.326212f, -0.40581f}, {-0.840144f, -0.07358f}, {-0.840144f, 0.457137f}, {-0.203345f, 0.620716f},
    {0.96234f, -0.194983f},  {0.473434f, -0.480026f}, {0.519456f, 0.767022f},  {0.185461f, -0.893124f},
    {0.507431f, 0.064425f},  {0.89642f, 0.412458f},   {-0.32194f, -0.932615f}, {-0.791559f, -0.59771f},
};

} // namespace

TextureDOFEffect::TextureDOFEffect()
    : m_dofGroup(new PropertyGroup(this, "DOF")), m_type(this, KindEnum, "Type"),
      m_focalWidth(this, KindFloat, "Focal Width"), m_focalDistance(this, KindFloat, "Focal Distance"),
      m_coc(this, KindFloat, "COC"), m_depthSourceProperty(this, KindResource, "Depth Source"),
      m_blurSourceProperty(this, KindResource, "Blur Source")
{
    m_type.setDefault(DownsampleBlur);
    m_type.m_enumLabels = {{DownsampleBlur, "Downsample Blur"}, {DiscBlur, "Disc Blur"}};
    m_focalWidth.setDefault(20.0f);
    m_focalDistance.setDefault(10.0f);
    m_coc.setDefault(10.0f);
    addProperties(*m_dofGroup, {&m_type, &m_depthSourceProperty, &m_blurSourceProperty, &m_focalWidth,
                                &m_focalDistance, &m_coc});
    addInputGroup(m_dofGroup.get());
}

TextureDOFEffect::~TextureDOFEffect() = default;

void TextureDOFEffect::onPropertyChanged(PropertyBase* property)
{
    TextureEffect::onPropertyChanged(property);
    resolveTarget(*property, m_depthSourceProperty, m_depthSource);
    resolveTarget(*property, m_blurSourceProperty, m_blurSource);
}

void TextureDOFEffect::onRender(FxRenderContext& context)
{
    if (!m_depthSource || !m_renderTargetResource || (m_type.m_value == DownsampleBlur && !m_blurSource))
        return;
    Texture* source = getSourceTexture();
    if (!source || !prepareSharedData())
        return;
    m_pointSampler = s_sharedData->m_pointSampler;
    const bool disc = m_type.m_value == DiscBlur;
    Shader* shader = getShader(disc ? TextureEffectType::DOF : TextureEffectType::DOFBlurBuffer);
    if (!shader)
        return;
    writeFullTargetQuad();
    shader->bind(s_sharedData->m_vertexDeclaration.get());
    bindPassConstants(Matrix());
    writeConstants(context, *source);
    m_constantBuffer.bindPS();
    bindPassStates();
    declareQuad(Matrix());
    if (disc)
        drawDiscBlur(source);
    else
        drawDownsampleBlur(source);
    shader->unbind();
}

void TextureDOFEffect::drawVariants(FxWarmUpContext& context)
{
    forEachValue(context, m_type, 2, [&] { onRender(context); });
}

void TextureDOFEffect::writeConstants(const FxRenderContext& context, const Texture& source)
{
    Constants constants = {.farClip = context.farPlane,
                           .focalDistance = m_focalDistance.m_value,
                           .focalWidth = m_focalWidth.m_value,
                           .coc = m_coc.m_value,
                           .filterTaps = {}};
    const float width = static_cast<float>(source.getWidth());
    const float height = static_cast<float>(source.getHeight());
    for (std::size_t i = 0; i < tapCount; ++i)
        constants.filterTaps[i] = Vec4(s_taps[i].x * 0.5f / width, s_taps[i].y * 0.5f / height, 0.0f, 0.0f);
    m_constantBuffer.write(constants);
}

void TextureDOFEffect::drawDiscBlur(Texture* source)
{
    // The last sampler comes without a texture: through it the taps are filtered, while the centre isn't.
    const Input inputs[] = {{source, m_pointSampler.get()},
                            {getTexture(*m_depthSource), m_pointSampler.get()},
                            {nullptr, s_sharedData->m_clampSampler.get()}};
    drawQuad(inputs);
}

void TextureDOFEffect::drawDownsampleBlur(Texture* source)
{
    const Input inputs[] = {
        {source, m_pointSampler.get()},
        {m_blurSource ? getTexture(*m_blurSource) : nullptr, s_sharedData->m_clampSampler.get()},
        {getTexture(*m_depthSource), m_pointSampler.get()}};
    drawQuad(inputs);
}

} // namespace helvantine
