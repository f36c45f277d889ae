// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/renderer/Shader.h>
#include <helvantine/resource/Resource.h>

namespace helvantine
{

/// A shader compiled from the text of a project. Temporary: it is published by the node that compiles it.
class HELVANTINE_FX_API ShaderResource : public Resource
{
    HELVANTINE_PLUGIN_CLASS(ShaderResource)

    /// How many lights of a kind the text must have room for; given to it as macros.
    static constexpr int s_pointLightCountMax = 16;      ///< "POINTLIGHT_COUNT_MAX"
    static constexpr int s_directionalLightCountMax = 1; ///< "DIRLIGHT_COUNT_MAX"
    static constexpr int s_spotLightCountMax = 8;        ///< "SPOTLIGHT_COUNT_MAX"

    ShaderResource();
    ~ShaderResource() override;

    /// What create compiles, for those who want it compiled before.
    static ShaderFromMemoryParams makeParams(const char* source, const char* vertexEntry,
                                             const char* pixelEntry);

    /// Compiles one text as both stages. Returns the compiler's words, empty on success. A failure drops the
    /// shader that was there.
    std::string create(const char* source, const char* vertexEntry, const char* pixelEntry);

    /// What create would return, without a renderer.
    static std::string check(const char* source, const char* vertexEntry, const char* pixelEntry);

    /// Null until a create succeeds.
    Shader* getShader() const { return m_shader.get(); }

private:
    SmartRef<Shader> m_shader;
};

} // namespace helvantine
