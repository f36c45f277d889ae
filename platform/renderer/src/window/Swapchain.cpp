// SPDX-License-Identifier: MIT
#include "window/Swapchain.h"

#include "vulkan/VulkanDevice.h"

#include <helvantine/core/Report.h>

#include <algorithm>

namespace helvantine
{

namespace
{

/// An 8-bit format without conversion if there is one, so that the window shows the back buffer's numbers.
bool chooseFormat(const VulkanDevice& device, VkSurfaceKHR surface, VkSurfaceFormatKHR& chosen)
{
    uint32_t count = 0;
    vkGetPhysicalDeviceSurfaceFormatsKHR(device.getPhysical(), surface, &count, nullptr);
    std::vector<VkSurfaceFormatKHR> formats(count);
    vkGetPhysicalDeviceSurfaceFormatsKHR(device.getPhysical(), surface, &count, formats.data());
    formats.resize(count);

    const auto canBlit = [&](const VkSurfaceFormatKHR& format) {
        return (device.getFormatFeatures(format.format) & VK_FORMAT_FEATURE_BLIT_DST_BIT) != 0;
    };
    const auto isPlain = [&](const VkSurfaceFormatKHR& format) {
        return (format.format == VK_FORMAT_B8G8R8A8_UNORM || format.format == VK_FORMAT_R8G8B8A8_UNORM) &&
               format.colorSpace == VK_COLOR_SPACE_SRGB_NONLINEAR_KHR && canBlit(format);
    };
    auto found = std::find_if(formats.begin(), formats.end(), isPlain);
    if (found == formats.end())
        found = std::find_if(formats.begin(), formats.end(), canBlit);
    if (found == formats.end())
        return false;
    chosen = *found;
    return true;
}

VkPresentModeKHR choosePresentMode(const VulkanDevice& device, VkSurfaceKHR surface, bool verticalSync)
{
    if (verticalSync)
        return VK_PRESENT_MODE_FIFO_KHR;
    uint32_t count = 0;
    vkGetPhysicalDeviceSurfacePresentModesKHR(device.getPhysical(), surface, &count, nullptr);
    std::vector<VkPresentModeKHR> modes(count);
    vkGetPhysicalDeviceSurfacePresentModesKHR(device.getPhysical(), surface, &count, modes.data());
    for (const VkPresentModeKHR wanted : {VK_PRESENT_MODE_IMMEDIATE_KHR, VK_PRESENT_MODE_MAILBOX_KHR}) {
        if (std::find(modes.begin(), modes.end(), wanted) != modes.end())
            return wanted;
    }
    return VK_PRESENT_MODE_FIFO_KHR; // the one mode that is always there
}

VkExtent2D chooseExtent(const VkSurfaceCapabilitiesKHR& surface, unsigned width, unsigned height)
{
    if (surface.currentExtent.width != UINT32_MAX)
        return surface.currentExtent;
    return {std::clamp(width, surface.minImageExtent.width, surface.maxImageExtent.width),
            std::clamp(height, surface.minImageExtent.height, surface.maxImageExtent.height)};
}

VkCompositeAlphaFlagBitsKHR chooseAlpha(VkCompositeAlphaFlagsKHR supported)
{
    if (supported & VK_COMPOSITE_ALPHA_OPAQUE_BIT_KHR)
        return VK_COMPOSITE_ALPHA_OPAQUE_BIT_KHR;
    return static_cast<VkCompositeAlphaFlagBitsKHR>(supported & (0u - supported)); // the lowest bit
}

} // namespace

bool Swapchain::create(VulkanDevice& device, VkSurfaceKHR surface, unsigned width, unsigned height,
                       bool verticalSync)
{
    VkSurfaceCapabilitiesKHR capabilities{};
    if (!device.check(vkGetPhysicalDeviceSurfaceCapabilitiesKHR(device.getPhysical(), surface, &capabilities),
                      "reading the window's surface"))
        return false;
    m_extent = chooseExtent(capabilities, width, height);
    if (m_extent.width == 0 || m_extent.height == 0)
        return false;
    VkSurfaceFormatKHR format{};
    if (!(capabilities.supportedUsageFlags & VK_IMAGE_USAGE_TRANSFER_DST_BIT) ||
        !chooseFormat(device, surface, format))
    {
        reportProblem("window", "the display takes no images that a picture can be copied to");
        return false;
    }

    VkSwapchainCreateInfoKHR info{VK_STRUCTURE_TYPE_SWAPCHAIN_CREATE_INFO_KHR};
    info.surface = surface;
    info.minImageCount = capabilities.minImageCount + 1;
    if (capabilities.maxImageCount != 0)
        info.minImageCount = std::min(info.minImageCount, capabilities.maxImageCount);
    info.imageFormat = format.format;
    info.imageColorSpace = format.colorSpace;
    info.imageExtent = m_extent;
    info.imageArrayLayers = 1;
    info.imageUsage = VK_IMAGE_USAGE_TRANSFER_DST_BIT;
    info.imageSharingMode = VK_SHARING_MODE_EXCLUSIVE;
    info.preTransform = capabilities.currentTransform;
    info.compositeAlpha = chooseAlpha(capabilities.supportedCompositeAlpha);
    info.presentMode = choosePresentMode(device, surface, verticalSync);
    info.clipped = VK_TRUE;
    info.oldSwapchain = m_swapchain;

    VkSwapchainKHR swapchain = VK_NULL_HANDLE;
    const VkResult result = vkCreateSwapchainKHR(device.getHandle(), &info, nullptr, &swapchain);
    destroy(device);
    if (!device.check(result, "making the window's images"))
        return false;
    m_swapchain = swapchain;
    return createImages(device);
}

bool Swapchain::createImages(VulkanDevice& device)
{
    uint32_t count = 0;
    VkResult result = vkGetSwapchainImagesKHR(device.getHandle(), m_swapchain, &count, nullptr);
    std::vector<VkImage> images(count);
    if (result == VK_SUCCESS)
        result = vkGetSwapchainImagesKHR(device.getHandle(), m_swapchain, &count, images.data());
    if (!device.check(result, "reading the window's images"))
        return false;
    const VkSemaphoreCreateInfo info{VK_STRUCTURE_TYPE_SEMAPHORE_CREATE_INFO};
    for (uint32_t i = 0; i < count; ++i) {
        Image& image = m_images.emplace_back();
        image.image = images[i];
        device.setName(VK_OBJECT_TYPE_IMAGE, image.image, "window");
        if (!device.check(vkCreateSemaphore(device.getHandle(), &info, nullptr, &image.drawn),
                          "making a semaphore"))
            return false;
    }
    return true;
}

void Swapchain::destroyImages(VulkanDevice& device)
{
    for (const Image& image : m_images)
        vkDestroySemaphore(device.getHandle(), image.drawn, nullptr);
    m_images.clear();
}

void Swapchain::destroy(VulkanDevice& device)
{
    destroyImages(device);
    vkDestroySwapchainKHR(device.getHandle(), m_swapchain, nullptr);
    m_swapchain = VK_NULL_HANDLE;
}

} // namespace helvantine
