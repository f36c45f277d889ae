// SPDX-License-Identifier: MIT
#include <helvantine/effects2d/RenderTargetEffect.h>

#include <helvantine/object/AddProperties.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/resource/ResourceManager.h>

namespace helvantine
{

RenderTargetReference::RenderTargetReference()
    : m_attributesGroup(new PropertyGroup(this, "Attributes")),
      m_renderTargetProperty(this, KindResource, "Render Target")
{
    addProperties(*m_attributesGroup, {&m_renderTargetProperty});
    addInputGroup(m_attributesGroup.get());
}

RenderTargetReference::~RenderTargetReference() = default;

void RenderTargetReference::onPropertyChanged(PropertyBase* property)
{
    PropertyContext::onPropertyChanged(property);
    if (property->m_id == m_renderTargetProperty.m_id)
        m_renderTargetResource = findResourceOfType<RenderTargetResource>(m_renderTargetProperty.m_value);
}

RenderTarget* RenderTargetEffect::getRenderTarget() const
{
    RenderTargetResource* resource = getRenderTargetResource();
    return resource && g_renderer ? resource->getRenderTarget() : nullptr;
}

void RenderTargetEffect::onPreRender(FxRenderContext&)
{
    // A resource that could not be made has no target. Pushing null would leave the stack as it is, and the
    // pop behind the children would take what isn't ours.
    if (getRenderTarget())
        g_renderer->pushRenderTarget(getRenderTarget());
}

void RenderTargetEffect::onPostRender(FxRenderContext&)
{
    if (getRenderTarget())
        g_renderer->popRenderTarget();
}

} // namespace helvantine
