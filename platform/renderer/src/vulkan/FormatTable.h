// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/VulkanApi.h"

#include <helvantine/renderer/D3D11Types.h>

namespace helvantine
{

/// What the renderer knows about a DXGI format.
struct FormatInfo
{
    DXGI_FORMAT dxgi = DXGI_FORMAT_UNKNOWN;
    VkFormat vulkan = VK_FORMAT_UNDEFINED;
    uint32_t blockBytes = 0;  ///< bytes of a texel, or of a block
    uint32_t blockPixels = 1; ///< side of a block: 4 for the block formats
    uint32_t components = 0;
    bool colorTarget = false; ///< may be the colour format of a render target
    bool vertex = false;      ///< may be the format of a vertex element
};

/// Null for a number that the renderer doesn't take. Depth formats are not in this table.
const FormatInfo* findFormat(uint32_t format);

/// Bytes of a mip of one face, tightly packed.
uint64_t getImageBytes(const FormatInfo& format, uint32_t width, uint32_t height);

/// Mips of a full chain.
uint32_t getFullMipCount(uint32_t width, uint32_t height);

} // namespace helvantine
