// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/effects2d/EffectConstants.h>
#include <helvantine/effects2d/TextureEffect.h>
#include <helvantine/resource/ProgramBindings.h>
#include <helvantine/resource/ShaderResource.h>

namespace helvantine
{

/// A quad that a shader of the project draws. Without a shader that compiles it draws nothing.
class HELVANTINE_FX_API RayMarchingEffect : public TextureEffect
{
    HELVANTINE_PLUGIN_CLASS(RayMarchingEffect)

    static const ProgramBindings s_programBindings; ///< what the shader finds

    RayMarchingEffect();
    ~RayMarchingEffect() override;

    void onPropertyChanged(PropertyBase* property) override;
    void onRender(FxRenderContext& context) override;

private:
    SmartRef<PropertyGroup> m_raymarchingGroup;
    StringProperty m_shaderProperty;
    SmartRef<ShaderResource> m_shaderResource;
    EffectConstantBuffer m_constantBuffer; ///< 16 bytes, which nothing fills or binds
};

} // namespace helvantine
