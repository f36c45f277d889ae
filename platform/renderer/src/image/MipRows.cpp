// SPDX-License-Identifier: MIT
#include "image/MipRows.h"

#include <algorithm>
#include <cassert>
#include <cstring>

namespace helvantine
{

namespace
{

constexpr unsigned channels = 4;

/// The pixels of the larger level that one pixel of the next level covers, along one axis.
struct Span
{
    unsigned first;
    unsigned count;
    uint32_t weights[3];
    uint32_t total; ///< sum of the weights
};

/// An even side halves in pairs. An odd one, 2m + 1 pixels onto m, gives each of them 2 + 1/m: three pixels,
/// of which the outer two are shared with the neighbours.
Span getSpan(unsigned target, unsigned side)
{
    if (side == 1)
        return {0, 1, {1, 0, 0}, 1};
    const unsigned half = side / 2;
    if (side % 2 == 0)
        return {2 * target, 2, {1, 1, 0}, 2};
    return {2 * target, 3, {half - target, half, target + 1}, side};
}

void averageArea(const uint8_t* const* rows, const Span& across, const Span& down, uint8_t* out)
{
    const uint64_t total = uint64_t(across.total) * down.total;
    for (unsigned channel = 0; channel < channels; ++channel) {
        uint64_t sum = total / 2;
        for (unsigned y = 0; y < down.count; ++y) {
            const uint8_t* row = rows[y] + size_t(across.first) * channels;
            for (unsigned x = 0; x < across.count; ++x)
                sum += uint64_t(down.weights[y]) * across.weights[x] * row[x * channels + channel];
        }
        out[channel] = static_cast<uint8_t>(sum / total);
    }
}

/// The common case: both sides even.
void averagePairs(const uint8_t* const* rows, unsigned targetWidth, uint8_t* out)
{
    const uint8_t* upper = rows[0];
    const uint8_t* lower = rows[1];
    for (unsigned x = 0; x < targetWidth; ++x, upper += 2 * channels, lower += 2 * channels, out += channels)
    {
        for (unsigned channel = 0; channel < channels; ++channel) {
            const unsigned sum =
                upper[channel] + upper[channels + channel] + lower[channel] + lower[channels + channel];
            out[channel] = static_cast<uint8_t>((sum + 2) / 4);
        }
    }
}

} // namespace

MipRows::MipRows(ImageSink& sink, unsigned width, unsigned height)
    : m_sink(sink), m_levels(countMips(width, height))
{
    for (Level& level : m_levels) {
        level.width = width;
        level.height = height;
        level.rows.resize(size_t(keptRows) * width * channels);
        width = std::max(1u, width / 2);
        height = std::max(1u, height / 2);
    }
}

bool MipRows::putRow(unsigned face, [[maybe_unused]] unsigned mip, unsigned y, const uint8_t* row)
{
    assert(face == 0 && mip == 0 && y == m_levels[0].rowsDone && "rows come one after the other");
    Level& level = m_levels[0];
    std::memcpy(level.getRow(y), row, size_t(level.width) * channels);
    level.rowsDone = y + 1;
    return m_sink.putRow(face, 0, y, row) && makeRows(1);
}

/// Goes down the levels as long as the row that came last completes a row of the next one.
bool MipRows::makeRows(unsigned mip)
{
    for (; mip < m_levels.size(); ++mip) {
        Level& larger = m_levels[mip - 1];
        Level& level = m_levels[mip];
        const unsigned y = level.rowsDone;
        const Span down = getSpan(y, larger.height);
        if (y == level.height || larger.rowsDone < down.first + down.count)
            return true;
        const uint8_t* rows[keptRows] = {};
        for (unsigned i = 0; i < down.count; ++i)
            rows[i] = larger.getRow(down.first + i);
        uint8_t* out = level.getRow(y);
        if (larger.width % 2 == 0 && larger.height % 2 == 0)
            averagePairs(rows, level.width, out);
        else
            for (unsigned x = 0; x < level.width; ++x)
                averageArea(rows, getSpan(x, larger.width), down, out + size_t(x) * channels);
        level.rowsDone = y + 1;
        if (!m_sink.putRow(0, mip, y, out))
            return false;
    }
    return true;
}

} // namespace helvantine
