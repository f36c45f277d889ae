// SPDX-License-Identifier: MIT
#include <helvantine/effects2d/TextureBlendEffect.h>

#include <helvantine/object/AddProperties.h>

#include <iterator>

namespace helvantine
{

namespace
{

using Type = TextureEffectType;

struct BlendType
{
    const char* label;
    Type program;
};

/// By the values of "Blend Type". "Darken" and "Lighten" stand the other way round than their programs, deliberately.
constexpr BlendType s_blendTypes[] = {
    {"Mix", Type::BlendLinear},           {"Darken", Type::BlendDarken},
    {"Lighten", Type::BlendLighten},      {"Add", Type::BlendAdd},
    {"Subtract", Type::BlendSubtract},    {"Screen", Type::BlendScreen},
    {"Overlay", Type::BlendOverlay},      {"Color Dodge", Type::BlendColorDodge},
    {"Color Burn", Type::BlendColorBurn}, {"Multiply", Type::BlendMultiply},
};

} // namespace

TextureBlendEffect::TextureBlendEffect()
    : TwoTextureEffect("Texture-2", "UV-Rect-2"), m_blendGroup(new PropertyGroup(this, "Blend")),
      m_blendType(this, KindEnum, "Blend Type"), m_threshold(this, KindFloat, "Threshold")
{
    m_blendType.setDefault(0);
    for (int32_t i = 0; i < std::ssize(s_blendTypes); ++i)
        m_blendType.m_enumLabels[i] = s_blendTypes[i].label;
    m_threshold.setDefault(0.5f);
    addProperties(*m_blendGroup, {&m_blendType, &m_threshold});
    addInputGroup(m_blendGroup.get());
}

TextureBlendEffect::~TextureBlendEffect() = default;

void TextureBlendEffect::bindEffectData(FxRenderContext&)
{
    m_constantBuffer.write({.threshold = m_threshold.m_value, .unused = {}});
    m_constantBuffer.bindPS();
    bindSecondTexture();
}

TextureEffectType TextureBlendEffect::getEffectType()
{
    const int32_t type = m_blendType.m_value;
    return type >= 0 && type < std::ssize(s_blendTypes) ? s_blendTypes[type].program : Type::BlendLinear;
}

void TextureBlendEffect::drawVariants(FxWarmUpContext& context)
{
    forEachValue(context, m_blendType, static_cast<int32_t>(std::size(s_blendTypes)),
                 [&] { onRender(context); });
}

} // namespace helvantine
