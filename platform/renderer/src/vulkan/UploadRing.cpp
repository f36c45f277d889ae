// SPDX-License-Identifier: MIT
#include "vulkan/UploadRing.h"

#include "vulkan/VulkanDevice.h"

#include <algorithm>

namespace helvantine
{

namespace
{

constexpr VkDeviceSize smallestChunk = VkDeviceSize(1) << 20;
/// What a batch may keep for the next one. A texture uploaded once must not hold its memory for ever.
constexpr VkDeviceSize largestKept = VkDeviceSize(32) << 20;

} // namespace

bool UploadRing::create(VulkanDevice& device)
{
    m_device = &device;
    return addChunk(smallestChunk);
}

void UploadRing::destroy()
{
    for (Chunk& chunk : m_chunks)
        destroyChunk(chunk);
    m_chunks.clear();
    m_used = m_usedBefore = 0;
}

UploadSlice UploadRing::allocate(VkDeviceSize size, VkDeviceSize alignment)
{
    VkDeviceSize offset = (m_used + alignment - 1) & ~(alignment - 1);
    if (m_chunks.empty() || offset + size > m_chunks.back().size) {
        const VkDeviceSize doubled = m_chunks.empty() ? smallestChunk : m_chunks.back().size * 2;
        if (!addChunk(std::max(size, std::min(doubled, largestKept))))
            return {};
        offset = 0;
    }
    m_used = offset + size;
    const Chunk& chunk = m_chunks.back();
    return {chunk.buffer, offset, chunk.data + offset};
}

void UploadRing::reset()
{
    if (m_chunks.size() > 1) {
        const VkDeviceSize total = std::min(getUsedBytes() + getUsedBytes() / 4, largestKept);
        destroy();
        addChunk(std::max(total, smallestChunk));
    } else if (!m_chunks.empty() && m_chunks.back().size > largestKept) {
        destroy();
        addChunk(smallestChunk);
    }
    m_used = m_usedBefore = 0;
}

bool UploadRing::addChunk(VkDeviceSize size)
{
    Chunk chunk;
    chunk.size = size;
    VkBufferCreateInfo info{VK_STRUCTURE_TYPE_BUFFER_CREATE_INFO};
    info.size = size;
    info.usage = VK_BUFFER_USAGE_UNIFORM_BUFFER_BIT | VK_BUFFER_USAGE_VERTEX_BUFFER_BIT |
                 VK_BUFFER_USAGE_INDEX_BUFFER_BIT | VK_BUFFER_USAGE_TRANSFER_SRC_BIT;
    if (!m_device->check(vkCreateBuffer(m_device->getHandle(), &info, nullptr, &chunk.buffer),
                         "create an upload buffer"))
        return false;
    VkMemoryRequirements needs;
    vkGetBufferMemoryRequirements(m_device->getHandle(), chunk.buffer, &needs);
    VkMemoryAllocateInfo memory{VK_STRUCTURE_TYPE_MEMORY_ALLOCATE_INFO};
    memory.allocationSize = needs.size;
    memory.memoryTypeIndex = m_device->findMemoryType(
        needs.memoryTypeBits, VK_MEMORY_PROPERTY_HOST_VISIBLE_BIT | VK_MEMORY_PROPERTY_HOST_COHERENT_BIT, 0);
    void* data = nullptr;
    if (!m_device->check(vkAllocateMemory(m_device->getHandle(), &memory, nullptr, &chunk.memory),
                         "allocate upload memory") ||
        !m_device->check(vkBindBufferMemory(m_device->getHandle(), chunk.buffer, chunk.memory, 0),
                         "bind upload memory") ||
        !m_device->check(vkMapMemory(m_device->getHandle(), chunk.memory, 0, VK_WHOLE_SIZE, 0, &data),
                         "map upload memory"))
    {
        destroyChunk(chunk);
        return false;
    }
    m_device->setName(VK_OBJECT_TYPE_BUFFER, chunk.buffer, "uploads");
    chunk.data = static_cast<uint8_t*>(data);
    m_usedBefore += m_used;
    m_used = 0;
    m_chunks.push_back(chunk);
    return true;
}

void UploadRing::destroyChunk(Chunk& chunk)
{
    vkDestroyBuffer(m_device->getHandle(), chunk.buffer, nullptr);
    vkFreeMemory(m_device->getHandle(), chunk.memory, nullptr);
    chunk = {};
}

} // namespace helvantine
