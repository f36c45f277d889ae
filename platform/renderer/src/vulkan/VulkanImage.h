// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/GpuMemory.h"
#include "vulkan/VulkanApi.h"

#include <vector>

namespace helvantine
{

class VulkanContext;

/// What an image is ready for. Each use stands for a layout and for the stages that touch the image.
enum class ImageUse : uint8_t
{
    None, ///< contents undefined
    Sampled,
    ColorTarget,
    DepthTarget,
    CopySource,
    CopyTarget,
    Present,
};

struct ImageDescription
{
    VkFormat format = VK_FORMAT_UNDEFINED;
    VkImageAspectFlags aspect = VK_IMAGE_ASPECT_COLOR_BIT;
    VkImageUsageFlags usage = 0;
    uint32_t width = 1;
    uint32_t height = 1;
    uint32_t mips = 1;
    uint32_t layers = 1;
    bool cube = false; ///< layers must be 6
    VkSampleCountFlagBits samples = VK_SAMPLE_COUNT_1_BIT;
    const char* name = "";
};

/// An image with its memory and views. Plain data; createImage fills it, destroyImage empties it.
struct VulkanImage
{
    VkImage image = VK_NULL_HANDLE;
    VkImageView view = VK_NULL_HANDLE;       ///< all mips and layers, for shaders; null if they never read it
    VkImageView targetView = VK_NULL_HANDLE; ///< mip 0, all aspects, for drawing; null if never drawn to
    MemoryPiece memory;
    ImageDescription description;
    bool filterable = false;       ///< shaders may sample it with a linear filter
    bool comparable = false;       ///< shaders may compare its texels
    ImageUse use = ImageUse::None; ///< at the current point of the commands
};

/// False, with the reason in the report and the image empty, when there is no memory.
bool createImage(VulkanContext& context, const ImageDescription& description, VulkanImage& image);

/// Destroys the image once the GPU is past the commands recorded so far.
void destroyImage(VulkanContext& context, VulkanImage& image);

/// Collects changes of use and records them as one barrier.
///
/// Not while rendering is open. A use of its own followed by the same one orders the two, except Sampled.
class ImageBarriers
{
public:
    ImageBarriers();

    void add(VkCommandBuffer commands, VulkanImage& image, ImageUse use);
    void flush(VkCommandBuffer commands);

private:
    std::vector<VkImageMemoryBarrier2> m_barriers;
};

} // namespace helvantine
