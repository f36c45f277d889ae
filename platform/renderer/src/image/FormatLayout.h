// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/renderer/D3D11Types.h>

namespace helvantine
{

/// How a format lies in memory: blocks of side by side pixels.
struct FormatLayout
{
    unsigned blockBytes = 0; ///< 0: not a format of colours or numbers
    unsigned blockSide = 1;  ///< 4 for the block-compressed formats
};

constexpr FormatLayout getFormatLayout(DXGI_FORMAT format)
{
    switch (format) {
    case DXGI_FORMAT_R32G32B32A32_FLOAT:
        return {16, 1};
    case DXGI_FORMAT_R32G32B32_FLOAT:
        return {12, 1};
    case DXGI_FORMAT_R16G16B16A16_FLOAT:
    case DXGI_FORMAT_R32G32_FLOAT:
        return {8, 1};
    case DXGI_FORMAT_R8G8B8A8_UNORM:
    case DXGI_FORMAT_R8G8B8A8_UNORM_SRGB:
    case DXGI_FORMAT_B8G8R8A8_UNORM:
    case DXGI_FORMAT_B8G8R8A8_UNORM_SRGB:
    case DXGI_FORMAT_R16G16_FLOAT:
    case DXGI_FORMAT_R32_FLOAT:
    case DXGI_FORMAT_R32_UINT:
        return {4, 1};
    case DXGI_FORMAT_R16_FLOAT:
    case DXGI_FORMAT_R16_UINT:
        return {2, 1};
    case DXGI_FORMAT_BC1_UNORM:
    case DXGI_FORMAT_BC1_UNORM_SRGB:
    case DXGI_FORMAT_BC4_UNORM:
    case DXGI_FORMAT_BC4_SNORM:
        return {8, 4};
    case DXGI_FORMAT_BC2_UNORM:
    case DXGI_FORMAT_BC2_UNORM_SRGB:
    case DXGI_FORMAT_BC3_UNORM:
    case DXGI_FORMAT_BC3_UNORM_SRGB:
    case DXGI_FORMAT_BC5_UNORM:
    case DXGI_FORMAT_BC5_SNORM:
    case DXGI_FORMAT_BC6H_UF16:
    case DXGI_FORMAT_BC6H_SF16:
    case DXGI_FORMAT_BC7_UNORM:
    case DXGI_FORMAT_BC7_UNORM_SRGB:
        return {16, 4};
    default:
        return {};
    }
}

/// Its numbers are read as they are, and not as parts of 1.
constexpr bool isIntegerFormat(DXGI_FORMAT format)
{
    return format == DXGI_FORMAT_R32_UINT || format == DXGI_FORMAT_R16_UINT;
}

} // namespace helvantine
