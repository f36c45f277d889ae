// SPDX-License-Identifier: MIT
#pragma once

#include "image/ImageDecoder.h"
#include "vulkan/FormatTable.h"
#include "vulkan/VulkanImage.h"

#include <array>
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

/// Copies an image's texels into it row by row, through little memory, and leaves it ready for shaders.
///
/// From the first row to finish nothing else is recorded. Draws recorded before see the old texels.
class TexelStream final : public ImageSink
{
public:
    /// backlog: bytes that may wait in the open batch of commands before it is submitted.
    TexelStream(VulkanContext& context, VulkanImage& image, const FormatInfo& format, uint64_t backlog);

    /// False, with the reason in the report, when there is no memory for the way.
    bool putRow(unsigned face, unsigned mip, unsigned y, const uint8_t* row) override;

    void finish();

private:
    /// Rows of a level that wait to be copied together.
    struct Band
    {
        VkBuffer buffer = VK_NULL_HANDLE;
        VkDeviceSize offset = 0;
        uint8_t* bytes = nullptr; ///< null: none was begun
        uint32_t firstRow = 0;
        uint32_t rows = 0;
        uint32_t capacity = 0;
    };

    uint32_t getWidth(unsigned mip) const;
    uint32_t getHeight(unsigned mip) const;
    bool begin(unsigned mip, unsigned y);
    void copy(unsigned mip);
    void copyAll();

    VulkanContext& m_context;
    VulkanImage& m_image;
    const FormatInfo& m_format;
    uint64_t m_backlog;
    unsigned m_face = 0;
    std::array<Band, maxImageMips> m_bands; ///< of each mip of the face
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
