// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>

namespace helvantine::tool
{

/// Frames first to last, both included; every step-th of them.
struct FrameRange
{
    int first = 0;
    int last = -1;
    int step = 1;

    int getCount() const { return last < first ? 0 : (last - first) / step + 1; }
};

struct FrameSize
{
    unsigned width = 0;
    unsigned height = 0;
};

/// Highest frame number: days of any frame rate.
inline constexpr int maxFrame = 9'999'999;

/// "A-B" or "N", from 0 to maxFrame. Nothing for any other text, a range that runs backwards included.
std::optional<FrameRange> parseFrameRange(std::string_view text);

/// "WxH", each 1 to 16,384 pixels.
std::optional<FrameSize> parseFrameSize(std::string_view text);

/// Largest side of a picture.
inline constexpr unsigned maxSide = 16384;

} // namespace helvantine::tool
