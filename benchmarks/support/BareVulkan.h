// SPDX-License-Identifier: MIT
#pragma once

#include <volk.h>

#include <cstdint>
#include <vector>

namespace helvantine::bench
{

/// An image, and the layout that it is in at the current point of the commands.
struct BareImage
{
    VkImage image = VK_NULL_HANDLE;
    VkDeviceMemory memory = VK_NULL_HANDLE;
    VkImageView view = VK_NULL_HANDLE;
    VkFormat format = VK_FORMAT_UNDEFINED;
    uint32_t width = 0;
    uint32_t height = 0;
    VkImageLayout layout = VK_IMAGE_LAYOUT_UNDEFINED;
};

/// A piece of memory that the CPU writes and the GPU reads. Mapped for good.
struct BareBytes
{
    VkBuffer buffer = VK_NULL_HANDLE;
    VkDeviceSize offset = 0;
    uint8_t* data = nullptr;
};

/// Ends the program, with the reason, unless the call has succeeded.
void require(VkResult result, const char* what);

/// What a small program sets up in order to draw with Vulkan alone: the baseline of the renderer.
///
/// It has an instance and a device of its own beside the renderer's, without robustness and without validation,
/// one command buffer, and one frame at a time. Images live as long as it does.
class BareVulkan
{
public:
    /// deviceName: as Renderer::getDeviceName tells it.
    explicit BareVulkan(const char* deviceName);
    ~BareVulkan();
    BareVulkan(const BareVulkan&) = delete;
    BareVulkan& operator=(const BareVulkan&) = delete;

    VkDevice getDevice() const { return m_device; }
    const VkPhysicalDeviceLimits& getLimits() const { return m_properties.limits; }

    /// Starts transparent black.
    BareImage createTarget(uint32_t width, uint32_t height, VkFormat format);
    /// texels: 4 bytes each, rows without padding.
    BareImage createTexture(uint32_t width, uint32_t height, VkFormat format, const void* texels);
    VkSampler createSampler(VkFilter filter, VkSamplerAddressMode mode);

    /// For constants, vertices and texels; there are 64 MiB.
    BareBytes allocate(VkDeviceSize size);

    VkCommandBuffer begin(); ///< the GPU is past everything before
    void submit();
    void wait();

    /// Brings images into the layouts that a pass needs them in, with one barrier.
    void makeReady(VkCommandBuffer commands, const std::vector<BareImage*>& sources, BareImage& target);

    /// 4 bytes a pixel, rows from the top without padding.
    std::vector<uint8_t> read(BareImage& image);

private:
    void createInstance();
    void chooseDevice(const char* name);
    void createDevice();
    void createFrame();
    void createMemory();
    BareImage createImage(uint32_t width, uint32_t height, VkFormat format, VkImageUsageFlags usage);
    uint32_t findMemoryType(uint32_t bits, VkMemoryPropertyFlags wanted) const;

    VkInstance m_instance = VK_NULL_HANDLE;
    VkPhysicalDevice m_physical = VK_NULL_HANDLE;
    VkPhysicalDeviceProperties m_properties{};
    VkDevice m_device = VK_NULL_HANDLE;
    VkQueue m_queue = VK_NULL_HANDLE;
    VkCommandPool m_pool = VK_NULL_HANDLE;
    VkCommandBuffer m_commands = VK_NULL_HANDLE;
    VkFence m_fence = VK_NULL_HANDLE;
    VkDeviceMemory m_memory = VK_NULL_HANDLE;
    BareBytes m_free; ///< what isn't handed out yet
    std::vector<BareImage> m_images;
    std::vector<VkSampler> m_samplers;
};

} // namespace helvantine::bench
