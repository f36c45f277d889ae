// SPDX-License-Identifier: MIT
#include <helvantine/effects2d/ClearScreenEffect.h>

#include <helvantine/object/AddProperties.h>
#include <helvantine/renderer/Renderer.h>

namespace helvantine
{

ClearScreenEffect::ClearScreenEffect()
    : m_attributesGroup(new PropertyGroup(this, "Attributes")), m_color(this, KindColor, "Color"),
      m_depth(this, KindFloat, "Depth"), m_stencil(this, KindInt, "Stencil"),
      m_clearColor(this, KindBool, "Clear Color Target"), m_clearDepth(this, KindBool, "Clear Depth Target")
{
    m_color.setDefault(Vec4(0.0f, 0.0f, 0.0f, 1.0f));
    m_depth.setDefault(1.0f);
    m_stencil.setDefault(0);
    m_clearColor.setDefault(true);
    m_clearDepth.setDefault(true);
    addProperties(*m_attributesGroup, {&m_color, &m_depth, &m_stencil, &m_clearColor, &m_clearDepth});
    addInputGroup(m_attributesGroup.get());
}

ClearScreenEffect::~ClearScreenEffect() = default;

void ClearScreenEffect::onRender(FxRenderContext&)
{
    if (!g_renderer)
        return;
    unsigned flags = 0;
    if (m_clearColor.m_value)
        flags |= Renderer::ClearColor;
    if (m_clearDepth.m_value)
        flags |= Renderer::ClearDepth;
    g_renderer->clear(flags, m_color.m_value, m_depth.m_value, static_cast<unsigned char>(m_stencil.m_value));
}

} // namespace helvantine
