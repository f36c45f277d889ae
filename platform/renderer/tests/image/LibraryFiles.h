// SPDX-License-Identifier: MIT
#pragma once

#include "PictureFile.h"

namespace helvantine::test
{

/// A png as the library for it writes it.
struct PngFile
{
    unsigned width = 8;
    unsigned height = 8;
    int bits = 8;
    int colorType = 6; ///< 0 grey, 2 RGB, 3 palette, 4 grey and alpha, 6 RGBA
    bool interlaced = false;
    Bytes rows;         ///< samples packed as the file has them, rows without gaps; empty: zeros
    Bytes palette = {}; ///< red, green, blue of each entry
    Bytes alphas = {};  ///< of the first entries, or two bytes of each channel's transparent value

    Bytes write() const;
};

/// A jpg as the library for it writes it.
struct JpegFile
{
    enum Scans
    {
        One,
        OneForEachComponent,
        Progressive,
        Many ///< 66 of them
    };

    unsigned width = 8;
    unsigned height = 8;
    int components = 3; ///< 1 grey, 3 RGB, 4 inks with a mark that they are inverted
    Scans scans = One;
    Bytes pixels = {}; ///< a byte for each component; empty: zeros

    Bytes write() const;
};

} // namespace helvantine::test
