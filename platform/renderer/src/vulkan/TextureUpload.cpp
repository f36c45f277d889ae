// SPDX-License-Identifier: MIT
#include "vulkan/TextureUpload.h"

#include "vulkan/FrameRing.h"
#include "vulkan/VulkanContext.h"

#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>

#include <algorithm>
#include <cstring>

namespace helvantine
{

namespace
{

bool uploadLevel(VulkanContext& context, VkCommandBuffer commands, const VulkanImage& image,
                 const FormatInfo& format, const TexelLevel& level)
{
    const uint32_t width = std::max(1u, image.description.width >> level.mip);
    const uint32_t height = std::max(1u, image.description.height >> level.mip);
    const size_t rowBytes = size_t(countBlocks(format, width)) * format.layout.blockBytes;
    const uint32_t rows = countBlocks(format, height);
    constexpr VkDeviceSize everyFormat = 16;
    const UploadSlice slice = context.frames().uploads().allocate(rowBytes * rows, everyFormat);
    if (!slice.data)
        return false;
    auto* bytes = static_cast<uint8_t*>(slice.data);
    if (!level.texels)
        std::memset(bytes, 0, rowBytes * rows);
    for (uint32_t row = 0; level.texels && row < rows; ++row)
        std::memcpy(bytes + row * rowBytes, level.texels + row * level.rowPitch, rowBytes);

    VkBufferImageCopy region{};
    region.bufferOffset = slice.offset;
    region.imageSubresource = {VK_IMAGE_ASPECT_COLOR_BIT, level.mip, level.layer, 1};
    region.imageExtent = {width, height, 1};
    vkCmdCopyBufferToImage(commands, slice.buffer, image.image, VK_IMAGE_LAYOUT_TRANSFER_DST_OPTIMAL, 1,
                           &region);
    return true;
}

} // namespace

bool uploadTexels(VulkanContext& context, VulkanImage& image, const FormatInfo& format,
                  std::span<const TexelLevel> levels)
{
    const VkCommandBuffer commands = context.commandsOutsideRendering();
    context.barriers().add(commands, image, ImageUse::CopyTarget);
    context.barriers().flush(commands);
    const bool uploaded = std::all_of(levels.begin(), levels.end(), [&](const TexelLevel& level) {
        return uploadLevel(context, commands, image, format, level);
    });
    context.barriers().add(commands, image, ImageUse::Sampled);
    context.barriers().flush(commands);
    context.limitUploads();
    return uploaded;
}

bool createSampledImage(VulkanContext& context, const FormatInfo& format, ImageDescription description,
                        VulkanImage& image)
{
    const VulkanDevice& device = context.device();
    const bool block = format.layout.blockSide > 1;
    const VkPhysicalDeviceLimits& limits = device.getProperties().limits;
    const uint32_t side = description.cube ? limits.maxImageDimensionCube : limits.maxImageDimension2D;
    if ((block && !device.getFeatures().blockFormats) || description.width > side ||
        description.height > side || description.layers > limits.maxImageArrayLayers ||
        !(device.getFormatFeatures(format.vulkan) & VK_FORMAT_FEATURE_SAMPLED_IMAGE_BIT))
    {
        reportProblem("renderer",
                      formatString("the device can't sample a texture of %u by %u, %u layers, format %u",
                                   description.width, description.height, description.layers,
                                   unsigned(format.dxgi)));
        return false;
    }
    description.format = format.vulkan;
    description.usage = VK_IMAGE_USAGE_SAMPLED_BIT | VK_IMAGE_USAGE_TRANSFER_DST_BIT;
    return createImage(context, description, image);
}

} // namespace helvantine
