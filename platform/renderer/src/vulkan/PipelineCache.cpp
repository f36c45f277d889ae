// SPDX-License-Identifier: MIT
#include "vulkan/PipelineCache.h"

#include "vulkan/FrameRing.h"
#include "vulkan/PipelineBuilder.h"
#include "vulkan/VulkanContext.h"
#include "vulkan/VulkanProgram.h"
#include "vulkan/VulkanShader.h"

#include <cstring>

namespace helvantine
{

size_t PipelineKeyHash::operator()(const PipelineKey& key) const
{
    static_assert(sizeof(PipelineKey) % sizeof(uint64_t) == 0);
    uint64_t words[sizeof(PipelineKey) / sizeof(uint64_t)];
    std::memcpy(words, &key, sizeof key);
    uint64_t hash = 14695981039346656037u;
    for (const uint64_t word : words)
        hash = (hash ^ word) * 1099511628211u;
    return static_cast<size_t>(hash ^ (hash >> 32));
}

PipelineCache::PipelineCache(VulkanContext& context) : m_context(context) {}

PipelineCache::~PipelineCache()
{
    const VkDevice device = m_context.device().getHandle();
    for (const auto& [key, pipeline] : m_pipelines)
        vkDestroyPipeline(device, pipeline, nullptr);
    for (const auto& [bindings, layout] : m_layouts) {
        vkDestroyPipelineLayout(device, layout.pipeline, nullptr);
        vkDestroyDescriptorSetLayout(device, layout.set, nullptr);
    }
    vkDestroyPipelineCache(device, m_driverCache, nullptr);
}

bool PipelineCache::create()
{
    m_file.open(getShaderCacheFolder(), m_context.device());
    const std::vector<uint8_t> stored = m_file.read();
    m_storedSize = stored.size();
    VkPipelineCacheCreateInfo info{VK_STRUCTURE_TYPE_PIPELINE_CACHE_CREATE_INFO};
    info.initialDataSize = stored.size();
    info.pInitialData = stored.data();
    VulkanDevice& device = m_context.device();
    return device.check(vkCreatePipelineCache(device.getHandle(), &info, nullptr, &m_driverCache),
                        "create the pipeline cache");
}

void PipelineCache::save()
{
    const VkDevice device = m_context.device().getHandle();
    size_t size = 0;
    if (m_context.device().isLost() || !m_driverCache ||
        vkGetPipelineCacheData(device, m_driverCache, &size, nullptr) != VK_SUCCESS || size <= m_storedSize)
        return;
    std::vector<uint8_t> content(size);
    if (vkGetPipelineCacheData(device, m_driverCache, &size, content.data()) == VK_SUCCESS) {
        content.resize(size);
        m_file.write(content);
    }
}

std::shared_ptr<const VulkanProgram> PipelineCache::getProgram(const ShaderProgramPtr& program)
{
    std::weak_ptr<const VulkanProgram>& known = m_programs[program->hash];
    if (auto shared = known.lock())
        return shared;
    auto made = std::make_shared<VulkanProgram>(m_context, program, ++m_lastProgramId);
    if (!made->create())
        return nullptr;
    RendererStats& stats = m_context.stats();
    ++(stats.frames == 0 ? stats.programsBeforeFirstFrame : stats.programsAfterFirstFrame);
    known = made;
    return made;
}

void PipelineCache::removeProgram(uint32_t id)
{
    std::erase_if(m_pipelines, [this, id](const auto& entry) {
        if (entry.first.program != id)
            return false;
        m_context.frames().destroyLater(VK_OBJECT_TYPE_PIPELINE, entry.second);
        return true;
    });
    std::erase_if(m_programs, [](const auto& entry) { return entry.second.expired(); });
}

PipelineCache::Layout PipelineCache::getLayout(const std::vector<ShaderBinding>& bindings)
{
    std::vector<uint16_t> key;
    for (const ShaderBinding& binding : bindings) {
        key.push_back(binding.binding);
        key.push_back(static_cast<uint16_t>(binding.kind));
        key.push_back(binding.stages);
    }
    const auto [entry, isNew] = m_layouts.try_emplace(std::move(key));
    if (isNew)
        entry->second = createLayout(bindings);
    return entry->second;
}

namespace
{

/// Exactly those that read it: a change of the vertex stage's constants is then none to the pixel stage, for
/// which software devices copy all they know about it.
VkShaderStageFlags chooseStages(const ShaderBinding& binding)
{
    return (binding.stages & vertexStageBit ? VK_SHADER_STAGE_VERTEX_BIT : 0) |
           (binding.stages & pixelStageBit ? VK_SHADER_STAGE_FRAGMENT_BIT : 0);
}

} // namespace

VkDescriptorType chooseDescriptorType(ShaderBindingKind kind)
{
    switch (kind) {
    case ShaderBindingKind::ConstantBuffer:
        return VK_DESCRIPTOR_TYPE_UNIFORM_BUFFER;
    case ShaderBindingKind::Texture:
        return VK_DESCRIPTOR_TYPE_SAMPLED_IMAGE;
    case ShaderBindingKind::Sampler:
        return VK_DESCRIPTOR_TYPE_SAMPLER;
    case ShaderBindingKind::StructuredBuffer:
        break;
    }
    return VK_DESCRIPTOR_TYPE_STORAGE_BUFFER;
}

PipelineCache::Layout PipelineCache::createLayout(const std::vector<ShaderBinding>& bindings)
{
    constexpr size_t mostPushed = 32; // on every device
    Layout layout;
    std::vector<VkDescriptorSetLayoutBinding> entries;
    for (const ShaderBinding& binding : bindings) {
        VkDescriptorSetLayoutBinding entry{};
        entry.binding = binding.binding;
        entry.descriptorType = chooseDescriptorType(binding.kind);
        entry.descriptorCount = 1;
        entry.stageFlags = chooseStages(binding);
        entries.push_back(entry);
    }
    VkDescriptorSetLayoutCreateInfo setInfo{VK_STRUCTURE_TYPE_DESCRIPTOR_SET_LAYOUT_CREATE_INFO};
    layout.isPushed = bindings.size() <= mostPushed;
    if (layout.isPushed)
        setInfo.flags = VK_DESCRIPTOR_SET_LAYOUT_CREATE_PUSH_DESCRIPTOR_BIT_KHR;
    setInfo.bindingCount = static_cast<uint32_t>(entries.size());
    setInfo.pBindings = entries.data();
    VulkanDevice& device = m_context.device();
    if (!device.check(vkCreateDescriptorSetLayout(device.getHandle(), &setInfo, nullptr, &layout.set),
                      "create a descriptor layout"))
        return {};
    VkPipelineLayoutCreateInfo info{VK_STRUCTURE_TYPE_PIPELINE_LAYOUT_CREATE_INFO};
    info.setLayoutCount = 1;
    info.pSetLayouts = &layout.set;
    if (!device.check(vkCreatePipelineLayout(device.getHandle(), &info, nullptr, &layout.pipeline),
                      "create a pipeline layout"))
        layout.pipeline = VK_NULL_HANDLE;
    return layout;
}

VkPipeline PipelineCache::get(const PipelineKey& key, const Parts& parts)
{
    const auto [entry, isNew] = m_pipelines.try_emplace(key, VK_NULL_HANDLE);
    if (isNew) {
        entry->second = buildPipeline(m_context, m_driverCache, key, parts);
        RendererStats& stats = m_context.stats();
        ++(stats.frames == 0 ? stats.pipelinesBeforeFirstFrame : stats.pipelinesAfterFirstFrame);
    }
    return entry->second;
}

} // namespace helvantine
