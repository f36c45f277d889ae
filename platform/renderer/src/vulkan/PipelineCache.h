// SPDX-License-Identifier: MIT
#pragma once

#include "shader/ShaderProgram.h"
#include "vulkan/PipelineFile.h"
#include "vulkan/PipelineKey.h"
#include "vulkan/VulkanApi.h"

#include <map>
#include <memory>
#include <unordered_map>
#include <vector>

namespace helvantine
{

class VulkanBlendState;
class VulkanContext;
class VulkanProgram;
class VulkanVertexDeclaration;

VkDescriptorType chooseDescriptorType(ShaderBindingKind kind);

/// Programs, layouts and pipelines of a renderer, each made once.
///
/// A program lives as long as a shader holds it and takes its pipelines with it; layouts stay. The driver's
/// own cache is kept in a file between runs.
class PipelineCache
{
public:
    explicit PipelineCache(VulkanContext& context);
    ~PipelineCache();
    PipelineCache(const PipelineCache&) = delete;
    PipelineCache& operator=(const PipelineCache&) = delete;

    bool create();
    void save(); ///< writes the driver's cache to its file if it has grown

    /// The device's side of a compiled program; null with the reason in the report.
    std::shared_ptr<const VulkanProgram> getProgram(const ShaderProgramPtr& program);
    void removeProgram(uint32_t id); ///< it is being deleted: its pipelines go

    struct Layout
    {
        VkDescriptorSetLayout set = VK_NULL_HANDLE;
        VkPipelineLayout pipeline = VK_NULL_HANDLE;
        bool isPushed = true; ///< false: draws need a descriptor set
    };

    /// The layout of a set with these bindings; null handles when it can't be made.
    Layout getLayout(const std::vector<ShaderBinding>& bindings);

    /// What a key needs beside its numbers. declaration and blend may be null.
    struct Parts
    {
        const VulkanProgram* program = nullptr;
        const VulkanVertexDeclaration* declaration = nullptr;
        const VulkanBlendState* blend = nullptr;
    };

    /// The pipeline of a key, made at its first use; null if the device refuses it.
    VkPipeline get(const PipelineKey& key, const Parts& parts);

private:
    Layout createLayout(const std::vector<ShaderBinding>& bindings);

    VulkanContext& m_context;
    PipelineFile m_file;
    VkPipelineCache m_driverCache = VK_NULL_HANDLE;
    std::map<Hash128, std::weak_ptr<const VulkanProgram>> m_programs;
    std::map<std::vector<uint16_t>, Layout> m_layouts; ///< by number, kind and stages of each binding
    std::unordered_map<PipelineKey, VkPipeline, PipelineKeyHash> m_pipelines;
    uint32_t m_lastProgramId = 0;
    size_t m_storedSize = 0; ///< of the driver's cache as it was read
};

} // namespace helvantine
