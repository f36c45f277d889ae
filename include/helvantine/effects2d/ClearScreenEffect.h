// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/Property.h>
#include <helvantine/timeline/Effect.h>

namespace helvantine
{

/// Clears the current render target: that of a RenderTargetEffect above it, else the frame's.
class HELVANTINE_FX_API ClearScreenEffect : public Effect
{
    HELVANTINE_PLUGIN_CLASS(ClearScreenEffect)

    ClearScreenEffect();
    ~ClearScreenEffect() override;

    void onRender(FxRenderContext& context) override;

private:
    SmartRef<PropertyGroup> m_attributesGroup;
    Vec4Property m_color;
    FloatProperty m_depth;
    IntProperty m_stencil; ///< the low byte counts
    BoolProperty m_clearColor;
    BoolProperty m_clearDepth; ///< and stencil
};

} // namespace helvantine
