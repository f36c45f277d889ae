// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/FormatTable.h"
#include "vulkan/VulkanImage.h"

#include <span>

namespace helvantine
{

class VulkanContext;

/// The texels of one mip of one layer, in main memory.
struct TexelLevel
{
    const uint8_t* texels = nullptr; ///< null: zeros
    size_t rowPitch = 0;             ///< bytes from one row of blocks to the next
    uint32_t mip = 0;
    uint32_t layer = 0;
};

/// Copies the levels into the image and leaves it ready for shaders. The bytes are taken at once; draws
/// recorded before see the old texels. False, with the reason in the report, when there is no memory for
/// the way.
bool uploadTexels(VulkanContext& context, VulkanImage& image, const FormatInfo& format,
                  std::span<const TexelLevel> levels);

/// Makes an image that shaders can read. False, with the reason in the report, if the device can't sample it.
bool createSampledImage(VulkanContext& context, const FormatInfo& format, ImageDescription description,
                        VulkanImage& image);

} // namespace helvantine
