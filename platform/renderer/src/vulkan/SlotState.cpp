// SPDX-License-Identifier: MIT
#include "vulkan/SlotState.h"

#include "vulkan/ConstantBufferImpl.h"
#include "vulkan/DrawRecorder.h"
#include "vulkan/FrameRing.h"
#include "vulkan/PipelineCache.h"
#include "vulkan/TargetPass.h"
#include "vulkan/VulkanContext.h"
#include "vulkan/VulkanProgram.h"
#include "vulkan/VulkanRenderTarget.h"
#include "vulkan/VulkanSampler.h"
#include "vulkan/VulkanTexture.h"

#include <algorithm>

namespace helvantine
{

SlotState::SlotState(VulkanContext& context) : m_context(context) {}

SlotState::~SlotState() = default;

bool SlotState::create()
{
    m_defaultSampler = m_context.samplers().getDefault();
    return m_defaultSampler.filtered[0] != VK_NULL_HANDLE;
}

void SlotState::setConstants(ShaderStage stage, unsigned slot, ConstantBuffer* buffer)
{
    auto& slots = stage == ShaderStage::Vertex ? m_vertexConstants : m_pixelConstants;
    if (slot >= slots.size())
        return;
    (stage == ShaderStage::Vertex ? m_unknown.vertexConstants : m_unknown.pixelConstants) &= ~(1u << slot);
    if (slots[slot] == buffer)
        return;
    slots[slot] = buffer;
    m_context.draws().inputsChanged();
}

void SlotState::setTexture(unsigned slot, VulkanTexture* texture)
{
    if (slot >= m_textures.size())
        return;
    m_unknown.textures &= ~(1u << slot);
    if (m_textures[slot] == texture)
        return;
    // What is being drawn to can't be read.
    const VulkanRenderTarget* target = m_context.pass().getTarget();
    m_textures[slot] = target && target->owns(texture) ? nullptr : texture;
    m_context.draws().inputsChanged();
}

void SlotState::setSampler(unsigned slot, VulkanSampler* sampler)
{
    if (slot >= m_samplers.size())
        return;
    m_unknown.samplers &= ~(1u << slot);
    if (m_samplers[slot] == sampler)
        return;
    m_samplers[slot] = sampler;
    m_context.draws().inputsChanged();
}

void SlotState::unbindTexturesOf(const VulkanRenderTarget& target)
{
    for (SmartRef<VulkanTexture>& texture : m_textures) {
        if (target.owns(texture.get()))
            texture = nullptr;
    }
}

void SlotState::unbindAll()
{
    m_vertexConstants.fill(nullptr);
    m_pixelConstants.fill(nullptr);
    m_textures.fill(nullptr);
    m_samplers.fill(nullptr);
}

void SlotState::skipFrames()
{
    m_unknown = {UINT32_MAX, UINT32_MAX, UINT32_MAX, UINT32_MAX};
}

bool SlotState::isUnknown(const ShaderBinding& binding) const
{
    const uint32_t bit = 1u << binding.slot;
    switch (binding.kind) {
    case ShaderBindingKind::ConstantBuffer:
        return (binding.stages & vertexStageBit ? m_unknown.vertexConstants : m_unknown.pixelConstants) & bit;
    case ShaderBindingKind::Texture:
        return m_unknown.textures & bit;
    case ShaderBindingKind::Sampler:
        return m_unknown.samplers & bit;
    case ShaderBindingKind::StructuredBuffer:
        return false;
    }
    return false;
}

bool SlotState::needsBarriers(const VulkanProgram& program) const
{
    for (const ShaderBinding& binding : program.getProgram().bindings) {
        if (binding.kind != ShaderBindingKind::Texture)
            continue;
        VulkanTexture* texture = m_textures[binding.slot].get();
        if (texture && texture->getImage().use != ImageUse::Sampled)
            return true;
    }
    return false;
}

void SlotState::addBarriers(VkCommandBuffer commands)
{
    for (const SmartRef<VulkanTexture>& texture : m_textures) {
        if (texture && texture->getImage().image)
            m_context.barriers().add(commands, texture->getImage(), ImageUse::Sampled);
    }
}

ColorComparison SlotState::findColorComparison(const VulkanProgram& program) const
{
    ColorComparison comparison;
    for (const ShaderBinding& binding : program.getProgram().bindings) {
        if (!binding.comparison)
            continue;
        if (binding.kind == ShaderBindingKind::Texture) {
            VulkanTexture* texture = m_textures[binding.slot].get();
            if (texture && texture->getImage().image && !texture->getImage().comparable)
                comparison.textures |= static_cast<uint16_t>(1u << binding.slot);
        } else if (binding.textures & comparison.textures) { // samplers stand behind the textures
            const VulkanSampler* sampler = m_samplers[binding.slot].get();
            comparison.functions[binding.slot] =
                static_cast<uint8_t>(sampler ? sampler->getComparison() : D3D11_COMPARISON_NEVER);
        }
    }
    return comparison;
}

bool SlotState::push(VkCommandBuffer commands, const VulkanProgram& program)
{
    const std::vector<ShaderBinding>& bindings = program.getProgram().bindings;
    const PipelineCache::Layout& layout = program.getLayout();
    const bool isOther = m_pushedLayout != layout.pipeline;
    std::array<bool, maxShaderBindings> changed{};
    bool anyChanged = isOther;
    for (size_t i = 0; i < bindings.size(); ++i) {
        Content content;
        if (!findContent(bindings[i], content)) {
            m_pushedLayout = VK_NULL_HANDLE; // some of m_pushed never reaches the GPU
            return false;
        }
        changed[i] = isOther || content != m_pushed[i];
        anyChanged |= changed[i];
        m_pushed[i] = content;
    }
    m_pushedLayout = layout.pipeline;
    if (!anyChanged)
        return true;
    if (!layout.isPushed)
        return bindSet(commands, program);
    Writes writes;
    for (size_t i = 0; i < bindings.size(); ++i) {
        if (changed[i])
            writes.add(bindings[i], m_pushed[i], VK_NULL_HANDLE);
    }
    if (writes.count > 0)
        vkCmdPushDescriptorSetKHR(commands, VK_PIPELINE_BIND_POINT_GRAPHICS, layout.pipeline, 0, writes.count,
                                  writes.all.data());
    return true;
}

/// A set can't be changed once a draw uses it: one that differs in a binding is a new one.
bool SlotState::bindSet(VkCommandBuffer commands, const VulkanProgram& program)
{
    const std::vector<ShaderBinding>& bindings = program.getProgram().bindings;
    const PipelineCache::Layout& layout = program.getLayout();
    const VkDescriptorSet set = m_context.frames().descriptors().allocate(m_context.device(), layout.set);
    if (!set) {
        m_pushedLayout = VK_NULL_HANDLE;
        return false;
    }
    Writes writes;
    for (size_t i = 0; i < bindings.size(); ++i)
        writes.add(bindings[i], m_pushed[i], set);
    vkUpdateDescriptorSets(m_context.device().getHandle(), writes.count, writes.all.data(), 0, nullptr);
    vkCmdBindDescriptorSets(commands, VK_PIPELINE_BIND_POINT_GRAPHICS, layout.pipeline, 0, 1, &set, 0,
                            nullptr);
    return true;
}

void SlotState::Writes::add(const ShaderBinding& binding, const Content& content, VkDescriptorSet set)
{
    buffers[count] = {content.buffer, content.offset, content.range};
    images[count] = {content.sampler, content.view, VK_IMAGE_LAYOUT_SHADER_READ_ONLY_OPTIMAL};
    VkWriteDescriptorSet& write = all[count];
    write = {VK_STRUCTURE_TYPE_WRITE_DESCRIPTOR_SET};
    write.dstSet = set;
    write.dstBinding = binding.binding;
    write.descriptorCount = 1;
    write.descriptorType = chooseDescriptorType(binding.kind);
    write.pBufferInfo = &buffers[count];
    write.pImageInfo = &images[count];
    ++count;
}

bool SlotState::findContent(const ShaderBinding& binding, Content& content)
{
    switch (binding.kind) {
    case ShaderBindingKind::ConstantBuffer:
        return findConstants(binding, content);
    case ShaderBindingKind::Texture:
        content.view = findView(binding);
        return true;
    case ShaderBindingKind::Sampler:
        content.sampler = findSampler(binding);
        return true;
    case ShaderBindingKind::StructuredBuffer:
        return true; // nothing can be bound: reads as zero
    }
    return false;
}

bool SlotState::findConstants(const ShaderBinding& binding, Content& content)
{
    const auto& slots = binding.stages & vertexStageBit ? m_vertexConstants : m_pixelConstants;
    const ConstantBuffer* buffer = slots[binding.slot].get();
    if (!buffer || !buffer->impl()->getContext())
        return true;
    const UploadSlice& slice = buffer->impl()->bytes.getSlice(m_context);
    content.buffer = slice.buffer;
    content.offset = slice.offset;
    content.range = std::min<VkDeviceSize>(buffer->impl()->bytes.getSize(),
                                           m_context.device().getProperties().limits.maxUniformBufferRange);
    return slice.buffer != VK_NULL_HANDLE;
}

namespace
{

/// True if a program that declares this kind of texture can read the image.
bool fits(const VulkanImage& image, const ShaderBinding& binding)
{
    const VkFormat format = image.description.format;
    const bool integer = format == VK_FORMAT_R32_UINT || format == VK_FORMAT_R16_UINT;
    if (binding.component != (integer ? ShaderComponentType::Uint : ShaderComponentType::Float))
        return false;
    if (image.description.cube)
        return binding.dimension == TextureDimension::TextureCube;
    return binding.dimension ==
           (image.description.layers > 1 ? TextureDimension::Texture2DArray : TextureDimension::Texture2D);
}

} // namespace

VkImageView SlotState::findView(const ShaderBinding& binding) const
{
    VulkanTexture* texture = m_textures[binding.slot].get();
    return texture && fits(texture->getImage(), binding) ? texture->getImage().view : VK_NULL_HANDLE;
}

VkSampler SlotState::findSampler(const ShaderBinding& binding) const
{
    const VulkanSampler* bound = m_samplers[binding.slot].get();
    const SamplerHandles& handles = bound ? bound->getHandles() : m_defaultSampler;
    for (uint32_t slot = 0; slot < m_textures.size(); ++slot) {
        VulkanTexture* texture = binding.textures & (1u << slot) ? m_textures[slot].get() : nullptr;
        if (texture && binding.comparison && !texture->getImage().comparable)
            return handles.nearest[0]; // the program compares by itself
        if (texture && !texture->getImage().filterable)
            return handles.nearest[binding.comparison];
    }
    return handles.filtered[binding.comparison];
}

} // namespace helvantine
