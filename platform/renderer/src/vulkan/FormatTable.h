// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/VulkanApi.h"

#include <helvantine/renderer/D3D11Types.h>

namespace helvantine
{

/// What the renderer knows about a DXGI format, depth formats aside.
struct FormatInfo
{
    DXGI_FORMAT dxgi = DXGI_FORMAT_UNKNOWN;
    VkFormat vulkan = VK_FORMAT_UNDEFINED;
    uint32_t blockBytes = 0;  ///< bytes of a pixel, or of a 4 by 4 block
    uint32_t blockSide = 1;   ///< 4 for the block formats
    bool colorTarget = false; ///< may be the colour format of a render target
    bool vertex = false;      ///< may be the format of a vertex element
};

/// Null for a number that the renderer doesn't take.
const FormatInfo* findFormat(uint32_t format);

/// Blocks that cover a side of that many pixels.
inline uint32_t countBlocks(const FormatInfo& format, uint32_t pixels)
{
    return (pixels + format.blockSide - 1) / format.blockSide;
}

/// Bytes of a mip of one face, tightly packed.
inline uint64_t countImageBytes(const FormatInfo& format, uint32_t width, uint32_t height)
{
    return uint64_t(countBlocks(format, width)) * countBlocks(format, height) * format.blockBytes;
}

} // namespace helvantine
