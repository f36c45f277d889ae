// SPDX-License-Identifier: MIT
#include "FrameRange.h"

#include <charconv>

namespace helvantine::tool
{

namespace
{

/// A whole text of digits; nothing for signs, blanks, an empty text and what doesn't fit.
std::optional<int> parseNumber(std::string_view text)
{
    int number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || number < 0 || text.front() == '-')
        return {};
    return number;
}

} // namespace

std::optional<FrameRange> parseFrameRange(std::string_view text)
{
    const size_t dash = text.find('-');
    const auto first = parseNumber(text.substr(0, dash));
    const auto last = dash == std::string_view::npos ? first : parseNumber(text.substr(dash + 1));
    if (!first || !last || *last < *first || *last > maxFrame)
        return {};
    return FrameRange{*first, *last};
}

std::optional<FrameSize> parseFrameSize(std::string_view text)
{
    const size_t cross = text.find('x');
    if (cross == std::string_view::npos)
        return {};
    const auto width = parseNumber(text.substr(0, cross));
    const auto height = parseNumber(text.substr(cross + 1));
    const auto fits = [](std::optional<int> side) { return side && *side >= 1 && *side <= int(maxSide); };
    if (!fits(width) || !fits(height))
        return {};
    return FrameSize{static_cast<unsigned>(*width), static_cast<unsigned>(*height)};
}

} // namespace helvantine::tool
