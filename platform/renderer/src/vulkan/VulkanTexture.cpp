// SPDX-License-Identifier: MIT
#include "vulkan/VulkanTexture.h"

#include "image/ImageDecoder.h"
#include "vulkan/SlotState.h"
#include "vulkan/TextureUpload.h"
#include "vulkan/VulkanContext.h"

#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>

#include <algorithm>
#include <memory>

namespace helvantine
{

VulkanTexture::VulkanTexture(VulkanContext& context, const VulkanImage& image)
    : GpuObject(context), m_image(image), m_width(image.description.width), m_height(image.description.height)
{
}

VulkanTexture::~VulkanTexture()
{
    if (getContext())
        releaseGpu();
}

void VulkanTexture::bind(unsigned slot)
{
    if (getContext())
        getContext()->slots().setTexture(slot, this);
}

void VulkanTexture::unbind(unsigned slot)
{
    if (getContext())
        getContext()->slots().setTexture(slot, nullptr);
}

void VulkanTexture::releaseGpu()
{
    destroyImage(*getContext(), m_image);
}

namespace
{

/// Whether everything in the image is as its format says.
bool isWhole(const ImageData& image)
{
    const bool shape = image.width > 0 && image.height > 0 && image.mipCount > 0 &&
                       image.mipCount <= countMips(image.width, image.height) &&
                       (image.faceCount == 1 || (image.faceCount == 6 && image.width == image.height)) &&
                       image.levels.size() == size_t(image.faceCount) * image.mipCount;
    return shape && std::all_of(image.levels.begin(), image.levels.end(), [&](const ImageData::Level& level) {
               return level.offset <= image.bytes.size() && level.size <= image.bytes.size() - level.offset;
           });
}

bool putImage(const ImageData& image, ImageSink& sink)
{
    for (unsigned index = 0; index < image.levels.size(); ++index) {
        const ImageData::Level& level = image.levels[index];
        const uint8_t* row = image.bytes.data() + level.offset;
        for (unsigned y = 0; y < level.size / level.rowBytes; ++y, row += level.rowBytes) {
            if (!sink.putRow(index / image.mipCount, index % image.mipCount, y, row))
                return false;
        }
    }
    return true;
}

} // namespace

Texture* createTextureFromRows(const ImageHeader& header, const char* name,
                               const std::function<bool(ImageSink&)>& fill)
{
    VulkanContext* context = VulkanContext::getCurrent();
    const FormatInfo* format = findFormat(header.format);
    if (!context || !format)
        return nullptr;
    ImageDescription description;
    description.width = header.width;
    description.height = header.height;
    description.mips = header.mipCount;
    description.layers = header.faceCount;
    description.cube = header.faceCount == 6;
    description.name = name;
    VulkanImage image;
    if (!createSampledImage(*context, *format, description, image))
        return nullptr;
    auto texture = std::make_unique<VulkanTexture>(*context, image);
    constexpr uint64_t backlog = uint64_t(1) << 20;
    TexelStream stream(*context, texture->getImage(), *format, backlog);
    const bool filled = fill(stream);
    stream.finish();
    return filled ? texture.release() : nullptr;
}

Texture* createTextureFromImage(const ImageData& image, const char* name)
{
    if (!VulkanContext::getCurrent())
        return nullptr;
    if (!findFormat(image.format) || !isWhole(image)) {
        reportProblem("renderer",
                      formatString("no texture of %u by %u, format %u, %u mips, %u faces: they don't add up",
                                   image.width, image.height, unsigned(image.format), image.mipCount,
                                   image.faceCount));
        return nullptr;
    }
    const ImageHeader header{.format = image.format,
                             .width = image.width,
                             .height = image.height,
                             .faceCount = image.faceCount,
                             .mipCount = image.mipCount};
    return createTextureFromRows(header, name, [&](ImageSink& sink) { return putImage(image, sink); });
}

} // namespace helvantine
