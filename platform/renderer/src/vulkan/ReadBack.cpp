// SPDX-License-Identifier: MIT
#include "vulkan/ReadBack.h"

#include "vulkan/FrameRing.h"
#include "vulkan/VulkanContext.h"

namespace helvantine
{

ReadBack::~ReadBack()
{
    destroyBuffer();
}

const uint8_t* ReadBack::read(VulkanImage& image, uint64_t bytes)
{
    if (!image.image || m_context.device().isLost() || !reserve(bytes))
        return nullptr;
    const VkCommandBuffer commands = m_context.commandsOutsideRendering();
    m_context.barriers().add(commands, image, ImageUse::CopySource);
    m_context.barriers().flush(commands);
    VkBufferImageCopy region{};
    region.imageSubresource = {image.description.aspect, 0, 0, 1};
    region.imageExtent = {image.description.width, image.description.height, 1};
    vkCmdCopyImageToBuffer(commands, image.image, VK_IMAGE_LAYOUT_TRANSFER_SRC_OPTIMAL, m_buffer, 1, &region);
    m_context.barriers().add(commands, image, ImageUse::Sampled);
    m_context.barriers().flush(commands);
    VkMemoryBarrier2 barrier{VK_STRUCTURE_TYPE_MEMORY_BARRIER_2};
    barrier.srcStageMask = VK_PIPELINE_STAGE_2_COPY_BIT;
    barrier.srcAccessMask = VK_ACCESS_2_TRANSFER_WRITE_BIT;
    barrier.dstStageMask = VK_PIPELINE_STAGE_2_HOST_BIT;
    barrier.dstAccessMask = VK_ACCESS_2_HOST_READ_BIT;
    VkDependencyInfo info{VK_STRUCTURE_TYPE_DEPENDENCY_INFO};
    info.memoryBarrierCount = 1;
    info.pMemoryBarriers = &barrier;
    vkCmdPipelineBarrier2(commands, &info);
    m_context.submitAndWait();
    if (m_context.device().isLost())
        return nullptr;
    VkMappedMemoryRange range{VK_STRUCTURE_TYPE_MAPPED_MEMORY_RANGE};
    range.memory = m_memory;
    range.size = VK_WHOLE_SIZE;
    if (!m_coherent)
        vkInvalidateMappedMemoryRanges(m_context.device().getHandle(), 1, &range);
    return m_data;
}

bool ReadBack::reserve(uint64_t bytes)
{
    if (bytes <= m_size)
        return true;
    destroyBuffer();
    VulkanDevice& device = m_context.device();
    VkBufferCreateInfo info{VK_STRUCTURE_TYPE_BUFFER_CREATE_INFO};
    info.size = bytes;
    info.usage = VK_BUFFER_USAGE_TRANSFER_DST_BIT;
    if (!device.check(vkCreateBuffer(device.getHandle(), &info, nullptr, &m_buffer),
                      "create a read-back buffer"))
        return false;
    VkMemoryRequirements needs;
    vkGetBufferMemoryRequirements(device.getHandle(), m_buffer, &needs);
    constexpr VkMemoryPropertyFlags coherent = VK_MEMORY_PROPERTY_HOST_COHERENT_BIT;
    const uint32_t cached = device.findMemoryType(
        needs.memoryTypeBits, VK_MEMORY_PROPERTY_HOST_VISIBLE_BIT | VK_MEMORY_PROPERTY_HOST_CACHED_BIT,
        coherent);
    VkMemoryAllocateInfo memory{VK_STRUCTURE_TYPE_MEMORY_ALLOCATE_INFO};
    memory.allocationSize = needs.size;
    memory.memoryTypeIndex =
        cached != UINT32_MAX
            ? cached
            : device.findMemoryType(needs.memoryTypeBits, VK_MEMORY_PROPERTY_HOST_VISIBLE_BIT | coherent, 0);
    m_coherent = device.getMemoryFlags(memory.memoryTypeIndex) & coherent;
    void* data = nullptr;
    if (!device.check(vkAllocateMemory(device.getHandle(), &memory, nullptr, &m_memory),
                      "allocate read-back memory") ||
        !device.check(vkBindBufferMemory(device.getHandle(), m_buffer, m_memory, 0),
                      "bind read-back memory") ||
        !device.check(vkMapMemory(device.getHandle(), m_memory, 0, VK_WHOLE_SIZE, 0, &data),
                      "map read-back memory"))
    {
        destroyBuffer();
        return false;
    }
    m_data = static_cast<const uint8_t*>(data);
    m_size = bytes;
    return true;
}

void ReadBack::destroyBuffer()
{
    const VkDevice device = m_context.device().getHandle();
    vkDestroyBuffer(device, m_buffer, nullptr);
    vkFreeMemory(device, m_memory, nullptr);
    m_buffer = VK_NULL_HANDLE;
    m_memory = VK_NULL_HANDLE;
    m_size = 0;
}

} // namespace helvantine
