// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/VulkanApi.h"

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace helvantine
{

class VulkanDevice;

/// A piece of device memory. Plain data; GpuMemory::free gives it back.
struct MemoryPiece
{
    VkDeviceMemory memory = VK_NULL_HANDLE;
    VkDeviceSize offset = 0;
    VkDeviceSize size = 0;
    uint32_t type = UINT32_MAX;  ///< memory type
    uint32_t block = UINT32_MAX; ///< index of the block that it was cut from; UINT32_MAX if it stands alone
};

/// Cuts memory for images and buffers from large blocks; what is large itself gets memory of its own.
///
/// No more is taken than a heap has. A software device would go on until the machine has none left.
class GpuMemory
{
public:
    explicit GpuMemory(VulkanDevice& device);
    ~GpuMemory();

    /// Device-local memory. False with the reason in the report when there is none left.
    bool allocate(const VkMemoryRequirements& needs, MemoryPiece& piece);
    void free(const MemoryPiece& piece); ///< an empty piece is nothing

private:
    struct Block;
    bool allocateAlone(VkDeviceSize size, uint32_t type, VkDeviceMemory& memory);
    bool cut(uint32_t block, const VkMemoryRequirements& needs, MemoryPiece& piece);

    VulkanDevice& m_device;
    std::vector<std::unique_ptr<Block>> m_blocks;
    std::array<VkDeviceSize, VK_MAX_MEMORY_HEAPS> m_used{}; ///< bytes taken from each heap
};

} // namespace helvantine
