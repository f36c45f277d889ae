// SPDX-License-Identifier: MIT
#include <helvantine/resource/MaterialShaderResource.h>

namespace helvantine
{

MaterialShaderResource::MaterialShaderResource() = default;

MaterialShaderResource::~MaterialShaderResource() = default;

bool MaterialShaderResource::create(Shader* first, Shader* second, Shader* third)
{
    m_shader0 = first;
    m_shader1 = second;
    m_shader2 = third;
    return true;
}

} // namespace helvantine
