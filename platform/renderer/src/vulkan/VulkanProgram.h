// SPDX-License-Identifier: MIT
#pragma once

#include "shader/ShaderProgram.h"
#include "vulkan/PipelineCache.h"
#include "vulkan/VulkanApi.h"

namespace helvantine
{

class VulkanContext;
class VulkanDevice;

/// Null, with the reason in the report, if the device refuses it.
VkShaderModule createShaderModule(VulkanDevice& device, const std::vector<uint32_t>& words);

/// A compiled program on the device: its two modules and the layout of its bindings.
class VulkanProgram
{
public:
    VulkanProgram(VulkanContext& context, ShaderProgramPtr program, uint32_t id);
    ~VulkanProgram(); ///< takes its pipelines with it
    VulkanProgram(const VulkanProgram&) = delete;
    VulkanProgram& operator=(const VulkanProgram&) = delete;

    bool create();

    bool comparesTexels() const { return m_comparesTexels; }
    const ShaderProgram& getProgram() const { return *m_program; }
    uint32_t getId() const { return m_id; } ///< never given twice
    VkShaderModule getVertexModule() const { return m_vertexModule; }
    VkShaderModule getPixelModule() const { return m_pixelModule; } ///< null for one that draws depth alone
    const PipelineCache::Layout& getLayout() const
    {
        return m_layout;
    } ///< shared by programs with equal bindings

private:
    VulkanContext& m_context;
    ShaderProgramPtr m_program;
    uint32_t m_id;
    bool m_comparesTexels;
    VkShaderModule m_vertexModule = VK_NULL_HANDLE;
    VkShaderModule m_pixelModule = VK_NULL_HANDLE;
    PipelineCache::Layout m_layout;
};

} // namespace helvantine
