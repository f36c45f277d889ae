// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/VulkanImage.h"

#include <cstdint>

namespace helvantine
{

/// Copies images into main memory. Keeps its buffer from one picture to the next.
class ReadBack
{
public:
    explicit ReadBack(VulkanContext& context) : m_context(context) {}
    ~ReadBack();
    ReadBack(const ReadBack&) = delete;
    ReadBack& operator=(const ReadBack&) = delete;

    /// Waits for the GPU. Returns the bytes of mip 0 of the image's first aspect, rows without padding,
    /// valid until the next call; null with the reason in the report.
    const uint8_t* read(VulkanImage& image, uint64_t bytes);

private:
    bool reserve(uint64_t bytes);
    void destroyBuffer();

    VulkanContext& m_context;
    VkBuffer m_buffer = VK_NULL_HANDLE;
    VkDeviceMemory m_memory = VK_NULL_HANDLE;
    uint64_t m_size = 0;
    const uint8_t* m_data = nullptr;
    bool m_coherent = true;
};

} // namespace helvantine
