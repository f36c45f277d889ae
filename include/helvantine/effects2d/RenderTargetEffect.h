// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/Property.h>
#include <helvantine/resource/RenderTargetResource.h>
#include <helvantine/timeline/Effect.h>

namespace helvantine
{

/// What RenderTargetEffect and CopyBackbufferEffect share: a property that names a render target.
class HELVANTINE_FX_API RenderTargetReference : public Effect
{
public:
    void onPropertyChanged(PropertyBase* property) override;

    /// As the property named it when it changed last; null for none.
    RenderTargetResource* getRenderTargetResource() const { return m_renderTargetResource.get(); }

protected:
    RenderTargetReference();
    ~RenderTargetReference() override;

private:
    SmartRef<PropertyGroup> m_attributesGroup;
    StringProperty m_renderTargetProperty;
    SmartRef<RenderTargetResource> m_renderTargetResource;
};

/// Lets its children draw into a render target; without one they draw where it stands itself.
class HELVANTINE_FX_API RenderTargetEffect : public RenderTargetReference
{
    HELVANTINE_PLUGIN_CLASS(RenderTargetEffect)

    void onPreRender(FxRenderContext& context) override;
    void onPostRender(FxRenderContext& context) override;

private:
    RenderTarget* getRenderTarget() const; ///< null: nothing to push
};

/// Holds a render target and, deliberately, does nothing with it: documents may hold the class.
class HELVANTINE_FX_API CopyBackbufferEffect : public RenderTargetReference
{
    HELVANTINE_PLUGIN_CLASS(CopyBackbufferEffect)
};

} // namespace helvantine
