// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/effects2d/EffectConstants.h>
#include <helvantine/effects2d/TextureEffect.h>
#include <helvantine/resource/ShaderResource.h>

namespace helvantine
{

/// A quad that a shader of the project draws. The shader finds the common constants of texture effects at b0 of both
/// stages, with the effect's own time, and the texture in slot 0. Without a shader that compiles it draws nothing.
class HELVANTINE_FX_API RayMarchingEffect : public TextureEffect
{
    HELVANTINE_PLUGIN_CLASS(RayMarchingEffect)

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
