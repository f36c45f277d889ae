// SPDX-License-Identifier: MIT
#pragma once

#include "image/FormatLayout.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace helvantine
{

/// Pixels a side that an image may have.
inline constexpr unsigned maxImageSide = 16384;
inline constexpr unsigned maxImageMips = 15;

/// Levels from width by height down to 1 by 1.
unsigned countMips(unsigned width, unsigned height);

/// A decoded image in CPU memory: faces outermost, each with its mips from large to small, rows from the top
/// without padding, all in one block of bytes.
struct ImageData
{
    struct Level
    {
        size_t offset = 0;   ///< of its first byte in bytes
        size_t rowBytes = 0; ///< of one row of blocks
        size_t size = 0;
        unsigned width = 0;
        unsigned height = 0;
    };

    DXGI_FORMAT format = DXGI_FORMAT_UNKNOWN;
    unsigned width = 0;
    unsigned height = 0;
    unsigned mipCount = 0;
    unsigned faceCount = 0; ///< 1, or 6 for a cube: +x, -x, +y, -y, +z, -z
    std::vector<Level> levels;
    std::vector<uint8_t> bytes;

    const Level& getLevel(unsigned face, unsigned mip) const { return levels[size_t(face) * mipCount + mip]; }
    uint8_t* getPixels(unsigned face, unsigned mip) { return bytes.data() + getLevel(face, mip).offset; }
    const uint8_t* getPixels(unsigned face, unsigned mip) const
    {
        return bytes.data() + getLevel(face, mip).offset;
    }

    /// Fills in everything but the bytes and returns how many there have to be. The format must have a
    /// layout, sides be at most maxImageSide and mips at most countMips.
    size_t layOut(DXGI_FORMAT imageFormat, unsigned imageWidth, unsigned imageHeight, unsigned mips,
                  unsigned faces);
};

} // namespace helvantine
