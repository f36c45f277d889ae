// SPDX-License-Identifier: MIT
#include "SilkEffect.h"

#include "SilkShader.h"

#include <helvantine/core/Report.h>
#include <helvantine/object/AddProperties.h>
#include <helvantine/renderer/RenderTarget.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/resource/ResourceManager.h>

#include <algorithm>

namespace silk
{

using namespace helvantine;

HELVANTINE_PLUGIN_RECORDS(SilkEffect, Effect, PluginEffect, "5B0C2E5A-7D11-4E0C-9A3F-0B6C51D87A01",
                          "Silk/Silk", "Silk", true)

namespace
{

/// As the shader declares them.
struct Constants
{
    Vec4 colors[PaletteResource::s_maxColors];
    float colorCount;
    float aspect;
    float time; ///< seconds
    float folds;
    float glow;
    float unused[3];
};
static_assert(sizeof(Constants) == 160);

constexpr float s_blendFactor[4] = {1.0f, 1.0f, 1.0f, 1.0f};
constexpr unsigned s_allSamples = 0xFFFFFF;

RasterizerState* bothSides()
{
    D3D11_RASTERIZER_DESC desc = {};
    desc.FillMode = D3D11_FILL_SOLID;
    desc.CullMode = D3D11_CULL_NONE;
    desc.DepthClipEnable = 1;
    return getRasterizerState(desc);
}

DepthStencilState* withoutDepth()
{
    D3D11_DEPTH_STENCIL_DESC desc = {};
    desc.DepthFunc = D3D11_COMPARISON_ALWAYS;
    return getDepthStencilState(desc);
}

Shader* compile()
{
    ShaderFromMemoryParams params;
    params.vertexSource = params.pixelSource = g_shaderText;
    params.vertexEntry = "vertexMain";
    params.pixelEntry = "pixelMain";
    Shader* shader = createShaderFromMemory(params);
    if (!shader)
        reportProblem("silk", params.errorText);
    return shader;
}

} // namespace

SilkEffect::SilkEffect()
    : m_group(new PropertyGroup(this, "Silk")), m_palette(this, KindResource, "Palette"),
      m_folds(this, KindFloat, "Folds"), m_speed(this, KindFloat, "Speed"), m_glow(this, KindFloat, "Glow")
{
    m_folds.setDefault(1.2f);
    m_speed.setDefault(1.0f);
    m_glow.setDefault(0.5f);
    addProperties(*m_group, {&m_palette, &m_folds, &m_speed, &m_glow});
    addInputGroup(m_group.get());
}

void SilkEffect::onInit()
{
    Effect::onInit();
    prepare();
}

void SilkEffect::onPropertyChanged(PropertyBase* property)
{
    Effect::onPropertyChanged(property);
    if (property == &m_palette)
        m_paletteResource = findResourceOfType<PaletteResource>(m_palette.m_value);
}

/// Makes what drawing needs with the renderer that is there: while a document is loaded, or, if the renderer
/// has come later or another has taken its place, at the first drawing. False if nothing can be drawn.
bool SilkEffect::prepare()
{
    BlendState* blendState = getBlendState(BlendMode::Solid); // another renderer has another one
    if (blendState && blendState != m_blendState.get()) {
        m_blendState = blendState;
        m_rasterizerState = bothSides();
        m_depthState = withoutDepth();
        m_constants = new ConstantBuffer;
        m_constants->create(sizeof(Constants));
        m_shader = compile();
    }
    return blendState && m_shader;
}

void SilkEffect::onRender(FxRenderContext& context)
{
    if (!m_paletteResource || m_paletteResource->getColors().empty() || !prepare())
        return;
    writeConstants(context.relativeTime);
    draw(3);
}

/// One vertex makes no triangle, but all that drawing one takes.
void SilkEffect::onWarmUp(FxWarmUpContext&)
{
    if (prepare())
        draw(1);
}

void SilkEffect::draw(unsigned vertexCount)
{
    m_constants->bindVS(0);
    m_constants->bindPS(0);
    m_blendState->bind(s_blendFactor, s_allSamples);
    m_rasterizerState->bind();
    m_depthState->bind(0);
    m_shader->bind(nullptr);
    g_renderer->getContext()->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
    g_renderer->getContext()->Draw(vertexCount, 0);
    m_shader->unbind();
}

void SilkEffect::writeConstants(float time)
{
    auto* constants = static_cast<Constants*>(m_constants->map());
    if (!constants)
        return;
    const std::vector<Vec4>& colors = m_paletteResource->getColors();
    std::copy(colors.begin(), colors.end(), constants->colors);
    constants->colorCount = static_cast<float>(colors.size());
    if (const RenderTarget* target = g_renderer->getRenderTarget())
        constants->aspect = static_cast<float>(target->getWidth()) / static_cast<float>(target->getHeight());
    constants->time = time * m_speed.m_value;
    constants->folds = m_folds.m_value;
    constants->glow = m_glow.m_value;
    m_constants->unmap();
}

} // namespace silk
