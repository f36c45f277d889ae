// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/renderer/Shader.h>
#include <helvantine/resource/Resource.h>

namespace helvantine
{

/// The three shaders that a material is drawn with, one for each pass. Temporary, as ShaderResource is.
class HELVANTINE_FX_API MaterialShaderResource : public Resource
{
    HELVANTINE_PLUGIN_CLASS(MaterialShaderResource)

    MaterialShaderResource();
    ~MaterialShaderResource() override;

    /// Keeps the three as they are, null included. Always true.
    bool create(Shader* first, Shader* second, Shader* third);

    Shader* getShader0() const { return m_shader0.get(); }
    Shader* getShader1() const { return m_shader1.get(); }
    Shader* getShader2() const { return m_shader2.get(); }

private:
    SmartRef<Shader> m_shader0;
    SmartRef<Shader> m_shader1;
    SmartRef<Shader> m_shader2;
};

} // namespace helvantine
