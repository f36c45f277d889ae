// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/VulkanApi.h"

#include <vector>

namespace helvantine
{

class VulkanDevice;

/// A few bytes that the CPU writes once and the GPU reads in the batch that they were taken for.
struct UploadSlice
{
    VkBuffer buffer = VK_NULL_HANDLE;
    VkDeviceSize offset = 0;
    void* data = nullptr; ///< null when there is no memory left
};

/// Host-coherent memory of one batch of commands, handed out from front to back.
///
/// Grows by whole buffers while the batch needs more; reset merges them into one, so that a batch like the
/// last one allocates nothing.
class UploadRing
{
public:
    UploadRing() = default;
    UploadRing(const UploadRing&) = delete;
    UploadRing& operator=(const UploadRing&) = delete;

    bool create(VulkanDevice& device);
    void destroy();

    /// alignment: a power of two; 256 serves every purpose.
    UploadSlice allocate(VkDeviceSize size, VkDeviceSize alignment);

    /// Everything handed out is void. The GPU must be past the batch.
    void reset();

    VkDeviceSize getUsedBytes() const { return m_usedBefore + m_used; }

private:
    struct Chunk
    {
        VkBuffer buffer = VK_NULL_HANDLE;
        VkDeviceMemory memory = VK_NULL_HANDLE;
        VkDeviceSize size = 0;
        uint8_t* data = nullptr;
    };

    bool addChunk(VkDeviceSize size);
    void destroyChunk(Chunk& chunk);

    VulkanDevice* m_device = nullptr;
    std::vector<Chunk> m_chunks;   ///< the last one is being filled
    VkDeviceSize m_used = 0;       ///< of the last chunk
    VkDeviceSize m_usedBefore = 0; ///< of all chunks before it
};

} // namespace helvantine
