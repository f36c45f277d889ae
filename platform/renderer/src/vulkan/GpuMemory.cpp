// SPDX-License-Identifier: MIT
#include "vulkan/GpuMemory.h"

#include "vulkan/VulkanDevice.h"

#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>

#include <algorithm>
#include <cinttypes>

namespace helvantine
{

namespace
{

constexpr VkDeviceSize blockSize = VkDeviceSize(32) << 20;
/// What is larger stands alone: cutting it would waste the rest of a block.
constexpr VkDeviceSize largestPiece = blockSize / 4;

VkDeviceSize alignUp(VkDeviceSize value, VkDeviceSize alignment)
{
    return (value + alignment - 1) / alignment * alignment;
}

} // namespace

/// One allocation with the gaps that are free in it, in order of their offset.
struct GpuMemory::Block
{
    struct Gap
    {
        VkDeviceSize offset = 0;
        VkDeviceSize size = 0;
    };

    VkDeviceMemory memory = VK_NULL_HANDLE;
    uint32_t type = 0;
    std::vector<Gap> gaps;
};

GpuMemory::GpuMemory(VulkanDevice& device) : m_device(device) {}

GpuMemory::~GpuMemory()
{
    for (const auto& block : m_blocks)
        vkFreeMemory(m_device.getHandle(), block->memory, nullptr);
}

bool GpuMemory::allocate(const VkMemoryRequirements& needs, MemoryPiece& piece)
{
    const uint32_t type =
        m_device.findMemoryType(needs.memoryTypeBits, 0, VK_MEMORY_PROPERTY_DEVICE_LOCAL_BIT);
    if (needs.size > largestPiece) {
        piece = {VK_NULL_HANDLE, 0, needs.size, type, UINT32_MAX};
        return allocateAlone(needs.size, type, piece.memory);
    }
    for (uint32_t i = 0; i < m_blocks.size(); ++i) {
        if (m_blocks[i]->type == type && cut(i, needs, piece))
            return true;
    }
    auto block = std::make_unique<Block>();
    if (!allocateAlone(blockSize, type, block->memory))
        return false;
    block->type = type;
    block->gaps.push_back({0, blockSize});
    m_blocks.push_back(std::move(block));
    return cut(static_cast<uint32_t>(m_blocks.size()) - 1, needs, piece);
}

bool GpuMemory::allocateAlone(VkDeviceSize size, uint32_t type, VkDeviceMemory& memory)
{
    memory = VK_NULL_HANDLE;
    if (type == UINT32_MAX)
        return m_device.check(VK_ERROR_OUT_OF_DEVICE_MEMORY, "find device memory of a fitting type");
    const VkDeviceSize available = m_device.getHeapSize(type);
    VkDeviceSize& used = m_used[m_device.getHeapIndex(type)];
    if (size > available || used > available - size) {
        reportProblem("renderer", formatString("device memory of %" PRIu64 " bytes asked for, %" PRIu64
                                               " of %" PRIu64 " bytes are in use",
                                               size, used, available));
        return false;
    }
    VkMemoryAllocateInfo info{VK_STRUCTURE_TYPE_MEMORY_ALLOCATE_INFO};
    info.allocationSize = size;
    info.memoryTypeIndex = type;
    if (!m_device.check(vkAllocateMemory(m_device.getHandle(), &info, nullptr, &memory),
                        "allocate device memory"))
    {
        memory = VK_NULL_HANDLE;
        return false;
    }
    used += size;
    return true;
}

bool GpuMemory::cut(uint32_t index, const VkMemoryRequirements& needs, MemoryPiece& piece)
{
    // Images and buffers lie side by side: both keep the device's granularity between each other.
    const VkDeviceSize granularity = m_device.getProperties().limits.bufferImageGranularity;
    const VkDeviceSize alignment = std::max(needs.alignment, granularity);
    const VkDeviceSize size = alignUp(needs.size, alignment);
    Block& block = *m_blocks[index];
    for (auto gap = block.gaps.begin(); gap != block.gaps.end(); ++gap) {
        const VkDeviceSize offset = alignUp(gap->offset, alignment);
        const VkDeviceSize end = gap->offset + gap->size;
        if (offset + size > end)
            continue;
        const VkDeviceSize before = offset - gap->offset;
        const Block::Gap after{offset + size, end - offset - size};
        gap->size = before;
        if (after.size > 0)
            gap = block.gaps.insert(gap + 1, after) - 1;
        if (before == 0)
            block.gaps.erase(gap);
        piece = {block.memory, offset, size, block.type, index};
        return true;
    }
    return false;
}

void GpuMemory::free(const MemoryPiece& piece)
{
    if (!piece.memory)
        return;
    if (piece.block == UINT32_MAX) {
        vkFreeMemory(m_device.getHandle(), piece.memory, nullptr);
        m_used[m_device.getHeapIndex(piece.type)] -= piece.size;
        return;
    }
    auto& gaps = m_blocks[piece.block]->gaps;
    auto next = std::find_if(gaps.begin(), gaps.end(),
                             [&piece](const Block::Gap& gap) { return gap.offset > piece.offset; });
    next = gaps.insert(next, {piece.offset, piece.size});
    if (next + 1 != gaps.end() && next->offset + next->size == (next + 1)->offset) {
        next->size += (next + 1)->size;
        gaps.erase(next + 1);
    }
    if (next != gaps.begin() && (next - 1)->offset + (next - 1)->size == next->offset) {
        (next - 1)->size += next->size;
        gaps.erase(next);
    }
}

} // namespace helvantine
