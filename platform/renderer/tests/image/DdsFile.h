// SPDX-License-Identifier: MIT
#pragma once

#include "PictureFile.h"

#include <cstddef>

namespace helvantine::test
{

/// A dds file to be written: what its headers say, right or wrong, and the bytes behind them.
struct DdsFile
{
    uint32_t width = 8;
    uint32_t height = 8;
    uint32_t mipCount = 1;
    uint32_t pixelFlags = 4; ///< 4: fourCC, 0x40: RGB, 0x41: RGBA, 0x20000: luminance, 2: alpha
    uint32_t fourCC = 0;
    uint32_t bitCount = 0;
    uint32_t masks[4] = {};
    uint32_t caps2 = 0;
    uint32_t dxgiFormat = 0; ///< not 0: an extended header with the fields below
    uint32_t dimension = 3;
    uint32_t miscFlags = 0;
    uint32_t arraySize = 1;
    Bytes pixels = {};

    Bytes write() const;
};

constexpr uint32_t makeFourCC(const char* text)
{
    return uint32_t(text[0]) | uint32_t(text[1]) << 8 | uint32_t(text[2]) << 16 | uint32_t(text[3]) << 24;
}

/// count bytes that differ from their neighbours.
Bytes makeBytes(std::size_t count);

} // namespace helvantine::test
