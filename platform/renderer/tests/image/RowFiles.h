// SPDX-License-Identifier: MIT
#pragma once

#include "PictureFile.h"

namespace helvantine::test
{

/// A bmp to be written: what its headers say, right or wrong, and what lies behind them.
struct BmpFile
{
    uint32_t headerBytes = 40;
    unsigned width = 2;
    int height = 1;
    unsigned bits = 8;
    uint32_t compression = 0;
    std::vector<uint32_t> masks = {};
    Bytes palette = {}; ///< blue, green, red and, but for the oldest header, a fourth byte
    Bytes body = {};

    Bytes write() const;
};

/// The same of a tga.
struct TgaFile
{
    uint8_t type = 2; ///< 1 palette, 2 colours, 3 grey; 8 more: with runs
    unsigned width = 2;
    unsigned height = 1;
    uint8_t bits = 24;
    uint8_t origin = 0x20; ///< 0x20: from the top, 0x10: from the right
    unsigned mapOrigin = 0;
    unsigned mapLength = 0;
    uint8_t mapBits = 0;
    Bytes body = {};

    Bytes write() const;
};

} // namespace helvantine::test
