// SPDX-License-Identifier: MIT
#pragma once

#include "image/SourceReader.h"

#include <array>

namespace helvantine
{

/// Red, green, blue and alpha of the 256 indices that a byte can hold.
using BmpPalette = std::array<std::array<uint8_t, 4>, 256>;

/// The run-length codes of a bmp, which begin with the lowest row. Where each row's codes lie is found out first, so
/// that rows can be decoded in any order; a code that leads beyond the picture is cut off.
class BmpRuns
{
public:
    /// bits of a pixel: 4 or 8.
    BmpRuns(ImageSource& source, uint64_t offset, unsigned width, unsigned height, unsigned bits);

    /// False if the file ends before the picture does.
    bool findRows();

    /// Row 0 is the lowest. What its codes leave out is transparent black.
    void decodeRow(unsigned row, const BmpPalette& palette, uint8_t* rgba);

private:
    /// Where the codes of a row begin, and at which of its pixels.
    struct RowStart
    {
        uint64_t offset = 0; ///< 0: the row is left out
        unsigned x = 0;
    };

    struct Code
    {
        enum Kind
        {
            Run,     ///< count pixels of value, in turn its upper and lower half where a pixel has 4 bits
            Literal, ///< count pixels that follow
            EndOfRow,
            EndOfPicture,
            Move ///< right and up
        } kind = EndOfPicture;
        unsigned count = 0; ///< for Move: to the right
        unsigned value = 0; ///< for Move: up
    };

    static Code readCode(SourceReader& reader);
    unsigned countLiteralBytes(unsigned pixels) const; ///< an even number
    unsigned getIndex(unsigned byte, unsigned pixel) const;

    ImageSource& m_source;
    uint64_t m_offset;
    unsigned m_width;
    unsigned m_height;
    unsigned m_bits;
    std::vector<RowStart> m_rows;
};

} // namespace helvantine
