// SPDX-License-Identifier: MIT
#pragma once

#include "image/FormatLayout.h"
#include "vulkan/VulkanApi.h"

namespace helvantine
{

/// What the renderer knows about a DXGI format, depth formats aside.
struct FormatInfo
{
    DXGI_FORMAT dxgi = DXGI_FORMAT_UNKNOWN;
    VkFormat vulkan = VK_FORMAT_UNDEFINED;
    bool colorTarget = false; ///< may be the colour format of a render target
    bool vertex = false;      ///< may be the format of a vertex element
    FormatLayout layout = getFormatLayout(dxgi);
};

/// Null for a number that the renderer doesn't take.
const FormatInfo* findFormat(uint32_t format);

/// Blocks that cover a side of that many pixels.
inline uint32_t countBlocks(const FormatInfo& format, uint32_t pixels)
{
    return (pixels + format.layout.blockSide - 1) / format.layout.blockSide;
}

/// Bytes of a mip of one face, tightly packed.
inline uint64_t countImageBytes(const FormatInfo& format, uint32_t width, uint32_t height)
{
    return uint64_t(countBlocks(format, width)) * countBlocks(format, height) * format.layout.blockBytes;
}

} // namespace helvantine
