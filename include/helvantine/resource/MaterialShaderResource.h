// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/renderer/Shader.h>
#include <helvantine/resource/Resource.h>

namespace helvantine
{

/// The three shaders that a material is drawn with, one for each pass. Temporary, as ShaderResource is.
class HELVANTINE_FX_API MaterialShaderResource : public Resource
{
public:
    static const TypeInfo m_typeInfo;
    static PluginInfo s_plugininfo;

    MaterialShaderResource();
    ~MaterialShaderResource() override;

    const TypeInfo* getTypeInfo() const override { return &m_typeInfo; }
    bool isOfType(const TypeInfo* type) const override;
    const PluginInfo* getPluginInfo() const override { return &s_plugininfo; }

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
