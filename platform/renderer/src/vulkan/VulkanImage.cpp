// SPDX-License-Identifier: MIT
#include "vulkan/VulkanImage.h"

#include "vulkan/FrameRing.h"
#include "vulkan/VulkanContext.h"

#include <algorithm>
#include <iterator>

namespace helvantine
{

namespace
{

VkImageViewType chooseViewType(const ImageDescription& description)
{
    if (description.cube)
        return VK_IMAGE_VIEW_TYPE_CUBE;
    return description.layers > 1 ? VK_IMAGE_VIEW_TYPE_2D_ARRAY : VK_IMAGE_VIEW_TYPE_2D;
}

bool createView(VulkanContext& context, const VulkanImage& image, VkImageViewCreateInfo info,
                VkImageView& view)
{
    info.sType = VK_STRUCTURE_TYPE_IMAGE_VIEW_CREATE_INFO;
    info.image = image.image;
    info.format = image.description.format;
    VulkanDevice& device = context.device();
    if (!device.check(vkCreateImageView(device.getHandle(), &info, nullptr, &view), "create an image view"))
        return false;
    device.setName(VK_OBJECT_TYPE_IMAGE_VIEW, view, image.description.name);
    return true;
}

bool createViews(VulkanContext& context, VulkanImage& image)
{
    const ImageDescription& description = image.description;
    VkImageViewCreateInfo info{};
    info.viewType = chooseViewType(description);
    info.subresourceRange = {description.aspect, 0, description.mips, 0, description.layers};
    if ((description.usage & VK_IMAGE_USAGE_SAMPLED_BIT) && !createView(context, image, info, image.view))
        return false;
    info.viewType = VK_IMAGE_VIEW_TYPE_2D;
    info.subresourceRange = {description.aspect, 0, 1, 0, 1};
    constexpr VkImageUsageFlags drawn =
        VK_IMAGE_USAGE_COLOR_ATTACHMENT_BIT | VK_IMAGE_USAGE_DEPTH_STENCIL_ATTACHMENT_BIT;
    return !(description.usage & drawn) || createView(context, image, info, image.targetView);
}

bool createHandle(VulkanContext& context, const ImageDescription& description, VkImage& image)
{
    VkImageCreateInfo info{VK_STRUCTURE_TYPE_IMAGE_CREATE_INFO};
    info.flags = description.cube ? VK_IMAGE_CREATE_CUBE_COMPATIBLE_BIT : 0;
    info.imageType = VK_IMAGE_TYPE_2D;
    info.format = description.format;
    info.extent = {description.width, description.height, 1};
    info.mipLevels = description.mips;
    info.arrayLayers = description.layers;
    info.samples = description.samples;
    info.tiling = VK_IMAGE_TILING_OPTIMAL;
    info.usage = description.usage;
    VulkanDevice& device = context.device();
    return device.check(vkCreateImage(device.getHandle(), &info, nullptr, &image), "create an image");
}

/// What a use means to Vulkan.
struct UseInfo
{
    VkImageLayout layout;
    VkPipelineStageFlags2 stages;
    VkAccessFlags2 reads;
    VkAccessFlags2 writes;
};

constexpr VkPipelineStageFlags2 depthStages =
    VK_PIPELINE_STAGE_2_EARLY_FRAGMENT_TESTS_BIT | VK_PIPELINE_STAGE_2_LATE_FRAGMENT_TESTS_BIT;

/// In the order of ImageUse. Depth images are also written by resolves, which count as colour output.
constexpr UseInfo useTable[] = {
    {VK_IMAGE_LAYOUT_UNDEFINED, VK_PIPELINE_STAGE_2_NONE, 0, 0},
    {VK_IMAGE_LAYOUT_SHADER_READ_ONLY_OPTIMAL,
     VK_PIPELINE_STAGE_2_VERTEX_SHADER_BIT | VK_PIPELINE_STAGE_2_FRAGMENT_SHADER_BIT,
     VK_ACCESS_2_SHADER_SAMPLED_READ_BIT, 0},
    {VK_IMAGE_LAYOUT_COLOR_ATTACHMENT_OPTIMAL, VK_PIPELINE_STAGE_2_COLOR_ATTACHMENT_OUTPUT_BIT,
     VK_ACCESS_2_COLOR_ATTACHMENT_READ_BIT, VK_ACCESS_2_COLOR_ATTACHMENT_WRITE_BIT},
    {VK_IMAGE_LAYOUT_DEPTH_STENCIL_ATTACHMENT_OPTIMAL,
     depthStages | VK_PIPELINE_STAGE_2_COLOR_ATTACHMENT_OUTPUT_BIT,
     VK_ACCESS_2_DEPTH_STENCIL_ATTACHMENT_READ_BIT,
     VK_ACCESS_2_DEPTH_STENCIL_ATTACHMENT_WRITE_BIT | VK_ACCESS_2_COLOR_ATTACHMENT_WRITE_BIT},
    {VK_IMAGE_LAYOUT_TRANSFER_SRC_OPTIMAL, VK_PIPELINE_STAGE_2_ALL_TRANSFER_BIT,
     VK_ACCESS_2_TRANSFER_READ_BIT, 0},
    {VK_IMAGE_LAYOUT_TRANSFER_DST_OPTIMAL, VK_PIPELINE_STAGE_2_ALL_TRANSFER_BIT, 0,
     VK_ACCESS_2_TRANSFER_WRITE_BIT},
    {VK_IMAGE_LAYOUT_PRESENT_SRC_KHR, VK_PIPELINE_STAGE_2_ALL_COMMANDS_BIT, 0, 0},
};

const UseInfo& describe(ImageUse use)
{
    return useTable[static_cast<size_t>(use)];
}

} // namespace

bool createImage(VulkanContext& context, const ImageDescription& description, VulkanImage& image)
{
    VulkanDevice& device = context.device();
    image = {};
    image.description = description;
    VkMemoryRequirements needs{};
    bool made = createHandle(context, description, image.image);
    if (made)
        vkGetImageMemoryRequirements(device.getHandle(), image.image, &needs);
    made = made && context.memory().allocate(needs, image.memory) &&
           device.check(
               vkBindImageMemory(device.getHandle(), image.image, image.memory.memory, image.memory.offset),
               "bind an image's memory") &&
           createViews(context, image);
    if (!made) {
        destroyImage(context, image);
        return false;
    }
    device.setName(VK_OBJECT_TYPE_IMAGE, image.image, description.name);
    image.description.name = "";
    const VkFormatFeatureFlags2 features = device.getFormatFeatures(description.format);
    image.filterable = features & VK_FORMAT_FEATURE_2_SAMPLED_IMAGE_FILTER_LINEAR_BIT;
    image.comparable = features & VK_FORMAT_FEATURE_2_SAMPLED_IMAGE_DEPTH_COMPARISON_BIT;
    return true;
}

void destroyImage(VulkanContext& context, VulkanImage& image)
{
    FrameRing& frames = context.frames();
    frames.destroyLater(VK_OBJECT_TYPE_IMAGE_VIEW, image.view);
    frames.destroyLater(VK_OBJECT_TYPE_IMAGE_VIEW, image.targetView);
    frames.destroyLater(VK_OBJECT_TYPE_IMAGE, image.image);
    frames.freeLater(image.memory);
    image = {};
}

ImageBarriers::ImageBarriers()
{
    m_barriers.reserve(32);
}

void ImageBarriers::add(VkCommandBuffer commands, VulkanImage& image, ImageUse use)
{
    if (image.use == use && use == ImageUse::Sampled)
        return;
    // Barriers of one batch aren't ordered among themselves.
    if (std::any_of(m_barriers.begin(), m_barriers.end(),
                    [&image](const VkImageMemoryBarrier2& barrier) { return barrier.image == image.image; }))
        flush(commands);
    const UseInfo& from = describe(image.use);
    const UseInfo& to = describe(use);
    VkImageMemoryBarrier2 barrier{VK_STRUCTURE_TYPE_IMAGE_MEMORY_BARRIER_2};
    barrier.srcStageMask = from.stages;
    barrier.srcAccessMask = from.writes;
    barrier.dstStageMask = to.stages;
    barrier.dstAccessMask = to.reads | to.writes;
    barrier.oldLayout = from.layout;
    barrier.newLayout = to.layout;
    barrier.srcQueueFamilyIndex = VK_QUEUE_FAMILY_IGNORED;
    barrier.dstQueueFamilyIndex = VK_QUEUE_FAMILY_IGNORED;
    barrier.image = image.image;
    barrier.subresourceRange = {image.description.aspect, 0, VK_REMAINING_MIP_LEVELS, 0,
                                VK_REMAINING_ARRAY_LAYERS};
    m_barriers.push_back(barrier);
    image.use = use;
}

void ImageBarriers::flush(VkCommandBuffer commands)
{
    if (m_barriers.empty())
        return;
    VkDependencyInfo info{VK_STRUCTURE_TYPE_DEPENDENCY_INFO};
    info.imageMemoryBarrierCount = static_cast<uint32_t>(m_barriers.size());
    info.pImageMemoryBarriers = m_barriers.data();
    vkCmdPipelineBarrier2(commands, &info);
    m_barriers.clear();
}

} // namespace helvantine
