// SPDX-License-Identifier: MIT
#pragma once

#include "FrameRange.h"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace helvantine::tool
{

/// Makes PNG files of frames: 8 bits a channel, red, green and blue.
///
/// Keeps what it allocates for the next frame; one thread at a time uses it.
class PngEncoder
{
public:
    PngEncoder();
    ~PngEncoder();
    PngEncoder(const PngEncoder&) = delete;
    PngEncoder& operator=(const PngEncoder&) = delete;

    /// pixels: rows from the top, blue, green, red, alpha. What a screen would show: the alpha is left out. Overwrites
    /// the pixels, in whose place the rows are filtered. The file's bytes stay until the next call; empty without
    /// memory, or without as many pixels as the size says.
    std::span<const uint8_t> encode(std::vector<uint8_t>& pixels, FrameSize size);

private:
    struct Deflate;

    std::size_t filterRows(std::vector<uint8_t>& pixels, FrameSize size);

    std::unique_ptr<Deflate> m_deflate;
    std::vector<uint8_t> m_rows;       ///< the row, the one before it, and a candidate for each filter
    std::unique_ptr<uint8_t[]> m_file; ///< not filled with zeros: most of the room is never used
    std::size_t m_capacity = 0;
};

} // namespace helvantine::tool
