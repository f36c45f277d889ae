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

constexpr size_t largestBand = 256 << 10;

} // namespace

TexelStream::TexelStream(VulkanContext& context, VulkanImage& image, const FormatInfo& format,
                         uint64_t backlog)
    : m_context(context), m_image(image), m_format(format), m_backlog(backlog)
{
    const VkCommandBuffer commands = context.commandsOutsideRendering();
    context.barriers().add(commands, image, ImageUse::CopyTarget);
    context.barriers().flush(commands);
}

uint32_t TexelStream::getWidth(unsigned mip) const
{
    return std::max(1u, m_image.description.width >> mip);
}

uint32_t TexelStream::getHeight(unsigned mip) const
{
    return std::max(1u, m_image.description.height >> mip);
}

bool TexelStream::putRow(unsigned face, unsigned mip, unsigned y, const uint8_t* row)
{
    if (face != m_face)
        copyAll();
    m_face = face;
    Band& band = m_bands[mip];
    if (!band.bytes && !begin(mip, y))
        return false;
    const size_t rowBytes = size_t(countBlocks(m_format, getWidth(mip))) * m_format.layout.blockBytes;
    std::memcpy(band.bytes + band.rows * rowBytes, row, rowBytes);
    if (++band.rows == band.capacity)
        copy(mip);
    return true;
}

/// Makes room for as many rows as go together. What waits for too long goes to the GPU before.
bool TexelStream::begin(unsigned mip, unsigned y)
{
    if (m_context.frames().uploads().getUsedBytes() > m_backlog) {
        copyAll();
        m_context.submit();
    }
    constexpr VkDeviceSize everyFormat = 16;
    const size_t rowBytes = size_t(countBlocks(m_format, getWidth(mip))) * m_format.layout.blockBytes;
    const uint32_t left = countBlocks(m_format, getHeight(mip)) - y;
    const uint32_t rows = std::clamp(static_cast<uint32_t>(largestBand / rowBytes), 1u, left);
    const UploadSlice slice = m_context.frames().uploads().allocate(rowBytes * rows, everyFormat);
    m_bands[mip] = {slice.buffer, slice.offset, static_cast<uint8_t*>(slice.data), y, 0, rows};
    return slice.data != nullptr;
}

void TexelStream::copy(unsigned mip)
{
    Band& band = m_bands[mip];
    if (band.rows > 0) {
        const uint32_t side = m_format.layout.blockSide;
        const uint32_t top = band.firstRow * side;
        VkBufferImageCopy region{};
        region.bufferOffset = band.offset;
        region.imageSubresource = {VK_IMAGE_ASPECT_COLOR_BIT, mip, m_face, 1};
        region.imageOffset = {0, static_cast<int32_t>(top), 0};
        region.imageExtent = {getWidth(mip), std::min(band.rows * side, getHeight(mip) - top), 1};
        vkCmdCopyBufferToImage(m_context.commandsOutsideRendering(), band.buffer, m_image.image,
                               VK_IMAGE_LAYOUT_TRANSFER_DST_OPTIMAL, 1, &region);
    }
    band = {};
}

void TexelStream::copyAll()
{
    for (unsigned mip = 0; mip < m_image.description.mips; ++mip)
        copy(mip);
}

void TexelStream::finish()
{
    copyAll();
    const VkCommandBuffer commands = m_context.commandsOutsideRendering();
    m_context.barriers().add(commands, m_image, ImageUse::Sampled);
    m_context.barriers().flush(commands);
}

namespace
{

bool uploadLevel(TexelStream& stream, const VulkanImage& image, const FormatInfo& format,
                 const TexelLevel& level)
{
    const uint32_t width = std::max(1u, image.description.width >> level.mip);
    const uint32_t rows = countBlocks(format, std::max(1u, image.description.height >> level.mip));
    std::vector<uint8_t> zeros;
    if (!level.texels)
        zeros.resize(size_t(countBlocks(format, width)) * format.layout.blockBytes);
    for (uint32_t row = 0; row < rows; ++row) {
        const uint8_t* texels = level.texels ? level.texels + row * level.rowPitch : zeros.data();
        if (!stream.putRow(level.layer, level.mip, row, texels))
            return false;
    }
    return true;
}

} // namespace

bool uploadTexels(VulkanContext& context, VulkanImage& image, const FormatInfo& format,
                  std::span<const TexelLevel> levels)
{
    constexpr uint64_t backlog = uint64_t(64) << 20;
    TexelStream stream(context, image, format, backlog);
    const bool uploaded = std::all_of(levels.begin(), levels.end(), [&](const TexelLevel& level) {
        return uploadLevel(stream, image, format, level);
    });
    stream.finish();
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
