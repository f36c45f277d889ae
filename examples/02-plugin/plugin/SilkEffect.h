// SPDX-License-Identifier: MIT
#pragma once

#include "PaletteResource.h"

#include <helvantine/object/Property.h>
#include <helvantine/renderer/BlendState.h>
#include <helvantine/renderer/ConstantBuffer.h>
#include <helvantine/renderer/DepthStencilState.h>
#include <helvantine/renderer/RasterizerState.h>
#include <helvantine/renderer/Shader.h>
#include <helvantine/timeline/Effect.h>

namespace silk
{

/// Fills the target with flowing silk in the colours of a palette. Without a palette it draws nothing.
class SilkEffect : public helvantine::Effect
{
    HELVANTINE_PLUGIN_CLASS(SilkEffect)

    SilkEffect();

    void onInit() override;
    void onPropertyChanged(helvantine::PropertyBase* property) override;
    void onRender(helvantine::FxRenderContext& context) override;
    void onWarmUp(helvantine::FxWarmUpContext& context) override;

private:
    bool prepare();
    void writeConstants(float time);
    void draw(unsigned vertexCount);

    helvantine::SmartRef<helvantine::PropertyGroup> m_group;
    helvantine::StringProperty m_palette; ///< the text of a PaletteResource's id
    helvantine::FloatProperty m_folds;    ///< how many lie across the picture
    helvantine::FloatProperty m_speed;    ///< 1 as time goes
    helvantine::FloatProperty m_glow;     ///< light along the folds, 0 to 1
    helvantine::SmartRef<PaletteResource> m_paletteResource;

    // Made by one renderer; null while there is none.
    helvantine::SmartRef<helvantine::BlendState> m_blendState;
    helvantine::SmartRef<helvantine::RasterizerState> m_rasterizerState;
    helvantine::SmartRef<helvantine::DepthStencilState> m_depthState;
    helvantine::SmartRef<helvantine::ConstantBuffer> m_constants;
    helvantine::SmartRef<helvantine::Shader> m_shader;
};

} // namespace silk
