// SPDX-License-Identifier: MIT
#include <helvantine/resource/ShaderResource.h>

#include <helvantine/core/Text.h>

namespace helvantine
{

namespace
{

constexpr const char* noSource = "Invalid shader code";

} // namespace

ShaderResource::ShaderResource() = default;

ShaderResource::~ShaderResource() = default;

ShaderFromMemoryParams ShaderResource::makeParams(const char* source, const char* vertexEntry,
                                                  const char* pixelEntry)
{
    ShaderFromMemoryParams params;
    params.vertexSource = source;
    params.vertexEntry = vertexEntry;
    params.pixelSource = source;
    params.pixelEntry = pixelEntry;
    params.macros = {{"POINTLIGHT_COUNT_MAX", formatString("%d", s_pointLightCountMax)},
                     {"DIRLIGHT_COUNT_MAX", formatString("%d", s_directionalLightCountMax)},
                     {"SPOTLIGHT_COUNT_MAX", formatString("%d", s_spotLightCountMax)}};
    return params;
}

std::string ShaderResource::create(const char* source, const char* vertexEntry, const char* pixelEntry)
{
    if (!*source) {
        m_shader = nullptr;
        return noSource;
    }
    ShaderFromMemoryParams params = makeParams(source, vertexEntry, pixelEntry);
    m_shader = createShaderFromMemory(params);
    return params.errorText;
}

std::string ShaderResource::check(const char* source, const char* vertexEntry, const char* pixelEntry)
{
    if (!*source)
        return noSource;
    ShaderFromMemoryParams params = makeParams(source, vertexEntry, pixelEntry);
    checkShader(params);
    return params.errorText;
}

} // namespace helvantine
