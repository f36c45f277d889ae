// SPDX-License-Identifier: MIT
#include "image/ImageData.h"

#include <algorithm>
#include <bit>

namespace helvantine
{

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
