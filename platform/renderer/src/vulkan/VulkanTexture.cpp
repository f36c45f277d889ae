// SPDX-License-Identifier: MIT
#include "vulkan/VulkanTexture.h"

#include "image/ImageData.h"
#include "vulkan/SlotState.h"
#include "vulkan/TextureUpload.h"
#include "vulkan/VulkanContext.h"

#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>

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

/// The levels of an image whose layout is as it should be; empty otherwise.
std::vector<TexelLevel> listLevels(const ImageData& image)
{
    std::vector<TexelLevel> levels;
    const bool shape = image.width > 0 && image.height > 0 && image.mipCount > 0 &&
                       image.mipCount <= countMips(image.width, image.height) &&
                       (image.faceCount == 1 || (image.faceCount == 6 && image.width == image.height)) &&
                       image.levels.size() == size_t(image.faceCount) * image.mipCount;
    if (!shape)
        return levels;
    for (uint32_t face = 0; face < image.faceCount; ++face) {
        for (uint32_t mip = 0; mip < image.mipCount; ++mip) {
            const ImageData::Level& level = image.getLevel(face, mip);
            if (level.offset > image.bytes.size() || level.size > image.bytes.size() - level.offset)
                return {};
            levels.push_back({image.bytes.data() + level.offset, level.rowBytes, mip, face});
        }
    }
    return levels;
}

} // namespace

Texture* createTextureFromImage(const ImageData& image, const char* name)
{
    VulkanContext* context = VulkanContext::getCurrent();
    if (!context)
        return nullptr;
    const FormatInfo* format = findFormat(image.format);
    const std::vector<TexelLevel> levels = listLevels(image);
    if (!format || levels.empty()) {
        reportProblem("renderer",
                      formatString("no texture of %u by %u, format %u, %u mips, %u faces: they don't add up",
                                   image.width, image.height, unsigned(image.format), image.mipCount,
                                   image.faceCount));
        return nullptr;
    }
    ImageDescription description;
    description.width = image.width;
    description.height = image.height;
    description.mips = image.mipCount;
    description.layers = image.faceCount;
    description.cube = image.faceCount == 6;
    description.name = name;
    VulkanImage gpuImage;
    if (!createSampledImage(*context, *format, description, gpuImage))
        return nullptr;
    auto texture = std::make_unique<VulkanTexture>(*context, gpuImage);
    return uploadTexels(*context, texture->getImage(), *format, levels) ? texture.release() : nullptr;
}

} // namespace helvantine
