// SPDX-License-Identifier: MIT
#include "vulkan/VulkanProgram.h"

#include "vulkan/FrameRing.h"
#include "vulkan/VulkanContext.h"

#include <algorithm>

namespace helvantine
{

VkShaderModule createShaderModule(VulkanDevice& device, const std::vector<uint32_t>& words)
{
    VkShaderModuleCreateInfo info{VK_STRUCTURE_TYPE_SHADER_MODULE_CREATE_INFO};
    info.codeSize = words.size() * sizeof(uint32_t);
    info.pCode = words.data();
    VkShaderModule module = VK_NULL_HANDLE;
    return device.check(vkCreateShaderModule(device.getHandle(), &info, nullptr, &module),
                        "create a shader module")
               ? module
               : VK_NULL_HANDLE;
}

VulkanProgram::VulkanProgram(VulkanContext& context, ShaderProgramPtr program, uint32_t id)
    : m_context(context), m_program(std::move(program)), m_id(id),
      m_comparesTexels(std::any_of(m_program->bindings.begin(), m_program->bindings.end(),
                                   [](const ShaderBinding& one) { return one.comparison; }))
{
}

VulkanProgram::~VulkanProgram()
{
    m_context.pipelines().removeProgram(m_id);
    m_context.frames().destroyLater(VK_OBJECT_TYPE_SHADER_MODULE, m_vertexModule);
    m_context.frames().destroyLater(VK_OBJECT_TYPE_SHADER_MODULE, m_pixelModule);
}

bool VulkanProgram::create()
{
    m_vertexModule = createShaderModule(m_context.device(), m_program->vertexWords);
    const bool hasPixels = !m_program->pixelWords.empty();
    if (hasPixels)
        m_pixelModule = createShaderModule(m_context.device(), m_program->pixelWords);
    m_layout = m_context.pipelines().getLayout(m_program->bindings);
    const VulkanDevice& device = m_context.device();
    device.setName(VK_OBJECT_TYPE_SHADER_MODULE, m_vertexModule, m_program->vertexEntry.c_str());
    device.setName(VK_OBJECT_TYPE_SHADER_MODULE, m_pixelModule, m_program->pixelEntry.c_str());
    return m_vertexModule && (m_pixelModule || !hasPixels) && m_layout.pipeline;
}

} // namespace helvantine
