// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/VulkanApi.h"

#include <vector>

namespace helvantine
{

class VulkanDevice;

/// The images that a surface shows, for one size of the window.
class Swapchain
{
public:
    struct Image
    {
        VkImage image = VK_NULL_HANDLE;
        VkSemaphore drawn = VK_NULL_HANDLE; ///< signalled when the image may be shown
    };

    Swapchain() = default;
    Swapchain(const Swapchain&) = delete;
    Swapchain& operator=(const Swapchain&) = delete;

    /// Makes the images, or makes them anew for another size; the GPU must be past the old ones. width and
    /// height count where the surface leaves the size open. False, with nothing to show, for a surface
    /// without an area, and with the reason in the report for anything else.
    bool create(VulkanDevice& device, VkSurfaceKHR surface, unsigned width, unsigned height,
                bool verticalSync);
    void destroy(VulkanDevice& device);

    VkSwapchainKHR getHandle() const { return m_swapchain; } ///< null before create
    VkExtent2D getExtent() const { return m_extent; }
    const Image& getImage(uint32_t index) const { return m_images[index]; }

private:
    bool createImages(VulkanDevice& device);
    void destroyImages(VulkanDevice& device);

    VkSwapchainKHR m_swapchain = VK_NULL_HANDLE;
    VkExtent2D m_extent{};
    std::vector<Image> m_images;
};

} // namespace helvantine
