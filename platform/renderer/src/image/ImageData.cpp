// SPDX-License-Identifier: MIT
#include "image/ImageData.h"

#include <algorithm>
#include <bit>

namespace helvantine
{

FormatLayout getFormatLayout(DXGI_FORMAT format)
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
        return {4, 1};
    case DXGI_FORMAT_R16_FLOAT:
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

unsigned countMips(unsigned width, unsigned height)
{
    return static_cast<unsigned>(std::bit_width(std::max(width, height)));
}

size_t ImageData::layOut(DXGI_FORMAT imageFormat, unsigned imageWidth, unsigned imageHeight, unsigned mips,
                         unsigned faces)
{
    format = imageFormat;
    width = imageWidth;
    height = imageHeight;
    mipCount = mips;
    faceCount = faces;
    levels.clear();
    levels.reserve(size_t(faces) * mips);

    const FormatLayout layout = getFormatLayout(format);
    size_t offset = 0;
    for (unsigned face = 0; face < faces; ++face) {
        for (unsigned mip = 0; mip < mips; ++mip) {
            Level level;
            level.offset = offset;
            level.width = std::max(1u, width >> mip);
            level.height = std::max(1u, height >> mip);
            level.rowBytes =
                size_t((level.width + layout.blockSide - 1) / layout.blockSide) * layout.blockBytes;
            level.size = level.rowBytes * ((level.height + layout.blockSide - 1) / layout.blockSide);
            offset += level.size;
            levels.push_back(level);
        }
    }
    return offset;
}

} // namespace helvantine
