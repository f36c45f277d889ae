// SPDX-License-Identifier: MIT
#include <helvantine/resource/ShaderResource.h>

#include <helvantine/core/Text.h>

namespace helvantine
{

ShaderResource::ShaderResource() = default;

ShaderResource::~ShaderResource() = default;

std::string ShaderResource::create(const char* source, const char* vertexEntry, const char* pixelEntry)
{
    ShaderFromMemoryParams params;
    params.vertexSource = source;
    params.vertexEntry = vertexEntry;
    params.pixelSource = source;
    params.pixelEntry = pixelEntry;
    if (params.vertexSource.empty()) {
        m_shader = nullptr;
        return "Invalid shader code";
    }
    params.macros = {{"POINTLIGHT_COUNT_MAX", formatString("%d", s_pointLightCountMax)},
                     {"DIRLIGHT_COUNT_MAX", formatString("%d", s_directionalLightCountMax)},
                     {"SPOTLIGHT_COUNT_MAX", formatString("%d", s_spotLightCountMax)}};
    m_shader = createShaderFromMemory(params);
    return params.errorText;
}

} // namespace helvantine
